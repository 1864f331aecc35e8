// Extremes, their positions, and the element-wise larger or smaller.

#include "lyrsr.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "oracle/vector_extrema.hpp"
#include "vector/elementwise.hpp"

namespace {

using lyr::oracle::Extreme;
using lyr::test::compareBinary;
using lyr::test::eachPair;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::sameBits;

constexpr float nan32 = std::numeric_limits<float>::quiet_NaN();

template <class T>
struct Member
{
    const char* name;
    Status (*value)(const T*, Elem32s, T*);
    Status (*indexed)(const T*, Elem32s, T*, Elem32s*); // may be null
    Extreme<T> (*oracle)(const std::vector<T>&);
};

template <class T>
void expectExtreme(const Member<T>& member, const std::vector<T>& x, std::size_t offset)
{
    SCOPED_TRACE(::testing::Message() << member.name << " len " << x.size() << " offset " << offset);
    const Guarded<T> src(x, offset);
    const auto len = static_cast<Elem32s>(x.size());
    const Extreme<T> expected = member.oracle(x);
    T value = -77;
    ASSERT_EQ(member.value(src.data(), len, &value), StsNoErr);
    ASSERT_TRUE(value == expected.value || (std::isnan(value) && std::isnan(expected.value))) << value;
    if (member.indexed != nullptr) {
        Elem32s index = -1;
        ASSERT_EQ(member.indexed(src.data(), len, &value, &index), StsNoErr);
        ASSERT_TRUE(sameBits(value, expected.value)) << "of equal zeros the first, with its sign";
        ASSERT_EQ(index, expected.index);
        value = -77;
        ASSERT_EQ(member.indexed(src.data(), len, &value, nullptr), StsNoErr)
            << "a null index asks for the value alone";
        ASSERT_TRUE(value == expected.value || (std::isnan(value) && std::isnan(expected.value)));
    }
}

// What occurs at each length: few distinct values, so that the first of several counts; special values; NaN at the
// front and elsewhere.
template <class T>
void compare(const Member<T>& member)
{
    Random random(3);
    auto lengths = lyr::test::vectorLengths();
    lengths.insert(lengths.end(), {33, 34, 35, 2047, 2048, 2049, 4096, 4100, 6500});
    for (const std::size_t len : lengths) {
        for (const std::size_t offset : lyr::test::vectorOffsets<T>(len)) {
            auto few = random.vector<T>(len, T(0), T(4));
            std::transform(few.begin(), few.end(), few.begin(), [](T v) { return std::floor(v); });
            ASSERT_NO_FATAL_FAILURE(expectExtreme(member, few, offset));
            ASSERT_NO_FATAL_FAILURE(expectExtreme(member, random.vector<T>(len, T(-9), T(-1)), offset));
            auto special = lyr::test::withSpecials<T>(random, len, T(-9), T(9));
            ASSERT_NO_FATAL_FAILURE(expectExtreme(member, special, offset));
            special[0] = std::numeric_limits<T>::quiet_NaN();
            ASSERT_NO_FATAL_FAILURE(expectExtreme(member, special, offset));
            std::vector<T> zeros(len, T(0));
            zeros[0] = -T(0);
            ASSERT_NO_FATAL_FAILURE(expectExtreme(member, zeros, offset));
        }
    }
}

TEST(VectorExtrema, Largest)
{
    compare<float>({"lyrsMax_32f", lyrsMax_32f, lyrsMaxIndx_32f, lyr::oracle::largest<float>});
    compare<double>({"lyrsMax_64f", lyrsMax_64f, lyrsMaxIndx_64f, lyr::oracle::largest<double>});
}

TEST(VectorExtrema, Smallest)
{
    compare<float>({"lyrsMin_32f", lyrsMin_32f, lyrsMinIndx_32f, lyr::oracle::smallest<float>});
    compare<double>({"lyrsMin_64f", lyrsMin_64f, nullptr, lyr::oracle::smallest<double>});
}

TEST(VectorExtrema, BothAtOnce)
{
    compare<float>({"lyrsMinMax_32f, pMin",
                    [](const float* p, Elem32s len, float* result) {
                        float other = 0;
                        return lyrsMinMax_32f(p, len, result, &other);
                    },
                    nullptr, lyr::oracle::smallest<float>});
    compare<float>({"lyrsMinMax_32f, pMax",
                    [](const float* p, Elem32s len, float* result) {
                        float other = 0;
                        return lyrsMinMax_32f(p, len, &other, result);
                    },
                    nullptr, lyr::oracle::largest<float>});
}

// The extreme at each place in turn, alone and with a second one behind it.
TEST(VectorExtrema, FirstOfSeveralAtEveryPlace)
{
    for (const int len : {1, 5, 13, 33, 34, 64, 129, 2100}) {
        std::vector<float> x(static_cast<std::size_t>(len), 1.0F);
        for (int at = 0; at < len; ++at) {
            std::vector<float> y(x);
            y[static_cast<std::size_t>(at)] = 2.0F;
            y[static_cast<std::size_t>(at + (len - at) / 2)] = 2.0F;
            float value = 0;
            Elem32s index = -1;
            ASSERT_EQ(lyrsMaxIndx_32f(y.data(), len, &value, &index), StsNoErr);
            ASSERT_EQ(index, at) << "len " << len;
            std::transform(y.begin(), y.end(), y.begin(), std::negate<>{});
            ASSERT_EQ(lyrsMinIndx_32f(y.data(), len, &value, &index), StsNoErr);
            ASSERT_EQ(index, at) << "len " << len;
            ASSERT_EQ(value, -2.0F);
        }
    }
}

TEST(VectorExtrema, NanIsPassedOverUnlessItIsFirst)
{
    const float inside[] = {1, nan32, 3, nan32, 2};
    const float front[] = {nan32, 1, 3};
    float value = 0;
    Elem32s index = -1;
    EXPECT_EQ(lyrsMaxIndx_32f(inside, 5, &value, &index), StsNoErr);
    EXPECT_EQ(value, 3);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(lyrsMaxIndx_32f(front, 3, &value, &index), StsNoErr);
    EXPECT_TRUE(std::isnan(value));
    EXPECT_EQ(index, 0);
}

// A NaN in front is the result bit by bit, one that would signal too.
template <class T, class Bits>
void expectBitsOfFirst(Status (*call)(const T*, Elem32s, T*))
{
    const auto infinity = std::bit_cast<Bits>(std::numeric_limits<T>::infinity());
    const auto sign = std::bit_cast<Bits>(-T(0));
    for (const Bits bits : {infinity + 1, infinity + 12345, sign | (infinity + 1)}) {
        for (const std::size_t len : {1U, 2U, 3U, 4U, 7U, 16U, 33U, 34U, 70U, 3000U}) {
            std::vector<T> x(len, T(1));
            std::memcpy(x.data(), &bits, sizeof bits);
            T result = 0;
            ASSERT_EQ(call(x.data(), static_cast<Elem32s>(len), &result), StsNoErr);
            ASSERT_EQ(std::memcmp(&result, &bits, sizeof bits), 0) << len;
        }
    }
}

TEST(VectorExtrema, ANanInFrontKeepsItsBits)
{
    expectBitsOfFirst<float, std::uint32_t>(lyrsMax_32f);
    expectBitsOfFirst<float, std::uint32_t>(lyrsMin_32f);
    expectBitsOfFirst<double, std::uint64_t>(lyrsMax_64f);
    expectBitsOfFirst<double, std::uint64_t>(lyrsMin_64f);
    expectBitsOfFirst<float, std::uint32_t>([](const float* p, Elem32s len, float* result) {
        float other = 0;
        return lyrsMinMax_32f(p, len, result, &other);
    });
    expectBitsOfFirst<float, std::uint32_t>([](const float* p, Elem32s len, float* result) {
        float other = 0;
        return lyrsMinMax_32f(p, len, &other, result);
    });
    expectBitsOfFirst<float, std::uint32_t>([](const float* p, Elem32s len, float* result) {
        Elem32s index = -1;
        return lyrsMaxIndx_32f(p, len, result, &index);
    });
    expectBitsOfFirst<float, std::uint32_t>([](const float* p, Elem32s len, float* result) {
        Elem32s index = -1;
        return lyrsMinIndx_32f(p, len, result, &index);
    });
    expectBitsOfFirst<double, std::uint64_t>([](const double* p, Elem32s len, double* result) {
        Elem32s index = -1;
        return lyrsMaxIndx_64f(p, len, result, &index);
    });
}

// -------------------------------------------------------------------------------------------------- element by element

template <class T>
std::vector<T> numbers(Random& random, std::size_t n)
{
    return lyr::test::withSpecials<T>(random, n, -100, 100);
}

TEST(VectorExtrema, EveryElement)
{
    // Where either is NaN, and for equal zeros of unlike sign, what is there stays.
    const auto larger = eachPair<float>([](float x, float y) { return x > y ? x : y; });
    const auto smaller = eachPair<float>([](float x, float y) { return x < y ? x : y; });
    const auto smallerInt = eachPair<Elem32s>([](Elem32s x, Elem32s y) { return std::min(x, y); });
    compareBinary<float>({numbers<float>, {}, lyrsMaxEvery_32f_I, larger});
    compareBinary<float>({numbers<float>, {}, lyrsMinEvery_32f_I, smaller});
    compareBinary<Elem32s>({numbers<Elem32s>, {}, lyrsMinEvery_32s_I, smallerInt});
}

} // namespace
