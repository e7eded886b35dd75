#include "tools/artwork/SteelTile.h"

#include <cmath>
#include <random>
#include <vector>

namespace ambrel::artwork
{
namespace
{

constexpr unsigned noiseSeed = 1955;

/** Mean brightness of the face, of 255. Black text on it has a contrast of more than 13 to 1. */
constexpr double faceBrightness = 214.0;

/** Strength of the layers, as standard deviations of the brightness. */
constexpr double longStrokeDeviation = 3.4;
constexpr double shortStrokeDeviation = 2.2;
constexpr double grainDeviation = 0.8;

/** Widths of the smearing kernels in pixels. */
constexpr int longStrokeLength = 150;
constexpr int shortStrokeLength = 28;

/** The slow drift from top to bottom, which has whole periods so that it wraps. */
constexpr double driftAmplitude = 1.5;

using Plane = std::vector<double>;

std::size_t at(int x, int y)
{
    return static_cast<std::size_t>(y) * steelTileSize + static_cast<std::size_t>(x);
}

/** Sum of four uniform values: close enough to a normal distribution, and the same everywhere. */
Plane whiteNoise(std::mt19937& random)
{
    Plane noise(std::size_t{steelTileSize} * steelTileSize);
    for (double& value : noise)
        for (int term = 0; term < 4; ++term)
            value += static_cast<double>(random()) / 4294967296.0 - 0.5;
    return noise;
}

/** Moving average along each row, around its ends. */
Plane smearRows(const Plane& source, int length)
{
    Plane result(source.size());
    for (int y = 0; y < steelTileSize; ++y)
    {
        double sum = 0.0;
        for (int x = 0; x < length; ++x)
            sum += source[at(x, y)];
        for (int x = 0; x < steelTileSize; ++x)
        {
            result[at((x + length / 2) % steelTileSize, y)] = sum / length;
            sum += source[at((x + length) % steelTileSize, y)] - source[at(x, y)];
        }
    }
    return result;
}

/** Brings a plane to mean 0 and the given standard deviation. */
Plane scaledTo(Plane plane, double deviation)
{
    double sum = 0.0;
    double squares = 0.0;
    for (const double value : plane)
    {
        sum += value;
        squares += value * value;
    }
    const double count = static_cast<double>(plane.size());
    const double mean = sum / count;
    const double factor = deviation / std::sqrt(squares / count - mean * mean);
    for (double& value : plane)
        value = (value - mean) * factor;
    return plane;
}

double drift(int y)
{
    const double phase = 2.0 * 3.14159265358979323846 * y / steelTileSize;
    return driftAmplitude * (std::sin(phase) + 0.5 * std::sin(3.0 * phase + 1.0));
}

} // namespace

juce::Image makeSteelTile()
{
    std::mt19937 random(noiseSeed);
    // Two passes of the moving average make a triangular kernel: strokes that begin and end softly.
    const Plane longStrokes = scaledTo(
        smearRows(smearRows(whiteNoise(random), longStrokeLength), longStrokeLength), longStrokeDeviation);
    const Plane shortStrokes = scaledTo(
        smearRows(smearRows(whiteNoise(random), shortStrokeLength), shortStrokeLength), shortStrokeDeviation);
    const Plane grain = scaledTo(whiteNoise(random), grainDeviation);

    juce::Image tile(juce::Image::RGB, steelTileSize, steelTileSize, true);
    for (int y = 0; y < steelTileSize; ++y)
    {
        for (int x = 0; x < steelTileSize; ++x)
        {
            const std::size_t i = at(x, y);
            const double brightness = faceBrightness + longStrokes[i] + shortStrokes[i] + grain[i] + drift(y);
            const auto level = static_cast<juce::uint8>(juce::jlimit(0, 255, juce::roundToInt(brightness)));
            // A touch of blue, as of steel under daylight.
            tile.setPixelAt(x, y,
                            juce::Colour(level, level, static_cast<juce::uint8>(juce::jmin(255, level + 2))));
        }
    }
    return tile;
}

} // namespace ambrel::artwork
