#include "tools/render/CommandLine.h"
#include "reverb/Reverberation.h"
#include "tools/render/Errors.h"

#include <gtest/gtest.h>

namespace ambrel::render
{

using vesk::audio::Reverberation;

TEST(CommandLine, takesBothFormsOfEveryValue)
{
    const Options spaced = parseCommandLine({"in.wav", "--output", "out.flac", "--character", "12.5", "--set",
                                             "reverbTime=4.2", "-s", "muteDry=on", "--tail", "3", "-b16"});
    const Options joined = parseCommandLine({"--output=out.flac", "--character=12.5", "--set=reverbTime=4.2",
                                             "--set=muteDry=1", "--tail=3", "--bits=16", "--", "-a.wav"});

    for (const Options& options : {spaced, joined})
    {
        EXPECT_EQ(options.output, "out.flac");
        EXPECT_EQ(options.character, 12.5);
        EXPECT_FALSE(options.mix.has_value());
        EXPECT_EQ(options.tail, 3.0);
        EXPECT_EQ(options.bits, 16);
        ASSERT_EQ(options.settings.size(), 2u);
        EXPECT_EQ(options.settings[0].index, Reverberation::reverbTime);
        EXPECT_EQ(options.settings[0].value, 4.2f);
        EXPECT_EQ(options.settings[1].index, Reverberation::muteDry);
        EXPECT_EQ(options.settings[1].value, 1.0f);
    }
    EXPECT_EQ(joined.inputs, std::vector<std::string>{"-a.wav"}) << "a name, behind the double dash";
}

TEST(CommandLine, reportTakesItsValueOnlyBehindAnEqualsSign)
{
    EXPECT_EQ(parseCommandLine({"--report", "json", "-o", "x.wav"}).inputs, std::vector<std::string>{"json"});
    EXPECT_FALSE(parseCommandLine({"--report"}).report->json);
    EXPECT_TRUE(parseCommandLine({"--report=json"}).report->json);
    EXPECT_EQ(parseCommandLine({"--report=room.txt"}).report->file, "room.txt");
}

TEST(CommandLine, refusesWithTheReason)
{
    struct Row
    {
        std::vector<std::string> arguments;
        std::string reason;
    };

    const Row rows[] = {
        {{}, "nothing to do"},
        {{"--loud"}, "unknown option '--loud'"},
        {{"-x"}, "unknown option '-x'"},
        {{"--mix"}, "--mix needs a value"},
        {{"--quiet=yes"}, "--quiet takes no value"},
        {{"--mix", "101"}, "101 is out of range (0 to 100 %)"},
        {{"--mix", "nan"}, "'nan' is not a number"},
        {{"--mix", "5%"}, "'5%' is not a number"},
        {{"--block", "0"}, "out of range"},
        {{"--block", "1.5"}, "not a whole number"},
        {{"--bits", "20"}, "none of 16, 24, 32"},
        {{"--set", "reverbTime"}, "not of the form"},
        {{"--set", "reverbtime=1"}, "no parameter 'reverbtime'"},
        {{"--set", "reverbTime=40"}, "out of range (0.1 to 32 s)"},
        {{"--set", "muteDry=maybe"}, "no value for muteDry"},
        {{"--impulse", "1"}, "where to?"},
        {{"--impulse", "1", "a.wav", "-o", "b.wav"}, "takes the place of an input"},
        {{"--impulse", "1", "--tail", "2", "-o", "b.wav"}, "exclude each other"},
        {{"a.wav"}, "where to?"},
        {{"a.wav", "-o", "b.mp3"}, "neither in .wav nor in .flac"},
        {{"a.wav", "-o", ""}, "needs a name"},
        {{"a.wav", "-o", "b.flac", "-b", "32"}, "FLAC holds"},
        {{"a.flac", "-d", "out", "-b", "32"}, "FLAC holds"},
        {{"a.wav", "b.wav", "-o", "c.wav"}, "takes one input"},
        {{"a.wav", "-o", "b.wav", "-d", "out"}, "exclude each other"},
        {{"x/a.wav", "y/a.wav", "-d", "out"}, "both be written to 'a.wav'"},
        {{"--report", "-o", "a.wav"}, "needs an input file or --impulse"},
        {{"--plot", "room.jpg"}, "does not end in .png"},
    };

    for (const Row& row : rows)
    {
        const std::string words = testing::PrintToString(row.arguments);
        try
        {
            parseCommandLine(row.arguments);
            ADD_FAILURE() << "taken: " << words;
        }
        catch (const UsageError& error)
        {
            EXPECT_NE(std::string(error.what()).find(row.reason), std::string::npos)
                << words << ": " << error.what();
        }
    }
}

} // namespace ambrel::render
