/**
    The drawing behind the knob and the fader, 640 by 100 units: the orange band with its notch for the knob, the
    words in it, and the words at the ends of the fader.

    The notch is a circle of the radius 150 that the band's edges cut at given points; the words are placed
    between the window's margins and that notch.
*/
#pragma once

#include "tools/artwork/GlyphOutlines.h"

namespace ambrel::artwork
{

/** The SVG text. The words are elements of the ids smallAndBright, largeAndDark, dry and wet. */
juce::String makeKnobLabels(const GlyphOutlines& boldCapitals);

} // namespace ambrel::artwork
