#include "dsp/FourierTransform.h"

#include "tests/dsp/Measures.h"

#include <gtest/gtest.h>

using namespace vesk::audio;
using namespace vesk::audio::test;

TEST(FourierTransform, FollowsTheDefinitionAndItsInverseAtEveryLength)
{
    FourierTransform transform;
    FourierTransform sizedBySpectra;
    for (const int length : {4, 8, 64, 512, 128, 1024})
    {
        SCOPED_TRACE(length);
        const Signal32 input = makeNoiseSignal(2, length, 3);
        ComplexSignal32 spectrum(2, length / 2 + 1);
        transform.forwardReal(input, spectrum);
        const auto* tables = transform.realSpec;
        const Signal32 back = (1.0f / static_cast<float>(length)) * transform.inverseReal(spectrum);
        EXPECT_EQ(transform.realSpec, tables) << "tables built anew for the same length";
        const Signal32 equal = (1.0f / static_cast<float>(length)) * sizedBySpectra.inverseReal(spectrum);
        for (int c = 0; c < 2; ++c)
        {
            for (int bin = 0; bin <= length / 2; ++bin)
            {
                const auto expected = spectrumAt(getChannel(input, c), static_cast<double>(bin) / length);
                const std::complex<double> actual = spectrum.getChannelPtr(c)[bin];
                ASSERT_LT(std::abs(actual - expected), 1e-6 * length) << "bin " << bin;
            }
            EXPECT_LT(maxDifference(getChannel(back, c), getChannel(input, c)), 1e-6);
            EXPECT_EQ(toVector(equal, c), toVector(back, c));
        }
    }
}
