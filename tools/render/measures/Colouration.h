/**
    How even the spectrum of a late tail is.

    The flatness of a spectrum is its geometric mean divided by its arithmetic mean. A frame of 0.5 to 1 s is taken
    out of the tail, its decay is made up for, and its power spectrum between 200 Hz and 4 kHz is divided by its own
    smoothed envelope, so that neither the decay nor the equalizer counts, only resonances that stick out. Gaussian
    noise gives exp(-0.5772) = 0.56; a tail that is clearly lower rings.

    Cost: one transform of 32768 samples (at 48 kHz).
*/
#pragma once

#include <optional>
#include <span>

namespace ambrel::measures
{

/** @param start  beginning of the frame, seconds
    @return empty if the response does not reach to the end of the frame */
std::optional<double> measureSpectralFlatness(std::span<const float> response, double sampleRate,
                                              double start);

} // namespace ambrel::measures
