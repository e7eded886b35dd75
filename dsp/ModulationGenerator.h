/**
    The control signal that moves a delay: nothing, a sine, or band-limited random noise, one value for each
    sample, centred on an offset and never further from it than depth.

        ModulationGenerator modulation;
        modulation.setFormat(2, 48000.0);
        modulation.setModulation(ModulationGenerator::Random, 0.0f, 1.0f, 0.003f, 0.0f, 0.0f);
        Signal32 seconds = modulation.generate(512); // drifts between -3 ms and +3 ms, about once a second

    The random kind is Gaussian noise through a second-order low-pass at the rate. White noise keeps 2
    rate / sampleRate of its power there, so it is generated that much louder, to come out with a standard
    deviation of 0.2 depth: the clamp to depth lies at five standard deviations and rarely acts.

    Prepare with setFormat, then setModulation. Cost: one random value and one double-precision filter
    step for each sample (for each channel, if the correlation is neither 0 nor 1). Thread: one at a time.
*/
#pragma once

#include "core/MemoryPool.h"
#include "core/Signal.h"
#include "dsp/IirFilter.h"
#include "dsp/NoiseGenerator.h"

#include <cstdint>
#include <vector>

namespace vesk::audio
{

class ModulationGenerator
{
public:
    enum ModulationType : std::int32_t
    {
        None = 0,       ///< the offset alone; any value not named here does the same
        Sinusoidal = 1, ///< a tone of the rate
        Random = 2      ///< low-pass filtered noise
    };

    ModulationGenerator() = default;

    /** Takes effect at the next setModulation. */
    void setFormat(int channels, double rateOfSamples);

    /** Restarts the noise from its seed, but keeps the low-pass running, so that a change does not click.
        @param newOffset    added to the modulation, in the unit of the result
        @param newRate      Hz, above 0
        @param newDepth     largest swing, in the unit of the result, not negative
        @param newPhase     the tone's phase in radians; for the noise, 0 to 1 selects a seed
        @param correlation  of the noise channels, see NoiseGenerator */
    void setModulation(ModulationType newType, float newOffset, float newRate, float newDepth, float newPhase,
                       float correlation);

    /** The next samples, for all channels. Successive calls continue the tone or the noise. */
    Signal32 generate(int samples);

    /** As generate, once for all channels. Precondition: hasEqualChannels and at least one channel. */
    void generateShared(float* destination, int samples);

    /** Whether all channels of a result are the same. */
    bool hasEqualChannels() const { return type != Random || noise.hasEqualChannels(); }

    // State, open to inspection; only the operations above write it.

    ModulationType type = Random;
    IirFilter64 lowPass; ///< while the channels are equal only the first one runs
    NoiseGenerator noise;
    int numChannels = 0;
    double sampleRate = 0.0;
    float offset = 1.0f;
    float depth = 1.0f;
    float rate = 1.0f;
    float phase = 0.0f; ///< as given to setModulation; a tone moves it on

private:
    void finish(float* values, int samples) const;
    void filterNoise(int channel, float* values, int samples);

    std::vector<double, PoolAllocator<double>> preciseNoise; // work of filterNoise
};

} // namespace vesk::audio
