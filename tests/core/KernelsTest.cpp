#include "tests/core/KernelFixture.h"

#include <bit>
#include <complex>
#include <functional>
#include <limits>
#include <numbers>
#include <stdexcept>
#include <tuple>

namespace vesk::audio
{
namespace
{

using test::makeNoise;
using test::refusesNulls;
using test::sweptLengths;
using Complex = std::complex<float>;
using Exact = std::complex<double>;
using Limits = std::numeric_limits<float>;

constexpr float infinity = Limits::infinity();
constexpr float notANumber = Limits::quiet_NaN();
constexpr double epsilon = Limits::epsilon();

class Kernels : public test::KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(Kernels);

const Complex* asComplex(const float* p) { return reinterpret_cast<const Complex*>(p); }
Complex* asComplex(float* p) { return reinterpret_cast<Complex*>(p); }

IppStatus threshold(const float* src, float* dst, int n)
{
    return ippsThreshold_LTValGTVal_32f(src, dst, n, -0.5f, -8.0f, 0.25f, 9.0f);
}

template <typename T>
T thresholdOf(T value)
{
    return value < T(-0.5) ? T(-8) : value > T(0.25) ? T(9) : value;
}

/** A kernel of the shape dst[i] = f(a[i], b[i], dst[i]). Complex elements are two floats. */
struct ElementwiseKernel
{
    const char* name;
    int widthA, widthB, widthDst; ///< floats for each element; width 0: the argument does not exist
    double tolerance;             ///< absolute, for inputs within -2 and 2
    std::function<IppStatus(const float* a, const float* b, float* dst, int n)> run;

    /** One element, the last argument what was in dst before. */
    std::function<Exact(Exact, Exact, Exact)> reference;
};

const ElementwiseKernel elementwiseKernels[] = {
    {"Zero", 0, 0, 1, 0.0, [](auto, auto, auto dst, int n) { return ippsZero_32f(dst, n); },
     [](auto...) { return Exact(0.0); }},
    {"Set", 0, 0, 1, 0.0, [](auto, auto, auto dst, int n) { return ippsSet_32f(0.75f, dst, n); },
     [](auto...) { return Exact(0.75); }},
    {"Copy", 1, 0, 1, 0.0,
     [](auto a, auto, auto dst, int n)
     {
         return ippsCopy_8u(reinterpret_cast<const std::uint8_t*>(a), reinterpret_cast<std::uint8_t*>(dst),
                            4 * n);
     },
     [](Exact a, auto...) { return a; }},
    {"Add", 1, 1, 1, 4 * epsilon, ippsAdd_32f, [](Exact a, Exact b, auto) { return a + b; }},
    {"Sub", 1, 1, 1, 4 * epsilon, ippsSub_32f, [](Exact a, Exact b, auto) { return b - a; }},
    {"Mul", 1, 1, 1, 4 * epsilon, ippsMul_32f, [](Exact a, Exact b, auto) { return a * b; }},
    {"MulC", 1, 0, 1, 4 * epsilon,
     [](auto a, auto, auto dst, int n) { return ippsMulC_32f(a, 0.7f, dst, n); },
     [](Exact a, auto...) { return a * double(0.7f); }},
    {"Div", 1, 1, 1, 0.0, // IEEE division is exact to the last bit
     ippsDiv_32f, [](Exact a, Exact b, auto) { return double(static_cast<float>(b.real() / a.real())); }},
    {"copyBounded", 1, 0, 1, 0.0, [](auto a, auto, auto dst, int n) { return copyBounded(a, 1.25f, dst, n); },
     [](Exact a, auto...) { return std::abs(a.real()) <= 1.25 ? a : 0.0; }},
    {"Threshold", 1, 0, 1, 0.0, [](auto a, auto, auto dst, int n) { return threshold(a, dst, n); },
     [](Exact a, auto...) { return thresholdOf(a.real()); }},
    {"Mul_32fc", 2, 2, 2, 8 * epsilon,
     [](auto a, auto b, auto dst, int n)
     { return ippsMul_32fc(asComplex(a), asComplex(b), asComplex(dst), n); },
     [](Exact a, Exact b, auto) { return a * b; }},
    {"AddProduct_32fc", 2, 2, 2, 12 * epsilon,
     [](auto a, auto b, auto dst, int n)
     { return ippsAddProduct_32fc(asComplex(a), asComplex(b), asComplex(dst), n); },
     [](Exact a, Exact b, Exact before) { return before + a * b; }},
    {"PolarToCart_32fc", 1, 1, 2, 4 * epsilon,
     [](auto a, auto b, auto dst, int n) { return ippsPolarToCart_32fc(a, b, asComplex(dst), n); },
     [](Exact a, Exact b, auto) { return a * Exact(std::cos(b.real()), std::sin(b.real())); }},
    {"Phase_32fc", 2, 0, 1, 8 * epsilon,
     [](auto a, auto, auto dst, int n) { return ippsPhase_32fc(asComplex(a), dst, n); },
     [](Exact a, auto...) { return std::arg(a); }},
    {"RealToCplx", 1, 1, 2, 0.0,
     [](auto a, auto b, auto dst, int n) { return ippsRealToCplx_32f(a, b, asComplex(dst), n); },
     [](Exact a, Exact b, auto) { return Exact(a.real(), b.real()); }},
    {"RealToCplx of a real", 1, 0, 2, 0.0,
     [](auto a, auto, auto dst, int n) { return ippsRealToCplx_32f(a, nullptr, asComplex(dst), n); },
     [](Exact a, auto...) { return a; }},
};

/** Runs one kernel against its reference. The sources end where their memory ends, so that AddressSanitizer sees
    a read too far; the destination has guards. */
void expectKernelMatches(const ElementwiseKernel& kernel, int n, int offset, bool dstIsA, bool dstIsB)
{
    constexpr std::size_t guardLength = 19;
    constexpr float guard = 12345.0f;
    const auto sourceA = makeNoise(offset + kernel.widthA * n, 1, -2.0f, 2.0f);
    const auto sourceB = makeNoise(offset / 2 + kernel.widthB * n, 2, -2.0f, 2.0f);
    const auto before = makeNoise(kernel.widthDst * n, 3, -2.0f, 2.0f);
    std::vector<float> memory(2 * guardLength + std::size_t(offset) + before.size(), guard);
    float* dst = memory.data() + guardLength + offset;
    std::copy(before.begin(), before.end(), dst);
    const float* a = dstIsA ? dst : sourceA.data() + offset;
    const float* b = dstIsB ? dst : sourceB.data() + offset / 2;

    const auto getElement = [](const float* values, int width, int i) -> Exact
    {
        const auto* element = values + width * i;
        return width == 0 ? 0.0 : width == 1 ? Exact(double(element[0])) : Exact(*asComplex(element));
    };
    std::vector<double> expected;
    for (int i = 0; i < n; ++i)
    {
        const Exact element =
            kernel.reference(getElement(a, kernel.widthA, i), getElement(b, kernel.widthB, i),
                             getElement(dst, kernel.widthDst, i));
        expected.push_back(element.real());
        if (kernel.widthDst == 2)
            expected.push_back(element.imag());
    }

    ASSERT_EQ(kernel.run(a, b, dst, n), ippStsNoErr);
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_NEAR(dst[i], expected[i], kernel.tolerance) << "float " << i;
    const auto isGuard = [](float value) { return value == guard; };
    ASSERT_TRUE(std::all_of(memory.data(), dst, isGuard)) << "written before dst";
    ASSERT_TRUE(std::all_of(dst + expected.size(), memory.data() + memory.size(), isGuard))
        << "written behind dst";
}

TEST_P(Kernels, MatchTheirDefinitionAtAllLengthsAlignmentsAndInPlace)
{
    for (const auto& kernel : elementwiseKernels)
        for (const int n : sweptLengths)
            for (const int offset : {0, 1, 2, 3, 5, 7})
                for (const bool dstIsA : {false, true})
                    for (const bool dstIsB : {false, true})
                    {
                        if ((dstIsA && kernel.widthA != kernel.widthDst) ||
                            (dstIsB && kernel.widthB != kernel.widthDst))
                            continue;
                        SCOPED_TRACE(testing::Message() << kernel.name << ", length " << n << ", offset "
                                                        << offset << ", in place " << dstIsA << dstIsB);
                        ASSERT_NO_FATAL_FAILURE(expectKernelMatches(kernel, n, offset, dstIsA, dstIsB));
                    }
}

TEST_P(Kernels, RefuseWhatTheyCannotDoAndWriteNothing)
{
    std::vector<float> source(8, 1.0f), dst(8, 7.0f);
    const float* src = source.data();
    for (const auto& kernel : elementwiseKernels)
    {
        const bool readsA = kernel.widthA > 0;
        const bool readsB =
            kernel.widthB > 0 && kernel.name != std::string("RealToCplx"); // its b may be null
        EXPECT_EQ(kernel.run(src, src, nullptr, 4), ippStsNullPtrErr) << kernel.name;
        EXPECT_TRUE(!readsA || kernel.run(nullptr, src, dst.data(), 4) == ippStsNullPtrErr) << kernel.name;
        EXPECT_TRUE(!readsB || kernel.run(src, nullptr, dst.data(), 4) == ippStsNullPtrErr) << kernel.name;
        for (const int n : {0, -1, std::numeric_limits<int>::min() / 4})
            EXPECT_EQ(kernel.run(src, src, dst.data(), n), ippStsSizeErr) << kernel.name;
    }

    double wide[1] = {7.0};
    EXPECT_TRUE(refusesNulls(ippsSet_64f, 1.0, wide, 1));
    EXPECT_TRUE(refusesNulls(ippsMax_32f, src, 1, dst.data()));
    EXPECT_TRUE(refusesNulls(ippsConvert_32f64f, src, wide, 1));
    EXPECT_TRUE(refusesNulls(ippsConvert_64f32f, wide, dst.data(), 1));
    EXPECT_EQ(ippsMax_32f(src, 0, dst.data()), ippStsSizeErr);
    EXPECT_EQ(ippsConvert_64f32f(wide, dst.data(), -1), ippStsSizeErr);
    EXPECT_EQ(ippsThreshold_LTValGTVal_32f(src, dst.data(), 8, 1.0f, 0.0f, 0.5f, 0.0f), ippStsThresholdErr);

    int length = 8;
    for (const auto kernel : {ippsSampleUp_32f, ippsSampleDown_32f})
        for (auto [samples, factor, phase, status] : {std::tuple{0, 1, 0, ippStsSizeErr},
                                                      {1, 0, 0, ippStsSampleFactorErr},
                                                      {1, 2, 2, ippStsSamplePhaseErr},
                                                      {1, 2, -1, ippStsSamplePhaseErr}})
        {
            EXPECT_TRUE(refusesNulls(kernel, src, 1, dst.data(), &length, 1, &phase));
            EXPECT_EQ(kernel(src, samples, dst.data(), &length, factor, &phase), status);
        }

    for (auto [magnitude, frequency, start, status] : {std::tuple{0.0f, 0.1f, 0.0f, ippStsToneMagnErr},
                                                       {notANumber, 0.1f, 0.0f, ippStsToneMagnErr},
                                                       {1.0f, 0.5f, 0.0f, ippStsToneFreqErr},
                                                       {1.0f, notANumber, 0.0f, ippStsToneFreqErr},
                                                       {1.0f, 0.1f, -0.1f, ippStsTonePhaseErr},
                                                       {1.0f, 0.1f, 6.2831855f, ippStsTonePhaseErr},
                                                       {1.0f, 0.1f, notANumber, ippStsTonePhaseErr}})
    {
        EXPECT_TRUE(refusesNulls(ippsTone_32f, dst.data(), 1, 1.0f, 0.1f, &start, ippHintFast));
        EXPECT_EQ(ippsTone_32f(dst.data(), 8, magnitude, frequency, &start, ippHintFast), status);
    }

    EXPECT_EQ(dst, std::vector<float>(8, 7.0f));
    EXPECT_EQ(wide[0], 7.0);
    EXPECT_EQ(length, 8);
}

TEST_P(Kernels, TreatExtremeValuesAsTold)
{
    struct Row
    {
        const char* name;
        std::function<IppStatus(const float* src, float* dst, int n)> run;
        float (*expect)(float);
    };
    const Row rows[] = {
        {"MulC by 1", [](auto src, auto dst, int n) { return ippsMulC_32f(src, 1.0f, dst, n); },
         [](float v) { return v; }},
        {"MulC by 0", [](auto src, auto dst, int n) { return ippsMulC_32f(src, 0.0f, dst, n); },
         [](float) { return 0.0f; }},
        {"copyBounded", [](auto src, auto dst, int n) { return copyBounded(src, Limits::max(), dst, n); },
         [](float v) { return std::isfinite(v) ? v : 0.0f; }},
        {"Threshold", threshold, thresholdOf<float>}};
    const float values[] = {
        notANumber, -notANumber, Limits::signaling_NaN(), infinity,  -infinity,
        -0.0f,      -0.5f,       Limits::max(),           0.25f,     Limits::lowest(),
        0.0f,       1.0f,        Limits::denorm_min(),    -infinity, -Limits::denorm_min()};
    for (const auto& [name, run, expect] : rows)
        for (const std::size_t n : {1u, 5u, 40u})
            for (std::size_t shift = 0; shift < std::size(values); ++shift)
            {
                std::vector<float> source, output(n, 3.0f);
                for (std::size_t i = 0; i < n; ++i)
                    source.push_back(values[(i + shift) % std::size(values)]);
                ASSERT_EQ(run(source.data(), output.data(), static_cast<int>(n)), ippStsNoErr);
                for (std::size_t i = 0; i < n; ++i)
                    ASSERT_EQ(std::bit_cast<std::uint32_t>(output[i]),
                              std::bit_cast<std::uint32_t>(expect(source[i])))
                        << name << " of " << source[i];
            }
}

TEST_P(Kernels, DivWarnsOfAZeroDivisorWhereverItStands)
{
    for (const std::size_t n : {1u, 4u, 17u, 64u})
        for (std::size_t zeroAt = 0; zeroAt < n; ++zeroAt)
        {
            std::vector<float> divisor(n, 2.0f), values(n, -1.0f), expected(n, -0.5f);
            divisor[zeroAt] = 0.0f;
            expected[zeroAt] = -infinity;
            ASSERT_EQ(ippsDiv_32f(divisor.data(), values.data(), values.data(), int(n)), ippStsDivByZero);
            ASSERT_EQ(values, expected);
        }
}

TEST_P(Kernels, MaxFindsTheLargestSignedElementBesideANaN)
{
    for (const int n : sweptLengths)
        for (int at = 0; at < n; at += 1 + n / 40)
            for (const bool besideNaN : {false, true})
            {
                auto values = makeNoise(n, 5, -3.0f, -1.0f);
                if (besideNaN)
                    values[std::size_t(at == 0 ? n - 1 : 0)] = notANumber;
                values[std::size_t(at)] = -0.5f;
                float largest = 0.0f;
                ASSERT_EQ(ippsMax_32f(values.data(), n, &largest), ippStsNoErr);
                ASSERT_EQ(largest, -0.5f) << at << " of " << n;
            }
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
            ASSERT_LT(std::abs(Exact(values[i]) - std::polar(1.0, double(phase[i]))), 2e-6) << phase[i];
    }
}

TEST_P(Kernels, ConversionsRoundToNearest)
{
    for (const int n : sweptLengths)
    {
        auto source = makeNoise(n, 8);
        source[0] = 3e38f;
        std::vector<double> wide(source.size() + 1, 7.0); // and a guard
        std::vector<float> narrow(source.size() + 1, 7.0f);
        ASSERT_EQ(ippsConvert_32f64f(source.data(), wide.data(), n), ippStsNoErr);
        ASSERT_TRUE(std::equal(source.begin(), source.end(), wide.begin(), std::equal_to<double>()));
        for (auto& value : wide)
            value *= 1.0 + 1e-9;
        ASSERT_EQ(ippsConvert_64f32f(wide.data(), narrow.data(), n), ippStsNoErr);
        for (std::size_t i = 0; i < source.size(); ++i)
            ASSERT_EQ(narrow[i], static_cast<float>(wide[i]));
        ASSERT_EQ(ippsSet_64f(0.1, wide.data(), n), ippStsNoErr);
        ASSERT_EQ(std::count(wide.begin(), wide.end(), 0.1), n);
        ASSERT_EQ(wide.back(), 7.0 * (1.0 + 1e-9));
        ASSERT_EQ(narrow.back(), 7.0f);
    }
}

TEST_P(Kernels, ToneIsACosineThatRunsOnAndDoesNotDrift)
{
    for (const float frequency : {0.0f, 1e-6f, 0.01f, 0.25f, 0.3333f, 0.49999f})
        for (const float start : {0.0f, 1.0f, 3.14159274f, 6.2831850f})
        {
            constexpr int total = 100000;
            std::vector<float> whole(total), cut(3000);
            float phase = start;
            ASSERT_EQ(ippsTone_32f(whole.data(), total, 0.8f, frequency, &phase, ippHintFast), ippStsNoErr);
            EXPECT_TRUE(phase >= 0.0f && phase < 2.0f * std::numbers::pi_v<float>) << phase;

            for (int i = 0; i < total; ++i)
            {
                const double cycles = std::fmod(double(frequency) * i, 1.0);
                ASSERT_NEAR(whole[std::size_t(i)],
                            double(0.8f) * std::cos(2.0 * std::numbers::pi * cycles + double(start)), 1e-6)
                    << frequency << ' ' << start;
            }

            // Every cut rounds the phase to a float once.
            phase = start;
            test::forEachBlock(
                3000, sweptLengths,
                [&](int begin, int n) {
                    EXPECT_EQ(ippsTone_32f(cut.data() + begin, n, 0.8f, frequency, &phase, ippHintFast),
                              ippStsNoErr);
                });
            EXPECT_LT(test::maxDifference(cut, std::span(whole).first(3000)), 1e-4)
                << frequency << ' ' << start;
        }
}

TEST_P(Kernels, SampleUpAndDownKeepTheirPhase)
{
    for (const int n : {1, 2, 7, 100})
        for (const int factor : {1, 2, 3, 5})
            for (int phase = 0; phase < factor; ++phase)
            {
                const auto source = makeNoise(n, 9);
                std::vector<float> up(std::size_t(n * factor), 7.0f), down(std::size_t(n) + 1, 7.0f);
                int length = -1, keptPhase = phase;
                ASSERT_EQ(ippsSampleUp_32f(source.data(), n, up.data(), &length, factor, &keptPhase),
                          ippStsNoErr);
                ASSERT_EQ(length, n * factor);
                for (int i = 0; i < length; ++i)
                    ASSERT_EQ(up[std::size_t(i)],
                              i % factor == phase ? source[std::size_t(i / factor)] : 0.0f);

                // The last indices beyond a multiple count as far as they lie within the source.
                const int cut = n * factor - 1;
                if (cut == 0)
                    continue;
                ASSERT_EQ(ippsSampleDown_32f(up.data(), cut, down.data(), &length, factor, &keptPhase),
                          ippStsNoErr);
                ASSERT_EQ(length, phase == factor - 1 ? n - 1 : n);
                ASSERT_TRUE(std::equal(source.begin(), source.begin() + length, down.begin()));
                ASSERT_EQ(down[std::size_t(length)], 7.0f);
                ASSERT_EQ(keptPhase, phase);
            }
}

TEST(KernelStatus, ErrorsBecomeExceptionsWithTheirTextAndWarningsPass)
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
