/**
    What a stream is: channel count, sample rate, and where each channel's speaker stands.

        AudioFormat surround(6, 48000.0);   // L, R, C, LFE, Ls, Rs
*/
#pragma once

#include <cstdint>
#include <vector>

namespace vesk::audio
{

enum SpeakerType : std::int32_t
{
    Regular = 0, ///< a directional channel
    Mono = 1,    ///< the single channel of a mono bus
    Lfe = 2,     ///< a low-frequency channel
    Unknown = 3  ///< a channel name that is not known
};

/** Where a channel's speaker stands, seen from above; the listener is at the origin. */
struct SpeakerPosition
{
    float x = 0.0f; ///< left (-1) to right (+1)
    float y = 0.0f; ///< rear (-1) to front (+1)
    float z = 0.0f; ///< ear level (0) to top (+1)
    SpeakerType type = Unknown;
    float aux = -1.0f; ///< takes part in comparison only

    /** Equal only if all five fields are. */
    bool operator==(const SpeakerPosition&) const = default;
};

struct AudioFormat
{
    AudioFormat() = default;

    /** Standard layouts for 1 to 8 channels: C; L R; L R LFE; L R Ls Rs; L R C Ls Rs; L R C LFE Ls Rs;
        L R C Ls Rs Sl Sr; L R C LFE Ls Rs Sl Sr. Other counts get default positions. */
    AudioFormat(int channels, double rate);

    bool operator==(const AudioFormat&) const = default;

    int numChannels = 0;
    double sampleRate = 0.0; ///< Hz
    std::vector<SpeakerPosition> speakers;
};

} // namespace vesk::audio
