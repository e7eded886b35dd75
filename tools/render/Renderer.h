/**
    Runs a source through a processor, as a host does that bounces a track: prepare, then block after block,
    then silence until the tail is over.

        Renderer renderer(processor, 512, progress);
        RenderedAudio done = renderer.render(source, file, tailRule, "voice.wav");

    All blocks are of full length; what the last one holds behind the input's end already belongs to the tail.
    The output starts with the input's first sample: the processor's latency is taken off.

    Thread: one. Stops between two blocks if the user asks for it (see Interruption.h).
*/
#pragma once

#include "tools/render/LevelMeter.h"
#include "tools/render/Progress.h"
#include "tools/render/SampleStream.h"

#include <juce_audio_processors/juce_audio_processors.h>

#include <optional>
#include <string>

namespace ambrel::render
{

/** When an output ends. All lengths in seconds. */
struct TailRule
{
    std::optional<double> fixed; ///< this long behind the input; empty: until it is silent
    double hold = 0.5;           ///< the longest pause within a tail that ends by itself
    double longest = 0.0;        ///< bound of a tail that ends by itself
};

struct RenderedAudio
{
    Levels input;
    Levels output;
    double seconds = 0.0; ///< time the render took
};

class Renderer
{
public:
    Renderer(juce::AudioProcessor& processor, int blockSize, Progress& progress);

    /** @param title  names the source in the error
        @throws RenderError if the processor does not take the source's channels */
    void checkChannels(const SampleSource& source, const std::string& title) const;

    /** @param title  for the progress
        @throws RenderError from the processor's channels, the source or the sink; Interrupted */
    RenderedAudio render(SampleSource& source, SampleSink& sink, const TailRule& tailRule,
                         const std::string& title);

private:
    void prepare(const SampleSource& source);

    juce::AudioProcessor& processor;
    int blockSize;
    Progress& progress;
};

} // namespace ambrel::render
