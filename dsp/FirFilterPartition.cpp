// One overlap-save stage of a FirFilter.

#include "core/VectorOps.h"
#include "dsp/FirFilter.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace vesk::audio
{

namespace
{
constexpr int roundUpToEven(int count) { return (count + 1) / 2 * 2; }

/** Channels 2 pair and 2 pair + 1 hold the two arrays. */
StereoSpectrum<float> getPair(Signal32& spectra, int pair)
{
    return {spectra.getWriteChannelPtr(2 * pair), spectra.getWriteChannelPtr(2 * pair + 1)};
}

StereoSpectrum<const float> asConst(StereoSpectrum<float> spectrum) { return {spectrum.re, spectrum.im}; }
} // namespace

FirFilter::Partition::Partition(int channels, int responses, int start, int size, int slices)
    : numImpulseResponses(responses), numChannels(channels), fftSize(2 * size),
      queues(static_cast<std::size_t>(responses)), offset(start), numSlices(0),
      spectra(std::allocate_shared<FrameSpectra>(PoolAllocator<FrameSpectra>(), channels, fftSize)),
      products(static_cast<std::size_t>(responses))
{
    setNumSlices(slices);
}

void FirFilter::Partition::setNumSlices(int slices)
{
    numSlices = slices;
    slicesDone = 0;
    irSpectra.resize(static_cast<std::size_t>(numImpulseResponses * slices));
    inputs.reserve(static_cast<std::size_t>(slices));
    terms.reserve(static_cast<std::size_t>(slices * roundUpToEven(numChannels) / 2));
    keepSpectra();
}

/** While results wait to be worked on, others of this size go ahead. */
void FirFilter::Partition::keepSpectra()
{
    const int framesAhead = (offset + getSize() - 1) / getSize() - 1;
    spectra->keep(numSlices > 1 && hasSlack() ? numSlices + framesAhead : numSlices);
}

void FirFilter::Partition::prepareTransforms()
{
    if (fourierTransform.size != fftSize)
        fourierTransform.allocate(fftSize, !isPaired());
    spectra->prepare();
    slicesDone = 0; // those of the former responses
}

void FirFilter::Partition::swapImpulseResponses(Partition& other)
{
    prepareTransforms();
    std::swap(impulseResponseLength, other.impulseResponseLength);
    irSpectra.swap(other.irSpectra);
}

void FirFilter::Partition::setImpulseResponses(const std::vector<Signal32>& responses)
{
    prepareTransforms();
    impulseResponseLength = responses.front().numSamples;
    // Separated spectra are twice as large, those of the input and the responses'.
    const float scale = (isPaired() ? 0.25f : 1.0f) / static_cast<float>(fftSize);
    for (std::size_t i = 0; i < irSpectra.size(); ++i)
    {
        const Signal32& response = responses[i / static_cast<std::size_t>(numSlices)];
        const int start = offset + static_cast<int>(i) % numSlices * getSize();
        // The zeros beside the slice make the circular convolution of the transform a linear one. Standing in
        // the second half, the slice delays by half a frame.
        Signal32 padded(numChannels, fftSize, 0.0f);
        const int length = std::min(response.numSamples - start, getSize());
        for (int channel = 0; channel < numChannels && length > 0; ++channel)
            check(ippsMulC_32f(response.getChannelPtr(channel) + start, scale,
                               padded.getWriteChannelPtr(channel) + getSize(), length));
        transformResponse(padded, irSpectra[i]);
    }
}

void FirFilter::Partition::transformResponse(const Signal32& padded, Spectrum& result)
{
    if (!isPaired())
    {
        result.bins.ensureDimensions(numChannels, getSize() + 1);
        fourierTransform.forwardReal(padded, result.bins);
        return;
    }
    result.separated.ensureDimensions(numChannels / 2, getSeparatedLength(getSize()));
    for (int channel = 0; channel < numChannels; channel += 2)
        fourierTransform.forwardStereo(padded.getChannelPtr(channel), padded.getChannelPtr(channel + 1),
                                       result.separated.getWriteChannelPtr(channel / 2));
}

/** How far before the current block's first sample the next frame starts. */
int FirFilter::Partition::getLead() const
{
    return offset + getSize() + samplesToSkip - static_cast<int>(queues.front().numSamples);
}

void FirFilter::Partition::alignFrames(std::int64_t blockStart)
{
    samplesToSkip = static_cast<int>(blockStart % getSize());
}

int FirFilter::Partition::countReadyFrames(const Block& block) const
{
    return std::max((block.length + getLead()) / getSize() - 1, 0);
}

//==============================================================================
// Frames

/** The products of this step's slices of one response with the spectra that they meet, channel by channel. */
void FirFilter::Partition::multiply(int k, int firstSlice)
{
    auto& product = products[static_cast<std::size_t>(k)];
    if (!isPaired())
    {
        product.bins.ensureDimensions(numChannels, getSize() + 1);
        for (int channel = 0; channel < numChannels; ++channel)
            addProducts(k, channel, firstSlice, product.bins.getWriteChannelPtr(channel), firstSlice > 0);
        return;
    }
    if (firstSlice == 0)
        product.joint = Signal32(numChannels, fftSize + 1);
    for (int pair = 0; pair < numChannels / 2; ++pair)
    {
        terms.clear();
        for (int slice = firstSlice; const auto* input : inputs)
            terms.push_back({.src = input->separated.getChannelPtr(pair),
                             .toLeft = getResponse(k, slice++).separated.getChannelPtr(pair)});
        check(filterStereoSpectra_32f(terms, getPair(product.joint, pair), getSize(), firstSlice > 0));
    }
}

/** The same for all responses, summed over the input channels: one output for each response. */
void FirFilter::Partition::multiplySummed(int firstSlice)
{
    auto& product = products.front();
    if (!isPaired())
    {
        product.bins.ensureDimensions(numImpulseResponses, getSize() + 1);
        for (int k = 0; k < numImpulseResponses; ++k)
            for (int channel = 0; channel < numChannels; ++channel)
                addProducts(k, channel, firstSlice, product.bins.getWriteChannelPtr(k),
                            firstSlice > 0 || channel > 0);
        return;
    }
    if (firstSlice == 0)
        product.joint = Signal32(roundUpToEven(numImpulseResponses), fftSize + 1);
    for (int k = 0; k < numImpulseResponses; k += 2)
    {
        // With an odd number of outputs the last one is computed twice.
        const int next = std::min(k + 1, numImpulseResponses - 1);
        terms.clear();
        for (int slice = firstSlice; const auto* input : inputs)
        {
            const auto& left = getResponse(k, slice).separated;
            const auto& right = getResponse(next, slice++).separated;
            for (int pair = 0; pair < numChannels / 2; ++pair)
                terms.push_back({.src = input->separated.getChannelPtr(pair),
                                 .toLeft = left.getChannelPtr(pair),
                                 .toRight = right.getChannelPtr(pair)});
        }
        check(filterStereoSpectra_32f(terms, getPair(product.joint, k / 2), getSize(), firstSlice > 0));
    }
}

/** For an odd number of channels: this step's products of one channel of one response. */
void FirFilter::Partition::addProducts(int k, int channel, int firstSlice, std::complex<float>* sum,
                                       bool accumulate)
{
    for (int slice = firstSlice; const auto* input : inputs)
    {
        const auto multiplyBins = accumulate ? ippsAddProduct_32fc : ippsMul_32fc;
        check(multiplyBins(input->bins.getChannelPtr(channel),
                           getResponse(k, slice++).bins.getChannelPtr(channel), sum, getSize() + 1));
        accumulate = true;
    }
}

/** Transforms a product back into a block whose handle shows the half that is valid, and queues it. */
void FirFilter::Partition::queueProduct(std::size_t index, int channels)
{
    auto& product = products[index];
    Signal32 frame(isPaired() ? roundUpToEven(channels) : channels, fftSize);
    if (isPaired())
        for (int channel = 0; channel < channels; channel += 2)
            fourierTransform.inverseStereo(asConst(getPair(product.joint, channel / 2)),
                                           frame.getWriteChannelPtr(channel),
                                           frame.getWriteChannelPtr(channel + 1));
    else
        fourierTransform.inverseReal(product.bins, frame);
    product.joint = {};
    frame.numChannels = channels;
    frame.numSamples = getSize();
    queues[index].add(frame);
    queues[index].skip(samplesToSkip);
}

/** The products of the frame's next slices. */
void FirFilter::Partition::multiplySlices(const Block& block, int count)
{
    const int first = slicesDone;
    slicesDone = std::min(slicesDone + count, numSlices);
    inputs.resize(static_cast<std::size_t>(slicesDone - first));
    spectra->get(block, getFrameStart(block) - first * getSize(), inputs);
    if (block.summed)
        multiplySummed(first);
    else
        for (int k = 0; k < numImpulseResponses; ++k)
            multiply(k, first);
}

void FirFilter::Partition::finishFrame(const Block& block)
{
    if (slicesDone < numSlices)
        multiplySlices(block, numSlices);
    if (block.summed)
        queueProduct(0, numImpulseResponses);
    else
        for (std::size_t k = 0; k < queues.size(); ++k)
            queueProduct(k, numChannels);
    slicesDone = 0;
    samplesToSkip = 0;
}

int FirFilter::Partition::computeReadyFrames(const Block& block)
{
    const int count = countReadyFrames(block);
    for (int frame = 0; frame < count; ++frame)
        finishFrame(block);
    return count;
}

void FirFilter::Partition::computeDueFrames(const Block& block)
{
    while (queues.front().numSamples < block.length)
        finishFrame(block);
}

void FirFilter::Partition::advanceReadyFrame(const Block& block)
{
    if (slicesDone == numSlices)
    {
        finishFrame(block);
        return;
    }
    // The transform back counts as one more slice.
    const int blocksTillNext = std::max(getSize() / std::max(block.length, 1), 1);
    multiplySlices(block, (2 * (numSlices + 1) + blocksTillNext - 1) / blocksTillNext);
}

void FirFilter::Partition::shareSpectra(const Partition& other)
{
    spectra = other.spectra;
    keepSpectra();
}

void FirFilter::Partition::forgetSpectra() { spectra->forget(); }

//==============================================================================

void FirFilter::Partition::getOutputs(std::span<Signal32> outputs)
{
    for (std::size_t k = 0; k < outputs.size(); ++k)
        queues[k].get(outputs[k]);
}

void FirFilter::Partition::addOutputs(std::span<Signal32> outputs)
{
    for (std::size_t k = 0; k < outputs.size(); ++k)
        queues[k].getAdding(outputs[k]);
}

void FirFilter::Partition::process(CircularBuffer<Signal32>& input, std::vector<Signal32>& outputs)
{
    forgetSpectra();
    computeReadyFrames({.input = input, .start = 0, .length = outputs.front().numSamples, .summed = false});
    getOutputs(outputs);
}

void FirFilter::Partition::processSummed(CircularBuffer<Signal32>& input, Signal32& output)
{
    forgetSpectra();
    computeReadyFrames({.input = input, .start = 0, .length = output.numSamples, .summed = true});
    getOutputs({&output, 1});
}

void FirFilter::Partition::reset()
{
    for (auto& queue : queues)
        queue.clear();
    slicesDone = 0;
    samplesToSkip = 0;
}

} // namespace vesk::audio
