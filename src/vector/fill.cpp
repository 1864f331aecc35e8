// Vectors set to a constant, cleared, copied and moved.

#include "frame/check.hpp"
#include "frame/elements.hpp"
#include "lyrsr.h"
#include "vector/fill_kernels.hpp"

#include <cstring>

namespace {

const lyr::FillKernels kernels = LYR_SELECT_KERNELS(fillKernels);

} // namespace

Status lyrsSet_8u(Elem8u val, Elem8u* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pDst), sizes(len));
    std::memset(pDst, val, static_cast<std::size_t>(len));
    return StsNoErr;
}

Status lyrsSet_16s(Elem16s val, Elem16s* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pDst), sizes(len));
    kernels.fill16s(val, pDst, len);
    return StsNoErr;
}

Status lyrsSet_32s(Elem32s val, Elem32s* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pDst), sizes(len));
    kernels.fill32s(val, pDst, len);
    return StsNoErr;
}

Status lyrsSet_32f(Elem32f val, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pDst), sizes(len));
    kernels.fill32f(val, pDst, len);
    return StsNoErr;
}

Status lyrsSet_64f(Elem64f val, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pDst), sizes(len));
    kernels.fill64f(val, pDst, len);
    return StsNoErr;
}

Status lyrsZero_8u(Elem8u* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pDst), sizes(len));
    lyr::zeroElements(pDst, len);
    return StsNoErr;
}

Status lyrsZero_16s(Elem16s* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pDst), sizes(len));
    lyr::zeroElements(pDst, len);
    return StsNoErr;
}

Status lyrsZero_32f(Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pDst), sizes(len));
    lyr::zeroElements(pDst, len);
    return StsNoErr;
}

Status lyrsZero_64f(Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pDst), sizes(len));
    lyr::zeroElements(pDst, len);
    return StsNoErr;
}

Status lyrsCopy_8u(const Elem8u* pSrc, Elem8u* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    lyr::copyElements(pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsCopy_16s(const Elem16s* pSrc, Elem16s* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    lyr::copyElements(pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsCopy_32s(const Elem32s* pSrc, Elem32s* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    lyr::copyElements(pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsCopy_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    lyr::copyElements(pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsCopy_64f(const Elem64f* pSrc, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    lyr::copyElements(pSrc, pDst, len);
    return StsNoErr;
}

// The one copy whose vectors may overlap.
Status lyrsMove_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    lyr::copyElements(pSrc, pDst, len);
    return StsNoErr;
}
