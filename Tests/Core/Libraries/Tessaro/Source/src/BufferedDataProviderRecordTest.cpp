// Object records and the buffer: jumping back to fill in a length costs the bytes behind it.
#include "Serialization.h"
#include "WatchedProvider.h"
#include <tessio/TessIO/IBufferedDataProvider.h>

namespace KORVA
{
namespace
{
using namespace TESTS;
using IO::IBufferedDataProvider;

// The record of a scripted object with a body of four bytes.
constexpr char kId[] = "0D 0C 0B 0A 0F 0E 11 10 01 02 03 04 05 06 07 08 ";
constexpr char kLength[] = "08 00 00 00 00 00 00 00 ";
constexpr char kNoLength[] = "00 00 00 00 00 00 00 00 ";
constexpr char kBody[] = "44 33 22 11 ";
constexpr char kCount[] = "00 00 00 00 ";

std::string Raw(std::string const& hex)
{
    Bytes const bytes = Hex(hex);
    return {bytes.begin(), bytes.end()};
}

std::string Wrote(std::string const& hex) { return "Write " + Raw(hex); }

class BufferedRecordTest : public SerializationTest
{
protected:
    BufferedRecordTest()
    {
        Scripted::sOnWrite = [](IDataProviderStream& stream) { stream << 0x11223344; };
        wrapped.Adopt(new WatchedProvider);
        wrapped->native = true;
    }

    void Wrap(IDataProvider& provider, int size, IO::BufferMode mode)
    {
        buffered = CreateObject<IBufferedDataProvider>(IO::IID_BUFFERED_DATAPROVIDER);
        EXPECT_EQ(buffered->Init(provider, size, mode), 2);
    }

    /// What has reached the wrapped provider, but for the questions about the byte order.
    Calls TakeCalls()
    {
        Calls calls = std::exchange(*wrapped->calls, {});
        std::erase(calls, "IsNative");
        return calls;
    }

    TInterfacePtr<WatchedProvider> wrapped;
    TInterfacePtr<IBufferedDataProvider> buffered;
};

TEST_F(BufferedRecordTest, WrittenIntoTheBufferARecordLosesItsBody)
{
    Wrap(*wrapped, 64, IO::kBufferWrites);
    auto const object = Make<Scripted>();
    *MakeStream(*buffered) << *object << static_cast<unsigned char>(0x5A);
    // The length ends the buffered bytes, and the end of the record has left the buffer.
    EXPECT_EQ(TakeCalls(), (Calls{"SetPosition 0", Wrote(std::string(kId) + kLength), "GetPosition",
                                  "SetPosition 32", "GetPosition"}));
    buffered.Reset();
    EXPECT_EQ(TakeCalls(), (Calls{"SetPosition 32", "Write Z", "GetPosition"}));
    EXPECT_EQ(wrapped->bytes, Raw(std::string(kId) + kLength) + "........Z");
}

TEST_F(BufferedRecordTest, SoItDoesThroughABufferForBoth)
{
    auto const memory = MakeMemory();
    Wrap(*memory, 4096, IO::kBufferBoth);
    auto const object = Make<Scripted>();
    *MakeStream(*buffered) << *object << static_cast<unsigned char>(0x5A);
    buffered.Reset();
    EXPECT_EQ(BytesOf(*memory), Hex(std::string(kId) + kLength + "00 00 00 00 00 00 00 00 5A"));
}

TEST_F(BufferedRecordTest, RecordWhoseLengthHasLeftTheBufferIsWhole)
{
    Wrap(*wrapped, 20, IO::kBufferWrites);
    auto const object = Make<Scripted>();
    *MakeStream(*buffered) << *object;
    EXPECT_EQ(TakeCalls(), (Calls{"SetPosition 0", Wrote(std::string(kId) + "00 00 00 00"), "GetPosition",
                                  "SetPosition 20", Wrote(std::string("00 00 00 00") + kBody + kCount),
                                  "GetPosition", "SetPosition 16", "GetPosition", "SetPosition 16",
                                  Wrote(kLength), "GetPosition", "SetPosition 32", "GetPosition"}));
    EXPECT_EQ(wrapped->bytes, Raw(std::string(kId) + kLength + kBody + kCount));
}

TEST_F(BufferedRecordTest, WrittenToMemoryAndOutInOnePieceARecordIsWhole)
{
    auto const memory = MakeMemory();
    auto const object = Make<Scripted>();
    *MakeStream(*memory) << *object << static_cast<unsigned char>(0x5A);
    Bytes const record = BytesOf(*memory);
    std::string const expected = Raw(std::string(kId) + kLength + kBody + kCount + "5A");
    for (int const size : {64, 33, 20, 4, 0})
    {
        SCOPED_TRACE(size);
        wrapped->bytes.clear();
        wrapped->position = 0;
        Wrap(*wrapped, size, IO::kBufferWrites);
        EXPECT_EQ(buffered->Write(record.data(), record.size()), 0);
        buffered.Reset();
        EXPECT_EQ(wrapped->bytes, expected);
    }
}

TEST_F(BufferedRecordTest, WithoutABufferThePositionCanNotBeSetBack)
{
    Wrap(*wrapped, 64, IO::kBufferNothing);
    auto const object = Make<Scripted>();
    *MakeStream(*buffered) << *object;
    std::string const source = "Core/Libraries/Tessaro/Source/src/BufferedDataProvider";
    std::string const text = "Buffered data provider without a buffer?";
    Logged const told{source, "virtual int64 KORVA::IO::BufferedDataProvider::GetPosition() const", 170,
                      text};
    Logged const refused{source,
                         "virtual ErrCode KORVA::IO::BufferedDataProvider::SetPosition(int64, "
                         "KORVA::IO::IDataProvider::Offset)",
                         355, text};
    EXPECT_EQ(log.Take(), (std::vector<Logged>{told, told, told, told, refused, refused}));
    EXPECT_EQ(wrapped->bytes, Raw(std::string(kId) + kNoLength + kBody + kCount + kLength));
}

TEST_F(BufferedRecordTest, RecordsAreReadThroughTheBuffer)
{
    std::string const record = std::string(kId) + kLength + kBody + kCount;
    auto const memory = MakeMemory(Hex(record + record + "5A"));
    for (int const size : {1, 5, 32, 4096})
    {
        SCOPED_TRACE(size);
        ASSERT_EQ(memory->SetPosition(0, IDataProvider::kFromStart), 0);
        Wrap(*memory, size, IO::kBufferReads);
        auto const stream = MakeStream(*buffered);
        for (int i = 0; i < 2; ++i)
        {
            int found = 0;
            Scripted::sOnRead = [&found](IDataProviderStream& body) { body >> found; };
            EXPECT_TRUE(ReadObject(*stream));
            EXPECT_EQ(found, 0x11223344);
        }
        EXPECT_EQ(buffered->GetPosition(), 64);
        unsigned char last = 0;
        *stream >> last;
        EXPECT_EQ(last, 0x5A);
    }
}
} // namespace
} // namespace KORVA
