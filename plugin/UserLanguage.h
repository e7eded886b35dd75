/**
    The languages that the user reads, the best liked first, each as it stands in the names of translations and help
    folders: "de", "ja".

    The system's display language comes first, cut before its region. On Linux the library gives its English name there
    ("Japanese"), so the environment is asked as well, as every other program there does: LANGUAGE holds a list,
    LC_ALL, LC_MESSAGES and LANG one locale each, the first that is set.

    Cost: some variables are read. Thread: any.
*/
#pragma once

#include <juce_core/juce_core.h>

class UserLanguage
{
public:
    static juce::StringArray getPreferred();
};
