#include "dsp/FirFilter.h"

#include "core/MathEx.h"
#include "core/VectorOps.h"

#include <algorithm>
#include <cassert>
#include <utility>

namespace vesk::audio
{

namespace
{
/** Up to this many taps the direct head costs less than a block partition, however long the blocks are. */
constexpr int longestAlwaysDirect = 32;

/** Below this block length the direct head costs less than short partitions. */
constexpr int shortestPartition = 32;

/** Slices of the tail: as short as keeps a block's share small, as long as keeps their products fewer than the
    transforms that they save. */
constexpr int shortestTailSlice = 1024;
constexpr int mostTailSlices = 24;
} // namespace

FirFilter::FirFilter() : directFilter(std::make_unique<IppFirFilter>()) {}

FirFilter::FirFilter(const Signal32& impulseResponse) : FirFilter() { setImpulseResponse(impulseResponse); }

FirFilter::~FirFilter() = default;

void FirFilter::setLoadDistribution(bool enable, int period)
{
    loadDistribution = enable;
    loadDistributionPeriod = period;
}

//==============================================================================
// Responses

void FirFilter::setImpulseResponse(const Signal32& impulseResponse) { setMultipleIRs({impulseResponse}); }

void FirFilter::setMultipleIRs(const std::vector<Signal32>& responses)
{
    assert(!responses.empty());
    impulseResponses = responses;
    const auto responseCount = static_cast<int>(impulseResponses.size());
    const int channelCount = impulseResponses.front().numChannels;
    if (responseCount != numImpulseResponses || channelCount != numChannels)
    {
        partitions.clear();
        tail.reset();
        blockPartition.reset();
        if (shortHead != nullptr)
        {
            shortHead.reset();
            blockSize = -1; // the next block chooses the head anew
        }
    }
    numImpulseResponses = responseCount;
    numChannels = channelCount;

    if (blockPartitionSize > 0 && blockPartition == nullptr)
        createBlockPartition();
    else if (blockPartition != nullptr)
        blockPartition->setImpulseResponses(impulseResponses);
    else if (shortHead != nullptr)
        shortHead->setImpulseResponses(impulseResponses);

    // The first response tells the length; the heads share a past, so a shorter one is filled up.
    const int numTaps = std::min(impulseResponses.front().numSamples, headLength);
    std::vector<Signal32> heads;
    heads.reserve(impulseResponses.size());
    for (const auto& response : impulseResponses)
    {
        Signal32 head(numChannels, numTaps, 0.0f);
        for (int channel = 0; channel < numChannels; ++channel)
            vo::copy(response.getChannelPtr(channel), head.getWriteChannelPtr(channel),
                     std::min(response.numSamples, numTaps));
        heads.push_back(head);
    }
    directFilter->setFilter(heads);

    updatePartitionSizes();
    updatePartitions();

    const int covered = std::max(totalLength, getLookBack());
    const int wanted = std::max(blockPartitionSize, headLength) + covered + input.maxBlockSize;
    if (wanted > input.capacity)
        input.resize(wanted);
}

int FirFilter::getTailSliceSize() const
{
    int size = shortestTailSlice;
    while (totalLength > mostTailSlices * size)
        size *= 2;
    return size;
}

/** How far before a block any frame may start, with a tail or without one: a first frame that is aligned starts up to
    its own length before what the partitions cover. */
int FirFilter::getLookBack() const
{
    if (partitions.empty())
        return 0;
    const auto& last = *partitions.back();
    return last.offset + last.getSize() + 2 * std::max(last.getSize(), getTailSliceSize());
}

void FirFilter::createBlockPartition()
{
    blockPartition = std::allocate_shared<Partition>(PoolAllocator<Partition>(), numChannels,
                                                     numImpulseResponses, 0, blockPartitionSize);
    blockPartition->setImpulseResponses(impulseResponses);
}

void FirFilter::createShortHead(int length)
{
    shortHead = std::allocate_shared<Partition>(PoolAllocator<Partition>(), numChannels, numImpulseResponses,
                                                0, length, headLength / length);
    shortHead->setImpulseResponses(impulseResponses);
}

/** The schedule: sizes double, each partition starts where the one before ends. With load distribution an
    extra partition of half the size shifts the later ones off the multiples of their size, so that their
    frames fall on other blocks. The last one is the smallest power of two above what remains. */
void FirFilter::updatePartitionSizes()
{
    const int length = impulseResponses.front().numSamples;
    partitionSizes.clear();
    totalLength = headLength;
    if (length <= headLength)
        return;

    const auto append = [this](int size)
    {
        partitionSizes.push_back(size);
        totalLength += size;
    };

    int size = headLength;
    for (int doublings = 0; size + totalLength <= length; ++doublings)
    {
        append(size);
        if (loadDistribution && doublings > 0 && doublings % loadDistributionPeriod == 0)
            append(size / 2);
        size *= 2;
        if (totalLength >= length)
            return;
    }

    if (size / 2 + totalLength > length)
    {
        size /= 2;
        while (size / 2 + totalLength > length)
            size /= 2;
    }
    partitionSizes.push_back(size);
    totalLength = length;
}

/** Brings the partitions in line with the schedule, and the tail with them. A partition of the right size at the
    right offset is kept, with its queues. */
void FirFilter::updatePartitions()
{
    partitions.resize(partitionSizes.size());
    int offset = headLength;
    for (std::size_t i = 0; i < partitionSizes.size(); ++i)
    {
        auto& partition = partitions[i];
        const int size = partitionSizes[i];
        if (partition == nullptr || partition->fftSize != 2 * size || partition->offset != offset)
        {
            partition = std::make_unique<Partition>(numChannels, numImpulseResponses, offset, size);
            partition->alignFrames(position);
        }
        offset += size;
    }

    const auto shape = findTailShape();
    if (shape.numSlices > 0)
        createTail(shape);
    else if (tail != nullptr)
        dropTail();
    for (std::size_t i = 0; i < countPlayed(); ++i)
        partitions[i]->setImpulseResponses(impulseResponses);
    shareSpectra();
}

/** The tail for the present schedule and head. Its slices are no longer than half its offset, so that it has a
    frame's time to work. Under a head that is longer than them, some of the partitions may be meant to rest. */
FirFilter::TailShape FirFilter::findTailShape() const
{
    const int size = getTailSliceSize();
    const auto first = std::find_if(partitions.begin(), partitions.end(),
                                    [=](const auto& partition) { return partition->offset >= 2 * size; });
    if (first == partitions.end() || blockPartitionSize > size)
        return {};
    const int length = partitions.back()->offset + partitions.back()->getSize() - (*first)->offset;
    if (length <= size)
        return {};
    return {.start = static_cast<std::size_t>(first - partitions.begin()),
            .size = size,
            .numSlices = (length + size - 1) / size};
}

/** A tail of the same slices at the same offset is kept, with its queues. */
void FirFilter::createTail(const TailShape& shape)
{
    tailStart = shape.start;
    const int offset = partitions[tailStart]->offset;
    if (tail == nullptr || tail->getSize() != shape.size || tail->offset != offset)
    {
        tail = std::make_unique<Partition>(numChannels, numImpulseResponses, offset, shape.size,
                                           shape.numSlices);
        tail->alignFrames(position);
    }
    else if (tail->numSlices != shape.numSlices)
        tail->setNumSlices(shape.numSlices);
    tail->setImpulseResponses(impulseResponses);
}

/** The partitions go on from the history. */
void FirFilter::dropTail()
{
    tail.reset();
    for (std::size_t i = tailStart; i < partitions.size(); ++i)
    {
        partitions[i]->reset();
        partitions[i]->alignFrames(position);
    }
}

/** Transforms each frame once for all that need it: those whose frames start at the same places in the stream. */
void FirFilter::shareSpectra()
{
    std::vector<Partition*> sharing;
    const auto share = [&](Partition* partition, std::int64_t shift)
    {
        if (partition == nullptr || shift % partition->getSize() != 0)
            return;
        const auto other = std::find_if(sharing.begin(), sharing.end(),
                                        [=](const auto* p) { return p->fftSize == partition->fftSize; });
        if (other != sharing.end())
            partition->shareSpectra(**other);
        else
            sharing.push_back(partition);
    };
    for (std::size_t i = 0; i < countPlayed(); ++i)
        share(partitions[i].get(), partitions[i]->offset);
    share(blockPartition.get(), position);
    if (tail != nullptr)
        share(tail.get(), tail->offset);
}

//==============================================================================
// Blocks

/** Chooses the head for a block length, and which partitions run beside it. */
void FirFilter::updateBlockSize(int length)
{
    if (length == blockSize)
        return;
    blockSize = length;
    const int formerPartitionSize = blockPartitionSize;
    chooseHead(length);
    if (blockPartitionSize == formerPartitionSize)
        return;

    for (auto& partition : partitions)
    {
        const bool runs = partition->offset >= blockPartitionSize;
        // What was queued before the pause belongs to another time: the next frames come from the history.
        if (runs && !partition->active)
        {
            partition->reset();
            partition->alignFrames(position);
        }
        partition->active = runs;
    }

    const auto shape = findTailShape();
    if (shape.numSlices > 0 && tail == nullptr)
        createTail(shape);
    else if (shape.numSlices == 0 && tail != nullptr)
    {
        dropTail();
        for (std::size_t i = tailStart; i < partitions.size(); ++i)
            partitions[i]->setImpulseResponses(impulseResponses);
    }
    shareSpectra();
}

void FirFilter::chooseHead(int length)
{
    const bool wasDirect = blockPartition == nullptr && shortHead == nullptr;
    const bool fits = MathEx::findNearestPowerOfTwo(length) == length &&
                      impulseResponses.front().numSamples > longestAlwaysDirect;
    const int wanted = fits && length >= headLength ? length : -1;
    shortHead.reset();
    if (wanted != blockPartitionSize)
    {
        blockPartitionSize = wanted;
        blockPartition.reset();
        if (wanted != -1)
            createBlockPartition();
    }
    if (fits && length < headLength && length >= shortestPartition && numChannels % 2 == 0)
        createShortHead(length);

    const bool isDirect = blockPartition == nullptr && shortHead == nullptr;
    if (isDirect && !wasDirect && input.numChannels >= 0)
    {
        const int past = std::min(input.capacity, headLength);
        directFilter->setDelayLine(input.peek(-past, past));
    }
}

void FirFilter::beginBlock(const Signal32& block)
{
    assert(numImpulseResponses > 0);
    const int length = MathEx::findLargerPowerOfTwo(block.numSamples);
    const int covered = std::max(MathEx::findLargerPowerOfTwo(totalLength), getLookBack());
    const int needed = std::max(length, covered) + std::max(length, headLength);
    if (input.capacity < needed)
        input.resize(needed + input.maxBlockSize);

    input.add(block);
    updateBlockSize(block.numSamples);
}

void FirFilter::endBlock(int length)
{
    input.readPosition = (input.readPosition + length) % input.capacity;
    position += length;
}

/** Frames that are needed now first; then, if they were few, a step of those that may wait. */
void FirFilter::runPartitions(const Block& block, std::span<Signal32> outputs)
{
    int samplesComputed = 0;
    Partition* mostUrgent = nullptr;
    const auto compute = [&](Partition& partition)
    {
        // Of frames that are no longer than the block each block has one, and there is nothing to spread.
        if (!partition.hasSlack() || partition.fftSize <= 2 * block.length)
        {
            samplesComputed += partition.computeReadyFrames(block) * partition.fftSize;
            return;
        }
        partition.computeDueFrames(block);
        const auto queued = [](const Partition& p) { return p.queues.front().numSamples; };
        if (partition.countReadyFrames(block) > 0 &&
            (mostUrgent == nullptr || queued(partition) < queued(*mostUrgent)))
            mostUrgent = &partition;
    };
    const auto visitPlaying = [&](auto visit)
    {
        for (std::size_t i = 0; i < countPlayed(); ++i)
            if (partitions[i]->active)
                visit(*partitions[i]);
        if (tail != nullptr)
            visit(*tail);
    };

    visitPlaying(compute);
    if (mostUrgent != nullptr && samplesComputed <= 2 * std::max(block.length, headLength))
        mostUrgent->advanceReadyFrame(block);
    visitPlaying([&](Partition& partition) { partition.addOutputs(outputs); });
}

void FirFilter::computeMultiple(const Signal32& samples)
{
    beginBlock(samples);
    results.resize(static_cast<std::size_t>(numImpulseResponses));
    const Block block{.input = input, .start = position, .length = samples.numSamples, .summed = false};
    if (auto* head = getPartitionedHead())
    {
        for (auto& result : results)
            result = Signal32(numChannels, samples.numSamples);
        head->computeReadyFrames(block);
        head->getOutputs(results);
    }
    else
        directFilter->process(samples, results);
    runPartitions(block, results);
    endBlock(samples.numSamples);
}

Signal32 FirFilter::process(const Signal32& block)
{
    computeMultiple(block);
    return std::move(results.front());
}

std::vector<Signal32> FirFilter::processMultiple(const Signal32& block)
{
    computeMultiple(block);
    return std::move(results);
}

Signal32 FirFilter::processSummed(const Signal32& samples)
{
    beginBlock(samples);
    const Block block{.input = input, .start = position, .length = samples.numSamples, .summed = true};
    Signal32 result;
    if (auto* head = getPartitionedHead())
    {
        result = Signal32(numImpulseResponses, samples.numSamples);
        head->computeReadyFrames(block);
        head->getOutputs({&result, 1});
    }
    else
        result = directFilter->processSummed(samples);
    runPartitions(block, {&result, 1});
    endBlock(samples.numSamples);
    return result;
}

void FirFilter::reset()
{
    input.clear();
    position = 0; // so that the same input is cut into the same frames as in a new filter
    for (auto& partition : partitions)
        partition->reset();
    if (tail != nullptr)
        tail->reset();
    if (auto* head = getPartitionedHead())
        head->forgetSpectra();
    directFilter->reset();
}

} // namespace vesk::audio
