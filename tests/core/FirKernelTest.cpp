#include "tests/core/KernelFixture.h"

#include <array>

namespace vesk::audio
{
namespace
{

using test::convolve;
using test::makeNoise;
using test::refusesNulls;

/** A filter with its memory, the scratch one byte off any alignment. */
class Filter
{
public:
    explicit Filter(const std::vector<float>& taps)
    {
        const auto length = static_cast<int>(taps.size());
        int specBytes = 0, bufferBytes = 0;
        EXPECT_EQ(ippsFIRSRGetSize(length, ippDataType32f, &specBytes, &bufferBytes), ippStsNoErr);
        memory.resize(static_cast<std::size_t>(specBytes));
        buffer.resize(static_cast<std::size_t>(bufferBytes) + 1);
        // Taps that the next ones on the same memory replace.
        const std::vector<float> others(taps.size(), 9.0f);
        for (const auto* loaded : {&others, &taps})
            EXPECT_EQ(ippsFIRSRInit_32f(loaded->data(), length, ippFirDirectForm, getSpec()), ippStsNoErr);
    }

    FirSpec* getSpec() { return reinterpret_cast<FirSpec*>(memory.data()); }

    void run(const float* src, float* dst, int n, const float* dlySrc, float* dlyDst)
    {
        EXPECT_EQ(ippsFIRSR_32f(src, dst, n, getSpec(), dlySrc, dlyDst, buffer.data() + 1), ippStsNoErr);
    }

    std::vector<std::uint8_t> memory, buffer;
};

/** Rounding of a sum of products of values within -1 and 1. */
double getTolerance(std::size_t taps) { return 1e-6 * std::sqrt(static_cast<double>(taps)); }

class FirKernel : public test::KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(FirKernel);

TEST_P(FirKernel, BlocksWithACarriedPastMakeOneConvolution)
{
    constexpr int total = 2600;
    const auto input = makeNoise(total, 1);
    for (const int tapsLength : {1, 2, 3, 4, 5, 8, 15, 16, 17, 31, 33, 127, 128, 129, 300})
    {
        const auto taps = makeNoise(tapsLength, 2 + unsigned(tapsLength));
        const auto expected = convolve(input, taps);
        for (const std::vector<int>& pattern :
             {std::vector<int>{total}, {1}, {2, 1, 3}, {64}, {100, 7}, {1000, 1, 128, 127, 129, 5}})
            for (const bool inPlace : {false, true})
            {
                Filter filter(taps);
                auto source = input;
                std::vector<float> separate(inPlace ? 0 : total, 9.0f);
                auto& output = inPlace ? source : separate;
                std::vector<float> past(std::size_t(tapsLength - 1)); // ends where its memory ends
                float none = 0.0f; // for a single tap: an array of no samples
                auto* delayLine = past.empty() ? &none : past.data();
                test::forEachBlock(
                    total, pattern,
                    [&](int begin, int n)
                    { filter.run(source.data() + begin, output.data() + begin, n, delayLine, delayLine); });
                ASSERT_LT(test::maxDifference(output, expected), getTolerance(taps.size()))
                    << tapsLength << " taps, blocks of " << pattern[0] << (inPlace ? ", in place" : "");
                ASSERT_TRUE(std::equal(past.rbegin(), past.rend(), input.rbegin())) << "oldest first";
            }
    }
}

TEST_P(FirKernel, WithoutDelayLinesThePastIsSilentAndNothingIsKept)
{
    const auto taps = makeNoise(40, 3), input = makeNoise(100, 4), history = makeNoise(39, 5);
    Filter filter(taps);
    std::vector<float> output(100), kept(39, 9.0f);

    for (int repeat = 0; repeat < 2; ++repeat)
    {
        filter.run(input.data(), output.data(), 100, nullptr, nullptr);
        EXPECT_LT(test::maxDifference(output, convolve(input, taps)), getTolerance(40));
    }

    // A past that goes in but does not come out, as one that other filters still have to read.
    const auto untouched = history;
    filter.run(input.data(), output.data(), 100, history.data(), nullptr);
    auto stream = history;
    stream.insert(stream.end(), input.begin(), input.end());
    const auto expected = convolve(stream, taps);
    EXPECT_LT(test::maxDifference(output, std::span(expected).subspan(39)), getTolerance(40));
    EXPECT_EQ(history, untouched);

    // No past, and a block shorter than what is kept: zeros come first.
    filter.run(input.data(), output.data(), 10, nullptr, kept.data());
    EXPECT_TRUE(std::all_of(kept.begin(), kept.begin() + 29, [](float v) { return v == 0.0f; }));
    EXPECT_TRUE(std::equal(kept.begin() + 29, kept.end(), input.begin()));
}

TEST_P(FirKernel, RefusesWhatItCannotDo)
{
    int specBytes = 0, bufferBytes = 0;
    for (const int length : {0, -3})
        EXPECT_EQ(ippsFIRSRGetSize(length, ippDataType32f, &specBytes, &bufferBytes), ippStsFIRLenErr);
    EXPECT_EQ(ippsFIRSRGetSize(4, 99, &specBytes, &bufferBytes), ippStsBadArgErr);
    EXPECT_TRUE(refusesNulls(ippsFIRSRGetSize, 4, ippDataType32f, &specBytes, &bufferBytes));

    const float taps[] = {1.0f, 2.0f};
    Filter filter({1.0f, 2.0f});
    auto* spec = filter.getSpec();
    auto* buffer = filter.buffer.data();
    EXPECT_EQ(ippsFIRSRInit_32f(taps, 0, ippFirDirectForm, spec), ippStsFIRLenErr);
    EXPECT_EQ(ippsFIRSRInit_32f(taps, 2, 99, spec), ippStsBadArgErr);
    EXPECT_TRUE(refusesNulls(ippsFIRSRInit_32f, taps, 2, ippFirDirectForm, spec));

    float dst = 7.0f;
    EXPECT_EQ(ippsFIRSR_32f(taps, &dst, 0, spec, nullptr, nullptr, buffer), ippStsSizeErr);
    EXPECT_TRUE(refusesNulls(ippsFIRSR_32f, taps, &dst, 1, spec, nullptr, nullptr, buffer));
    EXPECT_EQ(dst, 7.0f);

    Filter longer({1.0f, 2.0f, 3.0f});
    const std::array unequal{FirInput{taps + 1, spec}, FirInput{taps + 1, longer.getSpec()}};
    EXPECT_EQ(firSum_32f(unequal, &dst, 1), ippStsContextMatchErr);
    EXPECT_EQ(firSum_32f({}, &dst, 1), ippStsBadArgErr);
    EXPECT_EQ(dst, 7.0f);
}

TEST_P(FirKernel, SumsFilteredInputs)
{
    constexpr int tapsLength = 37, total = 200;
    const auto firstTaps = makeNoise(tapsLength, 1), secondTaps = makeNoise(tapsLength, 2);
    const auto first = makeNoise(total, 3), second = makeNoise(total, 4);
    Filter firstFilter(firstTaps), secondFilter(secondTaps);
    const auto firstExpected = convolve(first, firstTaps), secondExpected = convolve(second, secondTaps);

    for (const int n : {1, 15, 16, 33, 64, 150})
    {
        constexpr int start = tapsLength - 1;
        const std::array inputs{FirInput{first.data() + start, firstFilter.getSpec()},
                                FirInput{second.data() + start, secondFilter.getSpec()}};
        std::vector<float> sum(static_cast<std::size_t>(n));
        ASSERT_EQ(firSum_32f(inputs, sum.data(), n), ippStsNoErr);
        for (std::size_t i = 0; i < sum.size(); ++i)
            ASSERT_NEAR(double(sum[i]), double(firstExpected[start + i]) + double(secondExpected[start + i]),
                        getTolerance(2 * tapsLength))
                << "sample " << i << " of " << n;
    }
}

} // namespace
} // namespace vesk::audio
