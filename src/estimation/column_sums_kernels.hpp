// The kernels below all column statistics: sums of the columns of a matrix, of their squares, or of both.
#pragma once

#include "frame/layout.hpp"
#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// Some columns of a matrix: `width` of them, from `first` on, over `height` rows.
template <class Rows>
struct Columns
{
    Rows rows;
    Elem32s height;
    Elem32s width;
    std::ptrdiff_t first = 0;
};
template <class Rows>
Columns(Rows, Elem32s, Elem32s) -> Columns<Rows>;

// sums[c] += sum over r of w[r] * x[r][c] and squares[c] += sum over r of w[r] * x[r][c]^2 in precision T, in any order
// of additions. Weights are null, and one, in the unweighted kernels; `sums` or `squares` is null in a kernel that does
// without.
template <class Rows, class T>
using ColumnSumsKernel = void(Columns<Rows> columns, const T* weights, T* sums, T* squares);

template <class Rows, class T>
struct ColumnSums
{
    ColumnSumsKernel<Rows, T>* values;
    ColumnSumsKernel<Rows, T>* squares;
    ColumnSumsKernel<Rows, T>* both;
};

// For elements S.
template <class S, class T>
struct LayoutColumnSums
{
    ColumnSums<Block<const S>, T> block;
    ColumnSums<Table<const S>, T> table;

    const auto& of(const Block<const S>& /*rows*/) const { return block; }
    const auto& of(const Table<const S>& /*rows*/) const { return table; }
};

// One kernel serves every alignment: what a column sums to does not depend on it, and unaligned loads of aligned data
// cost nothing more.
struct ColumnSumsKernels
{
    LayoutColumnSums<Elem32f, Elem32f> singles;
    LayoutColumnSums<Elem16s, Elem32f> shorts;
    LayoutColumnSums<Elem16s, Elem64f> shortsInDouble; // exact up to 2^53
    LayoutColumnSums<Elem32f, Elem32f> weightedSingles;
    LayoutColumnSums<Elem64f, Elem64f> weightedDoubles;
};

LYR_DECLARE_KERNELS(ColumnSumsKernels, columnSumsKernels)

} // namespace lyr
