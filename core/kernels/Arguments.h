/** What the public faces of the kernels do with their arguments. */
#pragma once

#include "core/kernels.h"

#include <cstddef>

namespace vesk::audio::kernels
{

/** The rules that hold for every kernel on arrays. */
template <typename... Arrays>
IppStatus checkArrays(int n, const Arrays*... arrays)
{
    if (((arrays == nullptr) || ...))
        return ippStsNullPtrErr;
    return n < 1 ? ippStsSizeErr : ippStsNoErr;
}

constexpr std::size_t toSize(int n) { return static_cast<std::size_t>(n); }

} // namespace vesk::audio::kernels
