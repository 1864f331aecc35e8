#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// dst[i] = dividend[i] / divisor[i]; whether any divisor was zero. In a group of four, from the first element on, that
// holds such a one, `nan` is the result where a divisor of zero or NaN makes it no number.
template <class T>
using DivideKernel = bool(const T* divisor, const T* dividend, T* dst, Elem32s len, T nan);

struct DivideKernels
{
    DivideKernel<Elem32f>* divide32f;
    DivideKernel<Elem64f>* divide64f;
};

LYR_DECLARE_KERNELS(DivideKernels, divideKernels)

} // namespace lyr
