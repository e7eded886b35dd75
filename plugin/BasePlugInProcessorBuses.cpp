#include "plugin/BasePlugInProcessor.h"

#include <array>

using vesk::audio::AudioFormat;
using vesk::audio::SpeakerPosition;

namespace
{
/** Short names in the order in which they are compared. The positions are this plug-in family's own
    convention
    ("S", "Cs" and "Tfc" do not lie where the names suggest): engines and saved sessions rely on it. */
struct NamedSpeaker
{
    const char* name;
    SpeakerPosition position;
};

constexpr float noAux = -1.0f;

constexpr std::array namedSpeakers{NamedSpeaker{"M", {0.0f, 1.0f, 0.0f, vesk::audio::Mono, noAux}},
                                   NamedSpeaker{"L", {-1.0f, 1.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"R", {1.0f, 1.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"C", {0.0f, 1.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Ls", {-1.0f, -1.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Rs", {1.0f, -1.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Lc", {-0.5f, 1.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Rc", {0.5f, 1.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"S", {0.0f, 0.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Cs", {0.0f, 0.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Sl", {-1.0f, 0.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Sr", {1.0f, 0.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Lss", {-1.0f, 0.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Rss", {1.0f, 0.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Lsr", {-1.0f, -1.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Rsr", {1.0f, -1.0f, 0.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Tm", {0.0f, 0.0f, 1.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Tfl", {-1.0f, 1.0f, 1.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Tfc", {0.0f, 0.0f, 1.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Tfr", {1.0f, 1.0f, 1.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Trl", {-1.0f, -1.0f, 1.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Trc", {0.0f, -1.0f, 1.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Trr", {1.0f, -1.0f, 1.0f, vesk::audio::Regular, noAux}},
                                   NamedSpeaker{"Lfe", {0.0f, 1.0f, 0.0f, vesk::audio::Lfe, noAux}},
                                   NamedSpeaker{"Lfe1", {-1.0f, 1.0f, 0.0f, vesk::audio::Lfe, noAux}},
                                   NamedSpeaker{"Lfe2", {1.0f, 1.0f, 0.0f, vesk::audio::Lfe, noAux}}};

/** A host whose path holds this word offers surround layouts to effects that it then runs in stereo. */
constexpr auto stereoOnlyHost = "edius";
constexpr int stereoOnlyLimit = 2;

juce::String getHostPath()
{
    return juce::File::getSpecialLocation(juce::File::hostApplicationPath).getFullPathName();
}
} // namespace

SpeakerPosition BasePlugInProcessor::speakerIdToPosition(const juce::String& speakerId)
{
    for (const auto& speaker : namedSpeakers)
        if (speakerId.equalsIgnoreCase(speaker.name))
            return speaker.position;
    return {};
}

/** From the library's names for the bus's channels, or the standard layout if they do not fit the count. */
AudioFormat BasePlugInProcessor::makeFormat(bool isInput, double sampleRate) const
{
    JUCE_BEGIN_IGNORE_WARNINGS_GCC_LIKE("-Wdeprecated-declarations")
    JUCE_BEGIN_IGNORE_WARNINGS_MSVC(4996)
    const auto arrangement = isInput ? getInputSpeakerArrangement() : getOutputSpeakerArrangement();
    JUCE_END_IGNORE_WARNINGS_MSVC
    JUCE_END_IGNORE_WARNINGS_GCC_LIKE

    juce::StringArray names;
    names.addTokens(arrangement, " ", {});

    AudioFormat format(isInput ? getTotalNumInputChannels() : getTotalNumOutputChannels(), sampleRate);
    if (names.size() == format.numChannels)
        for (int channel = 0; channel < format.numChannels; ++channel)
            format.speakers[static_cast<std::size_t>(channel)] = speakerIdToPosition(names[channel]);
    return format;
}

int BasePlugInProcessor::getChannelLimit(const juce::String& hostPath) const
{
    return hostPath.containsIgnoreCase(stereoOnlyHost) ? stereoOnlyLimit : maxNumChannels;
}

bool BasePlugInProcessor::isBusesLayoutSupported(const BusesLayout& layouts) const
{
    if (layouts.inputBuses.size() != 1 || layouts.outputBuses.size() != 1)
        return false;

    const auto& set = layouts.inputBuses.getReference(0);
    return set == layouts.outputBuses.getReference(0) && set.size() > 0 &&
           set.size() <= getChannelLimit(getHostPath());
}

bool BasePlugInProcessor::setPreferredBusArrangement(bool, int busIndex,
                                                     const juce::AudioChannelSet& preferredSet)
{
    if (busIndex > 0 || preferredSet.size() == 0 || preferredSet.size() > getChannelLimit(getHostPath()))
        return false;

    // Both directions at once: neither may ever differ from the other.
    BusesLayout layouts;
    layouts.inputBuses.add(preferredSet);
    layouts.outputBuses.add(preferredSet);
    return setBusesLayout(layouts);
}
