/**
    The plug-in as the fuzzers drive it, and what must hold whatever it was given.

    The engine has no channels, so nothing is computed from its parameters: a run costs microseconds, and only what
    reads the input is exercised. The home folder is a new one, so nobody's presets or settings play a part.
*/
#pragma once

#include "product/AmbrelAudioProcessor.h"
#include "reverb/Reverberation.h"

#include <juce_events/juce_events.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

class FuzzedPlugIn
{
public:
    FuzzedPlugIn()
    {
        auto& engine = getEngine();
        engine.setFormat({0, sampleRate}, {0, sampleRate});
        float low = 0.0f;
        float high = 0.0f;
        for (int id = 0; id < vesk::audio::Reverberation::numParameters; ++id)
        {
            engine.getParameterRange(id, low, high);
            initialValues.push_back(engine.getParameterValue(id));
        }
    }

    /** As it was at the start, so that a finding can be repeated from its input alone. */
    AmbrelAudioProcessor& reset()
    {
        for (std::size_t id = 0; id < initialValues.size(); ++id)
            getEngine().setParameterValue(static_cast<int>(id), initialValues[id], false);
        plugIn.setCurrentPresetName("initial");
        return plugIn;
    }

    /** Stops the program if a parameter is not a number within its range, or the preset's name is no text. */
    void check()
    {
        for (int id = 0; id < static_cast<int>(initialValues.size()); ++id)
        {
            float low = 0.0f;
            float high = 0.0f;
            getEngine().getParameterRange(id, low, high);
            const float value = getEngine().getParameterValue(id);
            require(value >= low && value <= high);
        }
        for (int index = 0; index < plugIn.getNumParameters(); ++index)
            require(std::isfinite(plugIn.getParameter(index)));

        const auto name = plugIn.getCurrentPresetName();
        const auto* text = name.toRawUTF8();
        require(juce::CharPointer_UTF8::isValidString(text, static_cast<int>(std::strlen(text))));
    }

    static void require(bool condition)
    {
        if (!condition)
            std::abort();
    }

private:
    struct OwnHome
    {
        OwnHome()
        {
            folder.createDirectory();
            setenv("HOME", folder.getFullPathName().toRawUTF8(), 1);
            unsetenv("XDG_CONFIG_HOME");
        }
        ~OwnHome() { folder.deleteRecursively(); }

        juce::File folder = juce::File::createTempFile("home");
    };

    static constexpr double sampleRate = 48000.0;

    vesk::audio::BaseAudioProcessor& getEngine() { return *plugIn.getBaseProcessor(); }

    OwnHome home;
    juce::ScopedJuceInitialiser_GUI library;
    AmbrelAudioProcessor plugIn;
    std::vector<float> initialValues;
};
