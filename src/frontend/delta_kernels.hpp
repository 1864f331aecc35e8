// The kernels of the first and second differences over one or two frames each way.
#pragma once

#include "frame/select.hpp"
#include "frame/width.hpp"
#include "frontend/delta_stream.hpp"
#include "lyrsr.h"

namespace lyr {

template <class Arithmetic, class Gains>
using DeltaKernel = void(DeltaStream<typename Arithmetic::Element> stream, Gains gains, Arithmetic arithmetic);

// A window of one width and order, with scalar gains and with one gain for each column.
template <class Arithmetic>
struct DeltaWindow
{
    DeltaKernel<Arithmetic, ScalarGains<typename Arithmetic::Element>>* scalar;
    DeltaKernel<Arithmetic, ColumnGains<typename Arithmetic::Element>>* columns;
};

template <class Arithmetic>
struct DeltaWindows
{
    DeltaWindow<Arithmetic> deltaWin1;
    DeltaWindow<Arithmetic> deltaWin2;
    DeltaWindow<Arithmetic> deltaDeltaWin1;
    DeltaWindow<Arithmetic> deltaDeltaWin2;
};

struct DeltaKernels
{
    DeltaWindows<SingleArithmetic> single;
    DeltaWindows<FixedArithmetic> fixed;
    DeltaKernel<WideArithmetic, ScalarGains<Elem16s>>* wideDeltaDeltaWin2;
};

LYR_DECLARE_KERNELS(DeltaKernels, deltaKernels)

// Rows narrower than the widest vectors that these families use go to the 128-bit kernels at any width: masked stores,
// and loads of what they stored, cost more than narrow vectors do.
template <class T>
LYR_INLINE constexpr bool isNarrow(Elem32s width)
{
    return static_cast<std::size_t>(width) < 32 / sizeof(T);
}

} // namespace lyr
