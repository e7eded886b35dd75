#include "tests/core/KernelFixture.h"

#include <complex>
#include <map>
#include <numbers>

namespace vesk::audio
{
namespace
{

using test::makeNoise;
using test::refusesNulls;
using Complex = std::complex<float>;
using Exact = std::complex<double>;
using Samples = std::vector<float>;

/** A transform of real or complex points with its memory, all of it one byte off any alignment. */
class Transform
{
public:
    Transform(int order, bool isReal) : length(std::size_t{1} << order)
    {
        int specBytes = 0, initBytes = 0, workBytes = 0;
        EXPECT_EQ((isReal ? ippsFFTGetSize_R_32f : ippsFFTGetSize_C_32fc)(order, ippFftNoScaling, ippHintFast,
                                                                          &specBytes, &initBytes, &workBytes),
                  ippStsNoErr);
        specMemory.resize(std::size_t(specBytes) + 1);
        workMemory.resize(std::size_t(workBytes) + 1);
        EXPECT_EQ((isReal ? ippsFFTInit_R_32f : ippsFFTInit_C_32fc)(
                      &spec, order, ippFftNoScaling, ippHintFast, specMemory.data() + 1, nullptr),
                  ippStsNoErr);
    }

    std::uint8_t* getWork() { return workMemory.data() + 1; }

    void forward(const float* signal, Complex* bins)
    {
        EXPECT_EQ(ippsFFTFwd_RToCCS_32f(signal, bins, spec, getWork()), ippStsNoErr);
    }

    void inverse(const Complex* bins, float* signal)
    {
        EXPECT_EQ(ippsFFTInv_CCSToR_32f(bins, signal, spec, getWork()), ippStsNoErr);
    }

    void run(const float* re, const float* im, float* dstRe, float* dstIm)
    {
        EXPECT_EQ(ippsFFTFwd_CToC_32f(re, im, dstRe, dstIm, spec, getWork()), ippStsNoErr);
    }

    const std::size_t length;
    std::vector<std::uint8_t> specMemory, workMemory;
    FftSpec* spec = nullptr;
};

/** X[k] = sum over i < n of x[i stride] exp(-2 pi j k i / n), from the transforms of the even and the odd i. */
std::vector<Exact> transformExactly(const Exact* x, std::size_t n, std::size_t stride = 1)
{
    if (n == 1)
        return {*x};
    const std::size_t half = n / 2;
    const auto even = transformExactly(x, half, 2 * stride);
    const auto odd = transformExactly(x + stride, half, 2 * stride);
    std::vector<Exact> result(n);
    for (std::size_t k = 0; k < half; ++k)
    {
        const auto turned =
            std::polar(1.0, -std::numbers::pi * static_cast<double>(k) / static_cast<double>(half)) * odd[k];
        result[k] = even[k] + turned;
        result[k + half] = even[k] - turned;
    }
    return result;
}

/** Limits the root mean square of the differences, and the largest one, both relative to the root mean square of
    what is expected. */
template <typename Actual, typename Expected>
void expectNear(const Actual& actual, const Expected& expected, const char* what)
{
    double energy = 0.0, largest = 0.0, reference = 0.0;
    for (std::size_t i = 0; i < expected.size(); ++i)
    {
        const double difference = std::norm(Exact(actual[i]) - Exact(expected[i]));
        energy += difference;
        largest = std::max(largest, difference);
        reference += std::norm(Exact(expected[i]));
    }
    EXPECT_LT(std::sqrt(energy / reference), 3e-7) << what;
    EXPECT_LT(std::sqrt(largest * static_cast<double>(expected.size()) / reference), 2e-6) << what;
}

class TransformKernel : public test::KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(TransformKernel);

TEST_P(TransformKernel, EqualsOneInDoublePrecisionOnAnyAlignmentAndInPlace)
{
    for (int order = 0; order <= 20; ++order)
    {
        SCOPED_TRACE(testing::Message() << "order " << order);
        Transform real(order, true), complex(order, false);
        const auto n = real.length;
        const Samples re = makeNoise(static_cast<int>(n), 1), im = makeNoise(static_cast<int>(n), 2);
        std::vector<Exact> points;
        for (std::size_t i = 0; i < n; ++i)
            points.emplace_back(re[i], im[i]);
        static std::map<int, std::vector<Exact>> spectra; // one computation for all instruction sets
        auto& exact = spectra[order];
        if (exact.empty())
            exact = transformExactly(points.data(), n);

        Samples spectrumRe = re, spectrumIm = im; // in place
        complex.run(spectrumRe.data(), spectrumIm.data(), spectrumRe.data(), spectrumIm.data());
        std::vector<Complex> spectrum;
        for (std::size_t k = 0; k < n; ++k)
            spectrum.emplace_back(spectrumRe[k], spectrumIm[k]);
        expectNear(spectrum, exact, "complex");

        // The real parts' share of the complex spectrum is what mirrors into its conjugate.
        std::vector<Exact> exactBins;
        for (std::size_t k = 0; k <= n / 2; ++k)
            exactBins.push_back(0.5 * (exact[k] + std::conj(exact[(n - k) % n])));
        for (const bool inPlace : {false, true})
        {
            SCOPED_TRACE(testing::Message() << "in place " << inPlace);
            constexpr float guard = 12345.0f;
            const auto offset = static_cast<std::size_t>(order % 4);
            Samples memory(offset + n + 3, guard), separate = memory;
            auto* samples = memory.data() + offset;
            auto* bins = reinterpret_cast<Complex*>((inPlace ? memory : separate).data() + offset);
            std::copy(re.begin(), re.end(), samples);
            real.forward(samples, bins);
            expectNear(std::span(bins, n / 2 + 1), exactBins, "real");
            EXPECT_EQ(bins[0].imag(), 0.0f);
            EXPECT_EQ(bins[n / 2].imag(), 0.0f);

            // Forward and back is n times the input, whatever the first and the last imaginary part say.
            bins[0].imag(5.0f);
            bins[n / 2].imag(-7.0f);
            real.inverse(bins, samples);
            for (std::size_t i = 0; i < n; ++i)
                samples[i] /= static_cast<float>(n);
            expectNear(std::span(samples, n), re, "inverse");
            EXPECT_EQ(memory.back() + separate.back(), 2.0f * guard);
        }
    }
}

/** y[i] += gain sum over k of h[k] x[i - k], indices modulo the length. */
void addCircularConvolution(const Samples& x, const Samples& h, double gain, std::vector<double>& y)
{
    for (std::size_t i = 0; i < y.size(); ++i)
        for (std::size_t k = 0; k < y.size(); ++k)
            y[i] += gain * double(h[k]) * double(x[(i + y.size() - k) % y.size()]);
}

TEST_P(TransformKernel, FiltersTwoSignalsAsFourCircularConvolutionsDo)
{
    for (int order = 1; order <= 9; ++order)
    {
        Transform transform(order, false);
        const auto n = transform.length;
        const auto length = static_cast<int>(n);
        const int half = length / 2;
        using Separated = std::vector<float, PoolAllocator<float>>; // aligned
        const auto separate = [&](const Samples& left, const Samples& right)
        {
            Samples re(n + 1), im(n + 1);
            transform.run(left.data(), right.data(), re.data(), im.data());
            re[n] = re[0];
            im[n] = im[0];
            Separated separated(static_cast<std::size_t>(getSeparatedLength(half)));
            EXPECT_EQ(separateStereoSpectrum_32f({re.data(), im.data()}, separated.data(), half),
                      ippStsNoErr);
            return separated;
        };

        const Samples left = makeNoise(length, 1), right = makeNoise(length, 2);
        const Samples leftToLeft = makeNoise(length, 3), rightToLeft = makeNoise(length, 4);
        const Samples leftToRight = makeNoise(length, 5), rightToRight = makeNoise(length, 6);
        const auto source = separate(left, right);
        const auto toLeft = separate(leftToLeft, rightToLeft);
        const auto toRight = separate(leftToRight, rightToRight);
        const auto own = separate(leftToLeft, rightToRight);

        // Crossed, then with the channelwise product added: the own paths count twice more.
        Samples productRe(n + 1), productIm(n + 1);
        const StereoSpectrum<float> product{productRe.data(), productIm.data()};
        const StereoTerm crossed[] = {{source.data(), toLeft.data(), toRight.data()}};
        const StereoTerm channelwise[] = {{source.data(), own.data()}, {source.data(), own.data()}};
        ASSERT_EQ(filterStereoSpectra_32f(crossed, product, half, false), ippStsNoErr);
        ASSERT_EQ(filterStereoSpectra_32f(channelwise, product, half, true), ippStsNoErr);

        // The inverse has real and imaginary parts exchanged; each separation doubles.
        Samples outLeft(n), outRight(n);
        transform.run(productIm.data(), productRe.data(), outRight.data(), outLeft.data());
        std::vector<double> expectedLeft(n), expectedRight(n);
        const double scale = 4.0 * static_cast<double>(n);
        addCircularConvolution(left, leftToLeft, 3.0, expectedLeft);
        addCircularConvolution(right, rightToLeft, 1.0, expectedLeft);
        addCircularConvolution(right, rightToRight, 3.0, expectedRight);
        addCircularConvolution(left, leftToRight, 1.0, expectedRight);
        for (std::size_t i = 0; i < n; ++i)
        {
            ASSERT_NEAR(double(outLeft[i]) / scale, expectedLeft[i], 2e-5) << "length " << n;
            ASSERT_NEAR(double(outRight[i]) / scale, expectedRight[i], 2e-5) << "length " << n;
        }
    }
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
        EXPECT_TRUE(
            refusesNulls(getSize, 5, ippFftNoScaling, ippHintFast, &specBytes, &initBytes, &workBytes));
    }

    Transform real(4, true), complex(4, false);
    float samples[18] = {};
    Complex bins[9];
    auto* work = real.getWork();
    EXPECT_TRUE(refusesNulls(ippsFFTInit_R_32f, &real.spec, 4, ippFftNoScaling, ippHintFast,
                             real.specMemory.data(), nullptr));
    EXPECT_TRUE(refusesNulls(ippsFFTFwd_RToCCS_32f, samples, bins, real.spec, work));
    EXPECT_TRUE(refusesNulls(ippsFFTInv_CCSToR_32f, bins, samples, real.spec, work));
    EXPECT_TRUE(refusesNulls(ippsFFTFwd_CToC_32f, samples, samples, samples, samples, complex.spec,
                             complex.getWork()));
    EXPECT_EQ(ippsFFTFwd_RToCCS_32f(samples, bins, complex.spec, work), ippStsContextMatchErr);
    EXPECT_EQ(ippsFFTInv_CCSToR_32f(bins, samples, complex.spec, work), ippStsContextMatchErr);
    EXPECT_EQ(ippsFFTFwd_CToC_32f(samples, samples, samples, samples, real.spec, work),
              ippStsContextMatchErr);

    const StereoSpectrum<float> spectrum{samples, samples};
    const StereoTerm incomplete[] = {{samples, nullptr}};
    const StereoTerm mixed[] = {{samples, samples}, {samples, samples, samples}};
    EXPECT_EQ(filterStereoSpectra_32f(incomplete, spectrum, 16, false), ippStsNullPtrErr);
    EXPECT_EQ(filterStereoSpectra_32f(mixed, spectrum, 16, false), ippStsNullPtrErr);
    EXPECT_EQ(filterStereoSpectra_32f({}, spectrum, 16, false), ippStsSizeErr);
    EXPECT_EQ(separateStereoSpectrum_32f({samples, nullptr}, samples, 16), ippStsNullPtrErr);
    EXPECT_EQ(filterStereoSpectra_32f(std::span(mixed).first(1), spectrum, 0, false), ippStsSizeErr);
    EXPECT_EQ(separateStereoSpectrum_32f({samples, samples}, samples, 0), ippStsSizeErr);
}

} // namespace
} // namespace vesk::audio
