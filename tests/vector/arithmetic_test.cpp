// Sums, products and quotients of vectors, exactly.

#include "lyrsr.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>
#include <vector>

#include "frame/constants.hpp"
#include "oracle/vector_arithmetic.hpp"
#include "vector/elementwise.hpp"

namespace {

using lyr::test::BinaryCase;
using lyr::test::compareBinary;
using lyr::test::compareUnary;
using lyr::test::eachElement;
using lyr::test::eachPair;
using lyr::test::Expected;
using lyr::test::Random;
using lyr::test::sameBits;
using lyr::test::UnaryCase;

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();

template <class T>
std::vector<T> numbers(Random& random, std::size_t n)
{
    return lyr::test::withSpecials<T>(random, n, -100, 100);
}

template <class T>
const auto plus = eachPair<T>([](T x, T y) { return y + x; });
template <class T>
const auto minus = eachPair<T>([](T x, T y) { return y - x; });
template <class T>
const auto times = eachPair<T>([](T x, T y) { return x * y; });

TEST(VectorArithmetic, Abs)
{
    compareUnary<double, double>(
        {numbers<double>, lyrsAbs_64f, {}, eachElement<double>([](double x) { return std::fabs(x); })});
    const double negativeNan = -std::numeric_limits<double>::quiet_NaN();
    double result = 0;
    ASSERT_EQ(lyrsAbs_64f(&negativeNan, &result, 1), StsNoErr);
    EXPECT_FALSE(std::signbit(result)) << "the sign is cleared whatever it is the sign of";
}

TEST(VectorArithmetic, AddAndSubtract)
{
    compareBinary<float>({numbers<float>, {}, lyrsAdd_32f_I, plus<float>});
    compareBinary<double>({numbers<double>, {}, lyrsAdd_64f_I, plus<double>});
    compareBinary<float>({numbers<float>, {}, lyrsSub_32f_I, minus<float>});
    compareBinary<double>({numbers<double>, {}, lyrsSub_64f_I, minus<double>});
}

TEST(VectorArithmetic, Multiply)
{
    compareBinary<float>({numbers<float>, lyrsMul_32f, {}, times<float>});
}

// ----------------------------------------------------------------------------------------------------- with a constant

template <class T>
struct ConstantCase
{
    Status (*call)(const T*, T, T*, Elem32s);
    Status (*inPlace)(T, T*, Elem32s);
    T (*oracle)(T, T);
};

template <class T>
void compareConstant(const ConstantCase<T>& c, T val)
{
    SCOPED_TRACE(val);
    UnaryCase<T, T> unary{numbers<T>, {}, {}, eachElement<T>([&](T x) { return c.oracle(x, val); })};
    if (c.call != nullptr) {
        unary.call = [&](const T* src, T* dst, Elem32s len) { return c.call(src, val, dst, len); };
    }
    if (c.inPlace != nullptr) {
        unary.inPlace = [&](T* srcDst, Elem32s len) { return c.inPlace(val, srcDst, len); };
    }
    compareUnary(unary);
}

TEST(VectorArithmetic, AddConstant)
{
    for (const float val : {3.25F, -1.0F, inf, 0.0F, -0.0F, nan}) {
        compareConstant<float>({lyrsAddC_32f, nullptr, lyr::oracle::plusConstant<float>}, val);
    }
}

TEST(VectorArithmetic, MultiplyByConstant)
{
    for (const float val : {3.25F, -1.0F, inf, 1.0F, 0.0F, -0.0F, nan}) {
        compareConstant<float>({lyrsMulC_32f, lyrsMulC_32f_I, lyr::oracle::timesConstant<float>}, val);
        compareConstant<double>({lyrsMulC_64f, lyrsMulC_64f_I, lyr::oracle::timesConstant<double>}, val);
    }
}

// A constant that is not a number is the identity, deliberately: of the product and of the sum.
TEST(VectorArithmetic, NanConstantChangesNothing)
{
    const float x[] = {-0.0F, 5, inf};
    float y[3] = {};
    EXPECT_EQ(lyrsMulC_32f(x, nan, y, 3), StsNoErr);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(sameBits(y[i], x[i]));
    }
    EXPECT_EQ(lyrsAddC_32f(x, -nan, y, 3), StsNoErr);
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(sameBits(y[i], x[i])) << "minus zero plus zero would be plus zero";
    }
}

// Deliberately not the IEEE product.
TEST(VectorArithmetic, TimesZeroIsPlusZeroThroughout)
{
    float x[] = {nan, inf, -inf, -3};
    EXPECT_EQ(lyrsMulC_32f_I(-0.0F, x, 4), StsNoErr);
    for (const float v : x) {
        EXPECT_TRUE(sameBits(v, 0.0F));
    }
}

template <class T>
T timesReciprocal(T x, T val)
{
    return lyr::oracle::timesConstant(x, T(1) / val);
}

TEST(VectorArithmetic, DivideByConstant)
{
    for (const float val : {3.0F, -7.0F, 1.0F, inf, 1e-41F}) {
        compareConstant<float>({lyrsDivC_32f, lyrsDivC_32f_I, timesReciprocal<float>}, val);
        compareConstant<double>({lyrsDivC_64f, lyrsDivC_64f_I, timesReciprocal<double>}, val);
    }
}

TEST(VectorArithmetic, DivideByZeroOrNanConstant)
{
    for (const float val : {0.0F, -0.0F, nan, -nan}) {
        float x[] = {1, 2};
        double d[] = {1, 2};
        const float source[] = {5, 6};
        const double doubles[] = {5, 6};
        EXPECT_EQ(lyrsDivC_32f(source, val, x, 2), StsDivByZero);
        EXPECT_EQ(lyrsDivC_32f_I(val, x, 2), StsDivByZero);
        EXPECT_EQ(lyrsDivC_64f(doubles, val, d, 2), StsDivByZero);
        EXPECT_EQ(lyrsDivC_64f_I(val, d, 2), StsDivByZero);
        EXPECT_EQ(x[0], 1);
        EXPECT_EQ(x[1], 2);
        EXPECT_EQ(d[0], 1);
        EXPECT_EQ(d[1], 2);
    }
}

// ------------------------------------------------------------------------------------------------------------ division

template <class T>
const auto quotients = [](const std::vector<T>& divisor, const std::vector<T>& dividend) {
    Expected<T> expected;
    for (std::size_t i = 0; i < divisor.size(); ++i) {
        expected.elements.push_back(lyr::oracle::quotient(divisor[i], dividend[i]));
        if (divisor[i] == T(0)) {
            expected.status = StsWarnOverflow;
        }
    }
    return expected;
};

TEST(VectorDivision, MatchesOracle)
{
    compareBinary<float>({numbers<float>, lyrsDiv_32f, lyrsDiv_32f_I, quotients<float>});
    compareBinary<double>({numbers<double>, lyrsDiv_64f, {}, quotients<double>});
}

// One zero anywhere arms the warning, and the tail's own lanes never do.
TEST(VectorDivision, WarnsOfZeroDivisorsOnly)
{
    for (int len = 1; len <= 40; ++len) {
        std::vector<float> divisor(static_cast<std::size_t>(len), 2.0F);
        const std::vector<float> dividend(static_cast<std::size_t>(len), 1.0F);
        std::vector<float> result(static_cast<std::size_t>(len));
        EXPECT_EQ(lyrsDiv_32f(divisor.data(), dividend.data(), result.data(), len), StsNoErr);
        divisor[static_cast<std::size_t>(len) / 2] = nan;
        EXPECT_EQ(lyrsDiv_32f(divisor.data(), dividend.data(), result.data(), len), StsNoErr);
        for (std::size_t at = 0; at < divisor.size(); ++at) {
            std::vector<float> one(divisor);
            one[at] = at % 2 == 0 ? 0.0F : -0.0F;
            EXPECT_EQ(lyrsDiv_32f(one.data(), dividend.data(), result.data(), len), StsWarnOverflow);
        }
    }
}

// The bits of every NaN. In a group of four that holds a zero, a divisor of zero or NaN gives the constant; what else
// is not a number comes from the division, which gives on the NaN of an operand.
template <class T>
void expectNanBits(Status (*call)(const T*, const T*, T*, Elem32s), T constant)
{
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    constexpr auto quiet = std::bit_cast<Bits>(std::numeric_limits<T>::quiet_NaN());
    const auto tagged = [](unsigned tag) { return std::bit_cast<T>(static_cast<Bits>(quiet | tag)); };
    ASSERT_EQ(std::bit_cast<Bits>(constant), quiet) << "quiet and positive";
    const T infinity = std::numeric_limits<T>::infinity();
    const T dividends[] = {0, -T(0), 3, -3, infinity, -infinity, tagged(5), -tagged(6)};
    const T divisors[] = {0, -T(0), 2, tagged(7), -tagged(8), infinity};
    Random random(41);
    const auto pick = [&random](const auto& values, std::size_t count) {
        return values[static_cast<std::size_t>(random.uniform(0, static_cast<int>(count) - 1))];
    };
    for (const std::size_t len : lyr::test::vectorLengths()) {
        std::vector<T> d(len);
        std::vector<T> n(len);
        for (std::size_t i = 0; i < len; ++i) {
            d[i] = pick(divisors, random.uniform(0, 1) == 0 ? 6 : 2);
            d[i] = random.uniform(0, 2) != 0 && d[i] == T(0) ? T(4) : d[i];
            n[i] = pick(dividends, 8);
        }
        for (const int place : {0, 1, 2}) {
            std::vector<T> result(len);
            auto divisor = d;
            auto dividend = n;
            T* const dst = place == 0 ? result.data() : (place == 1 ? divisor.data() : dividend.data());
            ASSERT_EQ(call(divisor.data(), dividend.data(), dst, static_cast<Elem32s>(len)),
                      std::count(d.begin(), d.end(), T(0)) != 0 ? StsWarnOverflow : StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                const auto first = d.begin() + static_cast<std::ptrdiff_t>(i / 4 * 4);
                const auto last = len - i / 4 * 4 < 4 ? d.end() : first + 4;
                const bool armed = std::find(first, last, T(0)) != last;
                const T expected = lyr::oracle::quotient(d[i], n[i]);
                if (!std::isnan(expected)) {
                    ASSERT_TRUE(sameBits(dst[i], expected)) << i << " of " << len;
                } else if (armed && (d[i] == T(0) || std::isnan(d[i]))) {
                    ASSERT_EQ(std::bit_cast<Bits>(dst[i]), std::bit_cast<Bits>(constant)) << i << " of " << len;
                } else if (std::isnan(n[i]) || std::isnan(d[i])) {
                    const T operand = std::isnan(n[i]) ? n[i] : d[i];
                    ASSERT_EQ(std::bit_cast<Bits>(dst[i]), std::bit_cast<Bits>(operand)) << i << " of " << len;
                } else {
                    ASSERT_TRUE(std::isnan(dst[i])) << i << " of " << len;
                }
            }
        }
    }
}

TEST(VectorDivision, NanOfAGroupWithAZeroIsTheConstant)
{
    expectNanBits<float>(lyrsDiv_32f, lyrConstantOfNAN_32f);
    expectNanBits<double>(lyrsDiv_64f, lyrConstantOfNAN_64f);
}

TEST(VectorDivision, NanInPlaceIsTheConstant)
{
    const float divisor[] = {0, nan, -0.0F, 3, nan};
    float x[] = {0, 1, -nan, 0, 1};
    ASSERT_EQ(lyrsDiv_32f_I(divisor, x, 5), StsWarnOverflow);
    for (const int i : {0, 1, 2}) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(x[i]), std::bit_cast<std::uint32_t>(lyrConstantOfNAN_32f)) << i;
    }
    EXPECT_EQ(x[3], 0);
    EXPECT_TRUE(std::isnan(x[4]));
}

// The sign of a zero divisor does not count, deliberately.
TEST(VectorDivision, MinusZeroDivisorIsZero)
{
    const float divisor[] = {-0.0F, -0.0F, -0.0F, 0.0F};
    const float dividend[] = {1, -1, 0, nan};
    float result[4] = {};
    EXPECT_EQ(lyrsDiv_32f(divisor, dividend, result, 4), StsWarnOverflow);
    EXPECT_EQ(result[0], inf);
    EXPECT_EQ(result[1], -inf);
    EXPECT_TRUE(std::isnan(result[2]));
    EXPECT_TRUE(std::isnan(result[3]));
}

} // namespace
