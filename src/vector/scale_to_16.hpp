// 32-bit lanes times 2^(-scaleFactor) on their way to 16 bits, in integers. What a step leaves outside 16 bits is for
// the saturating store behind it.
#pragma once

#include "frame/simd.hpp"

namespace lyr::LYR_NS {

// Division by 2^shift to nearest, ties to even, 1 <= shift <= 31. The rest of the division is rounded by itself, so
// that no lane overflows.
struct ShiftRightNearest
{
    explicit ShiftRightNearest(int shift) : count(shift), restMask(static_cast<std::int32_t>((1U << shift) - 1)) {}

    LYR_INLINE I32 operator()(I32 x) const
    {
        const I32 quotient = x >> count;
        const U32 rest = as<U32>(x & splat(restMask));
        const U32 odd = as<U32>(quotient & splat(std::int32_t{1}));
        return quotient + as<I32>((rest + odd + as<U32>(splat(restMask >> 1))) >> count);
    }

private:
    int count;
    std::int32_t restMask;
};

// Multiplication by 2^shift, 1 <= shift <= 15. What does not fit 16 bits before the shift does not fit them after it
// either.
struct ShiftLeftLimited
{
    explicit ShiftLeftLimited(int shift) : count(shift) {}

    LYR_INLINE I32 operator()(I32 x) const
    {
        const I32 top = splat(std::int32_t{INT16_MAX});
        const I32 bottom = splat(std::int32_t{INT16_MIN});
        const I32 limited = min(max(x, bottom), top);
        return as<I32>(as<U32>(limited) << count);
    }

private:
    int count;
};

} // namespace lyr::LYR_NS
