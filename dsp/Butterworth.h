/**
    Magnitude responses of Butterworth-shaped filters of any real order: curves, not filters.

    The equalizer multiplies such curves into a target response, which is then realised as a FIR filter. The
    order is a float because it comes from a slope: order = (dB per octave) / 6.

        // Gain at each frequency of a low-pass at 8 kHz with 9 dB per octave.
        Signal32 curve = Butterworth::evaluateLowPassFilter(frequencies, 8000.0f, 1.5f, 0.0f);

    The low-pass is |H(f)| = 1 / sqrt(r^(2 order) + c r^order + 1) with r = f / cutoff. With c = 0 it is
    the classic curve of -3.01 dB at the cut-off; c lifts or lowers the curve there by gainAtCutoff. The
    high-pass is its mirror, r = cutoff / f. A shelf is 1 plus a scaled low-pass or high-pass, and a cut
    is the exact reciprocal of a boost.

    Frequencies and cut-offs are in the same unit, gains given are in dB, and each result has one channel
    with one linear gain for each frequency.

    Cost: one power for each frequency; not for the audio path. Thread: any.
*/
#pragma once

#include "core/Signal.h"

#include <vector>

namespace vesk::audio
{

class Butterworth
{
public:
    /** @param gainAtCutoff  dB above the classic curve's -3.01 dB */
    static Signal32 evaluateLowPassFilter(const std::vector<float>& frequencies, float cutoff, float order,
                                          float gainAtCutoff);

    /** As above. A frequency of 0 or below has gain 0. */
    static Signal32 evaluateHighPassFilter(const std::vector<float>& frequencies, float cutoff, float order,
                                           float gainAtCutoff);

    /** @param gain        of the shelf, dB; above 0 is a boost, else a cut. 0 dB gives exactly 1 everywhere
        @param gainOffset  dB by which the level at the cut-off is to lie above the nominal one */
    static Signal32 evaluateLowShelfFilter(const std::vector<float>& frequencies, float gain, float cutoff,
                                           float order, float gainOffset);

    /** As above. */
    static Signal32 evaluateHighShelfFilter(const std::vector<float>& frequencies, float gain, float cutoff,
                                            float order, float gainOffset);
};

} // namespace vesk::audio
