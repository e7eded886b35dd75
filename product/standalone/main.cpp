/** Entry of the stand-alone program: JUCE's own application, if there is a display for its window. JUCE itself
    would go on without one, and crash. */
#include "editor/RefreshRate.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <cstdlib>
#include <iostream>

juce::JUCEApplicationBase* juce_CreateApplication();

int main(int argc, char* argv[])
{
    // Before JUCE starts: by this it knows a program of its own and takes X's errors calmly.
    juce::JUCEApplicationBase::createInstance = &juce_CreateApplication;

    const juce::ScopedJuceInitialiser_GUI library;
    if (juce::Desktop::getInstance().isHeadless())
    {
        std::cerr << "Ambrel: there is no display to open a window on. ambrel-render works without one.\n";
        return EXIT_FAILURE;
    }
    supplyMissingRefreshRates(); // before the editor does it, since the window around it comes first
    return juce::JUCEApplicationBase::main(argc, const_cast<const char**>(argv));
}
