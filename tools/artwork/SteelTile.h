/**
    The brushed metal face of the steel theme: a square tile that repeats without a seam in both directions.

    Brushing is noise that was smeared along one direction. Every pixel of white noise is blurred along its row with
    a kernel that wraps around at the edges, so the left edge goes on where the right one ends; the rows are
    independent of each other but for a slow, wrapping drift of brightness that keeps the face from looking flat.
    The same seed gives the same tile on every system.
*/
#pragma once

#include <juce_gui_basics/juce_gui_basics.h>

namespace ambrel::artwork
{

/** Size of the tile in pixels. A multiple of 16, so that no block of the JPEG crosses its edge. */
inline constexpr int steelTileSize = 256;

juce::Image makeSteelTile();

} // namespace ambrel::artwork
