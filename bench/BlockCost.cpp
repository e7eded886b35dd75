/**
    What single blocks of the engine cost on a long stream: not the mean, which the benchmarks tell, but the blocks that
    a host has to leave room for.

        ambrel_blockcost [block length, default 64] [seconds, default 600] [roomSize, default 30]

    Stereo at 48 kHz, noise at full activity; times are the thread's processor time, in microseconds.

    - median, p99, p99.9, max: of all blocks as they came, with whatever the machine did meanwhile.
    - schedule: a block's cost depends on its place in the cycle of the largest partition. For each place the least time of
      all rounds is the place's own cost, free of the machine's noise; the largest of these is what the schedule itself
      makes.
*/
#include "reverb/Reverberation.h"

#include "bench/Bench.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <numeric>
#include <vector>

namespace vesk::audio::bench
{
namespace
{

constexpr double sampleRate = 48000.0;

/** Samples after which all partitions have come round: the largest room has some of 16384. */
constexpr int cycle = 32768;

double getThreadMicroseconds()
{
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_nsec) * 1e-3;
}

/** Of sorted times. */
double getQuantile(const std::vector<double>& times, double share)
{
    const auto last = static_cast<double>(times.size() - 1);
    return times[static_cast<std::size_t>(share * last)];
}

void print(const char* name, double worst, double median)
{
    std::printf("%-10s %9.2f us %8.2f medians\n", name, worst, worst / median);
}

void measure(int length, double seconds, float roomSize)
{
    const StreamScope stream;
    Reverberation engine;
    engine.expectedBlockSize = length;
    engine.setParameterValue(Reverberation::roomSize, roomSize, false);
    engine.setFormat(AudioFormat(2, sampleRate), AudioFormat(2, sampleRate));
    engine.reset();

    // Several blocks' worth of material, so that no block meets its own past.
    constexpr int numInputs = 61;
    std::vector<Signal32> inputs;
    const Signal32 noise = makeNoiseSignal(2, length * numInputs);
    for (int k = 0; k < numInputs; ++k)
    {
        Signal32 input(2, length);
        for (int channel = 0; channel < 2; ++channel)
            std::copy_n(noise.getChannelPtr(channel) + k * length, length, input.getWriteChannelPtr(channel));
        inputs.push_back(input);
    }

    const auto places = static_cast<std::size_t>(std::lcm(cycle, length) / length);
    const auto warmUp =
        places * static_cast<std::size_t>(1 + sampleRate / length / static_cast<double>(places));
    const auto count = static_cast<std::size_t>(seconds * sampleRate / length);
    std::vector<double> times;
    times.reserve(count);
    for (std::size_t k = 0; k < warmUp + count; ++k)
    {
        const auto& input = inputs[k % inputs.size()];
        const double start = getThreadMicroseconds();
        benchmark::DoNotOptimize(engine.process(input, false).data.get());
        if (k >= warmUp)
            times.push_back(getThreadMicroseconds() - start);
    }

    std::vector<double> least(times.begin(), times.begin() + static_cast<std::ptrdiff_t>(places));
    for (std::size_t k = 0; k < times.size(); ++k)
        least[k % places] = std::min(least[k % places], times[k]);
    std::sort(times.begin(), times.end());
    std::sort(least.begin(), least.end());

    const double mean = std::accumulate(times.begin(), times.end(), 0.0) / static_cast<double>(times.size());
    const double median = getQuantile(times, 0.5);
    std::printf("%zu blocks of %d samples, roomSize %g, %s\n", times.size(), length,
                static_cast<double>(roomSize), ippGetInstructionSetName());
    std::printf("mean       %9.2f us %8.3f %% of real time\n", mean, mean * 1e-4 * sampleRate / length);
    print("median", median, median);
    print("p99", getQuantile(times, 0.99), median);
    print("p99.9", getQuantile(times, 0.999), median);
    print("max", times.back(), median);
    const double scheduleMedian = getQuantile(least, 0.5);
    std::printf("schedule of %zu places, each at its least:\n", places);
    print("median", scheduleMedian, scheduleMedian);
    print("worst", least.back(), scheduleMedian);
}

} // namespace
} // namespace vesk::audio::bench

int main(int argc, char** argv)
{
    const int length = argc > 1 ? std::atoi(argv[1]) : 64;
    const double seconds = argc > 2 ? std::atof(argv[2]) : 600.0;
    const double roomSize = argc > 3 ? std::atof(argv[3]) : 30.0;
    if (length < 1 || seconds < 1.0)
    {
        std::fprintf(stderr, "usage: %s [block length] [seconds] [roomSize]\n", argv[0]);
        return EXIT_FAILURE;
    }
    vesk::audio::bench::measure(length, seconds, static_cast<float>(roomSize));
    return EXIT_SUCCESS;
}
