// The kernels of largest and smallest elements.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// The extreme that a scan from the first element finds by strict comparison: an element that is not a number is passed
// over, unless it is the first one, which nothing is better than. Results go through pointers: the 32-bit calling
// convention returns numbers in an x87 register, and the load there makes a signalling NaN a quiet one.
template <class T>
using ExtremeKernel = void(const T* p, Elem32s len, T* result);

// The same, and where it first occurs.
template <class T>
using ExtremeIndexKernel = void(const T* p, Elem32s len, T* result, Elem32s* index);

using MinMaxKernel = void(const Elem32f* p, Elem32s len, Elem32f* min, Elem32f* max);

// dst[i] = a[i] where that is strictly better.
template <class T>
using EveryKernel = void(const T* a, T* dst, Elem32s len);

struct ExtremaKernels
{
    ExtremeKernel<Elem32f>* max32f;
    ExtremeKernel<Elem64f>* max64f;
    ExtremeKernel<Elem32f>* min32f;
    ExtremeKernel<Elem64f>* min64f;
    MinMaxKernel* minMax32f;
    ExtremeIndexKernel<Elem32f>* maxIndex32f;
    ExtremeIndexKernel<Elem64f>* maxIndex64f;
    ExtremeIndexKernel<Elem32f>* minIndex32f;
    EveryKernel<Elem32f>* maxEvery32f;
    EveryKernel<Elem32f>* minEvery32f;
    EveryKernel<Elem32s>* minEvery32s;
};

LYR_DECLARE_KERNELS(ExtremaKernels, extremaKernels)

} // namespace lyr
