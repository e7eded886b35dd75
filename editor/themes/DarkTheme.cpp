#include "editor/themes/DarkTheme.h"

#include "editor/themes/RobotoFont.h"
#include "plugin/FallbackTypeface.h"

using juce::Colour;
using juce::ColourGradient;
namespace Colours = juce::Colours;

DarkTheme::DarkTheme()
{
    setPalette();
    setDerivedColours();

    logoPlate.startNewSubPath(0.0f, 40.0f);
    logoPlate.lineTo(96.0f, 40.0f);
    logoPlate.lineTo(112.0f, 20.0f);
    logoPlate.lineTo(96.0f, 0.0f);
    logoPlate.lineTo(0.0f, 0.0f);
    logoPlate.closeSubPath();
}

void DarkTheme::setPalette()
{
    setColour(faceColourId, Colour(0xffc3c6cc));
    setColour(glyphColourId, Colours::black);
    setColour(accentColourId, Colour(0xffeeac18));
    setColour(surfaceColourId, Colour(0xff454954));

    // For the displays of other editors of the framework.
    setColour(0x2001004, Colour(0xff16161c));
    setColour(0x2001006, Colours::indianred);
    setColour(0x2001005, Colour(0xffffde6f));
    setColour(0x2001007, Colour(0xff40d040));
}

void DarkTheme::setDerivedColours()
{
    const auto face = findColour(faceColourId);
    const auto accent = findColour(accentColourId);
    const auto surface = findColour(surfaceColourId);
    const auto dimmed = Colours::white.withBrightness(0.3f);
    const Colour displayBackground{0xff232429};

    const std::pair<int, Colour> assignments[] = {
        {juce::Label::textColourId, Colours::white},
        {juce::Slider::thumbColourId, face},
        {juce::Slider::rotarySliderFillColourId, accent},
        {juce::Slider::textBoxHighlightColourId, accent},
        {juce::Slider::textBoxBackgroundColourId, face},
        {juce::Slider::textBoxOutlineColourId, face.withMultipliedAlpha(0.2f)},
        {juce::TextButton::buttonColourId, face},
        {juce::TextButton::buttonOnColourId, accent},
        {juce::TextEditor::backgroundColourId, face},
        {juce::TextEditor::highlightColourId, accent},
        {juce::TextEditor::focusedOutlineColourId, accent},
        {juce::ComboBox::buttonColourId, accent},
        {juce::ComboBox::backgroundColourId, face},
        {juce::ListBox::backgroundColourId, Colour(0xff16161c)},
        {juce::ListBox::textColourId, Colours::white},
        {juce::ToggleButton::textColourId, Colours::white},
        {juce::GroupComponent::outlineColourId, Colour(0x10ffffff)},
        {juce::GroupComponent::textColourId, Colours::white},
        {juce::PopupMenu::highlightedTextColourId, Colours::white},
        {juce::PopupMenu::headerTextColourId, Colours::white},
        {juce::PopupMenu::highlightedBackgroundColourId, accent},
        {juce::PopupMenu::backgroundColourId, surface.darker(0.4f)},
        {juce::PopupMenu::textColourId, Colours::white},
        {juce::Toolbar::backgroundColourId, face},
        {juce::Toolbar::buttonMouseOverBackgroundColourId, accent.withAlpha(0.6f)},
        {juce::Toolbar::buttonMouseDownBackgroundColourId, accent},
        {juce::AlertWindow::backgroundColourId, surface},
        {juce::AlertWindow::textColourId, Colours::white},
        {juce::DocumentWindow::textColourId, Colours::white},
        {juce::ScrollBar::backgroundColourId, Colours::white.withAlpha(0.15f)},
        {juce::ScrollBar::thumbColourId, Colour(0xffc3c6cc)},

        // For the displays of other editors of the framework.
        {0x2001101, face},
        {0x2001100, face},
        {0x2001600, face},
        {0x2001300, displayBackground},
        {0x2001200, displayBackground},
        {0x2001302, dimmed},
        {0x2001301, dimmed},
        {0x2001204, dimmed},
        {0x2001203, dimmed},
        {0x2001303, Colours::white},
        {0x2001400, Colours::white},
        {0x2001205, Colours::white},
        {0x2001500, Colours::white},
        {0x2001401, accent.withAlpha(0.15f)},
        {0x2001c00, surface.brighter(0.1f)},
    };

    for (const auto& [id, colour] : assignments)
        setColour(id, colour);
}

ColourGradient DarkTheme::createControlGradient(Colour colour, float y1, float y2)
{
    const float contrast = juce::jmin(y2 / 160.0f + 1.0f, 1.2f);

    return {colour.withMultipliedBrightness(contrast),
            0.0f,
            y1,
            colour.withMultipliedBrightness(1.0f / contrast),
            0.0f,
            y2,
            false};
}

void DarkTheme::paintBackground(juce::Graphics& g, int width, int height)
{
    const auto surface = findColour(surfaceColourId);
    const auto bottom = static_cast<float>(height);

    g.setGradientFill(ColourGradient::vertical(surface.withMultipliedBrightness(0.75f), 0.5f * bottom,
                                               surface.withMultipliedBrightness(0.5f), bottom));
    g.fillRect(0, 0, width, height);
}

void DarkTheme::paintHeaderBackground(juce::Graphics& g, int width, int height, const juce::String& title)
{
    constexpr int plateWidth = 96, titleLeft = 120;

    const auto surface = findColour(surfaceColourId);
    const auto bottom = static_cast<float>(height);

    g.setGradientFill({surface, 288.0f, 0.0f, surface.withMultipliedBrightness(0.6f), 288.0f, bottom, false});
    g.fillRect(plateWidth, 0, width - plateWidth, height - 1);

    g.setGradientFill(
        {Colours::white, 64.0f, 0.0f, Colours::white.withBrightness(0.8f), 64.0f, bottom, false});
    g.fillPath(logoPlate);

    g.setColour(Colours::white);
    g.setFont(titleFont);
    g.drawText(title, titleLeft, 0, width - titleLeft, height - 2, juce::Justification::centredLeft, true);

    g.setColour(surface.withMultipliedBrightness(0.9f));
    g.fillRect(0, height - 1, width, 1);
}

Colour DarkTheme::getShadowColour() { return Colour(0x32000000); }

float DarkTheme::getTitleWidth(const juce::String& title) { return titleFont.getStringWidthFloat(title); }

float DarkTheme::getDefaultCurveThickness() { return 1.5f; }

void DarkTheme::getActiveBandCurveColours(Colour base, Colour& first, Colour& second)
{
    first = base.withMultipliedAlpha(0.5f);
    second = base.withMultipliedAlpha(0.2f);
}

juce::Typeface::Ptr DarkTheme::getTypefaceForFont(const juce::Font& font)
{
    if (font.getTypefaceName() == juce::Font::getDefaultSansSerifFontName())
        return FallbackTypeface::complete(createRobotoTypeface(font.isBold()));

    return BaseTheme::getTypefaceForFont(font);
}
