// The nine-frame regression of the Aurora front end (ETSI ES 202 050).

#include "frame/check.hpp"
#include "frame/select.hpp"
#include "frontend/delta_aurora_kernels.hpp"
#include "frontend/delta_check.hpp"
#include "lyrsr.h"

using lyr::auroraStatics;

namespace {

const lyr::AuroraForms<lyr::SingleArithmetic> single = LYR_SELECT_KERNELS_UP_TO_256(auroraDeltaKernels).single;
// 13 elements of 16 bits are narrow rows.
const lyr::AuroraForms<lyr::AuroraFixedArithmetic>& fixed = lyr::w128::auroraDeltaKernels.fixed;

} // namespace

Status lyrsDeltaDelta_Aurora_32f_D2(const Elem32f* pSrc, Elem32f* pDst, Elem32s dstStep, Elem32s height,
                                    Elem32s deltaMode)
{
    LYR_CHECK(pointers(pSrc, pDst), frames(auroraStatics, height, deltaMode), columns(3, auroraStatics, dstStep),
              history(8, height, deltaMode));
    single.plain({pSrc, pDst, dstStep, auroraStatics, height, deltaMode}, {}, {});
    return StsNoErr;
}

Status lyrsDeltaDelta_Aurora_16s_D2Sfs(const Elem16s* pSrc, Elem16s* pDst, Elem32s dstStep, Elem32s height,
                                       Elem32s deltaMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), frames(auroraStatics, height, deltaMode), columns(3, auroraStatics, dstStep),
              history(8, height, deltaMode));
    fixed.plain({pSrc, pDst, dstStep, auroraStatics, height, deltaMode}, {}, {scaleFactor});
    return StsNoErr;
}

Status lyrsDeltaDeltaMul_Aurora_32f_D2(const Elem32f* pSrc, const Elem32f* pVal, Elem32f* pDst, Elem32s dstStep,
                                       Elem32s height, Elem32s deltaMode)
{
    LYR_CHECK(pointers(pSrc, pVal, pDst), frames(auroraStatics, height, deltaMode), columns(3, auroraStatics, dstStep),
              history(8, height, deltaMode));
    single.columns({pSrc, pDst, dstStep, auroraStatics, height, deltaMode}, {pVal}, {});
    return StsNoErr;
}

Status lyrsDeltaDeltaMul_Aurora_16s_D2Sfs(const Elem16s* pSrc, const Elem16s* pVal, Elem16s* pDst, Elem32s dstStep,
                                          Elem32s height, Elem32s deltaMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pVal, pDst), frames(auroraStatics, height, deltaMode), columns(3, auroraStatics, dstStep),
              history(8, height, deltaMode));
    fixed.columns({pSrc, pDst, dstStep, auroraStatics, height, deltaMode}, {pVal}, {scaleFactor});
    return StsNoErr;
}
