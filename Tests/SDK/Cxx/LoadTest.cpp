// Loading: what is there, or what is the matter.
#include <tessio/Cxx/Load.h>

#include "Platform/Source/ChildProcess.h"
#include "SDK/Cxx/Note.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/Cxx/Dictionary.h>
#include <tessio/Cxx/StringDictionary.h>

namespace KORVA::TESTS
{
namespace
{
using CXX::ByteOrder;
using CXX::Dictionary;
using CXX::Load;
using CXX::URI;
namespace fs = std::filesystem;

class CxxLoad : public LibraryTest
{
protected:
    CxxLoad() { COREREGISTRY::RegisterNewFactory<NoteFactory>(Registry()); }

    fs::path Path(std::string const& name) const { return directory.Path() / name; }

    /// A file of these bytes.
    fs::path File(Bytes const& bytes) const
    {
        return directory.File("a", std::string(bytes.begin(), bytes.end()));
    }

    static Dictionary Sample()
    {
        Dictionary dictionary = Dictionary::Create().value();
        dictionary.Set(1, 7);
        return dictionary;
    }

    TemporaryDirectory directory;
};

TEST_F(CxxLoad, GivesBackWhatWasSavedInBothOrders)
{
    for (ByteOrder const order : {ByteOrder::kLittle, ByteOrder::kBig})
    {
        ASSERT_TRUE(CXX::Save(Path("a"), Sample(), {.order = order}));
        EXPECT_EQ(Load<Dictionary>(Path("a"))->Get<int>(1).value(), 7);
        EXPECT_EQ(Load<Dictionary>(Path("a"), {.order = order})->Get<int>(1).value(), 7);
        EXPECT_EQ(Load<Dictionary>(URI::FromPath(Path("a")).value())->Size(), 1u);
        EXPECT_EQ(CXX::LoadAll(Path("a"))->order, order);
    }
    EXPECT_EQ(Load<Dictionary>(Path("a"), {.order = ByteOrder::kLittle}).error().Code(), 2021);
    ASSERT_TRUE(CXX::Save(Path("note"), MakeNote(5)));
    EXPECT_EQ((*Load<CXX::Handle<INote>>(Path("note")))->Number(), 5);
    EXPECT_TRUE(Load<CXX::Object>(Path("note")));
    ASSERT_TRUE(CXX::Save(Path("uri"), URI::FromText("http://h.example/a").value()));
    EXPECT_EQ(Load<URI>(Path("uri"))->Host(), "h.example");
    EXPECT_EQ(Load<CXX::StringDictionary>(Path("uri")).error().Code(), 2024);
}

TEST_F(CxxLoad, FromMemory)
{
    auto const bytes = CXX::ToBytes(Sample(), {.order = ByteOrder::kBig}).value();
    EXPECT_EQ(CXX::FromBytes<Dictionary>(bytes)->Get<int>(1).value(), 7);
    EXPECT_EQ(CXX::FromBytes<Dictionary>(std::span(bytes).first(83)).error().Code(), 2022);
    EXPECT_EQ(CXX::FromBytes<Dictionary>({}).error().Code(), 2021);
}

struct ContentRow
{
    char const* name;
    char const* bytes;
    int code;
    char const* detail;
};

// Class ids: dictionary D5…, value 21…, note 77…, mute 78…; AA… is nobody's.
ContentRow const kContents[] = {
    {"Empty", "", 2021, "there is nothing in it"},
    {"OneByte", "D5", 2021, ""},
    {"Text", "54 68 69 73 20 69 73 20 6E 6F 20 72 65 63 6F 72 64 20 61 74 20 61 6C 6C 2E", 2021, ""},
    {"Zeros", "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00", 2021, ""},
    {"IdAlone", "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05", 2022, ""},
    {"HalfAHead", "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 04 00 00", 2022, ""},
    {"CutBody",
     "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 08 00 00 00 00 00 00 00 00 00 00 00 00 00 00", 2022,
     ""},
    {"NegativeLength", "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 FB FF FF FF FF FF FF FF", 2025,
     "its length is -5"},
    {"GreatLength", "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 00 00 00 80 00 00 00 00", 2025,
     "its length is 2147483648"},
    {"UnknownClass", "AA 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 01 00 00 00 00 00 00 00 FF", 2023,
     "{030201AA-0504-0706-0809-0A0B0C0D0E0F}"},
    {"UnknownClassBigEndian", "AA 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 00 00 00 00 00 00 00 01 FF",
     2023, "{AA010203-0405-0607-0809-0A0B0C0D0E0F}"},
    {"NotPersistent", "78 3E 1C 5A B2 90 1F 4D A0 3B 6C 11 D4 52 88 0E 00 00 00 00 00 00 00 00", 2011,
     "{5A1C3E78-90B2-4D1F-A03B-6C11D452880E}"},
    {"OtherClass", "77 3E 1C 5A B2 90 1F 4D A0 3B 6C 11 D4 52 88 0E 00 00 00 00 00 00 00 00", 2024,
     "{5A1C3E77-90B2-4D1F-A03B-6C11D452880E}"},
    {"MoreBehind",
     "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 08 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FF",
     2026, ""},
    // A count of entries that are not there.
    {"FalseCount",
     "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 08 00 00 00 00 00 00 00 05 00 00 00 00 00 00 00", 2025,
     ""},
    {"LeftOver",
     "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 0A 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 FF FF",
     2025, ""},
    // One entry of a class that nothing makes.
    {"UnknownInside",
     "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 25 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 AA 01 "
     "02 03 "
     "04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 01 00 00 00 00 00 00 00 FF 00 00 00 00",
     2025, ""},
    {"UnknownInsideOfNoLength",
     "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 24 00 00 00 00 00 00 00 01 00 00 00 01 00 00 00 AA 01 "
     "02 03 "
     "04 05 06 07 08 09 0A 0B 0C 0D 0E 0F 00 00 00 00 00 00 00 00 00 00 00 00",
     2025, ""},
};

class CxxLoadContent : public LibraryTestWith<ContentRow>
{
};

TEST_P(CxxLoadContent, IsToldApart)
{
    COREREGISTRY::RegisterNewFactory<NoteFactory>(Registry());
    TemporaryDirectory const directory;
    Bytes const bytes = Hex(GetParam().bytes);
    fs::path const path = directory.File("a", std::string(bytes.begin(), bytes.end()));
    auto const loaded = Load<Dictionary>(path);
    EXPECT_EQ(loaded.error().Code(), GetParam().code);
    EXPECT_EQ(loaded.error().Operation(), "load");
    EXPECT_EQ(loaded.error().Subject(), CXX::Quoted(path.string()));
    EXPECT_TRUE(loaded.error().Message().ends_with(GetParam().detail)) << loaded.error().Message();
    log.Take();
}

INSTANTIATE_TEST_SUITE_P(Contents, CxxLoadContent, ::testing::ValuesIn(kContents), RowName());

struct FaultRow
{
    char const* name;
    Fault fault;
    int code;
    int kept;
};

FaultRow const kFaults[] = {
    {"Throws", Fault::kThrowsInRead, 2025, 2025},
    {"ReadsTooMuch", Fault::kReadsTooMuch, 2025, 0},
    {"ReadsTooLittle", Fault::kReadsTooLittle, 2025, 0},
    {"Whole", Fault::kNone, 0, 0},
};

class CxxLoadFault : public LibraryTestWith<FaultRow>
{
};

TEST_P(CxxLoadFault, IsSeen)
{
    COREREGISTRY::RegisterNewFactory<NoteFactory>(Registry());
    TemporaryDirectory const directory;
    fs::path const path = directory.Path() / "a";
    // Something behind, so that too much can be read.
    ASSERT_TRUE(CXX::SaveAll(path, std::vector{MakeNote(5, GetParam().fault), MakeNote(6)}));
    EXPECT_EQ(Load<CXX::Object>(path, {.ignoreRest = true}).error().Code(), GetParam().code);
    EXPECT_EQ(Load<CXX::Object>(path, {.keepDamaged = true, .ignoreRest = true}).error().Code(),
              GetParam().kept);
    auto const all = CXX::LoadAll(path).value();
    EXPECT_EQ(all.objects.size(), GetParam().code == 0 ? 2u : 1u);
    EXPECT_EQ(all.skipped.size(), GetParam().code == 0 ? 0u : 1u);
    EXPECT_FALSE(all.stopped);
    log.Take();
}

INSTANTIATE_TEST_SUITE_P(Faults, CxxLoadFault, ::testing::ValuesIn(kFaults), RowName());

TEST_F(CxxLoad, SaysWhyAFileCannotBeOpened)
{
    EXPECT_EQ(Load<Dictionary>(Path("missing")).error().Message(),
              "cannot load " + CXX::Quoted(Path("missing").string()) +
                  ": no such file or directory (kFileNotFound)");
    EXPECT_EQ(Load<Dictionary>(Path("no/such")).error().Code(), 26);
    EXPECT_EQ(Load<Dictionary>(directory.Path()).error().Code(), 2014);
    EXPECT_EQ(Load<Dictionary>("/dev/null").error().Code(), 2014);
    EXPECT_EQ(Load<Dictionary>("").error().Code(), 26);
    EXPECT_EQ(Load<Dictionary>(URI::FromText("http://h.example/a").value()).error().Code(), 2013);
}

TEST_F(CxxLoad, WithoutPermissionIsRefused)
{
    ASSERT_TRUE(CXX::Save(Path("a"), Sample()));
    fs::permissions(Path("a"), fs::perms::none);
    EXPECT_EQ(RunUnprivileged([this] { return Load<Dictionary>(Path("a")).error().Code(); }), 36);
    fs::permissions(Path("a"), fs::perms::all);
    fs::create_directory(Path("d"));
    fs::rename(Path("a"), Path("d/a"));
    fs::permissions(Path("d"), fs::perms::none);
    EXPECT_EQ(RunUnprivileged([this] { return Load<Dictionary>(Path("d/a")).error().Code(); }), 36);
    fs::permissions(Path("d"), fs::perms::all);
}

TEST_F(CxxLoad, DoesNotLookAtLocks)
{
    ASSERT_TRUE(CXX::Save(Path("a"), Sample()));
    LockHolder const holder(Path("a"), LOCK_EX);
    EXPECT_TRUE(Load<Dictionary>(Path("a")));
}

TEST_F(CxxLoad, AllTellsWhatItSkipped)
{
    std::vector<CXX::Object> const objects{CXX::Object(*Sample()), CXX::Object(*MakeNote(5)),
                                           CXX::Object(*MakeNote(6, Fault::kThrowsInRead)),
                                           CXX::Object(*Sample())};
    ASSERT_TRUE(CXX::SaveAll(Path("a"), objects));
    auto const all = CXX::LoadAll(Path("a")).value();
    EXPECT_EQ(all.objects.size(), 3u);
    ASSERT_EQ(all.skipped.size(), 1u);
    EXPECT_EQ(all.skipped[0].Subject(), "the record at 120 of " + CXX::Quoted(Path("a").string()));
    EXPECT_FALSE(all.stopped);
    auto const dictionaries = CXX::LoadAll<Dictionary>(Path("a")).value();
    EXPECT_EQ(dictionaries.objects.size(), 2u);
    ASSERT_EQ(dictionaries.skipped.size(), 2u);
    EXPECT_EQ(dictionaries.skipped[0].Code(), 2024);
    EXPECT_EQ(dictionaries.skipped[1].Code(), 2024) << "of another class, so nobody looks at its body";
    log.Take();
}

TEST_F(CxxLoad, AllStopsWhereTheFileIsCut)
{
    ASSERT_TRUE(CXX::SaveAll(Path("a"), std::vector{Sample(), Sample()}));
    fs::resize_file(Path("a"), 160);
    auto const all = CXX::LoadAll(Path("a")).value();
    EXPECT_EQ(all.objects.size(), 1u);
    EXPECT_TRUE(all.skipped.empty());
    ASSERT_TRUE(all.stopped);
    EXPECT_EQ(all.stopped->Code(), 2022);
    EXPECT_EQ(CXX::LoadAll(Path("missing")).error().Code(), 26);
}

template <class T>
concept Loadable = requires
{
    CXX::Load<T>("a");
};

static_assert(Loadable<Dictionary> && Loadable<CXX::StringDictionary> && Loadable<CXX::Handle<INote>>);
static_assert(!Loadable<int> && !Loadable<IDictionary> && !Loadable<TInterfacePtr<IDictionary>>);
} // namespace
} // namespace KORVA::TESTS
