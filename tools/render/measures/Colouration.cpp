#include "tools/render/measures/Colouration.h"

#include "dsp/FourierTransform.h"
#include "tools/render/measures/LineFit.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <numeric>
#include <vector>

namespace ambrel::measures
{

namespace
{

/** The shortest frame; the next power of two is used, 32768 samples at 44.1 and 48 kHz. */
constexpr double shortestFrame = 0.5; // seconds

constexpr double lowestFrequency = 200.0;   // Hz
constexpr double highestFrequency = 4000.0; // Hz

/** Half the width of the mean that makes the envelope: wide against a single resonance, narrow against what an
    equalizer does. */
constexpr double envelopeHalfWidth = 94.0; // Hz

constexpr std::size_t numPieces = 32;

/** The rate at which the level of a frame falls, as the exponent per sample of its amplitude; empty if there is
    silence in it. */
std::optional<double> measureDecay(std::span<const float> frame)
{
    const std::size_t pieceLength = frame.size() / numPieces;
    LineFit fit;

    for (std::size_t piece = 0; piece < numPieces; ++piece)
    {
        const auto samples = frame.subspan(piece * pieceLength, pieceLength);
        const double energy =
            std::transform_reduce(samples.begin(), samples.end(), 0.0, std::plus(),
                                  [](float x) { return static_cast<double>(x) * static_cast<double>(x); });
        if (!(energy > 0.0))
            return std::nullopt;

        fit.add(static_cast<double>(piece * pieceLength), 0.5 * std::log(energy));
    }
    return fit.getSlope();
}

std::vector<double> measurePowerSpectrum(std::span<const float> frame, double decayExponent)
{
    using namespace vesk::audio;

    const auto length = static_cast<int>(frame.size());
    Signal32 windowed(1, length);
    float* samples = windowed.getWriteChannelPtr(0);

    for (std::size_t i = 0; i < frame.size(); ++i)
    {
        const auto position = static_cast<double>(i);
        const double hann =
            0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * position / static_cast<double>(length));
        samples[i] =
            static_cast<float>(static_cast<double>(frame[i]) * hann * std::exp(-decayExponent * position));
    }

    ComplexSignal32 spectrum(1, length / 2 + 1);
    FourierTransform transform;
    transform.forwardReal(windowed, spectrum);

    std::vector<double> power(frame.size() / 2 + 1);
    const std::complex<float>* bins = spectrum.getChannelPtr(0);

    for (std::size_t bin = 0; bin < power.size(); ++bin)
        power[bin] = static_cast<double>(std::norm(bins[bin]));
    return power;
}

/** Mean of the bins within halfWidth of each bin. Bins near the two ends of the spectrum are not asked for. */
double getEnvelope(const std::vector<double>& sums, std::size_t bin, std::size_t halfWidth)
{
    return (sums[bin + halfWidth + 1] - sums[bin - halfWidth]) / static_cast<double>(2 * halfWidth + 1);
}

} // namespace

std::optional<double> measureSpectralFlatness(std::span<const float> response, double sampleRate,
                                              double start)
{
    const auto first = static_cast<std::size_t>(std::llround(start * sampleRate));
    const std::size_t length = std::bit_ceil(static_cast<std::size_t>(shortestFrame * sampleRate));

    const double highest = std::min(highestFrequency, sampleRate / 2.0 - 2.0 * envelopeHalfWidth);

    if (first + length > response.size() || highest <= lowestFrequency)
        return std::nullopt;

    const auto frame = response.subspan(first, length);
    const std::optional<double> decayExponent = measureDecay(frame);

    if (!decayExponent)
        return std::nullopt;

    const std::vector<double> power = measurePowerSpectrum(frame, *decayExponent);
    std::vector<double> sums(power.size() + 1, 0.0);
    std::inclusive_scan(power.begin(), power.end(), sums.begin() + 1);

    const auto toBin = [&](double frequency)
    { return static_cast<std::size_t>(frequency * static_cast<double>(length) / sampleRate); };
    const std::size_t halfWidth = toBin(envelopeHalfWidth);
    double logarithms = 0.0;
    double sum = 0.0;
    double count = 0.0;

    for (std::size_t bin = toBin(lowestFrequency); bin <= toBin(highest); ++bin)
    {
        const double evened = power[bin] / getEnvelope(sums, bin, halfWidth);
        logarithms += std::log(std::max(evened, 1e-30));
        sum += evened;
        count += 1.0;
    }
    return std::exp(logarithms / count) / (sum / count);
}

} // namespace ambrel::measures
