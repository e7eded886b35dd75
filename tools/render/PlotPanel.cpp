#include "tools/render/PlotPanel.h"

#include "editor/themes/RobotoFont.h"
#include "tools/render/OptionValues.h"

#include <cmath>

namespace ambrel::render
{

namespace
{

constexpr float titleHeight = 30.0f;
constexpr float numbersHeight = 26.0f;
constexpr float numbersWidth = 74.0f;
constexpr float rightMargin = 16.0f;
constexpr float textHeight = 15.0f;
constexpr float legendLine = 18.0f;

/** A linear axis gets about this many grid lines. */
constexpr double wantedTicks = 6.0;

const juce::Colour frameColour(0xff303030);
const juce::Colour gridColour(0x28000000);

/** 1, 2 or 5 times a power of ten. */
double niceStep(double roughStep)
{
    const double power = std::pow(10.0, std::floor(std::log10(roughStep)));

    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= roughStep)
            return factor * power;
    return 10.0 * power;
}

} // namespace

PlotFonts::PlotFonts() : regular(createRobotoTypeface(false)), bold(createRobotoTypeface(true)) {}

PlotPanel::PlotPanel(juce::Graphics& graphicsToUse, const PlotFonts& fontsToUse,
                     juce::Rectangle<float> bounds, const std::string& titleText, Axis x, Axis y)
    : graphics(graphicsToUse), fonts(fontsToUse), panel(bounds), area(bounds), title(titleText),
      horizontal(std::move(x)), vertical(std::move(y))
{
    area.removeFromTop(titleHeight);
    area.removeFromBottom(numbersHeight);
    area.removeFromLeft(numbersWidth);
    area.removeFromRight(rightMargin);
}

double PlotPanel::proportionOf(const Axis& axis, double value)
{
    if (axis.logarithmic)
        return std::log(value / axis.minimum) / std::log(axis.maximum / axis.minimum);
    return (value - axis.minimum) / (axis.maximum - axis.minimum);
}

double PlotPanel::valueAt(const Axis& axis, double proportion)
{
    if (axis.logarithmic)
        return axis.minimum * std::pow(axis.maximum / axis.minimum, proportion);
    return axis.minimum + proportion * (axis.maximum - axis.minimum);
}

float PlotPanel::toX(double value) const
{
    return area.getX() + area.getWidth() * static_cast<float>(proportionOf(horizontal, value));
}

float PlotPanel::toY(double value) const
{
    return area.getBottom() - area.getHeight() * static_cast<float>(proportionOf(vertical, value));
}

void PlotPanel::drawCurve(std::span<const juce::Point<double>> points, juce::Colour colour, float thickness)
{
    if (points.empty())
        return;

    juce::Path path;
    path.startNewSubPath(toX(points.front().x), toY(points.front().y));

    for (const juce::Point<double>& point : points.subspan(1))
        path.lineTo(toX(point.x), toY(point.y));

    const juce::Graphics::ScopedSaveState saved(graphics);
    graphics.reduceClipRegion(area.toNearestInt());
    graphics.setColour(colour);
    graphics.strokePath(path, juce::PathStrokeType(thickness));
}

void PlotPanel::drawLegend(int line, const std::string& text, juce::Colour colour)
{
    const auto row = area.withTrimmedRight(8.0f)
                         .withY(area.getY() + 6.0f + legendLine * static_cast<float>(line))
                         .withHeight(legendLine);
    graphics.setColour(colour);
    graphics.setFont(fonts.getBold(textHeight));
    graphics.drawText(juce::String::fromUTF8(text.c_str()), row, juce::Justification::centredRight);
}

void PlotPanel::drawFrame()
{
    graphics.setColour(frameColour);
    graphics.setFont(fonts.getBold(titleHeight * 0.65f));
    graphics.drawText(juce::String::fromUTF8(title.c_str()),
                      panel.withHeight(titleHeight).withLeft(area.getX()), juce::Justification::centredLeft);
    drawHorizontalAxis();
    drawVerticalAxis();
    graphics.setColour(frameColour);
    graphics.drawRect(area, 1.0f);
}

void PlotPanel::drawHorizontalAxis()
{
    graphics.setFont(fonts.getRegular(textHeight));

    for (const double tick : createTicks(horizontal))
    {
        const float x = toX(tick);
        graphics.setColour(gridColour);
        graphics.drawVerticalLine(juce::roundToInt(x), area.getY(), area.getBottom());
        graphics.setColour(frameColour);
        graphics.drawText(
            tickText(horizontal, tick),
            juce::Rectangle<float>(x - 40.0f, area.getBottom() + 3.0f, 80.0f, textHeight + 4.0f),
            juce::Justification::centred);
    }
}

void PlotPanel::drawVerticalAxis()
{
    graphics.setFont(fonts.getRegular(textHeight));

    for (const double tick : createTicks(vertical))
    {
        const float y = toY(tick);
        graphics.setColour(gridColour);
        graphics.drawHorizontalLine(juce::roundToInt(y), area.getX(), area.getRight());
        graphics.setColour(frameColour);
        graphics.drawText(tickText(vertical, tick),
                          juce::Rectangle<float>(panel.getX(), y - 10.0f, numbersWidth - 8.0f, 20.0f),
                          juce::Justification::centredRight);
    }
}

std::vector<double> PlotPanel::createTicks(const Axis& axis)
{
    std::vector<double> ticks;

    if (axis.logarithmic)
    {
        for (double decade = std::pow(10.0, std::floor(std::log10(axis.minimum))); decade <= axis.maximum;
             decade *= 10.0)
            for (const double factor : {1.0, 2.0, 5.0})
                if (decade * factor >= axis.minimum && decade * factor <= axis.maximum)
                    ticks.push_back(decade * factor);
        return ticks;
    }

    const double step = niceStep((axis.maximum - axis.minimum) / wantedTicks);

    for (double index = std::ceil(axis.minimum / step); index * step <= axis.maximum + 1e-9 * step;
         index += 1.0)
        ticks.push_back(index * step);
    return ticks;
}

std::string PlotPanel::tickText(const Axis& axis, double value)
{
    const bool thousands = std::abs(value) >= 1000.0;
    const std::string number = numberText(static_cast<float>(thousands ? value / 1000.0 : value));
    return number + " " + (thousands ? "k" : "") + axis.unit;
}

} // namespace ambrel::render
