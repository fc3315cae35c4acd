// What reaches the disk, and in which order, when a file is replaced: a loss of power leaves the old file or
// the new one only if the content is there before its name.
#include "Companions/FileIO/FileFixture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdio>

namespace
{
std::vector<std::string>* sEvents = nullptr;
}

// These stand before the system's own in this program, for all libraries in it.
extern "C" [[gnu::visibility("default")]] int fsync(int descriptor)
{
    struct stat status
    {
    };
    if (sEvents && fstat(descriptor, &status) == 0)
        sEvents->push_back(S_ISDIR(status.st_mode) ? "flush the directory" : "flush the file");
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

extern "C" [[gnu::visibility("default")]] int rename(char const* from, char const* to) noexcept
{
    if (sEvents)
        sEvents->push_back("rename");
    return static_cast<int>(syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}

namespace KORVA::TESTS
{
namespace
{
class FlushTest : public FileTest
{
protected:
    FlushTest() { sEvents = &events; }
    ~FlushTest() override { sEvents = nullptr; }

    List const kWhole{"flush the file", "rename", "flush the directory"};
    std::vector<std::string> events;
};

TEST_F(FlushTest, ReplaceFlushesTheContentBeforeItsNameAndThenTheName)
{
    EXPECT_EQ(Bound("a")->Replace("text", 4), 0);
    EXPECT_EQ(events, kWhole) << "a new file";
    events.clear();
    EXPECT_EQ(Bound("a")->Replace("more text", 9), 0);
    EXPECT_EQ(events, kWhole) << "in place of another";
}

TEST_F(FlushTest, CopiesAreFlushedToo)
{
    directory.File("a", "text");
    directory.File("b", "old");
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 0);
    EXPECT_EQ(events, kWhole);
}
} // namespace
} // namespace KORVA::TESTS
