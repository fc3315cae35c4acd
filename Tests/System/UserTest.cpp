// What the user database says, however it says it.
#include "System/User.h"

#include "Support/RowName.h"

#include <gtest/gtest.h>
#include <pwd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

namespace
{
/// What the calls answer, one after the other; the last stays.
std::vector<int> sAnswers;
std::size_t sRoom = 0;
std::string sHome;
bool sIsListed = true;
std::size_t sCalls = 0;
} // namespace

// This stands before the system's own in this program.
extern "C" [[gnu::visibility("default")]] int getpwuid_r(uid_t, passwd* entry, char* room, std::size_t size,
                                                         passwd** found)
{
    int const answer = sAnswers[std::min(sCalls++, sAnswers.size() - 1)];
    *found = nullptr;
    if (answer != 0)
        return answer;
    if (size < sRoom)
        return ERANGE;
    std::memcpy(room, sHome.c_str(), sHome.size() + 1);
    entry->pw_dir = room;
    *found = sIsListed ? entry : nullptr;
    return 0;
}

namespace KORVA::TESTS
{
namespace
{
struct UserRow
{
    char const* name;
    std::vector<int> answers;
    /// What the entry takes.
    std::size_t room;
    bool isListed;
    char const* home;
};

class UserDatabase : public ::testing::TestWithParam<UserRow>
{
};

TEST_P(UserDatabase, IsAskedUntilItAnswers)
{
    sAnswers = GetParam().answers;
    sRoom = GetParam().room;
    sIsListed = GetParam().isListed;
    sHome = "/home/u";
    sCalls = 0;
    EXPECT_EQ(SYSTEM::HomeInUserDatabase(), GetParam().home);
}

INSTANTIATE_TEST_SUITE_P(Rows, UserDatabase,
                         ::testing::Values(UserRow{"AtOnce", {0}, 100, true, "/home/u"},
                                           UserRow{"Interrupted", {EINTR, EINTR, 0}, 100, true, "/home/u"},
                                           UserRow{"LongEntry", {0}, 100'000, true, "/home/u"},
                                           UserRow{"EndlessEntry", {ERANGE}, 100, true, ""},
                                           UserRow{"NotListed", {0}, 100, false, ""},
                                           UserRow{"Failing", {EIO}, 100, true, ""}),
                         RowName());
} // namespace
} // namespace KORVA::TESTS
