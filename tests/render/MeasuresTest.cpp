#include "tests/render/TestAudio.h"
#include "tests/support/AudioMeasures.h"

#include "tools/render/RoomPlot.h"
#include "tools/render/RoomReport.h"
#include "tools/render/measures/Colouration.h"
#include "tools/render/measures/EnergyDecay.h"
#include "tools/render/measures/OctaveFilter.h"
#include "tools/render/measures/RoomMeasures.h"
#include "tools/render/measures/StereoImage.h"

#include <numeric>
#include <random>

namespace ambrel::measures
{
namespace
{
using render::test::createSine;
using vesk::audio::test::getEnergy;

constexpr double rate = 48000.0;

std::vector<float> createGaussianNoise(std::size_t length, unsigned seed)
{
    std::mt19937 random(seed);
    std::normal_distribution<float> gaussian;
    std::vector<float> noise(length);
    std::ranges::generate(noise, [&] { return gaussian(random); });
    return noise;
}

/** Noise that falls by 60 dB in a time. */
std::vector<float> createDecay(double seconds, double decayTime, unsigned seed, double sampleRate = rate)
{
    std::vector<float> decay = createGaussianNoise(static_cast<std::size_t>(seconds * sampleRate), seed);
    for (std::size_t i = 0; i < decay.size(); ++i)
        decay[i] *=
            static_cast<float>(std::pow(10.0, -3.0 * static_cast<double>(i) / sampleRate / decayTime));
    return decay;
}

std::vector<double> squared(std::span<const float> samples)
{
    std::vector<double> energy;
    for (const float sample : samples)
        energy.push_back(static_cast<double>(sample) * static_cast<double>(sample));
    return energy;
}

} // namespace

TEST(OctaveFilter, passesItsOctaveAndNothingElse)
{
    for (const double centre : {63.0, 1000.0, 8000.0})
        for (const auto& [ratio, lowest, highest] : {std::tuple{1.0, -0.05, 0.05},
                                                     {std::numbers::sqrt2, -3.4, -2.6},
                                                     {1.0 / std::numbers::sqrt2, -3.4, -2.6},
                                                     {2.0, -60.0, -18.0},
                                                     {0.25, -120.0, -38.0}})
        {
            const auto sine = createSine(1, 96000, centre * ratio, rate, 1.0f);
            const std::span<const float> samples(sine.getReadPointer(0), 96000);
            const OctaveFilter filter(centre, rate);
            for (const auto& band : {filter.filter(samples), filter.filterReversed(samples)})
            {
                const double gain =
                    10.0 * std::log10(getEnergy(std::span(band).subspan(24000, 48000)) / 24000.0);
                EXPECT_GE(gain, lowest) << centre << " Hz, ratio " << ratio;
                EXPECT_LE(gain, highest) << centre << " Hz, ratio " << ratio;
            }
        }
    EXPECT_TRUE(OctaveFilter::canMeasure(8000.0, 44100.0));
    EXPECT_FALSE(OctaveFilter::canMeasure(8000.0, 22050.0));
}

/** A decay of 2 s that is cut after 1.4 s has 42 dB: enough for T20, not for T30 with a margin. */
TEST(EnergyDecay, makesUpForAnEarlyEndAndKeepsSilentWhereItWouldGuess)
{
    const EnergyDecay cut(squared(createDecay(1.4, 2.0, 2)), rate);
    EXPECT_NEAR(cut.getTime(-5.0, -25.0).value_or(0.0), 2.0, 0.06);
    EXPECT_FALSE(cut.getTime(-5.0, -35.0).has_value());

    const EnergyDecay longer(squared(createDecay(1.7, 2.0, 2)), rate);
    EXPECT_NEAR(longer.getTime(-5.0, -35.0).value_or(0.0), 2.0, 0.06);

    const EnergyDecay noise(squared(createGaussianNoise(96000, 3)), rate);
    EXPECT_FALSE(noise.getTime(-5.0, -25.0).has_value());

    const EnergyDecay silence(std::vector<double>(1000, 0.0), rate);
    EXPECT_FALSE(silence.getTime(0.0, -10.0).has_value());
    EXPECT_TRUE(silence.getCurve().empty());
}

/** A train of impulses has few echoes, and a spectrum of lines. */
TEST(RoomMeasures, tellNoiseFromATrainOfImpulses)
{
    for (const double sampleRate : {8000.0, 44100.0, 96000.0})
    {
        const std::vector<float> noise = createDecay(3.0, 2.3, 8, sampleRate);
        EXPECT_NEAR(measureSpectralFlatness(noise, sampleRate, 0.5).value_or(0.0), 0.5615, 0.025);
        EXPECT_LT(EchoDensity(noise, sampleRate).getTimeOf(0.9).value_or(9.0), 0.02);

        std::vector<float> train(noise.size(), 0.0f);
        for (std::size_t i = 0; i < train.size(); i += static_cast<std::size_t>(sampleRate / 160.0))
            train[i] = 1.0f;
        EXPECT_LT(measureSpectralFlatness(train, sampleRate, 0.5).value_or(1.0), 0.4) << sampleRate;
        const EchoDensity echoes(train, sampleRate);
        EXPECT_LT(std::ranges::max(echoes.getProfile()), 0.1f);
        EXPECT_FALSE(echoes.getTimeOf(0.9).has_value());
    }
    EXPECT_FALSE(measureSpectralFlatness(createGaussianNoise(48000, 9), rate, 0.5).has_value())
        << "too short";
}

TEST(StereoImage, tellsEqualDelayedAndIndependentChannels)
{
    const std::vector<float> left = createGaussianNoise(24000, 10);
    const std::vector<float> other = createGaussianNoise(24000, 11);
    const auto delayed = [&](int samples)
    {
        std::vector<float> result(left.size(), 0.0f);
        std::copy(left.begin(), left.end() - samples, result.begin() + samples);
        return result;
    };
    EXPECT_NEAR(measureCorrelation(left, left, rate), 1.0, 1e-6);
    EXPECT_NEAR(measureCorrelation(left, delayed(30), rate), 1.0, 0.01) << "within 1 ms";
    EXPECT_NEAR(measureCorrelation(delayed(30), left, rate), 1.0, 0.01);
    EXPECT_LT(measureCorrelation(left, delayed(100), rate), 0.05) << "beyond 1 ms";
    EXPECT_LT(measureCorrelation(left, other, rate), 0.05);
    EXPECT_EQ(measureCorrelation(left, std::vector<float>(24000, 0.0f), rate), 0.0);

    std::vector<float> late = delayed(9600);
    std::vector<float> half = late;
    for (float& sample : half)
        sample *= 0.5f;
    const auto balance = measureBalance(late, half, 4800);
    ASSERT_EQ(balance.size(), 3u) << "silence in front is left out";
    for (const double difference : balance)
        EXPECT_NEAR(difference, 6.02, 0.01);
}

TEST(RoomMeasures, areThoseOfASyntheticRoom)
{
    constexpr double time = 1.2;
    const StereoResponse response{rate, createDecay(2.5, time, 20), createDecay(2.5, time, 21)};
    const RoomMeasures measures = measureRoom(response);
    ASSERT_EQ(measures.octaves.size(), 8u);
    std::vector<BandMeasures> bands = measures.octaves;
    bands.push_back(measures.broadband);
    for (const BandMeasures& band : bands)
    {
        // Narrow bands of noise scatter: the 63 Hz octave holds some 100 independent values.
        const double tolerance = band.centre == 0.0 ? 0.026 : band.centre < 250.0 ? 0.15 : 0.05;
        EXPECT_NEAR(band.t30.value_or(0.0), time, tolerance * time) << band.centre;
        EXPECT_NEAR(band.t20.value_or(0.0), time, 1.5 * tolerance * time) << band.centre;
        for (const auto& [clarity, border] : {std::pair{band.c50, 0.05}, {band.c80, 0.08}})
            EXPECT_NEAR(clarity.value_or(99.0), 10.0 * std::log10(std::pow(10.0, 6.0 * border / time) - 1.0),
                        30.0 * tolerance)
                << band.centre;
    }

    EXPECT_NEAR(measures.broadband.earlyDecayTime.value_or(0.0), time, 0.06 * time);
    EXPECT_LT(measures.broadband.straightness.value_or(9.0), 0.5);
    EXPECT_NEAR(measures.broadband.level.value_or(0.0),
                10.0 * std::log10(getEnergy(response.left) + getEnergy(response.right)), 0.01);
    EXPECT_NEAR(*measures.octaves[6].level - *measures.octaves[4].level, 6.0, 1.0)
        << "two octaves up, white noise";
    EXPECT_LT(measures.mixingTime.value_or(9.0), 0.02);
    EXPECT_NEAR(measures.flatness.value_or(0.0), 0.5615, 0.025);
    EXPECT_LT(measures.correlationLate, 0.06);
    EXPECT_NEAR(static_cast<double>(measures.balance.size()), time / RoomMeasures::balanceStep, 1.0)
        << "down to -60 dB";
    EXPECT_NEAR(measures.broadband.decay.at(40), -10.0, 0.5) << "0.2 s";
}

TEST(RoomMeasures, aSilentOrShortResponseHasNone)
{
    for (const std::size_t length : {std::size_t{1}, std::size_t{100}, std::size_t{48000}})
    {
        const StereoResponse silent{rate, std::vector<float>(length), std::vector<float>(length)};
        const RoomMeasures measures = measureRoom(silent);
        EXPECT_FALSE(measures.peak.has_value());
        EXPECT_FALSE(measures.broadband.level.has_value());
        EXPECT_FALSE(measures.mixingTime.has_value());
        EXPECT_FALSE(measures.flatness.has_value());
        EXPECT_TRUE(measures.balance.empty());
        const auto report = juce::JSON::parse(juce::String(render::createReportJson(measures, {})));
        EXPECT_TRUE(report["broadband"].hasProperty("t30") && report["broadband"]["t30"].isVoid());
        EXPECT_FALSE(render::createReportTable(measures, {}).empty());
        EXPECT_FALSE(render::createRoomPlot(silent, measures, {}).isEmpty());
    }
}

} // namespace ambrel::measures
