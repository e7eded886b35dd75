#include "tools/soak/Host.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iostream>

namespace ambrel::soak
{

namespace
{

constexpr int numChannels = 2;
constexpr int longestBlock = 2048;
constexpr int evenBlock = 512;

/** What hosts use, on and off the powers of two. 0 stands for a length that changes. */
constexpr std::array blockLengths{0, 32, 64, 128, 256, 441, 480, 512, 1000, 1024, 2048};

constexpr double noiseSeconds = 10.0;
constexpr juce::int64 noiseSeed = 1;

/** Uniform noise of this amplitude has an RMS of -20 dBFS. */
constexpr float noiseAmplitude = 0.1732f;

/** 80 dBFS. The loudest settings of all stay far below. */
constexpr float beyondMeasure = 10000.0f;

juce::AudioBuffer<float> createNoise()
{
    juce::AudioBuffer<float> noise(numChannels, juce::roundToInt(noiseSeconds * Host::sampleRate));
    juce::Random random(noiseSeed);

    for (int channel = 0; channel < numChannels; ++channel)
        std::generate_n(noise.getWritePointer(channel), noise.getNumSamples(),
                        [&] { return noiseAmplitude * (2.0f * random.nextFloat() - 1.0f); });
    return noise;
}

} // namespace

double Heard::getLevel() const { return 10.0 * std::log10(energy / samples); }

Host::Host()
    : noise(createNoise()), block(numChannels, longestBlock), blockLength(evenBlock),
      standardError(std::cerr.rdbuf(errors.rdbuf()))
{
    plugIn.setNonRealtime(true);
    plugIn.setRateAndBufferSizeDetails(sampleRate, longestBlock);
    plugIn.prepareToPlay(sampleRate, longestBlock);
}

Host::~Host()
{
    plugIn.releaseResources();
    std::cerr.rdbuf(standardError);
}

void Host::rewind()
{
    noisePosition = 0;
    blockLength = evenBlock;
}

void Host::chooseBlocks(juce::Random& random)
{
    blockLength =
        blockLengths[static_cast<std::size_t>(random.nextInt(static_cast<int>(blockLengths.size())))];
    lengths.setSeed(random.nextInt64());
}

Heard Host::play(double seconds, Input input, bool bypassed)
{
    Heard heard;
    for (int remaining = juce::roundToInt(seconds * sampleRate); remaining > 0;)
    {
        const int length = getNextBlockLength(remaining);
        fillBlock(length, input);

        if (bypassed)
            plugIn.processBlockBypassed(block, midi);
        else
            plugIn.processBlock(block, midi);

        examine(heard);
        remaining -= length;
    }
    if (errors.tellp() > 0)
        throw Fault("the engine has failed: " + errors.str());
    return heard;
}

/** Short blocks, down to a single sample, come as often as long ones. */
int Host::getNextBlockLength(int remaining)
{
    if (blockLength > 0)
        return std::min(blockLength, remaining);

    const float octaves = lengths.nextFloat() * std::log2(static_cast<float>(longestBlock));
    return std::min(static_cast<int>(std::exp2(octaves)), remaining);
}

void Host::fillBlock(int length, Input input)
{
    block.setSize(numChannels, length, false, false, true);
    block.clear();
    if (input == Input::silence)
        return;

    for (int done = 0; done < length;)
    {
        const int count = std::min(length - done, noise.getNumSamples() - noisePosition);
        for (int channel = 0; channel < numChannels; ++channel)
            block.copyFrom(channel, done, noise, channel, noisePosition, count);
        noisePosition = (noisePosition + count) % noise.getNumSamples();
        done += count;
    }
}

void Host::examine(Heard& heard) const
{
    bool isSound = true;
    for (int channel = 0; channel < numChannels; ++channel)
    {
        const float* samples = block.getReadPointer(channel);
        for (int n = 0; n < block.getNumSamples(); ++n)
        {
            const float magnitude = std::abs(samples[n]);
            isSound &= magnitude <= beyondMeasure; // false for what is not a number
            heard.peak = std::max(heard.peak, magnitude);
            heard.energy += static_cast<double>(magnitude) * static_cast<double>(magnitude);
        }
    }
    heard.samples += numChannels * block.getNumSamples();

    if (!isSound)
        throw Fault("a sample is not a number, or beyond all measure");
}

} // namespace ambrel::soak
