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
    specs.clear();
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
            specs.push_back(reinterpret_cast<FirSpec*>(ippsMalloc_8u(specBytes)));
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

/** Joins each channel's past and block, and keeps the end as the new past. */
void FirFilter::IppFirFilter::takeBlock(const Signal32& input)
{
    const int past = tapsLength - 1;
    history.ensureDimensions(numChannels, headLength + input.numSamples);
    for (int channel = 0; channel < numChannels; ++channel)
    {
        auto* block = history.getWriteChannelPtr(channel) + headLength;
        auto* kept = delayLine.getWriteChannelPtr(channel);
        vo::copy(static_cast<const float*>(kept), block - past, past);
        vo::copy(input.getChannelPtr(channel), block, input.numSamples);
        vo::copy(static_cast<const float*>(block) + input.numSamples - past, kept, past);
    }
}

FirInput FirFilter::IppFirFilter::getInput(int response, int channel) const
{
    return {.block = history.getChannelPtr(channel) + headLength,
            .spec = specs[static_cast<std::size_t>(response * numChannels + channel)]};
}

std::vector<Signal32> FirFilter::IppFirFilter::process(const Signal32& input)
{
    std::vector<Signal32> results;
    process(input, results);
    return results;
}

void FirFilter::IppFirFilter::process(const Signal32& input, std::vector<Signal32>& results)
{
    takeBlock(input);
    results.resize(static_cast<std::size_t>(numImpulseResponses));
    for (int response = 0; response < numImpulseResponses; ++response)
    {
        Signal32 result(input.numChannels, input.numSamples);
        for (int channel = 0; channel < numChannels && input.numSamples > 0; ++channel)
        {
            const FirInput source = getInput(response, channel);
            check(firSum_32f({&source, 1}, result.getWriteChannelPtr(channel), input.numSamples));
        }
        results[static_cast<std::size_t>(response)] = std::move(result);
    }
}

Signal32 FirFilter::IppFirFilter::processSummed(const Signal32& input)
{
    takeBlock(input);
    Signal32 result(numImpulseResponses, input.numSamples);
    summed.resize(static_cast<std::size_t>(numChannels));
    for (int response = 0; response < numImpulseResponses && input.numSamples > 0; ++response)
    {
        for (int channel = 0; channel < numChannels; ++channel)
            summed[static_cast<std::size_t>(channel)] = getInput(response, channel);
        check(firSum_32f(summed, result.getWriteChannelPtr(response), input.numSamples));
    }
    return result;
}

void FirFilter::IppFirFilter::reset()
{
    for (int channel = 0; channel < delayLine.numChannels && delayLine.numSamples > 0; ++channel)
        check(ippsZero_32f(delayLine.getWriteChannelPtr(channel), delayLine.numSamples));
}

} // namespace vesk::audio
