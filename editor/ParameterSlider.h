/**
    A slider with a fine mode, for drags and for the wheel, and an optional binding to a parameter of the engine.

    Fine mode is on while ctrl, alt or command is held (shift is not one of them). A fine drag moves the value by
    a quarter of the fine step per pixel, in steps at most every 50 ms; what the mouse does in between counts in
    the next step. A fine turn of the wheel moves the value by one fine step, however far the wheel went:

        ParameterSlider slider("gain");
        slider.setFineStep(0.1f);                              // 0.1 per notch and per four pixels
        slider.bind(&processor, engine, 0, Engine::gain);      // or listen, as with any juce::Slider

    A bound slider writes to the engine itself, then has the processor tell the host, and reports the start and
    the end of drags to the host as gestures. An unbound one is a juce::Slider with a fine mode.

    Thread: message thread.
*/
#pragma once

#include "plugin/BasePlugInProcessor.h"

#include <juce_gui_basics/juce_gui_basics.h>

class ParameterSlider : public juce::Slider
{
public:
    explicit ParameterSlider(const juce::String& name);

    /** Ties the slider to one parameter. Null pointers take the binding off. The slider must not outlive either.
        @param publicIndex    position in the host's list of parameters, -1 for none
        @param internalIndex  the engine's index
        @param immediately    whether the engine makes costly changes at once or when it is next told to */
    void bind(BasePlugInProcessor* boundProcessor, vesk::audio::BaseAudioProcessor* boundEngine,
              int publicIndex, int internalIndex, bool immediately = true);

    /** Off: values still change and gestures are still reported, but the engine keeps its value. */
    void setPassToEngine(bool shouldPass) { passToEngine = shouldPass; }

    /** @param step  in the slider's unit, per notch of the wheel and per four pixels of a drag */
    void setFineStep(float step) { fineStep = step; }

    /** -1 if the slider is not bound. */
    int getPublicParameterIndex() const { return publicParameterIndex; }

    void startedDragging() override;
    void stoppedDragging() override;
    void valueChanged() override;
    void mouseDown(const juce::MouseEvent& event) override;
    void mouseDrag(const juce::MouseEvent& event) override;
    void mouseWheelMove(const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel) override;

private:
    bool isTimeForFineStep() const;
    void rememberFineStep(juce::Point<int> position);

    bool passToEngine = true;
    BasePlugInProcessor* processor = nullptr;
    vesk::audio::BaseAudioProcessor* engine = nullptr;
    int publicParameterIndex = -1;
    int internalParameterIndex = -1;
    bool immediate = true;
    float fineStep = 1.0f;

    juce::Point<int> lastPosition; ///< of the mouse, at the last fine step or when the button went down
    double lastTime = 0.0;         ///< of the same, in milliseconds
    bool wheelFineMode = false;    ///< the last turn of the wheel was a fine one, and its tail may yet come

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(ParameterSlider)
};
