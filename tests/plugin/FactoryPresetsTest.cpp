/** The factory presets as files: complete, within what the window can show, and independent of each other. */
#include "core/MathEx.h"
#include "product/AmbrelAudioProcessor.h"
#include "reverb/Reverberation.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

using vesk::audio::Reverberation;

namespace
{
using Values = std::array<float, Reverberation::numParameters>;

class FactoryPresetsTest : public ::testing::Test
{
protected:
    AmbrelAudioProcessor plugIn;
    const juce::Array<juce::File> files =
        plugIn.factoryPresetFolder.findChildFiles(juce::File::findFiles, true, "*.xml");
};

/** What a file says, read without the plug-in: NaN where it says nothing. */
Values readPreset(const juce::File& file)
{
    Values values;
    values.fill(NAN);
    const auto preset = juce::parseXML(file);
    const auto* settings = preset != nullptr ? preset->getChildByName("ParameterSettings") : nullptr;
    if (settings == nullptr)
        return values;
    EXPECT_EQ(settings->getNumChildElements(), Reverberation::numParameters) << "each is set once";
    for (const auto* parameter : settings->getChildIterator())
    {
        const auto text = parameter->getStringAttribute("value");
        EXPECT_TRUE(text.isNotEmpty() && text.containsOnly("-.0123456789")) << text;
        values.at(static_cast<std::size_t>(parameter->getIntAttribute("id", -1))) =
            static_cast<float>(text.getDoubleValue());
    }
    return values;
}
} // namespace

TEST_F(FactoryPresetsTest, TheWindowShowsTheTruth)
{
    constexpr float shortestTime = 0.5f; // what the Character knob can show, in seconds
    constexpr float longestTime = 8.0f;
    constexpr float roundingOfFiles = 0.006f; // dB

    EXPECT_EQ(plugIn.getNumPrograms(), files.size()) << "the menu reaches every file";
    for (const auto& file : files)
    {
        SCOPED_TRACE(file.getFileName());
        const auto values = readPreset(file);
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

TEST_F(FactoryPresetsTest, EachSetsEverythingWhateverCameBefore)
{
    auto& engine = *plugIn.getBaseProcessor();
    const auto importFrom = [&](const juce::File& file, bool maximum)
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
    };

    for (const auto& file : files)
    {
        // No value can equal both ends of its range, so whatever a preset left alone would differ.
        SCOPED_TRACE(file.getFileName());
        const auto values = readPreset(file);
        EXPECT_EQ(importFrom(file, false), values);
        EXPECT_EQ(importFrom(file, true), values);
    }
}

TEST_F(FactoryPresetsTest, ResetHoldsTheEnginesDefaults)
{
    Reverberation fresh;
    const auto values = readPreset(plugIn.factoryPresetFolder.getChildFile("Reset.xml"));
    for (int id = 0; id < Reverberation::numParameters; ++id)
        EXPECT_EQ(values[static_cast<std::size_t>(id)], fresh.getParameterValue(id)) << id;
}
