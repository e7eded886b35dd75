#include "core/Signal.h"
#include "core/kernels.h"
#include "tests/core/TestSignals.h"

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <set>

namespace vesk::audio
{
namespace
{

using test::makeSignal;
using test::toVector;

template <typename T>
class SignalOf : public testing::Test
{
protected:
    /** Two channels whose samples tell channel and index. */
    static Signal<T> makeCounting(int samples)
    {
        Signal<T> signal(2, samples);
        for (int c = 0; c < 2; ++c)
            for (int i = 0; i < samples; ++i)
                signal.getWriteChannelPtr(c)[i] = T(static_cast<float>(1000 * c + i));
        return signal;
    }

    static bool isCounting(const Signal<T>& signal, int channel, int samples)
    {
        for (int i = 0; i < samples; ++i)
            if (signal.getChannelPtr(channel)[i] != T(static_cast<float>(1000 * channel + i)))
                return false;
        return true;
    }
};

using SampleTypes = testing::Types<float, double, std::complex<float>, std::complex<double>>;
TYPED_TEST_SUITE(SignalOf, SampleTypes, );

TYPED_TEST(SignalOf, ChannelsAreSeparateAlignedBlocks)
{
    for (const int samples : {0, 1, 3, 17, 4096})
        for (const int channels : {0, 1, 2, 9})
        {
            const Signal<TypeParam> signal(channels, samples);
            EXPECT_EQ(signal.numChannels, channels);
            EXPECT_EQ(signal.numSamples, samples);
            EXPECT_EQ(signal.data->allocatedSamples, samples);
            std::set<const void*> blocks;
            for (int c = 0; c < channels; ++c)
            {
                const auto* block = signal.getChannelPtr(c);
                EXPECT_EQ(block == nullptr, samples == 0);
                EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 64, 0u);
                blocks.insert(block);
            }
            EXPECT_EQ(blocks.size(), samples == 0 ? std::size_t(channels > 0) : std::size_t(channels));
        }
}

TYPED_TEST(SignalOf, WritingToACopyClonesAllOfIt)
{
    for (const int written : {0, 1})
    {
        const auto source = this->makeCounting(100);
        auto copy = source;
        EXPECT_EQ(copy.data, source.data) << "copying shares";

        copy.getWriteChannelPtr(written)[50] = TypeParam(-1.0f);
        const auto own = copy.data;
        EXPECT_NE(own, source.data);
        EXPECT_EQ(source.data.use_count(), 1);
        EXPECT_TRUE(this->isCounting(source, 0, 100) && this->isCounting(source, 1, 100));
        EXPECT_EQ(copy.getChannelPtr(written)[50], TypeParam(-1.0f));
        EXPECT_TRUE(this->isCounting(copy, 1 - written, 100)) << "the other channel came along";
        EXPECT_TRUE(this->isCounting(copy, written, 50));
    }
}

TYPED_TEST(SignalOf, ASoleOwnerWritesInPlace)
{
    auto signal = this->makeCounting(64);
    const auto* before = signal.getChannelPtr(1);
    {
        auto copy = signal;
        EXPECT_EQ(copy.getChannelPtr(1), before) << "reading never clones";
    }
    EXPECT_EQ(signal.getWriteChannelPtr(1), before) << "the copy is gone again";
}

TYPED_TEST(SignalOf, EnsureDimensionsWithinTheAllocationMovesTheWindowOnly)
{
    auto signal = this->makeCounting(100);
    const auto* block = signal.getChannelPtr(1);

    signal.ensureDimensions(1, 10);
    EXPECT_EQ(signal.numChannels, 1);
    EXPECT_EQ(signal.numSamples, 10);
    auto clone = signal;
    clone.getWriteChannelPtr(0); // a clone takes all that is allocated, not the window
    clone.ensureDimensions(2, 100);
    EXPECT_TRUE(this->isCounting(clone, 0, 100) && this->isCounting(clone, 1, 100));

    signal.ensureDimensions(2, 100);
    EXPECT_EQ(signal.getChannelPtr(1), block);
    EXPECT_TRUE(this->isCounting(signal, 0, 100) && this->isCounting(signal, 1, 100));

    auto wider = signal, longer = signal;
    wider.ensureDimensions(3, 1);
    EXPECT_NE(wider.data, signal.data);
    EXPECT_EQ(wider.data->numSamples, 1);
    longer.ensureDimensions(1, 101);
    EXPECT_NE(longer.data, signal.data);
    EXPECT_EQ(longer.data->numChannels, 1);

    Signal<TypeParam> fresh;
    fresh.ensureDimensions(2, 7);
    EXPECT_EQ(fresh.data->numSamples, 7);
}

TEST(Signal, FilledAndEmptySignals)
{
    const Signal32 filled(3, 37, 0.25f);
    for (int c = 0; c < 3; ++c)
        EXPECT_EQ(toVector(filled, c), std::vector<float>(37, 0.25f));
    EXPECT_EQ(Signal64(1, 5, 0.1).getChannelPtr(0)[4], 0.1);

    const Signal32 none(2, 0, 1.0f);
    EXPECT_EQ(none.numChannels, 2);
    EXPECT_EQ(none.getChannelPtr(1), nullptr);

    EXPECT_EQ(Signal32::empty.numChannels + Signal32::empty.numSamples, 0);
    EXPECT_TRUE(Signal32::empty.data == nullptr && Signal64::empty.data == nullptr &&
                ComplexSignal32::empty.data == nullptr && ComplexSignal64::empty.data == nullptr);
}

TEST(Signal, OperatorsOnNoSamplesDoNothing)
{
    Signal32 none(2, 0);
    EXPECT_NO_THROW(none *= 2.0f);
    EXPECT_NO_THROW(none += none);
    EXPECT_EQ((none + none).numChannels, 2);
    EXPECT_EQ((none * none).numSamples, 0);
    EXPECT_EQ((2.0f * none).numSamples, 0);
    EXPECT_EQ(none.toSignal64().toSignal32().numChannels, 2);
    EXPECT_EQ(ComplexSignal32(none, none).numSamples, 0);
    EXPECT_EQ(Signal32::concatenate(none, none).numSamples, 0);
    EXPECT_NO_THROW(Signal32::empty + Signal32::empty);
}

TEST(Signal, ArithmeticLeavesOperandsAndSharersAlone)
{
    const auto a = makeSignal({{1, 2, 3}, {-4, 5, -6}}), b = makeSignal({{10, 20, 30}, {0.5f, 0, 2}});
    const auto expectChannels =
        [](const Signal<float>& signal, std::vector<float> first, std::vector<float> second)
    {
        EXPECT_EQ(toVector(signal, 0), first);
        EXPECT_EQ(toVector(signal, 1), second);
    };
    expectChannels(a + b, {11, 22, 33}, {-3.5f, 5, -4});
    expectChannels(a * b, {10, 40, 90}, {-2, 0, -12});
    expectChannels(-2.0f * a, {-2, -4, -6}, {8, -10, 12});

    auto changed = a; // shares its memory, and is cloned in the middle of the operation
    changed += b;
    expectChannels(changed, {11, 22, 33}, {-3.5f, 5, -4});
    changed += changed;
    expectChannels(changed, {22, 44, 66}, {-7, 10, -8});
    auto scaled = a;
    scaled *= 0.5f;
    expectChannels(scaled, {0.5f, 1, 1.5f}, {-2, 2.5f, -3});
    expectChannels(a, {1, 2, 3}, {-4, 5, -6});

    auto window = b; // the left operand's size decides
    window.ensureDimensions(1, 2);
    EXPECT_EQ(toVector(window + a, 0), (std::vector<float>{11, 22}));
}

TEST(Signal, ConcatenateJoinsInTime)
{
    const auto a = makeSignal({{1, 2}, {3, 4}}), b = makeSignal({{5}, {6}});
    const Signal32 none(2, 0);
    EXPECT_EQ(toVector(Signal32::concatenate(a, b), 0), (std::vector<float>{1, 2, 5}));
    EXPECT_EQ(toVector(Signal32::concatenate(a, b), 1), (std::vector<float>{3, 4, 6}));
    EXPECT_EQ(toVector(Signal32::concatenate(a, none), 1), (std::vector<float>{3, 4}));
    EXPECT_EQ(toVector(Signal32::concatenate(none, b), 1), (std::vector<float>{6}));
    EXPECT_NE(Signal32::concatenate(a, none).data, a.data);
}

TEST(Signal, Conversions)
{
    const auto signal = makeSignal({{0.1f, -1e-30f}, {3e38f, 0.0f}});
    const Signal64 wide = signal.toSignal64();
    EXPECT_EQ(wide.getChannelPtr(0)[0], static_cast<double>(0.1f));
    EXPECT_EQ(toVector(wide.toSignal32(), 0), toVector(signal, 0));
    EXPECT_EQ(toVector(wide.toSignal32(), 1), toVector(signal, 1));
    EXPECT_EQ(Signal64(1, 1, 1.0 + 0x1.8p-24).toSignal32().getChannelPtr(0)[0], 1.0f + 0x1p-23f)
        << "to nearest";

    const auto magnitude = makeSignal({{2, 3}, {1, 0}}), phase = makeSignal({{0, 1.5707964f}, {-0.5f, 9}});
    const ComplexSignal32 polar(magnitude, phase);
    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < 2; ++i)
        {
            const auto expected = std::polar(static_cast<double>(magnitude.getChannelPtr(c)[i]),
                                             static_cast<double>(phase.getChannelPtr(c)[i]));
            EXPECT_NEAR(polar.getChannelPtr(c)[i].real(), expected.real(), 1e-6);
            EXPECT_NEAR(polar.getChannelPtr(c)[i].imag(), expected.imag(), 1e-6);
        }
}

} // namespace
} // namespace vesk::audio
