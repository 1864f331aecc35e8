#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

struct SpectrumKernels
{
    // dst[i] = |src[i]| of complex elements, real part first. dst may stand at the start of src.
    void (*magnitude32f)(const Elem32f* src, Elem32f* dst, Elem32s len);
    // The Pack spectrum dst = src * conj(dst) with, for each pair (a, b) of src and (c, d) of dst, (a c + b d, b c - a
    // d).
    void (*mulPackConj32f)(const Elem32f* src, Elem32f* dst, Elem32s len);
};

LYR_DECLARE_KERNELS(SpectrumKernels, spectrumKernels)

} // namespace lyr
