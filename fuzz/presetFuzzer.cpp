/** Whatever bytes a preset file holds: it is taken or refused, and an unknown parameter is the only exception. */
#include "fuzz/FuzzedPlugIn.h"

#include <stdexcept>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzedPlugIn fuzzed;
    static const juce::TemporaryFile temporary(".xml");
    const auto& file = temporary.getFile();

    if (!file.replaceWithData(data, size))
        return 0;
    auto& plugIn = fuzzed.reset();
    try
    {
        plugIn.importFromPresetFile(file);
    }
    catch (const std::out_of_range&)
    {
    }
    fuzzed.check();
    return 0;
}
