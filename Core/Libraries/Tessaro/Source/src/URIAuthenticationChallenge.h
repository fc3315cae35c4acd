// What is known when a resource asks who is there.
#pragma once

#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/IURIAuthenticationChallenge.h>

namespace KORVA::IO
{
class URIAuthenticationChallenge final : public TObject<IURIAuthenticationChallenge>
{
public:
    void Init(uint32 previousFailureCount, int previousFailureError,
              IURICredential* proposedCredential) override;
    uint32 GetPreviousFailureCount() const override;
    int GetPreviousFailureError() const override;
    IURICredential* GetProposedCredential() const override;

private:
    friend struct KORVA::LayoutProbe;

    uint32 mPreviousFailureCount = 0;
    int32 mPreviousFailureError = 0;
    IURICredentialPtr mProposedCredential;
};
} // namespace KORVA::IO
