// The real transform, one channel; the argument is the length.

#include "bench/Bench.h"
#include "dsp/FourierTransform.h"

namespace vesk::audio::bench
{
namespace
{

void runForward(benchmark::State& state)
{
    const auto n = static_cast<int>(state.range(0));
    FourierTransform transform;
    const auto signal = makeNoiseSignal(1, n);
    ComplexSignal32 spectrum(1, n / 2 + 1);
    for (auto _ : state)
    {
        transform.forwardReal(signal, spectrum);
        benchmark::ClobberMemory();
    }
    countSamples(state, n);
}

void runInverse(benchmark::State& state)
{
    const auto n = static_cast<int>(state.range(0));
    FourierTransform transform;
    auto signal = makeNoiseSignal(1, n);
    ComplexSignal32 spectrum(1, n / 2 + 1);
    transform.forwardReal(signal, spectrum);
    for (auto _ : state)
    {
        transform.inverseReal(spectrum, signal);
        benchmark::ClobberMemory();
    }
    countSamples(state, n);
}

BENCHMARK(runForward)->Name("Transform/forward")->RangeMultiplier(2)->Range(1 << 8, 1 << 16);
BENCHMARK(runInverse)->Name("Transform/inverse")->RangeMultiplier(2)->Range(1 << 8, 1 << 16);

} // namespace
} // namespace vesk::audio::bench
