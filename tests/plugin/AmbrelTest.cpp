#include "product/AmbrelAudioProcessor.h"
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
    using AmbrelAudioProcessor::undoStates;
};

class AmbrelTest : public ::testing::Test
{
protected:
    float engineValue(int id) { return plugIn.getBaseProcessor()->getParameterValue(id); }

    OpenAmbrel plugIn;
};
} // namespace

TEST_F(AmbrelTest, HasTwoParametersWithTheEnginesDefaults)
{
    ASSERT_EQ(plugIn.getNumParameters(), 2);
    EXPECT_EQ(plugIn.getParameterID(0), "ReverbCharacter");
    EXPECT_EQ(plugIn.getParameterDefaultValue(0), 0.25f);
    EXPECT_NEAR(plugIn.getParameterDefaultValue(1), 0.1778f, 1e-4f);

    // A reset hands the percentage to the engine as it stands.
    plugIn.resetParameter(0, false);
    plugIn.resetParameter(1, false);
    EXPECT_EQ(engineValue(Reverberation::reverbTime), 25.0f);
    EXPECT_NEAR(engineValue(Reverberation::wetGain), 17.78f, 0.01f);
}

TEST_F(AmbrelTest, CharacterMovesTimeAndBrightness)
{
    for (const auto& [x, time, frequency, readBack] : {std::tuple{0.0f, 0.1f, 10000.0f, 0.0125f},
                                                       {0.25f, 2.0f, 1666.667f, 0.25f},
                                                       {1.0f, 8.0f, 476.1905f, 1.0f}})
    {
        plugIn.setParameter(0, x);
        EXPECT_NEAR(engineValue(Reverberation::reverbTime), time, 1e-6f);
        EXPECT_NEAR(engineValue(Reverberation::lowPassFrequency), frequency, 1e-6f * frequency);
        EXPECT_NEAR(plugIn.getParameter(0), readBack, 1e-6f) << x;
    }
}

TEST_F(AmbrelTest, MixCrossfadesAmplitudes)
{
    const float least = std::pow(10.0f, -48.0f / 20.0f);
    for (const auto& [x, wet, dry, readBack] : {std::tuple{0.0f, -48.0f, 0.0f, least},
                                                {0.25f, -12.0412f, -2.49878f, 0.25f},
                                                {1.0f, 0.0f, -48.0f, 1.0f},
                                                {1.25f, 1.9382f, -48.0f, 1.25f},
                                                {-0.5f, -48.0f, 3.52183f, least}})
    {
        plugIn.setParameter(1, x);
        EXPECT_NEAR(engineValue(Reverberation::wetGain), wet, 1e-4f);
        EXPECT_NEAR(engineValue(Reverberation::dryGain), dry, 1e-4f);
        EXPECT_NEAR(plugIn.getParameter(1), readBack, 1e-6f) << x;
    }
}

TEST_F(AmbrelTest, OffersMonoAndStereoOnly)
{
    for (const int inputs : {1, 2, 3})
        for (const int outputs : {1, 2, 3})
        {
            juce::AudioProcessor::BusesLayout layout;
            layout.inputBuses.add(juce::AudioChannelSet::canonicalChannelSet(inputs));
            layout.outputBuses.add(juce::AudioChannelSet::canonicalChannelSet(outputs));
            EXPECT_EQ(plugIn.checkBusesLayoutSupported(layout), inputs == outputs && inputs < 3)
                << inputs << " to " << outputs;
        }
}

/** Some hosts send their program number right behind the state, when a session opens. */
TEST_F(AmbrelTest, ComesBackThreeTimesWhateverProgramTheHostSends)
{
    plugIn.setParameter(0, 0.7f);
    plugIn.setParameter(1, 0.4f);
    plugIn.setCurrentPresetName("My sound");
    juce::MemoryBlock saved;
    plugIn.getStateInformation(saved);
    EXPECT_EQ(saved.getSize(), 41u + std::strlen("My sound"));
    EXPECT_EQ(std::memcmp(saved.getData(), "KSEVRBMA\3\0\1\0\2\0\0\0\2\0\0\0", 20), 0);

    constexpr juce::uint32 guardMilliseconds = 200;
    for (int round = 0; round < 3;)
    {
        OpenAmbrel reopened;
        EXPECT_EQ(reopened.undoStates.size(), 1u);
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
