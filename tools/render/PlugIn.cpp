#include "tools/render/PlugIn.h"

#include "reverb/ParameterTable.h"
#include "tools/render/Errors.h"
#include "tools/render/FilePaths.h"

#include <algorithm>
#include <stdexcept>

juce::AudioProcessor* createPluginFilter();

namespace ambrel::render
{

namespace
{

using vesk::audio::Reverberation;

/** Positions of the plug-in's two public parameters. */
constexpr int characterIndex = 0;
constexpr int mixIndex = 1;

/** Longer than any gap between two echoes of the largest room, seconds. */
constexpr double longestEchoGap = 0.5;

std::unique_ptr<BasePlugInProcessor> createProcessor()
{
    std::unique_ptr<juce::AudioProcessor> made(createPluginFilter());

    if (auto* processor = dynamic_cast<BasePlugInProcessor*>(made.get()))
    {
        made.release();
        return std::unique_ptr<BasePlugInProcessor>(processor);
    }
    throw std::logic_error("the plug-in is of another kind than expected");
}

float toNormalized(double percent) { return static_cast<float>(percent / 100.0); }

} // namespace

PlugIn::PlugIn() : processor(createProcessor()), engine(processor->getBaseProcessor()) {}

void PlugIn::apply(const Options& options)
{
    applyBase(options);
    applySettings(options.settings);
}

void PlugIn::applyForImpulse(const Options& options)
{
    applyBase(options);
    applySettings({{Reverberation::muteDry, 1.0f}, {Reverberation::wetGain, 0.0f}});
    applySettings(options.settings);
}

void PlugIn::applyBase(const Options& options)
{
    if (!options.preset.empty())
        loadPreset(options.preset);
    if (!options.state.empty())
        restoreState(options.state);
    if (options.character)
        processor->setParameter(characterIndex, toNormalized(*options.character));
    if (options.mix)
        processor->setParameter(mixIndex, toNormalized(*options.mix));
}

void PlugIn::applySettings(const std::vector<ParameterSetting>& settings)
{
    for (const ParameterSetting& setting : settings)
        engine->setParameterValue(setting.index, setting.value, false);

    engine->effectuateParameterChanges();
}

/** A name out of the library, else a file. Programs are asked first, so that a file in the working directory
    cannot change what a preset's name means. */
void PlugIn::loadPreset(const std::string& nameOrFile)
{
    const int program = findProgram(nameOrFile);
    const juce::File file = toFile(nameOrFile);

    if (program < 0 && !file.existsAsFile())
        throw RenderError("there is no preset or preset file '" + nameOrFile +
                          "' (--list-presets shows the names)");

    // An unknown parameter in a file raises out_of_range; a file that is none leaves the empty name.
    processor->setCurrentPresetName({});

    try
    {
        if (program >= 0)
            processor->setCurrentProgram(program);
        else
            processor->importFromPresetFile(file);
    }
    catch (const std::out_of_range&)
    {
        throw RenderError("preset '" + nameOrFile + "' sets a parameter that does not exist");
    }

    if (processor->getCurrentPresetName().isEmpty())
        throw RenderError("preset '" + nameOrFile + "' is broken or no preset file");
}

/** -1 if there is none. Among presets of one name the last wins, which is the user's own; a difference of
    capitals does not matter unless it has to. */
int PlugIn::findProgram(const std::string& name) const
{
    const juce::String wanted = juce::String::fromUTF8(name.c_str());
    int similar = -1;
    int same = -1;

    for (int program = 0; program < processor->getNumPrograms(); ++program)
    {
        if (processor->getProgramName(program).equalsIgnoreCase(wanted))
            similar = program;
        if (processor->getProgramName(program) == wanted)
            same = program;
    }
    return same >= 0 ? same : similar;
}

void PlugIn::restoreState(const std::string& path)
{
    juce::MemoryBlock state;

    if (!toFile(path).loadFileAsData(state))
        throw RenderError("'" + path + "' cannot be read");

    juce::MemoryInputStream stream(state, false);

    if (!processor->setParameterSettings(stream))
        throw RenderError("'" + path + "' is not a state of this plug-in");
}

double PlugIn::getValue(int index) const { return static_cast<double>(engine->getParameterValue(index)); }

double PlugIn::getPreDelay() const { return getValue(Reverberation::preDelay) / 1000.0; }

double PlugIn::getLongestTime() const
{
    return getValue(Reverberation::reverbTime) * std::max(1.0, getValue(Reverberation::lowTimeScale) / 100.0);
}

TailRule PlugIn::getTailRule(const Options& options) const
{
    TailRule rule;
    rule.fixed = options.tail;
    rule.hold = getPreDelay() + longestEchoGap;
    rule.longest = 2.0 * (getPreDelay() + getLongestTime()) + rule.hold;
    return rule;
}

double PlugIn::getDecayDuration() const
{
    constexpr double reverbTimesShown = 1.5; // each is 60 dB
    return getPreDelay() + reverbTimesShown * getLongestTime() + longestEchoGap;
}

std::vector<std::string> PlugIn::getPresetNames() const
{
    std::vector<std::string> names;

    for (int program = 0; program < processor->getNumPrograms(); ++program)
        names.push_back(processor->getProgramName(program).toStdString());
    return names;
}

std::vector<std::pair<std::string, float>> PlugIn::getSettings() const
{
    std::vector<std::pair<std::string, float>> settings;

    for (const vesk::audio::ParameterInfo& info : vesk::audio::parameterTable)
        settings.emplace_back(info.name, engine->getParameterValue(info.index));
    return settings;
}

std::string PlugIn::getPresetName() const { return processor->getCurrentPresetName().toStdString(); }

void PlugIn::savePreset(const std::string& path)
{
    if (!processor->exportToPresetFile(toFile(path)))
        throw RenderError("'" + path + "' cannot be written");
}

} // namespace ambrel::render
