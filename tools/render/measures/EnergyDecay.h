/**
    How the energy of a response decays: Schroeder's backward integral and the times and lines drawn from it.

        EDC(t) = integral of h^2 from t on,   in dB relative to EDC(0)

    A decay time is the time in which the line fitted to the curve between two levels falls by 60 dB (ISO 3382-1):
    T30 between -5 and -35 dB, T20 between -5 and -25, early decay time between 0 and -10.

    A response that was cut before it had decayed bends the curve down at its end. What is missing is added, as an
    exponential with the slope of the response's later half, and levels that lie too close to the missing part for
    a fit give no result; neither do levels close to a later half that does not decay, which is a noise floor.

        EnergyDecay decay(energy, 48000.0);            // energy = squares, summed over channels
        std::optional<double> t30 = decay.getTime(-5.0, -35.0);

    Cost: a few passes over the response.
*/
#pragma once

#include <optional>
#include <span>
#include <vector>

namespace ambrel::measures
{

class EnergyDecay
{
public:
    /** @param energy  squared response, sample by sample */
    EnergyDecay(std::span<const double> energy, double sampleRate);

    /** dB relative to the start, sample by sample; empty for a response without energy. */
    std::span<const float> getCurve() const { return curve; }

    /** Total energy. */
    double getTotal() const { return total; }

    /** Seconds for 60 dB by the line between two levels in dB, from above to; empty if the curve does not reach
        that far or does not fall. */
    std::optional<double> getTime(double from, double to) const;

    /** The largest distance of the curve from that line, dB. */
    std::optional<double> getStraightness(double from, double to) const;

    /** When the curve first falls below a level in dB, seconds; empty if it does not. */
    std::optional<double> getTimeOfLevel(double level) const;

private:
    struct Line
    {
        std::size_t first; ///< samples, first to last - 1
        std::size_t last;
        double start; ///< level at first, dB
        double slope; ///< dB per sample
    };

    /** What can be said about the end of a response. */
    struct Ending
    {
        double missing = 0.0; ///< energy behind the end
        double guessed = 0.0; ///< energy that the curve must lie well above to be trusted
    };

    static Ending examineEnd(std::span<const double> energy);
    std::optional<Line> fitLine(double from, double to) const;

    double rate;
    double total = 0.0;
    double lowestLevel = 0.0; ///< below it the curve is not to be trusted, dB
    std::vector<float> curve;
};

} // namespace ambrel::measures
