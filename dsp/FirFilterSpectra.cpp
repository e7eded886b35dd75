// The spectra of a FirFilter's input.

#include "dsp/FirFilter.h"

#include <cassert>

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

/** The frame itself, or the one that gives way to it: the oldest one outside of those that are kept. */
FirFilter::FrameSpectra::Frame& FirFilter::FrameSpectra::find(std::int64_t start, std::int64_t oldestKept,
                                                              std::int64_t newestKept)
{
    Frame* oldest = nullptr;
    for (auto& frame : frames)
    {
        if (frame.isValid && frame.start == start)
            return frame;
        if (frame.isValid && frame.start >= oldestKept && frame.start <= newestKept)
            continue;
        if (oldest == nullptr || (oldest->isValid && (!frame.isValid || frame.start < oldest->start)))
            oldest = &frame;
    }
    assert(oldest != nullptr);
    oldest->isValid = false;
    return *oldest;
}

void FirFilter::FrameSpectra::get(const Block& block, std::int64_t newestStart,
                                  std::span<const Spectrum*> result)
{
    const int hop = frameSize / 2;
    const std::int64_t oldestStart = newestStart - static_cast<std::int64_t>(result.size() - 1) * hop;
    std::int64_t start = newestStart;
    for (auto& spectrum : result)
    {
        Frame& frame = find(start, oldestStart, newestStart);
        if (!frame.isValid)
        {
            transform(block.input, static_cast<int>(start - block.start), frame.spectrum);
            frame.isValid = true;
            frame.start = start;
        }
        spectrum = &frame.spectrum;
        start -= hop;
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

    spectrum.pairs.ensureDimensions(numChannels, frameSize + 1);
    for (int channel = 0; channel < numChannels; channel += 2)
        fourierTransform.forwardStereo(
            getSource(channel), getSource(channel + 1),
            {spectrum.pairs.getWriteChannelPtr(channel), spectrum.pairs.getWriteChannelPtr(channel + 1)});
}

} // namespace vesk::audio
