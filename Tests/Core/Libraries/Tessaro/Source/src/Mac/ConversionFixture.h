// Other URIs and another registry, for tests of the conversions.
#pragma once

#include "Mac/MacConversions.h"

#include "SDK/Tracked.h"
#include "Support/Library.h"
#include <tessio/ObjectModel/TObject.h>
#include <tessio/TessIO/ClassIds.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace KORVA::TESTS
{
using IO::CFURLRef;
using IO::FSRef;
using IO::IURI;
using IO::IURIPtr;
using STRING::CoreString;

/// A URI with just a path, which nothing normalises. Tells what is done with it: "init" and the location,
/// "path" for each question for it, "died".
class FakeURI final : public TObject<IURI>
{
public:
    FakeURI(CoreString path, Events& events) : mPath(std::move(path)), mEvents(events) {}
    ~FakeURI() override { mEvents.push_back("died"); }

    void Init(CoreString const& location) override
    {
        mEvents.push_back("init " + location.ToUTF8());
        if (takesLocation)
            mPath = location;
    }
    void InitRelative(IURI const&, CoreString const&) override { mEvents.push_back("other"); }
    CoreString GetScheme() const override { return Other(); }
    CoreString GetHost() const override { return Other(); }
    uint32 GetPortNumber() const override
    {
        mEvents.push_back("other");
        return 0;
    }
    CoreString GetPath() const override
    {
        mEvents.push_back("path");
        if (onPath)
            onPath();
        return mPath;
    }
    CoreString GetQuery() const override { return Other(); }
    CoreString GetAbsoluteString() const override { return Other(); }
    void GetName(CoreString&) const override { mEvents.push_back("other"); }
    bool operator==(IURI const&) const override { return false; }

    std::function<void()> onPath;
    /// Whether `Init` sets the path.
    bool takesLocation = false;

private:
    CoreString Other() const
    {
        mEvents.push_back("other");
        return {};
    }

    CoreString mPath;
    Events& mEvents;
};

/// Makes what the test wants and remembers what it was asked for.
class ScriptedRegistry final : public TObject<COREREGISTRY::ICoreRegistry>
{
public:
    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        asked.push_back(classId);
        *out = make ? make() : nullptr;
        return *out ? 0 : -1004;
    }
    int RegisterFactory(IClassFactory*) override { return 0; }
    int UnregisterFactory(IClassFactory*) override { return 0; }

    std::function<IObject*()> make;
    std::vector<GUID> asked;
};

class ConversionTest : public LibraryTest
{
protected:
    static constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/Mac/MacConversions";
    static constexpr char kCreate[] =
        "ErrCode KORVA::IO::IURICreateCFURL(const KORVA::IO::IURI *, CFURLRef *)";

    Logged const kNoURL{kSource, kCreate, 151, "Unable to generate a CFURL from the IURI provided"};
    Logged const kCreateNull{
        kSource, kCreate, 158,
        "Invalid parameter passed to IURICreateCFURL, NULL is not allowed for either param"};
    Logged const kNoFactory{
        "../../../../SDK/Headers/Core/LibSupport/TessIO/LibUtils",
        "ErrCode KORVA::IO::CreateURI(KORVA::IClassFactory *, IURIPtr &, const STRING::CoreString &)", 476,
        "Attempted to use a library util without a factory pointer"};
    Logged const kNoObject{
        "../../../../SDK/Headers/Core/LibSupport/TessIO/LibUtils",
        "ErrCode KORVA::IO::CreateURI(KORVA::IClassFactory *, IURIPtr &, const STRING::CoreString &)", 470,
        "Factory could not create an IURI object."};

    ~ConversionTest() override { COREREGISTRY::InstallCoreRegistry(nullptr); }

    /// The process's registry from now on.
    ScriptedRegistry& UseScriptedRegistry()
    {
        mScripted.Adopt(new ScriptedRegistry);
        COREREGISTRY::InstallCoreRegistry(mScripted.Get());
        return *mScripted;
    }

    /// A URI whose path is as it is given.
    TInterfacePtr<FakeURI> MakeFake(std::u16string const& path)
    {
        TInterfacePtr<FakeURI> uri;
        uri.Adopt(new FakeURI(CoreString(path), events));
        return uri;
    }

    Events TakeEvents() { return std::exchange(events, {}); }

    Events events;

private:
    TInterfacePtr<ScriptedRegistry> mScripted;
};

/// Ends its URL.
class OwnedURL
{
public:
    OwnedURL() = default;
    explicit OwnedURL(CFURLRef url) : mURL(url) {}
    OwnedURL(OwnedURL const&) = delete;
    OwnedURL& operator=(OwnedURL const&) = delete;
    ~OwnedURL()
    {
        if (mURL)
            PLATFORM::CFRelease(mURL);
    }

    CFURLRef Get() const { return mURL; }
    CFURLRef* Place() { return &mURL; }
    std::string Text() const { return mURL ? PLATFORM::CFURLGetString(mURL) : "no URL"; }

private:
    CFURLRef mURL = nullptr;
};

/// A reference of that byte throughout.
inline FSRef FilledRef(int byte)
{
    FSRef ref;
    std::memset(&ref, byte, sizeof ref);
    return ref;
}

inline bool SameBytes(FSRef const& a, FSRef const& b) { return std::memcmp(&a, &b, sizeof a) == 0; }
} // namespace KORVA::TESTS
