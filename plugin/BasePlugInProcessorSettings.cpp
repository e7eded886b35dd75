#include "plugin/BasePlugInProcessor.h"
#include "plugin/FallbackTypeface.h"
#include "plugin/UserLanguage.h"

#include <memory>

namespace
{
juce::String withoutBlanks(const juce::String& text) { return text.removeCharacters(" "); }

/** The language of the texts in the program. */
constexpr auto builtInLanguage = "en";
} // namespace

juce::PropertiesFile* BasePlugInProcessor::createPropertiesFile()
{
    juce::PropertiesFile::Options options;
    options.applicationName =
        withoutBlanks(bundleName + plugInVersion.upToFirstOccurrenceOf(".", false, false));
    options.filenameSuffix = "prop";
    options.folderName = "Veskora";
    options.osxLibrarySubFolder = "Application Support";
    options.commonToAllUsers = true;

    const auto executableFolder =
        juce::File::getSpecialLocation(juce::File::currentExecutableFile).getParentDirectory();
    if (executableFolder.hasWriteAccess())
    {
        const auto beside =
            executableFolder.getChildFile(options.applicationName + "." + options.filenameSuffix);
        if (beside.existsAsFile())
            return new juce::PropertiesFile(beside, options);
    }
    return new juce::PropertiesFile(places.getSettingsFile(options), options);
}

void BasePlugInProcessor::initializeLocalization()
{
    const auto resources = places.getResourceFolder();
    for (const auto& language : UserLanguage::getPreferred())
    {
        const auto file = resources.getChildFile(withoutBlanks(bundleName) + "_" + language + ".loc");
        if (!file.existsAsFile())
        {
            if (language == builtInLanguage)
                return;
            continue;
        }

        // A translation that no font here can show is left alone: English is better than boxes.
        auto strings = std::make_unique<juce::LocalisedStrings>(file, false);
        const auto texts = strings->getMappings().getAllValues().joinIntoString({});
        if (FallbackTypeface::isNeededFor(texts) && !FallbackTypeface::provide(language))
            continue;
        juce::LocalisedStrings::setCurrentMappings(strings.release());
        return;
    }
}

int BasePlugInProcessor::getVersionCode() const
{
    juce::StringArray parts;
    parts.addTokens(plugInVersion, ".", {});
    return (parts[0].getIntValue() << 16) + (parts[1].getIntValue() << 8) + parts[2].getIntValue();
}

juce::String BasePlugInProcessor::getHelpFilePath(const juce::String& language) const
{
    const auto page = withoutBlanks(plugInName.toLowerCase()) + ".html";
    const auto getPage = [&](const juce::String& pageLanguage)
    {
        return places.getResourceFolder()
            .getChildFile(withoutBlanks(bundleName) + "_" + pageLanguage)
            .getChildFile(page);
    };

    const auto wanted = getPage(language);
    return (wanted.existsAsFile() ? wanted : getPage(builtInLanguage)).getFullPathName();
}

void BasePlugInProcessor::showHelp()
{
    const auto english = getHelpFilePath(builtInLanguage);
    auto page = english;
    for (const auto& language : UserLanguage::getPreferred())
    {
        page = getHelpFilePath(language);
        if (page != english || language == builtInLanguage)
            break;
    }
    juce::Process::openDocument(page, {});
}
