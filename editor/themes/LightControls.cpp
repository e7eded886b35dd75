#include "editor/themes/LightControls.h"

#include "editor/themes/ControlPainting.h"

namespace themes
{

using juce::Colour;
using juce::ColourGradient;
namespace Colours = juce::Colours;

namespace
{

/** How much of a groove's or box's colour is left at the side that the light reaches. */
constexpr float litAlpha = 0.3f;

const Colour outlineShade{0x80000000};
const Colour outlineLight{0x40000000};

/** The length over which an edge's shade fades, at least one pixel: a gradient needs two points. */
float shadeLength(float w, float h)
{
    return static_cast<float>(juce::jmax(1, static_cast<int>(juce::jmin(w, h))));
}

} // namespace

void setLightColours(juce::LookAndFeel& look, const LightAccents& accents)
{
    const Colour highlight = Colours::sandybrown;
    const Colour brightHighlight = highlight.withMultipliedBrightness(1.3f);

    const std::pair<int, Colour> assignments[] = {
        {juce::Label::textColourId, Colours::black},
        {juce::Slider::thumbColourId, accents.control},
        {juce::Slider::rotarySliderFillColourId, accents.control},
        {juce::Slider::textBoxHighlightColourId, brightHighlight},
        {juce::Slider::textBoxBackgroundColourId, Colour(0x60ffffff)},
        {juce::Slider::textBoxOutlineColourId, Colour(0x20000000)},
        {juce::TextEditor::highlightColourId, highlight},
        {juce::TextEditor::focusedOutlineColourId, brightHighlight},
        {juce::TextButton::buttonColourId, Colours::white},
        {juce::TextButton::buttonOnColourId, accents.buttonOn},
        {juce::ComboBox::buttonColourId, Colours::white},
        {juce::ToggleButton::textColourId, Colours::black},
        {juce::PopupMenu::highlightedBackgroundColourId, Colours::chocolate},

        // For the displays of other editors of the framework.
        {0x2001101, Colours::black},
        {0x2001100, Colours::black},
        {0x2001300, Colours::white},
        {0x2001302, Colours::black.withMultipliedAlpha(0.15f)},
        {0x2001301, Colour(0xff828282)},
        {0x2001303, Colours::white},
        {0x2001400, Colours::black},
        {0x2001401, Colours::transparentBlack},
        {0x2001500, Colours::black},
    };

    for (const auto& [id, colour] : assignments)
        look.setColour(id, colour);
}

void drawLightTitle(juce::Graphics& g, int width, const juce::String& title, const juce::Font& font)
{
    constexpr int left = 120, top = 4, height = 30;
    constexpr int otherWidth = 200; // the title's left edge and the buttons at the right

    g.setColour(Colours::black);
    g.setFont(font);
    g.drawText(title, left, top, width - otherWidth, height, juce::Justification::left, true);
}

void drawEngravedRect(juce::Graphics& g, float x, float y, float w, float h, float corner, Colour colour,
                      float thickness)
{
    const float m = shadeLength(w, h);
    const auto lit = colour.withMultipliedAlpha(litAlpha);

    g.setGradientFill({colour, x, y, lit, x, y + m, false});
    g.fillRoundedRectangle(x, y, w, h, corner);

    g.setGradientFill({colour, x, y, lit, x + m, y, false});
    g.fillRoundedRectangle(x, y, w, h, corner);

    g.setGradientFill({outlineShade, x, y, outlineLight, x, y + m, false});
    g.drawRoundedRectangle(x, y, w, h, corner, thickness);
}

void drawEngravedEllipse(juce::Graphics& g, float x, float y, float w, float h, Colour colour,
                         float thickness)
{
    g.setGradientFill({colour, x, y, colour.withMultipliedAlpha(litAlpha), x, y + h, false});
    g.fillEllipse(x, y, w, h);

    g.setGradientFill({outlineShade, x, y, outlineLight, x, y + h, false});
    g.drawEllipse(x, y, w, h, thickness);
}

void drawGlassRect(juce::Graphics& g, float x, float y, float w, float h, float corner, Colour colour,
                   float thickness)
{
    if (thickness >= juce::jmin(h, w))
        return;

    juce::Path shape;
    shape.addRoundedRectangle(x, y, w, h, corner, corner);

    const auto edge = Colours::white.overlaidWith(colour.withMultipliedAlpha(0.3f));
    ColourGradient body(edge, 0.0f, y, edge, 0.0f, y + h, false);
    body.addColour(0.4, Colours::white.overlaidWith(colour));
    g.setGradientFill(body);
    g.fillPath(shape);

    g.setGradientFill(
        {Colours::white, 0.0f, y + 0.06f * h, Colours::transparentWhite, 0.0f, y + 0.3f * h, false});
    g.fillRoundedRectangle(x + 0.2f * w, y + 0.05f * h, 0.6f * w, 0.4f * h, corner);

    const float outlineAlpha = colour.getFloatAlpha() * 0.5f;
    ColourGradient shade(Colours::transparentBlack, x + 0.5f * w, y + 0.5f * h,
                         Colours::black.withAlpha(outlineAlpha * thickness), x, y + 0.5f * h, false);
    shade.addColour(0.7, Colours::transparentBlack);
    shade.addColour(0.8, Colours::black.withAlpha(0.1f * thickness));
    g.setGradientFill(shade);
    g.fillPath(shape);

    g.setColour(Colours::black.withAlpha(outlineAlpha));
    g.drawRoundedRectangle(x, y, w, h, corner, thickness);
}

void drawLightTickBox(juce::Graphics& g, const juce::Component& component, juce::Rectangle<float> area,
                      Colour glass, bool isTicked, bool isEnabled, bool isHovered, bool isPressed)
{
    constexpr float boxOfWidth = 0.8f, tickOutline = 0.3f;

    const auto [box, tick] = TickBox(area, boxOfWidth);
    const float thickness = outlineThickness(component.isEnabled(), isHovered, isPressed);
    const auto colour =
        shaded(glass,
               {.focused = component.hasKeyboardFocus(true), .hovered = isHovered, .pressed = isPressed})
            .withMultipliedAlpha(isEnabled ? 1.0f : 0.5f);

    if (isRadioButton(component))
    {
        drawEngravedEllipse(g, box.getX(), box.getY(), box.getWidth(), box.getHeight(),
                            Colours::black.withMultipliedAlpha(0.1f), thickness);

        if (isTicked)
            juce::LookAndFeel_V2::drawGlassSphere(g, tick.getX(), tick.getY(), tick.getWidth(), colour,
                                                  tickOutline);
        return;
    }

    drawEngravedRect(g, box.getX(), box.getY(), box.getWidth(), box.getHeight(), 2.0f,
                     Colours::black.withMultipliedAlpha(0.08f), thickness);

    if (isTicked)
        drawGlassRect(g, tick.getX(), tick.getY(), tick.getWidth(), tick.getHeight(), 1.0f, colour,
                      tickOutline);
}

void drawLightFaderGroove(juce::Graphics& g, juce::Rectangle<int> area, float width, bool isHorizontal)
{
    // The groove goes on by half its width beyond the places that the thumb's middle can reach.
    const auto middle = area.toFloat();
    const auto groove = isHorizontal ? middle.withSizeKeepingCentre(middle.getWidth() + width, width)
                                     : middle.withSizeKeepingCentre(width, middle.getHeight() + width);

    drawEngravedRect(g, groove.getX(), groove.getY(), groove.getWidth(), groove.getHeight(), 2.0f,
                     Colours::black.withMultipliedAlpha(0.1f), 0.5f);
}

float lightThumbRadius(int roomRadius) { return static_cast<float>(roomRadius - 2); }

void drawLightGroup(juce::Graphics& g, int width, int height, const juce::String& text, float captionHeight,
                    Colour textColour)
{
    constexpr float corner = 3.0f;

    const juce::Font font(captionHeight, juce::Font::bold);
    const auto [caption, body] = GroupLayout(width, height, text, font);

    g.setColour(Colour(0x40ffffff));
    g.fillRoundedRectangle(caption, corner);
    g.fillRoundedRectangle(body, corner);

    g.setFont(font);
    g.setColour(textColour);
    g.drawText(text, caption.toNearestInt(), juce::Justification::centred, false);
}

} // namespace themes
