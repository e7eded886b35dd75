/** Themes in use and pictures of what they draw, for tests that measure there. */
#pragma once

#include "editor/themes/DarkTheme.h"
#include "editor/themes/ReverbTheme.h"
#include "editor/themes/SteelTheme.h"
#include "tests/artwork/Picture.h"

#include <gtest/gtest.h>

namespace themeTest
{

using juce::Colour;

inline std::unique_ptr<BaseTheme> makeTheme(const std::string& name)
{
    if (name == "dark")
        return std::make_unique<DarkTheme>();
    if (name == "steel")
        return std::make_unique<SteelTheme>();
    return std::make_unique<ReverbTheme>();
}

/** A theme as the default look, which is where typefaces come from. */
class ThemeInUse
{
public:
    explicit ThemeInUse(const std::string& name) : theme(makeTheme(name))
    {
        juce::LookAndFeel::setDefaultLookAndFeel(theme.get());
        juce::Typeface::clearTypefaceCache();
    }

    ~ThemeInUse()
    {
        juce::LookAndFeel::setDefaultLookAndFeel(nullptr);
        juce::Typeface::clearTypefaceCache();
    }

    BaseTheme* operator->() const { return theme.get(); }
    BaseTheme& operator*() const { return *theme; }

private:
    const std::unique_ptr<BaseTheme> theme;
};

inline juce::Image render(juce::Component& component)
{
    component.setVisible(true);
    return component.createComponentSnapshot(component.getLocalBounds());
}

template <typename Draw>
juce::Image draw(int width, int height, Draw drawing)
{
    juce::Image image(juce::Image::ARGB, width, height, true);
    juce::Graphics g(image);
    drawing(g);
    return image;
}

/** Every channel within the tolerance; without alpha the others do not count. */
inline ::testing::AssertionResult isNear(Colour actual, Colour expected, int tolerance = 3)
{
    const bool isClear = expected.getAlpha() == 0 && actual.getAlpha() <= tolerance;
    if (!isClear && difference(actual, expected) > tolerance)
        return ::testing::AssertionFailure() << "is " << actual.toString() << ", not " << expected.toString();
    return ::testing::AssertionSuccess();
}

} // namespace themeTest
