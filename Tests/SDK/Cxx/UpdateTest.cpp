// What several processes change at once: nothing is lost.
#include <tessio/Cxx/Update.h>

#include "Platform/Source/ChildProcess.h"
#include "SDK/Cxx/Note.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/Cxx/Dictionary.h>

#include <cstdio>
#include <memory>
#include <stdexcept>

namespace KORVA::TESTS
{
namespace
{
using CXX::Dictionary;
using CXX::Update;
using CXX::URI;
namespace fs = std::filesystem;

class CxxUpdate : public LibraryTest
{
protected:
    static constexpr int kProcesses = 4;

    static Dictionary Counting(int number)
    {
        Dictionary dictionary = Dictionary::Create().value();
        dictionary.Set(1, number);
        return dictionary;
    }

    static void CountOn(Dictionary& dictionary) { dictionary.Set(1, dictionary.Get<int>(1).value() + 1); }

    /// Has several processes do the same at once; how many did it with success. The others say why not.
    static int InProcesses(std::function<CXX::Result<void>()> const& body)
    {
        std::vector<std::unique_ptr<ChildProcess>> children;
        for (int i = 0; i < kProcesses; ++i)
            children.push_back(std::make_unique<ChildProcess>([&body] {
                auto const done = body();
                if (!done)
                    std::fprintf(stderr, "%s\n", done.error().Message().c_str());
                return done ? 0 : 1;
            }));
        int good = 0;
        for (auto const& child : children)
            good += child->Wait() == 0;
        return good;
    }

    int Number() const { return CXX::Load<Dictionary>(path)->Get<int>(1).value(); }

    TemporaryDirectory directory;
    fs::path path = directory.Path() / "a";
};

TEST_F(CxxUpdate, NoAppendIsLost)
{
    constexpr int kEach = 50;
    EXPECT_EQ(InProcesses([this] {
                  CXX::Result<void> done;
                  for (int i = 0; i < kEach && done; ++i)
                      done = CXX::Append(path, Counting(i));
                  return done;
              }),
              kProcesses);
    EXPECT_EQ(CXX::LoadAll(path)->objects.size(), std::size_t{kProcesses * kEach});
}

TEST_F(CxxUpdate, NoChangeIsLost)
{
    constexpr int kEach = 200;
    ASSERT_TRUE(CXX::Save(path, Counting(0)));
    EXPECT_EQ(InProcesses([this] {
                  CXX::Result<void> done;
                  for (int i = 0; i < kEach && done; ++i)
                      done = Update<Dictionary>(path, CountOn);
                  return done;
              }),
              kProcesses);
    EXPECT_EQ(Number(), kProcesses * kEach);
}

TEST_F(CxxUpdate, ASaveThatExpectsWhatWasLoadedLosesNothing)
{
    constexpr int kEach = 50;
    ASSERT_TRUE(CXX::Save(path, Counting(0)));
    EXPECT_EQ(InProcesses([this] {
                  CXX::Result<void> saved;
                  for (int done = 0; done < kEach; done += saved ? 1 : 0)
                  {
                      CXX::FileState state;
                      Dictionary counts = CXX::Load<Dictionary>(path, {.state = &state}).value();
                      CountOn(counts);
                      saved = CXX::Save(path, counts, {.state = &state});
                      if (!saved && saved.error().Code() != 2019)
                          break;
                  }
                  return saved;
              }),
              kProcesses);
    EXPECT_EQ(Number(), kProcesses * kEach);
}

TEST_F(CxxUpdate, OfANewFileOneWins)
{
    EXPECT_EQ(InProcesses([this] {
                  CXX::FileState none;
                  auto const saved = CXX::Save(path, Counting(0), {.state = &none});
                  return saved.error().Code() == 2019 ? Update<Dictionary>(path, CountOn) : saved;
              }),
              kProcesses);
    EXPECT_EQ(Number(), kProcesses - 1);
}

TEST_F(CxxUpdate, WaitsForAWriterAndThenRefuses)
{
    ASSERT_TRUE(CXX::Save(path, Counting(5)));
    CXX::Stream const writer = CXX::File::At(path)->Write().value();
    EXPECT_EQ(Update<Dictionary>(path, CountOn).error().Message(),
              "cannot update " + CXX::Quoted(path.string()) + ": locked by somebody else (kLocked)");
    EXPECT_EQ(CXX::Append(path, Counting(6)).error().Code(), 40);
    EXPECT_EQ(Number(), 5);
}

TEST_F(CxxUpdate, KeepsOthersAwayWhileItChanges)
{
    ASSERT_TRUE(CXX::Save(path, Counting(5)));
    EXPECT_TRUE(Update<Dictionary>(path, [this](Dictionary& counts) {
        EXPECT_EQ(CXX::File::At(path)->Write().error().Code(), 40);
        auto const others = CXX::DETAIL::CreateComponent<FILE_SYS::IFileAccess>(FILE_SYS::IID_IFILE_ACCESS);
        STRING::CoreString const name(std::string_view(path.native()));
        EXPECT_EQ(others->Lock(name, 0), FILE_SYS::kLockedByOthers);
        CountOn(counts);
    }));
    EXPECT_EQ(Number(), 6);
}

TEST_F(CxxUpdate, AKilledProcessLeavesTheFileAndNoLock)
{
    ASSERT_TRUE(CXX::Save(path, Counting(5)));
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    {
        ChildProcess const child([this, &ready] {
            auto const updated = Update<Dictionary>(path, [&ready](Dictionary& counts) {
                CountOn(counts);
                if (write(ready[1], "1", 1) == 1)
                    pause();
            });
            return updated ? 0 : 1;
        });
        close(ready[1]);
        char token = 0;
        EXPECT_EQ(read(ready[0], &token, 1), 1);
        close(ready[0]);
        EXPECT_EQ(CXX::File::At(path)->Write().error().Code(), 40);
        // Leaving the block kills the child in the middle of its change.
    }
    EXPECT_EQ(Number(), 5);
    EXPECT_TRUE(Update<Dictionary>(path, CountOn));
    EXPECT_EQ(Number(), 6);
}

TEST_F(CxxUpdate, AChangeThatFailsLeavesTheFile)
{
    ASSERT_TRUE(CXX::Save(path, Counting(5)));
    auto const failed = Update<Dictionary>(path, [](Dictionary& counts) {
        CountOn(counts);
        return CXX::Result<void>(CXX::Error(77, "count"));
    });
    EXPECT_EQ(failed.error().Code(), 77);
    EXPECT_THROW(static_cast<void>(Update<Dictionary>(
                     path, [](Dictionary& counts) { CountOn(counts), throw std::runtime_error("no"); })),
                 std::runtime_error);
    EXPECT_EQ(Number(), 5);
    EXPECT_TRUE(Update<Dictionary>(path, [](Dictionary& counts) {
        CountOn(counts);
        return CXX::Result<void>();
    })) << "nobody has kept the lock";
    EXPECT_EQ(Number(), 6);
}

TEST_F(CxxUpdate, KeepsTheByteOrder)
{
    ASSERT_TRUE(CXX::Save(path, Counting(5), {.order = CXX::ByteOrder::kBig}));
    CXX::FileState state;
    ASSERT_TRUE(Update<Dictionary>(path, CountOn, {.state = &state}));
    EXPECT_EQ(CXX::LoadAll(path)->order, CXX::ByteOrder::kBig);
    EXPECT_TRUE(CXX::Save(path, Counting(7), {.state = &state})) << "the state is the new one";
}

TEST_F(CxxUpdate, RefusesWhatItWouldLose)
{
    EXPECT_EQ(Update<Dictionary>(path, CountOn).error().Code(), 26);
    EXPECT_TRUE(fs::is_empty(directory.Path()));
    ASSERT_TRUE(CXX::Append(path, Counting(5)));
    ASSERT_TRUE(CXX::Append(path, Counting(6)));
    EXPECT_EQ(Update<Dictionary>(path, CountOn, {.ignoreRest = true}).error().Code(), 2026);
    EXPECT_EQ(CXX::LoadAll(path)->objects.size(), 2u);
    EXPECT_EQ(Update<Dictionary>(directory.Path(), CountOn).error().Code(), 2014);
    directory.File("text", "this is no record file, but it is long enough");
    EXPECT_EQ(Update<Dictionary>(directory.Path() / "text", CountOn).error().Code(), 2021);
}

TEST_F(CxxUpdate, OfWhatAURINames)
{
    ASSERT_TRUE(CXX::Save(path, Counting(5)));
    ASSERT_TRUE(Update<Dictionary>(URI::FromPath(path).value(), CountOn));
    EXPECT_EQ(Number(), 6);
    EXPECT_EQ(Update<Dictionary>(URI::FromText("http://h.example/a").value(), CountOn).error().Code(), 2013);
}

template <class Change>
concept Updating = requires(Change change)
{
    Update<Dictionary>("a", change);
};

static_assert(Updating<void (*)(Dictionary&)> && Updating<CXX::Result<void> (*)(Dictionary const&)>);
static_assert(!Updating<void (*)(int)> && !Updating<bool (*)(Dictionary&)>);
} // namespace
} // namespace KORVA::TESTS
