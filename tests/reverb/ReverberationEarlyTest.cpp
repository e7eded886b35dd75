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

struct Room
{
    int pattern;
    float size;       ///< %
    float reverbTime; ///< s
    float level;      ///< dB
};

/** What an impulse into one channel gives in each, by definition: each row is a burst of the one stream of noise that
    has a constant seed. It rises from -24 dB in a tenth of the time in which it falls back.
    Times are in single precision, which is part of the sound: 33 ms can be a sample less. */
Signal32 makeBursts(const AudioFormat& format, int source, const Room& room, int length)
{
    const auto pattern =
        ReverberationSettings::earlyPatterns[static_cast<std::size_t>(room.pattern)].reflections;
    const float scale = 1.0f + 4.0f * room.size / 100.0f;
    const float lastTime = std::ranges::max(pattern, {}, &ReverberationSettings::Reflection::time).time;
    const auto toSamples = [&](float seconds)
    { return static_cast<int>(static_cast<double>(seconds) * format.sampleRate); };

    Signal32 result(format.numChannels, length, 0.0f);
    NoiseGenerator noise(1, vo::Gaussian, 1.0f, 0.0f, 0);
    for (int input = 0; input <= source; ++input)
        for (const auto& row : pattern)
        {
            const float fall = 0.003f * scale;
            const int rising = toSamples(fall / 10.0f * row.length), falling = toSamples(fall * row.length);
            const Signal32 burst = noise.generate(rising + falling);
            for (int output = 0; input == source && output < format.numChannels; ++output)
            {
                const auto& from = format.speakers[static_cast<std::size_t>(input)];
                const auto& to = format.speakers[static_cast<std::size_t>(output)];
                // Speakers on the other side and in front or behind; there the pattern comes later and softer.
                const float across = std::max(std::abs(from.x - to.x), std::abs(from.y - to.y));
                const float depth = std::abs(from.y - to.y) / 2.0f;
                const float delay = scale * 3.0f * pattern[1].time * depth;
                const float time = row.time * scale;
                // The decay of the tail, tilted by the level: its start moves, its end stays.
                const double level = -40.0 + room.level - std::max(room.level, -24.0f) * row.time / lastTime +
                                     row.gain - 60.0 * time / 1000.0 / room.reverbTime - 6.0 * depth;
                const double side = 0.5 * std::sqrt((1.0 - across) * row.balance + 1.0);
                const int begin = toSamples(0.001f * (time + delay)) + equalizerDelay;
                for (int n = 0; n < burst.numSamples && begin + n < length; ++n)
                {
                    const double envelope = n < rising ? 24.0 * (static_cast<double>(n) / rising - 1.0)
                                                       : -24.0 * (n - rising) / falling;
                    result.getWriteChannelPtr(output)[begin + n] +=
                        static_cast<float>(side * std::pow(10.0, (level + envelope) / 20.0)) *
                        burst.getChannelPtr(0)[n];
                }
            }
        }
    return result;
}
} // namespace

/** Compared window by window. A sample of displacement alone would make an error of twice the energy. */
TEST(EarlyReflections, areTheBurstsOfTheirPattern)
{
    // Rates are low, as the equalizer is not flat near 25 kHz.
    for (const auto& [channels, sampleRate, room] :
         {std::tuple{1, 32000.0, Room{2, 30.0f, 2.0f, 0.0f}}, // 33 ms, less a bit
          {1, 24000.0, Room{2, 100.0f, 2.0f, 0.0f}},
          {1, 32000.0, Room{5, 60.0f, 2.0f, -12.0f}},
          {2, 32000.0, Room{6, 0.0f, 2.0f, 18.0f}},
          {2, 22050.0, Room{7, 50.0f, 0.5f, -48.0f}},
          {1, 32000.0, Room{9, 0.0f, 2.0f, 0.0f}},
          {4, 32000.0, Room{10, 20.0f, 32.0f, -30.0f}}})
    {
        const AudioFormat format(channels, sampleRate);
        const auto engine =
            makeEngine(format, format,
                       earlyOnly + Settings{{R::earlyPattern, static_cast<float>(room.pattern)},
                                            {R::roomSize, room.size},
                                            {R::reverbTime, room.reverbTime},
                                            {R::earlyLevel, room.level}});
        const int window = static_cast<int>(0.01 * sampleRate), numWindows = 50;
        for (int input = 0; input < channels; ++input)
        {
            engine->reset();
            const Signal32 response = render(*engine, makeImpulse(channels, numWindows * window, {input}));
            const Signal32 expected = makeBursts(format, input, room, response.numSamples);
            const Signal32 error = response + -1.0f * expected;
            for (int output = 0; output < channels; ++output)
            {
                SCOPED_TRACE(testing::Message()
                             << "pattern " << room.pattern << ", from " << input << " to " << output);
                const double floor = 0.01 * getEnergy(getChannel(expected, output));
                for (int begin = 0; begin < response.numSamples; begin += window)
                {
                    const auto getWindowEnergy = [&](const Signal32& signal)
                    { return getEnergy(getRange(signal, output, begin, begin + window)); };
                    const double energy = getWindowEnergy(expected);
                    EXPECT_LT(getWindowEnergy(error), 0.03 * (energy + floor)) << "at sample " << begin;
                    if (energy > floor)
                    {
                        EXPECT_NEAR(getWindowEnergy(response) / energy, 1.0, 0.04) << "at sample " << begin;
                    }
                }
            }
        }
    }
}

/** With linear phase the equalizer takes away high frequencies and moves nothing. */
TEST(EarlyReflections, equalizerShapesTheResponse)
{
    const auto getBand = [](float corner, double octave)
    {
        const auto engine = makeEngine(1, rate, earlyOnly + Settings{{R::lowPassFrequency, corner}});
        return filterOctave(getChannel(render(*engine, makeImpulse(1, 24000, {0})), 0), octave, rate);
    };
    const auto getChange = [&](double octave)
    { return getLevel(getBand(1000.0f, octave)) - getLevel(getBand(25000.0f, octave)); };
    EXPECT_NEAR(getChange(250.0), 0.0, 0.3);
    EXPECT_NEAR(getChange(2000.0), -20.0, 4.0);
    EXPECT_LT(getChange(4000.0), -32.0);
    EXPECT_GT(getCorrelation(getBand(25000.0f, 250.0), getBand(1000.0f, 250.0)), 0.999);
}

} // namespace vesk::audio
