#include "tools/render/measures/RoomMeasures.h"

#include "tools/render/measures/Colouration.h"
#include "tools/render/measures/EnergyDecay.h"
#include "tools/render/measures/OctaveFilter.h"
#include "tools/render/measures/StereoImage.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <span>

namespace ambrel::measures
{

namespace
{

constexpr std::array octaveCentres{63.0, 125.0, 250.0, 500.0, 1000.0, 2000.0, 4000.0, 8000.0}; // Hz

/** Levels between which lines are fitted, dB. */
constexpr double earlyTop = 0.0;
constexpr double earlyBottom = -10.0;
constexpr double fitTop = -5.0;
constexpr double t20Bottom = -25.0;
constexpr double t30Bottom = -35.0;

/** A tail counts as late once it has fallen by this much, and as gone after that much, dB. */
constexpr double lateLevel = -10.0;
constexpr double goneLevel = -60.0;

/** Time for which a filter may ring behind the part of a response that was fed to it. */
constexpr double ringTime = 0.25; // seconds

std::optional<double> toDecibels(double energy)
{
    return energy > 0.0 ? std::optional(10.0 * std::log10(energy)) : std::nullopt;
}

void addEnergy(std::vector<double>& energy, std::span<const float> samples)
{
    for (std::size_t i = 0; i < samples.size(); ++i)
        energy[i] += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
}

double getEnergy(std::span<const float> samples)
{
    return std::transform_reduce(samples.begin(), samples.end(), 0.0, std::plus(),
                                 [](float x) { return static_cast<double>(x) * static_cast<double>(x); });
}

std::size_t toSamples(double seconds, const StereoResponse& response)
{
    const auto samples = static_cast<std::size_t>(std::lround(seconds * response.sampleRate));
    return std::min(samples, response.left.size());
}

/** Energy of one part of a response in a band. The part is cut out before it is filtered, so that the filter does
    not carry energy across the border, and gets room to ring out. */
double getBandEnergy(std::span<const float> part, const OctaveFilter* filter, double sampleRate)
{
    if (filter == nullptr)
        return getEnergy(part);

    std::vector<float> padded(part.begin(), part.end());
    padded.resize(padded.size() + static_cast<std::size_t>(ringTime * sampleRate), 0.0f);
    return getEnergy(filter->filter(padded));
}

std::optional<double> getClarity(const StereoResponse& response, const OctaveFilter* filter, double border)
{
    const std::size_t split = toSamples(border, response);
    double early = 0.0;
    double late = 0.0;

    for (const std::vector<float>* channel : {&response.left, &response.right})
    {
        const std::span<const float> samples(*channel);
        early += getBandEnergy(samples.first(split), filter, response.sampleRate);
        late += getBandEnergy(samples.subspan(split), filter, response.sampleRate);
    }

    if (!(early > 0.0 && late > 0.0))
        return std::nullopt;
    return 10.0 * std::log10(early / late);
}

EnergyDecay createDecay(const StereoResponse& response, const OctaveFilter* filter)
{
    std::vector<double> energy(response.left.size(), 0.0);

    for (const std::vector<float>* channel : {&response.left, &response.right})
    {
        if (filter != nullptr)
            addEnergy(energy, filter->filterReversed(*channel));
        else
            addEnergy(energy, *channel);
    }
    return {energy, response.sampleRate};
}

std::vector<float> thinOut(std::span<const float> curve, double sampleRate)
{
    std::vector<float> thin;

    for (std::size_t step = 0;; ++step)
    {
        const auto index = static_cast<std::size_t>(
            std::lround(static_cast<double>(step) * RoomMeasures::decayStep * sampleRate));

        if (index >= curve.size())
            return thin;

        thin.push_back(curve[index]);
    }
}

/** @param filter  null for broadband */
BandMeasures measureBand(const StereoResponse& response, double centre, const OctaveFilter* filter,
                         const EnergyDecay& decay)
{
    BandMeasures band;
    band.centre = centre;
    band.level = toDecibels(decay.getTotal());
    band.earlyDecayTime = decay.getTime(earlyTop, earlyBottom);
    band.t20 = decay.getTime(fitTop, t20Bottom);
    band.t30 = decay.getTime(fitTop, t30Bottom);
    band.straightness = decay.getStraightness(fitTop, t30Bottom);
    band.c50 = getClarity(response, filter, 0.05);
    band.c80 = getClarity(response, filter, 0.08);
    band.decay = thinOut(decay.getCurve(), response.sampleRate);
    return band;
}

void measureDensity(const StereoResponse& response, RoomMeasures& measures)
{
    const std::array channels{EchoDensity(response.left, response.sampleRate),
                              EchoDensity(response.right, response.sampleRate)};
    const EchoDensity mean = EchoDensity::average(channels);
    measures.echoDensity.assign(mean.getProfile().begin(), mean.getProfile().end());
    measures.mixingTime = mean.getTimeOf(RoomMeasures::diffuseDensity);
}

void measureFlatness(const StereoResponse& response, const EnergyDecay& decay, RoomMeasures& measures)
{
    const std::optional<double> start = decay.getTimeOfLevel(lateLevel);

    if (!start)
        return;

    const auto left = measureSpectralFlatness(response.left, response.sampleRate, *start);
    const auto right = measureSpectralFlatness(response.right, response.sampleRate, *start);

    if (left && right)
    {
        measures.flatness = 0.5 * (*left + *right);
        measures.flatnessStart = start;
    }
}

void measureStereo(const StereoResponse& response, const EnergyDecay& decay, RoomMeasures& measures)
{
    const std::span<const float> left(response.left);
    const std::span<const float> right(response.right);
    const std::size_t split = toSamples(RoomMeasures::correlationSplit, response);
    const std::size_t end = toSamples(RoomMeasures::correlationEnd, response);
    const std::size_t gone =
        toSamples(decay.getTimeOfLevel(goneLevel).value_or(response.getDuration()), response);

    measures.correlationEarly =
        measureCorrelation(left.first(split), right.first(split), response.sampleRate);
    measures.correlationLate = measureCorrelation(left.subspan(split, end - split),
                                                  right.subspan(split, end - split), response.sampleRate);
    measures.balance = measureBalance(
        left.first(gone), right.first(gone),
        static_cast<std::size_t>(std::lround(RoomMeasures::balanceStep * response.sampleRate)));
}

double getPeak(const StereoResponse& response)
{
    double peak = 0.0;

    for (const std::vector<float>* channel : {&response.left, &response.right})
        for (const float sample : *channel)
            peak = std::max(peak, static_cast<double>(std::abs(sample)));
    return peak;
}

} // namespace

RoomMeasures measureRoom(const StereoResponse& response)
{
    RoomMeasures measures;
    measures.sampleRate = response.sampleRate;
    measures.duration = response.getDuration();

    const double peak = getPeak(response);
    measures.peak = toDecibels(peak * peak);

    const EnergyDecay decay = createDecay(response, nullptr);
    measures.broadband = measureBand(response, 0.0, nullptr, decay);

    for (const double centre : octaveCentres)
        if (OctaveFilter::canMeasure(centre, response.sampleRate))
        {
            const OctaveFilter filter(centre, response.sampleRate);
            measures.octaves.push_back(
                measureBand(response, centre, &filter, createDecay(response, &filter)));
        }

    measureDensity(response, measures);
    measureFlatness(response, decay, measures);
    measureStereo(response, decay, measures);
    return measures;
}

} // namespace ambrel::measures
