// Distances of floating-point values in units of the last place.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>

namespace lyr::test {

// How many representable values lie between a and b; both NaN is 0, one NaN is the largest number.
template <class T>
std::int64_t ulpDistance(T a, T b)
{
    using Int = std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>;
    if (std::isnan(a) || std::isnan(b)) {
        return std::isnan(a) && std::isnan(b) ? 0 : std::numeric_limits<std::int64_t>::max();
    }
    const auto place = [](T x) {
        const Int bits = std::bit_cast<Int>(x);
        return static_cast<std::int64_t>(bits < 0 ? std::numeric_limits<Int>::min() - bits : bits);
    };
    const auto pa = place(a);
    const auto pb = place(b);
    if ((pa < 0) != (pb < 0)) {
        const auto magnitude = static_cast<std::uint64_t>(std::llabs(pa)) + static_cast<std::uint64_t>(std::llabs(pb));
        return magnitude > INT64_MAX ? INT64_MAX : static_cast<std::int64_t>(magnitude);
    }
    return std::llabs(pa - pb);
}

// One unit in the last place of x.
template <class T>
T ulp(T x)
{
    const T a = std::fabs(x);
    return std::isfinite(a) ? std::nextafter(a, std::numeric_limits<T>::infinity()) - a : T{0};
}

template <class T>
::testing::AssertionResult withinUlps(T actual, T expected, std::int64_t most)
{
    const std::int64_t distance = ulpDistance(actual, expected);
    if (distance <= most) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << actual << " is " << distance << " units in the last place from "
                                         << expected;
}

// The error in units of the last place of the exact result, which a value of more precision stands for.
template <class T>
::testing::AssertionResult withinUnits(T actual, long double exact, double most)
{
    const auto unit = static_cast<long double>(ulp(static_cast<T>(exact)));
    const long double error = std::fabs(static_cast<long double>(actual) - exact) / unit;
    if (error <= static_cast<long double>(most)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << actual << " is " << error << " units in the last place from " << exact;
}

// The same bits; two NaN of whatever bits count as the same.
template <class T>
::testing::AssertionResult sameBits(T actual, T expected)
{
    using Int = std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>;
    if ((std::isnan(actual) && std::isnan(expected)) || std::bit_cast<Int>(actual) == std::bit_cast<Int>(expected)) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << actual << " is not " << expected;
}

} // namespace lyr::test
