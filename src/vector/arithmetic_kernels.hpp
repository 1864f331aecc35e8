// The kernels of element-wise sums and products.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// dst[i] = op(a[i]), op(a[i], b[i]) or op(a[i], c). The vectors may be the same.
template <class T>
using UnaryKernel = void(const T* a, T* dst, Elem32s len);
template <class T>
using BinaryKernel = void(const T* a, const T* b, T* dst, Elem32s len);
template <class T>
using ConstantKernel = void(const T* a, T c, T* dst, Elem32s len);

struct ArithmeticKernels
{
    UnaryKernel<Elem64f>* abs64f;
    BinaryKernel<Elem32f>* add32f;
    BinaryKernel<Elem64f>* add64f;
    BinaryKernel<Elem32f>* sub32f;
    BinaryKernel<Elem64f>* sub64f;
    BinaryKernel<Elem32f>* mul32f;
    ConstantKernel<Elem32f>* addConstant32f;
    ConstantKernel<Elem32f>* mulConstant32f;
    ConstantKernel<Elem64f>* mulConstant64f;
};

LYR_DECLARE_KERNELS(ArithmeticKernels, arithmeticKernels)

} // namespace lyr
