// Log-likelihoods in fixed point: the log value times 2^scaleFactor.
#pragma once

#include "lyrsr.h"

#include <limits>

namespace lyr {

// The scale factor that undoes another one. The lowest has no opposite, and its neighbour scales to nothing as well.
inline Elem32s opposite(Elem32s scaleFactor)
{
    return scaleFactor == std::numeric_limits<Elem32s>::min() ? std::numeric_limits<Elem32s>::max() : -scaleFactor;
}

// src times 2^scaleFactor, toward zero and saturated.
inline void toFixedPoint(const Elem32f* src, Elem32s* dst, Elem32s len, Elem32s scaleFactor)
{
    static_cast<void>(lyrsConvert_32f32s_Sfs(src, dst, len, 0, opposite(scaleFactor)));
}

inline void toFixedPoint(const Elem32f* src, Elem16s* dst, Elem32s len, Elem32s scaleFactor)
{
    static_cast<void>(lyrsConvert_32f16s_Sfs(src, dst, len, 0, opposite(scaleFactor)));
}

} // namespace lyr
