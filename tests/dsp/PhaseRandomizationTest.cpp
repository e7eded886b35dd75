#include "dsp/PhaseRandomization.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

namespace
{
double toDecibels(double power) { return 10.0 * std::log10(power); }

/** Mean power of the response's spectrum from low to high, in parts of the sample rate. */
double getBandPower(std::span<const float> response, double low, double high)
{
    constexpr int numPoints = 300;
    double sum = 0.0;
    for (int i = 0; i < numPoints; ++i)
        sum += std::norm(spectrumAt(response, low + (high - low) * (i + 0.5) / numPoints));
    return sum / numPoints;
}
} // namespace

TEST(PhaseRandomization, FlatMagnitudeGivesAFlatBurstWithinTheWindow)
{
    struct Row
    {
        double sampleRate;
        int length;
        int bins;
    };
    for (const auto& row : {Row{48000.0, 4800, 8193}, Row{44100.0, 4410, 8193}, Row{96000.0, 9600, 16385}})
    {
        SCOPED_TRACE(row.sampleRate);
        PhaseRandomization randomization;
        randomization.initPhaseDistribution(AudioFormat(2, row.sampleRate), 0.1f, 0.6f, 1);
        ASSERT_EQ(randomization.getNumOfBins(), row.bins);
        const Signal32 response = randomization.getCoefficients(Signal32(1, row.bins, 1.0f));
        ASSERT_EQ(response.numSamples, row.length);
        EXPECT_EQ(toVector(response, 0), toVector(response, 1));

        // A flat spectrum of 1 has the energy 1, over all of its period.
        const auto samples = getChannel(response, 0);
        EXPECT_NEAR(meanSquare(samples) * row.length, 1.0, 4e-4);
        double squaredDeviation = 0.0;
        constexpr int numPoints = 500;
        for (int i = 0; i < numPoints; ++i)
            squaredDeviation +=
                std::pow(toDecibels(std::norm(spectrumAt(samples, (i + 0.5) / numPoints / 2.0))), 2.0);
        EXPECT_LT(std::sqrt(squaredDeviation / numPoints), 0.14);

        // A burst, not a click: no sample stands out of noise of this length.
        const double peak = static_cast<double>(*std::max_element(samples.begin(), samples.end()));
        EXPECT_LT(peak * peak, 50.0 * meanSquare(samples));
    }
}

TEST(PhaseRandomization, ResponseHasTheMagnitudeAskedFor)
{
    PhaseRandomization randomization;
    randomization.initPhaseDistribution(AudioFormat(1, 48000.0), 0.1f, 0.6f, 1);
    const int bins = randomization.getNumOfBins();

    // 12 dB up to a quarter of the band, a ramp in dB to -12 dB at the half.
    Signal32 magnitude(1, bins);
    for (int bin = 0; bin < bins; ++bin)
    {
        const double position = std::clamp(4.0 * bin / (bins - 1) - 1.0, 0.0, 1.0);
        magnitude.getWriteChannelPtr(0)[bin] =
            static_cast<float>(std::pow(10.0, (12.0 - 24.0 * position) / 20.0));
    }
    const Signal32 response = randomization.getCoefficients(magnitude);
    const auto samples = getChannel(response, 0);
    EXPECT_NEAR(toDecibels(getBandPower(samples, 0.01, 0.12)), 12.0, 0.5);
    EXPECT_NEAR(toDecibels(getBandPower(samples, 0.185, 0.19)), 0.0, 1.0);
    EXPECT_NEAR(toDecibels(getBandPower(samples, 0.26, 0.5)), -12.0, 0.5);
}

TEST(PhaseRandomization, EnvelopeFollowsTheSlopeAndPhasesTheSeed)
{
    struct Row
    {
        float slope;
        double lowest; ///< bounds of the energy of the first half over that of the second, dB
        double highest;
    };
    constexpr float duration = 0.02f;
    const AudioFormat format(1, 48000.0);
    for (const auto& row : {Row{0.6f, 1.0, 20.0}, Row{0.0f, -1.5, 1.5}, Row{-0.6f, -20.0, -1.0}})
    {
        SCOPED_TRACE(row.slope);
        PhaseRandomization randomization;
        randomization.initPhaseDistribution(format, duration, row.slope, 1);
        const auto getResponse = [&] {
            return toVector(randomization.getCoefficients(Signal32(1, randomization.getNumOfBins(), 1.0f)),
                            0);
        };
        const auto response = getResponse();
        const std::span<const float> samples = response;
        const double ratio = toDecibels(meanSquare(samples.first(480)) / meanSquare(samples.last(480)));
        EXPECT_GT(ratio, row.lowest);
        EXPECT_LT(ratio, row.highest);

        randomization.initPhaseDistribution(format, duration, row.slope, 2);
        EXPECT_NE(getResponse(), response);
        randomization.initPhaseDistribution(format, duration, row.slope, 1);
        EXPECT_EQ(getResponse(), response);
    }
}
