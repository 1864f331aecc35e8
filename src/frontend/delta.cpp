// First and second differences of a stream of feature frames, over one (Win1) or two (Win2) frames each way.

#include "frame/check.hpp"
#include "frame/select.hpp"
#include "frontend/delta_check.hpp"
#include "frontend/delta_kernels.hpp"
#include "lyrsr.h"

using lyr::DeltaStream;
using lyr::FixedArithmetic;
using lyr::ScalarGains;
using lyr::SingleArithmetic;
using lyr::WideArithmetic;

namespace {

const lyr::DeltaKernels wide = LYR_SELECT_KERNELS_UP_TO_256(deltaKernels);

const lyr::DeltaWindows<SingleArithmetic>& single(Elem32s width)
{
    return lyr::isNarrow<Elem32f>(width) ? lyr::w128::deltaKernels.single : wide.single;
}

const lyr::DeltaWindows<FixedArithmetic>& fixed(Elem32s width)
{
    return lyr::isNarrow<Elem16s>(width) ? lyr::w128::deltaKernels.fixed : wide.fixed;
}

} // namespace

// ------------------------------------------------------------------------------------------------- single precision

Status lyrsDelta_Win1_32f_D2(const Elem32f* pSrc, Elem32s width, Elem32f* pDst, Elem32s dstStep, Elem32s height,
                             Elem32f val, Elem32s deltaMode)
{
    LYR_CHECK(pointers(pSrc, pDst), frames(width, height, deltaMode), columns(2, width, dstStep),
              history(2, height, deltaMode));
    single(width).deltaWin1.scalar({pSrc, pDst, dstStep, width, height, deltaMode}, {val, 0}, {});
    return StsNoErr;
}

Status lyrsDelta_Win2_32f_D2(const Elem32f* pSrc, Elem32s width, Elem32f* pDst, Elem32s dstStep, Elem32s height,
                             Elem32f val, Elem32s deltaMode)
{
    LYR_CHECK(pointers(pSrc, pDst), frames(width, height, deltaMode), columns(2, width, dstStep),
              history(4, height, deltaMode));
    single(width).deltaWin2.scalar({pSrc, pDst, dstStep, width, height, deltaMode}, {val, 0}, {});
    return StsNoErr;
}

Status lyrsDeltaDelta_Win1_32f_D2(const Elem32f* pSrc, Elem32s width, Elem32f* pDst, Elem32s dstStep, Elem32s height,
                                  Elem32f valD, Elem32f valDD, Elem32s deltaMode)
{
    LYR_CHECK(pointers(pSrc, pDst), frames(width, height, deltaMode), columns(3, width, dstStep),
              history(3, height, deltaMode));
    single(width).deltaDeltaWin1.scalar({pSrc, pDst, dstStep, width, height, deltaMode}, {valD, valDD}, {});
    return StsNoErr;
}

Status lyrsDeltaDelta_Win2_32f_D2(const Elem32f* pSrc, Elem32s width, Elem32f* pDst, Elem32s dstStep, Elem32s height,
                                  Elem32f valD, Elem32f valDD, Elem32s deltaMode)
{
    LYR_CHECK(pointers(pSrc, pDst), frames(width, height, deltaMode), columns(3, width, dstStep),
              history(6, height, deltaMode));
    single(width).deltaDeltaWin2.scalar({pSrc, pDst, dstStep, width, height, deltaMode}, {valD, valDD}, {});
    return StsNoErr;
}

Status lyrsDeltaMul_Win1_32f_D2(const Elem32f* pSrc, const Elem32f* pVal, Elem32s width, Elem32f* pDst, Elem32s dstStep,
                                Elem32s height, Elem32s deltaMode)
{
    LYR_CHECK(pointers(pSrc, pVal, pDst), frames(width, height, deltaMode), columns(2, width, dstStep),
              history(2, height, deltaMode));
    single(width).deltaWin1.columns({pSrc, pDst, dstStep, width, height, deltaMode}, {pVal}, {});
    return StsNoErr;
}

Status lyrsDeltaMul_Win2_32f_D2(const Elem32f* pSrc, const Elem32f* pVal, Elem32s width, Elem32f* pDst, Elem32s dstStep,
                                Elem32s height, Elem32s deltaMode)
{
    LYR_CHECK(pointers(pSrc, pVal, pDst), frames(width, height, deltaMode), columns(2, width, dstStep),
              history(4, height, deltaMode));
    single(width).deltaWin2.columns({pSrc, pDst, dstStep, width, height, deltaMode}, {pVal}, {});
    return StsNoErr;
}

Status lyrsDeltaDeltaMul_Win1_32f_D2(const Elem32f* pSrc, const Elem32f* pVal, Elem32s width, Elem32f* pDst,
                                     Elem32s dstStep, Elem32s height, Elem32s deltaMode)
{
    LYR_CHECK(pointers(pSrc, pVal, pDst), frames(width, height, deltaMode), columns(3, width, dstStep),
              history(3, height, deltaMode));
    single(width).deltaDeltaWin1.columns({pSrc, pDst, dstStep, width, height, deltaMode}, {pVal}, {});
    return StsNoErr;
}

Status lyrsDeltaDeltaMul_Win2_32f_D2(const Elem32f* pSrc, const Elem32f* pVal, Elem32s width, Elem32f* pDst,
                                     Elem32s dstStep, Elem32s height, Elem32s deltaMode)
{
    LYR_CHECK(pointers(pSrc, pVal, pDst), frames(width, height, deltaMode), columns(3, width, dstStep),
              history(6, height, deltaMode));
    single(width).deltaDeltaWin2.columns({pSrc, pDst, dstStep, width, height, deltaMode}, {pVal}, {});
    return StsNoErr;
}

// ----------------------------------------------------------------------------------------------- 16-bit fixed point

Status lyrsDelta_Win1_16s_D2Sfs(const Elem16s* pSrc, Elem32s width, Elem16s* pDst, Elem32s dstStep, Elem32s height,
                                Elem16s val, Elem32s deltaMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), frames(width, height, deltaMode), columns(2, width, dstStep),
              history(2, height, deltaMode));
    fixed(width).deltaWin1.scalar({pSrc, pDst, dstStep, width, height, deltaMode}, {val, 0}, {scaleFactor});
    return StsNoErr;
}

Status lyrsDelta_Win2_16s_D2Sfs(const Elem16s* pSrc, Elem32s width, Elem16s* pDst, Elem32s dstStep, Elem32s height,
                                Elem16s val, Elem32s deltaMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), frames(width, height, deltaMode), columns(2, width, dstStep),
              history(4, height, deltaMode));
    fixed(width).deltaWin2.scalar({pSrc, pDst, dstStep, width, height, deltaMode}, {val, 0}, {scaleFactor});
    return StsNoErr;
}

Status lyrsDeltaDelta_Win1_16s_D2Sfs(const Elem16s* pSrc, Elem32s width, Elem16s* pDst, Elem32s dstStep, Elem32s height,
                                     Elem16s valD, Elem16s valDD, Elem32s deltaMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), frames(width, height, deltaMode), columns(3, width, dstStep),
              history(3, height, deltaMode));
    fixed(width).deltaDeltaWin1.scalar({pSrc, pDst, dstStep, width, height, deltaMode}, {valD, valDD}, {scaleFactor});
    return StsNoErr;
}

Status lyrsDeltaDelta_Win2_16s_D2Sfs(const Elem16s* pSrc, Elem32s width, Elem16s* pDst, Elem32s dstStep, Elem32s height,
                                     Elem16s valD, Elem16s valDD, Elem32s deltaMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), frames(width, height, deltaMode), columns(3, width, dstStep),
              history(6, height, deltaMode));
    const DeltaStream<Elem16s> stream{pSrc, pDst, dstStep, width, height, deltaMode};
    const ScalarGains gains{valD, valDD};
    // This member alone, and from this width on, sums its differences in 32 bits: meant, and seen where the sum of the
    // others saturates.
    constexpr Elem32s wideFrom = 14;
    if (width >= wideFrom) {
        const auto& kernels = lyr::isNarrow<Elem16s>(width) ? lyr::w128::deltaKernels : wide;
        kernels.wideDeltaDeltaWin2(stream, gains, WideArithmetic{scaleFactor});
    } else {
        fixed(width).deltaDeltaWin2.scalar(stream, gains, FixedArithmetic{scaleFactor});
    }
    return StsNoErr;
}

Status lyrsDeltaMul_Win1_16s_D2Sfs(const Elem16s* pSrc, const Elem16s* pVal, Elem32s width, Elem16s* pDst,
                                   Elem32s dstStep, Elem32s height, Elem32s deltaMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pVal, pDst), frames(width, height, deltaMode), columns(2, width, dstStep),
              history(2, height, deltaMode));
    fixed(width).deltaWin1.columns({pSrc, pDst, dstStep, width, height, deltaMode}, {pVal}, {scaleFactor});
    return StsNoErr;
}

Status lyrsDeltaMul_Win2_16s_D2Sfs(const Elem16s* pSrc, const Elem16s* pVal, Elem32s width, Elem16s* pDst,
                                   Elem32s dstStep, Elem32s height, Elem32s deltaMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pVal, pDst), frames(width, height, deltaMode), columns(2, width, dstStep),
              history(4, height, deltaMode));
    fixed(width).deltaWin2.columns({pSrc, pDst, dstStep, width, height, deltaMode}, {pVal}, {scaleFactor});
    return StsNoErr;
}

Status lyrsDeltaDeltaMul_Win1_16s_D2Sfs(const Elem16s* pSrc, const Elem16s* pVal, Elem32s width, Elem16s* pDst,
                                        Elem32s dstStep, Elem32s height, Elem32s deltaMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pVal, pDst), frames(width, height, deltaMode), columns(3, width, dstStep),
              history(3, height, deltaMode));
    fixed(width).deltaDeltaWin1.columns({pSrc, pDst, dstStep, width, height, deltaMode}, {pVal}, {scaleFactor});
    return StsNoErr;
}

Status lyrsDeltaDeltaMul_Win2_16s_D2Sfs(const Elem16s* pSrc, const Elem16s* pVal, Elem32s width, Elem16s* pDst,
                                        Elem32s dstStep, Elem32s height, Elem32s deltaMode, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pVal, pDst), frames(width, height, deltaMode), columns(3, width, dstStep),
              history(6, height, deltaMode));
    fixed(width).deltaDeltaWin2.columns({pSrc, pDst, dstStep, width, height, deltaMode}, {pVal}, {scaleFactor});
    return StsNoErr;
}
