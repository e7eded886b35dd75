#include "tools/render/measures/StereoImage.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace ambrel::measures
{

namespace
{

constexpr double longestLag = 0.001; // seconds

double getEnergy(std::span<const float> samples)
{
    return std::transform_reduce(samples.begin(), samples.end(), 0.0, std::plus(),
                                 [](float x) { return static_cast<double>(x) * static_cast<double>(x); });
}

/** Sum of first[i] second[i + lag] over all i where both exist. */
double correlateAt(std::span<const float> first, std::span<const float> second, std::size_t lag)
{
    const auto shifted = second.subspan(lag);
    return std::transform_reduce(shifted.begin(), shifted.end(), first.begin(), 0.0, std::plus(),
                                 [](float a, float b)
                                 { return static_cast<double>(a) * static_cast<double>(b); });
}

/** The index of the first sample that is not zero, or the length. */
std::size_t getSilence(std::span<const float> samples)
{
    const auto sound = std::find_if(samples.begin(), samples.end(), [](float x) { return x != 0.0f; });
    return static_cast<std::size_t>(sound - samples.begin());
}

} // namespace

double measureCorrelation(std::span<const float> left, std::span<const float> right, double sampleRate)
{
    const double scale = std::sqrt(getEnergy(left) * getEnergy(right));

    if (!(scale > 0.0))
        return 0.0;

    const auto lags =
        std::min(left.size(), static_cast<std::size_t>(std::lround(longestLag * sampleRate)) + 1);
    double largest = 0.0;

    for (std::size_t lag = 0; lag < lags; ++lag)
        largest = std::max(
            {largest, std::abs(correlateAt(left, right, lag)), std::abs(correlateAt(right, left, lag))});

    return largest / scale;
}

std::vector<double> measureBalance(std::span<const float> left, std::span<const float> right,
                                   std::size_t windowLength)
{
    std::vector<double> balance;
    const std::size_t onset = std::min(getSilence(left), getSilence(right));

    for (std::size_t start = onset; start + windowLength <= left.size(); start += windowLength)
    {
        const double leftEnergy = getEnergy(left.subspan(start, windowLength));
        const double rightEnergy = getEnergy(right.subspan(start, windowLength));

        if (!(leftEnergy > 0.0 && rightEnergy > 0.0))
            break;

        balance.push_back(10.0 * std::log10(leftEnergy / rightEnergy));
    }
    return balance;
}

} // namespace ambrel::measures
