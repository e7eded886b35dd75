/**
    A new audio file, WAV or FLAC by its extension, which appears under its name only when it is whole.

        AudioFileWriter file("room.wav", 48000.0, 2, 24);
        file.write(block, 0, block.getNumSamples());
        file.commit();

    All is written to a hidden file in the same folder. commit puts that in the place of whatever has the
    name, in one step; an object that goes away before leaves nothing behind.

    Widths: 16 and 24 bits; 32 is float and for WAV only.
*/
#pragma once

#include "tools/render/Quantiser.h"
#include "tools/render/SampleStream.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ambrel::render
{

class AudioFileWriter : public SampleSink
{
public:
    /** @throws RenderError if the file cannot be made */
    AudioFileWriter(const std::string& path, double sampleRate, int numChannels, int bits);
    ~AudioFileWriter() override;

    void write(const juce::AudioBuffer<float>& block, int start, int numSamples) override;

    /** Finishes the file and gives it its name. @throws RenderError, and then there is no file */
    void commit();

    /** Samples that the file could not hold; always 0 for float. */
    std::int64_t getNumClipped() const { return quantiser ? quantiser->getNumClipped() : 0; }

private:
    class ForwardingStream;

    bool writeIntegers(const juce::AudioBuffer<float>& block, int start, int numSamples);
    bool writeFloats(const juce::AudioBuffer<float>& block, int start, int numSamples);

    std::string path;
    std::optional<Quantiser> quantiser; ///< none for float
    std::vector<std::vector<int>> integers;

    // In this order: the writer finishes into the stream, the stream closes, the hidden file is removed.
    juce::TemporaryFile temporary;
    std::unique_ptr<juce::FileOutputStream> stream;
    std::unique_ptr<juce::AudioFormatWriter> writer;
};

} // namespace ambrel::render
