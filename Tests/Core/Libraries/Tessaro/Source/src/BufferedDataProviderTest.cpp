// What the buffered provider is before and besides buffering.
#include "BufferedDataProvider.h"
#include "BufferedFixture.h"
#include "Registration.h"
#include "SDK/TessIO/RecordingRegistry.h"

namespace KORVA
{
namespace
{
using namespace TESTS;

constexpr GUID kClassId{0xB314BCA1, 0x7409, 0x40EF, {0x92, 0xF9, 0x03, 0x66, 0x4D, 0x0D, 0x76, 0x62}};

TEST_F(BufferedTest, IsMadeByTheRegistryUnderItsClassId)
{
    IObject* object = nullptr;
    ASSERT_EQ(Registry()->CreateInstance(kClassId, &object), 0);
    ASSERT_TRUE(object);
    EXPECT_TRUE(dynamic_cast<IBufferedDataProvider*>(object));
    EXPECT_TRUE(object->GetAggregates().empty());
    EXPECT_EQ(object->AddRef(), 2);
    EXPECT_EQ(object->Release(), 1);
    EXPECT_EQ(object->Release(), 0);
}

TEST_F(BufferedTest, IsMadeByAFactoryOfItsOwn)
{
    TInterfacePtr<RecordingRegistry> registry;
    registry.Adopt(new RecordingRegistry(77));
    EXPECT_EQ(IO::RegisterBufferedDataProviderFactory(registry.Get()), 77);
    ASSERT_EQ(registry->registrations, 1);
    IClassFactory& factory = *registry->factories.front();
    factory.AddRef();
    EXPECT_EQ(factory.Release(), 1) << "the registry alone holds it";

    TInterfacePtr<IBufferedDataProvider> made;
    EXPECT_EQ(factory.CreateInstance(kClassId, made.Out()), 0);
    EXPECT_TRUE(made);
    GUID other = kClassId;
    other.Data4[7] = 0x63;
    for (GUID const& id : {other, IO::IID_IDATAPROVIDER, GUID{}})
    {
        IObject* none = wrapped.Get();
        EXPECT_EQ(factory.CreateInstance(id, &none), -1004);
        EXPECT_EQ(none, nullptr);
    }
}

TEST_F(BufferedTest, NewObjectHasNoBufferAndFlushesByItself)
{
    buffered = COREREGISTRY::CreateObject<IBufferedDataProvider>(kClassId);
    EXPECT_EQ(buffered->GetBufferSize(), 0);
    EXPECT_TRUE(buffered->GetAutoFlush());
    buffered->SetAutoFlush(false);
    EXPECT_FALSE(buffered->GetAutoFlush());
    buffered->SetBufferSize(12);
    EXPECT_EQ(buffered->GetBufferSize(), 12);
    buffered.Reset();
}

TEST_F(BufferedTest, AnswersForNoInterfaceIdOfItsOwn)
{
    Wrap(IO::kBufferBoth, 8);
    IObject* object = wrapped.Get();
    for (GUID const& id : {kClassId, IO::IID_IDATAPROVIDER})
        EXPECT_EQ(buffered->QueryInterface(id, &object), -1004);
    EXPECT_EQ(object, wrapped.Get());
}

TEST_F(BufferedTest, HasNoSourceOfItsOwn)
{
    for (bool const isWrapped : {false, true})
    {
        if (isWrapped)
            Wrap(IO::kBufferBoth, 8, "0123456789");
        else
            buffered = COREREGISTRY::CreateObject<IBufferedDataProvider>(kClassId);
        buffered->InitHandleBased(IO::kStreamReadWrite);
        EXPECT_EQ(log.Take(), kNothing);

        Logged const unimplemented{
            kBufferedSource,
            "virtual ErrCode KORVA::IO::BufferedDataProvider::InitReadOnlyMem(const void *, int32)", 52,
            "Unimplemented."};
        EXPECT_EQ(buffered->InitReadOnlyMem("abc", 3), 29);
        EXPECT_EQ(buffered->InitReadOnlyMem(nullptr, -1), 29);
        EXPECT_EQ(log.Take(), (std::vector<Logged>{unimplemented, unimplemented}));

        IO::IURIPtr const uri = MakeURI("/a");
        EXPECT_EQ(buffered->InitURIBased(*uri, IO::kStreamRead, nullptr), 29);
        EXPECT_EQ(log.Take(), kNothing);
        EXPECT_EQ(uri->AddRef(), 2) << "not kept";
        uri->Release();
        ExpectCalls({});
    }
    ExpectRead(3, "012", {"GetPosition", "Size", "Read 8"});
}

struct ModeRow
{
    char const* name;
    IO::BufferMode mode;
};

ModeRow const kModes[] = {
    {"Nothing", IO::kBufferNothing},
    {"Reads", IO::kBufferReads},
    {"Writes", IO::kBufferWrites},
    {"Both", IO::kBufferBoth},
};

class EachModeTest : public BufferedTest, public ::testing::WithParamInterface<ModeRow>
{
};

TEST_P(EachModeTest, ForwardsWhatTheBufferHasNoPartIn)
{
    Wrap(GetParam().mode, 8, "0123456789");
    EXPECT_EQ(buffered->Size(), 10);
    ExpectCalls({"Size"});
    for (auto const endian :
         {IDataProvider::kBigEndian, IDataProvider::kLittleEndian, IDataProvider::kNativeEndian})
    {
        wrapped->endian = endian;
        EXPECT_EQ(buffered->GetEndian(), endian);
        ExpectCalls({"GetEndian"});
    }
    for (bool const answer : {true, false})
    {
        wrapped->native = answer;
        EXPECT_EQ(buffered->IsNative(), answer);
        ExpectCalls({"IsNative"});
        wrapped->atEnd = answer;
        EXPECT_EQ(buffered->AtEnd(), answer);
        ExpectCalls({"AtEnd"});
    }
    buffered->SetEndian(IDataProvider::kNativeEndian);
    ExpectCalls({"SetEndian 2"});
}

TEST_P(EachModeTest, KeepsAutoFlushToItself)
{
    Wrap(GetParam().mode, 8);
    EXPECT_TRUE(buffered->GetAutoFlush());
    buffered->SetAutoFlush(false);
    EXPECT_FALSE(buffered->GetAutoFlush());
    buffered->SetAutoFlush(true);
    EXPECT_TRUE(buffered->GetAutoFlush());
    ExpectCalls({});
}

TEST_P(EachModeTest, PassesOnTheResultsOfSetSizeAndFlush)
{
    Wrap(GetParam().mode, 8, "0123456789");
    for (ErrCode const result : {0, 27})
    {
        wrapped->sizeResult = result;
        EXPECT_EQ(buffered->SetSize(-5), result);
        ExpectCalls({"SetSize -5"});
        wrapped->flushResult = result;
        ExpectFlush({"Flush"}, result);
    }
}

TEST_P(EachModeTest, TellsTheBufferSizeAsGiven)
{
    Wrap(GetParam().mode, 8);
    EXPECT_EQ(buffered->GetBufferSize(), 8);
    for (int const size : {100, 0, -7, 1})
    {
        buffered->SetBufferSize(size);
        EXPECT_EQ(buffered->GetBufferSize(), size);
    }
    ExpectCalls({});
}

INSTANTIATE_TEST_SUITE_P(Buffered, EachModeTest, ::testing::ValuesIn(kModes), RowName());

TEST_F(BufferedTest, WithoutAModeReadsAndWritesAreForwarded)
{
    Wrap(IO::kBufferNothing, 8, "0123456789");
    char const text[] = "ab";
    wrapped->writeResults = {0, 30};
    EXPECT_EQ(buffered->Write(text, 2), 0);
    EXPECT_EQ(buffered->Write(text, 2), 30);
    ExpectCalls({"Write ab", "Write ab"});
    EXPECT_EQ(wrapped->memory, (std::vector<void const*>{text, text}));
    EXPECT_EQ(wrapped->bytes, "ab23456789");
    ExpectRead(3, "234", {"Read 3"});
    wrapped->readResult = 28;
    ExpectRead(9, "56789", {"Read 9"}, 28);
    int32 count = -4;
    EXPECT_EQ(buffered->Read(nullptr, count), 28);
    ExpectCalls({"Read -4"});
}
} // namespace
} // namespace KORVA
