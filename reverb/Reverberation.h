/**
    The reverb engine: one BaseAudioProcessor with 26 parameters.

    The late tail is a feedback delay network of 16 lines (FeedbackNetwork.h), not a convolution; only the
    early reflections and the tone of the tail are impulse responses. One block takes this road:

        input --+-- early reflections (FirFilter) ---------------------------------------------+
                |                                                                              |
                +-- [down-mix] -- network -- modulated delay -- [up-mix] -- post-processor -- sum
                |                                                             (FirFilter)      |
                |                                      +---------------------------------------+
                |                                      |
                |                                  pre-delay -- stereo spread -- wet gain --+
                |                                                                           |
                +-- [channel conversion] -- dry gain ------------------------------------- sum -- output

    The brackets run only if the input's and the output's layouts differ or are wider than stereo. The
    equalizer costs nothing per block: it is baked into the early responses and into the post-processor's.

        Reverberation reverb;
        reverb.expectedBlockSize = 512;
        reverb.setFormat(AudioFormat(2, 48000.0), AudioFormat(2, 48000.0));
        reverb.reset();
        reverb.setParameterValue(Reverberation::reverbTime, 3.5f, true);
        Signal32 output = reverb.process(block, false);

    Parameters are in natural units and clamped to their ranges; ParameterTable.h lists them. A change of a
    gain is a ramp over the next block, a change of the pre-delay a crossfade. Line gains and filters change at
    once, under the running tail; a change of roomSize empties the tail. The two impulse responses are rebuilt
    by effectuateParameterChanges.

    Once the input has been silent for twice the longer of the two reverb times (and twice the pre-delay),
    blocks pass by all stages and cost next to nothing.

    Threads: process on the audio thread; parameters may be set and read on any thread meanwhile. setFormat
    and reset are not called beside process, and effectuateParameterChanges not on two threads at once. The
    impulse responses are computed outside the two locks and swapped under them, so the audio thread waits for
    the swap at most.

    Errors: a kernel's failure is a std::runtime_error ("IPP exception: ..."); the locks are released on the
    way.
*/
#pragma once

#include "core/BaseAudioProcessor.h"
#include "core/Delay.h"
#include "core/MemoryPool.h"
#include "core/Signal.h"
#include "dsp/FirFilter.h"
#include "dsp/FractionalDelay.h"
#include "dsp/NoiseGenerator.h"
#include "dsp/PhaseRandomization.h"
#include "reverb/FeedbackNetwork.h"

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

namespace vesk::audio
{

class Reverberation : public BaseAudioProcessor
{
public:
    /** The parameters' indices. Names, units, ranges and defaults: ParameterTable.h. */
    enum Parameter : int
    {
        dryGain,
        wetGain,
        reverbTime,
        lowTimeScale,
        crossoverFrequency,
        dampingFrequency,
        preDelay,
        roomSize,
        stereoSpread,
        modulationRate,
        modulationDepth,
        earlyLevel,
        earlyPattern,
        highPassFrequency,
        highPassSlope,
        lowShelfFrequency,
        lowShelfGain,
        lowShelfSlope,
        highShelfFrequency,
        highShelfGain,
        highShelfSlope,
        lowPassFrequency,
        lowPassSlope,
        muteDry,
        muteTail,
        muteEarly
    };

    static constexpr int numParameters = muteEarly + 1;

    /** Ready for mono at 48000 Hz. */
    Reverberation();
    ~Reverberation() override;
    Reverberation(const Reverberation&) = delete;
    Reverberation& operator=(const Reverberation&) = delete;

    /** Rebuilds all stages and clears the audio state; parameters stay. Not for the audio thread: it computes
        both impulse responses.
        @returns false if the two sample rates differ; the stages then stay as they were and process must not
        be called before a format is accepted */
    bool setFormat(const AudioFormat& input, const AudioFormat& output) override;

    void getParameterRange(int index, float& low, float& high) override;

    /** Switches read as 0 or 1, the early pattern as a whole number. Thread: any. */
    float getParameterValue(int index) override;

    /** Clamps and stores; what is cheap takes effect at once.
        @param effectuateNow  whether this ends a batch: then effectuateParameterChanges follows, also if the
        value did not change Thread: any. */
    void setParameterValue(int index, float value, bool effectuateNow) override;

    /** Rebuilds the impulse responses that parameter changes have outdated. Thread: any but the audio thread
        for its cost, one at a time. */
    void effectuateParameterChanges() override;

    /** Clears all audio state, in the filters, delays and network. The clock of silence goes on. */
    void reset() override;

    /** One block of the input format's channels, at least one sample; the result has the output format's
        channels. Bypassed, the input passes with its channels converted. Thread: the audio thread. */
    Signal32 process(const Signal32& input, bool bypassed) override;

private:
    float get(Parameter parameter) const { return parameters[parameter].load(std::memory_order_relaxed); }
    bool isOn(Parameter parameter) const { return get(parameter) > 0.5f; }
    bool hasChannels() const { return inputFormat.numChannels > 0 && outputFormat.numChannels > 0; }

    // The frame of process: silence, dry signal, gains (Reverberation.cpp)
    void updateSilenceClock(const Signal32& input);
    bool isTailFinished() const;
    Signal32 createWetSignal(const Signal32& input);
    Signal32 createEarlySignal(const Signal32& input);
    Signal32 createTailSignal(const Signal32& tailInput);
    Signal32 applySmoothScaling(float gain, float previousGain, Signal32 signal);

    // Life cycle (ReverberationLifeCycle.cpp)
    void choosePlan();
    static std::unique_ptr<FirFilter> prepareIRs(const FirFilter& filter, std::recursive_mutex& lockOfFilter,
                                                 const std::vector<Signal32>& responses);
    void applyParameterChange(unsigned effects, FeedbackNetwork::Lines& lines);
    void updatePreDelay();
    void updateModulation();

    // Channels (ReverberationMapping.cpp)
    Signal32 convertChannelFormat(const Signal32& input);
    Signal32 downMixSignal(const Signal32& input);
    Signal32 upMixSignal(const Signal32& tail);
    Signal32 applyStereoSpread(const Signal32& signal, float spread);

    // Tail (ReverberationTail.cpp)
    FeedbackNetwork::Lines createLines(float size) const;
    void installLines(FeedbackNetwork::Lines& lines);
    void updateRoomSize();
    void updateGains();
    Signal32 processTail(const Signal32& input);

    // Early reflections (ReverberationEarly.cpp)
    void updateEarlyReflections();
    Signal32 createEnvelopedNoise(int inputChannel, float riseTime, float fallTime, float balance,
                                  NoiseGenerator& noise);
    Signal32 applyFilter(const Signal32& signal, const Signal32& filter);

    // Equalizer (ReverberationEqualizer.cpp)
    Signal32 getEqFrequencyResponse(int numBins);
    Signal32 createEqualizerImpulseResponse(int length);
    void updatePostProcessor();

    /** First, so that the pool keeps its blocks until the last stage has given its own back. */
    PoolLease poolLease;

    float silentTime = 0.0f; ///< seconds since the input last was above the threshold of silence

    // dB, of the last processed block: where the next ramps start.
    float previousDryGain = 0.0f;
    float previousWetGain = 0.0f;

    // Whoever needs both takes tailLock first.
    std::recursive_mutex tailLock;  ///< network, modulation, post-processor, pre-delay
    std::recursive_mutex earlyLock; ///< early reflections

    /** While true, process uses silence for the early signal instead of waiting for the swap. */
    std::atomic<bool> earlyUpdating{false};

    FirFilter postProcessor;
    FirFilter earlyReflections;
    FeedbackNetwork network;
    FractionalDelay modulationDelay;
    Delay<float> preDelayLine;
    PhaseRandomization phaseRandomization;

    // What effectuateParameterChanges has to rebuild.
    std::atomic<bool> earlyDirty{false};
    std::atomic<bool> postDirty{false};

    int tailChannels = 0; ///< of the network: 1, 2 or 4
    bool channelMappingNeeded = false;

    std::array<std::atomic<float>, numParameters> parameters;
};

} // namespace vesk::audio
