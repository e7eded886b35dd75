/**
    A finished plug-in as a host sees it, whatever its format: what the checks of FormatChecks.h are written against.

    Thread: start, stop, programs, states and editors on the message thread, process and setParameter on any one
    other or the same. Changes of parameters, bypass and programs are certain to be heard only in the next block.
*/
#pragma once

#include "tests/hosts/Checks.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace hosts
{

/** The plug-in's own state block, without what a format wraps around it. */
using State = std::vector<char>;

/** An open window of a plug-in. Closes it when it goes. */
class Editor
{
public:
    virtual ~Editor() = default;

    /** Width and height in pixels. */
    virtual std::pair<int, int> getSize() const = 0;
};

class PlugIn
{
public:
    virtual ~PlugIn() = default;

    /** Names, numbers of channels and parameters, and what else is fixed. */
    virtual void checkIdentity(Checks&) = 0;

    virtual void start(double sampleRate, int maximumBlockSize, bool isOffline = false) = 0;
    virtual void stop() = 0;

    /** One block in place, of up to the maximum length that start was told. */
    virtual void process(Channels&) = 0;

    /** @param index  0 is ReverbCharacter, 1 is ReverbMix
        @param value  0 to 1 */
    virtual void setParameter(int index, float value) = 0;

    virtual void setBypassed(bool) = 0;

    virtual int getNumPrograms() = 0;
    virtual std::string getProgramName(int index) = 0;
    virtual void setProgram(int index) = 0;

    virtual State getState() = 0;
    virtual void setState(const State&) = 0;

    /** Needs a display. */
    virtual std::unique_ptr<Editor> openEditor() = 0;
};

/** Makes a new instance; empty, with a message on the standard error stream, if there is nothing to load. */
using Loader = std::function<std::unique_ptr<PlugIn>()>;

/** A VST3 or LV2 in JUCE's own hosting. Looks through the folder at once, as a host's scan does; each call of the result
    loads an instance of what was found there under the product's name.

    @param format  "VST3" or "LV2" */
Loader makeJuceLoader(const std::string& format, const std::string& folder);

/** A VST2 in a small host over the FST headers. */
Loader makeVst2Loader(const std::string& file);

/** What lies behind a state block is not part of it: the block tells its own length. */
inline State trimmed(State state)
{
    // Header, two entries, the marker; then the preset's name with a zero at its end.
    constexpr std::size_t nameOffset = 40;
    if (state.size() > nameOffset)
        state.erase(std::next(std::find(state.begin() + nameOffset, state.end(), '\0')), state.end());
    return state;
}

} // namespace hosts
