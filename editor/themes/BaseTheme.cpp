#include "editor/themes/BaseTheme.h"

#include "editor/themes/RobotoFont.h"
#include "plugin/FallbackTypeface.h"

namespace
{

/** Where the library finds no font it still makes a typeface, but one without a name and without glyphs. */
bool systemHasFonts()
{
    static const bool result = juce::Font::getDefaultTypefaceForFont(juce::Font())->getName().isNotEmpty();
    return result;
}

} // namespace

BaseTheme::BaseTheme()
{
    // Until a theme becomes the default, the library's own look hands out the typefaces, and what it once handed
    // out stays in the library's cache. Without fonts that would be blank text, measured as zero wide.
    auto& current = getDefaultLookAndFeel();

    if (!systemHasFonts() && dynamic_cast<BaseTheme*>(&current) == nullptr)
        current.setDefaultSansSerifTypeface(createRobotoTypeface(false));
    else if (FallbackTypeface::isProvided())
        juce::Typeface::clearTypefaceCache();
}

juce::Colour BaseTheme::getShadowColour() { return juce::Colours::transparentBlack; }

juce::Typeface::Ptr BaseTheme::getTypefaceForFont(const juce::Font& font)
{
    return FallbackTypeface::complete(systemHasFonts() ? LookAndFeel_V3::getTypefaceForFont(font)
                                                       : createRobotoTypeface(font.isBold()));
}
