#include "product/AmbrelAudioProcessor.h"

#include "core/MathEx.h"
#include "product/AmbrelAudioProcessorEditor.h"
#include "product/AmbrelConstants.h"
#include "reverb/Reverberation.h"

#include <algorithm>
#include <utility>

using vesk::audio::Reverberation;

namespace
{
constexpr auto initialPresetName = "Default hall";

constexpr float percent = 100.0f;
constexpr float macroStep = 0.1f;

/** reverbTime at the end of the character's way. */
constexpr float longestReverbTimeSeconds = 8.0f;

/** lowPassFrequency = brightness / (x + offset): from 10 kHz down to 476 Hz. */
constexpr float characterBrightnessHz = 500.0f;
constexpr float characterOffset = 0.05f;
} // namespace

AmbrelAudioProcessor::AmbrelAudioProcessor()
    : BasePlugInProcessor(std::make_shared<Reverberation>(), AmbrelConstants::bundleName,
                          AmbrelConstants::plugInName, AmbrelConstants::plugInCode,
                          AmbrelConstants::plugInVersion)
{
    parameterDescriptions.add(std::make_unique<ReverbCharacterParameterDescription>(baseProcessor));
    parameterDescriptions.add(std::make_unique<ReverbMixParameterDescription>(baseProcessor));

    for (int program = 0; program < getNumPrograms(); ++program)
        if (getProgramName(program).equalsIgnoreCase(initialPresetName))
            setCurrentProgram(program);
}

bool AmbrelAudioProcessor::isBusesLayoutSupported(const BusesLayout& layouts) const
{
    if (!BasePlugInProcessor::isBusesLayoutSupported(layouts))
        return false;

    const auto inputs = layouts.getMainInputChannelSet();
    const auto outputs = layouts.getMainOutputChannelSet();
    const auto& configurations = AmbrelConstants::channelConfigurations;
    return std::any_of(
        configurations.begin(), configurations.end(),
        [&](const auto& configuration)
        {
            return inputs == juce::AudioChannelSet::canonicalChannelSet(configuration.inputs) &&
                   outputs == juce::AudioChannelSet::canonicalChannelSet(configuration.outputs);
        });
}

juce::AudioProcessorEditor* AmbrelAudioProcessor::createEditor()
{
    return new AmbrelAudioProcessorEditor(this);
}

bool AmbrelAudioProcessor::hasEditor() const { return true; }

AmbrelAudioProcessor::ReverbCharacterParameterDescription::ReverbCharacterParameterDescription(
    std::shared_ptr<vesk::audio::BaseAudioProcessor> engine)
    : ParameterDescription(std::move(engine), Reverberation::reverbTime, "ReverbCharacter", "%", macroStep,
                           linearMapping)
{
    normalizedDefault = ReverbCharacterParameterDescription::getNormalizedParameterValue();
    defaultValue = percent * normalizedDefault;
}

float AmbrelAudioProcessor::ReverbCharacterParameterDescription::getNormalizedParameterValue()
{
    return std::clamp(getEngineValue() / longestReverbTimeSeconds, 0.0f, 1.0f);
}

void AmbrelAudioProcessor::ReverbCharacterParameterDescription::setNormalizedParameterValue(
    float value, bool effectuateNow)
{
    processor->setParameterValue(Reverberation::reverbTime, longestReverbTimeSeconds * value, false);
    processor->setParameterValue(Reverberation::lowPassFrequency,
                                 characterBrightnessHz / (value + characterOffset), effectuateNow);
}

AmbrelAudioProcessor::ReverbMixParameterDescription::ReverbMixParameterDescription(
    std::shared_ptr<vesk::audio::BaseAudioProcessor> engine)
    : ParameterDescription(std::move(engine), Reverberation::wetGain, "ReverbMix", "%", macroStep,
                           linearMapping)
{
    normalizedDefault = ReverbMixParameterDescription::getNormalizedParameterValue();
    defaultValue = percent * normalizedDefault;
}

float AmbrelAudioProcessor::ReverbMixParameterDescription::getNormalizedParameterValue()
{
    return vesk::MathEx::fromDecibel(getEngineValue());
}

void AmbrelAudioProcessor::ReverbMixParameterDescription::setNormalizedParameterValue(float value,
                                                                                      bool effectuateNow)
{
    // Hosts overshoot: beyond either end the logarithm of the smaller gain stays that of 0.
    const auto dry = std::max(1.0f - value, 0.0f);
    const auto wet = std::max(value, 0.0f);
    processor->setParameterValue(Reverberation::dryGain, vesk::MathEx::toDecibel(dry), false);
    processor->setParameterValue(Reverberation::wetGain, vesk::MathEx::toDecibel(wet), effectuateNow);
}

/** What the host wrappers, and every program that wants the plug-in, call to get one. */
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter() { return new AmbrelAudioProcessor(); }
