// What salvaging writes is sound, whatever was damaged and how, and salvaging it once more changes nothing.
#include "Records/Samples.h"
#include "Support/RowName.h"
#include <tessio/Records/Format/RecordWriter.h>
#include <tessio/Records/Salvage/Salvage.h>
#include <tessio/Records/Tree/FileOrder.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>

namespace KORVA::TESTS
{
namespace
{
constexpr GUID kDictionary{0x73E90CD5, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}};
constexpr GUID kValue{0x73E90C21, 0xBBC6, 0x4326, {0x82, 0x41, 0x9B, 0xB4, 0x25, 0x0B, 0x1B, 0x05}};
constexpr GUID kStrings{0xCD210A56, 0x284C, 0x4B7C, {0x81, 0x3F, 0x42, 0xAD, 0xDF, 0x77, 0x48, 0x53}};
constexpr GUID kURI{0x2517B49E, 0xBCE5, 0x404C, {0x85, 0x24, 0x3A, 0x6E, 0xC3, 0xC3, 0xB6, 0x33}};
constexpr GUID kRelative{0x4E278406, 0x081C, 0x48E2, {0x97, 0xC3, 0xC6, 0xC6, 0xD8, 0x72, 0x80, 0xED}};
constexpr GUID kOutside{0x76543210, 0xBA98, 0x4EDC, {0x9F, 0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD}};

/// Files with records of every class, aggregates, and records of a class that nobody knows.
class Maker
{
public:
    Maker(unsigned seed, Order order) : mRandom(seed), mWriter(order) {}

    Bytes File()
    {
        for (unsigned left = 1 + Below(5); left > 0; --left)
            Any(0);
        return mWriter.Take();
    }

private:
    unsigned Below(unsigned bound) { return static_cast<unsigned>(mRandom() % bound); }

    void Text(unsigned units)
    {
        STRING::CoreString text;
        for (unsigned i = 0; i < units; ++i)
            text.push_back(static_cast<char16_t>(u'a' + Below(26)));
        mWriter.Put(text);
    }

    void Any(int depth)
    {
        unsigned const kind = Below(depth > 3 ? 5 : 8);
        if (kind == 4)
        {
            mWriter.Begin(kOutside);
            Bytes body(Below(40));
            std::ranges::generate(body, [&] { return static_cast<unsigned char>(Below(256)); });
            mWriter.Put(RECORDS::ByteView(body));
            return mWriter.End();
        }
        if (kind == 0)
            URI();
        else if (kind == 1)
            Relative();
        else if (kind == 2)
            Strings();
        else if (kind == 3)
            Value();
        else
            Dictionary(depth);
        unsigned const aggregates = Below(5) == 0 && depth < 3 ? 1 + Below(2) : 0;
        mWriter.Put(uint32{aggregates});
        for (unsigned i = 0; i < aggregates; ++i)
        {
            mWriter.Put(GUID{i + 1, 0x1111, 0x4222, {0x83, 0, 0, 0, 0, 0, 0, 1}});
            Any(depth + 1);
        }
        mWriter.End();
    }

    void Dictionary(int depth)
    {
        mWriter.Begin(kDictionary);
        unsigned const count = Below(5);
        mWriter.Put(uint32{count});
        for (unsigned i = 0, key = Below(3); i < count; ++i, key += 1 + Below(9))
        {
            mWriter.Put(uint32{key});
            Any(depth + 1);
        }
    }

    void URI()
    {
        mWriter.Begin(kURI);
        Text(Below(20));
    }

    void Relative()
    {
        mWriter.Begin(kRelative);
        Text(4);
        Text(Below(6));
        mWriter.Put(uint32{Below(2) * 80});
        Text(Below(12));
        mWriter.Put(uint32{1 + Below(16)});
    }

    void Strings()
    {
        mWriter.Begin(kStrings);
        unsigned const count = Below(5);
        mWriter.Put(uint32{count});
        for (unsigned i = 0; i < count; ++i)
        {
            Text(i + 1);
            Text(Below(10));
        }
    }

    void Value()
    {
        mWriter.Begin(kValue);
        switch (Below(4))
        {
        case 0:
            mWriter.Put(uint32{0x554E4E54}); // UNNT
            break;
        case 1: {
            mWriter.Put(uint32{0x43484152}); // CHAR
            unsigned const size = Below(50);
            mWriter.Put(uint32{size});
            mWriter.Put(RECORDS::ByteView(Bytes(size, 0xAB)));
            break;
        }
        case 2:
            mWriter.Put(uint32{0x554E4943}); // UNIC
            mWriter.Put(uint32{4});
            mWriter.Put(RECORDS::ByteView(Bytes{0x68, 0, 0x69, 0}));
            break;
        default:
            mWriter.Put(uint32{0x53333256}); // S32V
            mWriter.Put(uint64{7});
            mWriter.Put(uint64{0x401C000000000000});
        }
    }

    std::mt19937 mRandom;
    RECORDS::RecordWriter mWriter;
};

using Random = std::mt19937;

std::size_t Place(Bytes const& file, Random& random)
{
    return random() % std::max<std::size_t>(1, file.size());
}

void Flip(Bytes& file, Random& random)
{
    for (unsigned left = 1 + random() % 4; left > 0 && !file.empty(); --left)
        file[Place(file, random)] ^= static_cast<unsigned char>(1u << random() % 8);
}

void Cut(Bytes& file, Random& random) { file.resize(Place(file, random)); }

void Zero(Bytes& file, Random& random)
{
    std::size_t const at = Place(file, random);
    std::size_t const to = std::min(file.size(), at + 1 + random() % 64);
    std::fill(file.begin() + static_cast<std::ptrdiff_t>(at), file.begin() + static_cast<std::ptrdiff_t>(to),
              0);
}

void LoseMiddle(Bytes& file, Random& random)
{
    std::size_t const at = Place(file, random);
    std::size_t const to = std::min(file.size(), at + 1 + random() % 100);
    file.erase(file.begin() + static_cast<std::ptrdiff_t>(at),
               file.begin() + static_cast<std::ptrdiff_t>(to));
}

/// A number of four bytes becomes another one: a count, a length, a key, a tag or something else.
void WrongNumber(Bytes& file, Random& random)
{
    constexpr uint32 kNumbers[] = {0, 1, 2, 0xFFFFFFFF, 0x7FFFFFFF, 0x80000000, 24};
    for (unsigned left = 1 + random() % 2; left > 0 && file.size() >= 4; --left)
        RECORDS::Store(file.data() + random() % (file.size() - 3), kNumbers[random() % std::size(kNumbers)],
                       kLittle);
}

void CopyMiddle(Bytes& file, Random& random)
{
    std::size_t const at = Place(file, random);
    std::size_t const to = std::min(file.size(), at + 1 + random() % 100);
    Bytes const middle(file.begin() + static_cast<std::ptrdiff_t>(at),
                       file.begin() + static_cast<std::ptrdiff_t>(to));
    auto const where = file.begin() + static_cast<std::ptrdiff_t>(Place(file, random));
    file.insert(where, middle.begin(), middle.end());
}

std::string Problems(RECORDS::RecordTree const& tree)
{
    std::string problems;
    RECORDS::Walk(tree, [&](RECORDS::Node const& node, std::string const& path, int) {
        for (RECORDS::Finding const& finding : node.findings)
            if (finding.severity == RECORDS::Severity::kError)
                problems += path + ": " + finding.words + "\n";
    });
    for (RECORDS::Finding const& finding : tree.findings)
        problems += finding.words + "\n";
    return problems;
}

/// What there is to say against what salvaging made of a file; empty when there is nothing.
std::string Trouble(Bytes const& damaged, Order order)
{
    Bytes const once = RECORDS::Salvage(damaged, order)->content;
    if (once.empty())
        return {};
    if (std::string const problems = Problems(Read(order, once)); !problems.empty())
        return "what it writes is damaged: " + problems + ToHex(once);
    Bytes const twice = RECORDS::Salvage(once, order)->content;
    return twice == once ? std::string()
                         : "salvaged again it is\n" + ToHex(twice) + "\nafter\n" + ToHex(once);
}

struct DamageRow
{
    char const* name;
    void (*damage)(Bytes& file, Random& random);
};

class SalvageSound : public ::testing::TestWithParam<DamageRow>
{
};

/// More of them by hand: TESSIO_SALVAGE_FILES=100000.
unsigned Files()
{
    char const* const asked = std::getenv("TESSIO_SALVAGE_FILES");
    return asked ? static_cast<unsigned>(std::atoi(asked)) : 700;
}

TEST_P(SalvageSound, WhatItWrites)
{
    int failures = 0;
    for (unsigned seed = 0; seed < Files() && failures < 5; ++seed)
    {
        Order const order = kOrders[seed % 2];
        Bytes file = Maker(seed, order).File();
        Random random(seed);
        GetParam().damage(file, random);
        std::string const trouble = Trouble(file, order);
        failures += trouble.empty() ? 0 : 1;
        EXPECT_EQ(trouble, "") << "file " << seed << ": " << ToHex(file);
    }
}

INSTANTIATE_TEST_SUITE_P(Rows, SalvageSound,
                         ::testing::Values(DamageRow{"Flipped", &Flip}, DamageRow{"Cut", &Cut},
                                           DamageRow{"Zeroed", &Zero}, DamageRow{"LostMiddle", &LoseMiddle},
                                           DamageRow{"WrongNumber", &WrongNumber},
                                           DamageRow{"CopiedMiddle", &CopyMiddle}),
                         RowName());

TEST(SalvageSound, OfEverySmallDamageToo)
{
    ForEachFile({0x01, 0x80, 0xFF}, [](Bytes const& content, Order order, std::string const& name) {
        ASSERT_EQ(Trouble(content, order), "") << name << ": " << ToHex(content);
    });
}

struct MendRow
{
    char const* name;
    char const* damaged;
    char const* mended;
    /// What is said of the first record, and about which bytes.
    char const* words;
    int64 length;
};

class SalvageMends : public ::testing::TestWithParam<MendRow>
{
};

TEST_P(SalvageMends, WhatItsLengthProves)
{
    for (Order const order : kOrders)
    {
        RECORDS::Salvaged const salvaged = *RECORDS::Salvage(Laid(order, GetParam().damaged), order);
        EXPECT_EQ(ToHex(salvaged.content), ToHex(Laid(order, GetParam().mended)));
        ASSERT_FALSE(salvaged.fates.empty());
        EXPECT_EQ(salvaged.fates[0].words, GetParam().words);
        EXPECT_EQ(salvaged.fates[0].length, GetParam().length);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rows, SalvageMends,
    ::testing::Values(
        MendRow{"NumberOfAggregates", "Value 24:8 'S32V 7:8 0x401C000000000000:8 9:4",
                "Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4", "its number of aggregates was 9, it is 0",
                48},
        MendRow{"NumberOfAggregatesThatAreThere",
                "URI 56:8 0:4 -1:4 {00000001-0000-0000-0000-000000000000} URI 8:8 0:4 0:4 Dict 8:8 0:4 0:4",
                "URI 56:8 0:4 1:4 {00000001-0000-0000-0000-000000000000} URI 8:8 0:4 0:4 Dict 8:8 0:4 0:4",
                "its number of aggregates was -1, it is 1", 32},
        MendRow{"NegativeLengthOfAKey", "Strings 30:8 2:4 -5:4 4:4 \"xy\" 2:4 \"a\" 0:4 0:4 URI 8:8 0:4 0:4",
                "Strings 30:8 2:4 0:4 4:4 \"xy\" 2:4 \"a\" 0:4 0:4 URI 8:8 0:4 0:4",
                "1 of its texts had a length that no writer makes", 54},
        MendRow{"WhatMakesNoSenseIsLeftOut", "Value 12:8 'CHAR 9:4 0:4 URI 8:8 0:4 0:4", "URI 8:8 0:4 0:4",
                "", 36}),
    RowName());
} // namespace
} // namespace KORVA::TESTS
