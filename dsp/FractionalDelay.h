/**
    A delay line whose read position moves smoothly, by fractions of a sample, under a ModulationGenerator.

    The input is oversampled by 2 (zeros between the samples, then a windowed-sinc interpolator), waits in a
    queue, and is read by linear interpolation. The sinc crosses zero at every second tap, so only every second
    sample has to be computed, from half the taps; the others are the input's own. The queue is a single block:
    the line as the last block left it.

        FractionalDelay delay;
        delay.setFormat(2, 48000.0);
        delay.setDelay(0.0f, ModulationGenerator::Random, 0.003f, 1.0f, 0.0f, 0.0f);
        delay.reset();
        Signal32 moving = delay.process(block); // 3 ms to 9 ms late, and 3.5 samples of the interpolator

    The modulated read counts from the oldest sample of the line, so a larger modulation m (in seconds)
    reads a newer sample: the output is 2 depth - m late, whatever the base delay, which only makes the
    line longer. Only where the line is held at its least length (the interpolator's 15 taps) is the delay
    that length less base delay and m.

    Without modulation the line is read by two decimations with fixed weights that fill the first half of each
    block; nothing in the engine does so.

    Prepare in the order setFormat, setDelay, reset. A setDelay while audio runs steps the read position.
    Cost: an 8-tap filter, one interpolation for each sample, and a copy of the line for each block. Thread: one
    at a time.
*/
#pragma once

#include "core/MemoryPool.h"
#include "core/Signal.h"
#include "core/SignalQueue.h"
#include "core/delayKernels.h"
#include "dsp/FirFilter.h"
#include "dsp/ModulationGenerator.h"

#include <array>
#include <vector>

namespace vesk::audio
{

class FractionalDelay
{
public:
    FractionalDelay() = default;

    /** Empties the line. The delay has to be set again afterwards. */
    void setFormat(int channels, double rateOfSamples);

    /** Brings the line to the length that the largest swing needs, at its oldest end.
        @param baseDelay     seconds
        @param type          None reads without modulation
        @param depth         seconds
        @param rate          Hz, above 0
        @param seedFraction  phase of the tone, or selector of the noise's seed, see ModulationGenerator
        @param correlation   of the noise channels, see NoiseGenerator
        @return the larger of base delay and depth, which is kept as the delay */
    float setDelay(float baseDelay, ModulationGenerator::ModulationType type, float depth, float rate,
                   float seedFraction, float correlation);

    /** Fills the line with silence. The modulation runs on. */
    void reset();

    Signal32 process(const Signal32& input);

    // State, open to inspection; only the operations above write it.

    int numChannels = 0;
    double sampleRate = 0.0;
    float delay = 0.0f;          ///< seconds
    int delaySamples = 0;        ///< length of the line in oversampled samples
    int oversampling = 2;        ///< fixed
    int sincLength = 15;         ///< taps of the interpolator, fixed
    SignalQueue<Signal32> queue; ///< delaySamples oversampled samples between blocks
    FirFilter interpolator;      ///< holds the sinc; the line is made of it by its two phases
    float lowerWeight = 0.0f;    ///< of the samples at even positions, without modulation
    float upperWeight = 0.0f;    ///< of those at odd positions
    ModulationGenerator::ModulationType modulationType = ModulationGenerator::None;
    float modulationDepth = 0.0f; ///< seconds
    float modulationRate = 0.0f;  ///< Hz
    float modulationCorrelation = 0.0f;
    ModulationGenerator modulation;

private:
    void updateSincFilter();
    void fitQueue();
    void upsample(const Signal32& input, Signal32& line);
    Signal32 readModulated(const Signal32& line, int samples);
    Signal32 readDecimated(const Signal32& line, int samples) const;

    template <typename T>
    using Buffer = std::vector<T, PoolAllocator<T>>;

    std::array<float, halfBandTaps> halfBand{}; // the sinc's taps apart from its centre and its zeros
    Buffer<float> past;                         // the last inputs of each channel, channel after channel
    Buffer<float> recent;                       // one channel's past and block
    Buffer<float> offsets;
    Buffer<const float*> sources;
    Buffer<float*> destinations;
};

} // namespace vesk::audio
