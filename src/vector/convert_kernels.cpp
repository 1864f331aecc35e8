#include "vector/convert_kernels.hpp"

#include "frame/simd.hpp"
#include "frame/simd_mixed.hpp"
#include "vector/scale_to_16.hpp"

namespace lyr::LYR_NS {
namespace {

// ------------------------------------------------------------------------------------- what a source gives a register

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

// ------------------------------------------------------------------------------- what a register gives a destination

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

// One register of source elements at a time. Source and destination of elements of one size may be the same vector.
template <class Load, class Store, class S, class D, class Op>
LYR_INLINE void convert(const S* src, D* dst, Elem32s len, Op op)
{
    constexpr int L = lanes<decltype(Load::whole(src))>;
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        Store::whole(dst + i, op(Load::whole(src + i)));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        Store::tail(dst + i, op(Load::tail(src + i, rest)), rest);
    }
}

// -------------------------------------------------------------------------------------------------- to floating point

template <class Load, class S>
void integersToSingles(const S* src, Elem32f* dst, Elem32s len)
{
    convert<Load, StoreSame>(src, dst, len, [](I32 x) { return toFloat(x); });
}

template <class Load, class S>
void scaledToSingles(const S* src, Elem32f* dst, Elem32s len, Elem32f factor)
{
    convert<Load, StoreSame>(src, dst, len, [f = splat(factor)](I32 x) { return toFloat(x) * f; });
}

void scaledToDoubles(const Elem16s* src, Elem64f* dst, Elem32s len, Elem64f factor)
{
    convert<LoadToDouble, StoreSame>(src, dst, len, [f = splat(factor)](F64 x) { return x * f; });
}

void doublesToSingles(const Elem64f* src, Elem32f* dst, Elem32s len)
{
    convert<LoadSame, StoreSingles>(src, dst, len, [](F64 x) { return x; });
}

// -------------------------------------------------------------------------------------------------------- to integers

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

// A NaN becomes the upper limit, which min() gives where its first argument is none; anything below the range becomes
// -2^31 and saturates.
template <class Rounding>
void singlesTo16(const Elem32f* src, Elem16s* dst, Elem32s len, Elem32f factor)
{
    convert<LoadSame, StoreSaturated>(
        src, dst, len, [f = splat(factor)](F32 x) { return Rounding::ints(min(x * f, splat(32767.0F))); });
}

// What the processor cannot convert is -2^31. Above the range, where that is wrong, the bits of a single are those of
// an integer above the bits of the largest single below 2^31: the infinity and NaN with a clear sign among them. A NaN
// with its sign set stays -2^31: meant.
template <class Rounding>
void singlesTo32(const Elem32f* src, Elem32s* dst, Elem32s len, Elem32f factor)
{
    constexpr std::int32_t bitsOfLargest = 0x4EFFFFFF; // 2147483520.0
    convert<LoadSame, StoreSame>(src, dst, len, [f = splat(factor)](F32 x) {
        const F32 scaled = x * f;
        return as<I32>(scaled) > splat(bitsOfLargest) ? splat(std::int32_t{INT32_MAX}) : Rounding::ints(scaled);
    });
}

template <class Rounding>
void doublesTo32(const Elem64f* src, Elem32s* dst, Elem32s len, Elem64f factor)
{
    convert<LoadSame, StoreInts>(
        src, dst, len, [f = splat(factor)](F64 x) { return Rounding::ints(min(x * f, splat(2147483647.0))); });
}

// -------------------------------------------------------------------------------------------------- integers narrower

void saturate(const Elem32s* src, Elem16s* dst, Elem32s len)
{
    convert<LoadSame, StoreSaturated>(src, dst, len, [](I32 x) { return x; });
}

template <class Shift>
void shift(const Elem32s* src, Elem16s* dst, Elem32s len, int count)
{
    convert<LoadSame, StoreSaturated>(src, dst, len, Shift(count));
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
    .from32fTo16s = {.rounded = singlesTo16<Rounded>, .truncated = singlesTo16<Truncated>},
    .from32fTo32s = {.rounded = singlesTo32<Rounded>, .truncated = singlesTo32<Truncated>},
    .from64fTo32s = {.rounded = doublesTo32<Rounded>, .truncated = doublesTo32<Truncated>},
    .shiftedRight32sTo16s = shift<ShiftRightNearest>,
    .shiftedLeft32sTo16s = shift<ShiftLeftLimited>,
};

} // namespace lyr::LYR_NS
