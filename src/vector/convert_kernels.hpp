// The kernels of the conversions between element types. Each returns StsNoErr, so that the exported function can end in
// a jump to it: on a short vector that counts.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// dst[i] = src[i] in the type of the destination.
template <class S, class D>
using ConvertKernel = Status(const S* src, D* dst, Elem32s len);

// dst[i] = src[i] * factor.
template <class S, class D, class Factor = D>
using ScaleKernel = Status(const S* src, D* dst, Elem32s len, Factor factor);

// dst[i] = src[i] * factor as an integer: to nearest with ties to even, or toward zero.
template <class S, class D>
struct ToIntegerKernels
{
    ScaleKernel<S, D, S>* rounded;
    ScaleKernel<S, D, S>* truncated;
};

// dst[i] = src[i] * 2^(-shift) or 2^shift, limited.
using ShiftKernel = Status(const Elem32s* src, Elem16s* dst, Elem32s len, int shift);

struct ConvertKernels
{
    ConvertKernel<Elem8u, Elem32f>* from8uTo32f;
    ConvertKernel<Elem16s, Elem32f>* from16sTo32f;
    ConvertKernel<Elem32s, Elem32f>* from32sTo32f;
    ConvertKernel<Elem64f, Elem32f>* from64fTo32f;
    ConvertKernel<Elem32s, Elem16s>* from32sTo16s;
    ScaleKernel<Elem16s, Elem32f>* scaled16sTo32f;
    ScaleKernel<Elem32s, Elem32f>* scaled32sTo32f;
    ScaleKernel<Elem16s, Elem64f>* scaled16sTo64f;
    // Whether the kernels to integers give their results in every rounding mode and raise no flag; otherwise they need
    // the mode set to nearest around them.
    bool keepEnvironment;
    ToIntegerKernels<Elem32f, Elem16s> from32fTo16s;
    ToIntegerKernels<Elem32f, Elem32s> from32fTo32s;
    ToIntegerKernels<Elem64f, Elem32s> from64fTo32s;
    ShiftKernel* shiftedRight32sTo16s;
    ShiftKernel* shiftedLeft32sTo16s;
};

LYR_DECLARE_KERNELS(ConvertKernels, convertKernels)

} // namespace lyr
