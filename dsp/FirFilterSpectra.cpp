// The spectra of a FirFilter's input.

#include "dsp/FirFilter.h"

#include <cassert>

namespace vesk::audio
{

FirFilter::FrameSpectra::FrameSpectra(int channels, int size)
    : numChannels(channels), frameSize(size), frames(1)
{
}

void FirFilter::FrameSpectra::prepare()
{
    if (fourierTransform.size != frameSize)
        fourierTransform.allocate(frameSize, numChannels % 2 != 0);
}

void FirFilter::FrameSpectra::keep(int numFrames)
{
    if (static_cast<std::size_t>(numFrames) > frames.size())
        frames.resize(static_cast<std::size_t>(numFrames));
}

void FirFilter::FrameSpectra::get(const Block& block, std::int64_t newestStart,
                                  std::span<const Spectrum*> result)
{
    assert(result.size() <= frames.size());
    const int hop = frameSize / 2;
    const auto numFrames = static_cast<std::int64_t>(frames.size());
    const std::int64_t newest =
        newestStart / hop % numFrames + numFrames; // a stream's first frames start before it
    std::int64_t start = newestStart;
    auto index = static_cast<std::size_t>(newest % numFrames);
    for (auto& spectrum : result)
    {
        Frame& frame = frames[index];
        if (!frame.isValid || frame.start != start)
        {
            transform(block.input, static_cast<int>(start - block.start), frame.spectrum);
            frame.isValid = true;
            frame.start = start;
        }
        spectrum = &frame.spectrum;
        start -= hop;
        index = (index == 0 ? frames.size() : index) - 1;
    }
}

void FirFilter::FrameSpectra::forget()
{
    for (auto& frame : frames)
        frame.isValid = false;
}

void FirFilter::FrameSpectra::transform(CircularBuffer<Signal32>& input, int start, Spectrum& spectrum)
{
    if (numChannels % 2 != 0)
    {
        timeBuffer.ensureDimensions(numChannels, frameSize);
        spectrum.bins.ensureDimensions(numChannels, frameSize / 2 + 1);
        input.peek(start, timeBuffer);
        fourierTransform.forwardReal(timeBuffer, spectrum.bins);
        return;
    }

    // Scratch comes from the pool: it is large, and nobody needs it from frame to frame.
    Signal32 joined;
    const bool inOnePiece = input.find(0, start, frameSize) != nullptr;
    if (!inOnePiece)
    {
        joined = Signal32(numChannels, frameSize);
        input.peek(start, joined);
    }
    const auto getSource = [&](int channel)
    { return inOnePiece ? input.find(channel, start, frameSize) : joined.getChannelPtr(channel); };

    spectrum.separated.ensureDimensions(numChannels / 2, getSeparatedLength(frameSize / 2));
    for (int channel = 0; channel < numChannels; channel += 2)
        fourierTransform.forwardStereo(getSource(channel), getSource(channel + 1),
                                       spectrum.separated.getWriteChannelPtr(channel / 2));
}

} // namespace vesk::audio
