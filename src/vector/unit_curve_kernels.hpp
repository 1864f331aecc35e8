#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

struct UnitCurveKernels
{
    void (*curve32f)(const Elem32f* src, Elem32f* dst, Elem32s len);
    // Elements with `fraction` fractional bits, 0 to 14. The curve in twice as many is shifted right by `shift`, left
    // where that is negative.
    void (*curve16s)(const Elem16s* src, Elem16s* dst, Elem32s len, int fraction, Elem64s shift);
};

LYR_DECLARE_KERNELS(UnitCurveKernels, unitCurveKernels)

} // namespace lyr
