// What a file has beside its content, and what becomes of it when the file is replaced: kept or narrowed,
// never widened, and what is not kept is said.
#include "Companions/Child.h"
#include "Companions/FileIO/FileFixture.h"
#include "Support/RowName.h"
#include "Support/SystemCalls.h"

#include <grp.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <map>
#include <sstream>

namespace KORVA::TESTS
{
namespace
{
constexpr char kAccess[] = "system.posix_acl_access";
constexpr char kDefault[] = "system.posix_acl_default";
constexpr uid_t kOwner = 4001;
constexpr gid_t kGroup = 4002;
constexpr uid_t kOther = 4003;

struct Tag
{
    char const* name;
    unsigned number;
};

constexpr Tag kTags[] = {{"u:", 1}, {"u", 2}, {"g:", 4}, {"g", 8}, {"m:", 16}, {"o:", 32}};

/// The bytes of a list written as "u::6 u:1000:4 g::0 m::4 o::0".
std::string ListBytes(std::string const& text)
{
    std::string bytes{2, 0, 0, 0};
    std::istringstream words(text);
    for (std::string word; words >> word;)
    {
        bool const isNamed = word[2] != ':';
        for (Tag const& tag : kTags)
            if (tag.name == word.substr(0, isNamed ? 1 : 2))
                bytes += {static_cast<char>(tag.number), 0};
        bytes += {static_cast<char>(word.back() - '0'), 0};
        std::uint32_t const id =
            isNamed ? static_cast<std::uint32_t>(std::stoul(word.substr(2))) : 0xFFFFFFFF;
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(id >> shift);
    }
    return bytes;
}

std::string ListText(std::string const& bytes)
{
    std::string text;
    for (std::size_t at = 4; at + 8 <= bytes.size(); at += 8)
    {
        std::uint32_t id = 0;
        for (std::size_t i = 8; i > 4; --i)
            id = id << 8 | static_cast<unsigned char>(bytes[at + i - 1]);
        for (Tag const& tag : kTags)
            if (static_cast<unsigned char>(bytes[at]) == tag.number)
                text += (text.empty() ? "" : " ") + std::string(tag.name) + ":" +
                        (id == 0xFFFFFFFF ? "" : std::to_string(id) + ":") + std::to_string(bytes[at + 2]);
    }
    return text;
}

void SetAttribute(fs::path const& path, char const* name, std::string const& value)
{
    ASSERT_EQ(setxattr(path.c_str(), name, value.data(), value.size(), 0), 0) << name << ": " << errno;
}

/// All attributes but the access list, which `Permissions` shows.
std::map<std::string, std::string> Attributes(fs::path const& path)
{
    std::string names(4096, '\0');
    ssize_t const size = listxattr(path.c_str(), names.data(), names.size());
    std::map<std::string, std::string> all;
    for (std::size_t at = 0; size > 0 && at < static_cast<std::size_t>(size);)
    {
        std::string const name = names.c_str() + at;
        at += name.size() + 1;
        char value[256];
        ssize_t const length = getxattr(path.c_str(), name.c_str(), value, sizeof value);
        if (name != kAccess)
            all[name] = std::string(value, static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    }
    return all;
}

/// "640 of 0:0", and the access list where there is one.
std::string Permissions(fs::path const& path)
{
    struct stat status = {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    char words[64];
    std::snprintf(words, sizeof words, "%o of %u:%u", status.st_mode & 07777u, status.st_uid, status.st_gid);
    char list[256];
    ssize_t const size = getxattr(path.c_str(), kAccess, list, sizeof list);
    return size < 0 ? words : words + (" " + ListText({list, static_cast<std::size_t>(size)}));
}

class KeptTest : public FileTest
{
protected:
    void SetUp() override
    {
        if (geteuid() != 0)
            GTEST_SKIP() << "only a privileged user can be somebody else";
        fs::path const probe = directory.File("a", "old");
        std::string const list = ListBytes("u::6 u:4000:4 g::0 m::4 o::0");
        if (setxattr(probe.c_str(), kAccess, list.data(), list.size(), 0) != 0)
            GTEST_SKIP() << "this file system has no access lists";
        fs::remove(probe);
        directory.File("a", "old");
    }

    FILE_SYS::ErrCode Replace() { return Bound("a")->Replace("new", 3); }

    static Logged NotKept(char const* signature, std::string const& words)
    {
        return {"Companions/FileIO/File", signature, 0, words, 1, 1};
    }
    Logged NotKeptByReplace(char const* what) const
    {
        return NotKept("virtual ErrCode KORVA::FILE_SYS::File::Replace(const void *, uint64)",
                       Path("a").native() + ": its " + what + " could not be kept");
    }
};

TEST_F(KeptTest, TheAccessListStays)
{
    SetAttribute(Path("a"), kAccess, ListBytes("u::6 u:4000:4 g::0 m::4 o::0"));
    EXPECT_EQ(Replace(), 0);
    EXPECT_EQ(Content(Path("a")), "new");
    EXPECT_EQ(Permissions(Path("a")), "640 of 0:0 u::6 u:4000:4 g::0 m::4 o::0")
        << "the group's bits of the file are the list's mask; the group itself may do nothing";
}

TEST_F(KeptTest, TheDirectorysListDoesNotOpenAFileThatHadNone)
{
    ASSERT_EQ(chmod(Path("a").c_str(), 0640), 0);
    SetAttribute(directory.Path(), kDefault, ListBytes("u::7 u:4000:7 g::7 m::7 o::7"));
    EXPECT_EQ(Replace(), 0);
    EXPECT_EQ(Permissions(Path("a")), "640 of 0:0");
    directory.File("b", "copied");
    ASSERT_EQ(removexattr(Path("b").c_str(), kAccess), 0);
    ASSERT_EQ(chmod(Path("b").c_str(), 0640), 0);
    EXPECT_EQ(Bound("b")->CopyTo(Text(Path("a"))), 0);
    EXPECT_EQ(Permissions(Path("a")), "640 of 0:0");
}

TEST_F(KeptTest, ANewFileIsWhatTheDirectorySays)
{
    SetAttribute(directory.Path(), kDefault, ListBytes("u::7 u:4000:7 g::5 m::7 o::0"));
    EXPECT_EQ(Bound("b")->Replace("new", 3), 0);
    EXPECT_EQ(Permissions(Path("b")), "660 of 0:0 u::6 u:4000:7 g::5 m::6 o::0");
}

TEST_F(KeptTest, ACopyHasTheAccessListOfItsSource)
{
    SetAttribute(Path("a"), kAccess, ListBytes("u::6 u:4000:4 g::0 m::4 o::0"));
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 0);
    EXPECT_EQ(Permissions(Path("b")), "640 of 0:0 u::6 u:4000:4 g::0 m::4 o::0");
}

TEST_F(KeptTest, ExtendedAttributesStay)
{
    SetAttribute(Path("a"), "user.note", "kept");
    SetAttribute(Path("a"), "user.empty", "");
    SetAttribute(Path("a"), "trusted.note", "kept as well");
    ASSERT_EQ(chmod(Path("a").c_str(), 0444), 0);
    EXPECT_EQ(Replace(), 0);
    EXPECT_EQ(Attributes(Path("a")),
              (std::map<std::string, std::string>{
                  {"trusted.note", "kept as well"}, {"user.empty", ""}, {"user.note", "kept"}}));
    EXPECT_EQ(Permissions(Path("a")), "444 of 0:0");
}

TEST_F(KeptTest, RightsOfAProgramGo)
{
    // Version 2, effective, one capability.
    SetAttribute(Path("a"), "security.capability",
                 std::string("\1\0\0\2\0\4\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 20));
    ASSERT_EQ(chmod(Path("a").c_str(), 06755), 0);
    SetAttribute(Path("a"), "security.capability",
                 std::string("\1\0\0\2\0\4\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 20));
    EXPECT_EQ(Replace(), 0);
    EXPECT_EQ(Attributes(Path("a")), (std::map<std::string, std::string>{}));
    EXPECT_EQ(Permissions(Path("a")), "755 of 0:0");
}

struct NarrowRow
{
    char const* name;
    char const* before;
    /// The list of the file that a user replaces who is neither its owner nor in its group.
    char const* after;
};

class KeptNarrow : public KeptTest, public ::testing::WithParamInterface<NarrowRow>
{
};

TEST_P(KeptNarrow, OpensTheFileToNobodyElse)
{
    SetAttribute(Path("a"), kAccess, ListBytes(GetParam().before));
    ASSERT_EQ(chown(Path("a").c_str(), kOwner, kGroup), 0);
    auto const file = Bound("a");
    int const result = InChild([&] {
        if (setgroups(0, nullptr) != 0 || setegid(kOther) != 0 || seteuid(kOther) != 0)
            return 255;
        return static_cast<int>(file->Replace("new", 3));
    });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(Permissions(Path("a")), GetParam().after);
}

INSTANTIATE_TEST_SUITE_P(Rows, KeptNarrow,
                         ::testing::Values(NarrowRow{"GroupAndOthers", "u::6 u:4000:4 g::6 m::6 o::4",
                                                     "664 of 4003:4003 u::6 u:4000:4 g::4 m::6 o::4"},
                                           NarrowRow{"GroupAlone", "u::6 u:4000:4 g::6 m::6 o::0",
                                                     "660 of 4003:4003 u::6 u:4000:4 g::0 m::6 o::0"},
                                           NarrowRow{"OthersAlone", "u::6 u:4000:6 g::0 m::6 o::6",
                                                     "660 of 4003:4003 u::6 u:4000:6 g::0 m::6 o::0"},
                                           NarrowRow{"TheMaskHoldsTheGroupBack",
                                                     "u::6 u:4000:7 g::7 m::4 o::6",
                                                     "644 of 4003:4003 u::6 u:4000:7 g::4 m::4 o::4"},
                                           NarrowRow{"ANamedGroupIsShutOut", "u::6 g::4 g:4005:0 m::4 o::4",
                                                     "644 of 4003:4003 u::6 g::0 g:4005:0 m::4 o::4"}),
                         RowName());

TEST_F(KeptTest, AListThatCanNotBeKeptLeavesWhatAllMight)
{
    SetAttribute(Path("a"), kAccess, ListBytes("u::6 u:4000:4 g::6 m::6 o::4"));
    {
        Faults const faults({{Call::kSetAttribute, EOPNOTSUPP}});
        EXPECT_EQ(Replace(), 0);
    }
    EXPECT_EQ(Permissions(Path("a")), "644 of 0:0");
    EXPECT_EQ(log.Take(), (std::vector<Logged>{NotKeptByReplace("access list")}));
    SetAttribute(Path("a"), kAccess, ListBytes("u::6 u:4000:0 g::6 m::6 o::4"));
    {
        Faults const faults({{Call::kSetAttribute, EOPNOTSUPP}});
        EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 0);
    }
    EXPECT_EQ(Permissions(Path("b")), "600 of 0:0") << "one user was shut out";
    EXPECT_EQ(log.Take(), (std::vector<Logged>{NotKept(
                              "virtual ErrCode KORVA::FILE_SYS::File::CopyTo(const STRING::CoreString &)",
                              Path("b").native() + ": its access list could not be kept")}));
}

TEST_F(KeptTest, WhatIsNotKeptIsLogged)
{
    SetAttribute(Path("a"), "user.note", "gone");
    {
        Faults const faults({{Call::kSetAttribute, ENOSPC}});
        EXPECT_EQ(Replace(), 0);
    }
    EXPECT_EQ(Attributes(Path("a")), (std::map<std::string, std::string>{}));
    EXPECT_EQ(log.Take(), (std::vector<Logged>{NotKeptByReplace("extended attribute user.note")}));

    ASSERT_EQ(chown(Path("a").c_str(), kOwner, kGroup), 0);
    ASSERT_EQ(setegid(kOther), 0);
    ASSERT_EQ(seteuid(kOther), 0);
    FILE_SYS::ErrCode const status = Replace();
    ASSERT_EQ(seteuid(0), 0);
    ASSERT_EQ(setegid(0), 0);
    EXPECT_EQ(status, 0);
    EXPECT_EQ(log.Take(), (std::vector<Logged>{NotKeptByReplace("owner"), NotKeptByReplace("group")}));
}
} // namespace
} // namespace KORVA::TESTS
