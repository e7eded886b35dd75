#include "plugin/ParameterDescription.h"

#include <cmath>
#include <stdexcept>
#include <utility>

ParameterDescription::ParameterDescription(std::shared_ptr<vesk::audio::BaseAudioProcessor> engine,
                                           int internalParameterId, const juce::String& parameterName,
                                           const juce::String& parameterUnit, float step,
                                           ParameterMappingMode mode)
    : processor(std::move(engine)), internalId(internalParameterId), name(parameterName), unit(parameterUnit),
      stepSize(step), defaultValue(processor->getParameterValue(internalId)), normalizedDefault(0.0f),
      mappingMode(mode)
{
    // Derived classes are not built yet: this is the base's mapping, which they replace in their
    // constructors.
    normalizedDefault = ParameterDescription::getNormalizedParameterValue();
}

float ParameterDescription::getNormalizedParameterValue()
{
    float minimum = 0.0f;
    float maximum = 0.0f;
    processor->getParameterRange(internalId, minimum, maximum);

    switch (mappingMode)
    {
    case linearMapping: return (getEngineValue() - minimum) / (maximum - minimum);
    case logarithmicMapping:
        return static_cast<float>(std::log10(static_cast<double>(getEngineValue() / minimum)) /
                                  std::log10(static_cast<double>(maximum / minimum)));
    }
    throw std::runtime_error("Unknown mapping mode");
}

void ParameterDescription::setNormalizedParameterValue(float value, bool effectuateNow)
{
    float minimum = 0.0f;
    float maximum = 0.0f;
    processor->getParameterRange(internalId, minimum, maximum);

    switch (mappingMode)
    {
    case linearMapping:
        processor->setParameterValue(internalId, (maximum - minimum) * value + minimum, effectuateNow);
        return;
    case logarithmicMapping:
    {
        const auto ratio = static_cast<double>(maximum / minimum);
        const auto scaled = static_cast<double>(minimum) * std::pow(ratio, static_cast<double>(value));
        processor->setParameterValue(internalId, static_cast<float>(scaled), effectuateNow);
        return;
    }
    }
    throw std::runtime_error("Unknown mapping mode");
}

bool ParameterDescription::isSwitch() const
{
    float minimum = 0.0f;
    float maximum = 0.0f;
    processor->getParameterRange(internalId, minimum, maximum);
    return stepSize == maximum - minimum;
}
