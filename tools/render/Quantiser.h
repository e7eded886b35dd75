/**
    From float samples to the integers of an audio file.

    A sample of n bits stands for its integer value divided by 2^(n-1), so that what was read from an integer
    file comes out as it was. 24 bits are rounded. 16 bits get triangular dither of two quantisation steps,
    peak to peak, before they are rounded: a fading tail then ends in even noise and not in distortion
    (Lipshitz, Wannamaker and Vanderkooy, "Quantization and dither: a theoretical survey", 1992). Digital
    silence stays silent. The dither is the same in every run.

    Cost: a few operations for each sample; no allocation.
*/
#pragma once

#include <cstdint>
#include <random>
#include <span>

namespace ambrel::render
{

class Quantiser
{
public:
    /** @param bits  16 or 24 */
    explicit Quantiser(int bits);

    /** Writes the integers left-justified in 32 bits. Both spans have the same length. */
    void convert(std::span<const float> samples, std::span<int> integers);

    /** How many samples so far lay outside what the integers can hold. */
    std::int64_t getNumClipped() const { return numClipped; }

private:
    double nextDither();

    int shift;
    double scale;
    bool dithers;
    std::mt19937 random; ///< its sequence is fixed by the standard, unlike that of the distributions
    std::int64_t numClipped = 0;
};

} // namespace ambrel::render
