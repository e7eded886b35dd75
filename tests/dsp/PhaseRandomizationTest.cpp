#include "dsp/PhaseRandomization.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

TEST(PhaseRandomization, BurstIsFlatAndShortAndCarriesTheMagnitudeAskedFor)
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

        // The RMS distance of the response's spectrum from what is asked for, in dB.
        const auto getDeviation = [&](const Signal32& magnitude, const Signal32& response)
        {
            constexpr int numPoints = 500;
            double sum = 0.0;
            for (int i = 0; i < numPoints; ++i)
            {
                const int bin = (row.bins - 1) * i / numPoints;
                const double actual =
                    std::abs(spectrumAt(getChannel(response, 0), bin / (2.0 * row.bins - 2.0)));
                const double wanted = static_cast<double>(magnitude.getChannelPtr(0)[bin]);
                sum += std::pow(20.0 * std::log10(actual / wanted), 2.0);
            }
            return std::sqrt(sum / numPoints);
        };

        // A flat spectrum of 1 has the energy 1, over all of its period. A burst has no sample that stands out.
        const Signal32 flat(1, row.bins, 1.0f);
        const Signal32 burst = randomization.getCoefficients(flat);
        ASSERT_EQ(burst.numSamples, row.length);
        EXPECT_EQ(toVector(burst, 0), toVector(burst, 1));
        EXPECT_NEAR(getEnergy(getChannel(burst, 0)), 1.0, 4e-4);
        EXPECT_LT(getDeviation(flat, burst), 0.14);
        EXPECT_LT(getPeak(getChannel(burst, 0)), 7.0 / std::sqrt(row.length));

        // A slope of 24 dB over the band.
        Signal32 slope(1, row.bins);
        for (int bin = 0; bin < row.bins; ++bin)
            slope.getWriteChannelPtr(0)[bin] = static_cast<float>(std::pow(10.0, 0.6 - 1.2 * bin / row.bins));
        EXPECT_LT(getDeviation(slope, randomization.getCoefficients(slope)), 0.3);
    }
}

TEST(PhaseRandomization, EnvelopeFollowsTheSlopeAndPhasesTheSeed)
{
    struct Row
    {
        float slope;
        double lowest; ///< bounds of the level of the first half over that of the second, dB
        double highest;
    };
    for (const auto& row : {Row{0.6f, 1.0, 20.0}, Row{0.0f, -1.5, 1.5}, Row{-0.6f, -20.0, -1.0}})
    {
        SCOPED_TRACE(row.slope);
        PhaseRandomization randomization;
        const auto getBurst = [&](int seed)
        {
            randomization.initPhaseDistribution(AudioFormat(1, 48000.0), 0.02f, row.slope, seed);
            return toVector(randomization.getCoefficients(Signal32(1, randomization.getNumOfBins(), 1.0f)),
                            0);
        };
        const auto burst = getBurst(1);
        const std::span<const float> samples = burst;
        const double fall = getLevel(samples.first(480)) - getLevel(samples.last(480));
        EXPECT_GT(fall, row.lowest);
        EXPECT_LT(fall, row.highest);
        EXPECT_NE(getBurst(2), burst);
        EXPECT_EQ(getBurst(1), burst);
    }
}
