/**
    A finished plug-in as a host sees it, whatever its format, and the checks that every format is put to.

    Thread: start, stop, programs, states and editors on the message thread, process and setParameter on any one
    other or the same. Changes of parameters, bypass and programs are certain to be heard only in the next block.
*/
#pragma once

#include "tests/hosts/Checks.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace hosts
{

/** The plug-in's own state block, without what a format wraps around it. */
using State = std::vector<char>;

class PlugIn
{
public:
    virtual ~PlugIn() = default;

    /** Names, numbers of channels and parameters, and what else is fixed. */
    virtual void checkIdentity(Checks&) = 0;

    virtual void start(double sampleRate, int maximumBlockSize, bool isOffline = false) = 0;
    virtual void stop() = 0;
    virtual void process(Block&) = 0; ///< in place

    /** @param index  0 is ReverbCharacter, 1 is ReverbMix
        @param value  0 to 1 */
    virtual void setParameter(int index, float value) = 0;
    virtual void setBypassed(bool) = 0;

    virtual int getNumPrograms() = 0;
    virtual std::string getProgramName(int index) = 0;
    virtual void setProgram(int index) = 0;
    virtual State getState() = 0;
    virtual void setState(const State&) = 0;

    /** A window of the plug-in's size, which closes when it goes. Needs a display. */
    virtual std::unique_ptr<juce::Component> openEditor() = 0;
};

/** Makes a new instance; empty, with a message on the standard error stream, if there is nothing to load. */
using Loader = std::function<std::unique_ptr<PlugIn>()>;

/** A VST3 or LV2 in JUCE's own hosting, found by one scan of the folder under the product's name.

    @param format  "VST3" or "LV2" */
Loader makeJuceLoader(const std::string& format, const std::string& folder);

/** A VST2 in a small host over the FST headers. */
Loader makeVst2Loader(const std::string& file);

/** A host's usual life with a plug-in, at every rate and block length that is met in practice, and what goes wrong in
    hosts at times.

    @param numPresets  how many preset files were installed
    @return failures */
int checkFormat(const Loader&, int numPresets);

/** Opens and closes the window while audio runs and parameters move. Needs a display. */
int checkEditor(const Loader&);

/** What holds between formats: they sound alike, name the same programs and read each other's states. All of them
    are loaded into this one process. */
int checkAcrossFormats(const std::vector<Loader>&);

/** Gives a format's message loop time for what it does on its own. */
void runMessageLoop(int milliseconds);

} // namespace hosts
