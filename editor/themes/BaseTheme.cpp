#include "editor/themes/BaseTheme.h"

#include "editor/themes/RobotoFont.h"

namespace
{

/** Where the library finds no font it still makes a typeface, but one without a name and without glyphs. */
bool hasGlyphs(const juce::Typeface::Ptr& typeface)
{
    return typeface != nullptr && typeface->getName().isNotEmpty();
}

bool systemHasFonts()
{
    static const bool result = hasGlyphs(juce::Font::getDefaultTypefaceForFont(juce::Font()));
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
}

juce::Colour BaseTheme::getShadowColour() { return juce::Colours::transparentBlack; }

juce::Typeface::Ptr BaseTheme::getTypefaceForFont(const juce::Font& font)
{
    auto typeface = LookAndFeel_V3::getTypefaceForFont(font);
    return hasGlyphs(typeface) ? typeface : createRobotoTypeface(font.isBold());
}
