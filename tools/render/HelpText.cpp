#include "tools/render/HelpText.h"

#include "reverb/ParameterTable.h"
#include "tools/render/OptionTable.h"
#include "tools/render/OptionValues.h"
#include "tools/render/TextLayout.h"

#include <cstdio>

namespace ambrel::render
{

namespace
{

constexpr std::size_t helpColumn = 29;

std::string describe(const OptionDescription& option)
{
    std::string head = option.letter != 0 ? std::string("  -") + option.letter + ", " : "      ";
    head += option.name;

    if (option.argument == Argument::required)
        head += std::string(" ") + option.argumentName;
    else if (option.argument == Argument::optional)
        head += std::string("[=") + option.argumentName + "]";

    return wrapBeside(head, option.help, helpColumn);
}

} // namespace

std::string getHelpText()
{
    std::string text = "Usage: ambrel-render [OPTION]... FILE -o FILE\n"
                       "       ambrel-render [OPTION]... FILE... -d DIR\n"
                       "       ambrel-render [OPTION]... --impulse SECONDS -o FILE\n"
                       "       ambrel-render [OPTION]... --report [--plot FILE.png]\n"
                       "\n"
                       "Runs audio files through the Ambrel reverb, as the plug-in does in a host.\n"
                       "Reads mono and stereo WAV, AIFF, FLAC and Ogg Vorbis; writes WAV and FLAC at\n"
                       "the input's sample rate. The same command gives the same bytes every time.\n"
                       "\n";

    for (const OptionDescription& option : getOptionTable())
        text += describe(option);

    return text + "\n"
                  "Settings apply in this order: preset, state, Character and Mix, then each --set.\n"
                  "Exit status: 0 done; 1 something failed; 2 the command line makes no sense;\n"
                  "128 and the signal's number if stopped. An output file appears only when whole.\n";
}

std::string getParameterListText()
{
    std::string text;
    char line[160];

    const auto addLine = [&](const char* name, const std::string& minimum, const std::string& maximum,
                             const std::string& standard, const char* unit, const char* description)
    {
        std::snprintf(line, sizeof line, "%-20s %8s %8s %8s  %-10s %s\n", name, minimum.c_str(),
                      maximum.c_str(), standard.c_str(), unit, description);
        text += line;
    };

    addLine("parameter", "minimum", "maximum", "default", "unit", "what it controls");

    for (const vesk::audio::ParameterInfo& info : vesk::audio::parameterTable)
        addLine(info.name, numberText(info.minimum), numberText(info.maximum), numberText(info.defaultValue),
                info.unit == vesk::audio::ParameterUnit::toggle ? "on/off" : getUnitText(info.unit),
                info.description);
    return text;
}

} // namespace ambrel::render
