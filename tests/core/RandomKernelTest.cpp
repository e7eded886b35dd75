#include "tests/core/KernelFixture.h"

#include <functional>
#include <numeric>

namespace vesk::audio
{
namespace
{

/** Either generator behind one face. */
class Generator
{
public:
    Generator(bool isGaussian, float first, float second, unsigned seed) : gaussian(isGaussian)
    {
        int bytes = 0;
        EXPECT_EQ(gaussian ? ippsRandGaussGetSize_32f(&bytes) : ippsRandUniformGetSize_32f(&bytes),
                  ippStsNoErr);
        memory.reset(ippsMalloc_8u(bytes));
        EXPECT_EQ(gaussian ? ippsRandGaussInit_32f(asGauss(), first, second, seed)
                           : ippsRandUniformInit_32f(asUniform(), first, second, seed),
                  ippStsNoErr);
    }

    IppStatus generate(float* dst, int n)
    {
        return gaussian ? ippsRandGauss_32f(dst, n, asGauss()) : ippsRandUniform_32f(dst, n, asUniform());
    }

    std::vector<float> generate(int n)
    {
        std::vector<float> values(static_cast<std::size_t>(n));
        EXPECT_EQ(generate(values.data(), n), ippStsNoErr);
        return values;
    }

private:
    RandomGaussState* asGauss() { return reinterpret_cast<RandomGaussState*>(memory.get()); }
    RandomUniformState* asUniform() { return reinterpret_cast<RandomUniformState*>(memory.get()); }

    struct Free
    {
        void operator()(std::uint8_t* block) const { ippsFree(block); }
    };

    bool gaussian;
    std::unique_ptr<std::uint8_t, Free> memory;
};

std::vector<float> drawNormal(unsigned seed, int n) { return Generator(true, 0.0f, 1.0f, seed).generate(n); }

/** Uniform with mean 0 and deviation 1. */
std::vector<float> drawUniform(unsigned seed, int n)
{
    return Generator(false, -1.7320508f, 1.7320508f, seed).generate(n);
}

double getMoment(const std::vector<float>& values, int power)
{
    return std::accumulate(values.begin(), values.end(), 0.0,
                           [=](double sum, float value) { return sum + std::pow(double(value), power); }) /
           static_cast<double>(values.size());
}

/** Mean of a[i] b[i + lag]. */
double correlate(const std::vector<float>& a, const std::vector<float>& b, std::size_t lag)
{
    double sum = 0.0;
    for (std::size_t i = 0; i + lag < b.size(); ++i)
        sum += double(a[i]) * double(b[i + lag]);
    return sum / static_cast<double>(b.size() - lag);
}

constexpr int sampleCount = 200000;

/** Six standard errors of a mean of independent values of deviation 1: no seed that works comes near it. */
const double sixErrors = 6.0 / std::sqrt(double(sampleCount));

constexpr unsigned seeds[] = {0u, 1u, 2u, 0x7fffffffu, 0x80000000u, 0xffffffffu};

class RandomKernel : public test::KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(RandomKernel);

TEST_P(RandomKernel, ASequenceDoesNotDependOnHowItIsCut)
{
    for (const bool isGaussian : {true, false})
    {
        const auto whole = Generator(isGaussian, -1.0f, 2.0f, 42).generate(5000);
        EXPECT_EQ(Generator(isGaussian, -1.0f, 2.0f, 42).generate(5000), whole) << "reproducible";
        Generator generator(isGaussian, -1.0f, 2.0f, 42);
        std::vector<float> cut(5000);
        for (int done = 0, step = 0; done < 5000; ++step)
        {
            const int n =
                std::min(test::sweptLengths[std::size_t(step) % std::size(test::sweptLengths)], 5000 - done);
            ASSERT_EQ(generator.generate(cut.data() + done, n), ippStsNoErr);
            done += n;
        }
        EXPECT_EQ(cut, whole);
    }
}

TEST_P(RandomKernel, InstructionSetsAgree)
{
    const auto normal = drawNormal(7, 10000), uniform = drawUniform(7, 10000);
    kernels::selectKernels(*kernels::getAvailableKernels().back());
    EXPECT_LT(test::maxDifference(normal, drawNormal(7, 10000)), 1e-5);
    EXPECT_LT(test::maxDifference(uniform, drawUniform(7, 10000)), 1e-5);
}

TEST_P(RandomKernel, HasTheStatedDistribution)
{
    for (const auto seed : seeds)
    {
        SCOPED_TRACE(seed);
        const auto normal = drawNormal(seed, sampleCount);
        EXPECT_NEAR(getMoment(normal, 1), 0.0, sixErrors);
        EXPECT_NEAR(getMoment(normal, 2), 1.0, sixErrors * std::sqrt(2.0));
        EXPECT_NEAR(getMoment(normal, 3), 0.0, sixErrors * std::sqrt(15.0));
        EXPECT_NEAR(getMoment(normal, 4), 3.0, sixErrors * std::sqrt(96.0));
        for (const double bound : {0.25, 1.0, 2.0, 3.0, 4.0})
        {
            const double share = std::erfc(bound / std::sqrt(2.0));
            const auto beyond = std::count_if(normal.begin(), normal.end(),
                                              [=](float v) { return std::abs(double(v)) > bound; });
            EXPECT_NEAR(double(beyond) / sampleCount, share, sixErrors * std::sqrt(share * (1.0 - share)))
                << bound;
        }

        const auto uniform = drawUniform(seed, sampleCount);
        EXPECT_NEAR(getMoment(uniform, 1), 0.0, sixErrors);
        EXPECT_NEAR(getMoment(uniform, 2), 1.0, sixErrors);
        EXPECT_NEAR(getMoment(uniform, 4), 1.8, sixErrors * 2.4);
        std::vector<int> counts(100);
        for (const auto value : uniform)
        {
            ASSERT_TRUE(value >= -1.7320508f && value <= 1.7320508f) << value;
            ++counts[static_cast<std::size_t>(std::min(99.0, (double(value) / 1.7320508 + 1.0) * 50.0))];
        }
        double chiSquare = 0.0;
        for (const auto count : counts)
            chiSquare += std::pow(count - sampleCount / 100.0, 2) / (sampleCount / 100.0);
        EXPECT_LT(chiSquare, 99.0 + 6.0 * std::sqrt(198.0));
        EXPECT_GT(chiSquare, 99.0 - 6.0 * std::sqrt(198.0));
    }
}

TEST_P(RandomKernel, IsWhiteAndSeedsShareNothing)
{
    for (const auto draw : {drawNormal, drawUniform})
        for (const auto seed : seeds)
        {
            const auto values = draw(seed, sampleCount);
            for (const std::size_t lag : {1u, 2u, 3u, 4u, 7u, 8u, 16u, 31u, 32u, 63u, 64u, 65u, 128u, 1024u})
                EXPECT_NEAR(correlate(values, values, lag), 0.0, sixErrors)
                    << "seed " << seed << ", lag " << lag;
            for (const auto otherSeed : {seed + 1u, seed ^ 0x80000000u, seed + 0x10000u})
            {
                const auto other = draw(otherSeed, sampleCount);
                for (const std::size_t lag : {0u, 1u, 2u, 32u, 64u, 128u})
                {
                    EXPECT_NEAR(correlate(values, other, lag), 0.0, sixErrors)
                        << seed << ' ' << otherSeed << ' ' << lag;
                    EXPECT_NEAR(correlate(other, values, lag), 0.0, sixErrors)
                        << seed << ' ' << otherSeed << ' ' << lag;
                }
            }
        }
}

TEST_P(RandomKernel, ParametersScaleAndShift)
{
    const auto plain = drawNormal(3, 1000), scaled = Generator(true, 5.0f, 0.25f, 3).generate(1000);
    const auto wide = Generator(false, 10.0f, 12.0f, 3).generate(1000),
               unit = Generator(false, 0.0f, 1.0f, 3).generate(1000);
    for (std::size_t i = 0; i < 1000; ++i)
    {
        ASSERT_NEAR(scaled[i], 5.0f + 0.25f * plain[i], 1e-5f);
        ASSERT_NEAR(wide[i], 10.0f + 2.0f * unit[i], 1e-5f);
    }
    EXPECT_EQ(Generator(true, 2.0f, 0.0f, 3).generate(5), std::vector<float>(5, 2.0f));
    EXPECT_EQ(Generator(false, 2.0f, 2.0f, 3).generate(5), std::vector<float>(5, 2.0f));
}

TEST_P(RandomKernel, RefusesNullAndEmpty)
{
    EXPECT_EQ(ippsRandGaussGetSize_32f(nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippsRandUniformGetSize_32f(nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippsRandGaussInit_32f(nullptr, 0.0f, 1.0f, 0), ippStsNullPtrErr);
    EXPECT_EQ(ippsRandUniformInit_32f(nullptr, 0.0f, 1.0f, 0), ippStsNullPtrErr);
    float dst = 7.0f;
    EXPECT_EQ(ippsRandGauss_32f(&dst, 1, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippsRandUniform_32f(&dst, 1, nullptr), ippStsNullPtrErr);
    for (const bool isGaussian : {true, false})
    {
        Generator generator(isGaussian, 0.0f, 1.0f, 1);
        EXPECT_EQ(generator.generate(nullptr, 1), ippStsNullPtrErr);
        EXPECT_EQ(generator.generate(&dst, 0), ippStsSizeErr);
        EXPECT_EQ(dst, 7.0f);
    }
}

} // namespace
} // namespace vesk::audio
