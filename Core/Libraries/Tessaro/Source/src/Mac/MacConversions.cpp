#include "Mac/MacConversions.h"

#include "Platform/StringServices.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Logger/LogSite.h>
#include <tessio/TessIO/LibUtils.h>

#include <optional>
#include <string>
#include <utility>

namespace KORVA::IO
{
namespace
{
using STRING::CoreString;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/Mac/MacConversions";
constexpr char kCreateCFURL[] = "ErrCode KORVA::IO::IURICreateCFURL(const KORVA::IO::IURI *, CFURLRef *)";
constexpr char kGetFSRef[] = "ErrCode KORVA::IO::IURIGetFSRef(const KORVA::IO::IURI *, FSRef *)";

constexpr LogSite kSiteNoPath{kSource, "ErrCode KORVA::IO::CFURLToIURI(const CFURLRef, IURIPtr &)", 78};
constexpr LogSite kSiteNoURLOfRef{kSource, "ErrCode KORVA::IO::FSRefToIURI(const FSRef &, IURIPtr &)", 112};
constexpr LogSite kSiteNoURLOfURI{kSource, kCreateCFURL, 151};
constexpr LogSite kSiteCreateNull{kSource, kCreateCFURL, 158};
constexpr LogSite kSiteNoRef{kSource, kGetFSRef, 211};
constexpr LogSite kSiteCreateFailed{kSource, kGetFSRef, 216};
constexpr LogSite kSiteRefNull{kSource, kGetFSRef, 222};
constexpr LogSite kSiteURINull{kSource, kGetFSRef, 227};

/// Owns a platform URL.
class CFURLHolder
{
public:
    CFURLHolder() = default;
    explicit CFURLHolder(CFURLRef url) : mURL(url) {}
    CFURLHolder(CFURLHolder const&) = delete;
    CFURLHolder& operator=(CFURLHolder const&) = delete;
    ~CFURLHolder()
    {
        if (mURL)
            PLATFORM::CFRelease(mURL);
    }

    CFURLRef Get() const { return mURL; }
    /// For functions that release what is there and store another.
    CFURLRef* Replace() { return &mURL; }

private:
    CFURLRef mURL = nullptr;
};

/// Creates the URL of `uri`, which may be null, in `url` and fills `ref` from it: 0, the logged code of the
/// former, or 14.
ErrCode TryFSRef(IURI const* uri, CFURLHolder& url, FSRef& ref)
{
    ErrCode const created = IURICreateCFURL(uri, url.Replace());
    if (created != kNoError)
    {
        Log(kSiteCreateFailed, L"Unable to create CFURL for given IURI (IURICreateCFURL failed with error: ",
            created);
        return created;
    }
    return PLATFORM::CFURLGetFSRef(url.Get(), ref) ? kNoError : kNoConversion;
}
} // namespace

ErrCode CFURLToIURI(CFURLRef const url, IURIPtr& uri)
{
    uri.Reset();
    std::optional<std::u16string> path = PLATFORM::CFURLCopyFileSystemPath(url);
    if (!path)
    {
        Log(kSiteNoPath, L"Unable to generate system file path for CFURL");
        return kNoConversion;
    }
    static_cast<void>(CreateURI(COREREGISTRY::GetCoreRegistry(), uri, CoreString(std::move(*path))));
    return kNoError;
}

ErrCode FSRefToIURI(FSRef const& ref, IURIPtr& uri)
{
    CFURLHolder const url(PLATFORM::CFURLCreateFromFSRef(ref));
    if (!url.Get())
    {
        Log(kSiteNoURLOfRef, L"Unable to generate CFURL from the supplied FSRef");
        return kNoConversion;
    }
    return CFURLToIURI(url.Get(), uri);
}

ErrCode IURICreateCFURL(IURI const* uri, CFURLRef* url)
{
    if (!uri || !url)
    {
        Log(kSiteCreateNull,
            L"Invalid parameter passed to IURICreateCFURL, NULL is not allowed for either param");
        return kBadArgument;
    }
    CoreString const path = uri->GetPath();
    if (*url)
        PLATFORM::CFRelease(*url);
    *url = PLATFORM::CFURLCreateWithFileSystemPath(path.view(), false);
    if (!*url)
        *url = PLATFORM::CFURLCreateWithFileSystemPath(path.view(), true);
    if (*url)
        return kNoError;
    Log(kSiteNoURLOfURI, L"Unable to generate a CFURL from the IURI provided");
    return kNoConversion;
}

ErrCode IURIGetFSRef(IURI const* uri, FSRef* ref)
{
    if (!uri)
    {
        Log(kSiteURINull, L"No srcURI supplied");
        return kBadArgument;
    }
    if (!ref)
    {
        Log(kSiteRefNull, L"No destFSRef supplied");
        return kBadArgument;
    }
    {
        CFURLHolder url;
        ErrCode const first = TryFSRef(uri, url, *ref);
        if (first == kNoError || !url.Get())
            return first;
    }
    IURIPtr decomposed;
    static_cast<void>(CreateURI(COREREGISTRY::GetCoreRegistry(), decomposed,
                                CoreString(PLATFORM::DecomposeCanonical(uri->GetPath().view()))));
    CFURLHolder url;
    ErrCode const second = TryFSRef(decomposed.Get(), url, *ref);
    if (second == kNoError || !url.Get())
        return second;
    Log(kSiteNoRef, L"Unable to get FSRef for CFURL \"",
        CoreString(PLATFORM::CFURLGetString(url.Get()).c_str()), L"\"");
    return kNoConversion;
}
} // namespace KORVA::IO
