/**
    Driving the engine in tests: settings in one line, streams in blocks, impulses.
*/
#pragma once

#include "reverb/ParameterTable.h"
#include "reverb/Reverberation.h"
#include "tests/core/TestSignals.h"
#include "tests/support/AudioMeasures.h"

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

/** The input as a stream of blocks of the given lengths, over and over. */
inline Signal32 render(Reverberation& engine, const Signal32& input, const std::vector<int>& lengths = {512})
{
    Signal32 output(engine.outputFormat.numChannels, input.numSamples);
    int position = 0;
    for (std::size_t k = 0; position < input.numSamples; ++k)
    {
        const int length = std::min(lengths[k % lengths.size()], input.numSamples - position);
        const Signal32 block = engine.process(slice(input, position, length), false);
        EXPECT_EQ(block.numChannels, output.numChannels);
        EXPECT_EQ(block.numSamples, length);
        for (int c = 0; c < block.numChannels; ++c)
            std::copy_n(block.getChannelPtr(c), length, output.getWriteChannelPtr(c) + position);
        position += length;
    }
    return output;
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
