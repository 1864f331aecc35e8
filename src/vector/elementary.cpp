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

Elem64f sinc(Elem64f x)
{
    return x == 0 ? 1 : std::sin(x) / x;
}

// In double, as the kernel computes it: a quotient of two rounded singles is off by more than a unit.
Elem32f sinc(Elem32f x)
{
    return static_cast<Elem32f>(sinc(Elem64f{x}));
}

template <class D>
bool isAligned(const D* dst)
{
    return reinterpret_cast<std::uintptr_t>(dst) % alignof(D) == 0;
}

// Vectors that overlap in part, and a destination off the alignment of its elements, go element by element from the
// first, by the mathematics library.
template <class S, class D>
void apply(lyr::FunctionKernel<S, D>* kernel, D (*scalar)(D), const S* src, D* dst, Elem32s len)
{
    if (isAligned(dst) && areApart(src, dst, len)) {
        kernel(src, dst, len);
        return;
    }
    // As bytes: what was last written here may have been of the other type.
    const auto* from = reinterpret_cast<const char*>(src);
    auto* to = reinterpret_cast<char*>(dst);
    for (Elem32s i = 0; i < len; ++i, from += sizeof(S), to += sizeof(D)) {
        S x;
        std::memcpy(&x, from, sizeof x);
        const D y = scalar(D{x});
        std::memcpy(to, &y, sizeof y);
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
    apply(kernels.expNegSqr32f, expNegSqr<Elem32f>, pSrcDst, pSrcDst, len);
    return StsNoErr;
}

Status lyrsExpNegSqr_64f_I(Elem64f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    apply(kernels.expNegSqr64f, expNegSqr<Elem64f>, pSrcDst, pSrcDst, len);
    return StsNoErr;
}

Status lyrsSinC_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    apply(kernels.sinc32f, sinc, pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsSinC_32f64f(const Elem32f* pSrc, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    apply(kernels.sinc32f64f, sinc, pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsSinC_64f(const Elem64f* pSrc, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    apply(kernels.sinc64f, sinc, pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsSinC_32f_I(Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    apply(kernels.sinc32f, sinc, pSrcDst, pSrcDst, len);
    return StsNoErr;
}

Status lyrsSinC_64f_I(Elem64f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    apply(kernels.sinc64f, sinc, pSrcDst, pSrcDst, len);
    return StsNoErr;
}
