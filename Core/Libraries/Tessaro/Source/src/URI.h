// The general resource locator.
#pragma once

#include "Platform/URL.h"
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProviderStream.h>
#include <tessio/TessIO/IURI.h>

namespace KORVA::IO
{
class URI final : public TObject<IURI>
{
public:
    URI();

    void Init(STRING::CoreString const& location) override;
    void InitRelative(IURI const& base, STRING::CoreString const& relative) override;
    STRING::CoreString GetScheme() const override;
    STRING::CoreString GetHost() const override;
    uint32 GetPortNumber() const override;
    STRING::CoreString GetPath() const override;
    STRING::CoreString GetQuery() const override;
    STRING::CoreString GetAbsoluteString() const override;
    void GetName(STRING::CoreString& name) const override;
    bool operator==(IURI const& other) const override;

    static GUID const& GetClassId() { return IID_IURI; }
    /// The body is the absolute text, unescaped: an escaped reserved character does not survive.
    IDataProviderStream& Read(IDataProviderStream& stream);
    IDataProviderStream& Write(IDataProviderStream& stream) const;

private:
    friend struct KORVA::LayoutProbe;

    PLATFORM::URLRef mURL;
};
} // namespace KORVA::IO
