#include "tests/core/KernelFixture.h"

#include <complex>

namespace vesk::audio
{
namespace
{

using test::forEachBlock;
using test::makeNoise;
using test::refusesNulls;

/** The kernels of one precision. */
template <typename T>
struct Iir;

template <>
struct Iir<float>
{
    using State = IirState32;
    static constexpr auto getStateSize = ippsIIRGetStateSize_32f;
    static constexpr auto init = ippsIIRInit_32f;
    static constexpr auto getDelayLine = ippsIIRGetDlyLine_32f;
    static constexpr auto run = ippsIIR_32f;
};

template <>
struct Iir<double>
{
    using State = IirState64;
    static constexpr auto getStateSize = ippsIIRGetStateSize_64f;
    static constexpr auto init = ippsIIRInit_64f;
    static constexpr auto getDelayLine = ippsIIRGetDlyLine_64f;
    static constexpr auto run = ippsIIR_64f;
};

template <typename T>
class Filter
{
public:
    Filter(const std::vector<T>& taps, const T* delay = nullptr)
        : order(static_cast<int>(taps.size()) / 2 - 1)
    {
        int bytes = 0;
        EXPECT_EQ(Iir<T>::getStateSize(order, &bytes), ippStsNoErr);
        memory.resize(static_cast<std::size_t>(bytes) + 1); // used from an odd address
        EXPECT_EQ(Iir<T>::init(&state, taps.data(), order, delay, memory.data() + 1), ippStsNoErr);
    }

    void run(const T* src, T* dst, int n) { EXPECT_EQ(Iir<T>::run(src, dst, n, state), ippStsNoErr); }

    std::vector<T> run(const std::vector<T>& input)
    {
        std::vector<T> output(input.size());
        run(input.data(), output.data(), static_cast<int>(input.size()));
        return output;
    }

    std::vector<T> getDelay() const
    {
        std::vector<T> delay(static_cast<std::size_t>(order));
        EXPECT_EQ(Iir<T>::getDelayLine(state, delay.data()), ippStsNoErr);
        return delay;
    }

    int order;
    typename Iir<T>::State* state = nullptr;
    std::vector<std::uint8_t> memory;
};

/** The difference equation in transposed direct form II, sample by sample, in the precision R. */
template <typename R, typename T>
std::vector<R> runPlainLoop(const std::vector<T>& taps, const std::vector<T>& input, std::vector<R>& z)
{
    const std::size_t order = taps.size() / 2 - 1;
    const R a0 = static_cast<R>(taps[order + 1]);
    std::vector<R> output;
    for (const T sample : input)
    {
        const auto x = static_cast<R>(sample);
        const R y = static_cast<R>(taps[0]) / a0 * x + z[0];
        for (std::size_t k = 1; k <= order; ++k)
            z[k - 1] = static_cast<R>(taps[k]) / a0 * x - static_cast<R>(taps[order + 1 + k]) / a0 * y +
                       (k < order ? z[k] : R(0));
        output.push_back(y);
    }
    return output;
}

/** What a filter should put out, and how far off it may be: as far as the exact output moves when a recursive tap
    moves by one step of its precision (the least that a filter of this precision can promise), and two and a half
    times as far as a plain loop of this precision is off. */
template <typename T>
struct Reference
{
    Reference(const std::vector<T>& taps, const std::vector<T>& input, const std::vector<T>& delay)
        : z(delay.begin(), delay.end())
    {
        const auto start = z;
        auto plainDelay = delay;
        output = runPlainLoop(taps, input, z);
        for (std::size_t k = taps.size() / 2 + 1; k < taps.size(); ++k)
        {
            auto moved = taps;
            moved[k] = std::nextafter(moved[k], T(0)); // towards the inside of the circle
            auto movedDelay = start;
            limit = std::max(limit, test::maxDifference(runPlainLoop(moved, input, movedDelay), output));
        }
        limit += 2.5 * test::maxDifference(runPlainLoop(taps, input, plainDelay), output);
    }

    std::vector<long double> z, output;
    double limit = 0.0;
};

/** b and a of a filter with the poles radius exp(+-j angle), one angle for each pair, and a real pole for an
    odd order. */
template <typename T>
std::vector<T> makeTaps(int order, double radius, double firstAngle, double a0 = 1.0)
{
    std::vector<std::complex<double>> a = {1.0};
    const auto addPole = [&](std::complex<double> pole)
    {
        a.push_back(0.0);
        for (std::size_t k = a.size() - 1; k > 0; --k)
            a[k] -= pole * a[k - 1];
    };
    for (int pair = 0; pair < order / 2; ++pair)
    {
        const auto pole = std::polar(radius, firstAngle + 0.9 * pair);
        addPole(pole);
        addPole(std::conj(pole));
    }
    if (order % 2 == 1)
        addPole(radius);

    std::vector<T> taps;
    for (const float b : makeNoise(order + 1, unsigned(order), 0.1f, 1.0f))
        taps.push_back(static_cast<T>(a0 * double(b)));
    for (const auto value : a)
        taps.push_back(static_cast<T>(a0 * value.real()));
    return taps;
}

template <typename T>
std::vector<T> makeInput(int n, unsigned seed)
{
    const auto noise = makeNoise(n, seed);
    return {noise.begin(), noise.end()};
}

class IirKernel : public test::KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(IirKernel);

/** Runs a stream through one filter, and on through another that takes over its delay values. */
template <typename T>
void expectAccuracyOfAPlainLoop(int order, double radius, double angle, double a0, int total)
{
    const std::vector<int> cut(std::begin(test::sweptLengths), std::end(test::sweptLengths));
    const auto input = makeInput<T>(total, 1), rest = makeInput<T>(100, 2);
    const auto taps = makeTaps<T>(order, radius, angle, a0), newTaps = makeTaps<T>(order, 0.8, 1.1, 3.0);
    const Reference<T> expected(taps, input, std::vector<T>(std::size_t(order)));
    for (const auto& blocks : {cut, {480}, {total}})
        for (const bool inPlace : {false, true})
        {
            SCOPED_TRACE(testing::Message() << "order " << order << ", radius " << radius << ", angle "
                                            << angle << ", a0 " << a0 << ", bytes " << sizeof(T)
                                            << ", blocks from " << blocks[0] << ", in place " << inPlace);
            Filter<T> first(taps);
            auto source = input, separate = input;
            auto& output = inPlace ? source : separate;
            forEachBlock(total, blocks,
                         [&](int begin, int n)
                         { first.run(source.data() + begin, output.data() + begin, n); });
            EXPECT_LT(test::maxDifference(output, expected.output), expected.limit);
            const auto delay = first.getDelay();
            EXPECT_LT(test::maxDifference(delay, expected.z), 8.0 * expected.limit);

            const Reference<T> continued(newTaps, rest, delay);
            Filter<T> second(newTaps, delay.data());
            const auto secondOutput = second.run(rest);
            EXPECT_LT(test::maxDifference(secondOutput, continued.output), continued.limit);
            if constexpr (std::is_same_v<T, float>)
            {
                ASSERT_EQ(ippsIIRSetDlyLine_32f(second.state, delay.data()), ippStsNoErr);
                EXPECT_EQ(second.run(rest), secondOutput);
                ASSERT_EQ(ippsIIRSetDlyLine_32f(second.state, nullptr), ippStsNoErr);
                EXPECT_EQ(second.run(rest), Filter<T>(newTaps).run(rest));
            }
        }
}

TEST_P(IirKernel, IsAsAccurateAsAPlainLoopInAnyCutAndInPlace)
{
    struct Row
    {
        int order;
        double radius, angle, a0 = 1.0;
        int total = 100000;
    };
    std::vector<Row> rows = {{1, 0.999, 0.0},    {1, 0.99999, 0.0}, {1, 0.999999, 0.0}, {2, 0.999, 0.002},
                             {2, 0.999, 3.1},    {2, 0.9999, 0.02}, {2, 0.99999, 0.5},  {2, 0.999999, 0.02},
                             {2, 0.999999, 3.1}, {3, 0.99999, 0.5}};
    for (int order = 1; order <= 5; ++order)
        for (const double radius : {0.3, 0.9, 0.99})
            for (const double a0 : {1.0, 2.0, -0.37})
                rows.push_back({order, radius, 0.4, a0, 4000});
    for (const auto& [order, radius, angle, a0, total] : rows)
    {
        expectAccuracyOfAPlainLoop<float>(order, radius, angle, a0, total);
        expectAccuracyOfAPlainLoop<double>(order, radius, angle, a0, total);
    }
}

TEST_P(IirKernel, DecaysToSilenceAndStaysThere)
{
    for (const int order : {1, 2, 3})
    {
        Filter<float> filter(makeTaps<float>(order, 0.99, 0.5));
        filter.run(makeInput<float>(1000, 6));
        const std::vector<float> silence(20000);
        filter.run(silence);
        EXPECT_EQ(filter.run(silence), silence) << "denormals are flushed on this thread, order " << order;
    }
}

template <typename T>
void expectRefusals()
{
    using Kernels = Iir<T>;
    int bytes = 0;
    EXPECT_TRUE(refusesNulls(Kernels::getStateSize, 2, &bytes));
    for (const int order : {-1, 100000})
        EXPECT_EQ(Kernels::getStateSize(order, &bytes), ippStsIIROrderErr);

    const std::vector<T> taps = {T(1), T(0.5), T(1), T(-0.5)};
    const T withoutA0[] = {T(1), T(0.5), T(0), T(-0.5)};
    Filter<T> filter(taps);
    auto* memory = filter.memory.data();
    EXPECT_EQ(Kernels::init(&filter.state, withoutA0, 1, nullptr, memory), ippStsDivByZeroErr);
    EXPECT_EQ(Kernels::init(&filter.state, taps.data(), -1, nullptr, memory), ippStsIIROrderErr);
    EXPECT_TRUE(refusesNulls(Kernels::init, &filter.state, taps.data(), 1, nullptr, memory));

    T value = T(7);
    EXPECT_TRUE(refusesNulls(Kernels::run, &value, &value, 1, filter.state));
    EXPECT_TRUE(refusesNulls(Kernels::getDelayLine, filter.state, &value));
    EXPECT_EQ(Kernels::run(&value, &value, 0, filter.state), ippStsSizeErr);
    EXPECT_EQ(value, T(7));
}

TEST_P(IirKernel, RefusesWhatItCannotDo)
{
    expectRefusals<float>();
    expectRefusals<double>();
    EXPECT_EQ(ippsIIRSetDlyLine_32f(nullptr, nullptr), ippStsNullPtrErr);
}

} // namespace
} // namespace vesk::audio
