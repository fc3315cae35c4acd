// Which calls of the provider each operator makes, and what it does when they fail.
#include "DataProviderStream.h"

#include "Serialization.h"

#include <algorithm>

namespace KORVA
{
namespace
{
using namespace TESTS;
using Calls = std::vector<std::string>;

struct CallsRow
{
    char const* name;
    void (*write)(IDataProviderStream& stream);
    Calls writeCalls;
    void (*read)(IDataProviderStream& stream);
    Calls readCalls;
};

template <class Value>
void WriteOne(IDataProviderStream& stream)
{
    stream << Value(1);
}

template <class Value>
void ReadOne(IDataProviderStream& stream)
{
    Value value{};
    stream >> value;
}

Calls const kWriteIdentifier = {"IsNative", "Write 4", "IsNative", "Write 2", "IsNative",
                                "Write 2",  "Write 1", "Write 1",  "Write 1", "Write 1",
                                "Write 1",  "Write 1", "Write 1",  "Write 1"};
// Sorted, for the order in which a read asks for the byte order is nobody's business.
Calls const kReadIdentifier = {"IsNative", "IsNative", "IsNative", "Read 1", "Read 1", "Read 1", "Read 1",
                               "Read 1",   "Read 1",   "Read 1",   "Read 1", "Read 2", "Read 2", "Read 4"};

CallsRow const kCalls[] = {
    {"SignedChar", &WriteOne<signed char>, {"Write 1"}, &ReadOne<signed char>, {"Read 1"}},
    {"UnsignedChar", &WriteOne<unsigned char>, {"Write 1"}, &ReadOne<unsigned char>, {"Read 1"}},
    {"Bool", &WriteOne<bool>, {"Write 1"}, &ReadOne<bool>, {"Read 1"}},
    {"Short", &WriteOne<short>, {"IsNative", "Write 2"}, &ReadOne<short>, {"IsNative", "Read 2"}},
    {"UnsignedShort",
     &WriteOne<unsigned short>,
     {"IsNative", "Write 2"},
     &ReadOne<unsigned short>,
     {"IsNative", "Read 2"}},
    {"Int", &WriteOne<int>, {"IsNative", "Write 4"}, &ReadOne<int>, {"IsNative", "Read 4"}},
    {"UnsignedInt",
     &WriteOne<unsigned int>,
     {"IsNative", "Write 4"},
     &ReadOne<unsigned int>,
     {"IsNative", "Read 4"}},
    {"LongLong", &WriteOne<long long>, {"IsNative", "Write 8"}, &ReadOne<long long>, {"IsNative", "Read 8"}},
    {"UnsignedLongLong",
     &WriteOne<unsigned long long>,
     {"IsNative", "Write 8"},
     &ReadOne<unsigned long long>,
     {"IsNative", "Read 8"}},
    {"Float", &WriteOne<float>, {"IsNative", "Write 4"}, &ReadOne<float>, {"IsNative", "Read 4"}},
    {"Double", &WriteOne<double>, {"IsNative", "Write 8"}, &ReadOne<double>, {"IsNative", "Read 8"}},
    // Writing asks once for the count and once for all units; reading asks for each unit.
    {"String",
     [](IDataProviderStream& stream) { stream << CoreString(u"abc"); },
     {"IsNative", "Write 4", "IsNative", "Write 6"},
     &ReadOne<CoreString>,
     {"IsNative", "IsNative", "IsNative", "IsNative", "Read 4", "Read 6"}},
    {"StringEmpty",
     [](IDataProviderStream& stream) { stream << CoreString(); },
     {"IsNative", "Write 4"},
     &ReadOne<CoreString>,
     {"IsNative", "Read 4"}},
    {"Identifier", [](IDataProviderStream& stream) { stream << IO::IID_DICTIONARY; }, kWriteIdentifier,
     &ReadOne<GUID>, kReadIdentifier},
};

using CallsTest = SerializationTestWith<CallsRow>;

TEST_P(CallsTest, AreExactlyThese)
{
    for (bool const native : {true, false})
    {
        SCOPED_TRACE(native);
        auto const provider = Make<RecordingProvider>();
        provider->native = native;
        auto const stream = MakeStream(*provider);
        GetParam().write(*stream);
        EXPECT_EQ(provider->TakeCalls(), GetParam().writeCalls);

        provider->position = 0;
        GetParam().read(*stream);
        Calls calls = provider->TakeCalls();
        std::sort(calls.begin(), calls.end());
        EXPECT_EQ(calls, GetParam().readCalls);
    }
}

INSTANTIATE_TEST_SUITE_P(DataProviderStream, CallsTest, ::testing::ValuesIn(kCalls), RowName());

class DataProviderStreamCallsTest : public SerializationTest
{
protected:
    TInterfacePtr<RecordingProvider> const provider = Make<RecordingProvider>();
    TInterfacePtr<IDataProviderStream> const stream = MakeStream(*provider);
};

TEST_F(DataProviderStreamCallsTest, ByteOrderIsAskedForEachUnitThatIsRead)
{
    provider->bytes = Hex("06 00 00 00 41 00 00 42 43 00");
    provider->nativeAnswers = {true, true, false, true};
    CoreString text;
    *stream >> text;
    EXPECT_EQ(text, CoreString(u"ABC"));
    EXPECT_TRUE(provider->nativeAnswers.empty());
}

TEST_F(DataProviderStreamCallsTest, ByteOrderIsAskedOnceForAllUnitsThatAreWritten)
{
    provider->nativeAnswers = {true, false};
    *stream << CoreString(u"ABC");
    EXPECT_EQ(ToHex(provider->bytes), "06 00 00 00 00 41 00 42 00 43");
    EXPECT_TRUE(provider->nativeAnswers.empty());
}

TEST_F(DataProviderStreamCallsTest, RawAccessGoesStraightToTheProvider)
{
    EXPECT_EQ(stream->Write("abc", 3), 0);
    EXPECT_EQ(stream->Write("abc", 0), 0);
    EXPECT_EQ(provider->TakeCalls(), (Calls{"Write 3", "Write 0"}));
    provider->position = 1;
    char buffer[4] = {};
    int count = 4;
    EXPECT_EQ(stream->Read(buffer, count), 28);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(std::string(buffer), "bc");
    EXPECT_EQ(provider->TakeCalls(), Calls{"Read 4"});
}

TEST_F(DataProviderStreamCallsTest, NegativeCountOfAWriteBecomesHuge)
{
    EXPECT_EQ(stream->Write("abc", -1), 27);
    EXPECT_EQ(stream->Write("abc", -2147483647 - 1), 27);
    EXPECT_EQ(provider->TakeCalls(), (Calls{"Write 18446744073709551615", "Write 18446744071562067968"}));
}

TEST_F(DataProviderStreamCallsTest, NegativeCountOfAReadIsPassedOn)
{
    char byte = 0;
    int count = -1;
    static_cast<void>(stream->Read(&byte, count));
    EXPECT_EQ(provider->TakeCalls(), Calls{"Read -1"});
}

TEST_F(DataProviderStreamCallsTest, RawAccessAnswersTheProvidersResult)
{
    provider->failure = RecordingProvider::Failure::kCode;
    provider->failForEver = true;
    EXPECT_EQ(stream->Write("abc", 3), 30);
    char buffer[3];
    int count = 3;
    EXPECT_EQ(stream->Read(buffer, count), 3);
    EXPECT_EQ(count, 0);
}

TEST_F(DataProviderStreamCallsTest, FailedWriteIsLostSilentlyAndTheStreamGoesOn)
{
    provider->failure = RecordingProvider::Failure::kCode;
    provider->failAt = 1;
    *stream << 1 << 2 << 3;
    EXPECT_EQ(ToHex(provider->bytes), "01 00 00 00 03 00 00 00");
}

TEST_F(DataProviderStreamCallsTest, FailedReadGivesZeroAndTheStreamGoesOn)
{
    provider->bytes = Hex("01 00 00 00 02 00 00 00");
    provider->failure = RecordingProvider::Failure::kCode;
    provider->failAt = 1;
    int values[3] = {9, 9, 9};
    *stream >> values[0] >> values[1] >> values[2];
    EXPECT_EQ(values[0], 1);
    EXPECT_EQ(values[1], 0);
    EXPECT_EQ(values[2], 2);
}

TEST_F(DataProviderStreamCallsTest, FailedCountOfAStringIsZero)
{
    provider->bytes = Hex("02 00 00 00 41 00");
    provider->failure = RecordingProvider::Failure::kCode;
    CoreString text(u"old");
    *stream >> text;
    EXPECT_TRUE(text.empty());
    EXPECT_EQ(provider->TakeCalls(), Calls{"Read 4"});
}

TEST_F(DataProviderStreamCallsTest, ExceptionsOfTheProviderPassThrough)
{
    provider->failure = RecordingProvider::Failure::kThrow;
    provider->failForEver = true;
    int number = 5;
    CoreString text(u"kept");
    GUID id{};
    EXPECT_THROW(*stream << 1, std::runtime_error);
    EXPECT_THROW(*stream << CoreString(u"a"), std::runtime_error);
    EXPECT_THROW(*stream << IO::IID_DICTIONARY, std::runtime_error);
    EXPECT_THROW(*stream >> number, std::runtime_error);
    EXPECT_THROW(*stream >> text, std::runtime_error);
    EXPECT_THROW(*stream >> id, std::runtime_error);
    EXPECT_THROW(stream->Write("a", 1), std::runtime_error);
    int count = 1;
    char byte = 0;
    EXPECT_THROW(stream->Read(&byte, count), std::runtime_error);
    EXPECT_TRUE(provider->bytes.empty());
}

/// Writes and reads integers of one width in a way of its own.
class Shifted final : public IO::DataProviderStream
{
public:
    explicit Shifted(IDataProvider& provider) : DataProviderStream(provider) {}

    using DataProviderStream::operator<<;
    using DataProviderStream::operator>>;

    DataProviderStream& operator<<(unsigned int value) override
    {
        return DataProviderStream::operator<<(value + 1);
    }

    DataProviderStream& operator>>(unsigned int& value) override
    {
        DataProviderStream::operator>>(value);
        --value;
        return *this;
    }

    DataProviderStream& operator<<(int value) override
    {
        return DataProviderStream::operator<<(static_cast<long long>(value));
    }

    DataProviderStream& operator>>(int& value) override
    {
        long long wide = 0;
        DataProviderStream::operator>>(wide);
        value = static_cast<int>(wide);
        return *this;
    }

private:
    ~Shifted() override = default;
};

TEST_F(DataProviderStreamCallsTest, IdentifiersAreMadeOfTheStreamsOwnIntegers)
{
    TInterfacePtr<IDataProviderStream> shifted;
    shifted.Adopt(new Shifted(*provider));
    GUID const id{0x73E90CD5, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}};
    *shifted << id;
    EXPECT_EQ(ToHex(provider->bytes), "D6 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05");
    provider->position = 0;
    GUID found{};
    *shifted >> found;
    EXPECT_EQ(found, id);
}

TEST_F(DataProviderStreamCallsTest, CountsOfStringsAreTheStreamsOwnIntegers)
{
    TInterfacePtr<IDataProviderStream> shifted;
    shifted.Adopt(new Shifted(*provider));
    *shifted << CoreString(u"A");
    EXPECT_EQ(ToHex(provider->bytes), "02 00 00 00 00 00 00 00 41 00");
    provider->position = 0;
    CoreString found;
    *shifted >> found;
    EXPECT_EQ(found, CoreString(u"A"));
}
} // namespace
} // namespace KORVA
