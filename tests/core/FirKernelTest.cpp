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

TEST_P(FirKernel, ConvolvesThePastAndTheBlockAndKeepsTheLatest)
{
    const auto input = makeNoise(2600, 1);
    for (const std::size_t tapsLength :
         {1u, 2u, 3u, 4u, 5u, 8u, 15u, 16u, 17u, 31u, 33u, 127u, 128u, 129u, 300u})
        for (const bool hasPast : {false, true})
        {
            const auto taps = makeNoise(static_cast<int>(tapsLength), 2);
            const std::size_t pastLength = tapsLength - 1;
            auto stream = makeNoise(static_cast<int>(pastLength), 3);
            if (!hasPast)
                stream.assign(pastLength, 0.0f);
            stream.insert(stream.end(), input.begin(), input.end());
            const auto expected = convolve(stream, taps);
            Filter filter(taps);
            for (const std::size_t n :
                 {1u, 2u, 3u, 7u, 64u, 100u, 127u, 128u, 129u, 1000u, 1024u, 1025u, 2600u})
                for (const bool inPlace : {false, true})
                    for (const bool keeps : {false, true})
                    {
                        SCOPED_TRACE(testing::Message()
                                     << tapsLength << " taps, " << n << " samples, past " << hasPast
                                     << ", in place " << inPlace << ", kept " << keeps);
                        // Both end where their memory ends. The past of a single tap is empty, but not null.
                        std::vector<float> source(input.begin(), input.begin() + std::ptrdiff_t(n));
                        std::vector<float> past(stream.begin(), stream.begin() + std::ptrdiff_t(pastLength));
                        std::vector<float> separate(n, 9.0f);
                        auto& output = inPlace ? source : separate;
                        float none = 0.0f;
                        float* delayLine = past.empty() ? &none : past.data();
                        filter.run(source.data(), output.data(), static_cast<int>(n),
                                   hasPast ? delayLine : nullptr, keeps ? delayLine : nullptr);
                        ASSERT_LT(test::maxDifference(output, std::span(expected).subspan(pastLength, n)),
                                  getTolerance(tapsLength));
                        ASSERT_TRUE(std::equal(past.begin(), past.end(),
                                               stream.begin() + std::ptrdiff_t(keeps ? n : 0)))
                            << "the past, oldest first";
                    }
        }
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
