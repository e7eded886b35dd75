#include "tools/render/measures/EnergyDecay.h"

#include "tools/render/measures/LineFit.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace ambrel::measures
{

namespace
{

constexpr double decayLevel = 60.0; // dB, what a reverberation time is the time for

/** A fit keeps this distance from the part of the curve that had to be guessed, dB. */
constexpr double guessMargin = 10.0;

/** What reads as nothing, dB; the curve goes no lower. */
constexpr double silence = -300.0;

/** The later half is looked at in this many pieces. */
constexpr std::size_t numPieces = 20;

double toDecibels(double energy)
{
    return energy > 0.0 ? std::max(silence, 10.0 * std::log10(energy)) : silence;
}

} // namespace

EnergyDecay::EnergyDecay(std::span<const double> energy, double sampleRate)
    : rate(sampleRate), curve(energy.size())
{
    const Ending ending = examineEnd(energy);
    double remaining = ending.missing;
    std::vector<double> integral(energy.size());

    for (std::size_t i = energy.size(); i-- > 0;)
    {
        remaining += energy[i];
        integral[i] = remaining;
    }

    total = remaining;

    if (!(total > 0.0))
    {
        curve.clear();
        return;
    }

    lowestLevel = toDecibels(ending.guessed / total) + guessMargin;
    std::ranges::transform(integral, curve.begin(),
                           [this](double value) { return static_cast<float>(toDecibels(value / total)); });
}

/** The energy behind the end is that of an exponential decay fitted to the later half; nothing if the response
    ends in silence. */
EnergyDecay::Ending EnergyDecay::examineEnd(std::span<const double> energy)
{
    const std::size_t pieceLength = energy.size() / 2 / numPieces;

    if (pieceLength == 0)
        return {};

    LineFit fit; // natural logarithm of the energy per sample over the sample index
    double laterHalf = 0.0;
    const std::size_t start = energy.size() - numPieces * pieceLength;

    for (std::size_t piece = 0; piece < numPieces; ++piece)
    {
        const auto samples = energy.subspan(start + piece * pieceLength, pieceLength);
        const double sum = std::accumulate(samples.begin(), samples.end(), 0.0);

        if (!(sum > 0.0))
            return {};

        laterHalf += sum;
        fit.add(static_cast<double>(start + piece * pieceLength) + 0.5 * static_cast<double>(pieceLength),
                std::log(sum / static_cast<double>(pieceLength)));
    }

    if (fit.getSlope() >= 0.0)
        return {0.0, laterHalf};

    const double missing = std::exp(fit.getValueAt(static_cast<double>(energy.size()))) / -fit.getSlope();
    return {missing, missing};
}

std::optional<double> EnergyDecay::getTimeOfLevel(double level) const
{
    // The curve never rises.
    const auto found =
        std::ranges::partition_point(curve, [=](float value) { return static_cast<double>(value) > level; });

    if (found == curve.end())
        return std::nullopt;
    return static_cast<double>(found - curve.begin()) / rate;
}

std::optional<EnergyDecay::Line> EnergyDecay::fitLine(double from, double to) const
{
    const auto begin = getTimeOfLevel(from < 0.0 ? from : -1e-9);
    const auto end = getTimeOfLevel(to);

    if (!begin || !end || to < lowestLevel)
        return std::nullopt;

    const auto first = static_cast<std::size_t>(std::llround(*begin * rate));
    const auto last = static_cast<std::size_t>(std::llround(*end * rate));
    LineFit fit;

    for (std::size_t i = first; i < last; ++i)
        fit.add(static_cast<double>(i), static_cast<double>(curve[i]));

    if (fit.getCount() < 2 || fit.getSlope() >= 0.0)
        return std::nullopt;
    return Line{first, last, fit.getValueAt(static_cast<double>(first)), fit.getSlope()};
}

std::optional<double> EnergyDecay::getTime(double from, double to) const
{
    const std::optional<Line> line = fitLine(from, to);

    if (!line)
        return std::nullopt;
    return -decayLevel / (line->slope * rate);
}

std::optional<double> EnergyDecay::getStraightness(double from, double to) const
{
    const std::optional<Line> line = fitLine(from, to);

    if (!line)
        return std::nullopt;

    double largest = 0.0;

    for (std::size_t i = line->first; i < line->last; ++i)
    {
        const double onLine = line->start + line->slope * static_cast<double>(i - line->first);
        largest = std::max(largest, std::abs(static_cast<double>(curve[i]) - onLine));
    }
    return largest;
}

} // namespace ambrel::measures
