#include "tools/render/Quantiser.h"

#include <algorithm>
#include <cmath>

namespace ambrel::render
{

namespace
{

/** 2^-32: brings the generator's integers to the range 0 to 1. */
constexpr double unitScale = 1.0 / 4294967296.0;

} // namespace

Quantiser::Quantiser(int bits) : shift(32 - bits), scale(std::ldexp(1.0, bits - 1)), dithers(bits < 24) {}

/** Triangular between -1 and 1 quantisation step. */
double Quantiser::nextDither()
{
    const auto first = static_cast<double>(random());
    const auto second = static_cast<double>(random());
    return (first - second) * unitScale;
}

void Quantiser::convert(std::span<const float> samples, std::span<int> integers)
{
    const double lowest = -scale;
    const double highest = scale - 1.0;

    for (std::size_t i = 0; i < samples.size(); ++i)
    {
        double value = static_cast<double>(samples[i]) * scale;

        if (value < lowest - 0.5 || value >= highest + 0.5)
            ++numClipped;
        if (dithers && samples[i] != 0.0f)
            value += nextDither();

        integers[i] = static_cast<int>(std::clamp(std::nearbyint(value), lowest, highest)) * (1 << shift);
    }
}

} // namespace ambrel::render
