#include "tools/render/measures/Spectrogram.h"

#include "dsp/FourierTransform.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace ambrel::measures
{

namespace
{

constexpr float lowestLevel = -200.0f; // dB

} // namespace

Spectrogram::Spectrogram(std::span<const float> signal, int frameLength, int hop)
    : numBins(frameLength / 2 + 1),
      numFrames(static_cast<int>((signal.size() - 1) / static_cast<std::size_t>(hop)) + 1)
{
    using namespace vesk::audio;

    FourierTransform transform;
    Signal32 frame(1, frameLength);
    ComplexSignal32 spectrum(1, numBins);
    levels.reserve(static_cast<std::size_t>(numFrames) * static_cast<std::size_t>(numBins));

    for (int n = 0; n < numFrames; ++n)
    {
        const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(n) * hop - frameLength / 2;
        float* samples = frame.getWriteChannelPtr(0);

        for (int i = 0; i < frameLength; ++i)
        {
            const std::ptrdiff_t index = first + i;
            const bool inside = index >= 0 && index < static_cast<std::ptrdiff_t>(signal.size());
            const float window =
                0.5f - 0.5f * std::cos(2.0f * std::numbers::pi_v<float> * static_cast<float>(i) /
                                       static_cast<float>(frameLength));
            samples[i] = inside ? window * signal[static_cast<std::size_t>(index)] : 0.0f;
        }

        transform.forwardReal(frame, spectrum);

        // The window's mean is 1/2, and half of a sine's amplitude lies at its positive frequency.
        const float scale = 4.0f / static_cast<float>(frameLength);
        const std::complex<float>* bins = spectrum.getChannelPtr(0);

        for (int bin = 0; bin < numBins; ++bin)
            levels.push_back(std::max(lowestLevel, 20.0f * std::log10(scale * std::abs(bins[bin]) + 1e-12f)));
    }
}

} // namespace ambrel::measures
