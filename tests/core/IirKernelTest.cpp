#include "tests/core/KernelFixture.h"

#include <complex>
#include <type_traits>

namespace vesk::audio
{
namespace
{

using test::makeNoise;

//==============================================================================
// Both precisions behind one face.

template <typename T>
class Filter
{
    static constexpr bool isFloat = std::is_same_v<T, float>;
    using State = std::conditional_t<isFloat, IirState32, IirState64>;

public:
    Filter(const std::vector<T>& taps, const T* delay = nullptr)
        : order(static_cast<int>(taps.size()) / 2 - 1)
    {
        EXPECT_EQ(initialise(taps, delay), ippStsNoErr);
    }

    IppStatus initialise(const std::vector<T>& taps, const T* delay)
    {
        int bytes = 0;
        if constexpr (isFloat)
            EXPECT_EQ(ippsIIRGetStateSize_32f(order, &bytes), ippStsNoErr);
        else
            EXPECT_EQ(ippsIIRGetStateSize_64f(order, &bytes), ippStsNoErr);
        memory.resize(static_cast<std::size_t>(bytes) + 1); // used from an odd address
        if constexpr (isFloat)
            return ippsIIRInit_32f(&state, taps.data(), order, delay, memory.data() + 1);
        else
            return ippsIIRInit_64f(&state, taps.data(), order, delay, memory.data() + 1);
    }

    IppStatus run(const T* src, T* dst, int n)
    {
        if constexpr (isFloat)
            return ippsIIR_32f(src, dst, n, state);
        else
            return ippsIIR_64f(src, dst, n, state);
    }

    std::vector<T> run(const std::vector<T>& input)
    {
        std::vector<T> output(input.size());
        EXPECT_EQ(run(input.data(), output.data(), static_cast<int>(input.size())), ippStsNoErr);
        return output;
    }

    std::vector<T> getDelay() const
    {
        std::vector<T> delay(static_cast<std::size_t>(order));
        if constexpr (isFloat)
            EXPECT_EQ(ippsIIRGetDlyLine_32f(state, delay.data()), ippStsNoErr);
        else
            EXPECT_EQ(ippsIIRGetDlyLine_64f(state, delay.data()), ippStsNoErr);
        return delay;
    }

    int order;
    State* state = nullptr;
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
    std::vector<double> a = {1.0};
    const auto multiply = [&](std::vector<double> factor)
    {
        std::vector<double> product(a.size() + factor.size() - 1);
        for (std::size_t i = 0; i < a.size(); ++i)
            for (std::size_t k = 0; k < factor.size(); ++k)
                product[i + k] += a[i] * factor[k];
        a = product;
    };
    for (int pair = 0; pair < order / 2; ++pair)
        multiply({1.0, -2.0 * radius * std::cos(firstAngle + 0.9 * pair), radius * radius});
    if (order % 2 == 1)
        multiply({1.0, -radius});

    std::vector<T> taps;
    for (const float b : makeNoise(order + 1, unsigned(order), 0.1f, 1.0f))
        taps.push_back(static_cast<T>(a0 * double(b)));
    for (const double value : a)
        taps.push_back(static_cast<T>(a0 * value));
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
    double peak = 0.0;
    for (const T value : values)
        peak = std::max(peak, std::abs(static_cast<double>(value)));
    return peak;
}

/** Relative to the largest output. */
template <typename T>
constexpr double tolerance = std::is_same_v<T, float> ? 3e-6 : 1e-13;

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
            for (int order = 1; order <= 5; ++order)
                for (const double radius : {0.3, 0.9, 0.99})
                    for (const double a0 : {1.0, 2.0, -0.37})
                    {
                        SCOPED_TRACE(testing::Message() << "order " << order << ", radius " << radius
                                                        << ", a0 " << a0 << ", bytes " << sizeof(T));
                        const auto taps = makeTaps<T>(order, radius, 0.4, a0);
                        const auto input = makeInput<T>(total, 1);
                        std::vector<double> z;
                        const auto expected = runReference<double>(taps, input, z);
                        const double limit = tolerance<T> * getPeak(expected) / (1.0 - radius);

                        Filter<T> whole(taps);
                        EXPECT_LT(test::maxDifference(whole.run(input), expected), limit);
                        EXPECT_LT(test::maxDifference(whole.getDelay(), z), limit * 8.0);

                        for (const bool inPlace : {false, true})
                        {
                            Filter<T> cut(taps);
                            auto source = input;
                            std::vector<T> separate(input.size());
                            auto& output = inPlace ? source : separate;
                            for (int done = 0, step = 0; done < total; ++step)
                            {
                                const int n = std::min(
                                    test::sweptLengths[std::size_t(step) % std::size(test::sweptLengths)],
                                    total - done);
                                ASSERT_EQ(cut.run(source.data() + done, output.data() + done, n),
                                          ippStsNoErr);
                                done += n;
                            }
                            EXPECT_LT(test::maxDifference(output, expected), limit) << "in place " << inPlace;
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

                    const double limit = 20.0 * tolerance<T> * (1.0 + getPeak(expected));
                    Filter<T> first(taps);
                    first.run(input);
                    const auto delay = first.getDelay();
                    Filter<T> second(newTaps, delay.data());
                    EXPECT_LT(test::maxDifference(second.run(rest), expected), limit) << order;

                    Filter<T> third(taps, delay.data());
                    EXPECT_LT(test::maxDifference(third.run(rest), first.run(rest)), limit) << order;
                }
        });
}

TEST_P(IirKernel, DelayValuesCanBeSetAndCleared)
{
    for (int order = 1; order <= 5; ++order)
    {
        const auto taps = makeTaps<float>(order, 0.9, 0.4);
        const auto input = makeInput<float>(50, 4);
        Filter<float> filter(taps);
        const auto fresh = filter.run(input);
        const auto delay = filter.getDelay();
        const auto continued = filter.run(input);

        ASSERT_EQ(ippsIIRSetDlyLine_32f(filter.state, delay.data()), ippStsNoErr);
        EXPECT_EQ(filter.getDelay(), delay);
        EXPECT_EQ(filter.run(input), continued);
        ASSERT_EQ(ippsIIRSetDlyLine_32f(filter.state, nullptr), ippStsNoErr);
        EXPECT_EQ(filter.run(input), fresh);
    }
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
        const int total = static_cast<int>(input.size());
        for (int done = 0; done < total; done += 480)
            ASSERT_EQ(filter.run(output.data() + done, output.data() + done, std::min(480, total - done)),
                      ippStsNoErr);
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
        const auto tail = filter.run(silence);
        EXPECT_EQ(getPeak(tail), 0.0) << "denormals are flushed on this thread, order " << order;
    }
}

TEST_P(IirKernel, RefusesWhatItCannotDo)
{
    int bytes = 0;
    for (const int order : {-1, 100000})
    {
        EXPECT_EQ(ippsIIRGetStateSize_32f(order, &bytes), ippStsIIROrderErr);
        EXPECT_EQ(ippsIIRGetStateSize_64f(order, &bytes), ippStsIIROrderErr);
    }
    EXPECT_EQ(ippsIIRGetStateSize_32f(2, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippsIIRGetStateSize_64f(2, nullptr), ippStsNullPtrErr);

    inBothPrecisions(
        []<typename T>(T)
        {
            Filter<T> filter({T(1), T(0.5), T(1), T(-0.5)});
            EXPECT_EQ(filter.initialise({T(1), T(0.5), T(0), T(-0.5)}, nullptr), ippStsDivByZeroErr);
            ASSERT_EQ(filter.initialise({T(1), T(0.5), T(1), T(-0.5)}, nullptr), ippStsNoErr);
            T value = T(7);
            EXPECT_EQ(filter.run(nullptr, &value, 1), ippStsNullPtrErr);
            EXPECT_EQ(filter.run(&value, nullptr, 1), ippStsNullPtrErr);
            EXPECT_EQ(filter.run(&value, &value, 0), ippStsSizeErr);
            EXPECT_EQ(value, T(7));
        });

    float value = 7.0f;
    double wide = 7.0;
    const float taps[] = {1.0f, 0.0f, 1.0f, 0.0f};
    std::uint8_t memory[1] = {};
    IirState32* state = nullptr;
    EXPECT_EQ(ippsIIRInit_32f(nullptr, taps, 1, nullptr, memory), ippStsNullPtrErr);
    EXPECT_EQ(ippsIIRInit_32f(&state, nullptr, 1, nullptr, memory), ippStsNullPtrErr);
    EXPECT_EQ(ippsIIRInit_32f(&state, taps, 1, nullptr, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippsIIRInit_32f(&state, taps, -1, nullptr, memory), ippStsIIROrderErr);
    EXPECT_EQ(ippsIIR_32f(&value, &value, 1, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippsIIR_64f(&wide, &wide, 1, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippsIIRGetDlyLine_32f(nullptr, &value), ippStsNullPtrErr);
    EXPECT_EQ(ippsIIRGetDlyLine_64f(nullptr, &wide), ippStsNullPtrErr);
    EXPECT_EQ(ippsIIRSetDlyLine_32f(nullptr, &value), ippStsNullPtrErr);
}

} // namespace
} // namespace vesk::audio
