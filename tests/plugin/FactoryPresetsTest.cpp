#include "core/MathEx.h"
#include "product/AmbrelAudioProcessor.h"
#include "reverb/Reverberation.h"

#include <gtest/gtest.h>

#include <array>

using vesk::audio::BaseAudioProcessor;
using vesk::audio::Reverberation;

namespace
{
using Values = std::array<float, Reverberation::numParameters>;

Values getValues(BaseAudioProcessor& engine)
{
    Values values;
    for (int id = 0; id < Reverberation::numParameters; ++id)
        values[static_cast<std::size_t>(id)] = engine.getParameterValue(id);
    return values;
}

/** @param maximum  whether every parameter comes from the upper or the lower end of its range */
Values importOnTopOf(bool maximum, const juce::File& file, AmbrelAudioProcessor& plugIn)
{
    BaseAudioProcessor& engine = *plugIn.getBaseProcessor();
    for (int id = 0; id < Reverberation::numParameters; ++id)
    {
        float low = 0.0f, high = 0.0f;
        engine.getParameterRange(id, low, high);
        engine.setParameterValue(id, maximum ? high : low, false);
    }
    EXPECT_TRUE(plugIn.importFromPresetFile(file));
    return getValues(engine);
}
} // namespace

TEST(FactoryPresetsTest, EachSetsEverythingAndTheWindowShowsTheTruth)
{
    constexpr float shortestTime = 0.5f; // what the Character knob can show, in seconds
    constexpr float longestTime = 8.0f;
    constexpr float roundingOfFiles = 0.006f; // dB

    Reverberation fresh;
    AmbrelAudioProcessor plugIn;
    const auto files = plugIn.factoryPresetFolder.findChildFiles(juce::File::findFiles, true, "*.xml");
    EXPECT_FALSE(files.isEmpty());
    EXPECT_EQ(plugIn.getNumPrograms(), files.size()) << "the menu reaches every file";
    for (const auto& file : files)
    {
        // No value can equal both ends of its range, so whatever a preset left alone would differ.
        SCOPED_TRACE(file.getFileName());
        const auto values = importOnTopOf(true, file, plugIn);
        EXPECT_EQ(importOnTopOf(false, file, plugIn), values);

        const float time = values[Reverberation::reverbTime];
        EXPECT_TRUE(time >= shortestTime && time <= longestTime) << time;

        // The engine's own defaults lie beside the fader's law.
        if (file.getFileName() == "Reset.xml")
        {
            EXPECT_EQ(values, getValues(fresh));
            continue;
        }
        const float mix = vesk::MathEx::fromDecibel(values[Reverberation::wetGain]);
        ASSERT_TRUE(mix > 0.0f && mix < 1.0f) << mix;
        EXPECT_NEAR(values[Reverberation::dryGain], vesk::MathEx::toDecibel(1.0f - mix), roundingOfFiles);
    }
}
