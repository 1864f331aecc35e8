// The kernels of the natural logarithms. Each returns the status that the first zero or negative element decides.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

struct LogKernels
{
    Status (*ln32f)(Elem32f* srcDst, Elem32s len);
    // dst[i] = the integer nearest to ln src[i], shifted right.
    Status (*nearest32s)(const Elem32s* src, Elem32s* dst, Elem32s len, int shift);
    // dst[i] = ln src[i] * factor, limited and rounded by the mode in force.
    Status (*scaled32s)(const Elem32s* src, Elem32s* dst, Elem32s len, Elem32f factor);
};

LYR_DECLARE_KERNELS(LogKernels, logKernels)

} // namespace lyr
