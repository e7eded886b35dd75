/**
    The icon font, as a typeface shared by everything that draws glyphs of it (see FontAwesomeIcons.h for their
    names):

        g.setFont(juce::Font(FontAwesome_ptr()).withHeight(16.0f));
        g.drawText(juce::String::fromUTF8(FontAwesomeIcons::MINUS), area, juce::Justification::centred);

    It is made at the first call and lives until the library shuts down, with the last instance of the plug-in. It
    is not a global object, since the first typeface of a process makes the library look through the system's
    fonts, and a host that only scans its plug-ins should not have to wait for that.

    Thread: message thread.
*/
#pragma once

#include <juce_graphics/juce_graphics.h>

const juce::Typeface::Ptr& FontAwesome_ptr();
