// Sums of natural logarithms.

#include "lyrsr.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/vectors.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::vectorLengths;
using lyr::test::vectorOffsets;

Status sumLn(const float* x, std::size_t len, float* sum)
{
    return lyrsSumLn_32f(x, static_cast<Elem32s>(len), sum);
}
Status sumLn(const double* x, std::size_t len, double* sum)
{
    return lyrsSumLn_64f(x, static_cast<Elem32s>(len), sum);
}

template <class T>
class SumLn : public ::testing::Test
{
protected:
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;

    static constexpr T inf = std::numeric_limits<T>::infinity();
    static constexpr T nan = std::numeric_limits<T>::quiet_NaN();
    static constexpr T least = std::numeric_limits<T>::denorm_min();

    // Each product of mantissas errs by half a unit of a double, relative, which adds as much to the logarithm; each
    // block by the roundings of its logarithm and of the running total, each half a unit of at most the sum of
    // magnitudes; and the result type rounds once.
    static void compare(const std::vector<T>& x, std::size_t offset)
    {
        long double exact = 0;
        long double magnitude = 0;
        for (const T v : x) {
            const long double l = std::log(static_cast<long double>(v));
            exact += l;
            magnitude += std::fabs(l);
        }
        const long double u = 0x1p-53L;
        const auto n = static_cast<long double>(x.size());
        const long double blocks = std::ceil(n / 512);
        const long double bound = u * (n + 16) + u * (blocks * 4 + 2) * (magnitude + 1) +
                                  static_cast<long double>(std::numeric_limits<T>::epsilon()) * std::fabs(exact);
        const Guarded<T> src(x, offset);
        T sum = -1;
        ASSERT_EQ(sumLn(src.data(), x.size(), &sum), StsNoErr);
        ASSERT_LE(std::fabs(static_cast<long double>(sum) - exact), bound) << x.size() << ": " << sum;
        ASSERT_TRUE(src.intact());
    }
};

using Types = ::testing::Types<float, double>;
TYPED_TEST_SUITE(SumLn, Types, );

TYPED_TEST(SumLn, EveryLengthAndOffset)
{
    using T = TypeParam;
    Random random(31);
    auto lengths = vectorLengths();
    lengths.insert(lengths.end(), {1023, 1024, 1025, 1536, 5000});
    for (const std::size_t len : lengths) {
        std::vector<T> x(len);
        for (T& v : x) {
            v = random.uniform(T(0.5), T(2)) * std::ldexp(T(1), random.uniform(-20, 20));
        }
        for (const std::size_t offset : vectorOffsets<T>(len)) {
            TestFixture::compare(x, offset);
        }
    }
}

// Factors whose plain product would leave the range of the type either way, and mantissas just above one half.
TYPED_TEST(SumLn, ProductsThatNoTypeHolds)
{
    using T = TypeParam;
    for (const T v :
         {std::numeric_limits<T>::max(), std::numeric_limits<T>::min(), T(0.5), std::nextafter(T(0.5), T(1)),
          std::nextafter(T(1), T(0)), TestFixture::least, TestFixture::least * 3, std::numeric_limits<T>::min() / 2}) {
        for (const std::size_t len : {1U, 13U, 511U, 512U, 513U, 2000U}) {
            TestFixture::compare(std::vector<T>(len, v), 0);
        }
    }
}

TYPED_TEST(SumLn, OnesAndExactInversesGiveZero)
{
    using T = TypeParam;
    for (std::size_t len = 1; len <= 70; ++len) {
        const std::vector<T> ones(len, T(1));
        T sum = -1;
        ASSERT_EQ(sumLn(ones.data(), len, &sum), StsNoErr);
        EXPECT_EQ(sum, T(0));
    }
    const std::vector<T> inverses{T(4), T(0.25), T(1024), T(1) / 1024};
    T sum = -1;
    ASSERT_EQ(sumLn(inverses.data(), 4, &sum), StsNoErr);
    EXPECT_EQ(sum, T(0));
}

// A sum near zero has the accuracy of its own size, not of the exponents and mantissas that it is made of.
TYPED_TEST(SumLn, NothingCancelsNearOne)
{
    using T = TypeParam;
    const T little = std::ldexp(T(1), sizeof(T) == 4 ? -20 : -40);
    for (const T v : {1 + little, 1 - little}) {
        for (const std::vector<T>& x : {std::vector<T>{v}, std::vector<T>{T(4), v, T(0.25)}}) {
            T sum = -1;
            ASSERT_EQ(sumLn(x.data(), x.size(), &sum), StsNoErr);
            EXPECT_TRUE(lyr::test::withinUlps(sum, static_cast<T>(std::log(static_cast<long double>(v))), 2));
        }
    }
}

// Each class of element without a logarithm, at each place, among subnormal elements and ahead of every other class.
TYPED_TEST(SumLn, TheFirstElementWithoutALogarithmDecides)
{
    using T = TypeParam;
    using Bits = typename TestFixture::Bits;
    constexpr T inf = TestFixture::inf;
    constexpr T nan = TestFixture::nan;
    constexpr T signalling = std::numeric_limits<T>::signaling_NaN();
    struct Case
    {
        T x;
        T sum;
        Status status;
    };
    const std::vector<Case> cases{
        {T(0), inf, StsWarnInf}, // plus infinity on purpose
        {-T(0), nan, StsWarnNan},
        {-T(1), nan, StsWarnNan},
        {-TestFixture::least, nan, StsWarnNan},
        {-inf, nan, StsWarnNan},
        {-nan, nan, StsWarnNan},
        {nan, -nan, StsNoErr}, // no warning, and the sign set, on purpose
        {signalling, -nan, StsNoErr},
        {inf, inf, StsNoErr},
    };
    for (const std::size_t len : {1U, 2U, 9U, 64U, 70U, 600U, 1100U}) {
        for (std::size_t at = 0; at < len; at += 1 + len / 50) {
            for (const Case& c : cases) {
                for (const Case& later : cases) {
                    std::vector<T> x(len, T(3));
                    x[0] = TestFixture::least;
                    x[len - 1] = later.x;
                    x[at] = c.x;
                    T sum = -5;
                    ASSERT_EQ(sumLn(x.data(), len, &sum), c.status) << c.x << " at " << at << " of " << len;
                    ASSERT_EQ(std::bit_cast<Bits>(sum), std::bit_cast<Bits>(c.sum))
                        << c.x << " at " << at << " of " << len;
                }
            }
        }
    }
}

} // namespace
