// Reading a cached file at explicit positions: the asynchronous reader of a file-based provider against the
// system's positional read and against a loop with a thread pool of the same width. Compare the rows of one
// group within one run.
#include "Peers/LoopReader.h"
#include "Peers/PlainFile.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/Host/Host.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/FilePaths.h>
#include <tessio/TessIO/IAsyncReader.h>
#include <tessio/TessIO/IDataProvider.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace
{
using namespace KORVA;

constexpr std::int64_t kFileSize = 128 << 20;
constexpr std::size_t kRandomLength = 64 << 10;
constexpr std::size_t kOutstanding = 32;
constexpr std::size_t kRandomReads = 8192;

std::string sPath;

/// The file in the page cache, in the directory for temporary files.
void MakeFile()
{
    sPath = (std::filesystem::temp_directory_path() / "tessio-file-reads.bin").string();
    std::ofstream file(sPath, std::ios::binary);
    std::vector<char> piece(1 << 20);
    std::mt19937 random(1);
    for (std::int64_t done = 0; done < kFileSize; done += static_cast<std::int64_t>(piece.size()))
    {
        std::ranges::generate(piece, [&random] { return static_cast<char>(random()); });
        file.write(piece.data(), static_cast<std::streamsize>(piece.size()));
    }
}

/// The same offsets for every contender.
class RandomOffsets
{
public:
    std::int64_t operator()()
    {
        constexpr std::uint32_t kPieces = static_cast<std::uint32_t>(kFileSize / kRandomLength);
        return static_cast<std::int64_t>(mRandom() % kPieces) * static_cast<std::int64_t>(kRandomLength);
    }

private:
    std::minstd_rand mRandom;
};

class Provider
{
public:
    Provider()
    {
        IO::IURIPtr uri;
        IO::CreateFileURI(COREREGISTRY::GetCoreRegistry(), uri, sPath);
        mProvider = COREREGISTRY::CreateObject<IO::IDataProvider>(IO::IID_IDATAPROVIDER);
        IObject* reader = nullptr;
        if (mProvider->InitURIBased(*uri, IO::kStreamRead, nullptr) == kNoError)
            mProvider->QueryInterface(IO::IID_ASYNC_READER, &reader);
        mReader = static_cast<IO::IAsyncReader*>(reader);
    }

    IO::IAsyncReader& Reader() const { return *mReader; }

private:
    TInterfacePtr<IO::IDataProvider> mProvider;
    IO::IAsyncReader* mReader = nullptr;
};

/// The whole file, front to back, with `read(offset, buffer, length)`.
template <class Read>
void Sequential(benchmark::State& state, Read read)
{
    auto const length = static_cast<std::size_t>(state.range(0)) << 10;
    std::vector<char> buffer(length);
    for ([[maybe_unused]] auto const& iteration : state)
        for (std::int64_t offset = 0; offset < kFileSize; offset += static_cast<std::int64_t>(length))
            if (!read(offset, buffer.data(), length))
                return state.SkipWithError("a read failed");
    state.SetBytesProcessed(state.iterations() * kFileSize);
}

void ReadSync(benchmark::State& state)
{
    Provider const provider;
    Sequential(state, [&](std::int64_t offset, void* buffer, std::size_t length) {
        return provider.Reader().ReadSync(offset, buffer, length) == kNoError;
    });
}

void PositionalRead(benchmark::State& state)
{
    PEERS::PlainFile const file(sPath);
    Sequential(state, [&](std::int64_t offset, void* buffer, std::size_t length) {
        return file.Read(offset, buffer, length);
    });
}

void CountRandomReads(benchmark::State& state)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kRandomReads * kRandomLength));
}

void RandomReadAsync(benchmark::State& state)
{
    Provider const provider;
    std::vector<std::vector<char>> buffers(kOutstanding, std::vector<char>(kRandomLength));
    std::vector<IO::IAsyncTaskPtr> tasks(kOutstanding);
    for ([[maybe_unused]] auto const& iteration : state)
    {
        RandomOffsets nextOffset;
        for (std::size_t i = 0; i < kRandomReads + kOutstanding; ++i)
        {
            std::size_t const slot = i % kOutstanding;
            if (i >= kOutstanding)
            {
                tasks[slot]->WaitForCompletion();
                if (tasks[slot]->GetStatus() != kNoError)
                    return state.SkipWithError("a read failed");
            }
            if (i < kRandomReads)
                provider.Reader().ReadAsync(nextOffset(), buffers[slot].data(), kRandomLength, tasks[slot]);
        }
    }
    CountRandomReads(state);
}

void RandomLoopRead(benchmark::State& state)
{
    PEERS::LoopReader reader(sPath, kOutstanding, kRandomLength);
    for ([[maybe_unused]] auto const& iteration : state)
        if (!reader.Run(kRandomReads, RandomOffsets()))
            return state.SkipWithError("a read failed");
    CountRandomReads(state);
}

void RandomPositionalRead(benchmark::State& state)
{
    PEERS::PlainFile const file(sPath);
    std::vector<std::vector<char>> buffers(kOutstanding, std::vector<char>(kRandomLength));
    for ([[maybe_unused]] auto const& iteration : state)
    {
        RandomOffsets nextOffset;
        for (std::size_t i = 0; i < kRandomReads; ++i)
            if (!file.Read(nextOffset(), buffers[i % kOutstanding].data(), kRandomLength))
                return state.SkipWithError("a read failed");
    }
    CountRandomReads(state);
}

BENCHMARK(ReadSync)->ArgName("KiB")->Arg(4)->Arg(64)->Arg(1024)->Unit(benchmark::kMillisecond);
BENCHMARK(PositionalRead)->ArgName("KiB")->Arg(4)->Arg(64)->Arg(1024)->Unit(benchmark::kMillisecond);
// Several threads work here: the clock on the wall counts.
BENCHMARK(RandomReadAsync)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(RandomLoopRead)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(RandomPositionalRead)->UseRealTime()->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv)
{
    // As wide as the library's own pool.
    std::string const width = std::to_string(std::clamp(std::thread::hardware_concurrency(), 4u, 16u));
    setenv("UV_THREADPOOL_SIZE", width.c_str(), 1);
    std::string error;
    auto const host = HOST::Host::Boot(error);
    if (!host)
    {
        std::fprintf(stderr, "file_benchmark: %s\n", error.c_str());
        return 1;
    }
    MakeFile();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    std::filesystem::remove(sPath);
}
