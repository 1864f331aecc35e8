// The kernels of the covariance accumulation.
#pragma once

#include "frame/layout.hpp"
#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// For every i <= j: dst[i][j] += val * sum over r of (x[r][i] - mean[j]) * (x[r][j] - mean[j]), and dst[j][i] =
// dst[i][j]. Both factors subtract the mean of the later column: meant, and kept.
template <class S, class Rows, class Matrix>
using CovarianceKernel = void(Rows rows, Elem32s height, const S* mean, Matrix dst, Elem32s width, Elem64f val);

struct ColumnCovarianceKernels
{
    CovarianceKernel<Elem32f, Block<const Elem32f>, Block<Elem64f>>* block32f;
    CovarianceKernel<Elem16s, Block<const Elem16s>, Block<Elem64f>>* block16s;
    CovarianceKernel<Elem32f, Table<const Elem32f>, Table<Elem64f>>* table32f;
    CovarianceKernel<Elem16s, Table<const Elem16s>, Table<Elem64f>>* table16s;
};

LYR_DECLARE_KERNELS(ColumnCovarianceKernels, columnCovarianceKernels)

} // namespace lyr
