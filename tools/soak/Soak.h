/**
    Hours of audio through the plug-in, each of them a reference passage and then scenes at random: parameters of
    host and engine, programs, undo, A/B, bypass, silence, blocks of all lengths.

        Soak soak(progress);
        while (progress.hoursDone < 24 && soak.runHour(3600.0, isTimeUp))
            std::cout << soak.getReport();

    What must hold: every sample is a number of sane size; the reference passage comes out at the same level in every
    hour; and the memory that the process holds after the first minute is what it holds to the end.

    What happens in an hour depends on the seed and its number alone, so a run that was stopped can go on later.

    Thread: one, with JUCE initialised.
*/
#pragma once

#include "tools/soak/Host.h"

#include <functional>
#include <optional>

namespace ambrel::soak
{

/** What a later run needs to go on. */
struct Progress
{
    juce::int64 seed = 1;
    int hoursDone = 0;
    std::optional<double> referenceLevel; ///< of the first hour, dB
};

class Soak
{
public:
    /** A minute of audio in which every program and many rooms are visited in blocks of all lengths, so that what
        memory the plug-in needs at all, it has by then. */
    explicit Soak(Progress& progressToKeep);

    /** @param seconds   of audio in this hour; at least one reference passage
        @param isTimeUp  asked between scenes
        @returns false if the time was up before the hour's end: it does not count, and has to be run again
        @throws Fault    and says when */
    bool runHour(double seconds, const std::function<bool()>& isTimeUp);

    /** One line on the hour that was run last. */
    juce::String getReport() const;

    /** Largest distance of a reference passage from the first one, dB. */
    double getLargestDrift() const { return largestDrift; }

    /** Largest growth since the constructor, mebibytes. */
    double getLargestGrowth() const { return largestGrowth; }

private:
    void forgetHistory();
    void playReference();
    void playScene(juce::Random& random);
    void play(double seconds, Host::Input input, bool bypassed = false);
    void setAllParameters(const std::function<float(std::size_t)>& getValue);
    void setAllAtRandom(juce::Random& random);
    void checkMemory();

    Progress& progress;
    Host host;
    double memoryAtStart = 0.0;

    // Of the present hour.
    double played = 0.0; ///< seconds
    int scenes = 0;
    double wallSeconds = 0.0;
    float peak = 0.0f;
    double level = 0.0; ///< of the reference passage, dB
    double memory = 0.0;

    double largestDrift = 0.0;
    double largestGrowth = 0.0;
};

} // namespace ambrel::soak
