#include "core/BaseAudioProcessor.h"

#include <stdexcept>

namespace vesk::audio
{

namespace
{
[[noreturn]] void throwUnknownParameter() { throw std::out_of_range("Parameter index"); }
} // namespace

BaseAudioProcessor::~BaseAudioProcessor() = default;

bool BaseAudioProcessor::setFormat(const AudioFormat& input, const AudioFormat& output)
{
    inputFormat = input;
    outputFormat = output;
    return true;
}

ProcessingInfo BaseAudioProcessor::getProcessingInfo() { return {}; }

void BaseAudioProcessor::getParameterRange(int, float&, float&) { throwUnknownParameter(); }

float BaseAudioProcessor::getParameterValue(int) { throwUnknownParameter(); }

void BaseAudioProcessor::setParameterValue(int, float, bool) { throwUnknownParameter(); }

void BaseAudioProcessor::effectuateParameterChanges() {}

void BaseAudioProcessor::reset() {}

} // namespace vesk::audio
