// FIR and IIR kernels beside plain loops: the argument is the block length.

#include "bench/Bench.h"
#include "bench/PlainLoops.h"
#include "core/kernels.h"

#include <memory>
#include <type_traits>

namespace vesk::audio::bench
{
namespace
{

using StateMemory = std::unique_ptr<std::uint8_t, void (*)(void*)>;

StateMemory allocate(int bytes) { return {ippsMalloc_8u(bytes), ippsFree}; }

//==============================================================================

constexpr int numTaps = 128;

void runFirKernel(benchmark::State& state)
{
    const auto n = static_cast<int>(state.range(0));
    const auto taps = makeNoise(numTaps, 1), input = makeNoise(static_cast<std::size_t>(n), 2);
    std::vector<float> output(input.size()), delayLine(numTaps);
    int specBytes = 0, bufferBytes = 0;
    ippsFIRSRGetSize(numTaps, ippDataType32f, &specBytes, &bufferBytes);
    const auto memory = allocate(specBytes), buffer = allocate(bufferBytes);
    auto* spec = reinterpret_cast<FirSpec*>(memory.get());
    ippsFIRSRInit_32f(taps.data(), numTaps, ippFirDirectForm, spec);
    for (auto _ : state)
    {
        ippsFIRSR_32f(input.data(), output.data(), n, spec, delayLine.data(), delayLine.data(), buffer.get());
        benchmark::ClobberMemory();
    }
    countSamples(state, n);
}

void runFirPlain(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto taps = makeNoise(numTaps, 1), input = makeNoise(n + numTaps - 1, 2);
    std::vector<float> output(n);
    for (auto _ : state)
    {
        plain::fir(input.data() + numTaps - 1, output.data(), n, taps.data(), numTaps);
        benchmark::ClobberMemory();
    }
    countSamples(state, state.range(0));
}

//==============================================================================

/** b, then a with a0 = 1: a one-pole low-pass and a resonant two-pole low-pass. */
template <typename T>
std::vector<T> makeTaps(int order)
{
    if (order == 1)
        return {T(0.1), T(0.1), T(1), T(-0.8)};
    return {T(0.05), T(0.1), T(0.05), T(1), T(-1.6), T(0.8)};
}

template <typename T, int order>
void runIirKernel(benchmark::State& state)
{
    const auto n = static_cast<int>(state.range(0));
    const auto noise = makeNoise(static_cast<std::size_t>(n));
    const std::vector<T> input(noise.begin(), noise.end());
    std::vector<T> output(input.size());
    const auto taps = makeTaps<T>(order);
    int bytes = 0;
    if constexpr (std::is_same_v<T, float>)
    {
        ippsIIRGetStateSize_32f(order, &bytes);
        const auto memory = allocate(bytes);
        IirState32* filter = nullptr;
        ippsIIRInit_32f(&filter, taps.data(), order, nullptr, memory.get());
        for (auto _ : state)
        {
            ippsIIR_32f(input.data(), output.data(), n, filter);
            benchmark::ClobberMemory();
        }
    }
    else
    {
        ippsIIRGetStateSize_64f(order, &bytes);
        const auto memory = allocate(bytes);
        IirState64* filter = nullptr;
        ippsIIRInit_64f(&filter, taps.data(), order, nullptr, memory.get());
        for (auto _ : state)
        {
            ippsIIR_64f(input.data(), output.data(), n, filter);
            benchmark::ClobberMemory();
        }
    }
    countSamples(state, n);
}

template <typename T, int order>
void runIirPlain(benchmark::State& state)
{
    const auto n = static_cast<std::size_t>(state.range(0));
    const auto noise = makeNoise(n);
    const std::vector<T> input(noise.begin(), noise.end());
    std::vector<T> output(n);
    auto taps = makeTaps<T>(order);
    taps.erase(taps.begin() + order + 1); // a0
    T z[2] = {};
    for (auto _ : state)
    {
        if constexpr (order == 1)
            plain::onePole(input.data(), output.data(), n, taps.data(), z);
        else
            plain::twoPole(input.data(), output.data(), n, taps.data(), z);
        benchmark::ClobberMemory();
    }
    countSamples(state, state.range(0));
}

BENCHMARK(runFirKernel)->Name("Fir128/kernel")->Arg(32)->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK(runFirPlain)->Name("Fir128/plain")->Arg(32)->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK(runIirKernel<float, 1>)->Name("IirOnePole32/kernel")->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK(runIirPlain<float, 1>)->Name("IirOnePole32/plain")->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK(runIirKernel<float, 2>)->Name("IirTwoPole32/kernel")->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK(runIirPlain<float, 2>)->Name("IirTwoPole32/plain")->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK(runIirKernel<double, 1>)->Name("IirOnePole64/kernel")->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK(runIirPlain<double, 1>)->Name("IirOnePole64/plain")->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK(runIirKernel<double, 2>)->Name("IirTwoPole64/kernel")->Arg(64)->Arg(512)->Arg(4096);
BENCHMARK(runIirPlain<double, 2>)->Name("IirTwoPole64/plain")->Arg(64)->Arg(512)->Arg(4096);

} // namespace
} // namespace vesk::audio::bench
