#include "tests/hosts/PlugIn.h"

#include <atomic>
#include <thread>

namespace hosts
{

int checkEditor(const Loader& load)
{
    constexpr int numOpenings = 10;
    constexpr int blockSize = 128;
    Checks checks;
    const auto plugIn = load();
    const auto other = load();
    if (plugIn == nullptr || other == nullptr)
        return 1;

    plugIn->start(48000.0, blockSize);
    std::atomic<bool> isOver{false};
    std::atomic<int> numBlocks{0};
    float loudest = 0.0f;
    // As busy as a host's at its limit: block behind block, both parameters moving.
    std::thread audio(
        [&]
        {
            for (Noise noise; !isOver; ++numBlocks)
            {
                const auto position = static_cast<float>(numBlocks % 500) / 500.0f;
                plugIn->setParameter(0, position);
                plugIn->setParameter(1, 1.0f - position);
                auto block = noise.make(blockSize);
                plugIn->process(block);
                loudest = std::max(loudest, getPeak(block));
                std::this_thread::yield();
            }
        });

    {
        const auto otherEditor = other->openEditor();
        for (int i = 0; i < numOpenings; ++i)
        {
            const auto editor = plugIn->openEditor();
            checks.expect(editor->getLocalBounds() == juce::Rectangle<int>(640, 480),
                          "the window is 640 by 480");
            const int before = numBlocks;
            runMessageLoop(200);
            checks.expect(numBlocks > before, "audio runs on under an open window");
        }
    }
    isOver = true;
    audio.join();
    plugIn->stop();
    checks.expect(loudest < loudestOutput, "the output keeps its level");
    std::printf("window opened and closed %d times while %d blocks ran\n", numOpenings, numBlocks.load());
    return checks.failures;
}

} // namespace hosts
