// One frame accumulated into running means and variances.

#include "estimation/column_accumulate_kernels.hpp"
#include "frame/check.hpp"
#include "lyrsr.h"

namespace {

const lyr::ColumnAccumulateKernels kernels = LYR_SELECT_KERNELS(columnAccumulateKernels);

} // namespace

Status lyrsMeanVarAcc_32f(const Elem32f* pSrc, const Elem32f* pSrcMean, Elem32f* pDstMean, Elem32f* pDstVar,
                          Elem32s len, Elem32f val)
{
    LYR_CHECK(pointers(pSrc, pSrcMean, pDstMean, pDstVar), sizes(len));
    kernels.accumulate32f(pSrc, pSrcMean, pDstMean, pDstVar, len, val);
    return StsNoErr;
}

Status lyrsMeanVarAcc_64f(const Elem64f* pSrc, const Elem64f* pSrcMean, Elem64f* pDstMean, Elem64f* pDstVar,
                          Elem32s len, Elem64f val)
{
    LYR_CHECK(pointers(pSrc, pSrcMean, pDstMean, pDstVar), sizes(len));
    kernels.accumulate64f(pSrc, pSrcMean, pDstMean, pDstVar, len, val);
    return StsNoErr;
}
