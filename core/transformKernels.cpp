// The transforms' public face: sizes and tables. The passes themselves are in kernels/Transform-inl.h and
// kernels/RealTransform-inl.h.

#include "core/kernels.h"
#include "core/kernels/Tables.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace vesk::audio
{

using kernels::alignToCacheLine;
using kernels::cacheLine;
using kernels::FftTables;
using kernels::getKernels;

struct FftSpec
{
    static constexpr std::uint32_t realMarker = 0x46465252;
    static constexpr std::uint32_t complexMarker = 0x46464343;

    std::uint32_t magic;
    int order;
    const kernels::KernelTable* kernels;
    FftTables tables;
};

namespace
{

/** Lengths below this are computed by definition. */
constexpr std::size_t shortestVectorLength = 16;

/** The widest split that leaves at least as many rows as lanes. */
std::size_t chooseLanes(std::size_t length, std::size_t available)
{
    if (length < shortestVectorLength)
        return 0;
    std::size_t lanes = available;
    while (lanes * lanes > length)
        lanes /= 2;
    return lanes;
}

/** Calls visit(size, radix) for each pass over rows that has factors. */
template <typename Visit>
void forEachPass(std::size_t rows, Visit visit)
{
    for (auto size = rows; size > kernels::choosePassRadix(size);)
    {
        const auto radix = kernels::choosePassRadix(size);
        visit(size, radix);
        size /= radix;
    }
}

/** Floats in each of the tables, each rounded up to whole cache lines. */
struct TableSizes
{
    std::size_t pass = 0;
    std::size_t join = 0;
    std::size_t real = 0; ///< each of cosines and sines

    TableSizes(std::size_t length, std::size_t available, bool isReal)
    {
        const auto lanes = chooseLanes(length, available);
        if (lanes == 0)
        {
            real = roundUp(2 * length);
            return;
        }
        const auto rows = length / lanes;
        forEachPass(rows, [this](std::size_t size, std::size_t radix)
                    { pass += 2 * (radix - 1) * (size / radix); });
        pass = roundUp(pass);
        join = roundUp(2 * rows * (lanes - 1));
        if (isReal)
            real = roundUp(length / 2 + 1 + lanes);
    }

    static std::size_t roundUp(std::size_t floats)
    {
        constexpr auto perLine = cacheLine / sizeof(float);
        return (floats + perLine - 1) / perLine * perLine;
    }

    std::size_t getTotal() const { return pass + join + 2 * real; }
};

void writeUnitVector(std::size_t numerator, std::size_t denominator, float& cosine, float& sine)
{
    const double angle = -2.0 * std::numbers::pi * static_cast<double>(numerator % denominator) /
                         static_cast<double>(denominator);
    cosine = static_cast<float>(std::cos(angle));
    sine = static_cast<float>(std::sin(angle));
}

void fillPassTwiddles(std::size_t rows, float* twiddles)
{
    forEachPass(rows,
                [&twiddles](std::size_t size, std::size_t radix)
                {
                    for (std::size_t p = 0; p < size / radix; ++p)
                        for (std::size_t power = 1; power < radix; ++power, twiddles += 2)
                            writeUnitVector(p * power, size, twiddles[0], twiddles[1]);
                });
}

void fillJoinTwiddles(const FftTables& tables, float* twiddles)
{
    for (std::size_t block = 0; block < tables.rows; block += tables.lanes)
        for (std::size_t w = 1; w < tables.lanes; ++w)
        {
            for (std::size_t lane = 0; lane < tables.lanes; ++lane)
                writeUnitVector(w * (block + lane), tables.length, twiddles[lane],
                                twiddles[tables.lanes + lane]);
            twiddles += 2 * tables.lanes;
        }
}

/** Complex points behind a transform of 2^order samples. */
std::size_t getComplexLength(int order, bool real)
{
    return std::size_t{1} << (real ? std::max(order - 1, 0) : order);
}

IppStatus checkTransform(int order, int flag)
{
    if (order < 0 || order > ippMaxFftOrder)
        return ippStsFftOrderErr;
    return flag == ippFftNoScaling ? ippStsNoErr : ippStsFftFlagErr;
}

IppStatus getSize(int order, int flag, bool real, int* specBytes, int* initBytes, int* workBytes)
{
    if (specBytes == nullptr || initBytes == nullptr || workBytes == nullptr)
        return ippStsNullPtrErr;
    if (const auto status = checkTransform(order, flag); status != ippStsNoErr)
        return status;
    const auto length = getComplexLength(order, real);
    const auto floats = TableSizes(length, getKernels().lanes, real).getTotal();
    *specBytes = static_cast<int>(sizeof(FftSpec) + floats * sizeof(float) + 2 * cacheLine);
    *initBytes = 0;
    *workBytes = static_cast<int>(4 * length * sizeof(float) + cacheLine);
    return ippStsNoErr;
}

IppStatus init(FftSpec** spec, int order, int flag, bool real, std::uint8_t* memory)
{
    if (spec == nullptr || memory == nullptr)
        return ippStsNullPtrErr;
    if (const auto status = checkTransform(order, flag); status != ippStsNoErr)
        return status;

    auto* result = alignToCacheLine<FftSpec>(memory);
    result->magic = real ? FftSpec::realMarker : FftSpec::complexMarker;
    result->order = order;
    result->kernels = &getKernels();

    auto& tables = result->tables;
    tables.length = getComplexLength(order, real);
    tables.lanes = chooseLanes(tables.length, getKernels().lanes);
    tables.rows = tables.lanes > 0 ? tables.length / tables.lanes : 0;

    const TableSizes sizes(tables.length, getKernels().lanes, real);
    auto* pass = alignToCacheLine<float>(result + 1);
    auto* join = pass + sizes.pass;
    auto* cosines = join + sizes.join;
    auto* sines = cosines + sizes.real;
    tables.passTwiddles = pass;
    tables.joinTwiddles = join;
    tables.realCosines = cosines;
    tables.realSines = sines;

    if (tables.lanes > 0)
    {
        fillPassTwiddles(tables.rows, pass);
        fillJoinTwiddles(tables, join);
    }
    for (std::size_t k = 0; k < sizes.real; ++k)
        writeUnitVector(k, 2 * tables.length, cosines[k], sines[k]);
    *spec = result;
    return ippStsNoErr;
}

template <typename Src, typename Dst>
IppStatus checkRun(const Src* src, const Dst* dst, const FftSpec* spec, const std::uint8_t* work,
                   std::uint32_t marker)
{
    if (src == nullptr || dst == nullptr || spec == nullptr || work == nullptr)
        return ippStsNullPtrErr;
    return spec->magic == marker ? ippStsNoErr : ippStsContextMatchErr;
}

} // namespace

IppStatus ippsFFTGetSize_R_32f(int order, int flag, int, int* specBytes, int* initBytes, int* workBytes)
{
    return getSize(order, flag, true, specBytes, initBytes, workBytes);
}

IppStatus ippsFFTGetSize_C_32fc(int order, int flag, int, int* specBytes, int* initBytes, int* workBytes)
{
    return getSize(order, flag, false, specBytes, initBytes, workBytes);
}

IppStatus ippsFFTInit_R_32f(FftSpec** spec, int order, int flag, int, std::uint8_t* specMemory, std::uint8_t*)
{
    return init(spec, order, flag, true, specMemory);
}

IppStatus ippsFFTInit_C_32fc(FftSpec** spec, int order, int flag, int, std::uint8_t* specMemory,
                             std::uint8_t*)
{
    return init(spec, order, flag, false, specMemory);
}

IppStatus ippsFFTFwd_RToCCS_32f(const float* src, std::complex<float>* dst, const FftSpec* spec,
                                std::uint8_t* work)
{
    if (const auto status = checkRun(src, dst, spec, work, FftSpec::realMarker); status != ippStsNoErr)
        return status;
    if (spec->order == 0)
        dst[0] = src[0];
    else
        spec->kernels->forwardRealTransform(src, dst, spec->tables, alignToCacheLine<float>(work));
    return ippStsNoErr;
}

IppStatus ippsFFTInv_CCSToR_32f(const std::complex<float>* src, float* dst, const FftSpec* spec,
                                std::uint8_t* work)
{
    if (const auto status = checkRun(src, dst, spec, work, FftSpec::realMarker); status != ippStsNoErr)
        return status;
    if (spec->order == 0)
        dst[0] = src[0].real();
    else
        spec->kernels->inverseRealTransform(src, dst, spec->tables, alignToCacheLine<float>(work));
    return ippStsNoErr;
}

IppStatus ippsFFTFwd_CToC_32f(const float* srcRe, const float* srcIm, float* dstRe, float* dstIm,
                              const FftSpec* spec, std::uint8_t* work)
{
    if (srcIm == nullptr || dstIm == nullptr)
        return ippStsNullPtrErr;
    if (const auto status = checkRun(srcRe, dstRe, spec, work, FftSpec::complexMarker); status != ippStsNoErr)
        return status;
    spec->kernels->complexTransform(srcRe, srcIm, dstRe, dstIm, spec->tables, alignToCacheLine<float>(work));
    return ippStsNoErr;
}

IppStatus separateStereoSpectrum_32f(StereoSpectrum<const float> src, float* dst, int half)
{
    if (half < 1)
        return ippStsSizeErr;
    if (src.re == nullptr || src.im == nullptr || dst == nullptr)
        return ippStsNullPtrErr;
    getKernels().separateStereo(src, dst, static_cast<std::size_t>(half));
    return ippStsNoErr;
}

IppStatus filterStereoSpectra_32f(std::span<const StereoTerm> terms, StereoSpectrum<float> dst, int half,
                                  bool accumulate)
{
    if (half < 1 || terms.empty())
        return ippStsSizeErr;
    if (dst.re == nullptr || dst.im == nullptr)
        return ippStsNullPtrErr;
    const bool crosses = terms.front().toRight != nullptr;
    for (const auto& [src, toLeft, toRight] : terms)
        if (src == nullptr || toLeft == nullptr || (toRight != nullptr) != crosses)
            return ippStsNullPtrErr;
    getKernels().filterStereo(terms, dst, static_cast<std::size_t>(half), accumulate);
    return ippStsNoErr;
}

} // namespace vesk::audio
