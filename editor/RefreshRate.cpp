#include "editor/RefreshRate.h"

#include <juce_gui_basics/juce_gui_basics.h>

namespace
{
constexpr double virtualRefreshRate = 30.0; // Hz
} // namespace

void supplyMissingRefreshRates()
{
    // JUCE hands its displays out as constant, but has no other place for a rate that the system does not tell.
    auto& displays = const_cast<juce::Displays&>(juce::Desktop::getInstance().getDisplays());
    for (auto& display : displays.displays)
        if (juce::roundToInt(display.verticalFrequencyHz.value_or(0.0)) == 0)
            display.verticalFrequencyHz = virtualRefreshRate;
}
