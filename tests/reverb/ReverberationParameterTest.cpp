#include <gtest/gtest.h>

#include "tests/reverb/Engine.h"

#include <limits>
#include <stdexcept>

namespace vesk::audio
{

using namespace test;
using R = Reverberation;

TEST(ReverberationParameters, startWithinTheirRangesAndSurviveFormatsAndResets)
{
    Reverberation engine;
    for (const ParameterInfo& info : parameterTable)
    {
        float low = 0.0f, high = 0.0f;
        engine.getParameterRange(info.index, low, high);
        const float value = engine.getParameterValue(info.index);
        EXPECT_TRUE(low < high && low <= value && value <= high) << info.name;
        engine.setParameterValue(info.index, high, false);
    }
    const AudioFormat stereo(2, 44100.0);
    EXPECT_TRUE(engine.setFormat(stereo, stereo));
    engine.reset();
    EXPECT_FALSE(engine.setFormat(stereo, AudioFormat(2, 48000.0)));
    for (const ParameterInfo& info : parameterTable)
        EXPECT_EQ(engine.getParameterValue(info.index), info.maximum) << info.name;
}

TEST(ReverberationParameters, valuesAreClampedAndRounded)
{
    using Limits = std::numeric_limits<float>;
    Reverberation engine;
    for (const auto& [parameter, set, stored] : {std::tuple{R::lowPassFrequency, 30000.0f, 25000.0f},
                                                 {R::lowPassFrequency, -1.0f, 200.0f},
                                                 {R::earlyPattern, 2.6f, 3.0f},
                                                 {R::earlyPattern, 99.0f, 10.0f},
                                                 {R::muteTail, 0.5f, 0.0f},
                                                 {R::muteTail, 0.51f, 1.0f},
                                                 {R::reverbTime, 0.0f, 0.1f},
                                                 {R::reverbTime, Limits::infinity(), 32.0f},
                                                 {R::roomSize, Limits::quiet_NaN(), 100.0f}})
    {
        engine.setParameterValue(parameter, set, false);
        EXPECT_EQ(engine.getParameterValue(parameter), stored) << parameter << " set to " << set;
    }
}

TEST(ReverberationParameters, unknownIndicesAreRefused)
{
    Reverberation engine;
    float low = 7.0f, high = 8.0f;
    for (const int index : {-1, 26, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    {
        EXPECT_THROW(engine.getParameterRange(index, low, high), std::out_of_range);
        EXPECT_THROW(engine.getParameterValue(index), std::out_of_range);
        EXPECT_THROW(engine.setParameterValue(index, 1.0f, true), std::out_of_range);
    }
    EXPECT_EQ(low, 7.0f);
    EXPECT_EQ(high, 8.0f);
}

/** The dear rebuilds wait for the end of a batch, whoever ends it. */
TEST(ReverberationParameters, responsesAreRebuiltWhenToldSo)
{
    for (const auto mute : {R::muteTail, R::muteEarly})
    {
        const auto engine =
            makeEngine(2, 48000.0, wetOnly + Settings{{mute, 1.0f}, {R::modulationDepth, 0.0f}});
        const auto getWetEnergy = [&]
        {
            engine->reset();
            return getEnergy(getChannel(render(*engine, makeImpulse(2, 12000, {0})), 0));
        };
        const double before = getWetEnergy();
        engine->setParameterValue(R::highShelfGain, -12.0f, false);
        EXPECT_DOUBLE_EQ(getWetEnergy(), before);
        // No change of its own, yet it ends the batch.
        engine->setParameterValue(R::wetGain, 0.0f, true);
        EXPECT_LT(getWetEnergy(), 0.5 * before);
        engine->setParameterValue(R::highShelfGain, 0.0f, true);
        EXPECT_DOUBLE_EQ(getWetEnergy(), before);
    }
}

/** Without channels nothing can be built; the next valid format makes up for it. */
TEST(ReverberationParameters, formatWithoutChannelsWaits)
{
    const Settings settings =
        wetOnly + Settings{{R::muteTail, 1.0f}, {R::earlyLevel, 18.0f}, {R::roomSize, 50.0f}};
    Reverberation engine;
    EXPECT_TRUE(engine.setFormat(AudioFormat(0, 48000.0), AudioFormat(0, 48000.0)));
    engine.reset();
    applySettings(engine, settings);
    const AudioFormat stereo(2, 48000.0);
    EXPECT_TRUE(engine.setFormat(stereo, stereo));
    const Signal32 impulse = makeImpulse(2, 20000, {0});
    EXPECT_EQ(toVector(render(engine, impulse), 0),
              toVector(render(*makeEngine(2, 48000.0, settings), impulse), 0));
}

} // namespace vesk::audio
