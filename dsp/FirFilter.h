/**
    Convolution of a multichannel stream with one or several long impulse responses, without latency at any
    block size.

    The response is cut into a head of 128 taps, computed in direct form, and partitions of growing size
    (128, 256, 512, ...), each an overlap-save convolver whose results wait in a queue until they are due
    (W. G. Gardner, "Efficient convolution without input-output delay", 1995). When the block length is a
    power of two of at least 32, an FFT partition as long as the block takes the place of the head, and of the
    partitions that lie inside it.

        FirFilter filter;
        filter.setImpulseResponse(response);       // channels by taps
        Signal32 wet = filter.process(block);      // any length, also changing from block to block

    All responses have the same channel count. process() filters channel by channel; processSummed() is a
    matrix with one response for each output channel and one response channel for each input channel. The two
    are not mixed on one object.

    Load distribution inserts half-size partitions, so that large frames do not all fall on the same block.

    Most partitions of this schedule are played by others, for less: a partition can hold many equal slices, all of
    them over the same spectra of the input, with a single transform back. An FFT head plays the first partitions so,
    a tail the long ones, and between them one partition the next (F. Wefers, "Partitioned convolution algorithms for
    real-time auralization", 2015). The tail's results are due a frame later than its input is complete, so it works in small steps, in blocks that have
    little else to do, and no block pays for a large transform. Under a head longer than the tail's slices the
    schedule itself plays.

    Cost: a few short transforms, and a complex product of spectra for each slice. Thread: one at a time.
*/
#pragma once

#include "core/CircularBuffer.h"
#include "core/Signal.h"
#include "core/SignalQueue.h"
#include "core/kernels.h"
#include "dsp/FourierTransform.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <vector>

namespace vesk::audio
{

class FirFilter
{
public:
    class FrameSpectra;
    class Partition;
    class IppFirFilter;

    /** Of an even number of channels as pairs in one of the layouts of kernels.h, of an odd number as bins. */
    struct Spectrum
    {
        Signal32 separated; ///< one channel for each pair
        Signal32 joint;     ///< of a product, two channels for each pair: real and imaginary parts
        ComplexSignal32 bins;
    };

    /** What the partitions are to work on. */
    struct Block
    {
        CircularBuffer<Signal32>& input; ///< readPosition marks the block's first sample
        std::int64_t start;              ///< of the block, in samples of the stream
        int length;
        bool summed; ///< over the input channels, as processSummed does
    };

    /** Taps of the direct head, and the size of the smallest partition. */
    static constexpr int headLength = 128;

    FirFilter();
    explicit FirFilter(const Signal32& impulseResponse);
    ~FirFilter();
    FirFilter(const FirFilter&) = delete;
    FirFilter& operator=(const FirFilter&) = delete;

    /** @param period  every how many doublings an extra half-size partition comes; above 0. Takes effect at
        the next setMultipleIRs. */
    void setLoadDistribution(bool enable, int period);

    void setImpulseResponse(const Signal32& impulseResponse);

    /** Installs responses, not empty, all of the first one's channel count. The input history stays, so new
        responses of the same shape take effect without a gap. */
    void setMultipleIRs(const std::vector<Signal32>& impulseResponses);

    /** Works out responses for takeIRs, which is then a matter of microseconds. Reads nothing but the load
        distribution, so another thread may go on processing.
        @param blockLength  the filter's blockSize, or -1 */
    std::unique_ptr<FirFilter> prepareIRs(const std::vector<Signal32>& responses, int blockLength) const;

    /** Installs the responses of prepareIRs. If the block length changed meanwhile, what is laid out differently is
        worked out again. The former responses and spectra go to prepared, which is used up. */
    void takeIRs(FirFilter& prepared);

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
    std::shared_ptr<Partition> shortHead;               ///< the head for short blocks, or empty
    std::unique_ptr<Partition> tail;                    ///< or empty
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
    static constexpr int noTail = std::numeric_limits<int>::max(); ///< as an offset

    void installIRs(const std::vector<Signal32>& responses, FirFilter* prepared);
    void installInto(Partition& partition, FirFilter* prepared) const;
    Partition* findLike(const Partition& partition) const;
    void updatePartitionSizes();
    void updatePartitions();
    int getTailSliceSize() const;
    int getResponsesEnd() const;
    int getTailOffset() const;
    int countHeadSlices(int size) const;
    void updateTail();
    void choosePlayers(FirFilter* prepared = nullptr);
    void play(Partition& partition, int numSlices, FirFilter* prepared);
    void shareSpectra();
    int getLookBack() const;
    void updateBlockSize(int length);
    void chooseHead(int length);
    std::shared_ptr<Partition> createHead(int size, FirFilter* prepared = nullptr) const;
    Partition* getPartitionedHead() const
    {
        return blockPartition != nullptr ? blockPartition.get() : shortHead.get();
    }
    void beginBlock(const Signal32& block);
    void endBlock(int length);
    void computeMultiple(const Signal32& block);
    void runPartitions(const Block& block, std::span<Signal32> outputs);

    std::vector<Signal32> results; ///< of the present block, one for each response
    std::int64_t position = 0;     ///< samples of the stream before the present block
};

//==============================================================================

/** The spectra of the input's last frames, for all partitions of one size.

    An even number of channels travels in pairs, each as one complex signal: that saves a pass over the spectra in
    each direction, and the samples go from and to the channels' own memory. Other channel counts are transformed
    channel by channel. */
class FirFilter::FrameSpectra
{
public:
    struct Frame
    {
        bool isValid = false;
        std::int64_t start = 0; ///< in the stream
        Spectrum spectrum;
    };

    /** @param frameSize  of a transform, a power of two */
    FrameSpectra(int numChannels, int frameSize);

    /** Takes the transform's tables. To be called before the first frame is asked for. */
    void prepare();

    /** Keeps this many frames, if it keeps fewer. */
    void keep(int numFrames);

    /** Frames that start a hop of half a frame apart, the newest one first; those that are not at hand are
        transformed now.
        @param result  as many as it is long, at most as many as are kept; good until the next call */
    void get(const Block& block, std::int64_t newestStart, std::span<const Spectrum*> result);

    /** The input history is another one now. */
    void forget();

    const int numChannels;
    const int frameSize;

private:
    void transform(CircularBuffer<Signal32>& input, int start, Spectrum& spectrum);

    FourierTransform fourierTransform;
    Signal32 timeBuffer;
    std::vector<Frame, PoolAllocator<Frame>>
        frames; ///< in a ring: consecutive frames of a stream are neighbours
};

/** One overlap-save convolver for a slice of the responses.

    A frame of fftSize samples, the second half of it new, gives fftSize / 2 samples of output. A frame that
    ends at input time t yields the output from t - size + offset to t + offset, so with an offset of at least
    the partition's size the results are ready before they are due, however the stream is cut into blocks:
    each frame is computed in the first block that holds its last sample, and waits in a queue.

    An offset of 0 is allowed if all blocks are exactly as long as the partition: then one frame for each
    block, over the block before and this one, yields this block's output (the FFT head).

    A partition can hold several slices of its size, one after the other in the responses: the later ones meet the
    spectra of earlier frames. */
class FirFilter::Partition
{
public:
    /** @param offset     where the first slice starts in the responses
        @param size       length of a slice, a power of two */
    Partition(int numChannels, int numImpulseResponses, int offset, int size, int numSlices = 1);

    /** Takes the slices. A response that ends before the offset gives silence. The queues stay. */
    void setImpulseResponses(const std::vector<Signal32>& responses);

    /** Exchanges them with another partition of the same place, size and number. */
    void swapImpulseResponses(Partition& other);

    /** Another number of slices; the responses are to be set again. */
    void setNumSlices(int slices);

    /** With nothing queued: lets the frames start at multiples of size in the stream, minus offset, though the next
        block starts elsewhere. */
    void alignFrames(std::int64_t blockStart);

    /** Result k, as long as outputs[0], for each response; input.readPosition marks the block's start. */
    void process(CircularBuffer<Signal32>& input, std::vector<Signal32>& outputs);

    /** Channel k of output is the sum over the input channels for response k. */
    void processSummed(CircularBuffer<Signal32>& input, Signal32& output);

    // The same in steps, for a FirFilter that chooses when the work is done.

    /** Whether results may wait: the slice starts later in the response than its frames end. */
    bool hasSlack() const { return offset > getSize(); }

    /** Frames whose input is complete. */
    int countReadyFrames(const Block& block) const;

    /** Computes and queues them.
        @returns how many */
    int computeReadyFrames(const Block& block);

    /** Only those without which the block's output would be incomplete. */
    void computeDueFrames(const Block& block);

    /** Works on the next ready frame for as long as to be done with it in half of the blocks till the next one. */
    void advanceReadyFrame(const Block& block);

    /** Moves the block's output into outputs, or adds it to them: one for each response, in summed mode one
        alone. */
    void getOutputs(std::span<Signal32> outputs);
    void addOutputs(std::span<Signal32> outputs);

    /** Takes its input's spectra from now on where another partition of this size takes its own. Worth it if their
        frames start at the same places. */
    void shareSpectra(const Partition& other);

    /** The input history is another one now. */
    void forgetSpectra();

    /** Drops what is queued. */
    void reset();

    int getSize() const { return fftSize / 2; }

    // State, open to inspection; active, playing and upToDate belong to the FirFilter.

    int numImpulseResponses;
    int numChannels;
    int fftSize; ///< twice the partition's size
    int impulseResponseLength = 0;
    bool active = true;    ///< the head does not take this slice's place
    bool playing = false;  ///< and none of the head, the tail and an earlier partition plays it
    bool upToDate = false; ///< it has the present responses
    std::vector<SignalQueue<Signal32>, PoolAllocator<SignalQueue<Signal32>>> queues;
    std::vector<Spectrum, PoolAllocator<Spectrum>>
        irSpectra; ///< response k, slice s at index k * numSlices + s
    int offset;
    int numSlices;
    FourierTransform fourierTransform;

private:
    bool isPaired() const { return numChannels % 2 == 0; }
    void keepSpectra();
    void prepareTransforms();
    void transformResponse(const Signal32& padded, Spectrum& result);
    int getLead() const;
    std::int64_t getFrameStart(const Block& block) const { return block.start - getLead(); }
    void multiplySlices(const Block& block, int count);
    void multiply(int response, int firstSlice);
    void multiplySummed(int firstSlice);
    void addProducts(int response, int channel, int firstSlice, std::complex<float>* sum, bool accumulate);
    void finishFrame(const Block& block);
    const Spectrum& getResponse(int response, int slice) const
    {
        return irSpectra[static_cast<std::size_t>(response * numSlices + slice)];
    }
    void queueProduct(std::size_t queue, int channels);

    std::shared_ptr<FrameSpectra> spectra;
    std::vector<const Spectrum*, PoolAllocator<const Spectrum*>> inputs; ///< of this step
    std::vector<StereoTerm, PoolAllocator<StereoTerm>> terms;            ///< scratch
    int samplesToSkip = 0; ///< of the next frame's results: they lie before the first block
    int slicesDone = 0;    ///< of the next frame
    std::vector<Spectrum, PoolAllocator<Spectrum>>
        products; ///< for each queue; joint only while a frame is worked on
};

/** The direct-form head: up to 128 taps for each response and channel, over one shared past. */
class FirFilter::IppFirFilter
{
public:
    IppFirFilter() = default;
    ~IppFirFilter();
    IppFirFilter(const IppFirFilter&) = delete;
    IppFirFilter& operator=(const IppFirFilter&) = delete;

    /** Heads of the same shape as before take effect with no gap in the past; another shape clears it. */
    void setFilter(const std::vector<Signal32>& heads);

    /** Puts in another past, newest sample last; what is missing is silence. */
    void setDelayLine(const Signal32& past);

    std::vector<Signal32> process(const Signal32& input);

    /** The same into results, which keeps its storage from block to block. */
    void process(const Signal32& input, std::vector<Signal32>& results);

    Signal32 processSummed(const Signal32& input);

    /** Silences the past. */
    void reset();

    // State, open to inspection; only the operations above write it.

    std::vector<FirSpec*> specs; ///< response k, channel c at index k * numChannels + c
    Signal32
        delayLine; ///< numChannels by tapsLength; its first tapsLength - 1 samples are the past, oldest first
    int numChannels = 0;
    int numImpulseResponses = 0;
    int tapsLength = 0;

private:
    void free();
    void takeBlock(const Signal32& input);
    FirInput getInput(int response, int channel) const;

    Signal32 history;             ///< the past and the present block, one after the other
    std::vector<FirInput> summed; ///< what makes one output
};

} // namespace vesk::audio
