// User name and password.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IURICredential.h>

namespace KORVA::IO
{
class URICredential final : public TObject<IURICredential>
{
public:
    URICredential() = default;
    ~URICredential() override;

    void Init(STRING::CoreString const& username, STRING::CoreString const& password) override;
    STRING::CoreString const& GetUsername() const override;
    STRING::CoreString const& GetPassword() const override;

private:
    friend struct KORVA::LayoutProbe;

    STRING::CoreString mUsername;
    STRING::CoreString mPassword;
};
} // namespace KORVA::IO
