// Saving: whole or not at all.
#include <tessio/Cxx/Save.h>

#include "Platform/Source/ChildProcess.h"
#include "Platform/Source/ResourceLimit.h"
#include "SDK/Cxx/Note.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/Cxx/Dictionary.h>
#include <tessio/Cxx/File.h>
#include <tessio/Cxx/Load.h>
#include <tessio/TessIO/TessIO.h>

#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

namespace KORVA::TESTS
{
namespace
{
constexpr GUID kFacet{0x11223344, 0x5566, 0x7788, {1, 2, 3, 4, 5, 6, 7, 8}};

using CXX::ByteOrder;
using CXX::Dictionary;
using CXX::Save;
using CXX::URI;
namespace fs = std::filesystem;

/// Key 1 with the 32-bit integer 7.
constexpr char kLittle[] =
    "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 3C 00 00 00 00 00 00 00 01 00 00 00 "
    "01 00 00 00 21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 18 00 00 00 00 00 00 00 "
    "56 32 33 53 07 00 00 00 00 00 00 00 00 00 00 00 00 00 1C 40 00 00 00 00 00 00 00 00";
constexpr char kBig[] = "73 E9 0C D5 BB C6 43 26 82 41 9B B4 25 0B 1B 05 00 00 00 00 00 00 00 3C 00 00 00 01 "
                        "00 00 00 01 73 E9 0C 21 BB C6 43 26 82 41 9B B4 25 0B 1B 05 00 00 00 00 00 00 00 18 "
                        "53 33 32 56 00 00 00 00 00 00 00 07 40 1C 00 00 00 00 00 00 00 00 00 00 00 00 00 00";

class CxxSave : public LibraryTest
{
protected:
    CxxSave()
    {
        COREREGISTRY::RegisterNewFactory<NoteFactory>(Registry());
        dictionary.Set(1, 7);
    }

    fs::path Path(std::string const& name) const { return directory.Path() / name; }

    static std::string HexOf(fs::path const& path)
    {
        std::string const content = Content(path);
        return ToHex(Bytes(content.begin(), content.end()));
    }

    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (auto const& entry : fs::directory_iterator(directory.Path()))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    using List = std::vector<std::string>;

    TemporaryDirectory directory;
    Dictionary dictionary = Dictionary::Create().value();
};

TEST_F(CxxSave, WritesTheRecord)
{
    ASSERT_TRUE(Save(Path("a"), dictionary));
    EXPECT_EQ(HexOf(Path("a")), kLittle);
    ASSERT_TRUE(Save(Path("a"), dictionary, {.order = ByteOrder::kBig}));
    EXPECT_EQ(HexOf(Path("a")), kBig);
    ASSERT_TRUE(Save(Path("a"), *dictionary, {.order = ByteOrder::kLittle}));
    EXPECT_EQ(HexOf(Path("a")), kLittle);
    EXPECT_EQ(Names(), List{"a"});
}

TEST_F(CxxSave, ToMemory)
{
    auto const bytes = CXX::ToBytes(dictionary, {.order = ByteOrder::kBig}).value();
    EXPECT_EQ(bytes.size(), 84u);
    EXPECT_EQ(bytes[0], std::byte{0x73});
    EXPECT_EQ(CXX::ToBytes(CXX::Create<CXX::Object>(IID_MUTE).value()).error().Code(), 2011);
}

TEST_F(CxxSave, ToWhatAURINames)
{
    ASSERT_TRUE(Save(URI::FromPath(Path("what?")).value(), dictionary));
    EXPECT_EQ(HexOf(Path("what?")), kLittle);
    ASSERT_TRUE(Save(URI::FromText("file://localhost" + Path("b").string()).value(), dictionary));
    EXPECT_EQ(Names(), (List{"b", "what?"}));
}

struct RefusedRow
{
    char const* name;
    char const* uri;
    int code;
};

/// A `@` stands for the test's directory, and so does a `#`.
RefusedRow const kRefused[] = {
    {"OtherScheme", "http://h.example@/a", 2013},
    {"OtherHost", "file://server@/a", 2013},
    {"NetworkPath", "\\\\server\\share\\a", 2013},
    {"NoScheme", "name.txt", 2013},
    {"Query", "file://@/a?b", 13},
    {"EmptyQuery", "@/a?", 13},
    {"QueryThatEndsAsThePath", "file://@/a?b#/a", 13},
    {"NoPath", "file://", 13},
};

class CxxSaveToURI : public LibraryTestWith<RefusedRow>
{
};

TEST_P(CxxSaveToURI, IsRefused)
{
    TemporaryDirectory const directory;
    std::string text = GetParam().uri;
    for (char const mark : {'@', '#'})
        if (std::size_t const at = text.find(mark); at != std::string::npos)
            text.replace(at, 1, directory.Path().string());
    URI const uri = URI::FromText(text).value();
    Dictionary const dictionary = Dictionary::Create().value();
    auto const saved = Save(uri, dictionary);
    EXPECT_EQ(saved.error().Code(), GetParam().code) << saved.error().Message();
    EXPECT_TRUE(fs::is_empty(directory.Path()));
    if (uri.Scheme() == "file")
    {
        EXPECT_EQ(CXX::Load<Dictionary>(uri).error().Code(), GetParam().code);
    }
}

INSTANTIATE_TEST_SUITE_P(URIs, CxxSaveToURI, ::testing::ValuesIn(kRefused), RowName());

TEST_F(CxxSave, KeepsPermissionsAndFollowsLinks)
{
    directory.File("a", "old");
    ASSERT_EQ(chmod(Path("a").c_str(), 0640), 0);
    fs::create_symlink("a", Path("link"));
    ASSERT_TRUE(Save(Path("link"), dictionary));
    EXPECT_TRUE(fs::is_symlink(Path("link")));
    EXPECT_EQ(HexOf(Path("a")), kLittle);
    EXPECT_EQ(fs::status(Path("a")).permissions(), fs::perms{0640});
}

TEST_F(CxxSave, OfWhatCannotBeSavedTouchesNothing)
{
    directory.File("a", "old");
    auto const mute = Save(Path("a"), CXX::Create<CXX::Object>(IID_MUTE).value());
    EXPECT_EQ(mute.error().Message(), "cannot save " + CXX::Quoted(Path("a").string()) +
                                          ": the object is not persistent (kNotPersistent)");
    EXPECT_EQ(Save(Path("a"), MakeNote(1, Fault::kThrowsInWrite)).error().Code(), 2012);
    EXPECT_EQ(Save(Path("b"), MakeNote(1, Fault::kThrowsInWrite)).error().Code(), 2012);
    EXPECT_EQ(Content(Path("a")), "old");
    EXPECT_EQ(Names(), List{"a"});
    log.Take();
}

TEST_F(CxxSave, OfWhatCannotBeSavedInside)
{
    directory.File("a", "old");
    ASSERT_TRUE(dictionary.Set(2, MakeNote(1, Fault::kThrowsInWrite)));
    EXPECT_EQ(Save(Path("a"), dictionary).error().Code(), 2012) << "a value";

    Dictionary deeper = Dictionary::Create().value();
    ASSERT_TRUE(deeper.Set(1, dictionary));
    EXPECT_EQ(Save(Path("a"), deeper).error().Code(), 2012) << "a value of a value";

    auto const note = MakeNote(1);
    note->Aggregate(&*MakeNote(2, Fault::kThrowsInWrite), kFacet);
    EXPECT_EQ(Save(Path("a"), note).error().Code(), 2012) << "an aggregate";

    Dictionary const inner = Dictionary::Create().value();
    Dictionary outer = Dictionary::Create().value();
    ASSERT_TRUE(outer.Set(1, inner));
    ASSERT_TRUE(outer.Set(2, inner));
    (*inner).Put(1, &*outer);
    (*inner).Put(2, &*outer);
    EXPECT_EQ(Save(Path("a"), outer).error().Code(), 2012) << "a circle";
    (*inner).Clear();
    EXPECT_TRUE(Save(Path("b"), outer)) << "and no longer";

    // Each of three holds the other two.
    CXX::Handle<INote> const notes[] = {MakeNote(1), MakeNote(2), MakeNote(3)};
    for (auto const& holder : notes)
        for (auto const& held : notes)
            if (&holder != &held)
                holder->Aggregate(&*held, {static_cast<uint32>(held->Number()), 0, 0, {}});
    EXPECT_EQ(Save(Path("a"), notes[0]).error().Code(), 2012) << "a circle of aggregates";
    for (auto const& holder : notes)
        holder->ClearAggregates();
    EXPECT_EQ(Content(Path("a")), "old");
    log.Take();
}

TEST_F(CxxSave, OfADeepStructure)
{
    directory.File("a", "old");
    Dictionary top = Dictionary::Create().value();
    for (int level = 2; level <= 1000; ++level)
    {
        Dictionary around = Dictionary::Create().value();
        ASSERT_TRUE(around.Set(1, top));
        top = around;
    }
    EXPECT_TRUE(Save(Path("b"), top)) << "1,000 levels are kept";
    Dictionary above = Dictionary::Create().value();
    ASSERT_TRUE(above.Set(1, top));
    EXPECT_EQ(Save(Path("a"), above).error().Code(), 2012);
    EXPECT_EQ(Content(Path("a")), "old");
    log.Take();
}

TEST_F(CxxSave, ToWhatIsNoFileIsRefused)
{
    fs::create_directory(Path("d"));
    ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(Save(Path("d"), dictionary).error().Code(), 2014);
    EXPECT_EQ(Save(Path("pipe"), dictionary).error().Code(), 2014);
    EXPECT_EQ(Save("/dev/null", dictionary).error().Code(), 2014);
    EXPECT_EQ(Save("", dictionary).error().Code(), 13);
    EXPECT_EQ(Save(Path("\xFF"), dictionary).error().Code(), 2005);
    EXPECT_EQ(Save(Path("missing/a"), dictionary).error().Code(), 26);
    EXPECT_EQ(Names(), (List{"d", "pipe"}));
}

TEST_F(CxxSave, LeavesAFileThatSomebodyElseWrites)
{
    directory.File("a", "old");
    {
        LockHolder const writer(Path("a"), LOCK_SH);
        EXPECT_EQ(Save(Path("a"), dictionary).error().Code(), 40);
    }
    EXPECT_EQ(Content(Path("a")), "old");
    {
        CXX::Stream const reader = CXX::File::At(Path("a"))->Read().value();
        EXPECT_TRUE(Save(Path("a"), dictionary)) << "readers keep the old file";
    }
    CXX::Stream const writer = CXX::File::At(Path("a"))->Write().value();
    EXPECT_EQ(Save(Path("a"), dictionary).error().Code(), 40);
}

TEST_F(CxxSave, WithoutPermissionLeavesTheOldFile)
{
    directory.File("a", "old");
    fs::permissions(directory.Path(), fs::perms{0555});
    EXPECT_EQ(RunUnprivileged([this] { return Save(Path("a"), dictionary).error().Code(); }), 33);
    EXPECT_EQ(Content(Path("a")), "old");
}

TEST_F(CxxSave, LeavesAFileThatMayNotBeWritten)
{
    directory.File("a", "old");
    fs::permissions(directory.Path(), fs::perms{0777});
    fs::permissions(Path("a"), fs::perms{0444});
    EXPECT_EQ(RunUnprivileged([this] { return Save(Path("a"), dictionary).error().Code(); }), 33);
    EXPECT_EQ(Content(Path("a")), "old");
    EXPECT_EQ(Names(), List{"a"});
}

TEST_F(CxxSave, WaitsForOthersThatSave)
{
    directory.File("a", "old");
    auto lock = std::make_unique<LockHolder>(Path("a"), LOCK_EX);
    std::thread other([&lock] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        lock.reset();
    });
    auto const saved = Save(Path("a"), dictionary);
    other.join();
    EXPECT_TRUE(saved) << saved.error().Message();
}

TEST_F(CxxSave, WithoutSpaceLeavesTheOldFile)
{
    directory.File("a", "old");
    ASSERT_TRUE(dictionary.Set(2, std::vector<unsigned char>(100'000, 1)));
    ChildProcess child([this] {
        std::signal(SIGXFSZ, SIG_IGN);
        ResourceLimit const limit(RLIMIT_FSIZE, 50'000);
        return Save(Path("a"), dictionary).error().Code() == CXX::kNoSpace ? 0 : 1;
    });
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(Content(Path("a")), "old");
    EXPECT_EQ(Names(), List{"a"});
}

TEST_F(CxxSave, OnAFullDeviceLeavesTheOldFile)
{
    constexpr int kNoDevice = 77;
    ChildProcess child([this] {
        // A small device of the child's own, gone with it.
        int const space = CLONE_NEWNS | (geteuid() == 0 ? 0 : CLONE_NEWUSER);
        if (unshare(space) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", directory.Path().c_str(), "tmpfs", 0, "size=65536") != 0)
            return kNoDevice;
        if (!Save(Path("a"), dictionary) || !dictionary.Set(2, std::vector<unsigned char>(100'000, 1)))
            return 1;
        if (Save(Path("a"), dictionary).error().Code() != CXX::kNoSpace)
            return 2;
        return HexOf(Path("a")) == kLittle && Names() == List{"a"} ? 0 : 3;
    });
    int const result = child.Wait();
    if (result == kNoDevice)
        GTEST_SKIP() << "this process may not make a device";
    EXPECT_EQ(result, 0);
}

TEST_F(CxxSave, WithoutTheFileSystemSaysSo)
{
    TInterfacePtr<COREREGISTRY::ICoreRegistry> empty;
    empty.Adopt(COREREGISTRY::CreateCoreRegistry());
    COREREGISTRY::InstallCoreRegistry(empty.Get());
    EXPECT_EQ(Save(Path("a"), dictionary).error().Code(), 12);
    ASSERT_EQ(IO::Init(empty.Get()), 0);
    auto const saved = Save(Path("a"), dictionary);
    EXPECT_EQ(saved.error().Code(), 12);
    EXPECT_EQ(saved.error().Subject(), CXX::Quoted(Path("a").string()));
    COREREGISTRY::InstallCoreRegistry(Registry());
    EXPECT_TRUE(Names().empty());
}

TEST_F(CxxSave, OfSeveralPutsOneBehindTheOther)
{
    std::vector<CXX::Object> const objects{CXX::Object(*dictionary), CXX::Object(*MakeNote(5))};
    ASSERT_TRUE(CXX::SaveAll(Path("a"), objects));
    EXPECT_EQ(HexOf(Path("a")).substr(0, 84 * 3 - 1), kLittle);
    EXPECT_EQ(fs::file_size(Path("a")), 84u + 36u);
    ASSERT_TRUE(CXX::SaveAll(Path("a"), std::vector<Dictionary>()));
    EXPECT_EQ(fs::file_size(Path("a")), 0u);
    EXPECT_EQ(
        CXX::SaveAll(Path("a"), std::vector{MakeNote(1), MakeNote(1, Fault::kThrowsInWrite)}).error().Code(),
        2012);
    EXPECT_EQ(fs::file_size(Path("a")), 0u);
    log.Take();
}

TEST_F(CxxSave, AppendsInTheOrderOfTheFile)
{
    ASSERT_TRUE(CXX::Append(Path("a"), dictionary)) << "makes the file";
    EXPECT_EQ(HexOf(Path("a")), kLittle);
    ASSERT_TRUE(Save(Path("a"), dictionary, {.order = ByteOrder::kBig}));
    ASSERT_TRUE(CXX::Append(Path("a"), dictionary));
    EXPECT_EQ(HexOf(Path("a")), std::string(kBig) + " " + kBig);
    directory.File("empty", "");
    ASSERT_TRUE(CXX::Append(Path("empty"), dictionary, {.order = ByteOrder::kBig}));
    EXPECT_EQ(HexOf(Path("empty")), kBig);
}

TEST_F(CxxSave, AppendsOnlyWhereItWouldBeFound)
{
    directory.File("text", "this is no record file, but it is long enough");
    EXPECT_EQ(CXX::Append(Path("text"), dictionary).error().Code(), 2021);
    ASSERT_TRUE(Save(Path("a"), dictionary));
    fs::resize_file(Path("a"), 80);
    EXPECT_EQ(CXX::Append(Path("a"), dictionary).error().Code(), 2022);
    EXPECT_EQ(fs::file_size(Path("a")), 80u);
    EXPECT_EQ(CXX::Append(directory.Path(), dictionary).error().Code(), 2014);
}

struct BehindRow
{
    char const* name;
    /// Behind a record.
    char const* bytes;
    int code;
};

BehindRow const kBehind[] = {
    {"Text", "2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E 2E", 2021},
    {"AFewBytes", "D5 0C E9", 2021},
    {"IdAlone", "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05", 2022},
    {"CutBody", "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 09 00 00 00 00 00 00 00", 2022},
    {"NegativeLength", "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 FB FF FF FF FF FF FF FF", 2025},
};

class CxxAppendBehind : public LibraryTestWith<BehindRow>
{
};

TEST_P(CxxAppendBehind, AnythingElseIsRefused)
{
    TemporaryDirectory const directory;
    Bytes content = Hex(kLittle);
    Bytes const behind = Hex(GetParam().bytes);
    content.insert(content.end(), behind.begin(), behind.end());
    fs::path const path = directory.File("a", std::string(content.begin(), content.end()));
    EXPECT_EQ(CXX::Append(path, Dictionary::Create().value()).error().Code(), GetParam().code);
    EXPECT_EQ(fs::file_size(path), content.size());
}

INSTANTIATE_TEST_SUITE_P(Behind, CxxAppendBehind, ::testing::ValuesIn(kBehind), RowName());

template <class Where, class What>
concept Savable = requires(Where const& where, What const& what)
{
    CXX::Save(where, what);
};

static_assert(Savable<fs::path, Dictionary> && Savable<char const*, CXX::Object> && Savable<URI, Dictionary>);
static_assert(Savable<std::string, IDictionary>);
static_assert(!Savable<fs::path, int> && !Savable<fs::path, IDictionary*>);
static_assert(!Savable<fs::path, CXX::Result<Dictionary>> && !Savable<int, Dictionary>);
} // namespace
} // namespace KORVA::TESTS
