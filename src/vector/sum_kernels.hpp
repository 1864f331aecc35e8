// The kernels of the sums and dot products. Those of floating point write the result themselves and return StsNoErr, so
// that the exported function can end in a jump to them: on a short vector that counts.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

template <class T>
using ExactSumKernel = Elem64s(const T* src, Elem32s len);

template <class T, class R>
using DotKernel = Status(const T* a, const T* b, Elem32s len, R* result);

struct SumKernels
{
    Status (*fast32f)(const Elem32f* src, Elem32s len, Elem32f* result);
    ExactSumKernel<Elem16s>* exact16s;
    ExactSumKernel<Elem32s>* exact32s;
    DotKernel<Elem32f, Elem32f>* dot32f;
    DotKernel<Elem64f, Elem64f>* dot64f;
    DotKernel<Elem32f, Elem64f>* dot32f64f;
    DotKernel<Elem16s, Elem64s>* dot16s64s;
    DotKernel<Elem16s, Elem32f>* dot16s32f;
};

LYR_DECLARE_KERNELS(SumKernels, sumKernels)

} // namespace lyr
