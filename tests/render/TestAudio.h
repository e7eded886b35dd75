/**
    What the renderer's tests share: signals, and audio files with these.
*/
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

namespace ambrel::render::test
{

/** Noise between -0.5 and 0.5, the same every time; each channel its own. */
inline juce::AudioBuffer<float> createNoise(int channels, int samples)
{
    juce::Random random(1);
    juce::AudioBuffer<float> noise(channels, samples);
    for (int channel = 0; channel < channels; ++channel)
        for (int i = 0; i < samples; ++i)
            noise.setSample(channel, i, random.nextFloat() - 0.5f);
    return noise;
}

inline juce::AudioBuffer<float> createSine(int channels, int samples, double frequency, double rate,
                                           float gain = 0.5f)
{
    juce::AudioBuffer<float> sine(channels, samples);
    for (int channel = 0; channel < channels; ++channel)
        for (int i = 0; i < samples; ++i)
            sine.setSample(channel, i,
                           gain *
                               static_cast<float>(std::sin(2.0 * std::numbers::pi * frequency * i / rate)));
    return sine;
}

/** Writes with the library's own writers; the extension tells the kind. */
inline std::string writeAudio(const std::string& path, const juce::AudioBuffer<float>& audio, double rate,
                              int bits)
{
    juce::AudioFormatManager formats;
    formats.registerBasicFormats();
    const juce::File file(path);
    file.deleteFile(); // the stream would append
    auto* format = formats.findFormatForFileExtension(file.getFileExtension());
    const auto channels = static_cast<unsigned>(audio.getNumChannels());
    const std::unique_ptr<juce::AudioFormatWriter> writer(
        format->createWriterFor(new juce::FileOutputStream(file), rate, channels, bits, {}, 0));
    writer->writeFromAudioSampleBuffer(audio, 0, audio.getNumSamples());
    return path;
}

struct ReadAudio
{
    juce::AudioBuffer<float> samples;
    double rate = 0.0;
    int bits = 0;
    bool isFloat = false;
};

/** Reads with the library's own readers; no channels if it cannot be read. */
inline ReadAudio readAudio(const std::string& path)
{
    juce::AudioFormatManager formats;
    formats.registerBasicFormats();
    const std::unique_ptr<juce::AudioFormatReader> reader(formats.createReaderFor(juce::File(path)));
    if (reader == nullptr)
        return {};

    const auto length = static_cast<int>(reader->lengthInSamples);
    ReadAudio audio{{static_cast<int>(reader->numChannels), length},
                    reader->sampleRate,
                    static_cast<int>(reader->bitsPerSample),
                    reader->usesFloatingPointData};
    reader->read(&audio.samples, 0, length, 0, true, true);
    return audio;
}

} // namespace ambrel::render::test
