/**
    ambrel-render: the reverb on the command line. See CommandLine.h for what it takes and Application.h for
   what it does; this file only turns errors into lines and exit statuses.
*/
#include "tools/render/Application.h"
#include "tools/render/CommandLine.h"
#include "tools/render/Interruption.h"

#include <juce_events/juce_events.h>

#include <cstdio>
#include <utility>

namespace
{

using namespace ambrel::render;

int run(const std::vector<std::string>& arguments)
{
    try
    {
        Interruption::install();
        Options options = parseCommandLine(arguments);
        const juce::ScopedJuceInitialiser_GUI juceInitialiser;
        const ExitStatus status = Application(std::move(options)).run();

        if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
            throw RenderError("standard output cannot be written");
        return status;
    }
    catch (const UsageError& error)
    {
        Application::printError(error.what());
        return exitUsage;
    }
    catch (const Interrupted& interruption)
    {
        Application::printError("stopped; the file in work was not written");
        return exitSignalBase + interruption.signal;
    }
    catch (const std::exception& error)
    {
        Application::printError(error.what());
        return exitFailure;
    }
}

} // namespace

int main(int argc, char** argv) { return run({argv + 1, argv + argc}); }
