// Natural logarithms of vectors.

#include "frame/check.hpp"
#include "frame/rounding.hpp"
#include "frame/scale.hpp"
#include "lyrsr.h"
#include "vector/log_kernels.hpp"

namespace {

const lyr::LogKernels kernels = LYR_SELECT_KERNELS(logKernels);

Status lnIntegers(const Elem32s* src, Elem32s* dst, Elem32s len, Elem32s scaleFactor)
{
    if (scaleFactor >= 0) {
        // The shift drops bits and does not round, and its count is taken modulo 32: both meant.
        return kernels.nearest32s(src, dst, len, scaleFactor & 31);
    }
    // From 2^32 on every logarithm but that of 1 is beyond the range, which has to stay 0.
    const Elem32f factor = lyr::GetScale_32s32f(scaleFactor < -32 ? -32 : scaleFactor);
    const lyr::ConversionScope nearest(lyr::roundNearest);
    return kernels.scaled32s(src, dst, len, factor);
}

} // namespace

Status lyrsLn_32f_I(Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    return kernels.ln32f(pSrcDst, len);
}

Status lyrsLn_32s_Sfs(const Elem32s* pSrc, Elem32s* pDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    return lnIntegers(pSrc, pDst, len, scaleFactor);
}

Status lyrsLn_32s_ISfs(Elem32s* pSrcDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    return lnIntegers(pSrcDst, pSrcDst, len, scaleFactor);
}
