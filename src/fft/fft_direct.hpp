// Transforms of 1, 2, 4 and 8 points, without tables.
#pragma once

#include "lyrsr.h"

namespace lyr::fft {

// By order and then by whether the result is scaled. The spectrum is in the Perm layout; source and destination may be
// the same.
using DirectKernel = void (*)(const Elem32f* src, Elem32f* dst, Elem32f scale) noexcept;
extern const DirectKernel directForward[4][2];
extern const DirectKernel directInverse[4][2];

} // namespace lyr::fft
