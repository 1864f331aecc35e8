// Accumulation of a full covariance matrix from feature rows.

#include "estimation/column_covariance_kernels.hpp"
#include "frame/check.hpp"
#include "lyrsr.h"

using lyr::Block;
using lyr::Table;

namespace {

const lyr::ColumnCovarianceKernels kernels = LYR_SELECT_KERNELS(columnCovarianceKernels);

} // namespace

Status lyrsAccCovarianceMatrix_32f64f_D2(const Elem32f* pSrc, Elem32s srcStep, Elem32s height, const Elem32f* pMean,
                                         Elem64f* pDst, Elem32s width, Elem32s dstStep, Elem64f val)
{
    LYR_CHECK(pointers(pSrc, pMean), pointers(pDst), sizes(height, width), stride(width, srcStep),
              stride(width, dstStep));
    kernels.block32f(Block{pSrc, srcStep}, height, pMean, Block{pDst, dstStep}, width, val);
    return StsNoErr;
}

Status lyrsAccCovarianceMatrix_16s64f_D2(const Elem16s* pSrc, Elem32s srcStep, Elem32s height, const Elem16s* pMean,
                                         Elem64f* pDst, Elem32s width, Elem32s dstStep, Elem64f val)
{
    LYR_CHECK(pointers(pSrc, pMean), pointers(pDst), sizes(height, width), stride(width, srcStep),
              stride(width, dstStep));
    kernels.block16s(Block{pSrc, srcStep}, height, pMean, Block{pDst, dstStep}, width, val);
    return StsNoErr;
}

Status lyrsAccCovarianceMatrix_32f64f_D2L(const Elem32f* const* mSrc, Elem32s height, const Elem32f* pMean,
                                          Elem64f* const* mDst, Elem32s width, Elem64f val)
{
    LYR_CHECK(pointers(mSrc), pointers(pMean), pointers(mDst), sizes(height, width));
    kernels.table32f(Table{mSrc}, height, pMean, Table{mDst}, width, val);
    return StsNoErr;
}

Status lyrsAccCovarianceMatrix_16s64f_D2L(const Elem16s* const* mSrc, Elem32s height, const Elem16s* pMean,
                                          Elem64f* const* mDst, Elem32s width, Elem64f val)
{
    LYR_CHECK(pointers(mSrc), pointers(pMean), pointers(mDst), sizes(height, width));
    kernels.table16s(Table{mSrc}, height, pMean, Table{mDst}, width, val);
    return StsNoErr;
}
