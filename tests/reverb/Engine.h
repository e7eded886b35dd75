/**
    Driving the engine in tests: settings in one line, streams in blocks, impulses.
*/
#pragma once

#include "reverb/ParameterTable.h"
#include "reverb/Reverberation.h"
#include "tests/dsp/Measures.h"

#include <initializer_list>
#include <memory>
#include <utility>

namespace vesk::audio::test
{

using Settings = std::vector<std::pair<Reverberation::Parameter, float>>;

inline void applySettings(Reverberation& engine, const Settings& settings)
{
    for (const auto& [parameter, value] : settings)
        engine.setParameterValue(parameter, value, false);
    engine.effectuateParameterChanges();
}

/** Neither dry signal nor wet gain. */
inline const Settings wetOnly = {{Reverberation::muteDry, 1.0f}, {Reverberation::wetGain, 0.0f}};

inline const Settings dryOnly = {{Reverberation::muteTail, 1.0f}, {Reverberation::muteEarly, 1.0f}};

/** An equalizer as flat as it gets. */
inline const Settings flat = {{Reverberation::highPassFrequency, 1.0f},
                              {Reverberation::lowPassFrequency, 25000.0f},
                              {Reverberation::lowPassSlope, 24.0f}};

inline Settings operator+(Settings a, const Settings& b)
{
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

inline std::unique_ptr<Reverberation> makeEngine(const AudioFormat& input, const AudioFormat& output,
                                                 const Settings& settings = {}, int blockSize = -1)
{
    auto engine = std::make_unique<Reverberation>();
    engine->expectedBlockSize = blockSize;
    applySettings(*engine, settings);
    EXPECT_TRUE(engine->setFormat(input, output));
    engine->reset();
    return engine;
}

inline std::unique_ptr<Reverberation> makeEngine(int channels, double sampleRate,
                                                 const Settings& settings = {}, int blockSize = -1)
{
    const AudioFormat format(channels, sampleRate);
    return makeEngine(format, format, settings, blockSize);
}

inline Signal32 render(Reverberation& engine, const Signal32& input, const std::vector<int>& lengths = {512})
{
    return processInBlocks(input, lengths,
                           [&](const Signal32& block) { return engine.process(block, false); });
}

/** Ones in the first sample of the given channels. */
inline Signal32 makeImpulse(int channels, int samples, std::initializer_list<int> where)
{
    Signal32 impulse(channels, samples, 0.0f);
    for (const int c : where)
        impulse.getWriteChannelPtr(c)[0] = 1.0f;
    return impulse;
}

inline std::span<const float> getRange(const Signal32& signal, int channel, int begin, int end)
{
    return getChannel(signal, channel)
        .subspan(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
}

} // namespace vesk::audio::test
