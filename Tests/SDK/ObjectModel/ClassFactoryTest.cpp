// Factories made from a table of class ids.
#include <tessio/ObjectModel/ClassFactory.h>

#include "SDK/Tracked.h"
#include "Support/Library.h"
#include <tessio/ObjectModel/TInterfacePtr.h>

#include <gtest/gtest.h>

namespace KORVA::TESTS
{
namespace
{
constexpr GUID kApple{0x10, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID kPear{0x20, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};
constexpr GUID kOtherPear{0x21, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}};

class Apple final : public TObject<IObject>
{
};

class Pear final : public TObject<IObject>
{
};

using Orchard = TClassFactory<Makes<&New<Apple>, kApple>, Makes<&New<Pear>, kPear, kOtherPear>>;

static_assert(sizeof(Orchard) == sizeof(TObject<IClassFactory>), "a factory adds no fields");

class ClassFactoryTest : public ::testing::Test
{
protected:
    ClassFactoryTest() { factory.Adopt(new Orchard); }

    TInterfacePtr<IClassFactory> factory;
};

TEST_F(ClassFactoryTest, MakesTheClassOfTheId)
{
    TInterfacePtr<IObject> object;
    EXPECT_EQ(factory->CreateInstance(kApple, object.Out()), 0);
    EXPECT_TRUE(dynamic_cast<Apple*>(object.Get()));
    EXPECT_EQ(factory->CreateInstance(kPear, object.Out()), 0);
    EXPECT_TRUE(dynamic_cast<Pear*>(object.Get()));
    EXPECT_EQ(factory->CreateInstance(kOtherPear, object.Out()), 0);
    EXPECT_TRUE(dynamic_cast<Pear*>(object.Get()));
}

TEST_F(ClassFactoryTest, HandsOverOneReferenceToANewObject)
{
    TInterfacePtr<IObject> first;
    TInterfacePtr<IObject> second;
    EXPECT_EQ(factory->CreateInstance(kApple, first.Out()), 0);
    EXPECT_EQ(factory->CreateInstance(kApple, second.Out()), 0);
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(CountOf(*first), 1);
    EXPECT_TRUE(first->GetAggregates().empty());
}

TEST_F(ClassFactoryTest, DoesNotAnswerItsOwnId)
{
    EXPECT_EQ(factory->QueryInterface(kApple, nullptr), -1004);
    EXPECT_EQ(CountOf(*factory), 1);
}

struct Row
{
    char const* name;
    GUID id;
};

Row const kRows[] = {
    {"OtherData1", {0x11, 1, 2, {1, 2, 3, 4, 5, 6, 7, 8}}},
    {"OtherData2", {0x10, 9, 2, {1, 2, 3, 4, 5, 6, 7, 8}}},
    {"OtherData3", {0x10, 1, 9, {1, 2, 3, 4, 5, 6, 7, 8}}},
    {"OtherThirdWord", {0x10, 1, 2, {1, 2, 3, 9, 5, 6, 7, 8}}},
    {"OtherLastWord", {0x10, 1, 2, {1, 2, 3, 4, 5, 6, 7, 9}}},
    {"AllZero", {}},
};

class ForeignId : public ::testing::TestWithParam<Row>
{
};

TEST_P(ForeignId, AnswersMinus1004AndNull)
{
    TInterfacePtr<IClassFactory> factory;
    factory.Adopt(new Orchard);
    IObject* out = factory.Get();
    EXPECT_EQ(factory->CreateInstance(GetParam().id, &out), -1004);
    EXPECT_EQ(out, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Ids, ForeignId, ::testing::ValuesIn(kRows), RowName());
} // namespace
} // namespace KORVA::TESTS
