// Saving only what nobody else has changed, and what became of the file.
#include <tessio/Cxx/FileState.h>

#include "SDK/Cxx/StandIns.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/Cxx/Dictionary.h>
#include <tessio/Cxx/Update.h>
#include <tessio/FileIO/IFileAccess.h>

#include <fcntl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace
{
std::vector<std::string>* sInheritable = nullptr;
}

// These stand before the system's own in this program, for all libraries in it.
extern "C" [[gnu::visibility("default")]] int open(char const* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    mode_t const permissions = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    if (sInheritable && (flags & O_CLOEXEC) == 0)
        sInheritable->push_back(path);
    return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, permissions));
}

extern "C" [[gnu::visibility("default")]] std::FILE* fopen64(char const* path, char const* mode)
{
    if (sInheritable && !std::strchr(mode, 'e'))
        sInheritable->push_back(path);
    bool const writes = std::strchr(mode, '+') || mode[0] != 'r';
    int const flags = (writes ? O_RDWR : O_RDONLY) | (mode[0] == 'w' ? O_CREAT | O_TRUNC : 0);
    auto const descriptor = static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode_t{0666}));
    return descriptor < 0 ? nullptr : fdopen(descriptor, mode);
}

namespace KORVA::TESTS
{
namespace
{
using CXX::Dictionary;
using CXX::FileState;
using CXX::Load;
using CXX::Save;
namespace fs = std::filesystem;

class CxxFileState : public LibraryTest
{
protected:
    static Dictionary Numbered(int number)
    {
        Dictionary dictionary = Dictionary::Create().value();
        dictionary.Set(1, number);
        return dictionary;
    }

    int Number() const { return Load<Dictionary>(path)->Get<int>(1).value(); }

    /// The real file object, which then answers that.
    static Replacing::Make Answering(FILE_SYS::ErrCode answer)
    {
        TInterfacePtr<COREREGISTRY::ICoreRegistry> below;
        below.Share(COREREGISTRY::GetCoreRegistry());
        return [below, answer]() -> IObject* {
            FILE_SYS::IFilePtr file;
            below->CreateInstance(FILE_SYS::IID_IFILE, file.Out());
            return new AnsweringFile(std::move(file), answer);
        };
    }

    TemporaryDirectory directory;
    fs::path path = directory.Path() / "a";
};

TEST_F(CxxFileState, IsOneForEachContent)
{
    auto const of = [](std::string_view text) { return FileState::Of(std::as_bytes(std::span(text))); };
    EXPECT_TRUE(of("text") == of("text"));
    EXPECT_FALSE(of("text") == of("tex"));
    EXPECT_FALSE(of("text") == of("texu"));
    EXPECT_FALSE(of("") == FileState()) << "an empty file is there";
    EXPECT_TRUE(of("").IsThere());
    EXPECT_FALSE(FileState().IsThere());
}

TEST_F(CxxFileState, SaveRefusesWhatSomebodyElseChanged)
{
    ASSERT_TRUE(Save(path, Numbered(1)));
    FileState mine;
    ASSERT_TRUE(Load<Dictionary>(path, {.state = &mine}));
    FileState others = mine;
    ASSERT_TRUE(Save(path, Numbered(2), {.state = &others}));
    EXPECT_EQ(Save(path, Numbered(3), {.state = &mine}).error().Message(),
              "cannot save " + CXX::Quoted(path.string()) +
                  ": somebody else has changed the file (kChanged)");
    EXPECT_EQ(CXX::Append(path, Numbered(3), {.state = &mine}).error().Code(), 2019);
    EXPECT_EQ(Number(), 2);
    EXPECT_TRUE(Save(path, Numbered(4), {.state = &others})) << "its own change is none of somebody else";
    EXPECT_TRUE(CXX::Append(path, Numbered(5), {.state = &others}));
    EXPECT_EQ(CXX::LoadAll(path, {.state = &mine})->objects.size(), 2u);
    EXPECT_TRUE(mine == others);
    fs::remove(path);
    EXPECT_EQ(Save(path, Numbered(6), {.state = &mine}).error().Code(), 2019);
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(CxxFileState, OneThatNobodySetStandsForNoFile)
{
    FileState state;
    EXPECT_TRUE(Save(path, Numbered(1), {.state = &state}));
    EXPECT_TRUE(state.IsThere());
    FileState none;
    EXPECT_EQ(Save(path, Numbered(2), {.state = &none}).error().Code(), 2019);
    EXPECT_EQ(Number(), 1);
    EXPECT_EQ(Load<Dictionary>(directory.Path() / "b", {.state = &state}).error().Code(), 26);
    EXPECT_FALSE(state.IsThere());
}

struct AnswerRow
{
    char const* name;
    FILE_SYS::ErrCode status;
    int code;
    char const* words;
};

AnswerRow const kAnswers[] = {
    {"NotFlushed", 90, 2018,
     "cannot make sure of \"@\": the new content is there, but a power cut may bring the old one back "
     "(kNotFlushed)"},
    {"DeviceFailed", 91, 2016, "cannot save \"@\": the device, or the way to it, fails (kDeviceFailed)"},
    {"OutOfResources", 92, 2017,
     "cannot save \"@\": memory, descriptors or other resources have run out (kOutOfResources)"},
    {"NoSpace", 28, 2015, "cannot save \"@\": no space left (kNoSpace)"},
    {"NotPermitted", 21, 33, "cannot save \"@\": permission denied (kNotPermitted)"},
    {"Another", 1, 35, "cannot save \"@\": the file system failed (kFileSystemFailed)"},
};

class CxxSaveAnswer : public CxxFileState, public ::testing::WithParamInterface<AnswerRow>
{
};

TEST_P(CxxSaveAnswer, IsThatOfTheFileSystem)
{
    ASSERT_TRUE(Save(path, Numbered(1)));
    FileState state;
    ASSERT_TRUE(Load<Dictionary>(path, {.state = &state}));
    Replacing const replacing(FILE_SYS::IID_IFILE, Answering(GetParam().status));
    auto const saved = Save(path, Numbered(2), {.state = &state});
    EXPECT_EQ(saved.error().Code(), GetParam().code);
    std::string words = GetParam().words;
    words.replace(words.find('@'), 1, path.string());
    EXPECT_EQ(saved.error().Message(), words);
    // The new content is there in all rows: only one answer says so.
    EXPECT_EQ(state == FileState::Of(*CXX::ToBytes(Numbered(2))), GetParam().status == 90);
    EXPECT_EQ(CXX::Append(path, Numbered(3)).error().Code(), GetParam().code);
    EXPECT_EQ(CXX::SaveAll(path, std::vector{Numbered(4)}).error().Code(), GetParam().code);
    EXPECT_EQ(
        CXX::Update<Dictionary>(path, [](Dictionary& dictionary) { dictionary.Set(1, 5); }).error().Code(),
        GetParam().code);
    EXPECT_EQ(Number(), 5);
}

INSTANTIATE_TEST_SUITE_P(Statuses, CxxSaveAnswer, ::testing::ValuesIn(kAnswers), RowName());

/// The file system of a machine far away.
class Lockless final : public TObject<FILE_SYS::IFileAccess>
{
public:
    FILE_SYS::ErrCode Lock(STRING::CoreString const&, uint32) override { return FILE_SYS::kNoLocks; }
    void Unlock() override {}
    FILE_SYS::ErrCode TryOpen(STRING::CoreString const&, bool8) override { return FILE_SYS::kDone; }
    int32 GetSystemError() const override { return ENOLCK; }
};

TEST_F(CxxFileState, WithoutLocksOnlyWhatReadsAndWritesIsRefused)
{
    Replacing const replacing(FILE_SYS::IID_IFILE_ACCESS, [] { return new Lockless; });
    EXPECT_TRUE(Save(path, Numbered(1)));
    EXPECT_EQ(CXX::Append(path, Numbered(2)).error().Message(),
              "cannot append to " + CXX::Quoted(path.string()) +
                  ": the file system failed (kFileSystemFailed): it can't be locked there");
    EXPECT_EQ(CXX::Update<Dictionary>(path, [](Dictionary&) {}).error().Code(), 35);
    EXPECT_EQ(CXX::LoadAll(path)->objects.size(), 1u);
}

TEST_F(CxxFileState, NothingIsOpenedForProgramsThatAreStartedMeanwhile)
{
    ASSERT_TRUE(Save(path, Numbered(1)));
    std::vector<std::string> inheritable;
    sInheritable = &inheritable;
    EXPECT_TRUE(Save(path, Numbered(2)));
    EXPECT_TRUE(CXX::Append(path, Numbered(3)));
    EXPECT_TRUE(Save(directory.Path() / "b", Numbered(2)));
    EXPECT_EQ(Load<Dictionary>(directory.Path() / "c").error().Code(), 26);
    sInheritable = nullptr;
    EXPECT_EQ(inheritable, std::vector<std::string>());
}

TEST_F(CxxFileState, AnObjectThatCameCountsWhateverCodeCameWithIt)
{
    TInterfacePtr<COREREGISTRY::ICoreRegistry> below;
    below.Share(COREREGISTRY::GetCoreRegistry());
    auto const with = [&below](GUID const& classId) {
        return [&below, classId] {
            IObject* object = nullptr;
            below->CreateInstance(classId, &object);
            return object;
        };
    };
    ASSERT_TRUE(Save(path, Numbered(1)));
    for (GUID const& classId :
         {IO::IID_DICTIONARY, IO::IID_IDATAPROVIDER, IO::IID_DATAPROVIDERSTREAM, IO::IID_URI_REGISTRY,
          IO::IID_IURI, FILE_SYS::IID_IFILE, FILE_SYS::IID_IFILE_ACCESS})
    {
        Replacing const replacing(classId, with(classId), 77);
        EXPECT_TRUE(Dictionary::Create()) << GUIDToText(classId);
        EXPECT_TRUE(CXX::DataProvider::Memory()) << GUIDToText(classId);
        EXPECT_TRUE(CXX::ToBytes(Numbered(2))) << GUIDToText(classId);
        EXPECT_TRUE(Save(path, Numbered(2))) << GUIDToText(classId);
        EXPECT_TRUE(CXX::File::At(path)) << GUIDToText(classId);
    }
}
} // namespace
} // namespace KORVA::TESTS
