/**
    All measures of a room that can be read off its stereo impulse response.

        StereoResponse response{48000.0, left, right};
        const RoomMeasures measures = measureRoom(response);
        measures.broadband.t30;   // seconds, if the response is long enough to tell

    Times count from the response's first sample, the moment of the impulse. Energies are those of both channels
    together. What a response is too short, too quiet or too narrow to tell is empty.

    Cost: about as long as it takes to render the response.
*/
#pragma once

#include "tools/render/measures/EchoDensity.h"

#include <optional>
#include <vector>

namespace ambrel::measures
{

struct StereoResponse
{
    double sampleRate = 0.0; ///< Hz
    std::vector<float> left;
    std::vector<float> right;

    double getDuration() const { return static_cast<double>(left.size()) / sampleRate; }
};

/** The decay in one octave, or in all. */
struct BandMeasures
{
    double centre = 0.0;                  ///< Hz; 0 for broadband
    std::optional<double> level;          ///< energy of both channels, dB: the gain for steady noise
    std::optional<double> earlyDecayTime; ///< seconds, as the two below
    std::optional<double> t20;
    std::optional<double> t30;
    std::optional<double> straightness; ///< largest distance of the decay from its T30 line, dB
    std::optional<double> c50;          ///< energy before over energy after 50 ms, dB
    std::optional<double> c80;          ///< the same at 80 ms
    std::vector<float> decay;           ///< energy decay curve, dB, every RoomMeasures::decayStep seconds
};

struct RoomMeasures
{
    static constexpr double decayStep = 0.005;       ///< seconds
    static constexpr double densityStep = 0.001;     ///< seconds
    static constexpr double balanceStep = 0.2;       ///< seconds
    static constexpr double diffuseDensity = 0.9;    ///< echo density from which a response counts as diffuse
    static constexpr double correlationSplit = 0.08; ///< seconds, end of the early part
    static constexpr double correlationEnd = 0.75;   ///< seconds, end of the late part

    double sampleRate = 0.0;    ///< Hz
    double duration = 0.0;      ///< seconds
    std::optional<double> peak; ///< dBFS
    BandMeasures broadband;
    std::vector<BandMeasures> octaves; ///< 63 Hz to 8 kHz, as far as the sample rate reaches

    std::vector<float> echoDensity;      ///< mean of the channels, every densityStep
    std::optional<double> mixingTime;    ///< when it has reached diffuseDensity, seconds
    std::optional<double> flatness;      ///< of the late tail's spectrum, mean of the channels
    std::optional<double> flatnessStart; ///< where its frame begins, seconds

    double correlationEarly = 0.0; ///< between the channels, up to correlationSplit
    double correlationLate = 0.0;  ///< from there to correlationEnd
    std::vector<double> balance;   ///< left over right, dB, every balanceStep from the first sound to -60 dB
};

/** Precondition: both channels have the same length, above 0. */
RoomMeasures measureRoom(const StereoResponse& response);

} // namespace ambrel::measures
