/**
    The controls of the bright themes: engraved grooves and boxes, and glass set into them. SteelTheme and
    ReverbTheme share these, together with most of their colours.

    Thread: message thread.
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace themes
{

/** The colours in which the bright themes differ. */
struct LightAccents
{
    juce::Colour control;  ///< thumbs and pointers, and the filled part of a knob's ring
    juce::Colour buttonOn; ///< face of a button that is switched on
};

/** Sets all colours of a bright theme. */
void setLightColours(juce::LookAndFeel& look, const LightAccents& accents);

/** A black title in the header strip, right of the maker's logo. */
void drawLightTitle(juce::Graphics& g, int width, const juce::String& title, const juce::Font& font);

/** A rounded rectangle with darker top and left edges, as of a groove. */
void drawEngravedRect(juce::Graphics& g, float x, float y, float w, float h, float corner,
                      juce::Colour colour, float thickness);

/** The same for an ellipse, darker at the top. */
void drawEngravedEllipse(juce::Graphics& g, float x, float y, float w, float h, juce::Colour colour,
                         float thickness);

/** A rounded rectangle of coloured glass with a highlight. Nothing is drawn where the outline would fill it. */
void drawGlassRect(juce::Graphics& g, float x, float y, float w, float h, float corner, juce::Colour colour,
                   float thickness);

/** An engraved box, round for a radio button, in which a tick is a piece of glass.
    @param glass  colour of the tick before shading */
void drawLightTickBox(juce::Graphics& g, const juce::Component& component, juce::Rectangle<float> area,
                      juce::Colour glass, bool isTicked, bool isEnabled, bool isHovered, bool isPressed);

/** The groove of a fader.
    @param width  of the groove */
void drawLightFaderGroove(juce::Graphics& g, juce::Rectangle<int> area, float width, bool isHorizontal);

/** Radius of a fader's thumb inside the room that the library keeps for it. */
float lightThumbRadius(int roomRadius);

/** A group: a body and a tab with its caption above. */
void drawLightGroup(juce::Graphics& g, int width, int height, const juce::String& text, float captionHeight,
                    juce::Colour textColour);

} // namespace themes
