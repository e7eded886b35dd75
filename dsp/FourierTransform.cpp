#include "dsp/FourierTransform.h"

#include "core/MathEx.h"
#include "core/MemoryPool.h"
#include "core/kernels/KernelTable.h"

#include <array>
#include <mutex>

namespace vesk::audio
{

/** What all transforms of one length and kind read. */
class FourierTransform::Tables
{
public:
    /** The tables that somebody uses already, else new ones. Takes a lock for the time of building. */
    static std::shared_ptr<const Tables> get(int order, bool isReal);

    Tables(int order, bool isReal);
    ~Tables();
    Tables(const Tables&) = delete;
    Tables& operator=(const Tables&) = delete;

    const kernels::KernelTable* kernels; ///< that the tables are laid out for
    FftSpec* spec = nullptr;
    int workBytes = 0;

private:
    /** The tables in use, by order. */
    struct Registry
    {
        std::mutex mutex;
        std::array<std::weak_ptr<const Tables>, ippMaxFftOrder + 1> entries;
    };

    static Registry& getRegistry(bool isReal)
    {
        static std::array<Registry, 2> registries;
        return registries[isReal ? 1 : 0];
    }

    int order;
    bool isReal;
    std::uint8_t* memory;
};

FourierTransform::Tables::Tables(int orderOfLength, bool forReal)
    : kernels(&kernels::getKernels()), order(orderOfLength), isReal(forReal)
{
    const auto getSize = isReal ? ippsFFTGetSize_R_32f : ippsFFTGetSize_C_32fc;
    const auto initialize = isReal ? ippsFFTInit_R_32f : ippsFFTInit_C_32fc;
    int specBytes = 0;
    int initBytes = 0;
    getSize(order, ippFftNoScaling, ippHintFast, &specBytes, &initBytes, &workBytes);
    memory = ippsMalloc_8u(specBytes);
    initialize(&spec, order, ippFftNoScaling, ippHintFast, memory, nullptr);
}

FourierTransform::Tables::~Tables()
{
    ippsFree(memory);

    // The memory of this object lasts as long as a weak pointer does, and shall not outlast the last engine.
    auto& registry = getRegistry(isReal);
    const std::scoped_lock lock(registry.mutex);
    auto& entry = registry.entries[static_cast<std::size_t>(order)];
    if (entry.expired())
        entry.reset();
}

std::shared_ptr<const FourierTransform::Tables> FourierTransform::Tables::get(int order, bool isReal)
{
    std::shared_ptr<const Tables> found; // before the lock: its release may take the lock, too
    auto& registry = getRegistry(isReal);
    const std::scoped_lock lock(registry.mutex);
    auto& entry = registry.entries[static_cast<std::size_t>(order)];
    found = entry.lock();
    if (found != nullptr && found->kernels == &kernels::getKernels())
        return found;

    auto created = std::allocate_shared<Tables>(PoolAllocator<Tables>(), order, isReal);
    entry = created;
    return created;
}

namespace
{
/** What a transform needs for as long as it runs. It was warm a moment ago, whichever transform had it then. */
class Scratch
{
public:
    explicit Scratch(int bytes) : memory(ippsMalloc_8u(bytes)) {}
    ~Scratch() { ippsFree(memory); }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    std::uint8_t* get() const { return memory; }

private:
    std::uint8_t* memory;
};
} // namespace

//==============================================================================

FourierTransform::~FourierTransform() { free(); }

void FourierTransform::free()
{
    complexSpec = realSpec = nullptr;
    tables.reset();
    size = order = 0;
}

void FourierTransform::allocate(int length, bool real)
{
    free();
    size = length;
    order = MathEx::log2(length);
    if (order > ippMaxFftOrder)
        return;
    tables = Tables::get(order, real);
    (real ? realSpec : complexSpec) = tables->spec;
}

void FourierTransform::forwardReal(const Signal32& input, ComplexSignal32& output)
{
    if (realSpec == nullptr || input.numSamples != size)
        allocate(input.numSamples, true);

    if (realSpec == nullptr)
        return;
    const Scratch scratch(tables->workBytes);
    // The caller owns the spectrum alone, so its blocks are written without looking for other owners.
    for (int channel = 0; channel < input.numChannels; ++channel)
        ippsFFTFwd_RToCCS_32f(input.getChannelPtr(channel),
                              output.data->channels[static_cast<std::size_t>(channel)], realSpec,
                              scratch.get());
}

void FourierTransform::inverseReal(const ComplexSignal32& input, Signal32& output)
{
    if (realSpec == nullptr || input.numSamples != size / 2 + 1)
        allocate(2 * input.numSamples - 2, true);

    if (realSpec == nullptr)
        return;
    const Scratch scratch(tables->workBytes);
    for (int channel = 0; channel < input.numChannels; ++channel)
        ippsFFTInv_CCSToR_32f(input.getChannelPtr(channel), output.getWriteChannelPtr(channel), realSpec,
                              scratch.get());
}

Signal32 FourierTransform::inverseReal(const ComplexSignal32& input)
{
    Signal32 output(input.numChannels, 2 * input.numSamples - 2);
    inverseReal(input, output);
    return output;
}

void FourierTransform::forwardStereo(const float* left, const float* right, float* spectra) const
{
    const Scratch scratch(tables->workBytes);
    Signal32 joint(2, size + 1);
    float* re = joint.getWriteChannelPtr(0);
    float* im = joint.getWriteChannelPtr(1);
    ippsFFTFwd_CToC_32f(left, right, re, im, complexSpec, scratch.get());
    re[size] = re[0];
    im[size] = im[0];
    separateStereoSpectrum_32f({re, im}, spectra, size / 2);
}

void FourierTransform::inverseStereo(StereoSpectrum<const float> spectrum, float* left, float* right) const
{
    const Scratch scratch(tables->workBytes);
    ippsFFTFwd_CToC_32f(spectrum.im, spectrum.re, right, left, complexSpec, scratch.get());
}

} // namespace vesk::audio
