// The two kinds of stage of a FirFilter: overlap-save partitions and the direct head.

#include "core/VectorOps.h"
#include "dsp/FirFilter.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace vesk::audio
{

//==============================================================================
// Partition

FirFilter::Partition::Partition(int channels, int responses, int start, int size)
    : numImpulseResponses(responses), numChannels(channels), fftSize(2 * size),
      queues(static_cast<std::size_t>(responses)), irSpectra(static_cast<std::size_t>(responses)),
      offset(start)
{
}

void FirFilter::Partition::setImpulseResponses(const std::vector<Signal32>& responses)
{
    impulseResponseLength = responses.front().numSamples;
    const float scale = 1.0f / static_cast<float>(fftSize);
    for (std::size_t k = 0; k < irSpectra.size(); ++k)
    {
        // The zeros beside the slice make the circular convolution of the transform a linear one. Standing in
        // the second half, the slice delays by half a frame.
        Signal32 padded(numChannels, fftSize, 0.0f);
        const int length = std::min(responses[k].numSamples - offset, getSize());
        for (int channel = 0; channel < numChannels && length > 0; ++channel)
            check(ippsMulC_32f(responses[k].getChannelPtr(channel) + offset, scale,
                               padded.getWriteChannelPtr(channel) + getSize(), length));
        irSpectra[k] = ComplexSignal32(numChannels, getSize() + 1);
        fourierTransform.forwardReal(padded, irSpectra[k]);
    }
}

/** How far before the current block's first sample the next frame starts. */
int FirFilter::Partition::getLead() const
{
    return offset + getSize() - static_cast<int>(queues.front().numSamples);
}

int FirFilter::Partition::countFrames(int blockLength) const
{
    return std::max((blockLength + getLead()) / getSize() - 1, 0);
}

void FirFilter::Partition::transformFrame(CircularBuffer<Signal32>& input, int start)
{
    timeBuffer.ensureDimensions(numChannels, fftSize);
    inputSpectrum.ensureDimensions(numChannels, getSize() + 1);
    input.peek(start, timeBuffer);
    fourierTransform.forwardReal(timeBuffer, inputSpectrum);
}

/** Transforms the product back into a block whose handle shows the half that is valid, and queues it. */
void FirFilter::Partition::queueProduct(SignalQueue<Signal32>& queue)
{
    Signal32 frame(productSpectrum.numChannels, fftSize);
    fourierTransform.inverseReal(productSpectrum, frame);
    frame.numSamples = getSize();
    queue.add(frame);
}

void FirFilter::Partition::computeFrames(CircularBuffer<Signal32>& input, int blockLength)
{
    const int numBins = getSize() + 1;
    const int lead = getLead();
    const int count = countFrames(blockLength);
    for (int frame = 0; frame < count; ++frame)
    {
        transformFrame(input, frame * getSize() - lead);
        productSpectrum.ensureDimensions(numChannels, numBins);
        for (std::size_t k = 0; k < queues.size(); ++k)
        {
            for (int channel = 0; channel < numChannels; ++channel)
                check(ippsMul_32fc(inputSpectrum.getChannelPtr(channel), irSpectra[k].getChannelPtr(channel),
                                   productSpectrum.getWriteChannelPtr(channel), numBins));
            queueProduct(queues[k]);
        }
    }
}

void FirFilter::Partition::computeSummedFrames(CircularBuffer<Signal32>& input, int blockLength)
{
    const int numBins = getSize() + 1;
    const int lead = getLead();
    const int count = countFrames(blockLength);
    for (int frame = 0; frame < count; ++frame)
    {
        transformFrame(input, frame * getSize() - lead);
        productSpectrum.ensureDimensions(numImpulseResponses, numBins);
        for (int k = 0; k < numImpulseResponses; ++k)
        {
            const auto& spectra = irSpectra[static_cast<std::size_t>(k)];
            auto* sum = productSpectrum.getWriteChannelPtr(k);
            check(ippsMul_32fc(inputSpectrum.getChannelPtr(0), spectra.getChannelPtr(0), sum, numBins));
            for (int channel = 1; channel < numChannels; ++channel)
                check(ippsAddProduct_32fc(inputSpectrum.getChannelPtr(channel),
                                          spectra.getChannelPtr(channel), sum, numBins));
        }
        queueProduct(queues.front());
    }
}

void FirFilter::Partition::process(CircularBuffer<Signal32>& input, std::vector<Signal32>& outputs)
{
    computeFrames(input, outputs.front().numSamples);
    for (std::size_t k = 0; k < queues.size(); ++k)
        queues[k].get(outputs[k]);
}

void FirFilter::Partition::processAdding(CircularBuffer<Signal32>& input, std::vector<Signal32>& outputs)
{
    computeFrames(input, outputs.front().numSamples);
    for (std::size_t k = 0; k < queues.size(); ++k)
        queues[k].getAdding(outputs[k]);
}

void FirFilter::Partition::processSummed(CircularBuffer<Signal32>& input, Signal32& output)
{
    computeSummedFrames(input, output.numSamples);
    queues.front().get(output);
}

void FirFilter::Partition::processSummedAdding(CircularBuffer<Signal32>& input, Signal32& output)
{
    computeSummedFrames(input, output.numSamples);
    queues.front().getAdding(output);
}

void FirFilter::Partition::reset()
{
    for (auto& queue : queues)
        queue.clear();
}

//==============================================================================
// Direct head

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
