// Files with damage: cut at every length, every byte changed. What stands before and behind the damage must
// come back, and what stands in it must neither crash, hang nor leak.
#include "DamagedFile.h"
#include "Support/TemporaryDirectory.h"
#include <tessio/TessIO/IURIFile.h>

#include <random>

namespace KORVA
{
namespace
{
using namespace TESTS;

struct Loaded
{
    int64 start;
    TInterfacePtr<IObject> object;
};

class DamageTest : public DamagedFileTest
{
protected:
    /// Everything on the stream, until it ends or nothing moves any more.
    static std::vector<Loaded> LoadAll(IDataProvider& provider, IDataProviderStream& stream)
    {
        std::vector<Loaded> loaded;
        // More than the file can hold, were every record a header alone.
        constexpr int kBound = static_cast<int>(kSize / kHeader) + 1;
        while (!provider.AtEnd())
        {
            int64 const start = provider.GetPosition();
            loaded.push_back({start, ReadObject(stream)});
            EXPECT_LE(loaded.size(), static_cast<std::size_t>(kBound));
            if (provider.GetPosition() <= start || loaded.size() > kBound)
                break;
        }
        return loaded;
    }

    static void UseAndRelease(std::vector<Loaded>& loaded)
    {
        for (Loaded& each : loaded)
        {
            if (!each.object)
                continue;
            Curious().Look(each.object.Get());
            static_cast<void>(RecordOf(kReversed, *each.object));
            EXPECT_EQ(each.object.Detach()->Release(), 0);
        }
    }

    /// Every record but the damaged one (-1 for none), or only those before it where what follows may be
    /// lost.
    static void ExpectIntact(std::vector<Loaded> const& loaded, int damaged, bool mayLoseTheRest)
    {
        int const end = mayLoseTheRest ? damaged : kRecords;
        EXPECT_TRUE(mayLoseTheRest || loaded.size() == static_cast<std::size_t>(kRecords)) << loaded.size();
        for (int record = 0; record < end; ++record)
        {
            auto const at = static_cast<std::size_t>(record);
            if (record == damaged)
                continue;
            ASSERT_LT(at, loaded.size());
            EXPECT_EQ(loaded[at].start, kStarts[record]);
            EXPECT_TRUE(IsIntact(record, loaded[at].object.Get())) << "record " << record;
        }
    }

    static int RecordAt(int64 position)
    {
        int record = 0;
        while (record + 1 < kRecords && kStarts[record + 1] <= position)
            ++record;
        return record;
    }

    /// Whether the byte belongs to the length of a record that is not inside another: only there damage can
    /// cost what follows.
    static bool IsTopLevelLength(int64 position)
    {
        int64 const inRecord = position - kStarts[RecordAt(position)];
        return inRecord >= kClassId && inRecord < kHeader;
    }

    static void ExpectAfterDamageAt(std::vector<Loaded> const& loaded, int64 position, bool isDamaged)
    {
        ExpectIntact(loaded, isDamaged ? RecordAt(position) : -1, isDamaged && IsTopLevelLength(position));
    }

    /// Of a file that ends at `length`.
    static void ExpectAfterCutAt(std::vector<Loaded> const& loaded, int64 length)
    {
        int complete = 0;
        while (complete < kRecords && kStarts[complete + 1] <= length)
            ++complete;
        ExpectIntact(loaded, complete, true);
    }
};

enum class Medium
{
    kHandle,
    kReadOnly
};

struct DamageRow
{
    std::string name;
    IDataProvider::Endian endian;
    Medium medium;
    unsigned char keep;
    unsigned char flip;
};

/// Each kind of damage as the bits that are kept and those that are then flipped.
std::vector<DamageRow> DamageRows()
{
    struct Kind
    {
        char const* name;
        unsigned char keep;
        unsigned char flip;
    };
    std::vector<DamageRow> rows;
    for (Kind const& kind :
         {Kind{"FlipAll", 0xFF, 0xFF}, Kind{"FlipLowest", 0xFF, 0x01}, Kind{"FlipHighest", 0xFF, 0x80},
          Kind{"Clear", 0x00, 0x00}, Kind{"Set", 0x00, 0xFF}})
        for (auto const endian : {kNative, kReversed})
            for (auto const medium : {Medium::kHandle, Medium::kReadOnly})
                rows.push_back({std::string(kind.name) + (endian == kNative ? "Native" : "Reversed") +
                                    (medium == Medium::kHandle ? "Handle" : "ReadOnly"),
                                endian, medium, kind.keep, kind.flip});
    return rows;
}

class DamagedByteTest : public DamageTest, public ::testing::WithParamInterface<DamageRow>
{
protected:
    static TInterfacePtr<IDataProvider> Open(Bytes const& content)
    {
        return GetParam().medium == Medium::kHandle ? MakeMemory(GetParam().endian, content)
                                                    : MakeReadOnly(GetParam().endian, content);
    }
};

TEST_F(DamageTest, FileIsAsLongAsItsRecords)
{
    for (auto const endian : {kNative, kReversed})
    {
        Bytes const file = MakeFile(endian);
        EXPECT_EQ(file.size(), 1106u);
        auto const memory = MakeMemory(endian, file);
        auto loaded = LoadAll(*memory, *MakeStream(*memory));
        ExpectIntact(loaded, -1, false);
        UseAndRelease(loaded);
        log.Take();
    }
}

TEST_P(DamagedByteTest, CostsItsOwnRecordOnly)
{
    Bytes const file = MakeFile(GetParam().endian);
    for (int64 position = 0; position < kSize; ++position)
    {
        SCOPED_TRACE(position);
        Bytes damaged = file;
        auto& byte = damaged[static_cast<std::size_t>(position)];
        byte = static_cast<unsigned char>((byte & GetParam().keep) ^ GetParam().flip);
        auto const memory = Open(damaged);
        auto loaded = LoadAll(*memory, *MakeStream(*memory));
        ExpectAfterDamageAt(loaded, position, damaged != file);
        UseAndRelease(loaded);
        log.Take();
        if (HasFailure())
            break;
    }
}

INSTANTIATE_TEST_SUITE_P(Damage, DamagedByteTest, ::testing::ValuesIn(DamageRows()), RowName());

struct CutRow
{
    char const* name;
    IDataProvider::Endian endian;
};

CutRow const kCuts[] = {{"Native", kNative}, {"Reversed", kReversed}};

class CutTest : public DamageTest, public ::testing::WithParamInterface<CutRow>
{
protected:
    /// Reads the file of the given bytes through the file proxy.
    std::vector<Loaded> LoadFile(Bytes const& content)
    {
        auto const path = directory.File(
            "file", std::string_view(reinterpret_cast<char const*>(content.data()), content.size()));
        auto const file = CreateObject<IO::IURIFile>(IO::IID_FILEPROXY);
        EXPECT_EQ(file->Init(*MakeURI(path.string()), nullptr), 0);
        TInterfacePtr<IDataProviderStream> stream;
        if (file->Read(stream) != 0)
        {
            ADD_FAILURE() << "no stream on " << path;
            return {};
        }
        auto const provider = stream->GetDataProvider();
        provider->SetEndian(GetParam().endian);
        return LoadAll(*provider, *stream);
    }

    TemporaryDirectory directory;
};

TEST_P(CutTest, MemoryKeepsWhatIsWhole)
{
    Bytes const file = MakeFile(GetParam().endian);
    for (int64 length = 0; length <= kSize; ++length)
    {
        SCOPED_TRACE(length);
        Bytes const cut(file.begin(), file.begin() + length);
        for (bool const readOnly : {false, true})
        {
            // There is no read-only provider over nothing.
            if (readOnly && length == 0)
                continue;
            auto const memory =
                readOnly ? MakeReadOnly(GetParam().endian, cut) : MakeMemory(GetParam().endian, cut);
            auto loaded = LoadAll(*memory, *MakeStream(*memory));
            ExpectAfterCutAt(loaded, length);
            UseAndRelease(loaded);
            log.Take();
        }
        if (HasFailure())
            break;
    }
}

TEST_P(CutTest, FilesKeepWhatIsWhole)
{
    Bytes const file = MakeFile(GetParam().endian);
    for (int64 length = 0; length <= kSize; length += 7)
    {
        SCOPED_TRACE(length);
        auto loaded = LoadFile(Bytes(file.begin(), file.begin() + length));
        ExpectAfterCutAt(loaded, length);
        UseAndRelease(loaded);
        log.Take();
        if (HasFailure())
            break;
    }
}

TEST_P(CutTest, DamagedByteOfAFileCostsItsOwnRecordOnly)
{
    Bytes const file = MakeFile(GetParam().endian);
    for (int64 position = 0; position < kSize; position += 7)
    {
        SCOPED_TRACE(position);
        Bytes damaged = file;
        damaged[static_cast<std::size_t>(position)] ^= 0xFF;
        auto loaded = LoadFile(damaged);
        ExpectAfterDamageAt(loaded, position, true);
        UseAndRelease(loaded);
        log.Take();
        if (HasFailure())
            break;
    }
}

// Nothing can be said of what remains, but it must end, and be usable.
TEST_P(CutTest, ManyDamagedBytesAtOnce)
{
    Bytes const file = MakeFile(GetParam().endian);
    for (unsigned int seed = 1; seed <= 2000; ++seed)
    {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        Bytes damaged = file;
        for (auto left = 2 + random() % 15; left > 0; --left)
        {
            std::size_t const position = random() % damaged.size();
            damaged[position] = static_cast<unsigned char>(random());
        }
        auto const memory = MakeMemory(GetParam().endian, damaged);
        auto loaded = LoadAll(*memory, *MakeStream(*memory));
        EXPECT_FALSE(loaded.empty());
        UseAndRelease(loaded);
        log.Take();
        if (HasFailure())
            break;
    }
}

INSTANTIATE_TEST_SUITE_P(Damage, CutTest, ::testing::ValuesIn(kCuts), RowName());
} // namespace
} // namespace KORVA
