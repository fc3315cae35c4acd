// Between URIs and the system's references to existing files.
#include "Mac/MacConversions.h"

#include "Mac/ConversionFixture.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/TessIO/IRelativeURI.h>

#include <gtest/gtest.h>

#include <cstdlib>

namespace KORVA::TESTS
{
namespace
{
namespace fs = std::filesystem;
using IO::FSRefToIURI;
using IO::IURIGetFSRef;

class FSRefTest : public ConversionTest
{
protected:
    static constexpr char kGet[] = "ErrCode KORVA::IO::IURIGetFSRef(const KORVA::IO::IURI *, FSRef *)";
    Logged const kNoURLOfRef{kSource, "ErrCode KORVA::IO::FSRefToIURI(const FSRef &, IURIPtr &)", 112,
                             "Unable to generate CFURL from the supplied FSRef"};

    Logged NotFound(std::string const& url) const
    {
        return {kSource, kGet, 211, "Unable to get FSRef for CFURL \"" + url + "\""};
    }
    Logged CreateFailed(std::string const& code) const
    {
        return {kSource, kGet, 216,
                "Unable to create CFURL for given IURI (IURICreateCFURL failed with error: " + code};
    }

    /// Refers to what is at the path.
    static FSRef RefOf(fs::path const& path)
    {
        FSRef ref{};
        EXPECT_EQ(IURIGetFSRef(MakeURI(path.string()).Get(), &ref), 0);
        return ref;
    }

    /// The path of the URI that the reference becomes, or the code.
    static std::string PathOf(FSRef const& ref)
    {
        IURIPtr uri;
        ErrCode const result = FSRefToIURI(ref, uri);
        EXPECT_EQ(static_cast<bool>(uri), result == 0);
        return uri ? uri->GetPath().ToUTF8() : std::to_string(result);
    }

    void ExpectUnresolved(FSRef const& ref)
    {
        EXPECT_EQ(PathOf(ref), "14");
        EXPECT_EQ(log.Take(), std::vector<Logged>{kNoURLOfRef});
    }

    /// No escapes in it.
    std::string Dir() const { return directory.Path().string(); }

    TemporaryDirectory directory;
};

TEST_F(FSRefTest, LeadsThereAndBack)
{
    for (char const* const name :
         {"plain.txt", "a b%41#;.txt", "caf\xC3\xA9", "\xE4\xB8\x80.\xF0\x9F\x98\x80"})
    {
        fs::path const path = directory.File(name, "x");
        EXPECT_EQ(PathOf(RefOf(path)), path.string());
    }
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(FSRefTest, OfADirectory)
{
    fs::path const path = directory.Path() / "sub";
    fs::create_directory(path);
    EXPECT_EQ(PathOf(RefOf(path)), path.string());
    EXPECT_EQ(PathOf(RefOf(path.string() + "/")), path.string());
    EXPECT_EQ(PathOf(RefOf("/")), "/");
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(FSRefTest, OfASymbolicLinkIsNotOfItsTarget)
{
    fs::path const target = directory.File("target", "x");
    fs::path const link = directory.Path() / "link";
    fs::create_symlink(target, link);
    FSRef const ref = RefOf(link);
    EXPECT_EQ(PathOf(ref), link.string());
    fs::remove(target);
    EXPECT_EQ(PathOf(ref), link.string());
    EXPECT_EQ(PathOf(RefOf(link)), link.string()) << "a link that leads nowhere is there";
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(FSRefTest, ThroughALinkedDirectory)
{
    fs::create_directory(directory.Path() / "real");
    directory.File("real/a", "x");
    fs::create_directory_symlink(directory.Path() / "real", directory.Path() / "alias");
    EXPECT_EQ(PathOf(RefOf(directory.Path() / "alias" / "a")), Dir() + "/alias/a");
}

TEST_F(FSRefTest, ReplacesWhatTheURIPointerHeld)
{
    FSRef const ref = RefOf(directory.File("a", "x"));
    IURIPtr uri;
    uri.Adopt(MakeFake(u"/old").Detach());
    EXPECT_EQ(FSRefToIURI(ref, uri), 0);
    EXPECT_EQ(TakeEvents(), Events{"died"});
    ASSERT_TRUE(uri);
    EXPECT_EQ(CountOf(*uri), 1);
    EXPECT_EQ(uri->GetPath().ToUTF8(), Dir() + "/a");
}

TEST_F(FSRefTest, GivesTheResultOfTheNextStep)
{
    FSRef const ref = RefOf(directory.File("a", "x"));
    UseScriptedRegistry();
    IURIPtr uri;
    EXPECT_EQ(FSRefToIURI(ref, uri), 0) << "where no URI can be made";
    EXPECT_FALSE(uri);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNoObject});
}

TEST_F(FSRefTest, FollowsTheFileThroughAChangeOfItsContent)
{
    FSRef const ref = RefOf(directory.File("a", "x"));
    directory.File("a", "something else");
    EXPECT_EQ(PathOf(ref), Dir() + "/a");
}

TEST_F(FSRefTest, DoesNotResolveOnceTheFileIsGone)
{
    fs::path const path = directory.File("a", "x");
    FSRef const ref = RefOf(path);
    fs::remove(path);
    ExpectUnresolved(ref);
}

TEST_F(FSRefTest, DoesNotResolveToAnotherFileOfThatName)
{
    fs::path const path = directory.File("a", "x");
    fs::path const other = directory.File("b", "y");
    FSRef const ref = RefOf(path);
    fs::rename(other, path);
    ExpectUnresolved(ref);
    EXPECT_EQ(PathOf(RefOf(path)), path.string());
}

TEST_F(FSRefTest, DoesNotResolveWhileTheFileIsElsewhere)
{
    fs::path const path = directory.File("a", "x");
    FSRef const ref = RefOf(path);
    fs::rename(path, directory.Path() / "b");
    ExpectUnresolved(ref);
    fs::rename(directory.Path() / "b", path);
    EXPECT_EQ(PathOf(ref), path.string());
}

TEST_F(FSRefTest, FailureLeavesTheURIAlone)
{
    auto const fake = MakeFake(u"/old");
    IURIPtr uri;
    uri.Share(fake.Get());
    EXPECT_EQ(FSRefToIURI(FilledRef(0), uri), 14);
    EXPECT_EQ(log.Take(), std::vector<Logged>{kNoURLOfRef});
    EXPECT_EQ(uri.Get(), fake.Get());
    EXPECT_EQ(CountOf(*fake), 2);
}

TEST_F(FSRefTest, OfAnythingDoesNotResolve)
{
    for (int const byte : {0x00, 0x01, 0x2F, 0x41, 0x80, 0xFF})
        ExpectUnresolved(FilledRef(byte));
    // A path all right, of an object that is not there.
    FSRef ref = RefOf(directory.File("a", "x"));
    FSRef const good = ref;
    for (std::size_t i = 0; i < 16; ++i)
    {
        ref = good;
        ref.hidden[i] ^= std::byte{0x40};
        ExpectUnresolved(ref);
    }
    EXPECT_EQ(PathOf(good), Dir() + "/a");
}

TEST_F(FSRefTest, NullArgumentsAreLoggedTheURIFirst)
{
    Logged const noURI{kSource, kGet, 227, "No srcURI supplied"};
    Logged const noRef{kSource, kGet, 222, "No destFSRef supplied"};
    FSRef ref = FilledRef(0x41);
    EXPECT_EQ(IURIGetFSRef(nullptr, &ref), 13);
    EXPECT_EQ(log.Take(), std::vector<Logged>{noURI});
    EXPECT_TRUE(SameBytes(ref, FilledRef(0x41)));
    auto const uri = MakeFake(u"/");
    EXPECT_EQ(IURIGetFSRef(uri.Get(), nullptr), 13);
    EXPECT_EQ(log.Take(), std::vector<Logged>{noRef});
    EXPECT_EQ(TakeEvents(), Events{});
    EXPECT_EQ(IURIGetFSRef(nullptr, nullptr), 13);
    EXPECT_EQ(log.Take(), std::vector<Logged>{noURI});
}

TEST_F(FSRefTest, OfAMissingFileIsLoggedOnce)
{
    FSRef ref = FilledRef(0x41);
    EXPECT_EQ(IURIGetFSRef(MakeURI(Dir() + "/a b").Get(), &ref), 14);
    EXPECT_EQ(log.Take(), std::vector<Logged>{NotFound("file://" + Dir() + "/a%20b")});
    EXPECT_TRUE(SameBytes(ref, FilledRef(0x41)));
    EXPECT_FALSE(fs::exists(directory.Path() / "a b"));
}

TEST_F(FSRefTest, OfAPathThroughAFileIsMissing)
{
    directory.File("a", "x");
    FSRef ref = FilledRef(0x41);
    EXPECT_EQ(IURIGetFSRef(MakeURI(Dir() + "/a/b").Get(), &ref), 14);
    EXPECT_EQ(log.Take(), std::vector<Logged>{NotFound("file://" + Dir() + "/a/b")});
}

TEST_F(FSRefTest, WithoutAPathStopsAtTheFirstAttempt)
{
    ScriptedRegistry const& registry = UseScriptedRegistry();
    auto const uri = MakeFake(u"");
    FSRef ref = FilledRef(0x41);
    EXPECT_EQ(IURIGetFSRef(uri.Get(), &ref), 14);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{kNoURL, CreateFailed("14")}));
    EXPECT_TRUE(registry.asked.empty());
    EXPECT_TRUE(SameBytes(ref, FilledRef(0x41)));
}

TEST_F(FSRefTest, OfARelativeURIIsOfItsFullPath)
{
    directory.File("a b.txt", "x");
    setenv("TMPDIR", (Dir() + "/base").c_str(), 1);
    auto const uri = COREREGISTRY::CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
    EXPECT_EQ(uri->Init(FILE_SYS::kTemporaryDir, u"other", u"host", 80, u"../a b.txt", true), 0);
    unsetenv("TMPDIR");
    FSRef ref = FilledRef(0);
    EXPECT_EQ(IURIGetFSRef(uri.Get(), &ref), 0);
    EXPECT_EQ(PathOf(ref), Dir() + "/a b.txt");
}
} // namespace
} // namespace KORVA::TESTS
