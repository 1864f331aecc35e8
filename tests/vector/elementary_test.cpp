// exp(-x^2) and sin(x) / x.

#include "lyrsr.h"

#include <cfenv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>
#include <vector>

#include "oracle/vector_functions.hpp"
#include "vector/elementwise.hpp"

namespace {

using lyr::test::compareUnary;
using lyr::test::eachElement;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::withinUlps;
using lyr::test::withinUnits;

// In units of the last place. The exponential rounds its reduced argument, the sum of its series and twice the scaling,
// of which a subnormal result feels one alone: half a unit each at most, and the polynomial adds less than a quarter.
//
// The sine rounds its reduced argument r twice and the sum of its series once: 2^-53 each, relative to a mantissa,
// where a unit of the quotient is 2^-53 at least. With what the terms of the series lose, and with r cot r for what of
// an error of r comes through, that is at most 3 units (near r = pi/6, and at small powers of two); the quotient rounds
// by a half. Next to multiples of pi, where pi in parts is not exact enough, all 667544 nearest doubles stay below 2.8.
// The worst that is known is 3.084, for 0x1.19f44p+20.
constexpr double expUnits = 2;
constexpr double sincUnits = 3.5;
// In single precision the sine is computed in double, and one rounding is left: 0.5015 over every 101st single.
constexpr double sincSingleUnits = 1;
// As whole distances from the rounded result, which is half a unit off.
constexpr int expUlps = 2;
constexpr int sincUlps = 3;
constexpr int sincSingleUlps = 1;

// Where the processor rounds to one side, each rounding is up to a whole unit. The worst known are 1.56, 7.78 (next to
// a multiple of pi, with products that round by themselves; elsewhere 6.2) and 1.0015.
constexpr double directedExpUnits = 3;
constexpr double directedSincUnits = 8;
constexpr double directedSincSingleUnits = 2;

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
long double exactSinc(T x)
{
    return lyr::oracle::sinc(static_cast<long double>(x));
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
        ASSERT_TRUE(withinUnits(y[i], std::exp(static_cast<long double>(-(x[i] * x[i]))), expUnits)) << x[i];
        ASSERT_TRUE(withinUnits(e[i], std::exp(static_cast<long double>(-(d[i] * d[i]))), expUnits)) << d[i];
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
    x.push_back(0x1.19f44p+20F);
    d.push_back(0x1.19f44p+20);
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
        ASSERT_TRUE(withinUnits(y[i], exactSinc(x[i]), sincSingleUnits)) << x[i];
        ASSERT_TRUE(withinUnits(wide[i], exactSinc(x[i]), sincUnits)) << x[i];
    }
    for (std::size_t i = 0; i < d.size(); ++i) {
        ASSERT_TRUE(withinUnits(e[i], exactSinc(d[i]), sincUnits)) << d[i];
    }
}

// What a call gives under each rounding mode to one side, by the function of a mode and an element's place.
template <class T, class Call, class Check>
void inEveryDirectedMode(std::vector<T>& y, Call call, Check check)
{
    for (const int mode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        std::fesetround(mode);
        const Status status = call(y.data(), static_cast<Elem32s>(y.size()));
        const int after = std::fegetround();
        std::fesetround(FE_TONEAREST);
        ASSERT_EQ(status, StsNoErr);
        ASSERT_EQ(after, mode);
        for (std::size_t i = 0; i < y.size(); ++i) {
            ASSERT_TRUE(check(mode, i)) << "element " << i << " mode " << mode;
        }
    }
}

// -x^2 as it is rounded in a mode. Where that is to one side, it tells -(x * x) from (-x) * x, of which a compiler may
// take either: `opposite` gives the other one.
template <class T>
T negatedSquare(T x, int mode, bool opposite)
{
    if (opposite && mode != FE_TOWARDZERO) {
        mode = mode == FE_UPWARD ? FE_DOWNWARD : FE_UPWARD;
    }
    std::fesetround(mode);
    volatile T square = x;
    square = square * square;
    std::fesetround(FE_TONEAREST);
    return -square;
}

TEST(VectorExpNegSqr, WithinItsBoundInEveryRoundingMode)
{
    Random random(47);
    const std::size_t n = 20000;
    const auto x = random.vector<float>(n, -10.5F, 10.5F);
    const auto d = random.vector<double>(n, -27.5, 27.5);
    std::vector<float> y(n);
    std::vector<double> e(n);
    const auto isClose = [](auto actual, auto argument, int mode) {
        const auto within = [&](bool opposite) {
            const long double square = negatedSquare(argument, mode, opposite);
            return withinUnits(actual, std::exp(square), directedExpUnits) << argument;
        };
        const auto usual = within(false);
        return usual ? usual : within(true);
    };
    inEveryDirectedMode(
        y, [&](float* dst, Elem32s len) { return lyrsExpNegSqr_32f(x.data(), dst, len); },
        [&](int mode, std::size_t i) { return isClose(y[i], x[i], mode); });
    inEveryDirectedMode(
        e, [&](double* dst, Elem32s len) { return lyrsExpNegSqr_64f(d.data(), dst, len); },
        [&](int mode, std::size_t i) { return isClose(e[i], d[i], mode); });
    inEveryDirectedMode(
        e, [&](double* dst, Elem32s len) { return lyrsExpNegSqr_32f64f(x.data(), dst, len); },
        [&](int mode, std::size_t i) { return isClose(e[i], double{x[i]}, mode); });
}

TEST(VectorSinC, WithinItsBoundInEveryRoundingMode)
{
    Random random(53);
    const std::size_t n = 20000;
    auto x = spread<float>(random, n, -20, 30);
    auto d = spread<double>(random, n, -20, 30);
    d.push_back(0x1.39c6fd67805a7p+19); // 204551 pi: nothing is left of the argument but 2^-53
    for (int k = 1; k < 20000; ++k) {
        const long double multiple = 3.14159265358979323846264338327950288L * k * (k % 7 == 0 ? 30 : 1);
        x.push_back(static_cast<float>(multiple));
        d.push_back(static_cast<double>(multiple));
        d.push_back(static_cast<double>(multiple + 0.53L));
    }
    std::vector<float> y(x.size());
    std::vector<double> wide(x.size());
    std::vector<double> e(d.size());
    inEveryDirectedMode(
        y, [&](float* dst, Elem32s len) { return lyrsSinC_32f(x.data(), dst, len); },
        [&](int /*mode*/, std::size_t i) {
            return withinUnits(y[i], exactSinc(x[i]), directedSincSingleUnits) << x[i];
        });
    inEveryDirectedMode(
        wide, [&](double* dst, Elem32s len) { return lyrsSinC_32f64f(x.data(), dst, len); },
        [&](int /*mode*/, std::size_t i) { return withinUnits(wide[i], exactSinc(x[i]), directedSincUnits) << x[i]; });
    inEveryDirectedMode(
        e, [&](double* dst, Elem32s len) { return lyrsSinC_64f(d.data(), dst, len); },
        [&](int /*mode*/, std::size_t i) { return withinUnits(e[i], exactSinc(d[i]), directedSincUnits) << d[i]; });
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

// The element by element way rounds as rarely as the kernels do: a sine rounded to single and then divided would be off
// by up to 1.46 units.
TEST(VectorSinC, OverlappingSinglesAreWithinTheirBound)
{
    Random random(59);
    const auto arguments = spread<float>(random, 50000, -3, 7);
    for (const float argument : arguments) {
        float x[] = {argument, 1, 1};
        ASSERT_EQ(lyrsSinC_32f(x, x + 1, 2), StsNoErr);
        ASSERT_TRUE(withinUnits(x[1], exactSinc(argument), sincSingleUnits)) << argument;
        ASSERT_TRUE(withinUnits(x[2], exactSinc(x[1]), sincSingleUnits)) << x[1];
    }
}

// A destination at every address. Through an address, as no pointer to a number may be off its alignment in the
// language.
template <class S, class D>
void expectAnyAddress(Status (*call)(const S*, D*, Elem32s), Status (*inPlace)(D*, Elem32s), D (*reference)(D),
                      int ulps)
{
    Random random(61);
    for (const std::size_t len : {1U, 2U, 3U, 4U, 7U, 8U, 15U, 16U, 17U, 40U}) {
        const auto x = random.vector<S>(len, S(-2), S(2));
        const auto n = static_cast<Elem32s>(len);
        for (std::size_t offset = 0; offset < 2 * sizeof(D); ++offset) {
            SCOPED_TRACE(::testing::Message() << "len " << len << " offset " << offset);
            const Guarded<char> memory(len * sizeof(D), offset);
            auto* const dst = reinterpret_cast<D*>(reinterpret_cast<std::uintptr_t>(memory.data()));
            const auto expectResults = [&] {
                for (std::size_t i = 0; i < len; ++i) {
                    D result = 0;
                    std::memcpy(&result, memory.data() + i * sizeof(D), sizeof result);
                    ASSERT_TRUE(withinUlps(result, reference(D{x[i]}), ulps)) << "element " << i;
                }
                ASSERT_TRUE(memory.intact());
            };
            ASSERT_EQ(call(x.data(), dst, n), StsNoErr);
            ASSERT_NO_FATAL_FAILURE(expectResults());
            if constexpr (std::is_same_v<S, D>) {
                std::memcpy(memory.data(), x.data(), len * sizeof(D));
                ASSERT_EQ(inPlace(dst, n), StsNoErr);
                ASSERT_NO_FATAL_FAILURE(expectResults()) << "in place";
            }
        }
    }
}

TEST(VectorFunctions, ADestinationAtAnyAddress)
{
    expectAnyAddress<float, float>(lyrsExpNegSqr_32f, lyrsExpNegSqr_32f_I, lyr::oracle::expNegSqr<float>, expUlps);
    expectAnyAddress<double, double>(lyrsExpNegSqr_64f, lyrsExpNegSqr_64f_I, lyr::oracle::expNegSqr<double>, expUlps);
    expectAnyAddress<float, double>(lyrsExpNegSqr_32f64f, nullptr, lyr::oracle::expNegSqr<double>, expUlps);
    expectAnyAddress<float, float>(lyrsSinC_32f, lyrsSinC_32f_I, lyr::oracle::sinc<float>, sincSingleUlps);
    expectAnyAddress<double, double>(lyrsSinC_64f, lyrsSinC_64f_I, lyr::oracle::sinc<double>, sincUlps);
    expectAnyAddress<float, double>(lyrsSinC_32f64f, nullptr, lyr::oracle::sinc<double>, sincUlps);
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
