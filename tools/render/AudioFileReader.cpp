#include "tools/render/AudioFileReader.h"

#include "tools/render/CodecCheck.h"
#include "tools/render/Errors.h"
#include "tools/render/FilePaths.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <span>

namespace ambrel::render
{

/** A file stream that remembers where it was last sent. The format readers keep the place of their data to
    themselves. */
class AudioFileReader::WatchedStream : public juce::InputStream
{
public:
    explicit WatchedStream(std::unique_ptr<juce::FileInputStream> source) : file(std::move(source)) {}

    juce::int64 getTotalLength() override { return file->getTotalLength(); }
    bool isExhausted() override { return file->isExhausted(); }
    juce::int64 getPosition() override { return file->getPosition(); }
    int read(void* destination, int maxBytes) override { return file->read(destination, maxBytes); }

    bool setPosition(juce::int64 newPosition) override
    {
        lastTarget = newPosition;
        return file->setPosition(newPosition);
    }

    juce::int64 lastTarget = 0; ///< bytes from the file's start

private:
    std::unique_ptr<juce::FileInputStream> file;
};

namespace
{

/** Programs that write to a pipe cannot know the length of what they write, and put a length near the largest
    signed or unsigned number into the header. */
constexpr std::int64_t smallestUnknownLength = 0x7fff0000; // bytes

} // namespace

AudioFileReader::AudioFileReader(const std::string& pathToRead) : path(pathToRead)
{
    formats.registerBasicFormats();
    openStream();
    checkFormat();
    length = reader->lengthInSamples;

    if (isFlac() || isOgg())
        checkCompressedData();
    else
        findEndOfPlainData();
}

AudioFileReader::~AudioFileReader() = default;

bool AudioFileReader::isFlac() const { return reader->getFormatName() == "FLAC file"; }

bool AudioFileReader::isOgg() const { return reader->getFormatName() == "Ogg-Vorbis file"; }

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
        throw RenderError(
            "'" + path + "' is broken or of a kind that cannot be read (WAV, AIFF, FLAC and Ogg Vorbis can)");
}

void AudioFileReader::checkFormat() const
{
    if (reader->lengthInSamples <= 0 || reader->numChannels == 0)
        throw RenderError("'" + path + "' holds no audio");
    if (!(reader->sampleRate > 0.0) || !std::isfinite(reader->sampleRate))
        throw RenderError("'" + path + "' is broken: it has no sample rate");

    // The plain formats hand out uninitialised samples for widths they do not know.
    constexpr unsigned readableWidths[] = {8, 16, 24, 32};
    const bool plain = !isFlac() && !isOgg();

    if (plain && std::ranges::find(readableWidths, reader->bitsPerSample) == std::end(readableWidths))
        throw RenderError("'" + path + "': samples of " + std::to_string(reader->bitsPerSample) +
                          " bits cannot be read");
}

void AudioFileReader::checkCompressedData() const
{
    if (!(isFlac() ? isSoundFlacFile(path) : isSoundOggFile(path)))
        throw RenderError("'" + path + "' is broken: its data are damaged or incomplete");
}

/** Reading the last sample shows where in the file the reader expects it. */
void AudioFileReader::findEndOfPlainData()
{
    const std::int64_t bytesPerFrame = std::int64_t{reader->numChannels} * reader->bitsPerSample / 8;
    juce::AudioBuffer<float> lastSample(getNumChannels(), 1);
    readSamples(lastSample, length - 1, 1);

    const std::int64_t dataStart = stream->lastTarget - (length - 1) * bytesPerFrame;
    const std::int64_t available = (stream->getTotalLength() - dataStart) / bytesPerFrame;

    if (length <= available)
        return;
    if (length * bytesPerFrame < smallestUnknownLength - bytesPerFrame || available < 1)
        throw RenderError("'" + path + "' is broken: it ends behind " + std::to_string(available) +
                          " of the " + std::to_string(length) + " samples that its header promises");
    length = available;
}

void AudioFileReader::readSamples(juce::AudioBuffer<float>& block, std::int64_t start, int numSamples)
{
    if (!reader->read(block.getArrayOfWritePointers(), block.getNumChannels(), start, numSamples))
        throw RenderError("'" + path + "' is broken: it cannot be read from sample " + std::to_string(start));
}

void AudioFileReader::read(juce::AudioBuffer<float>& block)
{
    const auto available =
        static_cast<int>(std::clamp<std::int64_t>(length - position, 0, block.getNumSamples()));

    block.clear();

    if (available == 0)
        return;

    readSamples(block, position, available);
    position += available;

    for (int channel = 0; channel < block.getNumChannels(); ++channel)
    {
        const std::span samples(block.getReadPointer(channel), static_cast<std::size_t>(available));

        if (!std::ranges::all_of(samples, [](float sample) { return std::isfinite(sample); }))
            throw RenderError("'" + path + "' is broken: it holds samples that are not finite numbers");
    }
}

} // namespace ambrel::render
