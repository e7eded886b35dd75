/**
    One octave out of a response: a Butterworth band-pass of six poles whose -3 dB points lie half an octave below
    and above the centre, made by the bilinear transform with both edges prewarped.

    A band-pass rings, and its ringing is longer than a short reverberation time in the low octaves. Decays are
    therefore measured on responses that were filtered backwards in time: the ringing then falls in front of the
    response, where it does no harm (Jacobsen and Rindel, "Time reversed decay measurements", 1987).

        OctaveFilter octave(1000.0, 48000.0);
        std::vector<float> band = octave.filterReversed(response);

    Cost: three biquads for each sample, in double precision.
*/
#pragma once

#include <array>
#include <span>
#include <vector>

namespace ambrel::measures
{

class OctaveFilter
{
public:
    /** Both frequencies in Hz. Precondition: canMeasure. */
    OctaveFilter(double centre, double sampleRate);

    /** Whether the octave lies below half the sample rate, with room for its slope. */
    static bool canMeasure(double centre, double sampleRate);

    std::vector<float> filter(std::span<const float> response) const;
    std::vector<float> filterReversed(std::span<const float> response) const;

private:
    static constexpr int prototypeOrder = 3;

    /** b = (gain, 0, -gain), a0 = 1. */
    struct Section
    {
        double gain = 1.0;
        double a1 = 0.0;
        double a2 = 0.0;
    };

    void normalise(double angle);

    template <typename Iterator>
    void run(Iterator first, Iterator last) const;

    std::array<Section, prototypeOrder> sections{};
};

} // namespace ambrel::measures
