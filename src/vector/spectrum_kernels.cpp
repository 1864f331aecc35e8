#include "vector/spectrum_kernels.hpp"

#include "frame/simd.hpp"

#include <utility>

namespace lyr::LYR_NS {
namespace {

constexpr auto laneNumbers = std::make_integer_sequence<int, lanes<F32>>{};

// (a0, a2, ..., b0, b2, ...) and (a1, a3, ..., b1, b3, ...): the real and the imaginary parts.
template <int... I>
LYR_INLINE F32 evens(F32 a, F32 b, std::integer_sequence<int, I...> /*lanes*/)
{
    return __builtin_shufflevector(a, b, (2 * I)...);
}

template <int... I>
LYR_INLINE F32 odds(F32 a, F32 b, std::integer_sequence<int, I...> /*lanes*/)
{
    return __builtin_shufflevector(a, b, (2 * I + 1)...);
}

// Of pairs (x, y): (y, x), (x, x) and (y, y).
template <int... I>
LYR_INLINE F32 swapped(F32 v, std::integer_sequence<int, I...> /*lanes*/)
{
    return __builtin_shufflevector(v, v, (I ^ 1)...);
}

template <int... I>
LYR_INLINE F32 firsts(F32 v, std::integer_sequence<int, I...> /*lanes*/)
{
    return __builtin_shufflevector(v, v, (I & ~1)...);
}

template <int... I>
LYR_INLINE F32 seconds(F32 v, std::integer_sequence<int, I...> /*lanes*/)
{
    return __builtin_shufflevector(v, v, (I | 1)...);
}

template <int... I>
LYR_INLINE F32 minusZeroInSeconds(std::integer_sequence<int, I...> /*lanes*/)
{
    return F32{(I % 2 == 1 ? -0.0F : 0.0F)...};
}

// The processor's own root: correctly rounded, and right at zero, at infinity and for subnormal squares.
LYR_INLINE F32 magnitudes(F32 a, F32 b)
{
    const F32 re = evens(a, b, laneNumbers);
    const F32 im = odds(a, b, laneNumbers);
    return sqrt(re * re + im * im);
}

void magnitude(const Elem32f* src, Elem32f* dst, Elem32s len)
{
    constexpr int L = lanes<F32>;
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        const F32 a = load<Unaligned>(src + 2 * i);
        const F32 b = load<Unaligned>(src + 2 * i + L);
        store<Unaligned>(dst + i, magnitudes(a, b));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        const int first = 2 * rest < L ? 2 * rest : L;
        const int second = 2 * rest - first;
        const F32 a = first < L ? loadTail<Unaligned>(src + 2 * i, first) : load<Unaligned>(src + 2 * i);
        const F32 b = second > 0 ? loadTail<Unaligned>(src + 2 * i + L, second) : F32{};
        storeTail(dst + i, magnitudes(a, b), rest);
    }
}

// s = (a, b), t = (c, d): (a c, b c) + (b d, -a d).
LYR_INLINE F32 timesConjugate(F32 s, F32 t)
{
    const F32 products = swapped(s, laneNumbers) * seconds(t, laneNumbers);
    const F32 turned = as<F32>(as<U32>(products) ^ as<U32>(minusZeroInSeconds(laneNumbers)));
    return s * firsts(t, laneNumbers) + turned;
}

void mulPackConj(const Elem32f* src, Elem32f* dst, Elem32s len)
{
    constexpr int L = lanes<F32>;
    dst[0] *= src[0];
    if (len % 2 == 0) {
        dst[len - 1] *= src[len - 1];
    }
    const std::ptrdiff_t end = (len - 1) / 2 * 2 + 1; // behind the last pair
    std::ptrdiff_t i = 1;
    for (; i + L <= end; i += L) {
        store<Unaligned>(dst + i, timesConjugate(load<Unaligned>(src + i), load<Unaligned>(dst + i)));
    }
    if (const int rest = static_cast<int>(end - i); rest != 0) {
        storeTail(dst + i, timesConjugate(loadTail<Unaligned>(src + i, rest), loadTail<Unaligned>(dst + i, rest)),
                  rest);
    }
}

} // namespace

const SpectrumKernels spectrumKernels{.magnitude32f = magnitude, .mulPackConj32f = mulPackConj};

} // namespace lyr::LYR_NS
