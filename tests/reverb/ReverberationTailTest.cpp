#include <gtest/gtest.h>

#include "tests/reverb/Engine.h"

namespace vesk::audio
{

using namespace test;
using R = Reverberation;

namespace
{
constexpr double rate = 48000.0;
const Settings tailOnly = wetOnly + Settings{{R::muteEarly, 1.0f}};

Signal32 getResponse(const Settings& settings, double seconds)
{
    return render(*makeEngine(2, rate, tailOnly + settings),
                  makeImpulse(2, static_cast<int>(seconds * rate), {0, 1}));
}
} // namespace

TEST(ReverberationTail, decaysByTheReverbTimeWithTimesOfItsOwnForLowAndHighFrequencies)
{
    for (const auto& [reverbTime, lowTimeScale, damping, octave, relativeTime, tolerance] :
         {std::tuple{0.5f, 100.0f, 12000.0f, 500.0, 1.0, 0.06},
          {1, 100, 12000, 1000, 1.0, 0.06},
          {4, 100, 12000, 500, 1.0, 0.06},
          {2, 200, 12000, 63, 2.0, 0.25},
          {2, 200, 12000, 125, 1.85, 0.25},
          {2, 200, 12000, 2000, 0.91, 0.06},
          {2, 50, 12000, 63, 0.5, 0.1},
          {2, 50, 12000, 125, 0.55, 0.1},
          {2, 50, 12000, 2000, 0.91, 0.06},
          {2, 100.5f, 12000, 63, 1.0, 0.15},
          {2, 100, 20000, 8000, 0.95, 0.15},
          {2, 100, 2000, 8000, 0.15, 0.15}})
    {
        const Signal32 response = getResponse(
            {{R::reverbTime, reverbTime}, {R::lowTimeScale, lowTimeScale}, {R::dampingFrequency, damping}},
            2.0 * static_cast<double>(reverbTime));
        // Mean of the two sides: one octave of one response is a small sample.
        double time = 0.0;
        for (int c = 0; c < 2; ++c)
            time += 0.5 * getDecayTime(filterOctave(getChannel(response, c), octave, rate), rate);
        EXPECT_NEAR(time / static_cast<double>(reverbTime), relativeTime, tolerance)
            << reverbTime << " s, low " << lowTimeScale << ", damping " << damping << ", octave " << octave;
    }
}

/** A dense, balanced tail whose sides are unlike each other. */
TEST(ReverberationTail, isDenseAndWide)
{
    const Signal32 response = getResponse({}, 1.5);
    double density = 0.0;
    constexpr int windows = 32;
    for (int k = 0; k < windows; ++k)
        density += getEchoDensity(getRange(response, 0, 14400 + 1024 * k, 14400 + 1024 * (k + 1))) / windows;
    EXPECT_NEAR(density, 1.0, 0.08);
    const auto left = getRange(response, 0, 9600, 40000), right = getRange(response, 1, 9600, 40000);
    EXPECT_LT(std::abs(getCorrelation(left, right)), 0.08);
    EXPECT_NEAR(getLevel(left), getLevel(right), 0.6);
}

TEST(ReverberationTail, equalizerShapesTheTail)
{
    const Signal32 plain = getResponse(flat, 1.0);
    const Signal32 bright = getResponse(flat + Settings{{R::highShelfGain, 12.0f}}, 1.0);
    for (const auto& [octave, change, tolerance] : {std::array{125.0, 0.0, 0.3}, {8000.0, 11.6, 0.6}})
        EXPECT_NEAR(getLevel(filterOctave(getChannel(bright, 1), octave, rate)) -
                        getLevel(filterOctave(getChannel(plain, 1), octave, rate)),
                    change, tolerance);
}

TEST(ReverberationTail, changesUnderARunningTail)
{
    const auto engine = makeEngine(2, rate, tailOnly + Settings{{R::modulationDepth, 0.0f}});
    render(*engine, makeNoiseSignal(2, 9600, 2));
    const auto getNextLevel = [&](double seconds)
    { return getLevel(getChannel(render(*engine, Signal32(2, static_cast<int>(seconds * rate), 0.0f)), 0)); };
    const double before = getNextLevel(0.1);
    EXPECT_GT(before, -40.0);

    // Gains and filters change without a jump in level.
    applySettings(*engine,
                  {{R::reverbTime, 32.0f}, {R::dampingFrequency, 8000.0f}, {R::lowTimeScale, 120.0f}});
    EXPECT_NEAR(getNextLevel(0.1), before, 4.0);

    // A new room starts empty; what the post-processor holds ends within its 0.1 s.
    applySettings(*engine, {{R::roomSize, 31.0f}});
    getNextLevel(0.1);
    EXPECT_LT(getPeak(getChannel(render(*engine, Signal32(2, 9600, 0.0f)), 1)), 1e-6);
}

/** Without depth the stage is out of the path; with it a steady tone moves in pitch. */
TEST(ReverberationTail, modulationMovesTones)
{
    const auto getImpurity = [](float depth)
    {
        const auto engine =
            makeEngine(1, rate, tailOnly + Settings{{R::modulationDepth, depth}, {R::reverbTime, 0.3f}});
        constexpr int length = 48000;
        constexpr double frequency = 997.0 / rate;
        Signal32 tone(1, 2 * length);
        for (int n = 0; n < 2 * length; ++n)
            tone.getWriteChannelPtr(0)[n] =
                static_cast<float>(std::sin(2.0 * std::numbers::pi * frequency * n));
        const Signal32 tail = slice(render(*engine, tone), length, length);
        const double toneEnergy = 2.0 / length * std::norm(spectrumAt(getChannel(tail, 0), frequency));
        return 1.0 - toneEnergy / getEnergy(getChannel(tail, 0));
    };
    EXPECT_LT(getImpurity(0.0f), 1e-4);
    EXPECT_GT(getImpurity(10.0f), 1e-3);
    EXPECT_GT(getImpurity(100.0f), 0.3);
}

} // namespace vesk::audio
