// Going over dictionaries.
#include "SDK/Cxx/Note.h"
#include "SDK/Tracked.h"
#include "Support/Library.h"
#include <tessio/Cxx/Dictionary.h>
#include <tessio/Cxx/StringDictionary.h>

#include <algorithm>
#include <iterator>
#include <ranges>

namespace KORVA::TESTS
{
namespace
{
using CXX::Dictionary;
using CXX::StringDictionary;
using CXX::ValueKind;

class CxxRange : public LibraryTest
{
};

static_assert(std::ranges::forward_range<Dictionary const>);
static_assert(std::ranges::forward_range<StringDictionary const>);

TEST_F(CxxRange, GoesInAscendingOrder)
{
    Dictionary dictionary = Dictionary::Create().value();
    dictionary.Set(30, 3);
    dictionary.Set(1, 1);
    dictionary.Set(4000000000u, 4);
    dictionary.Set(2, 2);
    std::vector<unsigned int> keys;
    std::vector<int> numbers;
    for (auto const& [key, value] : dictionary)
    {
        keys.push_back(key);
        numbers.push_back(value.Get<int>().value());
    }
    EXPECT_EQ(keys, (std::vector<unsigned int>{1, 2, 30, 4000000000u}));
    EXPECT_EQ(numbers, (std::vector<int>{1, 2, 3, 4}));
}

TEST_F(CxxRange, OverNothingEndsAtOnce)
{
    for (auto const& entry : Dictionary::Create().value())
        ADD_FAILURE() << entry.key;
    for (auto const& entry : StringDictionary::Create().value())
        ADD_FAILURE() << entry.key.size();
    EXPECT_TRUE(CXX::SnapshotIterator<int>() == std::default_sentinel);
}

TEST_F(CxxRange, TellsKinds)
{
    Dictionary dictionary = Dictionary::Create().value();
    dictionary.Set(1, 1);
    dictionary.Set(2, GUID{1, 2, 3, {}});
    ASSERT_TRUE(dictionary.Set(3, std::vector<unsigned char>{1}));
    ASSERT_TRUE(dictionary.Set(4, u"x"));
    ASSERT_TRUE(dictionary.Set(5, MakeNote(1)));
    std::vector<ValueKind> kinds;
    for (auto const& [key, value] : dictionary)
        kinds.push_back(value.Kind());
    EXPECT_EQ(kinds, (std::vector<ValueKind>{ValueKind::kNumber, ValueKind::kGUID, ValueKind::kBytes,
                                             ValueKind::kText, ValueKind::kObject}));
}

TEST_F(CxxRange, IsASnapshotThatOutlivesTheDictionary)
{
    Dictionary dictionary = Dictionary::Create().value();
    CXX::Handle<INote> const note = MakeNote(9);
    ASSERT_TRUE(dictionary.Set(1, u"first"));
    ASSERT_TRUE(dictionary.Set(2, note));
    std::vector<Dictionary::Entry> entries;
    for (auto const& entry : dictionary)
    {
        dictionary.Remove(entry.key);
        dictionary.Set(entry.key + 10, 1);
        entries.push_back(entry);
    }
    EXPECT_EQ(dictionary.Size(), 2u);
    dictionary = Dictionary::Create().value();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].value.Get<std::u16string_view>().value(), u"first");
    EXPECT_TRUE(entries[1].value.Get<CXX::Handle<INote>>()->IsSame(note));
    EXPECT_EQ(entries[0].value.Get<int>().error().Code(), 10);
    EXPECT_EQ(CountOf(*note), 2);
    entries.clear();
    EXPECT_EQ(CountOf(*note), 1) << "the snapshot dies with its last value";
}

TEST_F(CxxRange, WorksWithTheStandardAlgorithms)
{
    Dictionary dictionary = Dictionary::Create().value();
    for (unsigned int key = 1; key <= 10; ++key)
        dictionary.Set(key, static_cast<int>(key) * 10);
    EXPECT_EQ(std::ranges::count_if(dictionary, [](auto const& entry) { return entry.key > 7; }), 3);
    auto const found = std::ranges::find_if(
        dictionary, [](auto const& entry) { return entry.value.template Get<int>().value() == 40; });
    ASSERT_FALSE(found == std::default_sentinel);
    EXPECT_EQ(found->key, 4u);
    auto it = dictionary.begin();
    auto const before = it++;
    EXPECT_EQ(before->key, 1u);
    EXPECT_EQ(it->key, 2u);
    EXPECT_FALSE(before == it);
    EXPECT_EQ(std::next(before), it);
}

TEST_F(CxxRange, OfTextsHoldsCopies)
{
    StringDictionary strings = StringDictionary::Create().value();
    ASSERT_TRUE(strings.Set("b", "2"));
    ASSERT_TRUE(strings.Set(u"a", u"1"));
    std::u16string all;
    for (auto const& [key, value] : strings)
    {
        strings.Clear();
        all += key + u"=" + value + u";";
    }
    EXPECT_EQ(all, u"a=1;b=2;");
}
} // namespace
} // namespace KORVA::TESTS
