// Records over a provider whose calls fail, one after the other.
#include "Serialization.h"

namespace KORVA
{
namespace
{
using namespace TESTS;
using Failure = RecordingProvider::Failure;

struct FailureRow
{
    char const* name;
    Failure failure;
    bool forEver;
};

FailureRow const kFailures[] = {
    {"CodeOnce", Failure::kCode, false},
    {"CodeForEver", Failure::kCode, true},
    {"ExceptionOnce", Failure::kThrow, false},
    {"ExceptionForEver", Failure::kThrow, true},
};

class ObjectRecordFailuresTest : public SerializationTestWith<FailureRow>
{
protected:
    static TInterfacePtr<IDictionary> MakeContent()
    {
        auto const content = MakeDictionary();
        auto const inner = MakeDictionary();
        inner->Put(1, 7);
        auto const strings = MakeStrings();
        strings->Put(CoreString(u"a"), CoreString(u"xy"));
        content->Put(1, inner.Get());
        content->Put(2, strings.Get());
        content->Put(3, reinterpret_cast<unsigned char const*>("bytes"), 5);
        content->Put(4, Make<Scripted>().Get());
        auto const aggregate = Make<Scripted>();
        content->Aggregate(aggregate.Get(), GUID{1, 2, 3, {}});
        return content;
    }

    static void Plan(RecordingProvider& provider, int failAt)
    {
        provider.failure = GetParam().failure;
        provider.failForEver = GetParam().forEver;
        provider.failAt = failAt;
    }

    /// Runs the operation and answers whether an exception came out.
    template <class Operation>
    static bool Throws(Operation const& operation)
    {
        try
        {
            operation();
            return false;
        }
        catch (std::runtime_error const&)
        {
            return true;
        }
    }

    /// How many calls a plan would count when none fails.
    template <class Operation>
    static int CallsOf(Bytes const& bytes, Operation const& operation)
    {
        auto const provider = Make<RecordingProvider>();
        provider->bytes = bytes;
        Plan(*provider, 1'000'000);
        operation(*MakeStream(*provider));
        return provider->Counted();
    }
};

TEST_P(ObjectRecordFailuresTest, WritingLeavesTheObjectAndItsReferences)
{
    auto const content = MakeContent();
    auto const write = [&content](IDataProviderStream& stream) { stream << *content; };
    int const calls = CallsOf({}, write);
    ASSERT_GT(calls, 100);
    for (int failAt = 0; failAt < calls; ++failAt)
    {
        auto const provider = Make<RecordingProvider>();
        Plan(*provider, failAt);
        auto const stream = MakeStream(*provider);
        bool const threw = Throws([&] { write(*stream); });
        EXPECT_TRUE(!threw || GetParam().failure == Failure::kThrow) << failAt;
        log.Take();
        EXPECT_EQ(References(*content), 1);
        EXPECT_EQ(Scripted::sAlive, 2);

        // What is left over can be anything, but reading it must end and release what it made.
        static_cast<void>(Load(kNative, provider->bytes));
        log.Take();
        EXPECT_EQ(Scripted::sAlive, 2);
    }
}

TEST_P(ObjectRecordFailuresTest, ReadingReleasesWhatItMade)
{
    Bytes const bytes = RecordOf(kNative, *MakeContent());
    auto const read = [](IDataProviderStream& stream) { static_cast<void>(ReadObject(stream)); };
    int const calls = CallsOf(bytes, read);
    ASSERT_GT(calls, 100);
    for (int failAt = 0; failAt < calls; ++failAt)
    {
        auto const provider = Make<RecordingProvider>();
        provider->bytes = bytes;
        Plan(*provider, failAt);
        auto const stream = MakeStream(*provider);
        bool const threw = Throws([&] { read(*stream); });
        EXPECT_TRUE(!threw || GetParam().failure == Failure::kThrow) << failAt;
        log.Take();
        EXPECT_EQ(Scripted::sAlive, 0) << failAt;
    }
}

INSTANTIATE_TEST_SUITE_P(ObjectRecord, ObjectRecordFailuresTest, ::testing::ValuesIn(kFailures), RowName());

using ObjectRecordFailureTest = SerializationTest;

// Twelve reads make the class id and the length. A failure behind them is the body's, and the reader finds
// the record's end whatever the body did.
TEST_F(ObjectRecordFailureTest, OneFailingReadInsideARecordKeepsTheNextRecord)
{
    auto const dictionary = MakeDictionary();
    dictionary->Put(1, 7);
    dictionary->Put(2, reinterpret_cast<unsigned char const*>("bytes"), 5);
    Bytes bytes = RecordOf(kNative, *dictionary);
    std::size_t const end = bytes.size();
    Bytes const next = RecordOf(kNative, *dictionary);
    bytes.insert(bytes.end(), next.begin(), next.end());

    for (bool const throws : {false, true})
        for (int failAt = 12; failAt < 40; ++failAt)
        {
            SCOPED_TRACE(failAt);
            auto const provider = Make<RecordingProvider>();
            provider->bytes = bytes;
            auto const stream = MakeStream(*provider);
            int reads = 0;
            provider->failsRead = [&reads, failAt, throws] {
                bool const fails = reads++ == failAt;
                if (fails && throws)
                    throw std::runtime_error("planned");
                return fails;
            };
            static_cast<void>(ReadObject(*stream));
            log.Take();
            ASSERT_GT(reads, failAt);
            provider->failsRead = nullptr;
            EXPECT_EQ(provider->position, end);
            auto const second = ReadObject<IDictionary>(*stream);
            ASSERT_TRUE(second);
            int found = 0;
            EXPECT_EQ(second->Get(1, found), 0);
            EXPECT_EQ(found, 7);
        }
}

// The thirteenth read is the aggregate count, the fourteenth the first part of a key.
TEST_F(ObjectRecordFailureTest, ExceptionAmongTheAggregatesDropsTheObject)
{
    auto const object = Make<Scripted>();
    object->Aggregate(Make<Scripted>().Get(), GUID{1, 2, 3, {}});
    auto const provider = Make<RecordingProvider>();
    provider->bytes = RecordOf(kNative, *object);
    ASSERT_EQ(provider->bytes.size(), 72u);
    provider->bytes.push_back(0x5A);
    int reads = 0;
    provider->failsRead = [&reads]() -> bool {
        if (++reads == 14)
            throw std::runtime_error("planned");
        return false;
    };
    EXPECT_FALSE(ReadObject(*MakeStream(*provider)));
    EXPECT_EQ(log.Take(), std::vector<Logged>{ReadThrew()});
    EXPECT_EQ(provider->position, 72u);
    EXPECT_EQ(Scripted::sAlive, 2) << "those that were written";
}

TEST_F(ObjectRecordFailureTest, ExceptionsOfClassIdAndLengthPassThrough)
{
    auto const dictionary = MakeDictionary();
    for (int failAt = 0; failAt < 14; ++failAt)
    {
        auto const provider = Make<RecordingProvider>();
        provider->failure = Failure::kThrow;
        provider->failAt = failAt;
        auto const stream = MakeStream(*provider);
        EXPECT_THROW(*stream << *dictionary, std::runtime_error) << failAt;

        auto const source = Make<RecordingProvider>();
        source->bytes = RecordOf(kNative, *dictionary);
        source->failure = Failure::kThrow;
        source->failAt = failAt;
        IObject* object = nullptr;
        EXPECT_THROW(*MakeStream(*source) >> &object, std::runtime_error) << failAt;
        EXPECT_EQ(object, nullptr);
    }
    EXPECT_EQ(References(*dictionary), 1);
}
} // namespace
} // namespace KORVA
