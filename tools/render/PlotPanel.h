/**
    One diagram of a picture: a frame with a title, two axes with grid lines and numbers, and curves in it.

        PlotPanel panel(graphics, fonts, bounds, "Decay", {0.0, 2.0, false, "s"}, {-80.0, 0.0, false, "dB"});
        panel.drawCurve(points, juce::Colours::blue);
        panel.drawFrame();

    Text is drawn with the compiled-in font, so no font needs to be installed.
*/
#pragma once

#include <juce_graphics/juce_graphics.h>

#include <span>
#include <string>

namespace ambrel::render
{

/** The compiled-in font. One object serves a whole picture. */
class PlotFonts
{
public:
    PlotFonts();

    /** @param height  pixels */
    juce::Font getRegular(float height) const { return juce::Font(regular).withHeight(height); }
    juce::Font getBold(float height) const { return juce::Font(bold).withHeight(height); }

private:
    juce::Typeface::Ptr regular;
    juce::Typeface::Ptr bold;
};

class PlotPanel
{
public:
    struct Axis
    {
        double minimum;
        double maximum;
        bool logarithmic; ///< the minimum is then above 0
        std::string unit; ///< may be empty
    };

    /** @param bounds  the whole panel, with title and numbers */
    PlotPanel(juce::Graphics& graphics, const PlotFonts& fonts, juce::Rectangle<float> bounds,
              const std::string& title, Axis x, Axis y);

    /** The diagram itself. */
    juce::Rectangle<float> getArea() const { return area; }

    float toX(double value) const;
    float toY(double value) const;

    /** The value at a place along an axis, 0 to 1. */
    static double valueAt(const Axis& axis, double proportion);

    /** A line through points in the axes' units; what lies outside the diagram is cut off. */
    void drawCurve(std::span<const juce::Point<double>> points, juce::Colour colour, float thickness = 1.5f);

    /** A line of text with its colour, the first at the top right corner, the others below it. */
    void drawLegend(int line, const std::string& text, juce::Colour colour);

    /** Title, border, grid and numbers. On top of what was drawn before. */
    void drawFrame();

private:
    static std::vector<double> createTicks(const Axis& axis);
    static std::string tickText(const Axis& axis, double value);
    static double proportionOf(const Axis& axis, double value);
    void drawHorizontalAxis();
    void drawVerticalAxis();

    juce::Graphics& graphics;
    const PlotFonts& fonts;
    juce::Rectangle<float> panel;
    juce::Rectangle<float> area;
    std::string title;
    Axis horizontal;
    Axis vertical;
};

} // namespace ambrel::render
