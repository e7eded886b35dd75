/**
    What all benchmarks share: seeded material, and the two figures that they report beside the time of a call.

    - per_sample: the mean processor time for one sample (of one channel, unless the benchmark says otherwise).
    - worst_us: the dearest block of a schedule, in microseconds.

    The cost of a block repeats: a partition of 4096 samples fires on every eighth block of 512. The meter keeps
    the least time of each place in that cycle, over all times it came round, and reports the largest of them.
    So it tells the peak that the schedule itself makes, not what else the machine had to do.

        BlockMeter meter(state, blockLength);
        for (auto _ : state)
            meter.measure([&] { output = filter.process(block); });
*/
#pragma once

#include "core/Signal.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

namespace vesk::audio::bench
{

/** Block lengths that hosts use, and one that is no power of two. */
inline const std::vector<std::int64_t> blockLengths = {32, 64, 100, 128, 256, 512, 1024, 4096};

inline std::vector<float> makeNoise(std::size_t n, unsigned seed = 1)
{
    std::mt19937 generator(seed);
    std::vector<float> result(n);
    for (auto& value : result)
        value = static_cast<float>(generator()) * 0x1p-31f - 1.0f;
    return result;
}

inline Signal32 makeNoiseSignal(int channels, int samples)
{
    Signal32 result(channels, samples);
    for (int channel = 0; channel < channels; ++channel)
    {
        const auto noise = makeNoise(static_cast<std::size_t>(samples), static_cast<unsigned>(channel + 1));
        std::copy(noise.begin(), noise.end(), result.getWriteChannelPtr(channel));
    }
    return result;
}

/** Adds per_sample to a benchmark whose iteration works on this many samples. */
inline void countSamples(benchmark::State& state, std::int64_t samples)
{
    state.counters["per_sample"] =
        benchmark::Counter(static_cast<double>(samples),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

class BlockMeter
{
public:
    /** @param blockLength  samples of a block: of the stream, not of all its channels together */
    BlockMeter(benchmark::State& benchmarkState, std::int64_t blockLength)
        : state(benchmarkState), length(blockLength),
          leastTimes(static_cast<std::size_t>(std::lcm(longestCycle, blockLength) / blockLength),
                     std::numeric_limits<double>::infinity())
    {
    }

    BlockMeter(const BlockMeter&) = delete;
    BlockMeter& operator=(const BlockMeter&) = delete;

    ~BlockMeter()
    {
        countSamples(state, length);
        const auto measured = std::min(leastTimes.size(), count);
        if (measured > 0)
            state.counters["worst_us"] = *std::max_element(
                leastTimes.begin(), leastTimes.begin() + static_cast<std::ptrdiff_t>(measured));
    }

    template <typename Block>
    void measure(const Block& processBlock)
    {
        const auto start = std::chrono::steady_clock::now();
        processBlock();
        const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
        auto& least = leastTimes[count++ % leastTimes.size()];
        least = std::min(least, time.count());
    }

private:
    /** Samples after which all schedules come round: the largest partitions here have 8192. */
    static constexpr std::int64_t longestCycle = 8192;

    benchmark::State& state;
    std::int64_t length;
    std::vector<double> leastTimes; ///< microseconds, for each place in the cycle
    std::size_t count = 0;
};

} // namespace vesk::audio::bench
