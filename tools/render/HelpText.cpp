#include "tools/render/HelpText.h"

#include "reverb/ParameterTable.h"
#include "tools/render/OptionTable.h"
#include "tools/render/OptionValues.h"

#include <cstdio>
#include <sstream>

namespace ambrel::render
{

namespace
{

/** The text in a column of its own, broken at blanks, with the head to the left of it if that fits. */
std::string wrapBeside(const std::string& head, const std::string& text)
{
    constexpr std::size_t column = 29;
    constexpr std::size_t lineLength = 80;

    std::string page = head;
    std::string line = head;

    if (head.size() + 2 > column)
    {
        page += '\n';
        line.clear();
    }
    page += std::string(column - line.size(), ' ');
    line.resize(column, ' ');

    std::istringstream words(text);

    for (std::string word; words >> word;)
    {
        if (line.size() + 1 + word.size() > lineLength)
        {
            page += '\n' + std::string(column, ' ');
            line.assign(column, ' ');
        }
        const std::string gap = line.size() > column ? " " : "";
        page += gap + word;
        line += gap + word;
    }
    return page + '\n';
}

std::string describe(const OptionDescription& option)
{
    std::string head = option.letter != 0 ? std::string("  -") + option.letter + ", " : "      ";
    head += option.name;

    if (option.argument == Argument::required)
        head += std::string(" ") + option.argumentName;
    else if (option.argument == Argument::optional)
        head += std::string("[=") + option.argumentName + "]";

    return wrapBeside(head, option.help);
}

} // namespace

std::string getHelpText()
{
    std::string text = "Usage: ambrel-render [OPTION]... FILE -o FILE\n"
                       "       ambrel-render [OPTION]... FILE... -d DIR\n"
                       "       ambrel-render [OPTION]... --impulse SECONDS -o FILE\n"
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
