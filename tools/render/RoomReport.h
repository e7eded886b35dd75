/**
    The measures of a room as text: a table for people, JSON for programs.

    In the JSON, times are in seconds, levels in dB, frequencies in Hz; what could not be measured is null. Curves
    carry their step beside their values.
*/
#pragma once

#include "tools/render/measures/RoomMeasures.h"

#include <string>
#include <utility>
#include <vector>

namespace ambrel::render
{

/** What was measured. */
struct RoomDescription
{
    std::string preset;  ///< may be empty
    std::string impulse; ///< the channels that the impulse entered: both, left or right
    std::vector<std::pair<std::string, float>> settings; ///< all engine parameters, in their order
};

/** Both end with a line end. */
std::string createReportTable(const measures::RoomMeasures& measures, const RoomDescription& room);
std::string createReportJson(const measures::RoomMeasures& measures, const RoomDescription& room);

} // namespace ambrel::render
