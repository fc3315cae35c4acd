#include "DataProvider.h"

#include "Platform/Source/ChildProcess.h"
#include "Support/Library.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>

#include <gmock/gmock.h>

#include <limits>

namespace KORVA
{
namespace
{
using IO::IDataProvider;
using IO::IURIDataProvider;
using TESTS::kNothing;
using TESTS::LibraryTest;
using TESTS::LibraryTestWith;
using TESTS::Logged;
using TESTS::RowName;

constexpr char kSource[] = "Core/Libraries/Tessaro/Source/src/DataProvider";
constexpr char kNotInitialized[] = "Attempting to use a non-initialized data provider";
constexpr char kSizeSignature[] = "virtual int64 KORVA::IO::DataProvider::Size() const";
constexpr char kGetPositionSignature[] = "virtual int64 KORVA::IO::DataProvider::GetPosition() const";

TInterfacePtr<IURIDataProvider> MakeFacade()
{
    return COREREGISTRY::CreateObject<IURIDataProvider>(IO::IID_IDATAPROVIDER);
}

struct BirthRow
{
    char const* name;
    int given;
    int endian;
    bool native;
};

class NewDataProvider : public LibraryTestWith<BirthRow>
{
};

TEST_P(NewDataProvider, TakesTheNativeOrderForWhatItIs)
{
    TInterfacePtr<IDataProvider> facade;
    facade.Adopt(new IO::DataProvider(static_cast<IDataProvider::Endian>(GetParam().given)));
    EXPECT_EQ(facade->GetEndian(), GetParam().endian);
    EXPECT_EQ(facade->IsNative(), GetParam().native);
}

BirthRow const kBirths[] = {
    {"Big", 0, 0, false},
    {"Little", 1, 1, true},
    {"Native", 2, 1, true},
    {"Unknown", 7, 7, false},
};
INSTANTIATE_TEST_SUITE_P(Endians, NewDataProvider, ::testing::ValuesIn(kBirths), RowName());

class SetEndian : public LibraryTestWith<BirthRow>
{
};

TEST_P(SetEndian, KeepsWhatItIsGiven)
{
    auto const facade = MakeFacade();
    facade->SetEndian(static_cast<IDataProvider::Endian>(GetParam().given));
    EXPECT_EQ(facade->GetEndian(), GetParam().endian);
    EXPECT_EQ(facade->IsNative(), GetParam().native);
}

BirthRow const kSettings[] = {
    {"Big", 0, 0, false},
    {"Little", 1, 1, true},
    {"NativeIsNotNative", 2, 2, false},
    {"Unknown", -3, -3, false},
};
INSTANTIATE_TEST_SUITE_P(Endians, SetEndian, ::testing::ValuesIn(kSettings), RowName());

class DataProvider : public LibraryTest
{
protected:
    TESTS::TemporaryDirectory mDirectory;
};

TEST_F(DataProvider, FromTheRegistryIsNative)
{
    auto const facade = MakeFacade();
    ASSERT_TRUE(facade);
    EXPECT_EQ(facade->GetEndian(), IDataProvider::kLittleEndian);
    EXPECT_TRUE(facade->IsNative());
    EXPECT_TRUE(facade->GetAggregates().empty());
    EXPECT_EQ(facade->AddRef(), 2);
    EXPECT_EQ(facade->Release(), 1);
}

TEST_F(DataProvider, ByteOrderOutlivesInitialisation)
{
    auto const facade = MakeFacade();
    facade->SetEndian(IDataProvider::kBigEndian);
    facade->InitHandleBased(IO::kStreamReadWrite);
    EXPECT_EQ(facade->GetEndian(), IDataProvider::kBigEndian);
    facade->SetEndian(IDataProvider::kNativeEndian);
    EXPECT_EQ(facade->GetEndian(), IDataProvider::kNativeEndian);
    EXPECT_FALSE(facade->IsNative());
}

struct UseRow
{
    char const* name;
    int64 (*use)(IDataProvider&);
    int64 result;
    char const* signature;
    int line;
};

class UninitializedDataProvider : public LibraryTestWith<UseRow>
{
};

TEST_P(UninitializedDataProvider, LogsAndRefuses)
{
    auto const facade = MakeFacade();
    EXPECT_EQ(GetParam().use(*facade), GetParam().result);
    EXPECT_THAT(log.Take(), ::testing::ElementsAre(
                                Logged{kSource, GetParam().signature, GetParam().line, kNotInitialized}));
}

int64 WriteOne(IDataProvider& provider) { return provider.Write("a", 1); }

int64 WriteNothing(IDataProvider& provider) { return provider.Write(nullptr, 0); }

int64 ReadOne(IDataProvider& provider)
{
    char byte = 0;
    int32 count = 1;
    return provider.Read(&byte, count);
}

int64 ReadNothing(IDataProvider& provider)
{
    int32 count = 0;
    return provider.Read(nullptr, count);
}

constexpr char kWriteSignature[] = "virtual OperationId KORVA::IO::DataProvider::Write(const void *, size_t)";
constexpr char kReadSignature[] = "virtual OperationId KORVA::IO::DataProvider::Read(void *, int32 &)";
constexpr char kSetSizeSignature[] = "virtual ErrCode KORVA::IO::DataProvider::SetSize(int64)";
constexpr char kSetPositionSignature[] =
    "virtual ErrCode KORVA::IO::DataProvider::SetPosition(int64, IDataProvider::Offset)";

UseRow const kUses[] = {
    {"Write", WriteOne, 29, kWriteSignature, 180},
    {"WriteNothing", WriteNothing, 29, kWriteSignature, 180},
    {"Read", ReadOne, 29, kReadSignature, 189},
    {"ReadNothing", ReadNothing, 29, kReadSignature, 189},
    {"Size", [](IDataProvider& provider) { return provider.Size(); }, 0, kSizeSignature, 201},
    {"SetSize", [](IDataProvider& provider) -> int64 { return provider.SetSize(4); }, 29, kSetSizeSignature,
     210},
    {"SetPosition",
     [](IDataProvider& provider) -> int64 { return provider.SetPosition(0, IDataProvider::kFromStart); }, 29,
     kSetPositionSignature, 220},
    {"GetPosition", [](IDataProvider& provider) { return provider.GetPosition(); }, 0, kGetPositionSignature,
     230},
};
INSTANTIATE_TEST_SUITE_P(Operations, UninitializedDataProvider, ::testing::ValuesIn(kUses), RowName());

TEST_F(DataProvider, UninitializedIsAtEndAndSaysSoTwice)
{
    auto const facade = MakeFacade();
    EXPECT_TRUE(facade->AtEnd());
    // Position and size are asked in no particular order.
    EXPECT_THAT(log.Take(),
                ::testing::UnorderedElementsAre(Logged{kSource, kGetPositionSignature, 230, kNotInitialized},
                                                Logged{kSource, kSizeSignature, 201, kNotInitialized}));
}

TEST_F(DataProvider, FlushingNeedsNoProvider)
{
    auto const facade = MakeFacade();
    EXPECT_EQ(facade->Flush(), 0);
    EXPECT_TRUE(facade->GetAutoFlush());
    facade->SetAutoFlush(false);
    EXPECT_TRUE(facade->GetAutoFlush());
}

struct MemoryRow
{
    char const* name;
    bool null;
    int32 size;
    ErrCode result;
    std::vector<Logged> logged;
};

constexpr char kInitReadOnlyMem[] =
    "virtual ErrCode KORVA::IO::DataProvider::InitReadOnlyMem(const void *, int32)";
Logged const kNullPointer{kSource, kInitReadOnlyMem, 149, "Illegal NULL ptr"};
Logged const kIllegalSize{kSource, kInitReadOnlyMem, 153, "Illegal size"};

class InitReadOnlyMem : public LibraryTestWith<MemoryRow>
{
};

TEST_P(InitReadOnlyMem, TakesMemoryThatIsThere)
{
    auto const facade = MakeFacade();
    unsigned char const memory[] = {0x10, 0x20, 0x30};
    EXPECT_EQ(facade->InitReadOnlyMem(GetParam().null ? nullptr : memory, GetParam().size),
              GetParam().result);
    EXPECT_EQ(log.Take(), GetParam().logged);
    if (GetParam().result == 0)
    {
        EXPECT_EQ(facade->Size(), GetParam().size);
        EXPECT_EQ(facade->GetPosition(), 0);
    }
    else
    {
        EXPECT_EQ(facade->SetSize(1), 29);
        EXPECT_THAT(log.Take(),
                    ::testing::ElementsAre(Logged{kSource, kSetSizeSignature, 210, kNotInitialized}));
    }
}

MemoryRow const kMemories[] = {
    {"OneByte", false, 1, 0, {}},
    {"SomeBytes", false, 3, 0, {}},
    {"MostBytes", false, std::numeric_limits<int32>::max(), 0, {}},
    {"NoBytes", false, 0, -50, {kIllegalSize}},
    {"FewerThanNone", false, -1, -50, {kIllegalSize}},
    {"FewestBytes", false, std::numeric_limits<int32>::min(), -50, {kIllegalSize}},
    {"Null", true, 3, -50, {kNullPointer}},
    {"NullBeforeTheSize", true, 0, -50, {kNullPointer}},
};
INSTANTIATE_TEST_SUITE_P(Arguments, InitReadOnlyMem, ::testing::ValuesIn(kMemories), RowName());

TEST_F(DataProvider, MemoryIsBorrowed)
{
    auto const facade = MakeFacade();
    unsigned char memory[] = {1, 2, 3};
    ASSERT_EQ(facade->InitReadOnlyMem(memory, 3), 0);
    memory[1] = 9;
    unsigned char read[3] = {};
    int32 count = 3;
    EXPECT_EQ(facade->Read(read, count), 0);
    EXPECT_THAT(read, ::testing::ElementsAre(1, 9, 3));
}

TEST_F(DataProvider, AnswersOnlyWhatIsAggregated)
{
    auto const facade = MakeFacade();
    facade->InitHandleBased(IO::kStreamReadWrite);
    IObject* const untouched = facade.Get();
    IObject* out = untouched;
    EXPECT_EQ(facade->QueryInterface(IO::IID_IDATAPROVIDER, &out), -1004);
    EXPECT_EQ(facade->QueryInterface(IO::IID_IURI, &out), -1004);
    EXPECT_EQ(out, untouched);
    IO::IURIPtr const uri = MakeURI("/a");
    facade->Aggregate(uri.Get(), IO::IID_IURI);
    EXPECT_EQ(facade->QueryInterface(IO::IID_IURI, &out), 0);
    EXPECT_EQ(out, uri.Get());
    EXPECT_EQ(facade->QueryInterface(IO::IID_IDATAPROVIDER, nullptr), -1004);
}

TEST_F(DataProvider, SecondInitialisationLeavesTheFirstProviderAlone)
{
    std::string const path = mDirectory.File("file", "content");
    auto const descriptors = [] {
        return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
    };
    IO::IURIPtr const uri = MakeURI(path);
    // The first provider and what it holds are never freed: not in a process that is looked at for leaks.
    auto const initialiseTwice = [&] {
        auto facade = MakeFacade();
        if (facade->InitURIBased(*uri, IO::kStreamRead, nullptr) != 0)
            return 1;
        auto const before = descriptors();
        unsigned char const memory[] = {7};
        if (facade->InitReadOnlyMem(memory, 1) != 0 || facade->Size() != 1)
            return 2;
        facade->InitHandleBased(IO::kStreamRead);
        if (facade->Size() != 0)
            return 3;
        facade.Reset();
        return descriptors() == before ? 0 : 4;
    };
    EXPECT_EQ(TESTS::ChildProcess(initialiseTwice).Wait(), 0);
}

TEST_F(DataProvider, MakerOfHandleProvidersHandsOverOne)
{
    std::unique_ptr<IO::DataProviderImpl> const provider(IO::CreateHandleDataProvider(IO::kStreamReadWrite));
    ASSERT_TRUE(provider);
    EXPECT_EQ(provider->Write("abc", 3), 0);
    int64 size = -1;
    EXPECT_EQ(provider->GetSize(size), 0);
    EXPECT_EQ(size, 3);
    EXPECT_EQ(provider->GetPosition(), 3);
}
} // namespace
} // namespace KORVA
