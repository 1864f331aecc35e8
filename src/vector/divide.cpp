// Division of vectors. A zero divisor gives a limit value and a warning.

#include "frame/check.hpp"
#include "frame/constants.hpp"
#include "lyrsr.h"
#include "vector/divide_kernels.hpp"

namespace {

const lyr::DivideKernels kernels = LYR_SELECT_KERNELS(divideKernels);

Status overflowIf(bool zeroDivisor)
{
    return zeroDivisor ? StsWarnOverflow : StsNoErr;
}

} // namespace

Status lyrsDiv_32f(const Elem32f* pSrc1, const Elem32f* pSrc2, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc1, pSrc2, pDst), sizes(len));
    return overflowIf(kernels.divide32f(pSrc1, pSrc2, pDst, len, lyrConstantOfNAN_32f));
}

Status lyrsDiv_64f(const Elem64f* pSrc1, const Elem64f* pSrc2, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc1, pSrc2, pDst), sizes(len));
    return overflowIf(kernels.divide64f(pSrc1, pSrc2, pDst, len, lyrConstantOfNAN_64f));
}

Status lyrsDiv_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pSrcDst), sizes(len));
    return overflowIf(kernels.divide32f(pSrc, pSrcDst, pSrcDst, len, lyrConstantOfNAN_32f));
}
