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

/** Mean of the two sides: one octave of one response is a small sample. */
double getOctaveDecay(const Signal32& response, double octave)
{
    double sum = 0.0;
    for (int c = 0; c < 2; ++c)
        sum += getDecayTime(filterOctave(getChannel(response, c), octave, rate), rate);
    return sum / 2.0;
}
} // namespace

TEST(ReverberationTail, decaysByTheReverbTimeAtMiddleFrequencies)
{
    for (const float time : {0.5f, 1.0f, 2.0f, 4.0f})
    {
        const Signal32 response = getResponse({{R::reverbTime, time}}, static_cast<double>(time));
        for (const double octave : {500.0, 1000.0})
        {
            const double measured = getOctaveDecay(response, octave) / static_cast<double>(time);
            RecordProperty(std::to_string(time) + " s at " + std::to_string(octave),
                           std::to_string(measured));
            EXPECT_NEAR(measured, 1.0, 0.06) << time << " s at " << octave;
        }
    }
}

TEST(ReverberationTail, lowAndHighFrequenciesHaveTimesOfTheirOwn)
{
    struct Case
    {
        float lowTimeScale, damping;
        double octave, relativeTime, tolerance;
    };
    for (const auto& [lowTimeScale, damping, octave, relativeTime, tolerance] :
         {Case{200, 12000, 63, 2.0, 0.25},
          {200, 12000, 125, 1.85, 0.25},
          {200, 12000, 2000, 0.91, 0.06},
          {50, 12000, 63, 0.5, 0.1},
          {50, 12000, 125, 0.55, 0.1},
          {50, 12000, 2000, 0.91, 0.06},
          {100.5f, 12000, 63, 1.0, 0.15},
          {100, 20000, 8000, 0.95, 0.15},
          {100, 2000, 8000, 0.15, 0.15}})
    {
        const Signal32 response =
            getResponse({{R::lowTimeScale, lowTimeScale}, {R::dampingFrequency, damping}}, 4.0);
        EXPECT_NEAR(getOctaveDecay(response, octave) / 2.0, relativeTime, tolerance)
            << "low " << lowTimeScale << ", damping " << damping << ", octave " << octave;
    }
}

/** A dense, balanced tail whose sides are unlike each other. */
TEST(ReverberationTail, isDenseAndWide)
{
    const Signal32 response = getResponse({}, 1.5);
    double density = 0.0;
    int windows = 0;
    for (int begin = 14400; begin + 1024 < 48000; begin += 1024, ++windows)
        density += getEchoDensity(getRange(response, 0, begin, begin + 1024));
    EXPECT_NEAR(density / windows, 1.0, 0.08);
    EXPECT_LT(
        std::abs(getCorrelation(getRange(response, 0, 9600, 40000), getRange(response, 1, 9600, 40000))),
        0.08);
    EXPECT_NEAR(getLevel(getRange(response, 0, 9600, 40000)), getLevel(getRange(response, 1, 9600, 40000)),
                0.6);
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
    const auto excite = [&]
    {
        engine->reset();
        render(*engine, makeNoiseSignal(2, 9600, 2));
    };
    const auto getNextLevel = [&](double seconds)
    { return getLevel(getChannel(render(*engine, Signal32(2, static_cast<int>(seconds * rate), 0.0f)), 0)); };
    excite();
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

    excite();
    engine->reset();
    EXPECT_EQ(getPeak(getChannel(render(*engine, Signal32(2, 9600, 0.0f)), 1)), 0.0);
}

/** Without depth the stage is out of the path; with it a steady tone moves in pitch. */
TEST(ReverberationTail, modulationMovesTones)
{
    const auto getImpurity = [](float depth)
    {
        const auto engine =
            makeEngine(1, rate, tailOnly + Settings{{R::modulationDepth, depth}, {R::reverbTime, 0.3f}});
        constexpr int length = 48000;
        Signal32 tone(1, 2 * length);
        for (int n = 0; n < 2 * length; ++n)
            tone.getWriteChannelPtr(0)[n] =
                static_cast<float>(std::sin(2.0 * std::numbers::pi * 997.0 * n / rate));
        const Signal32 tail = slice(render(*engine, tone), length, length);
        // What is left without the tone itself.
        double re = 0.0, im = 0.0;
        for (int n = 0; n < length; ++n)
        {
            const double phase = 2.0 * std::numbers::pi * 997.0 * n / rate;
            re += static_cast<double>(tail.getChannelPtr(0)[n]) * std::cos(phase) * 2.0 / length;
            im += static_cast<double>(tail.getChannelPtr(0)[n]) * std::sin(phase) * 2.0 / length;
        }
        return 1.0 - 0.5 * (re * re + im * im) * length / getEnergy(getChannel(tail, 0));
    };
    EXPECT_LT(getImpurity(0.0f), 1e-4);
    EXPECT_GT(getImpurity(10.0f), 1e-3);
    EXPECT_GT(getImpurity(100.0f), 0.3);
}

} // namespace vesk::audio
