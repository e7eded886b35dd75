/**
    The font for characters that the usual fonts lack, such as those of Japanese and Chinese texts. macOS and Windows
    find one by themselves. Elsewhere the library takes the box that a font draws for what it lacks for a character like
    any other, so it never looks further, and it knows no font collections, which is what fonts for these languages come
    in. So this class asks the system's fontconfig for a font, opens it, and adds its characters to other typefaces.

        if (FallbackTypeface::isNeededFor(translation) && !FallbackTypeface::provide("ja"))
            // no font here has the characters: boxes would be all there is to see

    The look and feel completes every typeface that it hands out:

        return FallbackTypeface::complete(LookAndFeel_V3::getTypefaceForFont(font));

    Cost: asking takes some milliseconds, the font some 20 MB; it is opened when the first typeface is completed. Nothing
    is asked of a system whose texts need no fallback. Thread: message thread, as everything that has to do with fonts.
*/
#pragma once

#include <juce_graphics/juce_graphics.h>

class FallbackTypeface
{
public:
    /** Whether a text has characters that only fonts of East Asia have. */
    static bool isNeededFor(const juce::String& text);

    /** From now on a font of this language completes others. False, and none does, if the system has none.
        @param language  two letters, as in the name of a translation */
    static bool provide(const juce::String& language);

    static bool isProvided();

    /** The typeface with the characters of the fallback added; the typeface itself if there is no fallback. */
    static juce::Typeface::Ptr complete(const juce::Typeface::Ptr& usual);
};
