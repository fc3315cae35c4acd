#include "URIAuthenticationChallenge.h"

#include "Registration.h"
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/TessIO/ClassIds.h>

namespace KORVA::IO
{
namespace
{
class URIAuthenticationChallengeFactory final
    : public TClassFactory<Makes<&New<URIAuthenticationChallenge>, IID_URI_AUTHENTICATION_CHALLENGE>>
{
};
} // namespace

int RegisterURIAuthenticationChallengeFactory(COREREGISTRY::ICoreRegistry* registry)
{
    return COREREGISTRY::RegisterNewFactory<URIAuthenticationChallengeFactory>(registry);
}

void URIAuthenticationChallenge::Init(uint32 previousFailureCount, int previousFailureError,
                                      IURICredential* proposedCredential)
{
    mPreviousFailureCount = previousFailureCount;
    mPreviousFailureError = previousFailureError;
    mProposedCredential.Share(proposedCredential);
}

uint32 URIAuthenticationChallenge::GetPreviousFailureCount() const { return mPreviousFailureCount; }

int URIAuthenticationChallenge::GetPreviousFailureError() const { return mPreviousFailureError; }

IURICredential* URIAuthenticationChallenge::GetProposedCredential() const
{
    return mProposedCredential.Get();
}
} // namespace KORVA::IO
