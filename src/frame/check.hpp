// Argument checks. An exported function opens with
//
//     LYR_CHECK(stride(width, step), pointers(pSrc, pDst), sizes(width, height));
//
// and the order of the arguments is the order of the tests: the first that fails decides the status. Every test is
// evaluated, so one that looks behind a pointer belongs in a second LYR_CHECK.
#pragma once

#include "frame/width.hpp"
#include "lyrsr.h"

#include <cstddef>

namespace lyr::check {

// A required pointer is null.
template <class... T>
LYR_INLINE constexpr Status pointers(const T*... p)
{
    return ((p == nullptr) || ...) ? StsNullPtr : StsNoErr;
}

// A length, count or dimension is below 1.
template <class... T>
LYR_INLINE constexpr Status sizes(T... n)
{
    return ((n < 1) || ...) ? StsSize : StsNoErr;
}

LYR_INLINE constexpr Status atLeast(Elem32s least, Elem32s n)
{
    return n < least ? StsSize : StsNoErr;
}

// A row is wider than the distance to the next one.
LYR_INLINE constexpr Status stride(Elem64s width, Elem64s step)
{
    return width > step ? StsStep : StsNoErr;
}

// `status` unless `legal`.
LYR_INLINE constexpr Status require(bool legal, Status status)
{
    return legal ? StsNoErr : status;
}

template <class... S>
LYR_INLINE constexpr Status first(S... status)
{
    Status result = StsNoErr;
    static_cast<void>((((result = status) == StsNoErr) && ...));
    return result;
}

} // namespace lyr::check

#define LYR_CHECK(...)                                                                                                 \
    do {                                                                                                               \
        using namespace ::lyr::check;                                                                                  \
        if (const Status lyrStatus = first(__VA_ARGS__); lyrStatus != StsNoErr) [[unlikely]] {                         \
            return lyrStatus;                                                                                          \
        }                                                                                                              \
    } while (false)
