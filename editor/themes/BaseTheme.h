/**
    What every look of the editors has in common.

    A theme is a look-and-feel of the library's with a few more painting operations, which the framework's own
    components ask for. A component finds them by

        if (auto* theme = dynamic_cast<BaseTheme*>(&getLookAndFeel()))
            theme->paintHeaderBackground(g, getWidth(), 40, title);

    and does something sensible without them. A theme's constructor sets all its colours; it has no other state
    worth keeping, and can be made and thrown away at any time. It must outlive the components that use it.

        DarkTheme    slate and amber, set in Roboto
        SteelTheme   a metal face, bevels and glass
        ReverbTheme  flat, white and orange: what this product shows

    Texts: on a system without any font the compiled-in Roboto steps in, so that no text goes missing. The library
    asks its default look-and-feel for typefaces, and no other: a theme that shall have its say in them has to be
    made the default.

    Thread: message thread.
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

class BaseTheme : public juce::LookAndFeel_V3
{
public:
    BaseTheme();

    /** The whole background of an editor. */
    virtual void paintBackground(juce::Graphics& g, int width, int height) = 0;

    /** The strip across the top of an editor, with the product's title. */
    virtual void paintHeaderBackground(juce::Graphics& g, int width, int height,
                                       const juce::String& title) = 0;

    /** Colour of the shadows that components cast; transparent where a look has none. */
    virtual juce::Colour getShadowColour();

    /** Width of a title in the font of the header, in pixels. */
    virtual float getTitleWidth(const juce::String& title) = 0;

    /** Stroke width of curves, in pixels. */
    virtual float getDefaultCurveThickness() = 0;

    /** The two colours in which the curve of the active band is drawn, from that band's own. */
    virtual void getActiveBandCurveColours(juce::Colour base, juce::Colour& first, juce::Colour& second) = 0;

    /** The library's choice, or the compiled-in Roboto if the system has no fonts. */
    juce::Typeface::Ptr getTypefaceForFont(const juce::Font& font) override;

protected:
    static constexpr float titleFontHeight = 24.0f;
    static constexpr float groupCaptionHeight = 14.0f;

private:
    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(BaseTheme)
};
