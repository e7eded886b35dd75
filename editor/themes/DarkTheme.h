/**
    The simplistic dark look: flat slate surfaces, light grey controls and an amber accent, set in Roboto. It
    draws more by itself than the other themes do, since the library's scroll bars, tables, menus and title bars
    do not suit a dark face.

    Four colours of its palette make up nearly all the others; a tool can read them with findColour.

    Thread: message thread.
*/
#pragma once

#include "editor/themes/BaseTheme.h"

class DarkTheme : public BaseTheme
{
public:
    enum PaletteColourIds
    {
        faceColourId = 0x2001000,   ///< light grey: the face of controls
        glyphColourId = 0x2001001,  ///< black: glyphs on controls
        accentColourId = 0x2001002, ///< amber
        surfaceColourId = 0x2001003 ///< slate
    };

    DarkTheme();

    void paintBackground(juce::Graphics& g, int width, int height) override;
    void paintHeaderBackground(juce::Graphics& g, int width, int height, const juce::String& title) override;
    juce::Colour getShadowColour() override;
    float getTitleWidth(const juce::String& title) override;
    float getDefaultCurveThickness() override;
    void getActiveBandCurveColours(juce::Colour base, juce::Colour& first, juce::Colour& second) override;

    juce::Typeface::Ptr getTypefaceForFont(const juce::Font& font) override;

    // Buttons and sliders
    void drawButtonBackground(juce::Graphics& g, juce::Button& button, const juce::Colour& background,
                              bool isMouseOver, bool isButtonDown) override;
    void drawToggleButton(juce::Graphics& g, juce::ToggleButton& button, bool isMouseOver,
                          bool isButtonDown) override;
    void drawTickBox(juce::Graphics& g, juce::Component& component, float x, float y, float w, float h,
                     bool ticked, bool isEnabled, bool isMouseOver, bool isButtonDown) override;

    int getSliderThumbRadius(juce::Slider& slider) override;
    void drawLinearSliderBackground(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                                    float minPos, float maxPos, juce::Slider::SliderStyle style,
                                    juce::Slider& slider) override;
    void drawLinearSliderThumb(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                               float minPos, float maxPos, juce::Slider::SliderStyle style,
                               juce::Slider& slider) override;
    void drawRotarySlider(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                          float rotaryStart, float rotaryEnd, juce::Slider& slider) override;

    // Boxes, bars and tables
    void drawGroupComponentOutline(juce::Graphics& g, int width, int height, const juce::String& text,
                                   const juce::Justification& justification,
                                   juce::GroupComponent& group) override;
    void drawComboBox(juce::Graphics& g, int width, int height, bool isButtonDown, int buttonX, int buttonY,
                      int buttonW, int buttonH, juce::ComboBox& box) override;

    bool areScrollbarButtonsVisible() override;
    int getDefaultScrollbarWidth() override;
    void drawScrollbar(juce::Graphics& g, juce::ScrollBar& bar, int x, int y, int width, int height,
                       bool isVertical, int thumbStart, int thumbSize, bool isMouseOver,
                       bool isMouseDown) override;
    void drawScrollbarButton(juce::Graphics& g, juce::ScrollBar& bar, int width, int height, int direction,
                             bool isVertical, bool isMouseOver, bool isButtonDown) override;

    void drawTableHeaderBackground(juce::Graphics& g, juce::TableHeaderComponent& header) override;
    void drawTableHeaderColumn(juce::Graphics& g, juce::TableHeaderComponent& header,
                               const juce::String& columnName, int columnId, int width, int height,
                               bool isMouseOver, bool isMouseDown, int columnFlags) override;
    void paintToolbarBackground(juce::Graphics& g, int width, int height, juce::Toolbar& toolbar) override;

    // Menus and windows
    int getDefaultMenuBarHeight() override;
    juce::Font getMenuBarFont(juce::MenuBarComponent& menuBar, int itemIndex,
                              const juce::String& itemText) override;
    void drawMenuBarBackground(juce::Graphics& g, int width, int height, bool isMouseOverBar,
                               juce::MenuBarComponent& menuBar) override;
    void drawMenuBarItem(juce::Graphics& g, int width, int height, int itemIndex,
                         const juce::String& itemText, bool isMouseOverItem, bool isMenuOpen,
                         bool isMouseOverBar, juce::MenuBarComponent& menuBar) override;
    juce::Font getPopupMenuFont() override;
    void drawPopupMenuBackground(juce::Graphics& g, int width, int height) override;

    void drawDocumentWindowTitleBar(juce::DocumentWindow& window, juce::Graphics& g, int w, int h,
                                    int titleSpaceX, int titleSpaceW, const juce::Image* icon,
                                    bool drawTitleTextOnLeft) override;

    /** An icon for each of the three buttons that a window can have; null for any other type. */
    juce::Button* createDocumentWindowButton(int buttonType) override;

private:
    /** From a brighter to a darker shade downwards; the lower the control reaches, the stronger, up to a limit. */
    static juce::ColourGradient createControlGradient(juce::Colour colour, float y1, float y2);

    void setPalette();
    void setDerivedColours();

    float groupCaptionSize = groupCaptionHeight;
    juce::Path logoPlate;
    juce::Font titleFont{titleFontHeight, juce::Font::bold};

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(DarkTheme)
};
