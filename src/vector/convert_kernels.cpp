#include "vector/convert_kernels.hpp"

#include "frame/simd.hpp"
#include "frame/simd_mixed.hpp"
#include "vector/scale_to_16.hpp"

#include <cstddef>
#include <cstdint>

namespace lyr::LYR_NS {
namespace {

// -------------------------------------------------------------------------------------- what a source gives a register

struct LoadNarrow
{
    template <class S>
    LYR_INLINE static I32 whole(const S* p)
    {
        return loadWide(p);
    }
    template <class S>
    LYR_INLINE static I32 tail(const S* p, int n)
    {
        return loadWideTail(p, n);
    }
};

struct LoadSame
{
    template <class S>
    LYR_INLINE static VectorOf<S> whole(const S* p)
    {
        return load<Unaligned>(p);
    }
    template <class S>
    LYR_INLINE static VectorOf<S> tail(const S* p, int n)
    {
        return loadTail<Unaligned>(p, n);
    }
};

struct LoadToDouble
{
    LYR_INLINE static F64 whole(const Elem16s* p) { return loadWideToDouble(p); }
    LYR_INLINE static F64 tail(const Elem16s* p, int n) { return loadWideToDoubleTail(p, n); }
};

// --------------------------------------------------------------------------------- what a register gives a destination

struct StoreSame
{
    template <class D>
    LYR_INLINE static void whole(D* p, VectorOf<D> v)
    {
        store<Unaligned>(p, v);
    }
    template <class D>
    LYR_INLINE static void tail(D* p, VectorOf<D> v, int n)
    {
        storeTail(p, v, n);
    }
};

struct StoreSaturated
{
    LYR_INLINE static void whole(Elem16s* p, I32 v) { storeSaturated(p, v); }
    LYR_INLINE static void tail(Elem16s* p, I32 v, int n) { storeSaturatedTail(p, v, n); }
};

struct StoreSingles
{
    LYR_INLINE static void whole(Elem32f* p, F64 v) { storeNarrow(p, v); }
    LYR_INLINE static void tail(Elem32f* p, F64 v, int n) { storeNarrowTail(p, v, n); }
};

struct StoreInts
{
    LYR_INLINE static void whole(Elem32s* p, HalfInts v) { storeInts(p, v); }
    LYR_INLINE static void tail(Elem32s* p, HalfInts v, int n) { storeIntsTail(p, v, n); }
};

// From this length on the first store is a short one, so that the others do not cross cache lines.
constexpr Elem32s lengthToAlign = 192;

// A register of source elements at a time. Vectors that fill one end with a whole register that overlaps the one
// before, and which is read ahead of all stores: source and destination of elements of one size may be the same vector.
template <class Load, class Store, class S, class D, class Op>
LYR_INLINE Status convert(const S* src, D* dst, Elem32s len, Op op)
{
    constexpr int L = lanes<decltype(Load::whole(src))>;
    if (len < L) {
        Store::tail(dst, op(Load::tail(src, len)), len);
        return StsNoErr;
    }
    const auto whole = [=](std::ptrdiff_t i) { Store::whole(dst + i, op(Load::whole(src + i))); };
    const std::ptrdiff_t lastAt = len - L;
    const auto last = op(Load::whole(src + lastAt));
    std::ptrdiff_t i = 0;
    if (len >= lengthToAlign) {
        constexpr std::uintptr_t unit = L * sizeof(D);
        const auto bytes = static_cast<std::size_t>(-reinterpret_cast<std::uintptr_t>(dst) % unit);
        if (const int head = static_cast<int>(bytes / sizeof(D)); head != 0) {
            Store::tail(dst, op(Load::tail(src, head)), head);
            i = head;
        }
    }
    for (; i + 4 * L <= lastAt; i += 4 * L) {
        whole(i);
        whole(i + L);
        whole(i + 2 * L);
        whole(i + 3 * L);
    }
    for (; i < lastAt; i += L) {
        whole(i);
    }
    Store::whole(dst + lastAt, last);
    return StsNoErr;
}

// --------------------------------------------------------------------------------------------------- to floating point

template <class Load, class S>
Status integersToSingles(const S* src, Elem32f* dst, Elem32s len)
{
    return convert<Load, StoreSame>(src, dst, len, [](I32 x) { return toFloat(x); });
}

template <class Load, class S>
Status scaledToSingles(const S* src, Elem32f* dst, Elem32s len, Elem32f factor)
{
    return convert<Load, StoreSame>(src, dst, len, [f = splat(factor)](I32 x) { return toFloat(x) * f; });
}

Status scaledToDoubles(const Elem16s* src, Elem64f* dst, Elem32s len, Elem64f factor)
{
    return convert<LoadToDouble, StoreSame>(src, dst, len, [f = splat(factor)](F64 x) { return x * f; });
}

Status doublesToSingles(const Elem64f* src, Elem32f* dst, Elem32s len)
{
    return convert<LoadSame, StoreSingles>(src, dst, len, [](F64 x) { return x; });
}

// --------------------------------------------------------------------------------------------------------- to integers

#if LYR_WIDTH == 512
// The instructions name their rounding and raise no flag: a change of the control word would take longer than a short
// vector.
constexpr bool keepEnvironment = true;
constexpr int toNearest = _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC;

LYR_INLINE F32 scaled(F32 x, F32 factor)
{
    return _mm512_mul_round_ps(x, factor, toNearest);
}
LYR_INLINE F64 scaled(F64 x, F64 factor)
{
    return _mm512_mul_round_pd(x, factor, toNearest);
}
LYR_INLINE F32 limited(F32 x, F32 top)
{
    return _mm512_min_round_ps(x, top, _MM_FROUND_NO_EXC);
}
LYR_INLINE F64 limited(F64 x, F64 top)
{
    return _mm512_min_round_pd(x, top, _MM_FROUND_NO_EXC);
}

struct Rounded
{
    LYR_INLINE static I32 ints(F32 x) { return as<I32>(_mm512_cvt_roundps_epi32(x, toNearest)); }
    LYR_INLINE static HalfInts ints(F64 x) { return _mm512_cvt_roundpd_epi32(x, toNearest); }
};

struct Truncated
{
    LYR_INLINE static I32 ints(F32 x) { return as<I32>(_mm512_cvtt_roundps_epi32(x, _MM_FROUND_NO_EXC)); }
    LYR_INLINE static HalfInts ints(F64 x) { return _mm512_cvtt_roundpd_epi32(x, _MM_FROUND_NO_EXC); }
};
#else
constexpr bool keepEnvironment = false;

LYR_INLINE F32 scaled(F32 x, F32 factor)
{
    return x * factor;
}
LYR_INLINE F64 scaled(F64 x, F64 factor)
{
    return x * factor;
}
LYR_INLINE F32 limited(F32 x, F32 top)
{
    return min(x, top);
}
LYR_INLINE F64 limited(F64 x, F64 top)
{
    return min(x, top);
}

struct Rounded
{
    LYR_INLINE static I32 ints(F32 x) { return toInt(x); }
    LYR_INLINE static HalfInts ints(F64 x) { return toInts(x); }
};

struct Truncated
{
    LYR_INLINE static I32 ints(F32 x) { return truncateToInt(x); }
    LYR_INLINE static HalfInts ints(F64 x) { return truncateToInts(x); }
};
#endif

// A NaN becomes the upper limit, which limited() gives where its first argument is none; anything below the range
// becomes -2^31 and saturates.
template <class Rounding>
Status singlesTo16(const Elem32f* src, Elem16s* dst, Elem32s len, Elem32f factor)
{
    return convert<LoadSame, StoreSaturated>(
        src, dst, len, [f = splat(factor)](F32 x) { return Rounding::ints(limited(scaled(x, f), splat(32767.0F))); });
}

// What the processor cannot convert is -2^31. Above the range, where that is wrong, the bits of a single are those of
// an integer above the bits of the largest single below 2^31: the infinity and NaN with a clear sign among them. A NaN
// with its sign set stays -2^31: meant.
template <class Rounding>
Status singlesTo32(const Elem32f* src, Elem32s* dst, Elem32s len, Elem32f factor)
{
    constexpr std::int32_t bitsOfLargest = 0x4EFFFFFF; // 2147483520.0
    return convert<LoadSame, StoreSame>(src, dst, len, [f = splat(factor)](F32 x) {
        const F32 y = scaled(x, f);
        return as<I32>(y) > splat(bitsOfLargest) ? splat(std::int32_t{INT32_MAX}) : Rounding::ints(y);
    });
}

template <class Rounding>
Status doublesTo32(const Elem64f* src, Elem32s* dst, Elem32s len, Elem64f factor)
{
    return convert<LoadSame, StoreInts>(src, dst, len, [f = splat(factor)](F64 x) {
        return Rounding::ints(limited(scaled(x, f), splat(2147483647.0)));
    });
}

// --------------------------------------------------------------------------------------------------- integers narrower

Status saturate(const Elem32s* src, Elem16s* dst, Elem32s len)
{
    return convert<LoadSame, StoreSaturated>(src, dst, len, [](I32 x) { return x; });
}

template <class Shift>
Status shift(const Elem32s* src, Elem16s* dst, Elem32s len, int count)
{
    return convert<LoadSame, StoreSaturated>(src, dst, len, Shift(count));
}

} // namespace

const ConvertKernels convertKernels{
    .from8uTo32f = integersToSingles<LoadNarrow, Elem8u>,
    .from16sTo32f = integersToSingles<LoadNarrow, Elem16s>,
    .from32sTo32f = integersToSingles<LoadSame, Elem32s>,
    .from64fTo32f = doublesToSingles,
    .from32sTo16s = saturate,
    .scaled16sTo32f = scaledToSingles<LoadNarrow, Elem16s>,
    .scaled32sTo32f = scaledToSingles<LoadSame, Elem32s>,
    .scaled16sTo64f = scaledToDoubles,
    .keepEnvironment = keepEnvironment,
    .from32fTo16s = {.rounded = singlesTo16<Rounded>, .truncated = singlesTo16<Truncated>},
    .from32fTo32s = {.rounded = singlesTo32<Rounded>, .truncated = singlesTo32<Truncated>},
    .from64fTo32s = {.rounded = doublesTo32<Rounded>, .truncated = doublesTo32<Truncated>},
    .shiftedRight32sTo16s = shift<ShiftRightNearest>,
    .shiftedLeft32sTo16s = shift<ShiftLeftLimited>,
};

} // namespace lyr::LYR_NS
