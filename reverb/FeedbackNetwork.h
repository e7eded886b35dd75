/**
    The late tail: a feedback delay network of 16 lines, joined by a Hadamard matrix (J.-M. Jot and A.
    Chaigne, "Digital delay networks for designing artificial reverberators", 1991).

                     +-----------------------------------------------------------------------+
                     |                                                                       |
        input --> inject --> delay --> gain --> [shelf] --> damping --> Hadamard --+--> swap channels
                              (16 lines, each with all channels)                   |
                                                                                   +--> line 15: output

    Every signal is 1, 2 or 4 channels wide: mono, left and right, or the four corners of a square (front
    left, front right, rear left, rear right). On its way back each line exchanges its channels, so a sound
    moves from side to side with every pass, and with four channels on the even lines between front and rear.

    Decay. A line of delay t must lose 60 dB t / T for a reverb time of T seconds. Its broadband gain is that
    of the low-frequency time, and a high shelf makes up the difference above the crossover; without a
    difference the shelf rests. A one-pole low-pass adds the faster decay of high frequencies. The matrix is
    orthogonal once its norm of 4 has been taken out, which the line gains do, so these three alone decide the
    decay.

    Frames. Each line is a ring whose length is its delay: what is read at the ring's position is one delay
    old, and the feedback goes back to the same place. Nothing that is written in a frame is read again before
    the shortest line has gone round, so frames of up to that length are computed with vector operations, all
    of a frame in one pass (feedbackKernel.h). How a stream is cut does not change the result.

        FeedbackNetwork network;
        network.setLines(2, 48000.0, 30.0f);                  // stereo
        network.setDecay({.reverbTime = 2.0f, .lowTimeScale = 100.0f, .crossoverFrequency = 250.0f,
                          .dampingFrequency = 12000.0f});
        Signal32 tail = network.process(block);               // any length

    Cost: for each sample and channel 16 one-pole filters, 64 additions of the matrix, and 16 second-order
    filters if the shelf runs. process allocates its result alone. Thread: one at a time.
*/
#pragma once

#include "core/MemoryPool.h"
#include "core/Signal.h"
#include "core/feedbackKernel.h"

#include <array>
#include <vector>

namespace vesk::audio
{

class FeedbackNetwork
{
public:
    static constexpr int numLines = FeedbackLines::numLines;
    static constexpr int maxChannels = FeedbackLines::maxChannels;

    struct Decay
    {
        float reverbTime;         ///< s, for 60 dB
        float lowTimeScale;       ///< percent of reverbTime below the crossover
        float crossoverFrequency; ///< Hz
        float dampingFrequency;   ///< Hz
    };

    /** Memory of one line's channel. position is where the oldest sample is read and the newest written. Behind
        the end there is room for one more frame, so that frames that reach over it are contiguous too. */
    struct Ring
    {
        float* samples = nullptr;
        int length = 0;
        int position = 0;

        /** The frame's memory, which begins at position. */
        float* open(int frameLength);

        /** Moves the position past the frame. */
        void close(int frameLength);
    };

    /** All lines of a room, empty at first. */
    struct Lines
    {
        Lines() = default;

        /** @param channels  1, 2 or 4
            @param roomSize  percent: 0 scales the delays by 1, 100 by 5 */
        Lines(int channels, double sampleRate, float roomSize);

        Lines(Lines&&) = default; // the rings stay where they are
        Lines& operator=(Lines&&) = default;

        int numChannels = 0;
        double sampleRate = 0.0;
        float roomScale = 1.0f; ///< 1 to 5
        std::array<FeedbackLines::PerLine<Ring>, maxChannels> rings;
        std::vector<float, PoolAllocator<float>> memory; ///< of the rings
    };

    FeedbackNetwork();

    /** Puts in new lines and empties the filters: nothing of the earlier tail is left. To be followed by setDecay. */
    void setLines(int channels, double sampleRate, float roomSize);

    /** The same with lines that were made beforehand, since their memory is large. The former ones go to newLines. */
    void swapLines(Lines& newLines);

    /** Sets gains and filters under a running tail, whose filters keep their state. */
    void setDecay(const Decay& decay);

    /** A block of setLines' channels, of any length. The first sound comes one line delay after the input. */
    Signal32 process(const Signal32& input);

    /** Samples in a line's channel: its delay. */
    int getLineLength(int line, int channel) const { return lines.rings[index(channel)][index(line)].length; }

private:
    static constexpr std::size_t index(int i) { return static_cast<std::size_t>(i); }

    void processFrame(const Signal32& input, Signal32& output, int start, int length);

    Lines lines;
    FeedbackLines filters;
};

} // namespace vesk::audio
