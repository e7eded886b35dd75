#include "tools/render/AudioFileWriter.h"

#include "tools/render/Errors.h"
#include "tools/render/FileOutput.h"
#include "tools/render/FilePaths.h"

namespace ambrel::render
{

/** Lends the file's stream to a format writer, which wants to own its stream and closes it without a word:
    what went wrong in the last bytes is asked of the real one afterwards. */
class AudioFileWriter::ForwardingStream : public juce::OutputStream
{
public:
    explicit ForwardingStream(juce::FileOutputStream& destination) : target(destination) {}

    void flush() override { target.flush(); }
    bool setPosition(juce::int64 newPosition) override { return target.setPosition(newPosition); }
    juce::int64 getPosition() override { return target.getPosition(); }
    bool write(const void* data, size_t numBytes) override { return target.write(data, numBytes); }

private:
    juce::FileOutputStream& target;
};

namespace
{

constexpr int floatBits = 32;

/** The library's own choice of FLAC compression, a good compromise of time and size. */
constexpr int flacCompression = 5;

std::unique_ptr<juce::AudioFormat> createFormat(const std::string& path)
{
    if (fileKindOf(path) == FileKind::flac)
        return std::make_unique<juce::FlacAudioFormat>();
    return std::make_unique<juce::WavAudioFormat>();
}

} // namespace

AudioFileWriter::AudioFileWriter(const std::string& pathToWrite, double sampleRate, int numChannels, int bits)
    : path(pathToWrite), integers(static_cast<std::size_t>(numChannels)),
      temporary(resolveOutputFile(pathToWrite), juce::TemporaryFile::useHiddenFile)
{
    if (bits != floatBits)
        quantiser.emplace(bits);

    stream = std::make_unique<juce::FileOutputStream>(temporary.getFile());

    if (stream->failedToOpen())
        throwWriteError(path, stream->getStatus());

    auto forwarding = std::make_unique<ForwardingStream>(*stream);
    const int quality = fileKindOf(path) == FileKind::flac ? flacCompression : 0;
    writer.reset(createFormat(path)->createWriterFor(forwarding.get(), sampleRate,
                                                     static_cast<unsigned>(numChannels), bits, {}, quality));
    if (writer == nullptr)
        throw RenderError("'" + path + "' cannot be written: the format does not take " +
                          juce::String(sampleRate).toStdString() + " Hz with " + std::to_string(bits) +
                          " bits");

    forwarding.release(); // the writer owns it now
}

AudioFileWriter::~AudioFileWriter() = default;

void AudioFileWriter::write(const juce::AudioBuffer<float>& block, int start, int numSamples)
{
    if (numSamples <= 0)
        return;

    const bool written =
        quantiser ? writeIntegers(block, start, numSamples) : writeFloats(block, start, numSamples);

    if (!written || stream->getStatus().failed())
        throwWriteError(path, stream->getStatus());
}

bool AudioFileWriter::writeIntegers(const juce::AudioBuffer<float>& block, int start, int numSamples)
{
    const auto length = static_cast<std::size_t>(numSamples);
    std::vector<const int*> channels;

    for (std::size_t channel = 0; channel < integers.size(); ++channel)
    {
        integers[channel].resize(length);
        quantiser->convert({block.getReadPointer(static_cast<int>(channel), start), length},
                           integers[channel]);
        channels.push_back(integers[channel].data());
    }
    channels.push_back(nullptr); // the writers look for the end of the list
    return writer->write(channels.data(), numSamples);
}

bool AudioFileWriter::writeFloats(const juce::AudioBuffer<float>& block, int start, int numSamples)
{
    std::vector<const float*> channels;

    for (std::size_t channel = 0; channel < integers.size(); ++channel)
        channels.push_back(block.getReadPointer(static_cast<int>(channel), start));

    channels.push_back(nullptr);
    return writer->writeFromFloatArrays(channels.data(), static_cast<int>(integers.size()), numSamples);
}

void AudioFileWriter::commit()
{
    writer.reset();
    stream->flush();

    if (stream->getStatus().failed())
        throwWriteError(path, stream->getStatus());

    stream.reset();

    if (!temporary.overwriteTargetFileWithTemporary())
        throwWriteError(path, juce::Result::fail("the finished file cannot be given its name"));
}

} // namespace ambrel::render
