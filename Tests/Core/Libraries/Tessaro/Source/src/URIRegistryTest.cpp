// Schemes and the classes that serve them. The table is the process's and only grows, so that each test has
// schemes of its own.
#include "URIRegistryFakes.h"

#include <gtest/gtest.h>

#include <string>

namespace KORVA
{
namespace
{
using COREREGISTRY::CreateObject;
using STRING::CoreString;
using TESTS::CountOf;
using TESTS::kNothing;
using TESTS::kOneClass;
using TESTS::kOtherClass;
using TESTS::Logged;
using TESTS::ServedFile;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/URIRegistry";
constexpr char kRegister[] =
    "virtual HRESULT KORVA::IO::URIRegistry::Register(const STRING::CoreString &, REFIID)";

Logged OtherClassNotice(std::string const& scheme)
{
    return {kSource, kRegister,
            46,      "There is already a URI scheme for \"" + scheme + "\" registered with a different UID",
            1,       2};
}

Logged UntranslatableNotice()
{
    return {kSource, kRegister, 50, "There is already an untranslatable  URI scheme registered.", 1, 2};
}

class URIRegistryTest : public TESTS::ServedFilesTest
{
};

TEST_F(URIRegistryTest, EachCreationMakesANewOne)
{
    auto const other = CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY);
    EXPECT_NE(other.Get(), uriRegistry.Get());
    EXPECT_EQ(CountOf(*other), 1);
    EXPECT_EQ(other->QueryInterface(IO::IID_URI_REGISTRY, nullptr), -1004);
    EXPECT_EQ(other->GetAggregates().size(), 0u);
}

TEST_F(URIRegistryTest, FileSchemeIsServedByAFileProxy)
{
    auto const uri = MakeURI("/some/file");
    IO::IURIFilePtr file;
    EXPECT_EQ(uriRegistry->Create(*uri, file, nullptr), 0);
    ASSERT_TRUE(dynamic_cast<IO::FileProxy*>(file.Get()));
    EXPECT_EQ(CountOf(*file), 1);
    EXPECT_EQ(file->GetURI().Get(), uri.Get());
}

struct UnservedRow
{
    char const* name;
    char const* location;
};

class UnservedSchemeTest : public URIRegistryTest, public ::testing::WithParamInterface<UnservedRow>
{
};

TEST_P(UnservedSchemeTest, LeavesTheFileAsItWas)
{
    auto const uri = MakeURI(GetParam().location);
    IO::IURIFilePtr file;
    EXPECT_EQ(uriRegistry->Create(*uri, file, nullptr), -1004);
    EXPECT_FALSE(file);
    file.Adopt(new ServedFile(served, kOneClass));
    IO::IURIFile const* const before = file.Get();
    EXPECT_EQ(uriRegistry->Create(*uri, file, nullptr), -1004);
    EXPECT_EQ(file.Get(), before);
    EXPECT_EQ(CountOf(*file), 1);
}

UnservedRow const kUnserved[] = {
    {"Http", "http://host/a"},        {"Https", "https://host/a"},     {"Ftp", "ftp://host/a"},
    {"Blobs", "blobs://host/a"},      {"FileInCapitals", "FILE:///a"}, {"FileWithACapital", "File:///a"},
    {"LongerThanFile", "files:///a"}, {"ShorterThanFile", "fil:///a"},
};
INSTANTIATE_TEST_SUITE_P(Rows, UnservedSchemeTest, ::testing::ValuesIn(kUnserved), TESTS::RowName());

TEST_F(URIRegistryTest, FileSchemeStaysTheProxys)
{
    EXPECT_EQ(uriRegistry->Register(CoreString(u"file"), IO::IID_FILEPROXY), 0);
    EXPECT_EQ(log.Take(), kNothing);
    EXPECT_EQ(uriRegistry->Register(CoreString(u"file"), kOneClass), 0);
    EXPECT_EQ(log.Take(),
              (std::vector<Logged>{
                  {"Core/Libraries/Tessaro/Source/src/URIRegistry",
                   "virtual HRESULT KORVA::IO::URIRegistry::Register(const STRING::CoreString &, "
                   "REFIID)",
                   46, "There is already a URI scheme for \"file\" registered with a different UID", 1, 2}}));
    IO::IURIFilePtr file;
    EXPECT_EQ(uriRegistry->Create(*MakeURI("/a"), file, nullptr), 0);
    EXPECT_TRUE(dynamic_cast<IO::FileProxy*>(file.Get()));
}

TEST_F(URIRegistryTest, FirstRegistrationStands)
{
    Map("firststands", kOneClass);
    EXPECT_EQ(log.Take(), kNothing);
    Map("firststands", kOtherClass);
    EXPECT_EQ(log.Take(), std::vector{OtherClassNotice("firststands")});
    // The notice changes nothing about the next one.
    Map("firststands", kOtherClass);
    EXPECT_EQ(log.Take(), std::vector{OtherClassNotice("firststands")});
    Map("firststands", kOneClass);
    EXPECT_EQ(log.Take(), kNothing);
    IO::IURIFilePtr file;
    EXPECT_EQ(uriRegistry->Create(*MakeURI("firststands://x"), file, nullptr), 0);
    EXPECT_EQ(ClassOf(file), kOneClass);
}

TEST_F(URIRegistryTest, CaseTellsSchemesApart)
{
    Map("casematters", kOneClass);
    Map("CaseMatters", kOtherClass);
    EXPECT_EQ(log.Take(), kNothing);
    IO::IURIFilePtr file;
    EXPECT_EQ(uriRegistry->Create(*MakeURI("casematters://x"), file, nullptr), 0);
    EXPECT_EQ(ClassOf(file), kOneClass);
    EXPECT_EQ(uriRegistry->Create(*MakeURI("CaseMatters://x"), file, nullptr), 0);
    EXPECT_EQ(ClassOf(file), kOtherClass);
    EXPECT_EQ(uriRegistry->Create(*MakeURI("CASEMATTERS://x"), file, nullptr), -1004);
}

TEST_F(URIRegistryTest, AllObjectsShareOneTable)
{
    auto other = CreateObject<IO::IURIRegistry>(IO::IID_URI_REGISTRY);
    EXPECT_EQ(other->Register(CoreString(u"sharedtable"), kOneClass), 0);
    other.Reset();
    Map("sharedtable", kOtherClass);
    EXPECT_EQ(log.Take(), std::vector{OtherClassNotice("sharedtable")});
    IO::IURIFilePtr file;
    EXPECT_EQ(uriRegistry->Create(*MakeURI("sharedtable://x"), file, nullptr), 0);
    EXPECT_EQ(ClassOf(file), kOneClass);
}

TEST_F(URIRegistryTest, EmptySchemeIsUntranslatable)
{
    Map("", kOneClass);
    EXPECT_EQ(log.Take(), kNothing);
    // The classes are not even compared.
    Map("", kOneClass);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{
                              {"Core/Libraries/Tessaro/Source/src/URIRegistry",
                               "virtual HRESULT KORVA::IO::URIRegistry::Register(const STRING::CoreString &, "
                               "REFIID)",
                               50, "There is already an untranslatable  URI scheme registered.", 1, 2}}));
    Map("", kOtherClass);
    EXPECT_EQ(log.Take(), std::vector{UntranslatableNotice()});
    // It serves what has no scheme.
    IO::IURIFilePtr file;
    EXPECT_EQ(uriRegistry->Create(*MakeURI("barename"), file, nullptr), 0);
    EXPECT_EQ(ClassOf(file), kOneClass);
}

TEST_F(URIRegistryTest, LoneSurrogateIsUntranslatable)
{
    CoreString const alone(u"\xD800", 1);
    CoreString const amongLetters(u"half\xDC00way", 8);
    EXPECT_EQ(uriRegistry->Register(alone, kOneClass), 0);
    EXPECT_EQ(uriRegistry->Register(amongLetters, kOneClass), 0);
    EXPECT_EQ(log.Take(), kNothing);
    EXPECT_EQ(uriRegistry->Register(alone, kOneClass), 0);
    EXPECT_EQ(uriRegistry->Register(amongLetters, kOtherClass), 0);
    EXPECT_EQ(log.Take(), (std::vector{UntranslatableNotice(), UntranslatableNotice()}));
}

std::string Repeated(char const* text, int count)
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

struct LongRow
{
    char const* name;
    char const* unit;
    int count;
    int logged;
};

class LongSchemeTest : public URIRegistryTest, public ::testing::WithParamInterface<LongRow>
{
};

TEST_P(LongSchemeTest, IsLoggedCut)
{
    std::string const scheme = Repeated(GetParam().unit, GetParam().count);
    Map(scheme.c_str(), kOneClass);
    EXPECT_EQ(log.Take(), kNothing);
    Map(scheme.c_str(), kOneClass);
    EXPECT_EQ(log.Take(), kNothing);
    Map(scheme.c_str(), kOtherClass);
    EXPECT_EQ(log.Take(), std::vector{OtherClassNotice(Repeated(GetParam().unit, GetParam().logged))});
}

/// At most 255 bytes of UTF-8, characters whole.
LongRow const kLong[] = {
    {"JustFits", "q", 255, 255},
    {"OneTooMany", "q", 256, 255},
    {"FarTooMany", "q", 1000, 255},
    {"TwoBytesACharacter", "\xC3\xA9", 128, 127},
    {"TwoBytesACharacterFit", "\xC3\xA9", 127, 127},
    {"ThreeBytesACharacter", "\xE2\x82\xAC", 86, 85},
    {"FourBytesACharacter", "\xF0\x9F\x98\x80", 64, 63},
};
INSTANTIATE_TEST_SUITE_P(Rows, LongSchemeTest, ::testing::ValuesIn(kLong), TESTS::RowName());

TEST_F(URIRegistryTest, LongSchemesAreToldApartBeyondTheCut)
{
    std::string const common = Repeated("z", 300);
    Map((common + "1").c_str(), kOneClass);
    Map((common + "2").c_str(), kOtherClass);
    EXPECT_EQ(log.Take(), kNothing);
}
} // namespace
} // namespace KORVA
