#include "vector/roots_kernels.hpp"

#include "vector/map.hpp"

namespace lyr::LYR_NS {
namespace {

// The processor's own root: correctly rounded, a zero keeps its sign, a negative element gives NaN.
bool sqrt64f(Elem64f* p, Elem32s len)
{
    I64 negative{};
    map(p, p, len, [&negative](F64 x) {
        negative |= x < F64{};
        return sqrt(x);
    });
    return any(negative);
}

// The estimate, refined by one step of Newton's method. The estimate is of no use below the smallest normal number and
// at infinity, where the root is taken as it is defined. x > 0.
LYR_INLINE F32 reciprocalRoot(F32 x)
{
    const F32 y = reciprocalRootEstimate(x);
    const F32 refined = 0.5F * y * (3.0F - x * y * y);
    const auto beyond = (x < splat(__FLT_MIN__)) | (x > splat(__FLT_MAX__));
    if (any(beyond)) [[unlikely]] {
        return beyond ? 1.0F / sqrt(x) : refined;
    }
    return refined;
}

bool recSqrt32f(Elem32f* p, Elem32s len, Elem32f floor)
{
    const F32 least = splat(floor);
    I32 kept{};
    // The lanes behind a tail are zero, which no floor lies below.
    map(p, p, len, [least, &kept](F32 x) {
        const auto above = x > least;
        kept |= above;
        return above ? reciprocalRoot(above ? x : splat(1.0F)) : least;
    });
    return any(kept);
}

struct Above
{
    static LYR_INLINE auto keeps(F32 x, F32 floor) { return x > floor; }
};

struct From
{
    static LYR_INLINE auto keeps(F32 x, F32 floor) { return x >= floor; }
};

// Limited from above to the range of the result, as integers; nothing here is negative.
LYR_INLINE I32 toIntegers(F32 v, const Elem32s* /*range*/)
{
    return toIntLimited(v);
}

LYR_INLINE I32 toIntegers(F32 v, const Elem16s* /*range*/)
{
    return toInt(min(v, splat(32767.0F)));
}

// The processor's own root and quotient, so that a value half way between two integers is seen as one.
template <class Domain, class D>
bool recSqrtIntegers(const Elem32s* src, D* dst, Elem32s len, Elem32s floor, Elem32f scale)
{
    const F32 least = splat(static_cast<Elem32f>(floor));
    I32 kept{};
    mapIn<Elem32s>(src, dst, len, [least, scale, dst, &kept](I32 n) {
        const F32 x = toFloat(n);
        const auto inside = Domain::keeps(x, least);
        kept |= inside;
        const F32 value = inside ? 1.0F / sqrt(inside ? x : splat(1.0F)) : least;
        return toIntegers(value * splat(scale), dst);
    });
    return any(kept);
}

} // namespace

const RootsKernels rootsKernels{
    .sqrt64f = sqrt64f,
    .recSqrt32f = recSqrt32f,
    .recSqrtAbove32s = recSqrtIntegers<Above, Elem32s>,
    .recSqrtFrom32s = recSqrtIntegers<From, Elem32s>,
    .recSqrtFrom32s16s = recSqrtIntegers<From, Elem16s>,
};

} // namespace lyr::LYR_NS
