// The direct-form head of a FirFilter.

#include "core/VectorOps.h"
#include "dsp/FirFilter.h"

#include <algorithm>
#include <utility>

namespace vesk::audio
{

FirFilter::IppFirFilter::~IppFirFilter() { free(); }

void FirFilter::IppFirFilter::free()
{
    for (auto* spec : specs)
        ippsFree(spec);
    for (auto* buffer : buffers)
        ippsFree(buffer);
    specs.clear();
    buffers.clear();
}

void FirFilter::IppFirFilter::setFilter(const std::vector<Signal32>& heads)
{
    const auto& first = heads.front();
    const bool sameShape = static_cast<int>(heads.size()) == numImpulseResponses &&
                           first.numChannels == numChannels && first.numSamples == tapsLength;
    if (!sameShape)
    {
        free();
        numImpulseResponses = static_cast<int>(heads.size());
        numChannels = first.numChannels;
        tapsLength = first.numSamples;
        delayLine = Signal32(numChannels, tapsLength, 0.0f);

        int specBytes = 0;
        int bufferBytes = 0;
        ippsFIRSRGetSize(tapsLength, ippDataType32f, &specBytes, &bufferBytes);
        for (std::size_t i = 0; i < heads.size() * static_cast<std::size_t>(numChannels); ++i)
        {
            specs.push_back(reinterpret_cast<FirSpec*>(ippsMalloc_8u(specBytes)));
            buffers.push_back(ippsMalloc_8u(bufferBytes));
        }
    }

    auto spec = specs.begin();
    for (const auto& head : heads)
        for (int channel = 0; channel < numChannels; ++channel)
            ippsFIRSRInit_32f(head.getChannelPtr(channel), tapsLength, ippFirDirectForm, *spec++);
}

void FirFilter::IppFirFilter::setDelayLine(const Signal32& past)
{
    if (numImpulseResponses < 1)
        return;
    const int wanted = tapsLength - 1;
    const int length = std::min(past.numSamples, wanted);
    delayLine = Signal32(past.numChannels, tapsLength, 0.0f);
    for (int channel = 0; channel < past.numChannels && length > 0; ++channel)
        vo::copy(past.getChannelPtr(channel) + past.numSamples - length,
                 delayLine.getWriteChannelPtr(channel) + wanted - length, length);
}

/** One response and channel. All responses start from the same past; the last one stores the new one. */
void FirFilter::IppFirFilter::filter(const Signal32& input, int response, int channel, float* destination)
{
    const auto index = static_cast<std::size_t>(response * numChannels + channel);
    auto* newPast = response == numImpulseResponses - 1 ? delayLine.getWriteChannelPtr(channel) : nullptr;
    ippsFIRSR_32f(input.getChannelPtr(channel), destination, input.numSamples, specs[index],
                  delayLine.getChannelPtr(channel), newPast, buffers[index]);
}

std::vector<Signal32> FirFilter::IppFirFilter::process(const Signal32& input)
{
    std::vector<Signal32> results;
    process(input, results);
    return results;
}

void FirFilter::IppFirFilter::process(const Signal32& input, std::vector<Signal32>& results)
{
    results.resize(static_cast<std::size_t>(numImpulseResponses));
    for (int response = 0; response < numImpulseResponses; ++response)
    {
        Signal32 result(input.numChannels, input.numSamples);
        for (int channel = 0; channel < numChannels; ++channel)
            filter(input, response, channel, result.getWriteChannelPtr(channel));
        results[static_cast<std::size_t>(response)] = std::move(result);
    }
}

Signal32 FirFilter::IppFirFilter::processSummed(const Signal32& input)
{
    Signal32 result(numImpulseResponses, input.numSamples, 0.0f);
    workSignal.ensureDimensions(1, input.numSamples);
    for (int response = 0; response < numImpulseResponses; ++response)
    {
        auto* sum = result.getWriteChannelPtr(response);
        for (int channel = 0; channel < numChannels; ++channel)
        {
            auto* filtered = workSignal.getWriteChannelPtr(0);
            filter(input, response, channel, filtered);
            if (input.numSamples > 0)
                check(ippsAdd_32f(sum, filtered, sum, input.numSamples));
        }
    }
    return result;
}

void FirFilter::IppFirFilter::reset()
{
    for (int channel = 0; channel < delayLine.numChannels && delayLine.numSamples > 0; ++channel)
        check(ippsZero_32f(delayLine.getWriteChannelPtr(channel), delayLine.numSamples));
}

} // namespace vesk::audio
