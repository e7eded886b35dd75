/**
    Scalar helpers: decibels, decay gains, powers of two.

    Where a comment says that a step is in float or in double, that is part of the contract: delay lengths and
    gains built on these helpers must come out the same on every machine.
*/
#pragma once

namespace vesk::MathEx
{

/** 20 log10(x), computed in double. */
float toDecibel(float x);

/** 10^(db / 20): the quotient in float, the power in double. */
float fromDecibel(float db);

/** Smallest power of two at or above n; 1 for n of 1 or less. */
int findLargerPowerOfTwo(int n);

/** The power of two next to n; a tie goes to the smaller. 0 for n of 0. */
int findNearestPowerOfTwo(int n);

/** Floor of the binary logarithm; 0 for n of 0. Precondition: n is not negative. */
int log2(int n);

/** 1000^(-time / reverbTime): the gain reached after time when decay is 60 dB per reverbTime. Both in the
    same unit; the quotient in float, the power in double. */
float reverbTimeToGain(float reverbTime, float time);

} // namespace vesk::MathEx
