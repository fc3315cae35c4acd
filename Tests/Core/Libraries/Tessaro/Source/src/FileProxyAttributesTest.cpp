// File attributes: read for real, never set.
#include "FileFakes.h"

#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace KORVA
{
namespace
{
namespace fs = std::filesystem;
using TESTS::Logged;
using TESTS::ProxyFor;
using TESTS::RowName;
using Calls = std::vector<std::string>;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/FileProxy";
constexpr char kSetAttribute[] = "virtual ErrCode KORVA::IO::FileProxy::SetAttribute(FileAttribute, bool)";

Logged GetUnknown()
{
    return {kSource, "virtual ErrCode KORVA::IO::FileProxy::GetAttribute(FileAttribute, bool &) const", 491,
            "File Attribute not found."};
}

Logged SetHidden() { return {kSource, kSetAttribute, 523, "To be implemented."}; }

Logged SetUnknown() { return {kSource, kSetAttribute, 540, "File Attribute not found."}; }

struct PermissionRow
{
    char const* name;
    mode_t mode;
    /// The attributes 1 to 9 in order.
    char const* attributes;
};

class FilePermissionTest : public TESTS::LibraryTestWith<PermissionRow>
{
};

TEST_P(FilePermissionTest, IsAnAttributeEach)
{
    TESTS::TemporaryDirectory const directory;
    fs::path const path = directory.File("f", "");
    ASSERT_EQ(chmod(path.c_str(), GetParam().mode), 0);
    auto const proxy = ProxyFor(*MakeURI(path.string()));
    std::string attributes;
    for (IO::FileAttribute attribute = 1; attribute <= 9; ++attribute)
    {
        // It must be written either way.
        bool value = attribute % 2 == 0;
        EXPECT_EQ(proxy->GetAttribute(attribute, value), 0);
        attributes += value ? '1' : '0';
    }
    EXPECT_EQ(attributes, GetParam().attributes);
}

PermissionRow const kPermissions[] = {
    {"None", 0000, "000000000"},          {"All", 0777, "111111111"},
    {"OwnerRead", 0400, "100000000"},     {"OwnerWrite", 0200, "010000000"},
    {"OwnerExecute", 0100, "001000000"},  {"GroupRead", 0040, "000100000"},
    {"GroupWrite", 0020, "000010000"},    {"GroupExecute", 0010, "000001000"},
    {"OthersRead", 0004, "000000100"},    {"OthersWrite", 0002, "000000010"},
    {"OthersExecute", 0001, "000000001"}, {"Mixed", 0421, "100010001"},
};
INSTANTIATE_TEST_SUITE_P(Rows, FilePermissionTest, ::testing::ValuesIn(kPermissions), RowName());

class FileAttributeTest : public TESTS::LibraryTest
{
protected:
    TESTS::TemporaryDirectory directory;
};

TEST_F(FileAttributeTest, HiddenFile)
{
    bool value = false;
    EXPECT_EQ(ProxyFor(*MakeURI(directory.File(".hidden", "").string()))->GetAttribute(0, value), 0);
    EXPECT_TRUE(value);
    EXPECT_EQ(ProxyFor(*MakeURI(directory.File("plain", "").string()))->GetAttribute(0, value), 0);
    EXPECT_FALSE(value);
}

TEST_F(FileAttributeTest, MissingFile)
{
    auto const proxy = ProxyFor(*MakeURI((directory.Path() / "missing").string()));
    bool value = true;
    EXPECT_EQ(proxy->GetAttribute(0, value), 26);
    EXPECT_EQ(proxy->GetAttribute(1, value), 26);
    // Whether there is a file comes before whether there is such an attribute.
    EXPECT_EQ(proxy->GetAttribute(10, value), 26);
    EXPECT_TRUE(value);
    EXPECT_EQ(proxy->SetAttribute(0, true), 26);
    EXPECT_EQ(proxy->SetAttribute(1, true), 26);
    EXPECT_EQ(proxy->SetAttribute(10, true), 26);
}

TEST_F(FileAttributeTest, NoneCanBeSet)
{
    fs::path const path = directory.File("f", "content");
    ASSERT_EQ(chmod(path.c_str(), 0640), 0);
    auto const proxy = ProxyFor(*MakeURI(path.string()));
    for (bool const value : {false, true})
    {
        EXPECT_EQ(proxy->SetAttribute(0, value), 33);
        EXPECT_EQ(log.Take(), std::vector{SetHidden()});
        for (IO::FileAttribute attribute = 1; attribute <= 9; ++attribute)
            EXPECT_EQ(proxy->SetAttribute(attribute, value), 33) << attribute;
        EXPECT_EQ(log.Take(), TESTS::kNothing);
    }
    struct stat status;
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640u);
    EXPECT_EQ(TESTS::Content(path), "content");
    EXPECT_TRUE(fs::exists(path));
}

struct UnknownRow
{
    char const* name;
    IO::FileAttribute attribute;
};

class UnknownAttributeTest : public TESTS::FakeFileTest, public ::testing::WithParamInterface<UnknownRow>
{
};

TEST_P(UnknownAttributeTest, IsLogged)
{
    auto const proxy = Proxy();
    bool value = true;
    EXPECT_EQ(proxy->GetAttribute(GetParam().attribute, value), 32);
    EXPECT_EQ(log.Take(), std::vector{GetUnknown()});
    EXPECT_TRUE(value);
    EXPECT_EQ(script.calls, (Calls{"1 bind /a", "1 exists", "2 bind /a", "2 permissions"}));
    script.calls.clear();
    EXPECT_EQ(proxy->SetAttribute(GetParam().attribute, false), 32);
    EXPECT_EQ(log.Take(), std::vector{SetUnknown()});
    EXPECT_EQ(script.calls, (Calls{"3 bind /a", "3 exists", "3 permissions"}));
}

UnknownRow const kUnknown[] = {
    {"Ten", 10}, {"Eleven", 11}, {"HighBit", 0x80000001u}, {"Largest", 4294967295u}};
INSTANTIATE_TEST_SUITE_P(Rows, UnknownAttributeTest, ::testing::ValuesIn(kUnknown), RowName());

class FakeAttributeTest : public TESTS::FakeFileTest
{
};

TEST_F(FakeAttributeTest, GettingAsksForTheFileFirst)
{
    auto const proxy = Proxy();
    bool value = false;
    script.permissions[0] = 4;
    EXPECT_EQ(proxy->GetAttribute(1, value), 0);
    EXPECT_TRUE(value);
    EXPECT_EQ(script.calls, (Calls{"1 bind /a", "1 exists", "2 bind /a", "2 permissions"}));
    EXPECT_EQ(script.alive, 0);

    script.calls.clear();
    script.flag = 1;
    EXPECT_EQ(proxy->GetAttribute(0, value), 0);
    EXPECT_EQ(script.calls, (Calls{"3 bind /a", "3 exists", "4 bind /a", "4 permissions", "4 flag"}));

    script.calls.clear();
    script.exists = false;
    EXPECT_EQ(proxy->GetAttribute(0, value), 26);
    EXPECT_EQ(script.calls, (Calls{"5 bind /a", "5 exists"}));
    EXPECT_EQ(script.alive, 0);
}

TEST_F(FakeAttributeTest, PathThatCannotBeBound)
{
    auto const proxy = Proxy();
    bool value = true;
    script.unboundFrom = 1;
    EXPECT_EQ(proxy->GetAttribute(1, value), 26);
    EXPECT_EQ(script.calls, Calls{"1 bind /a"});
    // Only the question whether there is a file depends on it.
    script.unboundFrom = 3;
    EXPECT_EQ(proxy->GetAttribute(1, value), 0);
    EXPECT_FALSE(value);
    script.calls.clear();
    EXPECT_EQ(proxy->SetAttribute(1, true), 33);
    EXPECT_EQ(script.calls, (Calls{"4 bind /a", "4 exists", "4 permissions"}));
}

TEST_F(FakeAttributeTest, SecondObjectMissing)
{
    script.supply = 1;
    bool value = true;
    EXPECT_EQ(Proxy()->GetAttribute(1, value), 26);
    EXPECT_TRUE(value);
}

struct FlagRow
{
    char const* name;
    uchar flag;
    FILE_SYS::ErrCode status;
    bool value;
};

class FlagTest : public TESTS::FakeFileTest, public ::testing::WithParamInterface<FlagRow>
{
};

TEST_P(FlagTest, CountsWhenItIsOne)
{
    script.flag = GetParam().flag;
    script.flagStatus = GetParam().status;
    bool value = !GetParam().value;
    EXPECT_EQ(Proxy()->GetAttribute(0, value), 0);
    EXPECT_EQ(value, GetParam().value);
}

FlagRow const kFlags[] = {
    {"Zero", 0, 0, false},           {"One", 1, 0, true},        {"Two", 2, 0, false},
    {"Three", 3, 0, false},          {"Largest", 255, 0, false}, {"ZeroWithFailure", 0, 15, false},
    {"OneWithFailure", 1, 15, true},
};
INSTANTIATE_TEST_SUITE_P(Rows, FlagTest, ::testing::ValuesIn(kFlags), RowName());

TEST_F(FakeAttributeTest, PermissionBytesCountWhateverTheirStatus)
{
    auto const proxy = Proxy();
    script.permissionStatus = 21;
    bool value = true;
    EXPECT_EQ(proxy->GetAttribute(5, value), 0);
    EXPECT_FALSE(value);
    script.permissions[1] = 2;
    EXPECT_EQ(proxy->GetAttribute(5, value), 0);
    EXPECT_TRUE(value);
    EXPECT_EQ(proxy->GetAttribute(4, value), 0);
    EXPECT_FALSE(value);
    // Bits that mean nothing.
    script.permissions[1] = 0xF8;
    for (IO::FileAttribute attribute = 1; attribute <= 9; ++attribute)
    {
        value = true;
        EXPECT_EQ(proxy->GetAttribute(attribute, value), 0);
        EXPECT_FALSE(value) << attribute;
    }
}

struct SetRow
{
    char const* name;
    IO::FileAttribute attribute;
    FILE_SYS::ErrCode permissionStatus;
    ErrCode code;
};

class SetAttributeTest : public TESTS::FakeFileTest, public ::testing::WithParamInterface<SetRow>
{
};

TEST_P(SetAttributeTest, PermissionStatusDecidesFirst)
{
    script.permissionStatus = GetParam().permissionStatus;
    EXPECT_EQ(Proxy()->SetAttribute(GetParam().attribute, true), GetParam().code);
    EXPECT_EQ(script.calls, (Calls{"1 bind /a", "1 exists", "1 permissions"}));
    EXPECT_EQ(script.alive, 0);
}

SetRow const kSets[] = {
    {"PermissionDone", 1, 0, 33},
    {"LastPermissionDone", 9, 0, 33},
    {"PermissionNotFound", 1, 15, 26},
    {"PermissionNotPermitted", 1, 21, 33},
    {"PermissionAlreadyThere", 1, 9, 35},
    {"PermissionFailed", 1, 1, 35},
    {"PermissionNegative", 1, -1, 35},
    {"HiddenNotFound", 0, 15, 26},
    // Neither of these is logged.
    {"HiddenNotPermitted", 0, 21, 33},
    {"HiddenFailed", 0, 1, 35},
    {"UnknownNotFound", 10, 15, 26},
    {"UnknownNotPermitted", 10, 21, 33},
    {"UnknownFailed", 10, 1, 35},
};
INSTANTIATE_TEST_SUITE_P(Rows, SetAttributeTest, ::testing::ValuesIn(kSets), RowName());

TEST_F(FakeAttributeTest, SettingAsksWhetherThereIsAFile)
{
    script.exists = false;
    script.permissionStatus = 21;
    EXPECT_EQ(Proxy()->SetAttribute(1, true), 26);
    EXPECT_EQ(script.calls, (Calls{"1 bind /a", "1 exists"}));
    EXPECT_EQ(script.alive, 0);
}

TEST_F(FakeAttributeTest, SettingHiddenIsLogged)
{
    EXPECT_EQ(Proxy()->SetAttribute(0, true), 33);
    EXPECT_EQ(log.Take(), std::vector{SetHidden()});
    EXPECT_EQ(script.calls, (Calls{"1 bind /a", "1 exists", "1 permissions"}));
}
} // namespace
} // namespace KORVA
