// What files cost their reader that are made to cost much: memory, messages, and calls of the provider, which
// stand for the work done.
#include "Support/HostileFiles.h"

#include "Platform/Source/FreshProcess.h"
#include "Support/ForwardingProvider.h"
#include "Support/Laid.h"
#include "Support/Library.h"
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDictionary.h>

#include <fstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace KORVA::TESTS
{
namespace
{
using IO::IDataProvider;
namespace fs = std::filesystem;

/// Hands all on to another provider and counts.
class CountingProvider final : public ForwardingProvider
{
public:
    using ForwardingProvider::ForwardingProvider;

    int64 calls = 0;
    int64 bytes = 0;

    OperationId Read(void* buffer, int32& count) override
    {
        ++calls;
        OperationId const result = ForwardingProvider::Read(buffer, count);
        bytes += count;
        return result;
    }
    ErrCode SetPosition(int64 offset, Offset origin) override
    {
        ++calls;
        return ForwardingProvider::SetPosition(offset, origin);
    }
};

/// Counts messages and keeps none.
class CountingSink final : private KLogSink
{
public:
    CountingSink() : mBefore(KLoggerLibInterface::InstallSink(this)) {}
    CountingSink(CountingSink const&) = delete;
    CountingSink& operator=(CountingSink const&) = delete;
    ~CountingSink() { KLoggerLibInterface::InstallSink(mBefore); }

    int64 messages = 0;

private:
    bool OnMessage(KLogRecord const&) noexcept override
    {
        ++messages;
        return false;
    }

    KLogSink* mBefore;
};

/// The process's memory in bytes, as the system names it ("VmRSS", "VmHWM").
int64 MemoryOf(std::string const& name)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(name + ":"))
            return std::stoll(line.substr(name.size() + 1)) * 1024;
    throw std::runtime_error("the system tells no " + name);
}

struct HostileRow
{
    std::string name;
    HostileKind const* kind;
    std::size_t size;
};

std::ostream& operator<<(std::ostream& out, HostileRow const& row) { return out << row.name; }

std::vector<HostileRow> Rows()
{
    std::vector<HostileRow> rows;
    for (HostileKind const& kind : HostileKinds())
        for (std::size_t const kib : {64u, 256u, 1024u})
            rows.push_back({kind.name + std::to_string(kib) + "KiB", &kind, kib << 10});
    return rows;
}

class HostileFile : public LibraryTestWith<HostileRow>
{
protected:
    /// One message for each is none too many. A reader that goes on behind a length that is not believed, as
    /// this one does, may meet a record in each 24 bytes: a header alone.
    static int64 SmallestRecord()
    {
        return std::string_view(GetParam().kind->name) == "NestedFalseLengths" ? 24 : 28;
    }

    TemporaryDirectory mDirectory;
};

TEST_P(HostileFile, CostsInProportionToItsSize)
{
    ExpectInFreshProcess(mDirectory, [&](fs::path const&) {
        Bytes const file = GetParam().kind->make(GetParam().size);
        auto const size = static_cast<int64>(file.size());
        auto const memory = COREREGISTRY::CreateObject<IDataProvider>(IO::IID_IDATAPROVIDER);
        ASSERT_EQ(memory->InitReadOnlyMem(file.data(), static_cast<int32>(size)), 0);
        TInterfacePtr<CountingProvider> counting;
        counting.Adopt(new CountingProvider(memory));
        auto const stream = MakeStream(*counting);
        CountingSink sink;
        int64 const before = MemoryOf("VmRSS");
        std::vector<TInterfacePtr<IObject>> kept;
        while (!counting->AtEnd())
        {
            int64 const position = counting->GetPosition();
            TInterfacePtr<IObject> object;
            *stream >> object.Out();
            kept.push_back(std::move(object));
            ASSERT_GT(counting->GetPosition(), position);
        }
        int64 const peak = MemoryOf("VmHWM") - before;
        // The file once, its allowance, and what each record looks at before it sees that this is used up.
        EXPECT_LE(counting->bytes, 4 * size + (int64{2} << 20));
        EXPECT_LE(counting->calls, (4 * size + (int64{2} << 20)) / 2);
        EXPECT_LE(sink.messages, 1000 + size / SmallestRecord());
        if (!TESSIO_TEST_SANITIZED)
        {
            EXPECT_LE(peak, (int64{64} << 20) + 20 * size);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(Kinds, HostileFile, ::testing::ValuesIn(Rows()), RowName());

/// A little-endian dictionary of `falseEntries` entries that are `entry`, under the keys from 100 on, and
/// behind them under the key 1 the number 7 and under the key 2 a block of `size` bytes.
Bytes WithSoundEntries(std::string_view entry, uint32 falseEntries, std::size_t size)
{
    Bytes body = Laid(kLittle, std::to_string(falseEntries + 2) + ":4");
    auto const append = [&body](std::string const& words) {
        Bytes const bytes = Laid(kLittle, words);
        body.insert(body.end(), bytes.begin(), bytes.end());
    };
    for (uint32 key = 100; key < 100 + falseEntries; ++key)
        append(std::to_string(key) + ":4 " + std::string(entry));
    append("1:4 Value 24:8 'S32V 7:8 0x401C000000000000:8 0:4");
    append("2:4 Value " + std::to_string(size + 12) + ":8 'CHAR " + std::to_string(size) + ":4");
    body.resize(body.size() + size + 8);
    Bytes file = Laid(kLittle, "Dict " + std::to_string(body.size()) + ":8");
    file.insert(file.end(), body.begin(), body.end());
    return file;
}

class HostileFiles : public LibraryTest
{
protected:
    TInterfacePtr<IDictionary> Load(Bytes const& file)
    {
        mMemory = MakeMemory(file);
        TInterfacePtr<IObject> object;
        *MakeStream(*mMemory) >> object.Out();
        TInterfacePtr<IDictionary> dictionary;
        dictionary.Share(dynamic_cast<IDictionary*>(object.Get()));
        return dictionary;
    }

    static void ExpectSoundEntries(IDictionary const& dictionary, int size)
    {
        int number = 0;
        EXPECT_EQ(dictionary.Get(1, number), 0);
        EXPECT_EQ(number, 7);
        unsigned char const* data = nullptr;
        int length = 0;
        EXPECT_EQ(dictionary.Get(2, &data, length), 0);
        EXPECT_EQ(length, size);
    }

    TInterfacePtr<IDataProvider> mMemory;
};

TEST_F(HostileFiles, KeepWhatIsSoundBehindThem)
{
    constexpr int kSize = 100'000;
    for (char const* const entry :
         {"Value 8:8 'CHAR 0x7FFFFFFF:4", "Dict 4:8 0xFFFFFFFF:4", "URI 8:8 0x7FFFFFFE:4 0:4"})
    {
        SCOPED_TRACE(entry);
        auto const dictionary = Load(WithSoundEntries(entry, 10'000, kSize));
        ASSERT_TRUE(dictionary);
        ExpectSoundEntries(*dictionary, kSize);
        EXPECT_GE(log.Take().size(), 10'000u);
    }
}

/// However much lies behind it, one false number is read as it always was.
TEST_F(HostileFiles, AreNotFilesWithOneFalseNumber)
{
    constexpr int kSize = 8'000'000;
    Bytes const file = WithSoundEntries("Value 8:8 'CHAR 0x7FFFFFFF:4", 1, kSize);
    auto const dictionary = Load(file);
    ASSERT_TRUE(dictionary);
    ExpectSoundEntries(*dictionary, kSize);
    unsigned char const* data = nullptr;
    int length = 0;
    EXPECT_EQ(dictionary->Get(100, &data, length), 0);
    // From behind its length to the end of the file.
    EXPECT_EQ(length, static_cast<int>(file.size()) - 64);
    EXPECT_EQ(log.Take().size(), 1u);
}
} // namespace
} // namespace KORVA::TESTS
