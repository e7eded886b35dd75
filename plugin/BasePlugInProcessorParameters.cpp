#include "plugin/BasePlugInProcessor.h"

#include <algorithm>

ParameterDescription* BasePlugInProcessor::getDescription(int index) const
{
    return parameterDescriptions[index]; // null beyond either end
}

/** Public index of the first description of an engine parameter, -1 if there is none. */
int BasePlugInProcessor::findDescription(int internalId) const
{
    for (int index = 0; index < parameterDescriptions.size(); ++index)
        if (parameterDescriptions.getUnchecked(index)->internalId == internalId)
            return index;
    return -1;
}

/** An open editor brings the engine up to date from its timer, and an import does so at its end. */
bool BasePlugInProcessor::shouldEffectuateNow() const
{
    return getActiveEditor() == nullptr &&
           importingThread.load(std::memory_order_relaxed) != juce::Thread::getCurrentThreadId();
}

int BasePlugInProcessor::getNumParameters() { return parameterDescriptions.size(); }

const juce::String BasePlugInProcessor::getParameterName(int index)
{
    const auto* description = getDescription(index);
    return description != nullptr ? description->name : juce::String();
}

/** Hosts keep automation by this id, so it is the name of old and never the position. */
juce::String BasePlugInProcessor::getParameterID(int index)
{
    return getParameterName(index).removeCharacters(" ");
}

float BasePlugInProcessor::getParameter(int index)
{
    auto* description = getDescription(index);
    return description != nullptr ? description->getNormalizedParameterValue() : -1.0f;
}

/** The engine's own value in its own unit, not the normalized one. */
const juce::String BasePlugInProcessor::getParameterText(int index)
{
    const auto* description = getDescription(index);
    if (description == nullptr)
        return {};

    const auto value = description->getEngineValue();
    const auto text = description->isSwitch() ? juce::String(value > 0.5f ? "On" : "Off")
                                              : juce::String::formatted("%.2f", static_cast<double>(value));
    return text + " " + description->unit;
}

float BasePlugInProcessor::getParameterDefaultValue(int index)
{
    const auto* description = getDescription(index);
    return description != nullptr ? description->normalizedDefault : 0.0f;
}

void BasePlugInProcessor::setParameter(int index, float value)
{
    if (auto* description = getDescription(index))
    {
        description->setNormalizedParameterValue(value, shouldEffectuateNow());
        callListeners(index);
    }
}

void BasePlugInProcessor::resetParameter(int index, bool notifyHost)
{
    if (const auto* description = getDescription(index))
    {
        baseProcessor->setParameterValue(description->internalId, description->defaultValue,
                                         shouldEffectuateNow());
        if (notifyHost)
            notifyInternalParameterChange(description->internalId);
    }
}

int BasePlugInProcessor::getInternalParameterId(int index) const
{
    return parameterDescriptions.getUnchecked(index)->internalId;
}

void BasePlugInProcessor::notifyInternalParameterChange(int internalId)
{
    if (const int index = findDescription(internalId); index >= 0)
        sendParamChangeMessageToListeners(index, getDescription(index)->getNormalizedParameterValue());
}

void BasePlugInProcessor::addListener(Listener* listener)
{
    if (listener != nullptr)
        listeners.addIfNotAlreadyThere(listener);
}

void BasePlugInProcessor::removeListener(Listener* listener) { listeners.removeFirstMatchingValue(listener); }

/** From the last to the first. A listener may remove itself or others meanwhile. */
void BasePlugInProcessor::callListeners(int parameterIndex)
{
    for (int position = listeners.size(); position > 0; --position)
    {
        position = std::min(position, listeners.size());
        if (position < 1)
            return;
        listeners.getUnchecked(position - 1)->parameterChanged(parameterIndex);
    }
}
