#include "tests/render/program/RunProgram.h"

#include "reverb/ParameterTable.h"

#include <juce_core/juce_core.h>

#include <algorithm>

namespace ambrel::render::test
{

namespace
{

double rmsOf(const juce::AudioBuffer<float>& audio, int start, int length)
{
    double sum = 0.0;
    for (int channel = 0; channel < audio.getNumChannels(); ++channel)
        sum += std::pow(static_cast<double>(audio.getRMSLevel(channel, start, length)), 2.0);
    return std::sqrt(sum / audio.getNumChannels());
}

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

    /** Settings as the program reports them. */
    juce::var settingsWith(std::vector<std::string> arguments) const
    {
        arguments.insert(arguments.end(), {"--report=json", "--impulse", "0.05"});
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 0) << outcome.error;
        return juce::JSON::parse(juce::String(outcome.output))["settings"];
    }

    std::string in(const std::string& name) const { return folder.path(name); }

    const TestFolder home;
    const TestFolder folder;
};

} // namespace

TEST_F(Program, rendersEveryKindOfFileWithATail)
{
    struct Row
    {
        const char* input;
        int channels;
        int bits;
        double rate;
        const char* output;
        std::vector<std::string> options;
        int outputBits;
    };

    const Row rows[] = {{"a.wav", 1, 16, 44100.0, "b.wav", {}, 24},
                        {"a.wav", 2, 24, 48000.0, "b.wav", {"--bits", "16"}, 16},
                        {"a.wav", 2, 16, 8000.0, "b.wav", {"--bits=32"}, 32},
                        {"a.flac", 2, 24, 96000.0, "b.flac", {}, 24},
                        {"a.aiff", 1, 24, 22050.0, "b.flac", {"--bits", "16"}, 16},
                        {"a.ogg", 2, 32, 48000.0, "b.wav", {}, 24}};

    for (const Row& row : rows)
    {
        const int length = static_cast<int>(row.rate);
        writeAudio(in(row.input), createSine(row.channels, length, 440.0, row.rate), row.rate, row.bits);
        std::vector<std::string> arguments{in(row.input), "-o", in(row.output), "--mix", "50"};
        arguments.insert(arguments.end(), row.options.begin(), row.options.end());
        const Outcome outcome = run(arguments);

        EXPECT_EQ(outcome.status, 0) << row.input << ": " << outcome.error;
        EXPECT_TRUE(isOneLine(outcome.output)) << outcome.output;
        for (const char* text : {row.output, " s, peak -", "RMS -", "LUFS", "times real time"})
            EXPECT_NE(outcome.output.find(text), std::string::npos) << outcome.output;

        const ReadAudio audio = readAudio(in(row.output));
        ASSERT_EQ(audio.samples.getNumChannels(), row.channels) << row.input;
        EXPECT_EQ(audio.rate, row.rate);
        EXPECT_EQ(audio.bits, row.outputBits);
        EXPECT_EQ(audio.isFloat, row.outputBits == 32);

        // The tail is there and falls.
        const int tailLength = audio.samples.getNumSamples() - length;
        ASSERT_GT(tailLength, length / 2) << row.input;
        EXPECT_GT(rmsOf(audio.samples, length, tailLength / 4),
                  30.0 * rmsOf(audio.samples, length + 3 * tailLength / 4, tailLength / 4));
    }
}

TEST_F(Program, mixGoesFromTheDrySignalToTheRoomAlone)
{
    const auto click = [&]
    {
        juce::AudioBuffer<float> audio(2, 4800);
        audio.clear();
        audio.setSample(0, 100, 0.5f);
        audio.setSample(1, 100, 0.5f);
        return audio;
    }();
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
    EXPECT_EQ(render({"--tail", "0"}).getNumSamples(), 4800);
    EXPECT_EQ(render({"--tail=0.5"}).getNumSamples(), 4800 + 24000);

    // A longer, darker room has a longer tail.
    EXPECT_GT(render({"--mix", "100", "-c", "90"}).getNumSamples(),
              3 * render({"--mix", "100", "-c", "10"}).getNumSamples());
}

TEST_F(Program, theSameCommandGivesTheSameBytesAloneAndInABatch)
{
    const auto noise = createNoise(2, 30000);
    writeAudio(in("one.wav"), noise, 48000.0, 16);
    writeAudio(in("two.flac"), noise, 44100.0, 16);

    ASSERT_EQ(run({in("one.wav"), in("two.flac"), "-d", in("new/folder"), "-b", "16"}).status, 0);
    ASSERT_EQ(run({in("two.flac"), "-o", in("two again.flac"), "-b", "16"}).status, 0);
    ASSERT_EQ(run({in("one.wav"), "-o", in("one again.wav"), "-b", "16"}).status, 0);

    EXPECT_FALSE(folder.read("new/folder/one.wav").empty());
    EXPECT_EQ(folder.read("new/folder/one.wav"), folder.read("one again.wav"));
    EXPECT_EQ(folder.read("new/folder/two.flac"), folder.read("two again.flac"));
}

TEST_F(Program, whatCannotBeDoneIsOneLineAndAStatus)
{
    writeAudio(in("good.wav"), createSine(1, 4800, 440.0, 48000.0), 48000.0, 16);
    writeAudio(in("surround.wav"), createSine(6, 4800, 440.0, 48000.0), 48000.0, 16);
    folder.write("empty.wav", "");
    folder.write("broken.xml", "no preset");
    folder.write(
        "unknown.xml",
        "<Preset><ParameterSettings><Parameter id=\"99\" value=\"1\"/></ParameterSettings></Preset>");
    const auto before = folder.list().size();

    struct Row
    {
        std::vector<std::string> arguments;
        int status;
        std::string reason;
    };

    const std::string out = in("out.wav");
    const Row rows[] = {
        {{}, 2, "nothing to do"},
        {{in("missing.wav"), "-o", out}, 1, "no such file"},
        {{in("surround.wav"), "-o", out}, 1, "has 6 channels"},
        {{in("good.wav"), "-o", in("good.wav")}, 1, "is the input itself"},
        {{in("good.wav"), "-d", in("")}, 1, "is the input itself"},
        {{in("good.wav"), "-o", in("none/out.wav")}, 1, "there is no folder"},
        {{in("good.wav"), "-d", in("good.wav")}, 1, "cannot be made"},
        {{in("good.wav"), "-o", out, "--preset", "No such room"}, 1, "no preset"},
        {{in("good.wav"), "-o", out, "--preset", in("broken.xml")}, 1, "no preset file"},
        {{in("good.wav"), "-o", out, "--preset", in("unknown.xml")}, 1, "parameter that does not exist"},
        {{in("good.wav"), "-o", out, "--state", in("missing")}, 1, "cannot be read"},
        {{in("good.wav"), "-o", out, "--state", in("broken.xml")}, 1, "not a state"},
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
        EXPECT_EQ(folder.list().size(), before) << "something was left behind: " << row.reason;
    }

    const Outcome mixed = run({in("empty.wav"), in("good.wav"), "-d", in("out")});
    EXPECT_EQ(mixed.status, 1);
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
        EXPECT_EQ(folder.list(), std::vector<std::string>{"in.wav"});
    }
}

TEST_F(Program, anInterruptLeavesNothingBehindAndTheOldFileInPlace)
{
    writeAudio(in("in.wav"), createNoise(2, 4800), 48000.0, 16);
    folder.write("out.wav", "old");

    // Blocks of one sample and a tail of ten minutes are more than enough work to be interrupted in.
    const auto workFileExists = [&] { return folder.list().size() > 2; };
    const Outcome outcome =
        run({in("in.wav"), "-o", in("out.wav"), "--block=1", "--tail=600"}, {workFileExists, {}});

    EXPECT_EQ(outcome.status, 128 + SIGINT);
    EXPECT_TRUE(isOneLine(outcome.error)) << outcome.error;
    EXPECT_EQ(folder.read("out.wav"), "old");
    EXPECT_EQ(folder.list().size(), 2u);
}

TEST_F(Program, settingsApplyInTheirOrder)
{
    const juce::var fresh = settingsWith({});
    EXPECT_EQ(static_cast<double>(fresh["muteDry"]), 1.0);
    EXPECT_EQ(static_cast<double>(fresh["wetGain"]), 0.0);

    const std::string preset = folder.write("Cave.xml", "<Preset><ParameterSettings>"
                                                        "<Parameter id=\"2\" value=\"7.5\"/>"
                                                        "<Parameter id=\"7\" value=\"90\"/>"
                                                        "</ParameterSettings></Preset>");
    const juce::var cave = settingsWith({"--set", "stereoSpread=40", "--preset", preset});
    EXPECT_EQ(static_cast<double>(cave["reverbTime"]), 7.5);
    EXPECT_EQ(static_cast<double>(cave["roomSize"]), 90.0);
    EXPECT_EQ(static_cast<double>(cave["stereoSpread"]), 40.0);

    // A host's state: magic, code, version, one entry: the reverb time.
    std::string state("KSEVRBMA\3\0\1\0\1\0\0\0\2\0\0\0", 20);
    const float stateTime = 3.0f;
    state.append(reinterpret_cast<const char*>(&stateTime), 4);
    const std::string stateFile = folder.write("state", state);
    const juce::var restored = settingsWith({"--state", stateFile, "--preset", preset});
    EXPECT_EQ(static_cast<double>(restored["reverbTime"]), 3.0) << "the state comes behind the preset";
    EXPECT_EQ(static_cast<double>(restored["roomSize"]), 90.0);

    const juce::var turned =
        settingsWith({"--set=wetGain=-3", "-c", "50", "--mix", "30", "--state", stateFile});
    EXPECT_EQ(static_cast<double>(turned["reverbTime"]), 4.0);
    EXPECT_NEAR(static_cast<double>(turned["lowPassFrequency"]), 500.0 / 0.55, 0.01);
    EXPECT_EQ(static_cast<double>(turned["wetGain"]), -3.0) << "single parameters come last";
}

TEST_F(Program, presetsAreListedSavedAndLoaded)
{
    const Outcome list = run({"--list-presets"});
    EXPECT_NE(list.output.find("Default hall\n"), std::string::npos) << list.output;
    EXPECT_NE(list.output.find("Reset\n"), std::string::npos) << list.output;
    EXPECT_EQ(settingsWith({"--preset", "default HALL"})["reverbTime"], settingsWith({})["reverbTime"]);

    ASSERT_EQ(run({"--character", "75", "--save-preset", in("Mine.xml")}).status, 0);
    EXPECT_NEAR(static_cast<double>(settingsWith({"-p", in("Mine.xml")})["reverbTime"]), 6.0, 1e-4);
}

TEST_F(Program, pagesGoToStandardOutput)
{
    const Outcome help = run({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.starts_with("Usage: ambrel-render"));
    EXPECT_EQ(help.error, "");
    EXPECT_EQ(run({"--help"}, {{}, 10}).status, 1) << "a page that cannot be written";
    EXPECT_EQ(run({"--version"}).output, "ambrel-render " AMBREL_VERSION "\n");

    const Outcome parameters = run({"--list-parameters"});
    for (const vesk::audio::ParameterInfo& info : vesk::audio::parameterTable)
        EXPECT_NE(parameters.output.find(std::string("\n") + info.name + " "), std::string::npos)
            << info.name;
}

TEST_F(Program, quietPrintsOnlyWhatWasAskedFor)
{
    writeAudio(in("in.wav"), createSine(1, 4800, 440.0, 48000.0), 48000.0, 16);
    const Outcome quiet = run({in("in.wav"), "-o", in("out.wav"), "--quiet"});
    EXPECT_EQ(quiet.output + quiet.error, "");
    EXPECT_EQ(quiet.status, 0);

    const Outcome report = run({"-q", "--report=json", "--impulse=0.2"});
    EXPECT_TRUE(juce::JSON::parse(juce::String(report.output)).isObject());
    EXPECT_EQ(report.error, "");
}

/** The default and three corners: what is heard has the decay that was set, starts dense soon, and is as wide as set. */
TEST_F(Program, roomsAreWhatTheirSettingsSay)
{
    struct Row
    {
        const char* preset;
        std::vector<std::string> settings;
        double time;         ///< T30 of the octave at 1 kHz, seconds
        double duration;     ///< of the response, seconds
        double latestMixing; ///< seconds
        double leastCorrelation, mostCorrelation;
    };
    const Row rows[] = {
        {"Default hall", {}, 2.4, 5.0, 0.1, 0.0, 0.1},
        {"Reset", {"roomSize=0", "reverbTime=0.5", "modulationDepth=0"}, 0.5, 1.5, 0.06, 0.0, 0.2},
        {"Reset",
         {"roomSize=100", "reverbTime=8", "lowTimeScale=150", "modulationDepth=100"},
         8.0,
         12.0,
         0.1,
         0.0,
         0.2},
        {"Reset", {"stereoSpread=0", "preDelay=500", "reverbTime=1"}, 1.0, 3.0, 0.6, 0.999, 1.0}};

    for (const Row& row : rows)
    {
        std::vector<std::string> arguments{
            "-q", "-p",          row.preset, "-i", std::to_string(row.duration), "--report=json",
            "-o", in("room.wav")};
        for (const auto& setting : row.settings)
            arguments.insert(arguments.end(), {"-s", setting});
        const juce::var report = juce::JSON::parse(juce::String(run(arguments).output));

        const auto number = [](const juce::var& value)
        { return value.isDouble() || value.isInt() ? static_cast<double>(value) : NAN; };
        EXPECT_NEAR(number(report["octaves"][4]["t30"]), row.time, 0.1 * row.time);
        EXPECT_LT(number(report["mixingTime"]), row.latestMixing);
        EXPECT_GE(number(report["correlation"]["late"]), row.leastCorrelation);
        EXPECT_LE(number(report["correlation"]["late"]), row.mostCorrelation);

        double balance = 0.0;
        const juce::var windows = report["balance"]["values"];
        for (int i = 0; i < windows.size(); ++i)
            balance += number(windows[i]) / windows.size();
        EXPECT_NEAR(balance, 0.0, 0.5);

        // While the late tail is loud, single windows scatter about 1.
        const auto from = static_cast<int>((row.latestMixing + 0.1) / 0.001);
        double density = 0.0;
        for (int i = from; i < from + 100; ++i)
            density += number(report["echoDensity"]["values"][i]) / 100.0;
        EXPECT_NEAR(density, 1.0, 0.05);

        const auto audio = readAudio(in("room.wav")).samples;
        EXPECT_EQ(audio.getNumChannels(), 2);
        const float peak = audio.getMagnitude(0, audio.getNumSamples());
        EXPECT_TRUE(peak > 0.001f && peak < 1.0f) << peak;
        EXPECT_TRUE(std::isfinite(rmsOf(audio, 0, audio.getNumSamples())));
    }
}

TEST_F(Program, writesTheRoomsImpulseResponse)
{
    const Outcome outcome = run({"-i", "1.5", "-r", "44100", "-o", in("room.wav"), "--plot", in("room.png"),
                                 "--report=" + in("room.json"), "--preset", "Reset", "-s", "preDelay=20",
                                 "-s", "earlyLevel=-48", "-s", "reverbTime=1"});
    ASSERT_EQ(outcome.status, 0) << outcome.error;

    const ReadAudio room = readAudio(in("room.wav"));
    ASSERT_EQ(room.samples.getNumChannels(), 2);
    EXPECT_EQ(room.samples.getNumSamples(), 66150);
    EXPECT_EQ(room.rate, 44100.0);
    EXPECT_TRUE(room.isFloat);
    EXPECT_EQ(room.samples.getMagnitude(0, 800), 0.0f) << "no dry signal, and a pre-delay";
    EXPECT_GT(room.samples.getMagnitude(0, 66150), 0.001f);

    const juce::var report = juce::JSON::parse(juce::File(in("room.json")));
    EXPECT_EQ(report["preset"].toString(), "Reset");
    EXPECT_NEAR(static_cast<double>(report["octaves"][4]["t30"]), 1.0, 0.1) << "1 kHz";
    EXPECT_TRUE(folder.read("room.png").starts_with("\x89PNG"));

    // An impulse in one channel only.
    ASSERT_EQ(run({"-i", "0.5", "--impulse-from", "left", "-o", in("left.flac"), "-q"}).status, 0);
    EXPECT_EQ(readAudio(in("left.flac")).bits, 24);
}

} // namespace ambrel::render::test
