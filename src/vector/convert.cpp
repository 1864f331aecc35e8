// Conversions of vectors between element types.

#include "frame/check.hpp"
#include "frame/rounding.hpp"
#include "frame/scale.hpp"
#include "lyrsr.h"
#include "vector/convert_kernels.hpp"

#include <algorithm>

using lyr::ConversionScope;
using lyr::GetScale_32s32f;
using lyr::GetScale_32s64f;
using lyr::ToIntegerKernels;

namespace {

const lyr::ConvertKernels kernels = LYR_SELECT_KERNELS(convertKernels);

// A power of two of single precision for doubles, too: a large scale factor makes it 0 or an infinity, as meant.
template <class Kernel, class S, class D>
[[gnu::noinline]] Status scaledToIntegers(Kernel* kernel, const S* src, D* dst, Elem32s len, Elem32s rndMode,
                                          Elem32s scaleFactor)
{
    const Elem32f factor = GetScale_32s32f(scaleFactor);
    if (kernels.keepEnvironment) {
        return kernel(src, dst, len, factor);
    }
    if (rndMode != 0) {
        const ConversionScope nearest(lyr::roundNearest);
        return kernel(src, dst, len, factor);
    }
    const ConversionScope current;
    return kernel(src, dst, len, factor);
}

// rndMode 0 truncates and leaves the caller's rounding mode alone; any other value rounds to nearest, whatever that
// mode is. Overflow leaves no trace in the invalid flag.
template <class S, class D>
Status toIntegers(const ToIntegerKernels<S, D>& to, const S* src, D* dst, Elem32s len, Elem32s rndMode,
                  Elem32s scaleFactor)
{
    const auto kernel = rndMode != 0 ? to.rounded : to.truncated;
    if (kernels.keepEnvironment && scaleFactor == 0) {
        return kernel(src, dst, len, 1);
    }
    return scaledToIntegers(kernel, src, dst, len, rndMode, scaleFactor);
}

} // namespace

// --------------------------------------------------------------------------------------------------- to floating point

Status lyrsConvert_8u32f(const Elem8u* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    return kernels.from8uTo32f(pSrc, pDst, len);
}

Status lyrsConvert_16s32f(const Elem16s* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    return kernels.from16sTo32f(pSrc, pDst, len);
}

Status lyrsConvert_32s32f(const Elem32s* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    return kernels.from32sTo32f(pSrc, pDst, len);
}

Status lyrsConvert_64f32f(const Elem64f* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    return kernels.from64fTo32f(pSrc, pDst, len);
}

// The scale factor is limited so that no result overflows and the power of two is a normal number.

Status lyrsConvert_16s32f_Sfs(const Elem16s* pSrc, Elem32f* pDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    if (scaleFactor == 0) {
        return kernels.from16sTo32f(pSrc, pDst, len);
    }
    return kernels.scaled16sTo32f(pSrc, pDst, len, GetScale_32s32f(std::clamp(scaleFactor, -112, 126)));
}

Status lyrsConvert_32s32f_Sfs(const Elem32s* pSrc, Elem32f* pDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    if (scaleFactor == 0) {
        return kernels.from32sTo32f(pSrc, pDst, len);
    }
    return kernels.scaled32sTo32f(pSrc, pDst, len, GetScale_32s32f(std::clamp(scaleFactor, -96, 126)));
}

Status lyrsConvert_16s64f_Sfs(const Elem16s* pSrc, Elem64f* pDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    return kernels.scaled16sTo64f(pSrc, pDst, len, GetScale_32s64f(std::clamp(scaleFactor, -1008, 1022)));
}

// --------------------------------------------------------------------------------------------------------- to integers

Status lyrsConvert_32f16s_Sfs(const Elem32f* pSrc, Elem16s* pDst, Elem32s len, Elem32s rndMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    return toIntegers(kernels.from32fTo16s, pSrc, pDst, len, rndMode, scaleFactor);
}

Status lyrsConvert_32f32s_Sfs(const Elem32f* pSrc, Elem32s* pDst, Elem32s len, Elem32s rndMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    return toIntegers(kernels.from32fTo32s, pSrc, pDst, len, rndMode, scaleFactor);
}

Status lyrsConvert_64f32s_Sfs(const Elem64f* pSrc, Elem32s* pDst, Elem32s len, Elem32s rndMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    return toIntegers(kernels.from64fTo32s, pSrc, pDst, len, rndMode, scaleFactor);
}

Status lyrsConvert_32s16s_Sfs(const Elem32s* pSrc, Elem16s* pDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    if (scaleFactor == 0) {
        return kernels.from32sTo16s(pSrc, pDst, len);
    }
    if (scaleFactor > 0) {
        return kernels.shiftedRight32sTo16s(pSrc, pDst, len, std::clamp(scaleFactor, 1, 31));
    }
    return kernels.shiftedLeft32sTo16s(pSrc, pDst, len, -std::clamp(scaleFactor, -15, -1));
}
