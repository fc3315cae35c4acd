// Calls of the system that fail, are interrupted or do only a part: what arrives is whole, or the old file
// stays, and the status says which and why.
#include "Companions/Child.h"
#include "Companions/FileIO/FileFixture.h"
#include "Support/RowName.h"
#include "Support/SystemCalls.h"

#include <sys/resource.h>
#include <sys/stat.h>

#include <cerrno>

namespace KORVA::TESTS
{
namespace
{
/// 300,000 bytes, of which no stretch can stand in another's place.
std::string Large()
{
    std::string text;
    for (int line = 0; text.size() < 300'000; ++line)
        text += std::to_string(line) + "\n";
    text.resize(300'000);
    return text;
}

constexpr Fault kNotInTheKernel{Call::kCopyFileRange, EXDEV, 1, kForEver};
constexpr Fault kNotSentEither{Call::kSendFile, EINVAL, 1, kForEver};

struct TroubleRow
{
    char const* name;
    std::vector<Fault> faults;
    FILE_SYS::ErrCode status;
};

class CopyTrouble : public FileTest, public ::testing::WithParamInterface<TroubleRow>
{
};

TEST_P(CopyTrouble, ArrivesWholeOrNotAtAll)
{
    std::string const content = Large();
    directory.File("a", content);
    directory.File("b", "old");
    FILE_SYS::ErrCode status = -1;
    {
        Faults const faults(GetParam().faults);
        status = Bound("a")->CopyTo(Text(Path("b")));
    }
    EXPECT_EQ(status, GetParam().status);
    bool const isNew = GetParam().status == 0 || GetParam().status == 90;
    EXPECT_TRUE(Content(Path("b")) == (isNew ? content : "old"));
    EXPECT_EQ(Names(), (List{"a", "b"}));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, CopyTrouble,
    ::testing::Values(
        TroubleRow{"KernelInterrupted", {{Call::kCopyFileRange, EINTR}}, 0},
        TroubleRow{"KernelShort", {{Call::kCopyFileRange, kShort, 1, 3}}, 0},
        TroubleRow{"KernelRefusesInTheMiddle",
                   {{Call::kCopyFileRange, kShort}, {Call::kCopyFileRange, EXDEV, 2}},
                   0},
        TroubleRow{"SendingInterrupted", {kNotInTheKernel, {Call::kSendFile, EINTR}}, 0},
        TroubleRow{"SendingShort", {kNotInTheKernel, {Call::kSendFile, kShort, 1, 3}}, 0},
        TroubleRow{"ByHand", {kNotInTheKernel, kNotSentEither}, 0},
        TroubleRow{"ReadInterrupted", {kNotInTheKernel, kNotSentEither, {Call::kRead, EINTR, 2}}, 0},
        TroubleRow{"ReadShort", {kNotInTheKernel, kNotSentEither, {Call::kRead, kShort, 1, 3}}, 0},
        TroubleRow{"WriteInterrupted", {kNotInTheKernel, kNotSentEither, {Call::kWrite, EINTR, 2}}, 0},
        TroubleRow{"WriteShort", {kNotInTheKernel, kNotSentEither, {Call::kWrite, kShort, 1, 3}}, 0},
        TroubleRow{"WriteShortThenInterrupted",
                   {kNotInTheKernel, kNotSentEither, {Call::kWrite, kShort, 2}, {Call::kWrite, EINTR, 3}},
                   0},
        TroubleRow{"KernelMeetsAFailingDevice", {{Call::kCopyFileRange, EIO}}, 91},
        TroubleRow{"ReadMeetsAFailingDevice", {kNotInTheKernel, kNotSentEither, {Call::kRead, EIO, 2}}, 91},
        TroubleRow{"WriteMeetsAFailingDevice", {kNotInTheKernel, kNotSentEither, {Call::kWrite, EIO, 2}}, 91},
        TroubleRow{"WriteMeetsAFullOne", {kNotInTheKernel, kNotSentEither, {Call::kWrite, ENOSPC, 2}}, 28},
        TroubleRow{"FlushFails", {{Call::kFlushFile, EIO}}, 91},
        TroubleRow{"FlushFindsNoSpace", {{Call::kFlushFile, ENOSPC}}, 28},
        TroubleRow{"RenameFails", {{Call::kRename, EIO}}, 91},
        TroubleRow{"NoMemoryForTheRename", {{Call::kRename, ENOMEM}}, 92},
        TroubleRow{"NameNotFlushed", {{Call::kFlushDirectory, EIO}}, 90},
        TroubleRow{"NoSpaceForTheName", {{Call::kFlushDirectory, ENOSPC}}, 90},
        TroubleRow{"DirectoriesCanNotBeFlushed", {{Call::kFlushDirectory, EINVAL}}, 0}),
    RowName());

class ReplaceTrouble : public FileTest, public ::testing::WithParamInterface<TroubleRow>
{
};

TEST_P(ReplaceTrouble, IsWholeOrNotThereAtAll)
{
    std::string const content = Large();
    directory.File("a", "old");
    FILE_SYS::ErrCode status = -1;
    {
        Faults const faults(GetParam().faults);
        status = Bound("a")->Replace(content.data(), content.size());
    }
    EXPECT_EQ(status, GetParam().status);
    bool const isNew = GetParam().status == 0 || GetParam().status == 90;
    EXPECT_TRUE(Content(Path("a")) == (isNew ? content : "old"));
    EXPECT_EQ(Names(), List{"a"});
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ReplaceTrouble,
    ::testing::Values(TroubleRow{"WriteInterrupted", {{Call::kWrite, EINTR}}, 0},
                      TroubleRow{"WriteShort", {{Call::kWrite, kShort, 1, 3}}, 0},
                      TroubleRow{"WriteFails", {{Call::kWrite, kShort}, {Call::kWrite, EIO, 2}}, 91},
                      TroubleRow{"FlushFails", {{Call::kFlushFile, EIO}}, 91},
                      TroubleRow{"RenameFails", {{Call::kRename, EIO}}, 91},
                      TroubleRow{"NameNotFlushed", {{Call::kFlushDirectory, EIO}}, 90}),
    RowName());

TEST_F(FileTest, WhatTheSystemSaysIsTold)
{
    struct
    {
        int error;
        FILE_SYS::ErrCode status;
    } const kRows[] = {{ENOENT, 15}, {ENOTDIR, 15}, {EACCES, 21}, {EIO, 91},
                       {ENOMEM, 92}, {ENFILE, 92},  {EMFILE, 92}, {ELOOP, 1}};
    directory.File("a", "text");
    for (auto const& row : kRows)
    {
        FILE_SYS::IFilePtr const file = Bound("a");
        uint64 number = 7;
        uchar flag = 7;
        Faults const faults({{Call::kStat, row.error, 1, kForEver}});
        EXPECT_EQ(file->GetSize(number), row.status) << row.error;
        EXPECT_EQ(file->GetModificationDate(number), row.status) << row.error;
        EXPECT_EQ(file->QueryFlag(flag), row.status) << row.error;
        EXPECT_EQ(file->SetCreationDate(number), row.status) << row.error;
        EXPECT_EQ(number, 7u);
        EXPECT_EQ(flag, 7);
    }
}

TEST_F(FileTest, TooManyOpenFilesAreNoLackOfPermission)
{
    directory.File("a", "old");
    directory.File("b", "new");
    int const results = InChild([this] {
        FILE_SYS::IFilePtr const a = Bound("a");
        FILE_SYS::IFilePtr const b = Bound("b");
        rlimit const limit{0, 0};
        if (setrlimit(RLIMIT_NOFILE, &limit) != 0)
            return 254;
        return a->Replace("new", 3) == 92 && b->CopyTo(Text(Path("a"))) == 92 && a->Sync() == 92 ? 0 : 1;
    });
    EXPECT_EQ(results, 0);
    EXPECT_EQ(Content(Path("a")), "old");
}

TEST_F(FileTest, ADirectoryThatMayBeWrittenAndNotReadTakesTheNewFile)
{
    fs::create_directory(Path("d"));
    directory.File("d/a", "old");
    directory.File("b", "copied");
    for (char const* const path : {"d", "d/a", "b"})
        ASSERT_EQ(chmod(Path(path).c_str(), 0777), 0);
    ASSERT_EQ(chmod(Path("d").c_str(), 0333), 0);
    EXPECT_EQ(InUnprivilegedChild([this] { return static_cast<int>(Bound("d/a")->Replace("new", 3)); }), 90);
    EXPECT_EQ(Content(Path("d/a")), "new");
    EXPECT_EQ(InUnprivilegedChild([this] { return static_cast<int>(Bound("b")->CopyTo(Text(Path("d/a")))); }),
              90);
    EXPECT_EQ(Content(Path("d/a")), "copied");
    ASSERT_EQ(chmod(Path("d").c_str(), 0755), 0);
    EXPECT_EQ(std::distance(fs::directory_iterator(Path("d")), fs::directory_iterator()), 1);
}

TEST_F(FileTest, TheLongestPathIsReplacedToo)
{
    constexpr std::size_t kLongest = 4095;
    std::string path = directory.Path().native();
    while (kLongest - path.size() > 202)
    {
        path += "/" + std::string(200, 'd');
        fs::create_directory(path);
    }
    path += "/" + std::string(kLongest - path.size() - 1, 'n');
    ASSERT_EQ(path.size(), kLongest);
    for (char const* const content : {"new", "newer"})
    {
        EXPECT_EQ(At(path)->Replace(content, std::string_view(content).size()), 0);
        EXPECT_EQ(Content(path), content);
    }
    directory.File("a", "copied");
    EXPECT_EQ(Bound("a")->CopyTo(Text(path)), 0);
    EXPECT_EQ(Content(path), "copied");
}
} // namespace
} // namespace KORVA::TESTS
