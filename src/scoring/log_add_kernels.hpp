// The kernels of log-addition and log-sum.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// srcDst[i] = log(exp(src[i]) + exp(srcDst[i])).
template <class T>
using LogAddKernel = void(const T* src, T* srcDst, Elem32s len);

// The log of the sum of the exponentials of x, len at least 1.
template <class T>
using LogSumKernel = T(const T* x, Elem32s len);

struct LogAddKernels
{
    LogAddKernel<Elem32f>* accurate32f; // LogAddVec_32f_ac
    LogAddKernel<Elem32f>* single32f;   // LogAddVec_32f_sp
    LogAddKernel<Elem64f>* double64f;   // LogAddVec_64f
    LogSumKernel<Elem32f>* sum32f;
    LogSumKernel<Elem64f>* sum64f;
};

LYR_DECLARE_KERNELS(LogAddKernels, logAddKernels)

} // namespace lyr
