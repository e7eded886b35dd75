#include "tools/soak/Soak.h"

#include "reverb/ParameterTable.h"
#include "tools/soak/ResidentMemory.h"

#include <chrono>
#include <cmath>
#include <limits>

namespace ambrel::soak
{

namespace
{

using vesk::audio::parameterTable;
using vesk::audio::Reverberation;

/** s. At the default reverb time the tail is gone and the engine at rest when the silence ends. */
constexpr double referenceSilence = 6.0;
constexpr double referenceStart = 0.1;
constexpr double referenceNoise = 10.0;

/** dB. What the hour before has left in the filters moves the level by less than a thousandth. */
constexpr double largestAllowedDrift = 0.01;

/** MiB. Responses are made in the system's memory, whose pages swing by some MiB with their sizes, and now and then there
    is a block of a size that there was none of before. Under a sanitizer it is mostly the sanitizer that grows. */
#ifdef AMBREL_SOAK_IGNORES_MEMORY
constexpr double largestAllowedGrowth = std::numeric_limits<double>::infinity();
#else
constexpr double largestAllowedGrowth = 12.0;
#endif

constexpr double shortestScene = 1.0; // s
constexpr double longestScene = 20.0; // s

constexpr double automationStep = 0.25; // s

/** Together a minute. */
constexpr int numVisits = 300;
constexpr double visitDuration = 0.2; // s

enum SceneKind
{
    goOn,
    automation,
    program,
    engineParameters,
    bypass,
    silence,
    history,
    alternate,
    numSceneKinds
};

float toDecibels(float amplitude) { return juce::Decibels::gainToDecibels(amplitude, -200.0f); }

} // namespace

Soak::Soak(Progress& progressToKeep) : progress(progressToKeep)
{
    juce::Random random(progress.seed);
    const int programs = host.getPlugIn().getNumPrograms();
    for (int visit = 0; visit < numVisits; ++visit)
    {
        host.chooseBlocks(random);
        if (visit < programs)
            host.getPlugIn().setCurrentProgram(visit);
        else
            setAllAtRandom(random);
        play(visitDuration, Host::Input::noise);
    }
    memoryAtStart = getResidentMemory();
}

bool Soak::runHour(double seconds, const std::function<bool()>& isTimeUp)
{
    const auto start = std::chrono::steady_clock::now();
    // Neighbouring seeds of this generator begin alike.
    juce::Random random(progress.seed);
    for (int hour = 0; hour <= progress.hoursDone; ++hour)
        random.setSeed(random.nextInt64());

    played = 0.0;
    peak = 0.0f;
    scenes = 0;
    try
    {
        playReference();
        while (played < seconds)
        {
            if (isTimeUp())
                return false;
            playScene(random);
        }
        forgetHistory();
        checkMemory();
    }
    catch (const Fault& fault)
    {
        throw Fault("hour " + std::to_string(progress.hoursDone + 1) + ", at " + std::to_string(played) +
                    " s: " + fault.what());
    }
    wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    ++progress.hoursDone;
    return true;
}

/** Undo keeps every change, without limit. */
void Soak::forgetHistory()
{
    auto& plugIn = host.getPlugIn();
    for (; scenes > 0; --scenes) // no scene leaves more than one state
        plugIn.undo();
    plugIn.addUndoState(); // drops those that redo would go to
}

/** The wet signal of the default settings. */
void Soak::playReference()
{
    // A change is what makes the modulation's noise begin anew and empties the tail.
    setAllParameters([](std::size_t index) { return parameterTable[index].minimum; });
    setAllParameters(
        [](std::size_t index)
        {
            const auto& info = parameterTable[index];
            return info.index == Reverberation::muteDry ? info.maximum : info.defaultValue;
        });
    // From here on every hour is alike: some noise wakes the engine, which may have been at rest for long, and it
    // is at rest again when the silence ends.
    host.rewind();
    play(referenceStart, Host::Input::noise);
    play(referenceSilence, Host::Input::silence);

    const Heard heard = host.play(referenceNoise, Host::Input::noise);
    played += referenceNoise;
    level = heard.getLevel();
    if (!progress.referenceLevel)
        progress.referenceLevel = level;

    const double drift = std::abs(level - *progress.referenceLevel);
    largestDrift = std::max(largestDrift, drift);
    // In this form a level that is not a number is a fault, too.
    if (!(drift <= largestAllowedDrift))
        throw Fault("the reference passage is " + std::to_string(drift) + " dB off that of the first hour");
}

void Soak::playScene(juce::Random& random)
{
    auto& plugIn = host.getPlugIn();
    ++scenes;
    const double seconds = shortestScene + (longestScene - shortestScene) * random.nextDouble();
    const double end = played + seconds;

    host.chooseBlocks(random);
    switch (random.nextInt(numSceneKinds))
    {
    case automation:
        while (played < end)
        {
            plugIn.setParameter(random.nextInt(plugIn.getNumParameters()), random.nextFloat());
            play(automationStep, Host::Input::noise);
        }
        return;
    case program: plugIn.setCurrentProgram(random.nextInt(plugIn.getNumPrograms())); break;
    case engineParameters: setAllAtRandom(random); break;
    case bypass: play(seconds / 2.0, Host::Input::noise, true); break;
    case silence: play(seconds, Host::Input::silence); break;
    case history: random.nextBool() ? plugIn.undo() : plugIn.redo(); break;
    case alternate: random.nextBool() ? plugIn.copyToAlternate() : plugIn.switchToAlternateSettings(); break;
    default: break; // goOn
    }
    if (played < end)
        play(end - played, Host::Input::noise);
}

void Soak::play(double seconds, Host::Input input, bool bypassed)
{
    peak = std::max(peak, host.play(seconds, input, bypassed).peak);
    played += seconds;
}

void Soak::setAllParameters(const std::function<float(std::size_t)>& getValue)
{
    const auto engine = host.getPlugIn().getBaseProcessor();
    for (std::size_t index = 0; index < parameterTable.size(); ++index)
        engine->setParameterValue(parameterTable[index].index, getValue(index), false);
    engine->effectuateParameterChanges();
}

void Soak::setAllAtRandom(juce::Random& random)
{
    setAllParameters(
        [&](std::size_t index)
        {
            const auto& info = parameterTable[index];
            return info.minimum + (info.maximum - info.minimum) * random.nextFloat();
        });
}

void Soak::checkMemory()
{
    memory = getResidentMemory();
    const double growth = memory - memoryAtStart;
    largestGrowth = std::max(largestGrowth, growth);
    if (growth > largestAllowedGrowth)
        throw Fault("the process has grown by " + std::to_string(growth) + " MiB since its first minute");
}

juce::String Soak::getReport() const
{
    return juce::String::formatted(
        "hour %d: reference %.3f dB (%+.3f), peak %.1f dBFS, memory %.1f MiB (%+.1f), %.0f times real time\n",
        progress.hoursDone, level, level - *progress.referenceLevel, static_cast<double>(toDecibels(peak)),
        memory, memory - memoryAtStart, played / wallSeconds);
}

} // namespace ambrel::soak
