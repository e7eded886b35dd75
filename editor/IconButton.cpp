#include "editor/IconButton.h"

#include "editor/FontAwesomeTypeface.h"

#include <algorithm>

namespace
{
constexpr int gapBetweenIconAndText = 6;
constexpr float disabledAlpha = 0.5f;
constexpr float stateContrast = 0.4f;

juce::Font iconFont(int height)
{
    return juce::Font(FontAwesome_ptr()).withHeight(static_cast<float>(height));
}
} // namespace

IconButton::IconButton(const juce::String& name, const juce::String& tooltip)
    : juce::TextButton(name, tooltip)
{
}

void IconButton::setIcon(juce::Drawable* newIcon)
{
    if (newIcon != drawable.get())
        drawable.reset(newIcon);
    repaint();
}

void IconButton::setIconImage(const juce::Image& newImage)
{
    image = newImage;
    repaint();
}

void IconButton::setIconFromFontAwesome(const juce::String& glyph)
{
    iconGlyph = glyph;
    repaint();
}

int IconButton::getIconWidth(int height) const
{
    if (image.isValid())
        return image.getWidth() * height / image.getHeight();
    if (drawable != nullptr)
        return drawable->getWidth() * height / drawable->getHeight();
    if (iconGlyph.isNotEmpty())
        return iconFont(height).getStringWidth(iconGlyph);
    return 0;
}

void IconButton::paintButton(juce::Graphics& g, bool isMouseOver, bool isButtonDown)
{
    if (style != iconOnly)
        getLookAndFeel().drawButtonBackground(
            g, *this, findColour(getToggleState() ? buttonOnColourId : buttonColourId), isMouseOver,
            isButtonDown);

    const int margin = proportionOfHeight(padding);
    const int height = getHeight() - 2 * margin;
    const int width = std::min(getIconWidth(height), getWidth() - 2 * margin);

    int left = (getWidth() - width) / 2;
    if (style == iconWithText)
    {
        const int textWidth = g.getCurrentFont().getStringWidth(getButtonText());
        drawTextBesideIcon(g, width, height, textWidth);
        left = (getWidth() - width - gapBetweenIconAndText - textWidth) / 2;
    }

    drawIcon(g, {left, margin, width, height}, getIconColour());
}

void IconButton::drawTextBesideIcon(juce::Graphics& g, int iconWidth, int iconHeight, int textWidth)
{
    const auto font = g.getCurrentFont();
    const auto left = static_cast<float>(iconWidth + gapBetweenIconAndText - textWidth + getWidth()) * 0.5f;
    const auto top = static_cast<float>(getHeight() - iconHeight) * 0.5f;

    g.setColour(findColour(textColourOnId));
    g.drawText(getButtonText(),
               juce::Rectangle<float>(left, top, font.getStringWidthFloat(getButtonText()), font.getHeight()),
               juce::Justification::centredLeft, true);
}

juce::Colour IconButton::getIconColour() const
{
    const auto colour = findColour(getToggleState() ? textColourOnId : textColourOffId);
    if (!isEnabled())
        return colour.withMultipliedAlpha(disabledAlpha);
    if (style == iconOnly && isDown())
        return colour.darker(stateContrast);
    if (style == iconOnly && isOver())
        return colour.brighter(stateContrast);
    return colour;
}

void IconButton::drawIcon(juce::Graphics& g, juce::Rectangle<int> area, juce::Colour colour) const
{
    if (image.isValid())
    {
        g.drawImageWithin(image, area.getX(), area.getY(), area.getWidth(), area.getHeight(),
                          juce::RectanglePlacement::centred | juce::RectanglePlacement::stretchToFit);
    }
    else if (drawable != nullptr)
    {
        std::unique_ptr<juce::Drawable> recoloured;
        if (colour != juce::Colours::black)
        {
            recoloured = drawable->createCopy();
            recoloured->replaceColour(juce::Colours::black, colour);
        }
        const auto& shown = recoloured != nullptr ? *recoloured : *drawable;
        shown.drawWithin(g, area.toFloat(), juce::RectanglePlacement::centred, 1.0f);
    }
    else if (iconGlyph.isNotEmpty())
    {
        g.setColour(colour);
        g.setFont(iconFont(area.getHeight()));
        g.drawText(iconGlyph, area, juce::Justification::horizontallyCentred | juce::Justification::top,
                   true);
    }
}
