/**
    The early reflection patterns, as tables. Each row is one burst of noise; ReverberationEarly.cpp tells how
    rows become impulse responses.

    Times and lengths are those of the smallest room and grow with roomSize.
*/
#pragma once

#include <array>
#include <span>

namespace vesk::audio::ReverberationSettings
{

struct Reflection
{
    float time;    ///< ms, arrival of the burst
    float gain;    ///< dB
    float balance; ///< 1: on the input speaker's side, -1: on the other side, 0: even
    float length;  ///< of the burst, in units of a base length
};

inline constexpr std::array roomReflections1 = std::to_array<Reflection>({
    {3, 0, 0.9f, 1},
    {6, 0, -0.9f, 1},
    {7.5f, 0, 0, 1.3f},
    {9, 9, 0.9f, 1.7f},
    {12, 5, -0.9f, 1.7f},
    {15, 6, 0.6f, 2},
    {18, 0, -0.8f, 2.7f},
    {21, 0, 0.8f, 3.1f},
    {22.5f, -1, 0, 3.1f},
    {24, 0, -0.7f, 4.3f},
    {27, 0, 0.7f, 4.9f},
    {30, 0, -0.2f, 4.9f},
});

inline constexpr std::array roomReflections2 = std::to_array<Reflection>({
    {3, -3, 1, 1},
    {4, -3, 0, 1},
    {6, -3, -1, 1.3f},
    {9, 9, 1, 1.5f},
    {10, 3, 0, 1.5f},
    {12, 2, -1, 2},
    {15, 3, 0.8f, 2.7f},
    {16, -1, 0, 2.7f},
    {18, 1, -0.8f, 2.7f},
    {21, 0, 0.7f, 3.1f},
    {22, -2, 0, 3.1f},
    {24, 0, -0.7f, 3.1f},
    {27, 0, 0.5f, 4.9f},
    {30, -1, -0.1f, 4.9f},
});

inline constexpr std::array hallReflections1 = std::to_array<Reflection>({
    {5, 0, 1, 2.5f},
    {10, -3, -1, 2.5f},
    {13, 0, 0, 2.5f},
    {15, 9, 0.8f, 3.5f},
    {20, 0, -0.8f, 3.5f},
    {25, 0, 0.7f, 5},
    {30, -3, -0.7f, 5},
});

inline constexpr std::array hallReflections2 = std::to_array<Reflection>({
    {5, 0, 0.9f, 2.5f},
    {10, -3, -0.9f, 2.5f},
    {15, 9, 0.8f, 3.5f},
    {20, 0, -0.8f, 3.5f},
    {25, 0, 0.7f, 5},
    {30, -3, -0.7f, 5},
});

inline constexpr std::array chamberReflections = std::to_array<Reflection>({
    {2.5f, -3, 0.9f, 1.5f},
    {5, 9, 0.9f, 2.7f},
    {7.5f, -8, -0.9f, 1.5f},
    {10, 2, -0.9f, 2.7f},
    {15, 0, 0.8f, 3.5f},
    {20, 0, -0.8f, 3.5f},
    {25, 0, 0.7f, 5},
    {30, -3, -0.7f, 5},
});

inline constexpr std::array plateReflections1 = std::to_array<Reflection>({
    {0, 3, 0, 4},
    {3, -3, 0, 8},
    {6, -3, 0, 8},
    {9, -3, 0, 8},
    {12, -3, 0, 8},
    {15, -3, 0, 8},
    {18, -3, 0, 8},
    {21, -4, 0, 8},
    {24, -4, 0, 8},
    {27, -6, 0, 8},
    {30, -6, 0, 8},
});

inline constexpr std::array plateReflections2 = std::to_array<Reflection>({
    {0, 6, 1, 4},
    {3, 0, -1, 8},
    {6, 0, 1, 8},
    {9, 0, -1, 8},
    {12, 0, 1, 8},
    {15, 0, -1, 8},
    {18, 0, 1, 8},
    {21, -1, -1, 8},
    {24, -1, 1, 8},
    {27, -3, -1, 8},
    {30, -3, 1, 8},
});

inline constexpr std::array outdoorReflections = std::to_array<Reflection>({
    {3, -6, 0.3f, 2},
    {4.8f, -6, -0.2f, 2},
    {8.1f, -3, 0.6f, 3.3f},
    {12.2f, -6, -0.4f, 3.3f},
    {17.7f, 0, 0.3f, 4.7f},
    {24, -3, -0.2f, 4.7f},
    {30, -6, -0.4f, 6.9f},
    {42, -4, 0.1f, 6.9f},
});

inline constexpr std::array digitalReflections1 = std::to_array<Reflection>({
    {2.5f, -15, 1, 2.5f},
    {5, 3, 1, 2.5f},
    {7.5f, -18, -1, 2.5f},
    {10, 0, -1, 2.5f},
    {12.5f, -6, 1, 2.5f},
    {15, 12, 1, 2.5f},
    {17.5f, -15, -1, 2.5f},
    {20, 3, -1, 2.5f},
    {22.5f, -15, 1, 2.5f},
    {25, 3, 1, 2.5f},
    {27.5f, -18, -1, 2.5f},
    {30, 0, -1, 2.5f},
});

inline constexpr std::array digitalReflections2 = std::to_array<Reflection>({
    {2.5f, -15, 1, 2.5f},  {5, 3, 1, 2.5f},   {7.5f, -18, -1, 2.5f},  {10, 0, -1, 2.5f},
    {12.5f, -6, 1, 2.5f},  {15, 12, 1, 2.5f}, {17.5f, -9, -1, 2.5f},  {20, 9, -1, 2.5f},
    {22.5f, -9, 1, 2.5f},  {25, 9, 1, 2.5f},  {27.5f, -12, -1, 2.5f}, {30, 6, -1, 2.5f},
    {32.5f, -15, 1, 2.5f}, {35, 3, 1, 2.5f},  {37.5f, -15, -1, 2.5f}, {40, 3, -1, 2.5f},
    {42.5f, -15, 1, 2.5f}, {45, -3, 1, 2.5f}, {47.5f, -12, -1, 2.5f}, {50, -6, -1, 2.5f},
});

inline constexpr std::array tiledReflections1 = std::to_array<Reflection>({
    {5, 3, 1, 3},
    {10, 0, -1, 3},
    {15, 6, 1, 3.3f},
    {20, 3, -1, 3.3f},
    {25, 3, 1, 3.6f},
    {30, 0, -1, 3.6f},
    {35, 0, 1, 3.9f},
    {40, -3, -1, 3.9f},
    {45, -3, 1, 4.1f},
    {50, -6, -1, 4.1f},
    {55, -6, 1, 4.4f},
    {60, -9, -1, 4.4f},
});

struct Pattern
{
    const char* name;
    std::span<const Reflection> reflections; ///< at least two, in order of time
};

/** By the value of the parameter earlyPattern. */
inline constexpr std::array<Pattern, 11> earlyPatterns{{
    {"roomReflections1", roomReflections1},
    {"roomReflections2", roomReflections2},
    {"hallReflections1", hallReflections1},
    {"hallReflections2", hallReflections2},
    {"chamberReflections", chamberReflections},
    {"plateReflections1", plateReflections1},
    {"plateReflections2", plateReflections2},
    {"outdoorReflections", outdoorReflections},
    {"digitalReflections1", digitalReflections1},
    {"digitalReflections2", digitalReflections2},
    {"tiledReflections1", tiledReflections1},
}};

} // namespace vesk::audio::ReverberationSettings
