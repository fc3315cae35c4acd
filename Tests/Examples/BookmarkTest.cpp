// The plug-in of the bookmarks: its objects in files, whole, damaged, and while it is not loaded.
#include "Integration/HostTest.h"
#include "Support/Bytes.h"
#include "Support/RowName.h"
#include "bookmark/IBookmark.h"

#include <cstdlib>

namespace KORVA::TESTS
{
namespace
{
using BOOKMARKS::IBookmark;
using BOOKMARKS::IID_BOOKMARK;
using COREREGISTRY::CreateObject;
using IO::IDataProvider;

constexpr int64 kDate = 1'700'000'000'123'456'789;

class BookmarkTest : public HostTest
{
protected:
    BookmarkTest()
    {
        setenv("HOME", "/home/ada", 1);
        setenv("XDG_CONFIG_HOME", "/none", 1);
        std::string error;
        EXPECT_TRUE(host->LoadPlugIn(TESSIO_BOOKMARK_PLUGIN, error)) << error;
    }

    static TInterfacePtr<IBookmark> Made()
    {
        auto bookmark = CreateObject<IBookmark>(IID_BOOKMARK);
        bookmark->SetTitle(u"Chapter 3");
        bookmark->SetDate(kDate);
        auto const place = CreateObject<IO::IRelativeURI>(IO::IID_IRELATIVE_URI);
        place->Init(FILE_SYS::kDocumentsDir, u"file", u"", 0, u"books/a.txt", true);
        bookmark->SetPlace(place.Get());
        bookmark->GetRemarks()->Put(1, 31);
        bookmark->GetRemarks()->Put(2, u"again", 5);
        return bookmark;
    }

    static TInterfacePtr<IDataProvider> Memory()
    {
        auto memory = CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
        memory->InitHandleBased(IO::kStreamReadWrite);
        return memory;
    }

    static TInterfacePtr<IO::IDataProviderStream> Over(IDataProvider& provider)
    {
        auto stream = CreateObject<IO::IDataProviderStream>(IO::IID_DATAPROVIDERSTREAM);
        stream->Init(provider);
        return stream;
    }

    static Bytes Saved(IObject const& object)
    {
        auto const memory = Memory();
        *Over(*memory) << object;
        Bytes bytes(static_cast<std::size_t>(memory->Size()));
        auto count = static_cast<int32>(bytes.size());
        memory->SetPosition(0, IDataProvider::kFromStart);
        EXPECT_EQ(memory->Read(bytes.data(), count), 0);
        return bytes;
    }

    /// The first object in the bytes, with a number behind it that must be found again.
    static TInterfacePtr<IBookmark> Loaded(Bytes const& bytes)
    {
        auto const memory = Memory();
        memory->Write(bytes.data(), bytes.size());
        auto const stream = Over(*memory);
        *stream << 4711;
        memory->SetPosition(0, IDataProvider::kFromStart);
        TInterfacePtr<IBookmark> loaded;
        int behind = 0;
        *stream >> loaded.Out() >> behind;
        EXPECT_EQ(behind, 4711);
        return loaded;
    }

    static std::string PathOf(IBookmark const& bookmark)
    {
        STRING::CoreString path(u"unchanged");
        ErrCode const code = bookmark.GetPath(path);
        return code == 0 ? path.ToUTF8() : path.ToUTF8() + " " + std::to_string(code);
    }

    static std::string RemarksOf(IBookmark const& bookmark)
    {
        int page = -1;
        UniChar const* text = nullptr;
        int count = 0;
        static_cast<void>(bookmark.GetRemarks()->Get(1, page));
        static_cast<void>(bookmark.GetRemarks()->Get(2, &text, count));
        return std::to_string(bookmark.GetRemarks()->Size()) + " " + std::to_string(page) + " " +
               STRING::CoreString(text, static_cast<std::size_t>(count)).ToUTF8();
    }
};

TEST_F(BookmarkTest, ANewOneHasRemarksAndNothingElse)
{
    auto const bookmark = CreateObject<IBookmark>(IID_BOOKMARK);
    EXPECT_EQ(bookmark->GetTitle().ToUTF8(), "");
    EXPECT_EQ(bookmark->GetDate(), 0);
    EXPECT_EQ(bookmark->GetPlace(), nullptr);
    EXPECT_EQ(PathOf(*bookmark), "unchanged 26");
    ASSERT_TRUE(bookmark->GetRemarks());
    EXPECT_EQ(bookmark->GetRemarks()->Size(), 0u);
}

TEST_F(BookmarkTest, SurvivesAFile)
{
    Save("marks.tess", {Made().Get()});
    TInterfacePtr<IO::IDataProviderStream> stream;
    ASSERT_EQ(FileNamed("marks.tess")->Read(stream), 0);
    TInterfacePtr<IBookmark> loaded;
    *stream >> loaded.Out();
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetTitle().ToUTF8(), "Chapter 3");
    EXPECT_EQ(loaded->GetDate(), kDate);
    EXPECT_EQ(PathOf(*loaded), "/home/ada/Documents/books/a.txt");
    EXPECT_EQ(RemarksOf(*loaded), "2 31 again");
}

TEST_F(BookmarkTest, IsFoundWhereTheDirectoryOfItsReaderIs)
{
    Bytes const bytes = Saved(*Made());
    setenv("HOME", "/home/bob", 1);
    EXPECT_EQ(PathOf(*Loaded(bytes)), "/home/bob/Documents/books/a.txt");
}

TEST_F(BookmarkTest, MayBeWithoutAPlace)
{
    auto const bookmark = Made();
    bookmark->SetPlace(nullptr);
    auto const loaded = Loaded(Saved(*bookmark));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(PathOf(*loaded), "unchanged 26");
    EXPECT_EQ(RemarksOf(*loaded), "2 31 again");
    EXPECT_EQ(loaded->GetTitle().ToUTF8(), "Chapter 3");
}

TEST_F(BookmarkTest, HasTheseBytes)
{
    auto const bookmark = CreateObject<IBookmark>(IID_BOOKMARK);
    bookmark->SetDate(1);
    bookmark->SetTitle(u"A");
    EXPECT_EQ(ToHex(Saved(*bookmark)),
              // Class id, length, date.
              "63 97 71 4B CA 66 4E 44 BA 4F 50 DB 75 E4 53 11 52 00 00 00 00 00 00 00 "
              "01 00 00 00 00 00 00 00 "
              // No place.
              "00 00 00 00 00 00 00 00 FF FF FF FF FF FF FF FF "
              // 32 bytes of remarks: an empty dictionary.
              "20 00 00 00 00 00 00 00 DF FF FF FF FF FF FF FF "
              "D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05 08 00 00 00 00 00 00 00 "
              "00 00 00 00 00 00 00 00 "
              // The title, and no aggregates.
              "02 00 00 00 41 00 00 00 00 00");
}

struct Whole
{
    char const* name;
    bool hasPlace;
    char const* path;
};

/// Every byte of the body, one after the other, with every other value.
class DamagedByte : public BookmarkTest, public ::testing::WithParamInterface<Whole>
{
};

/// And what stands behind the bookmark is found.
TEST_P(DamagedByte, CostsOneMemberAtMost)
{
    auto const bookmark = Made();
    if (!GetParam().hasPlace)
        bookmark->SetPlace(nullptr);
    Bytes const whole = Saved(*bookmark);
    constexpr std::size_t kHeader = 24;
    constexpr std::size_t kAggregateCount = 4;
    int lostPlaces = 0;
    int lostRemarks = 0;
    for (std::size_t at = kHeader; at < whole.size() - kAggregateCount; ++at)
        for (unsigned change = 1; change < 256; ++change)
        {
            SCOPED_TRACE(std::to_string(at) + ": ^" + std::to_string(change));
            Bytes damaged = whole;
            damaged[at] ^= static_cast<Bytes::value_type>(change);
            auto const loaded = Loaded(damaged);
            ASSERT_TRUE(loaded);
            bool const title = loaded->GetTitle().ToUTF8() != "Chapter 3";
            bool const date = loaded->GetDate() != kDate;
            bool const place = PathOf(*loaded) != GetParam().path;
            bool const remarks = RemarksOf(*loaded) != "2 31 again";
            EXPECT_LE(title + date + place + remarks, 1);
            lostPlaces += place;
            lostRemarks += remarks;
            log.Take();
        }
    EXPECT_EQ(lostPlaces > 20 * 255, GetParam().hasPlace);
    EXPECT_GT(lostRemarks, 20 * 255);
}

Whole const kWhole[] = {{"WithAPlace", true, "/home/ada/Documents/books/a.txt"},
                        {"WithoutAPlace", false, "unchanged 26"}};

INSTANTIATE_TEST_SUITE_P(Bookmarks, DamagedByte, ::testing::ValuesIn(kWhole), RowName());

/// Cut anywhere, and followed by nothing: what could be read is there, and nothing breaks.
TEST_F(BookmarkTest, KeepsWhatIsInFrontOfTheEndOfItsFile)
{
    Bytes const whole = Saved(*Made());
    for (std::size_t size = 24; size < whole.size(); ++size)
    {
        SCOPED_TRACE(size);
        auto const memory = CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
        memory->InitReadOnlyMem(whole.data(), static_cast<int32>(size));
        TInterfacePtr<IBookmark> loaded;
        *Over(*memory) >> loaded.Out();
        ASSERT_TRUE(loaded);
        EXPECT_EQ(loaded->GetDate(), size >= 32 ? kDate : 0);
    }
    log.Take();
}

struct Foreign
{
    char const* name;
    /// Where the record of the member begins.
    std::size_t record;
    char const* expectedPath;
    char const* expectedRemarks;
};

/// A record of another class where a member is expected.
class ForeignMember : public BookmarkTest, public ::testing::WithParamInterface<Foreign>
{
};

TEST_P(ForeignMember, CostsThatMemberOnly)
{
    Bytes bytes = Saved(*Made());
    // {CD210A56-284C-4B7C-813F-42ADDF774853}: the string dictionary, as little-endian bytes.
    Bytes const strings = Hex("56 0A 21 CD 4C 28 7C 4B 81 3F 42 AD DF 77 48 53");
    std::copy(strings.begin(), strings.end(), bytes.begin() + static_cast<long>(GetParam().record));
    auto const loaded = Loaded(bytes);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(PathOf(*loaded), GetParam().expectedPath);
    EXPECT_EQ(RemarksOf(*loaded), GetParam().expectedRemarks);
    EXPECT_EQ(loaded->GetTitle().ToUTF8(), "Chapter 3");
    EXPECT_EQ(loaded->GetDate(), kDate);
    log.Take();
}

// The place's record stands behind header, date and length; it has 24 + 4 + 8 + 4 + 4 + 4 + 22 + 4 + 4 bytes.
Foreign const kForeign[] = {{"Place", 48, "unchanged 26", "2 31 again"},
                            {"Remarks", 142, "/home/ada/Documents/books/a.txt", "0 -1 "}};

INSTANTIATE_TEST_SUITE_P(Members, ForeignMember, ::testing::ValuesIn(kForeign), RowName());

struct Crafted
{
    char const* name;
    /// The two lengths in front of the place, which agree.
    char const* lengths;
};

/// Lengths that no damage makes.
class CraftedLengths : public BookmarkTest, public ::testing::WithParamInterface<Crafted>
{
};

TEST_P(CraftedLengths, CostNothing)
{
    Bytes bytes = Saved(*Made());
    Bytes const lengths = Hex(GetParam().lengths);
    std::copy(lengths.begin(), lengths.end(), bytes.begin() + 32);
    auto const loaded = Loaded(bytes);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(PathOf(*loaded), "/home/ada/Documents/books/a.txt");
    EXPECT_EQ(RemarksOf(*loaded), "2 31 again");
    EXPECT_EQ(loaded->GetTitle().ToUTF8(), "Chapter 3");
    EXPECT_EQ(loaded->GetDate(), kDate);
}

Crafted const kCrafted[] = {
    {"Largest", "FF FF FF FF FF FF FF 7F 00 00 00 00 00 00 00 80"},
    {"Smallest", "00 00 00 00 00 00 00 80 FF FF FF FF FF FF FF 7F"},
    {"BehindTheEnd", "00 10 00 00 00 00 00 00 FF EF FF FF FF FF FF FF"},
    {"Backwards", "D0 FF FF FF FF FF FF FF 2F 00 00 00 00 00 00 00"},
};

INSTANTIATE_TEST_SUITE_P(Lengths, CraftedLengths, ::testing::ValuesIn(kCrafted), RowName());

TEST_F(BookmarkTest, IsLoadedOnceByWhateverName)
{
    std::string const other = "/." + std::string(TESSIO_BOOKMARK_PLUGIN);
    std::string error;
    EXPECT_FALSE(host->LoadPlugIn(other, error));
    EXPECT_EQ(error, other + ": KorvaPlugInInit answered -50");
    Bytes const bytes = Saved(*Made());
    EXPECT_TRUE(host->UnloadPlugIn(TESSIO_BOOKMARK_PLUGIN, error)) << error;
    EXPECT_FALSE(Loaded(bytes));
    EXPECT_TRUE(host->LoadPlugIn(other, error)) << error;
    EXPECT_TRUE(Loaded(bytes));
}

TEST_F(BookmarkTest, IsSkippedWhileThePlugInIsNotLoaded)
{
    Bytes const bytes = Saved(*Made());
    std::string error;
    ASSERT_TRUE(host->UnloadPlugIn(TESSIO_BOOKMARK_PLUGIN, error)) << error;
    EXPECT_FALSE(Loaded(bytes));
    ASSERT_TRUE(host->LoadPlugIn(TESSIO_BOOKMARK_PLUGIN, error)) << error;
    EXPECT_TRUE(Loaded(bytes));
}
} // namespace
} // namespace KORVA::TESTS
