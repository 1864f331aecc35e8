// Sums of vectors.

#include "frame/check.hpp"
#include "frame/fixed_point.hpp"
#include "frame/scale.hpp"
#include "lyrsr.h"
#include "vector/sum_kernels.hpp"

#include <cfloat>
#include <cstddef>
#include <cstring>
#include <emmintrin.h>

namespace {

const lyr::SumKernels kernels = LYR_SELECT_KERNELS(sumKernels);

constexpr Elem32s fastHint = 1;

static_assert(LDBL_MANT_DIG == 64, "the accurate sum needs extended precision");

// Eight accumulators of extended precision in rotation, joined in a tree; the total passes through a double. The source
// may stand at any address, so that it is read as bytes.
Elem32f sumAccurately(const Elem32f* src, Elem32s len)
{
    const auto* const bytes = reinterpret_cast<const char*>(src);
    const auto element = [bytes](std::ptrdiff_t i) {
        Elem32f x = 0;
        std::memcpy(&x, bytes + i * static_cast<std::ptrdiff_t>(sizeof x), sizeof x);
        return static_cast<long double>(x);
    };
    long double a0 = 0;
    long double a1 = 0;
    long double a2 = 0;
    long double a3 = 0;
    long double a4 = 0;
    long double a5 = 0;
    long double a6 = 0;
    long double a7 = 0;
    std::ptrdiff_t i = 0;
    for (; i + 8 <= len; i += 8) {
        a0 += element(i);
        a1 += element(i + 1);
        a2 += element(i + 2);
        a3 += element(i + 3);
        a4 += element(i + 4);
        a5 += element(i + 5);
        a6 += element(i + 6);
        a7 += element(i + 7);
    }
    for (; i < len; ++i) {
        a0 += element(i);
    }
    const long double total = ((a0 + a1) + (a2 + a3)) + ((a4 + a5) + (a6 + a7));
    return static_cast<Elem32f>(static_cast<Elem64f>(total));
}

} // namespace

Status lyrsSum_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pSum, Elem32s hint)
{
    LYR_CHECK(pointers(pSrc, pSum), sizes(len));
    if (hint == fastHint) {
        return kernels.fast32f(pSrc, len, pSum);
    }
    *pSum = sumAccurately(pSrc, len);
    return StsNoErr;
}

// The one fixed-point sum that rounds by the caller's mode: meant.
Status lyrsSum_16s32s_Sfs(const Elem16s* pSrc, Elem32s len, Elem32s* pSum, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pSum), sizes(len));
    // Sums stay below 2^46, exact in a double. Beyond 2^64 either way the result no longer depends on the scale.
    const Elem64f factor = lyr::GetScale_32s64f(scaleFactor < -64 ? -64 : (scaleFactor > 64 ? 64 : scaleFactor));
    const Elem64f scaled = static_cast<Elem64f>(kernels.exact16s(pSrc, len)) * factor;
    const Elem64f limited = scaled > 2147483647.0 ? 2147483647.0 : (scaled < -2147483648.0 ? -2147483648.0 : scaled);
    *pSum = _mm_cvtsd_si32(_mm_set_sd(limited));
    return StsNoErr;
}

Status lyrsSum_32s_Sfs(const Elem32s* pSrc, Elem32s len, Elem32s* pSum, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pSum), sizes(len));
    const Elem64s sum = kernels.exact32s(pSrc, len);
    if (scaleFactor >= 0) {
        *pSum = lyr::saturate32(
            lyr::shiftRightNearest(sum, scaleFactor > 63 ? 63U : static_cast<std::uint32_t>(scaleFactor)));
    } else {
        *pSum = lyr::saturate32(
            lyr::shiftLeftSaturating(sum, scaleFactor < -31 ? 31U : static_cast<std::uint32_t>(-scaleFactor)));
    }
    return StsNoErr;
}
