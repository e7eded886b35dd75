/**
    Reads what was written elsewhere: preset files that come by mail, names out of other people's folders.

    The library's parser trusts its input. It goes one call deeper with each nested element until the stack ends, looks
    up entities in whatever document type the file brings along, comes to no end at a processing instruction before
    text, and steps past the end of text that is not valid UTF-8. So a file is checked first, and the parser gets it
    only if it is plain XML: elements, attributes, text, comments, CDATA, character references.

    Cost: in proportion to the length; a preset takes some microseconds. Thread: any.
*/
#pragma once

#include <juce_core/juce_core.h>

#include <memory>

namespace ForeignData
{
/** A preset has some 2 kB. */
inline constexpr juce::int64 maximumFileSize = 1 << 20;

/** Levels of nested elements; a preset has three. */
inline constexpr int maximumDepth = 100;

/** The root element. Null if the file cannot be read, is too large or is not plain XML. UTF-8 and UTF-16 are known by
    their first bytes; what is neither is taken for Windows-1252, whatever its header claims. */
std::unique_ptr<juce::XmlElement> readXml(const juce::File& file);

/** Precondition: the text is valid. */
bool isPlainXml(const juce::String& text);

/** The text itself, or its bytes taken for Windows-1252 if they are not valid UTF-8. Ends at the first
    zero, however that is written. */
juce::String toValidText(const juce::String& text);
} // namespace ForeignData
