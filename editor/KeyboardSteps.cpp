#include "editor/KeyboardSteps.h"

#include <algorithm>
#include <optional>

namespace
{
constexpr double smallStep = 0.01; ///< of the whole way
constexpr double largeStep = 0.1;

/** Longer than the delay before a held key repeats. */
constexpr double longestPauseMilliseconds = 1000.0;

/** Proportion of the way that a key moves a slider by. Home and end move by the whole way, which ends there. */
std::optional<double> getStep(int keyCode)
{
    if (keyCode == juce::KeyPress::upKey || keyCode == juce::KeyPress::rightKey)
        return smallStep;
    if (keyCode == juce::KeyPress::downKey || keyCode == juce::KeyPress::leftKey)
        return -smallStep;
    if (keyCode == juce::KeyPress::pageUpKey)
        return largeStep;
    if (keyCode == juce::KeyPress::pageDownKey)
        return -largeStep;
    if (keyCode == juce::KeyPress::endKey)
        return 1.0;
    if (keyCode == juce::KeyPress::homeKey)
        return -1.0;
    return {};
}
} // namespace

KeyboardSteps::KeyboardSteps(juce::Slider& controlledSlider) : slider(controlledSlider)
{
    slider.addKeyListener(this);
}

KeyboardSteps::~KeyboardSteps() { slider.removeKeyListener(this); }

bool KeyboardSteps::keyPressed(const juce::KeyPress& key, juce::Component*)
{
    const auto step = getStep(key.getKeyCode());
    if (!step.has_value() || key.getModifiers().isAnyModifierKeyDown() || !slider.isEnabled())
        return false;

    const auto position = slider.valueToProportionOfLength(slider.getValue());
    const auto target = slider.proportionOfLengthToValue(std::clamp(position + *step, 0.0, 1.0));

    // With a skew the way of one interval can be longer than a step.
    const auto interval = slider.getInterval();
    moveTo(*step > 0.0 ? std::max(target, std::min(slider.getValue() + interval, slider.getMaximum()))
                       : std::min(target, std::max(slider.getValue() - interval, slider.getMinimum())));
    return true;
}

void KeyboardSteps::moveTo(double value)
{
    const auto now = juce::Time::getMillisecondCounterHiRes();
    const bool isNewMove = now - lastStepTime > longestPauseMilliseconds;
    lastStepTime = now;

    if (isNewMove)
    {
        const juce::Slider::ScopedDragNotification drag(slider);
        slider.setValue(value, juce::sendNotificationSync);
    }
    else
    {
        slider.setValue(value, juce::sendNotificationSync);
    }
}
