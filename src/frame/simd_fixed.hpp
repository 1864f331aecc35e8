// 16-bit fixed point in vectors: products of 32 bits, the shifts of scale factors, and the way back with saturation.
//
// The 32-bit lanes of a Wide stand in the order in which the processor unpacks and packs within each 128 bits: widen,
// product and packSaturating agree on it, and lanes of one Wide correspond to those of another.
#pragma once

#include "frame/simd.hpp"

namespace lyr::LYR_NS {

struct Wide
{
    I32 low;
    I32 high;
};

LYR_INLINE I16 addSaturating(I16 a, I16 b)
{
    return as<I16>(LYR_SIMD(adds_epi16)(as<detail::Register>(a), as<detail::Register>(b)));
}

LYR_INLINE I16 subWrapping(I16 a, I16 b)
{
    return as<I16>(as<U16>(a) - as<U16>(b));
}

// Sums and products of 32 bits that drop what leaves them.
LYR_INLINE I32 addWrapping(I32 a, I32 b)
{
    return as<I32>(as<U32>(a) + as<U32>(b));
}
LYR_INLINE I32 mulWrapping(I32 a, I32 b)
{
    return as<I32>(as<U32>(a) * as<U32>(b));
}

// Arithmetic shifts by one count for all lanes; a count beyond 31 fills with the sign to the right, with zeros to the
// left.
LYR_INLINE I32 shiftRight(I32 a, int count)
{
    return as<I32>(LYR_SIMD(sra_epi32)(as<detail::Register>(a), _mm_cvtsi32_si128(count)));
}

LYR_INLINE I32 shiftLeft(I32 a, int count)
{
    return as<I32>(LYR_SIMD(sll_epi32)(as<detail::Register>(a), _mm_cvtsi32_si128(count)));
}

LYR_INLINE Wide widen(I16 a)
{
    const auto v = as<detail::Register>(a);
    return {as<I32>(LYR_SIMD(srai_epi32)(LYR_SIMD(unpacklo_epi16)(v, v), 16)),
            as<I32>(LYR_SIMD(srai_epi32)(LYR_SIMD(unpackhi_epi16)(v, v), 16))};
}

// The exact products.
LYR_INLINE Wide product(I16 a, I16 b)
{
    const auto low = LYR_SIMD(mullo_epi16)(as<detail::Register>(a), as<detail::Register>(b));
    const auto high = LYR_SIMD(mulhi_epi16)(as<detail::Register>(a), as<detail::Register>(b));
    return {as<I32>(LYR_SIMD(unpacklo_epi16)(low, high)), as<I32>(LYR_SIMD(unpackhi_epi16)(low, high))};
}

LYR_INLINE I16 packSaturating(Wide a)
{
    return as<I16>(LYR_SIMD(packs_epi32)(as<detail::Register>(a.low), as<detail::Register>(a.high)));
}

#undef LYR_SIMD

// One operation on both halves.
template <class Op, class... W>
LYR_INLINE Wide each(Op op, W... w)
{
    return {op(w.low...), op(w.high...)};
}

// The values shifted right arithmetically by `scaleFactor`, left for a negative one, and limited to 16 bits, as if
// with unlimited width in between.
LYR_INLINE I16 scaleSaturating(Wide a, Elem32s scaleFactor)
{
    if (scaleFactor >= 0) {
        return packSaturating(each([scaleFactor](I32 v) { return shiftRight(v, scaleFactor); }, a));
    }
    // What 16 bits do not hold saturates whether it is shifted or not, and 15 places take any other value but zero out
    // of range.
    const int count = scaleFactor < -15 ? 15 : -scaleFactor;
    return packSaturating(each([count](I32 v) { return shiftLeft(v, count); }, widen(packSaturating(a))));
}

} // namespace lyr::LYR_NS
