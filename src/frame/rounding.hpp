// The floating-point environment of a call: what a function sets, it puts back.
//
// Arithmetic under a scope is a call of a kernel through its table. The compiler cannot see through that call and so
// cannot move the arithmetic across the change of the control word.
#pragma once

#include "frame/width.hpp"
#include "lyrsr.h"

#include <xmmintrin.h>

namespace lyr {

inline constexpr unsigned roundingBits = 0x6000U;
inline constexpr unsigned roundNearest = 0x0000U;
inline constexpr unsigned roundTowardZero = 0x6000U;
inline constexpr unsigned exceptionMasks = 0x1F80U;
inline constexpr unsigned exceptionFlags = 0x003FU;
inline constexpr unsigned invalidFlag = 0x0001U;

// The rounding mode to nearest, as an argument of the conversions to integers.
inline constexpr Elem32s convertToNearest = 1;

// For its lifetime: a rounding mode, and all exceptions masked. Afterwards the control bits and the flags in
// `KeptFlags` are as they were found; the other flags show what the arithmetic raised.
template <unsigned KeptFlags>
class EnvironmentScope
{
public:
    LYR_INLINE explicit EnvironmentScope(unsigned rounding) noexcept : saved(_mm_getcsr())
    {
        change(saved, (saved & ~roundingBits) | exceptionMasks | rounding);
    }
    // Keeps the caller's rounding mode.
    LYR_INLINE EnvironmentScope() noexcept : saved(_mm_getcsr()) { change(saved, saved | exceptionMasks); }
    LYR_INLINE ~EnvironmentScope()
    {
        constexpr unsigned restored = (0xFFFFU & ~exceptionFlags) | KeptFlags;
        const unsigned now = _mm_getcsr();
        change(now, (saved & restored) | (now & ~restored));
    }
    EnvironmentScope(const EnvironmentScope&) = delete;
    EnvironmentScope& operator=(const EnvironmentScope&) = delete;

private:
    // A write waits for the arithmetic before it and holds up what follows; most often there is nothing to write.
    static LYR_INLINE void change(unsigned from, unsigned to) noexcept
    {
        if (from != to) {
            _mm_setcsr(to);
        }
    }

    unsigned saved;
};

// Of a conversion to integers: overflow leaves no trace in the sticky invalid flag.
using ConversionScope = EnvironmentScope<invalidFlag>;
// Of a function that keeps all of the caller's flags.
using FlagScope = EnvironmentScope<exceptionFlags>;

} // namespace lyr
