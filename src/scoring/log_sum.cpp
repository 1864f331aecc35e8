// Log-sum: the log of the sum of the exponentials of a vector.

#include "frame/check.hpp"
#include "frame/scale.hpp"
#include "frame/select.hpp"
#include "lyrsr.h"
#include "scoring/log_add_kernels.hpp"
#include "scoring/log_add_scalar.hpp"

#include <limits>

namespace {

const lyr::LogAddKernels kernels = LYR_SELECT_KERNELS(logAddKernels);

// A few elements: in double precision, the total rounded to single after each.
template <class T>
Elem32f sumShort(const T* src, Elem32s len, Elem64f scale)
{
    Elem64f total = static_cast<Elem64f>(src[0]) * scale;
    for (Elem32s i = 1; i < len; ++i) {
        const Elem64f b = static_cast<Elem64f>(src[i]) * scale;
        total = static_cast<Elem64f>(static_cast<Elem32f>(lyr::logAddSingle<lyr::Horner>(total, b)));
    }
    return static_cast<Elem32f>(total);
}

// Blocks on the stack. The running total is one element more, in the slot ahead of each block after the first.
template <class T>
Elem32f sumBlocks(const T* src, Elem32s len, Elem64f scale)
{
    constexpr Elem32s blockLength = 128;
    alignas(32) Elem32f slotAndBlock[1 + blockLength];
    Elem32f* const block = slotAndBlock + 1;
    Elem32s taken = 0;
    Elem32f total = 0;
    while (taken < len) {
        const Elem32s n = len - taken < blockLength ? len - taken : blockLength;
        for (Elem32s i = 0; i < n; ++i) {
            block[i] = static_cast<Elem32f>(static_cast<Elem64f>(static_cast<Elem32f>(src[taken + i])) * scale);
        }
        if (taken == 0) {
            total = kernels.sum32f(block, n);
        } else {
            slotAndBlock[0] = total;
            total = kernels.sum32f(slotAndBlock, n + 1);
        }
        taken += n;
    }
    return total;
}

// Toward zero and saturated; NaN goes to the lower limit.
template <class T>
T truncate(Elem64f x)
{
    constexpr T top = std::numeric_limits<T>::max();
    constexpr T bottom = std::numeric_limits<T>::min();
    if (x >= static_cast<Elem64f>(top)) {
        return top;
    }
    return x > static_cast<Elem64f>(bottom) ? static_cast<T>(x) : bottom;
}

template <class T>
T sumFixedPoint(const T* src, Elem32s len, Elem32s scaleFactor)
{
    constexpr Elem32s blocksFrom = 7;
    if (len == 1) {
        return src[0];
    }
    const Elem64f scale = lyr::GetScale_32s64f(scaleFactor);
    const Elem32f total = len < blocksFrom ? sumShort(src, len, scale) : sumBlocks(src, len, scale);
    return truncate<T>(static_cast<Elem64f>(total) / scale);
}

} // namespace

Status lyrsLogSum_32f(const Elem32f* pSrc, Elem32f* pResult, Elem32s len)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pResult));
    *pResult = kernels.sum32f(pSrc, len);
    return StsNoErr;
}

Status lyrsLogSum_64f(const Elem64f* pSrc, Elem64f* pResult, Elem32s len)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pResult));
    *pResult = kernels.sum64f(pSrc, len);
    return StsNoErr;
}

Status lyrsLogSum_32s_Sfs(const Elem32s* pSrc, Elem32s* pResult, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pResult));
    *pResult = sumFixedPoint(pSrc, len, scaleFactor);
    return StsNoErr;
}

Status lyrsLogSum_16s_Sfs(const Elem16s* pSrc, Elem16s* pResult, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pResult));
    *pResult = sumFixedPoint(pSrc, len, scaleFactor);
    return StsNoErr;
}
