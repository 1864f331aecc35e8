// Reciprocals by estimate, for the families that divide by whole spectra.
#pragma once

#include "lyrsr.h"

namespace lyr {

// dst[i] = r * (2 - src[i] * r), r the 12-bit estimate of 1 / src[i]. The vectors may be the same; src is a multiple
// of 16.
//
// An invalid operation (a zero, a signalling NaN) puts StsWarnOverflow into *status, which is left alone otherwise;
// then a zero has become an infinity of its sign, and so has the default NaN. The floating-point flags are as before.
void lyrsReciprocal_32f(const Elem32f* src, Elem32f* dst, Elem32s len, Status* status) noexcept;

} // namespace lyr
