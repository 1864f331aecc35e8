#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

struct ReciprocalKernels
{
    // dst[i] = 1 / src[i]; a zero raises the invalid flag and gives an infinity of its sign.
    void (*reciprocal)(const Elem32f* src, Elem32f* dst, Elem32s len);
    // An infinity of its sign in the place of each default NaN.
    void (*replaceDefaultNan)(Elem32f* dst, Elem32s len);
};

LYR_DECLARE_KERNELS(ReciprocalKernels, reciprocalKernels)

} // namespace lyr
