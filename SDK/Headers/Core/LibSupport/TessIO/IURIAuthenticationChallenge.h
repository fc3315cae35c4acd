// What is known when a resource asks who is there.
#pragma once

#include <tessio/ObjectModel/Export.h>
#include <tessio/TessIO/IURICredential.h>

namespace KORVA::IO
{
/// How often and why earlier attempts failed, and the credential proposed for the next. Class id
/// `IID_URI_AUTHENTICATION_CHALLENGE`. Nothing is checked and nothing persisted. Used by one thread at a
/// time.
class TESSIO_EXPORT IURIAuthenticationChallenge : public IObject
{
public:
    /// Replaces all three. Shares the credential, which may be null or the one held already, and releases the
    /// one held before.
    virtual void Init(uint32 previousFailureCount, int previousFailureError,
                      IURICredential* proposedCredential) = 0;

    /// 0 before `Init`.
    ///@{
    virtual uint32 GetPreviousFailureCount() const = 0;
    virtual int GetPreviousFailureError() const = 0;
    ///@}
    /// Borrowed; null before `Init`.
    virtual IURICredential* GetProposedCredential() const = 0;
};
} // namespace KORVA::IO
