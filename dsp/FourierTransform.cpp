#include "dsp/FourierTransform.h"

#include "core/MathEx.h"

namespace vesk::audio
{

namespace
{
std::uint8_t* allocateBlock(int bytes) { return static_cast<std::uint8_t*>(ippMalloc(bytes)); }
} // namespace

FourierTransform::~FourierTransform() { free(); }

void FourierTransform::free()
{
    ippsFree(specMemory);
    ippsFree(workBuffer);
    ippsFree(initBuffer);
    specMemory = workBuffer = initBuffer = nullptr;
    complexSpec = realSpec = nullptr;
    size = order = 0;
}

void FourierTransform::allocate(int length, bool real)
{
    free();
    size = length;
    order = MathEx::log2(length);

    const auto getSize = real ? ippsFFTGetSize_R_32f : ippsFFTGetSize_C_32fc;
    int specBytes = 0;
    int initBytes = 0;
    int workBytes = 0;
    getSize(order, ippFftNoScaling, ippHintFast, &specBytes, &initBytes, &workBytes);

    specMemory = allocateBlock(specBytes);
    workBuffer = allocateBlock(workBytes);
    initBuffer = allocateBlock(initBytes);

    const auto initialize = real ? ippsFFTInit_R_32f : ippsFFTInit_C_32fc;
    initialize(real ? &realSpec : &complexSpec, order, ippFftNoScaling, ippHintFast, specMemory, initBuffer);
}

void FourierTransform::forwardReal(const Signal32& input, ComplexSignal32& output)
{
    if (realSpec == nullptr || input.numSamples != size)
        allocate(input.numSamples, true);

    // The caller owns the spectrum alone, so its blocks are written without looking for other owners.
    for (int channel = 0; channel < input.numChannels; ++channel)
        ippsFFTFwd_RToCCS_32f(input.getChannelPtr(channel),
                              output.data->channels[static_cast<std::size_t>(channel)], realSpec, workBuffer);
}

void FourierTransform::inverseReal(const ComplexSignal32& input, Signal32& output)
{
    if (realSpec == nullptr || input.numSamples != size / 2 + 1)
        allocate(2 * input.numSamples - 2, true);

    for (int channel = 0; channel < input.numChannels; ++channel)
        ippsFFTInv_CCSToR_32f(input.getChannelPtr(channel), output.getWriteChannelPtr(channel), realSpec,
                              workBuffer);
}

Signal32 FourierTransform::inverseReal(const ComplexSignal32& input)
{
    Signal32 output(input.numChannels, 2 * input.numSamples - 2);
    inverseReal(input, output);
    return output;
}

void FourierTransform::forwardStereo(const float* left, const float* right, StereoSpectrum<float> spectrum)
{
    ippsFFTFwd_CToC_32f(left, right, spectrum.re, spectrum.im, complexSpec, workBuffer);
    spectrum.re[size] = spectrum.re[0];
    spectrum.im[size] = spectrum.im[0];
}

void FourierTransform::inverseStereo(StereoSpectrum<const float> spectrum, float* left, float* right)
{
    ippsFFTFwd_CToC_32f(spectrum.im, spectrum.re, right, left, complexSpec, workBuffer);
}

} // namespace vesk::audio
