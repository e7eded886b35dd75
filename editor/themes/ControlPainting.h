/**
    What all themes draw by the same rules: how a control answers to mouse and focus, the shapes of buttons, and
    the parts of knobs, faders and toggles that differ between the themes in numbers only.

    All lengths are in pixels, all angles in radians clockwise from the top, as the library has them.

    Thread: message thread.
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace themes
{

/** What the user is doing with a control. */
struct Interaction
{
    bool focused = false;
    bool hovered = false;
    bool pressed = false;
};

/** A colour under the user's hand: more saturated with the keyboard focus, and moved towards its opposite in
    brightness when hovered, and farther when pressed. */
juce::Colour shaded(juce::Colour colour, const Interaction& interaction);

/** Whether the mouse is on a slider, or drags it, and the slider cares. */
bool isHot(const juce::Slider& slider);

/** The colour of a fader's thumb: the slider's own, shaded. */
juce::Colour faderThumbColour(juce::Slider& slider);

/** The colour of a knob's face or pointer, shaded for the slider's state; a knob has no pressed look. */
juce::Colour knobColour(juce::Colour colour, const juce::Slider& slider);

/** Opacity of a slider's filled part: full under the mouse. */
float filledPartAlpha(const juce::Slider& slider);

/** Where the middle of a single thumb is. */
juce::Point<float> faderThumbCentre(juce::Rectangle<int> area, float sliderPosition,
                                    juce::Slider::SliderStyle style);

/** Whether a style has one plain thumb; the styles with two or three values keep the library's thumbs. */
bool hasSingleThumb(juce::Slider::SliderStyle style);

/** Width of the line around a button or a tick box: thick under the mouse, thin when disabled. */
float outlineThickness(bool isEnabled, bool isHovered, bool isPressed);

/** How far a flat button keeps from the edges of its component, so that its outline has room. */
float flatButtonInset(bool isEnabled, bool isHovered, bool isPressed);

/** A button's bounds, moved in at its edges. Where it touches a neighbour it is moved in by next to nothing. */
juce::Rectangle<float> insetButtonBounds(const juce::Button& button, float freeEdgeInset);

/** The outline of a button in these bounds. A corner is round where neither of its two edges touches a
    neighbour, so that a row of connected buttons makes one pill. */
juce::Path buttonOutline(const juce::Button& button, juce::Rectangle<float> bounds, float cornerSize);

/** Geometry of a knob within its component. */
struct Knob
{
    Knob(juce::Rectangle<int> area, float position, float startAngle, float endAngle);

    juce::Rectangle<float> circle(float diameter) const;
    juce::Point<float> pointAt(double distance) const; ///< on the pointer's line, this far from the centre

    float radius;
    juce::Point<float> centre;
    float start, end, angle;
};

/** The ring around a knob: the part up to the value in the slider's fill colour, and the rest.
    @param innerProportion  of the ring's inner to its outer radius */
void drawKnobRing(juce::Graphics& g, const Knob& knob, juce::Slider& slider, float innerProportion,
                  juce::Colour rest);

/** Height of a toggle's text. Its box is a fifth larger. */
float toggleTextHeight(const juce::ToggleButton& button, float largest);

/** A toggle button: the look-and-feel's own tick box and the text beside it.
    @param largestText       height of the text where the button is high enough for it
    @param leastTextWidth    with less room than this there is no text */
void drawToggle(juce::Graphics& g, juce::LookAndFeel& look, juce::ToggleButton& button, bool isHovered,
                bool isPressed, float largestText, int leastTextWidth);

/** Whether a tick box is one of several that exclude each other, which are round. */
bool isRadioButton(const juce::Component& component);

/** The two parts of a tick box of width w in an area: the box, smaller than w and centred in the height, and
    the tick in its middle. */
struct TickBox
{
    TickBox(juce::Rectangle<float> area, float proportionOfWidth);

    juce::Rectangle<float> box, tick;
};

/** Where a group's caption and body are. */
struct GroupLayout
{
    GroupLayout(int width, int height, const juce::String& text, const juce::Font& font);

    juce::Rectangle<float> caption, body;
};

} // namespace themes
