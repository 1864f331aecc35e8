// Dot products of vectors.

#include "frame/check.hpp"
#include "lyrsr.h"
#include "vector/sum_kernels.hpp"

namespace {

const lyr::SumKernels kernels = LYR_SELECT_KERNELS(sumKernels);

} // namespace

Status lyrsDotProd_32f(const Elem32f* pSrc1, const Elem32f* pSrc2, Elem32s len, Elem32f* pDp)
{
    LYR_CHECK(pointers(pSrc1, pSrc2, pDp), sizes(len));
    return kernels.dot32f(pSrc1, pSrc2, len, pDp);
}

Status lyrsDotProd_64f(const Elem64f* pSrc1, const Elem64f* pSrc2, Elem32s len, Elem64f* pDp)
{
    LYR_CHECK(pointers(pSrc1, pSrc2, pDp), sizes(len));
    return kernels.dot64f(pSrc1, pSrc2, len, pDp);
}

Status lyrsDotProd_32f64f(const Elem32f* pSrc1, const Elem32f* pSrc2, Elem32s len, Elem64f* pDp)
{
    LYR_CHECK(pointers(pSrc1, pSrc2, pDp), sizes(len));
    return kernels.dot32f64f(pSrc1, pSrc2, len, pDp);
}

Status lyrsDotProd_16s64s(const Elem16s* pSrc1, const Elem16s* pSrc2, Elem32s len, Elem64s* pDp)
{
    LYR_CHECK(pointers(pSrc1, pSrc2, pDp), sizes(len));
    return kernels.dot16s64s(pSrc1, pSrc2, len, pDp);
}

Status lyrsDotProd_16s32f(const Elem16s* pSrc1, const Elem16s* pSrc2, Elem32s len, Elem32f* pDp)
{
    LYR_CHECK(pointers(pSrc1, pSrc2, pDp), sizes(len));
    return kernels.dot16s32f(pSrc1, pSrc2, len, pDp);
}
