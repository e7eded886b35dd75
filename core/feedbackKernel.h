/**
    The vector routine of a feedback delay network: one frame of 16 lines with 1, 2 or 4 channels each, in one
    pass over their memory.

    For each sample and channel:

        x[n] = what line n's memory holds at its position
        y[n] = low-pass(shelf(gain x[n]))                           shelf: if it runs
        m    = H y                                                  H: the Hadamard matrix, unnormalised
        out  = m[15]
        memory of line n, in channel swap(n, c), at its position = m[n] + own in[swap(n, c)] + cross in[c]

    The place that was read is the place that is written, so a line's delay is up to whoever moves the
    positions on. Whether a stream is cut into frames here or there makes no difference but rounding.

    How it is computed. A line's memory is read a vector of samples at a time. The low-pass of order 1 is a
    prefix sum within the vector (log2 of its lanes steps) plus what the vector before has left. The matrix is
    two rounds of butterflies over four lines each: the first round closes the reading of all channels, the
    second opens the writing, so nothing is overwritten unread. The shelf goes sample by sample, but with lines side
    by side in a vector. It is a state-variable filter (V. Zavalishin, "The art of VA filter design", 2012), whose
    rounding errors stay small where the corner is far below the sample rate, as those of the direct forms do not:
    there they would lift the gain of the loop above 1.

    Thread: one at a time for the same FeedbackLines.
*/
#pragma once

#include "core/kernels.h"

#include <array>
#include <cstddef>

namespace vesk::audio
{

/** The filters of all lines, and what they remember. */
struct FeedbackLines
{
    static constexpr std::size_t numLines = 16;
    static constexpr std::size_t maxChannels = 4;

    /** The most lanes of a vector that the tables serve, and the steps of a prefix sum over them. */
    static constexpr std::size_t maxLanes = 16;
    static constexpr std::size_t maxSteps = 4;

    template <typename T>
    using PerLine = std::array<T, numLines>;

    /** Sets a line's filters, which go on with what they remember as the transposed direct form II does: what the past
        adds to the coming outputs stays, so the sound goes on without a jump.
        @param gain   of the line, with the matrix's normalisation
        @param pole   of the low-pass y[i] = (1 - pole) x[i] + pole y[i - 1]
        @param shelf  b0, b1, b2, a1, a2 for a0 = 1, stable and without poles on the unit circle; null for none: its
                      memory rests. All lines or none. */
    void setLine(std::size_t line, double gain, double pole, const std::array<double, 5>* shelf);

    /** Forgets the past. */
    void clear();

    /** Powers of the pole for the prefix sum. Step s adds the last lane of the lower half of each 2^(s + 1)
        lanes to all of the upper half; step maxSteps adds what was left. Lanes to which nothing is to be added
        hold 0. */
    using Steps = std::array<std::array<float, maxLanes>, maxSteps + 1>;
    alignas(64) PerLine<Steps> steps{};
    PerLine<float> inputGains{};
    PerLine<float> poles{};

    bool shelfActive = false;

    /** The shelf with the line's gain. Its states are those of the integrators, as they enter the sums:

            v = input x + band - toBand low
            y = direct x + fromBand v + low
            the next band = bandStep v - band, the next low = low + lowStep v */
    struct Shelf
    {
        alignas(64) PerLine<float> direct{}, fromBand{}, input{}, toBand{}, bandStep{}, lowStep{};
    };
    Shelf shelf;

    std::array<PerLine<float>, maxChannels> dampingDelays{}; ///< what the past adds to the next output

    struct ShelfState
    {
        alignas(64) PerLine<float> band{}, low{};
    };
    std::array<ShelfState, maxChannels> shelfStates{};

private:
    void setShelf(std::size_t line, double gain, const std::array<double, 5>& taps);
};

/** What one frame works on. */
struct FeedbackFrame
{
    /** Beyond a frame's end this many samples of each line's memory may be read, though never changed. */
    static constexpr int overhang = static_cast<int>(FeedbackLines::maxLanes) - 1;

    int numChannels = 0; ///< 1, 2 or 4
    int length = 0;      ///< samples, above 0
    float ownShare = 0.0f;
    float crossShare = 0.0f;
    std::array<const float*, FeedbackLines::maxChannels> input{};
    std::array<float*, FeedbackLines::maxChannels> output{}; ///< none of them an input

    /** The lines' memory, from each one's position on: length samples without a seam. */
    std::array<FeedbackLines::PerLine<float*>, FeedbackLines::maxChannels> memory{};
};

/** The channel that a line's signal goes on in: left and right change places, and with four channels, on even
    lines, front and rear. Applied twice it leads back. */
constexpr std::size_t getSwappedChannel(std::size_t numChannels, std::size_t line, std::size_t channel)
{
    if (numChannels == 1)
        return 0;
    return numChannels > 3 && line % 2 == 0 ? (channel + 2) % numChannels : channel ^ 1;
}

/** Runs the frame. Channels other than 1, 2 and 4 give ippStsBadArgErr, a length below 1 ippStsSizeErr. */
IppStatus runFeedbackFrame_32f(FeedbackLines& lines, const FeedbackFrame& frame);

} // namespace vesk::audio
