// The values of the class and interface ids. They are in files for good.
#include "TessIO/ClassIds.h"

#include "FileIO/IFile.h"
#include "ObjectModel/GUIDText.h"
#include "Support/Library.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
struct Row
{
    char const* name;
    GUID const& id;
    GUID value;
    char const* text;
};

Row const kRows[] = {
    {"URI",
     IO::IID_IURI,
     {0x2517B49E, 0xBCE5, 0x404C, {0x85, 0x24, 0x3A, 0x6E, 0xC3, 0xC3, 0xB6, 0x33}},
     "{2517B49E-BCE5-404C-8524-3A6EC3C3B633}"},
    {"DataProvider",
     IO::IID_IDATAPROVIDER,
     {0x2932BFBD, 0x9AA3, 0x454F, {0xBE, 0xFF, 0xEB, 0xC9, 0xBE, 0xEF, 0x0F, 0x0F}},
     "{2932BFBD-9AA3-454F-BEFF-EBC9BEEF0F0F}"},
    {"DataProviderStream",
     IO::IID_DATAPROVIDERSTREAM,
     {0xB775B78D, 0x0AC0, 0x4CE6, {0x8A, 0x59, 0x36, 0x34, 0xC5, 0xA5, 0x42, 0x59}},
     "{B775B78D-0AC0-4CE6-8A59-3634C5A54259}"},
    {"PersistentDictionary",
     IO::IID_PERSISTENT_DICTIONARY,
     {0x73E90C1F, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}},
     "{73E90C1F-BBC6-4326-8241-9BB4250B1B05}"},
    {"Dictionary",
     IO::IID_DICTIONARY,
     {0x73E90CD5, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}},
     "{73E90CD5-BBC6-4326-8241-9BB4250B1B05}"},
    {"DictionaryValue",
     IO::IID_IDICTIONARY_VALUE,
     {0x73E90C21, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}},
     "{73E90C21-BBC6-4326-8241-9BB4250B1B05}"},
    {"StringDictionary",
     IO::IID_STRING_DICTIONARY,
     {0xCD210A56, 0x284C, 0x4B7C, {0x81, 0x3F, 0x42, 0xAD, 0xDF, 0x77, 0x48, 0x53}},
     "{CD210A56-284C-4B7C-813F-42ADDF774853}"},
    {"URIRegistry",
     IO::IID_URI_REGISTRY,
     {0xF4D121D7, 0xC7AD, 0x494F, {0x8A, 0xF8, 0xE0, 0x87, 0x59, 0xD9, 0x6F, 0x64}},
     "{F4D121D7-C7AD-494F-8AF8-E08759D96F64}"},
    {"FileProxy",
     IO::IID_FILEPROXY,
     {0x845E72C2, 0x6EE2, 0x4128, {0xA8, 0x76, 0xC4, 0x6F, 0x45, 0xA4, 0x3A, 0x8F}},
     "{845E72C2-6EE2-4128-A876-C46F45A43A8F}"},
    {"PersistentData",
     IO::IPERSISTENT_DATA,
     {0xCC44E86D, 0xA586, 0x41B2, {0xA2, 0x28, 0x56, 0x73, 0xC9, 0x2E, 0xAB, 0x19}},
     "{CC44E86D-A586-41B2-A228-5673C92EAB19}"},
    {"PersistentDataEx",
     IO::IPERSISTENT_DATA_EX,
     {0xB2812BAA, 0xE898, 0x4548, {0x9B, 0x88, 0x9B, 0x0C, 0x6D, 0x97, 0xA9, 0x66}},
     "{B2812BAA-E898-4548-9B88-9B0C6D97A966}"},
    {"File",
     FILE_SYS::IID_IFILE,
     {0xF123396E, 0x0378, 0x4B45, {0x82, 0xE5, 0x65, 0x71, 0x70, 0xE3, 0x1A, 0x2A}},
     "{F123396E-0378-4B45-82E5-657170E31A2A}"},
};

class ClassId : public ::testing::TestWithParam<Row>
{
};

TEST_P(ClassId, HasItsValue)
{
    EXPECT_TRUE(GetParam().id == GetParam().value);
    EXPECT_EQ(GUIDToText(GetParam().id), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Ids, ClassId, ::testing::ValuesIn(kRows), RowName());

TEST(ClassIds, DifferFromOneAnother)
{
    for (Row const& a : kRows)
        for (Row const& b : kRows)
            EXPECT_EQ(a.id == b.id, &a == &b) << a.name << ' ' << b.name;
}
} // namespace
} // namespace KORVA::TESTS
