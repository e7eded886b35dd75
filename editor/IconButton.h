/**
    A button with an icon: a bitmap, a drawable, or a glyph of the icon font. If it has several, the first of
    these shows.

        IconButton button("undoButton", translate("Undo last changes"));
        button.setIcon(juce::Drawable::createFromImageData(data, size).release());

    The icon is as high as the button less a quarter of its height above and below. Drawables are to be drawn in
    pure black, which is replaced by the colour of the button's text; bitmaps keep their colours.

    Thread: message thread. Cost: a drawable that is not shown in black is copied at each paint.
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

#include <memory>

class IconButton : public juce::TextButton
{
public:
    enum ButtonStyle : int
    {
        iconCentred = 0,  ///< the icon on the theme's button; the button's text is not drawn
        iconWithText = 1, ///< the icon and the button's text beside it, both on the theme's button
        iconOnly = 2      ///< no button behind the icon, which itself answers to the mouse
    };

    IconButton(const juce::String& name, const juce::String& tooltip);

    /** Takes ownership. A null pointer takes the drawable away. */
    void setIcon(juce::Drawable* newIcon);

    /** A null image takes the bitmap away. */
    void setIconImage(const juce::Image& newImage);

    /** @param glyph  one of the FontAwesomeIcons, decoded: juce::String::fromUTF8(FontAwesomeIcons::MINUS) */
    void setIconFromFontAwesome(const juce::String& glyph);

    /** Does not repaint: meant for a button that is being set up. */
    void setButtonStyle(ButtonStyle newStyle) { style = newStyle; }

    /** Width of the icon when it is as high as this, in pixels; 0 with no icon. */
    int getIconWidth(int height) const;

    void paintButton(juce::Graphics& g, bool isMouseOver, bool isButtonDown) override;

private:
    void drawTextBesideIcon(juce::Graphics& g, int iconWidth, int iconHeight, int textWidth);
    juce::Colour getIconColour() const;
    void drawIcon(juce::Graphics& g, juce::Rectangle<int> area, juce::Colour colour) const;

    const float padding = 0.25f; ///< above and below the icon, as a proportion of the height
    juce::Image image;
    std::unique_ptr<juce::Drawable> drawable;
    juce::String iconGlyph;
    ButtonStyle style = iconCentred;

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(IconButton)
};
