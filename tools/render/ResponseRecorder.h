/**
    Keeps what is rendered, as a response to be measured. Stereo only.
*/
#pragma once

#include "tools/render/SampleStream.h"
#include "tools/render/measures/RoomMeasures.h"

namespace ambrel::render
{

class ResponseRecorder : public SampleSink
{
public:
    explicit ResponseRecorder(double sampleRate) { response.sampleRate = sampleRate; }

    void write(const juce::AudioBuffer<float>& block, int start, int numSamples) override
    {
        const auto append = [&](std::vector<float>& channel, int index)
        {
            const float* samples = block.getReadPointer(index, start);
            channel.insert(channel.end(), samples, samples + numSamples);
        };
        append(response.left, 0);
        append(response.right, 1);
    }

    const measures::StereoResponse& getResponse() const { return response; }

private:
    measures::StereoResponse response;
};

} // namespace ambrel::render
