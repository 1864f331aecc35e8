// The kernels of the sums of logarithms.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// A product as mantissa * 2^exponent.
struct LogProduct
{
    Elem64f mantissa; // of `n` factors, at least 2^(-n - 8)
    Elem64s exponent;
    bool isNormal; // false: an element is no positive normal number, and the product means nothing
};

template <class T>
using ProductKernel = LogProduct(const T* src, int n);

struct SumLogKernels
{
    ProductKernel<Elem32f>* product32f; // of singles widened to double, so that subnormal ones are normal
    ProductKernel<Elem64f>* product64f;
};

LYR_DECLARE_KERNELS(SumLogKernels, sumLogKernels)

} // namespace lyr
