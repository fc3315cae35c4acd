// No test program waits for ever.
#include "Support/Process.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
TEST(TimeLimit, EndsWhatHangsAndSaysWhatItIs)
{
    TemporaryDirectory const directory;
    Outcome const outcome =
        RunProgram({"/usr/bin/env", "TESSIO_TEST_LIMIT=1", TESSIO_BINARY_DIR "/bin/hanging_program"},
                   directory.Path().string());
    EXPECT_EQ(outcome.exitCode, 124);
    EXPECT_EQ(outcome.err,
              "Hanging.NeverEnds has not ended after 1 s: it waits for something that does not come\n");
}
} // namespace
} // namespace KORVA::TESTS
