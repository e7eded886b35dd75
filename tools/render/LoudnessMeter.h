/**
    Integrated loudness of a mono or stereo programme by ITU-R BS.1770-4.

    Each channel goes through the K-weighting, a high shelf for the head and a high-pass; its mean square is
    taken over blocks of 400 ms that overlap by three quarters; blocks below -70 LUFS and then those 10 LU
    below the mean of the rest are left out. The weighting's coefficients are computed for the sample rate at
    hand from the analogue prototypes behind the recommendation's table for 48 kHz.

        LoudnessMeter meter(48000.0, 2);
        meter.add(block, 0, block.getNumSamples());
        std::optional<double> lufs = meter.getIntegrated();

    Cost: two biquads for each sample and channel, eight bytes for each 100 ms.
*/
#pragma once

#include <juce_audio_basics/juce_audio_basics.h>

#include <array>
#include <optional>
#include <vector>

namespace ambrel::render
{

class LoudnessMeter
{
public:
    LoudnessMeter(double sampleRate, int numChannels);

    void add(const juce::AudioBuffer<float>& block, int start, int numSamples);

    /** LUFS; empty if the programme is shorter than 400 ms or below the absolute gate throughout, or sampled at
        less than 8 kHz, where the weighting has no meaning. */
    std::optional<double> getIntegrated() const;

private:
    /** One second-order section in transposed direct form II, a0 = 1. */
    struct Biquad
    {
        double process(double input, std::array<double, 2>& state) const;

        std::array<double, 3> b{};
        std::array<double, 2> a{};
    };

    struct ChannelState
    {
        std::array<double, 2> shelf{};
        std::array<double, 2> highPass{};
    };

    static Biquad createShelf(double sampleRate);
    static Biquad createHighPass(double sampleRate);

    bool meaningful;
    Biquad shelf;
    Biquad highPass;
    std::vector<ChannelState> states;
    int stepLength;                   ///< samples in 100 ms
    int stepFill = 0;                 ///< samples of the present step so far
    double stepEnergy = 0.0;          ///< squares of the present step, summed over the channels
    std::vector<double> stepPowers{}; ///< mean squares of the finished steps
};

} // namespace ambrel::render
