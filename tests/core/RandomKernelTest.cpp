#include "tests/core/KernelFixture.h"

#include <functional>
#include <numeric>

namespace vesk::audio
{
namespace
{

using test::refusesNulls;

template <typename State, auto getSize, auto init, auto run>
class Generator
{
public:
    Generator(float first, float second, unsigned seed)
    {
        int bytes = 0;
        EXPECT_EQ(getSize(&bytes), ippStsNoErr);
        memory.resize(static_cast<std::size_t>(bytes));
        EXPECT_EQ(init(getState(), first, second, seed), ippStsNoErr);
    }

    std::vector<float> generate(int n)
    {
        std::vector<float> values(static_cast<std::size_t>(n));
        EXPECT_EQ(run(values.data(), n, getState()), ippStsNoErr);
        return values;
    }

    State* getState() { return reinterpret_cast<State*>(memory.data()); }

private:
    std::vector<std::uint8_t> memory;
};

using Normal =
    Generator<RandomGaussState, ippsRandGaussGetSize_32f, ippsRandGaussInit_32f, ippsRandGauss_32f>;
using Uniform =
    Generator<RandomUniformState, ippsRandUniformGetSize_32f, ippsRandUniformInit_32f, ippsRandUniform_32f>;

constexpr int sampleCount = 200000;

/** Shifts and scales away what the parameters have shifted and scaled. */
std::vector<double> standardise(const std::vector<float>& values, double mean, double deviation)
{
    std::vector<double> result;
    for (const float value : values)
        result.push_back((double(value) - mean) / deviation);
    return result;
}

std::vector<double> drawNormal(unsigned seed)
{
    return standardise(Normal(5.0f, 0.25f, seed).generate(sampleCount), 5.0, 0.25);
}

std::vector<double> drawUniform(unsigned seed)
{
    return standardise(Uniform(10.0f, 12.0f, seed).generate(sampleCount), 11.0, 1.0 / std::sqrt(3.0));
}

/** Mean of a[i] b[i + lag]. */
double correlate(const std::vector<double>& a, const std::vector<double>& b, std::size_t lag)
{
    return std::inner_product(b.begin() + static_cast<std::ptrdiff_t>(lag), b.end(), a.begin(), 0.0) /
           static_cast<double>(b.size() - lag);
}

/** Six standard errors of a mean of independent values of deviation 1: no seed that works comes near it. */
const double sixErrors = 6.0 / std::sqrt(double(sampleCount));

constexpr unsigned seeds[] = {0u, 1u, 2u, 0x7fffffffu, 0x80000000u, 0xffffffffu};

class RandomKernel : public test::KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(RandomKernel);

template <typename Source>
void expectOneSequenceInAnyCut()
{
    const auto whole = Source(-1.0f, 2.0f, 42).generate(5000);
    Source generator(-1.0f, 2.0f, 42);
    std::vector<float> cut;
    test::forEachBlock(5000, test::sweptLengths,
                       [&](int, int n)
                       {
                           const auto block = generator.generate(n);
                           cut.insert(cut.end(), block.begin(), block.end());
                       });
    EXPECT_EQ(cut, whole);
}

TEST_P(RandomKernel, ASequenceDoesNotDependOnHowItIsCut)
{
    expectOneSequenceInAnyCut<Normal>();
    expectOneSequenceInAnyCut<Uniform>();
}

TEST_P(RandomKernel, InstructionSetsAgree)
{
    const auto normal = Normal(0.0f, 1.0f, 7).generate(10000), uniform = Uniform(-2, 2, 7).generate(10000);
    kernels::selectKernels(*kernels::getAvailableKernels().back());
    EXPECT_LT(test::maxDifference(normal, Normal(0.0f, 1.0f, 7).generate(10000)), 1e-5);
    EXPECT_LT(test::maxDifference(uniform, Uniform(-2, 2, 7).generate(10000)), 1e-5);
}

/** The moments and their deviations are those of the values' powers from 1 on. */
void expectDistribution(const std::vector<double>& values, double (*getShareBelow)(double bound),
                        const std::vector<double>& moments, const std::vector<double>& deviations)
{
    const auto getMean = [&](auto get)
    { return std::transform_reduce(values.begin(), values.end(), 0.0, std::plus(), get) / sampleCount; };
    for (std::size_t i = 0; i < moments.size(); ++i)
        EXPECT_NEAR(getMean([=](double value) { return std::pow(value, i + 1); }), moments[i],
                    sixErrors * deviations[i])
            << "power " << i + 1;
    for (const double bound : {0.25, 1.0, std::sqrt(3.0), 2.0, 3.0, 4.0})
    {
        const double share = 2.0 * getShareBelow(-bound);
        EXPECT_NEAR(getMean([=](double value) { return std::abs(value) > bound ? 1.0 : 0.0; }), share,
                    sixErrors * std::sqrt(share * (1.0 - share)))
            << bound;
    }

    // A hundred cells of equal probability: neither too uneven nor too even.
    std::vector<int> counts(100);
    for (const double value : values)
        ++counts[static_cast<std::size_t>(std::min(99.0, 100.0 * getShareBelow(value)))];
    double chiSquare = 0.0;
    for (const auto count : counts)
        chiSquare += std::pow(count - sampleCount / 100.0, 2) / (sampleCount / 100.0);
    EXPECT_NEAR(chiSquare, 99.0, 6.0 * std::sqrt(198.0));
}

TEST_P(RandomKernel, HasTheStatedDistribution)
{
    for (const auto seed : seeds)
    {
        SCOPED_TRACE(seed);
        expectDistribution(drawNormal(seed),
                           [](double bound) { return 0.5 * std::erfc(-bound / std::sqrt(2.0)); },
                           {0.0, 1.0, 0.0, 3.0}, {1.0, std::sqrt(2.0), std::sqrt(15.0), std::sqrt(96.0)});
        expectDistribution(drawUniform(seed),
                           [](double bound) { return std::clamp(0.5 + bound / std::sqrt(12.0), 0.0, 1.0); },
                           {0.0, 1.0, 0.0, 1.8}, {1.0, std::sqrt(0.8), std::sqrt(27.0 / 7.0), 2.4});
    }
    EXPECT_EQ(Normal(2.0f, 0.0f, 3).generate(5), std::vector<float>(5, 2.0f));
    EXPECT_EQ(Uniform(2.0f, 2.0f, 3).generate(5), std::vector<float>(5, 2.0f));
}

TEST_P(RandomKernel, IsWhiteAndSeedsShareNothing)
{
    for (const auto draw : {drawNormal, drawUniform})
        for (const auto seed : seeds)
        {
            const auto values = draw(seed);
            for (const std::size_t lag : {1u, 2u, 3u, 4u, 7u, 8u, 16u, 31u, 32u, 63u, 64u, 65u, 128u, 1024u})
                EXPECT_NEAR(correlate(values, values, lag), 0.0, sixErrors)
                    << "seed " << seed << ", lag " << lag;
            for (const auto otherSeed : {seed + 1u, seed ^ 0x80000000u, seed + 0x10000u})
            {
                const auto other = draw(otherSeed);
                for (const std::size_t lag : {0u, 1u, 2u, 32u, 64u, 128u})
                    for (const double value : {correlate(values, other, lag), correlate(other, values, lag)})
                        EXPECT_NEAR(value, 0.0, sixErrors) << seed << ' ' << otherSeed << ' ' << lag;
            }
        }
}

TEST_P(RandomKernel, RefusesNullAndEmpty)
{
    int bytes = 0;
    float dst = 7.0f;
    Normal normal(0.0f, 1.0f, 1);
    Uniform uniform(0.0f, 1.0f, 1);
    EXPECT_TRUE(refusesNulls(ippsRandGaussGetSize_32f, &bytes));
    EXPECT_TRUE(refusesNulls(ippsRandUniformGetSize_32f, &bytes));
    EXPECT_TRUE(refusesNulls(ippsRandGaussInit_32f, normal.getState(), 0.0f, 1.0f, 0));
    EXPECT_TRUE(refusesNulls(ippsRandUniformInit_32f, uniform.getState(), 0.0f, 1.0f, 0));
    EXPECT_TRUE(refusesNulls(ippsRandGauss_32f, &dst, 1, normal.getState()));
    EXPECT_TRUE(refusesNulls(ippsRandUniform_32f, &dst, 1, uniform.getState()));
    EXPECT_EQ(ippsRandGauss_32f(&dst, 0, normal.getState()), ippStsSizeErr);
    EXPECT_EQ(ippsRandUniform_32f(&dst, 0, uniform.getState()), ippStsSizeErr);
    EXPECT_EQ(dst, 7.0f);
}

} // namespace
} // namespace vesk::audio
