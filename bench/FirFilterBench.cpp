// The partitioned convolver with the load distribution that the engine uses; the argument is the block length.

#include "bench/Bench.h"
#include "dsp/FirFilter.h"

namespace vesk::audio::bench
{
namespace
{

constexpr int loadDistributionPeriod = 4;

/** Two channels, a response of a tenth of a second at 48 kHz each. */
void runProcess(benchmark::State& state)
{
    const auto block = makeNoiseSignal(2, static_cast<int>(state.range(0)));
    FirFilter filter;
    filter.setLoadDistribution(true, loadDistributionPeriod);
    filter.setImpulseResponse(makeNoiseSignal(2, 4800));
    filter.process(block);
    BlockMeter meter(state, block.numSamples);
    for (auto _ : state)
        meter.measure([&] { benchmark::DoNotOptimize(filter.process(block).data.get()); });
}

/** Two by two responses of the longest early reflections. */
void runMatrix(benchmark::State& state)
{
    const auto block = makeNoiseSignal(2, static_cast<int>(state.range(0)));
    FirFilter filter;
    filter.setLoadDistribution(true, loadDistributionPeriod);
    filter.setMultipleIRs({makeNoiseSignal(2, 10170), makeNoiseSignal(2, 10170)});
    filter.processSummed(block);
    BlockMeter meter(state, block.numSamples);
    for (auto _ : state)
        meter.measure([&] { benchmark::DoNotOptimize(filter.processSummed(block).data.get()); });
}

BENCHMARK(runProcess)->Name("FirFilter/2x4800")->ArgsProduct({blockLengths});
BENCHMARK(runMatrix)->Name("FirFilter/2x2x10170")->ArgsProduct({blockLengths});

} // namespace
} // namespace vesk::audio::bench
