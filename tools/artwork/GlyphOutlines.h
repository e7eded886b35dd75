/**
    Words as outlines, for drawings that must not depend on any font:

        const GlyphOutlines bold(robotoBoldFile);
        const juce::Path word = bold.outline("WET", 12.0f, 0.06f);   // baseline at y = 0, ink from x = 0

    Spacing follows the font's advance widths, plus the letter spacing, plus a short table of pairs of capitals that
    would leave a hole between them.
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace ambrel::artwork
{

class GlyphOutlines
{
public:
    /** Throws std::runtime_error if the file is not a font or has no capital H. */
    explicit GlyphOutlines(const juce::File& fontFile);

    /** The outline of capitals, their height in units, the letter spacing as a proportion of it. The baseline is
        at y = 0, the leftmost ink at x = 0. */
    juce::Path outline(const juce::String& capitals, float capHeight, float letterSpacing) const;

private:
    juce::Path glyphOutline(int glyph) const;

    juce::Typeface::Ptr typeface;

    /** Height of the capital H where the font's own height is 1. */
    float capHeightOfFont = 0.0f;
};

/** A path as the d attribute of an SVG path element, in absolute coordinates of a hundredth of a unit. */
juce::String toSvgPathData(const juce::Path& path);

} // namespace ambrel::artwork
