// The kernels of deltas over a window of any width.
#pragma once

#include "frame/select.hpp"
#include "frontend/delta_kernels.hpp"
#include "lyrsr.h"

#include <cstddef>

namespace lyr {

// A feature matrix with its statics at `first` and its deltas `width` elements behind them.
template <class T>
struct EvalDeltaMatrix
{
    T* first;
    std::ptrdiff_t step;
    Elem32s height;
    Elem32s width;
    Elem32s halfWindow;
};

template <class Arithmetic, class Gains>
using EvalDeltaKernel = void(EvalDeltaMatrix<typename Arithmetic::Element> matrix, Gains gains, Arithmetic arithmetic);

struct EvalDeltaKernels
{
    EvalDeltaKernel<SingleArithmetic, ScalarGains<Elem32f>>* single;
    EvalDeltaKernel<SingleArithmetic, ColumnGains<Elem32f>>* singleMul;
    EvalDeltaKernel<WideArithmetic, ScalarGains<Elem16s>>* fixed;
    EvalDeltaKernel<WideArithmetic, ColumnGains<Elem16s>>* fixedMul;
};

LYR_DECLARE_KERNELS(EvalDeltaKernels, evalDeltaKernels)

} // namespace lyr
