// Overwriting what held secrets.
#include "Platform/SecureMemory.h"

#include <gtest/gtest.h>

#include <string>

namespace KORVA::TESTS
{
namespace
{
using PLATFORM::WipeMemory;

TEST(SecureMemory, IsZeroAndItsNeighboursAreNot)
{
    for (std::size_t const size : {1u, 7u, 8u, 9u, 63u, 64u, 4097u})
        for (std::size_t const offset : {0u, 1u, 5u})
        {
            std::string memory(offset + size + 3, 'x');
            WipeMemory(memory.data() + offset, size);
            EXPECT_EQ(memory, std::string(offset, 'x') + std::string(size, '\0') + "xxx")
                << size << ' ' << offset;
        }
}

TEST(SecureMemory, OfNoSizeStaysAsItIs)
{
    std::string memory = "secret";
    WipeMemory(memory.data(), 0);
    EXPECT_EQ(memory, "secret");
}
} // namespace
} // namespace KORVA::TESTS
