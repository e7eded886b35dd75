/**
    A plug-in whose engine tells what it was asked, and fails or reports latency on demand.
*/
#pragma once

#include "plugin/BasePlugInProcessor.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <tuple>
#include <utility>
#include <vector>

/** Parameters 0 to 3; process halves the signal unless told otherwise. */
class FakeEngine : public vesk::audio::BaseAudioProcessor
{
public:
    bool setFormat(const vesk::audio::AudioFormat& input, const vesk::audio::AudioFormat& output) override
    {
        BaseAudioProcessor::setFormat(input, output);
        return acceptsFormat;
    }

    vesk::audio::ProcessingInfo getProcessingInfo() override { return latency; }

    void getParameterRange(int index, float& low, float& high) override
    {
        constexpr std::pair<float, float> ranges[] = {
            {0.0f, 100.0f}, {20.0f, 20000.0f}, {0.0f, 1.0f}, {-48.0f, 18.0f}};
        getParameterValue(index); // throws for an index that does not exist
        std::tie(low, high) = ranges[index];
    }

    float getParameterValue(int index) override { return values.at(static_cast<std::size_t>(index)); }

    void setParameterValue(int index, float value, bool effectuateNow) override
    {
        float low = 0.0f, high = 0.0f;
        getParameterRange(index, low, high);
        values[static_cast<std::size_t>(index)] = std::clamp(value, low, high);
        pending = true;
        if (effectuateNow)
            effectuateParameterChanges();
    }

    void effectuateParameterChanges() override
    {
        ++effectuations;
        if (onEffectuate)
            onEffectuate();
        pending = false;
    }

    void reset() override { ++resets; }

    vesk::audio::Signal32 process(const vesk::audio::Signal32& input, bool bypassed) override
    {
        ++blocks;
        lastBypassed = bypassed;
        if (onProcess)
            onProcess();
        return 0.5f * input;
    }

    std::vector<float> values{25.0f, 1000.0f, 0.0f, 0.0f};
    vesk::audio::ProcessingInfo latency;
    std::function<void()> onProcess;
    std::function<void()> onEffectuate;
    bool acceptsFormat = true;
    bool pending = false; ///< parameters were set and not effectuated
    bool lastBypassed = false;
    int resets = 0;
    int blocks = 0;
    int effectuations = 0;
};

/** Public parameters: 0 linear "Amount", 1 logarithmic "Corner", 2 switch "Freeze". Engine parameter 3 is hidden. */
class TestPlugIn : public BasePlugInProcessor
{
public:
    explicit TestPlugIn(const juce::String& bundle = "Test Bundle", const juce::String& name = "Test PlugIn",
                        const juce::String& version = "1.0.3")
        : BasePlugInProcessor(std::make_shared<FakeEngine>(), bundle, name, 0x54455354, version),
          engine(static_cast<FakeEngine&>(*baseProcessor))
    {
        const auto add = [this](auto... parts)
        { parameterDescriptions.add(new ParameterDescription(baseProcessor, parts...)); };
        add(0, "Amount", "%", 0.1f, ParameterDescription::linearMapping);
        add(1, "Corner", "Hz", 1.0f, ParameterDescription::logarithmicMapping);
        add(2, "Freeze", "", 1.0f, ParameterDescription::linearMapping);
    }

    bool hasEditor() const override { return true; }

    juce::AudioProcessorEditor* createEditor() override
    {
        return new juce::GenericAudioProcessorEditor(*this);
    }

    bool fillCustomDataXmlElement(juce::XmlElement* element) override
    {
        element->setAttribute("note", customNote);
        return customNote.isNotEmpty();
    }

    void parseCustomDataXmlElement(juce::XmlElement* element) override
    {
        customNote = element->getStringAttribute("note");
    }

    using BasePlugInProcessor::presetExemptParameters;
    using BasePlugInProcessor::redoStates;
    using BasePlugInProcessor::undoStates;

    /** Makes program changes count, as if the last state restore were long past. */
    void forgetStateRestore() { lastStateRestoreTime = juce::Time::getMillisecondCounter() - 1000; }

    juce::String customNote;
    FakeEngine& engine;
};

/** Hears what windows hear, for as long as it lives. */
class CountingListener : public BasePlugInProcessor::Listener
{
public:
    explicit CountingListener(BasePlugInProcessor& plugInToHear) : plugIn(plugInToHear)
    {
        plugIn.addListener(this);
    }
    ~CountingListener() override { plugIn.removeListener(this); }

    void parameterChanged(int index) override
    {
        heard.push_back(index);
        if (onChange)
            onChange();
    }

    BasePlugInProcessor& plugIn;
    std::vector<int> heard;
    std::function<void()> onChange;
};

/** Hears what the host hears, for as long as it lives. */
class HostListener : private juce::AudioProcessorListener
{
public:
    explicit HostListener(juce::AudioProcessor& plugInToHear) : plugIn(plugInToHear)
    {
        plugIn.addListener(this);
    }
    ~HostListener() override { plugIn.removeListener(this); }

    juce::String heard;

private:
    void audioProcessorParameterChanged(juce::AudioProcessor*, int index, float value) override
    {
        heard << index << "=" << juce::String(value, 3) << " ";
    }
    void audioProcessorChanged(juce::AudioProcessor*, const ChangeDetails&) override {}
    void audioProcessorParameterChangeGestureBegin(juce::AudioProcessor*, int index) override
    {
        heard << "begin" << index << " ";
    }
    void audioProcessorParameterChangeGestureEnd(juce::AudioProcessor*, int index) override
    {
        heard << "end" << index << " ";
    }

    juce::AudioProcessor& plugIn;
};

/** A folder of the sources that the tests were built from. */
inline juce::File getSourceFolder(const juce::String& path)
{
    return juce::File::getCurrentWorkingDirectory()
        .getChildFile(__FILE__)
        .getChildFile("../../..")
        .getChildFile(path);
}

inline std::string presetText(const std::string& parameters)
{
    return "<Preset><ParameterSettings>" + parameters + "</ParameterSettings></Preset>";
}
