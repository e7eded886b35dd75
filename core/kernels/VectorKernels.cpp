// Compiles the vector routines once for each instruction set and chooses among them.
//
// On x86 the compiler's baseline, SSE4, AVX2 and AVX-512 are built, and the processor is asked at run time.
// Elsewhere the baseline of the build serves. Of Highway only headers are used, nothing of its library.

// SSSE3 stands between the baseline and SSE4, and hardly a processor has it alone. The kernels keep vectors in
// arrays, which vectors of unknown length (SVE) do not allow; NEON serves there.
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_SVE | HWY_SVE2 | HWY_SVE_256 | HWY_SVE2_128)

// The baseline without vector instructions. Highway avoids it for GCC before 12.3, whose bug (PR 106322) is
// in 16-bit multiplications; there are none here, and the kernels' tests run on this target too.
#define HWY_BROKEN_EMU128 0

// Highway's own assertions in debug builds call into its library.
#define HWY_IS_DEBUG_BUILD 0

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "core/kernels/VectorKernels.cpp"
#include "hwy/foreach_target.h" // IWYU pragma: keep

#include "core/delayKernels.h"
#include "core/feedbackKernel.h"
#include "core/kernels.h"
#include "core/kernels/Tables.h"

#include "core/kernels/Delay-inl.h"
#include "core/kernels/Elementwise-inl.h"
#include "core/kernels/Feedback-inl.h"
#include "core/kernels/Filters-inl.h"
#include "core/kernels/Random-inl.h"
#include "core/kernels/RealTransform-inl.h"
#include "core/kernels/StereoSpectrum-inl.h"
#include "core/kernels/Transform-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vesk::audio::kernels
{
namespace HWY_NAMESPACE
{

const KernelTable& getTable()
{
    static constexpr KernelTable table{
        .name = HWY_TARGET == HWY_AVX3   ? "AVX-512"
                : HWY_TARGET == HWY_AVX2 ? "AVX2"
                : HWY_TARGET == HWY_SSE4 ? "SSE4"
                : HWY_TARGET == HWY_NEON ? "NEON"
                                         : "baseline",
        .set32 = set32,
        .set64 = set64,
        .add = add,
        .subtract = subtract,
        .multiply = multiply,
        .scale = scale,
        .divide = divide,
        .copyBounded = copyBounded,
        .maximum = maximum,
        .threshold = threshold,
        .toDouble = toDouble,
        .toFloat = toFloat,
        .multiplyComplex = multiplyComplex,
        .addProductComplex = addProductComplex,
        .polarToCartesian = polarToCartesian,
        .phase = phase,
        .interleave = interleave,
        .lanes = hn::MaxLanes(hn::CappedTag<float, 16>()),
        .forwardRealTransform = forwardRealTransform,
        .inverseRealTransform = inverseRealTransform,
        .complexTransform = complexTransform,
        .separateStereo = separateStereo,
        .filterStereo = filterStereo,
        .fir = fir,
        .recursive32 = recursive32,
        .recursive64 = recursive64,
        .feedbackFrame = feedbackFrame,
        .upsampleByTwo = upsampleByTwo,
        .readMoving = readMoving,
        .gaussianBlock = gaussianBlock,
        .uniformBlock = uniformBlock,
    };
    return table;
}

} // namespace HWY_NAMESPACE
} // namespace vesk::audio::kernels
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include <array>
#include <atomic>

namespace vesk::audio::kernels
{

namespace
{

/** Up to four tables, the best one first. */
struct AvailableKernels
{
    std::array<const KernelTable*, 4> tables{};
    std::size_t count = 0;

    AvailableKernels()
    {
#if HWY_ARCH_X86 && (HWY_COMPILER_GCC || HWY_COMPILER_CLANG)
        __builtin_cpu_init();
#if (HWY_TARGETS & HWY_AVX3)
        if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
            __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw") &&
            __builtin_cpu_supports("avx512cd"))
            add(N_AVX3::getTable());
#endif
#if (HWY_TARGETS & HWY_AVX2)
        if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") && __builtin_cpu_supports("bmi2"))
            add(N_AVX2::getTable());
#endif
#if (HWY_TARGETS & HWY_SSE4)
        if (__builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("pclmul"))
            add(N_SSE4::getTable());
#endif
#endif
        if (count == 0 || tables[count - 1] != &HWY_STATIC_DISPATCH(getTable)())
            add(HWY_STATIC_DISPATCH(getTable)());
    }

    void add(const KernelTable& table) { tables[count++] = &table; }
};

const AvailableKernels& getAvailable()
{
    static const AvailableKernels available;
    return available;
}

constinit std::atomic<const KernelTable*> selected{nullptr};

} // namespace

const KernelTable& getKernels()
{
    const auto* table = selected.load(std::memory_order_relaxed);
    return table != nullptr ? *table : HWY_STATIC_DISPATCH(getTable)();
}

std::span<const KernelTable* const> getAvailableKernels()
{
    const auto& available = getAvailable();
    return {available.tables.data(), available.count};
}

void selectKernels(const KernelTable& table) { selected.store(&table, std::memory_order_relaxed); }

} // namespace vesk::audio::kernels

#endif
