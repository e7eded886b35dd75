/**
    Multichannel signals as values.

    A Signal is a handle of three words: how many channels and samples it shows, and shared ownership of the
    memory that holds them. Copying, passing and returning a signal never copies a sample. The first write to
    a signal whose memory has other owners clones that memory, so a holder of a copy never sees a change:

        Signal32 block(2, 512, 0.0f);       // two channels of silence
        Signal32 kept = block;              // shares the samples
        block.getWriteChannelPtr(0)[0] = 1; // block clones itself; kept is still silent

    Each channel is aligned to 64 bytes, with a gap to the next. A handle may show
    less than the memory holds (see ensureDimensions): that is how work buffers live on without reallocation
    while block sizes change.

    Binary operations take their size from the left operand. A right operand with fewer channels or samples is
    a programming error (asserted in debug builds).

    Thread: only the reference count is atomic. A handle belongs to one thread at a time, and a signal that is
    shared between threads is not written.
*/
#pragma once

#include "core/MemoryPool.h"

#include <complex>
#include <cstddef>
#include <memory>
#include <span>

namespace vesk::audio
{

/** The memory behind a signal: uninitialised samples, each channel aligned to 64 bytes. The object, the pointers and
    all channels lie in one block, since taking and giving back is most of what a short signal costs. */
template <typename T>
struct SignalData
{
    static std::shared_ptr<SignalData> create(int channelCount, int sampleCount);

    /** Copies all allocated channels and samples. */
    std::shared_ptr<SignalData> clone() const;

    SignalData(const SignalData&) = delete;
    SignalData& operator=(const SignalData&) = delete;

    int numSamples;
    int numChannels;
    int allocatedSamples;
    std::span<T*> channels; ///< where each one starts; null pointers if there are no samples

private:
    struct Layout;
    template <typename Object>
    class Allocator;

public:
    /** For create alone.
        @param room  by reference, as it is known only once the object's own memory is there */
    SignalData(const Layout& layout, std::byte* const& room);
};

template <typename T>
class Signal
{
public:
    Signal() = default;

    /** Samples are left as they come from the allocator. */
    Signal(int channels, int samples);

    /** All samples set to value. T is float or double. */
    Signal(int channels, int samples, T value);

    /** Read pointer of a channel; never clones. Null if there are no samples. */
    const T* getChannelPtr(int channel) const { return data->channels[static_cast<std::size_t>(channel)]; }

    /** Write pointer of a channel. Clones the memory first if it has other owners.
        Precondition: the signal has data. */
    T* getWriteChannelPtr(int channel)
    {
        if (data.use_count() > 1)
            cloneData();
        return data->channels[static_cast<std::size_t>(channel)];
    }

    /** Makes the handle show channels by samples. Within what is allocated only the handle changes: samples
        stay, sharing is not looked at. Beyond it, new uninitialised memory of exactly this size replaces the
        old. */
    void ensureDimensions(int channels, int samples);

    // Arithmetic, for T = float. Raises std::runtime_error ("IPP exception: ...") if a kernel fails.

    Signal& operator*=(float gain);
    Signal& operator+=(const Signal& other);
    Signal operator+(const Signal& other) const;

    /** Product sample by sample. */
    Signal operator*(const Signal& other) const;

    /** first followed by second; the channel count is that of first. */
    static Signal concatenate(const Signal& first, const Signal& second);

    int numChannels = 0;
    int numSamples = 0;
    std::shared_ptr<SignalData<T>> data;

private:
    void cloneData();
};

/** Scaled copy. */
Signal<float> operator*(float gain, const Signal<float>& signal);

class Signal64;

class Signal32 : public Signal<float>
{
public:
    using Signal<float>::Signal;
    Signal32() = default;
    Signal32(const Signal<float>& other) : Signal<float>(other) {}
    Signal32(Signal<float>&& other) noexcept : Signal<float>(std::move(other)) {}

    Signal64 toSignal64() const;

    /** No channels, no samples, no data. */
    static const Signal32 empty;
};

class Signal64 : public Signal<double>
{
public:
    using Signal<double>::Signal;
    Signal64() = default;
    Signal64(const Signal<double>& other) : Signal<double>(other) {}
    Signal64(Signal<double>&& other) noexcept : Signal<double>(std::move(other)) {}

    /** Rounds to nearest. */
    Signal32 toSignal32() const;

    static const Signal64 empty;
};

/** Spectra: interleaved real and imaginary parts, one bin for each element. */
class ComplexSignal32 : public Signal<std::complex<float>>
{
public:
    using Signal<std::complex<float>>::Signal;
    ComplexSignal32() = default;
    ComplexSignal32(const Signal<std::complex<float>>& other) : Signal<std::complex<float>>(other) {}

    /** From polar form; phase in radians. The dimensions are those of magnitude. */
    ComplexSignal32(const Signal<float>& magnitude, const Signal<float>& phase);

    static const ComplexSignal32 empty;
};

class ComplexSignal64 : public Signal<std::complex<double>>
{
public:
    using Signal<std::complex<double>>::Signal;
    ComplexSignal64() = default;

    static const ComplexSignal64 empty;
};

inline const Signal32 Signal32::empty;
inline const Signal64 Signal64::empty;
inline const ComplexSignal32 ComplexSignal32::empty;
inline const ComplexSignal64 ComplexSignal64::empty;

extern template struct SignalData<float>;
extern template struct SignalData<double>;
extern template struct SignalData<std::complex<float>>;
extern template struct SignalData<std::complex<double>>;
extern template class Signal<float>;
extern template class Signal<double>;
extern template class Signal<std::complex<float>>;
extern template class Signal<std::complex<double>>;

} // namespace vesk::audio
