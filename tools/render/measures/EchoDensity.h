/**
    How dense the echoes of a response are: the normalised echo density of Abel and Huang ("A simple, robust measure
    of reverberation echo density", 2006).

    In a Hann window that slides along the response, the weighted share of the samples that lie beyond one standard
    deviation, divided by the share that Gaussian noise has there, erfc(1/sqrt 2) = 0.3173. Single echoes give
    values near 0, a diffuse tail gives 1. One window scatters by about 0.05, so the profile is averaged over 20 ms.

    Cost: for each millisecond of the response, two passes over a window of 21 ms.
*/
#pragma once

#include <optional>
#include <span>
#include <vector>

namespace ambrel::measures
{

class EchoDensity
{
public:
    /** The density around each millisecond of a response, the first at 0. Where the window holds nothing but
        silence the density is 0. */
    EchoDensity(std::span<const float> response, double sampleRate);

    /** One value for each millisecond. */
    std::span<const float> getProfile() const { return profile; }

    /** The first time at which the density has reached a level, seconds. */
    std::optional<double> getTimeOf(double density) const;

    /** The mean of several profiles, which are cut to the shortest. */
    static EchoDensity average(std::span<const EchoDensity> densities);

private:
    EchoDensity() = default;

    void smooth();

    std::vector<float> profile;
};

} // namespace ambrel::measures
