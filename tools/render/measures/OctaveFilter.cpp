#include "tools/render/measures/OctaveFilter.h"

#include <cmath>
#include <complex>
#include <numbers>

namespace ambrel::measures
{

namespace
{

using Complex = std::complex<double>;
using std::numbers::pi;
using std::numbers::sqrt2;

/** The highest upper edge, as a part of the sample rate. */
constexpr double highestEdge = 0.48;

/** Frequency on the analogue axis that the bilinear transform maps to the given one. */
double prewarp(double frequency, double sampleRate) { return std::tan(pi * frequency / sampleRate); }

Complex toDigital(Complex pole) { return (1.0 + pole) / (1.0 - pole); }

} // namespace

bool OctaveFilter::canMeasure(double centre, double sampleRate)
{
    return centre * sqrt2 < highestEdge * sampleRate;
}

/** Each pole of the low-pass prototype splits into two poles of the band-pass. A prototype pole off the real axis
    gives two sections, each completed by the conjugate; the one on the axis gives one section of its own. */
OctaveFilter::OctaveFilter(double centre, double sampleRate)
{
    const double low = prewarp(centre / sqrt2, sampleRate);
    const double high = prewarp(centre * sqrt2, sampleRate);
    const double width = high - low;

    const auto split = [&](Complex prototype, double sign)
    {
        const Complex half = 0.5 * width * prototype;
        return toDigital(half + sign * std::sqrt(half * half - low * high));
    };

    const Complex upper = std::polar(1.0, 2.0 * pi / 3.0); // the third-order prototype: -1 and this pair
    const Complex first = split(upper, 1.0);
    const Complex second = split(upper, -1.0);
    const Complex sum = split(-1.0, 1.0) + split(-1.0, -1.0);
    const Complex product = split(-1.0, 1.0) * split(-1.0, -1.0);

    sections = {{{1.0, -2.0 * first.real(), std::norm(first)},
                 {1.0, -2.0 * second.real(), std::norm(second)},
                 {1.0, -sum.real(), product.real()}}};
    normalise(2.0 * std::atan(std::sqrt(low * high)));
}

/** Gives each section unit gain in the middle of the band, at an angle in radians per sample. */
void OctaveFilter::normalise(double angle)
{
    const Complex z = std::polar(1.0, -angle);

    for (Section& section : sections)
        section.gain = 1.0 / std::abs((1.0 - z * z) / (1.0 + section.a1 * z + section.a2 * z * z));
}

template <typename Iterator>
void OctaveFilter::run(Iterator first, Iterator last) const
{
    std::array<std::array<double, 2>, prototypeOrder> states{};

    for (; first != last; ++first)
    {
        double value = static_cast<double>(*first);

        for (std::size_t i = 0; i < sections.size(); ++i)
        {
            const Section& section = sections[i];
            const double output = section.gain * value + states[i][0];
            states[i][0] = states[i][1] - section.a1 * output;
            states[i][1] = -section.gain * value - section.a2 * output;
            value = output;
        }
        *first = static_cast<float>(value);
    }
}

std::vector<float> OctaveFilter::filter(std::span<const float> response) const
{
    std::vector<float> band(response.begin(), response.end());
    run(band.begin(), band.end());
    return band;
}

std::vector<float> OctaveFilter::filterReversed(std::span<const float> response) const
{
    std::vector<float> band(response.begin(), response.end());
    run(band.rbegin(), band.rend());
    return band;
}

} // namespace ambrel::measures
