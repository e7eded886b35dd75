#include "core/AudioFormat.h"

#include <algorithm>
#include <cstddef>

namespace vesk::audio
{

namespace
{
constexpr SpeakerPosition left{-1.0f, 1.0f, 0.0f, Regular, -1.0f};
constexpr SpeakerPosition right{1.0f, 1.0f, 0.0f, Regular, -1.0f};
constexpr SpeakerPosition centre{0.0f, 1.0f, 0.0f, Regular, -1.0f};
constexpr SpeakerPosition lowFrequency{0.0f, 0.0f, 0.0f, Lfe, -1.0f};
constexpr SpeakerPosition leftSurround{-1.0f, -1.0f, 0.0f, Regular, -1.0f};
constexpr SpeakerPosition rightSurround{1.0f, -1.0f, 0.0f, Regular, -1.0f};
constexpr SpeakerPosition leftSide{-1.0f, 0.0f, 0.0f, Regular, -1.0f};
constexpr SpeakerPosition rightSide{1.0f, 0.0f, 0.0f, Regular, -1.0f};

std::vector<SpeakerPosition> standardLayout(int channels)
{
    switch (channels)
    {
    case 1: return {centre};
    case 2: return {left, right};
    case 3: return {left, right, lowFrequency};
    case 4: return {left, right, leftSurround, rightSurround};
    case 5: return {left, right, centre, leftSurround, rightSurround};
    case 6: return {left, right, centre, lowFrequency, leftSurround, rightSurround};
    case 7: return {left, right, centre, leftSurround, rightSurround, leftSide, rightSide};
    case 8: return {left, right, centre, lowFrequency, leftSurround, rightSurround, leftSide, rightSide};
    default: return std::vector<SpeakerPosition>(static_cast<std::size_t>(std::max(channels, 0)));
    }
}
} // namespace

AudioFormat::AudioFormat(int channels, double rate)
    : numChannels(channels), sampleRate(rate), speakers(standardLayout(channels))
{
}

} // namespace vesk::audio
