// Deltas over a window of any width, in place on a whole matrix.

#include "frame/check.hpp"
#include "frame/select.hpp"
#include "frontend/delta_eval_kernels.hpp"
#include "lyrsr.h"

namespace {

const lyr::EvalDeltaKernels wide = LYR_SELECT_KERNELS_UP_TO_256(evalDeltaKernels);

template <class T>
const lyr::EvalDeltaKernels& kernels(Elem32s width)
{
    return lyr::isNarrow<T>(width) ? lyr::w128::evalDeltaKernels : wide;
}

Status window(Elem32s height, Elem32s width, Elem32s offset, Elem32s wndSize)
{
    using namespace lyr::check;
    return first(sizes(height, width, wndSize),
                 require(offset >= 0 && Elem64s{height} >= Elem64s{2} * wndSize, StsSize));
}

Status columns(Elem32s offset, Elem32s width, Elem32s step)
{
    return lyr::check::stride(offset + Elem64s{2} * width, step);
}

} // namespace

Status lyrsEvalDelta_32f_D2(Elem32f* pSrcDst, Elem32s height, Elem32s step, Elem32s width, Elem32s offset,
                            Elem32s wndSize, Elem32f val)
{
    LYR_CHECK(pointers(pSrcDst), window(height, width, offset, wndSize), columns(offset, width, step));
    kernels<Elem32f>(width).single({pSrcDst + offset, step, height, width, wndSize}, {val, 0}, {});
    return StsNoErr;
}

Status lyrsEvalDelta_16s_D2Sfs(Elem16s* pSrcDst, Elem32s height, Elem32s step, Elem32s width, Elem32s offset,
                               Elem32s wndSize, Elem16s val, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrcDst), window(height, width, offset, wndSize), columns(offset, width, step));
    kernels<Elem16s>(width).fixed({pSrcDst + offset, step, height, width, wndSize}, {val, 0}, {scaleFactor});
    return StsNoErr;
}

// The gains are those of a whole row of features, statics first: the half for the statics is skipped, on purpose.

Status lyrsEvalDeltaMul_32f_D2(Elem32f* pSrcDst, Elem32s height, Elem32s step, const Elem32f* pVal, Elem32s width,
                               Elem32s offset, Elem32s wndSize)
{
    LYR_CHECK(pointers(pSrcDst, pVal), window(height, width, offset, wndSize), columns(offset, width, step));
    kernels<Elem32f>(width).singleMul({pSrcDst + offset, step, height, width, wndSize}, {pVal}, {});
    return StsNoErr;
}

Status lyrsEvalDeltaMul_16s_D2Sfs(Elem16s* pSrcDst, Elem32s height, Elem32s step, const Elem16s* pVal, Elem32s width,
                                  Elem32s offset, Elem32s wndSize, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrcDst, pVal), window(height, width, offset, wndSize), columns(offset, width, step));
    kernels<Elem16s>(width).fixedMul({pSrcDst + offset, step, height, width, wndSize}, {pVal}, {scaleFactor});
    return StsNoErr;
}
