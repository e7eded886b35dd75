/**
    Convolution of a multichannel stream with one or several long impulse responses, without latency at any
    block size.

    The response is cut into a head of 128 taps, computed in direct form, and partitions of growing size
    (128, 256, 512, ...), each an overlap-save convolver whose results wait in a queue until they are due
    (W. G. Gardner, "Efficient convolution without input-output delay", 1995). When the block length is a power
    of two of at least 128, one FFT partition as long as the block takes the place of the head and of the
    partitions that lie inside it.

        FirFilter filter;
        filter.setImpulseResponse(response);       // channels by taps
        Signal32 wet = filter.process(block);      // any length, also changing from block to block

    All responses have the same channel count. process() filters channel by channel; processSummed() is a
    matrix with one response for each output channel and one response channel for each input channel. The two
    are not mixed on one object.

    Load distribution inserts half-size partitions, so that large frames do not all fall on the same block.

    Cost: grows with the logarithm of the response length. Thread: one at a time.
*/
#pragma once

#include "core/CircularBuffer.h"
#include "core/Signal.h"
#include "core/SignalQueue.h"
#include "core/kernels.h"
#include "dsp/FourierTransform.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace vesk::audio
{

class FirFilter
{
public:
    class Partition;
    class IppFirFilter;

    /** Taps of the direct head, and the size of the smallest partition. */
    static constexpr int headLength = 128;

    FirFilter();
    explicit FirFilter(const Signal32& impulseResponse);
    ~FirFilter();
    FirFilter(const FirFilter&) = delete;
    FirFilter& operator=(const FirFilter&) = delete;

    /** @param period  every how many doublings an extra half-size partition comes; above 0. Takes effect at the
                       next setMultipleIRs. */
    void setLoadDistribution(bool enable, int period);

    void setImpulseResponse(const Signal32& impulseResponse);

    /** Installs responses, not empty, all of the first one's channel count. The input history stays, so new
        responses of the same shape take effect without a gap. */
    void setMultipleIRs(const std::vector<Signal32>& impulseResponses);

    /** Channel c of the result is channel c of the input through channel c of the first response. */
    Signal32 process(const Signal32& input);

    /** One such result for each response. */
    std::vector<Signal32> processMultiple(const Signal32& input);

    /** Channel k of the result is the sum over all input channels c of channel c through channel c of
        response k. */
    Signal32 processSummed(const Signal32& input);

    /** Forgets the past. Responses, schedule and block size stay. */
    void reset();

    // State, open to inspection; only the operations above write it.

    CircularBuffer<Signal32> input;
    std::vector<Signal32> impulseResponses;
    std::vector<std::unique_ptr<Partition>> partitions; ///< in schedule order
    std::shared_ptr<Partition> blockPartition;          ///< the FFT head, or empty
    std::vector<Signal32> partitionOutput;
    int numChannels = 0;
    int numImpulseResponses = 0;
    int blockSize = -1;          ///< block length last seen
    int blockPartitionSize = -1; ///< size of the FFT head; -1 while the direct head is in use
    int totalLength = headLength;
    std::unique_ptr<IppFirFilter> directFilter;
    int loadDistributionPeriod = 1;
    bool loadDistribution = false;
    std::vector<int> partitionSizes;

private:
    void updatePartitionSizes();
    void updatePartitions();
    void updateBlockSize(int length);
    void addBlock(const Signal32& block);
    void advance(int length);
};

} // namespace vesk::audio
