// Integer arithmetic by name, against 128-bit or 64-bit integers where the answer is obvious.

#include "frame/fixed_point.hpp"
#include "support/random.hpp"

#include <gtest/gtest.h>
#include <vector>

namespace {

using lyr::shiftLeftSaturating;
using lyr::shiftRight;
using lyr::shiftRightNearest;
using lyr::test::Random;

constexpr std::uint32_t counts[] = {0,  1,  2,  3,  7,  8,  14, 15, 16,   17,        29,
                                    30, 31, 32, 33, 62, 63, 64, 65, 1000, UINT32_MAX};

template <class T>
constexpr Elem64s low = std::numeric_limits<T>::min();
template <class T>
constexpr Elem64s high = std::numeric_limits<T>::max();

// floor(x / 2^count) in any range; beyond 62 bits what is left is the sign.
Elem64s floorShift(Elem64s x, std::uint32_t count)
{
    return count > 62 ? (x < 0 ? -1 : 0) : x >> count;
}

// x / 2^count to nearest, ties to even, for |x| below 2^32.
Elem64s nearestShift(Elem64s x, std::uint32_t count)
{
    if (count > 60) {
        return 0;
    }
    const Elem64s unit = Elem64s{1} << count;
    const Elem64s floor = x >> count;
    const Elem64s rest = x - floor * unit;
    return floor + (2 * rest > unit || (2 * rest == unit && floor % 2 != 0) ? 1 : 0);
}

// x * 2^count limited to the range of T, for |x| below 2^32.
template <class T>
Elem64s limitedLeft(Elem64s x, std::uint32_t count)
{
    const Elem64s wide = x == 0 ? 0 : (count > 31 ? (x > 0 ? INT64_MAX : INT64_MIN) : x * (Elem64s{1} << count));
    return wide > high<T> ? high<T> : (wide < low<T> ? low<T> : wide);
}

template <class T>
void compareShifts(Elem64s value, std::uint32_t count)
{
    const auto x = static_cast<T>(value);
    ASSERT_EQ(shiftRight(x, count), floorShift(value, count)) << value << " by " << count;
    ASSERT_EQ(shiftRightNearest(x, count), nearestShift(value, count)) << value << " by " << count;
    ASSERT_EQ(shiftLeftSaturating(x, count), limitedLeft<T>(value, count)) << value << " by " << count;
}

TEST(FixedPoint, EveryShiftOfEvery16BitInteger)
{
    for (Elem64s x = INT16_MIN; x <= INT16_MAX; ++x) {
        for (std::uint32_t count = 0; count <= 18; ++count) {
            compareShifts<Elem16s>(x, count);
        }
        compareShifts<Elem16s>(x, UINT32_MAX);
    }
}

TEST(FixedPoint, ShiftsOf32BitIntegers)
{
    Random random(1);
    std::vector<Elem64s> values{INT32_MIN, INT32_MIN + 1, -1, 0, 1, INT32_MAX - 1, INT32_MAX};
    for (int bit = 0; bit < 31; ++bit) { // ties and their neighbours
        for (const Elem64s near : {-1, 0, 1}) {
            values.push_back((Elem64s{1} << bit) + near);
            values.push_back(-(Elem64s{1} << bit) + near);
            values.push_back((Elem64s{3} << bit) / 2 + near);
        }
    }
    for (int k = 0; k < 20000; ++k) {
        values.push_back(random.uniform<Elem32s>(INT32_MIN, INT32_MAX));
    }
    for (const Elem64s x : values) {
        for (const std::uint32_t count : counts) {
            if (x <= INT32_MAX) {
                compareShifts<Elem32s>(x, count);
            }
        }
    }
}

TEST(FixedPoint, ShiftsOf64BitIntegers)
{
    for (const Elem64s x : {INT64_MIN, INT64_MIN + 1, Elem64s{-1}, Elem64s{0}, Elem64s{1}, INT64_MAX}) {
        for (const std::uint32_t count : counts) {
            EXPECT_EQ(shiftRight(x, count), count > 62 ? (x < 0 ? -1 : 0) : x >> count);
        }
    }
    EXPECT_EQ(shiftRightNearest(INT64_MAX, 1), Elem64s{1} << 62);
    EXPECT_EQ(shiftRightNearest(INT64_MIN, 63), -1);
    EXPECT_EQ(shiftRightNearest(INT64_MIN, 64), 0) << "half goes to the even zero";
    EXPECT_EQ(shiftRightNearest(Elem64s{5} << 60, 61), 2) << "2.5";
    EXPECT_EQ(shiftLeftSaturating(Elem64s{1}, 62), Elem64s{1} << 62);
    EXPECT_EQ(shiftLeftSaturating(Elem64s{1}, 63), INT64_MAX);
    EXPECT_EQ(shiftLeftSaturating(Elem64s{-1}, 63), INT64_MIN);
    EXPECT_EQ(shiftLeftSaturating(Elem64s{-3}, 62), INT64_MIN);
}

TEST(FixedPoint, Saturation)
{
    for (Elem64s x = -70000; x <= 70000; ++x) {
        ASSERT_EQ(lyr::saturate16(x), x > 32767 ? 32767 : (x < -32768 ? -32768 : x));
    }
    for (const Elem64s x : {INT64_MIN, Elem64s{INT32_MIN} - 1, Elem64s{INT32_MIN}, Elem64s{INT32_MAX},
                            Elem64s{INT32_MAX} + 1, INT64_MAX}) {
        EXPECT_EQ(lyr::saturate32(x), x > INT32_MAX ? INT32_MAX : (x < INT32_MIN ? INT32_MIN : x));
        EXPECT_EQ(lyr::saturate16(x), x > 0 ? INT16_MAX : INT16_MIN);
    }
}

TEST(FixedPoint, WrapAround)
{
    for (Elem64s x = -200000; x <= 200000; ++x) {
        const Elem64s residue = ((x % 65536) + 65536) % 65536;
        ASSERT_EQ(lyr::wrap16(x), residue >= 32768 ? residue - 65536 : residue);
    }
    constexpr Elem64s modulus = Elem64s{1} << 32;
    const auto wrapped = [](Elem64s x) {
        const Elem64s residue = ((x % modulus) + modulus) % modulus;
        return residue >= modulus / 2 ? residue - modulus : residue;
    };
    Random random(2);
    std::vector<Elem32s> values{INT32_MIN, INT32_MIN + 1, -65536, -1, 0, 1, 2, 65536, INT32_MAX};
    for (int k = 0; k < 200; ++k) {
        values.push_back(random.uniform<Elem32s>(INT32_MIN, INT32_MAX));
    }
    for (const Elem32s a : values) {
        for (const Elem32s b : values) {
            ASSERT_EQ(lyr::wrappingAdd(a, b), wrapped(Elem64s{a} + b));
            ASSERT_EQ(lyr::wrappingSub(a, b), wrapped(Elem64s{a} - b));
            ASSERT_EQ(lyr::wrappingMul(a, b), wrapped(Elem64s{a} * b));
            ASSERT_EQ(lyr::wrap32(Elem64s{a} * b), wrapped(Elem64s{a} * b));
        }
        for (std::uint32_t count = 0; count <= 31; ++count) {
            ASSERT_EQ(lyr::shiftLeftWrapping(a, count), wrapped(Elem64s{a} * (Elem64s{1} << count) % modulus))
                << a << " " << count;
        }
        EXPECT_EQ(lyr::shiftLeftWrapping(a, 32), 0);
        EXPECT_EQ(lyr::shiftLeftWrapping(a, UINT32_MAX), 0);
    }
}

TEST(FixedPoint, RoundingOfHalves)
{
    EXPECT_EQ(shiftRightNearest(Elem32s{1}, 1), 0);
    EXPECT_EQ(shiftRightNearest(Elem32s{3}, 1), 2);
    EXPECT_EQ(shiftRightNearest(Elem32s{5}, 1), 2);
    EXPECT_EQ(shiftRightNearest(Elem32s{7}, 1), 4);
    EXPECT_EQ(shiftRightNearest(Elem32s{INT32_MAX}, 31), 1) << "nothing overflows on the way";
    EXPECT_EQ(shiftRightNearest(Elem32s{INT32_MIN}, 32), 0);
}

} // namespace
