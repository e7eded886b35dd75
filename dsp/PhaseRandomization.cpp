#include "dsp/PhaseRandomization.h"

#include "core/MathEx.h"
#include "core/VectorOps.h"
#include "core/kernels.h"
#include "dsp/NoiseGenerator.h"

#include <algorithm>

namespace vesk::audio
{

namespace
{
/** Rounds of the search. So many leave a few parts in ten thousand of the energy outside the window, and a
    flat magnitude comes out flat to about 0.1 dB. */
constexpr int numIterations = 128;

/** Falls in a straight line over length samples and is 0 from there on. */
Signal32 createEnvelope(int samples, int length, float slope)
{
    Signal32 envelope(1, samples, 0.0f);
    auto* values = envelope.getWriteChannelPtr(0);
    const float fall = 2.0f * slope;
    const float start = std::max(fall, 0.0f) + 1.0f;
    for (int i = 0; i < length; ++i)
        values[i] = start - static_cast<float>(i) * fall / static_cast<float>(length);
    return envelope;
}

/** As many channels of the one. */
Signal32 spread(const Signal32& source, int channels)
{
    Signal32 result(channels, source.numSamples);
    for (int channel = 0; channel < channels; ++channel)
        vo::copy(source.getChannelPtr(0), result.getWriteChannelPtr(channel), source.numSamples);
    return result;
}

void getPhase(const ComplexSignal32& spectrum, Signal32& phase)
{
    check(ippsPhase_32fc(spectrum.getChannelPtr(0), phase.getWriteChannelPtr(0), spectrum.numSamples));
}
} // namespace

void PhaseRandomization::initPhaseDistribution(const AudioFormat& format, float duration, float slope,
                                               int seed)
{
    length = static_cast<int>(static_cast<double>(duration) * format.sampleRate);
    const int samples = MathEx::findLargerPowerOfTwo(2 * length);
    const int bins = samples / 2 + 1;

    const Signal32 envelope = createEnvelope(samples, length, slope);
    const Signal32 flat(1, bins, 1.0f);
    ComplexSignal32 spectrum(1, bins);
    Signal32 phase(1, bins);

    // All channels start from the same noise and so end with the same phases: one is computed.
    NoiseGenerator noise(1, vo::Gaussian, 1.0f, 0.0f, static_cast<unsigned int>(seed));
    Signal32 burst = noise.generate(samples);
    for (int iteration = 0; iteration < numIterations; ++iteration)
    {
        fourierTransform.forwardReal(burst, spectrum);
        getPhase(spectrum, phase);
        check(ippsPolarToCart_32fc(flat.getChannelPtr(0), phase.getChannelPtr(0),
                                   spectrum.getWriteChannelPtr(0), bins));
        fourierTransform.inverseReal(spectrum, burst);
        auto* values = burst.getWriteChannelPtr(0);
        check(ippsMul_32f(values, envelope.getChannelPtr(0), values, samples));
    }
    fourierTransform.forwardReal(burst, spectrum);
    getPhase(spectrum, phase);
    phases = spread(phase, format.numChannels);
}

Signal32 PhaseRandomization::getCoefficients(const Signal32& magnitude)
{
    if (phases.numChannels < 1)
        return Signal32(0, length);

    Signal32 first = magnitude;
    first.numChannels = 1;
    const ComplexSignal32 spectrum(first, phases);
    const Signal32 periodic = fourierTransform.inverseReal(spectrum);

    Signal32 response(1, length);
    vo::copy(periodic.getChannelPtr(0), response.getWriteChannelPtr(0), length);
    return spread((1.0f / static_cast<float>(periodic.numSamples)) * response, phases.numChannels);
}

} // namespace vesk::audio
