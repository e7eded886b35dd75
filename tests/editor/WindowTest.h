/** The product's window over a processor with presets of its own. */
#pragma once

#include "tests/editor/EditorTools.h"

class WindowTest : public ::testing::Test
{
protected:
    WindowTest() { open(); }

    /** As hosts do it, so that the processor knows of the window and leaves costly changes to it. */
    void open()
    {
        window.reset();
        window.reset(dynamic_cast<AmbrelAudioProcessorEditor*>(processor.createEditorIfNeeded()));
        header = &findChild<PlugInEditorHeader>(*window);
        knob = &findChild<ParameterSlider>(*window, "reverbTimeSlider");
        fader = &findChild<juce::Slider>(*window, "reverbMixSlider");
    }

    /** What the timer does, and the notifications that follow. */
    void tick()
    {
        window->timerCallback();
        runMessages();
    }

    void pressHeader(const juce::String& name)
    {
        click(findChild<juce::Button>(*header, name));
        tick();
    }

    juce::Image picture() { return window->createComponentSnapshot(window->getLocalBounds()); }

    AmbrelWithPresets processor;
    std::unique_ptr<AmbrelAudioProcessorEditor> window;
    PlugInEditorHeader* header = nullptr;
    ParameterSlider* knob = nullptr;
    juce::Slider* fader = nullptr;
};
