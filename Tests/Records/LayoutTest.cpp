// Every byte of a record file and what it is.
#include <tessio/Records/Tree/Layout.h>
#include <tessio/Records/Tree/Summary.h>

#include "Records/Samples.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
using RECORDS::LayoutRow;

/// Shows a row for the time of the call.
void ForEachRow(Order order, Bytes const& content, RECORDS::RowSink const& show)
{
    RECORDS::MemorySource const source(content);
    RECORDS::ReadOptions options;
    options.order = order;
    RECORDS::Reader reader(source, options);
    EXPECT_TRUE(RECORDS::Layout(reader, show));
}

/// A line for each row: a record begins with its path; a stretch has offset, length and role in front.
std::string Lines(Order order, Bytes const& content)
{
    std::string text;
    ForEachRow(order, content, [&](LayoutRow const& row) {
        if (row.record)
        {
            text += row.place.Text() + " at " + std::to_string(row.field.offset) + ", " +
                    std::to_string(row.field.length) + ": " + Summary(*row.record) + "\n";
            for (RECORDS::Finding const& finding : row.record->findings)
                text += "! " + finding.words + "\n";
        }
        else
            text += std::to_string(row.field.offset) + " " + std::to_string(row.field.length) + " " +
                    RECORDS::RoleName(row) + ": " + row.field.name +
                    (row.field.value.empty() ? "" : " " + row.field.value) + "\n";
    });
    return text;
}

struct LayoutTableRow
{
    char const* name;
    char const* words;
    char const* lines;
};

class LayoutOfFile : public ::testing::TestWithParam<LayoutTableRow>
{
};

TEST_P(LayoutOfFile, NamesEachStretch)
{
    for (Order const order : kOrders)
    {
        SCOPED_TRACE(RECORDS::OrderName(order));
        EXPECT_EQ(Lines(order, Laid(order, GetParam().words)), GetParam().lines);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, LayoutOfFile,
    ::testing::Values(
        LayoutTableRow{"Nothing", "", ""},
        LayoutTableRow{"Dictionary", "Dict 60:8 1:4 1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4 0:4",
                       "/0 at 0, 84: PersistentDictionary, 1 entry\n"
                       "0 16 class: class {73E90CD5-BBC6-4326-8241-9BB4250B1B05} PersistentDictionary\n"
                       "16 8 length: length 60\n"
                       "24 4 count: entries 1\n"
                       "28 4 key: key 1\n"
                       "/0/dict[1] at 32, 48: DictValue int32 7\n"
                       "32 16 class: class {73E90C21-BBC6-4326-8241-9BB4250B1B05} DictValue\n"
                       "48 8 length: length 24\n"
                       "56 4 type: type int32\n"
                       "60 8 value: as a whole number 7\n"
                       "68 8 value: as a floating-point number 7\n"
                       "76 4 count: aggregates 0\n"
                       "80 4 count: aggregates 0\n"},
        LayoutTableRow{"Bytes", "Value 14:8 'CHAR 2:4 =0A0B 0:4",
                       "/0 at 0, 38: DictValue bytes 0a 0b\n"
                       "0 16 class: class {73E90C21-BBC6-4326-8241-9BB4250B1B05} DictValue\n"
                       "16 8 length: length 14\n"
                       "24 4 type: type bytes\n"
                       "28 4 count: bytes of value 2\n"
                       "32 2 value: value 2 bytes\n"
                       "34 4 count: aggregates 0\n"},
        LayoutTableRow{"Strings", "Strings 22:8 1:4 2:4 \"a\" 4:4 \"xy\" 0:4",
                       "/0 at 0, 46: StringDictionary, 1 entry\n"
                       "0 16 class: class {CD210A56-284C-4B7C-813F-42ADDF774853} StringDictionary\n"
                       "16 8 length: length 22\n"
                       "24 4 count: entries 1\n"
                       "28 4 count: bytes of text 2\n"
                       "32 2 key: key \"a\"\n"
                       "34 4 count: bytes of text 4\n"
                       "38 4 value: value \"xy\"\n"
                       "42 4 count: aggregates 0\n"},
        LayoutTableRow{"RelativeURI", "Relative 34:8 8:4 \"file\" 0:4 0:4 2:4 \"a\" 3:4 0:4",
                       "/0 at 0, 58: RelativeURI documents \"a\"\n"
                       "0 16 class: class {4E278406-081C-48E2-97C3-C6C6D87280ED} RelativeURI\n"
                       "16 8 length: length 34\n"
                       "24 4 count: bytes of text 8\n"
                       "28 8 value: scheme \"file\"\n"
                       "36 4 count: bytes of text 0\n"
                       "40 4 value: port 0\n"
                       "44 4 count: bytes of text 2\n"
                       "48 2 value: path \"a\"\n"
                       "50 4 value: directory 3\n"
                       "54 4 count: aggregates 0\n"},
        LayoutTableRow{"Aggregate",
                       "URI 56:8 0:4 1:4 {11111111-2222-3333-4444-555555555555} Value 8:8 'UNNT 0:4",
                       "/0 at 0, 80: URI \"\"\n"
                       "0 16 class: class {2517B49E-BCE5-404C-8524-3A6EC3C3B633} URI\n"
                       "16 8 length: length 56\n"
                       "24 4 count: bytes of text 0\n"
                       "28 4 count: aggregates 1\n"
                       "32 16 key: interface {11111111-2222-3333-4444-555555555555}\n"
                       "/0/{11111111-2222-3333-4444-555555555555} at 48, 32: DictValue none\n"
                       "48 16 class: class {73E90C21-BBC6-4326-8241-9BB4250B1B05} DictValue\n"
                       "64 8 length: length 8\n"
                       "72 4 type: type none\n"
                       "76 4 count: aggregates 0\n"},
        LayoutTableRow{"UnknownClass", "{76543210-BA98-4EDC-9F01-23456789ABCD} 2:8 =0102",
                       "/0 at 0, 26: unknown class {76543210-BA98-4EDC-9F01-23456789ABCD}, skipped\n"
                       "! nobody here knows its class\n"
                       "0 16 class: class {76543210-BA98-4EDC-9F01-23456789ABCD}\n"
                       "16 8 length: length 2\n"
                       "24 2 opaque: body of a class that is not known\n"},
        LayoutTableRow{"UnexplainedInARecordAndBehindTheLast", "Value 10:8 'UNNT 0:4 =AABB =CCDDEE",
                       "/0 at 0, 34: DictValue none\n"
                       "! 2 bytes at its end belong to nothing\n"
                       "0 16 class: class {73E90C21-BBC6-4326-8241-9BB4250B1B05} DictValue\n"
                       "16 8 length: length 10\n"
                       "24 4 type: type none\n"
                       "28 4 count: aggregates 0\n"
                       "32 2 unexplained: unexplained\n"
                       "34 3 unexplained: unexplained\n"},
        LayoutTableRow{"CutShort", "Value 12:8 'S32V 7:8",
                       "/0 at 0, 36: DictValue int32\n"
                       "! a number needs 16 bytes, 8 are left\n"
                       "0 16 class: class {73E90C21-BBC6-4326-8241-9BB4250B1B05} DictValue\n"
                       "16 8 length: length 12\n"
                       "24 4 type: type int32\n"
                       "28 8 unexplained: unexplained\n"}),
    RowName());

TEST(Layout, LongTextsAreCut)
{
    std::string const text(65, 'x');
    std::vector<RECORDS::Field> fields;
    ForEachRow(kLittle, Laid(kLittle, "URI 138:8 130:4 \"" + text + "\" 0:4"),
               [&](LayoutRow const& row) { fields.push_back(row.field); });
    ASSERT_EQ(fields.size(), 6u);
    EXPECT_EQ(fields[4].length, 130);
    EXPECT_EQ(fields[4].value, "\"" + text.substr(1) + "\"...");
}

TEST(Layout, CoversEveryByteOnce)
{
    ForEachFile({0x01, 0x80}, [](Bytes const& content, Order order, std::string const& name) {
        int64 at = 0;
        ForEachRow(order, content, [&](LayoutRow const& row) {
            if (row.record)
                return;
            EXPECT_EQ(row.field.offset, at) << name;
            EXPECT_GT(row.field.length, 0) << name;
            at += row.field.length;
        });
        ASSERT_EQ(at, static_cast<int64>(content.size())) << name;
    });
}

TEST(Layout, ExplainsEveryByteOfWhatIsWhole)
{
    for (Order const order : kOrders)
        for (char const* const words : {kEvery, "Dict 8:8 0:4 0:4"})
            ForEachRow(order, Laid(order, words),
                       [](LayoutRow const& row) { EXPECT_FALSE(row.isUnexplained) << row.field.offset; });
}

TEST(Layout, RowsOfARecordStandBehindItWithItsDepth)
{
    ForEachRow(kLittle, Laid(kLittle, kEvery), [](LayoutRow const& row) {
        bool const isInside = row.place.Text().find('/', 1) != std::string::npos;
        EXPECT_EQ(row.depth, isInside ? 1 : 0) << row.place.Text();
    });
}
} // namespace
} // namespace KORVA::TESTS
