// What the exported delta functions hand to their kernels: the stream, the gains and the arithmetic.
#pragma once

#include "lyrsr.h"

#include <cstddef>

namespace lyr {

// New frames on their way into a feature matrix. A row of it holds `width` statics, as many deltas behind them, and in
// the forms with second differences as many delta-deltas.
template <class T>
struct DeltaStream
{
    const T* src; // `height` frames, one behind the other
    T* dst;       // row 0 is the first frame, or the first of the last rows of the call before, as many as the window
                  // needs ahead of a new frame
    std::ptrdiff_t step;
    Elem32s width;
    Elem32s height;
    Elem32s mode; // DeltaBegin, DeltaEnd
};

// Gains: one factor for all deltas and one for all delta-deltas; statics stay as they are.
template <class T>
struct ScalarGains
{
    T delta;
    T deltaDelta;
};
template <class T>
ScalarGains(T, T) -> ScalarGains<T>;

// One factor for each column of the output, the statics' own among them.
template <class T>
struct ColumnGains
{
    const T* values;
};
template <class T>
ColumnGains(const T*) -> ColumnGains<T>;

// Single precision, each step rounded: nothing is fused, so that every path gives the same bits, which NaN aside.
struct SingleArithmetic
{
    using Element = Elem32f;
};

// 16-bit differences that wrap, sums of them that saturate, 32-bit products, shifted and saturated.
struct FixedArithmetic
{
    using Element = Elem16s;
    Elem32s scaleFactor;
};

// As FixedArithmetic, but the sum of the differences has 32 bits and does not saturate; its product with the gain
// drops what leaves 32 bits.
struct WideArithmetic
{
    using Element = Elem16s;
    Elem32s scaleFactor;
};

} // namespace lyr
