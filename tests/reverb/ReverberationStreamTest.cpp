#include <gtest/gtest.h>

#include "tests/reverb/Engine.h"

namespace vesk::audio
{

using namespace test;
using R = Reverberation;

namespace
{
const Settings still = {{R::modulationDepth, 0.0f}};

bool isSound(const Signal32& signal, double limit)
{
    bool result = true;
    for (int c = 0; c < signal.numChannels; ++c)
        result = result && isFinite(getChannel(signal, c)) && getPeak(getChannel(signal, c)) < limit;
    return result;
}
} // namespace

TEST(ReverberationStream, doesNotDependOnItsCuts)
{
    const Signal32 input = makeNoiseSignal(2, 16000, 4);
    const std::vector<std::vector<int>> allCuts = {{1},   {31},  {64},  {100},  {127},
                                                   {128}, {129}, {256}, {4096}, {1, 64, 4096, 127, 256, 31}};
    // The modulation counts samples from the block's start in single precision, so its cuts show a little more.
    for (const auto& [settings, tolerance] :
         {std::pair{still, 1e-5}, {still + Settings{{R::lowTimeScale, 60.0f}}, 1e-5}, {Settings{}, 2e-5}})
    {
        const Signal32 whole = render(*makeEngine(2, 48000.0, settings), input, {1000});
        EXPECT_GT(getLevel(getChannel(whole, 0)), -30.0);
        for (const auto& lengths : allCuts)
        {
            const Signal32 cut = render(*makeEngine(2, 48000.0, settings), input, lengths);
            for (int c = 0; c < 2; ++c)
                EXPECT_LT(maxDifference(getChannel(whole, c), getChannel(cut, c)), tolerance)
                    << "blocks of " << lengths.front();
        }
    }
}

/** Every parameter at its ends, and mixtures at random, under loud, faint and no input. */
TEST(ReverberationStream, staysFiniteAtAllSettings)
{
    std::vector<Settings> all;
    for (const ParameterInfo& info : parameterTable)
        for (const float end : {info.minimum, info.maximum})
            all.push_back({{info.index, end}});
    const auto positions = makeNoise(60 * static_cast<int>(parameterTable.size()), 12, -0.5f, 1.5f);
    auto position = positions.begin();
    while (position != positions.end())
    {
        all.emplace_back();
        for (const ParameterInfo& info : parameterTable)
            all.back().emplace_back(
                info.index, std::lerp(info.minimum, info.maximum, std::clamp(*position++, 0.0f, 1.0f)));
    }
    // The faint input is denormal, yet has positive samples.
    const Signal32 loud = makeNoiseSignal(2, 24000, 8);
    const Signal32 faint = 1e-39f * loud;
    const Signal32 none(2, 24000, 0.0f);
    for (const Settings& settings : all)
    {
        const auto engine = makeEngine(2, 48000.0, settings, 512);
        const bool sound = isSound(render(*engine, loud), 1e4) && isSound(render(*engine, none), 1e4);
        engine->reset();
        const bool quiet = isSound(render(*engine, faint), 1e-30) && isSound(render(*engine, none), 1e-30);
        if (!sound || !quiet)
            for (const auto& [parameter, value] : settings)
                ADD_FAILURE() << parameterTable[parameter].name << " = " << value;
    }
}

TEST(ReverberationStream, runsAtAllRatesLayoutsAndBlockSizes)
{
    const int blocks[] = {1, 64, 1000, 4096, 65536};
    std::size_t k = 0;
    for (const double rate : {8000.0, 11025.0, 44100.0, 88200.0, 192000.0, 384000.0})
        for (const auto& [in, out] : {std::pair{1, 1}, {1, 2}, {2, 2}, {6, 6}, {2, 8}, {8, 2}})
        {
            const int block = blocks[k++ % std::size(blocks)];
            SCOPED_TRACE(testing::Message()
                         << rate << " Hz, " << in << " to " << out << ", blocks of " << block);
            const auto engine = makeEngine(AudioFormat(in, rate), AudioFormat(out, rate), wetOnly, block);
            const int length = std::max(block, static_cast<int>((block == 1 ? 0.03 : 0.3) * rate));
            const Signal32 output = render(*engine, makeNoiseSignal(in, length, 5), {block});
            EXPECT_TRUE(isSound(output, 100.0));
            EXPECT_GT(getLevel(getChannel(output, 0)), -40.0);
        }
}

/** New formats on one engine, one after the other, and a reset alone: each is as good as a new engine. */
TEST(ReverberationStream, formatsAndResetsLeaveNothingBehind)
{
    const Settings settings = still + Settings{{R::preDelay, 100.0f}};
    Reverberation engine;
    applySettings(engine, settings);
    for (const auto& [channels, rate] :
         {std::pair{2, 48000.0}, {6, 44100.0}, {1, 96000.0}, {2, 96000.0}, {2, 96000.0}})
    {
        const AudioFormat format(channels, rate);
        EXPECT_TRUE(engine.setFormat(format, format));
        const Signal32 input = makeNoiseSignal(channels, 16000, 1);
        const Signal32 expected = render(*makeEngine(channels, rate, settings), input, {100});
        for (const bool afterFormat : {true, false})
        {
            const Signal32 output = render(engine, input, {100});
            for (int c = 0; c < channels; ++c)
                EXPECT_EQ(toVector(output, c), toVector(expected, c))
                    << channels << " at " << rate << ", after a " << (afterFormat ? "format" : "reset");
            engine.reset();
        }
    }
}

} // namespace vesk::audio
