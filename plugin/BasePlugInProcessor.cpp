#include "plugin/BasePlugInProcessor.h"

#include "plugin/companyName.h"

#include <utility>

BasePlugInProcessor::BasePlugInProcessor(std::shared_ptr<vesk::audio::BaseAudioProcessor> processor,
                                         const juce::String& bundle, const juce::String& plugIn,
                                         unsigned int code, const juce::String& version)
    : juce::AudioProcessor(BusesProperties()
                               .withInput("Input", juce::AudioChannelSet::stereo())
                               .withOutput("Output", juce::AudioChannelSet::stereo())),
      plugInName(plugIn), plugInCode(code), bundleName(bundle), plugInVersion(version),
      baseProcessor(std::move(processor)), places(bundle, plugIn)
{
    settings.reset(createPropertiesFile());
    initializeLocalization();
    initializePresetHandling();
}

BasePlugInProcessor::~BasePlugInProcessor() = default;

const juce::String BasePlugInProcessor::getName() const
{
    return juce::String(vesk::companyName) + " " + plugInName;
}

juce::String BasePlugInProcessor::getShortName() const { return plugInName; }

// The engine rings on after its input ends, but hosts are not told: they would cut or render tails by it.
double BasePlugInProcessor::getTailLengthSeconds() const { return 0.0; }

bool BasePlugInProcessor::acceptsMidi() const { return false; }
bool BasePlugInProcessor::producesMidi() const { return false; }
bool BasePlugInProcessor::silenceInProducesSilenceOut() const { return false; }

const juce::String BasePlugInProcessor::getInputChannelName(int index) const
{
    return juce::String(index + 1);
}

const juce::String BasePlugInProcessor::getOutputChannelName(int index) const
{
    return juce::String(index + 1);
}

bool BasePlugInProcessor::isInputChannelStereoPair(int) const { return true; }
bool BasePlugInProcessor::isOutputChannelStereoPair(int) const { return true; }
