#include "plugin/ForeignData.h"

#include <cstring>

namespace
{
constexpr juce::juce_wchar lastCharacter = 0x10ffff;

/** Walks over a document without keeping anything of it. Each operation returns false where the text is not plain
    XML. What passes is read by the library's parser in the same way, element by element. */
class XmlScanner
{
public:
    explicit XmlScanner(const juce::String& document) : text(document.toUTF8()) {}

    /** To the end of the root element; what follows it is never read. */
    bool skipDocument()
    {
        if (!skipProlog() || !skipOpeningTag())
            return false;
        while (depth > 0)
            if (!skipContent())
                return false;
        return true;
    }

private:
    bool skipProlog()
    {
        for (skipBlanks(); isAt("<?") || isAt("<!--"); skipBlanks())
            if (isAt("<?") ? !skipSection("<?", "?>") : !skipSection("<!--", "-->"))
                return false;
        return true;
    }

    bool skipContent()
    {
        if (isAt("</"))
        {
            --depth;
            return skipSection("</", ">");
        }
        if (isAt("<!--"))
            return skipSection("<!--", "-->");
        if (isAt("<![CDATA["))
            return skipSection("<![CDATA[", "]]>");
        if (isAt("<"))
            return skipOpeningTag();
        return skipCharacter();
    }

    bool skipOpeningTag()
    {
        if (!skip("<") || !skipName())
            return false;
        for (skipBlanks(); !isAt(">") && !isAt("/>"); skipBlanks())
            if (!skipAttribute())
                return false;
        if (skip("/>"))
            return true;
        return skip(">") && ++depth <= ForeignData::maximumDepth;
    }

    bool skipAttribute()
    {
        if (!skipName())
            return false;
        skipBlanks();
        if (!skip("="))
            return false;
        skipBlanks();
        const auto* quote = isAt("'") ? "'" : "\"";
        if (!skip(quote))
            return false;
        while (!isAt(quote))
            if (!skipCharacter())
                return false;
        return skip(quote);
    }

    bool skipName()
    {
        const auto isPartOfName = [](juce::juce_wchar c) {
            return juce::CharacterFunctions::isLetterOrDigit(c) || c == '_' || c == '-' || c == ':' ||
                   c == '.';
        };
        const auto start = text;
        while (isPartOfName(*text))
            ++text;
        return text != start;
    }

    /** A character or a reference to one. */
    bool skipCharacter()
    {
        if (text.isEmpty())
            return false;
        if (!isAt("&"))
        {
            ++text;
            return true;
        }
        for (const auto* reference : {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"})
            if (skip(reference))
                return true;
        return skipNumericReference();
    }

    bool skipNumericReference()
    {
        const bool isHexadecimal = skip("&#x");
        if (!isHexadecimal && !skip("&#"))
            return false;
        const int base = isHexadecimal ? 16 : 10;
        juce::juce_wchar character = 0;
        for (; !isAt(";"); ++text)
        {
            const int digit = juce::CharacterFunctions::getHexDigitValue(*text);
            if (digit < 0 || digit >= base)
                return false;
            character =
                character * static_cast<juce::juce_wchar>(base) + static_cast<juce::juce_wchar>(digit);
            if (character > lastCharacter)
                return false;
        }
        return skip(";") && character != 0;
    }

    void skipBlanks() { text.incrementToEndOfWhitespace(); }

    bool isAt(const char* expected) const
    {
        return std::strncmp(text.getAddress(), expected, std::strlen(expected)) == 0;
    }

    bool skip(const char* expected)
    {
        if (!isAt(expected))
            return false;
        text += static_cast<int>(std::strlen(expected));
        return true;
    }

    bool skipSection(const char* beginning, const char* end)
    {
        if (!skip(beginning))
            return false;
        const auto* found = std::strstr(text.getAddress(), end);
        if (found == nullptr)
            return false;
        text = juce::CharPointer_UTF8(found);
        return skip(end);
    }

    juce::CharPointer_UTF8 text;
    int depth = 0;
};
} // namespace

std::unique_ptr<juce::XmlElement> ForeignData::readXml(const juce::File& file)
{
    // Pipes and devices have no size: opening one could wait for ever.
    const auto size = file.existsAsFile() ? file.getSize() : 0;
    if (size <= 0 || size > maximumFileSize)
        return nullptr;

    juce::MemoryBlock bytes;
    juce::FileInputStream input(file);
    input.readIntoMemoryBlock(bytes, static_cast<ssize_t>(maximumFileSize));

    // The library looks one byte behind a byte order mark that nothing follows.
    const auto length = static_cast<int>(bytes.getSize());
    bytes.append("", 1);
    const auto text = toValidText(juce::String::createStringFromData(bytes.getData(), length));
    return isPlainXml(text) ? juce::parseXML(text) : nullptr;
}

bool ForeignData::isPlainXml(const juce::String& text) { return XmlScanner(text).skipDocument(); }

juce::String ForeignData::toValidText(const juce::String& text)
{
    const auto* bytes = text.toRawUTF8();
    const auto size = static_cast<int>(std::strlen(bytes));
    if (!juce::CharPointer_UTF8::isValidString(bytes, size))
        return juce::String::createStringFromData(bytes, size);

    // Through characters and back: a character written in more bytes than it needs passes for valid, and one that
    // means zero ends the text for some readers only.
    return juce::String(text.toUTF32());
}
