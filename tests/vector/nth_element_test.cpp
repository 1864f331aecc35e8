// The N-th largest element: every N of short vectors, and the vectors that a selection finds hard.

#include "lyrsr.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <type_traits>
#include <utility>
#include <vector>

#include "oracle/vector_extrema.hpp"
#include "support/allocation.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;

Status nth(const Elem32s* p, Elem32s len, Elem32s n, Elem32s* r)
{
    return lyrsNthMaxElement_32s(p, len, n, r);
}
Status nth(const Elem32f* p, Elem32s len, Elem32s n, Elem32f* r)
{
    return lyrsNthMaxElement_32f(p, len, n, r);
}
Status nth(const Elem64f* p, Elem32s len, Elem32s n, Elem64f* r)
{
    return lyrsNthMaxElement_64f(p, len, n, r);
}

template <class T>
void expectEveryN(const std::vector<T>& x)
{
    const Guarded<T> src(x, Guarded<T>::flush(x.size()));
    const auto len = static_cast<Elem32s>(x.size());
    for (Elem32s n = 0; n < len; ++n) {
        T result = -77;
        ASSERT_EQ(nth(src.data(), len, n, &result), StsNoErr);
        ASSERT_EQ(result, lyr::oracle::nthLargest(x, n)) << "n " << n << " of " << len;
    }
    ASSERT_EQ(src.copy(), x) << "the source is as it was";
}

// A NaN that can be told from others.
template <class T>
T numbered(T nan, std::size_t number)
{
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    return std::bit_cast<T>(std::bit_cast<Bits>(nan) | static_cast<Bits>(number));
}

template <class T>
class NthMaxElement : public ::testing::Test
{};
using Types = ::testing::Types<Elem32s, Elem32f, Elem64f>;
TYPED_TEST_SUITE(NthMaxElement, Types);

TYPED_TEST(NthMaxElement, EveryIndexOfShortVectors)
{
    using T = TypeParam;
    Random random(17);
    for (std::size_t len = 1; len <= 40; ++len) {
        expectEveryN(random.vector<T>(len, T(-1000), T(1000)));
        std::vector<T> few(len);
        for (T& x : few) {
            x = static_cast<T>(random.uniform(0, 3));
        }
        expectEveryN(few);
        expectEveryN(std::vector<T>(len, T(5)));
        std::vector<T> ordered(len);
        std::iota(ordered.begin(), ordered.end(), T(0));
        expectEveryN(ordered);
        std::reverse(ordered.begin(), ordered.end());
        expectEveryN(ordered);
    }
}

// The selection to the letter: with NaN its sequence of exchanges decides which element is the answer.
template <class T>
T selected(std::vector<T> p, std::size_t n)
{
    auto lo = std::ptrdiff_t{0};
    auto hi = static_cast<std::ptrdiff_t>(p.size()) - 1;
    const auto at = [&p](std::ptrdiff_t k) -> T& { return p[static_cast<std::size_t>(k)]; };
    for (;;) {
        const T pivot = at(lo);
        auto i = lo + 1;
        auto j = hi;
        while (i <= j) {
            while (i <= hi && !(at(i) < pivot)) {
                ++i;
            }
            while (j > lo && at(j) < pivot) {
                --j;
            }
            if (i < j) {
                std::swap(at(i), at(j));
                ++i;
                --j;
            } else {
                break;
            }
        }
        std::swap(at(lo), at(i - 1));
        auto first = i - 1;
        while (first > lo && at(first - 1) == pivot) {
            --first;
        }
        const auto wanted = static_cast<std::ptrdiff_t>(n);
        if (first <= wanted && wanted < i) {
            return pivot;
        }
        if (wanted < first) {
            hi = first - 1;
        } else {
            lo = i;
        }
    }
}

template <class T>
void expectSelection(const std::vector<T>& x)
{
    for (std::size_t n = 0; n < x.size(); ++n) {
        T result = -77;
        ASSERT_EQ(nth(x.data(), static_cast<Elem32s>(x.size()), static_cast<Elem32s>(n), &result), StsNoErr);
        const T expected = selected(x, n);
        // Bits, as the NaN of a vector are told apart by them.
        ASSERT_EQ(std::memcmp(&result, &expected, sizeof result), 0)
            << result << " for " << expected << ", n " << n << " of " << x.size();
    }
}

TYPED_TEST(NthMaxElement, NanTakesThePlaceThatTheSelectionLeavesIt)
{
    using T = TypeParam;
    if constexpr (std::numeric_limits<T>::has_quiet_NaN) {
        const T nan = std::numeric_limits<T>::quiet_NaN();
        const T x[] = {nan, nan, 1};
        T result = 0;
        ASSERT_EQ(nth(x, 3, 0, &result), StsNoErr);
        EXPECT_TRUE(std::isnan(result));
        ASSERT_EQ(nth(x, 3, 1, &result), StsNoErr);
        EXPECT_EQ(result, T(1));
        Random random(23);
        for (std::size_t len = 1; len <= 40; ++len) {
            for (int round = 0; round < 8; ++round) {
                // Few values, so that runs of equals occur, or many; falling ones make passes that take little away.
                auto v = random.vector<T>(len, T(1), T(1000));
                for (T& e : v) {
                    e = round % 2 == 0 ? std::floor(e / 200) + 1 : e;
                }
                if (round >= 4) {
                    std::sort(v.begin(), v.end(), std::greater<T>{});
                }
                for (std::size_t i = static_cast<std::size_t>(random.uniform(0, 5)); i < len; i += 6) {
                    v[i] = numbered(nan, i);
                }
                expectSelection(v);
            }
        }
    }
}

// Zeros of unlike sign are equal, and their bits tell which of them the sequence of exchanges left there.
TYPED_TEST(NthMaxElement, ZerosOfUnlikeSignTakeThePlaceThatTheSelectionLeavesThem)
{
    using T = TypeParam;
    if constexpr (std::is_floating_point_v<T>) {
        const T o = 0;
        // All but the first are in order, so that a pass takes one element away.
        expectSelection(std::vector<T>{9, -o, -o, -o, o, o, -o, -o, o, o, -1, -o, -o, o, -o, o, -1});
        Random random(29);
        for (std::size_t len = 1; len <= 60; ++len) {
            for (int round = 0; round < 12; ++round) {
                std::vector<T> v(len);
                for (T& e : v) {
                    e = round % 3 == 0 ? static_cast<T>(random.uniform(-1, 1)) : T(0);
                    if (round % 3 == 2 && random.uniform(0, 4) == 0) {
                        e = T(-1);
                    }
                    e = e == T(0) && random.uniform(0, 1) == 0 ? -o : e;
                }
                if (round >= 3 && round < 9) {
                    std::sort(v.begin(), v.end(), std::greater<T>{});
                }
                if (round >= 6) {
                    v[0] = T(9);
                }
                if (round == 11) {
                    v[len / 2] = std::numeric_limits<T>::quiet_NaN();
                }
                expectSelection(v);
            }
        }
    }
}

// The bits of a NaN, too, are those of the element: one that would signal comes back as it is.
TYPED_TEST(NthMaxElement, KeepsTheBitsOfANanThatSignals)
{
    using T = TypeParam;
    if constexpr (std::is_floating_point_v<T>) {
        using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
        const auto infinity = std::bit_cast<Bits>(std::numeric_limits<T>::infinity());
        const Bits bits[] = {infinity + 1, infinity + 2, infinity + 3};
        T x[3];
        std::memcpy(x, bits, sizeof x);
        for (const Elem32s len : {1, 2, 3}) {
            T result = 0;
            ASSERT_EQ(nth(x, len, len - 1, &result), StsNoErr);
            EXPECT_EQ(std::memcmp(&result, bits, sizeof result), 0) << "a pass takes the first of them to the end";
        }
    }
}

TYPED_TEST(NthMaxElement, LongVectors)
{
    using T = TypeParam;
    Random random(19);
    const std::size_t len = 20000;
    const auto x = random.vector<T>(len, T(-100000), T(100000));
    std::vector<T> sorted(x);
    std::sort(sorted.begin(), sorted.end(), std::greater<T>{});
    for (const Elem32s n : {0, 1, 9999, 10000, 19998, 19999}) {
        T result = 0;
        ASSERT_EQ(nth(x.data(), static_cast<Elem32s>(len), n, &result), StsNoErr);
        ASSERT_EQ(result, sorted[static_cast<std::size_t>(n)]);
    }
}

// A million elements in order, or all the same, or all NaN: a selection that took one element away at a time would not
// come back.
TYPED_TEST(NthMaxElement, OrderedAndConstantVectorsTakeNoLonger)
{
    using T = TypeParam;
    const Elem32s len = 1000000;
    std::vector<T> x(static_cast<std::size_t>(len));
    std::iota(x.begin(), x.end(), T(0));
    T result = 0;
    ASSERT_EQ(nth(x.data(), len, len / 2, &result), StsNoErr);
    EXPECT_EQ(result, T(len - 1 - len / 2));
    std::reverse(x.begin(), x.end());
    ASSERT_EQ(nth(x.data(), len, len / 2, &result), StsNoErr);
    EXPECT_EQ(result, T(len - 1 - len / 2));
    std::fill(x.begin(), x.end(), T(3));
    for (const Elem32s n : {0, len / 2, len - 1}) {
        ASSERT_EQ(nth(x.data(), len, n, &result), StsNoErr);
        EXPECT_EQ(result, T(3));
    }
    if constexpr (std::numeric_limits<T>::has_quiet_NaN) {
        // In order, but for a few zeros of either sign.
        std::iota(x.begin(), x.end(), T(0));
        x[1] = -T(0);
        for (const Elem32s n : {0, len / 2, len - 3}) {
            ASSERT_EQ(nth(x.data(), len, n, &result), StsNoErr);
            EXPECT_EQ(result, T(len - 1 - n));
        }
        std::fill(x.begin(), x.end(), std::numeric_limits<T>::quiet_NaN());
        ASSERT_EQ(nth(x.data(), len, len - 1, &result), StsNoErr);
        EXPECT_TRUE(std::isnan(result));
    }
}

TYPED_TEST(NthMaxElement, RejectsIndicesOutsideAndFailedAllocation)
{
    using T = TypeParam;
    const T x[] = {3, 1, 2};
    T result = 42;
    EXPECT_EQ(nth(x, 3, -1, &result), StsBadArg);
    EXPECT_EQ(nth(x, 3, 3, &result), StsBadArg);
    EXPECT_EQ(nth(x, 0, 3, &result), StsSize) << "the length comes ahead of the index";
    EXPECT_EQ(nth(static_cast<const T*>(nullptr), 0, -1, &result), StsNullPtr);
    EXPECT_EQ(result, T(42));
    const int failed =
        lyr::test::failEachAllocation([&] { return nth(x, 3, 1, &result); }, {}, [&] { EXPECT_EQ(result, T(42)); });
    EXPECT_EQ(failed, 1);
    EXPECT_EQ(result, T(2));
    const long live = lyr::test::liveAllocations();
    const Status status = nth(x, 3, 0, &result);
    EXPECT_EQ(lyr::test::liveAllocations(), live);
    EXPECT_EQ(status, StsNoErr);
}

} // namespace
