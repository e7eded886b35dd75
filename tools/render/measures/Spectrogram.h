/**
    Level over time and frequency: short transforms with a Hann window along a signal.

    Frame n is centred on sample n * hop. A sine at full scale reads 0 dB at its frequency.

    Cost: one transform of the frame length for each hop.
*/
#pragma once

#include <span>
#include <vector>

namespace ambrel::measures
{

class Spectrogram
{
public:
    /** @param frameLength  samples, a power of two */
    Spectrogram(std::span<const float> signal, int frameLength, int hop);

    int getNumFrames() const { return numFrames; }
    int getNumBins() const { return numBins; }

    /** dB, not below -200. */
    float getLevel(int frame, int bin) const
    {
        return levels[static_cast<std::size_t>(frame * numBins + bin)];
    }

private:
    int numBins;
    int numFrames;
    std::vector<float> levels;
};

} // namespace ambrel::measures
