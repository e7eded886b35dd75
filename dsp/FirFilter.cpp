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

void FirFilter::setMultipleIRs(const std::vector<Signal32>& responses) { installIRs(responses, nullptr); }

std::unique_ptr<FirFilter> FirFilter::prepareIRs(const std::vector<Signal32>& responses,
                                                 int blockLength) const
{
    auto prepared = std::make_unique<FirFilter>();
    prepared->setLoadDistribution(loadDistribution, loadDistributionPeriod);
    prepared->impulseResponses = responses;
    prepared->numImpulseResponses = static_cast<int>(responses.size());
    prepared->numChannels = responses.front().numChannels;
    prepared->updatePartitionSizes();
    prepared->updatePartitions();
    if (blockLength > 0)
        prepared->updateBlockSize(blockLength);
    else
        prepared->choosePlayers();
    return prepared;
}

void FirFilter::takeIRs(FirFilter& prepared)
{
    auto former = impulseResponses;
    installIRs(prepared.impulseResponses, &prepared);
    prepared.impulseResponses.swap(former); // to be let go of where nobody waits
}

/** @param prepared  where their spectra may be found, or null */
void FirFilter::installIRs(const std::vector<Signal32>& responses, FirFilter* prepared)
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

    updatePartitionSizes();
    updatePartitions();
    if (blockPartitionSize > 0 && blockPartition == nullptr)
        blockPartition = createHead(blockPartitionSize, prepared);
    else if (auto* head = getPartitionedHead())
    {
        head->setNumSlices(countHeadSlices(head->getSize()));
        installInto(*head, prepared);
    }
    choosePlayers(prepared);

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

    const int covered = std::max(totalLength, getLookBack());
    const int wanted = std::max(blockPartitionSize, headLength) + covered + input.maxBlockSize;
    if (wanted > input.capacity)
        input.resize(wanted);
}

void FirFilter::installInto(Partition& partition, FirFilter* prepared) const
{
    if (auto* twin = prepared != nullptr ? prepared->findLike(partition) : nullptr)
    {
        partition.swapImpulseResponses(*twin);
        twin->upToDate = false;
    }
    else
        partition.setImpulseResponses(impulseResponses);
    partition.upToDate = true;
}

/** One that has the present responses, or null. */
FirFilter::Partition* FirFilter::findLike(const Partition& partition) const
{
    const auto isLike = [&](const Partition* other)
    {
        return other != nullptr && other->upToDate && other->offset == partition.offset &&
               other->fftSize == partition.fftSize && other->numSlices == partition.numSlices;
    };
    if (auto* head = getPartitionedHead(); isLike(head))
        return head;
    if (isLike(tail.get()))
        return tail.get();
    const auto found =
        std::find_if(partitions.begin(), partitions.end(), [&](const auto& p) { return isLike(p.get()); });
    return found != partitions.end() ? found->get() : nullptr;
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
    if (blockPartitionSize != formerPartitionSize)
        for (auto& partition : partitions)
            partition->active = partition->offset >= blockPartitionSize;
    choosePlayers();
}

void FirFilter::chooseHead(int length)
{
    const bool wasDirect = getPartitionedHead() == nullptr;
    const bool fits = MathEx::findNearestPowerOfTwo(length) == length &&
                      impulseResponses.front().numSamples > longestAlwaysDirect;
    const int wanted = fits && length >= headLength ? length : -1;
    shortHead.reset();
    if (wanted != blockPartitionSize)
    {
        blockPartitionSize = wanted;
        blockPartition.reset();
        if (wanted != -1)
            blockPartition = createHead(wanted);
    }
    if (fits && length < headLength && length >= shortestPartition)
        shortHead = createHead(length);

    const bool isDirect = getPartitionedHead() == nullptr;
    if (isDirect && !wasDirect && input.numChannels >= 0)
    {
        const int past = std::min(input.capacity, headLength);
        directFilter->setDelayLine(input.peek(-past, past));
    }
}

std::shared_ptr<FirFilter::Partition> FirFilter::createHead(int size, FirFilter* prepared) const
{
    auto head = std::allocate_shared<Partition>(PoolAllocator<Partition>(), numChannels, numImpulseResponses,
                                                0, size, countHeadSlices(size));
    installInto(*head, prepared);
    return head;
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
        for (auto& partition : partitions)
            if (partition->playing)
                visit(*partition);
        if (tail != nullptr && tail->playing)
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
    {
        partition->reset();
        partition->forgetSpectra();
    }
    if (tail != nullptr)
    {
        tail->reset();
        tail->forgetSpectra();
    }
    if (auto* head = getPartitionedHead())
        head->forgetSpectra();
    directFilter->reset();
}

} // namespace vesk::audio
