// The kernels of the sums and dot products.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

template <class T, class R>
using SumKernel = R(const T* src, Elem32s len);

template <class T, class R>
using DotKernel = R(const T* a, const T* b, Elem32s len);

struct SumKernels
{
    SumKernel<Elem32f, Elem32f>* fast32f;
    SumKernel<Elem16s, Elem64s>* exact16s;
    SumKernel<Elem32s, Elem64s>* exact32s;
    DotKernel<Elem32f, Elem32f>* dot32f;
    DotKernel<Elem64f, Elem64f>* dot64f;
    DotKernel<Elem32f, Elem64f>* dot32f64f;
    DotKernel<Elem16s, Elem64s>* dot16s;
};

LYR_DECLARE_KERNELS(SumKernels, sumKernels)

} // namespace lyr
