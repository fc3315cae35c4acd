// The second attempt for a file that is not found: with its name decomposed.
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
using IO::FSRefToIURI;
using IO::IURIGetFSRef;

constexpr char kComposed[] = "caf\xC3\xA9";
constexpr char kDecomposed[] = "cafe\xCC\x81";

class RetryTest : public ConversionTest
{
protected:
    static constexpr char kGet[] = "ErrCode KORVA::IO::IURIGetFSRef(const KORVA::IO::IURI *, FSRef *)";

    std::string Dir() const { return directory.Path().string(); }

    Logged NotFound(std::string const& name) const
    {
        return {kSource, kGet, 211, "Unable to get FSRef for CFURL \"file://" + Dir() + "/" + name + "\""};
    }

    /// A URI that gives the path of a file of that name just so.
    TInterfacePtr<FakeURI> Fake(std::string const& name)
    {
        return MakeFake(std::u16string(CoreString(std::string_view(Dir() + "/" + name)).view()));
    }

    /// The registry makes one such URI, with `path` and, if it takes its location, then that.
    ScriptedRegistry& UseFakes(std::u16string const& path, bool takesLocation)
    {
        ScriptedRegistry& registry = UseScriptedRegistry();
        registry.make = [this, path, takesLocation]() -> IObject* {
            auto* const made = new FakeURI(CoreString(path), events);
            made->takesLocation = takesLocation;
            return made;
        };
        return registry;
    }

    TemporaryDirectory directory;
    FSRef ref = FilledRef(0x41);
};

TEST_F(RetryTest, AURIComposesItsPathSoADecomposedFileStaysUnfound)
{
    directory.File(kDecomposed, "x");
    for (char const* const name : {kComposed, kDecomposed})
    {
        EXPECT_EQ(IURIGetFSRef(MakeURI(Dir() + "/" + name).Get(), &ref), 14);
        EXPECT_EQ(log.Take(), std::vector<Logged>{NotFound("caf%C3%A9")});
        EXPECT_TRUE(SameBytes(ref, FilledRef(0x41)));
    }
}

TEST_F(RetryTest, AURIFindsAComposedFileByEitherText)
{
    directory.File(kComposed, "x");
    for (char const* const name : {kComposed, kDecomposed})
        EXPECT_EQ(IURIGetFSRef(MakeURI(Dir() + "/" + name).Get(), &ref), 0);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(RetryTest, AnotherURIFindsWhatItsPathSaysAtOnce)
{
    directory.File(kDecomposed, "x");
    ScriptedRegistry const& registry = UseScriptedRegistry();
    EXPECT_EQ(IURIGetFSRef(Fake(kDecomposed).Get(), &ref), 0);
    EXPECT_TRUE(registry.asked.empty());
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(RetryTest, TheSecondAttemptFindsAComposedFileForADecomposedPath)
{
    directory.File(kComposed, "x");
    EXPECT_EQ(IURIGetFSRef(Fake(kDecomposed).Get(), &ref), 0);
    EXPECT_EQ(log.Take(), kNothing);
    IURIPtr uri;
    EXPECT_EQ(FSRefToIURI(ref, uri), 0);
    EXPECT_EQ(uri->GetPath().ToUTF8(), Dir() + "/" + kComposed);
}

TEST_F(RetryTest, ARelativeURIKeepsItsDecomposedPathAndIsRetriedToo)
{
    setenv("TMPDIR", Dir().c_str(), 1);
    auto const uri = COREREGISTRY::CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
    EXPECT_EQ(uri->Init(FILE_SYS::kTemporaryDir, u"", u"", 0, kDecomposed, true), 0);
    unsetenv("TMPDIR");
    EXPECT_EQ(IURIGetFSRef(uri.Get(), &ref), 14);
    EXPECT_EQ(log.Take(), std::vector<Logged>{NotFound("caf%C3%A9")});
    directory.File(kComposed, "x");
    EXPECT_EQ(IURIGetFSRef(uri.Get(), &ref), 0);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(RetryTest, TheSecondAttemptIsMadeWithATemporaryURIOfTheDecomposedPath)
{
    directory.File(kDecomposed, "x");
    ScriptedRegistry const& registry = UseFakes(u"", true);
    auto const uri = Fake(kComposed);
    EXPECT_EQ(IURIGetFSRef(uri.Get(), &ref), 0);
    EXPECT_TRUE(registry.asked == std::vector<GUID>{IO::IID_IURI});
    // The URI's path for each attempt, the temporary's for its own; then that is gone.
    EXPECT_EQ(TakeEvents(), (Events{"path", "path", "init " + Dir() + "/" + kDecomposed, "path", "died"}));
    EXPECT_EQ(CountOf(*uri), 1);
    EXPECT_EQ(log.Take(), kNothing);
}

TEST_F(RetryTest, ThereIsNoThirdAttempt)
{
    ScriptedRegistry const& registry = UseFakes(u"", true);
    EXPECT_EQ(IURIGetFSRef(Fake(kComposed).Get(), &ref), 14);
    EXPECT_EQ(registry.asked.size(), 1u);
    EXPECT_EQ(log.Take(), std::vector<Logged>{NotFound("cafe%CC%81")});
    EXPECT_TRUE(SameBytes(ref, FilledRef(0x41)));
}

TEST_F(RetryTest, PlainNamesAreRetriedAsWell)
{
    ScriptedRegistry const& registry = UseFakes(u"", true);
    EXPECT_EQ(IURIGetFSRef(Fake("plain").Get(), &ref), 14);
    EXPECT_EQ(registry.asked.size(), 1u);
    EXPECT_EQ(log.Take(), std::vector<Logged>{NotFound("plain")});
}

TEST_F(RetryTest, ATemporaryURIWithoutAPathEndsIt)
{
    UseFakes(u"", false);
    EXPECT_EQ(IURIGetFSRef(Fake("a").Get(), &ref), 14);
    EXPECT_EQ(log.Take(),
              (std::vector<Logged>{
                  kNoURL,
                  {kSource, kGet, 216,
                   "Unable to create CFURL for given IURI (IURICreateCFURL failed with error: 14"}}));
    EXPECT_EQ(TakeEvents().back(), "died");
    EXPECT_TRUE(SameBytes(ref, FilledRef(0x41)));
}

TEST_F(RetryTest, WithoutATemporaryURITheSecondAttemptIsMadeWithNone)
{
    Logged const createFailed{kSource, kGet, 216,
                              "Unable to create CFURL for given IURI (IURICreateCFURL failed with error: 13"};
    UseScriptedRegistry();
    EXPECT_EQ(IURIGetFSRef(Fake("a").Get(), &ref), 13);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{kNoObject, kCreateNull, createFailed}));
    COREREGISTRY::InstallCoreRegistry(nullptr);
    EXPECT_EQ(IURIGetFSRef(Fake("a").Get(), &ref), 13);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{kNoFactory, kCreateNull, createFailed}));
    EXPECT_TRUE(SameBytes(ref, FilledRef(0x41)));
}
} // namespace
} // namespace KORVA::TESTS
