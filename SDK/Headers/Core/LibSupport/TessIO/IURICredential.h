// Who asks for a resource.
#pragma once

#include <tessio/CoreString/CoreString.h>
#include <tessio/ObjectModel/Export.h>
#include <tessio/ObjectModel/IObject.h>
#include <tessio/ObjectModel/TInterfacePtr.h>

namespace KORVA::IO
{
/// A user name and a password. Class id `IID_URI_CREDENTIAL`. Nothing is checked and nothing persisted. The
/// password is overwritten in memory when it is replaced and when the object dies; copies that a caller makes
/// are the caller's to overwrite. Used by one thread at a time.
class TESSIO_EXPORT IURICredential : public IObject
{
public:
    /// Copies both.
    virtual void Init(STRING::CoreString const& username, STRING::CoreString const& password) = 0;

    /// Empty before `Init`; valid until the next one.
    ///@{
    virtual STRING::CoreString const& GetUsername() const = 0;
    virtual STRING::CoreString const& GetPassword() const = 0;
    ///@}
};

/// Holds a credential.
using IURICredentialPtr = TInterfacePtr<IURICredential>;
} // namespace KORVA::IO
