#include "editor/ParameterSlider.h"

namespace
{
constexpr double shortestFineStepMilliseconds = 50.0;

/** Four pixels of a drag are worth one fine step. */
constexpr double fineStepsPerPixel = 0.25;

/** Shift is left to the library. */
bool isFineMode(const juce::ModifierKeys& modifiers)
{
    return modifiers.testFlags(juce::ModifierKeys::ctrlAltCommandModifiers);
}
} // namespace

ParameterSlider::ParameterSlider(const juce::String& name) : juce::Slider(name) {}

void ParameterSlider::bind(BasePlugInProcessor* boundProcessor, vesk::audio::BaseAudioProcessor* boundEngine,
                           int publicIndex, int internalIndex, bool immediately)
{
    processor = boundProcessor;
    engine = boundEngine;
    publicParameterIndex = publicIndex;
    internalParameterIndex = internalIndex;
    immediate = immediately;
}

JUCE_BEGIN_IGNORE_WARNINGS_GCC_LIKE("-Wdeprecated-declarations")
JUCE_BEGIN_IGNORE_WARNINGS_MSVC(4996)

void ParameterSlider::startedDragging()
{
    if (processor != nullptr)
        processor->beginParameterChangeGesture(publicParameterIndex);
}

void ParameterSlider::stoppedDragging()
{
    if (processor != nullptr)
        processor->endParameterChangeGesture(publicParameterIndex);
}

JUCE_END_IGNORE_WARNINGS_MSVC
JUCE_END_IGNORE_WARNINGS_GCC_LIKE

void ParameterSlider::valueChanged()
{
    if (!passToEngine || engine == nullptr || processor == nullptr)
        return;

    engine->setParameterValue(internalParameterIndex, static_cast<float>(getValue()), immediate);
    processor->notifyInternalParameterChange(internalParameterIndex);
}

void ParameterSlider::mouseDown(const juce::MouseEvent& event)
{
    juce::Slider::mouseDown(event);
    rememberFineStep(event.getPosition());
}

void ParameterSlider::mouseDrag(const juce::MouseEvent& event)
{
    if (!isEnabled() || !isFineMode(event.mods))
    {
        juce::Slider::mouseDrag(event);
        return;
    }
    if (!isTimeForFineStep())
        return;

    const bool movesSideways = getSliderStyle() == RotaryHorizontalDrag || isHorizontal();
    const float pixels = movesSideways ? event.position.x - static_cast<float>(lastPosition.x)
                                       : static_cast<float>(lastPosition.y) - event.position.y;

    setValue(getValue() + static_cast<double>(pixels * fineStep) * fineStepsPerPixel, juce::sendNotification);
    rememberFineStep(event.getPosition());
}

void ParameterSlider::mouseWheelMove(const juce::MouseEvent& event, const juce::MouseWheelDetails& wheel)
{
    if (isEnabled() && isFineMode(event.mods))
    {
        wheelFineMode = true;
        if (!isTimeForFineStep())
            return;

        if (!wheel.isInertial)
        {
            const double direction = (wheel.deltaY >= 0.0f ? 1.0 : -1.0) * (wheel.isReversed ? -1.0 : 1.0);
            setValue(getValue() + static_cast<double>(fineStep) * direction, juce::sendNotification);
        }
        lastTime = juce::Time::getMillisecondCounterHiRes();
        return;
    }

    // The tail of a flick that began in fine mode must not move the slider once the key is let go.
    if (wheel.isInertial && wheelFineMode)
        return;

    wheelFineMode = false;
    juce::Slider::mouseWheelMove(event, wheel);
}

bool ParameterSlider::isTimeForFineStep() const
{
    return juce::Time::getMillisecondCounterHiRes() - lastTime > shortestFineStepMilliseconds;
}

void ParameterSlider::rememberFineStep(juce::Point<int> position)
{
    lastPosition = position;
    lastTime = juce::Time::getMillisecondCounterHiRes();
}
