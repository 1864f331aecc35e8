// The weights of a diagonal Gaussian and how its constant enters: the policies of the scoring kernels.
#pragma once

#include "frame/width.hpp"
#include "lyrsr.h"

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
};
template <class Rows>
RowWeights(Rows) -> RowWeights<Rows>;

// (2 * gconst - distance) / 2. The doubling rounds to the working precision and may overflow; it is part of the
// promised result.
template <class T>
struct Doubled
{
    T gconst;
    LYR_INLINE T score(T distance) const { return (T{2} * gconst + -distance) * T{0.5}; }
};
template <class T>
Doubled(T) -> Doubled<T>;

// gconst - distance / 2, with a constant that never overflows.
template <class T>
struct Plain
{
    T gconst;
    LYR_INLINE T score(T distance) const { return gconst + T{0.5} * -distance; }
};
template <class T>
Plain(T) -> Plain<T>;

} // namespace lyr
