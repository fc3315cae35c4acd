#include "URICredential.h"

#include "Platform/SecureMemory.h"
#include "Registration.h"
#include <tessio/ObjectModel/ClassFactory.h>
#include <tessio/TessIO/ClassIds.h>

#include <utility>

namespace KORVA::IO
{
namespace
{
using STRING::CoreString;

class URICredentialFactory final : public TClassFactory<Makes<&New<URICredential>, IID_URI_CREDENTIAL>>
{
};

/// Overwrites the units where they are, before anything moves or frees them.
void Wipe(CoreString& text)
{
    if (!text.empty())
        PLATFORM::WipeMemory(&text[0], text.size() * sizeof(UniChar));
}
} // namespace

int RegisterURICredentialFactory(COREREGISTRY::ICoreRegistry* registry)
{
    return COREREGISTRY::RegisterNewFactory<URICredentialFactory>(registry);
}

URICredential::~URICredential() { Wipe(mPassword); }

void URICredential::Init(CoreString const& username, CoreString const& password)
{
    // Either may be one of this object's own, and no copy of the password may be left behind.
    CoreString newUsername = username;
    if (&password != &mPassword)
    {
        Wipe(mPassword);
        mPassword = password;
    }
    mUsername = std::move(newUsername);
}

CoreString const& URICredential::GetUsername() const { return mUsername; }

CoreString const& URICredential::GetPassword() const { return mPassword; }
} // namespace KORVA::IO
