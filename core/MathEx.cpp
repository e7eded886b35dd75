#include "core/MathEx.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstdlib>

namespace vesk::MathEx
{

float toDecibel(float x) { return static_cast<float>(20.0 * std::log10(static_cast<double>(x))); }

float fromDecibel(float db)
{
    const float exponent = db / 20.0f;
    return static_cast<float>(std::pow(10.0, static_cast<double>(exponent)));
}

int findLargerPowerOfTwo(int n)
{
    constexpr int largest = 1 << 30;
    return n < largest ? static_cast<int>(std::bit_ceil(static_cast<unsigned>(std::max(n, 1)))) : largest;
}

int findNearestPowerOfTwo(int n)
{
    const int larger = findLargerPowerOfTwo(n);
    const int smaller = larger / 2;
    return std::abs(larger - n) < std::abs(smaller - n) ? larger : smaller;
}

int log2(int n)
{
    assert(n >= 0);
    int result = 0;
    while (n > 1)
    {
        n >>= 1;
        ++result;
    }
    return result;
}

float reverbTimeToGain(float reverbTime, float time)
{
    const float exponent = -time / reverbTime;
    return static_cast<float>(std::pow(1000.0, static_cast<double>(exponent)));
}

} // namespace vesk::MathEx
