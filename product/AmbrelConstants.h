/**
    The product's names and what it asks of a host. The version comes from the build, which is where it is
    written.
*/
#pragma once

#include <array>

namespace AmbrelConstants
{

inline constexpr const char* bundleName = "Ambrel";
inline constexpr const char* plugInName = "Ambrel";
inline constexpr const char* plugInVersion = AMBREL_VERSION;

/** 'AMBR'. */
inline constexpr unsigned int plugInCode = 0x414d4252;

struct ChannelConfiguration
{
    int inputs;
    int outputs;
};

/** The third is listed but never reached: both directions always carry the same channel set. */
inline constexpr std::array<ChannelConfiguration, 3> channelConfigurations{{{2, 2}, {1, 1}, {1, 2}}};

} // namespace AmbrelConstants
