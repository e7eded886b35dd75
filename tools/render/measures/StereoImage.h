/**
    What the two channels of a response have to do with each other.

    Cost: correlation, some hundred passes over the window; balance, one pass.
*/
#pragma once

#include <span>
#include <vector>

namespace ambrel::measures
{

/** The largest magnitude of the normalised cross-correlation of two channels at lags within 1 ms: 1 for equal
    channels, near 0 for independent ones, 0 if one is silent. This is the interaural correlation of ISO 3382-1,
    taken between the channels. Both spans have the same length. */
double measureCorrelation(std::span<const float> left, std::span<const float> right, double sampleRate);

/** Level of left over right in consecutive windows, dB. The first begins with the first sound, behind any pre-delay;
    the last stands before the first window in which one channel is silent. */
std::vector<double> measureBalance(std::span<const float> left, std::span<const float> right,
                                   std::size_t windowLength);

} // namespace ambrel::measures
