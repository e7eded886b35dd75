/**
    What a test asks of a rendered picture: which colour, how much of it, where, how readable.

        EXPECT_GT(count(image, area, isDark), 100);

        const Picture picture(*drawable, 4.0f);          // 4 pixels to a unit
        EXPECT_LE(difference(picture.at(3.0f, 2.5f), juce::Colours::orange), 3);
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <algorithm>
#include <cmath>

/** Calls a function with x, y and colour of every pixel of an area. */
template <typename Function>
void forEachPixel(const juce::Image& image, juce::Rectangle<int> area, Function function)
{
    for (int y = area.getY(); y < area.getBottom(); ++y)
        for (int x = area.getX(); x < area.getRight(); ++x)
            function(x, y, image.getPixelAt(x, y));
}

/** Number of pixels of an area whose colour passes a test. */
template <typename Test>
int count(const juce::Image& image, juce::Rectangle<int> area, Test test)
{
    int found = 0;
    forEachPixel(image, area, [&](int, int, juce::Colour colour) { found += test(colour) ? 1 : 0; });
    return found;
}

/** Bounds of the pixels of an area whose colour passes a test. */
template <typename Test>
juce::Rectangle<int> boundsOf(const juce::Image& image, juce::Rectangle<int> area, Test test)
{
    juce::RectangleList<int> found;
    forEachPixel(image, area,
                 [&](int x, int y, juce::Colour colour)
                 {
                     if (test(colour))
                         found.addWithoutMerging({x, y, 1, 1});
                 });
    return found.getBounds();
}

/** Largest difference of two colours in any channel. The renderer is exact within a few steps. */
inline int difference(juce::Colour a, juce::Colour b)
{
    return std::max({std::abs(a.getRed() - b.getRed()), std::abs(a.getGreen() - b.getGreen()),
                     std::abs(a.getBlue() - b.getBlue()), std::abs(a.getAlpha() - b.getAlpha())});
}

/** The pixels in which two pictures of one size differ by more than this in any channel. */
inline juce::RectangleList<int> differences(const juce::Image& a, const juce::Image& b, int tolerance = 0)
{
    juce::RectangleList<int> found;
    forEachPixel(a, a.getBounds(),
                 [&](int x, int y, juce::Colour colour)
                 {
                     if (difference(colour, b.getPixelAt(x, y)) > tolerance)
                         found.addWithoutMerging({x, y, 1, 1});
                 });
    return found;
}

inline bool isDark(juce::Colour colour) { return colour.getPerceivedBrightness() < 0.5f; }

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

    template <typename Test>
    juce::Rectangle<float> boundsOf(juce::Rectangle<float> area, Test test) const
    {
        const auto pixels = (area * scale).getSmallestIntegerContainer().getIntersection(image.getBounds());
        return ::boundsOf(image, pixels, test).toFloat() / scale;
    }

    /** How far ink reaches without a gap through a point, from top to bottom. */
    float inkHeight(float x, float y) const
    {
        const float step = 1.0f / scale;
        float top = y, bottom = y;
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

/** Contrast of two colours after WCAG 2, from 1 to 21. */
inline double contrast(juce::Colour a, juce::Colour b)
{
    const auto luminance = [](juce::Colour colour)
    {
        const auto linear = [](float value)
        { return value <= 0.04045f ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4); };
        return 0.2126 * linear(colour.getFloatRed()) + 0.7152 * linear(colour.getFloatGreen()) +
               0.0722 * linear(colour.getFloatBlue());
    };
    const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
    return (lighter + 0.05) / (darker + 0.05);
}

/** The lowest contrast of a text's colour with any pixel of an image that lies on white. */
inline double lowestContrast(const juce::Image& image, juce::Colour text)
{
    double lowest = 21.0;
    forEachPixel(image, image.getBounds(),
                 [&](int, int, juce::Colour colour)
                 { lowest = std::min(lowest, contrast(text, juce::Colours::white.overlaidWith(colour))); });
    return lowest;
}
