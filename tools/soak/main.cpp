/**
    ambrel-soak: hours of audio through the plug-in, as fast as it goes. See Soak.h for what has to hold.

    Prints one line for each hour. Exit status: 0 no fault was found, 1 there is one, 2 the command line makes no
    sense.
*/
#include "tools/soak/Soak.h"

#include <juce_events/juce_events.h>

#include <chrono>
#include <iostream>
#include <limits>

namespace
{

using ambrel::soak::Fault;
using ambrel::soak::Progress;
using ambrel::soak::Soak;

constexpr int exitFault = 1;
constexpr int exitUsage = 2;

constexpr auto help =
    "Usage: ambrel-soak [OPTION]...\n"
    "\n"
    "Plays hours of audio through the reverb while everything that can be moved is moved, and\n"
    "stops at the first sample that is no number, at a drift of level, or at growing memory.\n"
    "\n"
    "  --hours N         until N hours of audio are done; default 24\n"
    "  --minutes N       but no longer than N minutes by the clock\n"
    "  --state FILE      keep in FILE how far it got, and go on from there the next time\n"
    "  --seed N          another order of events; default 1, or what FILE says\n"
    "  --hour-length N   seconds of audio that count as an hour; default 3600\n"
    "  --help            print this page\n";

constexpr auto seedKey = "seed";
constexpr auto hoursKey = "hoursDone";
constexpr auto levelKey = "referenceLevel";

struct Options
{
    double hours = 24.0;
    double minutes = std::numeric_limits<double>::infinity();
    double hourLength = 3600.0;
    juce::File stateFile;
    std::optional<juce::int64> seed;
};

/** The value behind an option, which is taken out of the list; as --option=value or --option value. */
std::optional<juce::String> take(juce::ArgumentList& arguments, const char* option)
{
    const int index = arguments.indexOfOption(option);
    if (index < 0)
        return {};

    auto value = arguments.removeValueForOption(option);
    if (value.isEmpty() && index < arguments.size() && !arguments[index].isOption())
    {
        value = arguments[index].text;
        arguments.arguments.remove(index);
    }
    if (value.isEmpty())
        juce::ConsoleApplication::fail(juce::String(option) + " needs a value", exitUsage);
    return value;
}

std::optional<double> takeNumber(juce::ArgumentList& arguments, const char* option)
{
    const auto text = take(arguments, option);
    if (!text)
        return {};

    const double number = text->getDoubleValue();
    if (!text->containsOnly("0123456789.") || number <= 0.0)
        juce::ConsoleApplication::fail(juce::String(option) + " needs a number above 0", exitUsage);
    return number;
}

Options parse(juce::ArgumentList arguments)
{
    Options options;
    options.hours = takeNumber(arguments, "--hours").value_or(options.hours);
    options.minutes = takeNumber(arguments, "--minutes").value_or(options.minutes);
    options.hourLength = takeNumber(arguments, "--hour-length").value_or(options.hourLength);
    if (const auto seed = takeNumber(arguments, "--seed"))
        options.seed = static_cast<juce::int64>(*seed);
    if (const auto file = take(arguments, "--state"))
        options.stateFile = juce::File::getCurrentWorkingDirectory().getChildFile(*file);

    if (arguments.size() > 0)
        juce::ConsoleApplication::fail("'" + arguments[0].text + "' is no option; see --help", exitUsage);
    return options;
}

/** How far a run got, in a file; in memory alone if it has no name. */
class ProgressFile
{
public:
    ProgressFile(const juce::File& file, std::optional<juce::int64> seed) : properties(file, {})
    {
        progress.seed = seed.value_or(properties.getValue(seedKey, "1").getLargeIntValue());
        progress.hoursDone = properties.getIntValue(hoursKey);
        if (properties.containsKey(levelKey))
            progress.referenceLevel = properties.getDoubleValue(levelKey);
    }

    void save()
    {
        if (properties.getFile() == juce::File())
            return;
        properties.setValue(seedKey, progress.seed);
        properties.setValue(hoursKey, progress.hoursDone);
        properties.setValue(levelKey, *progress.referenceLevel);
        if (!properties.save())
            juce::ConsoleApplication::fail("'" + properties.getFile().getFullPathName() +
                                           "' cannot be written");
    }

    Progress progress;

private:
    juce::PropertiesFile properties;
};

int run(const Options& options)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const auto getMinutes = [&]
    { return std::chrono::duration<double, std::ratio<60>>(Clock::now() - start).count(); };
    const auto isTimeUp = [&] { return getMinutes() >= options.minutes; };

    ProgressFile file(options.stateFile, options.seed);
    auto& progress = file.progress;
    const int firstHour = progress.hoursDone;
    try
    {
        Soak soak(progress);
        while (progress.hoursDone < options.hours && soak.runHour(options.hourLength, isTimeUp))
        {
            std::cout << soak.getReport() << std::flush;
            file.save();
        }
        std::cout << juce::String::formatted(
            "%d hours in %.1f minutes, %d of %g done: drift %.3f dB at most, memory %+.1f MiB at most\n",
            progress.hoursDone - firstHour, getMinutes(), progress.hoursDone, options.hours,
            soak.getLargestDrift(), soak.getLargestGrowth());
        return 0;
    }
    catch (const Fault& fault)
    {
        juce::ConsoleApplication::fail(juce::String("ambrel-soak: ") + fault.what(), exitFault);
    }
    return exitFault;
}

} // namespace

int main(int argc, char* argv[])
{
    const juce::ArgumentList arguments(argc, argv);
    if (arguments.containsOption("--help|-h"))
    {
        std::cout << help;
        return 0;
    }
    return juce::ConsoleApplication::invokeCatchingFailures(
        [&]
        {
            const Options options = parse(arguments);
            const juce::ScopedJuceInitialiser_GUI juceInitialiser;
            return run(options);
        });
}
