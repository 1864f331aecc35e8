// Means and variances of columns with a weight for every row. The weights are taken as they are; callers have them add
// to one:
//
//     mean = sum of w * x        var = sum of w * x^2 - mean^2

#include "estimation/column_sums.hpp"
#include "frame/check.hpp"
#include "frame/elements.hpp"
#include "lyrsr.h"

using lyr::Block;
using lyr::Columns;
using lyr::Table;
using lyr::zeroElements;

namespace {

const lyr::ColumnSumsKernels kernels = LYR_SELECT_KERNELS(columnSumsKernels);

template <class Rows>
const auto& sumsOf(const Columns<Rows>& columns)
{
    if constexpr (__is_same(const Elem32f, typename Rows::Element)) {
        return kernels.weightedSingles.of(columns.rows);
    } else {
        return kernels.weightedDoubles.of(columns.rows);
    }
}

template <class Rows, class T>
Status weightedMean(Columns<Rows> columns, const T* weights, T* mean)
{
    zeroElements(mean, columns.width);
    sumsOf(columns).values(columns, weights, mean, nullptr);
    return StsNoErr;
}

template <class T>
void subtractSquares(const T* mean, T* var, Elem32s width)
{
    for (Elem32s c = 0; c < width; ++c) {
        var[c] -= mean[c] * mean[c];
    }
}

template <class Rows, class T>
Status weightedVar(Columns<Rows> columns, const T* weights, const T* mean, T* var)
{
    zeroElements(var, columns.width);
    sumsOf(columns).squares(columns, weights, nullptr, var);
    subtractSquares(mean, var, columns.width);
    return StsNoErr;
}

template <class Rows, class T>
Status weightedMeanVar(Columns<Rows> columns, const T* weights, T* mean, T* var)
{
    zeroElements(mean, columns.width);
    zeroElements(var, columns.width);
    sumsOf(columns).both(columns, weights, mean, var);
    subtractSquares(mean, var, columns.width);
    return StsNoErr;
}

} // namespace

Status lyrsWeightedMeanColumn_32f_D2(const Elem32f* pSrc, Elem32s step, const Elem32f* pWgt, Elem32s height,
                                     Elem32f* pDstMean, Elem32s width)
{
    LYR_CHECK(pointers(pSrc, pWgt, pDstMean), stride(width, step), sizes(width, height));
    return weightedMean(Columns{Block{pSrc, step}, height, width}, pWgt, pDstMean);
}

Status lyrsWeightedMeanColumn_64f_D2(const Elem64f* pSrc, Elem32s step, const Elem64f* pWgt, Elem32s height,
                                     Elem64f* pDstMean, Elem32s width)
{
    LYR_CHECK(pointers(pSrc, pWgt, pDstMean), stride(width, step), sizes(width, height));
    return weightedMean(Columns{Block{pSrc, step}, height, width}, pWgt, pDstMean);
}

Status lyrsWeightedMeanColumn_32f_D2L(const Elem32f* const* mSrc, const Elem32f* pWgt, Elem32s height,
                                      Elem32f* pDstMean, Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pWgt, pDstMean), sizes(width, height));
    return weightedMean(Columns{Table{mSrc}, height, width}, pWgt, pDstMean);
}

Status lyrsWeightedMeanColumn_64f_D2L(const Elem64f* const* mSrc, const Elem64f* pWgt, Elem32s height,
                                      Elem64f* pDstMean, Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pWgt, pDstMean), sizes(width, height));
    return weightedMean(Columns{Table{mSrc}, height, width}, pWgt, pDstMean);
}

Status lyrsWeightedVarColumn_32f_D2(const Elem32f* pSrc, Elem32s step, const Elem32f* pWgt, Elem32s height,
                                    const Elem32f* pSrcMean, Elem32f* pDstVar, Elem32s width)
{
    LYR_CHECK(pointers(pSrc, pWgt, pSrcMean, pDstVar), stride(width, step), sizes(width, height));
    return weightedVar(Columns{Block{pSrc, step}, height, width}, pWgt, pSrcMean, pDstVar);
}

Status lyrsWeightedVarColumn_64f_D2(const Elem64f* pSrc, Elem32s step, const Elem64f* pWgt, Elem32s height,
                                    const Elem64f* pSrcMean, Elem64f* pDstVar, Elem32s width)
{
    LYR_CHECK(pointers(pSrc, pWgt, pSrcMean, pDstVar), stride(width, step), sizes(width, height));
    return weightedVar(Columns{Block{pSrc, step}, height, width}, pWgt, pSrcMean, pDstVar);
}

Status lyrsWeightedVarColumn_32f_D2L(const Elem32f* const* mSrc, const Elem32f* pWgt, Elem32s height,
                                     const Elem32f* pSrcMean, Elem32f* pDstVar, Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pWgt, pSrcMean, pDstVar), sizes(width, height));
    return weightedVar(Columns{Table{mSrc}, height, width}, pWgt, pSrcMean, pDstVar);
}

Status lyrsWeightedVarColumn_64f_D2L(const Elem64f* const* mSrc, const Elem64f* pWgt, Elem32s height,
                                     const Elem64f* pSrcMean, Elem64f* pDstVar, Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pWgt, pSrcMean, pDstVar), sizes(width, height));
    return weightedVar(Columns{Table{mSrc}, height, width}, pWgt, pSrcMean, pDstVar);
}

Status lyrsWeightedMeanVarColumn_32f_D2(const Elem32f* pSrc, Elem32s step, const Elem32f* pWgt, Elem32s height,
                                        Elem32f* pDstMean, Elem32f* pDstVar, Elem32s width)
{
    LYR_CHECK(pointers(pSrc, pWgt, pDstMean, pDstVar), stride(width, step), sizes(width, height));
    return weightedMeanVar(Columns{Block{pSrc, step}, height, width}, pWgt, pDstMean, pDstVar);
}

Status lyrsWeightedMeanVarColumn_64f_D2(const Elem64f* pSrc, Elem32s step, const Elem64f* pWgt, Elem32s height,
                                        Elem64f* pDstMean, Elem64f* pDstVar, Elem32s width)
{
    LYR_CHECK(pointers(pSrc, pWgt, pDstMean, pDstVar), stride(width, step), sizes(width, height));
    return weightedMeanVar(Columns{Block{pSrc, step}, height, width}, pWgt, pDstMean, pDstVar);
}

Status lyrsWeightedMeanVarColumn_32f_D2L(const Elem32f* const* mSrc, const Elem32f* pWgt, Elem32s height,
                                         Elem32f* pDstMean, Elem32f* pDstVar, Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pWgt, pDstMean, pDstVar), sizes(width, height));
    return weightedMeanVar(Columns{Table{mSrc}, height, width}, pWgt, pDstMean, pDstVar);
}

Status lyrsWeightedMeanVarColumn_64f_D2L(const Elem64f* const* mSrc, const Elem64f* pWgt, Elem32s height,
                                         Elem64f* pDstMean, Elem64f* pDstVar, Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pWgt, pDstMean, pDstVar), sizes(width, height));
    return weightedMeanVar(Columns{Table{mSrc}, height, width}, pWgt, pDstMean, pDstVar);
}
