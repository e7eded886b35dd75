/**
    Fourier transform of real signals, sized by its first use.

    A spectrum of N real samples has N/2 + 1 bins for each channel, bin 0 (DC) to bin N/2 (Nyquist). Neither
    direction scales: forward then inverse gives N times the input, and whoever uses the pair divides where it
    is cheapest.

        FourierTransform transform;
        ComplexSignal32 spectrum(signal.numChannels, signal.numSamples / 2 + 1);
        transform.forwardReal(signal, spectrum);

    One object follows whatever length comes along, but a change of length may build new tables: keep one
    object for each length. Tables are shared by all objects of a length in the process, and scratch memory comes
    from the pool for the time of a transform. Lengths are powers of two; any other length silently gives a
    transform of the next lower one. Nothing here throws: the kernels' statuses are not looked at.

    Two real signals can also go through one complex transform, as its real and its imaginary part, which is
    the cheapest way for stereo (see StereoSpectrum in kernels.h). One object is for one of the two kinds.

    Thread: one at a time.
*/
#pragma once

#include "core/Signal.h"
#include "core/kernels.h"

#include <memory>

namespace vesk::audio
{

class FourierTransform
{
public:
    FourierTransform() = default;
    ~FourierTransform();
    FourierTransform(const FourierTransform&) = delete;
    FourierTransform& operator=(const FourierTransform&) = delete;

    /** Builds the tables for a length in samples, of the transform of real sequences or of the complex one. */
    void allocate(int size, bool real);

    /** @param output  dimensioned by the caller, input's channels by N/2 + 1 bins, and owned by it alone */
    void forwardReal(const Signal32& input, ComplexSignal32& output);

    /** @param output  dimensioned by the caller, input's channels by 2 bins - 2 samples */
    void inverseReal(const ComplexSignal32& input, Signal32& output);
    Signal32 inverseReal(const ComplexSignal32& input);

    /** Of size samples each; needs allocate(size, false).
        @param spectra  twice those of both signals, separated; getSeparatedLength(size / 2) values */
    void forwardStereo(const float* left, const float* right, float* spectra) const;

    /** @param spectrum  of left + j right, size bins */
    void inverseStereo(StereoSpectrum<const float> spectrum, float* left, float* right) const;

    const FftSpec* complexSpec = nullptr;
    const FftSpec* realSpec = nullptr;
    int size = 0;  ///< transform length N in samples
    int order = 0; ///< floor of the binary logarithm of N

private:
    class Tables;

    void free();

    std::shared_ptr<const Tables> tables;
};

} // namespace vesk::audio
