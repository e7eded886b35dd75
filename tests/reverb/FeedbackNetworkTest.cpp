#include "reverb/FeedbackNetwork.h"

#include "dsp/IirCoefficients.h"
#include "tests/core/KernelFixture.h"
#include "tests/reverb/Engine.h"

#include <bit>
#include <gtest/gtest.h>

namespace vesk::audio
{

using namespace test;

namespace
{
constexpr float noDamping = 1.0e6f; // held at half the sample rate, where the damping is open

FeedbackNetwork::Decay makeDecay(float reverbTime, float lowTimeScale = 100.0f, float damping = noDamping)
{
    return {reverbTime, lowTimeScale, 250.0f, damping};
}

/** The network sample by sample in double precision, with the matrix in full. */
class SlowNetwork
{
public:
    SlowNetwork(int channels, double rate, float roomSize) : numChannels(channels), sampleRate(rate)
    {
        const float scale = 1.0f + 4.0f * roomSize / 100.0f;
        for (int n = 0; n < 16; ++n)
        {
            // Rounded to single precision, which is part of the sound: it decides about whole samples.
            delays[n] = scale * static_cast<float>(getNominalDelay(n));
            for (int c = 0; c < channels; ++c)
            {
                const int rank = channels == 4 ? std::array{0, 2, 1, 3}[static_cast<std::size_t>(c)] : c;
                const double stretch =
                    std::pow(30.0 / (30.0 - 1.046875), static_cast<double>(rank) / channels);
                rings[c][n].assign(static_cast<std::size_t>(stretch * delays[n] * sampleRate), 0.0);
            }
        }
    }

    void setDecay(const FeedbackNetwork::Decay& decay)
    {
        shelf = std::abs(decay.lowTimeScale - 100.0) > 1.0;
        for (int n = 0; n < 16; ++n)
        {
            const auto toGain = [&](double time) { return std::pow(1000.0, -delays[n] / time); };
            gains[n] = toGain(decay.reverbTime * decay.lowTimeScale / 100.0) / 4.0;
            shelves[n] = IirCoefficients::createHighShelf(
                decay.crossoverFrequency, toGain(decay.reverbTime) / 4.0 / gains[n], sampleRate);
            const double s = std::sin(std::numbers::pi * std::min(0.5, decay.dampingFrequency / sampleRate));
            smoothing[n] = 1.0 - std::pow(s, std::pow(getNominalDelay(n) * 30.0, std::sqrt(s)));
        }
    }

    std::vector<std::vector<double>> process(const Signal32& input)
    {
        std::vector<std::vector<double>> output(static_cast<std::size_t>(numChannels));
        for (int i = 0; i < input.numSamples; ++i)
        {
            double lines[4][16];
            for (int c = 0; c < numChannels; ++c)
                for (int n = 0; n < 16; ++n)
                    lines[c][n] = filter(c, n, rings[c][n][positions[c][n]] * gains[n]);
            for (int c = 0; c < numChannels; ++c)
                output[static_cast<std::size_t>(c)].push_back(mix(lines[c], 15));
            for (int c = 0; c < numChannels; ++c)
                for (int n = 0; n < 16; ++n)
                {
                    int from = numChannels == 1 ? c : c ^ 1;
                    if (numChannels == 4 && n % 2 == 0)
                        from = (c + 2) % 4;
                    rings[c][n][positions[c][n]] = mix(lines[from], n) +
                                                   0.35 * static_cast<double>(input.getChannelPtr(from)[i]) +
                                                   0.65 * static_cast<double>(input.getChannelPtr(c)[i]);
                    positions[c][n] = (positions[c][n] + 1) % rings[c][n].size();
                }
        }
        return output;
    }

private:
    static double getNominalDelay(int n) { return 1.0 / (30.0 - 1.046875 * n); }

    static double mix(const double* lines, unsigned row)
    {
        double sum = 0.0;
        for (unsigned n = 0; n < 16; ++n)
            sum += std::popcount(row & n) % 2 == 0 ? lines[n] : -lines[n];
        return sum;
    }

    double filter(int c, int n, double x)
    {
        if (shelf)
        {
            const auto& [b, a] = shelves[n];
            auto& z = shelfStates[c][n];
            const double y = (b[0] * x) / a[0] + z[0];
            z[0] = (b[1] * x - a[1] * y) / a[0] + z[1];
            z[1] = (b[2] * x - a[2] * y) / a[0];
            x = y;
        }
        const double y = (1.0 - smoothing[n]) * x + damped[c][n];
        damped[c][n] = smoothing[n] * y;
        return y;
    }

    int numChannels;
    double sampleRate;
    bool shelf = false;
    double delays[16];
    double gains[16];
    double smoothing[16];
    IirCoefficients shelves[16];
    std::vector<double> rings[4][16];
    std::size_t positions[4][16] = {};
    double shelfStates[4][16][2] = {};
    double damped[4][16] = {};
};
} // namespace

class FeedbackNetworkKernel : public KernelFixture
{
};
AMBREL_ON_ALL_INSTRUCTION_SETS(FeedbackNetworkKernel);

TEST_P(FeedbackNetworkKernel, equalsTheNetworkComputedSampleBySample)
{
    struct Case
    {
        int channels;
        double sampleRate;
        float roomSize;
        FeedbackNetwork::Decay decay;
    };
    const Case cases[] = {{1, 44100.0, 0.0f, makeDecay(2.0f)},
                          {1, 96000.0, 100.0f, makeDecay(32.0f)},
                          {2, 48000.0, 30.0f, makeDecay(2.0f, 100.0f, 12000.0f)},
                          {2, 22050.0, 50.0f, makeDecay(0.7f, 40.0f, 3000.0f)},
                          {2, 8000.0, 0.0f, makeDecay(8.0f, 150.0f)},
                          {2, 192000.0, 30.0f, makeDecay(0.5f)},
                          {4, 16000.0, 10.0f, makeDecay(4.0f, 180.0f, 5000.0f)},
                          {4, 48000.0, 0.0f, makeDecay(2.0f)}};
    for (const auto& [channels, sampleRate, roomSize, decay] : cases)
    {
        SCOPED_TRACE(testing::Message() << channels << " channels at " << sampleRate);
        const Signal32 input = makeNoiseSignal(channels, static_cast<int>(0.4 * sampleRate), 7);
        SlowNetwork slow(channels, sampleRate, roomSize);
        slow.setDecay(decay);
        const auto expected = slow.process(input);

        FeedbackNetwork network;
        network.setLines(channels, sampleRate, roomSize);
        const int shortest = network.getLineLength(0, 0); // frames can be no longer
        for (const auto& lengths :
             {std::vector{input.numSamples}, {1}, {shortest, 31, shortest - 1, 2 * shortest + 1}})
        {
            network.setLines(channels, sampleRate, roomSize);
            network.setDecay(decay);
            const Signal32 output = processInBlocks(
                input, lengths, [&](const Signal32& block) { return network.process(block); });
            for (int c = 0; c < channels; ++c)
            {
                EXPECT_GT(getPeak(getChannel(output, c)), 0.1);
                EXPECT_LT(maxDifference(getChannel(output, c), expected[static_cast<std::size_t>(c)]), 3e-5)
                    << "blocks of " << lengths.front();
            }
        }
    }
}

TEST_P(FeedbackNetworkKernel, goesOnWithWhatItRemembersWhenTheDecayChanges)
{
    constexpr double sampleRate = 96000.0;
    FeedbackNetwork network;
    network.setLines(2, sampleRate, 0.0f);
    SlowNetwork slow(2, sampleRate, 0.0f);
    const Signal32 input = makeNoiseSignal(2, static_cast<int>(0.1 * sampleRate), 3);
    for (const FeedbackNetwork::Decay& decay : {FeedbackNetwork::Decay{2.0f, 150.0f, 50.0f, noDamping},
                                                {0.5f, 40.0f, 4000.0f, 3000.0f},
                                                {8.0f, 100.0f, 250.0f, noDamping}, // the shelf's memory rests
                                                {1.0f, 102.0f, 80.0f, noDamping},
                                                {32.0f, 200.0f, 15000.0f, 9000.0f}})
    {
        network.setDecay(decay);
        slow.setDecay(decay);
        const Signal32 output = network.process(input);
        const auto expected = slow.process(input);
        for (int c = 0; c < 2; ++c)
        {
            EXPECT_GT(getPeak(getChannel(output, c)), 0.1);
            EXPECT_LT(maxDifference(getChannel(output, c), expected[static_cast<std::size_t>(c)]), 3e-5)
                << "crossover " << decay.crossoverFrequency;
        }
    }
}

/** The loop must lose energy at every frequency, also where the shelf's corner is far below the sample rate and
    where its gains are at their ends. */
TEST(FeedbackNetwork, neverGrows)
{
    for (const double sampleRate : {8000.0, 48000.0, 192000.0, 384000.0})
        for (const float crossover : {50.0f, 20000.0f})
            for (const float time : {0.1f, 32.0f})
                for (const float lowTimeScale : {20.0f, 50.0f, 200.0f})
                    for (const float roomSize : {0.0f, 100.0f})
                    {
                        FeedbackNetwork network;
                        network.setLines(1, sampleRate, roomSize);
                        network.setDecay({time, lowTimeScale, crossover, 20000.0f});
                        const int length = static_cast<int>(0.5 * sampleRate);
                        const auto getNextEnergy = [&](float input)
                        { return getEnergy(getChannel(network.process(Signal32(1, length, input)), 0)); };
                        getNextEnergy(1.0f); // A step stirs up the lowest frequencies, its edges all others.
                        const double early = getNextEnergy(0.0f);
                        const double late = getNextEnergy(0.0f);
                        EXPECT_LE(late, 1.0001 * early)
                            << sampleRate << " Hz, crossover " << crossover << ", " << time << " s, low "
                            << lowTimeScale << ", size " << roomSize;
                    }
}

} // namespace vesk::audio
