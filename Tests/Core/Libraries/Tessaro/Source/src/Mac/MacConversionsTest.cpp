// Between URIs and the system's URLs.
#include "Mac/MacConversions.h"

#include "Mac/ConversionFixture.h"
#include <tessio/TessIO/IRelativeURI.h>
#include <tessio/TessIO/LibUtils.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace KORVA::TESTS
{
namespace
{
using IO::CFURLToIURI;
using IO::IURICreateCFURL;
using PLATFORM::CFURLCreateWithFileSystemPath;
using PLATFORM::CFURLCreateWithString;

class CFURLToIURITest : public ConversionTest
{
protected:
    Logged const kNoPath{kSource, "ErrCode KORVA::IO::CFURLToIURI(const CFURLRef, IURIPtr &)", 78,
                         "Unable to generate system file path for CFURL"};
};

struct PathRow
{
    char const* name;
    std::u16string path;
    bool isDirectory;
    char const* expected;
};

class CFURLPathTest : public LibraryTestWith<PathRow>
{
};

TEST_P(CFURLPathTest, BecomesTheURIsPath)
{
    OwnedURL const url(CFURLCreateWithFileSystemPath(GetParam().path, GetParam().isDirectory));
    ASSERT_TRUE(url.Get());
    IURIPtr uri;
    EXPECT_EQ(CFURLToIURI(url.Get(), uri), 0);
    ASSERT_TRUE(uri);
    EXPECT_EQ(CountOf(*uri), 1);
    EXPECT_EQ(uri->GetPath().ToUTF8(), GetParam().expected);
    EXPECT_EQ(uri->GetScheme().ToUTF8(), "file");
    EXPECT_EQ(log.Take(), kNothing);
}

PathRow const kPathRows[] = {
    {"File", u"/a/b.txt", false, "/a/b.txt"},
    {"Directory", u"/a/b", true, "/a/b"},
    {"DirectoryWithASlash", u"/a/b/", true, "/a/b"},
    {"Root", u"/", true, "/"},
    {"Blank", u"/a b/c d.txt", false, "/a b/c d.txt"},
    {"PercentAndHash", u"/100%/%41#1", false, "/100%/%41#1"},
    {"Semicolon", u"/a;b", false, "/a;b"},
    {"NoLatin", u"/\u4E00/\U0001F600", false, "/\xE4\xB8\x80/\xF0\x9F\x98\x80"},
    {"Composed", u"/caf\u00E9", false, "/caf\xC3\xA9"},
    {"DecomposedIsComposed", u"/cafe\u0301", false, "/caf\xC3\xA9"},
    // As in any text that a URI is initialised with, the last one begins the query.
    {"QuestionMark", u"/a?b?c", false, "/a?b"},
};
INSTANTIATE_TEST_SUITE_P(Paths, CFURLPathTest, ::testing::ValuesIn(kPathRows), RowName());

TEST_F(CFURLToIURITest, TakesPathsOfAnyLength)
{
    std::u16string const path = u"/" + std::u16string(3000, u'x') + u"/" + std::u16string(3000, u'y');
    OwnedURL const url(CFURLCreateWithFileSystemPath(path, false));
    IURIPtr uri;
    EXPECT_EQ(CFURLToIURI(url.Get(), uri), 0);
    ASSERT_TRUE(uri);
    EXPECT_EQ(uri->GetPath(), CoreString(path));
}

TEST_F(CFURLToIURITest, TakesTheFilePathOfAnyURL)
{
    OwnedURL const url(CFURLCreateWithString(u"http://host/a%20b/c?d=e"));
    IURIPtr uri;
    EXPECT_EQ(CFURLToIURI(url.Get(), uri), 0);
    ASSERT_TRUE(uri);
    EXPECT_EQ(uri->GetAbsoluteString().ToUTF8(), "file:///a b/c");
}

TEST_F(CFURLToIURITest, ReplacesWhatTheURIPointerHeld)
{
    OwnedURL const url(CFURLCreateWithFileSystemPath(u"/new", false));
    auto const fake = MakeFake(u"/old");
    IURIPtr uri;
    uri.Share(fake.Get());
    EXPECT_EQ(CFURLToIURI(url.Get(), uri), 0);
    ASSERT_TRUE(uri);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/new");
    EXPECT_EQ(CountOf(*fake), 1);
    EXPECT_EQ(TakeEvents(), Events{});
}

TEST_F(CFURLToIURITest, LeavesTheURLToTheCaller)
{
    OwnedURL const url(CFURLCreateWithFileSystemPath(u"/a b", false));
    for (int round = 0; round < 2; ++round)
    {
        IURIPtr uri;
        EXPECT_EQ(CFURLToIURI(url.Get(), uri), 0);
    }
    EXPECT_EQ(url.Text(), "file:///a%20b");
}

TEST_F(CFURLToIURITest, WithoutAFilePathLogsAndLeavesNothing)
{
    OwnedURL const url(CFURLCreateWithString(u"mailto:ada@host"));
    ASSERT_TRUE(url.Get());
    auto fake = MakeFake(u"/old");
    IURIPtr uri;
    uri.Adopt(fake.Detach());
    EXPECT_EQ(CFURLToIURI(url.Get(), uri), 14);
    EXPECT_FALSE(uri);
    EXPECT_EQ(TakeEvents(), Events{"died"});
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNoPath});
}

TEST_F(CFURLToIURITest, HostAloneHasAnEmptyPath)
{
    OwnedURL const url(CFURLCreateWithString(u"http://host"));
    ASSERT_TRUE(url.Get());
    IURIPtr uri;
    EXPECT_EQ(CFURLToIURI(url.Get(), uri), 0);
    ASSERT_TRUE(uri);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "");
}

TEST_F(CFURLToIURITest, DropsWhatWasHeldBeforeItCreates)
{
    ScriptedRegistry& registry = UseScriptedRegistry();
    IURIPtr uri;
    uri.Adopt(MakeFake(u"/old").Detach());
    bool empty = false;
    registry.make = [&]() -> IObject* {
        empty = !uri && events == Events{"died"};
        return new FakeURI(u"/", events);
    };
    OwnedURL const url(CFURLCreateWithFileSystemPath(u"/a b", false));
    EXPECT_EQ(CFURLToIURI(url.Get(), uri), 0);
    EXPECT_TRUE(empty);
    EXPECT_EQ(TakeEvents(), (Events{"died", "init /a b"}));
    EXPECT_TRUE(registry.asked == std::vector<GUID>{IO::IID_IURI});
}

TEST_F(CFURLToIURITest, AnswersZeroWhenNoURICanBeMade)
{
    OwnedURL const url(CFURLCreateWithFileSystemPath(u"/a", false));
    IURIPtr uri;
    uri.Adopt(MakeFake(u"/old").Detach());
    UseScriptedRegistry();
    EXPECT_EQ(CFURLToIURI(url.Get(), uri), 0);
    EXPECT_FALSE(uri);
    EXPECT_EQ(TakeEvents(), Events{"died"});
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNoObject});

    COREREGISTRY::InstallCoreRegistry(nullptr);
    uri.Adopt(MakeFake(u"/old").Detach());
    EXPECT_EQ(CFURLToIURI(url.Get(), uri), 0);
    EXPECT_FALSE(uri);
    EXPECT_EQ(TakeEvents(), Events{"died"});
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNoFactory});
}

/// What the helper under the conversions does first and what next.
TEST_F(CFURLToIURITest, CreatingReplacesBeforeItInitialises)
{
    ScriptedRegistry& registry = UseScriptedRegistry();
    IURIPtr uri;
    uri.Adopt(MakeFake(u"/old").Detach());
    bool held = false;
    registry.make = [&]() -> IObject* {
        held = uri && events.empty();
        return new FakeURI(u"/", events);
    };
    EXPECT_EQ(IO::CreateURI(&registry, uri, u"/a"), 0);
    EXPECT_TRUE(held);
    EXPECT_EQ(TakeEvents(), (Events{"died", "init /a"}));
}

class IURICreateCFURLTest : public ConversionTest
{
};

struct URLRow
{
    char const* name;
    char const* location;
    char const* text;
};

class URLOfURITest : public LibraryTestWith<URLRow>
{
};

TEST_P(URLOfURITest, IsThatOfItsPath)
{
    IURIPtr const uri = MakeURI(GetParam().location);
    OwnedURL url;
    EXPECT_EQ(IURICreateCFURL(uri.Get(), url.Place()), 0);
    EXPECT_EQ(url.Text(), GetParam().text);
    EXPECT_EQ(CountOf(*uri), 1);
    EXPECT_EQ(log.Take(), kNothing);
}

URLRow const kURLRows[] = {
    {"File", "/a/b.txt", "file:///a/b.txt"},
    {"Root", "/", "file:///"},
    // Taken for a file first, and that never fails for a directory's path.
    {"Directory", "/usr/", "file:///usr"},
    {"Blank", "/a b", "file:///a%20b"},
    {"PercentAndHash", "/%41#", "file:///%2541%23"},
    {"Semicolon", "/a;b", "file:///a%3Bb"},
    {"Accent", "/caf\xC3\xA9", "file:///caf%C3%A9"},
    {"AnotherScheme", "http://host:80/a/b?c=d", "file:///a/b"},
};
INSTANTIATE_TEST_SUITE_P(Locations, URLOfURITest, ::testing::ValuesIn(kURLRows), RowName());

TEST_F(IURICreateCFURLTest, TakesThePathAsTheURIGivesIt)
{
    auto const uri = MakeFake(u"/cafe\u0301?x");
    OwnedURL url;
    EXPECT_EQ(IURICreateCFURL(uri.Get(), url.Place()), 0);
    EXPECT_EQ(url.Text(), "file:///cafe%CC%81%3Fx");
    EXPECT_EQ(TakeEvents(), Events{"path"});
}

TEST_F(IURICreateCFURLTest, ThePathEndsAtANullCharacter)
{
    auto const uri = MakeFake(std::u16string(u"/a\0b", 4));
    OwnedURL url;
    EXPECT_EQ(IURICreateCFURL(uri.Get(), url.Place()), 0);
    EXPECT_EQ(url.Text(), "file:///a");
}

TEST_F(IURICreateCFURLTest, NullArgumentsAreLoggedAndNothingIsTouched)
{
    auto const uri = MakeFake(u"/a");
    EXPECT_EQ(IURICreateCFURL(uri.Get(), nullptr), 13);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCreateNull});
    EXPECT_EQ(TakeEvents(), Events{}) << "the URI is not called";

    OwnedURL url(CFURLCreateWithFileSystemPath(u"/old", false));
    CFURLRef const before = url.Get();
    EXPECT_EQ(IURICreateCFURL(nullptr, url.Place()), 13);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCreateNull});
    EXPECT_EQ(url.Get(), before);
    EXPECT_EQ(url.Text(), "file:///old");

    EXPECT_EQ(IURICreateCFURL(nullptr, nullptr), 13);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kCreateNull});
}

TEST_F(IURICreateCFURLTest, ReleasesTheURLThatWasThereAfterItHasThePath)
{
    auto const uri = MakeFake(u"/new");
    OwnedURL url(CFURLCreateWithFileSystemPath(u"/old", false));
    std::string textAtPath;
    uri->onPath = [&] { textAtPath = url.Text(); };
    EXPECT_EQ(IURICreateCFURL(uri.Get(), url.Place()), 0);
    EXPECT_EQ(textAtPath, "file:///old");
    EXPECT_EQ(url.Text(), "file:///new");
}

TEST_F(IURICreateCFURLTest, TakesItsOwnReferenceOnly)
{
    auto const uri = MakeFake(u"/new");
    OwnedURL const old(CFURLCreateWithFileSystemPath(u"/old", false));
    PLATFORM::CFRetain(old.Get());
    OwnedURL url(old.Get());
    EXPECT_EQ(IURICreateCFURL(uri.Get(), url.Place()), 0);
    EXPECT_EQ(url.Text(), "file:///new");
    EXPECT_EQ(old.Text(), "file:///old");
}

TEST_F(IURICreateCFURLTest, WithoutAPathLogsAndStoresNull)
{
    for (std::u16string const& path : {std::u16string(), std::u16string(u"/a\xD800/b")})
    {
        auto const uri = MakeFake(path);
        OwnedURL url(CFURLCreateWithFileSystemPath(u"/old", false));
        EXPECT_EQ(IURICreateCFURL(uri.Get(), url.Place()), 14);
        EXPECT_EQ(url.Get(), nullptr);
        EXPECT_EQ(log.Take(), std::vector<Logged>{kNoURL});
    }
}

TEST_F(IURICreateCFURLTest, AURIWithoutAURLHasNoPath)
{
    auto const uri = COREREGISTRY::CreateObject<IURI>(IO::IID_IURI);
    OwnedURL url;
    EXPECT_EQ(IURICreateCFURL(uri.Get(), url.Place()), 14);
    EXPECT_EQ(url.Get(), nullptr);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNoURL});
}

TEST_F(IURICreateCFURLTest, ARelativeURIConvertsThroughItsFullPath)
{
    setenv("TMPDIR", "/base/dir", 1);
    auto const uri = COREREGISTRY::CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
    EXPECT_EQ(uri->Init(FILE_SYS::kTemporaryDir, u"other", u"host", 80, u"../sub/a b.txt", true), 0);
    unsetenv("TMPDIR");
    OwnedURL url;
    EXPECT_EQ(IURICreateCFURL(uri.Get(), url.Place()), 0);
    EXPECT_EQ(url.Text(), "file:///base/sub/a%20b.txt");
}
} // namespace
} // namespace KORVA::TESTS
