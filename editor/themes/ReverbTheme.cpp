#include "editor/themes/ReverbTheme.h"

#include "editor/themes/ControlPainting.h"
#include "editor/themes/LightControls.h"

using juce::Colour;
namespace Colours = juce::Colours;

namespace
{

const Colour accent{0xffd27900};
const Colour headerFace{0xffdfe1db};
const Colour buttonOutlineColour{0xff424142};

class FocusLine : public juce::FocusOutline::OutlineWindowProperties
{
public:
    explicit FocusLine(bool isAroundKnob) : isRound(isAroundKnob) {}

    juce::Rectangle<int> getOutlineBounds(juce::Component& component) override
    {
        const auto bounds = component.getScreenBounds();
        const int side = juce::jmin(bounds.getWidth(), bounds.getHeight());
        return isRound ? bounds.withSizeKeepingCentre(side, side) : bounds;
    }

    void drawOutline(juce::Graphics& g, int width, int height) override
    {
        constexpr float lineWidth = 2.0f, cornerSize = 5.0f;
        const auto area = juce::Rectangle<int>(width, height).toFloat().reduced(0.5f * lineWidth);

        g.setColour(buttonOutlineColour);
        if (isRound)
            g.drawEllipse(area, lineWidth);
        else
            g.drawRoundedRectangle(area, cornerSize, lineWidth);
    }

private:
    const bool isRound;
};

} // namespace

ReverbTheme::ReverbTheme() { themes::setLightColours(*this, {.control = accent, .buttonOn = accent}); }

void ReverbTheme::paintBackground(juce::Graphics& g, int width, int height)
{
    g.setColour(Colours::white);
    g.fillRect(0, 0, width, height);
}

void ReverbTheme::paintHeaderBackground(juce::Graphics& g, int width, int height, const juce::String& title)
{
    g.setColour(headerFace);
    g.fillRect(0, 0, width, height);
    themes::drawLightTitle(g, width, title, titleFont);
}

float ReverbTheme::getTitleWidth(const juce::String& title) { return titleFont.getStringWidthFloat(title); }

float ReverbTheme::getDefaultCurveThickness() { return 1.0f; }

void ReverbTheme::getActiveBandCurveColours(Colour base, Colour& first, Colour& second)
{
    first = base;
    second = Colours::transparentBlack;
}

void ReverbTheme::drawButtonBackground(juce::Graphics& g, juce::Button& button, const Colour& background,
                                       bool isMouseOver, bool isButtonDown)
{
    constexpr float cornerSize = 10.0f, outlineWidth = 1.0f;

    const float inset = themes::flatButtonInset(button.isEnabled(), isMouseOver, isButtonDown);
    const auto outline = themes::buttonOutline(button, themes::insetButtonBounds(button, inset), cornerSize);

    g.setColour(themes::shaded(
        background,
        {.focused = button.hasKeyboardFocus(true), .hovered = isMouseOver, .pressed = isButtonDown}));
    g.fillPath(outline);

    g.setColour(buttonOutlineColour);
    g.strokePath(outline, juce::PathStrokeType(outlineWidth));
}

void ReverbTheme::drawToggleButton(juce::Graphics& g, juce::ToggleButton& button, bool isMouseOver,
                                   bool isButtonDown)
{
    themes::drawToggle(g, *this, button, isMouseOver, isButtonDown, groupCaptionSize, 1);
}

void ReverbTheme::drawTickBox(juce::Graphics& g, juce::Component& component, float x, float y, float w,
                              float h, bool ticked, bool isEnabled, bool isMouseOver, bool isButtonDown)
{
    themes::drawLightTickBox(g, component, {x, y, w, h}, findColour(juce::Slider::thumbColourId), ticked,
                             isEnabled, isMouseOver, isButtonDown);
}

void ReverbTheme::drawLinearSliderBackground(juce::Graphics& g, int x, int y, int width, int height, float,
                                             float, float, juce::Slider::SliderStyle, juce::Slider& slider)
{
    themes::drawLightFaderGroove(g, {x, y, width, height}, static_cast<float>(getSliderThumbRadius(slider)),
                                 slider.isHorizontal());
}

void ReverbTheme::drawLinearSliderThumb(juce::Graphics& g, int x, int y, int width, int height,
                                        float sliderPos, float minPos, float maxPos,
                                        juce::Slider::SliderStyle style, juce::Slider& slider)
{
    if (!themes::hasSingleThumb(style))
    {
        LookAndFeel_V3::drawLinearSliderThumb(g, x, y, width, height, sliderPos, minPos, maxPos, style,
                                              slider);
        return;
    }

    const float side = 2.0f * themes::lightThumbRadius(getSliderThumbRadius(slider));
    const auto centre = themes::faderThumbCentre({x, y, width, height}, sliderPos, style);

    g.setColour(themes::faderThumbColour(slider));
    g.fillRoundedRectangle(juce::Rectangle<float>(side, side).withCentre(centre), 3.0f);
}

void ReverbTheme::drawRotarySlider(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                                   float rotaryStart, float rotaryEnd, juce::Slider& slider)
{
    constexpr float faceOfRing = 0.9f;
    constexpr double pointerOfRing = 0.6;
    constexpr float pointerDiameter = 20.0f;

    const themes::Knob knob({x, y, width, height}, sliderPos, rotaryStart, rotaryEnd);
    themes::drawKnobRing(g, knob, slider, faceOfRing, Colours::black.withAlpha(0.1f));

    // A white rim behind a step of grey reads as a raised edge.
    const auto face = knob.circle(2.0f * knob.radius * faceOfRing);
    const auto plain = Colours::white.withBrightness(0.9f);
    juce::ColourGradient shading(plain, knob.centre, Colours::white, knob.centre.withY(face.getY()), true);
    shading.addColour(0.8, plain);
    shading.addColour(0.9, Colours::white.withBrightness(0.8f));
    g.setGradientFill(shading);
    g.fillEllipse(face);

    g.setColour(themes::knobColour(findColour(juce::Slider::thumbColourId), slider));
    g.fillEllipse(juce::Rectangle<float>(pointerDiameter, pointerDiameter)
                      .withCentre(knob.pointAt(knob.radius * pointerOfRing)));
}

void ReverbTheme::drawGroupComponentOutline(juce::Graphics& g, int width, int height,
                                            const juce::String& text, const juce::Justification&,
                                            juce::GroupComponent& group)
{
    themes::drawLightGroup(g, width, height, text, groupCaptionSize,
                           group.findColour(juce::GroupComponent::textColourId));
}

std::unique_ptr<juce::FocusOutline> ReverbTheme::createFocusOutlineForComponent(juce::Component& component)
{
    const auto* slider = dynamic_cast<juce::Slider*>(&component);
    return std::make_unique<juce::FocusOutline>(
        std::make_unique<FocusLine>(slider != nullptr && slider->isRotary()));
}
