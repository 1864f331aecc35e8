// Powers of two that carry scale factors into floating point.
#pragma once

#include "lyrsr.h"

namespace lyr {

// 2^(-s): plus infinity for s of -128 or less, zero for s of 150 or more, subnormal in between where it has to be.
Elem32f GetScale_32s32f(Elem32s s) noexcept;

// 2^(-s) with -s limited to -1087 and 1024: plus infinity for s of -1024 or less, zero for s of 1075 or more, in every
// rounding mode.
Elem64f GetScale_32s64f(Elem32s s) noexcept;

} // namespace lyr
