/**
    Impulse responses of a wanted magnitude whose phase is noise-like, and whose energy stays within a short
    window.

        PhaseRandomization randomization;
        randomization.initPhaseDistribution(format, 0.1f, 0.6f, 1);
        Signal32 magnitude(1, randomization.getNumOfBins()); // to be filled, DC to half the sample rate
        Signal32 response = randomization.getCoefficients(magnitude);

    The phases are found by alternating projections, as R. W. Gerchberg and W. O. Saxton do ("A practical
    algorithm for the determination of phase", 1972): noise is forced to a flat magnitude in the frequency
    domain and into the window, under a falling envelope, in the time domain, over and over. The result is
    a burst of noise that is flat and short at once. A smooth magnitude put on it spreads it only a
    little, so the response is cut at the window's end without a fade.

    All channels of a response are the same, as the noise they start from is (see NoiseGenerator).

    Cost: initPhaseDistribution runs 129 forward and 128 inverse transforms, and is not for the audio thread;
    getCoefficients runs one. Thread: one at a time.
*/
#pragma once

#include "core/AudioFormat.h"
#include "core/Signal.h"
#include "dsp/FourierTransform.h"

namespace vesk::audio
{

class PhaseRandomization
{
public:
    /** Finds the phases. The same format and seed always give the same.
        @param duration  of the responses, seconds, above 0
        @param slope     how far the envelope falls over the duration: from 1 + 2 slope to 1. 0 is a
                         rectangle; a negative slope rises from 1 to 1 - 2 slope */
    void initPhaseDistribution(const AudioFormat& format, float duration, float slope, int seed);

    /** The impulse response, in as many channels as the format has.
        @param magnitude  channel 0 holds getNumOfBins linear gains, from DC to half the sample rate */
    Signal32 getCoefficients(const Signal32& magnitude);

    int getNumOfBins() const { return phases.numSamples; }

    // State, open to inspection; only the operations above write it.

    int length = 0; ///< of the responses, in samples
    FourierTransform fourierTransform;
    Signal32 phases; ///< channels by bins, radians
};

} // namespace vesk::audio
