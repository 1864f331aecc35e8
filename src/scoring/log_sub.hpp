// The domain test of log-subtraction.
#pragma once

#include "lyrsr.h"

namespace lyr {

// 1 if pSrcDst[i] - pSrc[i] is 0 or more for any i, else 0; also 0 for a len below 1.
int ParamErr64f(const Elem64f* pSrc, const Elem64f* pSrcDst, Elem32s len) noexcept;
int ParamErr32f(const Elem32f* pSrc, const Elem32f* pSrcDst, Elem32s len) noexcept;
int ParamErr32s(const Elem32s* pSrc, const Elem32s* pSrcDst, Elem32s len) noexcept;
int ParamErr16s(const Elem16s* pSrc, const Elem16s* pSrcDst, Elem32s len) noexcept;

} // namespace lyr
