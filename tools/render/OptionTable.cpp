#include "tools/render/OptionTable.h"

#include "tools/render/Errors.h"
#include "tools/render/OptionValues.h"

#include <juce_core/juce_core.h>

#include <array>

namespace ambrel::render
{

namespace
{

constexpr NumberRange percentRange{0.0, 100.0, "%"};
constexpr NumberRange tailRange{0.0, 600.0, "s"};
constexpr NumberRange impulseRange{0.001, 300.0, "s"};
constexpr int lowestRate = 8000;    // Hz
constexpr int highestRate = 768000; // Hz
constexpr int maximumBlockSize = 65536;

void setReport(Options& options, const std::string&, const std::string& value)
{
    const bool isFile = !value.empty() && value != "json";
    const bool isJsonFile = isFile && juce::String::fromUTF8(value.c_str()).endsWithIgnoreCase(".json");
    options.report = ReportRequest{value == "json" || isJsonFile, isFile ? value : ""};
}

std::string checkedPath(const std::string& name, const std::string& value)
{
    if (value.empty())
        throw UsageError(name + " needs a name");
    return value;
}

constexpr std::array optionTable{
    OptionDescription{"--output", 'o', Argument::required, "FILE",
                      "write to FILE, which is made anew; .wav or .flac tells the kind",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.output = checkedPath(n, v); }},
    OptionDescription{"--output-dir", 'd', Argument::required, "DIR",
                      "write each file into DIR under its own name: FLAC stays FLAC, all "
                      "else becomes WAV; DIR is made if it is missing",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.outputDirectory = checkedPath(n, v); }},
    OptionDescription{"--bits", 'b', Argument::required, "16|24|32",
                      "width of the samples written: 16 (dithered), 24 or 32, which is float "
                      "and for WAV only. Default 24, for a WAV impulse response 32",
                      [](Options& o, const std::string& n, const std::string& v)
                      {
                          constexpr std::array widths{16, 24, 32};
                          o.bits = widths[parseChoice(n, v, {"16", "24", "32"})];
                      }},
    OptionDescription{"--tail", 't', Argument::required, "auto|SECONDS",
                      "how long to go on behind the input: auto (the default) until the "
                      "reverb has fallen below -100 dBFS or 90 dB below the peak",
                      [](Options& o, const std::string& n, const std::string& v)
                      {
                          o.tail.reset();
                          if (v != "auto")
                              o.tail = parseNumber(n, v, tailRange);
                      }},
    OptionDescription{"--block", 0, Argument::required, "N", "samples in a block, 1 to 65536. Default 1024",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.blockSize = parseInteger(n, v, 1, maximumBlockSize); }},

    OptionDescription{"--preset", 'p', Argument::required, "NAME|FILE",
                      "start from a preset of the plug-in, or from a preset file. Without it "
                      "the plug-in opens on \"Default hall\", as it does in a host",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.preset = checkedPath(n, v); }},
    OptionDescription{"--state", 0, Argument::required, "FILE", "restore a state block as a host stores it",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.state = checkedPath(n, v); }},
    OptionDescription{"--character", 'c', Argument::required, "0..100",
                      "the Character knob, from small and bright to large and dark",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.character = parseNumber(n, v, percentRange); }},
    OptionDescription{"--mix", 'm', Argument::required, "0..100", "the Mix fader, from dry to wet",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.mix = parseNumber(n, v, percentRange); }},
    OptionDescription{"--set", 's', Argument::required, "PARAMETER=VALUE",
                      "any parameter of the engine, such as reverbTime=4.2 or muteDry=on; "
                      "may be given many times",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.settings.push_back(parseSetting(n, v)); }},
    OptionDescription{"--save-preset", 0, Argument::required, "FILE",
                      "write a preset file as the plug-in does: it holds Character and Mix, "
                      "not what --set changed beside them",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.savePreset = checkedPath(n, v); }},

    OptionDescription{"--impulse", 'i', Argument::required, "SECONDS",
                      "render the room's own impulse response of this length, in place of an "
                      "input. Always stereo: a single sample of 1 enters both channels, the "
                      "dry signal is off and the wet gain 0 dB whatever the mix says (--set "
                      "may change both), and the level is left as it comes out",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.impulse = parseNumber(n, v, impulseRange); }},
    OptionDescription{"--impulse-from", 0, Argument::required, "both|left|right",
                      "the channels that the single sample enters. Default both",
                      [](Options& o, const std::string& n, const std::string& v)
                      {
                          constexpr std::array positions{ImpulsePosition::both, ImpulsePosition::left,
                                                         ImpulsePosition::right};
                          o.impulsePosition = positions[parseChoice(n, v, {"both", "left", "right"})];
                      }},
    OptionDescription{"--rate", 'r', Argument::required, "HZ",
                      "sample rate of the impulse response and of the report. Default 48000",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.rate = parseInteger(n, v, lowestRate, highestRate); }},

    OptionDescription{"--report", 0, Argument::optional, "json|FILE",
                      "measure the room's impulse response (decay times, clarity, echo density, "
                      "stereo image): as a table, as JSON with --report=json, or into FILE, as JSON if "
                      "it ends in .json. Measures the settings, not an input. Without --impulse the "
                      "response is as long as the decay takes",
                      setReport},
    OptionDescription{"--plot", 0, Argument::required, "FILE.png",
                      "draw that impulse response and its measures into a picture",
                      [](Options& o, const std::string& n, const std::string& v)
                      { o.plot = checkedPath(n, v); }},

    OptionDescription{"--list-presets", 0, Argument::none, "", "print the names of all presets",
                      [](Options& o, const std::string&, const std::string&)
                      { o.action = Action::listPresets; }},
    OptionDescription{"--list-parameters", 0, Argument::none, "",
                      "print the engine's parameters with their ranges and defaults",
                      [](Options& o, const std::string&, const std::string&)
                      { o.action = Action::listParameters; }},
    OptionDescription{"--quiet", 'q', Argument::none, "", "print nothing but errors and what was asked for",
                      [](Options& o, const std::string&, const std::string&) { o.quiet = true; }},
    OptionDescription{"--help", 'h', Argument::none, "", "print this page",
                      [](Options& o, const std::string&, const std::string&)
                      { o.action = Action::showHelp; }},
    OptionDescription{"--version", 'V', Argument::none, "", "print the version",
                      [](Options& o, const std::string&, const std::string&)
                      { o.action = Action::showVersion; }},
};

} // namespace

std::span<const OptionDescription> getOptionTable() { return optionTable; }

} // namespace ambrel::render
