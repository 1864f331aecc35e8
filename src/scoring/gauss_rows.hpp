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
#include "frame/simd_lanes.hpp"
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

// The lane sums of R rows from `first` on, to `out`: memory, of which the loops stay clear.
template <class A, class T, int R, class Rows, class Weights, class S>
LYR_INLINE void rowSums(VectorOf<T>* out, Rows rows, std::ptrdiff_t first, const S* shared, Weights weights,
                        Elem32s width)
{
    VectorOf<T> sums[R];
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
        step<Weights, T>(sums, row, shared, weight, i, [](const S* p) { return loadLanes<T, A>(p); });
    }
    if (const int rest = static_cast<int>(width - i); rest != 0) {
        step<Weights, T>(sums, row, shared, weight, i, [rest](const S* p) { return loadLanesTail<T, A>(p, rest); });
    }
    for (int k = 0; k < R; ++k) {
        out[k] = sums[k];
    }
}

// Rows of at most N registers, and more than N - 1: what they share stays in registers for the whole call, and a row
// costs three instructions for each of its own.
template <class T, int N, class Weights>
struct ShortRows
{
    using V = VectorOf<T>;
    static constexpr int L = lanes<V>;
    static constexpr bool sharesWeights = Weights::areShared && !__is_same(Weights, UnitWeights);

    V x[N];
    V weight[sharesWeights ? N : 1];
    int rest; // elements of the last register, which may be all

    LYR_INLINE ShortRows(const T* shared, Weights weights, Elem32s width) : rest(width - (N - 1) * L)
    {
        for (int n = 0; n < N; ++n) {
            x[n] = part(shared, n);
            if constexpr (sharesWeights) {
                weight[n] = part(weights.values, n);
            }
        }
    }

    LYR_INLINE V part(const T* row, int n) const
    {
        return n < N - 1 ? load<Unaligned>(row + n * L) : loadTail<Unaligned>(row + n * L, rest);
    }

    template <class Rows>
    LYR_INLINE V laneSums(Rows rows, Weights weights, std::ptrdiff_t r) const
    {
        const T* const row = rows.row(r);
        V sum{};
        for (int n = 0; n < N; ++n) {
            const V d = x[n] - part(row, n);
            if constexpr (__is_same(Weights, UnitWeights)) {
                sum = mulAdd(d, d, sum);
            } else if constexpr (sharesWeights) {
                sum = addWeighted(sum, d, weight[n]);
            } else {
                sum = addWeighted(sum, d, part(weights.rows.row(r), n));
            }
        }
        return sum;
    }
};

template <class T, int N, class Rows, class Weights, class Finish, class Between>
LYR_INLINE void scoreShortRows(Rows rows, const T* shared, Weights weights, Elem32s width, Elem32s height,
                               Finish finish, Between between)
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    const ShortRows<T, N, Weights> shortRows(shared, weights, width);
    std::ptrdiff_t r = 0;
    for (; r + L <= height; r += L) {
        V sums[L];
        for (int k = 0; k < L; k += rowsAtOnce) {
            for (int j = 0; j < rowsAtOnce; ++j) {
                sums[k + j] = shortRows.laneSums(rows, weights, r + k + j);
            }
            between();
        }
        finish(r, sumEach(sums));
    }
    for (; r < height; ++r) {
        finish(r, sum(shortRows.laneSums(rows, weights, r)));
    }
}

struct NothingBetween
{
    LYR_INLINE void operator()() const {}
};

// The score of every row: finish(r, distances) takes those of rows from r on, a whole register of them while there are
// as many rows and one at a time at the end. between() is called after every four rows: a place for work that waits for
// itself and leaves the arithmetic units free.
template <class A, class T, class Rows, class S, class Weights, class Finish, class Between = NothingBetween>
LYR_INLINE void scoreRows(Rows rows, const S* shared, Weights weights, Elem32s width, Elem32s height, Finish finish,
                          Between between = {})
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    if constexpr (LYR_WIDTH > 128) { // whose masked loads take a whole register as well
        if (width <= L) {
            return scoreShortRows<T, 1>(rows, shared, weights, width, height, finish, between);
        }
        if (width <= 2 * L) {
            return scoreShortRows<T, 2>(rows, shared, weights, width, height, finish, between);
        }
        if (width <= 3 * L) {
            return scoreShortRows<T, 3>(rows, shared, weights, width, height, finish, between);
        }
    }
    constexpr int group = L > rowsAtOnce ? L : rowsAtOnce;
    std::ptrdiff_t r = 0;
    for (; r + group <= height; r += group) {
        V sums[group];
        for (int k = 0; k < group; k += rowsAtOnce) {
            rowSums<A, T, rowsAtOnce>(sums + k, rows, r + k, shared, weights, width);
            between();
        }
        for (int k = 0; k < group; k += L) {
            finish(r + k, sumEach(sums + k));
        }
    }
    for (; r < height; ++r) {
        V sums[1];
        rowSums<A, T, 1>(sums, rows, r, shared, weights, width);
        finish(r, sum(sums[0]));
    }
}

// What a finish stores: a register of scores, or one.
template <class T>
LYR_INLINE void put(T* p, VectorOf<T> v)
{
    store<Unaligned>(p, v);
}
template <class T>
LYR_INLINE void put(T* p, T x)
{
    *p = x;
}

// As many elements as D holds.
template <class D, class T>
LYR_INLINE D get(const T* p)
{
    if constexpr (__is_same(D, T)) {
        return *p;
    } else {
        return load<Unaligned>(p);
    }
}

} // namespace lyr::LYR_NS
