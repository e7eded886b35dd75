#include "tools/render/RoomPlot.h"

#include "tools/render/PlotPanel.h"
#include "tools/render/measures/Spectrogram.h"

#include <juce_graphics/juce_graphics.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace ambrel::render
{

namespace
{

using measures::BandMeasures;
using measures::RoomMeasures;
using measures::StereoResponse;
using Points = std::vector<juce::Point<double>>;

constexpr int pictureWidth = 1600;
constexpr int pictureHeight = 1200;
constexpr int headHeight = 56;
constexpr int margin = 20;

constexpr double lowestDecay = -80.0;        // dB
constexpr double firstDensity = 0.002;       // seconds
constexpr double highestDensity = 1.2;       // above 1, as Gaussian noise scatters
constexpr double lowestFrequency = 40.0;     // Hz
constexpr double highestFrequency = 20000.0; // Hz
constexpr float spectrogramRange = 90.0f;    // dB
constexpr int spectrogramFrame = 2048;       // samples

const juce::Colour leftColour(0xff1f6fb4);
const juce::Colour rightColour(0xc0d9662b);
const juce::Colour textColour(0xff303030);

std::string formatted(const char* format, double value)
{
    char text[64];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

/** From red at the lowest octave to violet at the highest. */
juce::Colour octaveColour(std::size_t index, std::size_t count)
{
    const float proportion =
        static_cast<float>(index) / static_cast<float>(std::max<std::size_t>(1, count - 1));
    return juce::Colour::fromHSV(0.78f * proportion, 0.85f, 0.78f, 1.0f);
}

std::string octaveName(const BandMeasures& octave)
{
    const std::string name = octave.centre < 1000.0 ? formatted("%.0f Hz", octave.centre)
                                                    : formatted("%.0f kHz", octave.centre / 1000.0);
    return name + (octave.t30 ? formatted("  %.2f s", *octave.t30) : "  -");
}

/** The time that all diagrams over time show: until the decay leaves its own diagram. */
double getShownDuration(const RoomMeasures& measures)
{
    const auto found = std::ranges::find_if(measures.broadband.decay, [](float level)
                                            { return static_cast<double>(level) <= lowestDecay; });
    const auto steps = static_cast<double>(found - measures.broadband.decay.begin());
    return std::clamp(steps * RoomMeasures::decayStep, 0.05, std::max(0.05, measures.duration));
}

/** Lowest and highest sample in each column of pixels, as one line up and down. */
void drawWaveform(PlotPanel& panel, const std::vector<float>& samples, double sampleRate, double duration,
                  juce::Colour colour)
{
    const auto columns = static_cast<std::size_t>(panel.getArea().getWidth());
    const double shown = std::min(duration * sampleRate, static_cast<double>(samples.size()));
    Points points;

    for (std::size_t column = 0; column < columns; ++column)
    {
        const auto edge = [&](std::size_t at) {
            return static_cast<std::ptrdiff_t>(shown * static_cast<double>(at) /
                                               static_cast<double>(columns));
        };
        const auto first = samples.begin() + edge(column);
        const auto last = std::max(first + 1, samples.begin() + edge(column + 1));

        if (last > samples.end())
            break;

        const auto [lowest, highest] = std::minmax_element(first, last);
        const double time = static_cast<double>(edge(column)) / sampleRate;
        points.emplace_back(time, static_cast<double>(*lowest));
        points.emplace_back(time, static_cast<double>(*highest));
    }
    panel.drawCurve(points, colour, 1.0f);
}

void drawWaveforms(juce::Graphics& graphics, const PlotFonts& fonts, juce::Rectangle<float> bounds,
                   const StereoResponse& response, const RoomMeasures& measures, double duration)
{
    const double peak = std::max(1e-6, std::pow(10.0, measures.peak.value_or(0.0) / 20.0)) * 1.05;
    PlotPanel panel(graphics, fonts, bounds, "Impulse response", {0.0, duration, false, "s"},
                    {-peak, peak, false, ""});
    drawWaveform(panel, response.left, response.sampleRate, duration, leftColour);
    drawWaveform(panel, response.right, response.sampleRate, duration, rightColour);
    panel.drawLegend(0, "left", leftColour);
    panel.drawLegend(1, "right", rightColour);
    panel.drawFrame();
}

Points toPoints(const std::vector<float>& values, double step)
{
    Points points;

    for (std::size_t i = 0; i < values.size(); ++i)
        points.emplace_back(static_cast<double>(i) * step, static_cast<double>(values[i]));
    return points;
}

void drawDecays(juce::Graphics& graphics, const PlotFonts& fonts, juce::Rectangle<float> bounds,
                const RoomMeasures& measures, double duration)
{
    PlotPanel panel(graphics, fonts, bounds, "Energy decay and T30", {0.0, duration, false, "s"},
                    {lowestDecay, 0.0, false, "dB"});
    int line = 0;

    for (std::size_t i = 0; i < measures.octaves.size(); ++i)
    {
        const juce::Colour colour = octaveColour(i, measures.octaves.size());
        panel.drawCurve(toPoints(measures.octaves[i].decay, RoomMeasures::decayStep), colour);
        panel.drawLegend(line++, octaveName(measures.octaves[i]), colour);
    }

    panel.drawCurve(toPoints(measures.broadband.decay, RoomMeasures::decayStep), juce::Colours::black, 2.5f);
    panel.drawLegend(
        line, "all" + (measures.broadband.t30 ? formatted("  %.2f s", *measures.broadband.t30) : "  -"),
        juce::Colours::black);
    panel.drawFrame();
}

void drawDensity(juce::Graphics& graphics, const PlotFonts& fonts, juce::Rectangle<float> bounds,
                 const RoomMeasures& measures)
{
    const double last = std::clamp(measures.duration, 0.1, 2.0);
    PlotPanel panel(graphics, fonts, bounds, "Echo density (Gaussian noise: 1)",
                    {firstDensity, last, true, "s"}, {0.0, highestDensity, false, ""});
    Points points = toPoints(measures.echoDensity, RoomMeasures::densityStep);
    std::erase_if(points, [](const juce::Point<double>& point) { return point.x < firstDensity; });

    if (!points.empty())
        panel.drawCurve(points, leftColour, 2.0f);
    if (measures.mixingTime)
        panel.drawLegend(0, formatted("diffuse from %.0f ms", *measures.mixingTime * 1000.0), textColour);
    panel.drawFrame();
}

juce::PixelARGB* createHeatColours(juce::PixelARGB* table, int size)
{
    juce::ColourGradient gradient(juce::Colours::white, 0.0f, 0.0f, juce::Colour(0xff1a0b2e), 1.0f, 0.0f,
                                  false);
    gradient.addColour(0.3, juce::Colour(0xffa9d6e5));
    gradient.addColour(0.55, juce::Colour(0xff2a9d8f));
    gradient.addColour(0.75, juce::Colour(0xff264e86));
    gradient.createLookupTable(table, size);
    return table;
}

/** Each pixel of the diagram shows the frame and the bin that lie nearest. */
void drawSpectrogram(juce::Graphics& graphics, const PlotFonts& fonts, juce::Rectangle<float> bounds,
                     const StereoResponse& response, double duration)
{
    const PlotPanel::Axis time{0.0, duration, false, "s"};
    const PlotPanel::Axis frequency{lowestFrequency, std::min(highestFrequency, response.sampleRate / 2.0),
                                    true, "Hz"};
    PlotPanel panel(graphics, fonts, bounds, "Spectrogram, 90 dB from white to black", time, frequency);

    const auto area = panel.getArea().toNearestInt();
    const auto shown =
        std::min(response.left.size(), static_cast<std::size_t>(duration * response.sampleRate) + 1);
    std::vector<float> middle(shown);
    std::transform(response.left.begin(), response.left.begin() + static_cast<std::ptrdiff_t>(shown),
                   response.right.begin(), middle.begin(), [](float l, float r) { return 0.5f * (l + r); });

    const int hop = std::max(16, static_cast<int>(shown / static_cast<std::size_t>(area.getWidth())));
    const measures::Spectrogram spectrogram(middle, spectrogramFrame, hop);
    float highest = -200.0f;

    for (int frame = 0; frame < spectrogram.getNumFrames(); ++frame)
        for (int bin = 0; bin < spectrogram.getNumBins(); ++bin)
            highest = std::max(highest, spectrogram.getLevel(frame, bin));

    constexpr int numColours = 256;
    juce::PixelARGB colours[numColours];
    createHeatColours(colours, numColours);
    juce::Image picture(juce::Image::RGB, area.getWidth(), area.getHeight(), true, juce::SoftwareImageType());

    for (int y = 0; y < area.getHeight(); ++y)
    {
        const double height = 1.0 - (y + 0.5) / area.getHeight();
        const double bin = PlotPanel::valueAt(frequency, height) * spectrogramFrame / response.sampleRate;

        for (int x = 0; x < area.getWidth(); ++x)
        {
            const double seconds = PlotPanel::valueAt(time, (x + 0.5) / area.getWidth());
            const int frame = juce::roundToInt(seconds * response.sampleRate / hop);
            const float level =
                spectrogram.getLevel(std::min(frame, spectrogram.getNumFrames() - 1),
                                     std::min(juce::roundToInt(bin), spectrogram.getNumBins() - 1));
            const float heat = juce::jlimit(0.0f, 1.0f, 1.0f + (level - highest) / spectrogramRange);
            picture.setPixelAt(x, y, juce::Colour(colours[juce::roundToInt(heat * (numColours - 1))]));
        }
    }
    graphics.drawImageAt(picture, area.getX(), area.getY());
    panel.drawFrame();
}

void drawHead(juce::Graphics& graphics, const PlotFonts& fonts, const RoomMeasures& measures,
              const RoomDescription& room)
{
    const std::string text =
        (room.preset.empty() ? "Ambrel" : room.preset) + ", impulse from " + room.impulse + ", " +
        formatted("%.0f Hz", measures.sampleRate) +
        (measures.broadband.c80 ? formatted(", C80 %.1f dB", *measures.broadband.c80) : "") +
        (measures.flatness ? formatted(", flatness %.2f", *measures.flatness) : "") +
        formatted(", late correlation %.2f", measures.correlationLate);
    graphics.setColour(textColour);
    graphics.setFont(fonts.getBold(26.0f));
    graphics.drawText(juce::String::fromUTF8(text.c_str()),
                      juce::Rectangle<int>(margin * 2, 0, pictureWidth - 4 * margin, headHeight),
                      juce::Justification::centredLeft);
}

} // namespace

juce::MemoryBlock createRoomPlot(const StereoResponse& response, const RoomMeasures& measures,
                                 const RoomDescription& room)
{
    juce::Image picture(juce::Image::RGB, pictureWidth, pictureHeight, true, juce::SoftwareImageType());
    juce::Graphics graphics(picture);
    graphics.fillAll(juce::Colours::white);
    const PlotFonts fonts;
    drawHead(graphics, fonts, measures, room);

    auto body =
        picture.getBounds().withTrimmedTop(headHeight).reduced(margin, 0).withTrimmedBottom(margin).toFloat();
    auto upper = body.removeFromTop(body.getHeight() / 2.0f);
    const auto upperLeft = upper.removeFromLeft(upper.getWidth() / 2.0f);
    const auto lowerLeft = body.removeFromLeft(body.getWidth() / 2.0f);
    const double duration = getShownDuration(measures);

    drawWaveforms(graphics, fonts, upperLeft, response, measures, duration);
    drawDecays(graphics, fonts, upper, measures, duration);
    drawDensity(graphics, fonts, lowerLeft, measures);
    drawSpectrogram(graphics, fonts, body, response, duration);

    juce::MemoryOutputStream stream;
    juce::PNGImageFormat().writeImageToStream(picture, stream);
    return stream.getMemoryBlock();
}

} // namespace ambrel::render
