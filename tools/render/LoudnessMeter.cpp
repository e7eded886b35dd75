#include "tools/render/LoudnessMeter.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace ambrel::render
{

namespace
{

constexpr double lowestRate = 8000.0; // Hz
constexpr int stepsInBlock = 4;
constexpr double stepSeconds = 0.1;
constexpr double absoluteGate = -70.0; // LUFS
constexpr double relativeGate = -10.0; // LU

/** Makes a sine of 997 Hz at full scale in one channel read -3.01 LUFS. */
constexpr double loudnessOffset = -0.691;

double toLoudness(double power) { return loudnessOffset + 10.0 * std::log10(power); }

double toPower(double loudness) { return std::pow(10.0, (loudness - loudnessOffset) / 10.0); }

double meanAbove(const std::vector<double>& powers, double threshold)
{
    double sum = 0.0;
    int count = 0;

    for (const double power : powers)
        if (power > threshold)
        {
            sum += power;
            ++count;
        }
    return count > 0 ? sum / count : 0.0;
}

} // namespace

LoudnessMeter::LoudnessMeter(double sampleRate, int numChannels)
    : meaningful(sampleRate >= lowestRate), shelf(createShelf(sampleRate)),
      highPass(createHighPass(sampleRate)), states(static_cast<std::size_t>(numChannels)),
      stepLength(std::max(1, static_cast<int>(std::lround(stepSeconds * sampleRate))))
{
}

double LoudnessMeter::Biquad::process(double input, std::array<double, 2>& state) const
{
    const double output = b[0] * input + state[0];
    state[0] = b[1] * input - a[0] * output + state[1];
    state[1] = b[2] * input - a[1] * output;
    return output;
}

/** The bilinear transform of the shelf that models the head: +4 dB above about 1.7 kHz. */
LoudnessMeter::Biquad LoudnessMeter::createShelf(double sampleRate)
{
    constexpr double frequency = 1681.974450955533;
    constexpr double gain = 3.999843853973347; // dB
    constexpr double quality = 0.7071752369554196;
    constexpr double bandExponent = 0.4996667741545416;

    const double k = std::tan(std::numbers::pi * frequency / sampleRate);
    const double high = std::pow(10.0, gain / 20.0);
    const double band = std::pow(high, bandExponent);
    const double a0 = 1.0 + k / quality + k * k;

    return {{(high + band * k / quality + k * k) / a0, 2.0 * (k * k - high) / a0,
             (high - band * k / quality + k * k) / a0},
            {2.0 * (k * k - 1.0) / a0, (1.0 - k / quality + k * k) / a0}};
}

/** The recommendation's high-pass; its numerator is not normalised. */
LoudnessMeter::Biquad LoudnessMeter::createHighPass(double sampleRate)
{
    constexpr double frequency = 38.13547087602444;
    constexpr double quality = 0.5003270373238773;

    const double k = std::tan(std::numbers::pi * frequency / sampleRate);
    const double a0 = 1.0 + k / quality + k * k;

    return {{1.0, -2.0, 1.0}, {2.0 * (k * k - 1.0) / a0, (1.0 - k / quality + k * k) / a0}};
}

void LoudnessMeter::add(const juce::AudioBuffer<float>& block, int start, int numSamples)
{
    if (!meaningful)
        return;

    for (int i = start; i < start + numSamples; ++i)
    {
        for (std::size_t channel = 0; channel < states.size(); ++channel)
        {
            ChannelState& state = states[channel];
            const double sample = static_cast<double>(block.getSample(static_cast<int>(channel), i));
            const double weighted = highPass.process(shelf.process(sample, state.shelf), state.highPass);
            stepEnergy += weighted * weighted;
        }

        if (++stepFill == stepLength)
        {
            stepPowers.push_back(stepEnergy / stepLength);
            stepEnergy = 0.0;
            stepFill = 0;
        }
    }
}

std::optional<double> LoudnessMeter::getIntegrated() const
{
    std::vector<double> blockPowers;

    for (auto step = stepPowers.begin(); stepPowers.end() - step >= stepsInBlock; ++step)
        blockPowers.push_back(std::accumulate(step, step + stepsInBlock, 0.0) / stepsInBlock);

    const double ungated = meanAbove(blockPowers, toPower(absoluteGate));

    if (ungated <= 0.0)
        return std::nullopt;

    const double threshold = std::max(toPower(absoluteGate), toPower(toLoudness(ungated) + relativeGate));
    return toLoudness(meanAbove(blockPowers, threshold));
}

} // namespace ambrel::render
