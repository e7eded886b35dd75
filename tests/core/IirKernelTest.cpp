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
    static constexpr double tolerance = 3e-6; ///< relative to the largest output
};

template <>
struct Iir<double>
{
    using State = IirState64;
    static constexpr auto getStateSize = ippsIIRGetStateSize_64f;
    static constexpr auto init = ippsIIRInit_64f;
    static constexpr auto getDelayLine = ippsIIRGetDlyLine_64f;
    static constexpr auto run = ippsIIR_64f;
    static constexpr double tolerance = 1e-13;
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
std::vector<R> runReference(const std::vector<T>& taps, const std::vector<T>& input, std::vector<R>& z)
{
    const std::size_t order = taps.size() / 2 - 1;
    const R a0 = static_cast<R>(taps[order + 1]);
    z.resize(order);
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

template <typename T>
double getPeak(const std::vector<T>& values)
{
    return test::maxDifference(values, std::vector<T>(values.size()));
}

class IirKernel : public test::KernelFixture
{
protected:
    /** Runs a check in both precisions. */
    template <typename Check>
    static void inBothPrecisions(Check check)
    {
        check(float());
        check(double());
    }
};
AMBREL_ON_ALL_INSTRUCTION_SETS(IirKernel);

TEST_P(IirKernel, EqualsTheDifferenceEquationInAnyCutAndInPlace)
{
    inBothPrecisions(
        []<typename T>(T)
        {
            constexpr int total = 4000;
            const std::vector<int> cut(std::begin(test::sweptLengths), std::end(test::sweptLengths));
            const auto input = makeInput<T>(total, 1);
            for (int order = 1; order <= 5; ++order)
                for (const double radius : {0.3, 0.9, 0.99})
                    for (const double a0 : {1.0, 2.0, -0.37})
                    {
                        const auto taps = makeTaps<T>(order, radius, 0.4, a0);
                        std::vector<double> z;
                        const auto expected = runReference<double>(taps, input, z);
                        const double limit = Iir<T>::tolerance * getPeak(expected) / (1.0 - radius);
                        for (const auto& lengths : {std::vector{total}, cut})
                            for (const bool inPlace : {false, true})
                            {
                                SCOPED_TRACE(testing::Message()
                                             << "order " << order << ", radius " << radius << ", a0 " << a0
                                             << ", bytes " << sizeof(T) << ", blocks from " << lengths[0]
                                             << ", in place " << inPlace);
                                Filter<T> filter(taps);
                                auto source = input;
                                std::vector<T> separate(input.size());
                                auto& output = inPlace ? source : separate;
                                forEachBlock(total, lengths,
                                             [&](int begin, int n) {
                                                 filter.run(source.data() + begin, output.data() + begin, n);
                                             });
                                EXPECT_LT(test::maxDifference(output, expected), limit);
                                EXPECT_LT(test::maxDifference(filter.getDelay(), z), limit * 8.0);
                            }
                    }
        });
}

TEST_P(IirKernel, DelayValuesCarryAFilterOnIntoNewTaps)
{
    inBothPrecisions(
        []<typename T>(T)
        {
            for (int order = 1; order <= 5; ++order)
                for (const int length : {1, 3, 64, 101})
                {
                    const auto taps = makeTaps<T>(order, 0.9, 0.4),
                               newTaps = makeTaps<T>(order, 0.8, 1.1, 3.0);
                    const auto input = makeInput<T>(length, 2), rest = makeInput<T>(100, 3);
                    std::vector<double> z;
                    runReference<double>(taps, input, z);
                    const auto expected = runReference<double>(newTaps, rest, z);

                    Filter<T> first(taps);
                    first.run(input);
                    const auto delay = first.getDelay();
                    const auto output = Filter<T>(newTaps, delay.data()).run(rest);
                    EXPECT_LT(test::maxDifference(output, expected),
                              20.0 * Iir<T>::tolerance * (1.0 + getPeak(expected)))
                        << order;

                    if constexpr (std::is_same_v<T, float>)
                    {
                        Filter<T> second(newTaps);
                        const auto fresh = second.run(rest);
                        ASSERT_EQ(ippsIIRSetDlyLine_32f(second.state, delay.data()), ippStsNoErr);
                        EXPECT_EQ(second.run(rest), output);
                        ASSERT_EQ(ippsIIRSetDlyLine_32f(second.state, nullptr), ippStsNoErr);
                        EXPECT_EQ(second.run(rest), fresh);
                    }
                }
        });
}

/** How far the exact output moves when the recursive taps move by one step of their precision: the least that a
    filter of this precision can promise. */
template <typename T>
double getSensitivity(const std::vector<T>& taps, const std::vector<T>& input,
                      const std::vector<long double>& exact)
{
    double result = 0.0;
    for (std::size_t k = taps.size() / 2 + 1; k < taps.size(); ++k)
    {
        auto moved = taps;
        moved[k] = std::nextafter(moved[k], T(0)); // towards the inside of the circle
        std::vector<long double> delay;
        result = std::max(result, test::maxDifference(runReference(moved, input, delay), exact));
    }
    return result;
}

/** Runs one filter on every instruction set and holds it against the plain loop of its precision. */
template <typename T>
void expectAccuracyOfAPlainLoop(const std::vector<T>& taps, const std::vector<T>& input)
{
    std::vector<long double> exactDelay;
    std::vector<T> plainDelay;
    const auto exact = runReference(taps, input, exactDelay);
    const auto plain = runReference(taps, input, plainDelay);
    const double limit = getSensitivity(taps, input, exact) + 4.0 * test::maxDifference(plain, exact);
    for (const auto* instructionSet : test::getInstructionSets())
    {
        kernels::selectKernels(*instructionSet);
        Filter<T> filter(taps);
        auto output = input;
        forEachBlock(static_cast<int>(input.size()), std::array{480},
                     [&](int begin, int n) { filter.run(output.data() + begin, output.data() + begin, n); });
        EXPECT_LT(test::maxDifference(output, exact), limit)
            << instructionSet->name << ", bytes " << sizeof(T);
    }
    kernels::selectKernels(*kernels::getAvailableKernels().front());
}

TEST(IirKernelAccuracy, HoldsWithPolesNextToTheCircle)
{
    constexpr int total = 100000;
    struct Row
    {
        int order;
        double radius, angle;
    };
    for (const auto& [order, radius, angle] : {Row{1, 0.999, 0},
                                               {1, 0.99999, 0},
                                               {1, 0.999999, 0},
                                               {2, 0.999, 0.002},
                                               {2, 0.999, 3.1},
                                               {2, 0.9999, 0.02},
                                               {2, 0.99999, 0.5},
                                               {2, 0.999999, 0.02},
                                               {2, 0.999999, 3.1},
                                               {3, 0.99999, 0.5}})
    {
        SCOPED_TRACE(testing::Message() << "order " << order << ", radius " << radius << ", angle " << angle);
        expectAccuracyOfAPlainLoop(makeTaps<float>(order, radius, angle), makeInput<float>(total, 5));
        expectAccuracyOfAPlainLoop(makeTaps<double>(order, radius, angle), makeInput<double>(total, 5));
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
        EXPECT_EQ(getPeak(filter.run(silence)), 0.0)
            << "denormals are flushed on this thread, order " << order;
    }
}

TEST_P(IirKernel, RefusesWhatItCannotDo)
{
    inBothPrecisions(
        []<typename T>(T)
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
        });
    EXPECT_EQ(ippsIIRSetDlyLine_32f(nullptr, nullptr), ippStsNullPtrErr);
}

} // namespace
} // namespace vesk::audio
