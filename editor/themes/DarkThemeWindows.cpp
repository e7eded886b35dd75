// Boxes, bars, tables, menus and windows of the dark theme.

#include "editor/FontAwesomeIcons.h"
#include "editor/FontAwesomeTypeface.h"
#include "editor/IconButton.h"
#include "editor/themes/ControlPainting.h"
#include "editor/themes/DarkTheme.h"

#include <array>

using juce::Colour;
namespace Colours = juce::Colours;
using juce::Justification;
using juce::Rectangle;

namespace
{

constexpr float menuFontHeight = 15.0f;

/** A scroll bar's thumb keeps four pixels of the bar free on each side, and one more at the far side. */
constexpr int thumbInset = 4;
constexpr int thumbCrossMargins = 9;

} // namespace

void DarkTheme::drawGroupComponentOutline(juce::Graphics& g, int width, int height, const juce::String& text,
                                          const Justification&, juce::GroupComponent& group)
{
    constexpr float cornerSize = 5.0f;

    const juce::Font font(groupCaptionSize, juce::Font::bold);
    const auto [caption, body] = themes::GroupLayout(width, height, text, font);

    juce::Path shape;
    shape.addRoundedRectangle(caption.getX(), caption.getY(), caption.getWidth(), caption.getHeight(),
                              cornerSize, cornerSize, true, true, false, false);
    shape.addRectangle(body);
    g.setColour(group.findColour(juce::GroupComponent::outlineColourId));
    g.fillPath(shape);

    g.setFont(font);
    g.setColour(group.findColour(juce::GroupComponent::textColourId));
    g.drawText(text, caption.toNearestInt(), Justification::centred, false);
}

void DarkTheme::drawComboBox(juce::Graphics& g, int width, int height, bool, int buttonX, int buttonY,
                             int buttonW, int buttonH, juce::ComboBox& box)
{
    g.setColour(box.findColour(juce::ComboBox::backgroundColourId));
    g.fillRect(0, 0, width, height);

    const bool isFocused = box.isEnabled() && box.hasKeyboardFocus(false);
    g.setColour(box.findColour(isFocused ? juce::ComboBox::buttonColourId : juce::ComboBox::outlineColourId));
    g.drawRect(0, 0, width, height, isFocused ? 2 : 1);

    const auto button = Rectangle<int>(buttonX, buttonY, buttonW, buttonH).toFloat();
    const float halfWidth = 0.3f * button.getWidth();

    juce::Path arrows;
    const auto addArrow = [&](float tip, float base)
    {
        const float tipY = button.getY() + tip * button.getHeight();
        const float baseY = button.getY() + base * button.getHeight();
        arrows.addTriangle({button.getCentreX(), tipY}, {button.getCentreX() - halfWidth, baseY},
                           {button.getCentreX() + halfWidth, baseY});
    };
    addArrow(0.25f, 0.45f);
    addArrow(0.75f, 0.55f);

    g.setColour(
        box.findColour(juce::ComboBox::arrowColourId).withMultipliedAlpha(box.isEnabled() ? 1.0f : 0.3f));
    g.fillPath(arrows);
}

bool DarkTheme::areScrollbarButtonsVisible() { return true; }

int DarkTheme::getDefaultScrollbarWidth() { return 20; }

void DarkTheme::drawScrollbar(juce::Graphics& g, juce::ScrollBar& bar, int x, int y, int width, int height,
                              bool isVertical, int thumbStart, int thumbSize, bool isMouseOver,
                              bool isMouseDown)
{
    g.setColour(bar.findColour(juce::ScrollBar::backgroundColourId));
    g.fillRect(x, y, width, height);

    const auto thumb = isVertical ? Rectangle<int>(x + thumbInset, thumbStart + thumbInset,
                                                   width - thumbCrossMargins, thumbSize - 2 * thumbInset)
                                  : Rectangle<int>(thumbStart + thumbInset, y + thumbInset,
                                                   thumbSize - 2 * thumbInset, height - thumbCrossMargins);

    // The library asks for a thumb of no size when there is nothing to scroll.
    if (thumb.isEmpty())
        return;

    const auto colour = bar.findColour(juce::ScrollBar::thumbColourId);
    g.setColour(isMouseOver || isMouseDown ? colour.withMultipliedAlpha(2.0f) : colour);
    g.fillRect(thumb);
}

void DarkTheme::drawScrollbarButton(juce::Graphics& g, juce::ScrollBar&, int width, int height, int direction,
                                    bool isVertical, bool isMouseOver, bool isButtonDown)
{
    static constexpr std::array glyphs{FontAwesomeIcons::CARET_UP, FontAwesomeIcons::CARET_RIGHT,
                                       FontAwesomeIcons::CARET_DOWN, FontAwesomeIcons::CARET_LEFT};
    constexpr float glyphOfSquare = 0.76f;

    // In line with the bar's thumb.
    const int side = juce::jmax(0, (isVertical ? width : height) - thumbCrossMargins);
    const auto square = Rectangle<int>(isVertical ? thumbInset : (width - side) / 2,
                                       isVertical ? (height - side) / 2 : thumbInset, side, side)
                            .toFloat();

    const auto colour =
        themes::shaded(findColour(faceColourId), {.hovered = isMouseOver, .pressed = isButtonDown});
    g.setGradientFill(createControlGradient(colour, square.getY(), square.getBottom()));
    g.fillRect(square);

    g.setFont(juce::Font(FontAwesome_ptr()).withHeight(glyphOfSquare * square.getHeight()));
    g.setColour(findColour(glyphColourId));
    g.drawText(juce::String::fromUTF8(glyphs[static_cast<std::size_t>(direction & 3)]), square,
               Justification::centred, false);
}

void DarkTheme::drawTableHeaderBackground(juce::Graphics& g, juce::TableHeaderComponent& header)
{
    const auto surface = findColour(surfaceColourId);
    auto area = header.getLocalBounds();

    g.setColour(Colours::black.withAlpha(0.5f));
    g.fillRect(area.removeFromBottom(1));
    g.setColour(surface);
    g.fillRect(area);

    g.setColour(surface.darker(0.2f));

    for (int i = header.getNumColumns(true); --i >= 0;)
        g.fillRect(header.getColumnPosition(i).removeFromRight(1));
}

void DarkTheme::drawTableHeaderColumn(juce::Graphics& g, juce::TableHeaderComponent&,
                                      const juce::String& columnName, int, int width, int height,
                                      bool isMouseOver, bool isMouseDown, int columnFlags)
{
    using Header = juce::TableHeaderComponent;
    constexpr int margin = 4;

    if (isMouseDown || isMouseOver)
        g.fillAll(findColour(isMouseDown ? accentColourId : surfaceColourId));

    Rectangle<int> textBox(margin, 0, juce::jmax(0, width - 2 * margin), juce::jmax(0, height));

    if ((columnFlags & (Header::sortedForwards | Header::sortedBackwards)) != 0)
    {
        const bool isForwards = (columnFlags & Header::sortedForwards) != 0;
        const auto arrowBox = textBox.removeFromRight(height / 2).reduced(2).toFloat();

        juce::Path arrow;
        arrow.addTriangle(0.0f, 0.0f, 0.5f, isForwards ? -0.8f : 0.8f, 1.0f, 0.0f);

        if (!arrowBox.isEmpty())
        {
            g.setColour(Colour(0x99000000));
            g.fillPath(arrow, arrow.getTransformToScaleToFit(arrowBox, true));
        }
    }

    g.setColour(isMouseDown ? Colours::black : Colours::white);
    g.setFont(juce::Font(static_cast<float>(height) * 0.5f, juce::Font::bold));
    g.drawFittedText(columnName, textBox, Justification::centredLeft, 1);
}

void DarkTheme::paintToolbarBackground(juce::Graphics& g, int width, int height, juce::Toolbar& toolbar)
{
    const auto colour = toolbar.findColour(juce::Toolbar::backgroundColourId);

    g.setGradientFill(juce::ColourGradient::vertical(colour.withMultipliedBrightness(1.1f), 0.0f,
                                                     colour.withMultipliedBrightness(0.9f),
                                                     static_cast<float>(height)));
    g.fillRect(0, 0, width, height);
}

int DarkTheme::getDefaultMenuBarHeight() { return 24; }

juce::Font DarkTheme::getMenuBarFont(juce::MenuBarComponent&, int, const juce::String&)
{
    return juce::Font(menuFontHeight);
}

void DarkTheme::drawMenuBarBackground(juce::Graphics& g, int, int, bool, juce::MenuBarComponent& menuBar)
{
    g.fillAll(menuBar.findColour(juce::PopupMenu::backgroundColourId));
}

void DarkTheme::drawMenuBarItem(juce::Graphics& g, int width, int height, int itemIndex,
                                const juce::String& itemText, bool isMouseOverItem, bool isMenuOpen, bool,
                                juce::MenuBarComponent& menuBar)
{
    const auto textColour = menuBar.findColour(juce::PopupMenu::textColourId);

    if (!menuBar.isEnabled())
    {
        g.setColour(textColour.withMultipliedAlpha(0.5f));
    }
    else if (isMenuOpen || isMouseOverItem)
    {
        g.fillAll(menuBar.findColour(juce::PopupMenu::highlightedBackgroundColourId));
        g.setColour(menuBar.findColour(juce::PopupMenu::highlightedTextColourId));
    }
    else
    {
        g.setColour(textColour);
    }

    g.setFont(getMenuBarFont(menuBar, itemIndex, itemText));
    g.drawFittedText(itemText, 0, 0, width, height, Justification::centred, 1);
}

juce::Font DarkTheme::getPopupMenuFont() { return juce::Font(menuFontHeight); }

void DarkTheme::drawPopupMenuBackground(juce::Graphics& g, int, int)
{
    g.fillAll(findColour(juce::PopupMenu::backgroundColourId));
}

void DarkTheme::drawDocumentWindowTitleBar(juce::DocumentWindow& window, juce::Graphics& g, int w, int h,
                                           int titleSpaceX, int titleSpaceW, const juce::Image* icon,
                                           bool drawTitleTextOnLeft)
{
    constexpr float fontOfHeight = 0.6f, inactiveAlpha = 0.6f;
    constexpr int iconGap = 4;

    const bool isActive = window.isActiveWindow();
    g.fillAll(window.getBackgroundColour());

    const juce::Font font(static_cast<float>(h) * fontOfHeight);
    const auto iconHeight = static_cast<int>(font.getHeight());
    const bool hasIcon = icon != nullptr && icon->isValid();
    const int iconWidth = hasIcon ? icon->getWidth() * iconHeight / icon->getHeight() + iconGap : 0;

    const int contentWidth = juce::jmin(titleSpaceW, font.getStringWidth(window.getName()) + iconWidth);
    const int centredX =
        juce::jmin(juce::jmax(titleSpaceX, (w - contentWidth) / 2), titleSpaceX + titleSpaceW - contentWidth);
    auto content = Rectangle<int>(drawTitleTextOnLeft ? titleSpaceX : centredX, 0, contentWidth, h);

    if (hasIcon)
    {
        const auto iconBox = content.removeFromLeft(iconWidth).withTrimmedRight(iconGap);
        g.setOpacity(isActive ? 1.0f : inactiveAlpha);
        g.drawImageWithin(*icon, iconBox.getX(), (h - iconHeight) / 2, iconBox.getWidth(), iconHeight,
                          juce::RectanglePlacement::centred, false);
    }

    const auto textColour = window.findColour(juce::DocumentWindow::textColourId);
    g.setColour(isActive ? textColour : textColour.withAlpha(inactiveAlpha));
    g.setFont(font);
    g.drawText(window.getName(), content, Justification::centredLeft, true);
}

juce::Button* DarkTheme::createDocumentWindowButton(int buttonType)
{
    const auto makeButton = [this](const char* name, const char* glyph)
    {
        auto button = std::make_unique<IconButton>(name, juce::String());
        button->setIconFromFontAwesome(juce::String::fromUTF8(glyph));
        button->setColour(juce::TextButton::textColourOffId, findColour(faceColourId));
        button->setColour(juce::TextButton::textColourOnId, findColour(accentColourId));
        button->setButtonStyle(IconButton::iconOnly);
        return button.release();
    };

    switch (buttonType)
    {
    case juce::DocumentWindow::minimiseButton: return makeButton("minimize", FontAwesomeIcons::MINUS);
    case juce::DocumentWindow::maximiseButton: return makeButton("maximize", FontAwesomeIcons::SQUARE_O);
    case juce::DocumentWindow::closeButton: return makeButton("close", FontAwesomeIcons::REMOVE);
    default: return nullptr;
    }
}
