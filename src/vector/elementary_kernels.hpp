#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// dst[i] = f(src[i]). The vectors are the same or do not overlap.
template <class S, class D>
using FunctionKernel = void(const S* src, D* dst, Elem32s len);

struct ElementaryKernels
{
    FunctionKernel<Elem32f, Elem32f>* expNegSqr32f;
    FunctionKernel<Elem32f, Elem64f>* expNegSqr32f64f;
    FunctionKernel<Elem64f, Elem64f>* expNegSqr64f;
    FunctionKernel<Elem32f, Elem32f>* sinc32f;
    FunctionKernel<Elem32f, Elem64f>* sinc32f64f;
    FunctionKernel<Elem64f, Elem64f>* sinc64f;
};

LYR_DECLARE_KERNELS(ElementaryKernels, elementaryKernels)

} // namespace lyr
