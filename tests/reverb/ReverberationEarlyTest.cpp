#include <gtest/gtest.h>

#include "dsp/NoiseGenerator.h"
#include "reverb/ReverberationSettings.h"
#include "tests/reverb/Engine.h"

namespace vesk::audio
{

using namespace test;
using R = Reverberation;

namespace
{
constexpr double rate = 48000.0;

/** The linear-phase equalizer leaves the pattern one sample late. */
constexpr int equalizerDelay = 1;

const Settings earlyOnly = wetOnly + flat + Settings{{R::muteTail, 1.0f}};

Signal32 getResponse(int channels, const Settings& settings, int input = 0, double sampleRate = rate)
{
    const auto engine = makeEngine(channels, sampleRate, earlyOnly + settings);
    return render(*engine, makeImpulse(channels, static_cast<int>(0.5 * sampleRate), {input}));
}

/** Where the noise of one row begins in the stream that all rows of a mono pattern share, and its length. */
std::pair<int, int> locateNoise(int pattern, std::size_t row, float roomSize, double sampleRate)
{
    const float fall = 0.003f * (1.0f + 4.0f * roomSize / 100.0f);
    int begin = 0;
    for (std::size_t k = 0;; ++k)
    {
        const float length =
            ReverberationSettings::earlyPatterns[static_cast<std::size_t>(pattern)].reflections[k].length;
        const int samples = static_cast<int>(static_cast<double>(fall / 10.0f * length) * sampleRate) +
                            static_cast<int>(static_cast<double>(fall * length) * sampleRate);
        if (k == row)
            return {begin, samples};
        begin += samples;
    }
}
} // namespace

/** Each row's burst is found by its noise, which comes from a constant seed. */
TEST(EarlyReflections, burstsArriveAtTheirSamples)
{
    struct Case
    {
        int pattern;
        std::size_t row;
        float roomSize;
        double sampleRate;
        int arrival;
    };
    const Case cases[] = {
        {2, 3, 30.0f, 48000.0, 1583}, // 33 ms, of which single precision leaves a little less
        {2, 0, 0.0f, 48000.0, 240},   {2, 6, 100.0f, 44100.0, 6615},  {5, 0, 60.0f, 48000.0, 0},
        {6, 0, 0.0f, 96000.0, 0},     {0, 3, 0.0f, 48000.0, 432},     {7, 7, 50.0f, 48000.0, 6048},
        {9, 18, 0.0f, 48000.0, -1},   {10, 10, 20.0f, 48000.0, 4752},
    };
    for (const auto& [pattern, row, roomSize, sampleRate, arrival] : cases)
    {
        SCOPED_TRACE(testing::Message() << "pattern " << pattern << ", row " << row);
        const Signal32 response = getResponse(
            1, {{R::earlyPattern, static_cast<float>(pattern)}, {R::roomSize, roomSize}}, 0, sampleRate);
        const auto [begin, length] = locateNoise(pattern, row, roomSize, sampleRate);
        const Signal32 noise = NoiseGenerator(1, vo::Gaussian, 1.0f, 0.0f, 0).generate(begin + length);
        double best = 0.0;
        int found = -1;
        for (int lag = 0; lag + length < response.numSamples; ++lag)
        {
            const double match = getCorrelation(getRange(noise, 0, begin, begin + length),
                                                getRange(response, 0, lag, lag + length));
            if (match > best)
            {
                best = match;
                found = lag;
            }
        }
        if (arrival < 0)
        {
            EXPECT_LT(best, 0.25); // balance -1: in mono there is no other side
            continue;
        }
        EXPECT_GT(best, 0.3);
        EXPECT_EQ(found, arrival + equalizerDelay);
    }
}

/** A row alone: it rises from -24 dB in a tenth of the time in which it falls back. */
TEST(EarlyReflections, burstsRiseAndFall)
{
    // Room 1 at full size: the first burst from 720 to 720 + 72 + 720, the next one at 1440.
    const Signal32 response = getResponse(1, {{R::earlyPattern, 0.0f}, {R::roomSize, 100.0f}});
    const auto getLevelAt = [&](int begin, int end)
    { return getLevel(getRange(response, 0, begin + equalizerDelay, end + equalizerDelay)); };
    const double top = getLevelAt(780, 840);
    EXPECT_LT(getLevelAt(600, 715), top - 40.0);
    EXPECT_NEAR(getLevelAt(720, 736), top - 20.0, 4.0);
    EXPECT_NEAR(getLevelAt(776, 792), top - 1.0, 4.0);
    EXPECT_NEAR(getLevelAt(1080, 1160), top - 10.0, 3.0);
    EXPECT_NEAR(getLevelAt(1340, 1436), top - 19.0, 3.0);
}

/** Balance 1 keeps a burst on the input's side, -1 sends it across. */
TEST(EarlyReflections, balanceChoosesTheSide)
{
    for (const int input : {0, 1})
    {
        // Plate 2 alternates from the first sample on, every 3 ms.
        const Signal32 response = getResponse(2, {{R::earlyPattern, 6.0f}, {R::roomSize, 100.0f}}, input);
        const double own = getLevel(getRange(response, input, 0, 700));
        EXPECT_GT(own, -50.0);
        EXPECT_LT(getLevel(getRange(response, 1 - input, 0, 700)), own - 40.0);
        EXPECT_GT(getLevel(getRange(response, 1 - input, 760, 1400)), own - 30.0);
    }
}

/** From front to rear the pattern comes later, by three times its second arrival. */
TEST(EarlyReflections, rearSpeakersHearLater)
{
    // Room 1: first burst at 3 ms, 18 ms more to the rear.
    const Signal32 response = getResponse(4, {{R::earlyPattern, 0.0f}, {R::roomSize, 0.0f}});
    const auto findOnset = [&](int output)
    {
        const auto samples = getChannel(response, output);
        const double threshold = 0.01 * getPeak(samples);
        return std::ranges::find_if(samples,
                                    [&](float s) { return std::abs(static_cast<double>(s)) > threshold; }) -
               samples.begin();
    };
    EXPECT_NEAR(static_cast<double>(findOnset(0)), 144.0, 6.0);
    EXPECT_NEAR(static_cast<double>(findOnset(1)), 144.0, 12.0);
    EXPECT_NEAR(static_cast<double>(findOnset(2)), 144.0 + 864.0, 12.0);
}

/** earlyLevel raises the start of the pattern and leaves its end where the decay puts it; below -24 dB all of it
    goes down. */
TEST(EarlyReflections, levelTiltsThePattern)
{
    const auto getLevels = [](float level)
    {
        // Plate 1: only the first row sounds before 3 ms, only the last one after 54 ms.
        const Signal32 response =
            getResponse(1, {{R::earlyPattern, 5.0f}, {R::roomSize, 0.0f}, {R::earlyLevel, level}});
        return std::pair(getLevel(getRange(response, 0, 20, 130)),
                         getLevel(getRange(response, 0, 2600, 2680)));
    };
    const auto [start, end] = getLevels(0.0f);
    for (const auto& [level, startGain, endGain] :
         {std::array{18.0f, 18.0f, 0.0f}, {-12.0f, -12.0f, 0.0f}, {-48.0f, -48.0f, -24.0f}})
    {
        const auto [otherStart, otherEnd] = getLevels(level);
        EXPECT_NEAR(otherStart - start, static_cast<double>(startGain), 0.1) << level;
        EXPECT_NEAR(otherEnd - end, static_cast<double>(endGain), 0.3) << level;
    }
    // The decay alone: between the first and the last window, 30 ms of reverb time and the rows' gains.
    const auto getEnd = [](float time)
    {
        return getLevel(
            getRange(getResponse(1, {{R::earlyPattern, 5.0f}, {R::roomSize, 0.0f}, {R::reverbTime, time}}), 0,
                     2600, 2680));
    };
    EXPECT_NEAR(getEnd(0.5f) - getEnd(32.0f), -60.0 * 0.03 * (1.0 / 0.5 - 1.0 / 32.0), 0.1);
}

/** The equalizer is in the response, with linear phase: it takes away high frequencies and moves nothing. */
TEST(EarlyReflections, equalizerShapesTheResponse)
{
    const Signal32 open = getResponse(1, {});
    const Signal32 dark = getResponse(1, {{R::lowPassFrequency, 1000.0f}});
    const auto getChange = [&](double octave)
    {
        return getLevel(filterOctave(getChannel(dark, 0), octave, rate)) -
               getLevel(filterOctave(getChannel(open, 0), octave, rate));
    };
    EXPECT_NEAR(getChange(250.0), 0.0, 0.3);
    EXPECT_NEAR(getChange(2000.0), -20.0, 4.0);
    EXPECT_LT(getChange(4000.0), -32.0);
    const auto low = [](const Signal32& signal) { return filterOctave(getChannel(signal, 0), 250.0, rate); };
    EXPECT_GT(getCorrelation(low(open), low(dark)), 0.999);
}

} // namespace vesk::audio
