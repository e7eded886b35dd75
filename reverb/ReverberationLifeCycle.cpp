// Construction, formats, what parameter changes set off, and reset.

#include "reverb/ParameterTable.h"
#include "reverb/Reverberation.h"

#include <cassert>

namespace vesk::audio
{

namespace
{
constexpr double initialSampleRate = 48000.0;

/** The post-processor's noise-like responses: their length, how far they fall within it, and their noise. */
constexpr float postDuration = 0.1f; // s
constexpr float postSlope = 0.6f;
constexpr int postSeed = 1;

/** An extra partition every so many doublings keeps large transforms off the same block. */
constexpr int loadDistributionPeriod = 4;

constexpr double longestPreDelay = 500.0; // ms

/** At a rate of 1 Hz and full depth the modulation swings by 3 ms, at other rates in inverse proportion. */
constexpr float modulationSwing = 3.0f;

/** Rebuilds if marked. The mark goes first, so that a change that arrives meanwhile marks anew; a rebuild
    that fails leaves it in place. Acquire and release: who sees the mark sees the value behind it. */
template <typename Rebuild>
void rebuildIfDirty(std::atomic<bool>& dirty, Rebuild rebuild)
{
    if (!dirty.exchange(false, std::memory_order_acquire))
        return;
    try
    {
        rebuild();
    }
    catch (...)
    {
        dirty.store(true, std::memory_order_release);
        throw;
    }
}
} // namespace

Reverberation::Reverberation()
{
    for (const ParameterInfo& info : parameterTable)
        parameters[info.index].store(info.defaultValue, std::memory_order_relaxed);
    postProcessor.setLoadDistribution(true, loadDistributionPeriod);
    earlyReflections.setLoadDistribution(true, loadDistributionPeriod);

    const AudioFormat initial(1, initialSampleRate);
    Reverberation::setFormat(initial, initial);
}

Reverberation::~Reverberation() = default;

//==============================================================================
// Format

bool Reverberation::setFormat(const AudioFormat& input, const AudioFormat& output)
{
    BaseAudioProcessor::setFormat(input, output);
    if (inputFormat.sampleRate != outputFormat.sampleRate)
        return false;

    choosePlan();
    // Without channels there is nothing to build; the marked rebuilds wait for a format that has some.
    if (!hasChannels())
        return true;

    assert(inputFormat.sampleRate > 0.0);
    phaseRandomization.initPhaseDistribution(outputFormat, postDuration, postSlope, postSeed);
    updatePreDelay();
    modulationDelay.setFormat(tailChannels, static_cast<double>(static_cast<float>(inputFormat.sampleRate)));
    updateRoomSize();
    updateModulation();
    updateEarlyReflections();
    updatePostProcessor();
    reset();
    return true;
}

/** How many channels the tail has, and whether channels are mapped by speaker position. */
void Reverberation::choosePlan()
{
    channelMappingNeeded = inputFormat.speakers != outputFormat.speakers || inputFormat.numChannels > 2;
    if (!channelMappingNeeded)
        tailChannels = inputFormat.numChannels;
    else
        tailChannels =
            outputFormat.numChannels <= 2 ? outputFormat.numChannels : FeedbackNetwork::maxChannels;
}

//==============================================================================
// Parameter changes

/** Called under both locks, the new value being stored.
    @param effects  of ParameterEffect
    @param lines    the network's, if they are to be rebuilt */
void Reverberation::applyParameterChange(unsigned effects, FeedbackNetwork::Lines& lines)
{
    if ((effects & outdatesEarly) != 0)
        earlyDirty.store(true, std::memory_order_release);
    if ((effects & outdatesPost) != 0)
        postDirty.store(true, std::memory_order_release);
    if ((effects & rebuildsLines) != 0)
        installLines(lines);
    if ((effects & updatesGains) != 0)
        updateGains();
    if ((effects & updatesPreDelay) != 0)
        updatePreDelay();
    if ((effects & updatesModulation) != 0)
        updateModulation();
}

void Reverberation::effectuateParameterChanges()
{
    if (!hasChannels())
        return;
    rebuildIfDirty(earlyDirty, [this] { updateEarlyReflections(); });
    rebuildIfDirty(postDirty, [this] { updatePostProcessor(); });
}

/** Everything about new responses that need not be done under the lock. */
std::unique_ptr<FirFilter> Reverberation::prepareIRs(const FirFilter& filter,
                                                     std::recursive_mutex& lockOfFilter,
                                                     const std::vector<Signal32>& responses)
{
    const auto getBlockLength = [&]
    {
        const std::scoped_lock lock(lockOfFilter);
        return filter.blockSize;
    };
    return filter.prepareIRs(responses, getBlockLength());
}

void Reverberation::updatePreDelay()
{
    const std::scoped_lock lock(tailLock);
    const double rate = inputFormat.sampleRate;
    preDelayLine.delaySamples = static_cast<int>(static_cast<double>(get(preDelay)) * rate / 1000.0);

    const int longest = static_cast<int>(longestPreDelay * rate / 1000.0);
    if (longest >= 0 && longest != preDelayLine.maxDelaySamples)
    {
        preDelayLine.maxDelaySamples = longest;
        preDelayLine.numChannels = 0; // its next block rebuilds the memory
        preDelayLine.currentDelaySamples = preDelayLine.delaySamples;
    }
}

void Reverberation::updateModulation()
{
    const std::scoped_lock lock(tailLock);
    const float rate = get(modulationRate);
    const float depth = get(modulationDepth) / 100.0f * (modulationSwing / rate) / 1000.0f;
    modulationDelay.setDelay(0.0f, ModulationGenerator::Random, depth, rate, 0.0f, 0.0f);
}

//==============================================================================
// Reset

void Reverberation::reset()
{
    if (hasChannels())
    {
        updateRoomSize(); // empties the network
        modulationDelay.reset();

        postProcessor.reset();
        // The convolution settles on the block size it sees; a silent block lets it do so before the first
        // real one.
        if (expectedBlockSize > 0)
            postProcessor.process(Signal32(outputFormat.numChannels, expectedBlockSize, 0.0f));
        earlyReflections.reset();

        preDelayLine.numChannels = 0; // its next block rebuilds the memory
        preDelayLine.currentDelaySamples = preDelayLine.delaySamples;
    }
    previousDryGain = get(dryGain);
    previousWetGain = get(wetGain);
}

} // namespace vesk::audio
