/** What a test asks of a rendered picture: which colour, how much of it, how much has changed. */
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <algorithm>
#include <cmath>

/** Number of pixels of an area whose colour passes a test. */
template <typename Test>
int count(const juce::Image& image, juce::Rectangle<int> area, Test test)
{
    int found = 0;
    for (int y = area.getY(); y < area.getBottom(); ++y)
        for (int x = area.getX(); x < area.getRight(); ++x)
            found += test(image.getPixelAt(x, y)) ? 1 : 0;
    return found;
}

inline bool isDark(juce::Colour colour) { return colour.getPerceivedBrightness() < 0.5f; }

/** Largest difference of two colours in any channel. The renderer is exact within a few steps. */
inline int difference(juce::Colour a, juce::Colour b)
{
    return std::max({std::abs(a.getRed() - b.getRed()), std::abs(a.getGreen() - b.getGreen()),
                     std::abs(a.getBlue() - b.getBlue()), std::abs(a.getAlpha() - b.getAlpha())});
}

/** Number of pixels in which two pictures of one size differ by more than this in any channel. */
inline int countDifferences(const juce::Image& a, const juce::Image& b, int tolerance)
{
    int found = 0;
    for (int y = 0; y < a.getHeight(); ++y)
        for (int x = 0; x < a.getWidth(); ++x)
            found += difference(a.getPixelAt(x, y), b.getPixelAt(x, y)) > tolerance ? 1 : 0;
    return found;
}
