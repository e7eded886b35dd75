// One overlap-save stage of a FirFilter.
//
// An even number of channels travels in pairs, each as one complex signal: that saves a pass over the spectra in
// each direction, and the samples go from and to the channels' own memory. Other channel counts are transformed
// channel by channel.

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

StereoSpectrum<const float> getPair(const Signal32& spectra, int pair)
{
    return {spectra.getChannelPtr(2 * pair), spectra.getChannelPtr(2 * pair + 1)};
}

StereoSpectrum<const float> asConst(StereoSpectrum<float> spectrum) { return {spectrum.re, spectrum.im}; }

/** Twice the spectra of the two real signals that went into z, up to the middle bin. */
void separate(StereoSpectrum<const float> z, int half, std::complex<float>* left, std::complex<float>* right)
{
    for (int k = 0; k <= half; ++k)
    {
        const std::complex<float> low(z.re[k], z.im[k]);
        const std::complex<float> high(z.re[2 * half - k], -z.im[2 * half - k]);
        left[k] = low + high;
        right[k] = std::complex<float>(0.0f, -1.0f) * (low - high);
    }
}
} // namespace

FirFilter::Partition::Partition(int channels, int responses, int start, int size, int slices)
    : numImpulseResponses(responses), numChannels(channels), fftSize(2 * size),
      queues(static_cast<std::size_t>(responses)), irSpectra(static_cast<std::size_t>(responses * slices)),
      offset(start), numSlices(slices), spectra(static_cast<std::size_t>(slices))
{
    assert(slices == 1 || isPaired());
    fourierTransform.allocate(fftSize, !isPaired());
}

void FirFilter::Partition::setImpulseResponses(const std::vector<Signal32>& responses)
{
    impulseResponseLength = responses.front().numSamples;
    // Both separate() and the product's own separation give twice the spectra.
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
        irSpectra[i] = transformResponse(padded);
    }
}

ComplexSignal32 FirFilter::Partition::transformResponse(const Signal32& padded)
{
    ComplexSignal32 result(numChannels, getSize() + 1);
    if (isPaired())
    {
        Signal32 joint(2, fftSize + 1);
        for (int channel = 0; channel < numChannels; channel += 2)
        {
            const auto pair = getPair(joint, 0);
            fourierTransform.forwardStereo(padded.getChannelPtr(channel), padded.getChannelPtr(channel + 1),
                                           pair);
            separate(asConst(pair), getSize(), result.getWriteChannelPtr(channel),
                     result.getWriteChannelPtr(channel + 1));
        }
    }
    else
        fourierTransform.forwardReal(padded, result);
    return result;
}

/** How far before the current block's first sample the next frame starts. */
int FirFilter::Partition::getLead() const
{
    return offset + getSize() - static_cast<int>(queues.front().numSamples);
}

int FirFilter::Partition::countReadyFrames(const Block& block) const
{
    return std::max((block.length + getLead()) / getSize() - 1, 0);
}

void FirFilter::Partition::transformFrame(CircularBuffer<Signal32>& input, int start, FrameSpectrum& spectrum)
{
    if (!isPaired())
    {
        timeBuffer.ensureDimensions(numChannels, fftSize);
        spectrum.inputSpectrum.ensureDimensions(numChannels, getSize() + 1);
        input.peek(start, timeBuffer);
        fourierTransform.forwardReal(timeBuffer, spectrum.inputSpectrum);
        return;
    }

    // Scratch comes from the pool: it is large, and no partition needs it from frame to frame.
    Signal32 joined;
    const bool inOnePiece = input.find(0, start, fftSize) != nullptr;
    if (!inOnePiece)
    {
        joined = Signal32(numChannels, fftSize);
        input.peek(start, joined);
    }
    const auto getSource = [&](int channel)
    { return inOnePiece ? input.find(channel, start, fftSize) : joined.getChannelPtr(channel); };

    spectrum.pairs.ensureDimensions(numChannels, fftSize + 1);
    for (int channel = 0; channel < numChannels; channel += 2)
        fourierTransform.forwardStereo(getSource(channel), getSource(channel + 1),
                                       getPair(spectrum.pairs, channel / 2));
}

/** Transforms the product back into a block whose handle shows the half that is valid, and queues it. */
void FirFilter::Partition::queueProduct(SignalQueue<Signal32>& queue, int channels)
{
    Signal32 frame(isPaired() ? roundUpToEven(channels) : channels, fftSize);
    if (isPaired())
        for (int channel = 0; channel < channels; channel += 2)
            fourierTransform.inverseStereo(asConst(getPair(pairProducts, channel / 2)),
                                           frame.getWriteChannelPtr(channel),
                                           frame.getWriteChannelPtr(channel + 1));
    else
        fourierTransform.inverseReal(productSpectrum, frame);
    pairProducts = {};
    frame.numChannels = channels;
    frame.numSamples = getSize();
    queue.add(frame);
}

/** The product of a frame's spectra with those of one response, channel by channel. */
void FirFilter::Partition::multiply(std::int64_t frameStart, int response)
{
    if (!isPaired())
    {
        const auto& input = findSpectrum(frameStart)->inputSpectrum;
        productSpectrum.ensureDimensions(numChannels, getSize() + 1);
        for (int channel = 0; channel < numChannels; ++channel)
            check(ippsMul_32fc(input.getChannelPtr(channel), getResponse(response, 0).getChannelPtr(channel),
                               productSpectrum.getWriteChannelPtr(channel), getSize() + 1));
        return;
    }
    pairProducts = Signal32(numChannels, fftSize + 1);
    for (int slice = 0; slice < numSlices; ++slice)
    {
        const auto& pairs = findSpectrum(frameStart - slice * getSize())->pairs;
        const auto& filter = getResponse(response, slice);
        for (int channel = 0; channel < numChannels; channel += 2)
            check(filterStereoSpectrum_32f(getPair(pairs, channel / 2),
                                           {.leftToLeft = filter.getChannelPtr(channel),
                                            .rightToRight = filter.getChannelPtr(channel + 1)},
                                           getPair(pairProducts, channel / 2), getSize(), slice > 0));
    }
}

/** The products with all responses, summed over the input channels: one output for each response. */
void FirFilter::Partition::multiplySummed(std::int64_t frameStart)
{
    if (!isPaired())
    {
        const auto& input = findSpectrum(frameStart)->inputSpectrum;
        const int numBins = getSize() + 1;
        productSpectrum.ensureDimensions(numImpulseResponses, numBins);
        for (int k = 0; k < numImpulseResponses; ++k)
        {
            const auto& response = getResponse(k, 0);
            auto* sum = productSpectrum.getWriteChannelPtr(k);
            check(ippsMul_32fc(input.getChannelPtr(0), response.getChannelPtr(0), sum, numBins));
            for (int channel = 1; channel < numChannels; ++channel)
                check(ippsAddProduct_32fc(input.getChannelPtr(channel), response.getChannelPtr(channel), sum,
                                          numBins));
        }
        return;
    }
    pairProducts = Signal32(roundUpToEven(numImpulseResponses), fftSize + 1);
    for (int k = 0; k < numImpulseResponses; k += 2)
        for (int slice = 0; slice < numSlices; ++slice)
        {
            // With an odd number of outputs the last one is computed twice.
            const auto& left = getResponse(k, slice);
            const auto& right = getResponse(std::min(k + 1, numImpulseResponses - 1), slice);
            const auto& pairs = findSpectrum(frameStart - slice * getSize())->pairs;
            for (int channel = 0; channel < numChannels; channel += 2)
                check(filterStereoSpectrum_32f(getPair(pairs, channel / 2),
                                               {.leftToLeft = left.getChannelPtr(channel),
                                                .rightToRight = right.getChannelPtr(channel + 1),
                                                .rightToLeft = left.getChannelPtr(channel + 1),
                                                .leftToRight = right.getChannelPtr(channel)},
                                               getPair(pairProducts, k / 2), getSize(),
                                               slice > 0 || channel > 0));
        }
}

//==============================================================================
// Frames

/** Null if neither this partition nor its twin has transformed that frame lately. */
const FirFilter::Partition::FrameSpectrum* FirFilter::Partition::findSpectrum(std::int64_t frameStart) const
{
    for (const auto& spectrum : spectra)
        if (spectrum.isValid && spectrum.start == frameStart)
            return &spectrum;
    return twin != nullptr ? twin->findSpectrum(frameStart) : nullptr;
}

void FirFilter::Partition::prepareSpectrum(const Block& block, std::int64_t frameStart)
{
    if (findSpectrum(frameStart) != nullptr)
        return;
    const auto isOlder = [](const FrameSpectrum& a, const FrameSpectrum& b)
    { return a.isValid != b.isValid ? b.isValid : a.start < b.start; };
    auto& oldest = *std::min_element(spectra.begin(), spectra.end(), isOlder);
    transformFrame(block.input, static_cast<int>(frameStart - block.start), oldest);
    oldest.isValid = true;
    oldest.start = frameStart;
}

void FirFilter::Partition::finishFrame(const Block& block)
{
    const std::int64_t frameStart = block.start - getLead();
    for (int slice = 0; slice < numSlices; ++slice)
        prepareSpectrum(block, frameStart - slice * getSize());
    if (block.summed)
    {
        multiplySummed(frameStart);
        queueProduct(queues.front(), numImpulseResponses);
        return;
    }
    for (int k = 0; k < numImpulseResponses; ++k)
    {
        multiply(frameStart, k);
        queueProduct(queues[static_cast<std::size_t>(k)], numChannels);
    }
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
    const std::int64_t frameStart = block.start - getLead();
    if (findSpectrum(frameStart) != nullptr)
        finishFrame(block);
    else
        prepareSpectrum(block, frameStart);
}

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
    forgetSpectra();
}

} // namespace vesk::audio
