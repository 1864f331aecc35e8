// Largest and smallest elements, their positions, and the element-wise larger or smaller.

#include "frame/check.hpp"
#include "lyrsr.h"
#include "vector/extrema_kernels.hpp"

namespace {

const lyr::ExtremaKernels kernels = LYR_SELECT_KERNELS(extremaKernels);

// A null index asks for the extreme alone.
template <class T>
void findExtreme(lyr::ExtremeKernel<T>* value, lyr::ExtremeIndexKernel<T>* indexed, const T* src, Elem32s len,
                 T* result, Elem32s* index)
{
    if (index == nullptr) {
        value(src, len, result);
    } else {
        indexed(src, len, result, index);
    }
}

} // namespace

Status lyrsMax_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pResult)
{
    LYR_CHECK(pointers(pSrc, pResult), sizes(len));
    kernels.max32f(pSrc, len, pResult);
    return StsNoErr;
}

Status lyrsMax_64f(const Elem64f* pSrc, Elem32s len, Elem64f* pResult)
{
    LYR_CHECK(pointers(pSrc, pResult), sizes(len));
    kernels.max64f(pSrc, len, pResult);
    return StsNoErr;
}

Status lyrsMin_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pResult)
{
    LYR_CHECK(pointers(pSrc, pResult), sizes(len));
    kernels.min32f(pSrc, len, pResult);
    return StsNoErr;
}

Status lyrsMin_64f(const Elem64f* pSrc, Elem32s len, Elem64f* pResult)
{
    LYR_CHECK(pointers(pSrc, pResult), sizes(len));
    kernels.min64f(pSrc, len, pResult);
    return StsNoErr;
}

Status lyrsMinMax_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pMin, Elem32f* pMax)
{
    LYR_CHECK(pointers(pSrc, pMin, pMax), sizes(len));
    kernels.minMax32f(pSrc, len, pMin, pMax);
    return StsNoErr;
}

Status lyrsMaxIndx_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pResult, Elem32s* pIndx)
{
    LYR_CHECK(pointers(pSrc, pResult), sizes(len));
    findExtreme(kernels.max32f, kernels.maxIndex32f, pSrc, len, pResult, pIndx);
    return StsNoErr;
}

Status lyrsMaxIndx_64f(const Elem64f* pSrc, Elem32s len, Elem64f* pResult, Elem32s* pIndx)
{
    LYR_CHECK(pointers(pSrc, pResult), sizes(len));
    findExtreme(kernels.max64f, kernels.maxIndex64f, pSrc, len, pResult, pIndx);
    return StsNoErr;
}

Status lyrsMinIndx_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pResult, Elem32s* pIndx)
{
    LYR_CHECK(pointers(pSrc, pResult), sizes(len));
    findExtreme(kernels.min32f, kernels.minIndex32f, pSrc, len, pResult, pIndx);
    return StsNoErr;
}

Status lyrsMaxEvery_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pSrcDst), sizes(len));
    kernels.maxEvery32f(pSrc, pSrcDst, len);
    return StsNoErr;
}

Status lyrsMinEvery_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pSrcDst), sizes(len));
    kernels.minEvery32f(pSrc, pSrcDst, len);
    return StsNoErr;
}

Status lyrsMinEvery_32s_I(const Elem32s* pSrc, Elem32s* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pSrcDst), sizes(len));
    kernels.minEvery32s(pSrc, pSrcDst, len);
    return StsNoErr;
}
