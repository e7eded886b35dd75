#include "plugin/FallbackTypeface.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#if !(JUCE_MAC || JUCE_WINDOWS)
#include <dlfcn.h>
#endif

namespace
{
bool isEastAsian(juce::juce_wchar character)
{
    constexpr juce::juce_wchar firstOfEastAsia = 0x2e80;
    return character >= firstOfEastAsia;
}
} // namespace

bool FallbackTypeface::isNeededFor(const juce::String& text)
{
    for (auto character = text.getCharPointer(); !character.isEmpty();)
        if (isEastAsian(character.getAndAdvance()))
            return true;
    return false;
}

#if JUCE_MAC || JUCE_WINDOWS

bool FallbackTypeface::provide(const juce::String&) { return true; }

bool FallbackTypeface::isProvided() { return false; }

juce::Typeface::Ptr FallbackTypeface::complete(const juce::Typeface::Ptr& usual) { return usual; }

#else

namespace
{
struct FontFile
{
    juce::File file;
    int face = 0; ///< of those in a collection
};

/** fontconfig, as far as it takes to find a font for a language. It is loaded at run time: a plug-in must not fail to
    load where it is missing. It stays loaded, since it keeps tables for its whole life that unloading would lose each
    time. The configuration is one of our own, so the host's use of the library is left alone. */
class FontConfig
{
public:
    FontConfig()
    {
        if (library != nullptr && loadAll())
            config = initLoadConfigAndFonts();
    }

    ~FontConfig()
    {
        if (config != nullptr)
            configDestroy(config);
    }

    /** @param language  as fontconfig writes it */
    std::optional<FontFile> find(const juce::String& language) const
    {
        if (config == nullptr)
            return {};
        auto* pattern = nameParse(("sans:scalable=true:lang=" + language).toRawUTF8());
        configSubstitute(config, pattern, matchPattern);
        defaultSubstitute(pattern);
        int result = 0;
        auto* match = fontMatch(config, pattern, &result);
        patternDestroy(pattern);
        if (match == nullptr)
            return {};
        const auto found = describe(match, language);
        patternDestroy(match);
        return found;
    }

private:
    static constexpr int matchPattern = 0;
    static constexpr int resultMatch = 0;
    static constexpr int languageMissing = 2;
    static constexpr int faceMask = 0xffff; // above are the instances of variable fonts

    /** The best match need not be a good one. */
    std::optional<FontFile> describe(void* match, const juce::String& language) const
    {
        void* languages = nullptr;
        const char* file = nullptr;
        int index = 0;
        if (patternGetLangSet(match, "lang", 0, &languages) != resultMatch ||
            langSetHasLang(languages, language.toRawUTF8()) == languageMissing ||
            patternGetString(match, "file", 0, &file) != resultMatch)
            return {};
        patternGetInteger(match, "index", 0, &index);
        return FontFile{juce::File(juce::String::fromUTF8(file)), index & faceMask};
    }

    bool loadAll()
    {
        return load(initLoadConfigAndFonts, "FcInitLoadConfigAndFonts") &&
               load(configDestroy, "FcConfigDestroy") && load(nameParse, "FcNameParse") &&
               load(configSubstitute, "FcConfigSubstitute") &&
               load(defaultSubstitute, "FcDefaultSubstitute") && load(fontMatch, "FcFontMatch") &&
               load(patternGetString, "FcPatternGetString") &&
               load(patternGetInteger, "FcPatternGetInteger") &&
               load(patternGetLangSet, "FcPatternGetLangSet") && load(langSetHasLang, "FcLangSetHasLang") &&
               load(patternDestroy, "FcPatternDestroy");
    }

    template <typename Function>
    bool load(Function*& function, const char* name)
    {
        function = reinterpret_cast<Function*>(dlsym(library, name));
        return function != nullptr;
    }

    void* library = dlopen("libfontconfig.so.1", RTLD_LAZY | RTLD_LOCAL | RTLD_NODELETE);
    void* config = nullptr;

    void* (*initLoadConfigAndFonts)() = nullptr;
    void (*configDestroy)(void* config) = nullptr;
    void* (*nameParse)(const char* name) = nullptr;
    int (*configSubstitute)(void* config, void* pattern, int kind) = nullptr;
    void (*defaultSubstitute)(void* pattern) = nullptr;
    void* (*fontMatch)(void* config, void* pattern, int* result) = nullptr;
    int (*patternGetString)(void* pattern, const char* object, int n, const char** value) = nullptr;
    int (*patternGetInteger)(void* pattern, const char* object, int n, int* value) = nullptr;
    int (*patternGetLangSet)(void* pattern, const char* object, int n, void** value) = nullptr;
    int (*langSetHasLang)(void* languages, const char* language) = nullptr;
    void (*patternDestroy)(void* pattern) = nullptr;

    JUCE_DECLARE_NON_COPYABLE(FontConfig)
};

/** The library opens the first face of a collection only, so the wanted one is put first: behind the tag "ttcf", the
    version and the number of faces stand their offsets, four bytes each. */
void putFaceFirst(juce::MemoryBlock& font, int face)
{
    constexpr std::size_t firstOffset = 12;
    constexpr std::size_t offsetSize = 4;
    const auto offset = firstOffset + offsetSize * static_cast<std::size_t>(face);
    auto* data = static_cast<char*>(font.getData());
    if (font.getSize() >= offset + offsetSize && std::equal(data, data + 4, "ttcf"))
        std::copy_n(data + offset, offsetSize, data + firstOffset);
}

/** All ideographs of a font are equally wide. Of the font's height. */
float getIdeographWidth(juce::Typeface& typeface)
{
    constexpr juce::juce_wchar someIdeograph = 0x4e00;
    return typeface.getStringWidth(juce::String::charToString(someIdeograph));
}

juce::Typeface::Ptr open(const FontFile& font)
{
    juce::MemoryBlock data;
    if (!font.file.loadFileAsData(data) || data.isEmpty())
        return nullptr;
    putFaceFirst(data, font.face);
    const auto typeface = juce::Typeface::createSystemTypefaceFor(data.getData(), data.getSize());
    return getIdeographWidth(*typeface) > 0.0f ? typeface : nullptr;
}

/** What was found last, kept until the library goes. */
class FoundFont : private juce::DeletedAtShutdown
{
public:
    ~FoundFont() override { clearSingletonInstance(); }

    /** Asks for a font unless the language is the same as before. */
    bool findFor(const juce::String& newLanguage)
    {
        if (!font || newLanguage != language)
        {
            font = FontConfig().find(newLanguage);
            language = newLanguage;
            typeface = nullptr;
        }
        return isThere();
    }

    bool isThere() const { return font.has_value(); }

    juce::Typeface::Ptr getTypeface()
    {
        if (typeface == nullptr && font)
        {
            typeface = open(*font);
            if (typeface == nullptr)
                font.reset();
        }
        return typeface;
    }

    JUCE_DECLARE_SINGLETON_SINGLETHREADED_MINIMAL(FoundFont)

private:
    juce::String language;
    std::optional<FontFile> font;
    juce::Typeface::Ptr typeface;
};

JUCE_IMPLEMENT_SINGLETON(FoundFont)

/** Has the East Asian characters of one typeface and all others of another. */
class CompletedTypeface : public juce::CustomTypeface
{
public:
    CompletedTypeface(juce::Typeface::Ptr usualTypeface, juce::Typeface::Ptr fallbackTypeface)
        : usual(std::move(usualTypeface)), fallback(std::move(fallbackTypeface)),
          fallbackScale(ideographWidth / getIdeographWidth(*fallback))
    {
        setCharacteristics(usual->getName(), usual->getStyle(), usual->getAscent(), L' ');
    }

protected:
    bool loadGlyphIfPossible(juce::juce_wchar character) override
    {
        // To a typeface made from a file, the number of a glyph is its character.
        const bool isForeign = isEastAsian(character);
        const auto& source = isForeign ? fallback : usual;
        const float scale = isForeign ? fallbackScale : 1.0f;
        juce::Path outline;
        if (!source->getOutlineForGlyph(static_cast<int>(character), outline))
            return false;
        outline.applyTransform(juce::AffineTransform::scale(scale));
        addGlyph(character, outline, scale * source->getStringWidth(juce::String::charToString(character)));
        return true;
    }

private:
    /** Of the font's height. Fonts of these languages have wide gaps between lines and would look small. */
    static constexpr float ideographWidth = 0.85f;

    const juce::Typeface::Ptr usual;
    const juce::Typeface::Ptr fallback;
    const float fallbackScale;
};
} // namespace

bool FallbackTypeface::provide(const juce::String& language)
{
    // Chinese is written in two ways; the translation is in the simplified one.
    return FoundFont::getInstance()->findFor(language == "zh" ? "zh-cn" : language);
}

bool FallbackTypeface::isProvided() { return FoundFont::getInstance()->isThere(); }

juce::Typeface::Ptr FallbackTypeface::complete(const juce::Typeface::Ptr& usual)
{
    const auto fallback = FoundFont::getInstance()->getTypeface();
    if (fallback == nullptr || usual == nullptr)
        return usual;
    return new CompletedTypeface(usual, fallback);
}

#endif
