// The checks of streamed frames that the delta functions share.
#pragma once

#include "frame/check.hpp"
#include "lyrsr.h"

namespace lyr::check {

// A call without a frame has something to do only at the end of an utterance.
LYR_INLINE constexpr Status frames(Elem32s width, Elem32s height, Elem32s deltaMode)
{
    const bool flushes = height == 0 && (deltaMode & DeltaEnd) != 0;
    return width < 1 || (height < 1 && !flushes) ? StsSize : StsNoErr;
}

// `parts` times the width fit a row of the feature matrix.
LYR_INLINE constexpr Status columns(Elem32s parts, Elem32s width, Elem32s dstStep)
{
    return stride(Elem64s{parts} * width, dstStep);
}

// An utterance begins with as many frames as the window needs before its first centre, even where it ends with them
// too.
LYR_INLINE constexpr Status history(Elem32s least, Elem32s height, Elem32s deltaMode)
{
    return (deltaMode & DeltaBegin) != 0 ? atLeast(least, height) : StsNoErr;
}

} // namespace lyr::check
