// Integer arithmetic by name: what saturates, what wraps, and which way a shift rounds. Shifts and sums that could
// leave the range of a signed type go through these and nowhere else.
#pragma once

#include "frame/width.hpp"
#include "lyrsr.h"

#include <cstdint>
#include <limits>
#include <type_traits>

namespace lyr {

// Limited to the range of the narrower type.
LYR_INLINE constexpr Elem16s saturate16(Elem64s x)
{
    return static_cast<Elem16s>(x > INT16_MAX ? INT16_MAX : (x < INT16_MIN ? INT16_MIN : x));
}

LYR_INLINE constexpr Elem32s saturate32(Elem64s x)
{
    return static_cast<Elem32s>(x > INT32_MAX ? INT32_MAX : (x < INT32_MIN ? INT32_MIN : x));
}

// The low bits, as the processor's integer units give them.
LYR_INLINE constexpr Elem16s wrap16(Elem64s x)
{
    return static_cast<Elem16s>(static_cast<std::uint16_t>(x));
}
LYR_INLINE constexpr Elem32s wrap32(Elem64s x)
{
    return static_cast<Elem32s>(static_cast<std::uint32_t>(x));
}

LYR_INLINE constexpr Elem32s wrappingAdd(Elem32s a, Elem32s b)
{
    return static_cast<Elem32s>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

LYR_INLINE constexpr Elem32s wrappingSub(Elem32s a, Elem32s b)
{
    return static_cast<Elem32s>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

LYR_INLINE constexpr Elem32s wrappingMul(Elem32s a, Elem32s b)
{
    return static_cast<Elem32s>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

// Arithmetic shift to the right, toward minus infinity; a count at or beyond the width fills with the sign.
template <class T>
LYR_INLINE constexpr T shiftRight(T x, std::uint32_t count)
{
    static_assert(std::is_signed_v<T>);
    constexpr std::uint32_t width = std::numeric_limits<T>::digits;
    return static_cast<T>(x >> (count > width ? width : count));
}

// Shift to the left that limits to the range of the type.
template <class T>
LYR_INLINE constexpr T shiftLeftSaturating(T x, std::uint32_t count)
{
    static_assert(std::is_signed_v<T>);
    constexpr T top = std::numeric_limits<T>::max();
    constexpr T bottom = std::numeric_limits<T>::min();
    if (x == 0) {
        return 0;
    }
    if (count >= static_cast<std::uint32_t>(std::numeric_limits<T>::digits)) {
        return x > 0 ? top : bottom;
    }
    if (x > static_cast<T>(top >> count)) {
        return top;
    }
    if (x < static_cast<T>(bottom >> count)) {
        return bottom;
    }
    return static_cast<T>(x * static_cast<T>(T{1} << count));
}

// Shift to the left that drops what leaves the width.
LYR_INLINE constexpr Elem32s shiftLeftWrapping(Elem32s x, std::uint32_t count)
{
    return count > 31 ? 0 : static_cast<Elem32s>(static_cast<std::uint32_t>(x) << count);
}

// Division by 2^count, to nearest with ties to even; exact for every x, as nothing is added to x itself. A count at or
// beyond the width of the type gives 0.
template <class T>
LYR_INLINE constexpr T shiftRightNearest(T x, std::uint32_t count)
{
    static_assert(std::is_signed_v<T>);
    using U = std::make_unsigned_t<T>;
    constexpr std::uint32_t width = std::numeric_limits<T>::digits + 1;
    if (count == 0) {
        return x;
    }
    if (count >= width) {
        return 0; // |x| is at most half of 2^count, and half goes to the even 0
    }
    const T quotient = static_cast<T>(x >> count);
    const U rest = static_cast<U>(static_cast<U>(x) & static_cast<U>((U{1} << count) - 1));
    const U half = static_cast<U>(U{1} << (count - 1));
    const bool up = rest > half || (rest == half && (quotient & 1) != 0);
    return static_cast<T>(quotient + (up ? 1 : 0));
}

} // namespace lyr
