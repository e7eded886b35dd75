/**
    This product's look: a white face, black text and an orange accent, flat but for a soft edge around the big
    knob.

    Thread: message thread.
*/
#pragma once

#include "editor/themes/BaseTheme.h"

class ReverbTheme : public BaseTheme
{
public:
    ReverbTheme();

    void paintBackground(juce::Graphics& g, int width, int height) override;
    void paintHeaderBackground(juce::Graphics& g, int width, int height, const juce::String& title) override;
    float getTitleWidth(const juce::String& title) override;
    float getDefaultCurveThickness() override;
    void getActiveBandCurveColours(juce::Colour base, juce::Colour& first, juce::Colour& second) override;

    void drawButtonBackground(juce::Graphics& g, juce::Button& button, const juce::Colour& background,
                              bool isMouseOver, bool isButtonDown) override;
    void drawToggleButton(juce::Graphics& g, juce::ToggleButton& button, bool isMouseOver,
                          bool isButtonDown) override;
    void drawTickBox(juce::Graphics& g, juce::Component& component, float x, float y, float w, float h,
                     bool ticked, bool isEnabled, bool isMouseOver, bool isButtonDown) override;

    void drawLinearSliderBackground(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                                    float minPos, float maxPos, juce::Slider::SliderStyle style,
                                    juce::Slider& slider) override;
    void drawLinearSliderThumb(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                               float minPos, float maxPos, juce::Slider::SliderStyle style,
                               juce::Slider& slider) override;
    void drawRotarySlider(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                          float rotaryStart, float rotaryEnd, juce::Slider& slider) override;

    void drawGroupComponentOutline(juce::Graphics& g, int width, int height, const juce::String& text,
                                   const juce::Justification& justification,
                                   juce::GroupComponent& group) override;

    /** A dark line around what has the keyboard: on a white button the stronger colours alone do not tell. */
    std::unique_ptr<juce::FocusOutline> createFocusOutlineForComponent(juce::Component& component) override;

private:
    float groupCaptionSize = groupCaptionHeight;
    juce::Font titleFont{titleFontHeight, juce::Font::bold};

    JUCE_DECLARE_NON_COPYABLE_WITH_LEAK_DETECTOR(ReverbTheme)
};
