/**
    Carries out what the options ask for, file by file, and tells about it.

    Output for the user goes to standard output, progress and errors to standard error. A file that fails does
    not keep the others from being rendered.
*/
#pragma once

#include "tools/render/Errors.h"
#include "tools/render/Options.h"
#include "tools/render/PlugIn.h"
#include "tools/render/Renderer.h"
#include "tools/render/measures/RoomMeasures.h"

#include <string>

namespace ambrel::render
{

class Application
{
public:
    explicit Application(Options options);

    /** @throws RenderError, Interrupted */
    ExitStatus run();

    /** Prints one line to standard error. */
    static void printError(const std::string& message);

private:
    ExitStatus renderAll();
    ExitStatus renderInputs();
    void renderInput(const std::string& input, const std::string& output);
    void renderImpulse();
    void measure(const measures::StereoResponse& response, const PlugIn& plugIn);
    void savePreset();
    void makeOutputDirectory() const;

    int getBits(const std::string& output) const;
    std::string getOutputFor(const std::string& input) const;

    void tell(const std::string& line) const;
    void tellResult(const std::string& output, const RenderedAudio& audio, double rate,
                    const std::string& loudness) const;
    void tellClipping(const std::string& output, std::int64_t numClipped) const;

    const Options options;
    Progress progress;
};

} // namespace ambrel::render
