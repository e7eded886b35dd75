#include "tests/core/KernelFixture.h"

#include <complex>

namespace vesk::audio
{
namespace
{

using test::makeNoise;
using Complex = std::complex<float>;
using Samples = std::vector<float>;

/** y[i] += sum over k of h[k] x[i - k], indices modulo the length. */
void addCircularConvolution(const Samples& x, const Samples& h, std::vector<double>& y)
{
    for (std::size_t i = 0; i < y.size(); ++i)
        for (std::size_t k = 0; k < y.size(); ++k)
            y[i] += double(h[k]) * double(x[(i + y.size() - k) % y.size()]);
}

/** Two real signals by one complex transform, all memory off any alignment. */
class StereoTransform
{
public:
    explicit StereoTransform(int order) : length(std::size_t{1} << order)
    {
        int specBytes = 0, initBytes = 0, workBytes = 0;
        EXPECT_EQ(
            ippsFFTGetSize_C_32fc(order, ippFftNoScaling, ippHintFast, &specBytes, &initBytes, &workBytes),
            ippStsNoErr);
        specMemory.resize(std::size_t(specBytes) + 1);
        work.resize(std::size_t(workBytes) + 1);
        EXPECT_EQ(
            ippsFFTInit_C_32fc(&spec, order, ippFftNoScaling, ippHintFast, specMemory.data() + 1, nullptr),
            ippStsNoErr);
    }

    void run(const float* re, const float* im, float* dstRe, float* dstIm)
    {
        EXPECT_EQ(ippsFFTFwd_CToC_32f(re, im, dstRe, dstIm, spec, work.data() + 1), ippStsNoErr);
    }

    /** Half a spectrum of one real signal, by way of a silent partner. */
    std::vector<Complex> getHalf(const Samples& signal)
    {
        Samples re = signal, im(length);
        run(re.data(), im.data(), re.data(), im.data());
        std::vector<Complex> bins;
        for (std::size_t k = 0; k <= length / 2; ++k)
            bins.emplace_back(re[k], im[k]);
        return bins;
    }

    std::size_t length;
    std::vector<std::uint8_t> specMemory, work;
    FftSpec* spec = nullptr;
};

class StereoSpectrumKernel : public test::KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(StereoSpectrumKernel);

TEST_P(StereoSpectrumKernel, FiltersTwoSignalsAsFourCircularConvolutionsDo)
{
    for (int order = 1; order <= 9; ++order)
    {
        StereoTransform transform(order);
        const auto n = transform.length;
        const auto length = static_cast<int>(n);
        const Samples left = makeNoise(length, 1), right = makeNoise(length, 2);
        const Samples ll = makeNoise(length, 3), rr = makeNoise(length, 4);
        const Samples rl = makeNoise(length, 5), lr = makeNoise(length, 6);
        const auto llBins = transform.getHalf(ll), rrBins = transform.getHalf(rr);
        const auto rlBins = transform.getHalf(rl), lrBins = transform.getHalf(lr);

        Samples re(n + 1), im(n + 1);
        transform.run(left.data(), right.data(), re.data(), im.data());
        re[n] = re[0];
        im[n] = im[0];

        const StereoFilter channelwise{.leftToLeft = llBins.data(), .rightToRight = rrBins.data()};
        StereoFilter crossed = channelwise;
        crossed.rightToLeft = rlBins.data();
        crossed.leftToRight = lrBins.data();

        // Crossed, then with the channelwise product added: the own paths count twice.
        Samples productRe(n + 1), productIm(n + 1);
        const StereoSpectrum<float> product{productRe.data(), productIm.data()};
        const StereoSpectrum<const float> source{re.data(), im.data()};
        ASSERT_EQ(filterStereoSpectrum_32f(source, crossed, product, length / 2, false), ippStsNoErr);
        ASSERT_EQ(filterStereoSpectrum_32f(source, channelwise, product, length / 2, true), ippStsNoErr);

        // The inverse has real and imaginary parts exchanged; the product's separation doubles.
        Samples outLeft(n), outRight(n);
        transform.run(productIm.data(), productRe.data(), outRight.data(), outLeft.data());
        std::vector<double> expectedLeft(n), expectedRight(n);
        addCircularConvolution(left, ll, expectedLeft);
        addCircularConvolution(left, ll, expectedLeft);
        addCircularConvolution(right, rl, expectedLeft);
        addCircularConvolution(right, rr, expectedRight);
        addCircularConvolution(right, rr, expectedRight);
        addCircularConvolution(left, lr, expectedRight);
        const double scale = 0.5 / static_cast<double>(n);
        for (std::size_t i = 0; i < n; ++i)
        {
            ASSERT_NEAR(scale * double(outLeft[i]), expectedLeft[i], 2e-5) << "length " << n;
            ASSERT_NEAR(scale * double(outRight[i]), expectedRight[i], 2e-5) << "length " << n;
        }
    }
}

TEST_P(StereoSpectrumKernel, RefusesWhatItCannotUse)
{
    StereoTransform transform(4);
    Samples memory(17);
    const Complex bins[9] = {};
    float* p = memory.data();
    int specBytes = 0, initBytes = 0, workBytes = 0;
    EXPECT_EQ(ippsFFTGetSize_R_32f(4, ippFftNoScaling, ippHintFast, &specBytes, &initBytes, &workBytes),
              ippStsNoErr);
    std::vector<std::uint8_t> realMemory(static_cast<std::size_t>(specBytes));
    FftSpec* real = nullptr;
    EXPECT_EQ(ippsFFTInit_R_32f(&real, 4, ippFftNoScaling, ippHintFast, realMemory.data(), nullptr),
              ippStsNoErr);
    EXPECT_EQ(ippsFFTFwd_CToC_32f(p, p, p, p, real, transform.work.data()), ippStsContextMatchErr);
    EXPECT_EQ(ippsFFTFwd_CToC_32f(p, nullptr, p, p, transform.spec, transform.work.data()), ippStsNullPtrErr);
    EXPECT_EQ(
        filterStereoSpectrum_32f({p, p}, {.leftToLeft = bins, .rightToRight = nullptr}, {p, p}, 8, false),
        ippStsNullPtrErr);
    EXPECT_EQ(filterStereoSpectrum_32f({p, p}, {.leftToLeft = bins, .rightToRight = bins}, {p, p}, 0, false),
              ippStsSizeErr);
}

} // namespace
} // namespace vesk::audio
