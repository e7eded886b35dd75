/**
    The compiled-in text font.

    Cost: parses about 160 kB; the library's cache of typefaces keeps the result for all fonts of the same name
    and style. Thread: message thread.
*/
#pragma once

#include <juce_graphics/juce_graphics.h>

/** A new typeface, Roboto Bold or Roboto Regular. */
juce::Typeface::Ptr createRobotoTypeface(bool bold);
