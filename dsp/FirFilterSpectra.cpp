// The spectra of a FirFilter's input.

#include "dsp/FirFilter.h"

#include <algorithm>

namespace vesk::audio
{

FirFilter::FrameSpectra::FrameSpectra(int channels, int size)
    : numChannels(channels), frameSize(size), frames(1)
{
    fourierTransform.allocate(frameSize, numChannels % 2 != 0);
}

void FirFilter::FrameSpectra::keep(int numFrames)
{
    if (static_cast<std::size_t>(numFrames) > frames.size())
        frames.resize(static_cast<std::size_t>(numFrames));
}

const FirFilter::Spectrum& FirFilter::FrameSpectra::get(const Block& block, std::int64_t frameStart)
{
    Frame* oldest = &frames.front();
    for (auto& frame : frames)
    {
        if (frame.isValid && frame.start == frameStart)
            return frame.spectrum;
        if (oldest->isValid && (!frame.isValid || frame.start < oldest->start))
            oldest = &frame;
    }
    transform(block.input, static_cast<int>(frameStart - block.start), oldest->spectrum);
    oldest->isValid = true;
    oldest->start = frameStart;
    return oldest->spectrum;
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

    spectrum.pairs.ensureDimensions(numChannels, frameSize + 1);
    for (int channel = 0; channel < numChannels; channel += 2)
        fourierTransform.forwardStereo(
            getSource(channel), getSource(channel + 1),
            {spectrum.pairs.getWriteChannelPtr(channel), spectrum.pairs.getWriteChannelPtr(channel + 1)});
}

} // namespace vesk::audio
