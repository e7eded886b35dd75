/**
    The product: a reverb with two host parameters over the 26 of its engine.

    Both parameters are macros. The others of the engine are reached through preset files only.

        0  ReverbCharacter  small and bright to large and dark: reverbTime and lowPassFrequency
        1  ReverbMix        all dry to all wet: dryGain and wetGain

    A new instance stands on the preset "Default hall" if there is one.
*/
#pragma once

#include "plugin/BasePlugInProcessor.h"

class AmbrelAudioProcessor : public BasePlugInProcessor
{
public:
    AmbrelAudioProcessor();

    bool isBusesLayoutSupported(const BusesLayout& layouts) const override;
    juce::AudioProcessorEditor* createEditor() override;
    bool hasEditor() const override;

    /** x = reverbTime / 8 s, limited to 0 to 1. Setting writes reverbTime = 8 x s and
        lowPassFrequency = 500 / (x + 0.05) Hz: the longer, the darker. */
    class ReverbCharacterParameterDescription : public ParameterDescription
    {
    public:
        explicit ReverbCharacterParameterDescription(std::shared_ptr<vesk::audio::BaseAudioProcessor> engine);

        float getNormalizedParameterValue() override;
        void setNormalizedParameterValue(float value, bool effectuateNow) override;
    };

    /** x = wet gain, linear. Setting writes wetGain = 20 lg x dB and dryGain = 20 lg (1 - x) dB, which is a
        linear crossfade of amplitudes. */
    class ReverbMixParameterDescription : public ParameterDescription
    {
    public:
        explicit ReverbMixParameterDescription(std::shared_ptr<vesk::audio::BaseAudioProcessor> engine);

        float getNormalizedParameterValue() override;
        void setNormalizedParameterValue(float value, bool effectuateNow) override;
    };

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(AmbrelAudioProcessor)
};
