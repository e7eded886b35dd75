// The feedback network under the engine's parameters and lock.

#include "reverb/Reverberation.h"

namespace vesk::audio
{

FeedbackNetwork::Lines Reverberation::createLines(float size) const
{
    return {tailChannels, inputFormat.sampleRate, size};
}

/** Gets the former ones, for whoever called to let go of outside of the lock. */
void Reverberation::installLines(FeedbackNetwork::Lines& lines)
{
    {
        const std::scoped_lock lock(tailLock);
        const bool areOutdated =
            lines.numChannels != tailChannels || lines.sampleRate != inputFormat.sampleRate;
        if (areOutdated)
            lines = createLines(get(roomSize)); // the format has changed meanwhile
        network.swapLines(lines);
    }
    updateGains();
}

/** Empties the network: there is no other way to clear it. */
void Reverberation::updateRoomSize()
{
    auto lines = createLines(get(roomSize));
    installLines(lines);
}

void Reverberation::updateGains()
{
    const std::scoped_lock lock(tailLock);
    network.setDecay({.reverbTime = get(reverbTime),
                      .lowTimeScale = get(lowTimeScale),
                      .crossoverFrequency = get(crossoverFrequency),
                      .dampingFrequency = get(dampingFrequency)});
}

/** Called under tailLock. */
Signal32 Reverberation::processTail(const Signal32& input) { return network.process(input); }

} // namespace vesk::audio
