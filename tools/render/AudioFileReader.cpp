#include "tools/render/AudioFileReader.h"

#include "tools/render/Errors.h"
#include "tools/render/FilePaths.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <span>

namespace ambrel::render
{

/** A file stream that notices when more is asked of it than the file holds. The decoders fill such gaps with
    silence and say nothing. */
class AudioFileReader::WatchedStream : public juce::InputStream
{
public:
    explicit WatchedStream(std::unique_ptr<juce::FileInputStream> source) : file(std::move(source)) {}

    juce::int64 getTotalLength() override { return file->getTotalLength(); }
    bool isExhausted() override { return file->isExhausted(); }
    juce::int64 getPosition() override { return file->getPosition(); }
    bool setPosition(juce::int64 newPosition) override { return file->setPosition(newPosition); }

    int read(void* destination, int maxBytes) override
    {
        const int bytes = file->read(destination, maxBytes);
        partialRead |= bytes < maxBytes;
        emptyRead |= bytes <= 0 && maxBytes > 0;
        return bytes;
    }

    void forgetPast()
    {
        partialRead = false;
        emptyRead = false;
    }

    bool partialRead = false; ///< some read came back with less than it asked for
    bool emptyRead = false;   ///< some read came back with nothing

private:
    std::unique_ptr<juce::FileInputStream> file;
};

namespace
{

constexpr const char* oggFormatName = "Ogg-Vorbis file";
constexpr const char* flacFormatName = "FLAC file";

std::string secondsText(double seconds) { return juce::String(seconds, 2).toStdString() + " s"; }

} // namespace

AudioFileReader::AudioFileReader(const std::string& pathToRead) : path(pathToRead)
{
    formats.registerBasicFormats();
    openStream();
    checkFormat();
    checkLastSample();
    stream->forgetPast();
}

AudioFileReader::~AudioFileReader() = default;

void AudioFileReader::openStream()
{
    std::error_code error;
    const auto status = std::filesystem::status(path, error);

    if (!std::filesystem::exists(status))
        throw RenderError("'" + path + "': no such file");
    if (std::filesystem::is_directory(status))
        throw RenderError("'" + path + "' is a folder, not an audio file");
    if (!std::filesystem::is_regular_file(status))
        throw RenderError("'" + path + "' is not a regular file");

    auto file = std::make_unique<juce::FileInputStream>(toFile(path));

    if (file->failedToOpen())
        throw RenderError("'" + path +
                          "' cannot be opened: " + file->getStatus().getErrorMessage().toStdString());
    if (file->getTotalLength() == 0)
        throw RenderError("'" + path + "' is empty");

    auto watched = std::make_unique<WatchedStream>(std::move(file));
    stream = watched.get();
    reader.reset(formats.createReaderFor(std::move(watched)));

    if (reader == nullptr)
        throw RenderError("'" + path + "' is broken or not a WAV, AIFF, FLAC or Ogg Vorbis file");
}

void AudioFileReader::checkFormat() const
{
    if (reader->lengthInSamples <= 0 || reader->numChannels == 0)
        throw RenderError("'" + path + "' holds no audio");
    if (!(reader->sampleRate > 0.0) || !std::isfinite(reader->sampleRate))
        throw RenderError("'" + path + "' is broken: it has no sample rate");

    // The uncompressed formats hand out uninitialised samples for widths they do not know.
    const bool compressed =
        reader->getFormatName() == oggFormatName || reader->getFormatName() == flacFormatName;
    constexpr unsigned readableWidths[] = {8, 16, 24, 32};

    if (!compressed && std::ranges::find(readableWidths, reader->bitsPerSample) == std::end(readableWidths))
        throw RenderError("'" + path + "': samples of " + std::to_string(reader->bitsPerSample) +
                          " bits are not supported");
}

/** An uncompressed file that was cut is found at once, before any work is spent on it. */
void AudioFileReader::checkLastSample()
{
    if (reader->getFormatName() == oggFormatName || reader->getFormatName() == flacFormatName)
        return;

    stream->forgetPast();
    juce::AudioBuffer<float> lastSample(getNumChannels(), 1);
    reader->read(lastSample.getArrayOfWritePointers(), getNumChannels(), getNumSamples() - 1, 1);
    throwIfCutShort();
}

/** FLAC reads ahead, so that only a read with no bytes at all means that samples are missing; Ogg Vorbis
   reads on to the end of the file in any case. */
void AudioFileReader::throwIfCutShort() const
{
    if (reader->getFormatName() == oggFormatName)
        return;

    const bool missing = reader->getFormatName() == flacFormatName ? stream->emptyRead : stream->partialRead;

    if (missing)
        throw RenderError("'" + path + "' is broken: its data end before the " +
                          secondsText(static_cast<double>(getNumSamples()) / getSampleRate()) +
                          " that its header promises");
}

void AudioFileReader::read(juce::AudioBuffer<float>& block)
{
    const auto available =
        static_cast<int>(std::clamp<std::int64_t>(getNumSamples() - position, 0, block.getNumSamples()));

    block.clear();

    if (available == 0)
        return;

    if (!reader->read(block.getArrayOfWritePointers(), block.getNumChannels(), position, available))
        throw RenderError("'" + path + "' is broken: it cannot be read behind " +
                          secondsText(static_cast<double>(position) / getSampleRate()));

    position += available;
    throwIfCutShort();

    for (int channel = 0; channel < block.getNumChannels(); ++channel)
    {
        const std::span samples(block.getReadPointer(channel), static_cast<std::size_t>(available));

        if (!std::ranges::all_of(samples, [](float sample) { return std::isfinite(sample); }))
            throw RenderError("'" + path + "' is broken: it holds samples that are not finite numbers");
    }
}

} // namespace ambrel::render
