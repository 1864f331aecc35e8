#include "vector/spectrum_kernels.hpp"

#include "frame/simd_shuffle.hpp"
#include "vector/map.hpp"

namespace lyr::LYR_NS {
namespace {

// Of pairs (x, y): (y, x), (x, x) and (y, y).
struct Swapped
{
    LYR_INLINE static constexpr int at(int i, int /*w*/) { return i ^ 1; }
};
struct Firsts
{
    LYR_INLINE static constexpr int at(int i, int /*w*/) { return i & ~1; }
};
struct Seconds
{
    LYR_INLINE static constexpr int at(int i, int /*w*/) { return i | 1; }
};

// The processor's own root: correctly rounded, and right at zero, at infinity and for subnormal squares.
LYR_INLINE F32 magnitudes(F32 a, F32 b)
{
    const F32 re = shuffle<EvenLanes>(a, b);
    const F32 im = shuffle<OddLanes>(a, b);
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
    const F32 products = shuffle<Swapped>(s, s) * shuffle<Seconds>(t, t);
    const F32 turned = as<F32>(as<U64>(products) ^ 0x8000000000000000ULL); // the sign of the second
    return s * shuffle<Firsts>(t, t) + turned;
}

void mulPackConj(const Elem32f* src, Elem32f* dst, Elem32s len)
{
    dst[0] *= src[0];
    if (len % 2 == 0) {
        dst[len - 1] *= src[len - 1];
    }
    const Elem32s pairs = (len - 1) / 2 * 2;
    map(src + 1, dst + 1, dst + 1, pairs, [](F32 s, F32 t) { return timesConjugate(s, t); });
}

} // namespace

const SpectrumKernels spectrumKernels{.magnitude32f = magnitude, .mulPackConj32f = mulPackConj};

} // namespace lyr::LYR_NS
