// exp(-x^2) and sin(x) / x.

#include "lyrsr.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "oracle/vector_functions.hpp"
#include "vector/elementwise.hpp"

namespace {

using lyr::test::compareUnary;
using lyr::test::eachElement;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::withinUlps;

// In units of the last place. The exponential rounds its reduced argument, the sum of its series and twice the scaling,
// of which a subnormal result feels one alone; the sine rounds its reduced argument and the sum of its series, and the
// quotient once more. Each is half a unit, doubled where the binade changes, and the polynomial adds less than a
// quarter.
constexpr int expUlps = 2;
constexpr int sineUlps = 2;
constexpr int sincUlps = sineUlps + 1;
// In single precision the sine is computed in double, and one rounding is left.
constexpr int sincSingleUlps = 1;

template <class T, int most>
::testing::AssertionResult close(T actual, T expected)
{
    return withinUlps(actual, expected, most);
}

template <class T>
std::vector<T> narrow(Random& random, std::size_t n)
{
    return lyr::test::withSpecials<T>(random, n, T(-11), T(11));
}

template <class T>
std::vector<T> angles(Random& random, std::size_t n)
{
    return lyr::test::withSpecials<T>(random, n, T(-40), T(40));
}

template <class S, class D>
const auto expectExp = eachElement<S>([](S x) { return lyr::oracle::expNegSqr(D{x}); });
template <class S, class D>
const auto expectSinc = eachElement<S>([](S x) { return lyr::oracle::sinc(D{x}); });

TEST(VectorExpNegSqr, MatchesOracle)
{
    compareUnary<float, float>(
        {narrow<float>, lyrsExpNegSqr_32f, lyrsExpNegSqr_32f_I, expectExp<float, float>, close<float, expUlps>});
    compareUnary<double, double>(
        {narrow<double>, lyrsExpNegSqr_64f, lyrsExpNegSqr_64f_I, expectExp<double, double>, close<double, expUlps>});
    compareUnary<float, double>(
        {narrow<float>, lyrsExpNegSqr_32f64f, {}, expectExp<float, double>, close<double, expUlps>});
}

TEST(VectorSinC, MatchesOracle)
{
    compareUnary<float, float>(
        {angles<float>, lyrsSinC_32f, lyrsSinC_32f_I, expectSinc<float, float>, close<float, sincSingleUlps>});
    compareUnary<double, double>(
        {angles<double>, lyrsSinC_64f, lyrsSinC_64f_I, expectSinc<double, double>, close<double, sincUlps>});
    compareUnary<float, double>(
        {angles<float>, lyrsSinC_32f64f, {}, expectSinc<float, double>, close<double, sincUlps>});
}

template <class T>
std::vector<T> spread(Random& random, std::size_t n, T lowExponent, T highExponent)
{
    std::vector<T> x(n);
    for (T& v : x) {
        v = std::exp2(random.uniform(lowExponent, highExponent)) * (random.uniform(0, 1) == 0 ? T(1) : T(-1));
    }
    return x;
}

// The whole range of the exponential, down to where it vanishes through the subnormal numbers.
TEST(VectorExpNegSqr, WholeRange)
{
    Random random(29);
    const std::size_t n = 200000;
    const auto x = random.vector<float>(n, -10.5F, 10.5F);
    const auto d = random.vector<double>(n, -27.5, 27.5);
    std::vector<float> y(n);
    std::vector<double> e(n);
    ASSERT_EQ(lyrsExpNegSqr_32f(x.data(), y.data(), static_cast<Elem32s>(n)), StsNoErr);
    ASSERT_EQ(lyrsExpNegSqr_64f(d.data(), e.data(), static_cast<Elem32s>(n)), StsNoErr);
    for (std::size_t i = 0; i < n; ++i) {
        ASSERT_TRUE(withinUlps(y[i], lyr::oracle::expNegSqr(x[i]), expUlps)) << x[i];
        ASSERT_TRUE(withinUlps(e[i], lyr::oracle::expNegSqr(d[i]), expUlps)) << d[i];
    }
}

// Arguments of every magnitude, and those next to multiples of pi, where all but the last bits of the argument cancel.
TEST(VectorSinC, WholeRange)
{
    Random random(31);
    const std::size_t n = 100000;
    auto x = spread<float>(random, n, -140, 127.9F);
    auto d = spread<double>(random, n, -1000, 1000);
    const auto modest = spread<double>(random, n, -20, 23);
    d.insert(d.end(), modest.begin(), modest.end());
    for (int k = 1; k < 20000; ++k) {
        const long double multiple = 3.14159265358979323846264338327950288L * k * (k % 7 == 0 ? 40 : 1);
        x.push_back(static_cast<float>(multiple));
        d.push_back(static_cast<double>(multiple));
        d.push_back(static_cast<double>(-multiple - 1.57079632679489661923L));
    }
    std::vector<float> y(x.size());
    std::vector<double> e(d.size());
    std::vector<double> wide(x.size());
    ASSERT_EQ(lyrsSinC_32f(x.data(), y.data(), static_cast<Elem32s>(x.size())), StsNoErr);
    ASSERT_EQ(lyrsSinC_32f64f(x.data(), wide.data(), static_cast<Elem32s>(x.size())), StsNoErr);
    ASSERT_EQ(lyrsSinC_64f(d.data(), e.data(), static_cast<Elem32s>(d.size())), StsNoErr);
    for (std::size_t i = 0; i < x.size(); ++i) {
        ASSERT_TRUE(withinUlps(y[i], lyr::oracle::sinc(x[i]), sincSingleUlps)) << x[i];
        ASSERT_TRUE(withinUlps(wide[i], lyr::oracle::sinc(double{x[i]}), sincUlps)) << x[i];
    }
    for (std::size_t i = 0; i < d.size(); ++i) {
        ASSERT_TRUE(withinUlps(e[i], lyr::oracle::sinc(d[i]), sincUlps)) << d[i];
    }
}

TEST(VectorSinC, IsOneAtEitherZero)
{
    const float x[] = {0.0F, -0.0F, std::numeric_limits<float>::denorm_min()};
    float y[3] = {};
    ASSERT_EQ(lyrsSinC_32f(x, y, 3), StsNoErr);
    for (const float v : y) {
        EXPECT_EQ(v, 1.0F);
    }
}

// Next to a multiple of pi: the nearest whole number of half turns is 204551, and little is left of the argument.
TEST(VectorSinC, LittleIsLeftOfTheArgument)
{
    const double x[] = {642615.9188844458};
    double y = 0;
    ASSERT_EQ(lyrsSinC_64f(x, &y, 1), StsNoErr);
    EXPECT_TRUE(withinUlps(y, lyr::oracle::sinc(x[0]), sincUlps));
}

// A destination one element behind its source: each result is the next argument.
TEST(VectorFunctions, OverlappingVectorsGoElementByElement)
{
    for (const std::size_t len : {1U, 5U, 7U, 16U, 40U}) {
        std::vector<float> x(len + 1, 0.5F);
        std::vector<double> d(len + 1, 0.5);
        const auto n = static_cast<Elem32s>(len);
        ASSERT_EQ(lyrsExpNegSqr_32f(x.data(), x.data() + 1, n), StsNoErr);
        ASSERT_EQ(lyrsSinC_64f(d.data(), d.data() + 1, n), StsNoErr);
        for (std::size_t i = 0; i < len; ++i) {
            ASSERT_TRUE(withinUlps(x[i + 1], lyr::oracle::expNegSqr(x[i]), expUlps));
            ASSERT_TRUE(withinUlps(d[i + 1], lyr::oracle::sinc(d[i]), sincUlps));
        }
    }
}

// Results of twice the size over singles that are still to be read: what is read is what stands there at that time.
void expectWideningInOrder(Status (*call)(const Elem32f*, Elem64f*, Elem32s), double (*reference)(double), int ulps)
{
    Random random(43);
    for (const std::size_t len : {1U, 2U, 3U, 4U, 7U, 16U, 40U}) {
        for (const std::size_t before : {0U, 8U, 16U}) {
            SCOPED_TRACE(::testing::Message() << "len " << len << ", destination " << before << " bytes ahead");
            const auto x = random.vector<float>(len, -2, 2);
            std::vector<double> memory(len + 2, 0.0);
            std::memcpy(reinterpret_cast<char*>(memory.data()) + before, x.data(), len * sizeof(float));
            std::vector<double> replayed(memory);
            const auto* const src = reinterpret_cast<const Elem32f*>(reinterpret_cast<char*>(memory.data()) + before);
            ASSERT_EQ(call(src, memory.data(), static_cast<Elem32s>(len)), StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                float argument = 0;
                std::memcpy(&argument, reinterpret_cast<const char*>(replayed.data()) + before + i * sizeof(float),
                            sizeof argument);
                ASSERT_TRUE(withinUlps(memory[i], reference(double{argument}), ulps)) << "element " << i;
                replayed[i] = memory[i];
            }
        }
    }
}

TEST(VectorFunctions, OverlappingVectorsOfTwoTypesGoElementByElement)
{
    expectWideningInOrder(lyrsExpNegSqr_32f64f, lyr::oracle::expNegSqr<double>, expUlps);
    expectWideningInOrder(lyrsSinC_32f64f, lyr::oracle::sinc<double>, sincUlps);
}

} // namespace
