/** Whatever bytes a host hands over as the state: nothing breaks, and what was taken up can be stored again. */
#include "fuzz/FuzzedPlugIn.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzedPlugIn fuzzed;

    auto& plugIn = fuzzed.reset();
    plugIn.setStateInformation(data, static_cast<int>(size));
    fuzzed.check();

    juce::MemoryBlock stored;
    plugIn.getStateInformation(stored);
    plugIn.setStateInformation(stored.getData(), static_cast<int>(stored.getSize()));
    juce::MemoryBlock again;
    plugIn.getStateInformation(again);
    FuzzedPlugIn::require(stored == again);
    return 0;
}
