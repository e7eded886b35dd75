#include "tools/render/measures/EchoDensity.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace ambrel::measures
{

namespace
{

constexpr double stepsPerSecond = 1000.0;
constexpr std::size_t smoothingSteps = 20;

/** 1024 samples at 48 kHz. */
constexpr double windowSeconds = 1024.0 / 48000.0;

/** erfc(1/sqrt 2): the share of Gaussian samples beyond one standard deviation. */
constexpr double gaussianShare = 0.31731050786291415;

std::vector<double> createHannWindow(std::size_t length)
{
    std::vector<double> window(length);

    for (std::size_t i = 0; i < length; ++i)
        window[i] = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * (static_cast<double>(i) + 0.5) /
                                         static_cast<double>(length));
    return window;
}

double measure(std::span<const float> samples, std::span<const double> window)
{
    const double weight = std::accumulate(window.begin(), window.end(), 0.0);
    double energy = 0.0;

    for (std::size_t i = 0; i < samples.size(); ++i)
        energy += window[i] * static_cast<double>(samples[i]) * static_cast<double>(samples[i]);

    const double variance = energy / weight;
    double beyond = 0.0;

    for (std::size_t i = 0; i < samples.size(); ++i)
        if (static_cast<double>(samples[i]) * static_cast<double>(samples[i]) > variance)
            beyond += window[i];

    return beyond / weight / gaussianShare;
}

} // namespace

/** At the two ends of the response the window is cut, and so are its weights. */
EchoDensity::EchoDensity(std::span<const float> response, double sampleRate)
{
    const auto length =
        std::max<std::size_t>(2, static_cast<std::size_t>(std::lround(windowSeconds * sampleRate)));
    const std::vector<double> window = createHannWindow(length);
    const std::size_t half = length / 2;

    for (std::size_t step = 0;; ++step)
    {
        const auto centre = static_cast<std::size_t>(static_cast<double>(step) * sampleRate / stepsPerSecond);

        if (centre >= response.size())
            break;

        const std::size_t first = centre > half ? centre - half : 0;
        const std::size_t last = std::min(centre + half, response.size());
        profile.push_back(
            static_cast<float>(measure(response.subspan(first, last - first),
                                       std::span(window).subspan(first + half - centre, last - first))));
    }
    smooth();
}

void EchoDensity::smooth()
{
    const std::vector<float> raw = profile;

    for (std::size_t i = 0; i < raw.size(); ++i)
    {
        const auto first = raw.begin() + static_cast<std::ptrdiff_t>(i - std::min(i, smoothingSteps / 2));
        const auto last =
            raw.begin() + static_cast<std::ptrdiff_t>(std::min(i + smoothingSteps / 2, raw.size()));
        profile[i] = std::accumulate(first, last, 0.0f) / static_cast<float>(last - first);
    }
}

std::optional<double> EchoDensity::getTimeOf(double density) const
{
    const auto found =
        std::ranges::find_if(profile, [=](float value) { return static_cast<double>(value) >= density; });

    if (found == profile.end())
        return std::nullopt;
    return static_cast<double>(found - profile.begin()) / stepsPerSecond;
}

EchoDensity EchoDensity::average(std::span<const EchoDensity> densities)
{
    EchoDensity mean;
    std::size_t length = densities.empty() ? 0 : densities.front().profile.size();

    for (const EchoDensity& density : densities)
        length = std::min(length, density.profile.size());

    mean.profile.assign(length, 0.0f);

    for (const EchoDensity& density : densities)
        for (std::size_t i = 0; i < length; ++i)
            mean.profile[i] += density.profile[i] / static_cast<float>(densities.size());

    return mean;
}

} // namespace ambrel::measures
