// A frame copied to the length of a transform.

#include "frame/check.hpp"
#include "lyrsr.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

template <class T>
Status copyWithPadding(const T* src, Elem32s lenSrc, T* dst, Elem32s lenDst)
{
    LYR_CHECK(pointers(src, dst), sizes(lenSrc, lenDst), require(lenDst >= lenSrc, StsSize));
    std::memmove(dst, src, static_cast<std::size_t>(lenSrc) * sizeof(T));
    std::fill(dst + lenSrc, dst + lenDst, T{0});
    return StsNoErr;
}

} // namespace

Status lyrsCopyWithPadding_32f(const Elem32f* pSrc, Elem32s lenSrc, Elem32f* pDst, Elem32s lenDst)
{
    return copyWithPadding(pSrc, lenSrc, pDst, lenDst);
}

Status lyrsCopyWithPadding_16s(const Elem16s* pSrc, Elem32s lenSrc, Elem16s* pDst, Elem32s lenDst)
{
    return copyWithPadding(pSrc, lenSrc, pDst, lenDst);
}
