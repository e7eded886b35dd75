#include "tests/core/KernelFixture.h"

#include <array>
#include <bit>
#include <complex>
#include <functional>
#include <limits>
#include <numbers>
#include <stdexcept>

namespace vesk::audio
{
namespace
{

using test::makeNoise;
using test::sweptLengths;
using Complex = std::complex<float>;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr double epsilon = std::numeric_limits<float>::epsilon();

class Kernels : public test::KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(Kernels);

//==============================================================================
// One table for all kernels of the shape dst[i] = f(a[i], b[i]). Complex elements are two floats.

const Complex* asComplex(const float* p) { return reinterpret_cast<const Complex*>(p); }
Complex* asComplex(float* p) { return reinterpret_cast<Complex*>(p); }

struct ElementwiseKernel
{
    const char* name;
    int widthA, widthB, widthDst; ///< floats for each element; width 0: the argument does not exist
    double tolerance;             ///< absolute, for inputs within -2 and 2
    std::function<IppStatus(const float* a, const float* b, float* dst, int n)> run;

    /** One element; dst holds what was there before. */
    std::function<void(const double* a, const double* b, double* dst)> reference;
};

const ElementwiseKernel elementwiseKernels[] = {
    {"Zero", 0, 0, 1, 0.0, [](auto, auto, float* dst, int n) { return ippsZero_32f(dst, n); },
     [](auto, auto, double* dst) { dst[0] = 0.0; }},
    {"Set", 0, 0, 1, 0.0, [](auto, auto, float* dst, int n) { return ippsSet_32f(0.75f, dst, n); },
     [](auto, auto, double* dst) { dst[0] = 0.75; }},
    {"Copy", 1, 0, 1, 0.0,
     [](const float* a, auto, float* dst, int n)
     {
         return ippsCopy_8u(reinterpret_cast<const std::uint8_t*>(a), reinterpret_cast<std::uint8_t*>(dst),
                            4 * n);
     },
     [](const double* a, auto, double* dst) { dst[0] = a[0]; }},
    {"Add", 1, 1, 1, 4 * epsilon, ippsAdd_32f,
     [](const double* a, const double* b, double* dst) { dst[0] = a[0] + b[0]; }},
    {"Sub", 1, 1, 1, 4 * epsilon, ippsSub_32f,
     [](const double* a, const double* b, double* dst) { dst[0] = b[0] - a[0]; }},
    {"Mul", 1, 1, 1, 4 * epsilon, ippsMul_32f,
     [](const double* a, const double* b, double* dst) { dst[0] = a[0] * b[0]; }},
    {"MulC", 1, 0, 1, 4 * epsilon,
     [](const float* a, auto, float* dst, int n) { return ippsMulC_32f(a, 0.7f, dst, n); },
     [](const double* a, auto, double* dst) { dst[0] = a[0] * double(0.7f); }},
    {"Div", 1, 1, 1, 0.0, // IEEE division is exact to the last bit
     [](const float* a, const float* b, float* dst, int n) { return ippsDiv_32f(a, b, dst, n); },
     [](const double* a, const double* b, double* dst)
     {
         const auto exact = static_cast<float>(b[0] / a[0]);
         dst[0] = double(exact);
     }},
    {"copyBounded", 1, 0, 1, 0.0,
     [](const float* a, auto, float* dst, int n) { return copyBounded(a, 1.25f, dst, n); },
     [](const double* a, auto, double* dst) { dst[0] = std::abs(a[0]) <= 1.25 ? a[0] : 0.0; }},
    {"Threshold", 1, 0, 1, 0.0,
     [](const float* a, auto, float* dst, int n)
     { return ippsThreshold_LTValGTVal_32f(a, dst, n, -0.5f, -8.0f, 0.25f, 9.0f); },
     [](const double* a, auto, double* dst) { dst[0] = a[0] < -0.5   ? -8.0
                                                       : a[0] > 0.25 ? 9.0
                                                                     : a[0]; }},
    {"Mul_32fc", 2, 2, 2, 8 * epsilon,
     [](const float* a, const float* b, float* dst, int n)
     { return ippsMul_32fc(asComplex(a), asComplex(b), asComplex(dst), n); },
     [](const double* a, const double* b, double* dst)
     {
         const double re = a[0] * b[0] - a[1] * b[1];
         dst[1] = a[0] * b[1] + a[1] * b[0];
         dst[0] = re;
     }},
    {"AddProduct_32fc", 2, 2, 2, 12 * epsilon,
     [](const float* a, const float* b, float* dst, int n)
     { return ippsAddProduct_32fc(asComplex(a), asComplex(b), asComplex(dst), n); },
     [](const double* a, const double* b, double* dst)
     {
         const double re = dst[0] + a[0] * b[0] - a[1] * b[1];
         dst[1] += a[0] * b[1] + a[1] * b[0];
         dst[0] = re;
     }},
    {"PolarToCart_32fc", 1, 1, 2, 4 * epsilon,
     [](const float* a, const float* b, float* dst, int n)
     { return ippsPolarToCart_32fc(a, b, asComplex(dst), n); },
     [](const double* a, const double* b, double* dst)
     {
         dst[0] = a[0] * std::cos(b[0]);
         dst[1] = a[0] * std::sin(b[0]);
     }},
    {"Phase_32fc", 2, 0, 1, 8 * epsilon,
     [](const float* a, auto, float* dst, int n) { return ippsPhase_32fc(asComplex(a), dst, n); },
     [](const double* a, auto, double* dst) { dst[0] = std::atan2(a[1], a[0]); }},
    {"RealToCplx", 1, 1, 2, 0.0,
     [](const float* a, const float* b, float* dst, int n)
     { return ippsRealToCplx_32f(a, b, asComplex(dst), n); },
     [](const double* a, const double* b, double* dst)
     {
         dst[0] = a[0];
         dst[1] = b[0];
     }},
    {"RealToCplx of a real", 1, 0, 2, 0.0,
     [](const float* a, auto, float* dst, int n)
     { return ippsRealToCplx_32f(a, nullptr, asComplex(dst), n); },
     [](const double* a, auto, double* dst)
     {
         dst[0] = a[0];
         dst[1] = 0.0;
     }},
};

enum class Aliasing
{
    none,
    dstIsA,
    dstIsB,
    allTheSame
};

/** Runs one kernel at one length, misalignment and aliasing against its reference. The sources end where
    their memory ends, so that AddressSanitizer sees a read too far; the destination has guards. */
void expectKernelMatches(const ElementwiseKernel& kernel, int n, std::size_t offset, Aliasing aliasing)
{
    constexpr std::size_t guardLength = 19;
    constexpr float guard = 12345.0f;
    const auto count = static_cast<std::size_t>(n);
    const auto widths =
        std::array{std::size_t(kernel.widthA), std::size_t(kernel.widthB), std::size_t(kernel.widthDst)};
    const auto makeSource = [&](std::size_t width, std::size_t shift, unsigned seed)
    { return makeNoise(static_cast<int>(shift + width * count), seed, -2.0f, 2.0f); };

    const auto a = makeSource(widths[0], offset, 1), b = makeSource(widths[1], offset / 2, 2);
    const float* pointerA = widths[0] > 0 ? a.data() + offset : nullptr;
    const float* pointerB = widths[1] > 0 ? b.data() + offset / 2 : nullptr;
    const auto before = makeSource(widths[2], 0, 3);
    std::vector<float> dst(2 * guardLength + offset + widths[2] * count, guard);
    float* pointerDst = dst.data() + guardLength + offset;
    const float* initial = aliasing == Aliasing::none     ? before.data()
                           : aliasing == Aliasing::dstIsB ? pointerB
                                                          : pointerA;
    std::copy_n(initial, widths[2] * count, pointerDst);

    std::vector<double> expected(pointerDst, pointerDst + widths[2] * count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const float* second = aliasing == Aliasing::allTheSame ? pointerA : pointerB;
        double elementA[2] = {}, elementB[2] = {};
        for (std::size_t k = 0; k < widths[0]; ++k)
            elementA[k] = double(pointerA[i * widths[0] + k]);
        for (std::size_t k = 0; k < widths[1]; ++k)
            elementB[k] = double(second[i * widths[1] + k]);
        kernel.reference(elementA, elementB, expected.data() + i * widths[2]);
    }

    const bool aIsDst = aliasing == Aliasing::dstIsA || aliasing == Aliasing::allTheSame;
    const bool bIsDst = aliasing == Aliasing::dstIsB || aliasing == Aliasing::allTheSame;
    const auto status =
        kernel.run(aIsDst ? pointerDst : pointerA, bIsDst ? pointerDst : pointerB, pointerDst, n);
    ASSERT_EQ(status, ippStsNoErr);
    for (std::size_t i = 0; i < expected.size(); ++i)
    {
        ASSERT_NEAR(pointerDst[i], expected[i], kernel.tolerance) << "element " << i / widths[2];
    }
    ASSERT_TRUE(std::all_of(dst.data(), pointerDst, [](float v) { return v == guard; }))
        << "written before dst";
    ASSERT_TRUE(std::all_of(pointerDst + expected.size(), dst.data() + dst.size(),
                            [](float v) { return v == guard; }))
        << "written behind dst";
}

TEST_P(Kernels, MatchTheirDefinitionAtAllLengthsAlignmentsAndInPlace)
{
    for (const auto& kernel : elementwiseKernels)
        for (const int n : sweptLengths)
            for (const std::size_t offset : {0u, 1u, 2u, 3u, 5u, 7u})
                for (const auto aliasing :
                     {Aliasing::none, Aliasing::dstIsA, Aliasing::dstIsB, Aliasing::allTheSame})
                {
                    const bool fitsA = kernel.widthA == kernel.widthDst,
                               fitsB = kernel.widthB == kernel.widthDst;
                    if ((aliasing == Aliasing::dstIsA && !fitsA) ||
                        (aliasing == Aliasing::dstIsB && !fitsB) ||
                        (aliasing == Aliasing::allTheSame && !(fitsA && fitsB)))
                        continue;
                    SCOPED_TRACE(testing::Message() << kernel.name << ", length " << n << ", offset "
                                                    << offset << ", aliasing " << static_cast<int>(aliasing));
                    expectKernelMatches(kernel, n, offset, aliasing);
                    if (HasFatalFailure())
                        return;
                }
}

TEST_P(Kernels, RefuseNullArraysAndLengthsBelowOneAndWriteNothing)
{
    const std::vector<float> source(8, 1.0f);
    for (const auto& kernel : elementwiseKernels)
    {
        std::vector<float> dst(8, 7.0f);
        const float* a = kernel.widthA > 0 ? source.data() : nullptr;
        const float* b = kernel.widthB > 0 ? source.data() : nullptr;
        EXPECT_EQ(kernel.run(a, b, nullptr, 4), ippStsNullPtrErr) << kernel.name;
        if (a != nullptr)
        {
            EXPECT_EQ(kernel.run(nullptr, b, dst.data(), 4), ippStsNullPtrErr) << kernel.name;
        }
        const bool mayBeNull = kernel.name == std::string("RealToCplx");
        if (b != nullptr && !mayBeNull)
        {
            EXPECT_EQ(kernel.run(a, nullptr, dst.data(), 4), ippStsNullPtrErr) << kernel.name;
        }
        for (const int n : {0, -1, std::numeric_limits<int>::min() / 4})
            EXPECT_EQ(kernel.run(a, b, dst.data(), n), ippStsSizeErr) << kernel.name;
        EXPECT_EQ(dst, std::vector<float>(8, 7.0f)) << kernel.name;
    }

    double wide[1] = {7.0};
    float narrow[1] = {7.0f};
    EXPECT_EQ(ippsSet_64f(1.0, nullptr, 1), ippStsNullPtrErr);
    EXPECT_EQ(ippsSet_64f(1.0, wide, 0), ippStsSizeErr);
    EXPECT_EQ(ippsMax_32f(nullptr, 1, narrow), ippStsNullPtrErr);
    EXPECT_EQ(ippsMax_32f(source.data(), 1, nullptr), ippStsNullPtrErr);
    EXPECT_EQ(ippsMax_32f(source.data(), 0, narrow), ippStsSizeErr);
    EXPECT_EQ(ippsConvert_32f64f(nullptr, wide, 1), ippStsNullPtrErr);
    EXPECT_EQ(ippsConvert_32f64f(source.data(), wide, 0), ippStsSizeErr);
    EXPECT_EQ(ippsConvert_64f32f(wide, nullptr, 1), ippStsNullPtrErr);
    EXPECT_EQ(ippsConvert_64f32f(wide, narrow, -1), ippStsSizeErr);
    EXPECT_EQ(wide[0] + double(narrow[0]), 14.0);
}

//==============================================================================

TEST_P(Kernels, MulCByOneCopiesAndByZeroZeroes)
{
    constexpr float denormal = std::numeric_limits<float>::denorm_min();
    for (const int n : {1, 5, 40})
    {
        std::vector<float> source, copy(static_cast<std::size_t>(n), 3.0f), zeros = copy;
        for (int i = 0; i < n; ++i)
            source.push_back(
                std::array{notANumber, infinity, -infinity, denormal, -0.0f}[std::size_t(i % 5)]);
        ASSERT_EQ(ippsMulC_32f(source.data(), 1.0f, copy.data(), n), ippStsNoErr);
        for (std::size_t i = 0; i < source.size(); ++i)
            EXPECT_EQ(std::bit_cast<std::uint32_t>(copy[i]), std::bit_cast<std::uint32_t>(source[i]));
        ASSERT_EQ(ippsMulC_32f(source.data(), 0.0f, zeros.data(), n), ippStsNoErr);
        EXPECT_EQ(zeros, std::vector<float>(source.size(), 0.0f));
        ASSERT_EQ(ippsMulC_32f(source.data(), 0.0f, source.data(), n), ippStsNoErr);
        EXPECT_EQ(source, zeros) << "in place";
    }
}

TEST_P(Kernels, CopyBoundedLetsNothingPassThatIsNotFinite)
{
    using Limits = std::numeric_limits<float>;
    const float passing[] = {Limits::max(), Limits::lowest(), Limits::denorm_min(), -Limits::denorm_min(),
                             -0.0f};
    const float stopped[] = {notANumber, -notANumber, Limits::signaling_NaN(), infinity, -infinity};
    for (const int n : {1, 5, 40})
    {
        std::vector<float> source(static_cast<std::size_t>(n)), copy = source;
        for (const bool finite : {true, false})
        {
            for (std::size_t i = 0; i < source.size(); ++i)
                source[i] = (finite ? passing : stopped)[i % 5];
            ASSERT_EQ(copyBounded(source.data(), Limits::max(), copy.data(), n), ippStsNoErr);
            for (std::size_t i = 0; i < source.size(); ++i)
                EXPECT_EQ(std::bit_cast<std::uint32_t>(copy[i]),
                          finite ? std::bit_cast<std::uint32_t>(source[i]) : 0u);
        }
    }
}

TEST_P(Kernels, DivWarnsOfAZeroDivisorWhereverItStands)
{
    for (const int n : {1, 4, 17, 64})
        for (int zeroAt = 0; zeroAt < n; ++zeroAt)
        {
            std::vector<float> divisor(std::size_t(n), 2.0f), dividend(std::size_t(n), -1.0f),
                quotient = divisor;
            divisor[std::size_t(zeroAt)] = 0.0f;
            ASSERT_EQ(ippsDiv_32f(divisor.data(), dividend.data(), quotient.data(), n), ippStsDivByZero);
            for (int i = 0; i < n; ++i)
                ASSERT_EQ(quotient[std::size_t(i)], i == zeroAt ? -infinity : -0.5f);
            ASSERT_EQ(ippsDiv_32f(divisor.data(), divisor.data(), divisor.data(), n), ippStsDivByZero)
                << "in place";
            ASSERT_TRUE(std::isnan(divisor[std::size_t(zeroAt)]));
        }
}

TEST_P(Kernels, MaxFindsTheLargestSignedElement)
{
    for (const int n : sweptLengths)
    {
        auto values = makeNoise(n, 5, -3.0f, -1.0f);
        for (int at = 0; at < n; at += 1 + n / 40)
        {
            const float before = values[std::size_t(at)];
            values[std::size_t(at)] = -0.5f;
            float largest = 0.0f;
            ASSERT_EQ(ippsMax_32f(values.data(), n, &largest), ippStsNoErr);
            ASSERT_EQ(largest, -0.5f) << at << " of " << n;
            values[std::size_t(at == 0 ? n - 1 : 0)] = n > 1 ? notANumber : -0.5f;
            ASSERT_EQ(ippsMax_32f(values.data(), n, &largest), ippStsNoErr);
            ASSERT_EQ(largest, -0.5f) << "beside a NaN, " << at << " of " << n;
            values[std::size_t(at == 0 ? n - 1 : 0)] = -1.0f;
            values[std::size_t(at)] = before;
        }
    }
}

TEST_P(Kernels, ThresholdLetsEqualAndUnorderedValuesPass)
{
    std::vector<float> values = {-0.5f, 0.25f, notANumber, infinity, -infinity};
    ASSERT_EQ(ippsThreshold_LTValGTVal_32f(values.data(), values.data(), 5, -0.5f, -8.0f, 0.25f, 9.0f),
              ippStsNoErr);
    EXPECT_EQ(values[0], -0.5f);
    EXPECT_EQ(values[1], 0.25f);
    EXPECT_TRUE(std::isnan(values[2]));
    EXPECT_EQ(values[3], 9.0f);
    EXPECT_EQ(values[4], -8.0f);
    EXPECT_EQ(ippsThreshold_LTValGTVal_32f(values.data(), values.data(), 5, 1.0f, 0.0f, 0.5f, 0.0f),
              ippStsThresholdErr);
    EXPECT_EQ(values[3], 9.0f);
    EXPECT_EQ(ippsThreshold_LTValGTVal_32f(values.data(), values.data(), 1, 1.0f, 5.0f, 1.0f, 6.0f),
              ippStsNoErr);
    EXPECT_EQ(values[0], 5.0f) << "equal bounds are bounds";
}

TEST_P(Kernels, PhaseCoversTheWholePlane)
{
    // Axes, diagonals, signed zeros, and values whose squares leave the range of a float.
    for (const float re : {1.0f, -1.0f, 0.0f, -0.0f, 1e-30f, -1e30f, 3e38f, 1e-37f})
        for (const float im : {1.0f, -1.0f, 0.0f, -0.0f, -1e-30f, 1e30f, -3e38f})
        {
            const std::vector<Complex> values(19, Complex(re, im));
            std::vector<float> angles(19, 9.0f);
            ASSERT_EQ(ippsPhase_32fc(values.data(), angles.data(), 19), ippStsNoErr);
            for (const float angle : angles)
                ASSERT_NEAR(angle, std::atan2(double(im), double(re)), 1e-6) << re << ' ' << im;
        }
}

TEST_P(Kernels, PolarToCartHoldsForLargePhases)
{
    // Unwrapped phases of long responses run far from the origin.
    const std::vector<float> magnitude(64, 1.0f);
    for (const float range : {100.0f, 1e4f, 1e5f, 1e6f})
    {
        const auto phase = makeNoise(64, 6, -range, range);
        std::vector<Complex> values(64);
        ASSERT_EQ(ippsPolarToCart_32fc(magnitude.data(), phase.data(), values.data(), 64), ippStsNoErr);
        for (std::size_t i = 0; i < 64; ++i)
            ASSERT_LT(std::abs(std::complex<double>(values[i]) - std::polar(1.0, double(phase[i]))), 2e-6)
                << phase[i];
    }
}

TEST_P(Kernels, ConversionsRoundToNearest)
{
    for (const int n : sweptLengths)
    {
        const auto count = static_cast<std::size_t>(n);
        auto source = makeNoise(n, 8);
        source[0] = 3e38f;
        std::vector<double> wide(count + 1, 7.0);
        std::vector<float> back(count + 1, 7.0f), rounded = back;
        ASSERT_EQ(ippsConvert_32f64f(source.data(), wide.data(), n), ippStsNoErr);
        ASSERT_EQ(ippsConvert_64f32f(wide.data(), back.data(), n), ippStsNoErr);
        ASSERT_EQ(wide[count], 7.0);
        ASSERT_EQ(back[count], 7.0f);
        for (auto& value : wide)
            value *= 1.0 + 1e-9;
        ASSERT_EQ(ippsConvert_64f32f(wide.data(), rounded.data(), n), ippStsNoErr);
        for (std::size_t i = 0; i < count; ++i)
        {
            ASSERT_EQ(back[i], source[i]);
            ASSERT_EQ(rounded[i], static_cast<float>(wide[i]));
        }
        ASSERT_EQ(ippsSet_64f(0.1, wide.data(), n), ippStsNoErr);
        ASSERT_TRUE(std::all_of(wide.begin(), wide.end() - 1, [](double v) { return v == 0.1; }));
        ASSERT_NE(wide[count], 0.1);
    }
}

//==============================================================================

TEST_P(Kernels, ToneIsACosineThatRunsOnAndDoesNotDrift)
{
    for (const float frequency : {0.0f, 1e-6f, 0.01f, 0.25f, 0.3333f, 0.49999f})
        for (const float start : {0.0f, 1.0f, 3.14159274f, 6.2831850f})
        {
            constexpr int total = 100000;
            std::vector<float> whole(total), cut(total);
            float phase = start;
            ASSERT_EQ(ippsTone_32f(whole.data(), total, 0.8f, frequency, &phase, ippHintFast), ippStsNoErr);
            EXPECT_TRUE(phase >= 0.0f && phase < 2.0f * std::numbers::pi_v<float>) << phase;

            double largest = 0.0;
            for (int i = 0; i < total; ++i)
            {
                const double cycles = std::fmod(double(frequency) * i, 1.0);
                const double exact = double(0.8f) * std::cos(2.0 * std::numbers::pi * cycles + double(start));
                largest = std::max(largest, std::abs(double(whole[std::size_t(i)]) - exact));
            }
            EXPECT_LT(largest, 1e-6) << frequency << ' ' << start;

            // Every cut rounds the phase to a float once.
            phase = start;
            for (int done = 0; done < 3000;)
            {
                const int n = sweptLengths[std::size_t(done) % std::size(sweptLengths)];
                ASSERT_EQ(ippsTone_32f(cut.data() + done, n, 0.8f, frequency, &phase, ippHintFast),
                          ippStsNoErr);
                done += n;
            }
            EXPECT_LT(test::maxDifference(std::span(cut).first(3000), std::span(whole).first(3000)), 1e-4)
                << frequency << ' ' << start;
        }
}

TEST_P(Kernels, ToneRefusesArgumentsOutOfRange)
{
    struct Row
    {
        float magnitude, frequency, phase;
        IppStatus status;
    };
    for (const auto& [magnitude, frequency, start, status] : {Row{0.0f, 0.1f, 0.0f, ippStsToneMagnErr},
                                                              {-1.0f, 0.1f, 0.0f, ippStsToneMagnErr},
                                                              {notANumber, 0.1f, 0.0f, ippStsToneMagnErr},
                                                              {1.0f, 0.5f, 0.0f, ippStsToneFreqErr},
                                                              {1.0f, -0.1f, 0.0f, ippStsToneFreqErr},
                                                              {1.0f, notANumber, 0.0f, ippStsToneFreqErr},
                                                              {1.0f, 0.1f, -0.1f, ippStsTonePhaseErr},
                                                              {1.0f, 0.1f, 6.2831855f, ippStsTonePhaseErr},
                                                              {1.0f, 0.1f, notANumber, ippStsTonePhaseErr}})
    {
        float dst = 7.0f, phase = start;
        EXPECT_EQ(ippsTone_32f(&dst, 1, magnitude, frequency, &phase, ippHintFast), status);
        EXPECT_EQ(dst, 7.0f);
    }
    float dst = 7.0f, phase = 0.0f;
    EXPECT_EQ(ippsTone_32f(nullptr, 1, 1.0f, 0.1f, &phase, ippHintFast), ippStsNullPtrErr);
    EXPECT_EQ(ippsTone_32f(&dst, 1, 1.0f, 0.1f, nullptr, ippHintFast), ippStsNullPtrErr);
    EXPECT_EQ(ippsTone_32f(&dst, 0, 1.0f, 0.1f, &phase, ippHintFast), ippStsSizeErr);
}

TEST_P(Kernels, SampleUpAndDownKeepTheirPhase)
{
    for (const int n : {1, 2, 7, 100})
        for (const int factor : {1, 2, 3, 5})
            for (int phase = 0; phase < factor; ++phase)
            {
                const auto source = makeNoise(n, 9);
                std::vector<float> up(std::size_t(n * factor) + 1, 7.0f), down(std::size_t(n) + 1, 7.0f);
                int length = -1, keptPhase = phase;
                ASSERT_EQ(ippsSampleUp_32f(source.data(), n, up.data(), &length, factor, &keptPhase),
                          ippStsNoErr);
                ASSERT_EQ(length, n * factor);
                ASSERT_EQ(keptPhase, phase);
                for (int i = 0; i < length; ++i)
                    ASSERT_EQ(up[std::size_t(i)],
                              i % factor == phase ? source[std::size_t(i / factor)] : 0.0f);
                ASSERT_EQ(up.back(), 7.0f);

                ASSERT_EQ(ippsSampleDown_32f(up.data(), n * factor, down.data(), &length, factor, &keptPhase),
                          ippStsNoErr);
                ASSERT_EQ(length, n);
                ASSERT_EQ(keptPhase, phase);
                ASSERT_TRUE(std::equal(source.begin(), source.end(), down.begin()));
                ASSERT_EQ(down.back(), 7.0f);

                // A length that is not a multiple: only indices within the source count.
                ASSERT_EQ(ippsSampleDown_32f(source.data(), n, down.data(), &length, factor, &keptPhase),
                          ippStsNoErr);
                ASSERT_EQ(length, n > phase ? (n - phase + factor - 1) / factor : 0);
            }

    float value = 1.0f, dst = 7.0f;
    int length = 0, phase = 0, behind = 2, negative = -1;
    for (const auto kernel : {ippsSampleUp_32f, ippsSampleDown_32f})
    {
        EXPECT_EQ(kernel(nullptr, 1, &dst, &length, 1, &phase), ippStsNullPtrErr);
        EXPECT_EQ(kernel(&value, 1, nullptr, &length, 1, &phase), ippStsNullPtrErr);
        EXPECT_EQ(kernel(&value, 1, &dst, nullptr, 1, &phase), ippStsNullPtrErr);
        EXPECT_EQ(kernel(&value, 1, &dst, &length, 1, nullptr), ippStsNullPtrErr);
        EXPECT_EQ(kernel(&value, 0, &dst, &length, 1, &phase), ippStsSizeErr);
        EXPECT_EQ(kernel(&value, 1, &dst, &length, 0, &phase), ippStsSampleFactorErr);
        EXPECT_EQ(kernel(&value, 1, &dst, &length, 2, &behind), ippStsSamplePhaseErr);
        EXPECT_EQ(kernel(&value, 1, &dst, &length, 2, &negative), ippStsSamplePhaseErr);
        EXPECT_EQ(dst, 7.0f);
    }
}

//==============================================================================

TEST(KernelStatus, HasFixedTexts)
{
    const std::pair<IppStatus, const char*> rows[] = {
        {ippStsNoErr, "ippStsNoErr: No errors."},
        {ippStsNullPtrErr, "ippStsNullPtrErr: Null pointer error."},
        {ippStsSizeErr, "ippStsSizeErr: Incorrect value for data size."},
        {ippStsBadArgErr, "ippStsBadArgErr: Incorrect arg/param of the function."},
        {ippStsContextMatchErr, "ippStsContextMatchErr: Context parameter does not match the operation."},
        {ippStsMemAllocErr, "ippStsMemAllocErr: Memory allocated for the operation is not enough."},
        {ippStsDivByZeroErr, "ippStsDivByZeroErr: An attempt to divide by zero."},
        {ippStsDivByZero, "ippStsDivByZero: Zero value(s) for the divisor in the Div function."},
        {ippStsToneMagnErr, "ippStsToneMagnErr: Tone magnitude is less than, or equal to zero."},
        {ippStsToneFreqErr,
         "ippStsToneFreqErr: Tone frequency is negative, or greater than, or equal to 0.5."},
        {ippStsTonePhaseErr,
         "ippStsTonePhaseErr: Tone phase is negative, or greater than, or equal to 2*PI."},
        {ippStsSampleFactorErr, "ippStsSampleFactorErr: Sampling factor is less than, or equal to zero."},
        {ippStsSamplePhaseErr, "ippStsSamplePhaseErr: Phase value is out of range: 0 <= phase < factor."},
        {ippStsFIRLenErr, "ippStsFIRLenErr: Length of a FIR filter is less than, or equal to zero."},
        {ippStsIIROrderErr, "ippStsIIROrderErr: Order of an IIR filter is not valid."},
        {ippStsFftFlagErr, "ippStsFftFlagErr: Invalid value for the FFT flag parameter."},
        {ippStsFftOrderErr, "ippStsFftOrderErr: Invalid value for the FFT order parameter."},
        {ippStsThresholdErr, "ippStsThresholdErr: Invalid threshold bounds."},
        {-9999, "ippStsUnknownStatusCodeErr: Unknown status code."},
        {9999, "ippStsUnknownStatusCodeErr: Unknown status code."}};
    for (const auto& [status, text] : rows)
        EXPECT_STREQ(ippGetStatusString(status), text);
}

TEST(KernelStatus, ErrorsBecomeExceptionsAndWarningsPass)
{
    EXPECT_NO_THROW(check(ippStsNoErr));
    EXPECT_NO_THROW(check(ippStsDivByZero));
    try
    {
        check(ippStsThresholdErr);
        FAIL() << "nothing thrown";
    }
    catch (const std::runtime_error& error)
    {
        EXPECT_STREQ(error.what(), "IPP exception: ippStsThresholdErr: Invalid threshold bounds.");
    }
}

} // namespace
} // namespace vesk::audio
