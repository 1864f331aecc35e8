#include "vector/fixed_kernels.hpp"

#include "frame/simd.hpp"
#include "frame/simd_fixed.hpp"
#include "frame/simd_mixed.hpp"
#include "vector/map.hpp"
#include "vector/scale_to_16.hpp"

namespace lyr::LYR_NS {
namespace {

void multiply(const Elem16s* a, const Elem16s* b, Elem16s* dst, Elem32s len, int /*shift*/)
{
    map(a, b, dst, len, [](I16 x, I16 y) { return packSaturating(product(x, y)); });
}

template <class Shift>
void multiplyShifted(const Elem16s* a, const Elem16s* b, Elem16s* dst, Elem32s len, int count)
{
    map(a, b, dst, len, [shift = Shift(count)](I16 x, I16 y) { return packSaturating(each(shift, product(x, y))); });
}

// The parts of lanes<F64> complex numbers apart, as doubles.
struct Parts
{
    F64 re;
    F64 im;
};

#if LYR_WIDTH == 128
LYR_INLINE Parts apart(I32 v)
{
    const __m128i sorted = _mm_shuffle_epi32(as<__m128i>(v), _MM_SHUFFLE(3, 1, 2, 0));
    return {_mm_cvtepi32_pd(sorted), _mm_cvtepi32_pd(_mm_unpackhi_epi64(sorted, sorted))};
}
#elif LYR_WIDTH == 256
LYR_INLINE Parts apart(I32 v)
{
    const __m256i sorted = _mm256_permutevar8x32_epi32(as<__m256i>(v), _mm256_setr_epi32(0, 2, 4, 6, 1, 3, 5, 7));
    return {_mm256_cvtepi32_pd(_mm256_castsi256_si128(sorted)),
            _mm256_cvtepi32_pd(_mm256_extracti128_si256(sorted, 1))};
}
#else
LYR_INLINE Parts apart(I32 v)
{
    const __m512i order = _mm512_setr_epi32(0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15);
    const __m512i sorted = _mm512_permutexvar_epi32(order, as<__m512i>(v));
    return {_mm512_cvtepi32_pd(_mm512_castsi512_si256(sorted)),
            _mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(sorted, 1))};
}
#endif

void magnitude(const Elem32sc* src, Elem32s* dst, Elem32s len, Elem64f factor)
{
    constexpr int L = lanes<F64>;
    const auto magnitudes = [f = splat(factor)](I32 v) {
        const Parts z = apart(v);
        return toInts(min(sqrt(z.re * z.re + z.im * z.im) * f, splat(2147483647.0)));
    };
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        storeInts(dst + i, magnitudes(load<Unaligned>(&src[i].re)));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        storeIntsTail(dst + i, magnitudes(loadTail<Unaligned>(&src[i].re, 2 * rest)), rest);
    }
}

} // namespace

const FixedKernels fixedKernels{
    .multiply = multiply,
    .multiplyShiftedRight = multiplyShifted<ShiftRightNearest>,
    .multiplyShiftedLeft = multiplyShifted<ShiftLeftLimited>,
    .magnitude = magnitude,
};

} // namespace lyr::LYR_NS
