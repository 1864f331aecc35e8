// The accumulation of full covariance matrices.

#include "estimation/feature_rows.hpp"

#include <array>
#include <cmath>

namespace {

using lyr::oracle::crossSum;
using lyr::test::FeatureRows;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::Shape;
using lyr::test::within;

template <class S>
struct Members
{
    Status (*block)(const S*, Elem32s, Elem32s, const S*, Elem64f*, Elem32s, Elem32s, Elem64f);
    Status (*table)(const S* const*, Elem32s, const S*, Elem64f* const*, Elem32s, Elem64f);
};

constexpr Members<float> singles{lyrsAccCovarianceMatrix_32f64f_D2, lyrsAccCovarianceMatrix_32f64f_D2L};
constexpr Members<Elem16s> shorts{lyrsAccCovarianceMatrix_16s64f_D2, lyrsAccCovarianceMatrix_16s64f_D2L};

// A matrix that is neither symmetric before the call nor dense.
struct Matrix
{
    Matrix(std::size_t width, std::size_t gap, Random& random)
        : width(width), step(width + gap), elements(random.vector<double>((width - 1) * step + width, -3.0, 3.0),
                                                    Guarded<double>::flush((width - 1) * step + width)),
          before(elements.copy())
    {
        for (std::size_t i = 0; i < width; ++i) {
            rows.push_back(elements.data() + i * step);
        }
    }
    [[nodiscard]] double old(std::size_t i, std::size_t j) const { return before[i * step + j]; }
    [[nodiscard]] bool gapsIntact() const
    {
        for (std::size_t k = 0; k < before.size(); ++k) {
            if (k % step >= width && elements[k] != before[k]) {
                return false;
            }
        }
        return elements.intact();
    }

    std::size_t width;
    std::size_t step;
    Guarded<double> elements;
    std::vector<double> before;
    std::vector<double*> rows;
};

template <class S>
void check(const Members<S>& members, const Shape& s, std::size_t dstGap, S low, S high, Random& random)
{
    SCOPED_TRACE(s.text());
    const FeatureRows<S> x(s, random, low, high);
    const Guarded<S> m(random.vector<S>(s.width, low, high), Guarded<S>::flush(s.width));
    const double val = random.uniform(-0.5, 2.0);
    std::vector<std::vector<S>> columns;
    for (std::size_t c = 0; c < s.width; ++c) {
        columns.push_back(x.column(c));
    }
    for (const bool table : {false, true}) {
        const Matrix dst(s.width, dstGap, random);
        const Status status = table ? members.table(x.table(), s.h(), m.data(), dst.rows.data(), s.w(), val)
                                    : members.block(x.block(), s.s(), s.h(), m.data(), dst.elements.data(), s.w(),
                                                    static_cast<Elem32s>(dst.step), val);
        ASSERT_EQ(status, StsNoErr);
        for (std::size_t i = 0; i < s.width; ++i) {
            for (std::size_t j = i; j < s.width; ++j) {
                auto expected = crossSum(columns[i], columns[j], m[j]);
                const auto v = static_cast<long double>(val);
                const auto old = static_cast<long double>(dst.old(i, j));
                // The product with the factor and the sum are two more roundings.
                expected.error = expected.error * std::fabs(v) + 2 * lyr::oracle::roundingUnit<double> *
                                                                     (std::fabs(expected.value * v) + std::fabs(old));
                expected.value = old + expected.value * v;
                ASSERT_TRUE(within(dst.rows[i][j], expected)) << i << ", " << j;
                ASSERT_EQ(dst.rows[j][i], dst.rows[i][j]) << i << ", " << j << ": the lower triangle is overwritten";
            }
        }
        ASSERT_TRUE(dst.gapsIntact());
    }
}

template <class S>
void compare(const Members<S>& members, S low, S high)
{
    Random random(31);
    constexpr std::size_t heights[] = {1, 2, 3, 5, 8, 17, 40};
    std::size_t n = 0;
    for (std::size_t width = 1; width <= 70; ++width) {
        for (std::size_t offset = 0; offset < 16; offset += sizeof(S)) {
            if (width > 40 && offset % 8 != 0) {
                continue;
            }
            check(members, Shape{heights[n % 7], width, n % 4, offset}, n % 3, low, high, random);
            ++n;
        }
    }
    for (const std::size_t width : {std::size_t{8}, std::size_t{13}, std::size_t{39}}) { // several tiles of rows
        check(members, Shape{2003, width, 1, 0}, 0, low, high, random);
    }
    for (const std::size_t width : {std::size_t{129}, std::size_t{200}}) { // several pieces of the matrix
        check(members, Shape{19, width, 0, 0}, 1, low, high, random);
    }
    check(members, Shape{3, 1031, 0, 0}, 0, low, high, random); // and a piece narrower than the matrix
}

TEST(AccCovarianceMatrix, Singles)
{
    compare<float>(singles, -3.0F, 5.0F);
}
TEST(AccCovarianceMatrix, Shorts)
{
    compare<Elem16s>(shorts, INT16_MIN, INT16_MAX);
}

// At 140000 elements and around, where one could think of another kernel: the same.
TEST(AccCovarianceMatrix, ManyElements)
{
    Random random(32);
    for (const std::size_t height : {std::size_t{17499}, std::size_t{17500}, std::size_t{17501}}) {
        check<float>(singles, Shape{height, 8, 0, 0}, 0, -3.0F, 5.0F, random);
    }
}

// Whole numbers, exact in any order: both factors subtract the mean of the later column, on purpose.
TEST(AccCovarianceMatrix, TheMeanOfTheLaterColumnIsSubtractedFromBoth)
{
    const std::array<Elem16s, 4> x{1, 10, 3, 20};
    const std::array<Elem16s, 2> m{2, 15};
    std::array<double, 4> dst{1, 2, 77, 4};
    ASSERT_EQ(lyrsAccCovarianceMatrix_16s64f_D2(x.data(), 2, 2, m.data(), dst.data(), 2, 2, 0.5), StsNoErr);
    const double cross =
        (1 - 15) * (10 - 15) + (3 - 15) * (20 - 15); // 10, where (1-2)(10-15) + (3-2)(20-15) would be the covariance
    EXPECT_EQ(dst, (std::array<double, 4>{1 + 0.5 * 2, 2 + 0.5 * cross, 2 + 0.5 * cross, 4 + 0.5 * 50}));
}

// Differences are formed in double: in single precision this one would be zero.
TEST(AccCovarianceMatrix, DifferencesAreDoubles)
{
    const float x = 16777216.0F;
    const float m = 0x1p-20F;
    double dst = 0;
    ASSERT_EQ(lyrsAccCovarianceMatrix_32f64f_D2(&x, 1, 1, &m, &dst, 1, 1, 1.0), StsNoErr);
    const double d = 16777216.0 - 0x1p-20;
    EXPECT_EQ(dst, d * d);
}

TEST(AccCovarianceMatrix, PointersThenSizesThenStrides)
{
    const float x = 1.0F;
    double dst = 7.0;
    EXPECT_EQ(lyrsAccCovarianceMatrix_32f64f_D2(nullptr, 1, 0, &x, &dst, 2, 1, 1.0), StsNullPtr);
    EXPECT_EQ(lyrsAccCovarianceMatrix_32f64f_D2(&x, 1, 0, &x, &dst, 2, 1, 1.0), StsSize);
    EXPECT_EQ(lyrsAccCovarianceMatrix_32f64f_D2(&x, 1, 1, &x, &dst, 2, 2, 1.0), StsStep);
    EXPECT_EQ(lyrsAccCovarianceMatrix_32f64f_D2(&x, 2, 1, &x, &dst, 2, 1, 1.0), StsStep);
    EXPECT_EQ(dst, 7.0);
}

} // namespace
