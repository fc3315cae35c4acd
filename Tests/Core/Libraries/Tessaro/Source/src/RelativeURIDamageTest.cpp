// Relative URIs from damaged files: what can be read is read, and nothing leaks.
#include "DirFakes.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr char kBody[] = "08 00 00 00 66 00 69 00 6C 00 65 00 "             // file
                         "02 00 00 00 68 00 "                               // h
                         "50 00 00 00 "                                     // 80
                         "0C 00 00 00 2E 00 2E 00 2F 00 44 00 2F 00 66 00 " // ../D/f
                         "03 00 00 00";                                     // documents

/// The whole record, its length as given: 70 bytes.
Bytes Record(std::string const& length = "2E 00 00 00 00 00 00 00")
{
    return Hex("06 84 27 4E 1C 08 E2 48 97 C3 C6 C6 D8 72 80 ED " + length + " " + kBody + " 00 00 00 00");
}

Bytes Cut(Bytes bytes, std::size_t size)
{
    bytes.resize(size);
    return bytes;
}

struct BodyRow
{
    char const* name;
    std::size_t size;
    RelativeState state;
};

using CutBodyTest = RelativeURITestWith<BodyRow>;

TEST_P(CutBodyTest, GivesWhatIsThere)
{
    BodyRow const& row = GetParam();
    auto const uri = NewRelative();
    PersistenceOf(*uri)->Read(*MakeStream(*MakeMemory(kNative, Cut(Hex(kBody), row.size))));
    EXPECT_EQ(StateOf(*uri), row.state);
}

// What a used object held is replaced all the same; only the full path stays.
TEST_P(CutBodyTest, ReplacesWhatWas)
{
    BodyRow const& row = GetParam();
    auto const uri = NewRelative();
    EXPECT_EQ(uri->Init(kDesktop, CoreString(u"ftp"), CoreString(u"other"), 21, CoreString(u"g"), true), 0);
    PersistenceOf(*uri)->Read(*MakeStream(*MakeMemory(kNative, Cut(Hex(kBody), row.size))));
    RelativeState expected = row.state;
    expected.path = "/Users/u/Desktop/g";
    EXPECT_EQ(StateOf(*uri), expected);
}

BodyRow const kCuts[] = {
    {"Nothing", 0, {"", "", 0, "/", "", "none", 0}},
    {"InTheFirstCount", 3, {"", "", 0, "/", "", "none", 0}},
    {"BehindTheFirstCount", 4, {"", "", 0, "/", "", "none", 0}},
    {"InTheScheme", 6, {"f", "", 0, "/", "", "none", 0}},
    {"InAUnitOfTheScheme", 7, {"f", "", 0, "/", "", "none", 0}},
    {"BehindTheScheme", 12, {"file", "", 0, "/", "", "none", 0}},
    {"BeforeTheHost", 16, {"file", "", 0, "/", "", "none", 0}},
    {"BehindTheHost", 18, {"file", "h", 0, "/", "", "none", 0}},
    {"InThePort", 21, {"file", "h", 0, "/", "", "none", 0}},
    {"BehindThePort", 22, {"file", "h", 80, "/", "", "none", 0}},
    {"BeforeThePath", 26, {"file", "h", 80, "/", "", "none", 0}},
    {"InThePath", 34, {"file", "h", 80, "/", "../D", "none", 0}},
    {"BehindThePath", 38, {"file", "h", 80, "/", "../D/f", "none", 0}},
    {"InTheType", 41, {"file", "h", 80, "/", "../D/f", "none", 0}},
    {"Whole", 42, {"file", "h", 80, "/", "../D/f", "/Users/u/Documents", 3}},
};
INSTANTIATE_TEST_SUITE_P(Cuts, CutBodyTest, ::testing::ValuesIn(kCuts), RowName());

struct ContentRow
{
    char const* name;
    char const* body;
    RelativeState state;
    /// Where the body ends.
    int64 position;
};

using OddBodyTest = RelativeURITestWith<ContentRow>;

TEST_P(OddBodyTest, GivesWhatIsThere)
{
    ContentRow const& row = GetParam();
    auto const memory = MakeMemory(kNative, Hex(row.body));
    auto const uri = NewRelative();
    PersistenceOf(*uri)->Read(*MakeStream(*memory));
    EXPECT_EQ(StateOf(*uri), row.state);
    EXPECT_EQ(memory->GetPosition(), row.position);
}

constexpr char kDocumentsPath[] = "/Users/u/Documents";

ContentRow const kContents[] = {
    {"NegativeCount",
     "FF FF FF FF 02 00 00 00 68 00 50 00 00 00 02 00 00 00 66 00 03 00 00 00",
     {"", "h", 80, "/", "f", kDocumentsPath, 3},
     24},
    {"LeastCount",
     "00 00 00 80 02 00 00 00 68 00 50 00 00 00 02 00 00 00 66 00 03 00 00 00",
     {"", "h", 80, "/", "f", kDocumentsPath, 3},
     24},
    {"OddCount",
     "03 00 00 00 66 00 69 02 00 00 00 68 00 50 00 00 00 02 00 00 00 66 00 03 00 00 00",
     {"f", "h", 80, "/", "f", kDocumentsPath, 3},
     27},
    {"CountOfOneTakesNothing",
     "01 00 00 00 02 00 00 00 68 00 50 00 00 00 02 00 00 00 66 00 03 00 00 00",
     {"", "h", 80, "/", "f", kDocumentsPath, 3},
     24},
    {"CountBeyondTheEnd", "FE FF FF 7F 66 00 67 00", {"fg", "", 0, "/", "", "none", 0}, 8},
    {"CountOfThePathBeyondTheEnd",
     "00 00 00 00 00 00 00 00 50 00 00 00 FE FF FF 7F 66 00 03 00 00 00",
     // The type's bytes are taken for the path's.
     {"", "", 80, "/", std::string("f\x03\0", 3), "none", 0},
     22},
    {"UnknownType",
     "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 63 00 00 00",
     {"", "", 0, "/", "", "none", 99},
     20},
    {"LeastType",
     "00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 80",
     {"", "", 0, "/", "", "none", -2147483647 - 1},
     20},
};
INSTANTIATE_TEST_SUITE_P(Contents, OddBodyTest, ::testing::ValuesIn(kContents), RowName());

struct RecordRow
{
    char const* name;
    std::size_t size;
    /// The full path of the object made: empty where no body was read, null where there is no object.
    char const* path;
    /// Logged by the stream; empty for silence.
    char const* message;
};

using CutRecordTest = RelativeURITestWith<RecordRow>;

TEST_P(CutRecordTest, GivesWhatIsThere)
{
    RecordRow const& row = GetParam();
    auto const uri = Load<IO::IRelativeURI>(kNative, Cut(Record(), row.size));
    std::vector<Logged> expected;
    if (*row.message)
        expected.push_back({kStreamSource, kReading, 361, row.message});
    EXPECT_EQ(log.Take(), expected);
    ASSERT_EQ(static_cast<bool>(uri), row.path != nullptr);
    if (!uri)
        return;
    EXPECT_EQ(uri->GetPath().ToUTF8(), row.path);
    EXPECT_EQ(References(*uri), 1);
}

RecordRow const kRecordCuts[] = {
    {"Nothing", 0, nullptr, ""},
    {"InTheClassId", 15, nullptr, ""},
    // No length: a record of no body.
    {"BehindTheClassId", 16, "", ""},
    {"InTheLength", 23, "", ""},
    {"BehindTheLength", 24, "/", "Incorrect dp position after read an IObject, currently at 24 should be 70"},
    {"InTheBody", 50, "/", "Incorrect dp position after read an IObject, currently at 50 should be 70"},
    {"BehindTheBody", 66, "/", "Incorrect dp position after read an IObject, currently at 66 should be 70"},
    {"InTheCount", 69, "/", "Incorrect dp position after read an IObject, currently at 69 should be 70"},
    {"Whole", 70, "/", ""},
};
INSTANTIATE_TEST_SUITE_P(Cuts, CutRecordTest, ::testing::ValuesIn(kRecordCuts), RowName());

class DamagedRelativeURITest : public RelativeURITest
{
};

TEST_F(DamagedRelativeURITest, CutAnywhereLeaksNothing)
{
    for (std::size_t size = 0; size <= 70; ++size)
    {
        auto const uri = Load<IO::IRelativeURI>(kNative, Cut(Record(), size));
        EXPECT_EQ(static_cast<bool>(uri), size >= 16) << size;
        log.Take();
        if (uri)
        {
            EXPECT_EQ(References(*uri), 1) << size;
            // Usable like any other.
            InitBelow(*uri, kDocuments, "g");
            EXPECT_EQ(uri->GetPath().ToUTF8(), "/Users/u/Documents/g");
        }
        EXPECT_EQ(script.containersAlive, 0);
    }
}

TEST_F(DamagedRelativeURITest, ChangedAnywhereLeaksNothing)
{
    for (std::size_t at = 0; at < 70; ++at)
        for (unsigned const change : {0x01u, 0x80u, 0xFFu})
        {
            Bytes record = Record();
            record[at] = static_cast<unsigned char>(record[at] ^ change);
            auto const object = Load<IObject>(kNative, record);
            log.Take();
            EXPECT_EQ(script.containersAlive, 0);
            // An unknown class makes no object, a damaged body does; a length may do either.
            bool const inLength = at >= 16 && at < 24;
            EXPECT_TRUE(inLength || static_cast<bool>(object) == (at >= 24)) << at;
            EXPECT_TRUE(!object || References(*object) == 1) << at;
        }
}

// The object is kept and the stream goes on behind the record, whatever the record says of its length.
TEST_F(DamagedRelativeURITest, LengthTooShort)
{
    auto const memory = MakeMemory(kNative, Record("0A 00 00 00 00 00 00 00"));
    auto const stream = MakeStream(*memory);
    auto const uri = ReadObject<IO::IRelativeURI>(*stream);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{{kStreamSource, kReading, 361,
                                                "Incorrect dp position after read an IObject, currently at "
                                                "70 should be 34"}}));
    EXPECT_EQ(memory->GetPosition(), 34);
    ASSERT_TRUE(uri);
    EXPECT_EQ(StateOf(*uri), (RelativeState{"file", "h", 80, "/", "../D/f", "/Users/u/Documents", 3}));
}

TEST_F(DamagedRelativeURITest, LengthTooLong)
{
    Bytes bytes = Record("30 00 00 00 00 00 00 00");
    bytes.push_back(0xAA);
    bytes.push_back(0xBB);
    Bytes const next = Record();
    bytes.insert(bytes.end(), next.begin(), next.end());
    auto const memory = MakeMemory(kNative, bytes);
    auto const stream = MakeStream(*memory);
    auto const uri = ReadObject<IO::IRelativeURI>(*stream);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{{kStreamSource, kReading, 361,
                                                "Incorrect dp position after read an IObject, currently at "
                                                "70 should be 72"}}));
    ASSERT_TRUE(uri);
    auto const second = ReadObject<IO::IRelativeURI>(*stream);
    ASSERT_TRUE(second);
    EXPECT_EQ(StateOf(*second), StateOf(*uri));
    EXPECT_EQ(second->GetRelPath().ToUTF8(), "../D/f");
}

TEST_F(DamagedRelativeURITest, LengthOfNothingReadsNoBody)
{
    auto const memory = MakeMemory(kNative, Record("00 00 00 00 00 00 00 00"));
    auto const uri = ReadObject<IO::IRelativeURI>(*MakeStream(*memory));
    ASSERT_TRUE(uri);
    EXPECT_EQ(memory->GetPosition(), 24);
    EXPECT_EQ(uri->GetPath().ToUTF8(), "");
    EXPECT_EQ(script.containersMade, 0);
}

TEST_F(DamagedRelativeURITest, LengthOutOfRange)
{
    auto const memory = MakeMemory(kNative, Record("FF FF FF FF FF FF FF FF"));
    EXPECT_FALSE(ReadObject(*MakeStream(*memory)));
    EXPECT_EQ(log.Take(), (std::vector<Logged>{{kStreamSource, kReading, 300,
                                                "serializedLength of this object (-1 bytes) looks suspect. "
                                                "Bailing."}}));
    EXPECT_EQ(memory->GetPosition(), 24);
    EXPECT_EQ(script.containersMade, 0);
}

TEST_F(DamagedRelativeURITest, BodyThatThrowsCostsTheObjectOnly)
{
    auto const provider = Make<RecordingProvider>();
    provider->bytes = Record();
    int reads = 0;
    // Twelve reads make the class id and the length; the thirteenth is the body's first.
    provider->failsRead = [&reads]() -> bool {
        if (++reads == 13)
            throw std::runtime_error("planned");
        return false;
    };
    EXPECT_FALSE(ReadObject(*MakeStream(*provider)));
    EXPECT_EQ(log.Take(), std::vector<Logged>{ReadThrew()});
    EXPECT_EQ(provider->position, 70u);
    EXPECT_EQ(script.containersMade, 0);
}
} // namespace
} // namespace KORVA
