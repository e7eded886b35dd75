#include "tests/core/KernelFixture.h"

#include <complex>
#include <numbers>

namespace vesk::audio
{
namespace
{

using test::makeNoise;
using Complex = std::complex<float>;
using WideComplex = std::complex<double>;

constexpr double pi = std::numbers::pi;
constexpr int largestTestedOrder = 20;

/** A real transform with its memory, all of it one byte off any alignment. */
class RealTransform
{
public:
    explicit RealTransform(int order) : length(std::size_t{1} << order)
    {
        int specBytes = 0, initBytes = 0, workBytes = 0;
        EXPECT_EQ(
            ippsFFTGetSize_R_32f(order, ippFftNoScaling, ippHintFast, &specBytes, &initBytes, &workBytes),
            ippStsNoErr);
        specMemory.resize(std::size_t(specBytes) + 1);
        initBuffer.resize(std::size_t(initBytes) + 1);
        work.resize(std::size_t(workBytes) + 1);
        EXPECT_EQ(ippsFFTInit_R_32f(&spec, order, ippFftNoScaling, ippHintFast, specMemory.data() + 1,
                                    initBuffer.data() + 1),
                  ippStsNoErr);
    }

    std::vector<Complex> forward(const std::vector<float>& signal)
    {
        std::vector<Complex> bins(length / 2 + 1);
        EXPECT_EQ(ippsFFTFwd_RToCCS_32f(signal.data(), bins.data(), spec, work.data() + 1), ippStsNoErr);
        return bins;
    }

    std::vector<float> inverse(const std::vector<Complex>& bins)
    {
        std::vector<float> signal(length);
        EXPECT_EQ(ippsFFTInv_CCSToR_32f(bins.data(), signal.data(), spec, work.data() + 1), ippStsNoErr);
        return signal;
    }

    std::size_t length;
    std::vector<std::uint8_t> specMemory, initBuffer, work;
    FftSpec* spec = nullptr;
};

/** Root mean square of the difference, relative to that of the reference. */
template <typename Actual, typename Expected>
double getRelativeError(const Actual& actual, const Expected& expected)
{
    double error = 0.0, reference = 0.0;
    for (std::size_t i = 0; i < expected.size(); ++i)
    {
        error += std::norm(WideComplex(actual[i]) - WideComplex(expected[i]));
        reference += std::norm(WideComplex(expected[i]));
    }
    return std::sqrt(error / reference);
}

/** exp(-2 pi j k n / length), with the product taken modulo length before it becomes an angle. */
WideComplex getRotation(std::size_t k, std::size_t n, std::size_t length)
{
    return std::polar(1.0, -2.0 * pi * static_cast<double>(k * n % length) / static_cast<double>(length));
}

class TransformKernel : public test::KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(TransformKernel);

TEST_P(TransformKernel, EqualsTheDefinitionForSmallLengths)
{
    for (int order = 1; order <= 10; ++order)
    {
        RealTransform transform(order);
        const auto n = transform.length;
        const auto signal = makeNoise(static_cast<int>(n), unsigned(order));
        std::vector<WideComplex> expected(n / 2 + 1);
        for (std::size_t k = 0; k <= n / 2; ++k)
            for (std::size_t i = 0; i < n; ++i)
                expected[k] += double(signal[i]) * getRotation(k, i, n);

        const auto bins = transform.forward(signal);
        EXPECT_LT(getRelativeError(bins, expected), 3e-7) << "order " << order;
        EXPECT_EQ(bins.front().imag(), 0.0f) << "order " << order;
        EXPECT_EQ(bins.back().imag(), 0.0f) << "order " << order;

        // The inverse, from a spectrum of its own: noise whose first and last imaginary parts must not count.
        const auto noise = makeNoise(static_cast<int>(n + 2), unsigned(order) + 100);
        std::vector<Complex> spectrum;
        for (std::size_t k = 0; k <= n / 2; ++k)
            spectrum.emplace_back(noise[2 * k], noise[2 * k + 1]);
        std::vector<double> samples(n);
        for (std::size_t i = 0; i < n; ++i)
            for (std::size_t k = 0; k <= n / 2; ++k)
            {
                const bool isReal = k == 0 || k == n / 2;
                const WideComplex bin =
                    isReal ? WideComplex(double(spectrum[k].real())) : WideComplex(spectrum[k]);
                samples[i] += (isReal ? 1.0 : 2.0) * (bin * std::conj(getRotation(k, i, n))).real();
            }
        EXPECT_LT(getRelativeError(transform.inverse(spectrum), samples), 3e-7) << "order " << order;
    }
}

TEST_P(TransformKernel, HasTheExactPropertiesAtEveryOrder)
{
    for (int order = 1; order <= largestTestedOrder; ++order)
    {
        SCOPED_TRACE(testing::Message() << "order " << order);
        RealTransform transform(order);
        const auto n = transform.length;
        const auto limit = 1e-7 * (2.0 + order);

        const auto signal = makeNoise(static_cast<int>(n), 1), other = makeNoise(static_cast<int>(n), 2);
        const auto bins = transform.forward(signal), otherBins = transform.forward(other);

        // Forward and back is n times the input.
        auto back = transform.inverse(bins);
        for (auto& sample : back)
            sample /= static_cast<float>(n);
        EXPECT_LT(getRelativeError(back, signal), limit) << "round trip";

        // Parseval.
        double timeEnergy = 0.0, binEnergy = -0.5 * std::norm(WideComplex(bins.front()));
        binEnergy -= 0.5 * std::norm(WideComplex(bins.back()));
        for (const auto sample : signal)
            timeEnergy += double(sample) * double(sample);
        for (const auto bin : bins)
            binEnergy += std::norm(WideComplex(bin));
        EXPECT_NEAR(2.0 * binEnergy / static_cast<double>(n) / timeEnergy, 1.0, limit) << "Parseval";

        // Linearity.
        std::vector<float> mixed(n);
        for (std::size_t i = 0; i < n; ++i)
            mixed[i] = 2.0f * signal[i] - 0.5f * other[i];
        std::vector<WideComplex> mixedBins;
        for (std::size_t k = 0; k < bins.size(); ++k)
            mixedBins.push_back(2.0 * WideComplex(bins[k]) - 0.5 * WideComplex(otherBins[k]));
        EXPECT_LT(getRelativeError(transform.forward(mixed), mixedBins), limit) << "linearity";

        // An impulse gives a rotation of constant magnitude, sample by sample and bin by bin.
        for (const std::size_t at : {std::size_t{0}, std::size_t{1}, n / 3, n - 1})
        {
            std::vector<float> impulse(n);
            impulse[at] = 1.0f;
            double largest = 0.0;
            const auto rotation = transform.forward(impulse);
            for (std::size_t k = 0; k < rotation.size(); ++k)
                largest = std::max(largest, std::abs(WideComplex(rotation[k]) - getRotation(k, at, n)));
            EXPECT_LT(largest, 10 * limit) << "impulse at " << at;
        }

        // A sinusoid on a bin fills that bin alone.
        for (const std::size_t bin : {std::size_t{0}, std::size_t{1}, n / 4 + n / 8, n / 2})
        {
            std::vector<float> sinusoid(n);
            std::vector<WideComplex> expected(n / 2 + 1);
            const double phase = bin == 0 || bin == n / 2 ? 0.0 : 0.7;
            for (std::size_t i = 0; i < n; ++i)
                sinusoid[i] =
                    static_cast<float>((std::conj(getRotation(bin, i, n)) * std::polar(1.0, phase)).real());
            expected[bin] =
                std::polar(static_cast<double>(n) * (bin == 0 || bin == n / 2 ? 1.0 : 0.5), phase);
            EXPECT_LT(getRelativeError(transform.forward(sinusoid), expected), limit) << "bin " << bin;
        }
    }
}

TEST_P(TransformKernel, WorksInPlaceAndOnAnyAlignment)
{
    for (int order = 1; order <= 16; ++order)
        for (const std::size_t offset : {0u, 1u, 3u})
        {
            RealTransform transform(order);
            const auto n = transform.length;
            const auto signal = makeNoise(static_cast<int>(n), 3);
            const auto bins = transform.forward(signal);
            const auto back = transform.inverse(bins);

            constexpr float guard = 12345.0f;
            std::vector<float> memory(offset + n + 2 + 1, guard);
            auto* samples = memory.data() + offset;
            auto* complexes = reinterpret_cast<Complex*>(samples);
            std::copy(signal.begin(), signal.end(), samples);
            ASSERT_EQ(ippsFFTFwd_RToCCS_32f(samples, complexes, transform.spec, transform.work.data() + 1),
                      ippStsNoErr);
            EXPECT_LT(getRelativeError(std::span(complexes, n / 2 + 1), bins), 1e-7) << order;
            ASSERT_EQ(ippsFFTInv_CCSToR_32f(complexes, samples, transform.spec, transform.work.data() + 1),
                      ippStsNoErr);
            EXPECT_LT(getRelativeError(std::span(samples, n), back), 2e-7) << order;
            EXPECT_EQ(memory.back(), guard);
        }
}

TEST_P(TransformKernel, OneSpecificationServesManyCallsWithoutWearing)
{
    RealTransform transform(9);
    const auto signal = makeNoise(512, 4);
    const auto first = transform.forward(signal);
    transform.inverse(transform.forward(makeNoise(512, 5)));
    EXPECT_EQ(transform.forward(signal), first);
}

TEST_P(TransformKernel, RefusesWhatItCannotDo)
{
    int specBytes = 0, initBytes = 0, workBytes = 0;
    for (const auto getSize : {ippsFFTGetSize_R_32f, ippsFFTGetSize_C_32fc})
    {
        for (const int order : {-1, ippMaxFftOrder + 1, 1000})
            EXPECT_EQ(getSize(order, ippFftNoScaling, ippHintFast, &specBytes, &initBytes, &workBytes),
                      ippStsFftOrderErr);
        EXPECT_EQ(getSize(5, 3, ippHintFast, &specBytes, &initBytes, &workBytes), ippStsFftFlagErr);
        EXPECT_EQ(getSize(5, ippFftNoScaling, ippHintFast, nullptr, &initBytes, &workBytes),
                  ippStsNullPtrErr);
        EXPECT_EQ(getSize(5, ippFftNoScaling, ippHintFast, &specBytes, nullptr, &workBytes),
                  ippStsNullPtrErr);
        EXPECT_EQ(getSize(5, ippFftNoScaling, ippHintFast, &specBytes, &initBytes, nullptr),
                  ippStsNullPtrErr);
        EXPECT_EQ(getSize(5, ippFftNoScaling, ippHintFast, &specBytes, &initBytes, &workBytes), ippStsNoErr);
    }

    RealTransform transform(4);
    float signal[18] = {};
    Complex bins[9];
    auto* work = transform.work.data();
    EXPECT_EQ(ippsFFTFwd_RToCCS_32f(nullptr, bins, transform.spec, work), ippStsNullPtrErr);
    EXPECT_EQ(ippsFFTFwd_RToCCS_32f(signal, nullptr, transform.spec, work), ippStsNullPtrErr);
    EXPECT_EQ(ippsFFTFwd_RToCCS_32f(signal, bins, nullptr, work), ippStsNullPtrErr);
    EXPECT_EQ(ippsFFTInv_CCSToR_32f(nullptr, signal, transform.spec, work), ippStsNullPtrErr);
    EXPECT_EQ(ippsFFTInv_CCSToR_32f(bins, nullptr, transform.spec, work), ippStsNullPtrErr);
    EXPECT_EQ(ippsFFTInv_CCSToR_32f(bins, signal, nullptr, work), ippStsNullPtrErr);

    FftSpec* spec = nullptr;
    EXPECT_EQ(ippsFFTInit_R_32f(&spec, 4, ippFftNoScaling, ippHintFast, nullptr, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(
        ippsFFTInit_R_32f(nullptr, 4, ippFftNoScaling, ippHintFast, transform.specMemory.data(), nullptr),
        ippStsNullPtrErr);

    // A specification of a complex transform does not fit the real one.
    ASSERT_EQ(ippsFFTGetSize_C_32fc(4, ippFftNoScaling, ippHintFast, &specBytes, &initBytes, &workBytes),
              ippStsNoErr);
    std::vector<std::uint8_t> memory(static_cast<std::size_t>(specBytes));
    ASSERT_EQ(ippsFFTInit_C_32fc(&spec, 4, ippFftNoScaling, ippHintFast, memory.data(), nullptr),
              ippStsNoErr);
    ASSERT_NE(spec, nullptr);
    EXPECT_EQ(ippsFFTFwd_RToCCS_32f(signal, bins, spec, work), ippStsContextMatchErr);
    EXPECT_EQ(ippsFFTInv_CCSToR_32f(bins, signal, spec, work), ippStsContextMatchErr);
}

} // namespace
} // namespace vesk::audio
