/**
    An audio file as a source of samples: WAV, AIFF, FLAC and Ogg Vorbis, told apart by content and not by
   name.

        AudioFileReader source("voice.flac");
        source.read(block);

    What the decoders let pass in silence is an error here: a file that ends before its header says so,
   samples in a width that cannot be decoded, and samples that are no numbers. Ogg Vorbis has no length in its
   header: a cut file is a shorter file.

    Cost: reads as it goes, a block at a time; only FLAC without a length in its header is decoded twice.
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
    std::int64_t getNumSamples() const override { return reader->lengthInSamples; }
    void read(juce::AudioBuffer<float>& block) override;

private:
    class WatchedStream;

    void openStream();
    void checkFormat() const;
    void checkLastSample();
    void throwIfCutShort() const;

    std::string path;
    juce::AudioFormatManager formats;
    WatchedStream* stream = nullptr; ///< owned by the reader
    std::unique_ptr<juce::AudioFormatReader> reader;
    std::int64_t position = 0; ///< samples
};

} // namespace ambrel::render
