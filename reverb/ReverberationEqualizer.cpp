// The four-band equalizer. No filter runs for it in the signal: its magnitude curve is baked into the early
// responses, with zero phase, and into the post-processor's, with the random phase that makes the tail
// denser.

#include "core/VectorOps.h"
#include "core/kernels.h"
#include "dsp/Butterworth.h"
#include "dsp/FourierTransform.h"
#include "reverb/Reverberation.h"

#include <vector>

namespace vesk::audio
{

namespace
{
/** dB per octave of one order. */
constexpr float slopePerOrder = 6.0f;

/** dB: the bands keep the classic level at their corners. */
constexpr float gainAtCorner = 0.0f;
} // namespace

/** Linear magnitudes on an even grid from 0 Hz to half the sample rate, both included. One channel. */
Signal32 Reverberation::getEqFrequencyResponse(int numBins)
{
    std::vector<float> frequencies(static_cast<std::size_t>(numBins));
    for (int bin = 0; bin < numBins; ++bin)
        frequencies[static_cast<std::size_t>(bin)] =
            static_cast<float>(bin * inputFormat.sampleRate / (2.0 * numBins - 2.0));

    const auto order = [this](Parameter slope) { return get(slope) / slopePerOrder; };
    const Signal32 highPass = Butterworth::evaluateHighPassFilter(frequencies, get(highPassFrequency),
                                                                  order(highPassSlope), gainAtCorner);
    const Signal32 lowShelf = Butterworth::evaluateLowShelfFilter(
        frequencies, get(lowShelfGain), get(lowShelfFrequency), order(lowShelfSlope), gainAtCorner);
    const Signal32 highShelf = Butterworth::evaluateHighShelfFilter(
        frequencies, get(highShelfGain), get(highShelfFrequency), order(highShelfSlope), gainAtCorner);
    const Signal32 lowPass = Butterworth::evaluateLowPassFilter(frequencies, get(lowPassFrequency),
                                                                order(lowPassSlope), gainAtCorner);
    return highPass * lowShelf * highShelf * lowPass;
}

/** Linear phase, the peak at sample length / 2, with as many equal channels as the input has.
    @param length  even */
Signal32 Reverberation::createEqualizerImpulseResponse(int length)
{
    const int half = length / 2;
    Signal32 curve = getEqFrequencyResponse(half + 1);
    curve *= 1.0f / static_cast<float>(length); // the transform does not scale

    ComplexSignal32 spectrum(curve.numChannels, curve.numSamples);
    for (int channel = 0; channel < curve.numChannels; ++channel)
        check(ippsRealToCplx_32f(curve.getChannelPtr(channel), nullptr, spectrum.getWriteChannelPtr(channel),
                                 curve.numSamples));
    FourierTransform transform;
    const Signal32 zeroPhase = transform.inverseReal(spectrum);

    // The peak is at sample 0, its left half at the end: turn it into the middle.
    Signal32 response(inputFormat.numChannels, length);
    for (int channel = 0; channel < response.numChannels; ++channel)
    {
        float* destination = response.getWriteChannelPtr(channel);
        vo::copy(zeroPhase.getChannelPtr(0) + half, destination, length - half);
        vo::copy(zeroPhase.getChannelPtr(0), destination + (length - half), half);
    }
    return response;
}

void Reverberation::updatePostProcessor()
{
    const Signal32 curve = getEqFrequencyResponse(phaseRandomization.getNumOfBins());
    const Signal32 coefficients = phaseRandomization.getCoefficients(curve);

    const auto prepared = prepareIRs(postProcessor, tailLock, {coefficients});
    const std::scoped_lock lock(tailLock);
    postProcessor.takeIRs(*prepared);
}

} // namespace vesk::audio
