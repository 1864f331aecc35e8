// The kernels of the accumulation of single frames.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// With d = x[i] - center[i]: mean[i] += d * val and var[i] += d * (d * val).
template <class T>
using AccumulateKernel = void(const T* x, const T* center, T* mean, T* var, Elem32s len, T val);

struct ColumnAccumulateKernels
{
    AccumulateKernel<Elem32f>* accumulate32f;
    AccumulateKernel<Elem64f>* accumulate64f;
};

LYR_DECLARE_KERNELS(ColumnAccumulateKernels, columnAccumulateKernels)

} // namespace lyr
