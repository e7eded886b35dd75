/**
    One public parameter: the bridge between what a host sees (0 to 1) and one parameter of the engine
    (internal id, own unit and range).

    The base class maps one to one, linearly or logarithmically. A class that moves several parameters of the
    engine by a law of its own overrides the two virtual operations and sets both defaults again in its
    constructor.

    Cost: a few calls of the engine. Thread: as the engine allows, which is any.
*/
#pragma once

#include "core/BaseAudioProcessor.h"

#include <juce_core/juce_core.h>

#include <memory>

class ParameterDescription
{
public:
    enum ParameterMappingMode : int
    {
        linearMapping = 0,     ///< n = (v - min) / (max - min)
        logarithmicMapping = 1 ///< n = log10(v / min) / log10(max / min)
    };

    /** The defaults are what the engine holds at this moment.
        @param step  the range divided by the number of steps; the whole range makes the parameter a switch */
    ParameterDescription(std::shared_ptr<vesk::audio::BaseAudioProcessor> engine, int internalParameterId,
                         const juce::String& parameterName, const juce::String& parameterUnit, float step,
                         ParameterMappingMode mode);
    virtual ~ParameterDescription() = default;

    /** Both raise std::runtime_error ("Unknown mapping mode"), and the engine's std::out_of_range for an
        unknown id. */
    virtual float getNormalizedParameterValue();
    virtual void setNormalizedParameterValue(float value, bool effectuateNow);

    /** Value of the engine's parameter, in its own unit. */
    float getEngineValue() const { return processor->getParameterValue(internalId); }

    /** Whether the parameter has two values only: its step is its whole range. */
    bool isSwitch() const;

    const std::shared_ptr<vesk::audio::BaseAudioProcessor> processor;
    const int internalId;
    const juce::String name;
    const juce::String unit;
    const float stepSize;
    float defaultValue;      ///< what a reset hands to the engine
    float normalizedDefault; ///< what a host is told
    const ParameterMappingMode mappingMode;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(ParameterDescription)
};
