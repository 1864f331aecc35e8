// Means and variances of columns: every member against the oracle, at the width that this program is linked for.

#include "estimation/feature_rows.hpp"
#include "support/allocation.hpp"
#include "support/ulp.hpp"

#include <array>
#include <climits>
#include <cmath>
#include <xmmintrin.h>

namespace {

using lyr::oracle::columnSums;
using lyr::oracle::Estimate;
using lyr::oracle::reciprocal;
using lyr::oracle::roundedReciprocal;
using lyr::oracle::steppedMean;
using lyr::oracle::steppedVariance;
using lyr::oracle::toInteger;
using lyr::test::FeatureRows;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::results;
using lyr::test::roundsTo;
using lyr::test::sameBits;
using lyr::test::Shape;
using lyr::test::shapes;
using lyr::test::within;

enum class Layout
{
    Block,
    Table
};
constexpr Layout bothLayouts[] = {Layout::Block, Layout::Table};

// ---------------------------------------------------------------- the members by layout, each named where it is called

Status mean(Layout layout, const FeatureRows<float>& x, const Shape& s, float* m)
{
    return layout == Layout::Block ? lyrsMeanColumn_32f_D2(x.block(), s.h(), s.s(), m, s.w())
                                   : lyrsMeanColumn_32f_D2L(x.table(), s.h(), m, s.w());
}

Status mean(Layout layout, const FeatureRows<Elem16s>& x, const Shape& s, Elem16s* m)
{
    return layout == Layout::Block ? lyrsMeanColumn_16s_D2(x.block(), s.h(), s.s(), m, s.w())
                                   : lyrsMeanColumn_16s_D2L(x.table(), s.h(), m, s.w());
}

Status var(Layout layout, const FeatureRows<float>& x, const Shape& s, const float* m, float* v)
{
    return layout == Layout::Block ? lyrsVarColumn_32f_D2(x.block(), s.h(), s.s(), m, v, s.w())
                                   : lyrsVarColumn_32f_D2L(x.table(), s.h(), m, v, s.w());
}

Status var(Layout layout, const FeatureRows<Elem16s>& x, const Shape& s, const Elem16s* m, Elem16s* v, Elem32s scale)
{
    return layout == Layout::Block ? lyrsVarColumn_16s_D2Sfs(x.block(), s.h(), s.s(), m, v, s.w(), scale)
                                   : lyrsVarColumn_16s_D2LSfs(x.table(), s.h(), m, v, s.w(), scale);
}

Status meanVar(Layout layout, const FeatureRows<float>& x, const Shape& s, float* m, float* v)
{
    return layout == Layout::Block ? lyrsMeanVarColumn_32f_D2(x.block(), s.h(), s.s(), m, v, s.w())
                                   : lyrsMeanVarColumn_32f_D2L(x.table(), s.h(), m, v, s.w());
}

Status meanVar(Layout layout, const FeatureRows<Elem16s>& x, const Shape& s, Elem16s* m, Elem16s* v, Elem32s scale)
{
    return layout == Layout::Block ? lyrsMeanVarColumn_16s_D2Sfs(x.block(), s.h(), s.s(), m, v, s.w(), scale)
                                   : lyrsMeanVarColumn_16s_D2LSfs(x.table(), s.h(), m, v, s.w(), scale);
}

Status meanVar(Layout layout, const FeatureRows<Elem16s>& x, const Shape& s, Elem32s* m, Elem32s* v, Elem32s scale)
{
    return layout == Layout::Block ? lyrsMeanVarColumn_16s32s_D2Sfs(x.block(), s.h(), s.s(), m, v, s.w(), scale)
                                   : lyrsMeanVarColumn_16s32s_D2LSfs(x.table(), s.h(), m, v, s.w(), scale);
}

Status meanVar(Layout layout, const FeatureRows<Elem16s>& x, const Shape& s, Elem16s* m, Elem32s* v)
{
    return layout == Layout::Block ? lyrsMeanVarColumn_16s16s32s_D2(x.block(), s.h(), s.s(), m, v, s.w())
                                   : lyrsMeanVarColumn_16s16s32s_D2L(x.table(), s.h(), m, v, s.w());
}

// ------------------------------------------------------------------------------------------------------------- singles

TEST(MeanColumn, Singles)
{
    Random random(1);
    for (const Shape& shape : shapes(sizeof(float), 1)) {
        SCOPED_TRACE(shape.text());
        const FeatureRows<float> x(shape, random, -3.0F, 5.0F);
        for (const Layout layout : bothLayouts) {
            const auto m = results<float>(shape.width, shape.offset);
            ASSERT_EQ(mean(layout, x, shape, m.data()), StsNoErr);
            for (std::size_t c = 0; c < shape.width; ++c) {
                ASSERT_TRUE(within(m[c], lyr::oracle::mean<float>(columnSums(x.column(c)), shape.height))) << c;
            }
            ASSERT_TRUE(m.intact());
        }
    }
}

// The supplied means have nothing to do with the data.
TEST(VarColumn, Singles)
{
    Random random(2);
    for (const Shape& shape : shapes(sizeof(float), 2)) {
        SCOPED_TRACE(shape.text());
        const FeatureRows<float> x(shape, random, -3.0F, 5.0F);
        const Guarded<float> m(random.vector(shape.width, -4.0F, 4.0F), Guarded<float>::flush(shape.width));
        for (const Layout layout : bothLayouts) {
            const auto v = results<float>(shape.width, shape.offset);
            ASSERT_EQ(var(layout, x, shape, m.data(), v.data()), StsNoErr);
            for (std::size_t c = 0; c < shape.width; ++c) {
                const auto sums = columnSums(x.column(c));
                ASSERT_TRUE(within(v[c], lyr::oracle::variance<float>(sums, shape.height, m[c]))) << c;
            }
            ASSERT_TRUE(v.intact());
        }
    }
}

TEST(MeanVarColumn, Singles)
{
    Random random(3);
    for (const Shape& shape : shapes(sizeof(float), 2)) {
        SCOPED_TRACE(shape.text());
        const FeatureRows<float> x(shape, random, -3.0F, 5.0F);
        for (const Layout layout : bothLayouts) {
            const auto m = results<float>(shape.width);
            const auto v = results<float>(shape.width, shape.offset);
            ASSERT_EQ(meanVar(layout, x, shape, m.data(), v.data()), StsNoErr);
            for (std::size_t c = 0; c < shape.width; ++c) {
                const auto sums = columnSums(x.column(c));
                ASSERT_TRUE(within(m[c], lyr::oracle::mean<float>(sums, shape.height))) << c;
                ASSERT_TRUE(within(v[c], lyr::oracle::variance<float>(sums, shape.height, m[c]))) << c;
            }
            ASSERT_TRUE(m.intact() && v.intact());
        }
    }
}

// Small whole numbers, whose sums are exact in any order: what remains are the roundings of the formula, bit by bit.
TEST(MeanVarColumn, SinglesRoundStepByStep)
{
    Random random(4);
    for (const std::size_t height : std::initializer_list<std::size_t>{2, 3, 7, 10, 49, 98, 103, 161}) {
        const Shape shape{height, 37, 2, 4};
        FeatureRows<float> x(shape, random, 0.0F, 0.0F);
        for (std::size_t i = 0; i < height * shape.step() - shape.gap; ++i) {
            const_cast<float*>(x.block())[i] = static_cast<float>(random.uniform<int>(-150, 150));
        }
        std::vector<const float*> table;
        for (std::size_t r = 0; r < height; ++r) {
            table.push_back(x.block() + r * shape.step());
        }
        std::array<float, 37> m{};
        std::array<float, 37> v{};
        std::array<float, 37> m1{};
        std::array<float, 37> v1{};
        ASSERT_EQ(lyrsMeanVarColumn_32f_D2(x.block(), shape.h(), shape.s(), m.data(), v.data(), 37), StsNoErr);
        ASSERT_EQ(lyrsMeanColumn_32f_D2(x.block(), shape.h(), shape.s(), m1.data(), 37), StsNoErr);
        ASSERT_EQ(lyrsVarColumn_32f_D2L(table.data(), shape.h(), m.data(), v1.data(), 37), StsNoErr);
        for (std::size_t c = 0; c < 37; ++c) {
            std::vector<float> column;
            for (const float* row : table) {
                column.push_back(row[c]);
            }
            const auto sums = columnSums(column);
            const auto expected = steppedMean(sums.sum, roundedReciprocal(height));
            EXPECT_TRUE(sameBits(m[c], expected));
            EXPECT_TRUE(sameBits(m1[c], expected));
            const float factor = roundedReciprocal(height - 1);
            EXPECT_TRUE(sameBits(v[c], steppedVariance(sums.squares, height, expected, factor)));
            EXPECT_TRUE(sameBits(v1[c], v[c]));
        }
    }
}

TEST(VarColumn, AMeanThatIsNotTheTrueOneGivesNoSumOfSquaredDeviations)
{
    const std::array<float, 2> x{1.0F, 3.0F};
    for (const auto& [m, expected] : {std::pair{2.0F, 2.0F}, {0.0F, 10.0F}, {10.0F, -190.0F}}) {
        float v = 0;
        ASSERT_EQ(lyrsVarColumn_32f_D2(x.data(), 2, 1, &m, &v, 1), StsNoErr);
        EXPECT_EQ(v, expected);
    }
}

// One pass over the data leaves rounding errors of either sign, and they stay.
TEST(MeanVarColumn, ConstantColumnMayHaveANegativeVariance)
{
    int negative = 0;
    for (int k = 1; k <= 200; ++k) {
        const std::vector<float> x(7, 0.1F * static_cast<float>(k));
        float m = 0;
        float v = 0;
        ASSERT_EQ(lyrsMeanVarColumn_32f_D2(x.data(), 7, 1, &m, &v, 1), StsNoErr);
        EXPECT_LE(std::fabs(v), 4e-6F * x[0] * x[0]);
        negative += v < 0 ? 1 : 0;
    }
    EXPECT_GT(negative, 0);
}

TEST(MeanColumn, NonFiniteElementsStayInTheirColumn)
{
    constexpr float inf = std::numeric_limits<float>::infinity();
    std::vector<float> x(3 * 9, 1.0F);
    x[9 + 4] = inf;
    x[18 + 8] = std::numeric_limits<float>::quiet_NaN();
    std::array<float, 9> m{};
    ASSERT_EQ(lyrsMeanColumn_32f_D2(x.data(), 3, 9, m.data(), 9), StsNoErr);
    for (std::size_t c = 0; c < 9; ++c) {
        if (c == 8) {
            EXPECT_TRUE(std::isnan(m[c]));
        } else {
            EXPECT_EQ(m[c], c == 4 ? inf : 1.0F);
        }
    }
}

// ------------------------------------------------------------------------------------------------------------- 16 bits

constexpr Elem32s scales[] = {0, 1, -1, 3, -4, 9, -15, 40, -40};

long double power(Elem32s scale)
{
    return std::ldexp(1.0L, -scale);
}

// Values so small that every sum is exact in single precision: results to the bit.
TEST(MeanColumn, ShortsRoundStepByStep)
{
    Random random(5);
    for (const Shape& shape : shapes(sizeof(Elem16s), 1)) {
        SCOPED_TRACE(shape.text());
        const FeatureRows<Elem16s> x(shape, random, -1000, 1000);
        for (const Layout layout : bothLayouts) {
            const auto m = results<Elem16s>(shape.width, shape.offset);
            ASSERT_EQ(mean(layout, x, shape, m.data()), StsNoErr);
            for (std::size_t c = 0; c < shape.width; ++c) {
                const auto expected = steppedMean(columnSums(x.column(c)).sum, reciprocal<float>(shape.height));
                ASSERT_EQ(m[c], toInteger<Elem16s>(expected)) << c;
            }
            ASSERT_TRUE(m.intact());
        }
    }
}

TEST(VarColumn, ShortsRoundStepByStep)
{
    Random random(6);
    std::size_t n = 0;
    for (const Shape& shape : shapes(sizeof(Elem16s), 2)) {
        SCOPED_TRACE(shape.text());
        const FeatureRows<Elem16s> x(shape, random, -120, 120);
        const Guarded<Elem16s> m(random.vector<Elem16s>(shape.width, -50, 50), Guarded<Elem16s>::flush(shape.width));
        for (const Layout layout : bothLayouts) {
            const Elem32s scale = scales[n++ % std::size(scales)];
            const auto v = results<Elem16s>(shape.width, shape.offset);
            ASSERT_EQ(var(layout, x, shape, m.data(), v.data(), scale), StsNoErr);
            for (std::size_t c = 0; c < shape.width; ++c) {
                const auto sums = columnSums(x.column(c));
                const auto expected = steppedVariance(sums.squares, shape.height, static_cast<float>(m[c]),
                                                      reciprocal<float>(shape.height - 1));
                ASSERT_EQ(v[c], toInteger<Elem16s>(expected * power(scale))) << c << " scale " << scale;
            }
            ASSERT_TRUE(v.intact());
        }
    }
}

TEST(MeanVarColumn, ShortsRoundStepByStep)
{
    Random random(7);
    std::size_t n = 0;
    for (const Shape& shape : shapes(sizeof(Elem16s), 2)) {
        SCOPED_TRACE(shape.text());
        const FeatureRows<Elem16s> x(shape, random, -120, 120);
        for (const Layout layout : bothLayouts) {
            const Elem32s scale = scales[n++ % std::size(scales)];
            const auto m = results<Elem16s>(shape.width);
            const auto v = results<Elem16s>(shape.width, shape.offset);
            ASSERT_EQ(meanVar(layout, x, shape, m.data(), v.data(), scale), StsNoErr);
            for (std::size_t c = 0; c < shape.width; ++c) {
                const auto sums = columnSums(x.column(c));
                const auto single = steppedMean(sums.sum, reciprocal<float>(shape.height));
                ASSERT_EQ(m[c], toInteger<Elem16s>(single)) << c << ", the mean is not scaled";
                // The mean before its rounding to 16 bits, on purpose.
                const auto expected =
                    steppedVariance(sums.squares, shape.height, single, reciprocal<float>(shape.height - 1));
                ASSERT_EQ(v[c], toInteger<Elem16s>(expected * power(scale))) << c << " scale " << scale;
            }
            ASSERT_TRUE(m.intact() && v.intact());
        }
    }
}

// Over the whole range the sums round in single precision, in any order.
TEST(MeanVarColumn, ShortsOfTheWholeRange)
{
    Random random(8);
    for (const std::size_t height : std::initializer_list<std::size_t>{2, 5, 33, 1003}) {
        const Shape shape{height, 45, 1, 2};
        const FeatureRows<Elem16s> x(shape, random, INT16_MIN, INT16_MAX);
        for (const Layout layout : bothLayouts) {
            const auto m = results<Elem16s>(shape.width);
            const auto v = results<Elem16s>(shape.width);
            const auto alone = results<Elem16s>(shape.width);
            ASSERT_EQ(meanVar(layout, x, shape, m.data(), v.data(), 16), StsNoErr);
            ASSERT_EQ(var(layout, x, shape, m.data(), alone.data(), 16), StsNoErr);
            for (std::size_t c = 0; c < shape.width; ++c) {
                const auto sums = columnSums(x.column(c));
                const auto exact = lyr::oracle::mean<float>(sums, height);
                EXPECT_TRUE(roundsTo(m[c], exact));
                auto expected = lyr::oracle::variance<float>(sums, height, exact.value);
                const auto h = static_cast<long double>(height);
                expected.error += 2 * h * std::fabs(exact.value) * exact.error / (h - 1); // of the mean that enters
                EXPECT_TRUE(roundsTo(v[c], {expected.value * power(16), expected.error * power(16)}));
                const auto given = lyr::oracle::variance<float>(sums, height, m[c]);
                EXPECT_TRUE(roundsTo(alone[c], {given.value * power(16), given.error * power(16)}));
            }
        }
    }
}

TEST(MeanVarColumn, ShortsInDoublePrecisionAreExact)
{
    Random random(9);
    std::size_t n = 0;
    for (const Shape& shape : shapes(sizeof(Elem16s), 2)) {
        SCOPED_TRACE(shape.text());
        const FeatureRows<Elem16s> x(shape, random, INT16_MIN, INT16_MAX);
        for (const Layout layout : bothLayouts) {
            const Elem32s scale = scales[n++ % std::size(scales)];
            const auto m = results<Elem32s>(shape.width);
            const auto v = results<Elem32s>(shape.width, shape.offset / 4 * 4);
            const auto shortMean = results<Elem16s>(shape.width, shape.offset);
            const auto plain = results<Elem32s>(shape.width);
            ASSERT_EQ(meanVar(layout, x, shape, m.data(), v.data(), scale), StsNoErr);
            ASSERT_EQ(meanVar(layout, x, shape, shortMean.data(), plain.data()), StsNoErr);
            for (std::size_t c = 0; c < shape.width; ++c) {
                const auto sums = columnSums(x.column(c));
                const auto exact = steppedMean(sums.sum, reciprocal<double>(shape.height));
                ASSERT_EQ(m[c], toInteger<Elem32s>(exact)) << c << ", the mean is not scaled";
                ASSERT_EQ(shortMean[c], toInteger<Elem16s>(exact)) << c;
                const auto factor = reciprocal<double>(shape.height - 1);
                const double scaled = factor * std::ldexp(1.0, -scale);
                ASSERT_EQ(v[c], toInteger<Elem32s>(steppedVariance(sums.squares, shape.height, exact, scaled)))
                    << c << " scale " << scale;
                ASSERT_EQ(plain[c], toInteger<Elem32s>(steppedVariance(sums.squares, shape.height, exact, factor)))
                    << c;
            }
            ASSERT_TRUE(m.intact() && v.intact() && shortMean.intact() && plain.intact());
        }
    }
}

TEST(MeanVarColumn, ExtremesOfTheRange)
{
    const std::array<Elem16s, 6> x{INT16_MIN, INT16_MAX, INT16_MIN, INT16_MIN, INT16_MAX, INT16_MAX};
    std::array<Elem16s, 3> m{};
    std::array<Elem32s, 3> v{};
    ASSERT_EQ(lyrsMeanVarColumn_16s16s32s_D2(x.data(), 2, 3, m.data(), v.data(), 3), StsNoErr);
    EXPECT_EQ(m, (std::array<Elem16s, 3>{INT16_MIN, INT16_MAX, 0})); // -0.5 goes to the even
    EXPECT_EQ(v, (std::array<Elem32s, 3>{0, 0, 2147418112}));        // 32767.5^2 * 2 = 2147418112.5

    std::array<Elem32s, 3> m32{};
    ASSERT_EQ(lyrsMeanVarColumn_16s32s_D2Sfs(x.data(), 2, 3, m32.data(), v.data(), 3, -1), StsNoErr);
    EXPECT_EQ(m32, (std::array<Elem32s, 3>{INT16_MIN, INT16_MAX, 0}));
    EXPECT_EQ(v[2], INT32_MAX) << "saturates";

    std::array<Elem16s, 3> v16{};
    ASSERT_EQ(lyrsMeanVarColumn_16s_D2Sfs(x.data(), 2, 3, m.data(), v16.data(), 3, 0), StsNoErr);
    EXPECT_EQ(m, (std::array<Elem16s, 3>{INT16_MIN, INT16_MAX, 0}));
    EXPECT_EQ(v16, (std::array<Elem16s, 3>{0, 0, INT16_MAX}));
}

TEST(MeanVarColumn, ScaleFactorsBeyondAllMeasure)
{
    const std::array<Elem16s, 6> x{1, 4, 5, 4, 9, 5}; // the last column is constant
    std::array<Elem32s, 3> m{};
    std::array<Elem32s, 3> v{};
    for (const Elem32s scale : {-1023, -900, -100}) {
        ASSERT_EQ(lyrsMeanVarColumn_16s32s_D2Sfs(x.data(), 2, 3, m.data(), v.data(), 3, scale), StsNoErr);
        EXPECT_EQ(m, (std::array<Elem32s, 3>{2, 6, 5})); // 2.5 and 6.5
        EXPECT_EQ(v, (std::array<Elem32s, 3>{INT32_MAX, INT32_MAX, 0})) << scale;
    }
    for (const Elem32s scale : {-1024, -1200, INT32_MIN}) { // zero times an infinite factor is not a number
        ASSERT_EQ(lyrsMeanVarColumn_16s32s_D2Sfs(x.data(), 2, 3, m.data(), v.data(), 3, scale), StsNoErr);
        EXPECT_EQ(v, (std::array<Elem32s, 3>{INT32_MAX, INT32_MAX, INT32_MIN})) << scale;
    }
    for (const Elem32s scale : {100, 1087, 1300, INT32_MAX}) {
        ASSERT_EQ(lyrsMeanVarColumn_16s32s_D2Sfs(x.data(), 2, 3, m.data(), v.data(), 3, scale), StsNoErr);
        EXPECT_EQ(m, (std::array<Elem32s, 3>{2, 6, 5}));
        EXPECT_EQ(v, (std::array<Elem32s, 3>{0, 0, 0})) << scale;
    }
}

// The power of two of the 16-bit forms is one of single precision: zero from 150 on, infinite from -128 down, where a
// variance of zero makes a NaN, which converts to the upper limit.
TEST(MeanVarColumn, ScaleFactorsOfShortsBeyondAllMeasure)
{
    const std::array<Elem16s, 6> x{1, 4, 5, 4, 9, 5}; // the last column is constant
    const std::array<const Elem16s*, 2> table{x.data(), x.data() + 3};
    const std::array<Elem16s, 3> given{1, 100, 5}; // the second makes a variance below zero, the third none
    for (const Elem32s scale :
         {INT32_MIN, -1025, -150, -129, -128, -127, -101, -100, -99, 40, 41, 127, 139, 141, 149, 150, 151, INT32_MAX}) {
        SCOPED_TRACE(scale);
        const std::array<Elem16s, 3> expected =
            scale > 0 ? std::array<Elem16s, 3>{0, 0, 0}
                      : std::array<Elem16s, 3>{INT16_MAX, INT16_MAX, scale <= -128 ? Elem16s{INT16_MAX} : Elem16s{0}};
        const std::array<Elem16s, 3> expectedOfGiven =
            scale > 0 ? expected : std::array<Elem16s, 3>{INT16_MAX, INT16_MIN, expected[2]};
        std::array<Elem16s, 3> m{};
        std::array<Elem16s, 3> v{};
        ASSERT_EQ(lyrsMeanVarColumn_16s_D2Sfs(x.data(), 2, 3, m.data(), v.data(), 3, scale), StsNoErr);
        EXPECT_EQ(m, (std::array<Elem16s, 3>{2, 6, 5})); // 2.5 and 6.5
        EXPECT_EQ(v, expected);
        v.fill(7);
        ASSERT_EQ(lyrsMeanVarColumn_16s_D2LSfs(table.data(), 2, m.data(), v.data(), 3, scale), StsNoErr);
        EXPECT_EQ(m, (std::array<Elem16s, 3>{2, 6, 5}));
        EXPECT_EQ(v, expected);
        ASSERT_EQ(lyrsVarColumn_16s_D2Sfs(x.data(), 2, 3, given.data(), v.data(), 3, scale), StsNoErr);
        EXPECT_EQ(v, expectedOfGiven);
        v.fill(7);
        ASSERT_EQ(lyrsVarColumn_16s_D2LSfs(table.data(), 2, given.data(), v.data(), 3, scale), StsNoErr);
        EXPECT_EQ(v, expectedOfGiven);
    }
}

// Beyond 2^24 rows the precision of the reciprocal shows. Of singles it is a double that is rounded: 1 / (2^24 + 3)
// comes out, where a division in single precision would be one by 2^24 + 4.
TEST(MeanColumn, ReciprocalOfManySingles)
{
    constexpr std::size_t rows = (1U << 24) + 3;
    constexpr auto height = static_cast<Elem32s>(rows);
    std::vector<float> x(rows + 1);
    x[0] = 1.0F;
    ASSERT_NE(roundedReciprocal(rows), reciprocal<float>(rows));
    float m = 0;
    float v = 0;
    ASSERT_EQ(lyrsMeanColumn_32f_D2(x.data(), height, 1, &m, 1), StsNoErr);
    EXPECT_EQ(m, roundedReciprocal(rows));
    m = 0;
    ASSERT_EQ(lyrsMeanVarColumn_32f_D2(x.data(), height, 1, &m, &v, 1), StsNoErr);
    EXPECT_EQ(m, roundedReciprocal(rows));

    // One row more: the variance divides by `rows`.
    const float given = 0;
    ASSERT_EQ(lyrsVarColumn_32f_D2(x.data(), height + 1, 1, &given, &v, 1), StsNoErr);
    EXPECT_EQ(v, steppedVariance(1, rows + 1, given, roundedReciprocal(rows)));
    EXPECT_NE(v, steppedVariance(1, rows + 1, given, reciprocal<float>(rows)));
    ASSERT_EQ(lyrsMeanVarColumn_32f_D2(x.data(), height + 1, 1, &m, &v, 1), StsNoErr);
    EXPECT_EQ(m, roundedReciprocal(rows + 1));
    EXPECT_EQ(v, steppedVariance(1, rows + 1, m, roundedReciprocal(rows)));
    EXPECT_NE(v, steppedVariance(1, rows + 1, m, reciprocal<float>(rows)));
}

// Of 16-bit data it is formed in single precision: 1 / (2^24 + 1) is 2^-24 there, and a little less if rounded from a
// double.
TEST(MeanColumn, ReciprocalOfManyShorts)
{
    constexpr std::size_t rows = (1U << 24) + 1;
    constexpr auto height = static_cast<Elem32s>(rows);
    constexpr std::size_t filled = 1536; // 2^14 so often make 1.5 * 2^24
    std::vector<Elem16s> x(rows + 1);
    std::fill_n(x.begin(), filled, Elem16s{16384});
    constexpr long double sum = filled * 16384.0L;
    ASSERT_EQ(toInteger<Elem16s>(steppedMean(sum, reciprocal<float>(rows))), 2); // 1.5
    ASSERT_EQ(toInteger<Elem16s>(steppedMean(sum, roundedReciprocal(rows))), 1); // just below
    Elem16s m = 0;
    Elem16s v = 0;
    ASSERT_EQ(lyrsMeanColumn_16s_D2(x.data(), height, 1, &m, 1), StsNoErr);
    EXPECT_EQ(m, 2);
    m = 0;
    ASSERT_EQ(lyrsMeanVarColumn_16s_D2Sfs(x.data(), height, 1, &m, &v, 1, 0), StsNoErr);
    EXPECT_EQ(m, 2);

    // One row more: squares of 3 * 2^24 by 2^24 + 1, halved by the scale factor.
    std::fill_n(x.begin(), filled, Elem16s{0});
    std::fill_n(x.begin(), 3, Elem16s{4096});
    const Elem16s given = 0;
    ASSERT_EQ(toInteger<Elem16s>(steppedVariance(0x3p24L, rows + 1, 0.0F, roundedReciprocal(rows)) * 0.5L), 1);
    ASSERT_EQ(lyrsVarColumn_16s_D2Sfs(x.data(), height + 1, 1, &given, &v, 1, 1), StsNoErr);
    EXPECT_EQ(v, toInteger<Elem16s>(steppedVariance(0x3p24L, rows + 1, 0.0F, reciprocal<float>(rows)) * 0.5L));
}

TEST(MeanVarColumn, TheVarianceTakesTheMeanBeforeItsRounding)
{
    const std::array<Elem16s, 2> x{0, 1}; // mean 0.5, variance 0.5; from a mean of 0 it would be 1
    std::array<Elem16s, 2> result{};
    ASSERT_EQ(lyrsMeanVarColumn_16s_D2Sfs(x.data(), 2, 1, &result[0], &result[1], 1, -1), StsNoErr);
    EXPECT_EQ(result, (std::array<Elem16s, 2>{0, 1}));
    std::array<Elem32s, 2> wide{};
    ASSERT_EQ(lyrsMeanVarColumn_16s32s_D2Sfs(x.data(), 2, 1, &wide[0], &wide[1], 1, -1), StsNoErr);
    EXPECT_EQ(wide, (std::array<Elem32s, 2>{0, 1}));
}

// Conversions to 16 bits round to nearest in every mode; those from double follow the mode in force. Either way the
// caller's mode stays.
TEST(MeanVarColumn, RoundingModes)
{
    const std::array<Elem16s, 4> x{1, 0, 0, 0}; // mean 0.25, variance 0.25
    const unsigned before = _mm_getcsr();
    _MM_SET_ROUNDING_MODE(_MM_ROUND_UP);
    std::array<Elem16s, 3> nearest{};
    std::array<Elem32s, 2> wide{};
    Elem16s shortMean = 0;
    Elem32s upVar = 0;
    const Status a = lyrsMeanVarColumn_16s_D2Sfs(x.data(), 4, 1, &nearest[0], &nearest[1], 1, 0);
    const Status b = lyrsMeanColumn_16s_D2(x.data(), 4, 1, &nearest[2], 1);
    const Status c = lyrsMeanVarColumn_16s32s_D2Sfs(x.data(), 4, 1, &wide[0], &wide[1], 1, 0);
    const Status d = lyrsMeanVarColumn_16s16s32s_D2(x.data(), 4, 1, &shortMean, &upVar, 1);
    const unsigned mode = _MM_GET_ROUNDING_MODE();
    _mm_setcsr(before);
    EXPECT_TRUE(a == StsNoErr && b == StsNoErr && c == StsNoErr && d == StsNoErr);
    EXPECT_EQ(mode, static_cast<unsigned>(_MM_ROUND_UP));
    EXPECT_EQ(nearest, (std::array<Elem16s, 3>{0, 0, 0}));
    EXPECT_EQ(wide, (std::array<Elem32s, 2>{1, 1}));
    EXPECT_EQ(shortMean, 1);
    EXPECT_EQ(upVar, 1);
}

// -------------------------------------------------------------------------------------------------------------- checks

TEST(MeanColumn, OneRowHasAMeanAndNoVariance)
{
    const std::array<float, 2> x{3.0F, 4.0F};
    std::array<float, 2> m{};
    std::array<float, 2> v{7.0F, 7.0F};
    EXPECT_EQ(lyrsMeanColumn_32f_D2(x.data(), 1, 2, m.data(), 2), StsNoErr);
    EXPECT_EQ(m, x);
    EXPECT_EQ(lyrsVarColumn_32f_D2(x.data(), 1, 2, m.data(), v.data(), 2), StsSize);
    EXPECT_EQ(lyrsMeanVarColumn_32f_D2(x.data(), 1, 2, m.data(), v.data(), 2), StsSize);
    EXPECT_EQ(v[0], 7.0F);
}

TEST(MeanColumn, TheStrideComesFirstHereAndThePointersThere)
{
    float f = 0;
    Elem32s i = 0;
    EXPECT_EQ(lyrsMeanColumn_32f_D2(nullptr, 2, 1, &f, 2), StsStep);
    EXPECT_EQ(lyrsVarColumn_32f_D2(nullptr, 2, 1, &f, &f, 2), StsStep);
    EXPECT_EQ(lyrsMeanVarColumn_16s16s32s_D2(nullptr, 2, 1, nullptr, &i, 2), StsNullPtr);
}

// Where singles do not fit the destination of the mean or the variance alone, a call asks for width + 8 of them. Both
// together need none.
TEST(MeanColumn, WorkMemory)
{
    const std::array<Elem16s, 10> x{1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    const std::array<const Elem16s*, 2> table{x.data(), x.data() + 5};
    std::array<Elem16s, 5> m{7, 7, 7, 7, 7};
    const auto kept = m;
    const auto untouched = [&] { EXPECT_EQ(m, kept); };
    const std::function<Status()> calls[] = {
        [&] { return lyrsMeanColumn_16s_D2(x.data(), 2, 5, m.data(), 5); },
        [&] { return lyrsMeanColumn_16s_D2L(table.data(), 2, m.data(), 5); },
        [&] { return lyrsVarColumn_16s_D2Sfs(x.data(), 2, 5, x.data(), m.data(), 5, 0); },
        [&] { return lyrsVarColumn_16s_D2LSfs(table.data(), 2, x.data(), m.data(), 5, 0); },
    };
    for (const auto& call : calls) {
        m = kept;
        EXPECT_EQ(lyr::test::failEachAllocation(call, {}, untouched), 1);
        EXPECT_EQ(lyr::test::lastAllocationSize(), (5 + 8) * sizeof(float) + 32 + sizeof(void*));
    }
    std::array<Elem16s, 5> v{};
    EXPECT_EQ(lyr::test::failEachAllocation(
                  [&] { return lyrsMeanVarColumn_16s_D2Sfs(x.data(), 2, 5, m.data(), v.data(), 5, 0); }),
              0);
}

} // namespace
