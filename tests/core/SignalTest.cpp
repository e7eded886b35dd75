#include "core/Signal.h"
#include "tests/core/TestSignals.h"

#include <gtest/gtest.h>

#include <complex>
#include <cstdint>
#include <set>

namespace vesk::audio
{
namespace
{

using test::makeNoiseSignal;
using test::toVectors;

template <typename T>
class SignalOf : public testing::Test
{
protected:
    static T sampleOf(int channel, int index) { return T(static_cast<float>(1000 * channel + index)); }

    /** Two channels whose samples tell channel and index. */
    static Signal<T> makeCounting(int samples)
    {
        Signal<T> signal(2, samples);
        for (int c = 0; c < 2; ++c)
            for (int i = 0; i < samples; ++i)
                signal.getWriteChannelPtr(c)[i] = sampleOf(c, i);
        return signal;
    }

    static bool isCounting(const Signal<T>& signal, int channel, int samples)
    {
        for (int i = 0; i < samples; ++i)
            if (signal.getChannelPtr(channel)[i] != sampleOf(channel, i))
                return false;
        return true;
    }

    static bool isCounting(const Signal<T>& signal)
    {
        return isCounting(signal, 0, 100) && isCounting(signal, 1, 100);
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

TYPED_TEST(SignalOf, WritingClonesAllOfItWhileThereAreOtherOwners)
{
    for (const int written : {0, 1})
    {
        auto source = this->makeCounting(100);
        const auto* block = source.getChannelPtr(written);
        {
            auto copy = source;
            EXPECT_EQ(std::as_const(copy).getChannelPtr(written), block) << "copying and reading share";
            copy.getWriteChannelPtr(written)[50] = TypeParam(-1.0f);
            EXPECT_EQ(source.data.use_count(), 1);
            EXPECT_TRUE(this->isCounting(source));
            EXPECT_EQ(copy.getChannelPtr(written)[50], TypeParam(-1.0f));
            EXPECT_TRUE(this->isCounting(copy, 1 - written, 100)) << "the other channel came along";
            EXPECT_TRUE(this->isCounting(copy, written, 50));
            copy = source;
        }
        EXPECT_EQ(source.getWriteChannelPtr(written), block) << "the copy is gone again";
    }
}

TYPED_TEST(SignalOf, EnsureDimensionsWithinTheAllocationMovesTheWindowOnly)
{
    auto signal = this->makeCounting(100);
    const auto* block = signal.getChannelPtr(1);

    signal.ensureDimensions(1, 10);
    auto clone = signal;
    clone.getWriteChannelPtr(0); // a clone takes all that is allocated, not the window
    clone.ensureDimensions(2, 100);
    EXPECT_TRUE(this->isCounting(clone));

    signal.ensureDimensions(2, 100);
    EXPECT_EQ(signal.getChannelPtr(1), block);
    EXPECT_TRUE(this->isCounting(signal));

    for (const auto& [channels, samples] : {std::pair(3, 1), {1, 101}})
        for (auto larger : {signal, Signal<TypeParam>()})
        {
            larger.ensureDimensions(channels, samples);
            EXPECT_NE(larger.data, signal.data);
            EXPECT_EQ(larger.data->numChannels, channels);
            EXPECT_EQ(larger.data->numSamples, samples);
        }
}

TEST(Signal, EmptySignalsTakePartInEverything)
{
    EXPECT_TRUE(Signal32::empty.data == nullptr && Signal64::empty.data == nullptr &&
                ComplexSignal32::empty.data == nullptr && ComplexSignal64::empty.data == nullptr);
    EXPECT_NO_THROW(Signal32::empty + Signal32::empty);

    Signal32 none(2, 0, 1.0f);
    EXPECT_EQ(none.getChannelPtr(1), nullptr);
    EXPECT_NO_THROW(none *= 2.0f);
    EXPECT_NO_THROW(none += none);
    EXPECT_EQ(ComplexSignal32(none, none).numSamples, 0);
    for (const Signal32& result :
         {Signal32(none + none), Signal32(none * none), Signal32(2.0f * none), none.toSignal64().toSignal32(),
          Signal32(Signal32::concatenate(none, none))})
        EXPECT_EQ(toVectors(result), toVectors(none));
}

TEST(Signal, ArithmeticLeavesOperandsAndSharersAlone)
{
    const auto a = makeNoiseSignal(2, 37, 1), b = makeNoiseSignal(2, 37, 2);
    const auto originals = std::pair(toVectors(a), toVectors(b));
    const auto expect = [&](const Signal<float>& result, auto operation)
    {
        for (int c = 0; c < result.numChannels; ++c)
            for (int i = 0; i < result.numSamples; ++i)
                ASSERT_EQ(result.getChannelPtr(c)[i],
                          operation(a.getChannelPtr(c)[i], b.getChannelPtr(c)[i]));
    };
    const auto sum = [](float x, float y) { return x + y; };
    expect(a + b, sum);
    expect(a * b, [](float x, float y) { return x * y; });
    expect(-2.0f * a, [](float x, float) { return -2.0f * x; });

    auto changed = a; // shares its memory, and is cloned in the middle of the operation
    changed += b;
    expect(changed, sum);
    changed = a;
    changed += changed;
    expect(changed, [](float x, float) { return x + x; });
    changed = a;
    changed *= 0.5f;
    expect(changed, [](float x, float) { return 0.5f * x; });

    auto window = a; // the left operand's size decides
    window.ensureDimensions(1, 2);
    expect(window + b, sum);
    EXPECT_EQ((window + b).numSamples, 2);
    EXPECT_EQ(std::pair(toVectors(a), toVectors(b)), originals);
}

TEST(Signal, Conversions)
{
    const auto signal = makeNoiseSignal(2, 37, 1), phase = makeNoiseSignal(2, 37, 2);
    EXPECT_EQ(toVectors(signal.toSignal64().toSignal32()), toVectors(signal));
    const ComplexSignal32 polar(signal, phase);
    for (int c = 0; c < 2; ++c)
        for (int i = 0; i < 37; ++i)
            EXPECT_LT(std::abs(polar.getChannelPtr(c)[i] -
                               signal.getChannelPtr(c)[i] * std::polar(1.0f, phase.getChannelPtr(c)[i])),
                      1e-6f);
}

} // namespace
} // namespace vesk::audio
