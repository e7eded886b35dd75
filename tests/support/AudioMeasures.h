/**
    What a reverb's output is measured by. Levels and gains in dB, times in seconds, all arithmetic in double.

        const double t30 = getDecayTime(filterOctave(impulseResponse, 1000.0, 48000.0), 48000.0);
*/
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <span>
#include <vector>

namespace vesk::audio::test
{

inline double getEnergy(std::span<const float> samples)
{
    double sum = 0.0;
    for (const float sample : samples)
        sum += static_cast<double>(sample) * static_cast<double>(sample);
    return sum;
}

/** RMS level. */
inline double getLevel(std::span<const float> samples)
{
    return 10.0 * std::log10(getEnergy(samples) / static_cast<double>(samples.size()));
}

inline double getPeak(std::span<const float> samples)
{
    double peak = 0.0;
    for (const float sample : samples)
        peak = std::max(peak, std::abs(static_cast<double>(sample)));
    return peak;
}

inline bool isFinite(std::span<const float> samples)
{
    return std::all_of(samples.begin(), samples.end(), [](float sample) { return std::isfinite(sample); });
}

/** T30: the time for 60 dB along the line of least squares from -5 to -35 dB through the energy still to come
    (M. R. Schroeder, "New method of measuring reverberation time", 1965). */
inline double getDecayTime(std::span<const float> response, double sampleRate)
{
    const double total = getEnergy(response);
    double toCome = 0.0;
    double count = 0.0, sumT = 0.0, sumL = 0.0, sumTT = 0.0, sumTL = 0.0;
    for (std::size_t n = response.size(); n-- > 0;)
    {
        toCome += static_cast<double>(response[n]) * static_cast<double>(response[n]);
        const double time = static_cast<double>(n) / sampleRate;
        const double level = 10.0 * std::log10(toCome / total);
        if (level > -5.0 || level < -35.0)
            continue;
        count += 1.0;
        sumT += time;
        sumL += level;
        sumTT += time * time;
        sumTL += time * level;
    }
    return -60.0 * (count * sumTT - sumT * sumT) / (count * sumTL - sumT * sumL);
}

/** One octave around a centre: two second-order Butterworth filters at each edge. */
inline std::vector<float> filterOctave(std::span<const float> samples, double centre, double sampleRate)
{
    std::vector<double> signal(samples.begin(), samples.end());
    const auto runTwice = [&](double corner, bool highPass)
    {
        const double w = 2.0 * std::numbers::pi * corner / sampleRate;
        const double alpha = std::sin(w) / std::numbers::sqrt2;
        const double sign = highPass ? -1.0 : 1.0;
        const double b0 = 0.5 * (1.0 - sign * std::cos(w)) / (1.0 + alpha);
        const double b1 = sign * 2.0 * b0;
        const double a1 = -2.0 * std::cos(w) / (1.0 + alpha);
        const double a2 = (1.0 - alpha) / (1.0 + alpha);
        for (int pass = 0; pass < 2; ++pass)
        {
            double z1 = 0.0, z2 = 0.0;
            for (auto& x : signal)
            {
                const double y = b0 * x + z1;
                z1 = b1 * x - a1 * y + z2;
                z2 = b0 * x - a2 * y;
                x = y;
            }
        }
    };
    runTwice(centre / std::numbers::sqrt2, true);
    runTwice(centre * std::numbers::sqrt2, false);
    std::vector<float> result(signal.size());
    std::transform(signal.begin(), signal.end(), result.begin(),
                   [](double x) { return static_cast<float>(x); });
    return result;
}

/** Share of the samples beyond one standard deviation, relative to that of Gaussian noise (J. S. Abel and P. Huang,
    "A simple, robust measure of reverberation echo density", 2006): 0 is sparse, 1 as dense as noise. */
inline double getEchoDensity(std::span<const float> window)
{
    const double deviation = std::sqrt(getEnergy(window) / static_cast<double>(window.size()));
    const auto beyond =
        std::count_if(window.begin(), window.end(),
                      [&](float sample) { return std::abs(static_cast<double>(sample)) > deviation; });
    return static_cast<double>(beyond) / static_cast<double>(window.size()) /
           std::erfc(1.0 / std::numbers::sqrt2);
}

/** Correlation of two sequences of one length, -1 to 1, with b read lag samples later. */
inline double getCorrelation(std::span<const float> a, std::span<const float> b, std::ptrdiff_t lag = 0)
{
    const auto size = static_cast<std::ptrdiff_t>(a.size());
    double sum = 0.0;
    for (auto n = std::max<std::ptrdiff_t>(0, -lag); n < std::min(size, size - lag); ++n)
        sum += static_cast<double>(a[static_cast<std::size_t>(n)]) *
               static_cast<double>(b[static_cast<std::size_t>(n + lag)]);
    return sum / std::sqrt(getEnergy(a) * getEnergy(b));
}

} // namespace vesk::audio::test
