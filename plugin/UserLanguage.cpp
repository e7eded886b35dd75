#include "plugin/UserLanguage.h"

namespace
{
/** "de-AT" is German, too, and so are "de_AT.UTF-8" and "de@euro". */
juce::String withoutRegion(const juce::String& language)
{
    return language.initialSectionNotContaining("-_.@");
}

#if !JUCE_MAC && !JUCE_WINDOWS
juce::StringArray getFromEnvironment()
{
    juce::String locale;
    for (const auto* variable : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (locale.isEmpty())
            locale = juce::SystemStats::getEnvironmentVariable(variable, {});
    if (locale == "C" || locale == "POSIX")
        return {};

    juce::StringArray languages;
    languages.addTokens(juce::SystemStats::getEnvironmentVariable("LANGUAGE", {}), ":", {});
    languages.add(locale);
    for (auto& language : languages)
        language = withoutRegion(language);
    languages.removeEmptyStrings();
    return languages;
}
#endif
} // namespace

juce::StringArray UserLanguage::getPreferred()
{
    juce::StringArray languages(
        juce::SystemStats::getDisplayLanguage().upToFirstOccurrenceOf("-", false, false));
#if !JUCE_MAC && !JUCE_WINDOWS
    languages.addArray(getFromEnvironment());
#endif
    return languages;
}
