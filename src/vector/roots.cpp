// Square roots and reciprocal square roots.

#include "frame/check.hpp"
#include "frame/layout.hpp"
#include "frame/rounding.hpp"
#include "frame/scale.hpp"
#include "lyrsr.h"
#include "vector/roots_kernels.hpp"

namespace {

const lyr::RootsKernels kernels = LYR_SELECT_KERNELS(rootsKernels);

// A vector of which only a part was at or below the floor is no warning.
Status zeroUnless(bool anyAbove)
{
    return anyAbove ? StsNoErr : StsWarnZero;
}

} // namespace

Status lyrsSqrt_64f_I(Elem64f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    const lyr::FlagScope flags;
    return kernels.sqrt64f(pSrcDst, len) ? StsWarnSqrtNeg : StsNoErr;
}

Status lyrsRecSqrt_32f(Elem32f* pSrcDst, Elem32s len, Elem32f val)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len), require(val > 0.0F, StsBadArg));
    return zeroUnless(kernels.recSqrt32f(pSrcDst, len, val));
}

// On aligned data an element equal to the floor is replaced by it, otherwise it is a value like those above: meant, and
// part of the result.
Status lyrsRecSqrt_32s_Sfs(Elem32s* pSrcDst, Elem32s len, Elem32s val, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len), require(val >= 1, StsBadArg));
    const auto kernel = lyr::isAligned16(pSrcDst) ? kernels.recSqrtAbove32s : kernels.recSqrtFrom32s;
    const Elem32f scale = lyr::GetScale_32s32f(scaleFactor);
    const lyr::ConversionScope environment(lyr::roundNearest);
    return zeroUnless(kernel(pSrcDst, pSrcDst, len, val, scale));
}

Status lyrsRecSqrt_32s16s_Sfs(const Elem32s* pSrc, Elem16s* pDst, Elem32s len, Elem32s val, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len), require(val >= 1, StsBadArg));
    const Elem32f scale = lyr::GetScale_32s32f(scaleFactor);
    const lyr::ConversionScope environment(lyr::roundNearest);
    return zeroUnless(kernels.recSqrtFrom32s16s(pSrc, pDst, len, val, scale));
}
