// The values of the class and interface ids. They are in files for good.
#include <tessio/TessIO/ClassIds.h>

#include "Support/Library.h"
#include <tessio/FileIO/IFile.h>
#include <tessio/FileIO/IFileAccess.h>
#include <tessio/FileIO/ISystemDirContainer.h>
#include <tessio/ObjectModel/GUIDText.h>

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
    {"RelativeURI",
     IO::IID_IRELATIVE_URI,
     {0x4E278406, 0x081C, 0x48E2, {0x97, 0xC3, 0xC6, 0xC6, 0xD8, 0x72, 0x80, 0xED}},
     "{4E278406-081C-48E2-97C3-C6C6D87280ED}"},
    {"BufferedDataProvider",
     IO::IID_BUFFERED_DATAPROVIDER,
     {0xB314BCA1, 0x7409, 0x40EF, {0x92, 0xF9, 0x03, 0x66, 0x4D, 0x0D, 0x76, 0x62}},
     "{B314BCA1-7409-40EF-92F9-03664D0D7662}"},
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
    {"URICredential",
     IO::IID_URI_CREDENTIAL,
     {0x5554EEC2, 0xD85B, 0x4276, {0x91, 0x97, 0x6E, 0x2A, 0x61, 0x00, 0x77, 0xE6}},
     "{5554EEC2-D85B-4276-9197-6E2A610077E6}"},
    {"URIAuthenticationChallenge",
     IO::IID_URI_AUTHENTICATION_CHALLENGE,
     {0xF669429A, 0x9331, 0x4DBE, {0x89, 0xAA, 0x07, 0x43, 0x95, 0x95, 0x3D, 0x8B}},
     "{F669429A-9331-4DBE-89AA-074395953D8B}"},
    {"PersistentData",
     IO::IPERSISTENT_DATA,
     {0xCC44E86D, 0xA586, 0x41B2, {0xA2, 0x28, 0x56, 0x73, 0xC9, 0x2E, 0xAB, 0x19}},
     "{CC44E86D-A586-41B2-A228-5673C92EAB19}"},
    {"PersistentDataEx",
     IO::IPERSISTENT_DATA_EX,
     {0xB2812BAA, 0xE898, 0x4548, {0x9B, 0x88, 0x9B, 0x0C, 0x6D, 0x97, 0xA9, 0x66}},
     "{B2812BAA-E898-4548-9B88-9B0C6D97A966}"},
    {"AsyncReader",
     IO::IID_ASYNC_READER,
     {0x763688E4, 0x23A7, 0x4862, {0xA7, 0x19, 0xB1, 0xE5, 0x2B, 0xFE, 0x1C, 0xA2}},
     "{763688E4-23A7-4862-A719-B1E52BFE1CA2}"},
    {"AsyncWriter",
     IO::IID_ASYNC_WRITER,
     {0x95227F88, 0x4EFC, 0x4309, {0xB4, 0xD4, 0xE6, 0xE9, 0x56, 0x54, 0x15, 0x3A}},
     "{95227F88-4EFC-4309-B4D4-E6E95654153A}"},
    {"RecordObserver",
     IO::IID_RECORD_OBSERVER,
     {0x147A0504, 0x6E0C, 0x4F11, {0x9D, 0xC0, 0x8D, 0x65, 0x2F, 0x7F, 0x14, 0x18}},
     "{147A0504-6E0C-4F11-9DC0-8D652F7F1418}"},
    {"File",
     FILE_SYS::IID_IFILE,
     {0xF123396E, 0x0378, 0x4B45, {0x82, 0xE5, 0x65, 0x71, 0x70, 0xE3, 0x1A, 0x2A}},
     "{F123396E-0378-4B45-82E5-657170E31A2A}"},
    {"FileAccess",
     FILE_SYS::IID_IFILE_ACCESS,
     {0xF84EBD95, 0x7D0F, 0x4C67, {0xB7, 0x9C, 0xCF, 0x64, 0x30, 0xA4, 0x34, 0x0D}},
     "{F84EBD95-7D0F-4C67-B79C-CF6430A4340D}"},
    {"SystemDirContainer",
     FILE_SYS::IID_SYSTEM_DIR_CONTAINER,
     {0xAEEF6E20, 0x3F08, 0x41B5, {0xB4, 0x60, 0xBA, 0x2E, 0x28, 0x8A, 0x76, 0x51}},
     "{AEEF6E20-3F08-41B5-B460-BA2E288A7651}"},
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
