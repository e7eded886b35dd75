// One frame of a feedback delay network. Compiled once for each instruction set, see VectorKernels.cpp. What it
// computes and how stands in core/feedbackKernel.h.

#if defined(AMBREL_FEEDBACK_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef AMBREL_FEEDBACK_INL_H
#undef AMBREL_FEEDBACK_INL_H
#else
#define AMBREL_FEEDBACK_INL_H
#endif

#include "hwy/highway.h"

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace vesk::audio::kernels
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using FeedbackTag = hn::CappedTag<float, FeedbackLines::maxLanes>;
using FeedbackVector = hn::VFromD<FeedbackTag>;
inline constexpr std::size_t feedbackLanes = hn::MaxLanes(FeedbackTag());

/** Lines are taken four at a time. */
inline constexpr std::size_t quartet = 4;
inline constexpr std::size_t numQuartets = FeedbackLines::numLines / quartet;

/** A vector of samples of each line and channel, on their way between the two rounds of the matrix. */
struct alignas(64) FeedbackWork
{
    float values[FeedbackLines::maxChannels][FeedbackLines::numLines][feedbackLanes];
};

//==============================================================================
// Pieces

/** A vector's worth of a stream: whole, or its first count lanes. */
template <bool whole>
struct FeedbackPiece
{
    std::size_t start;
    std::size_t count;

    HWY_INLINE FeedbackVector load(const float* src) const
    {
        const FeedbackTag d;
        if constexpr (whole)
            return hn::LoadU(d, src + start);
        else
            return hn::IfThenElseZero(hn::FirstN(d, count), hn::LoadU(d, src + start));
    }

    HWY_INLINE void store(FeedbackVector values, float* dst) const
    {
        const FeedbackTag d;
        if constexpr (whole)
            hn::StoreU(values, d, dst + start);
        else
            hn::StoreU(hn::IfThenElse(hn::FirstN(d, count), values, hn::LoadU(d, dst + start)), d,
                       dst + start);
    }

    /** As load and store, for memory that ends with the frame. */
    HWY_INLINE FeedbackVector loadEnd(const float* src) const
    {
        if constexpr (whole)
            return load(src);
        alignas(64) float values[feedbackLanes] = {};
        std::copy_n(src + start, count, values);
        return hn::Load(FeedbackTag(), values);
    }

    HWY_INLINE void storeEnd(FeedbackVector samples, float* dst) const
    {
        if constexpr (whole)
            return store(samples, dst);
        alignas(64) float values[feedbackLanes];
        hn::Store(samples, FeedbackTag(), values);
        std::copy_n(values, count, dst + start);
    }
};

/** The matrix of four lines, in place. */
HWY_INLINE void mixQuartet(FeedbackVector (&lines)[quartet])
{
    const auto sum01 = hn::Add(lines[0], lines[1]);
    const auto difference01 = hn::Sub(lines[0], lines[1]);
    const auto sum23 = hn::Add(lines[2], lines[3]);
    const auto difference23 = hn::Sub(lines[2], lines[3]);
    lines[0] = hn::Add(sum01, sum23);
    lines[1] = hn::Add(difference01, difference23);
    lines[2] = hn::Sub(sum01, sum23);
    lines[3] = hn::Sub(difference01, difference23);
}

/** Lane s of each block of four of the four vectors becomes vector s; doing it twice undoes it. */
HWY_INLINE void transposeBlocks(FeedbackVector (&v)[quartet])
{
    const FeedbackTag d;
    const hn::Repartition<double, FeedbackTag> pairs;
    const auto lower01 = hn::BitCast(pairs, hn::InterleaveLower(d, v[0], v[1]));
    const auto upper01 = hn::BitCast(pairs, hn::InterleaveUpper(d, v[0], v[1]));
    const auto lower23 = hn::BitCast(pairs, hn::InterleaveLower(d, v[2], v[3]));
    const auto upper23 = hn::BitCast(pairs, hn::InterleaveUpper(d, v[2], v[3]));
    v[0] = hn::BitCast(d, hn::InterleaveLower(pairs, lower01, lower23));
    v[1] = hn::BitCast(d, hn::InterleaveUpper(pairs, lower01, lower23));
    v[2] = hn::BitCast(d, hn::InterleaveLower(pairs, upper01, upper23));
    v[3] = hn::BitCast(d, hn::InterleaveUpper(pairs, upper01, upper23));
}

//==============================================================================
// Damping

/** The low-pass of order 1 over a vector. Its lanes are summed up in pairs, then in fours and so on; each step
    takes the last lane of a lower half, which holds the sum up to there, and spreads it over the upper half. */
template <class Indices>
HWY_INLINE FeedbackVector sumUp(FeedbackVector x, const FeedbackLines::Steps& steps, Indices fourth,
                                Indices eighth)
{
    const FeedbackTag d;
    FeedbackVector y = hn::MulAdd(hn::Load(d, steps[0].data()), hn::DupEven(x), x);
    y = hn::MulAdd(hn::Load(d, steps[1].data()), hn::Broadcast<1>(y), y);
    if constexpr (feedbackLanes > 4)
        y = hn::MulAdd(hn::Load(d, steps[2].data()), hn::TableLookupLanes(y, fourth), y);
    if constexpr (feedbackLanes > 8)
        y = hn::MulAdd(hn::Load(d, steps[3].data()), hn::TableLookupLanes(y, eighth), y);
    return y;
}

//==============================================================================
// Shelf
//
// Blocks of four lanes are transposed, so that a block holds one sample of four lines. A sample s of a vector
// stands in vector s % 4 of its quartet, block s / 4.

/** The samples of as many lines as D has lanes, from the given one on. */
template <class D>
HWY_INLINE hn::VFromD<D> loadAcrossLines(D d, const float (*channel)[feedbackLanes], std::size_t line,
                                         std::size_t sample)
{
    if constexpr (hn::MaxLanes(D()) > quartet)
    {
        const hn::Half<D> half;
        return hn::Combine(d, loadAcrossLines(half, channel, line + hn::MaxLanes(half), sample),
                           loadAcrossLines(half, channel, line, sample));
    }
    else
        return hn::Load(d, channel[line + sample % 4] + sample / 4 * 4);
}

template <class D>
HWY_INLINE void storeAcrossLines(D d, hn::VFromD<D> samples, float (*channel)[feedbackLanes],
                                 std::size_t line, std::size_t sample)
{
    if constexpr (hn::MaxLanes(D()) > quartet)
    {
        const hn::Half<D> half;
        storeAcrossLines(half, hn::LowerHalf(half, samples), channel, line, sample);
        storeAcrossLines(half, hn::UpperHalf(half, samples), channel, line + hn::MaxLanes(half), sample);
    }
    else
        hn::Store(samples, d, channel[line + sample % 4] + sample / 4 * 4);
}

/** The shelf of a vector of lines over count samples of numChannels channels: two channels side by side hide the
    latency, and fit into the registers. */
template <std::size_t numChannels>
HWY_INLINE void runShelf(FeedbackLines& lines, float (*values)[FeedbackLines::numLines][feedbackLanes],
                         std::size_t firstChannel, std::size_t line, std::size_t count)
{
    const FeedbackTag d;
    const auto& shelf = lines.shelf;
    const auto direct = hn::Load(d, shelf.direct.data() + line);
    const auto fromBand = hn::Load(d, shelf.fromBand.data() + line);
    const auto input = hn::Load(d, shelf.input.data() + line);
    const auto toBand = hn::Load(d, shelf.toBand.data() + line);
    const auto bandStep = hn::Load(d, shelf.bandStep.data() + line);
    const auto lowStep = hn::Load(d, shelf.lowStep.data() + line);

    FeedbackVector band[numChannels];
    FeedbackVector low[numChannels];
    for (std::size_t c = 0; c < numChannels; ++c)
    {
        const auto& state = lines.shelfStates[firstChannel + c];
        band[c] = hn::Load(d, state.band.data() + line);
        low[c] = hn::Load(d, state.low.data() + line);
    }
    for (std::size_t sample = 0; sample < count; ++sample)
        for (std::size_t c = 0; c < numChannels; ++c)
        {
            auto* channel = values[firstChannel + c];
            const auto x = loadAcrossLines(d, channel, line, sample);
            const auto v = hn::NegMulAdd(toBand, low[c], hn::MulAdd(input, x, band[c]));
            const auto y = hn::MulAdd(fromBand, v, hn::MulAdd(direct, x, low[c]));
            band[c] = hn::MulSub(bandStep, v, band[c]);
            low[c] = hn::MulAdd(lowStep, v, low[c]);
            storeAcrossLines(d, y, channel, line, sample);
        }
    for (std::size_t c = 0; c < numChannels; ++c)
    {
        auto& state = lines.shelfStates[firstChannel + c];
        hn::Store(band[c], d, state.band.data() + line);
        hn::Store(low[c], d, state.low.data() + line);
    }
}

/** Fills work with the shelf's outputs, in transposed blocks. */
template <bool whole>
HWY_INLINE void readThroughShelf(FeedbackLines& lines, const FeedbackFrame& frame, FeedbackPiece<whole> piece,
                                 FeedbackWork& work)
{
    const FeedbackTag d;
    const auto numChannels = static_cast<std::size_t>(frame.numChannels);
    for (std::size_t c = 0; c < numChannels; ++c)
        for (std::size_t first = 0; first < FeedbackLines::numLines; first += quartet)
        {
            FeedbackVector x[quartet];
            for (std::size_t k = 0; k < quartet; ++k)
                x[k] = piece.load(frame.memory[c][first + k]);
            transposeBlocks(x);
            for (std::size_t k = 0; k < quartet; ++k)
                hn::Store(x[k], d, work.values[c][first + k]);
        }
    for (std::size_t line = 0; line < FeedbackLines::numLines; line += feedbackLanes)
    {
        if (numChannels == 1)
            runShelf<1>(lines, work.values, 0, line, piece.count);
        for (std::size_t c = 0; c + 1 < numChannels; c += 2)
            runShelf<2>(lines, work.values, c, line, piece.count);
    }
}

//==============================================================================
// Frame

/** Fills work with the filtered lines after the first round of the matrix. */
template <bool withShelf, bool whole>
HWY_INLINE void readLines(FeedbackLines& lines, const FeedbackFrame& frame, FeedbackPiece<whole> piece,
                          FeedbackWork& work)
{
    const FeedbackTag d;
    const hn::RebindToSigned<FeedbackTag> indices;
    // Only read in the upper half of the lanes they are for, of 8 and of 16.
    const auto fourth = hn::IndicesFromVec(
        d, hn::Add(hn::And(hn::Iota(indices, 0), hn::Set(indices, 8)), hn::Set(indices, 3)));
    const auto eighth = hn::IndicesFromVec(d, hn::Set(indices, feedbackLanes > 8 ? 7 : 0));
    const auto last = hn::IndicesFromVec(d, hn::Set(indices, static_cast<std::int32_t>(piece.count) - 1));

    const auto numChannels = static_cast<std::size_t>(frame.numChannels);
    for (std::size_t c = 0; c < numChannels; ++c)
        for (std::size_t first = 0; first < FeedbackLines::numLines; first += quartet)
        {
            FeedbackVector y[quartet];
            for (std::size_t k = 0; k < quartet; ++k)
                if constexpr (withShelf)
                    y[k] = hn::Load(d, work.values[c][first + k]);
                else
                    y[k] = piece.load(frame.memory[c][first + k]);
            if constexpr (withShelf)
                transposeBlocks(y);
            for (std::size_t k = 0; k < quartet; ++k)
            {
                const std::size_t n = first + k;
                const auto& steps = lines.steps[n];
                float& delay = lines.dampingDelays[c][n];
                y[k] = sumUp(hn::Mul(y[k], hn::Set(d, lines.inputGains[n])), steps, fourth, eighth);
                y[k] =
                    hn::MulAdd(hn::Load(d, steps[FeedbackLines::maxSteps].data()), hn::Set(d, delay), y[k]);
                delay = lines.poles[n] * hn::GetLane(hn::TableLookupLanes(y[k], last));
            }
            mixQuartet(y);
            for (std::size_t k = 0; k < quartet; ++k)
                hn::Store(y[k], d, work.values[c][first + k]);
        }
}

/** The second round of the matrix, over lines four apart, and the way back into the memory. */
template <bool whole>
HWY_INLINE void writeLines(const FeedbackFrame& frame, FeedbackPiece<whole> piece, const FeedbackWork& work)
{
    const FeedbackTag d;
    const auto numChannels = static_cast<std::size_t>(frame.numChannels);
    const auto ownShare = hn::Set(d, frame.ownShare);
    const auto crossShare = hn::Set(d, frame.crossShare);
    for (std::size_t c = 0; c < numChannels; ++c)
    {
        const auto cross = hn::Mul(crossShare, piece.loadEnd(frame.input[c]));
        for (std::size_t first = 0; first < quartet; ++first)
        {
            FeedbackVector mixed[quartet];
            for (std::size_t k = 0; k < quartet; ++k)
                mixed[k] = hn::Load(d, work.values[c][first + k * numQuartets]);
            mixQuartet(mixed);

            // The four lines are all even or all odd.
            const std::size_t target = getSwappedChannel(numChannels, first, c);
            const auto injection = hn::MulAdd(ownShare, piece.loadEnd(frame.input[target]), cross);
            for (std::size_t k = 0; k < quartet; ++k)
                piece.store(hn::Add(mixed[k], injection), frame.memory[target][first + k * numQuartets]);
            if (first == quartet - 1)
                piece.storeEnd(mixed[quartet - 1], frame.output[c]);
        }
    }
}

template <bool withShelf, bool whole>
HWY_INLINE void runPiece(FeedbackLines& lines, const FeedbackFrame& frame, FeedbackPiece<whole> piece)
{
    FeedbackWork work;
    if constexpr (withShelf)
        readThroughShelf(lines, frame, piece, work);
    readLines<withShelf>(lines, frame, piece, work);
    writeLines(frame, piece, work);
}

template <bool withShelf>
HWY_INLINE void runFrame(FeedbackLines& lines, const FeedbackFrame& frame)
{
    const auto length = static_cast<std::size_t>(frame.length);
    std::size_t start = 0;
    for (; start + feedbackLanes <= length; start += feedbackLanes)
        runPiece<withShelf>(lines, frame, FeedbackPiece<true>{start, feedbackLanes});
    if (start < length)
        runPiece<withShelf>(lines, frame, FeedbackPiece<false>{start, length - start});
}

HWY_INLINE void feedbackFrame(FeedbackLines& lines, const FeedbackFrame& frame)
{
    if (lines.shelfActive)
        runFrame<true>(lines, frame);
    else
        runFrame<false>(lines, frame);
}

} // namespace HWY_NAMESPACE
} // namespace vesk::audio::kernels
HWY_AFTER_NAMESPACE();

#endif
