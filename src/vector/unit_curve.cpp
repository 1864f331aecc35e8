// A smooth step from 0 to 2.

#include "frame/check.hpp"
#include "frame/elements.hpp"
#include "lyrsr.h"
#include "vector/unit_curve_kernels.hpp"

namespace {

const lyr::UnitCurveKernels kernels = LYR_SELECT_KERNELS(unitCurveKernels);

// A number of fractional bits that 16-bit elements cannot have clears the result, which is no error.
void curve(const Elem16s* src, Elem32s fraction, Elem16s* dst, Elem32s len, Elem32s scaleFactor)
{
    if (fraction < 0 || fraction > 14) {
        lyr::zeroElements(dst, len);
        return;
    }
    kernels.curve16s(src, dst, len, fraction, Elem64s{scaleFactor} + 2 * Elem64s{fraction});
}

} // namespace

Status lyrsUnitCurve_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    kernels.curve32f(pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsUnitCurve_32f_I(Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    kernels.curve32f(pSrcDst, pSrcDst, len);
    return StsNoErr;
}

Status lyrsUnitCurve_16s_Sfs(const Elem16s* pSrc, Elem32s qIn, Elem16s* pDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    curve(pSrc, qIn, pDst, len, scaleFactor);
    return StsNoErr;
}

Status lyrsUnitCurve_16s_ISfs(Elem16s* pSrcDst, Elem32s qIn, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    curve(pSrcDst, qIn, pSrcDst, len, scaleFactor);
    return StsNoErr;
}
