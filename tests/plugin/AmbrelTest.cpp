#include "core/MathEx.h"
#include "product/AmbrelAudioProcessor.h"
#include "product/AmbrelConstants.h"
#include "reverb/Reverberation.h"
#include "tests/plugin/TestPlugIn.h"

#include <gtest/gtest.h>

#include <cmath>

using vesk::audio::Reverberation;

namespace
{
class OpenAmbrel : public AmbrelAudioProcessor
{
public:
    using AmbrelAudioProcessor::parameterDescriptions;
    using AmbrelAudioProcessor::undoStates;
};

class AmbrelTest : public ::testing::Test
{
protected:
    float engineValue(int id) { return plugIn.getBaseProcessor()->getParameterValue(id); }
    void setEngineValue(int id, float value)
    {
        plugIn.getBaseProcessor()->setParameterValue(id, value, true);
    }

    OpenAmbrel plugIn;
};
} // namespace

TEST_F(AmbrelTest, OpensOnDefaultHallWithOneUndoState)
{
    EXPECT_EQ(plugIn.getCurrentPresetName(), "Default hall");
    EXPECT_EQ(plugIn.getProgramName(plugIn.getCurrentProgram()), "Default hall");
    EXPECT_EQ(plugIn.undoStates.size(), 1u);
    EXPECT_EQ(plugIn.getName(), "Veskora Ambrel");
    EXPECT_EQ(plugIn.getVersionCode(), 0x10003);
    EXPECT_STREQ(AmbrelConstants::plugInVersion, "1.0.3");
    EXPECT_TRUE(plugIn.hasEditor());
}

TEST_F(AmbrelTest, HasTwoParametersWithTheEnginesDefaults)
{
    ASSERT_EQ(plugIn.getNumParameters(), 2);
    EXPECT_EQ(plugIn.getParameterName(0), "ReverbCharacter");
    EXPECT_EQ(plugIn.getParameterName(1), "ReverbMix");
    EXPECT_EQ(plugIn.getParameterID(0), "ReverbCharacter");
    EXPECT_EQ(plugIn.getInternalParameterId(0), 2);
    EXPECT_EQ(plugIn.getInternalParameterId(1), 1);
    EXPECT_EQ(plugIn.getParameterDefaultValue(0), 0.25f);
    EXPECT_NEAR(plugIn.getParameterDefaultValue(1), 0.1778f, 1e-4f);
    EXPECT_EQ(plugIn.parameterDescriptions[0]->defaultValue, 25.0f);
    EXPECT_NEAR(plugIn.parameterDescriptions[1]->defaultValue, 17.78f, 0.01f);

    // A reset hands the percentage to the engine as it stands.
    plugIn.resetParameter(0, false);
    plugIn.resetParameter(1, false);
    EXPECT_EQ(engineValue(Reverberation::reverbTime), 25.0f);
    EXPECT_NEAR(engineValue(Reverberation::wetGain), 17.78f, 0.01f);
}

TEST_F(AmbrelTest, CharacterMovesTimeAndBrightness)
{
    struct Row
    {
        float x, reverbTime, lowPass, readBack;
    };
    for (const auto& row : {Row{0.0f, 0.1f, 10000.0f, 0.0125f}, Row{0.25f, 2.0f, 1666.667f, 0.25f},
                            Row{0.5f, 4.0f, 909.0909f, 0.5f}, Row{0.75f, 6.0f, 625.0f, 0.75f},
                            Row{1.0f, 8.0f, 476.1905f, 1.0f}})
    {
        plugIn.setParameter(0, row.x);
        EXPECT_FLOAT_EQ(engineValue(Reverberation::reverbTime), row.reverbTime);
        EXPECT_NEAR(engineValue(Reverberation::lowPassFrequency), row.lowPass, 1e-6f * row.lowPass);
        EXPECT_FLOAT_EQ(plugIn.getParameter(0), row.readBack);
    }
    setEngineValue(Reverberation::reverbTime, 20.0f);
    EXPECT_EQ(plugIn.getParameter(0), 1.0f);
    EXPECT_EQ(plugIn.getParameterText(0), "20.00 %");
}

TEST_F(AmbrelTest, MixCrossfadesAmplitudes)
{
    struct Row
    {
        float x, wet, dry, readBack;
    };
    const float least = std::pow(10.0f, -48.0f / 20.0f);
    for (const auto& row : {Row{0.0f, -48.0f, 0.0f, least}, Row{0.25f, -12.0412f, -2.49878f, 0.25f},
                            Row{0.5f, -6.0206f, -6.0206f, 0.5f}, Row{1.0f, 0.0f, -48.0f, 1.0f},
                            Row{1.25f, 1.9382f, -48.0f, 1.25f}, Row{-0.5f, -48.0f, 3.52183f, least}})
    {
        plugIn.setParameter(1, row.x);
        EXPECT_NEAR(engineValue(Reverberation::wetGain), row.wet, 1e-4f) << row.x;
        EXPECT_NEAR(engineValue(Reverberation::dryGain), row.dry, 1e-4f) << row.x;
        EXPECT_NEAR(plugIn.getParameter(1), row.readBack, 1e-6f) << row.x;
    }
}

TEST_F(AmbrelTest, OffersMonoAndStereoOnly)
{
    using Set = juce::AudioChannelSet;
    struct Row
    {
        Set input, output;
        bool supported;
    };
    for (const auto& row : {Row{Set::stereo(), Set::stereo(), true}, Row{Set::mono(), Set::mono(), true},
                            Row{Set::mono(), Set::stereo(), false}, Row{Set::stereo(), Set::mono(), false},
                            Row{Set::createLCR(), Set::createLCR(), false}})
    {
        juce::AudioProcessor::BusesLayout layout;
        layout.inputBuses.add(row.input);
        layout.outputBuses.add(row.output);
        EXPECT_EQ(plugIn.checkBusesLayoutSupported(layout), row.supported);
    }
    EXPECT_FALSE(plugIn.setPreferredBusArrangement(true, 0, Set::createLCR()));
    EXPECT_TRUE(plugIn.setPreferredBusArrangement(false, 0, Set::mono()));
    EXPECT_EQ(plugIn.getTotalNumInputChannels(), 1);
}

TEST_F(AmbrelTest, StateBlockIs41BytesAndTheName)
{
    juce::MemoryBlock block;
    plugIn.getStateInformation(block);
    EXPECT_EQ(block.getSize(), 41u + std::strlen("Default hall"));
    EXPECT_EQ(std::memcmp(block.getData(), "KSEVRBMA\3\0\1\0\2\0\0\0\2\0\0\0", 20), 0);
}

/** Some hosts send their program number right behind the state, when a session opens. */
TEST(AmbrelSessionTest, ComesBackThreeTimesWhateverProgramTheHostSends)
{
    juce::MemoryBlock saved;
    {
        AmbrelAudioProcessor first;
        first.setParameter(0, 0.7f);
        first.setParameter(1, 0.4f);
        first.setCurrentPresetName("My sound");
        first.getStateInformation(saved);
    }
    constexpr juce::uint32 guardMilliseconds = 200;
    for (int round = 0; round < 3;)
    {
        AmbrelAudioProcessor reopened;
        EXPECT_EQ(reopened.getCurrentPresetName(), "Default hall");
        const auto start = juce::Time::getMillisecondCounter();
        reopened.setStateInformation(saved.getData(), static_cast<int>(saved.getSize()));
        for (const int program : {0, reopened.getCurrentProgram(), reopened.getNumPrograms() - 1, -1})
            reopened.setCurrentProgram(program);
        if (juce::Time::getMillisecondCounter() - start >= guardMilliseconds)
            continue; // the machine was busy: the last program may have come too late

        juce::MemoryBlock again;
        reopened.getStateInformation(again);
        EXPECT_EQ(again, saved) << "round " << round;
        EXPECT_EQ(reopened.getProgramName(reopened.getCurrentProgram()), "Default hall");
        saved = again;
        ++round;
    }
}

TEST_F(AmbrelTest, ResetPresetHoldsTheEnginesDefaults)
{
    Reverberation fresh;
    const auto file = plugIn.factoryPresetFolder.getChildFile("Reset.xml");
    ASSERT_TRUE(plugIn.importFromPresetFile(file));
    for (int id = 0; id < Reverberation::numParameters; ++id)
        EXPECT_EQ(engineValue(id), fresh.getParameterValue(id)) << id;
}
