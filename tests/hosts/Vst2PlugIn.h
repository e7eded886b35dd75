/** A VST2 in a small host over the FST headers. See PlugIn.h. */
#pragma once

#include "tests/hosts/PlugIn.h"

namespace hosts
{

/** Empty, with a message on the standard error stream, if the file is no VST2. */
std::unique_ptr<PlugIn> loadVst2(const std::string& file);

} // namespace hosts
