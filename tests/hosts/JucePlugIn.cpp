#include "tests/hosts/PlugIn.h"

#include <juce_audio_processors/juce_audio_processors.h>

namespace hosts
{
namespace
{
constexpr auto stateElement = "IComponent";

/** The window in which a host shows a plug-in's. */
class Window : public juce::Component
{
public:
    explicit Window(juce::AudioProcessor& plugIn) : content(plugIn.createEditorIfNeeded())
    {
        setSize(content->getWidth(), content->getHeight());
        setOpaque(true);
        addAndMakeVisible(*content);
        addToDesktop(0);
        setVisible(true);
    }

private:
    std::unique_ptr<juce::AudioProcessorEditor> content;
};

/** What lies behind a state block is not part of it: the block tells its own length. */
State trimmed(State state)
{
    // Header, two entries, the marker; then the preset's name with a zero at its end.
    constexpr std::size_t nameOffset = 40;
    if (state.size() > nameOffset)
        state.erase(std::next(std::find(state.begin() + nameOffset, state.end(), '\0')), state.end());
    return state;
}

class JucePlugIn : public PlugIn
{
public:
    explicit JucePlugIn(std::unique_ptr<juce::AudioPluginInstance> toUse) : instance(std::move(toUse))
    {
        // Wrappers add parameters of their own (bypass, program).
        for (auto* parameter : instance->getParameters())
            if (parameter->getName(100).startsWith("Reverb"))
                parameters.push_back(parameter);
    }

    void checkIdentity(Checks& checks) override
    {
        const auto description = instance->getPluginDescription();
        checks.expect(description.manufacturerName + " " + instance->getName() == "Veskora Ambrel",
                      "its maker and name");
        checks.expect(description.version == "1.0.3" || isLv2(), "its version is 1.0.3");
        checks.expect(description.category.contains("Reverb") && !description.isInstrument,
                      "hosts list it among the reverbs");
        checks.expect(!instance->acceptsMidi() && !instance->producesMidi(), "it has no MIDI");
        checks.expect(instance->getLatencySamples() == 0, "it has no latency");
        checks.expect(instance->hasEditor(), "it has an editor");
        checks.expect(parameters.size() == 2 && instance->getBypassParameter() != nullptr,
                      "it has two parameters and a bypass");

        using Set = juce::AudioChannelSet;
        const bool hasMono = setLayout(Set::mono());
        checks.expect(hasMono != isLv2(), "only the LV2 refuses mono");
        if (hasMono)
            checkMono(checks);
        checks.expect(!setLayout(Set::create5point1()), "surround is refused");
        checks.expect(setLayout(Set::stereo()), "stereo is accepted");
    }

    void start(double sampleRate, int maximumBlockSize, bool isOffline) override
    {
        instance->setNonRealtime(isOffline);
        instance->setRateAndBufferSizeDetails(sampleRate, maximumBlockSize);
        instance->prepareToPlay(sampleRate, maximumBlockSize);
    }

    void stop() override { instance->releaseResources(); }

    void process(Block& block) override
    {
        juce::MidiBuffer midi;
        instance->processBlock(block, midi);
    }

    void setParameter(int index, float value) override
    {
        parameters[static_cast<std::size_t>(index)]->setValue(value);
    }

    void setBypassed(bool isBypassed) override
    {
        instance->getBypassParameter()->setValue(isBypassed ? 1.0f : 0.0f);
    }

    int getNumPrograms() override { return instance->getNumPrograms(); }
    std::string getProgramName(int index) override { return instance->getProgramName(index).toStdString(); }
    void setProgram(int index) override { instance->setCurrentProgram(index); }

    State getState() override
    {
        juce::MemoryBlock wrapped;
        instance->getStateInformation(wrapped);
        juce::MemoryBlock block;
        if (isLv2())
            block.fromBase64Encoding(wrapped.toString()
                                         .fromFirstOccurrenceOf(lv2StateStart, false, false)
                                         .upToFirstOccurrenceOf("\"", false, false));
        else if (const auto xml = juce::AudioProcessor::getXmlFromBinary(wrapped.getData(),
                                                                         static_cast<int>(wrapped.getSize())))
            block.fromBase64Encoding(xml->getChildElementAllSubText(stateElement, {}));
        return trimmed(State(block.begin(), block.end()));
    }

    void setState(const State& state) override
    {
        const auto text = juce::MemoryBlock(state.data(), state.size()).toBase64Encoding();
        juce::MemoryBlock wrapped;
        if (isLv2())
        {
            juce::MemoryBlock present;
            instance->getStateInformation(present);
            const auto old = present.toString();
            const auto begin = old.indexOf(lv2StateStart) + juce::String(lv2StateStart).length();
            const auto replaced = old.substring(0, begin) + text + old.substring(old.indexOf(begin, "\""));
            wrapped.append(replaced.toRawUTF8(), replaced.getNumBytesAsUTF8());
        }
        else
        {
            juce::XmlElement xml("VST3PluginState");
            xml.createNewChildElement(stateElement)->addTextElement(text);
            juce::AudioProcessor::copyXmlToBinary(xml, wrapped);
        }
        instance->setStateInformation(wrapped.getData(), static_cast<int>(wrapped.getSize()));
    }

    std::unique_ptr<juce::Component> openEditor() override { return std::make_unique<Window>(*instance); }

private:
    static constexpr auto lv2StateStart = "StateString> \"";

    bool isLv2() const { return instance->getPluginDescription().pluginFormatName == "LV2"; }

    bool setLayout(const juce::AudioChannelSet& set)
    {
        juce::AudioProcessor::BusesLayout layout;
        layout.inputBuses.add(set);
        layout.outputBuses.add(set);
        return instance->setBusesLayout(layout);
    }

    void checkMono(Checks& checks)
    {
        constexpr int blockSize = 4096;
        start(48000.0, blockSize, false);
        auto block = Noise().make(blockSize, 1);
        process(block);
        const float peak = getPeak(block);
        block.clear();
        process(block);
        checks.expect(peak > 0.5f * noiseAmplitude && peak < loudestOutput &&
                          getPeak(block) > 0.01f * noiseAmplitude,
                      "mono rings on at a sound level");
        stop();
    }

    std::unique_ptr<juce::AudioPluginInstance> instance;
    std::vector<juce::AudioProcessorParameter*> parameters;
};

/** What a scan of the folder finds under the product's name; no name if there is nothing. */
juce::PluginDescription scan(juce::AudioPluginFormat& format, const std::string& folder)
{
    for (const auto& identifier : format.searchPathsForPlugins(juce::FileSearchPath(folder), true))
    {
        juce::OwnedArray<juce::PluginDescription> descriptions;
        format.findAllTypesForFile(descriptions, identifier);
        for (const auto* description : descriptions)
            if (description->name == "Ambrel")
                return *description;
    }
    return {};
}
} // namespace

Loader makeJuceLoader(const std::string& formatName, const std::string& folder)
{
    auto manager = std::make_shared<juce::AudioPluginFormatManager>();
    manager->addDefaultFormats();
    juce::PluginDescription found;
    for (auto* format : manager->getFormats())
        if (format->getName() == juce::String(formatName))
            found = scan(*format, folder);

    return [=]() -> std::unique_ptr<PlugIn>
    {
        juce::String error = "a scan of " + juce::String(folder) + " finds nothing";
        if (found.name.isNotEmpty())
            if (auto instance = manager->createPluginInstance(found, 48000.0, 512, error))
                return std::make_unique<JucePlugIn>(std::move(instance));
        std::fprintf(stderr, "%s: %s\n", formatName.c_str(), error.toRawUTF8());
        return nullptr;
    };
}

} // namespace hosts
