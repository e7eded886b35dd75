#include <gtest/gtest.h>

#include "tests/reverb/Engine.h"

#include <atomic>
#include <thread>

namespace vesk::audio
{

using namespace test;
using R = Reverberation;

/** Audio on one thread, two others turning every knob, one of which rebuilds the responses. For the thread
    sanitizer above all; what comes out must be sound. */
TEST(ReverberationThreads, parametersMoveWhileAudioRuns)
{
    const auto engine = makeEngine(2, 48000.0, {}, 128);
    std::atomic<bool> running{true};
    const auto turnKnobs = [&](unsigned seed, bool effectuate)
    {
        std::mt19937 generator(seed);
        while (running.load())
        {
            const ParameterInfo& info = parameterTable[generator() % parameterTable.size()];
            const float position = static_cast<float>(generator() >> 8) * 0x1p-24f;
            engine->setParameterValue(info.index, info.minimum + position * (info.maximum - info.minimum),
                                      effectuate && generator() % 4 == 0);
            const float value = engine->getParameterValue(info.index);
            EXPECT_TRUE(value >= info.minimum && value <= info.maximum);
            std::this_thread::yield();
        }
    };
    std::thread host(turnKnobs, 1u, false);
    std::thread editor(turnKnobs, 2u, true);

    const Signal32 input = makeNoiseSignal(2, 4096, 3);
    const int lengths[] = {128, 64, 1, 100, 1024};
    bool finite = true;
    for (std::size_t k = 0; k < 1500; ++k)
    {
        const Signal32 output =
            engine->process(slice(input, 0, lengths[k / 100 % std::size(lengths)]), k % 50 == 49);
        for (int c = 0; c < 2; ++c)
            finite = finite && isFinite(getChannel(output, c)) && getPeak(getChannel(output, c)) < 1e4;
    }
    running.store(false);
    host.join();
    editor.join();
    EXPECT_TRUE(finite);

    // What the last changes have marked is still to be built, and then the engine is as if set from the start.
    engine->effectuateParameterChanges();
    Settings settings;
    for (const ParameterInfo& info : parameterTable)
        settings.emplace_back(info.index, engine->getParameterValue(info.index));
    const Settings comparable = {
        {R::modulationDepth, 0.0f}, {R::muteDry, 1.0f}, {R::muteEarly, 0.0f}, {R::muteTail, 0.0f}};
    applySettings(*engine, comparable);
    const auto fresh = makeEngine(2, 48000.0, settings + comparable, 128);
    engine->reset();
    const Signal32 noise = makeNoiseSignal(2, 24000, 5);
    const Signal32 expected = render(*fresh, noise, {100});
    const Signal32 output = render(*engine, noise, {100});
    EXPECT_LT(maxDifference(getChannel(output, 0), getChannel(expected, 0)),
              1e-4 * getPeak(getChannel(expected, 0)));
}

} // namespace vesk::audio
