/**
    Multichannel noise, reproducible from its seed.

        NoiseGenerator noise(2, vo::Gaussian, 1.0f, 0.0f, 1234u);
        Signal32 block = noise.generate(512); // both channels the same, of standard deviation 1

    All channels share one seed, and their generators would run in step. So the channels of a result differ at
    most in gain, and the generator of the first channel is the only one that has to run. Streams that are to
    differ come from separate objects with separate seeds.

    A correlation k of 0 means that each channel is its own generator's output, 1 that all are the first
    channel; in between, each further channel is sqrt(1 - k) times its own plus sqrt(k) times the first, which
    keeps the power of independent sources.

    Cost: one random value for each sample, whatever the channel count. Thread: one at a time.
*/
#pragma once

#include "core/Signal.h"
#include "core/VectorOps.h"

#include <vector>

namespace vesk::audio
{

class NoiseGenerator
{
public:
    /** One channel of Gaussian noise of standard deviation 1, its seed from the standard library's rand. */
    NoiseGenerator();

    /** As initialize. */
    NoiseGenerator(int channels, vo::RandomDistribution distribution, float scale, float channelCorrelation,
                   unsigned int seed);

    virtual ~NoiseGenerator();
    NoiseGenerator(const NoiseGenerator&) = delete;
    NoiseGenerator& operator=(const NoiseGenerator&) = delete;

    /** Starts the sequence that belongs to the seed.
        @param scale               standard deviation, for both distributions
        @param channelCorrelation  0 to 1
        @throws std::invalid_argument for an unknown distribution */
    void initialize(int channels, vo::RandomDistribution distribution, float scale, float channelCorrelation,
                    unsigned int seed);

    /** The next samples; successive calls continue the sequence. Empty if there are no channels. */
    Signal32 generate(int samples);

    /** As generate, of the first channel alone. Precondition: there is one. */
    void generateFirstChannel(float* destination, int samples)
    {
        vo::generateRandomValues(states.front(), destination, samples);
    }

    /** Whether all channels of a result are the same, in gain too. */
    bool hasEqualChannels() const { return numChannels < 2 || correlation == 0.0f || correlation == 1.0f; }

    // State, open to inspection; only the operations above write it.

    std::vector<vo::RandomState> states; ///< one for each channel, owned; only the first one runs
    int numChannels = 0;
    float correlation = 0.0f;

private:
    void freeStates();
};

} // namespace vesk::audio
