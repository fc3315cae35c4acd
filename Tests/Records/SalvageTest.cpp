// What is kept of damaged record files: thousands of them, and what is whole in each is known beforehand.
#include <tessio/Records/Salvage/Salvage.h>

#include "Support/Bytes.h"
#include "Support/RowName.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <set>

namespace KORVA::TESTS
{
namespace
{
using RECORDS::ByteView;
using RECORDS::Fate;
using RECORDS::Order;
using RECORDS::Salvaged;

constexpr Order kLittle = IO::IDataProvider::kLittleEndian;
constexpr Order kBig = IO::IDataProvider::kBigEndian;

// Class ids as they lie in files.
constexpr char kDictionaryId[2][48] = {"D5 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05",
                                       "73 E9 0C D5 BB C6 43 26 82 41 9B B4 25 0B 1B 05"};
constexpr char kValueId[2][48] = {"21 0C E9 73 C6 BB 26 43 82 41 9B B4 25 0B 1B 05",
                                  "73 E9 0C 21 BB C6 43 26 82 41 9B B4 25 0B 1B 05"};
constexpr char kStringsId[2][48] = {"56 0A 21 CD 4C 28 7C 4B 81 3F 42 AD DF 77 48 53",
                                    "CD 21 0A 56 28 4C 4B 7C 81 3F 42 AD DF 77 48 53"};
constexpr char kURIId[2][48] = {"9E B4 17 25 E5 BC 4C 40 85 24 3A 6E C3 C3 B6 33",
                                "25 17 B4 9E BC E5 40 4C 85 24 3A 6E C3 C3 B6 33"};
constexpr char kOutsideId[2][48] = {"10 32 54 76 98 BA DC 4E 9F 01 23 45 67 89 AB CD",
                                    "76 54 32 10 BA 98 4E DC 9F 01 23 45 67 89 AB CD"};

/// A record in a generated file.
struct Extent
{
    std::size_t from = 0;
    std::size_t to = 0;
    /// Of a class of the library, not of somebody else's.
    bool isKnown = true;
};

/// Makes record files of its own, field by field, and knows where each record is.
class Generator
{
public:
    Generator(unsigned seed, Order order) : mRandom(seed), mOrder(order) {}

    void File(int records)
    {
        for (int i = 0; i < records; ++i)
            Any(0);
    }

    Bytes bytes;
    std::vector<Extent> extents;

private:
    unsigned Below(unsigned bound) { return static_cast<unsigned>(mRandom() % bound); }
    template <class Number>
    void Put(Number number)
    {
        std::size_t const at = bytes.size();
        for (std::size_t i = 0; i < sizeof(Number); ++i)
            bytes.push_back(static_cast<unsigned char>(static_cast<uint64>(number) >> (8 * i)));
        if (mOrder == kBig)
            std::reverse(bytes.begin() + static_cast<std::ptrdiff_t>(at), bytes.end());
    }
    void Put(Bytes const& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

    void Record(char const (&id)[2][48], bool isKnown, std::function<void()> const& body,
                bool aggregates = true)
    {
        std::size_t const from = bytes.size();
        Put(Hex(id[mOrder == kBig ? 1 : 0]));
        Put(int64{0});
        body();
        if (aggregates)
            Put(int32{0});
        std::size_t const to = bytes.size();
        Bytes const rest(bytes.begin() + static_cast<std::ptrdiff_t>(from + 24), bytes.end());
        bytes.resize(from + 16);
        Put(static_cast<int64>(rest.size()));
        Put(rest);
        extents.push_back({from, to, isKnown});
    }

    void Any(int depth)
    {
        unsigned const kind = depth == 0 ? Below(4) : depth > 2 ? 2 + Below(4) : Below(7);
        switch (kind)
        {
        case 0:
        case 1:
            return Dictionary(depth);
        case 2:
            return Strings();
        case 3:
            if (depth == 0)
                return Outside();
            return URI();
        default:
            return Number();
        }
    }

    void Dictionary(int depth)
    {
        Record(kDictionaryId, true, [&] {
            unsigned const count = 1 + Below(6);
            Put(static_cast<uint32>(count));
            uint32 key = Below(3);
            for (unsigned i = 0; i < count; ++i)
            {
                Put(key);
                key += 1 + Below(100);
                Any(depth + 1);
            }
        });
    }

    void Number()
    {
        Record(kValueId, true, [&] {
            uint32 const value = Below(1000000);
            Put(uint32{0x55333256}); // U32V
            Put(static_cast<uint64>(value));
            double const floating = value;
            uint64 bits = 0;
            std::memcpy(&bits, &floating, sizeof bits);
            Put(bits);
        });
    }

    void Text(unsigned units)
    {
        Put(static_cast<int32>(2 * units));
        for (unsigned i = 0; i < units; ++i)
            Put(static_cast<unsigned short>('a' + Below(26)));
    }

    void Strings()
    {
        Record(kStringsId, true, [&] {
            unsigned const count = 1 + Below(4);
            Put(static_cast<uint32>(count));
            for (unsigned i = 0; i < count; ++i)
            {
                Text(1 + Below(6));
                Text(Below(12));
            }
        });
    }

    void URI()
    {
        Record(kURIId, true, [&] { Text(8 + Below(20)); });
    }

    void Outside()
    {
        Record(kOutsideId, false, [&] {
            for (unsigned i = 4 + Below(60); i > 0; --i)
                bytes.push_back(static_cast<unsigned char>(1 + Below(255)));
        });
    }

    std::mt19937 mRandom;
    Order mOrder;
};

/// How a file was damaged: bytes from `from` on are gone or changed, `taken` of them.
struct Damage
{
    std::size_t from = 0;
    std::size_t taken = 0;
    bool isRemoved = false;
};

/// What nobody touched.
bool IsUntouched(Extent const& extent, Damage const& damage)
{
    return extent.to <= damage.from || extent.from >= damage.from + damage.taken;
}

std::size_t Tiled(Salvaged const& salvaged)
{
    std::size_t at = 0;
    for (Fate const& fate : salvaged.fates)
    {
        EXPECT_EQ(static_cast<std::size_t>(fate.offset), at);
        EXPECT_GT(fate.length, 0);
        at += static_cast<std::size_t>(fate.length);
    }
    return at;
}

/// The bytes of every record that reading the result comes to.
std::set<Bytes> Reached(RECORDS::RecordTree const& tree, Bytes const& content)
{
    std::set<Bytes> reached;
    RECORDS::Walk(tree, [&](RECORDS::Node const& node, std::string const&, int) {
        reached.emplace(content.begin() + static_cast<std::ptrdiff_t>(node.offset),
                        content.begin() + static_cast<std::ptrdiff_t>(node.End()));
    });
    return reached;
}

struct DamageRow
{
    char const* name;
    /// Damages the file and says where.
    Damage (*damage)(Bytes& file, Generator const& generator, std::mt19937& random);
    /// Whether records of somebody else's classes must all survive too: their lengths may not lie behind
    /// damage that nobody can see the end of.
    bool allOutside;
};

Damage FlipByte(Bytes& file, Generator const&, std::mt19937& random)
{
    std::size_t const at = random() % file.size();
    file[at] ^= static_cast<unsigned char>(1 + random() % 255);
    return {at, 1, false};
}

Damage CutTail(Bytes& file, Generator const&, std::mt19937& random)
{
    std::size_t const at = random() % file.size();
    std::size_t const taken = file.size() - at;
    file.resize(at);
    return {at, taken, true};
}

Damage LoseMiddle(Bytes& file, Generator const&, std::mt19937& random)
{
    std::size_t const at = random() % file.size();
    std::size_t const taken = 1 + random() % std::min<std::size_t>(file.size() - at, 200);
    auto const from = file.begin() + static_cast<std::ptrdiff_t>(at);
    file.erase(from, from + static_cast<std::ptrdiff_t>(taken));
    return {at, taken, true};
}

Damage WrongLength(Bytes& file, Generator const& generator, std::mt19937& random)
{
    Extent const extent = generator.extents[random() % generator.extents.size()];
    std::size_t const at = extent.from + 16 + random() % 8;
    file[at] ^= static_cast<unsigned char>(1 + random() % 255);
    return {extent.from + 16, 8, false};
}

class SalvageOfThousands : public ::testing::TestWithParam<DamageRow>
{
};

TEST_P(SalvageOfThousands, KeepsEveryWholeRecordOfAKnownClass)
{
    constexpr unsigned kFiles = 600;
    std::size_t whole = 0;
    std::size_t lost = 0;
    std::size_t outsideWhole = 0;
    std::size_t outsideLost = 0;
    for (unsigned seed = 0; seed < kFiles; ++seed)
    {
        Generator generator(seed, seed % 2 == 0 ? kLittle : kBig);
        generator.File(6);
        Bytes damaged = generator.bytes;
        std::mt19937 random(seed);
        Damage const damage = GetParam().damage(damaged, generator, random);
        Salvaged const salvaged = *RECORDS::Salvage(damaged, seed % 2 == 0 ? kLittle : kBig);
        ASSERT_EQ(Tiled(salvaged), damaged.size()) << "file " << seed;
        RECORDS::ReadOptions options;
        options.order = seed % 2 == 0 ? kLittle : kBig;
        RECORDS::RecordTree const tree = *RECORDS::ReadTree(RECORDS::MemorySource(salvaged.content), options);
        EXPECT_TRUE(tree.findings.empty()) << "file " << seed;
        std::set<Bytes> const reached = Reached(tree, salvaged.content);
        for (Extent const& extent : generator.extents)
        {
            if (!IsUntouched(extent, damage))
                continue;
            Bytes const record(generator.bytes.begin() + static_cast<std::ptrdiff_t>(extent.from),
                               generator.bytes.begin() + static_cast<std::ptrdiff_t>(extent.to));
            bool const isKept = reached.contains(record);
            (extent.isKnown ? whole : outsideWhole) += 1;
            if (!isKept)
                (extent.isKnown ? lost : outsideLost) += 1;
            if (!isKept && (extent.isKnown || GetParam().allOutside))
                ADD_FAILURE() << "file " << seed << ": the record at " << extent.from
                              << " is lost; damage at " << damage.from << ", " << damage.taken << " bytes";
        }
        if (HasFailure())
            break;
    }
    RecordProperty("whole", static_cast<int>(whole));
    RecordProperty("outside", static_cast<int>(outsideWhole));
    EXPECT_GT(whole, 6000u);
    EXPECT_EQ(lost, 0u);
    EXPECT_GT(outsideWhole, 300u);
    // Of those one in a hundred may hide in what is lost.
    EXPECT_LE(100 * outsideLost, outsideWhole);
}

INSTANTIATE_TEST_SUITE_P(Rows, SalvageOfThousands,
                         ::testing::Values(DamageRow{"FlippedByte", &FlipByte, false},
                                           DamageRow{"CutTail", &CutTail, true},
                                           DamageRow{"LostMiddle", &LoseMiddle, false},
                                           DamageRow{"WrongLength", &WrongLength, false}),
                         RowName());

} // namespace
} // namespace KORVA::TESTS
