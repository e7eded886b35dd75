#include "core/DspCore.h"

#include "core/kernels.h"

namespace vesk::audio
{

DspCore::DspCore()
{
    // Nothing can be reported from here, and every kernel works without it, only slower.
    ippInit();
    ippSetFlushToZero(1, nullptr);
    ippSetDenormAreZeros(1);
    ippSetNumThreads(1);
}

} // namespace vesk::audio
