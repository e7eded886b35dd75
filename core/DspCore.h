/**
    Start-up of the numeric environment, once for each loaded image: the kernels choose their implementation,
    and the loading thread turns denormal numbers to zero.

    globalDspCore is an inline variable so that no linker can leave it out of a product that uses an engine.
    It follows the signals' empty constants, which the include below puts before it.
*/
#pragma once

#include "core/Signal.h"

namespace vesk::audio
{

class DspCore
{
public:
    DspCore();
};

inline const DspCore globalDspCore;

} // namespace vesk::audio
