/**
    Tells on standard error how far a render has come: a bar that redraws itself on a terminal, else a plain
    line now and then, which suits a log; nothing if told to be quiet.

        Progress progress(Progress::standardErrorStyle(quiet));
        progress.start("voice.wav", expectedSamples);
        progress.advanceTo(samplesDone);
        progress.finish();

    Cost: a look at the clock for each call; at most ten writes a second.
*/
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace ambrel::render
{

class Progress
{
public:
    enum class Style
    {
        silent,
        lines,
        bar
    };

    explicit Progress(Style style);
    ~Progress();

    /** The bar if standard error is a terminal. */
    static Style standardErrorStyle(bool quiet);

    void start(const std::string& title, std::int64_t expectedTotal);
    void advanceTo(std::int64_t done);

    /** Takes the bar away, so that the next output starts on a clean line. */
    void finish();

private:
    using Clock = std::chrono::steady_clock;

    int getPercent(std::int64_t done) const;
    void drawBar(int percent);

    const Style style;
    std::string name;
    std::int64_t total = 0;
    Clock::time_point lastWrite;
    bool barShown = false;
};

} // namespace ambrel::render
