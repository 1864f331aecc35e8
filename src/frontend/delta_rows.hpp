// What the delta kernels share: the order in which rows are finished, rows that clamp at the ends of the utterance,
// and loops over the columns of a row.
#pragma once

#include "frame/simd.hpp"
#include "frame/simd_fixed.hpp"
#include "frontend/delta_stream.hpp"

namespace lyr::LYR_NS {

// Access to the elements of a whole vector, and to the first `count` of them at the end of a row.
template <class T>
struct WholeVector
{
    LYR_INLINE VectorOf<T> load(const T* p) const { return lyr::LYR_NS::load<Unaligned>(p); }
    LYR_INLINE void store(T* p, VectorOf<T> v) const { lyr::LYR_NS::store<Unaligned>(p, v); }
};

template <class T>
struct PartVector
{
    int count;
    LYR_INLINE VectorOf<T> load(const T* p) const { return loadTail<Unaligned>(p, count); }
    LYR_INLINE void store(T* p, VectorOf<T> v) const { storeTail(p, v, count); }
};

// body(c, access) for the columns from c on, a vector at a time. The last vector of a row wider than one begins early
// enough to be whole: what it shares with the one before is computed twice, to the same bits, which NaN aside, as no
// result is an operand.
template <class T, class Body>
LYR_INLINE void overColumns(Elem32s width, Body body)
{
    constexpr int L = lanes<VectorOf<T>>;
    if (width < L) {
        body(std::ptrdiff_t{0}, PartVector<T>{width});
        return;
    }
    std::ptrdiff_t c = 0;
    for (; c + L <= width; c += L) {
        body(c, WholeVector<T>{});
    }
    if (c < width) {
        body(std::ptrdiff_t{width} - L, WholeVector<T>{});
    }
}

// The rows of a matrix; in place of one before the first or behind the last stands that one.
template <class T>
struct ClampedRows
{
    const T* first;
    std::ptrdiff_t step;
    std::ptrdiff_t last;

    LYR_INLINE const T* at(std::ptrdiff_t r) const { return first + (r < 0 ? 0 : (r > last ? last : r)) * step; }
};

// The gain of column c of the deltas (part 1) or delta-deltas (part 2); statics (part 0) have one of their own with
// ColumnGains only.
template <class T, class Access>
LYR_INLINE VectorOf<T> gainOf(ScalarGains<T> gains, int part, Elem32s /*width*/, std::ptrdiff_t /*c*/,
                              Access /*access*/)
{
    return splat(part == 1 ? gains.delta : gains.deltaDelta);
}

template <class T, class Access>
LYR_INLINE VectorOf<T> gainOf(ColumnGains<T> gains, int part, Elem32s width, std::ptrdiff_t c, Access access)
{
    return access.load(gains.values + part * std::ptrdiff_t{width} + c);
}

LYR_INLINE F32 subtract(SingleArithmetic /*tag*/, F32 a, F32 b)
{
    return a - b;
}
LYR_INLINE F32 scale(SingleArithmetic /*tag*/, F32 v, F32 gain)
{
    return v * gain;
}

template <class Fixed>
LYR_INLINE I16 subtract(Fixed /*tag*/, I16 a, I16 b)
{
    return subWrapping(a, b);
}

template <class Fixed>
LYR_INLINE I16 scale(Fixed arithmetic, I16 v, I16 gain)
{
    return scaleSaturating(product(v, gain), arithmetic.scaleFactor);
}

// The one order of a stream. Frame n goes to row n; with it the delta of the row DeltaLag before is finished, then the
// delta-delta of the row DeltaDeltaLag before (0: there are none). Without DeltaBegin the first History rows stand in
// the matrix already; with DeltaEnd the rows that wait for a future are finished too. Callbacks get the number of the
// last row, beyond which differences clamp: no row behind it exists, and before the end none is asked for.
template <int History, int DeltaLag, int DeltaDeltaLag, class Statics, class Delta, class DeltaDelta>
LYR_INLINE void advance(Elem32s height, Elem32s mode, Statics statics, Delta delta, DeltaDelta deltaDelta)
{
    const std::ptrdiff_t first = (mode & DeltaBegin) != 0 ? 0 : History;
    const std::ptrdiff_t rows = first + height;
    constexpr int longest = DeltaDeltaLag > DeltaLag ? DeltaDeltaLag : DeltaLag;
    const std::ptrdiff_t stop = rows + ((mode & DeltaEnd) != 0 ? longest : 0);
    const auto exists = [rows](std::ptrdiff_t r) { return r >= 0 && r < rows; };
    // A few rows of one kind before those of the next, which read them: a row just written would have to come through
    // the store buffer, in other pieces than it went in.
    constexpr std::ptrdiff_t atOnce = 16;
    for (std::ptrdiff_t n = first; n < stop; n += atOnce) {
        const std::ptrdiff_t end = n + atOnce < stop ? n + atOnce : stop;
        for (std::ptrdiff_t r = n; r < end && r < rows; ++r) {
            statics(r, r - first);
        }
        for (std::ptrdiff_t r = n - DeltaLag; r < end - DeltaLag; ++r) {
            if (exists(r)) {
                delta(r, rows - 1);
            }
        }
        if constexpr (DeltaDeltaLag > 0) {
            for (std::ptrdiff_t r = n - DeltaDeltaLag; r < end - DeltaDeltaLag; ++r) {
                if (exists(r)) {
                    deltaDelta(r, rows - 1);
                }
            }
        }
    }
}

} // namespace lyr::LYR_NS
