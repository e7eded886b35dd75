/**
    Where a plug-in finds and keeps its files. The one class that knows the systems' habits; all others ask
    it.

    | What         | macOS                                | Windows                       | Linux and others         |
    |--------------|--------------------------------------|-------------------------------|--------------------------|
    | resources    | Contents/Resources of the bundle     | found by the walk             | found by the walk        |
    | user presets | ~/Library/Application Support/...    | roaming application data/...  | $XDG_CONFIG_HOME/...     |
    | settings     | /Library/Application Support/Veskora | common application data/...   | $XDG_CONFIG_HOME/Veskora |

    The walk starts in the folder of the module's own file (the plug-in binary or the program) and goes up
    three parents: the first Contents/Resources wins (Ambrel.vst3/Contents/Resources for
    Ambrel.vst3/Contents/x86_64-linux/Ambrel.so), else the first share/<bundle name>, which is how installed
    programs (<prefix>/bin) find theirs.

    Nothing is created here. Cost: some file system queries a call. Thread: any.
*/
#pragma once

#include <juce_data_structures/juce_data_structures.h>

class PlugInPlaces
{
public:
    /** @param bundle  names the folder under share/
        @param plugIn  names the folder of the user's presets */
    PlugInPlaces(const juce::String& bundle, const juce::String& plugIn);

    /** The folder of presets, translations and help. Need not exist. */
    juce::File getResourceFolder() const;

    juce::File getFactoryPresetFolder() const;
    juce::File getUserPresetFolder() const;

    /** Where settings with these options are kept, unless a file lies beside the executable. */
    juce::File getSettingsFile(const juce::PropertiesFile::Options& options) const;

    /** The walk told above, from any folder. A folder that does not exist if it finds nothing. */
    static juce::File findResourceFolder(const juce::File& start, const juce::String& bundle);

private:
    juce::String bundleName;
    juce::String plugInName;
};
