/**
    The measures of a room in one picture: the response's waveform, the energy decay in each octave, the echo density
    and the spectrogram.

    Drawn in memory with the library's own renderer: needs no display and no installed font.
    Cost: some transforms and about a second for a large response.
*/
#pragma once

#include "tools/render/RoomReport.h"
#include "tools/render/measures/RoomMeasures.h"

#include <juce_core/juce_core.h>

namespace ambrel::render
{

/** A PNG file's content, 1600 by 1200 pixels. */
juce::MemoryBlock createRoomPlot(const measures::StereoResponse& response,
                                 const measures::RoomMeasures& measures, const RoomDescription& room);

} // namespace ambrel::render
