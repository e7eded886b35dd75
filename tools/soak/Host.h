/**
    A host that plays the plug-in without a pause, in blocks of changing length, and looks at every sample that
    comes back.

        Host host;
        host.chooseBlocks(random);
        host.play(10.0, Host::Input::noise);    // seconds
        host.getPlugIn().setCurrentProgram(3);
        const double level = host.play(10.0, Host::Input::noise).getLevel();

    The plug-in is prepared once, in stereo at 48 kHz, and never reset: whatever builds up in it stays.

    Thread: one, with JUCE initialised.
*/
#pragma once

#include "product/AmbrelAudioProcessor.h"

#include <juce_audio_basics/juce_audio_basics.h>

#include <sstream>
#include <stdexcept>

namespace ambrel::soak
{

/** Something that must never happen has happened. */
class Fault : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/** What has come out in a stretch of time. */
struct Heard
{
    double energy = 0.0; ///< sum of all squared samples
    double samples = 0.0;
    float peak = 0.0f;

    /** RMS, dB. */
    double getLevel() const;
};

class Host
{
public:
    static constexpr double sampleRate = 48000.0;

    enum class Input
    {
        silence,
        noise ///< white, at -20 dBFS, going on where it stopped
    };

    Host();
    ~Host();

    AmbrelAudioProcessor& getPlugIn() { return plugIn; }

    /** Back to the beginning of the noise, in even blocks: the next stretch is like any other behind this call. */
    void rewind();

    /** Another length of the blocks to come, or one that changes from block to block. */
    void chooseBlocks(juce::Random& random);

    /** @throws Fault for a sample that is no number or beyond all measure, and for an error of the engine */
    Heard play(double seconds, Input input, bool bypassed = false);

private:
    int getNextBlockLength(int remaining);
    void fillBlock(int length, Input input);
    void examine(Heard& heard) const;

    AmbrelAudioProcessor plugIn;
    juce::AudioBuffer<float> noise;
    juce::AudioBuffer<float> block;
    juce::MidiBuffer midi;
    juce::Random lengths;
    int blockLength; ///< 0: each block another
    int noisePosition = 0;

    /** Where the plug-in tells of an error that it has kept from the host. */
    std::ostringstream errors;
    std::streambuf* const standardError;

    JUCE_DECLARE_NON_COPYABLE(Host)
};

} // namespace ambrel::soak
