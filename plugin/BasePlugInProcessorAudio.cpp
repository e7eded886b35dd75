#include "core/MemoryPool.h"
#include "core/kernels.h"
#include "plugin/BasePlugInProcessor.h"

#include <algorithm>
#include <exception>
#include <iostream>

using vesk::audio::Signal32;

namespace
{
/** 400 dB above full scale, where no signal is and from where no stage comes near the end of a float's range. */
constexpr float largestSample = 1.0e20f;

Signal32 makeSilence(int numChannels, int numSamples)
{
    Signal32 silence(numChannels, numSamples);
    for (int channel = 0; channel < numChannels; ++channel)
        vesk::audio::check(vesk::audio::ippsZero_32f(silence.getWriteChannelPtr(channel), numSamples));
    return silence;
}
} // namespace

void BasePlugInProcessor::prepareToPlay(double sampleRate, int maximumBlockSize)
{
    baseProcessor->expectedBlockSize = maximumBlockSize;

    const auto input = makeFormat(true, sampleRate);
    const auto output = makeFormat(false, sampleRate);
    if (input != baseProcessor->inputFormat || output != baseProcessor->outputFormat)
        formatRefused.store(!baseProcessor->setFormat(input, output), std::memory_order_relaxed);

    // What settles here settles in the memory that the stream will draw on.
    const vesk::audio::StreamScope stream;
    baseProcessor->reset();
    takeUpLatency(true);
}

void BasePlugInProcessor::releaseResources() {}

void BasePlugInProcessor::processBlock(juce::AudioBuffer<float>& buffer, juce::MidiBuffer&)
{
    internalProcess(buffer, false);
}

void BasePlugInProcessor::processBlockBypassed(juce::AudioBuffer<float>& buffer, juce::MidiBuffer&)
{
    internalProcess(buffer, true);
}

void BasePlugInProcessor::internalProcess(juce::AudioBuffer<float>& buffer, bool bypassed)
{
    const juce::ScopedNoDenormals noDenormals;
    const vesk::audio::StreamScope stream;

    const int numSamples = buffer.getNumSamples();
    if (numSamples <= 0)
        return;

    if (formatRefused.load(std::memory_order_relaxed))
    {
        buffer.clear();
        return;
    }

    takeUpLatency(false);

    // What a host hands over in error, such as memory that nobody has written, must not circulate in the
    // engine's feedback for ever.
    Signal32 input(getTotalNumInputChannels(), numSamples);
    for (int channel = 0; channel < input.numChannels; ++channel)
        vesk::audio::check(vesk::audio::copyBounded(buffer.getReadPointer(channel), largestSample,
                                                    input.getWriteChannelPtr(channel), numSamples));

    Signal32 result;
    try
    {
        result = baseProcessor->process(input, bypassed);
    }
    catch (const std::exception& error)
    {
        std::cerr << error.what();
        buffer.clear();
        return;
    }

    const auto output = compensateLatency(result, numSamples);

    // An engine that was never prepared may give fewer channels than the buses have: the others are silent.
    const int numComplete = output.numSamples < numSamples ? 0 : output.numChannels;
    for (int channel = 0; channel < getTotalNumOutputChannels(); ++channel)
    {
        if (channel < numComplete)
            juce::FloatVectorOperations::copy(buffer.getWritePointer(channel), output.getChannelPtr(channel),
                                              numSamples);
        else
            buffer.clear(channel, 0, numSamples);
    }
}

/** A change of the lead alone is not reported to the host while it plays: what it has compensated so far
    stays in force until the next preparation. */
void BasePlugInProcessor::takeUpLatency(bool preparing)
{
    const auto info = baseProcessor->getProcessingInfo();

    if (preparing || info.trailLatency != trailLatency.load(std::memory_order_relaxed))
    {
        setLatencySamples(info.leadLatency + info.trailLatency);
        trailLatency.store(info.trailLatency, std::memory_order_relaxed);
    }
    if (preparing || info.leadLatency != leadLatency.load(std::memory_order_relaxed))
    {
        leadLatency.store(info.leadLatency, std::memory_order_relaxed);
        prefillOutputQueue();
    }
}

void BasePlugInProcessor::prefillOutputQueue()
{
    outputQueue.clear();
    if (const int lead = leadLatency.load(std::memory_order_relaxed); lead > 0)
        outputQueue.add(makeSilence(getTotalNumOutputChannels(), lead));
}

/** The engine's result, held back by the lead latency. Silence as long as the queue is short of a block. */
Signal32 BasePlugInProcessor::compensateLatency(const Signal32& result, int numSamples)
{
    if (leadLatency.load(std::memory_order_relaxed) <= 0)
        return result;

    outputQueue.add(result);
    if (outputQueue.numSamples >= numSamples)
        return outputQueue.get(numSamples);
    return makeSilence(getTotalNumOutputChannels(), numSamples);
}
