/** Loads a finished VST3 or LV2 as a JUCE host does, plays it at several rates and block lengths, and stores and
    restores its state. Needs no display.

    Usage: juceHost VST3|LV2 BUNDLE */
#include "tests/hosts/Checks.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <cstdlib>

namespace
{
juce::AudioPluginFormat* findFormat(juce::AudioPluginFormatManager& manager, const juce::String& name)
{
    for (auto* format : manager.getFormats())
        if (format->getName() == name)
            return format;
    return nullptr;
}

std::unique_ptr<juce::AudioPluginInstance> load(juce::AudioPluginFormat& format, const juce::File& bundle,
                                                double sampleRate, int blockSize)
{
    // An LV2 goes by its URI, which is found by looking through the folder; a VST3 goes by its path.
    const auto identifiers = format.searchPathsForPlugins(
        juce::FileSearchPath(bundle.getParentDirectory().getFullPathName()), false);
    for (const auto& identifier : identifiers)
    {
        juce::OwnedArray<juce::PluginDescription> descriptions;
        format.findAllTypesForFile(descriptions, identifier);
        for (const auto* description : descriptions)
        {
            juce::String error;
            if (auto instance =
                    format.createInstanceFromDescription(*description, sampleRate, blockSize, error))
                return instance;
            std::fprintf(stderr, "%s\n", error.toRawUTF8());
        }
    }
    return nullptr;
}

void setLayout(juce::AudioProcessor& plugIn, const juce::AudioChannelSet& set, hosts::Checks& checks)
{
    juce::AudioProcessor::BusesLayout layout;
    layout.inputBuses.add(set);
    layout.outputBuses.add(set);
    checks.expect(plugIn.setBusesLayout(layout), "the layout is accepted");
}

void play(juce::AudioPluginInstance& plugIn, double sampleRate, int blockSize, hosts::Checks& checks)
{
    plugIn.setPlayConfigDetails(plugIn.getTotalNumInputChannels(), plugIn.getTotalNumOutputChannels(),
                                sampleRate, blockSize);
    plugIn.prepareToPlay(sampleRate, blockSize);
    juce::MidiBuffer midi;
    hosts::checkReverb(checks, sampleRate, blockSize, plugIn.getTotalNumOutputChannels(),
                       [&](hosts::Channels& channels)
                       {
                           std::vector<float*> pointers;
                           for (auto& channel : channels)
                               pointers.push_back(channel.data());
                           juce::AudioBuffer<float> buffer(pointers.data(), static_cast<int>(pointers.size()),
                                                           blockSize);
                           plugIn.processBlock(buffer, midi);
                       });
    plugIn.releaseResources();
}

/** The plug-in's own parameters; wrappers add theirs (bypass, program). */
std::vector<juce::AudioProcessorParameter*> findParameters(juce::AudioProcessor& plugIn)
{
    std::vector<juce::AudioProcessorParameter*> found;
    for (auto* parameter : plugIn.getParameters())
        if (parameter->getName(100).startsWith("Reverb"))
            found.push_back(parameter);
    return found;
}

/** Wrappers hand changes on with the next block. */
void runOneBlock(juce::AudioPluginInstance& plugIn)
{
    juce::AudioBuffer<float> buffer(2, 64);
    juce::MidiBuffer midi;
    buffer.clear();
    plugIn.processBlock(buffer, midi);
}

juce::MemoryBlock getState(juce::AudioPluginInstance& plugIn)
{
    juce::MemoryBlock state;
    plugIn.getStateInformation(state);
    return state;
}

/** Held against other states: a host is not told of values that it restores itself. */
void checkState(juce::AudioPluginInstance& plugIn, hosts::Checks& checks)
{
    const auto parameters = findParameters(plugIn);
    checks.expect(parameters.size() == 2, "there are two parameters");
    if (parameters.size() != 2)
        return;

    plugIn.prepareToPlay(48000.0, 64);
    const auto setCharacter = [&](float value)
    {
        parameters[0]->setValueNotifyingHost(value);
        runOneBlock(plugIn);
    };

    setCharacter(0.625f);
    const auto kept = getState(plugIn);
    setCharacter(0.25f);
    checks.expect(getState(plugIn) != kept, "a parameter changes the state");
    plugIn.setStateInformation(kept.getData(), static_cast<int>(kept.getSize()));
    runOneBlock(plugIn);
    checks.expect(getState(plugIn) == kept, "the state comes back");
    plugIn.releaseResources();
}

int run(const juce::String& formatName, const juce::File& bundle)
{
    juce::AudioPluginFormatManager manager;
    manager.addDefaultFormats();
    auto* format = findFormat(manager, formatName);
    if (format == nullptr)
    {
        std::fprintf(stderr, "This host knows no %s\n", formatName.toRawUTF8());
        return EXIT_FAILURE;
    }

    const hosts::StartUpSign startUp;
    const auto plugIn = load(*format, bundle, 48000.0, 512);
    if (plugIn == nullptr)
    {
        std::fprintf(stderr, "%s does not load\n", bundle.getFullPathName().toRawUTF8());
        return EXIT_FAILURE;
    }

    hosts::Checks checks;
    checks.expect(startUp.isThere(), "its start-up code has run");
    checks.expect(plugIn->getName() == "Ambrel", "its name is Ambrel");
    checks.expect(plugIn->getPluginDescription().manufacturerName == "Veskora", "its maker is Veskora");
    checks.expect(plugIn->getPluginDescription().version == "1.0.3" || formatName == "LV2",
                  "its version is 1.0.3");
    checks.expect(plugIn->getNumPrograms() >= 2, "its presets are offered as programs");
    checks.expect(!plugIn->acceptsMidi() && !plugIn->producesMidi(), "it has no MIDI");
    checks.expect(plugIn->getLatencySamples() == 0, "it has no latency");

    for (const auto& [sampleRate, blockSize] : {std::pair(44100.0, 441), std::pair(48000.0, 64),
                                                std::pair(96000.0, 1024), std::pair(48000.0, 1000)})
        play(*plugIn, sampleRate, blockSize, checks);

    if (formatName == "VST3")
    {
        setLayout(*plugIn, juce::AudioChannelSet::mono(), checks);
        play(*plugIn, 48000.0, 256, checks);
        setLayout(*plugIn, juce::AudioChannelSet::stereo(), checks);
    }
    checkState(*plugIn, checks);
    return checks.failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
} // namespace

int main(int argc, char** argv)
{
    if (argc != 3)
    {
        std::fprintf(stderr, "Usage: %s VST3|LV2 BUNDLE\n", argv[0]);
        return EXIT_FAILURE;
    }
    const juce::ScopedJuceInitialiser_GUI library;
    return run(argv[1], juce::File::getCurrentWorkingDirectory().getChildFile(juce::String(argv[2])));
}
