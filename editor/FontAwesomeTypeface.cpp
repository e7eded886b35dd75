#include "editor/FontAwesomeTypeface.h"

#include "FontAwesomeData.h"

const juce::Typeface::Ptr& FontAwesome_ptr()
{
    static const juce::Typeface::Ptr typeface = juce::Typeface::createSystemTypefaceFor(
        FontAwesomeData::fontawesomewebfont_ttf, FontAwesomeData::fontawesomewebfont_ttfSize);
    return typeface;
}
