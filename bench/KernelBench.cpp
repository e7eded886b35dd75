// Element-wise kernels beside plain loops: Kernel/<operation>/<kernel or plain>/<length>.

#include "bench/Bench.h"
#include "bench/PlainLoops.h"
#include "core/kernels.h"

#include <complex>
#include <functional>
#include <memory>
#include <string>

namespace vesk::audio::bench
{
namespace
{

using Complex = std::complex<float>;

/** Arrays for any of the operations, long enough for complex elements. */
struct Arrays
{
    explicit Arrays(int length)
        : n(length), count(static_cast<std::size_t>(length)), a(makeNoise(2 * count, 1)),
          b(makeNoise(2 * count, 2)), dst(2 * count), wide(a.begin(), a.end())
    {
        // Away from zero, so that quotients and accumulated products stay finite.
        for (auto& value : a)
            value = value < 0.0f ? value - 0.1f : value + 0.1f;
    }

    const Complex* complexA() const { return reinterpret_cast<const Complex*>(a.data()); }
    const Complex* complexB() const { return reinterpret_cast<const Complex*>(b.data()); }
    Complex* complexDst() { return reinterpret_cast<Complex*>(dst.data()); }

    int n;
    std::size_t count;
    std::vector<float> a, b, dst;
    std::vector<double> wide;
    float phase = 0.0f;
    float result = 0.0f;
};

struct Operation
{
    const char* name;
    void (*kernel)(Arrays&);
    void (*plainLoop)(Arrays&);
};

const Operation operations[] = {
    {"Add", [](Arrays& x) { ippsAdd_32f(x.a.data(), x.b.data(), x.dst.data(), x.n); },
     [](Arrays& x) { plain::add(x.a.data(), x.b.data(), x.dst.data(), x.count); }},
    {"Mul", [](Arrays& x) { ippsMul_32f(x.a.data(), x.b.data(), x.dst.data(), x.n); },
     [](Arrays& x) { plain::multiply(x.a.data(), x.b.data(), x.dst.data(), x.count); }},
    {"MulC", [](Arrays& x) { ippsMulC_32f(x.a.data(), 0.7f, x.dst.data(), x.n); },
     [](Arrays& x) { plain::scale(x.a.data(), 0.7f, x.dst.data(), x.count); }},
    {"Div", [](Arrays& x) { ippsDiv_32f(x.a.data(), x.b.data(), x.dst.data(), x.n); },
     [](Arrays& x) { plain::divide(x.a.data(), x.b.data(), x.dst.data(), x.count); }},
    {"Max", [](Arrays& x) { ippsMax_32f(x.a.data(), x.n, &x.result); },
     [](Arrays& x) { x.result = plain::findMaximum(x.a.data(), x.count); }},
    {"Threshold",
     [](Arrays& x) { ippsThreshold_LTValGTVal_32f(x.a.data(), x.dst.data(), x.n, -0.5f, -0.5f, 0.5f, 0.5f); },
     [](Arrays& x) { plain::threshold(x.a.data(), x.dst.data(), x.count, -0.5f, -0.5f, 0.5f, 0.5f); }},
    {"Mul_32fc", [](Arrays& x) { ippsMul_32fc(x.complexA(), x.complexB(), x.complexDst(), x.n); },
     [](Arrays& x) { plain::multiplyComplex(x.complexA(), x.complexB(), x.complexDst(), x.count); }},
    {"AddProduct_32fc",
     [](Arrays& x) { ippsAddProduct_32fc(x.complexA(), x.complexB(), x.complexDst(), x.n); },
     [](Arrays& x) { plain::addProductComplex(x.complexA(), x.complexB(), x.complexDst(), x.count); }},
    {"PolarToCart_32fc", [](Arrays& x) { ippsPolarToCart_32fc(x.a.data(), x.b.data(), x.complexDst(), x.n); },
     [](Arrays& x) { plain::polarToCartesian(x.a.data(), x.b.data(), x.complexDst(), x.count); }},
    {"Phase_32fc", [](Arrays& x) { ippsPhase_32fc(x.complexA(), x.dst.data(), x.n); },
     [](Arrays& x) { plain::phase(x.complexA(), x.dst.data(), x.count); }},
    {"Convert_32f64f", [](Arrays& x) { ippsConvert_32f64f(x.a.data(), x.wide.data(), x.n); },
     [](Arrays& x) { plain::toDouble(x.a.data(), x.wide.data(), x.count); }},
    {"Convert_64f32f", [](Arrays& x) { ippsConvert_64f32f(x.wide.data(), x.dst.data(), x.n); },
     [](Arrays& x) { plain::toFloat(x.wide.data(), x.dst.data(), x.count); }},
    {"Tone", [](Arrays& x) { ippsTone_32f(x.dst.data(), x.n, 1.0f, 0.01f, &x.phase, ippHintFast); },
     [](Arrays& x) { plain::tone(x.dst.data(), x.count, 1.0f, 0.01f, 0.5f); }},
};

void runOperation(benchmark::State& state, void (*operation)(Arrays&))
{
    Arrays arrays(static_cast<int>(state.range(0)));
    for (auto _ : state)
    {
        operation(arrays);
        benchmark::DoNotOptimize(arrays.result);
        benchmark::ClobberMemory();
    }
    countSamples(state, state.range(0));
}

void runRandom(benchmark::State& state, bool isGaussian)
{
    int bytes = 0;
    isGaussian ? ippsRandGaussGetSize_32f(&bytes) : ippsRandUniformGetSize_32f(&bytes);
    const std::unique_ptr<std::uint8_t, void (*)(void*)> memory(ippsMalloc_8u(bytes), ippsFree);
    auto* gauss = reinterpret_cast<RandomGaussState*>(memory.get());
    auto* uniform = reinterpret_cast<RandomUniformState*>(memory.get());
    isGaussian ? ippsRandGaussInit_32f(gauss, 0.0f, 1.0f, 1)
               : ippsRandUniformInit_32f(uniform, -1.0f, 1.0f, 1);

    const auto n = static_cast<int>(state.range(0));
    std::vector<float> values(static_cast<std::size_t>(n));
    for (auto _ : state)
    {
        isGaussian ? ippsRandGauss_32f(values.data(), n, gauss)
                   : ippsRandUniform_32f(values.data(), n, uniform);
        benchmark::ClobberMemory();
    }
    countSamples(state, n);
}

[[maybe_unused]] const bool registered = []
{
    const auto add = [](const std::string& name, const std::function<void(benchmark::State&)>& run)
    { benchmark::RegisterBenchmark(("Kernel/" + name).c_str(), run)->Arg(64)->Arg(512)->Arg(4096); };
    for (const auto& operation : operations)
    {
        add(operation.name + std::string("/kernel"),
            [=](auto& state) { runOperation(state, operation.kernel); });
        add(operation.name + std::string("/plain"),
            [=](auto& state) { runOperation(state, operation.plainLoop); });
    }
    add("RandGauss/kernel", [](auto& state) { runRandom(state, true); });
    add("RandUniform/kernel", [](auto& state) { runRandom(state, false); });
    return true;
}();

} // namespace
} // namespace vesk::audio::bench
