/**
    One instance of the very plug-in that hosts load, with the settings that the options ask for.

        PlugIn plugIn;
        plugIn.apply(options);
        Renderer(plugIn.getProcessor(), ...);

    A fresh instance opens as it does in a host. Settings apply in a fixed order: preset, state, Character and
    Mix, single parameters. Each file gets an instance of its own, so a render does not depend on the one
    before it.

    Cost: the plug-in's construction, tens of milliseconds. Thread: one, with JUCE initialised.
*/
#pragma once

#include "plugin/BasePlugInProcessor.h"
#include "tools/render/Options.h"
#include "tools/render/Renderer.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ambrel::render
{

class PlugIn
{
public:
    PlugIn();

    juce::AudioProcessor& getProcessor() { return *processor; }

    /** @throws RenderError for a preset or a state that cannot be had */
    void apply(const Options& options);

    /** Lets only the room sound, at 0 dB: for impulse responses, behind the other settings but before the
        single parameters, which may take it back. */
    void applyForImpulse(const Options& options);

    /** The end of an output as the options ask for it. The bound is the engine's own: it falls silent for
        good after twice its longest reverb time and twice the pre-delay. */
    TailRule getTailRule(const Options& options) const;

    std::vector<std::string> getPresetNames() const;

    /** The name of the preset in force; empty if there is none. */
    std::string getPresetName() const;

    /** All engine parameters by name, in their order. */
    std::vector<std::pair<std::string, float>> getSettings() const;

    /** How long an impulse response must be to show the decay down to about -90 dB, seconds. */
    double getDecayDuration() const;

    /** @throws RenderError if the file cannot be written */
    void savePreset(const std::string& path);

private:
    void applyBase(const Options& options);
    void applySettings(const std::vector<ParameterSetting>& settings);
    void loadPreset(const std::string& nameOrFile);
    int findProgram(const std::string& name) const;
    void restoreState(const std::string& path);
    double getValue(int index) const;
    double getPreDelay() const;
    double getLongestTime() const;

    std::unique_ptr<BasePlugInProcessor> processor;
    std::shared_ptr<vesk::audio::BaseAudioProcessor> engine;
};

} // namespace ambrel::render
