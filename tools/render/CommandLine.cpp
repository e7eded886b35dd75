#include "tools/render/CommandLine.h"

#include "tools/render/Errors.h"
#include "tools/render/FilePaths.h"
#include "tools/render/OptionTable.h"

#include <algorithm>
#include <map>

namespace ambrel::render
{

namespace
{

/** Walks along the words and applies the options one by one. */
class Parser
{
public:
    explicit Parser(const std::vector<std::string>& words) : arguments(words) {}

    Options parse()
    {
        bool optionsEnded = false;

        while (position < arguments.size())
        {
            const std::string& word = arguments[position++];

            if (optionsEnded || word.size() < 2 || word[0] != '-')
                options.inputs.push_back(word);
            else if (word == "--")
                optionsEnded = true;
            else if (word[1] == '-')
                applyLong(word);
            else
                applyShort(word);
        }
        return options;
    }

private:
    void applyLong(const std::string& word)
    {
        const auto equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const auto found = std::ranges::find_if(table, [&](const auto& entry) { return name == entry.name; });

        if (found == table.end())
            throw UsageError("unknown option '" + name + "' (--help shows all)");
        if (equals != std::string::npos)
            applyWithText(*found, name, word.substr(equals + 1));
        else
            applyWithNext(*found, name);
    }

    /** "-o FILE" or "-oFILE"; letters are not joined. */
    void applyShort(const std::string& word)
    {
        const std::string name = word.substr(0, 2);
        const auto found =
            std::ranges::find_if(table, [&](const auto& entry) { return name[1] == entry.letter; });

        if (found == table.end())
            throw UsageError("unknown option '" + name + "' (--help shows all)");
        if (word.size() > 2)
            applyWithText(*found, name, word.substr(2));
        else
            applyWithNext(*found, name);
    }

    void applyWithText(const OptionDescription& option, const std::string& name, const std::string& value)
    {
        if (option.argument == Argument::none)
            throw UsageError(name + " takes no value");
        option.apply(options, name, value);
    }

    void applyWithNext(const OptionDescription& option, const std::string& name)
    {
        if (option.argument != Argument::required)
            option.apply(options, name, "");
        else if (position < arguments.size())
            option.apply(options, name, arguments[position++]);
        else
            throw UsageError(name + " needs a value (" + option.argumentName + ")");
    }

    const std::vector<std::string>& arguments;
    const std::span<const OptionDescription> table = getOptionTable();
    std::size_t position = 0;
    Options options;
};

void checkOutputs(const Options& options)
{
    const bool rendersFiles = !options.inputs.empty();

    if (!options.output.empty() && !options.outputDirectory.empty())
        throw UsageError("--output and --output-dir exclude each other");
    if (rendersFiles && options.output.empty() && options.outputDirectory.empty())
        throw UsageError("where to? Give --output FILE or --output-dir DIR");
    if (options.inputs.size() > 1 && !options.output.empty())
        throw UsageError("--output takes one input; use --output-dir for several");
    if (!rendersFiles && !options.outputDirectory.empty())
        throw UsageError("--output-dir needs input files");
    if (!rendersFiles && !options.output.empty() && !options.impulse)
        throw UsageError("--output needs an input file or --impulse");

    if (options.output.empty())
        return;

    const auto kind = fileKindOf(options.output);

    if (!kind)
        throw UsageError("--output: '" + options.output + "' ends neither in .wav nor in .flac");
    if (kind == FileKind::flac && options.bits == 32)
        throw UsageError("--bits: FLAC holds 16 or 24 bits");
}

void checkImpulse(const Options& options)
{
    if (options.impulse && !options.inputs.empty())
        throw UsageError("--impulse takes the place of an input file; give one of them");
    if (options.impulse && options.output.empty() && !options.measuresRoom())
        throw UsageError("where to? Give --output FILE");
    if (options.impulse && options.tail)
        throw UsageError("--impulse and --tail exclude each other");
}

/** Two inputs of one name, or one name with two extensions, would end up in the same file. */
void checkOutputNames(const Options& options)
{
    if (options.outputDirectory.empty())
        return;

    std::map<std::string, std::string> inputOf;

    for (const std::string& input : options.inputs)
    {
        const std::string name = outputNameFor(input);
        const auto [entry, isNew] = inputOf.emplace(name, input);

        if (!isNew)
            throw UsageError("'" + entry->second + "' and '" + input + "' would both be written to '" + name +
                             "'");
        if (fileKindOf(name) == FileKind::flac && options.bits == 32)
            throw UsageError("--bits: FLAC holds 16 or 24 bits, so '" + input + "' cannot be written");
    }
}

void checkTask(const Options& options)
{
    const bool hasTask = !options.inputs.empty() || options.needsImpulse() || !options.savePreset.empty();

    if (!hasTask)
        throw UsageError("nothing to do: give input files (--help shows all)");
    if (!options.plot.empty() && !juce::String::fromUTF8(options.plot.c_str()).endsWithIgnoreCase(".png"))
        throw UsageError("--plot: '" + options.plot + "' does not end in .png");
}

} // namespace

Options parseCommandLine(const std::vector<std::string>& arguments)
{
    Options options = Parser(arguments).parse();

    if (options.action == Action::render)
    {
        checkTask(options);
        checkImpulse(options);
        checkOutputs(options);
        checkOutputNames(options);
    }
    return options;
}

} // namespace ambrel::render
