#include "tests/render/TestAudio.h"

#include "tools/render/AudioFileReader.h"
#include "tools/render/AudioFileWriter.h"
#include "tools/render/Errors.h"
#include "tools/render/Quantiser.h"

#include <cstdint>
#include <limits>

namespace ambrel::render::test
{
namespace
{
float largestDifference(const juce::AudioBuffer<float>& a, juce::AudioBuffer<float> b, int samples)
{
    for (int channel = 0; channel < a.getNumChannels(); ++channel)
        b.addFrom(channel, 0, a, channel, 0, samples, -1.0f);
    return b.getMagnitude(0, samples);
}

/** A WAV file with a header of any claim. */
std::string wavFile(int format, int channels, int rate, int bits, const std::string& data,
                    std::uint32_t claimedBytes)
{
    const auto number = [](auto value, int bytes)
    {
        std::string text;
        for (int i = 0; i < bytes; ++i)
            text += static_cast<char>(value >> (8 * i));
        return text;
    };
    const int frame = channels * bits / 8;
    return "RIFF" + number(claimedBytes + 36, 4) + "WAVEfmt " + number(16, 4) + number(format, 2) +
           number(channels, 2) + number(rate, 4) + number(rate * frame, 4) + number(frame, 2) +
           number(bits, 2) + "data" + number(claimedBytes, 4) + data;
}
} // namespace

TEST(AudioFileReader, readsEveryFormatInBlocksAndThenSilence)
{
    constexpr int length = 10000;
    constexpr int blockSize = 768;
    for (const auto& [name, channels, bits, tolerance] : {std::tuple{"a.wav", 1, 8, 0.008f},
                                                          {"a.wav", 2, 16, 3.1e-5f},
                                                          {"a.wav", 1, 32, 0.0f},
                                                          {"a.aiff", 2, 16, 3.1e-5f},
                                                          {"a.flac", 2, 16, 3.1e-5f},
                                                          {"a.ogg", 2, 32, 0.15f}})
    {
        SCOPED_TRACE(name + std::to_string(bits));
        const TemporaryFolder folder;
        const auto sine = createSine(channels, length, 997.0, 44100.0);
        AudioFileReader file(writeAudio(folder.path(name), sine, 44100.0, bits));
        EXPECT_EQ(file.getNumChannels(), channels);
        EXPECT_EQ(file.getSampleRate(), 44100.0);
        ASSERT_EQ(file.getNumSamples(), length);

        juce::AudioBuffer<float> whole(channels, 15 * blockSize);
        for (int start = 0; start < whole.getNumSamples(); start += blockSize)
        {
            juce::AudioBuffer<float> block(whole.getArrayOfWritePointers(), channels, start, blockSize);
            file.read(block);
        }
        EXPECT_LE(largestDifference(sine, whole, length), tolerance);
        EXPECT_EQ(whole.getMagnitude(length, whole.getNumSamples() - length), 0.0f);
    }
}

TEST(AudioFileReader, refusesWhatCannotBeReadWithTheReason)
{
    const TemporaryFolder folder;
    writeAudio(folder.path("whole.flac"), createNoise(2, 20000), 48000.0, 16);
    writeAudio(folder.path("whole.ogg"), createNoise(2, 100000), 48000.0, 32);
    const auto hurt = [&](const char* name)
    {
        std::string content = folder.read(name);
        for (std::size_t i = 0; i < 200; ++i)
            content[content.size() / 2 + i] ^= 0x5a;
        return content;
    };
    const std::string samples(2000, '\1');
    const std::string notANumber("\0\0\xc0\x7f\0\0\0\x3f", 8);
    struct Row
    {
        const char* name;
        std::string content, reason;
    };
    const Row rows[] = {
        {"empty.wav", "", "is empty"},
        {"text.wav", "no audio at all, but some text", "is broken or of a kind"},
        {"header.wav", wavFile(1, 1, 48000, 16, "", 0), "holds no audio"},
        {"cut.wav", wavFile(1, 1, 48000, 16, samples, 4000), "ends behind 1000 of the 2000 samples"},
        {"odd.wav", wavFile(1, 1, 48000, 12, samples, 2000), "samples of 12 bits"},
        {"rate.wav", wavFile(1, 1, 0, 16, samples, 2000), "is broken or of a kind"},
        {"nan.wav", wavFile(3, 1, 48000, 32, notANumber, 8), "not finite"},
        {"cut.flac", folder.read("whole.flac").substr(0, 10000), "damaged or incomplete"},
        {"hurt.flac", hurt("whole.flac"), "damaged or incomplete"},
        {"hurt.ogg", hurt("whole.ogg"), "damaged or incomplete"},
    };

    const auto errorOf = [](const std::string& path) -> std::string
    {
        try
        {
            AudioFileReader file(path);
            juce::AudioBuffer<float> block(file.getNumChannels(), 100);
            file.read(block);
        }
        catch (const RenderError& error)
        {
            return error.what();
        }
        return "";
    };
    for (const Row& row : rows)
    {
        folder.write(row.name, row.content);
        const std::string error = errorOf(folder.path(row.name));
        EXPECT_NE(error.find(row.reason), std::string::npos) << row.name << ": " << error;
        EXPECT_NE(error.find(row.name), std::string::npos) << row.name << ": " << error;
    }

    EXPECT_NE(errorOf(folder.path("missing.wav")).find("no such file"), std::string::npos);
    EXPECT_NE(errorOf(folder.path("")).find("is a folder"), std::string::npos);
    EXPECT_EQ(errorOf(folder.path("whole.flac")) + errorOf(folder.path("whole.ogg")), "");
}

/** Programs that write to a pipe cannot know the length. */
TEST(AudioFileReader, takesWhatIsThereIfTheLengthWasNotKnown)
{
    const TemporaryFolder folder;
    for (const std::uint32_t unknown : {0xffffffffu, 0x7ffff000u})
    {
        folder.write("pipe.wav", wavFile(1, 1, 48000, 16, std::string(2000, '\1'), unknown));
        EXPECT_EQ(AudioFileReader(folder.path("pipe.wav")).getNumSamples(), 1000);
    }
}

TEST(AudioFileWriter, writesEveryWidthAsAsked)
{
    // With dither up to one and a half steps.
    for (const auto& [name, bits, tolerance] : {std::tuple{"a.wav", 16, 1.5f / 32768.0f},
                                                {"a.wav", 24, 0.5f / 8388608.0f},
                                                {"a.wav", 32, 0.0f},
                                                {"a.flac", 16, 1.5f / 32768.0f},
                                                {"A.FLAC", 24, 0.5f / 8388608.0f}})
    {
        SCOPED_TRACE(name + std::to_string(bits));
        const TemporaryFolder folder;
        const auto noise = createNoise(2, 5000);
        AudioFileWriter file(folder.path(name), 96000.0, 2, bits);
        file.write(noise, 0, 1);
        file.write(noise, 1, 4999);
        EXPECT_FALSE(folder.contains(name)) << "must not appear before it is whole";
        file.commit();

        EXPECT_EQ(folder.count(), 1);
        const ReadAudio audio = readAudio(folder.path(name));
        ASSERT_EQ(audio.samples.getNumSamples(), 5000);
        EXPECT_EQ(audio.rate, 96000.0);
        EXPECT_EQ(audio.bits, bits);
        EXPECT_EQ(audio.isFloat, bits == 32);
        EXPECT_LE(largestDifference(noise, audio.samples, 5000), tolerance * 1.001f);
        EXPECT_EQ(file.getNumClipped(), 0);
    }
}

TEST(AudioFileWriter, followsLinksAndRefusesWhatTheFormatDoesNotTake)
{
    const TemporaryFolder folder;
    folder.write("a.wav", "old");
    folder.get("a.wav").createSymbolicLink(folder.get("link.wav"), false);
    AudioFileWriter file(folder.path("link.wav"), 48000.0, 1, 16);
    file.write(createNoise(1, 100), 0, 100);
    file.commit();
    EXPECT_TRUE(folder.get("link.wav").isSymbolicLink());
    EXPECT_EQ(readAudio(folder.path("a.wav")).samples.getNumSamples(), 100);

    EXPECT_THROW(AudioFileWriter(folder.path("a.flac"), 1e6, 1, 16), RenderError) << "no FLAC has this rate";
    EXPECT_EQ(folder.count(), 2) << "something was left behind";
}

TEST(Quantiser, clipsAndCounts)
{
    std::vector<int> integers(5);
    Quantiser quantiser(24);
    quantiser.convert(std::vector<float>{1.0f, -1.0f, 1.5f, -1.5f, 0.999f}, integers);
    EXPECT_EQ(quantiser.getNumClipped(), 3); // full scale itself lies one step above the range
    EXPECT_EQ(integers[2], 0x7fffff00);
    EXPECT_EQ(integers[3], std::numeric_limits<int>::min());
}

/** A level of a third of a step is lost without dither; with it the mean tells the level, and the error has the
    variance of triangular dither and rounding together, 1/6 + 1/12 steps squared. */
TEST(Quantiser, dithersSixteenBits)
{
    constexpr std::size_t length = 200000;
    constexpr double level = 1.0 / 3.0;
    const std::vector<float> constant(length, static_cast<float>(level / 32768.0));
    std::vector<int> integers(length);
    Quantiser(16).convert(constant, integers);

    double sum = 0.0;
    double squares = 0.0;
    for (const int value : integers)
    {
        const double step = static_cast<double>(value) / 65536.0;
        sum += step;
        squares += (step - level) * (step - level);
    }
    EXPECT_NEAR(sum / length, level, 0.005);
    EXPECT_NEAR(squares / length, 0.25, 0.005);

    Quantiser(16).convert(std::vector<float>(length, 0.0f), integers);
    EXPECT_EQ(integers, std::vector<int>(length, 0)) << "digital silence stays silent";
}

} // namespace ambrel::render::test
