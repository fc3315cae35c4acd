// Following and stopping a copy.
#include "Companions/FileIO/FileFixture.h"
#include <tessio/FileIO/ICopyProgress.h>
#include <tessio/ObjectModel/TObject.h>

#include <unistd.h>

namespace KORVA::TESTS
{
namespace
{
struct Heard
{
    std::vector<std::pair<uint64, uint64>> calls;
    /// Stops the copy at the call of this number, counted from 1.
    std::size_t stopAt = 0;
    /// Cut to nothing at the first call.
    fs::path cut;
};

class Progress final : public TObject<FILE_SYS::ICopyProgress>
{
public:
    explicit Progress(Heard& heard) : mHeard(heard) {}

    bool OnCopied(uint64 done, uint64 total) override
    {
        if (mHeard.calls.empty() && !mHeard.cut.empty())
            fs::resize_file(mHeard.cut, 0);
        mHeard.calls.emplace_back(done, total);
        return mHeard.calls.size() != mHeard.stopAt;
    }

private:
    Heard& mHeard;
};

class ProgressFactory final : public TObject<IClassFactory>
{
public:
    explicit ProgressFactory(Heard& heard) : mHeard(heard) {}

    ErrCode CreateInstance(GUID const& classId, IObject** out) override
    {
        *out = classId == FILE_SYS::IID_COPY_PROGRESS ? new Progress(mHeard) : nullptr;
        return *out ? 0 : -1004;
    }

private:
    Heard& mHeard;
};

class CopyProgressTest : public FileTest
{
protected:
    CopyProgressTest()
    {
        TInterfacePtr<IClassFactory> factory;
        factory.Adopt(new ProgressFactory(heard));
        EXPECT_EQ(registry->RegisterFactory(factory.Get()), 0);
    }

    Heard heard;
};

TEST_F(CopyProgressTest, HearsOfEachPieceAndOfTheEnd)
{
    constexpr uint64 kSize = 20'000'000;
    fs::path const path = directory.File("a", std::string(kSize, 'x'));
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 0);
    ASSERT_GE(heard.calls.size(), 2u);
    uint64 before = 0;
    for (auto const& [done, total] : heard.calls)
    {
        EXPECT_EQ(total, kSize);
        EXPECT_GE(done, before);
        before = done;
    }
    EXPECT_LT(heard.calls.front().first, kSize) << "a long copy is heard of before it is done";
    EXPECT_EQ(heard.calls.back().first, kSize);
    EXPECT_EQ(fs::file_size(Path("b")), kSize);
}

TEST_F(CopyProgressTest, HearsOfTheEndOfAnEmptyFile)
{
    directory.File("a", "");
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 0);
    EXPECT_EQ(heard.calls, (std::vector<std::pair<uint64, uint64>>{{0, 0}}));
}

TEST_F(CopyProgressTest, StopsAtTheFirstCall)
{
    heard.stopAt = 1;
    directory.File("a", "new");
    directory.File("b", "old");
    ino_t const before = InodeOf(Path("b"));
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 89);
    EXPECT_EQ(heard.calls.size(), 1u);
    EXPECT_EQ(Content(Path("b")), "old");
    EXPECT_EQ(InodeOf(Path("b")), before);
    EXPECT_EQ(Names(), (List{"a", "b"}));
}

TEST_F(CopyProgressTest, StopsAtALaterCall)
{
    heard.stopAt = 2;
    directory.File("a", std::string(20'000'000, 'x'));
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 89);
    EXPECT_EQ(heard.calls.size(), 2u);
    EXPECT_EQ(Names(), List{"a"});
}

TEST_F(CopyProgressTest, IsAskedForAtEachCopy)
{
    directory.File("a", "text");
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), 0);
    std::size_t const calls = heard.calls.size();
    EXPECT_GE(calls, 1u);
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("c"))), 0);
    EXPECT_EQ(heard.calls.size(), 2 * calls);
}

TEST_F(CopyProgressTest, HearsNothingOfACopyThatCannotBegin)
{
    EXPECT_EQ(Bound("missing")->CopyTo(Text(Path("b"))), 15);
    EXPECT_TRUE(heard.calls.empty());
}

TEST_F(CopyProgressTest, ASourceCutMeanwhileReplacesNothing)
{
    heard.cut = directory.File("a", std::string(20'000'000, 'x'));
    directory.File("b", "kept");
    EXPECT_EQ(Bound("a")->CopyTo(Text(Path("b"))), FILE_SYS::kFailed);
    EXPECT_EQ(Content(Path("b")), "kept");
}
} // namespace
} // namespace KORVA::TESTS
