// Counting, querying and aggregation.
#include <tessio/ObjectModel/TObject.h>

#include "SDK/Tracked.h"
#include <tessio/ObjectModel/IClassFactory.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
// In the order of the table: the second word of kFirst is 0x00010002, that of kSecond 0x00020001.
constexpr GUID kFirst{1, 2, 1, {}};
constexpr GUID kSecond{1, 1, 2, {}};
constexpr GUID kThird{2, 0, 0, {}};
constexpr GUID kAbsent{1, 2, 1, {0, 0, 0, 0, 0, 0, 0, 1}};

class TObjectTest : public ::testing::Test
{
protected:
    Tracked* New(char const* name) { return new Tracked(name, events); }

    Events Take() { return std::exchange(events, {}); }

    Events events;
};

TEST_F(TObjectTest, IsBornWithOneReference)
{
    Tracked* const object = New("a");
    EXPECT_EQ(object->AddRef(), 2);
    EXPECT_EQ(object->AddRef(), 3);
    EXPECT_EQ(object->Release(), 2);
    EXPECT_EQ(object->Release(), 1);
    EXPECT_EQ(Take(), (Events{"+a", "+a", "-a", "-a"}));
    EXPECT_EQ(object->Release(), 0);
    EXPECT_EQ(Take(), (Events{"-a", "~a"}));
}

TEST_F(TObjectTest, IsBornWithoutAggregates)
{
    Tracked* const object = New("a");
    EXPECT_TRUE(object->GetAggregates().empty());
    object->Release();
}

TEST_F(TObjectTest, DiesThroughTheDestructorOfItsClassWhenReleasedAsInterface)
{
    IObject* const object = New("a");
    EXPECT_EQ(object->Release(), 0);
    EXPECT_EQ(Take(), (Events{"-a", "~a"}));
}

TEST_F(TObjectTest, QueryOfAnAbsentIdAnswersMinus1004AndWritesNothing)
{
    Tracked* const object = New("a");
    IObject* out = object;
    EXPECT_EQ(object->QueryInterface(kAbsent, &out), -1004);
    EXPECT_EQ(out, object);
    EXPECT_EQ(object->QueryInterface(kAbsent, nullptr), -1004);
    object->Release();
}

TEST_F(TObjectTest, QueryLendsTheAggregate)
{
    Tracked* const owner = New("owner");
    Tracked* const facet = New("facet");
    owner->Aggregate(facet, kFirst);
    Take();
    IObject* out = nullptr;
    EXPECT_EQ(owner->QueryInterface(kFirst, &out), 0);
    EXPECT_EQ(out, facet);
    EXPECT_EQ(owner->QueryInterface(kFirst, nullptr), 0);
    EXPECT_EQ(Take(), Events()) << "a query takes no reference";
    EXPECT_EQ(owner->QueryInterface(kAbsent, nullptr), -1004);
    facet->Release();
    owner->Release();
}

TEST_F(TObjectTest, AggregateTakesItsOwnReference)
{
    Tracked* const owner = New("owner");
    Tracked* const facet = New("facet");
    owner->Aggregate(facet, kFirst);
    EXPECT_EQ(Take(), Events{"+facet"});
    EXPECT_EQ(facet->Release(), 1) << "the table's reference stays";
    EXPECT_EQ(owner->GetAggregates().size(), 1u);
    owner->Release();
}

TEST_F(TObjectTest, AggregateOfTheSameObjectAgainChangesNothing)
{
    Tracked* const owner = New("owner");
    Tracked* const facet = New("facet");
    owner->Aggregate(facet, kFirst);
    owner->Aggregate(facet, kFirst);
    EXPECT_EQ(Take(), Events{"+facet"});
    EXPECT_EQ(CountOf(*facet), 2);
    facet->Release();
    owner->Release();
}

TEST_F(TObjectTest, AggregateOfAnotherObjectReleasesTheFirstBeforeTakingTheSecond)
{
    Tracked* const owner = New("owner");
    Tracked* const first = New("first");
    Tracked* const second = New("second");
    owner->Aggregate(first, kFirst);
    first->Release();
    Take();
    owner->Aggregate(second, kFirst);
    EXPECT_EQ(Take(), (Events{"-first", "~first", "+second"}));
    IObject* out = nullptr;
    EXPECT_EQ(owner->QueryInterface(kFirst, &out), 0);
    EXPECT_EQ(out, second);
    EXPECT_EQ(owner->GetAggregates().size(), 1u);
    second->Release();
    owner->Release();
}

TEST_F(TObjectTest, TheSameObjectUnderTwoIdsIsHeldTwice)
{
    Tracked* const owner = New("owner");
    Tracked* const facet = New("facet");
    owner->Aggregate(facet, kFirst);
    owner->Aggregate(facet, kSecond);
    EXPECT_EQ(CountOf(*facet), 3);
    owner->UnAggregate(kFirst);
    EXPECT_EQ(CountOf(*facet), 2);
    EXPECT_EQ(owner->QueryInterface(kFirst, nullptr), -1004);
    EXPECT_EQ(owner->QueryInterface(kSecond, nullptr), 0);
    facet->Release();
    owner->Release();
}

TEST_F(TObjectTest, AggregateOfNullChangesNothing)
{
    Tracked* const owner = New("owner");
    Tracked* const facet = New("facet");
    owner->Aggregate(facet, kFirst);
    facet->Release();
    Take();
    owner->Aggregate(nullptr, kFirst);
    owner->Aggregate(nullptr, kSecond);
    EXPECT_EQ(Take(), Events());
    EXPECT_EQ(owner->GetAggregates().size(), 1u);
    IObject* out = nullptr;
    EXPECT_EQ(owner->QueryInterface(kFirst, &out), 0);
    EXPECT_EQ(out, facet);
    owner->Release();
}

TEST_F(TObjectTest, UnAggregateReleasesAndForgets)
{
    Tracked* const owner = New("owner");
    Tracked* const facet = New("facet");
    owner->Aggregate(facet, kFirst);
    facet->Release();
    Take();
    owner->UnAggregate(kFirst);
    EXPECT_EQ(Take(), (Events{"-facet", "~facet"}));
    EXPECT_EQ(owner->QueryInterface(kFirst, nullptr), -1004);
    EXPECT_TRUE(owner->GetAggregates().empty());
    owner->Release();
}

TEST_F(TObjectTest, UnAggregateOfAnAbsentIdIsHarmless)
{
    Tracked* const owner = New("owner");
    Tracked* const facet = New("facet");
    owner->UnAggregate(kFirst);
    owner->Aggregate(facet, kFirst);
    facet->Release();
    Take();
    owner->UnAggregate(kAbsent);
    EXPECT_EQ(Take(), Events());
    EXPECT_EQ(owner->GetAggregates().size(), 1u);
    owner->Release();
}

TEST_F(TObjectTest, ClearAggregatesReleasesInKeyOrder)
{
    Tracked* const owner = New("owner");
    Tracked* const facets[] = {New("third"), New("first"), New("second")};
    owner->Aggregate(facets[0], kThird);
    owner->Aggregate(facets[1], kFirst);
    owner->Aggregate(facets[2], kSecond);
    Take();
    owner->ClearAggregates();
    EXPECT_EQ(Take(), (Events{"-first", "-second", "-third"}));
    EXPECT_TRUE(owner->GetAggregates().empty());
    for (Tracked* const facet : facets)
        facet->Release();
    owner->Release();
}

TEST_F(TObjectTest, ClearAggregatesOfNoneIsHarmless)
{
    Tracked* const owner = New("owner");
    owner->ClearAggregates();
    EXPECT_EQ(Take(), Events());
    EXPECT_EQ(CountOf(*owner), 1);
    owner->Release();
}

TEST_F(TObjectTest, DropsItsAggregatesInKeyOrderWhenItDies)
{
    Tracked* const owner = New("owner");
    for (auto const& [name, id] : {std::pair{"third", kThird}, {"second", kSecond}, {"first", kFirst}})
    {
        Tracked* const facet = New(name);
        owner->Aggregate(facet, id);
        facet->Release();
    }
    Take();
    EXPECT_EQ(owner->Release(), 0);
    EXPECT_EQ(Take(),
              (Events{"-owner", "~owner", "-first", "~first", "-second", "~second", "-third", "~third"}));
}

TEST_F(TObjectTest, AnAggregateOutlivesItsOwnerWhileOthersHoldIt)
{
    Tracked* const owner = New("owner");
    Tracked* const facet = New("facet");
    owner->Aggregate(facet, kFirst);
    owner->Release();
    EXPECT_EQ(CountOf(*facet), 1);
    facet->Release();
}

TEST_F(TObjectTest, GetAggregatesShowsTheTableItself)
{
    Tracked* const owner = New("owner");
    Tracked* const first = New("first");
    Tracked* const second = New("second");
    AggregateMap const& aggregates = owner->GetAggregates();
    owner->Aggregate(second, kSecond);
    owner->Aggregate(first, kFirst);
    ASSERT_EQ(aggregates.size(), 2u);
    EXPECT_TRUE(aggregates.begin()->first == kFirst);
    EXPECT_EQ(aggregates.begin()->second, first);
    EXPECT_TRUE(aggregates.rbegin()->first == kSecond);
    EXPECT_EQ(aggregates.rbegin()->second, second);
    EXPECT_EQ(&aggregates, &owner->GetAggregates());
    first->Release();
    second->Release();
    owner->Release();
}

TEST_F(TObjectTest, AggregateTakesTheIdByValue)
{
    Tracked* const owner = New("owner");
    Tracked* const facet = New("facet");
    GUID id = kFirst;
    owner->Aggregate(facet, id);
    id = kThird;
    EXPECT_EQ(owner->QueryInterface(kFirst, nullptr), 0);
    EXPECT_EQ(owner->QueryInterface(kThird, nullptr), -1004);
    facet->Release();
    owner->Release();
}

/// The same for a template instance of another interface.
class Factory final : public TObject<IClassFactory>
{
public:
    ErrCode CreateInstance(GUID const&, IObject**) override { return -1004; }
};

TEST_F(TObjectTest, EveryInstanceBehavesAlike)
{
    auto* const owner = new Factory;
    Tracked* const facet = New("facet");
    EXPECT_EQ(owner->AddRef(), 2);
    EXPECT_EQ(owner->Release(), 1);
    EXPECT_EQ(owner->QueryInterface(kFirst, nullptr), -1004);
    owner->Aggregate(facet, kFirst);
    EXPECT_EQ(owner->QueryInterface(kFirst, nullptr), 0);
    EXPECT_EQ(CountOf(*facet), 2);
    facet->Release();
    Take();
    EXPECT_EQ(owner->Release(), 0);
    EXPECT_EQ(Take(), (Events{"-facet", "~facet"}));
}

/// Counts how often it died, from whatever thread.
class Mortal final : public TObject<IObject>
{
public:
    explicit Mortal(std::atomic<int>& deaths) : mDeaths(deaths) {}
    ~Mortal() override { ++mDeaths; }

private:
    std::atomic<int>& mDeaths;
};

constexpr std::size_t kThreads = 4;
constexpr std::size_t kRounds = 5000;

/// Every result of `call` in all threads, sorted.
template <class Call>
std::vector<int32> ResultsOfThreads(Call call)
{
    std::vector<std::vector<int32>> results(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i)
        threads.emplace_back([&results, &call, i] {
            for (std::size_t round = 0; round < kRounds; ++round)
                results[i].push_back(call());
        });
    for (std::thread& thread : threads)
        thread.join();
    std::vector<int32> all;
    for (auto const& part : results)
        all.insert(all.end(), part.begin(), part.end());
    std::sort(all.begin(), all.end());
    return all;
}

TEST(TObjectThreads, EachCallAnswersTheCountThatItMade)
{
    std::atomic<int> deaths = 0;
    auto* const object = new Mortal(deaths);
    std::vector<int32> expected;
    for (int32 count = 2; count <= static_cast<int32>(kThreads * kRounds) + 1; ++count)
        expected.push_back(count);
    EXPECT_EQ(ResultsOfThreads([object] { return object->AddRef(); }), expected);
    for (int32& count : expected)
        --count;
    EXPECT_EQ(ResultsOfThreads([object] { return object->Release(); }), expected);
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(object->Release(), 0);
    EXPECT_EQ(deaths, 1);
}

TEST(TObjectThreads, ExactlyOneThreadEndsTheObject)
{
    std::atomic<int> deaths = 0;
    for (std::size_t round = 0; round < 200; ++round)
    {
        auto* const object = new Mortal(deaths);
        for (std::size_t i = 1; i < kThreads; ++i)
            object->AddRef();
        std::atomic<int> zeros = 0;
        std::vector<std::thread> threads;
        for (std::size_t i = 0; i < kThreads; ++i)
            threads.emplace_back([object, &zeros] {
                if (object->Release() == 0)
                    ++zeros;
            });
        for (std::thread& thread : threads)
            thread.join();
        ASSERT_EQ(zeros, 1);
    }
    EXPECT_EQ(deaths, 200);
}
} // namespace
} // namespace KORVA::TESTS
