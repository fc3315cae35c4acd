// Appending in small writes: the memory-handle provider through its facade against realloc with the same
// step. Compare the two rows of one size for the factor, and the bytes per second of all sizes for linearity.
#include "Peers/ReallocBuffer.h"
#include <tessio/CoreRegistry/CoreRegistry.h>
#include <tessio/TessIO/ClassIds.h>
#include <tessio/TessIO/IDataProvider.h>
#include <tessio/TessIO/TessIO.h>

#include <benchmark/benchmark.h>

#include <vector>

namespace
{
using namespace KORVA;

constexpr std::size_t kStep = 4096;

void AppendThroughTheFacade(benchmark::State& state)
{
    std::vector<char> const piece(kStep, 'x');
    auto const total = static_cast<std::size_t>(state.range(0)) << 20;
    for ([[maybe_unused]] auto const& iteration : state)
    {
        auto const provider = COREREGISTRY::CreateObject<IO::IDataProvider>(IO::IID_IDATAPROVIDER);
        provider->InitHandleBased(IO::kStreamReadWrite);
        for (std::size_t done = 0; done < total; done += kStep)
            if (provider->Write(piece.data(), kStep) != kNoError)
                return state.SkipWithError("no memory");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(total));
}

void AppendWithRealloc(benchmark::State& state)
{
    std::vector<char> const piece(kStep, 'x');
    auto const total = static_cast<std::size_t>(state.range(0)) << 20;
    for ([[maybe_unused]] auto const& iteration : state)
    {
        PEERS::ReallocBuffer buffer;
        for (std::size_t done = 0; done < total; done += kStep)
            if (!buffer.Write(piece.data(), kStep))
                return state.SkipWithError("no memory");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(total));
}

BENCHMARK(AppendThroughTheFacade)
    ->ArgName("MiB")
    ->Arg(64)
    ->Arg(256)
    ->Arg(1024)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(AppendWithRealloc)->ArgName("MiB")->Arg(64)->Arg(256)->Arg(1024)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv)
{
    TInterfacePtr<COREREGISTRY::ICoreRegistry> registry;
    registry.Adopt(COREREGISTRY::CreateCoreRegistry());
    COREREGISTRY::InstallCoreRegistry(registry.Get());
    IO::Init(registry.Get());
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    COREREGISTRY::InstallCoreRegistry(nullptr);
}
