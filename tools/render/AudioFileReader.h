/**
    An audio file as a source of samples: WAV, AIFF, FLAC and Ogg Vorbis, told apart by content and not by name.

        AudioFileReader source("voice.flac");
        source.read(block);

    What the decoders let pass in silence is an error here: a file that ends before its header says so, damage in
    compressed data, samples in a width that cannot be decoded, and samples that are no numbers. An Ogg Vorbis file
    that was cut is a shorter file: its header has no length.

    Cost: opening a compressed file decodes it once; after that reads as it goes, a block at a time.
*/
#pragma once

#include "tools/render/SampleStream.h"

#include <juce_audio_formats/juce_audio_formats.h>

#include <memory>
#include <string>

namespace ambrel::render
{

class AudioFileReader : public SampleSource
{
public:
    /** Opens the file. @throws RenderError with the reason */
    explicit AudioFileReader(const std::string& path);
    ~AudioFileReader() override;

    int getNumChannels() const override { return static_cast<int>(reader->numChannels); }
    double getSampleRate() const override { return reader->sampleRate; }
    std::int64_t getNumSamples() const override { return length; }
    void read(juce::AudioBuffer<float>& block) override;

private:
    class WatchedStream;

    void openStream();
    void checkFormat() const;
    void checkCompressedData() const;
    void findEndOfPlainData();
    void readSamples(juce::AudioBuffer<float>& block, std::int64_t start, int numSamples);
    bool isFlac() const;
    bool isOgg() const;

    std::string path;
    juce::AudioFormatManager formats;
    WatchedStream* stream = nullptr; ///< owned by the reader
    std::unique_ptr<juce::AudioFormatReader> reader;
    std::int64_t length = 0;   ///< samples
    std::int64_t position = 0; ///< samples
};

} // namespace ambrel::render
