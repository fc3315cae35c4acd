// The system's URLs and references to files.
#include "Platform/FileReference.h"

#include "Support/RowName.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <thread>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;
using PLATFORM::CFURLCopyFileSystemPath;
using PLATFORM::CFURLCreateFromFSRef;
using PLATFORM::CFURLCreateWithFileSystemPath;
using PLATFORM::CFURLCreateWithString;
using PLATFORM::CFURLGetFSRef;
using PLATFORM::CFURLGetString;
using PLATFORM::CFURLRef;
using PLATFORM::FSRef;

/// Ends its URL.
class Owned
{
public:
    explicit Owned(CFURLRef url) : mURL(url) {}
    Owned(Owned const&) = delete;
    Owned& operator=(Owned const&) = delete;
    ~Owned()
    {
        if (mURL)
            PLATFORM::CFRelease(mURL);
    }

    CFURLRef Get() const { return mURL; }

private:
    CFURLRef mURL;
};

struct PathRow
{
    char const* name;
    std::u16string path;
    /// As a file and as a directory.
    char const* file;
    char const* directory;
    std::u16string copied;
};

class FilePathURL : public ::testing::TestWithParam<PathRow>
{
};

TEST_P(FilePathURL, IsEscapedAndGivesThePathBack)
{
    for (bool const isDirectory : {false, true})
    {
        Owned const url(CFURLCreateWithFileSystemPath(GetParam().path, isDirectory));
        ASSERT_TRUE(url.Get());
        EXPECT_EQ(CFURLGetString(url.Get()), isDirectory ? GetParam().directory : GetParam().file);
        EXPECT_EQ(CFURLCopyFileSystemPath(url.Get()), GetParam().copied);
    }
}

PathRow const kPathRows[] = {
    {"Plain", u"/a/b", "file:///a/b", "file:///a/b/", u"/a/b"},
    {"Root", u"/", "file:///", "file:///", u"/"},
    {"TrailingSlash", u"/a/", "file:///a", "file:///a/", u"/a"},
    {"Blank", u"/a b", "file:///a%20b", "file:///a%20b/", u"/a b"},
    {"Escapes", u"/%41#?;", "file:///%2541%23%3F%3B", "file:///%2541%23%3F%3B/", u"/%41#?;"},
    {"Accent", u"/\u00E9", "file:///%C3%A9", "file:///%C3%A9/", u"/\u00E9"},
    {"DecomposedStays", u"/e\u0301", "file:///e%CC%81", "file:///e%CC%81/", u"/e\u0301"},
};
INSTANTIATE_TEST_SUITE_P(Paths, FilePathURL, ::testing::ValuesIn(kPathRows), RowName());

TEST(FileReference, WhatIsNoPathMakesNoURL)
{
    for (bool const isDirectory : {false, true})
    {
        EXPECT_EQ(CFURLCreateWithFileSystemPath(u"", isDirectory), nullptr);
        EXPECT_EQ(CFURLCreateWithFileSystemPath(u"/a\xD800", isDirectory), nullptr);
    }
}

struct TextRow
{
    char const* name;
    std::u16string text;
    std::optional<std::u16string> path;
};

class TextURL : public ::testing::TestWithParam<TextRow>
{
};

TEST_P(TextURL, HasAPathOrNone)
{
    Owned const url(CFURLCreateWithString(GetParam().text));
    ASSERT_TRUE(url.Get());
    EXPECT_EQ(CFURLGetString(url.Get()), std::string(GetParam().text.begin(), GetParam().text.end()));
    EXPECT_EQ(CFURLCopyFileSystemPath(url.Get()), GetParam().path);
}

TextRow const kTextRows[] = {
    {"File", u"file:///a%20b/", u"/a b"},         {"AnotherScheme", u"http://host:80/a/b?c#d", u"/a/b"},
    {"RootAlone", u"http://host/", u"/"},         {"HostAlone", u"http://host", u""},
    {"Opaque", u"mailto:ada@host", std::nullopt},
};
INSTANTIATE_TEST_SUITE_P(Texts, TextURL, ::testing::ValuesIn(kTextRows), RowName());

TEST(FileReference, WhatIsNoURLTextMakesNoURL)
{
    EXPECT_EQ(CFURLCreateWithString(u"file:///a b"), nullptr);
    EXPECT_EQ(CFURLCreateWithString(u"file:///a\xD800"), nullptr);
}

TEST(FileReference, AURLLivesUntilItsLastReferenceIsReleased)
{
    CFURLRef const url = CFURLCreateWithFileSystemPath(u"/a", false);
    PLATFORM::CFRetain(url);
    PLATFORM::CFRelease(url);
    EXPECT_EQ(CFURLGetString(url), "file:///a");
    PLATFORM::CFRelease(url);
}

TEST(FileReference, ReferencesToAURLAreTakenAndDroppedFromAnyThread)
{
    Owned const url(CFURLCreateWithFileSystemPath(u"/a", false));
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&url] {
            for (int round = 0; round < 10'000; ++round)
            {
                PLATFORM::CFRetain(url.Get());
                PLATFORM::CFRelease(url.Get());
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(CFURLGetString(url.Get()), "file:///a");
}

/// The names of these tests' files are ASCII.
class FSRefTest : public ::testing::Test
{
protected:
    static FSRef Filled(int byte)
    {
        FSRef ref;
        std::memset(&ref, byte, sizeof ref);
        return ref;
    }

    static std::u16string Wide(fs::path const& path)
    {
        std::string const text = path.string();
        return {text.begin(), text.end()};
    }

    static FSRef RefOf(fs::path const& path)
    {
        FSRef ref = Filled(0xFF);
        Owned const url(CFURLCreateWithFileSystemPath(Wide(path), false));
        EXPECT_TRUE(CFURLGetFSRef(url.Get(), ref)) << path;
        return ref;
    }

    static bool HasRef(CFURLRef url)
    {
        FSRef ref = Filled(0xA5);
        FSRef const before = ref;
        bool const has = CFURLGetFSRef(url, ref);
        EXPECT_EQ(std::memcmp(&ref, &before, sizeof ref) != 0, has) << "a failure changes nothing";
        return has;
    }

    /// The URL that the reference becomes.
    static std::string TextOf(FSRef const& ref)
    {
        Owned const url(CFURLCreateFromFSRef(ref));
        return url.Get() ? CFURLGetString(url.Get()) : "none";
    }

    std::string URLText(std::string const& name) const
    {
        return "file://" + directory.Path().string() + "/" + name;
    }

    TemporaryDirectory directory;
};

TEST_F(FSRefTest, OfAFile) { EXPECT_EQ(TextOf(RefOf(directory.File("a", "x"))), URLText("a")); }

TEST_F(FSRefTest, OfADirectoryMakesADirectorysURL)
{
    fs::create_directory(directory.Path() / "d");
    EXPECT_EQ(TextOf(RefOf(directory.Path() / "d")), URLText("d/"));
    EXPECT_EQ(TextOf(RefOf("/")), "file:///");
}

TEST_F(FSRefTest, OfALinkIsTheLinks)
{
    fs::create_symlink("nowhere", directory.Path() / "dangling");
    fs::create_directory(directory.Path() / "d");
    fs::create_directory_symlink(directory.Path() / "d", directory.Path() / "link");
    EXPECT_EQ(TextOf(RefOf(directory.Path() / "dangling")), URLText("dangling"));
    EXPECT_EQ(TextOf(RefOf(directory.Path() / "link")), URLText("link"));
}

TEST_F(FSRefTest, OfAnythingThatIsThere) { EXPECT_EQ(TextOf(RefOf("/dev/null")), "file:///dev/null"); }

TEST_F(FSRefTest, IsNotOfWhatIsNotThere)
{
    fs::path const file = directory.File("a", "x");
    for (std::u16string const& path :
         {Wide(directory.Path() / "b"), Wide(file / "b"), Wide(directory.Path()) + u"/\x4E00"})
    {
        Owned const url(CFURLCreateWithFileSystemPath(path, false));
        EXPECT_FALSE(HasRef(url.Get()));
    }
    Owned const host(CFURLCreateWithString(u"http://host"));
    EXPECT_FALSE(HasRef(host.Get()));
    Owned const nullCharacter(CFURLCreateWithString(u"file://" + Wide(file) + u"%00b"));
    ASSERT_TRUE(nullCharacter.Get());
    EXPECT_FALSE(HasRef(nullCharacter.Get())) << "it is not of what stands before the null character";
}

TEST_F(FSRefTest, TakesPathsAsLongAsTheSystemDoes)
{
    // The longest that the system takes has 4,095 bytes; slashes count and change nothing.
    std::u16string const file = Wide(directory.File("a", "x"));
    Owned const longest(CFURLCreateWithString(u"file://" + std::u16string(4095 - file.size(), u'/') + file));
    Owned const longer(CFURLCreateWithString(u"file://" + std::u16string(4096 - file.size(), u'/') + file));
    ASSERT_TRUE(longest.Get());
    ASSERT_TRUE(longer.Get());
    EXPECT_TRUE(HasRef(longest.Get()));
    EXPECT_FALSE(HasRef(longer.Get()));
    FSRef ref = Filled(0);
    ASSERT_TRUE(CFURLGetFSRef(longest.Get(), ref));
    EXPECT_NE(TextOf(ref), "none");
    Owned const endless(CFURLCreateWithFileSystemPath(u"/" + std::u16string(100'000, u'x'), false));
    EXPECT_FALSE(HasRef(endless.Get()));
}

TEST_F(FSRefTest, ResolvesAsLongAsThatVeryFileIsThere)
{
    fs::path const path = directory.File("a", "x");
    FSRef const ref = RefOf(path);
    directory.File("a", "longer than before");
    EXPECT_EQ(TextOf(ref), URLText("a"));
    fs::rename(path, directory.Path() / "b");
    EXPECT_EQ(TextOf(ref), "none");
    directory.File("a", "y");
    EXPECT_EQ(TextOf(ref), "none") << "another of that name";
    fs::rename(directory.Path() / "b", path);
    EXPECT_EQ(TextOf(ref), URLText("a"));
    fs::remove(path);
    EXPECT_EQ(TextOf(ref), "none");
}

TEST_F(FSRefTest, MakesTheURLOfWhatTheObjectIsNow)
{
    fs::path const path = directory.File("a", "x");
    fs::create_hard_link(path, directory.Path() / "b");
    EXPECT_EQ(TextOf(RefOf(path)), URLText("a"));
    EXPECT_EQ(TextOf(RefOf(directory.Path() / "b")), URLText("b")) << "the name is part of the reference";
}

TEST_F(FSRefTest, IsCopiedAtWill)
{
    std::vector<FSRef> refs(3, RefOf(directory.File("a", "x")));
    for (FSRef const& ref : refs)
        EXPECT_EQ(TextOf(ref), URLText("a"));
}

TEST_F(FSRefTest, OfGarbageDoesNotResolve)
{
    for (int byte = 0; byte < 256; ++byte)
        EXPECT_EQ(TextOf(Filled(byte)), "none") << byte;
    // Every bit of what is not padding matters.
    FSRef const good = RefOf(directory.File("a", "x"));
    std::size_t const used = 16 + (directory.Path() / "a").string().size() + 1;
    for (std::size_t i = 0; i < used * 8; ++i)
    {
        FSRef ref = good;
        ref.hidden[i / 8] ^= std::byte{1} << (i % 8);
        EXPECT_EQ(TextOf(ref), "none") << i;
    }
    EXPECT_EQ(TextOf(good), URLText("a"));
}
} // namespace
} // namespace KORVA::TESTS
