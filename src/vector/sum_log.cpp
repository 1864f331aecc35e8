// Sums of natural logarithms, from one product instead of a logarithm for each element.

#include "frame/check.hpp"
#include "frame/constants.hpp"
#include "lyrsr.h"
#include "vector/sum_log_kernels.hpp"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

using lyr::LogProduct;
using lyr::ProductKernel;

namespace {

const lyr::SumLogKernels kernels = LYR_SELECT_KERNELS(sumLogKernels);

// The product of so many mantissas, each at least one half, cannot underflow.
constexpr Elem32s blockLength = 512;

// ln(mantissa * 2^exponent), the mantissa brought to [sqrt(1/2), sqrt(2)) first so that nothing cancels for products
// near 1.
Elem64f logarithm(LogProduct product)
{
    constexpr Elem64f ln2High = 0x1.62e42feep-1; // times an exponent exact
    constexpr Elem64f ln2Low = 0x1.a39ef35793c76p-33;
    int shift = 0;
    Elem64f mantissa = std::frexp(product.mantissa, &shift);
    if (mantissa < 0x1.6a09e667f3bcdp-1) {
        mantissa *= 2;
        --shift;
    }
    const auto exponent = static_cast<Elem64f>(product.exponent + shift);
    return exponent * ln2High + (exponent * ln2Low + std::log(mantissa));
}

enum class Kind
{
    Positive,
    Zero,
    Negative,
    Infinite,
    NotANumber
};

// By the bits: minus zero and a NaN with its sign set are negative.
template <class T>
Kind kindOf(T x)
{
    using Int = std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>;
    constexpr Int infinity = std::bit_cast<Int>(std::numeric_limits<T>::infinity());
    const Int bits = std::bit_cast<Int>(x);
    if (bits < 0) {
        return Kind::Negative;
    }
    if (bits == 0) {
        return Kind::Zero;
    }
    return bits < infinity ? Kind::Positive : (bits == infinity ? Kind::Infinite : Kind::NotANumber);
}

// What the kernel leaves: a block with subnormal elements, or one that ends the sum.
template <class T>
struct Scan
{
    LogProduct product{1.0, 0, true};
    Kind kind = Kind::Positive;
};

template <class T>
Scan<T> scan(const T* src, Elem32s n)
{
    Scan<T> result;
    for (Elem32s i = 0; i < n; ++i) {
        result.kind = kindOf(src[i]);
        if (result.kind != Kind::Positive) {
            break;
        }
        int exponent = 0;
        result.product.mantissa *= std::frexp(static_cast<Elem64f>(src[i]), &exponent);
        result.product.exponent += exponent;
    }
    return result;
}

template <class T>
Status sumLn(ProductKernel<T>* kernel, const T* src, Elem32s len, T* sum, T infinity, T nan)
{
    Elem64f total = 0;
    for (Elem32s i = 0; i < len;) {
        const Elem32s n = len - i < blockLength ? len - i : blockLength;
        LogProduct product = kernel(src + i, n);
        if (!product.isNormal) {
            const Scan<T> block = scan(src + i, n);
            switch (block.kind) {
            case Kind::Positive:
                break;
            case Kind::Zero:
                *sum = infinity; // plus, though the logarithm goes to minus infinity: meant
                return StsWarnInf;
            case Kind::Negative:
                *sum = nan;
                return StsWarnNan;
            case Kind::Infinite:
                *sum = infinity;
                return StsNoErr;
            case Kind::NotANumber:
                *sum = -nan; // and no warning: meant
                return StsNoErr;
            }
            product = block.product;
        }
        total += logarithm(product);
        i += n;
    }
    *sum = static_cast<T>(total);
    return StsNoErr;
}

} // namespace

Status lyrsSumLn_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pSum)
{
    LYR_CHECK(pointers(pSrc, pSum), sizes(len));
    return sumLn(kernels.product32f, pSrc, len, pSum, lyrConstantOfINF_32f, lyrConstantOfNAN_32f);
}

Status lyrsSumLn_64f(const Elem64f* pSrc, Elem32s len, Elem64f* pSum)
{
    LYR_CHECK(pointers(pSrc, pSum), sizes(len));
    return sumLn(kernels.product64f, pSrc, len, pSum, lyrConstantOfINF_64f, lyrConstantOfNAN_64f);
}
