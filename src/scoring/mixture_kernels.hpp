// The kernels of the scores of one frame against the Gaussians of a mixture.
#pragma once

#include "frame/layout.hpp"
#include "frame/select.hpp"
#include "lyrsr.h"
#include "scoring/weights.hpp"

namespace lyr {

// Gaussians that go through a buffer on the stack at a time.
inline constexpr Elem32s blockHeight = 100;

// srcDst[g] holds the constant of Gaussian g and becomes its score.
template <class Rows, class Weights, class T>
using MultiMixKernel = void(Rows means, Weights vars, const T* x, Elem32s width, T* srcDst, Elem32s height);

// srcDst[g] becomes the score of Gaussian g where that is larger.
template <class Rows, class Weights, class T>
using MaxMultiMixKernel = void(Rows means, Weights vars, const T* x, Elem32s width, const T* gconst, T* srcDst,
                               Elem32s height);

// The log of the sum of exp(score) over all Gaussians.
template <class Rows, class Weights, class T>
using MixtureKernel = T(Rows means, Weights vars, const T* x, Elem32s width, const T* gconst, Elem32s height);

// The kernels for models in one layout, block or table.
template <class Rows>
struct MixtureLayoutKernels
{
    using T = ElementOf<Rows>;

    Twins<MultiMixKernel<Rows, RowWeights<Rows>, T>> scores;
    Twins<MaxMultiMixKernel<Rows, RowWeights<Rows>, T>> best;
    Twins<MixtureKernel<Rows, RowWeights<Rows>, T>> mixture;
    Twins<MixtureKernel<Rows, UnitWeights, T>> unitMixture;
};

struct MixtureKernels
{
    MixtureLayoutKernels<Block<const Elem32f>> block32f;
    MixtureLayoutKernels<Table<const Elem32f>> table32f;
    MixtureLayoutKernels<Block<const Elem64f>> block64f;
    MixtureLayoutKernels<Table<const Elem64f>> table64f;
};

LYR_DECLARE_KERNELS(MixtureKernels, mixtureKernels)

} // namespace lyr
