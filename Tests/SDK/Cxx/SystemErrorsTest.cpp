// What the system can't do is told as that, and not as something that is the matter with a file.
#include <tessio/Cxx/SystemErrors.h>

#include "Platform/Source/ChildProcess.h"
#include "Platform/Source/ResourceLimit.h"
#include "SDK/Cxx/Note.h"
#include "SDK/Cxx/StandIns.h"
#include "Support/ForwardingProvider.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/Cxx/Dictionary.h>
#include <tessio/Cxx/Update.h>

#include <array>
#include <new>

namespace KORVA::TESTS
{
namespace
{
using CXX::Dictionary;
using CXX::File;
using CXX::Load;
namespace fs = std::filesystem;

class CxxSystemErrors : public LibraryTest
{
protected:
    static Dictionary Sample()
    {
        Dictionary dictionary = Dictionary::Create().value();
        dictionary.Set(1, 7);
        return dictionary;
    }

    TemporaryDirectory directory;
    fs::path path = directory.Path() / "a";
};

/// A provider of files that can't be read on from some place.
class Unreadable final : public ForwardingProvider, public IO::IDataProviderStatus
{
public:
    Unreadable(TInterfacePtr<IO::IDataProvider> below, int64 from, int32 error)
        : ForwardingProvider(std::move(below)), mFrom(from), mError(error)
    {}

    int64 GetLostBytes() const override { return 0; }
    int32 GetSystemError() const override { return mHasFailed ? mError : 0; }
    ErrCode WriteOut() override { return 0; }
    ErrCode FlushToDevice() override { return 0; }

    OperationId Read(void* buffer, int32& count) override
    {
        if (GetPosition() + count <= mFrom)
            return ForwardingProvider::Read(buffer, count);
        mHasFailed = true;
        count = 0;
        return IO::kNoData;
    }

private:
    int64 mFrom;
    int32 mError;
    bool mHasFailed = false;
};

/// Files are read by `Unreadable`s, memory by the library's own.
Replacing::Make UnreadableFrom(int64 from, int32 error)
{
    TInterfacePtr<COREREGISTRY::ICoreRegistry> below;
    below.Share(COREREGISTRY::GetCoreRegistry());
    return [below, from, error]() -> IObject* {
        TInterfacePtr<IO::IDataProvider> provider;
        below->CreateInstance(IO::IID_IDATAPROVIDER, provider.Out());
        return new Unreadable(std::move(provider), from, error);
    };
}

struct UnreadableRow
{
    char const* name;
    int64 from;
    int32 error;
    int code;
    char const* words;
};

// A dictionary of 84 bytes, and behind it another one.
UnreadableRow const kUnreadable[] = {
    {"Nothing", 0, EIO, 2016, "the device, or the way to it, fails (kDeviceFailed): Input/output error"},
    {"NotTheHead", 20, EIO, 2016, "the device, or the way to it, fails (kDeviceFailed): Input/output error"},
    {"NotTheBody", 40, EIO, 2016, "the device, or the way to it, fails (kDeviceFailed): Input/output error"},
    {"NoMemory", 40, ENOMEM, 2017,
     "memory, descriptors or other resources have run out (kOutOfResources): Cannot allocate memory"},
    {"GoneFromTheServer", 40, ESTALE, 2016,
     "the device, or the way to it, fails (kDeviceFailed): Stale file handle"},
    {"Otherwise", 40, EBADMSG, 35, "the file system failed (kFileSystemFailed): Bad message"},
};

class CxxUnreadable : public CxxSystemErrors, public ::testing::WithParamInterface<UnreadableRow>
{
};

TEST_P(CxxUnreadable, IsNoDamage)
{
    ASSERT_TRUE(CXX::SaveAll(path, std::vector{Sample(), Sample()}));
    std::string const before = Content(path);
    Replacing const replacing(IO::IID_IDATAPROVIDER, UnreadableFrom(GetParam().from, GetParam().error));
    std::string const words = CXX::Quoted(path.string()) + ": " + GetParam().words;
    for (bool const keepDamaged : {false, true})
    {
        auto const loaded = Load<Dictionary>(path, {.keepDamaged = keepDamaged, .ignoreRest = true});
        EXPECT_EQ(loaded.error().Code(), GetParam().code);
        EXPECT_EQ(loaded.error().Message(), "cannot load " + words);
    }
    CXX::FileState state;
    EXPECT_EQ(Load<Dictionary>(path, {.state = &state}).error().Message(), "cannot load " + words);
    EXPECT_FALSE(state.IsThere());
    EXPECT_EQ(CXX::Save(path, MakeNote(1), {.state = &state}).error().Code(), GetParam().code);
    EXPECT_EQ(CXX::Append(path, MakeNote(1)).error().Message(), "cannot append to " + words);
    EXPECT_EQ(CXX::Update<Dictionary>(path, [](Dictionary&) {}).error().Message(), "cannot update " + words);
    EXPECT_EQ(Content(path), before);
    log.Take();
}

INSTANTIATE_TEST_SUITE_P(Places, CxxUnreadable, ::testing::ValuesIn(kUnreadable), RowName());

TEST_F(CxxSystemErrors, AllThatCouldBeReadIsKept)
{
    ASSERT_TRUE(CXX::SaveAll(path, std::vector{Sample(), Sample(), Sample()}));
    Replacing const replacing(IO::IID_IDATAPROVIDER, UnreadableFrom(130, EIO));
    auto const all = CXX::LoadAll(path).value();
    EXPECT_EQ(all.objects.size(), 1u);
    EXPECT_TRUE(all.skipped.empty());
    ASSERT_TRUE(all.stopped);
    EXPECT_EQ(all.stopped->Code(), 2016);
    log.Take();
}

TEST_F(CxxSystemErrors, StreamsTellToo)
{
    ASSERT_TRUE(CXX::Save(path, Sample()));
    Replacing const replacing(IO::IID_IDATAPROVIDER, UnreadableFrom(40, EIO));
    CXX::Stream stream = File::At(path)->Read().value();
    EXPECT_EQ(stream.Read<Dictionary>().error().Code(), 2016);
    ASSERT_TRUE(stream.Provider()->Seek(36));
    EXPECT_EQ(stream.Read<long long>().error().Code(), 2016);
    std::array<std::byte, 8> bytes{};
    EXPECT_EQ(stream.Read(bytes).error().Message(),
              "cannot read: the device, or the way to it, fails (kDeviceFailed): Input/output error");
    ASSERT_TRUE(stream.Provider()->Seek(84));
    EXPECT_EQ(stream.Read<int>().error().Code(), 28) << "the end is the end";
    log.Take();
}

TEST_F(CxxSystemErrors, WithoutDescriptorsNothingIsSaidOfTheFile)
{
    ASSERT_TRUE(CXX::Save(path, Sample()));
    struct Row
    {
        char const* name;
        std::function<int()> code;
    };
    Row const rows[] = {
        {"Load", [this] { return Load<Dictionary>(path).error().Code(); }},
        {"LoadAll", [this] { return CXX::LoadAll(path).error().Code(); }},
        {"Save", [this] { return CXX::Save(path, Sample()).error().Code(); }},
        {"SaveANewFile", [this] { return CXX::Save(directory.Path() / "new", Sample()).error().Code(); }},
        {"Append", [this] { return CXX::Append(path, Sample()).error().Code(); }},
        {"Update", [this] { return CXX::Update<Dictionary>(path, [](Dictionary&) {}).error().Code(); }},
        {"Read", [this] { return File::At(path)->Read().error().Code(); }},
        {"Write", [this] { return File::At(path)->Write().error().Code(); }},
    };
    for (Row const& row : rows)
    {
        ChildProcess child([&row] {
            ResourceLimit const limit(RLIMIT_NOFILE, 0);
            return row.code() == 2017 ? 0 : 1;
        });
        EXPECT_EQ(child.Wait(), 0) << row.name;
    }
    log.Take();
}

struct NameRow
{
    char const* name;
    char const* path;
    int load;
    int reading;
    int writing;
    int size;
};

NameRow const kNames[] = {
    {"Missing", "missing", 26, 26, 26, 26},     {"BehindAFile", "a/b", 26, 26, 26, 26},
    {"NotPermitted", "shut/a", 36, 36, 36, 33}, {"ReadProtected", "hidden", 36, 36, 36, 0},
    {"Circle", "circle", 35, 35, 35, 35},       {"Directory", "d", 2014, 26, 2014, 0},
};

class CxxNames : public CxxSystemErrors, public ::testing::WithParamInterface<NameRow>
{
};

TEST_P(CxxNames, ThatCannotBeOpenedSayWhy)
{
    directory.File("a", "text");
    fs::permissions(directory.File("hidden", "text"), fs::perms{0000});
    fs::create_directory(directory.Path() / "shut");
    fs::create_directory(directory.Path() / "d");
    directory.File("shut/a", "text");
    fs::permissions(directory.Path() / "shut", fs::perms{0000});
    fs::create_symlink("circle", directory.Path() / "circle");
    fs::path const named = directory.Path() / GetParam().path;
    auto const expect = [](int code, std::function<int()> const& body) {
        EXPECT_EQ(RunUnprivileged([&] { return body() == code ? 0 : 1; }), 0) << "not " << code;
    };
    expect(GetParam().load, [&] { return Load<Dictionary>(named).error().Code(); });
    expect(GetParam().reading, [&] { return File::At(named)->Read().error().Code(); });
    expect(GetParam().writing, [&] { return File::At(named)->Write().error().Code(); });
    expect(GetParam().size, [&] { return File::At(named)->Size().error().Code(); });
    expect(GetParam().size, [&] { return File::At(named)->ModificationDate().error().Code(); });
    fs::permissions(directory.Path() / "shut", fs::perms{0700});
    log.Take();
}

INSTANTIATE_TEST_SUITE_P(Paths, CxxNames, ::testing::ValuesIn(kNames), RowName());

TEST_F(CxxSystemErrors, ATooLongNameIsNotAMissingFile)
{
    EXPECT_EQ(Load<Dictionary>(directory.Path() / std::string(300, 'a')).error().Message(),
              "cannot load " + CXX::Quoted((directory.Path() / std::string(300, 'a')).string()) +
                  ": the file system failed (kFileSystemFailed): File name too long");
}

TEST_F(CxxSystemErrors, NoMemoryIsNoDamage)
{
    ASSERT_TRUE(CXX::Save(path, Sample()));
    Replacing const replacing(IO::IID_DATAPROVIDERSTREAM, []() -> IObject* { throw std::bad_alloc(); });
    EXPECT_EQ(
        Load<Dictionary>(path, {.order = CXX::ByteOrder::kLittle}).error().Message(),
        "cannot load " + CXX::Quoted(path.string()) +
            ": memory, descriptors or other resources have run out (kOutOfResources): not enough memory");
}

TEST_F(CxxSystemErrors, ARecordWithoutMemoryIsNoDamagedOne)
{
    COREREGISTRY::RegisterNewFactory<NoteFactory>(Registry());
    Dictionary around = Sample();
    ASSERT_TRUE(around.Set(2, MakeNote(5, Fault::kFindsNoMemoryInRead)));
    ASSERT_TRUE(CXX::SaveAll(path, std::vector{Sample(), around, Sample()}));
    auto const all = CXX::LoadAll(path).value();
    EXPECT_EQ(all.objects.size(), 1u);
    ASSERT_TRUE(all.stopped);
    EXPECT_EQ(all.stopped->Message(), "cannot load the record at 84 of " + CXX::Quoted(path.string()) +
                                          ": memory, descriptors or other resources have run out "
                                          "(kOutOfResources): not enough memory");
    ASSERT_TRUE(CXX::Save(path, around));
    for (bool const keepDamaged : {false, true})
        EXPECT_EQ(Load<Dictionary>(path, {.keepDamaged = keepDamaged}).error().Code(), 2017);
    EXPECT_EQ(CXX::Update<Dictionary>(path, [](Dictionary&) {}, {.keepDamaged = true}).error().Code(), 2017);
    log.Take();
}
} // namespace
} // namespace KORVA::TESTS
