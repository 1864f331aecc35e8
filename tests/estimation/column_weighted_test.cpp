// Weighted means and variances of columns.

#include "estimation/feature_rows.hpp"

#include <array>
#include <cmath>

namespace {

using lyr::oracle::columnSums;
using lyr::oracle::rounded;
using lyr::oracle::weightedVariance;
using lyr::test::FeatureRows;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::results;
using lyr::test::Shape;
using lyr::test::shapes;
using lyr::test::within;

template <class T>
struct Members
{
    Status (*mean)(const T*, Elem32s, const T*, Elem32s, T*, Elem32s);
    Status (*meanTable)(const T* const*, const T*, Elem32s, T*, Elem32s);
    Status (*var)(const T*, Elem32s, const T*, Elem32s, const T*, T*, Elem32s);
    Status (*varTable)(const T* const*, const T*, Elem32s, const T*, T*, Elem32s);
    Status (*meanVar)(const T*, Elem32s, const T*, Elem32s, T*, T*, Elem32s);
    Status (*meanVarTable)(const T* const*, const T*, Elem32s, T*, T*, Elem32s);
};

constexpr Members<float> singles{lyrsWeightedMeanColumn_32f_D2,    lyrsWeightedMeanColumn_32f_D2L,
                                 lyrsWeightedVarColumn_32f_D2,     lyrsWeightedVarColumn_32f_D2L,
                                 lyrsWeightedMeanVarColumn_32f_D2, lyrsWeightedMeanVarColumn_32f_D2L};
constexpr Members<double> doubles{lyrsWeightedMeanColumn_64f_D2,    lyrsWeightedMeanColumn_64f_D2L,
                                  lyrsWeightedVarColumn_64f_D2,     lyrsWeightedVarColumn_64f_D2L,
                                  lyrsWeightedMeanVarColumn_64f_D2, lyrsWeightedMeanVarColumn_64f_D2L};

template <class T>
void compare(const Members<T>& members)
{
    Random random(11);
    for (const Shape& s : shapes(sizeof(T), 1)) {
        SCOPED_TRACE(s.text());
        const FeatureRows<T> x(s, random, T(-3), T(5));
        // Weights of any sign that add to anything: they are used as they are.
        const auto weights = random.vector<T>(s.height, T(-0.25), T(1));
        const Guarded<T> w(weights, Guarded<T>::flush(s.height));
        const Guarded<T> given(random.vector<T>(s.width, T(-4), T(4)), Guarded<T>::flush(s.width));
        for (const bool table : {false, true}) {
            const auto m = results<T>(s.width, s.offset);
            const auto v = results<T>(s.width);
            const auto both = results<T>(s.width);
            const auto bothVar = results<T>(s.width, s.offset);
            if (table) {
                ASSERT_EQ(members.meanTable(x.table(), w.data(), s.h(), m.data(), s.w()), StsNoErr);
                ASSERT_EQ(members.varTable(x.table(), w.data(), s.h(), given.data(), v.data(), s.w()), StsNoErr);
                ASSERT_EQ(members.meanVarTable(x.table(), w.data(), s.h(), both.data(), bothVar.data(), s.w()),
                          StsNoErr);
            } else {
                ASSERT_EQ(members.mean(x.block(), s.s(), w.data(), s.h(), m.data(), s.w()), StsNoErr);
                ASSERT_EQ(members.var(x.block(), s.s(), w.data(), s.h(), given.data(), v.data(), s.w()), StsNoErr);
                ASSERT_EQ(members.meanVar(x.block(), s.s(), w.data(), s.h(), both.data(), bothVar.data(), s.w()),
                          StsNoErr);
            }
            for (std::size_t c = 0; c < s.width; ++c) {
                const auto sums = columnSums(x.column(c), weights);
                const auto mean = rounded<T>(sums.sum, sums.magnitude, s.height);
                ASSERT_TRUE(within(m[c], mean)) << c;
                ASSERT_TRUE(within(both[c], mean)) << c;
                ASSERT_TRUE(within(v[c], weightedVariance<T>(sums, s.height, given[c]))) << c;
                ASSERT_TRUE(within(bothVar[c], weightedVariance<T>(sums, s.height, both[c]))) << c;
            }
            ASSERT_TRUE(m.intact() && v.intact() && both.intact() && bothVar.intact());
        }
    }
}

TEST(WeightedColumn, Singles)
{
    compare(singles);
}
TEST(WeightedColumn, Doubles)
{
    compare(doubles);
}

// Weights that add to 2 double the sums; the square of the mean is no sum and takes its square.
TEST(WeightedColumn, WeightsThatDoNotAddToOne)
{
    const std::array<double, 2> x{1.0, 3.0};
    const std::array<double, 2> w{1.0, 1.0};
    double mean = 0;
    double var = 0;
    ASSERT_EQ(lyrsWeightedMeanVarColumn_64f_D2(x.data(), 1, w.data(), 2, &mean, &var, 1), StsNoErr);
    EXPECT_EQ(mean, 4.0);
    EXPECT_EQ(var, 10.0 - 16.0);
    const double given = 2.0;
    ASSERT_EQ(lyrsWeightedVarColumn_64f_D2(x.data(), 1, w.data(), 2, &given, &var, 1), StsNoErr);
    EXPECT_EQ(var, 10.0 - 4.0);
}

TEST(WeightedColumn, OneRowIsEnough)
{
    const float x = 3.0F;
    const float w = 1.0F;
    float mean = 7.0F;
    float var = 7.0F;
    EXPECT_EQ(lyrsWeightedMeanVarColumn_32f_D2(&x, 1, &w, 1, &mean, &var, 1), StsNoErr);
    EXPECT_EQ(mean, 3.0F);
    EXPECT_EQ(var, 0.0F);
}

TEST(WeightedColumn, PointersThenStrideThenSizes)
{
    const float x = 3.0F;
    float result = 7.0F;
    EXPECT_EQ(lyrsWeightedMeanColumn_32f_D2(&x, 1, nullptr, 0, &result, 2), StsNullPtr);
    EXPECT_EQ(lyrsWeightedMeanColumn_32f_D2(&x, 1, &x, 0, &result, 2), StsStep);
    EXPECT_EQ(lyrsWeightedMeanColumn_32f_D2(&x, 1, &x, 0, &result, 1), StsSize);
    EXPECT_EQ(result, 7.0F);
}

} // namespace
