// Element-wise sums, differences and products.

#include "frame/check.hpp"
#include "frame/elements.hpp"
#include "lyrsr.h"
#include "vector/arithmetic_kernels.hpp"

namespace {

const lyr::ArithmeticKernels kernels = LYR_SELECT_KERNELS(arithmeticKernels);

// A constant that is not a number counts as equal here, as meant: it acts as the identity of the operation and leaves
// the vector as it is.
template <class T>
bool equalOrNan(T val, T constant)
{
    return !(val < constant || val > constant);
}

// Times 1, or NaN, is a copy; times 0 is zeros, over NaN and infinities too.
template <class T>
void multiply(lyr::ConstantKernel<T>* kernel, const T* src, T val, T* dst, Elem32s len)
{
    if (equalOrNan(val, T{1})) {
        if (src != dst) {
            lyr::copyElements(src, dst, len);
        }
    } else if (val == T{0}) {
        lyr::zeroElements(dst, len);
    } else {
        kernel(src, val, dst, len);
    }
}

// Neither above nor below zero, so NaN is no divisor either.
template <class T>
Status divisor(T val)
{
    return equalOrNan(val, T{0}) ? StsDivByZero : StsNoErr;
}

} // namespace

// --------------------------------------------------------------------------------------------- magnitude, sum, product

Status lyrsAbs_64f(const Elem64f* pSrc, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    kernels.abs64f(pSrc, pDst, len);
    return StsNoErr;
}

Status lyrsAdd_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pSrcDst), sizes(len));
    kernels.add32f(pSrcDst, pSrc, pSrcDst, len);
    return StsNoErr;
}

Status lyrsAdd_64f_I(const Elem64f* pSrc, Elem64f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pSrcDst), sizes(len));
    kernels.add64f(pSrcDst, pSrc, pSrcDst, len);
    return StsNoErr;
}

Status lyrsAddC_32f(const Elem32f* pSrc, Elem32f val, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    if (equalOrNan(val, 0.0F)) {
        lyr::copyElements(pSrc, pDst, len); // bit for bit: a minus zero stays one
    } else {
        kernels.addConstant32f(pSrc, val, pDst, len);
    }
    return StsNoErr;
}

Status lyrsSub_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pSrcDst), sizes(len));
    kernels.sub32f(pSrcDst, pSrc, pSrcDst, len);
    return StsNoErr;
}

Status lyrsSub_64f_I(const Elem64f* pSrc, Elem64f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pSrcDst), sizes(len));
    kernels.sub64f(pSrcDst, pSrc, pSrcDst, len);
    return StsNoErr;
}

Status lyrsMul_32f(const Elem32f* pSrc1, const Elem32f* pSrc2, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc1, pSrc2, pDst), sizes(len));
    kernels.mul32f(pSrc1, pSrc2, pDst, len);
    return StsNoErr;
}

// --------------------------------------------------------------------------------------------------- product, constant

Status lyrsMulC_32f(const Elem32f* pSrc, Elem32f val, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    multiply(kernels.mulConstant32f, pSrc, val, pDst, len);
    return StsNoErr;
}

Status lyrsMulC_64f(const Elem64f* pSrc, Elem64f val, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    multiply(kernels.mulConstant64f, pSrc, val, pDst, len);
    return StsNoErr;
}

Status lyrsMulC_32f_I(Elem32f val, Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    multiply<Elem32f>(kernels.mulConstant32f, pSrcDst, val, pSrcDst, len);
    return StsNoErr;
}

Status lyrsMulC_64f_I(Elem64f val, Elem64f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len));
    multiply<Elem64f>(kernels.mulConstant64f, pSrcDst, val, pSrcDst, len);
    return StsNoErr;
}

// -------------------------------------------------------------------------------------------------- quotient, constant

// A division by a constant is the product with its reciprocal, short cuts included: an infinite divisor writes zeros.

Status lyrsDivC_32f(const Elem32f* pSrc, Elem32f val, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len), divisor(val));
    multiply(kernels.mulConstant32f, pSrc, 1.0F / val, pDst, len);
    return StsNoErr;
}

Status lyrsDivC_64f(const Elem64f* pSrc, Elem64f val, Elem64f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len), divisor(val));
    multiply(kernels.mulConstant64f, pSrc, 1.0 / val, pDst, len);
    return StsNoErr;
}

Status lyrsDivC_32f_I(Elem32f val, Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len), divisor(val));
    multiply<Elem32f>(kernels.mulConstant32f, pSrcDst, 1.0F / val, pSrcDst, len);
    return StsNoErr;
}

Status lyrsDivC_64f_I(Elem64f val, Elem64f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrcDst), sizes(len), divisor(val));
    multiply<Elem64f>(kernels.mulConstant64f, pSrcDst, 1.0 / val, pSrcDst, len);
    return StsNoErr;
}
