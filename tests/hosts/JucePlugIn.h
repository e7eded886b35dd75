/** A VST3 or LV2 in JUCE's own hosting. See PlugIn.h. */
#pragma once

#include "tests/hosts/PlugIn.h"

namespace hosts
{

/** Looks through the folder at once, as a host's scan does; each call of the result loads an instance of what was
    found there under the product's name.

    @param format  "VST3" or "LV2" */
Loader makeJuceLoader(const std::string& format, const std::string& folder);

} // namespace hosts
