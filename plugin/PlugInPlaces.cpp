#include "plugin/PlugInPlaces.h"

#include "plugin/companyName.h"

namespace
{
constexpr auto resourcePath = "Contents/Resources";

/** Parents that the walk looks at above the folder it starts in. */
constexpr int maximumParents = 3;

#if !JUCE_MAC && !JUCE_WINDOWS
/** The user's configuration folder. JUCE's own answer looks at a file and not at the environment. */
juce::File getConfigurationFolder()
{
    const auto fromEnvironment = juce::SystemStats::getEnvironmentVariable("XDG_CONFIG_HOME", {});
    if (juce::File::isAbsolutePath(fromEnvironment))
        return juce::File(fromEnvironment);
    return juce::File::getSpecialLocation(juce::File::userHomeDirectory).getChildFile(".config");
}
#endif

/** The first of the folder and its parents under which there is a folder at path. */
juce::File findUpwards(juce::File folder, const juce::String& path)
{
    for (int level = 0; level <= maximumParents; ++level)
    {
        const auto candidate = folder.getChildFile(path);
        if (candidate.isDirectory())
            return candidate;
        folder = folder.getParentDirectory();
    }
    return {};
}
} // namespace

PlugInPlaces::PlugInPlaces(const juce::String& bundle, const juce::String& plugIn)
    : bundleName(bundle), plugInName(plugIn)
{
}

juce::File PlugInPlaces::findResourceFolder(const juce::File& start, const juce::String& bundle)
{
    for (const auto& path : {juce::String(resourcePath), "share/" + bundle})
        if (const auto found = findUpwards(start, path); found != juce::File())
            return found;
    return start.getChildFile(resourcePath);
}

juce::File PlugInPlaces::getResourceFolder() const
{
    // A bundle is an application file of its own only on macOS; elsewhere this is a path below a plain file.
    const auto application = juce::File::getSpecialLocation(juce::File::currentApplicationFile);
    if (const auto inBundle = application.getChildFile(resourcePath); inBundle.isDirectory())
        return inBundle;

    const auto module = juce::File::getSpecialLocation(juce::File::currentExecutableFile).getLinkedTarget();
    return findResourceFolder(module.getParentDirectory(), bundleName);
}

juce::File PlugInPlaces::getFactoryPresetFolder() const
{
    return getResourceFolder().getChildFile("Presets");
}

juce::File PlugInPlaces::getUserPresetFolder() const
{
#if JUCE_MAC
    const auto base = juce::File::getSpecialLocation(juce::File::userApplicationDataDirectory)
                          .getChildFile("Application Support");
#elif JUCE_WINDOWS
    const auto base = juce::File::getSpecialLocation(juce::File::userApplicationDataDirectory);
#else
    const auto base = getConfigurationFolder();
#endif
    return base.getChildFile(vesk::companyName).getChildFile(plugInName).getChildFile("Presets");
}

juce::File PlugInPlaces::getSettingsFile(const juce::PropertiesFile::Options& options) const
{
#if JUCE_MAC || JUCE_WINDOWS
    return options.getDefaultFile();
#else
    // The library's common place is /var, which a user cannot write.
    return getConfigurationFolder()
        .getChildFile(options.folderName)
        .getChildFile(options.applicationName + "." + options.filenameSuffix);
#endif
}
