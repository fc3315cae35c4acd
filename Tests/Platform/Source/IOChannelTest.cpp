// What a channel tells its handlers.
#include "Platform/IOChannel.h"

#include "Platform/Source/ChannelFixture.h"
#include "Support/RowName.h"

#include <sys/mman.h>
#include <sys/stat.h>

#include <gmock/gmock.h>

namespace KORVA::TESTS
{
namespace
{
using PLATFORM::Data;
using ::testing::ElementsAre;
namespace fs = std::filesystem;

constexpr int kIOError = 5;
constexpr int kBadDescriptor = 9;
constexpr int kIsDirectory = 21;
constexpr int kInvalid = 22;
constexpr int kNoSpace = 28;
constexpr int kIllegalSeek = 29;

/// Operations of a channel, begun and waited for, or served at once.
class Channels : public ChannelTestWith<FormRow>
{
protected:
    Calls Read(IOChannelRef const& channel, std::int64_t offset, std::size_t length, void* destination)
    {
        Recorder recorder;
        if (GetParam().here)
            channel->ReadHere(offset, length, destination, recorder.Handler());
        else
            channel->Read(offset, length, destination, recorder.Handler());
        return recorder.Wait();
    }
    Calls Write(IOChannelRef const& channel, std::int64_t offset, std::string const& bytes)
    {
        Recorder recorder;
        Data const data(bytes.data(), bytes.size());
        if (GetParam().here)
            channel->WriteHere(offset, data, recorder.Handler());
        else
            channel->Write(offset, data, recorder.Handler());
        return recorder.Wait();
    }
    std::string mBuffer = std::string(16, '#');
};
INSTANTIATE_TEST_SUITE_P(Forms, Channels, ::testing::ValuesIn(kForms), RowName());

TEST_P(Channels, DeliverInOneCall)
{
    auto const channel = Open("0123456789", O_RDONLY);
    EXPECT_THAT(Read(channel, 2, 3, mBuffer.data()), ElementsAre(Call{true, "234", 0, mBuffer.data()}));
    EXPECT_EQ(mBuffer, "234#############");
    EXPECT_THAT(Read(channel, 0, 10, mBuffer.data()),
                ElementsAre(Call{true, "0123456789", 0, mBuffer.data()}));
}

TEST_P(Channels, DeliverMuchInOneCall)
{
    std::string const content = std::string(3 << 20, 'a') + std::string(12345, 'b');
    auto const channel = Open(content, O_RDONLY);
    std::string read(content.size(), '\0');
    Calls const calls = Read(channel, 0, read.size(), read.data());
    ASSERT_EQ(calls.size(), 1u);
    EXPECT_TRUE(calls[0].done);
    EXPECT_EQ(calls[0].error, 0);
    EXPECT_EQ(calls[0].address, read.data());
    EXPECT_TRUE(calls[0].bytes == content);
    EXPECT_TRUE(read == content);
}

TEST_P(Channels, TellTheEndOfTheFileInACallOfItsOwn)
{
    auto const channel = Open("0123456789", O_RDONLY);
    EXPECT_THAT(Read(channel, 7, 5, mBuffer.data()),
                ElementsAre(Call{false, "789", 0, mBuffer.data()}, Call{true, "", 0}));
    EXPECT_EQ(mBuffer, "789#############");
}

TEST_P(Channels, DeliverNothingInOneCall)
{
    auto const channel = Open("0123456789", O_RDONLY);
    EXPECT_THAT(Read(channel, 10, 5, mBuffer.data()), ElementsAre(Call{true, "", 0}));
    EXPECT_THAT(Read(channel, 11, 1, mBuffer.data()), ElementsAre(Call{true, "", 0}));
    EXPECT_THAT(Read(channel, std::int64_t{1} << 40, 1, mBuffer.data()), ElementsAre(Call{true, "", 0}));
    EXPECT_THAT(Read(channel, 3, 0, mBuffer.data()), ElementsAre(Call{true, "", 0}));
    EXPECT_THAT(Read(channel, 10, 0, mBuffer.data()), ElementsAre(Call{true, "", 0}));
    EXPECT_EQ(mBuffer, "################");
}

TEST_P(Channels, RefuseOffsetsThatNoFileHas)
{
    auto const channel = Open("0123456789", O_RDWR, 4);
    EXPECT_THAT(Read(channel, -1, 5, mBuffer.data()), ElementsAre(Call{true, "", kInvalid}));
    EXPECT_THAT(Read(channel, INT64_MIN, 5, mBuffer.data()), ElementsAre(Call{true, "", kInvalid}));
    EXPECT_THAT(Read(channel, INT64_MAX, 5, mBuffer.data()), ElementsAre(Call{true, "", kInvalid}));
    EXPECT_THAT(Write(channel, -1, "ab"), ElementsAre(Call{true, "ab", kInvalid}));
    EXPECT_THAT(Write(channel, INT64_MIN, "ab"), ElementsAre(Call{true, "ab", kInvalid}));
    EXPECT_THAT(Write(channel, INT64_MAX, "ab"), ElementsAre(Call{true, "ab", kInvalid}));
    EXPECT_EQ(Content(mPath), "0123456789");
    EXPECT_EQ(mBuffer, "################");
}

TEST_P(Channels, UseMemoryOfTheirOwn)
{
    auto const channel = Open("0123456789", O_RDONLY);
    EXPECT_THAT(WithoutAddresses(Read(channel, 2, 3, nullptr)), ElementsAre(Call{true, "234", 0}));
    EXPECT_THAT(WithoutAddresses(Read(channel, 7, 5, nullptr)),
                ElementsAre(Call{false, "789", 0}, Call{true, "", 0}));
    EXPECT_THAT(Read(channel, 10, 5, nullptr), ElementsAre(Call{true, "", 0}));
    EXPECT_THAT(Read(channel, 0, 0, nullptr), ElementsAre(Call{true, "", 0}));
    EXPECT_THAT(Read(channel, -1, 5, nullptr), ElementsAre(Call{true, "", kInvalid}));
    // However much is asked for: what is there is what counts.
    EXPECT_THAT(WithoutAddresses(Read(channel, 0, std::size_t{1} << 50, nullptr)),
                ElementsAre(Call{false, "0123456789", 0}, Call{true, "", 0}));
}

TEST_P(Channels, DeliverWhatCameBeforeAnError)
{
    auto const page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    int const file = open(mDirectory.File("page", std::string(page, 'x')).c_str(), O_RDONLY);
    // This process's memory, where a page that can be read is followed by one with nothing behind it.
    void* const pages = mmap(nullptr, 2 * page, PROT_READ, MAP_SHARED, file, 0);
    close(file);
    ASSERT_NE(pages, MAP_FAILED);
    int const memory = open("/proc/self/mem", O_RDONLY);
    auto const channel = IOChannel::Create(memory, nullptr);
    close(memory);
    std::string read(2 * page, '#');
    EXPECT_THAT(Read(channel, reinterpret_cast<std::int64_t>(pages), read.size(), read.data()),
                ElementsAre(Call{false, std::string(page, 'x'), 0, read.data()}, Call{true, "", kIOError}));
    EXPECT_EQ(read, std::string(page, 'x') + std::string(page, '#'));
    munmap(pages, 2 * page);
}

TEST_P(Channels, WriteInOneCall)
{
    auto const channel = Open("0123456789", O_RDWR);
    EXPECT_THAT(Write(channel, 3, "abc"), ElementsAre(Call{true, "", 0}));
    EXPECT_EQ(Content(mPath), "012abc6789");
    EXPECT_THAT(Write(channel, 9, "xyz"), ElementsAre(Call{true, "", 0}));
    EXPECT_EQ(Content(mPath), "012abc678xyz");
    EXPECT_THAT(Write(channel, 14, "!"), ElementsAre(Call{true, "", 0}));
    EXPECT_EQ(Content(mPath), std::string("012abc678xyz\0\0!", 15));
}

TEST_P(Channels, WriteMuch)
{
    std::string const bytes = std::string(3 << 20, 'a') + std::string(12345, 'b');
    auto const channel = Open("#", O_RDWR);
    EXPECT_THAT(Write(channel, 1, bytes), ElementsAre(Call{true, "", 0}));
    EXPECT_TRUE(Content(mPath) == "#" + bytes);
}

TEST_P(Channels, WriteNothing)
{
    for (int const access : {O_RDWR, O_RDONLY})
    {
        auto const channel = Open("0123456789", access);
        EXPECT_THAT(Write(channel, 3, ""), ElementsAre(Call{true, "", 0}));
        EXPECT_THAT(Write(channel, 30, ""), ElementsAre(Call{true, "", 0}));
        EXPECT_EQ(Content(mPath), "0123456789");
    }
}

TEST_P(Channels, FailWhereTheAccessForbids)
{
    auto const reading = Open("0123456789", O_RDONLY);
    EXPECT_THAT(Write(reading, 3, "abc"), ElementsAre(Call{true, "abc", kBadDescriptor}));
    auto const writing = Open("0123456789", O_WRONLY);
    EXPECT_THAT(Read(writing, 3, 3, mBuffer.data()), ElementsAre(Call{true, "", kBadDescriptor}));
    EXPECT_THAT(Read(writing, 3, 3, nullptr), ElementsAre(Call{true, "", kBadDescriptor}));
    EXPECT_EQ(Content(mPath), "0123456789");
    // What they are there for goes on, on each of them.
    EXPECT_THAT(Read(reading, 0, 2, mBuffer.data()), ElementsAre(Call{true, "01", 0, mBuffer.data()}));
    EXPECT_THAT(Write(writing, 0, "ab"), ElementsAre(Call{true, "", 0}));
    EXPECT_EQ(Content(mPath), "ab23456789");
}

TEST_P(Channels, FailOnAFullDevice)
{
    int const full = open("/dev/full", O_RDWR);
    auto const channel = IOChannel::Create(full, nullptr);
    close(full);
    EXPECT_THAT(Write(channel, 0, "abc"), ElementsAre(Call{true, "abc", kNoSpace}));
    EXPECT_THAT(Write(channel, 0, "abc"), ElementsAre(Call{true, "abc", kNoSpace}));
    EXPECT_THAT(Read(channel, 0, 2, mBuffer.data()),
                ElementsAre(Call{true, std::string(2, '\0'), 0, mBuffer.data()}));
}

TEST_P(Channels, CountFromTheStartOfTheFile)
{
    mPath = mDirectory.File("file", "0123456789");
    int const descriptor = open(mPath.c_str(), O_RDWR);
    ASSERT_EQ(lseek(descriptor, 4, SEEK_SET), 4);
    auto const channel = IOChannel::Create(descriptor, nullptr);
    EXPECT_THAT(Read(channel, 0, 2, mBuffer.data()), ElementsAre(Call{true, "01", 0, mBuffer.data()}));
    EXPECT_THAT(Write(channel, 2, "ab"), ElementsAre(Call{true, "", 0}));
    EXPECT_EQ(Content(mPath), "01ab456789");
    // Where the descriptor stands is neither used nor changed.
    EXPECT_EQ(lseek(descriptor, 0, SEEK_CUR), 4);
    ASSERT_EQ(lseek(descriptor, 1, SEEK_SET), 1);
    EXPECT_THAT(Read(channel, 1, 2, mBuffer.data()), ElementsAre(Call{true, "1a", 0, mBuffer.data()}));
    EXPECT_THAT(Read(channel, 9, 9, mBuffer.data()),
                ElementsAre(Call{false, "9", 0, mBuffer.data()}, Call{true, "", 0}));
    EXPECT_EQ(lseek(descriptor, 0, SEEK_CUR), 1);
    close(descriptor);
}

struct UnusableRow
{
    char const* name;
    int (*open)(fs::path const& directory);
    int error;
};

class UnusableDescriptor : public ChannelTestWith<UnusableRow>
{
};

TEST_P(UnusableDescriptor, GivesAChannelWhoseOperationsFail)
{
    int const descriptor = GetParam().open(mDirectory.Path());
    Cleanups cleanups;
    auto const channel = IOChannel::Create(descriptor, cleanups.Handler());
    ASSERT_TRUE(channel);
    EXPECT_EQ(cleanups.Wait(), GetParam().error);
    char byte = '#';
    for (int again = 0; again < 2; ++again)
    {
        Recorder reading;
        channel->Read(0, 1, &byte, reading.Handler());
        EXPECT_THAT(reading.Wait(), ElementsAre(Call{true, "", GetParam().error}));
        Recorder readingHere;
        channel->ReadHere(0, 1, &byte, readingHere.Handler());
        EXPECT_THAT(readingHere.Wait(), ElementsAre(Call{true, "", GetParam().error}));
        Recorder writing;
        channel->Write(0, Data("ab", 2), writing.Handler());
        EXPECT_THAT(writing.Wait(), ElementsAre(Call{true, "ab", GetParam().error}));
        Recorder writingHere;
        channel->WriteHere(0, Data("ab", 2), writingHere.Handler());
        EXPECT_THAT(writingHere.Wait(), ElementsAre(Call{true, "ab", GetParam().error}));
    }
    EXPECT_EQ(byte, '#');
    EXPECT_EQ(cleanups.Count(), 1);
    if (descriptor >= 0)
        close(descriptor);
}

int OpenFIFO(fs::path const& directory)
{
    fs::path const path = directory / "fifo";
    return mkfifo(path.c_str(), 0600) == 0 ? open(path.c_str(), O_RDWR | O_NONBLOCK) : -1;
}

UnusableRow const kUnusable[] = {
    {"None", [](fs::path const&) { return -1; }, kBadDescriptor},
    {"Closed",
     [](fs::path const& directory) {
         int const descriptor = open(directory.c_str(), O_RDONLY);
         close(descriptor);
         return descriptor + 1000;
     },
     kBadDescriptor},
    {"Directory", [](fs::path const& directory) { return open(directory.c_str(), O_RDONLY); }, kIsDirectory},
    {"FIFO", OpenFIFO, kIllegalSeek},
};
INSTANTIATE_TEST_SUITE_P(Descriptors, UnusableDescriptor, ::testing::ValuesIn(kUnusable), RowName());
} // namespace
} // namespace KORVA::TESTS
