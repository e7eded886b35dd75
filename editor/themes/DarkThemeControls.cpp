// Buttons and sliders of the dark theme.

#include "editor/themes/ControlPainting.h"
#include "editor/themes/DarkTheme.h"

using juce::Colour;
namespace Colours = juce::Colours;
using juce::Rectangle;

namespace
{

/** How far a fader's groove reaches beyond the filled part inside it, on each side and end. */
constexpr float grooveMargin = 3.0f;

} // namespace

void DarkTheme::drawButtonBackground(juce::Graphics& g, juce::Button& button, const Colour& background,
                                     bool isMouseOver, bool isButtonDown)
{
    constexpr float cornerSize = 5.0f;

    const auto colour = themes::shaded(
        background,
        {.focused = button.hasKeyboardFocus(true), .hovered = isMouseOver, .pressed = isButtonDown});
    const float inset = themes::flatButtonInset(button.isEnabled(), isMouseOver, isButtonDown);

    g.setGradientFill(createControlGradient(colour, 0.0f, static_cast<float>(button.getHeight())));
    g.fillPath(themes::buttonOutline(button, themes::insetButtonBounds(button, inset), cornerSize));
}

void DarkTheme::drawToggleButton(juce::Graphics& g, juce::ToggleButton& button, bool isMouseOver,
                                 bool isButtonDown)
{
    constexpr int leastTextWidth = 3;
    themes::drawToggle(g, *this, button, isMouseOver, isButtonDown, groupCaptionSize, leastTextWidth);
}

void DarkTheme::drawTickBox(juce::Graphics& g, juce::Component& component, float x, float y, float w, float h,
                            bool ticked, bool isEnabled, bool isMouseOver, bool isButtonDown)
{
    constexpr float boxOfWidth = 0.9f;

    const auto [box, tick] = themes::TickBox({x, y, w, h}, boxOfWidth);
    const float thickness = themes::outlineThickness(component.isEnabled(), isMouseOver, isButtonDown);
    const auto faceColour = Colours::black.withMultipliedAlpha(0.2f);
    const auto outlineColour = Colours::white.withMultipliedAlpha(0.2f);
    const auto tickColour =
        themes::shaded(
            findColour(juce::Slider::rotarySliderFillColourId),
            {.focused = component.hasKeyboardFocus(true), .hovered = isMouseOver, .pressed = isButtonDown})
            .withMultipliedAlpha(isEnabled ? 1.0f : 0.5f);

    const auto makeShape = [isRound = themes::isRadioButton(component)](Rectangle<float> bounds)
    {
        juce::Path shape;

        if (isRound)
            shape.addEllipse(bounds);
        else
            shape.addRectangle(bounds);

        return shape;
    };

    const auto boxShape = makeShape(box);
    g.setColour(faceColour);
    g.fillPath(boxShape);
    g.setColour(outlineColour);
    g.strokePath(boxShape, juce::PathStrokeType(thickness));

    if (ticked)
    {
        g.setColour(tickColour);
        g.fillPath(makeShape(tick));
    }
}

int DarkTheme::getSliderThumbRadius(juce::Slider& slider)
{
    constexpr int largest = 12, lowHeight = 24, margin = 2;

    const int height = slider.getHeight();
    return juce::jmin(slider.getWidth() / 2, height < lowHeight ? height / 2 : largest) + margin;
}

void DarkTheme::drawLinearSliderBackground(juce::Graphics& g, int x, int y, int width, int height,
                                           float sliderPos, float, float, juce::Slider::SliderStyle,
                                           juce::Slider& slider)
{
    const auto area = Rectangle<int>(x, y, width, height).toFloat();
    const auto thickness = static_cast<float>(getSliderThumbRadius(slider));
    const auto fillThickness = juce::jmax(0.0f, thickness - 2.0f * grooveMargin);
    const auto dark = Colours::black.withAlpha(0.25f), light = Colours::black.withAlpha(0.15f);

    Rectangle<float> groove, filled;

    if (slider.isHorizontal())
    {
        const float top = area.getCentreY() - 0.5f * thickness;
        groove = {area.getX() - grooveMargin, top, area.getWidth() + 2.0f * grooveMargin, thickness};
        filled = {area.getX(), top + grooveMargin, sliderPos - area.getX(), fillThickness};
        g.setGradientFill(juce::ColourGradient::vertical(dark, light, groove));
    }
    else
    {
        const float left = area.getCentreX() - 0.5f * thickness;
        groove = {left, area.getY() - grooveMargin, thickness, area.getHeight() + 2.0f * grooveMargin};
        filled = {left + grooveMargin, sliderPos, fillThickness, area.getBottom() - sliderPos};
        g.setGradientFill(juce::ColourGradient::horizontal(dark, light, groove));
    }

    g.fillRect(groove);
    g.setColour(
        slider.findColour(juce::Slider::rotarySliderFillColourId).withAlpha(themes::filledPartAlpha(slider)));
    g.fillRect(filled);
}

void DarkTheme::drawLinearSliderThumb(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                                      float minPos, float maxPos, juce::Slider::SliderStyle style,
                                      juce::Slider& slider)
{
    if (!themes::hasSingleThumb(style))
    {
        LookAndFeel_V3::drawLinearSliderThumb(g, x, y, width, height, sliderPos, minPos, maxPos, style,
                                              slider);
        return;
    }

    constexpr float cornerSize = 3.0f, lengthOfWidth = 1.4f, markWidth = 2.0f;

    const auto colour = themes::faderThumbColour(slider);
    const auto radius = static_cast<float>(getSliderThumbRadius(slider));
    const float quarterTurn =
        style == juce::Slider::LinearHorizontal ? juce::MathConstants<float>::halfPi : 0.0f;
    const auto place = juce::AffineTransform::rotation(quarterTurn)
                           .translated(themes::faderThumbCentre({x, y, width, height}, sliderPos, style));
    const auto aroundOrigin = [](float w, float h) {
        return Rectangle<float>(w, h).withCentre({0.0f, 0.0f});
    };

    juce::Path mark;
    mark.addRectangle(aroundOrigin(2.0f * radius, markWidth));
    mark.applyTransform(place);

    // The thumb leaves the mark's place free: on a thumb of the same colour nobody would see the mark.
    juce::Path thumb;
    thumb.addRoundedRectangle(aroundOrigin(2.0f * radius, 2.0f * lengthOfWidth * radius), cornerSize);
    thumb.applyTransform(place);
    const auto bounds = thumb.getBounds();
    thumb.addPath(mark);
    thumb.setUsingNonZeroWinding(false);

    g.setGradientFill(createControlGradient(colour, bounds.getY(), bounds.getBottom()));
    g.fillPath(thumb);
    g.setColour(colour.withAlpha(0.4f));
    g.fillPath(mark);
}

void DarkTheme::drawRotarySlider(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                                 float rotaryStart, float rotaryEnd, juce::Slider& slider)
{
    constexpr float innerRing = 0.8f, faceOfInnerRing = 0.9f;
    constexpr float pointerDistance = 0.5f, pointerRadius = 0.17f;

    const themes::Knob knob({x, y, width, height}, sliderPos, rotaryStart, rotaryEnd);
    themes::drawKnobRing(g, knob, slider, innerRing, Colour(0x20000000));

    const auto face = knob.circle(2.0f * knob.radius * innerRing * faceOfInnerRing);
    const auto colour = themes::knobColour(slider.findColour(juce::Slider::thumbColourId), slider);
    g.setGradientFill(createControlGradient(colour, face.getY(), face.getBottom()));
    g.fillEllipse(face);

    if (!slider.isEnabled())
        return;

    juce::Path pointer;
    pointer.addPolygon({0.0f, -pointerDistance * knob.radius}, 3, pointerRadius * knob.radius);
    g.setColour(Colour(0xff000000));
    g.fillPath(pointer, juce::AffineTransform::rotation(knob.angle).translated(knob.centre));
}
