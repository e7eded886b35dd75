/**
    What one run of ambrel-render is to do, as the command line tells it: plain data, checked, but without a
    look at any file. CommandLine makes it, Application carries it out.
*/
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ambrel::render
{

enum class Action
{
    render,
    showHelp,
    showVersion,
    listParameters,
    listPresets
};

/** Which inputs of the room a unit impulse enters. */
enum class ImpulsePosition
{
    both,
    left,
    right
};

/** One engine parameter and the value it is to have, in the parameter's own unit and within its range. */
struct ParameterSetting
{
    int index = 0;
    float value = 0.0f;
};

/** Where and how the measures of the room are written. */
struct ReportRequest
{
    bool json = false;
    std::string file; ///< empty: standard output
};

struct Options
{
    Action action = Action::render;

    std::vector<std::string> inputs;
    std::string output;
    std::string outputDirectory;
    std::optional<int> bits; ///< 16, 24 or 32 (float); empty: by the kind of output

    std::string preset; ///< a preset's name or a preset file; empty: the plug-in's own choice
    std::string state;
    std::string savePreset;
    std::optional<double> character; ///< percent
    std::optional<double> mix;       ///< percent
    std::vector<ParameterSetting> settings;

    int blockSize = 1024;          ///< samples
    std::optional<double> tail;    ///< seconds behind the end of the input; empty: until the room is silent
    std::optional<double> impulse; ///< length of an impulse response, seconds
    ImpulsePosition impulsePosition = ImpulsePosition::both;
    double rate = 48000.0; ///< of the impulse response, Hz

    std::optional<ReportRequest> report;
    std::string plot; ///< picture of the measures; empty: none

    bool quiet = false;

    /** Whether the room's impulse response is needed, to be written or to be measured. */
    bool needsImpulse() const { return impulse.has_value() || measuresRoom(); }
    bool measuresRoom() const { return report.has_value() || !plot.empty(); }
};

} // namespace ambrel::render
