/**
    What a test asks of a rendered picture: which colour, how much ink, how readable.

        const Picture picture(*drawable, 4.0f);          // 4 pixels to a unit
        EXPECT_TRUE(isNearly(picture.at(3.0f, 2.5f), juce::Colours::orange));
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <algorithm>
#include <cmath>
#include <functional>

/** A drawing on transparent ground, that can be asked in the drawing's own units. */
class Picture
{
public:
    Picture(const juce::Drawable& drawable, float pixelsPerUnit) : scale(pixelsPerUnit)
    {
        const auto area = drawable.getDrawableBounds() * scale;
        image = juce::Image(juce::Image::ARGB, juce::roundToInt(std::ceil(area.getWidth())),
                            juce::roundToInt(std::ceil(area.getHeight())), true);
        juce::Graphics graphics(image);
        drawable.draw(graphics, 1.0f, juce::AffineTransform::scale(scale));
    }

    juce::Colour at(float x, float y) const
    {
        return image.getPixelAt(static_cast<int>(x * scale), static_cast<int>(y * scale));
    }
    bool isInk(float x, float y) const { return at(x, y).getAlpha() > 127; }

    using Test = std::function<bool(juce::Colour)>;

    /** Bounds, in units, of the pixels within an area that pass a test. */
    juce::Rectangle<float> boundsOf(juce::Rectangle<float> area, const Test& test) const
    {
        juce::RectangleList<int> found;
        const auto pixels = (area * scale).getSmallestIntegerContainer().getIntersection(image.getBounds());
        for (int y = pixels.getY(); y < pixels.getBottom(); ++y)
            for (int x = pixels.getX(); x < pixels.getRight(); ++x)
                if (test(image.getPixelAt(x, y)))
                    found.addWithoutMerging({x, y, 1, 1});
        return found.getBounds().toFloat() / scale;
    }

    /** How far ink reaches without a gap through a point, from top to bottom, in units. */
    float inkHeight(float x, float y) const
    {
        const float step = 1.0f / scale;
        float top = y;
        float bottom = y;
        while (isInk(x, top))
            top -= step;
        while (isInk(x, bottom))
            bottom += step;
        return bottom - top - step;
    }

    juce::Image image;

private:
    float scale;
};

/** The renderer is exact within a few steps of a channel, at the edges of an image for one. */
inline bool isNearly(juce::Colour colour, juce::Colour expected)
{
    constexpr int tolerance = 3;
    return std::abs(colour.getRed() - expected.getRed()) <= tolerance &&
           std::abs(colour.getGreen() - expected.getGreen()) <= tolerance &&
           std::abs(colour.getBlue() - expected.getBlue()) <= tolerance &&
           std::abs(colour.getAlpha() - expected.getAlpha()) <= tolerance;
}

/** Relative luminance and contrast after WCAG 2. */
inline double luminance(juce::Colour colour)
{
    const auto linear = [](float value)
    { return value <= 0.04045f ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4); };
    return 0.2126 * linear(colour.getFloatRed()) + 0.7152 * linear(colour.getFloatGreen()) +
           0.0722 * linear(colour.getFloatBlue());
}

inline double contrast(juce::Colour a, juce::Colour b)
{
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

/** The lowest contrast of a text's colour with any pixel of an image that lies on white. */
inline double lowestContrast(const juce::Image& image, juce::Colour text)
{
    double lowest = 21.0;
    for (int y = 0; y < image.getHeight(); ++y)
        for (int x = 0; x < image.getWidth(); ++x)
            lowest =
                std::min(lowest, contrast(text, juce::Colours::white.overlaidWith(image.getPixelAt(x, y))));
    return lowest;
}
