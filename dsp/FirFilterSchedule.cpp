// How a FirFilter cuts its responses, and which of the parts play under the present head.

#include "dsp/FirFilter.h"

#include <algorithm>

namespace vesk::audio
{

namespace
{
/** Slices of the tail: as short as keeps a block's share small, as long as keeps their products fewer than the
    transforms that they save. */
constexpr int shortestTailSlice = 1024;
constexpr int mostTailSlices = 24;

/** With this many slices the head's products cost as much as the partitions that they save. */
constexpr int mostHeadSlices = 8;

/** With a few slices more a partition plays the next one, too, for less than that one's transforms. */
constexpr int mostSlicesInPlace = 3;

int getEnd(const FirFilter::Partition& partition) { return partition.offset + partition.getSize(); }

/** Whether a partition can play all up to the end of a later one in a few slices of its own. */
bool canTakeIn(const FirFilter::Partition& partition, const FirFilter::Partition& later)
{
    const int length = getEnd(later) - partition.offset;
    return length % partition.getSize() == 0 && length <= mostSlicesInPlace * partition.getSize();
}
} // namespace

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

/** Brings the partitions in line with the schedule. One of the right size at the right offset is kept, with its
    queues. */
void FirFilter::updatePartitions()
{
    partitions.resize(partitionSizes.size());
    int offset = headLength;
    for (std::size_t i = 0; i < partitionSizes.size(); ++i)
    {
        auto& partition = partitions[i];
        const int size = partitionSizes[i];
        if (partition == nullptr || partition->getSize() != size || partition->offset != offset)
            partition = std::make_unique<Partition>(numChannels, numImpulseResponses, offset, size);
        partition->upToDate = false;
        offset += size;
    }
    updateTail();
    if (tail != nullptr)
        tail->upToDate = false;
}

int FirFilter::getTailSliceSize() const
{
    int size = shortestTailSlice;
    while (totalLength > mostTailSlices * size)
        size *= 2;
    return size;
}

/** Of all that plays: the last partition can be longer than what is left for it, while the schedule cuts responses that
    are longer than the first one. */
int FirFilter::getResponsesEnd() const
{
    int end = 0;
    for (const auto& response : impulseResponses)
        end = std::max(end, response.numSamples);
    return std::min(end, getEnd(*partitions.back()));
}

/** Where a tail starts, if there is one: its slices are no longer than half its offset, so that it has a frame's
    time to work. A tail of a single slice would save nothing. */
int FirFilter::getTailOffset() const
{
    const int size = getTailSliceSize();
    const auto first = std::find_if(partitions.begin(), partitions.end(),
                                    [=](const auto& partition) { return partition->offset >= 2 * size; });
    const bool isLong = first != partitions.end() && getResponsesEnd() - (*first)->offset > size;
    return isLong ? (*first)->offset : noTail;
}

/** A head as long as the tail's slices plays all of the response, a shorter one plays the partitions that are a few
    times as long as itself. Under a longer one the partitions play, since some of them are meant to rest, and likewise
    if one of them starts within the head and ends beyond it. */
int FirFilter::countHeadSlices(int size) const
{
    const int sliceSize = getTailSliceSize();
    const int tailOffset = getTailOffset();
    const bool isAll = size == sliceSize && tailOffset != noTail;
    const int longest = isAll ? noTail : std::min(mostHeadSlices * size, tailOffset);
    int end = std::max(size, headLength);
    for (const auto& partition : partitions)
    {
        const int partitionEnd = getEnd(*partition);
        if (size > sliceSize || (partition->offset < size && partitionEnd > size))
            return std::max(headLength / size, 1);
        if (partitionEnd <= longest && (isAll || partitionEnd % size == 0))
            end = std::max(end, std::min(partitionEnd, getResponsesEnd()));
    }
    return (end + size - 1) / size;
}

/** A tail of the same slices at the same offset is kept, with its queues. */
void FirFilter::updateTail()
{
    const int offset = getTailOffset();
    if (offset == noTail)
    {
        tail.reset();
        return;
    }
    const int size = getTailSliceSize();
    const int numSlices = (getResponsesEnd() - offset + size - 1) / size;
    if (tail == nullptr || tail->getSize() != size || tail->offset != offset)
        tail = std::make_unique<Partition>(numChannels, numImpulseResponses, offset, size, numSlices);
    else
        tail->setNumSlices(numSlices);
}

/** Decides which partitions play, in how many slices, and whether the tail does.
    @param prepared  where the responses' spectra may be found, or null */
void FirFilter::choosePlayers(FirFilter* prepared)
{
    const auto* head = getPartitionedHead();
    const int headSize = std::max(blockPartitionSize, headLength);
    const int headEnd = head != nullptr ? head->numSlices * head->getSize() : headLength;
    const bool tailPlays = tail != nullptr && blockPartitionSize < tail->getSize();
    const int responsesEnd = partitions.empty() ? 0 : getResponsesEnd();
    const auto isLeft = [&](const Partition& partition)
    {
        const bool isInHead =
            partition.offset >= headSize && std::min(getEnd(partition), responsesEnd) <= headEnd;
        const bool isInTail = tailPlays && partition.offset >= tail->offset;
        return partition.active && !isInHead && !isInTail;
    };

    for (auto first = partitions.begin(); first != partitions.end();)
    {
        auto& partition = **first++;
        if (!isLeft(partition))
        {
            partition.playing = false;
            continue;
        }
        int end = getEnd(partition);
        for (; first != partitions.end() && isLeft(**first) && canTakeIn(partition, **first); ++first)
        {
            end = getEnd(**first);
            (*first)->playing = false;
        }
        const int length = std::min(end, responsesEnd) - partition.offset;
        play(partition, (length + partition.getSize() - 1) / partition.getSize(), prepared);
    }
    if (tailPlays)
        play(*tail, tail->numSlices, prepared);
    else if (tail != nullptr)
        tail->playing = false;
    shareSpectra();
}

void FirFilter::play(Partition& partition, int numSlices, FirFilter* prepared)
{
    if (!partition.playing || partition.numSlices != numSlices)
    {
        // What was queued belongs to another time or to other slices: it goes on from the history.
        partition.reset();
        partition.alignFrames(position);
        partition.playing = true;
    }
    if (partition.numSlices != numSlices)
    {
        partition.setNumSlices(numSlices);
        partition.upToDate = false;
    }
    if (!partition.upToDate)
        installInto(partition, prepared);
}

/** Transforms each frame once for all that need it: those whose frames start at the same places in the stream. */
void FirFilter::shareSpectra()
{
    std::vector<Partition*, PoolAllocator<Partition*>> sharing;
    const auto share = [&](Partition& partition, std::int64_t shift)
    {
        if (shift % partition.getSize() != 0)
            return;
        const auto other = std::find_if(sharing.begin(), sharing.end(),
                                        [&](const auto* p) { return p->fftSize == partition.fftSize; });
        if (other != sharing.end())
            partition.shareSpectra(**other);
        else
            sharing.push_back(&partition);
    };
    for (auto& partition : partitions)
        if (partition->playing)
            share(*partition, partition->offset);
    if (blockPartition != nullptr)
        share(*blockPartition, position);
    if (tail != nullptr && tail->playing)
        share(*tail, tail->offset);
}

/** How far before a block any frame may start, with a tail or without one: a first frame that is aligned starts up to
    its own length before what the partitions cover. */
int FirFilter::getLookBack() const
{
    if (partitions.empty())
        return 0;
    const auto& last = *partitions.back();
    return getEnd(last) + 2 * std::max(last.getSize(), getTailSliceSize());
}

} // namespace vesk::audio
