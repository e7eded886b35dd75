#include "tests/render/TestAudio.h"
#include "tests/render/program/RunProgram.h"

#include <algorithm>

namespace ambrel::render::test
{
namespace
{
bool isOneLine(const std::string& text)
{
    return !text.empty() && text.back() == '\n' && std::ranges::count(text, '\n') == 1;
}

class Program : public testing::Test
{
protected:
    Outcome run(const std::vector<std::string>& arguments, const RunOptions& options = {}) const
    {
        return test::run(home, arguments, options);
    }

    /** What the program prints about a room; with --quiet nothing else. */
    juce::var reportOf(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.end(), {"--report=json", "-q"});
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.error, "");
        return juce::JSON::parse(juce::String(outcome.output));
    }

    std::string in(const std::string& name) const { return folder.path(name); }

    const TemporaryFolder home;
    const TemporaryFolder folder;
};
} // namespace

TEST_F(Program, rendersFilesWithATail)
{
    for (const auto& [input, channels, bits, rate, output, outputBits] :
         {std::tuple{"a.wav", 1, 16, 44100.0, "b.wav", 24},
          {"a.wav", 2, 16, 8000.0, "b.wav", 32},
          {"a.flac", 2, 24, 96000.0, "b.flac", 24},
          {"a.ogg", 2, 32, 48000.0, "b.wav", 16}})
    {
        SCOPED_TRACE(input);
        const int length = static_cast<int>(rate);
        writeAudio(in(input), createSine(channels, length, 440.0, rate), rate, bits);
        const Outcome outcome =
            run({in(input), "-o", in(output), "--mix", "50", "--bits", std::to_string(outputBits)});
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        EXPECT_TRUE(isOneLine(outcome.output)) << outcome.output;

        const ReadAudio audio = readAudio(in(output));
        ASSERT_EQ(audio.samples.getNumChannels(), channels);
        EXPECT_EQ(audio.rate, rate);
        EXPECT_EQ(audio.bits, outputBits);
        const int tailLength = audio.samples.getNumSamples() - length;
        ASSERT_GT(tailLength, length / 2);
        const auto getLevel = [&, quarter = tailLength / 4](int start)
        { return audio.samples.getRMSLevel(0, length + start * quarter, quarter); };
        EXPECT_GT(getLevel(0), 30.0f * getLevel(3)) << "the tail falls";
    }
}

TEST_F(Program, mixGoesFromTheDrySignalToTheRoomAlone)
{
    juce::AudioBuffer<float> click(2, 4800);
    click.clear();
    for (const int channel : {0, 1})
        click.setSample(channel, 100, 0.5f);
    writeAudio(in("click.wav"), click, 48000.0, 32);
    const auto render = [&](const std::vector<std::string>& options)
    {
        std::vector<std::string> arguments{in("click.wav"), "-o", in("out.wav"), "-b32", "-q"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(run(arguments).status, 0);
        return readAudio(in("out.wav")).samples;
    };

    EXPECT_NEAR(render({"--mix", "0"}).getSample(0, 100), 0.5f, 0.01f);
    EXPECT_NEAR(render({"--mix", "100", "--set", "preDelay=50"}).getSample(0, 100), 0.5f * 0.00398f, 1e-5f);
    EXPECT_EQ(render({"--set", "preDelay=50", "-s", "muteDry=on"}).getMagnitude(0, 2400), 0.0f);
    EXPECT_EQ(render({"--tail=0.5"}).getNumSamples(), 4800 + 24000);

    // A longer, darker room has a longer tail.
    EXPECT_GT(render({"--mix", "100", "-c", "90"}).getNumSamples(),
              3 * render({"--mix", "100", "-c", "10"}).getNumSamples());
}

TEST_F(Program, theSameCommandGivesTheSameBytesAloneAndInABatch)
{
    writeAudio(in("one.wav"), createNoise(2, 30000), 48000.0, 16);
    writeAudio(in("two.flac"), createNoise(2, 30000), 44100.0, 16);
    ASSERT_EQ(run({in("one.wav"), in("two.flac"), "-d", in("new/folder"), "-b", "16"}).status, 0);
    for (const std::string name : {"one.wav", "two.flac"})
    {
        ASSERT_EQ(run({in(name), "-o", in("again " + name), "-b", "16"}).status, 0);
        EXPECT_FALSE(folder.read("again " + name).empty());
        EXPECT_EQ(folder.read("new/folder/" + name), folder.read("again " + name));
    }
}

TEST_F(Program, whatCannotBeDoneIsOneLineAndAStatus)
{
    writeAudio(in("good.wav"), createSine(1, 4800, 440.0, 48000.0), 48000.0, 16);
    writeAudio(in("surround.wav"), createSine(6, 4800, 440.0, 48000.0), 48000.0, 16);
    folder.write("empty.wav", "");
    folder.write("broken.xml", "no preset");
    folder.write("unknown.xml",
                 "<Preset><ParameterSettings><Parameter id='99' value='1'/></ParameterSettings></Preset>");
    folder.get("folder.wav").createDirectory();
    const auto before = folder.count();

    struct Row
    {
        std::vector<std::string> arguments;
        int status;
        std::string reason;
    };
    const std::string good = in("good.wav");
    const std::string out = in("out.wav");
    const Row rows[] = {
        {{}, 2, "nothing to do"},
        {{in("missing.wav"), "-o", out}, 1, "no such file"},
        {{in("surround.wav"), "-o", out}, 1, "has 6 channels"},
        {{good, "-o", good}, 1, "is the input itself"},
        {{good, "-d", in("")}, 1, "is the input itself"},
        {{good, "-o", in("none/out.wav")}, 1, "there is no folder"},
        {{good, "-o", in("folder.wav")}, 1, "is a folder"},
        {{good, "-d", good}, 1, "cannot be made"},
        {{good, "-o", out, "--preset", "No such room"}, 1, "no preset"},
        {{good, "-o", out, "--preset", in("broken.xml")}, 1, "no preset file"},
        {{good, "-o", out, "--preset", in("unknown.xml")}, 1, "parameter that does not exist"},
        {{good, "-o", out, "--state", in("missing")}, 1, "cannot be read"},
        {{good, "-o", out, "--state", in("broken.xml")}, 1, "not a state"},
        {{"--report=" + in("none/room.json"), "--impulse", "0.1"}, 1, "there is no folder"},
    };
    for (const Row& row : rows)
    {
        const Outcome outcome = run(row.arguments);
        EXPECT_EQ(outcome.status, row.status) << row.reason;
        EXPECT_TRUE(isOneLine(outcome.error)) << outcome.error;
        EXPECT_TRUE(outcome.error.starts_with("ambrel-render: ")) << outcome.error;
        EXPECT_NE(outcome.error.find(row.reason), std::string::npos) << outcome.error;
        EXPECT_EQ(outcome.output, "");
        EXPECT_EQ(folder.count(), before) << "something was left behind: " << row.reason;
    }

    EXPECT_EQ(run({in("empty.wav"), good, "-d", in("out")}).status, 1);
    EXPECT_TRUE(folder.contains("out/good.wav")) << "one bad file does not stop the others";
}

TEST_F(Program, aFullDiskLeavesNothingBehind)
{
    writeAudio(in("in.wav"), createNoise(2, 96000), 48000.0, 16);
    for (const char* name : {"out.wav", "out.flac"})
    {
        const Outcome outcome = run({in("in.wav"), "-o", in(name)}, {{}, 100000});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_NE(outcome.error.find("cannot be written"), std::string::npos) << outcome.error;
        EXPECT_EQ(folder.count(), 1);
    }
}

TEST_F(Program, anInterruptLeavesNothingBehindAndTheOldFileInPlace)
{
    writeAudio(in("in.wav"), createNoise(2, 4800), 48000.0, 16);
    folder.write("out.wav", "old");

    // Blocks of one sample and a tail of ten minutes are more than enough work to be interrupted in.
    const auto workFileExists = [&] { return folder.count() > 2; };
    const Outcome outcome =
        run({in("in.wav"), "-o", in("out.wav"), "--block=1", "--tail=600"}, {workFileExists});
    EXPECT_EQ(outcome.status, 128 + SIGINT);
    EXPECT_TRUE(isOneLine(outcome.error)) << outcome.error;
    EXPECT_EQ(folder.read("out.wav"), "old");
    EXPECT_EQ(folder.count(), 2);
}

TEST_F(Program, settingsApplyInTheirOrder)
{
    folder.write("Cave.xml", "<Preset><ParameterSettings><Parameter id='2' value='7.5'/>"
                             "<Parameter id='7' value='90'/></ParameterSettings></Preset>");
    ASSERT_EQ(run({"--character", "75", "--save-preset", in("Mine.xml")}).status, 0);

    // A host's state: magic, code, version, one entry: the reverb time, 3 s.
    folder.write("state", std::string("KSEVRBMA\3\0\1\0\1\0\0\0\2\0\0\0\0\0\x40\x40", 24));

    struct Row
    {
        std::vector<std::string> arguments;
        std::vector<std::pair<const char*, float>> settings;
    };
    const Row rows[] = {
        {{}, {{"reverbTime", 2.4f}, {"muteDry", 1.0f}, {"wetGain", 0.0f}}},
        {{"--preset", "default HALL"}, {{"reverbTime", 2.4f}}},
        {{"-p", in("Mine.xml")}, {{"reverbTime", 6.0f}}},
        {{"--set", "stereoSpread=40", "--preset", in("Cave.xml")},
         {{"reverbTime", 7.5f}, {"roomSize", 90.0f}, {"stereoSpread", 40.0f}}},
        {{"--state", in("state"), "--preset", in("Cave.xml")}, {{"reverbTime", 3.0f}, {"roomSize", 90.0f}}},
        {{"--set=wetGain=-3", "-c", "50", "--mix", "30", "--state", in("state")},
         {{"reverbTime", 4.0f}, {"lowPassFrequency", 500.0f / 0.55f}, {"wetGain", -3.0f}}}};
    for (const Row& row : rows)
    {
        auto arguments = row.arguments;
        arguments.insert(arguments.end(), {"--impulse", "0.05"});
        const juce::var report = reportOf(arguments);
        for (const auto& [name, value] : row.settings)
            EXPECT_FLOAT_EQ(static_cast<float>(report["settings"][name]), value) << name;
    }
}

TEST_F(Program, pagesGoToStandardOutput)
{
    for (const char* page : {"--help", "--version", "--list-presets", "--list-parameters"})
    {
        const Outcome outcome = run({page});
        EXPECT_EQ(outcome.status, 0) << page;
        EXPECT_FALSE(outcome.output.empty()) << page;
        EXPECT_EQ(outcome.error, "") << page;
    }
    EXPECT_EQ(run({"--help"}, {{}, 10}).status, 1) << "a page that cannot be written";
}

TEST_F(Program, writesTheRoomsImpulseResponse)
{
    const Outcome outcome = run({"-i", "1.5", "-r", "44100", "-o", in("room.wav"), "--plot", in("room.png"),
                                 "--report=" + in("room.json"), "--preset", "Reset", "-s", "preDelay=20"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;
    EXPECT_EQ(juce::JSON::parse(juce::File(in("room.json")))["preset"].toString(), "Reset");
    EXPECT_TRUE(folder.read("room.png").starts_with("\x89PNG"));

    const ReadAudio room = readAudio(in("room.wav"));
    EXPECT_EQ(room.samples.getNumSamples(), 66150);
    EXPECT_EQ(room.rate, 44100.0);
    EXPECT_TRUE(room.isFloat);
    EXPECT_EQ(room.samples.getMagnitude(0, 800), 0.0f) << "no dry signal, and a pre-delay";
}

} // namespace ambrel::render::test
