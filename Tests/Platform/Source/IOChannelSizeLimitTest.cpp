// Writing past the size that the system allows a file.
#include "Platform/Source/ChannelFixture.h"
#include "Platform/Source/FreshProcess.h"
#include "Platform/Source/ResourceLimit.h"
#include "Support/RowName.h"

#include <csignal>

namespace KORVA::TESTS
{
namespace
{
using PLATFORM::Data;

constexpr int kFileTooLarge = 27;

struct LimitRow
{
    char const* name;
    bool here;
    std::int64_t offset;
    std::size_t length;
    Calls calls;
};

class ChannelSizeLimit : public ChannelTestWith<LimitRow>
{
};

TEST_P(ChannelSizeLimit, TellsWhatIsLeftAndEndsNoProcess)
{
    ExpectInFreshProcess(mDirectory, [&](std::filesystem::path const&) {
        std::signal(SIGXFSZ, SIG_DFL);
        auto const channel = Open("0123", O_RDWR);
        std::string const bytes = std::string("abcdefgh").substr(0, GetParam().length);
        Calls calls;
        {
            ResourceLimit const limit(RLIMIT_FSIZE, 8);
            Recorder recorder;
            if (GetParam().here)
                channel->WriteHere(GetParam().offset, Data(bytes.data(), bytes.size()), recorder.Handler());
            else
                channel->Write(GetParam().offset, Data(bytes.data(), bytes.size()), recorder.Handler());
            calls = WithoutAddresses(recorder.Wait());
        }
        EXPECT_EQ(calls, GetParam().calls);
        sigset_t pending;
        EXPECT_EQ(sigpending(&pending), 0);
        EXPECT_EQ(sigismember(&pending, SIGXFSZ), 0);
    });
}

LimitRow const kLimits[] = {
    {"Fits", false, 4, 4, {{true, "", 0}}},
    {"FitsHere", true, 4, 4, {{true, "", 0}}},
    {"SomeOfIt", false, 4, 6, {{false, "ef", 0}, {true, "ef", kFileTooLarge}}},
    {"SomeOfItHere", true, 4, 6, {{false, "ef", 0}, {true, "ef", kFileTooLarge}}},
    {"NothingOfIt", false, 8, 2, {{true, "ab", kFileTooLarge}}},
    {"NothingOfItHere", true, 8, 2, {{true, "ab", kFileTooLarge}}},
};
INSTANTIATE_TEST_SUITE_P(Writes, ChannelSizeLimit, ::testing::ValuesIn(kLimits), RowName());
} // namespace
} // namespace KORVA::TESTS
