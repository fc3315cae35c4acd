// A test program whose test waits for ever.
#include <gtest/gtest.h>

#include <unistd.h>

TEST(Hanging, NeverEnds)
{
    for (;;)
        pause();
}
