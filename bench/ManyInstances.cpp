/**
    What instances of the engine need in memory, and whether many on one thread disturb each other.

        ambrel_manyinstances [instances, default 64] [block length, default 64]

    Stereo at 48 kHz in the largest room. Memory is what the process's resident set grows by for each instance once
    it plays. The ratio compares the processor time of the instances taking turns block by block with the same
    instances playing one after the other, which is what each would cost alone.
*/
#include "reverb/Reverberation.h"

#include "bench/Bench.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <limits>
#include <memory>
#include <vector>

#include <unistd.h>

namespace vesk::audio::bench
{
namespace
{

constexpr double sampleRate = 48000.0;
constexpr float largestRoom = 100.0f;
constexpr double mebibyte = 1024.0 * 1024.0;

/** Long enough for the network, the pre-delay and every queue to have come round. */
constexpr int warmUp = 96000;

using Instances = std::vector<std::unique_ptr<Reverberation>>;

double getThreadSeconds()
{
    std::timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

double getResidentMebibytes()
{
    long pages = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / mebibyte;
}

std::unique_ptr<Reverberation> createEngine(int length)
{
    auto engine = std::make_unique<Reverberation>();
    engine->expectedBlockSize = length;
    engine->setParameterValue(Reverberation::roomSize, largestRoom, false);
    engine->setFormat(AudioFormat(2, sampleRate), AudioFormat(2, sampleRate));
    engine->reset();
    return engine;
}

void play(Reverberation& engine, const Signal32& block, int blocks)
{
    const StreamScope stream;
    for (int k = 0; k < blocks; ++k)
        benchmark::DoNotOptimize(engine.process(block, false).data.get());
}

double timeTakingTurns(const Instances& instances, const Signal32& block, int blocks)
{
    const double start = getThreadSeconds();
    for (int k = 0; k < blocks; ++k)
        for (const auto& engine : instances)
            play(*engine, block, 1);
    return getThreadSeconds() - start;
}

double timeOneAfterTheOther(const Instances& instances, const Signal32& block, int blocks)
{
    const double start = getThreadSeconds();
    for (const auto& engine : instances)
        play(*engine, block, blocks);
    return getThreadSeconds() - start;
}

void measure(int count, int length)
{
    const auto block = makeNoiseSignal(2, length);
    const int blocks = warmUp / length;

    // The first instance brings tables and the pool's stock with it.
    Instances instances;
    const double before = getResidentMebibytes();
    instances.push_back(createEngine(length));
    play(*instances.back(), block, blocks);
    const double first = getResidentMebibytes();
    while (static_cast<int>(instances.size()) < count)
    {
        instances.push_back(createEngine(length));
        play(*instances.back(), block, blocks);
    }
    const double all = getResidentMebibytes();
    std::printf("memory: %.2f MiB for the first instance, %.2f MiB for each of %d more\n", first - before,
                (all - first) / std::max(count - 1, 1), count - 1);

    constexpr int rounds = 5;
    double turns = std::numeric_limits<double>::infinity();
    double apart = turns;
    for (int round = 0; round < rounds; ++round)
    {
        turns = std::min(turns, timeTakingTurns(instances, block, blocks));
        apart = std::min(apart, timeOneAfterTheOther(instances, block, blocks));
    }
    const double audio = static_cast<double>(blocks) * length / sampleRate * count;
    std::printf("%d instances, blocks of %d: %.3f %% of real time each taking turns, %.3f %% one after the "
                "other, ratio %.3f\n",
                count, length, 100.0 * turns / audio, 100.0 * apart / audio, turns / apart);
}

} // namespace
} // namespace vesk::audio::bench

int main(int argc, char** argv)
{
    const int count = argc > 1 ? std::atoi(argv[1]) : 64;
    const int length = argc > 2 ? std::atoi(argv[2]) : 64;
    if (count < 1 || length < 1)
    {
        std::fprintf(stderr, "usage: %s [instances] [block length]\n", argv[0]);
        return EXIT_FAILURE;
    }
    vesk::audio::bench::measure(count, length);
    return EXIT_SUCCESS;
}
