// The weights of a diagonal Gaussian and how its constant enters: the policies of the scoring kernels.
#pragma once

#include "frame/width.hpp"
#include "lyrsr.h"

#include <cstddef>

namespace lyr {

// One vector of inverse variances for all rows.
template <class T>
struct SharedWeights
{
    static constexpr bool areShared = true;
    const T* values;
};
template <class T>
SharedWeights(const T*) -> SharedWeights<T>;

// Weight one: models normalised to unit variance.
struct UnitWeights
{
    static constexpr bool areShared = true;
};

// A row of inverse variances for each row.
template <class Rows>
struct RowWeights
{
    static constexpr bool areShared = false;
    Rows rows;
    LYR_INLINE RowWeights from(std::ptrdiff_t row) const { return {rows.from(row)}; }
};
template <class Rows>
RowWeights(Rows) -> RowWeights<Rows>;

// (2 * gconst - distance) / 2. The doubling rounds to the working precision and may overflow; it is part of the
// promised result. T is the element type; constants and distances may come as numbers or as vectors of it.
template <class T, class G = T>
struct Doubled
{
    G gconst;
    template <class D>
    LYR_INLINE D score(D distance) const
    {
        return (gconst + gconst + -distance) * T{0.5};
    }
};
template <class T>
Doubled(T) -> Doubled<T>;

// gconst - distance / 2, with a constant that never overflows.
template <class T>
struct Plain
{
    T gconst;
    template <class D>
    LYR_INLINE D score(D distance) const
    {
        return gconst + T{0.5} * -distance;
    }
};
template <class T>
Plain(T) -> Plain<T>;

} // namespace lyr
