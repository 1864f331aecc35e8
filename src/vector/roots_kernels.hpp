// The kernels of square roots and their reciprocals.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

struct RootsKernels
{
    // p[i] = sqrt(p[i]); whether any element was below zero.
    bool (*sqrt64f)(Elem64f* p, Elem32s len);

    // p[i] = 1 / sqrt(p[i]) where that is above the floor, else the floor; whether any element was above.
    bool (*recSqrt32f)(Elem32f* p, Elem32s len, Elem32f floor);

    // The same times `scale`, rounded to integers and saturated. Two forms differ in where an element equal to the
    // floor belongs.
    bool (*recSqrtAbove32s)(const Elem32s* src, Elem32s* dst, Elem32s len, Elem32s floor, Elem32f scale);
    bool (*recSqrtFrom32s)(const Elem32s* src, Elem32s* dst, Elem32s len, Elem32s floor, Elem32f scale);
    bool (*recSqrtFrom32s16s)(const Elem32s* src, Elem16s* dst, Elem32s len, Elem32s floor, Elem32f scale);
};

LYR_DECLARE_KERNELS(RootsKernels, rootsKernels)

} // namespace lyr
