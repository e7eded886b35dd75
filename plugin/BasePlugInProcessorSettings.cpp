#include "plugin/BasePlugInProcessor.h"

namespace
{
juce::String withoutBlanks(const juce::String& text) { return text.removeCharacters(" "); }

/** "de-AT" is German, too. */
juce::String getLanguage()
{
    return juce::SystemStats::getDisplayLanguage().upToFirstOccurrenceOf("-", false, false);
}
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
    const auto file =
        places.getResourceFolder().getChildFile(withoutBlanks(bundleName) + "_" + getLanguage() + ".loc");
    if (file.existsAsFile())
        juce::LocalisedStrings::setCurrentMappings(new juce::LocalisedStrings(file, false));
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
    return (wanted.existsAsFile() ? wanted : getPage("en")).getFullPathName();
}

void BasePlugInProcessor::showHelp() { juce::Process::openDocument(getHelpFilePath(getLanguage()), {}); }
