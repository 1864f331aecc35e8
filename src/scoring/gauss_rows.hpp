// The innermost operation of the acoustic model, for every family that scores with diagonal Gaussians:
//
//     distance(r) = sum over i of (row_r[i] - shared[i])^2 * weight[i]
//
// The rows are the frames of a block and the shared vector is the mean of one Gaussian, or the rows are the means of
// many Gaussians and the shared vector is one frame: the square does not mind. Four rows are taken at a time, so that
// each vector of what they share is loaded once for four (cf. the register blocking of matrix products, Goto and van de
// Geijn, ACM TOMS 34(3), 2008).
//
// What varies is a policy: the weights here, the constant and the sink in scoreRows.
#pragma once

#include "frame/layout.hpp"
#include "frame/simd.hpp"
#include "scoring/weights.hpp"

#include <type_traits>

namespace lyr::LYR_NS {

inline constexpr int rowsAtOnce = 4;

// d^2 * w added to `sum`, for one vector of differences; the order of additions is free, so the last step may be fused.
template <class V>
LYR_INLINE V addWeighted(V sum, V d, V w)
{
    return mulAdd(d * d, w, sum);
}

// A vector of T from elements of S: the same type, or singles widened to double before anything is computed.
template <class A, class T, class S>
LYR_INLINE VectorOf<T> loadAs(const S* p)
{
    if constexpr (__is_same(S, T)) {
        return load<A>(p);
    } else {
        return loadWide(p);
    }
}

template <class A, class T, class S>
LYR_INLINE VectorOf<T> loadTailAs(const S* p, int n)
{
    if constexpr (__is_same(S, T)) {
        return loadTail<A>(p, n);
    } else {
        return loadWideTail(p, n);
    }
}

// The rows of one step of R rows, resolved to pointers.
template <class S, int R>
struct RowSet
{
    const S* row[R];
};

template <int R, class S>
LYR_INLINE RowSet<S, R> weightRows(SharedWeights<S> weights, std::ptrdiff_t /*first*/)
{
    RowSet<S, R> set;
    for (int k = 0; k < R; ++k) {
        set.row[k] = weights.values;
    }
    return set;
}

template <int R, class Rows>
LYR_INLINE auto weightRows(RowWeights<Rows> weights, std::ptrdiff_t first)
{
    RowSet<std::remove_const_t<typename Rows::Element>, R> set;
    for (int k = 0; k < R; ++k) {
        set.row[k] = weights.rows.row(first + k);
    }
    return set;
}

// One vector's worth of elements of R rows. `Load` is load or loadTail at element i.
template <class Weights, class T, class S, int R, class Load>
LYR_INLINE void step(VectorOf<T> (&sums)[R], const RowSet<S, R>& rows, const S* shared, const RowSet<S, R>& weights,
                     std::ptrdiff_t i, Load load)
{
    using V = VectorOf<T>;
    const V x = load(shared + i);
    if constexpr (__is_same(Weights, UnitWeights)) {
        for (int k = 0; k < R; ++k) {
            const V d = load(rows.row[k] + i) - x;
            sums[k] = mulAdd(d, d, sums[k]);
        }
    } else if constexpr (Weights::areShared) {
        const V w = load(weights.row[0] + i);
        for (int k = 0; k < R; ++k) {
            sums[k] = addWeighted(sums[k], load(rows.row[k] + i) - x, w);
        }
    } else {
        for (int k = 0; k < R; ++k) {
            sums[k] = addWeighted(sums[k], load(rows.row[k] + i) - x, load(weights.row[k] + i));
        }
    }
}

// The lane sums of R rows from `first` on.
template <class A, class T, int R, class Rows, class Weights, class S>
LYR_INLINE void rowSums(VectorOf<T> (&sums)[R], Rows rows, std::ptrdiff_t first, const S* shared, Weights weights,
                        Elem32s width)
{
    RowSet<S, R> row;
    for (int k = 0; k < R; ++k) {
        row.row[k] = rows.row(first + k);
        sums[k] = VectorOf<T>{};
    }
    RowSet<S, R> weight{};
    if constexpr (!__is_same(Weights, UnitWeights)) {
        weight = weightRows<R>(weights, first);
    }
    constexpr int L = lanes<VectorOf<T>>;
    std::ptrdiff_t i = 0;
    for (; i + L <= width; i += L) {
        step<Weights, T>(sums, row, shared, weight, i, [](const S* p) { return loadAs<A, T>(p); });
    }
    if (const int rest = static_cast<int>(width - i); rest != 0) {
        step<Weights, T>(sums, row, shared, weight, i, [rest](const S* p) { return loadTailAs<A, T>(p, rest); });
    }
}

LYR_INLINE void addLanes(float (&out)[rowsAtOnce], const F32 (&sums)[rowsAtOnce])
{
    _mm_storeu_ps(out, sumEach(sums[0], sums[1], sums[2], sums[3]));
}

LYR_INLINE void addLanes(double (&out)[rowsAtOnce], const F64 (&sums)[rowsAtOnce])
{
    _mm_storeu_pd(out, sumEach(sums[0], sums[1]));
    _mm_storeu_pd(out + 2, sumEach(sums[2], sums[3]));
}

// The score of every row: finish(r, distance) writes it.
template <class A, class T, class Rows, class S, class Weights, class Finish>
LYR_INLINE void scoreRows(Rows rows, const S* shared, Weights weights, Elem32s width, Elem32s height, Finish finish)
{
    std::ptrdiff_t r = 0;
    for (; r + rowsAtOnce <= height; r += rowsAtOnce) {
        VectorOf<T> sums[rowsAtOnce];
        rowSums<A, T>(sums, rows, r, shared, weights, width);
        T distance[rowsAtOnce];
        addLanes(distance, sums);
        for (int k = 0; k < rowsAtOnce; ++k) {
            finish(r + k, distance[k]);
        }
    }
    for (; r < height; ++r) {
        VectorOf<T> sums[1];
        rowSums<A, T>(sums, rows, r, shared, weights, width);
        finish(r, sum(sums[0]));
    }
}

} // namespace lyr::LYR_NS
