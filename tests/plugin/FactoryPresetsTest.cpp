/** The factory presets as files: complete, within what the window can show, and independent of each other. */
#include "core/MathEx.h"
#include "product/AmbrelAudioProcessor.h"
#include "reverb/Reverberation.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <set>
#include <vector>

using vesk::audio::Reverberation;

namespace
{
constexpr int numParameters = Reverberation::numParameters;
constexpr int numPatterns = 11;
constexpr int fewestPresets = 42;

using Values = std::array<float, numParameters>;

class FactoryPresetsTest : public ::testing::Test
{
protected:
    FactoryPresetsTest()
        : files(plugIn.factoryPresetFolder.findChildFiles(juce::File::findFiles, true, "*.xml"))
    {
        files.sort();
    }

    Values getEngineValues()
    {
        Values values;
        for (int id = 0; id < numParameters; ++id)
            values[static_cast<std::size_t>(id)] = plugIn.getBaseProcessor()->getParameterValue(id);
        return values;
    }

    AmbrelAudioProcessor plugIn;
    juce::Array<juce::File> files;
};

/** What a file says, read without the plug-in. Reports what is missing, twofold or not a number. */
Values readPreset(const juce::File& file)
{
    Values values;
    values.fill(NAN);
    const auto preset = juce::parseXML(file);
    const auto* settings = preset != nullptr ? preset->getChildByName("ParameterSettings") : nullptr;
    if (settings == nullptr)
    {
        ADD_FAILURE() << "not a preset";
        return values;
    }
    EXPECT_TRUE(preset->hasTagName("Preset"));
    for (const auto* parameter : settings->getChildIterator())
    {
        EXPECT_TRUE(parameter->hasTagName("Parameter"));
        const int id = parameter->getIntAttribute("id", -1);
        if (id < 0 || id >= numParameters)
        {
            ADD_FAILURE() << "there is no parameter " << id;
            continue;
        }
        auto& value = values[static_cast<std::size_t>(id)];
        EXPECT_TRUE(std::isnan(value)) << id << " is set twice";
        const auto text = parameter->getStringAttribute("value");
        EXPECT_TRUE(text.isNotEmpty() && text.containsOnly("-.0123456789")) << id << ": " << text;
        value = static_cast<float>(text.getDoubleValue());
    }
    for (int id = 0; id < numParameters; ++id)
        EXPECT_FALSE(std::isnan(values[static_cast<std::size_t>(id)])) << id << " is missing";
    return values;
}
} // namespace

TEST_F(FactoryPresetsTest, ThereAreManyInOneLevelOfFoldersUnderNamesOfTheirOwn)
{
    EXPECT_GE(files.size(), fewestPresets);
    EXPECT_EQ(plugIn.getNumPrograms(), files.size()) << "the menu reaches every file";
    std::set<juce::String> names, folders;
    for (const auto& file : files)
    {
        EXPECT_TRUE(names.insert(file.getFileNameWithoutExtension().toLowerCase()).second)
            << file.getFullPathName();
        const auto folder = file.getParentDirectory();
        if (folder != plugIn.factoryPresetFolder)
        {
            EXPECT_EQ(folder.getParentDirectory(), plugIn.factoryPresetFolder);
            folders.insert(folder.getFileName());
        }
    }
    const std::set<juce::String> expected{"Chambers", "Drums", "Guitars and keys", "Halls", "Outdoor",
                                          "Plates",   "Rooms", "Sound design",     "Vocals"};
    EXPECT_EQ(folders, expected);
    EXPECT_EQ(names.count("reset"), 1u);
    EXPECT_EQ(names.count("default hall"), 1u);
}

TEST_F(FactoryPresetsTest, EachSetsEveryParameterOnceAndTheWindowShowsTheTruth)
{
    constexpr float shortestTime = 0.5f; // what the Character knob can show, in seconds
    constexpr float longestTime = 8.0f;
    constexpr float stepsPerSecond = 100.0f;
    constexpr float roundingOfFiles = 0.006f; // dB

    std::set<int> patterns;
    for (const auto& file : files)
    {
        SCOPED_TRACE(file.getFileName());
        const auto values = readPreset(file);
        for (int id = 0; id < numParameters; ++id)
        {
            float minimum = 0.0f;
            float maximum = 0.0f;
            plugIn.getBaseProcessor()->getParameterRange(id, minimum, maximum);
            const float value = values[static_cast<std::size_t>(id)];
            EXPECT_TRUE(value >= minimum && value <= maximum) << id << ": " << value;
        }

        const float time = values[Reverberation::reverbTime];
        EXPECT_TRUE(time >= shortestTime && time <= longestTime) << time;
        EXPECT_NEAR(time * stepsPerSecond, std::round(time * stepsPerSecond), 1e-3f) << "off the knob's grid";

        const float pattern = values[Reverberation::earlyPattern];
        EXPECT_EQ(pattern, std::round(pattern));
        patterns.insert(static_cast<int>(pattern));
        for (const auto mute : {Reverberation::muteDry, Reverberation::muteTail, Reverberation::muteEarly})
            EXPECT_TRUE(values[mute] == 0.0f || values[mute] == 1.0f) << mute;
        EXPECT_FALSE(values[Reverberation::muteTail] == 1.0f && values[Reverberation::muteEarly] == 1.0f)
            << "nothing would be left of the reverb";

        // "Reset" holds the engine's own defaults, which lie beside the fader's law.
        if (file.getFileNameWithoutExtension() != "Reset")
        {
            const float mix = vesk::MathEx::fromDecibel(values[Reverberation::wetGain]);
            ASSERT_TRUE(mix > 0.0f && mix < 1.0f) << mix;
            EXPECT_NEAR(values[Reverberation::dryGain], vesk::MathEx::toDecibel(1.0f - mix), roundingOfFiles);
        }
    }
    EXPECT_EQ(patterns.size(), static_cast<std::size_t>(numPatterns));
}

TEST_F(FactoryPresetsTest, WhatCameBeforeLeavesNoTrace)
{
    const auto moveEverythingTo = [&](bool maximum)
    {
        auto& engine = *plugIn.getBaseProcessor();
        for (int id = 0; id < numParameters; ++id)
        {
            float low = 0.0f;
            float high = 0.0f;
            engine.getParameterRange(id, low, high);
            engine.setParameterValue(id, maximum ? high : low, false);
        }
    };

    std::set<Values> sounds;
    for (const auto& file : files)
    {
        // No value can equal both ends of its range, so whatever a preset left alone would differ.
        moveEverythingTo(false);
        ASSERT_TRUE(plugIn.importFromPresetFile(file)) << file.getFileName();
        const auto fromBelow = getEngineValues();
        moveEverythingTo(true);
        ASSERT_TRUE(plugIn.importFromPresetFile(file)) << file.getFileName();
        EXPECT_EQ(getEngineValues(), fromBelow) << file.getFileName();
        EXPECT_EQ(fromBelow, readPreset(file)) << file.getFileName();
        EXPECT_TRUE(sounds.insert(fromBelow).second) << file.getFileName() << " sounds as another one does";
    }
}
