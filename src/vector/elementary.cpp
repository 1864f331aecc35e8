// exp(-x^2) and sin(x) / x.

#include "frame/check.hpp"
#include "lyrsr.h"
#include "vector/elementary_kernels.hpp"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

const lyr::ElementaryKernels kernels = LYR_SELECT_KERNELS(elementaryKernels);

// Whether a kernel, which takes whole vectors at a time, would read what it has already written.
template <class S, class D>
bool areApart(const S* src, const D* dst, Elem32s len)
{
    const auto s = reinterpret_cast<std::uintptr_t>(src);
    const auto d = reinterpret_cast<std::uintptr_t>(dst);
    const auto n = static_cast<std::uintptr_t>(len);
    return (sizeof(S) == sizeof(D) && s == d) || s + n * sizeof(S) <= d || d + n * sizeof(D) <= s;
}

template <class T>
T expNegSqr(T x)
{
    return std::exp(-(x * x));
}

template <class T>
T sinc(T x)
{
    return x == T{0} ? T{1} : std::sin(x) / x;
}

// Vectors that overlap go element by element from the first, by the mathematics library.
template <class S, class D>
void apply(lyr::FunctionKernel<S, D>* kernel, D (*scalar)(D), const S* src, D* dst, Elem32s len)
{
    if (areApart(src, dst, len)) {
        kernel(src, dst, len);
        return;
    }
    for (Elem32s i = 0; i < len; ++i) {
        // As bytes: what was last written here may have been of the other type.
        S x;
        std::memcpy(&x, src + i, sizeof x);
        dst[i] = scalar(D{x});
    }
}

} // namespace

Status lyrsExpNegSqr_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    apply(kernels.expNegSqr32f, expNegSqr<Elem32f>, pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsExpNegSqr_32f64f(const Elem32f* pSrc, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    apply(kernels.expNegSqr32f64f, expNegSqr<Elem64f>, pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsExpNegSqr_64f(const Elem64f* pSrc, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    apply(kernels.expNegSqr64f, expNegSqr<Elem64f>, pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsExpNegSqr_32f_I(Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    kernels.expNegSqr32f(pSrcDst, pSrcDst, len);
    return StsNoErr;
}

Status lyrsExpNegSqr_64f_I(Elem64f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    kernels.expNegSqr64f(pSrcDst, pSrcDst, len);
    return StsNoErr;
}

Status lyrsSinC_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    apply(kernels.sinc32f, sinc<Elem32f>, pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsSinC_32f64f(const Elem32f* pSrc, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    apply(kernels.sinc32f64f, sinc<Elem64f>, pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsSinC_64f(const Elem64f* pSrc, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    apply(kernels.sinc64f, sinc<Elem64f>, pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsSinC_32f_I(Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    kernels.sinc32f(pSrcDst, pSrcDst, len);
    return StsNoErr;
}

Status lyrsSinC_64f_I(Elem64f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    kernels.sinc64f(pSrcDst, pSrcDst, len);
    return StsNoErr;
}
