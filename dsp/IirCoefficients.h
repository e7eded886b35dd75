/**
    Coefficients of a recursive filter in direct form,

        y[n] = (b[0] x[n] + b[1] x[n-1] + ... - a[1] y[n-1] - a[2] y[n-2] - ...) / a[0],

    and the few designs the engine needs. a[0] need not be 1: the filter divides by it.

        filter.setFilter(2, IirCoefficients::createLowPass(1000.0, 48000.0));

    The second-order designs are those of R. Bristow-Johnson, "Cookbook formulae for audio EQ biquad filter
    coefficients", at Q = 1/sqrt(2).

    Thread: a value, any.
*/
#pragma once

#include <vector>

namespace vesk::audio
{

class IirCoefficients
{
public:
    IirCoefficients() = default;

    /** Numerator and denominator, of equal length: the order and one. */
    IirCoefficients(const std::vector<double>& numerator, const std::vector<double>& denominator);

    /** One-pole smoother y[n] = (1 - d) x[n] + d y[n-1], of gain 1 at DC.
        @param coefficient  d, 0 (passes the signal) up to below 1 */
    static IirCoefficients createSmoothing(double coefficient);

    /** Gain 1 at DC, gain at half the sample rate, sqrt(gain) at the frequency.
        @param frequency  Hz
        @param gain       linear, above 0 */
    static IirCoefficients createHighShelf(double frequency, double gain, double sampleRate);

    /** Second-order Butterworth: gain 1 at DC, -3.01 dB at the frequency, falling by 12 dB per octave.
        Both in Hz. */
    static IirCoefficients createLowPass(double frequency, double sampleRate);

    // State, open to inspection; only the operations above write it.

    std::vector<double> b; ///< numerator, b0 first
    std::vector<double> a; ///< denominator, a0 first
};

} // namespace vesk::audio
