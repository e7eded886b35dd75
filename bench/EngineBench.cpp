// The whole reverb at its default parameters, stereo at 48 kHz. per_sample counts samples of the stream, both
// channels in one; audio_s is how many seconds of audio a second of processor time makes.

#include "bench/Bench.h"
#include "reverb/Reverberation.h"

#include <memory>

namespace vesk::audio::bench
{
namespace
{

constexpr double sampleRate = 48000.0;

std::unique_ptr<Reverberation> createEngine(int blockLength)
{
    auto engine = std::make_unique<Reverberation>();
    engine->expectedBlockSize = blockLength;
    engine->setFormat(AudioFormat(2, sampleRate), AudioFormat(2, sampleRate));
    engine->reset();
    return engine;
}

/** Runs blocks until caches, queues and the pool are as in the middle of a stream. */
void play(Reverberation& engine, const Signal32& block, double seconds)
{
    for (double done = 0.0; done < seconds; done += block.numSamples / sampleRate)
        engine.process(block, false);
}

void measureBlocks(benchmark::State& state, Reverberation& engine, const Signal32& block, bool bypassed)
{
    {
        BlockMeter meter(state, block.numSamples);
        for (auto _ : state)
            meter.measure([&] { benchmark::DoNotOptimize(engine.process(block, bypassed).data.get()); });
    }
    state.counters["audio_s"] =
        benchmark::Counter(block.numSamples / sampleRate, benchmark::Counter::kIsIterationInvariantRate);
}

void runProcess(benchmark::State& state)
{
    const auto block = makeNoiseSignal(2, static_cast<int>(state.range(0)));
    const auto engine = createEngine(block.numSamples);
    play(*engine, block, 1.0);
    measureBlocks(state, *engine, block, false);
}

/** After the clock of silence has run out: twice the reverb time, which is 2 s. */
void runIdle(benchmark::State& state)
{
    const Signal32 silence(2, static_cast<int>(state.range(0)), 0.0f);
    const auto engine = createEngine(silence.numSamples);
    play(*engine, makeNoiseSignal(2, silence.numSamples), 0.1);
    play(*engine, silence, 5.0);
    measureBlocks(state, *engine, silence, false);
}

void runBypassed(benchmark::State& state)
{
    const auto block = makeNoiseSignal(2, static_cast<int>(state.range(0)));
    const auto engine = createEngine(block.numSamples);
    measureBlocks(state, *engine, block, true);
}

/** A move of an equalizer's control: both impulse responses anew. */
void runRebuild(benchmark::State& state)
{
    const auto engine = createEngine(512);
    bool up = false;
    for (auto _ : state)
    {
        up = !up;
        engine->setParameterValue(Reverberation::lowPassFrequency, up ? 9000.0f : 8000.0f, true);
    }
}

/** A move of the character knob's dearest parameter: delay lines and early reflections anew. */
void runRoomSize(benchmark::State& state)
{
    const auto engine = createEngine(512);
    bool up = false;
    for (auto _ : state)
    {
        up = !up;
        engine->setParameterValue(Reverberation::roomSize, up ? 60.0f : 30.0f, true);
    }
}

void runSetFormat(benchmark::State& state)
{
    const auto engine = createEngine(512);
    const AudioFormat format(2, static_cast<double>(state.range(0)));
    for (auto _ : state)
        engine->setFormat(format, format);
}

void runReset(benchmark::State& state)
{
    const auto engine = createEngine(512);
    for (auto _ : state)
        engine->reset();
}

void runCreation(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(std::make_unique<Reverberation>().get());
}

BENCHMARK(runProcess)->Name("Engine/process")->ArgsProduct({blockLengths})->Unit(benchmark::kMicrosecond);
BENCHMARK(runIdle)->Name("Engine/idle")->Arg(64)->Arg(512);
BENCHMARK(runBypassed)->Name("Engine/bypassed")->Arg(64)->Arg(512);
BENCHMARK(runRebuild)->Name("Engine/rebuildResponses")->Unit(benchmark::kMillisecond);
BENCHMARK(runRoomSize)->Name("Engine/changeRoomSize")->Unit(benchmark::kMillisecond);
BENCHMARK(runSetFormat)->Name("Engine/setFormat")->Arg(48000)->Arg(96000)->Unit(benchmark::kMillisecond);
BENCHMARK(runReset)->Name("Engine/reset")->Unit(benchmark::kMicrosecond);
BENCHMARK(runCreation)->Name("Engine/create")->Unit(benchmark::kMillisecond);

} // namespace
} // namespace vesk::audio::bench
