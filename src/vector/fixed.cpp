// Element-wise fixed-point operations: products of 16 bits, magnitudes of 32-bit complex numbers.

#include "frame/check.hpp"
#include "frame/elements.hpp"
#include "frame/rounding.hpp"
#include "frame/scale.hpp"
#include "lyrsr.h"
#include "vector/fixed_kernels.hpp"

namespace {

const lyr::FixedKernels kernels = LYR_SELECT_KERNELS(fixedKernels);

} // namespace

Status lyrsMul_16s_Sfs(const Elem16s* pSrc1, const Elem16s* pSrc2, Elem16s* pDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc1, pSrc2, pDst), sizes(len));
    if (scaleFactor == 0) {
        kernels.multiply(pSrc1, pSrc2, pDst, len, 0);
    } else if (scaleFactor > 30) {
        lyr::zeroElements(pDst, len);
    } else if (scaleFactor > 0) {
        kernels.multiplyShiftedRight(pSrc1, pSrc2, pDst, len, scaleFactor);
    } else {
        // From 2^15 on every product but 0 leaves the range.
        kernels.multiplyShiftedLeft(pSrc1, pSrc2, pDst, len, scaleFactor < -15 ? 15 : -scaleFactor);
    }
    return StsNoErr;
}

Status lyrsMagnitude_32sc_Sfs(const Elem32sc* pSrc, Elem32s* pDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    // Outside these limits the answer needs no arithmetic.
    if (scaleFactor > 32) {
        lyr::zeroElements(pDst, len);
    } else if (scaleFactor < -30) {
        for (Elem32s i = 0; i < len; ++i) {
            pDst[i] = (pSrc[i].re | pSrc[i].im) != 0 ? INT32_MAX : 0;
        }
    } else {
        const Elem64f factor = lyr::GetScale_32s64f(scaleFactor);
        const lyr::ConversionScope nearest(lyr::roundNearest);
        kernels.magnitude(pSrc, pDst, len, factor);
    }
    return StsNoErr;
}
