/**
    Moves a slider by the keyboard, in steps of its way rather than of its values, so that they are even to the
    eye with any skew:

        arrow keys            1 % of the way
        page up, page down    10 % of the way
        home, end             the two ends

    A step moves the value by at least one interval. All other keys, and all keys with a modifier, are passed on,
    up to the host in the end. Steps in quick succession count as one drag for the slider's listeners, and so
    make one step of undo.

    The slider must want the keyboard focus and not outlive this. Thread: message thread.
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class KeyboardSteps : public juce::KeyListener
{
public:
    explicit KeyboardSteps(juce::Slider& controlledSlider);
    ~KeyboardSteps() override;

    bool keyPressed(const juce::KeyPress& key, juce::Component* origin) override;

private:
    void moveTo(double value);

    juce::Slider& slider;
    double lastStepTime = 0.0; ///< milliseconds

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(KeyboardSteps)
};
