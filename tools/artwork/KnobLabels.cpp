#include "tools/artwork/KnobLabels.h"

namespace ambrel::artwork
{
namespace
{

constexpr float width = 640.0f;
constexpr float height = 100.0f;

/** Free space beside the words at both sides of the window. */
constexpr float margin = 24.0f;

/** Both heights and baselines are whole units, so that the letters' flat edges fall between pixels. */
constexpr float bandCapHeight = 12.0f;
constexpr float bandBaseline = 26.0f; // the capitals stand in the middle of the band's 40 units
constexpr float faderCapHeight = 12.0f;
constexpr float faderBaseline = 78.0f;

/** White on orange, and small capitals in general, read better a little apart. */
constexpr float letterSpacing = 0.09f;

enum class Side
{
    left,
    right
};

juce::String wordElement(const juce::String& id, const juce::String& colour, juce::Path word, float baseline,
                         Side side)
{
    const float x = side == Side::left ? margin : width - margin - word.getBounds().getRight();
    word.applyTransform(juce::AffineTransform::translation(x, baseline));
    return "  <path id=\"" + id + "\" fill=\"" + colour + "\" d=\"" + toSvgPathData(word) + "\"/>\n";
}

} // namespace

juce::String makeKnobLabels(const GlyphOutlines& boldCapitals)
{
    const juce::String size = juce::String(width, 0) + "\" height=\"" + juce::String(height, 0);
    const auto bandWord = [&](const char* text)
    { return boldCapitals.outline(text, bandCapHeight, letterSpacing); };
    const auto faderWord = [&](const char* text)
    { return boldCapitals.outline(text, faderCapHeight, letterSpacing); };

    juce::String svg;
    svg << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << size << "\" viewBox=\"0 0 640 100\">\n"
        << "  <title>Small and bright, large and dark; dry, wet</title>\n"
        << "  <!-- Made by tools/artwork; not to be edited by hand. -->\n"
        << "  <rect width=\"" << size << "\" fill=\"none\"/>\n"
        << "  <path id=\"bandLeft\" fill=\"#d27900\" d=\"M0 0H193.59A150 150 0 0 0 231.27 40H0Z\"/>\n"
        << "  <path id=\"bandRight\" fill=\"#d27900\" d=\"M640 0H446.24A150 150 0 0 1 408.58 40H640Z\"/>\n"
        << wordElement("smallAndBright", "#fff", bandWord("SMALL & BRIGHT"), bandBaseline, Side::left)
        << wordElement("largeAndDark", "#fff", bandWord("LARGE & DARK"), bandBaseline, Side::right)
        << wordElement("dry", "#424142", faderWord("DRY"), faderBaseline, Side::left)
        << wordElement("wet", "#424142", faderWord("WET"), faderBaseline, Side::right) << "</svg>\n";
    return svg;
}

} // namespace ambrel::artwork
