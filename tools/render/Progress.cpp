#include "tools/render/Progress.h"

#include <algorithm>
#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace ambrel::render
{

namespace
{

using namespace std::chrono_literals;

constexpr auto barInterval = 100ms;
constexpr auto lineInterval = 5s;
constexpr int barWidth = 40;

bool standardErrorIsTerminal()
{
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

} // namespace

Progress::Progress(Style styleToUse) : style(styleToUse) {}

Progress::~Progress() { finish(); }

Progress::Style Progress::standardErrorStyle(bool quiet)
{
    if (quiet)
        return Style::silent;
    return standardErrorIsTerminal() ? Style::bar : Style::lines;
}

void Progress::start(const std::string& title, std::int64_t expectedTotal)
{
    name = title;
    total = std::max<std::int64_t>(1, expectedTotal);
    lastWrite = Clock::now();

    if (style == Style::bar)
        drawBar(0);
}

void Progress::advanceTo(std::int64_t done)
{
    if (style == Style::silent)
        return;

    const auto now = Clock::now();

    if (now - lastWrite <
        (style == Style::bar ? Clock::duration(barInterval) : Clock::duration(lineInterval)))
        return;

    lastWrite = now;

    if (style == Style::bar)
        drawBar(getPercent(done));
    else
        std::fprintf(stderr, "%s: %d %%\n", name.c_str(), getPercent(done));
}

/** The total is an estimate while a tail runs, so the bar waits before its end. */
int Progress::getPercent(std::int64_t done) const
{
    return static_cast<int>(std::clamp<std::int64_t>(100 * done / total, 0, 99));
}

void Progress::drawBar(int percent)
{
    const auto filled = static_cast<std::size_t>(percent * barWidth / 100);
    const std::string bar = std::string(filled, '#') + std::string(barWidth - filled, '.');
    std::fprintf(stderr, "\r[%s] %3d %%  %s\x1b[K", bar.c_str(), percent, name.c_str());
    std::fflush(stderr);
    barShown = true;
}

void Progress::finish()
{
    if (barShown)
    {
        std::fputs("\r\x1b[K", stderr);
        std::fflush(stderr);
    }
    barShown = false;
}

} // namespace ambrel::render
