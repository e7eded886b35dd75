// The feedback network under the engine's parameters and lock.

#include "reverb/Reverberation.h"

namespace vesk::audio
{

/** Empties the network: there is no other way to clear it. */
void Reverberation::updateRoomSize()
{
    {
        const std::scoped_lock lock(tailLock);
        network.setLines(tailChannels, inputFormat.sampleRate, get(roomSize));
    }
    updateGains();
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
