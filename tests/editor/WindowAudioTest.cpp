// The window beside running audio: the sound follows the controls, and opening and closing leave nothing.

#include "tests/editor/WindowTest.h"

#include <atomic>
#include <random>
#include <thread>

using vesk::audio::Reverberation;

namespace
{
constexpr double sampleRate = 48000.0;
constexpr int blockSize = 64;

/** Between the corner of the brightest character, 4.4 kHz, and that of the darkest, 476 Hz. */
constexpr double toneFrequency = 2000.0;

/** A tone that plays on a thread of its own for as long as this lives. */
class AudioThread
{
public:
    explicit AudioThread(juce::AudioProcessor& processor) : plugIn(processor)
    {
        plugIn.setPlayConfigDetails(2, 2, sampleRate, blockSize);
        plugIn.prepareToPlay(sampleRate, blockSize);
        thread = std::thread([this] { run(); });
        waitFor(200);
    }

    ~AudioThread()
    {
        isRunning = false;
        thread.join();
    }

    void waitFor(int moreBlocks) const
    {
        for (const int last = blocks + moreBlocks; blocks < last;)
            std::this_thread::yield();
    }

    std::atomic<int> blocks{0};
    std::atomic<float> level{0.0f}; ///< of the last block

private:
    void run()
    {
        constexpr double step = juce::MathConstants<double>::twoPi * toneFrequency / sampleRate;
        juce::AudioBuffer<float> buffer(2, blockSize);
        juce::MidiBuffer midi;
        for (int time = 0; isRunning; ++blocks)
        {
            for (int i = 0; i < blockSize; ++i, ++time)
                for (int channel = 0; channel < 2; ++channel)
                    buffer.setSample(channel, i, static_cast<float>(0.1 * std::sin(step * time)));
            plugIn.processBlock(buffer, midi);
            level = buffer.getRMSLevel(0, 0, blockSize) + buffer.getRMSLevel(1, 0, blockSize);
        }
    }

    juce::AudioProcessor& plugIn;
    std::atomic<bool> isRunning{true};
    std::thread thread;
};

using WindowAudioTest = WindowTest;
} // namespace

TEST_F(WindowAudioTest, audioGoesOnWhileResponsesAreRebuilt)
{
    // Reverb alone, at its brightest, with a steep corner.
    processor.getBaseProcessor()->setParameterValue(Reverberation::lowPassSlope, 24.0f, false);
    fader->setValue(100.0, juce::sendNotificationSync);
    const auto turnKnob = [this](bool upwards)
    {
        constexpr float wholeWay = 260.0f; // from one end to the other and a little more, in pixels
        const juce::Point<float> start(320.0f, 140.0f);
        drag(*knob, start, start.translated(0.0f, upwards ? -wholeWay : wholeWay));
    };
    turnKnob(false);
    tick();
    EXPECT_LE(window->getTimerInterval(), 100) << "what changes is heard before long";
    AudioThread audio(processor);
    const float bright = audio.level;

    // The message loop runs as in a host; the window's own timer has a change heard in its own time.
    const auto isHeard = [&](bool isBright)
    {
        const auto isAsExpected = [&] { return isBright == (audio.level > 0.3f * bright); };
        for (int i = 0; i < 500 && !isAsExpected(); ++i)
            runMessages(10);
        return isAsExpected();
    };
    for (const bool isUpwards : {true, false})
    {
        turnKnob(isUpwards);
        EXPECT_TRUE(isHeard(!isUpwards)) << audio.level << " of " << bright;
    }

    // Were a rebuild to hold up the audio thread, one block could end while it lasts, or two, but no more.
    int mostBlocks = 0;
    for (int round = 0; round < 1000 && mostBlocks < 5; ++round)
    {
        turnKnob(round % 2 == 0);
        const int before = audio.blocks;
        window->timerCallback();
        mostBlocks = std::max(mostBlocks, audio.blocks - before);
    }
    EXPECT_GE(mostBlocks, 5);
}

TEST_F(WindowAudioTest, opensAndClosesWhileAudioRunsAndParametersChange)
{
    window.reset();
    {
        AudioThread audio(processor);
        std::mt19937 random(6);
        std::uniform_real_distribution<float> value(0.0f, 1.0f);
        for (int round = 0; round < 20; ++round)
        {
            open();
            processor.setParameter(round % 2, value(random));
            window->timerCallback();
            if (round % 10 == 0)
                runMessages(1);
            // Still to be delivered when the window goes.
            knob->setValue(0.5 + 7.5 * value(random), juce::sendNotificationAsync);
            window.reset();
            processor.setParameter(1 - round % 2, value(random));
            EXPECT_LT(audio.level.load(), 4.0f);
        }
        audio.waitFor(20);
    }
    runMessages();

    open();
    processor.setParameter(0, 0.5f);
    tick();
    EXPECT_EQ(knob->getValue(), 4.0);
}
