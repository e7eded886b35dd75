#include "dsp/FourierTransform.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

TEST(FourierTransform, FollowsTheDefinitionAndItsInverseAtEveryLength)
{
    FourierTransform transform;
    for (const int length : {4, 8, 16, 64, 512, 128, 1024})
    {
        SCOPED_TRACE(length);
        const Signal32 input = makeNoiseSignal(2, length, static_cast<unsigned>(length));
        ComplexSignal32 spectrum(2, length / 2 + 1);
        transform.forwardReal(input, spectrum);
        const double tolerance = 1e-6 * length;
        for (int c = 0; c < 2; ++c)
            for (int bin = 0; bin <= length / 2; ++bin)
            {
                const std::complex<double> actual = spectrum.getChannelPtr(c)[bin];
                const auto expected = spectrumAt(getChannel(input, c), static_cast<double>(bin) / length);
                ASSERT_LT(std::abs(actual - expected), tolerance) << "bin " << bin;
            }

        const Signal32 back = transform.inverseReal(spectrum);
        ASSERT_EQ(back.numSamples, length);
        for (int c = 0; c < 2; ++c)
            EXPECT_LT(
                maxDifference(toVector((1.0f / static_cast<float>(length)) * back, c), toVector(input, c)),
                1e-6);
    }
}

TEST(FourierTransform, BuildsTablesOnlyForANewLengthFromEitherDirection)
{
    FourierTransform transform;
    Signal32 samples = transform.inverseReal(ComplexSignal32(1, 129, {1.0f, 0.0f}));
    const auto* tables = transform.realSpec;
    ASSERT_NE(tables, nullptr);
    EXPECT_EQ(transform.size, 256);
    EXPECT_EQ(transform.order, 8);

    // A flat spectrum is an impulse of N, and back.
    EXPECT_NEAR(samples.getChannelPtr(0)[0], 256.0f, 1e-3f);
    ComplexSignal32 spectrum(1, 129);
    transform.forwardReal(samples, spectrum);
    EXPECT_EQ(transform.realSpec, tables);
    for (int bin = 0; bin < 129; ++bin)
        EXPECT_NEAR(std::abs(spectrum.getChannelPtr(0)[bin] - 256.0f), 0.0f, 1e-3f);

    transform.inverseReal(ComplexSignal32(1, 65, {1.0f, 0.0f}));
    EXPECT_EQ(transform.size, 128);
}
