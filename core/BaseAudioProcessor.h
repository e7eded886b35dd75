/**
    The contract between the plug-in layer and any engine.

    Set up: write expectedBlockSize, call setFormat, then reset. Run: process, block by block, while
    parameters are set from any thread. Parameters are indexed from 0 and in natural units (dB, Hz, s).

    An engine may put off the dear part of a parameter change to effectuateParameterChanges, which is called
    at once if setParameterValue is told so, or later, at the end of a batch.
*/
#pragma once

#include "core/AudioFormat.h"
#include "core/DspCore.h"
#include "core/Signal.h"

namespace vesk::audio
{

struct ProcessingInfo
{
    int leadLatency = 0;  ///< samples that the plug-in layer makes up for
    int trailLatency = 0; ///< samples of delay in the engine's own output
    double rate = 1.0;
};

class BaseAudioProcessor
{
public:
    virtual ~BaseAudioProcessor();

    /** Stores both formats. Returns whether the engine can run with them. Thread: not beside process. */
    virtual bool setFormat(const AudioFormat& input, const AudioFormat& output);

    virtual ProcessingInfo getProcessingInfo();

    /** @throws std::out_of_range ("Parameter index") for an unknown index, as the two below. Thread: any. */
    virtual void getParameterRange(int index, float& low, float& high);
    virtual float getParameterValue(int index);
    virtual void setParameterValue(int index, float value, bool effectuateNow);

    /** Does the work that setParameterValue put off. Thread: any, one at a time. */
    virtual void effectuateParameterChanges();

    /** Clears all audio state. Thread: not beside process. */
    virtual void reset();

    /** One block in, one block out, by value. Thread: the audio thread. */
    virtual Signal32 process(const Signal32& input, bool bypassed) = 0;

    AudioFormat inputFormat;
    AudioFormat outputFormat;

    /** The block length that the plug-in layer is going to send; -1 until it says so. */
    int expectedBlockSize = -1;
};

} // namespace vesk::audio
