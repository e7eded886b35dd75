#include "tools/artwork/GlyphOutlines.h"

#include <array>
#include <cmath>
#include <stdexcept>

namespace ambrel::artwork
{
namespace
{

struct KerningPair
{
    juce::juce_wchar left;
    juce::juce_wchar right;
    /** As a proportion of the height of the capitals. */
    float shift;
};

constexpr std::array kerningPairs = {
    KerningPair{'A', 'R', -0.02f}, KerningPair{'D', 'A', -0.04f}, KerningPair{'L', 'A', 0.02f},
    KerningPair{'R', 'Y', -0.05f}, KerningPair{'W', 'E', -0.02f}, KerningPair{'H', 'T', -0.02f},
};

float kerning(juce::juce_wchar left, juce::juce_wchar right)
{
    for (const KerningPair& pair : kerningPairs)
        if (pair.left == left && pair.right == right)
            return pair.shift;
    return 0.0f;
}

/** A coordinate without needless digits: 12.50 is written 12.5. */
juce::String number(float value)
{
    const double rounded = std::round(static_cast<double>(value) * 100.0) / 100.0;
    // Adding zero turns -0 into 0.
    juce::String text(rounded + 0.0, 2);
    if (text.containsChar('.'))
        text = text.trimCharactersAtEnd("0").trimCharactersAtEnd(".");
    return text;
}

} // namespace

GlyphOutlines::GlyphOutlines(const juce::File& fontFile)
{
    juce::MemoryBlock data;
    if (!fontFile.loadFileAsData(data) || data.isEmpty())
        throw std::runtime_error("cannot read " + fontFile.getFullPathName().toStdString());
    typeface = juce::Typeface::createSystemTypefaceFor(data.getData(), data.getSize());

    juce::Array<int> glyphs;
    juce::Array<float> offsets;
    typeface->getGlyphPositions("H", glyphs, offsets);
    capHeightOfFont = glyphOutline(glyphs.getFirst()).getBounds().getHeight();
    if (!(capHeightOfFont > 0.0f))
        throw std::runtime_error("no capitals in " + fontFile.getFullPathName().toStdString());
}

juce::Path GlyphOutlines::glyphOutline(int glyph) const
{
    juce::Path path;
    typeface->getOutlineForGlyph(glyph, path);
    return path;
}

juce::Path GlyphOutlines::outline(const juce::String& capitals, float capHeight, float letterSpacing) const
{
    juce::Array<int> glyphs;
    juce::Array<float> offsets;
    typeface->getGlyphPositions(capitals, glyphs, offsets);

    const float scale = capHeight / capHeightOfFont;
    juce::Path word;
    float shift = 0.0f;
    for (int i = 0; i < glyphs.size(); ++i)
    {
        if (i > 0)
            shift += capHeight * (letterSpacing + kerning(capitals[i - 1], capitals[i]));
        word.addPath(glyphOutline(glyphs[i]),
                     juce::AffineTransform::scale(scale).translated(offsets[i] * scale + shift, 0.0f));
    }
    word.applyTransform(juce::AffineTransform::translation(-word.getBounds().getX(), 0.0f));
    return word;
}

juce::String toSvgPathData(const juce::Path& path)
{
    juce::String data;
    const auto append = [&data](const char* command, std::initializer_list<float> coordinates)
    {
        data << command;
        bool isFirst = true;
        for (const float coordinate : coordinates)
        {
            const juce::String text = number(coordinate);
            // A sign separates by itself.
            if (!isFirst && !text.startsWithChar('-'))
                data << ' ';
            data << text;
            isFirst = false;
        }
    };

    for (juce::Path::Iterator element(path); element.next();)
    {
        switch (element.elementType)
        {
        case juce::Path::Iterator::startNewSubPath: append("M", {element.x1, element.y1}); break;
        case juce::Path::Iterator::lineTo: append("L", {element.x1, element.y1}); break;
        case juce::Path::Iterator::quadraticTo:
            append("Q", {element.x1, element.y1, element.x2, element.y2});
            break;
        case juce::Path::Iterator::cubicTo:
            append("C", {element.x1, element.y1, element.x2, element.y2, element.x3, element.y3});
            break;
        case juce::Path::Iterator::closePath: data << "Z"; break;
        }
    }
    return data;
}

} // namespace ambrel::artwork
