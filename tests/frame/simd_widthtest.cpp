// The vector layer, compiled for one width: loads and stores with their tails, conversions, masks, sums. Scalars are
// the reference.

#include "frame/simd.hpp"

#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

namespace {

using namespace lyr::LYR_NS; // NOLINT: everything under test is there
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::sameBits;

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

template <class T, class V>
std::vector<T> lanesOf(V v)
{
    std::vector<T> values(sizeof(V) / sizeof(T));
    std::memcpy(values.data(), &v, sizeof v);
    return values;
}

template <class T, class V>
void expectLanes(V v, const std::vector<T>& expected)
{
    const auto actual = lanesOf<T>(v);
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t k = 0; k < actual.size(); ++k) {
        EXPECT_EQ(actual[k], expected[k]) << "lane " << k;
    }
}

template <class T>
class Memory : public ::testing::Test
{};
using Elements = ::testing::Types<float, double, std::int16_t, std::int32_t>;
TYPED_TEST_SUITE(Memory, Elements);

template <class T>
std::vector<T> numbers(std::size_t n)
{
    std::vector<T> v(n);
    for (std::size_t k = 0; k < n; ++k) {
        const int i = static_cast<int>(k);
        v[k] = static_cast<T>(i % 2 == 0 ? 100 + i : -50 - i);
    }
    return v;
}

TYPED_TEST(Memory, WholeVectors)
{
    using T = TypeParam;
    constexpr std::size_t L = static_cast<std::size_t>(lanes<VectorOf<T>>);
    static_assert(sizeof(VectorOf<T>) == LYR_WIDTH / 8);
    const auto values = numbers<T>(L);
    for (std::size_t offset = 0; offset < 64; offset += sizeof(T)) {
        const Guarded<T> source(values, offset);
        const Guarded<T> target(L, (offset + sizeof(T)) % 64);
        expectLanes<T>(load<Unaligned>(source.data()), values);
        store<Unaligned>(target.data(), load<Unaligned>(source.data()));
        EXPECT_EQ(target.copy(), values);
        EXPECT_TRUE(target.intact());
        if (offset % 16 == 0) {
            expectLanes<T>(load<Aligned>(source.data()), values);
            const Guarded<T> aligned(L, offset);
            store<Aligned>(aligned.data(), load<Aligned>(source.data()));
            EXPECT_EQ(aligned.copy(), values);
        }
    }
    expectLanes<T>(splat(T{7}), std::vector<T>(L, 7));
}

// At the end of a page, where one byte too many ends the program.
TYPED_TEST(Memory, TailsTouchNothingBehindThem)
{
    using T = TypeParam;
    constexpr int L = lanes<VectorOf<T>>;
    for (int n = 1; n < L; ++n) {
        const auto count = static_cast<std::size_t>(n);
        auto values = numbers<T>(count);
        for (const std::size_t offset : {Guarded<T>::flush(count), std::size_t{0}, sizeof(T)}) {
            const Guarded<T> source(values, offset);
            auto expected = values;
            expected.resize(static_cast<std::size_t>(L), T{0});
            expectLanes<T>(loadTail<Unaligned>(source.data(), n), expected);
            const Guarded<T> target(count, offset);
            storeTail(target.data(), load<Unaligned>(numbers<T>(static_cast<std::size_t>(L)).data()), n);
            EXPECT_EQ(target.copy(), values);
            EXPECT_TRUE(target.intact());
        }
    }
}

// The aligned form may load the rest of the 16-byte unit, and masks it whatever it holds.
TYPED_TEST(Memory, AlignedTailsMaskWhatLiesBehind)
{
    using T = TypeParam;
    constexpr int L = lanes<VectorOf<T>>;
    for (int n = 1; n < L; ++n) {
        alignas(64) T values[64 / sizeof(T)];
        std::memset(values, 0xFF, sizeof values); // not-a-number, or -1
        auto expected = numbers<T>(static_cast<std::size_t>(n));
        std::copy(expected.begin(), expected.end(), values);
        expected.resize(static_cast<std::size_t>(L), T{0});
        expectLanes<T>(loadTail<Aligned>(values, n), expected);
    }
}

TYPED_TEST(Memory, FirstLanes)
{
    using T = TypeParam;
    constexpr int L = lanes<VectorOf<T>>;
    for (int n = 0; n <= L; ++n) {
        const auto bytes = lanesOf<unsigned char>(firstLanes<T>(n));
        for (std::size_t k = 0; k < bytes.size(); ++k) {
            ASSERT_EQ(bytes[k], k < static_cast<std::size_t>(n) * sizeof(T) ? 0xFF : 0) << n;
        }
    }
}

TEST(Aligned, UnitsBehindTheTailAreNotRead)
{
    // The last element's 16-byte unit is the last of the page.
    const Guarded<float> source(std::vector<float>{1, 2, 3, 4}, Guarded<float>::flush(4));
    ASSERT_EQ(reinterpret_cast<std::uintptr_t>(source.data()) % 16, 0U);
    for (int n = 1; n < std::min(lanes<F32>, 4); ++n) {
        EXPECT_EQ(sum(loadTail<Aligned>(source.data(), n)), static_cast<float>(n * (n + 1) / 2));
    }
}

// ----------------------------------------------------------------------------------------------------------- widening

template <class To, class From, class Whole, class Tail>
void checkWidening(Whole whole, Tail tail)
{
    constexpr int L = lanes<VectorOf<To>>;
    for (int n = 1; n <= L; ++n) {
        const auto count = static_cast<std::size_t>(n);
        const auto values = numbers<From>(count);
        for (const std::size_t offset : {Guarded<From>::flush(count), sizeof(From)}) {
            const Guarded<From> source(values, offset);
            std::vector<To> expected(values.begin(), values.end());
            expected.resize(static_cast<std::size_t>(L), To{0});
            expectLanes<To>(n == L ? whole(source.data()) : tail(source.data(), n), expected);
        }
    }
}

TEST(Widening, ShortsToIntegers)
{
    checkWidening<std::int32_t, std::int16_t>([](const std::int16_t* p) { return loadWide(p); },
                                              [](const std::int16_t* p, int n) { return loadWideTail(p, n); });
}

TEST(Widening, SinglesToDoubles)
{
    checkWidening<double, float>([](const float* p) { return loadWide(p); },
                                 [](const float* p, int n) { return loadWideTail(p, n); });
}

TEST(Widening, ShortsToDoubles)
{
    checkWidening<double, std::int16_t>([](const std::int16_t* p) { return loadWideToDouble(p); },
                                        [](const std::int16_t* p, int n) { return loadWideToDoubleTail(p, n); });
}

TEST(Widening, IntegersToDoubles)
{
    constexpr auto L = static_cast<std::size_t>(lanes<F64>);
    auto values = numbers<std::int32_t>(L);
    values[0] = INT32_MIN;
    values[L - 1] = INT32_MAX;
    const Guarded<std::int32_t> source(values, Guarded<std::int32_t>::flush(L));
    expectLanes<double>(loadWideToDouble(source.data()), std::vector<double>(values.begin(), values.end()));
}

TEST(Widening, DoublesBackToSingles)
{
    constexpr int L = lanes<F64>;
    const double third = 1.0 / 3;
    for (int n = 1; n <= L; ++n) {
        const auto count = static_cast<std::size_t>(n);
        const Guarded<float> target(count, Guarded<float>::flush(count));
        n == L ? storeNarrow(target.data(), splat(third)) : storeNarrowTail(target.data(), splat(third), n);
        EXPECT_EQ(target.copy(), std::vector<float>(count, static_cast<float>(third)));
        EXPECT_TRUE(target.intact());
    }
}

// --------------------------------------------------------------------------------------------------------- arithmetic

TEST(Arithmetic, ProductsAndSumsFusedWhereTheProcessorHasThem)
{
    // The square of 1 + e needs more than 24 bits: only a fused operation sees its last one.
    constexpr bool fused = LYR_WIDTH > 128;
    const float x = 1 + 0x1p-12F;
    const float rest = fused ? 0x1p-24F : 0.0F;
    EXPECT_EQ(lanesOf<float>(mulAdd(splat(x), splat(x), splat(-(1 + 0x1p-11F))))[0], rest);
    EXPECT_EQ(lanesOf<float>(mulSub(splat(x), splat(x), splat(1 + 0x1p-11F)))[0], -rest);
    const double y = 1 + 0x1p-27;
    const double restOfDouble = fused ? 0x1p-54 : 0.0;
    EXPECT_EQ(lanesOf<double>(mulAdd(splat(y), splat(y), splat(-(1 + 0x1p-26))))[0], restOfDouble);
    EXPECT_EQ(lanesOf<double>(mulSub(splat(y), splat(y), splat(1 + 0x1p-26)))[0], -restOfDouble);
}

// With a NaN the second operand is the result, as the processor has it: clamps are written with that in mind.
TEST(Arithmetic, MinimumAndMaximum)
{
    for (const auto& [a, b] :
         {std::pair{1.0F, 2.0F}, {2.0F, 1.0F}, {nan, 1.0F}, {1.0F, nan}, {-inf, inf}, {0.0F, -0.0F}}) {
        const float least = a < b ? a : b;
        const float most = a > b ? a : b;
        EXPECT_TRUE(sameBits(lanesOf<float>(min(splat(a), splat(b)))[1], least)) << a << ", " << b;
        EXPECT_TRUE(sameBits(lanesOf<float>(max(splat(a), splat(b)))[1], most)) << a << ", " << b;
        const double da = a;
        const double db = b;
        EXPECT_TRUE(sameBits(lanesOf<double>(min(splat(da), splat(db)))[1], da < db ? da : db));
        EXPECT_TRUE(sameBits(lanesOf<double>(max(splat(da), splat(db)))[1], da > db ? da : db));
    }
}

TEST(Arithmetic, RootsAndMagnitudes)
{
    expectLanes<float>(sqrt(splat(2.0F)), std::vector<float>(sizeof(F32) / 4, std::sqrt(2.0F)));
    expectLanes<double>(sqrt(splat(2.0)), std::vector<double>(sizeof(F64) / 8, std::sqrt(2.0)));
    for (const float x : {-3.0F, 3.0F, -0.0F, -inf, 1e-40F}) {
        EXPECT_TRUE(sameBits(lanesOf<float>(abs(splat(x)))[0], std::fabs(x)));
    }
}

TEST(Arithmetic, ConversionsToIntegersAndBack)
{
    const std::pair<float, std::int32_t> nearest[] = {{0.5F, 0},
                                                      {1.5F, 2},
                                                      {2.5F, 2},
                                                      {-0.5F, 0},
                                                      {-1.5F, -2},
                                                      {2147483520.0F, 2147483520},
                                                      {2147483648.0F, INT32_MIN},
                                                      {-3e9F, INT32_MIN},
                                                      {nan, INT32_MIN}};
    for (const auto& [x, expected] : nearest) {
        volatile float hidden = x;
        EXPECT_EQ(lanesOf<std::int32_t>(toInt(splat(hidden)))[0], expected) << x;
    }
    const std::pair<float, std::int32_t> truncated[] = {{2.9F, 2}, {-2.9F, -2}, {3e9F, INT32_MIN}, {nan, INT32_MIN}};
    for (const auto& [x, expected] : truncated) {
        volatile float hidden = x; // what a compiler computes from a constant out of range is its own affair
        EXPECT_EQ(lanesOf<std::int32_t>(truncateToInt(splat(hidden)))[0], expected) << x;
    }
    EXPECT_EQ(lanesOf<float>(toFloat(splat(std::int32_t{16777217})))[0], 16777216.0F);
}

template <class T>
void checkMasks()
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    for (int k = 0; k < L; ++k) {
        auto values = std::vector<T>(static_cast<std::size_t>(L), T{1});
        values[static_cast<std::size_t>(k)] = T{-1};
        const V v = load<Unaligned>(values.data());
        EXPECT_EQ(signBits(v), 1U << k);
        EXPECT_TRUE(any(v < V{}));
        EXPECT_FALSE(all(v < V{}));
        EXPECT_FALSE(all(v > V{}));
    }
    const V ones = splat(T{1});
    EXPECT_FALSE(any(ones < V{}));
    EXPECT_TRUE(all(ones > V{}));
}

TEST(Arithmetic, Masks)
{
    checkMasks<float>();
    checkMasks<double>();
}

// The same 12-bit estimates in every lane at every width: those of the 128-bit instructions.
TEST(Arithmetic, Estimates)
{
    Random random(1);
    for (int k = 0; k < 1000; ++k) {
        auto values = random.vector<float>(sizeof(F32) / 4, 1e-3F, 1e3F);
        const F32 x = load<Unaligned>(values.data());
        const auto reciprocals = lanesOf<float>(reciprocalEstimate(x));
        const auto roots = lanesOf<float>(reciprocalRootEstimate(x));
        for (std::size_t i = 0; i < values.size(); ++i) {
            ASSERT_TRUE(sameBits(reciprocals[i], _mm_cvtss_f32(_mm_rcp_ss(_mm_set_ss(values[i])))));
            ASSERT_TRUE(sameBits(roots[i], _mm_cvtss_f32(_mm_rsqrt_ss(_mm_set_ss(values[i])))));
            ASSERT_NEAR(reciprocals[i] * values[i], 1.0F,
                        1.5 * 0x1p-12 + 0x1p-23); // the bound that the processors' makers give
        }
    }
}

// --------------------------------------------------------------------------------------------------------- reductions

TEST(Reduction, EveryLaneCountsOnce)
{
    const auto checkSums = []<class T>(T) {
        constexpr auto L = static_cast<std::size_t>(lanes<VectorOf<T>>);
        for (std::size_t k = 0; k < L; ++k) {
            std::vector<T> values(L, T{0});
            values[k] = T{3};
            EXPECT_EQ(sum(load<Unaligned>(values.data())), T{3}) << k;
        }
        EXPECT_EQ(sum(splat(T{0.25})), T(L) / 4);
    };
    checkSums(float{});
    checkSums(double{});
}

TEST(Reduction, SeveralVectorsAtOnce)
{
    constexpr float L = lanes<F32>;
    float four[4];
    _mm_storeu_ps(four, sumEach(splat(1.0F), splat(2.0F), splat(-3.0F), splat(0.5F)));
    EXPECT_EQ(four[0], L);
    EXPECT_EQ(four[1], 2 * L);
    EXPECT_EQ(four[2], -3 * L);
    EXPECT_EQ(four[3], L / 2);
}

template <class T>
void checkSumEach()
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    for (int k = 0; k < L; ++k) {
        for (int lane = 0; lane < L; ++lane) {
            V vectors[L] = {};
            vectors[k][lane] = T{3};
            std::vector<T> expected(static_cast<std::size_t>(L), T{0});
            expected[static_cast<std::size_t>(k)] = T{3};
            expectLanes<T>(sumEach(vectors), expected);
        }
    }
}

TEST(Reduction, AsManyVectorsAsLanes)
{
    checkSumEach<float>();
    checkSumEach<double>();
}

} // namespace
