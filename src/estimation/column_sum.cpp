// Plain sums of columns and of their squares, for statistics that are pooled later: nothing is divided.

#include "estimation/column_sums.hpp"
#include "frame/check.hpp"
#include "frame/elements.hpp"
#include "frame/rounding.hpp"
#include "lyrsr.h"

using lyr::Block;
using lyr::Columns;
using lyr::convertToNearest;
using lyr::forEachPanel;
using lyr::panelColumns;
using lyr::zeroElements;

namespace {

const lyr::ColumnSumsKernels kernels = LYR_SELECT_KERNELS(columnSumsKernels);

enum class Contents
{
    Overwritten,
    Added
};

template <class S>
Status sumMeanVar(const S* pSrc, Elem32s step, Elem32s height, Elem32f* sum, Elem32f* sumSq, Elem32s width,
                  Contents contents)
{
    LYR_CHECK(stride(width, step), pointers(pSrc), pointers(sum, sumSq), sizes(height, width));
    if (contents == Contents::Overwritten) {
        zeroElements(sum, width);
        zeroElements(sumSq, width);
    }
    const Columns columns{Block{pSrc, step}, height, width};
    if constexpr (__is_same(S, Elem32f)) {
        kernels.singles.block.both(columns, nullptr, sum, sumSq);
    } else {
        kernels.shorts.block.both(columns, nullptr, sum, sumSq);
    }
    return StsNoErr;
}

// The integer results hold what single precision kept of the sums: beyond 2^24 low bits are lost, as meant. In the
// in-place form the old integers are the sum's first term.
Status sumMeanVarScaled(const Elem16s* pSrc, Elem32s step, Elem32s height, Elem32s* pSum, Elem32s* pSumSq,
                        Elem32s width, Elem32s scaleFactor, Contents contents)
{
    LYR_CHECK(stride(width, step), pointers(pSrc), pointers(pSum, pSumSq), sizes(height, width));
    forEachPanel(width, [=](Elem32s first, Elem32s count) {
        Elem32f sum[panelColumns];
        Elem32f sumSq[panelColumns];
        if (contents == Contents::Overwritten) {
            zeroElements(sum, count);
            zeroElements(sumSq, count);
        } else {
            for (Elem32s c = 0; c < count; ++c) {
                sum[c] = static_cast<Elem32f>(pSum[first + c]);
                sumSq[c] = static_cast<Elem32f>(pSumSq[first + c]);
            }
        }
        kernels.shorts.block.both({Block{pSrc, step}, height, count, first}, nullptr, sum, sumSq);
        lyrsConvert_32f32s_Sfs(sum, pSum + first, count, convertToNearest, scaleFactor);
        lyrsConvert_32f32s_Sfs(sumSq, pSumSq + first, count, convertToNearest, scaleFactor);
    });
    return StsNoErr;
}

} // namespace

Status lyrsSumMeanVar_32f(const Elem32f* pSrc, Elem32s step, Elem32s height, Elem32f* pDstSum, Elem32f* pDstSumSq,
                          Elem32s width)
{
    return sumMeanVar(pSrc, step, height, pDstSum, pDstSumSq, width, Contents::Overwritten);
}

Status lyrsSumMeanVar_16s32f(const Elem16s* pSrc, Elem32s step, Elem32s height, Elem32f* pDstSum, Elem32f* pDstSumSq,
                             Elem32s width)
{
    return sumMeanVar(pSrc, step, height, pDstSum, pDstSumSq, width, Contents::Overwritten);
}

Status lyrsSumMeanVar_32f_I(const Elem32f* pSrc, Elem32s step, Elem32s height, Elem32f* pSrcDstSum,
                            Elem32f* pSrcDstSumSq, Elem32s width)
{
    return sumMeanVar(pSrc, step, height, pSrcDstSum, pSrcDstSumSq, width, Contents::Added);
}

Status lyrsSumMeanVar_16s32f_I(const Elem16s* pSrc, Elem32s step, Elem32s height, Elem32f* pSrcDstSum,
                               Elem32f* pSrcDstSumSq, Elem32s width)
{
    return sumMeanVar(pSrc, step, height, pSrcDstSum, pSrcDstSumSq, width, Contents::Added);
}

Status lyrsSumMeanVar_16s32s_Sfs(const Elem16s* pSrc, Elem32s step, Elem32s height, Elem32s* pDstSum,
                                 Elem32s* pDstSumSq, Elem32s width, Elem32s scaleFactor)
{
    return sumMeanVarScaled(pSrc, step, height, pDstSum, pDstSumSq, width, scaleFactor, Contents::Overwritten);
}

Status lyrsSumMeanVar_16s32s_ISfs(const Elem16s* pSrc, Elem32s step, Elem32s height, Elem32s* pSrcDstSum,
                                  Elem32s* pSrcDstSumSq, Elem32s width, Elem32s scaleFactor)
{
    return sumMeanVarScaled(pSrc, step, height, pSrcDstSum, pSrcDstSumSq, width, scaleFactor, Contents::Added);
}
