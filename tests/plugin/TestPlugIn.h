/**
    A plug-in whose engine tells what it was asked, and fails or reports latency on demand.
*/
#pragma once

#include "plugin/BasePlugInProcessor.h"

#include <functional>
#include <stdexcept>
#include <vector>

/** Parameters 0 to 3; process halves the signal unless told otherwise. */
class FakeEngine : public vesk::audio::BaseAudioProcessor
{
public:
    struct Range
    {
        float minimum;
        float maximum;
    };

    static constexpr Range ranges[] = {{0.0f, 100.0f}, {20.0f, 20000.0f}, {0.0f, 1.0f}, {-48.0f, 18.0f}};

    bool setFormat(const vesk::audio::AudioFormat& input, const vesk::audio::AudioFormat& output) override
    {
        ++formatsSet;
        vesk::audio::BaseAudioProcessor::setFormat(input, output);
        return acceptsFormat;
    }

    vesk::audio::ProcessingInfo getProcessingInfo() override { return latency; }

    void getParameterRange(int index, float& low, float& high) override
    {
        check(index);
        low = ranges[index].minimum;
        high = ranges[index].maximum;
    }

    float getParameterValue(int index) override
    {
        check(index);
        return values[static_cast<std::size_t>(index)];
    }

    void setParameterValue(int index, float value, bool effectuateNow) override
    {
        check(index);
        values[static_cast<std::size_t>(index)] =
            juce::jlimit(ranges[index].minimum, ranges[index].maximum, value);
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
    int formatsSet = 0;
    int resets = 0;
    int blocks = 0;
    int effectuations = 0;

private:
    static void check(int index)
    {
        if (index < 0 || index >= static_cast<int>(std::size(ranges)))
            throw std::out_of_range("Parameter index");
    }
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
        using Description = ParameterDescription;
        parameterDescriptions.add(
            new Description(baseProcessor, 0, "Amount", "%", 0.1f, Description::linearMapping));
        parameterDescriptions.add(
            new Description(baseProcessor, 1, "Corner", "Hz", 1.0f, Description::logarithmicMapping));
        parameterDescriptions.add(
            new Description(baseProcessor, 2, "Freeze", "", 1.0f, Description::linearMapping));
    }

    bool hasEditor() const override { return true; }

    juce::AudioProcessorEditor* createEditor() override
    {
        struct Editor : juce::AudioProcessorEditor
        {
            explicit Editor(TestPlugIn& owner) : juce::AudioProcessorEditor(owner) {}
            ~Editor() override { processor.editorBeingDeleted(this); }
        };
        return new Editor(*this);
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

    using BasePlugInProcessor::alternateSettings;
    using BasePlugInProcessor::parameterDescriptions;
    using BasePlugInProcessor::presetExemptParameters;
    using BasePlugInProcessor::presets;
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
    void parameterChanged(int index) override { heard.push_back(index); }

    std::vector<int> heard;
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
