/** The factory presets as files: complete, and within what the window can show. */
#include "core/MathEx.h"
#include "product/AmbrelAudioProcessor.h"
#include "reverb/Reverberation.h"

#include <gtest/gtest.h>

#include <array>

using vesk::audio::Reverberation;

namespace
{
class FactoryPresetsTest : public ::testing::Test
{
protected:
    using Values = std::array<float, Reverberation::numParameters>;

    Values importOnTopOf(bool maximum, const juce::File& file)
    {
        for (int id = 0; id < Reverberation::numParameters; ++id)
        {
            float low = 0.0f;
            float high = 0.0f;
            engine.getParameterRange(id, low, high);
            engine.setParameterValue(id, maximum ? high : low, false);
        }
        EXPECT_TRUE(plugIn.importFromPresetFile(file));
        Values values;
        for (int id = 0; id < Reverberation::numParameters; ++id)
            values[static_cast<std::size_t>(id)] = engine.getParameterValue(id);
        return values;
    }

    AmbrelAudioProcessor plugIn;
    vesk::audio::BaseAudioProcessor& engine = *plugIn.getBaseProcessor();
};
} // namespace

TEST_F(FactoryPresetsTest, EachSetsEverythingAndTheWindowShowsTheTruth)
{
    constexpr float shortestTime = 0.5f; // what the Character knob can show, in seconds
    constexpr float longestTime = 8.0f;
    constexpr float roundingOfFiles = 0.006f; // dB

    const auto files = plugIn.factoryPresetFolder.findChildFiles(juce::File::findFiles, true, "*.xml");
    EXPECT_FALSE(files.isEmpty());
    EXPECT_EQ(plugIn.getNumPrograms(), files.size()) << "the menu reaches every file";
    for (const auto& file : files)
    {
        // No value can equal both ends of its range, so whatever a preset left alone would differ.
        SCOPED_TRACE(file.getFileName());
        const auto values = importOnTopOf(true, file);
        EXPECT_EQ(importOnTopOf(false, file), values);

        const float time = values[Reverberation::reverbTime];
        EXPECT_TRUE(time >= shortestTime && time <= longestTime) << time;

        // "Reset" holds the engine's own defaults, which lie beside the fader's law.
        if (file.getFileNameWithoutExtension() == "Reset")
            continue;
        const float mix = vesk::MathEx::fromDecibel(values[Reverberation::wetGain]);
        ASSERT_TRUE(mix > 0.0f && mix < 1.0f) << mix;
        EXPECT_NEAR(values[Reverberation::dryGain], vesk::MathEx::toDecibel(1.0f - mix), roundingOfFiles);
    }
}

TEST_F(FactoryPresetsTest, ResetHoldsTheEnginesDefaults)
{
    const auto values = importOnTopOf(true, plugIn.factoryPresetFolder.getChildFile("Reset.xml"));
    Reverberation fresh;
    for (int id = 0; id < Reverberation::numParameters; ++id)
        EXPECT_EQ(values[static_cast<std::size_t>(id)], fresh.getParameterValue(id)) << id;
}
