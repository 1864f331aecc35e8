#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// dst[i] = val
template <class T>
using FillKernel = void(T val, T* dst, Elem32s len);

struct FillKernels
{
    FillKernel<Elem16s>* fill16s;
    FillKernel<Elem32s>* fill32s;
    FillKernel<Elem32f>* fill32f;
    FillKernel<Elem64f>* fill64f;
};

LYR_DECLARE_KERNELS(FillKernels, fillKernels)

} // namespace lyr
