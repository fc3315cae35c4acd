// What of a relative URI is written, byte by byte, and what reading restores.
#include "DirFakes.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr char kNativeBody[] = "08 00 00 00 66 00 69 00 6C 00 65 00 "             // file
                               "02 00 00 00 68 00 "                               // h
                               "50 00 00 00 "                                     // 80
                               "0C 00 00 00 2E 00 2E 00 2F 00 44 00 2F 00 66 00 " // ../D/f
                               "03 00 00 00";                                     // documents
constexpr char kReversedBody[] = "00 00 00 08 00 66 00 69 00 6C 00 65 "
                                 "00 00 00 02 00 68 "
                                 "00 00 00 50 "
                                 "00 00 00 0C 00 2E 00 2E 00 2F 00 44 00 2F 00 66 "
                                 "00 00 00 03";

class RelativeURIPersistenceTest : public RelativeURITest
{
protected:
    static void Read(IO::IRelativeURI& uri, IDataProvider::Endian endian, std::string_view body)
    {
        auto const memory = MakeMemory(endian, Hex(body));
        auto const stream = MakeStream(*memory);
        EXPECT_EQ(&PersistenceOf(uri)->Read(*stream), stream.Get());
        EXPECT_EQ(memory->GetPosition(), static_cast<int64>(Hex(body).size()));
    }
};

TEST_F(RelativeURIPersistenceTest, AdapterServesTheURI)
{
    auto const uri = Below(kDocuments, "f");
    auto const adapter = PersistenceOf(*uri);
    EXPECT_EQ(adapter->GetObj(), uri.Get());
    EXPECT_EQ(adapter->GetUID(),
              (GUID{0x4E278406, 0x081C, 0x48E2, {0x97, 0xC3, 0xC6, 0xC6, 0xD8, 0x72, 0x80, 0xED}}));
    EXPECT_EQ(References(*adapter), 2) << "the table's and this test's";
    EXPECT_EQ(References(*uri), 1);
    auto const memory = MakeMemory(kNative);
    auto const stream = MakeStream(*memory);
    EXPECT_EQ(&adapter->Write(*stream), stream.Get());
}

TEST_F(RelativeURIPersistenceTest, Body)
{
    auto const uri = Below(kDocuments, "../D/f");
    EXPECT_EQ(ToHex(BodyOf(kNative, *uri)), kNativeBody);
    EXPECT_EQ(ToHex(BodyOf(kReversed, *uri)), kReversedBody);
}

TEST_F(RelativeURIPersistenceTest, BodyHoldsNoAbsolutePath)
{
    auto const uri = NewRelative();
    uri->Init(*MakeURI("http://h:80/Users/u/D/f"), 3);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/Users/u/D/f");
    EXPECT_EQ(ToHex(BodyOf(kNative, *uri)), "08 00 00 00 68 00 74 00 74 00 70 00 "
                                            "02 00 00 00 68 00 "
                                            "50 00 00 00 "
                                            "0C 00 00 00 2E 00 2E 00 2F 00 44 00 2F 00 66 00 "
                                            "03 00 00 00");
}

TEST_F(RelativeURIPersistenceTest, BodyOfANewOneIsEmpty)
{
    Bytes body = BodyOf(kNative, *NewRelative());
    ASSERT_EQ(body.size(), 20u);
    body.resize(16);
    EXPECT_EQ(ToHex(body), "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00");
}

TEST_F(RelativeURIPersistenceTest, BodyOfExtremes)
{
    script.paths[-2] = "/a";
    auto const uri = NewRelative();
    EXPECT_EQ(uri->Init(static_cast<FILE_SYS::DirType>(-2), CoreString(), CoreString(), 0xFFFFFFFE,
                        Text(std::u16string_view(u"\xD800\0\xDC00", 3)), true),
              0);
    EXPECT_EQ(ToHex(BodyOf(kNative, *uri)), "00 00 00 00 00 00 00 00 FE FF FF FF "
                                            "06 00 00 00 00 D8 00 00 00 DC FE FF FF FF");
    EXPECT_EQ(ToHex(BodyOf(kReversed, *uri)), "00 00 00 00 00 00 00 00 FF FF FF FE "
                                              "00 00 00 06 D8 00 00 00 DC 00 FF FF FF FE");
    // And back.
    auto const other = NewRelative();
    Read(*other, kNative, "00 00 00 00 00 00 00 00 FE FF FF FF 06 00 00 00 00 D8 00 00 00 DC FE FF FF FF");
    EXPECT_EQ(other->GetPortNumber(), 0xFFFFFFFE);
    EXPECT_TRUE(other->GetRelPath() == Text(std::u16string_view(u"\xD800\0\xDC00", 3)));
    EXPECT_EQ(script.asked, (std::vector<int32>{-2, -2}));
}

TEST_F(RelativeURIPersistenceTest, Record)
{
    auto const uri = Below(kDocuments, "../D/f");
    // 42 bytes of body and 4 of the aggregate count.
    EXPECT_EQ(ToHex(RecordOf(kNative, *uri)),
              std::string("06 84 27 4E 1C 08 E2 48 97 C3 C6 C6 D8 72 80 ED 2E 00 00 00 00 00 00 00 ") +
                  kNativeBody + " 00 00 00 00");
    EXPECT_EQ(ToHex(RecordOf(kReversed, *uri)),
              std::string("4E 27 84 06 08 1C 48 E2 97 C3 C6 C6 D8 72 80 ED 00 00 00 00 00 00 00 2E ") +
                  kReversedBody + " 00 00 00 00");
}

TEST_F(RelativeURIPersistenceTest, RecordMakesANewOne)
{
    for (auto const& [endian, record] :
         {std::pair{kNative,
                    std::string("06 84 27 4E 1C 08 E2 48 97 C3 C6 C6 D8 72 80 ED 2E 00 00 00 00 00 00 00 ") +
                        kNativeBody + " 00 00 00 00"},
          std::pair{kReversed,
                    std::string("4E 27 84 06 08 1C 48 E2 97 C3 C6 C6 D8 72 80 ED 00 00 00 00 00 00 00 2E ") +
                        kReversedBody + " 00 00 00 00"}})
    {
        auto const uri = Load<IO::IRelativeURI>(endian, Hex(record));
        ASSERT_TRUE(uri);
        EXPECT_EQ(References(*uri), 1);
        EXPECT_EQ(StateOf(*uri), (RelativeState{"file", "h", 80, "/", "../D/f", "/Users/u/Documents", 3}));
        EXPECT_EQ(ToHex(RecordOf(endian, *uri)), record) << "it is written again as it was";
    }
}

struct ReadRow
{
    char const* name;
    /// The directory that the object was in, by an empty path; null for a new object.
    char const* before;
    /// The full path after reading.
    char const* after;
};

using RelativeURIReadTest = RelativeURITestWith<ReadRow>;

TEST_P(RelativeURIReadTest, KeepsWhatResolvingMakesOfThePathThatWas)
{
    ReadRow const& row = GetParam();
    auto const uri = NewRelative();
    if (row.before)
    {
        script.paths[kDesktop] = row.before;
        InitBelow(*uri, kDesktop, "");
    }
    auto const memory = MakeMemory(kReversed, Hex(kReversedBody));
    PersistenceOf(*uri)->Read(*MakeStream(*memory));
    EXPECT_EQ(StateOf(*uri), (RelativeState{"file", "h", 80, row.after, "../D/f", "/Users/u/Documents", 3}));
}

ReadRow const kReads[] = {
    {"New", nullptr, "/"},
    {"Used", "/a/b", "/a/b"},
    {"UsedWithDots", "/a/./b/../c", "/a/c"},
    // Resolved once when it was initialised and once more now.
    {"EndsInDotDot", "/a/b/..", "/a/a//a//a/b/.."},
    {"Root", "/", "///"},
};
INSTANTIATE_TEST_SUITE_P(Rows, RelativeURIReadTest, ::testing::ValuesIn(kReads), RowName());

TEST_F(RelativeURIPersistenceTest, ReadingTwiceResolvesTwice)
{
    auto const uri = NewRelative();
    Read(*uri, kNative, kNativeBody);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/");
    Read(*uri, kNative, kNativeBody);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "//");
    EXPECT_EQ(uri->GetRelPath().ToUTF8(), "../D/f") << "read, not appended";
}

TEST_F(RelativeURIPersistenceTest, ReadingReplacesAllFields)
{
    auto const uri = NewRelative();
    EXPECT_EQ(uri->Init(kDesktop, CoreString(u"ftp"), CoreString(u"other"), 21, CoreString(u"a/g"), true), 0);
    Read(*uri, kNative, kNativeBody);
    EXPECT_EQ(StateOf(*uri),
              (RelativeState{"file", "h", 80, "/Users/u/Desktop/a/g", "../D/f", "/Users/u/Documents", 3}));
    Read(*uri, kNative, "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02 00 00 00");
    EXPECT_EQ(StateOf(*uri), (RelativeState{"", "", 0, "/Users/u/Desktop/a/g", "", "/Users/u/Desktop", 2}));
}

TEST_F(RelativeURIPersistenceTest, DirectoryIsLookedUpWhereItIsNow)
{
    auto const uri = Below(kDocuments, "../D/f");
    Bytes const record = RecordOf(kNative, *uri);
    script.paths[kDocuments] = "/home/v/Papers";
    auto const read = Load<IO::IRelativeURI>(kNative, record);
    ASSERT_TRUE(read);
    EXPECT_EQ(StateOf(*read), (RelativeState{"file", "h", 80, "/", "../D/f", "/home/v/Papers", 3}));
    EXPECT_FALSE(*read == *uri);

    // The way to the file: another one, or the same again.
    auto const anew = NewRelative();
    EXPECT_EQ(anew->Init(kDocuments, CoreString(u"file"), CoreString(u"h"), 80, read->GetRelPath(), true), 0);
    EXPECT_EQ(StateOf(*anew), (RelativeState{"file", "h", 80, "/home/v/D/f", "../D/f", "/home/v/Papers", 3}));
    EXPECT_EQ(read->Init(kDocuments, CoreString(u"file"), CoreString(u"h"), 80, read->GetRelPath(), true), 0);
    EXPECT_EQ(StateOf(*read), StateOf(*anew));
}

TEST_F(RelativeURIPersistenceTest, AbsolutePathAfterReadingIsAppended)
{
    auto const uri = NewRelative();
    Read(*uri, kNative, kNativeBody);
    InitBeside(*uri, kDocuments, "/Users/u/g");
    EXPECT_EQ(uri->GetRelPath().ToUTF8(), "../D/f../g");
    EXPECT_EQ(uri->GetPath().ToUTF8(), "/Users/u/D/f../g");
}

TEST_F(RelativeURIPersistenceTest, StandsInADictionary)
{
    auto const dictionary = MakeDictionary();
    dictionary->Put(1, Below(kDocuments, "../D/f").Get());
    auto const read = Load<IDictionary>(kNative, RecordOf(kNative, *dictionary));
    ASSERT_TRUE(read);
    auto* const uri = static_cast<IO::IRelativeURI*>(read->Get(1));
    ASSERT_NE(uri, nullptr);
    EXPECT_EQ(StateOf(*uri), (RelativeState{"file", "h", 80, "/", "../D/f", "/Users/u/Documents", 3}));
}
} // namespace
} // namespace KORVA
