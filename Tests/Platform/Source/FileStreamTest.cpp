#include "Platform/FileStream.h"

#include "Platform/Source/ChildProcess.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <string>

namespace KORVA
{
namespace
{
using PLATFORM::Access;
using PLATFORM::FileStream;
using PLATFORM::Lock;
using PLATFORM::OpenResult;
using PLATFORM::PathString;
using TESTS::Content;
using TESTS::RowName;
namespace fs = std::filesystem;

std::unique_ptr<PathString> PathOf(fs::path const& path) { return PathString::From(path.u16string()); }

struct PathRow
{
    char const* name;
    std::u16string path;
    std::optional<std::string> representation;
};

class PathStrings : public ::testing::TestWithParam<PathRow>
{
};

TEST_P(PathStrings, AreUTF8)
{
    std::unique_ptr<PathString> const path = PathString::From(GetParam().path);
    ASSERT_EQ(path != nullptr, GetParam().representation.has_value());
    if (path)
    {
        EXPECT_EQ(path->FileSystemRepresentation(), *GetParam().representation);
    }
}

PathRow const kPaths[] = {
    {"Empty", u"", ""},
    {"Plain", u"/tmp/a b", "/tmp/a b"},
    {"PercentSigns", u"/100%/%41", "/100%/%41"},
    {"TwoBytes", u"/\u00E4", "/\xC3\xA4"},
    {"ThreeBytes", u"/\u20AC", "/\xE2\x82\xAC"},
    {"FourBytes", u"/\U0001F600", "/\xF0\x9F\x98\x80"},
    {"NotComposed", u"/a\u0308", "/a\xCC\x88"},
    {"LoneLead", std::u16string{u'/', 0xD800}, std::nullopt},
    {"LoneTrail", std::u16string{u'/', 0xDC00, u'a'}, std::nullopt},
    {"NullCharacter", std::u16string{u'/', 0, u'a'}, std::nullopt},
};
INSTANTIATE_TEST_SUITE_P(Paths, PathStrings, ::testing::ValuesIn(kPaths), RowName());

struct AccessRow
{
    char const* name;
    Access access;
    int flags;
};

class OpenedFile : public ::testing::TestWithParam<AccessRow>
{
protected:
    TESTS::TemporaryDirectory mDirectory;
};

TEST_P(OpenedFile, HasTheAccessAndNeverWaits)
{
    auto const path = PathOf(mDirectory.File("file", "content"));
    int descriptor = -1;
    ASSERT_EQ(PLATFORM::OpenFile(*path, GetParam().access, Lock::kNone, descriptor), OpenResult::kOpened);
    EXPECT_EQ(fcntl(descriptor, F_GETFL) & O_ACCMODE, GetParam().flags);
    EXPECT_NE(fcntl(descriptor, F_GETFL) & O_NONBLOCK, 0);
    PLATFORM::CloseFile(descriptor);
    EXPECT_EQ(fcntl(descriptor, F_GETFL), -1);
    EXPECT_EQ(Content(mDirectory.Path() / "file"), "content");
}

TEST_P(OpenedFile, IsNeverCreated)
{
    int descriptor = -7;
    auto const path = PathOf(mDirectory.Path() / "missing");
    EXPECT_EQ(PLATFORM::OpenFile(*path, GetParam().access, Lock::kNone, descriptor), OpenResult::kFailed);
    EXPECT_EQ(PLATFORM::OpenFile(*path, GetParam().access, Lock::kExclusive, descriptor),
              OpenResult::kFailed);
    EXPECT_EQ(descriptor, -7);
    EXPECT_TRUE(fs::is_empty(mDirectory.Path()));
}

TEST_P(OpenedFile, NeedsPermission)
{
    fs::path const file = mDirectory.File("file", "content");
    fs::permissions(file, fs::perms::none);
    auto const path = PathOf(file);
    auto const refused = [&path] {
        int descriptor = -7;
        return PLATFORM::OpenFile(*path, GetParam().access, Lock::kNone, descriptor) == OpenResult::kFailed &&
               descriptor == -7;
    };
    EXPECT_EQ(TESTS::RunUnprivileged(refused), 1);
}

AccessRow const kAccesses[] = {
    {"Read", Access::kRead, O_RDONLY},
    {"Write", Access::kWrite, O_WRONLY},
    {"ReadWrite", Access::kReadWrite, O_RDWR},
};
INSTANTIATE_TEST_SUITE_P(Accesses, OpenedFile, ::testing::ValuesIn(kAccesses), RowName());

struct LockRow
{
    char const* name;
    Lock wanted;
    /// As of flock; 0 for none.
    int held;
    OpenResult result;
};

class LockedFile : public ::testing::TestWithParam<LockRow>
{
protected:
    TESTS::TemporaryDirectory mDirectory;
};

TEST_P(LockedFile, AnswersAtOnce)
{
    fs::path const file = mDirectory.File("file", "content");
    std::optional<TESTS::LockHolder> holder;
    if (GetParam().held != 0)
        holder.emplace(file, GetParam().held);
    int descriptor = -7;
    EXPECT_EQ(PLATFORM::OpenFile(*PathOf(file), Access::kRead, GetParam().wanted, descriptor),
              GetParam().result);
    EXPECT_EQ(descriptor != -7, GetParam().result == OpenResult::kOpened);
    if (descriptor != -7)
        PLATFORM::CloseFile(descriptor);
}

LockRow const kLocks[] = {
    {"NoneOverNone", Lock::kNone, 0, OpenResult::kOpened},
    {"NoneOverShared", Lock::kNone, LOCK_SH, OpenResult::kOpened},
    {"NoneOverExclusive", Lock::kNone, LOCK_EX, OpenResult::kOpened},
    {"SharedOverNone", Lock::kShared, 0, OpenResult::kOpened},
    {"SharedOverShared", Lock::kShared, LOCK_SH, OpenResult::kOpened},
    {"SharedOverExclusive", Lock::kShared, LOCK_EX, OpenResult::kLocked},
    {"ExclusiveOverNone", Lock::kExclusive, 0, OpenResult::kOpened},
    {"ExclusiveOverShared", Lock::kExclusive, LOCK_SH, OpenResult::kLocked},
    {"ExclusiveOverExclusive", Lock::kExclusive, LOCK_EX, OpenResult::kLocked},
};
INSTANTIATE_TEST_SUITE_P(Locks, LockedFile, ::testing::ValuesIn(kLocks), RowName());

class FileStreamTest : public ::testing::Test
{
protected:
    int Open(fs::path const& path, Access access, Lock lock = Lock::kNone)
    {
        int descriptor = -1;
        EXPECT_EQ(PLATFORM::OpenFile(*PathOf(path), access, lock, descriptor), OpenResult::kOpened);
        return descriptor;
    }

    std::unique_ptr<FileStream> OpenStream(fs::path const& path)
    {
        auto stream = FileStream::Over(Open(path, Access::kReadWrite), "r+b");
        EXPECT_NE(stream, nullptr);
        return stream;
    }

    TESTS::TemporaryDirectory mDirectory;
};

TEST_F(FileStreamTest, LockGoesWithTheDescriptor)
{
    fs::path const path = mDirectory.File("file", "content");
    int const holder = Open(path, Access::kWrite, Lock::kExclusive);
    int other = -1;
    EXPECT_EQ(PLATFORM::OpenFile(*PathOf(path), Access::kRead, Lock::kShared, other), OpenResult::kLocked);
    PLATFORM::CloseFile(holder);
    EXPECT_EQ(PLATFORM::OpenFile(*PathOf(path), Access::kRead, Lock::kShared, other), OpenResult::kOpened);
    PLATFORM::CloseFile(other);
}

TEST_F(FileStreamTest, PeerOfAPipeIsNotWaitedFor)
{
    fs::path const path = mDirectory.Path() / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    int writer = -7;
    EXPECT_EQ(PLATFORM::OpenFile(*PathOf(path), Access::kWrite, Lock::kNone, writer), OpenResult::kFailed);
    EXPECT_EQ(writer, -7);
    int const reader = Open(path, Access::kRead);
    PLATFORM::CloseFile(reader);
}

struct StreamRow
{
    char const* name;
    Access access;
    char const* mode;
    bool opens;
};

class StreamModes : public FileStreamTest, public ::testing::WithParamInterface<StreamRow>
{
};

TEST_P(StreamModes, MustMatchTheDescriptor)
{
    int const descriptor = Open(mDirectory.File("file", "content"), GetParam().access);
    auto stream = FileStream::Over(descriptor, GetParam().mode);
    EXPECT_EQ(stream != nullptr, GetParam().opens);
    EXPECT_NE(fcntl(descriptor, F_GETFL), -1);
    if (stream)
    {
        EXPECT_EQ(stream->Descriptor(), descriptor);
        stream.reset();
        EXPECT_EQ(fcntl(descriptor, F_GETFL), -1);
    }
    else
        PLATFORM::CloseFile(descriptor);
}

StreamRow const kStreams[] = {
    {"ReadForRead", Access::kRead, "rb", true},
    {"UpdateForRead", Access::kRead, "r+b", false},
    {"ReadForWrite", Access::kWrite, "rb", false},
    {"UpdateForWrite", Access::kWrite, "r+b", false},
    {"ReadForReadWrite", Access::kReadWrite, "rb", true},
    {"UpdateForReadWrite", Access::kReadWrite, "r+b", true},
};
INSTANTIATE_TEST_SUITE_P(Modes, StreamModes, ::testing::ValuesIn(kStreams), RowName());

TEST_F(FileStreamTest, SeeksAndTells)
{
    auto stream = OpenStream(mDirectory.File("file", "0123456789"));
    EXPECT_EQ(stream->Tell(), 0);
    EXPECT_TRUE(stream->Seek(4, SEEK_SET));
    EXPECT_EQ(stream->Tell(), 4);
    EXPECT_TRUE(stream->Seek(-1, SEEK_CUR));
    EXPECT_EQ(stream->Tell(), 3);
    EXPECT_TRUE(stream->Seek(-3, SEEK_END));
    char read = 0;
    EXPECT_EQ(stream->Read(&read, 1), 1u);
    EXPECT_EQ(read, '7');
    EXPECT_EQ(stream->Tell(), 8);
    EXPECT_TRUE(stream->Seek(5'000'000'000, SEEK_SET));
    EXPECT_EQ(stream->Tell(), 5'000'000'000);
    EXPECT_FALSE(stream->Seek(-1, SEEK_SET));
    EXPECT_EQ(stream->Tell(), 5'000'000'000);
}

TEST_F(FileStreamTest, TruncatesUnderWhatIsBuffered)
{
    fs::path const path = mDirectory.File("file", "");
    auto stream = OpenStream(path);
    ASSERT_EQ(stream->Write("hello", 5), 5u);
    EXPECT_TRUE(stream->Truncate(2));
    EXPECT_EQ(Content(path), std::string(2, '\0'));
    EXPECT_FALSE(stream->Truncate(-1));
    stream.reset();
    EXPECT_EQ(Content(path), "hello");
}

TEST_F(FileStreamTest, ReadOnlyFileIsNotTruncated)
{
    fs::path const path = mDirectory.File("file", "content");
    auto stream = FileStream::Over(Open(path, Access::kRead), "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_FALSE(stream->Truncate(2));
    stream.reset();
    EXPECT_EQ(Content(path), "content");
}

TEST_F(FileStreamTest, PipeHasNoPosition)
{
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    auto stream = FileStream::Over(ends[0], "rb");
    ASSERT_NE(stream, nullptr);
    EXPECT_EQ(stream->Tell(), 0);
    EXPECT_FALSE(stream->Seek(0, SEEK_SET));
    stream.reset();
    close(ends[1]);
}

TEST_F(FileStreamTest, ExistenceFollowsLinks)
{
    fs::path const& directory = mDirectory.Path();
    fs::path const file = mDirectory.File("file", "");
    fs::create_symlink(file, directory / "to-file");
    fs::create_symlink(directory, directory / "to-directory");
    fs::create_symlink(directory / "missing", directory / "to-nothing");
    EXPECT_TRUE(PLATFORM::FileExists(*PathOf(file)));
    EXPECT_TRUE(PLATFORM::FileExists(*PathOf(directory)));
    EXPECT_TRUE(PLATFORM::FileExists(*PathOf(directory / "to-file")));
    EXPECT_FALSE(PLATFORM::FileExists(*PathOf(directory / "to-nothing")));
    EXPECT_FALSE(PLATFORM::FileExists(*PathOf(directory / "missing")));
    EXPECT_FALSE(PLATFORM::FileExists(*PathOf("")));
    EXPECT_TRUE(PLATFORM::IsDirectory(*PathOf(directory)));
    EXPECT_TRUE(PLATFORM::IsDirectory(*PathOf(directory / "to-directory")));
    EXPECT_FALSE(PLATFORM::IsDirectory(*PathOf(file)));
    EXPECT_FALSE(PLATFORM::IsDirectory(*PathOf(directory / "to-file")));
    EXPECT_FALSE(PLATFORM::IsDirectory(*PathOf(directory / "missing")));
}
} // namespace
} // namespace KORVA
