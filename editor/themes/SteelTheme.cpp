#include "editor/themes/SteelTheme.h"

#include "Artwork.h"
#include "editor/themes/ControlPainting.h"
#include "editor/themes/LightControls.h"

using juce::Colour;
namespace Colours = juce::Colours;

namespace
{

const Colour accent{0xffd2691e};
const Colour buttonOn{0xffffda73};

} // namespace

SteelTheme::SteelTheme()
{
    themes::setLightColours(*this, {.control = accent, .buttonOn = buttonOn});
    tile = juce::ImageCache::getFromMemory(Artwork::steel_jpg, Artwork::steel_jpgSize);
    headerWaves = juce::Drawable::createFromImageData(Artwork::headerWaves_svg, Artwork::headerWaves_svgSize);
}

void SteelTheme::paintBackground(juce::Graphics& g, int width, int height)
{
    g.setTiledImageFill(tile, 0, 0, 1.0f);
    g.fillRect(0, 0, width, height);
}

void SteelTheme::paintHeaderBackground(juce::Graphics& g, int width, int height, const juce::String& title)
{
    constexpr float wavesLeft = 120.0f, wavesTop = 8.0f, wavesHeight = 32.0f, wavesOpacity = 0.8f;
    constexpr int otherWidth = 118; // the waves run two pixels past the right edge

    g.setColour(Colours::white);
    g.fillRect(0, 0, width, height);

    if (headerWaves != nullptr)
        headerWaves->drawWithin(g, {wavesLeft, wavesTop, static_cast<float>(width - otherWidth), wavesHeight},
                                juce::RectanglePlacement::stretchToFit, wavesOpacity);

    themes::drawLightTitle(g, width, title, titleFont);
}

float SteelTheme::getTitleWidth(const juce::String& title) { return titleFont.getStringWidthFloat(title); }

float SteelTheme::getDefaultCurveThickness() { return 1.0f; }

void SteelTheme::getActiveBandCurveColours(Colour base, Colour& first, Colour& second)
{
    first = base;
    second = Colours::transparentBlack;
}

void SteelTheme::drawBevelRect(juce::Graphics& g, float x, float y, float w, float h, float corner,
                               Colour colour, float thickness)
{
    const auto m = static_cast<float>(juce::jmax(1, static_cast<int>(juce::jmin(h, w))));
    const auto lit = colour.withMultipliedAlpha(0.3f);

    g.setGradientFill({lit, x, y + h - m, colour, x, y + h, false});
    g.fillRoundedRectangle(x, y, w, h, corner);

    g.setGradientFill({lit, x + w - m, y, colour, x + w, y, false});
    g.fillRoundedRectangle(x, y, w, h, corner);

    g.setGradientFill({Colour(0x40000000), x, y, Colour(0x80000000), x, y + m, false});
    g.drawRoundedRectangle(x, y, w, h, corner, thickness);
}

void SteelTheme::drawButtonBackground(juce::Graphics& g, juce::Button& button, const Colour& background,
                                      bool isMouseOver, bool isButtonDown)
{
    constexpr float cornerSize = 3.0f;

    const float thickness = themes::outlineThickness(button.isEnabled(), isMouseOver, isButtonDown);
    const auto bounds = themes::insetButtonBounds(button, 0.5f * thickness);
    const auto colour = themes::shaded(background, {.focused = button.hasKeyboardFocus(true),
                                                    .hovered = isMouseOver,
                                                    .pressed = isButtonDown})
                            .withMultipliedAlpha(button.isEnabled() ? 1.0f : 0.5f);

    // A pressed button sinks in.
    if (isButtonDown)
        themes::drawEngravedRect(g, bounds.getX(), bounds.getY(), bounds.getWidth(), bounds.getHeight(),
                                 cornerSize, colour, thickness);
    else
        drawBevelRect(g, bounds.getX(), bounds.getY(), bounds.getWidth(), bounds.getHeight(), cornerSize,
                      colour, thickness);
}

void SteelTheme::drawToggleButton(juce::Graphics& g, juce::ToggleButton& button, bool isMouseOver,
                                  bool isButtonDown)
{
    themes::drawToggle(g, *this, button, isMouseOver, isButtonDown, groupCaptionSize, 1);
}

void SteelTheme::drawTickBox(juce::Graphics& g, juce::Component& component, float x, float y, float w,
                             float h, bool ticked, bool isEnabled, bool isMouseOver, bool isButtonDown)
{
    themes::drawLightTickBox(g, component, {x, y, w, h}, findColour(juce::Slider::thumbColourId), ticked,
                             isEnabled, isMouseOver, isButtonDown);
}

void SteelTheme::drawLinearSliderBackground(juce::Graphics& g, int x, int y, int width, int height, float,
                                            float, float, juce::Slider::SliderStyle, juce::Slider& slider)
{
    themes::drawLightFaderGroove(g, {x, y, width, height}, static_cast<float>(getSliderThumbRadius(slider)),
                                 slider.isHorizontal());
}

void SteelTheme::drawLinearSliderThumb(juce::Graphics& g, int x, int y, int width, int height,
                                       float sliderPos, float minPos, float maxPos,
                                       juce::Slider::SliderStyle style, juce::Slider& slider)
{
    if (!themes::hasSingleThumb(style))
    {
        LookAndFeel_V3::drawLinearSliderThumb(g, x, y, width, height, sliderPos, minPos, maxPos, style,
                                              slider);
        return;
    }

    const float radius = themes::lightThumbRadius(getSliderThumbRadius(slider));
    const auto centre = themes::faderThumbCentre({x, y, width, height}, sliderPos, style);

    themes::drawGlassRect(g, centre.x - radius, centre.y - radius, 2.0f * radius, 2.0f * radius, 3.0f,
                          themes::faderThumbColour(slider), slider.isEnabled() ? 0.8f : 0.3f);
}

void SteelTheme::drawRotarySlider(juce::Graphics& g, int x, int y, int width, int height, float sliderPos,
                                  float rotaryStart, float rotaryEnd, juce::Slider& slider)
{
    constexpr float faceOfRing = 0.7f, rimWidth = 3.0f;
    constexpr double pointerOfRing = 0.45;
    constexpr float pointerDiameter = 6.0f, pointerOutline = 0.3f;

    const themes::Knob knob({x, y, width, height}, sliderPos, rotaryStart, rotaryEnd);
    themes::drawKnobRing(g, knob, slider, faceOfRing, Colours::black.withAlpha(0.1f));

    // The far ends of both gradients are measured downwards from the face's left edge, too, so the light falls
    // on the knob by where it stands in its component.
    const auto face = knob.circle(2.0f * knob.radius * faceOfRing);
    const float left = face.getX(), right = face.getRight(), d = face.getWidth();
    const auto metal = themes::knobColour(Colours::grey, slider);

    g.setGradientFill(
        {metal.withMultipliedAlpha(0.3f), left, face.getY(), metal, right, left + 0.3f * d, false});
    g.fillEllipse(face);

    g.setGradientFill({Colours::white.withMultipliedAlpha(0.5f), left, face.getY(),
                       Colours::black.withMultipliedAlpha(0.5f), right, left + d, false});
    g.drawEllipse(face, rimWidth);

    const auto pointer = slider.isEnabled()
                             ? themes::knobColour(findColour(juce::Slider::thumbColourId), slider)
                             : Colours::grey;
    const auto tip = knob.pointAt(knob.radius * pointerOfRing);
    drawGlassSphere(g, tip.x - 0.5f * pointerDiameter, tip.y - 0.5f * pointerDiameter, pointerDiameter,
                    pointer, pointerOutline);
}

void SteelTheme::drawGroupComponentOutline(juce::Graphics& g, int width, int height, const juce::String& text,
                                           const juce::Justification&, juce::GroupComponent& group)
{
    themes::drawLightGroup(g, width, height, text, groupCaptionSize,
                           group.findColour(juce::GroupComponent::textColourId));
}
