#include "editor/themes/ControlPainting.h"

#include <cmath>

namespace themes
{

juce::Colour shaded(juce::Colour colour, const Interaction& interaction)
{
    const auto base = colour.withMultipliedSaturation(interaction.focused ? 1.3f : 0.9f);

    if (interaction.pressed)
        return base.contrasting(0.2f);

    return interaction.hovered ? base.contrasting(0.1f) : base;
}

bool isHot(const juce::Slider& slider) { return slider.isMouseOverOrDragging() && slider.isEnabled(); }

juce::Colour faderThumbColour(juce::Slider& slider)
{
    const bool enabled = slider.isEnabled();

    return shaded(slider.findColour(juce::Slider::thumbColourId),
                  {.focused = slider.hasKeyboardFocus(false) && enabled,
                   .hovered = isHot(slider),
                   .pressed = slider.isMouseButtonDown() && enabled});
}

juce::Colour knobColour(juce::Colour colour, const juce::Slider& slider)
{
    return shaded(colour, {.focused = slider.hasKeyboardFocus(true), .hovered = isHot(slider)});
}

float filledPartAlpha(const juce::Slider& slider) { return isHot(slider) ? 1.0f : 0.7f; }

juce::Point<float> faderThumbCentre(juce::Rectangle<int> area, float sliderPosition,
                                    juce::Slider::SliderStyle style)
{
    const auto centre = area.toFloat().getCentre();
    return style == juce::Slider::LinearVertical ? centre.withY(sliderPosition)
                                                 : centre.withX(sliderPosition);
}

bool hasSingleThumb(juce::Slider::SliderStyle style)
{
    return style == juce::Slider::LinearHorizontal || style == juce::Slider::LinearVertical;
}

float outlineThickness(bool isEnabled, bool isHovered, bool isPressed)
{
    if (!isEnabled)
        return 0.4f;

    return isHovered || isPressed ? 1.2f : 0.7f;
}

float flatButtonInset(bool isEnabled, bool isHovered, bool isPressed)
{
    if (!isEnabled)
        return 0.2f;

    return isHovered || isPressed ? 0.6f : 0.35f;
}

juce::Rectangle<float> insetButtonBounds(const juce::Button& button, float freeEdgeInset)
{
    constexpr float connectedEdgeInset = 0.1f;
    const auto inset = [=](bool isConnected) { return isConnected ? connectedEdgeInset : freeEdgeInset; };

    return button.getLocalBounds()
        .toFloat()
        .withTrimmedLeft(inset(button.isConnectedOnLeft()))
        .withTrimmedTop(inset(button.isConnectedOnTop()))
        .withTrimmedRight(inset(button.isConnectedOnRight()))
        .withTrimmedBottom(inset(button.isConnectedOnBottom()));
}

juce::Path buttonOutline(const juce::Button& button, juce::Rectangle<float> bounds, float cornerSize)
{
    const bool left = button.isConnectedOnLeft(), right = button.isConnectedOnRight();
    const bool top = button.isConnectedOnTop(), bottom = button.isConnectedOnBottom();

    juce::Path outline;
    outline.addRoundedRectangle(bounds.getX(), bounds.getY(), bounds.getWidth(), bounds.getHeight(),
                                cornerSize, cornerSize, !(left || top), !(right || top), !(left || bottom),
                                !(right || bottom));
    return outline;
}

Knob::Knob(juce::Rectangle<int> area, float position, float startAngle, float endAngle)
    : radius(static_cast<float>(juce::jmin(area.getWidth() / 2, area.getHeight() / 2) - 2)),
      centre(area.toFloat().getCentre()), start(startAngle), end(endAngle),
      angle(startAngle + position * (endAngle - startAngle))
{
}

juce::Rectangle<float> Knob::circle(float diameter) const
{
    return juce::Rectangle<float>(diameter, diameter).withCentre(centre);
}

juce::Point<float> Knob::pointAt(double distance) const
{
    return {static_cast<float>(centre.x + std::sin(angle) * distance),
            static_cast<float>(centre.y - std::cos(angle) * distance)};
}

void drawKnobRing(juce::Graphics& g, const Knob& knob, juce::Slider& slider, float innerProportion,
                  juce::Colour rest)
{
    const auto fill =
        slider.isEnabled()
            ? slider.findColour(juce::Slider::rotarySliderFillColourId).withAlpha(filledPartAlpha(slider))
            : juce::Colour(0x80808080);

    const auto drawSegment = [&](juce::Colour colour, float from, float to)
    {
        juce::Path segment;
        segment.addPieSegment(knob.circle(2.0f * knob.radius), from, to, innerProportion);
        g.setColour(colour);
        g.fillPath(segment);
    };

    drawSegment(fill, knob.start, knob.angle);
    drawSegment(rest, knob.angle, knob.end);
}

float toggleTextHeight(const juce::ToggleButton& button, float largest)
{
    return juce::jmin(static_cast<float>(button.getHeight()) * 0.75f, largest);
}

void drawToggle(juce::Graphics& g, juce::LookAndFeel& look, juce::ToggleButton& button, bool isHovered,
                bool isPressed, float largestText, int leastTextWidth)
{
    constexpr float boxIndent = 4.0f;
    constexpr int gap = 7, margins = 9;

    const float textHeight = toggleTextHeight(button, largestText);
    const float boxSize = 1.2f * textHeight;

    look.drawTickBox(g, button, boxIndent, (static_cast<float>(button.getHeight()) - boxSize) * 0.5f, boxSize,
                     boxSize, button.getToggleState(), button.isEnabled(), isHovered, isPressed);

    const int textLeft = static_cast<int>(boxSize);
    const int textWidth = button.getWidth() - textLeft - margins;

    if (textWidth < leastTextWidth)
        return;

    g.setColour(button.findColour(juce::ToggleButton::textColourId));
    g.setFont(juce::Font(textHeight));

    if (!button.isEnabled())
        g.setOpacity(0.5f);

    constexpr int mostLines = 10;
    g.drawFittedText(button.getButtonText(), textLeft + gap, 0, textWidth, button.getHeight(),
                     juce::Justification::centredLeft, mostLines);
}

bool isRadioButton(const juce::Component& component)
{
    const auto* toggle = dynamic_cast<const juce::ToggleButton*>(&component);
    return toggle != nullptr && toggle->getRadioGroupId() > 0;
}

TickBox::TickBox(juce::Rectangle<float> area, float proportionOfWidth)
{
    const float size = proportionOfWidth * area.getWidth();
    const auto centredInHeight = [&](float x, float side)
    { return juce::Rectangle<float>(x, area.getY() + (area.getHeight() - side) * 0.5f, side, side); };

    box = centredInHeight(area.getX(), size);
    tick = centredInHeight(area.getX() + 0.2f * size, size - 0.4f * size);
}

GroupLayout::GroupLayout(int width, int height, const juce::String& text, const juce::Font& font)
{
    constexpr float captionMargins = 24.0f, captionPadding = 12.0f;
    const float captionHeight = font.getHeight() + captionPadding;

    caption = {font.getStringWidthFloat(text) + captionMargins, captionHeight};
    body = {0.0f, captionHeight, static_cast<float>(width), static_cast<float>(height) - captionHeight};
}

} // namespace themes
