#include "tools/render/Application.h"

#include "product/AmbrelConstants.h"
#include "tools/render/AudioFileReader.h"
#include "tools/render/AudioFileWriter.h"
#include "tools/render/FileOutput.h"
#include "tools/render/FilePaths.h"
#include "tools/render/HelpText.h"
#include "tools/render/ImpulseSource.h"
#include "tools/render/PlugIn.h"
#include "tools/render/ResponseRecorder.h"
#include "tools/render/RoomPlot.h"
#include "tools/render/RoomReport.h"

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <optional>

namespace ambrel::render
{

namespace
{

constexpr int defaultBits = 24;
constexpr int floatBits = 32;

void print(const std::string& text) { std::fputs(text.c_str(), stdout); }

std::string decimals(double value, int places)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", places, value);
    return text;
}

std::string levelText(double level, const char* unit)
{
    return level <= silenceLevel ? "silent" : decimals(level, 1) + " " + unit;
}

const char* toText(ImpulsePosition position)
{
    switch (position)
    {
    case ImpulsePosition::left: return "left";
    case ImpulsePosition::right: return "right";
    case ImpulsePosition::both: break;
    }
    return "both";
}

/** " (+1.2 LU)": how much louder the output is; empty if one of the two is silent. */
std::string loudnessText(const RenderedAudio& audio)
{
    if (!audio.output.loudness)
        return "";

    std::string text = ", loudness " + decimals(*audio.output.loudness, 1) + " LUFS";

    if (audio.input.loudness)
    {
        const double change = *audio.output.loudness - *audio.input.loudness;
        text += std::string(" (") + (change < 0.0 ? "" : "+") + decimals(change, 1) + " LU)";
    }
    return text;
}

void checkIsOtherFile(const std::string& input, const std::string& output)
{
    std::error_code error;

    if (std::filesystem::equivalent(input, output, error))
        throw RenderError("'" + output + "' is the input itself; it would be overwritten");
}

} // namespace

Application::Application(Options optionsToUse)
    : options(std::move(optionsToUse)), progress(Progress::standardErrorStyle(options.quiet))
{
}

void Application::printError(const std::string& message)
{
    std::fprintf(stderr, "ambrel-render: %s\n", message.c_str());
}

ExitStatus Application::run()
{
    switch (options.action)
    {
    case Action::showHelp: print(getHelpText()); break;
    case Action::showVersion:
        print(std::string("ambrel-render ") + AmbrelConstants::plugInVersion + "\n");
        break;
    case Action::listParameters: print(getParameterListText()); break;
    case Action::listPresets:
        for (const std::string& name : PlugIn().getPresetNames())
            print(name + "\n");
        break;
    case Action::render: return renderAll();
    }
    return exitSuccess;
}

ExitStatus Application::renderAll()
{
    if (!options.savePreset.empty())
        savePreset();
    if (options.needsImpulse())
        renderImpulse();
    return renderInputs();
}

ExitStatus Application::renderInputs()
{
    ExitStatus status = exitSuccess;

    if (!options.outputDirectory.empty())
        makeOutputDirectory();

    for (const std::string& input : options.inputs)
    {
        try
        {
            renderInput(input, getOutputFor(input));
        }
        catch (const RenderError& error)
        {
            progress.finish();
            printError(error.what());
            status = exitFailure;
        }
    }
    return status;
}

void Application::renderInput(const std::string& input, const std::string& output)
{
    checkIsOtherFile(input, output);
    AudioFileReader source(input);

    PlugIn plugIn;
    plugIn.apply(options);

    Renderer renderer(plugIn.getProcessor(), options.blockSize, progress);
    renderer.checkChannels(source, input);
    AudioFileWriter file(output, source.getSampleRate(), source.getNumChannels(), getBits(output));
    const RenderedAudio audio = renderer.render(source, file, plugIn.getTailRule(options), input);
    file.commit();

    tellResult(output, audio, source.getSampleRate(), loudnessText(audio));
    tellClipping(output, file.getNumClipped());
}

void Application::renderImpulse()
{
    PlugIn plugIn;
    plugIn.applyForImpulse(options);

    const double seconds = options.impulse.value_or(plugIn.getDecayDuration());
    ImpulseSource source(options.rate, std::llround(seconds * options.rate), options.impulsePosition);
    TailRule noTail;
    noTail.fixed = 0.0;

    SinkList sinks;
    ResponseRecorder recorder(options.rate);
    std::optional<AudioFileWriter> file;

    if (options.measuresRoom())
        sinks.add(recorder);
    if (options.impulse && !options.output.empty())
        sinks.add(
            file.emplace(options.output, options.rate, source.getNumChannels(), getBits(options.output)));

    Renderer renderer(plugIn.getProcessor(), options.blockSize, progress);
    const RenderedAudio audio = renderer.render(source, sinks, noTail, "impulse response");

    if (file)
    {
        file->commit();
        tellResult(options.output, audio, options.rate, "");
        tellClipping(options.output, file->getNumClipped());
    }
    if (options.measuresRoom())
        measure(recorder.getResponse(), plugIn);
}

void Application::measure(const measures::StereoResponse& response, const PlugIn& plugIn)
{
    const measures::RoomMeasures measures = measures::measureRoom(response);
    const RoomDescription room{plugIn.getPresetName(), toText(options.impulsePosition), plugIn.getSettings()};

    if (options.report)
    {
        const std::string text =
            options.report->json ? createReportJson(measures, room) : createReportTable(measures, room);

        if (options.report->file.empty())
            print(text);
        else
            writeOutputFile(options.report->file, {text.data(), text.size()});
    }
    if (!options.plot.empty())
        writeOutputFile(options.plot, createRoomPlot(response, measures, room));
}

void Application::savePreset()
{
    PlugIn plugIn;
    plugIn.apply(options);
    plugIn.savePreset(options.savePreset);
    tell(options.savePreset + ": preset");
}

void Application::makeOutputDirectory() const
{
    const juce::Result made = toFile(options.outputDirectory).createDirectory();

    if (made.failed())
        throw RenderError("folder '" + options.outputDirectory +
                          "' cannot be made: " + made.getErrorMessage().toStdString());
}

int Application::getBits(const std::string& output) const
{
    const bool floatByDefault = options.impulse && fileKindOf(output) == FileKind::wav;
    return options.bits.value_or(floatByDefault ? floatBits : defaultBits);
}

std::string Application::getOutputFor(const std::string& input) const
{
    if (options.outputDirectory.empty())
        return options.output;
    return (std::filesystem::path(options.outputDirectory) / outputNameFor(input)).string();
}

void Application::tell(const std::string& line) const
{
    const bool reportIsPrinted = options.report && options.report->file.empty();
    FILE* stream = reportIsPrinted ? stderr : stdout;

    if (!options.quiet)
    {
        std::fprintf(stream, "%s\n", line.c_str());
        std::fflush(stream);
    }
}

void Application::tellResult(const std::string& output, const RenderedAudio& audio, double rate,
                             const std::string& loudness) const
{
    const double duration = static_cast<double>(audio.output.numSamples) / rate;
    const std::string speed = audio.seconds > 0.0 ? decimals(duration / audio.seconds, 1) : "infinitely";

    tell(output + ": " + decimals(duration, 2) + " s, peak " + levelText(audio.output.peak, "dBFS") +
         ", RMS " + levelText(audio.output.rms, "dBFS") + loudness + ", " + speed + " times real time");
}

void Application::tellClipping(const std::string& output, std::int64_t numClipped) const
{
    if (numClipped > 0 && !options.quiet)
        printError("warning: '" + output + "' is clipped in " + std::to_string(numClipped) +
                   " samples; a lower --mix or --bits 32 avoids it");
}

} // namespace ambrel::render
