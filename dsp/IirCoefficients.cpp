#include "dsp/IirCoefficients.h"

#include <cmath>
#include <numbers>

namespace vesk::audio
{

namespace
{
/** What the cookbook's designs start from. */
struct CookbookTerms
{
    CookbookTerms(double frequency, double sampleRate)
    {
        const double angularFrequency = frequency * 2.0 * std::numbers::pi / sampleRate;
        alpha = std::sin(angularFrequency) * std::numbers::sqrt2 * 0.5;
        cosine = std::cos(angularFrequency);
    }

    double alpha;  ///< sin(w) / (2 Q) with Q = 1/sqrt(2)
    double cosine; ///< cos(w)
};
} // namespace

IirCoefficients::IirCoefficients(const std::vector<double>& numerator, const std::vector<double>& denominator)
    : b(numerator), a(denominator)
{
}

IirCoefficients IirCoefficients::createSmoothing(double coefficient)
{
    return {{1.0 - coefficient, 0.0}, {1.0, -coefficient}};
}

IirCoefficients IirCoefficients::createHighShelf(double frequency, double gain, double sampleRate)
{
    const auto [alpha, c] = CookbookTerms(frequency, sampleRate);
    const double amplitude = std::sqrt(gain);
    const double sum = amplitude + 1.0;
    const double difference = amplitude - 1.0;
    const double r = 2.0 * std::sqrt(amplitude) * alpha;

    return {{amplitude * (sum + difference * c + r), -2.0 * amplitude * (difference + sum * c),
             amplitude * (sum + difference * c - r)},
            {sum - difference * c + r, 2.0 * (difference - sum * c), sum - difference * c - r}};
}

IirCoefficients IirCoefficients::createLowPass(double frequency, double sampleRate)
{
    const auto [alpha, c] = CookbookTerms(frequency, sampleRate);
    return {{0.5 * (1.0 - c), 1.0 - c, 0.5 * (1.0 - c)}, {1.0 + alpha, -2.0 * c, 1.0 - alpha}};
}

} // namespace vesk::audio
