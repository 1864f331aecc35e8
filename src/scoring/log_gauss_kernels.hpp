// The kernels of the scores of frames against one diagonal Gaussian.
#pragma once

#include "frame/layout.hpp"
#include "frame/select.hpp"
#include "lyrsr.h"
#include "scoring/weights.hpp"

namespace lyr {

// sum over i of (x[i] - m[i])^2 * v[i], of elements S in precision T. Unit forms ignore v; divided forms divide by it.
template <class T, class S = T>
using DistanceKernel = T(const S* x, const S* mean, const S* var, Elem32s len);

// dst[f] = score of frame f in the result type T, the constant entering as `Constant` says.
template <class Rows, class Weights, class Constant, class T>
using FramesKernel = void(Rows frames, const ElementOf<Rows>* mean, Weights var, Elem32s width, T* dst, Elem32s height,
                          Constant gconst);

template <class T, class BlockConstant, class TableConstant>
struct FramesKernels
{
    Twins<FramesKernel<Block<const T>, SharedWeights<T>, BlockConstant, T>> blockWeighted;
    Twins<FramesKernel<Block<const T>, UnitWeights, BlockConstant, T>> blockUnit;
    Twins<FramesKernel<Table<const T>, SharedWeights<T>, TableConstant, T>> tableWeighted;
    Twins<FramesKernel<Table<const T>, UnitWeights, TableConstant, T>> tableUnit;
};

struct LogGaussKernels
{
    Twins<DistanceKernel<Elem32f>> weighted32f;
    Twins<DistanceKernel<Elem32f>> unit32f;
    Twins<DistanceKernel<Elem64f>> weighted64f;
    Twins<DistanceKernel<Elem64f>> unit64f;
    Twins<DistanceKernel<Elem64f>> divided64f;
    // Singles widened to double have one kernel for every alignment. With weights they add up in the order of the
    // elements.
    DistanceKernel<Elem64f, Elem32f>* weighted32f64f;
    DistanceKernel<Elem64f, Elem32f>* unit32f64f;
    DistanceKernel<Elem64f, Elem32f>* divided32f64f;
    FramesKernels<Elem32f, Doubled<Elem32f>, Doubled<Elem32f>> frames32f;
    // In double precision the row tables double the constant and the blocks do not: they differ where twice the
    // constant overflows, as meant.
    FramesKernels<Elem64f, Plain<Elem64f>, Doubled<Elem64f>> frames64f;
};

LYR_DECLARE_KERNELS(LogGaussKernels, logGaussKernels)

} // namespace lyr
