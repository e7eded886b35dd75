#include "tests/hosts/PlugIn.h"

#include <atomic>
#include <thread>

namespace hosts
{
namespace
{
constexpr int blockSize = 128;

/** An audio thread as busy as a host's at its limit: block behind block, both parameters moving. */
class Load
{
public:
    explicit Load(PlugIn& plugInToUse) : plugIn(plugInToUse), thread([this] { run(); }) {}

    ~Load()
    {
        isOver = true;
        thread.join();
    }

    std::atomic<float> loudest{0.0f};
    std::atomic<int> numBlocks{0};

private:
    void run()
    {
        Noise noise;
        while (!isOver)
        {
            const auto position = static_cast<float>(numBlocks % 500) / 500.0f;
            plugIn.setParameter(0, position);
            plugIn.setParameter(1, 1.0f - position);
            auto block = noise.make(blockSize);
            plugIn.process(block);
            loudest = std::max(loudest.load(), getPeak(block));
            ++numBlocks;
            std::this_thread::yield();
        }
    }

    PlugIn& plugIn;
    std::atomic<bool> isOver{false};
    std::thread thread;
};
} // namespace

int checkEditor(const Loader& load)
{
    constexpr int numOpenings = 10;
    Checks checks;
    const auto plugIn = load();
    const auto other = load();
    if (plugIn == nullptr || other == nullptr)
        return 1;

    plugIn->start(48000.0, blockSize);
    {
        const Load audio(*plugIn);
        const auto otherEditor = other->openEditor();
        for (int i = 0; i < numOpenings; ++i)
        {
            const auto editor = plugIn->openEditor();
            checks.expect(editor->getLocalBounds() == juce::Rectangle<int>(640, 480),
                          "the window is 640 by 480");
            const int before = audio.numBlocks;
            runMessageLoop(200);
            checks.expect(audio.numBlocks > before, "audio runs on under an open window");
        }
        checks.expect(audio.loudest < loudestOutput, "the output keeps its level");
        std::printf("window opened and closed %d times while %d blocks ran\n", numOpenings,
                    audio.numBlocks.load());
    }
    plugIn->stop();
    return checks.failures;
}

} // namespace hosts
