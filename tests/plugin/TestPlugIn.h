/**
    A plug-in whose engine tells what it was asked, and fails or reports latency on demand.
*/
#pragma once

#include "plugin/BasePlugInProcessor.h"

#include <algorithm>
#include <array>
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
        vesk::audio::BaseAudioProcessor::setFormat(input, output);
        return acceptsFormat;
    }

    vesk::audio::ProcessingInfo getProcessingInfo() override { return latency; }

    void getParameterRange(int index, float& low, float& high) override
    {
        std::tie(low, high) = ranges.at(static_cast<std::size_t>(index));
    }

    float getParameterValue(int index) override { return values.at(static_cast<std::size_t>(index)); }

    void setParameterValue(int index, float value, bool effectuateNow) override
    {
        const auto [low, high] = ranges.at(static_cast<std::size_t>(index));
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

private:
    static constexpr std::array<std::pair<float, float>, 4> ranges{
        {{0.0f, 100.0f}, {20.0f, 20000.0f}, {0.0f, 1.0f}, {-48.0f, 18.0f}}};
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
    using BasePlugInProcessor::resetPresetIndex;
    using BasePlugInProcessor::undoStates;

    /** Makes program changes count, as if the last state restore were long past. */
    void forgetStateRestore() { lastStateRestoreTime = juce::Time::getMillisecondCounter() - 1000; }

    juce::String customNote;
    FakeEngine& engine;
};

class CountingListener : public BasePlugInProcessor::Listener
{
public:
    void parameterChanged(int index) override
    {
        heard.push_back(index);
        if (onChange)
            onChange();
    }

    std::vector<int> heard;
    std::function<void()> onChange;
};

/** A folder that is deleted with this. */
class TemporaryFolder
{
public:
    TemporaryFolder() : folder(juce::File::createTempFile("test")) { folder.createDirectory(); }
    ~TemporaryFolder() { folder.deleteRecursively(); }

    juce::File write(const juce::String& path, const juce::String& content = "<Preset/>") const
    {
        const auto file = folder.getChildFile(path);
        file.create();
        file.replaceWithText(content);
        return file;
    }

    const juce::File folder;
};

inline juce::String presetText(const juce::String& parameters)
{
    return "<Preset><ParameterSettings>" + parameters + "</ParameterSettings></Preset>";
}
