// The kernels of the element-wise fixed-point operations.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// dst[i] = a[i] * b[i] * 2^(-shift), or 2^shift, limited.
using MultiplyKernel = void(const Elem16s* a, const Elem16s* b, Elem16s* dst, Elem32s len, int shift);

struct FixedKernels
{
    MultiplyKernel* multiply;
    MultiplyKernel* multiplyShiftedRight;
    MultiplyKernel* multiplyShiftedLeft;
    // dst[i] = |src[i]| * factor, limited and rounded by the mode in force.
    void (*magnitude)(const Elem32sc* src, Elem32s* dst, Elem32s len, Elem64f factor);
};

LYR_DECLARE_KERNELS(FixedKernels, fixedKernels)

} // namespace lyr
