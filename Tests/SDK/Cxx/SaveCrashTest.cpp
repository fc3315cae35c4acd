// A process that dies while it saves leaves the old file or the new one.
#include "Platform/Source/ChildProcess.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/Cxx/Dictionary.h>
#include <tessio/Cxx/Load.h>
#include <tessio/Cxx/Save.h>

#include <random>

namespace KORVA::TESTS
{
namespace
{
using CXX::Dictionary;

class CxxCrash : public LibraryTest
{
protected:
    /// Two entries of that number, far apart in the file, and much between them.
    static Dictionary Numbered(int number)
    {
        Dictionary dictionary = Dictionary::Create().value();
        dictionary.Set(1, number);
        EXPECT_TRUE(
            dictionary.Set(2, std::vector<unsigned char>(300'000, static_cast<unsigned char>(number))));
        dictionary.Set(3, number);
        return dictionary;
    }

    TemporaryDirectory directory;
};

TEST_F(CxxCrash, TheFileIsAlwaysWhole)
{
    constexpr int kRounds = 60;
    std::filesystem::path const path = directory.Path() / "a";
    ASSERT_TRUE(CXX::Save(path, Numbered(0)));
    std::mt19937 random(1);
    int last = 0;
    int changed = 0;
    // A slow disk gets more and more time, until some child has saved something.
    unsigned longest = 15'000;
    for (int round = 0; round < kRounds; ++round)
    {
        {
            ChildProcess const child([&path, last] {
                for (int number = last + 1;; ++number)
                    if (!CXX::Save(path, Numbered(number)))
                        return 1;
            });
            std::this_thread::sleep_for(std::chrono::microseconds(random() % longest));
            // Leaving the block kills the child, wherever it is.
        }
        auto const loaded = CXX::Load<Dictionary>(path);
        ASSERT_TRUE(loaded) << "round " << round << ": " << loaded.error().Message();
        int const number = loaded->Get<int>(1).value();
        EXPECT_GE(number, last);
        EXPECT_EQ(loaded->Get<int>(3).value(), number);
        auto const bytes = loaded->Get<std::span<unsigned char const>>(2).value();
        ASSERT_EQ(bytes.size(), 300'000u);
        EXPECT_EQ(bytes.front(), static_cast<unsigned char>(number));
        EXPECT_EQ(bytes.back(), static_cast<unsigned char>(number));
        changed += number != last;
        longest += changed == 0 ? 10'000 : 0;
        last = number;
    }
    EXPECT_GT(changed, 0) << "no child lived long enough to save anything";
    for (auto const& entry : std::filesystem::directory_iterator(directory.Path()))
    {
        EXPECT_TRUE(entry.path() == path || entry.path().filename().string().starts_with(".a."))
            << entry.path();
    }
}
} // namespace
} // namespace KORVA::TESTS
