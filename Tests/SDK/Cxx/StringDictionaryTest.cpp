// The dictionary of texts behind the friendly layer.
#include <tessio/Cxx/StringDictionary.h>

#include "SDK/Cxx/Note.h"
#include "Support/Library.h"

namespace KORVA::TESTS
{
namespace
{
using CXX::StringDictionary;

class CxxStrings : public LibraryTest
{
protected:
    StringDictionary strings = StringDictionary::Create().value();
};

TEST_F(CxxStrings, TakesAndGivesEitherEncoding)
{
    ASSERT_TRUE(strings.Set(u"\u00E4", "\xC3\x9F"));
    ASSERT_TRUE(strings.Set(std::string("b"), std::u16string(u"x")));
    EXPECT_EQ(strings.Get("\xC3\xA4").value(), u"\u00DF");
    EXPECT_EQ(strings.Get<std::string>(u8"\u00E4").value(), "\xC3\x9F");
    EXPECT_EQ(strings.Get<std::string>(STRING::CoreString(u"b")).value(), "x");
    EXPECT_TRUE(strings.Contains("b"));
    EXPECT_EQ(strings.Size(), 2u);
}

TEST_F(CxxStrings, KeepsEmptyTexts)
{
    ASSERT_TRUE(strings.Set("", ""));
    EXPECT_EQ(strings.Get("").value(), u"");
    EXPECT_EQ(strings.Size(), 1u);
}

TEST_F(CxxStrings, SaysWhatIsWrong)
{
    ASSERT_TRUE(strings.Set("a", u"\xD800"));
    EXPECT_EQ(strings.Get("b").error().Message(), "cannot get \"b\": no such entry (kNoEntry)");
    EXPECT_EQ(strings.Get("\xFF").error().Code(), 2005);
    EXPECT_EQ(strings.Set("\xFF", "x").error().Code(), 2005);
    EXPECT_EQ(strings.Set("a", "\xC3").error().Code(), 2005);
    EXPECT_EQ(strings.Get("a")->size(), 1u) << "nothing was changed";
    EXPECT_EQ(strings.Get<std::string>("a").error().Code(), 2005);
    EXPECT_FALSE(strings.Contains("\xFF"));
    EXPECT_FALSE(strings.Remove("\xFF"));
}

TEST_F(CxxStrings, RemovesAndClears)
{
    ASSERT_TRUE(strings.Set("a", "1"));
    ASSERT_TRUE(strings.Set("b", "2"));
    EXPECT_TRUE(strings.Remove(u"a"));
    EXPECT_FALSE(strings.Remove(u"a"));
    EXPECT_EQ(strings.Size(), 1u);
    strings.Clear();
    EXPECT_TRUE(strings.IsEmpty());
}

template <class K, class V>
concept TextsSettable = requires(StringDictionary strings, K key, V value)
{
    strings.Set(key, value);
};

static_assert(TextsSettable<char const*, std::u16string>);
static_assert(!TextsSettable<int, std::string> && !TextsSettable<std::string, int>);
static_assert(!TextsSettable<std::nullptr_t, std::string> && !TextsSettable<std::string, wchar_t const*>);
static_assert(!TextsSettable<std::string, bool> && !TextsSettable<std::string, char>);
} // namespace
} // namespace KORVA::TESTS
