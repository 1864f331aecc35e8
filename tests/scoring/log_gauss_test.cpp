// Scores of frames against one diagonal Gaussian: every member against the oracle, at the width that this program is
// linked for.

#include "lyrsr.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "oracle/log_gauss.hpp"
#include "support/allocation.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"

namespace {

using lyr::oracle::Weight;
using lyr::test::Guarded;
using lyr::test::Random;

constexpr float inf32 = std::numeric_limits<float>::infinity();
constexpr double inf64 = std::numeric_limits<double>::infinity();

// A score is within this of the exact one: `len` + 4 roundings, each at most half a unit of the sum of the magnitudes
// that enter (Higham, Accuracy and Stability of Numerical Algorithms, 2002, section 3.1).
template <class T>
long double errorBound(std::size_t len, long double magnitude, T gconst)
{
    const auto unit = static_cast<long double>(std::numeric_limits<T>::epsilon()) / 2;
    return unit * (static_cast<long double>(len) + 4) * (magnitude / 2 + std::fabs(static_cast<long double>(gconst)));
}

// ---------------------------------------------------------------------------------------------------------- one frame

template <class S, class T>
struct SingleMember
{
    using Weighted = Status (*)(const S*, const S*, const S*, Elem32s, T*, T);
    using Unit = Status (*)(const S*, const S*, Elem32s, T*, T);

    const char* name;
    Weight weight;
    Weighted weighted;
    Unit unit;
    bool doubled;

    Status operator()(const S* x, const S* m, const S* v, Elem32s len, T* result, T gconst) const
    {
        return unit != nullptr ? unit(x, m, len, result, gconst) : weighted(x, m, v, len, result, gconst);
    }
};

template <class S, class T>
void compareSingle(const SingleMember<S, T>& member)
{
    SCOPED_TRACE(member.name);
    Random random(7);
    std::vector<std::size_t> lengths;
    for (std::size_t n = 1; n <= 70; ++n) {
        lengths.push_back(n);
    }
    lengths.insert(lengths.end(), {127, 128, 129, 1000});
    for (const std::size_t len : lengths) {
        const auto x = random.vector<S>(len, -4, 4);
        const auto m = random.vector<S>(len, -4, 4);
        const auto v = random.vector<S>(len, S(0.25), 4);
        const T gconst = random.uniform<T>(-50, 50);
        const auto d = lyr::oracle::distance<T>(x.data(), m.data(), v.data(), len, member.weight);
        const long double expected =
            member.doubled ? lyr::oracle::doubledScore(gconst, d) : lyr::oracle::plainScore(gconst, d);
        const long double bound = errorBound<T>(len, d.magnitude, gconst);

        for (std::size_t offset = 0; offset < 16; offset += sizeof(S)) {
            for (const std::size_t varOffset : {offset, std::size_t{0}, Guarded<S>::flush(len)}) {
                const Guarded<S> xs(x, offset);
                const Guarded<S> ms(m, offset == 0 ? 0 : Guarded<S>::flush(len));
                const Guarded<S> vs(v, varOffset);
                T result = -1;
                ASSERT_EQ(member(xs.data(), ms.data(), vs.data(), static_cast<Elem32s>(len), &result, gconst),
                          StsNoErr);
                ASSERT_NEAR(static_cast<double>(result), static_cast<double>(expected), static_cast<double>(bound))
                    << "len " << len << " offset " << offset;
            }
        }
    }
}

TEST(LogGaussSingle, Single)
{
    compareSingle<float, float>({"lyrsLogGaussSingle_32f", Weight::Inverse, lyrsLogGaussSingle_32f, nullptr, true});
    compareSingle<float, float>(
        {"lyrsLogGaussSingle_IdVar_32f", Weight::Unit, nullptr, lyrsLogGaussSingle_IdVar_32f, true});
    compareSingle<float, float>(
        {"lyrsLogGaussSingle_DirectVar_32f", Weight::Variance, lyrsLogGaussSingle_DirectVar_32f, nullptr, true});
}

TEST(LogGaussSingle, Double)
{
    compareSingle<double, double>({"lyrsLogGaussSingle_64f", Weight::Inverse, lyrsLogGaussSingle_64f, nullptr, false});
    compareSingle<double, double>(
        {"lyrsLogGaussSingle_IdVar_64f", Weight::Unit, nullptr, lyrsLogGaussSingle_IdVar_64f, false});
    compareSingle<double, double>(
        {"lyrsLogGaussSingle_DirectVar_64f", Weight::Variance, lyrsLogGaussSingle_DirectVar_64f, nullptr, false});
}

TEST(LogGaussSingle, SinglesInDoublePrecision)
{
    compareSingle<float, double>(
        {"lyrsLogGaussSingle_32f64f", Weight::Inverse, lyrsLogGaussSingle_32f64f, nullptr, false});
    compareSingle<float, double>(
        {"lyrsLogGaussSingle_IdVar_32f64f", Weight::Unit, nullptr, lyrsLogGaussSingle_IdVar_32f64f, false});
    compareSingle<float, double>(
        {"lyrsLogGaussSingle_DirectVar_32f64f", Weight::Variance, lyrsLogGaussSingle_DirectVar_32f64f, nullptr, false});
}

// The lanes of a masked tail add nothing, whatever stands behind the vectors: here NaN.
TEST(LogGaussSingle, BytesBehindTheVectorsDoNotCount)
{
    for (std::size_t len = 1; len <= 35; ++len) {
        alignas(64) std::array<float, 64> x{};
        x.fill(std::numeric_limits<float>::quiet_NaN());
        std::fill_n(x.begin(), len, 2.0F);
        alignas(64) std::array<float, 64> m = x;
        std::fill_n(m.begin(), len, 1.0F);
        float result = 0;
        ASSERT_EQ(lyrsLogGaussSingle_32f(x.data(), m.data(), x.data(), static_cast<Elem32s>(len), &result, 0.0F),
                  StsNoErr);
        EXPECT_EQ(result, -static_cast<float>(len)) << len;
    }
}

TEST(LogGaussSingle, TheDoubledConstantOverflowsInSinglePrecision)
{
    const float x = 1.0F;
    float single = 0;
    ASSERT_EQ(lyrsLogGaussSingle_32f(&x, &x, &x, 1, &single, 3e38F), StsNoErr);
    EXPECT_EQ(single, inf32);

    const double y = 1.0;
    double twice = 0;
    ASSERT_EQ(lyrsLogGaussSingle_64f(&y, &y, &y, 1, &twice, 1.5e308), StsNoErr);
    EXPECT_EQ(twice, 1.5e308) << "not doubled in double precision";
}

TEST(LogGaussSingle, ZeroInverseVarianceRemovesAnElement)
{
    const std::array<float, 2> x{5.0F, 3.0F};
    const std::array<float, 2> m{1.0F, 1.0F};
    const std::array<float, 2> v{0.0F, 1.0F};
    float result = 0;
    ASSERT_EQ(lyrsLogGaussSingle_32f(x.data(), m.data(), v.data(), 2, &result, 1.0F), StsNoErr);
    EXPECT_EQ(result, -1.0F);
}

// Three routes, three answers to a zero variance; meant to differ.
TEST(LogGaussSingle, ZeroVariance)
{
    for (const std::size_t zeroAt : {std::size_t{0}, std::size_t{4}, std::size_t{8}}) {
        for (const bool equal : {false, true}) {
            std::vector<float> x(9, 2.0F);
            std::vector<float> m(9, 1.0F);
            std::vector<float> v(9, 1.0F);
            v[zeroAt] = zeroAt == 4 ? -0.0F : 0.0F;
            m[zeroAt] = equal ? x[zeroAt] : 1.0F;
            const auto wrong = [equal](double score) { return equal ? std::isnan(score) : score == -inf64; };

            float single = 17.0F;
            EXPECT_EQ(lyrsLogGaussSingle_DirectVar_32f(x.data(), m.data(), v.data(), 9, &single, 1.0F),
                      StsWarnOverflow);
            EXPECT_TRUE(wrong(single)) << single;

            double widened = 17.0;
            EXPECT_EQ(lyrsLogGaussSingle_DirectVar_32f64f(x.data(), m.data(), v.data(), 9, &widened, 1.0),
                      StsWarnOverflow);
            EXPECT_EQ(widened, 17.0) << "a warning without a result";

            const std::vector<double> x64(x.begin(), x.end());
            const std::vector<double> m64(m.begin(), m.end());
            std::vector<double> v64(v.begin(), v.end());
            v64[zeroAt] = 0.0;
            double twice = 17.0;
            EXPECT_EQ(lyrsLogGaussSingle_DirectVar_64f(x64.data(), m64.data(), v64.data(), 9, &twice, 1.0), StsNoErr);
            EXPECT_TRUE(wrong(twice)) << twice;
        }
    }
}

TEST(LogGaussSingle, NanVarianceIsNoWarning)
{
    const float x = 1.0F;
    const float nan = std::numeric_limits<float>::quiet_NaN();
    double result = 0;
    EXPECT_EQ(lyrsLogGaussSingle_DirectVar_32f64f(&x, &x, &nan, 1, &result, 1.0), StsNoErr);
    EXPECT_TRUE(std::isnan(result));
}

TEST(LogGaussSingle, WorkMemoryThatCannotBeHad)
{
    const std::vector<float> x(5, 1.0F);
    float result = 17.0F;
    const int failed = lyr::test::failEachAllocation(
        [&] { return lyrsLogGaussSingle_DirectVar_32f(x.data(), x.data(), x.data(), 5, &result, 1.0F); }, {},
        [&] { EXPECT_EQ(result, 17.0F); });
    EXPECT_EQ(failed, 1);
}

// -------------------------------------------------------------------------------------------------------- many frames

template <class T>
struct FramesMember
{
    const char* name;
    bool weighted;
    bool doubledBlock;
    bool doubledTable;
    Elem32s narrowBlock; // below this width a block is scored element by element
    Elem32s narrowTable;
    Status (*block)(const T*, Elem32s, const T*, const T*, Elem32s, T*, Elem32s, T);
    Status (*table)(const T* const*, const T*, const T*, Elem32s, T*, Elem32s, T);
};

const FramesMember<float> weighted32f{"lyrsLogGauss_32f",  true, true, true, 4, 4, lyrsLogGauss_32f_D2,
                                      lyrsLogGauss_32f_D2L};
const FramesMember<float> unit32f{
    "lyrsLogGauss_IdVar_32f",
    false,
    true,
    true,
    4,
    1,
    [](const float* x, Elem32s step, const float* m, const float*, Elem32s width, float* dst, Elem32s height, float g) {
        return lyrsLogGauss_IdVar_32f_D2(x, step, m, width, dst, height, g);
    },
    [](const float* const* x, const float* m, const float*, Elem32s width, float* dst, Elem32s height, float g) {
        return lyrsLogGauss_IdVar_32f_D2L(x, m, width, dst, height, g);
    }};
const FramesMember<double> weighted64f{"lyrsLogGauss_64f",  true, false, true, 1, 1, lyrsLogGauss_64f_D2,
                                       lyrsLogGauss_64f_D2L};
const FramesMember<double> unit64f{
    "lyrsLogGauss_IdVar_64f",
    false,
    false,
    true,
    1,
    1,
    [](const double* x, Elem32s step, const double* m, const double*, Elem32s width, double* dst, Elem32s height,
       double g) { return lyrsLogGauss_IdVar_64f_D2(x, step, m, width, dst, height, g); },
    [](const double* const* x, const double* m, const double*, Elem32s width, double* dst, Elem32s height, double g) {
        return lyrsLogGauss_IdVar_64f_D2L(x, m, width, dst, height, g);
    }};

template <class T>
void expectScores(const FramesMember<T>& member, const Guarded<T>& dst, const Guarded<T>& frames, std::size_t step,
                  const std::vector<T>& m, const std::vector<T>& v, std::size_t height, T gconst, bool table)
{
    const std::size_t width = m.size();
    const bool narrow = static_cast<Elem32s>(width) < (table ? member.narrowTable : member.narrowBlock);
    for (std::size_t f = 0; f < height; ++f) {
        const T* x = frames.data() + f * step;
        if constexpr (std::is_same_v<T, float>) {
            if (narrow) { // fixed step by step
                ASSERT_EQ(dst[f],
                          lyr::oracle::narrowScore(x, m.data(), member.weighted ? v.data() : nullptr, width, gconst));
                continue;
            }
        }
        const auto d =
            lyr::oracle::distance<T>(x, m.data(), v.data(), width, member.weighted ? Weight::Inverse : Weight::Unit);
        const bool doubled = table ? member.doubledTable : member.doubledBlock;
        const long double expected =
            doubled ? lyr::oracle::doubledScore(gconst, d) : lyr::oracle::plainScore(gconst, d);
        ASSERT_NEAR(static_cast<double>(dst[f]), static_cast<double>(expected),
                    static_cast<double>(errorBound<T>(width, d.magnitude, gconst)))
            << "frame " << f;
    }
}

template <class T>
void compareFrames(const FramesMember<T>& member)
{
    SCOPED_TRACE(member.name);
    Random random(11);
    const std::size_t unit = 16 / sizeof(T);
    for (std::size_t width = 1; width <= 70; ++width) {
        const auto m = random.vector<T>(width, -4, 4);
        const auto v = random.vector<T>(width, T(0.25), 4);
        const T gconst = random.uniform<T>(-50, 50);
        for (const std::size_t height : {1, 2, 3, 4, 5, 7, 8, 9}) {
            for (const std::size_t step : {width, width + 1, (width + 2 * unit - 1) / (2 * unit) * 2 * unit}) {
                for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
                    SCOPED_TRACE("width " + std::to_string(width) + " height " + std::to_string(height) + " step " +
                                 std::to_string(step) + " offset " + std::to_string(offset));
                    const std::size_t count = (height - 1) * step + width;
                    const Guarded<T> frames(random.vector<T>(count, -4, 4), offset);
                    const Guarded<T> ms(m, offset == 0 ? 0 : Guarded<T>::flush(width));
                    const Guarded<T> vs(v, offset == 0 ? 0 : Guarded<T>::flush(width));
                    Guarded<T> dst(height, Guarded<T>::flush(height));

                    ASSERT_EQ(member.block(frames.data(), static_cast<Elem32s>(step), ms.data(), vs.data(),
                                           static_cast<Elem32s>(width), dst.data(), static_cast<Elem32s>(height),
                                           gconst),
                              StsNoErr);
                    expectScores(member, dst, frames, step, m, v, height, gconst, false);
                    ASSERT_TRUE(dst.intact());

                    std::vector<const T*> rows;
                    for (std::size_t f = 0; f < height; ++f) {
                        rows.push_back(frames.data() + f * step);
                    }
                    ASSERT_EQ(member.table(rows.data(), ms.data(), vs.data(), static_cast<Elem32s>(width), dst.data(),
                                           static_cast<Elem32s>(height), gconst),
                              StsNoErr);
                    expectScores(member, dst, frames, step, m, v, height, gconst, true);
                    ASSERT_TRUE(dst.intact());
                }
            }
        }
    }
}

TEST(LogGauss, Single)
{
    compareFrames(weighted32f);
}
TEST(LogGauss, SingleUnitVariance)
{
    compareFrames(unit32f);
}
TEST(LogGauss, Double)
{
    compareFrames(weighted64f);
}
TEST(LogGauss, DoubleUnitVariance)
{
    compareFrames(unit64f);
}

// Row tables double the constant, blocks do not; both are meant.
TEST(LogGauss, OnlyTablesDoubleTheConstantInDoublePrecision)
{
    const std::vector<double> x(6, 1.0);
    const double* const rows[] = {x.data()};
    const double gconst = 1.5e308;
    double score = 0;
    ASSERT_EQ(lyrsLogGauss_64f_D2(x.data(), 6, x.data(), x.data(), 6, &score, 1, gconst), StsNoErr);
    EXPECT_EQ(score, gconst);
    ASSERT_EQ(lyrsLogGauss_IdVar_64f_D2(x.data(), 6, x.data(), 6, &score, 1, gconst), StsNoErr);
    EXPECT_EQ(score, gconst);
    ASSERT_EQ(lyrsLogGauss_64f_D2L(rows, x.data(), x.data(), 6, &score, 1, gconst), StsNoErr);
    EXPECT_EQ(score, inf64);
    ASSERT_EQ(lyrsLogGauss_IdVar_64f_D2L(rows, x.data(), 6, &score, 1, gconst), StsNoErr);
    EXPECT_EQ(score, inf64);
}

// A width of 3 loses small products one by one against a large constant; a width of 4 adds them up first.
TEST(LogGauss, NarrowFramesSubtractProductsFromTheConstant)
{
    const std::vector<float> x(4, 1.0F);
    const std::vector<float> m(4, 0.0F);
    const std::vector<float> v{0.75F, 0.75F, 0.75F, 0.75F};
    const float gconst = 8388608.0F; // 2^23: twice that has neighbours 1 below and 2 above
    float score = 0;
    ASSERT_EQ(lyrsLogGauss_32f_D2(x.data(), 4, m.data(), v.data(), 3, &score, 1, gconst), StsNoErr);
    EXPECT_EQ(score, (16777216.0F - 3.0F) * 0.5F) << "0.75 three times, each rounded up to 1";
    ASSERT_EQ(lyrsLogGauss_32f_D2(x.data(), 4, m.data(), v.data(), 4, &score, 1, gconst), StsNoErr);
    EXPECT_EQ(score, (16777216.0F - 3.0F) * 0.5F) << "0.75 four times is 3";
    ASSERT_EQ(lyrsLogGauss_IdVar_32f_D2(x.data(), 4, m.data(), 3, &score, 1, gconst), StsNoErr);
    EXPECT_EQ(score, (16777216.0F - 3.0F) * 0.5F);
}

} // namespace
