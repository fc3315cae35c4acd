// What reaches the disk, and in which order, when a file is replaced: a loss of power leaves the old file or
// the new one only if the content is there before its name.
#include "Companions/FileIO/FileFixture.h"
#include "Support/SystemCalls.h"

namespace KORVA::TESTS
{
namespace
{
class FlushTest : public FileTest
{
protected:
    List const kWhole{"flush the file", "rename", "flush the directory"};
};

TEST_F(FlushTest, ReplaceFlushesTheContentBeforeItsNameAndThenTheName)
{
    {
        Faults const none;
        EXPECT_EQ(Bound("a")->Replace("text", 4), 0);
        EXPECT_EQ(none.Events(), kWhole) << "a new file";
    }
    Faults const none;
    EXPECT_EQ(Bound("a")->Replace("more text", 9), 0);
    EXPECT_EQ(none.Events(), kWhole) << "in place of another";
}

TEST_F(FlushTest, CopiesAreFlushedToo)
{
    directory.File("a", "text");
    directory.File("b", "old");
    Faults const none;
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 0);
    EXPECT_EQ(none.Events(), kWhole);
}
} // namespace
} // namespace KORVA::TESTS
