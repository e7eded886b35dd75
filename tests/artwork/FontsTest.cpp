// The compiled-in fonts have the glyphs that the window asks for. That the icons' names are the font's is tested apart.

#include "FontAwesomeData.h"
#include "RobotoTypeface.h"

#include <juce_gui_basics/juce_gui_basics.h>

#include <gtest/gtest.h>

namespace
{
juce::Typeface::Ptr typeface(const char* data, int size)
{
    return juce::Typeface::createSystemTypefaceFor(data, static_cast<std::size_t>(size));
}

juce::Path outlineOf(juce::Typeface& font, const juce::String& character)
{
    juce::Array<int> glyphs;
    juce::Array<float> offsets;
    font.getGlyphPositions(character, glyphs, offsets);
    juce::Path outline;
    font.getOutlineForGlyph(glyphs.getFirst(), outline);
    return outline;
}

/** A character that a font lacks gets the font's box for missing glyphs, as does one that no font has. */
bool hasGlyph(juce::Typeface& font, const juce::String& character)
{
    const auto outline = outlineOf(font, character);
    return !outline.isEmpty() &&
           outline.toString() != outlineOf(font, juce::String::charToString(0xfffe)).toString();
}
} // namespace

TEST(FontsTest, IconFontHasTheFirstAndTheLastPublishedGlyph)
{
    const auto font =
        typeface(FontAwesomeData::fontawesomewebfont_ttf, FontAwesomeData::fontawesomewebfont_ttfSize);
    for (const auto& [code, isThere] : {std::pair{0xf000, true}, {0xf23a, true}, {0xf8ff, false}})
        EXPECT_EQ(hasGlyph(*font, juce::String::charToString(static_cast<juce::juce_wchar>(code))), isThere)
            << code;
}

TEST(FontsTest, RobotoHasTheLanguagesLetters)
{
    const auto letters =
        juce::String::fromUTF8("AZaz09&%.,:()-+/\"'…–„“”«»°µ€äöüßÄÖÜéèêàâçîôûñáíóúÑ¿¡ãõåøæłśźżčřšžőűабвжяІї");
    for (const auto& font :
         {typeface(RobotoTypeface::RobotoRegular_ttf, RobotoTypeface::RobotoRegular_ttfSize),
          typeface(RobotoTypeface::RobotoBold_ttf, RobotoTypeface::RobotoBold_ttfSize)})
        for (int i = 0; i < letters.length(); ++i)
            EXPECT_TRUE(hasGlyph(*font, letters.substring(i, i + 1))) << letters.substring(i, i + 1);
}
