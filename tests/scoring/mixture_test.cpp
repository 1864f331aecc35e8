// One frame against the Gaussians of a mixture: every member against the oracle.

#include "lyrsr.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <numeric>
#include <string>
#include <vector>

#include "oracle/mixture.hpp"
#include "scoring/mixture_model.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace {

using lyr::test::Family;
using lyr::test::Guarded;
using lyr::test::Model;
using lyr::test::Random;

// Calls `check` with models of every width up to 70, of every height up to 37, and across the blocks of 100.
template <class T, class Check>
void forModels(Check check)
{
    Random random(11);
    const std::size_t unit = 32 / sizeof(T);
    const auto run = [&](std::size_t height, std::size_t width) {
        for (const std::size_t step : {width, width + 1, (width + unit - 1) / unit * unit}) {
            for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
                SCOPED_TRACE("width " + std::to_string(width) + " height " + std::to_string(height) + " step " +
                             std::to_string(step) + " offset " + std::to_string(offset));
                check(Model<T>(random, height, width, step, offset), random);
                if (testing::Test::HasFatalFailure()) {
                    return;
                }
            }
        }
    };
    for (std::size_t width = 1; width <= 70; ++width) {
        for (const std::size_t height : {1U, 3U, 5U, 21U}) {
            run(height, width);
        }
    }
    for (const std::size_t width : {1U, 7U, 13U, 39U}) {
        for (std::size_t height = 1; height <= 37; ++height) {
            run(height, width);
        }
    }
    for (const std::size_t width : {1U, 39U}) {
        for (const std::size_t height : {99U, 100U, 101U, 107U, 108U, 200U, 201U, 250U, 1000U}) {
            run(height, width);
        }
    }
}

double asDouble(long double x)
{
    return static_cast<double>(x);
}

// ------------------------------------------------------------------------------------------------- each Gaussian alone

template <class T>
void compareMulti()
{
    forModels<T>([](const Model<T>& m, Random&) {
        for (const bool table : {false, true}) {
            const Guarded<T> dst(m.gconst, Guarded<T>::flush(m.height));
            ASSERT_EQ(m.multi(table, dst.data()), StsNoErr);
            ASSERT_TRUE(dst.intact());
            for (std::size_t g = 0; g < m.height; ++g) {
                const auto score = m.score(g);
                ASSERT_NEAR(dst[g], asDouble(score.value), asDouble(score.bound)) << "Gaussian " << g;
            }
        }
    });
}

TEST(LogGaussMultiMix, Single)
{
    compareMulti<float>();
}
TEST(LogGaussMultiMix, Double)
{
    compareMulti<double>();
}

// -------------------------------------------------------------------------------------------------------- running best

template <class T>
void compareMax()
{
    forModels<T>([](const Model<T>& m, Random& random) {
        std::vector<T> old(m.height);
        for (std::size_t g = 0; g < m.height; ++g) {
            old[g] = static_cast<T>(m.score(g).value) + random.uniform(T(-5), T(5));
        }
        for (const bool table : {false, true}) {
            const Guarded<T> dst(old, Guarded<T>::flush(m.height));
            ASSERT_EQ(m.max(table, m.gconst.data(), dst.data()), StsNoErr);
            ASSERT_TRUE(dst.intact());
            for (std::size_t g = 0; g < m.height; ++g) {
                const auto score = m.score(g);
                if (dst[g] == old[g]) {
                    ASSERT_LE(asDouble(score.value), old[g] + asDouble(score.bound)) << "Gaussian " << g;
                } else {
                    ASSERT_GT(dst[g], old[g]);
                    ASSERT_NEAR(dst[g], asDouble(score.value), asDouble(score.bound)) << "Gaussian " << g;
                }
            }
        }
    });
}

TEST(LogGaussMaxMultiMix, Single)
{
    compareMax<float>();
}
TEST(LogGaussMaxMultiMix, Double)
{
    compareMax<double>();
}

TEST(LogGaussMaxMultiMix, ConstantsStay)
{
    const std::vector<float> x{1, 2};
    std::vector<float> gconst{-1, -2};
    std::vector<float> dst{-9, -9};
    ASSERT_EQ(lyrsLogGaussMaxMultiMix_32f_D2(x.data(), x.data(), 1, x.data(), 1, gconst.data(), dst.data(), 2),
              StsNoErr);
    EXPECT_EQ(gconst, (std::vector<float>{-1, -2}));
    EXPECT_EQ(dst, (std::vector<float>{-1, -3})) << "-2 - 1/2 * (1 - 2)^2 * 2";
}

// ----------------------------------------------------------------------------------------------------- running log-sum

template <class T>
void compareAdd()
{
    forModels<T>([](const Model<T>& m, Random& random) {
        std::vector<T> old(m.height);
        for (std::size_t g = 0; g < m.height; ++g) {
            old[g] = static_cast<T>(m.score(g).value) + random.uniform(T(-20), T(20));
        }
        for (const bool table : {false, true}) {
            const Guarded<T> dst(old, Guarded<T>::flush(m.height));
            ASSERT_EQ(m.add(table, m.gconst.data(), dst.data()), StsNoErr);
            ASSERT_TRUE(dst.intact());
            for (std::size_t g = 0; g < m.height; ++g) {
                const auto score = m.score(g);
                const long double exact = lyr::oracle::exactLogAdd(old[g], score.value);
                ASSERT_NEAR(dst[g], asDouble(exact), asDouble(score.bound + lyr::oracle::logAddBound<T>(exact)))
                    << "Gaussian " << g;
            }
        }
    });
}

TEST(LogGaussAddMultiMix, Single)
{
    compareAdd<float>();
}
TEST(LogGaussAddMultiMix, Double)
{
    compareAdd<double>();
}

// The addition itself, to the bit: the score of a frame that equals the mean is the constant.
template <class T>
void expectLogAddition(T low, T lower)
{
    Random random(23);
    const std::vector<T> x(5, T(1));
    const std::vector<T> ones(5 * 230, T(1));
    const std::vector<const T*> rows(230, x.data());
    auto gconst = random.vector<T>(230, -20, 0);
    auto old = random.vector<T>(230, -20, 0);
    gconst[7] = low; // the floor
    old[7] = lower;
    for (const bool table : {false, true}) {
        auto dst = old;
        ASSERT_EQ(table ? Family<T>::addTable(rows.data(), rows.data(), x.data(), 5, gconst.data(), dst.data(), 230)
                        : Family<T>::add(ones.data(), ones.data(), 5, x.data(), 5, gconst.data(), dst.data(), 230),
                  StsNoErr);
        for (std::size_t g = 0; g < 230; ++g) {
            EXPECT_EQ(dst[g], lyr::oracle::addLog(old[g], gconst[g])) << g;
        }
    }
}

TEST(LogGaussAddMultiMix, AddsAsLogAddition)
{
    expectLogAddition<float>(-5e6F, -6e6F);
    expectLogAddition<double>(-2e10, -3e10);
}

// ------------------------------------------------------------------------------------------------- whole mixture

// A log-sum moves by no more than the largest of its elements' errors, so that errors of the scores count once and
// those of the additions as often as one follows the other.
template <class T>
void compareMixture()
{
    forModels<T>([](const Model<T>& m, Random&) {
        for (const bool weighted : {false, true}) {
            std::vector<long double> scores;
            long double bound = 0;
            for (std::size_t g = 0; g < m.height; ++g) {
                const auto score = m.score(g, weighted);
                scores.push_back(score.value);
                bound = std::max(bound, score.bound);
            }
            const long double exact = lyr::oracle::exactLogSum(scores);
            bound += static_cast<long double>(m.height - 1) * lyr::oracle::logAddBound<T>(exact);
            const Guarded<T> gconst(m.gconst, Guarded<T>::flush(m.height));
            for (const bool table : {false, true}) {
                T result = 17;
                ASSERT_EQ(weighted ? m.mixture(table, gconst.data(), &result)
                                   : m.unitMixture(table, gconst.data(), &result),
                          StsNoErr);
                ASSERT_NEAR(result, asDouble(exact), asDouble(bound)) << (weighted ? "weighted" : "unit");
            }
        }
    });
}

TEST(LogGaussMixture, Single)
{
    compareMixture<float>();
}
TEST(LogGaussMixture, Double)
{
    compareMixture<double>();
}

enum class Form
{
    Block,
    Table,
    UnitBlock,
    UnitTable
};
constexpr Form allForms[] = {Form::Block, Form::Table, Form::UnitBlock, Form::UnitTable};

// A mixture of which every score is its constant, as the frame equals every mean.
template <class T>
T sumOf(const std::vector<T>& gconst, Form form = Form::Block, Elem32s width = 3)
{
    const std::vector<T> x(static_cast<std::size_t>(width), T(1));
    const std::vector<T> ones(x.size() * gconst.size(), T(1));
    const std::vector<const T*> rows(gconst.size(), x.data());
    const auto height = static_cast<Elem32s>(gconst.size());
    T result = 17;
    Status status = StsFail;
    switch (form) {
    case Form::Block:
        status = Family<T>::mixture(x.data(), ones.data(), ones.data(), height, width, width, gconst.data(), &result);
        break;
    case Form::Table:
        status = Family<T>::mixtureTable(x.data(), rows.data(), rows.data(), height, width, gconst.data(), &result);
        break;
    case Form::UnitBlock:
        status = Family<T>::unit(x.data(), ones.data(), height, width, width, gconst.data(), &result);
        break;
    case Form::UnitTable:
        status = Family<T>::unitTable(x.data(), rows.data(), height, width, gconst.data(), &result);
        break;
    }
    EXPECT_EQ(status, StsNoErr);
    return result;
}

// One Gaussian gives its score however low; two meet the floor.
template <class T>
void expectFloor(T low, T lower, T floor)
{
    EXPECT_EQ(sumOf<T>({lower}), lower);
    EXPECT_EQ(sumOf<T>({low, lower}), floor);
    EXPECT_EQ(sumOf<T>({lower, low}), floor);
    EXPECT_NEAR(sumOf<T>({lower, lower}), lower + T(0.7), T(1)) << "no floor above the cut-off";
    for (std::size_t height = 2; height <= 120; ++height) {
        std::vector<T> gconst(height, lower);
        EXPECT_NEAR(sumOf(gconst), lower + std::log(T(height)), T(4)) << height << ": no lane meets a floor of its own";
        gconst.back() = T(-3);
        EXPECT_EQ(sumOf(gconst), T(-3)) << height;
    }
}

TEST(LogGaussMixture, Floor)
{
    expectFloor<float>(-5000000.0F, -6000000.0F, -4500000.0F);
    expectFloor<double>(-2e10, -3e10, -1e10);
    // The total of the first block and the one Gaussian of the second.
    std::vector<float> gconst(101, -6000000.0F);
    gconst.back() = -5000000.0F;
    EXPECT_EQ(sumOf(gconst), -4500000.0F);
}

// Whatever the height and wherever it stands, a NaN score shows and an infinite one wins.
template <class T>
void expectSpecial()
{
    const T inf = std::numeric_limits<T>::infinity();
    for (std::size_t height = 1; height <= 130; ++height) {
        for (std::size_t at = 0; at < height; at += (height > 40 ? 7 : 1)) {
            std::vector<T> gconst(height, T(-2));
            gconst[at] = std::numeric_limits<T>::quiet_NaN();
            ASSERT_TRUE(std::isnan(sumOf(gconst))) << at << " of " << height;
            gconst[at] = inf;
            ASSERT_EQ(sumOf(gconst), inf) << at << " of " << height;
            gconst[at] = T(40);
            ASSERT_EQ(sumOf(gconst), T(40)) << at << " of " << height;
            gconst[at] = -inf;
            if (height > 1) {
                ASSERT_NEAR(sumOf(gconst), std::log(T(height - 1)) - 2, 2e-5) << at << " of " << height;
            }
        }
    }
}

TEST(LogGaussMixture, SpecialScores)
{
    expectSpecial<float>();
    expectSpecial<double>();
}

// Twice the constant, in every family: an infinity from more than half the largest number.
template <class T>
void expectDoubled(T gconst)
{
    const T inf = std::numeric_limits<T>::infinity();
    for (const std::size_t height : {1U, 20U}) { // one at a time, and a register of them
        const std::vector<T> x(3, T(1));
        const std::vector<T> ones(3 * height, T(1));
        const std::vector<const T*> rows(height, x.data());
        const std::vector<T> constants(height, gconst);
        const auto n = static_cast<Elem32s>(height);
        std::vector<T> dst(constants);
        EXPECT_EQ(Family<T>::multi(ones.data(), ones.data(), 3, x.data(), 3, dst.data(), n), StsNoErr);
        EXPECT_EQ(dst, std::vector<T>(height, inf));
        dst = constants;
        EXPECT_EQ(Family<T>::multiTable(rows.data(), rows.data(), x.data(), 3, dst.data(), n), StsNoErr);
        EXPECT_EQ(dst, std::vector<T>(height, inf));
        for (const bool add : {false, true}) {
            const auto block = add ? Family<T>::add : Family<T>::max;
            const auto table = add ? Family<T>::addTable : Family<T>::maxTable;
            dst.assign(height, T(0));
            EXPECT_EQ(block(ones.data(), ones.data(), 3, x.data(), 3, constants.data(), dst.data(), n), StsNoErr);
            EXPECT_EQ(dst, std::vector<T>(height, inf));
            dst.assign(height, T(0));
            EXPECT_EQ(table(rows.data(), rows.data(), x.data(), 3, constants.data(), dst.data(), n), StsNoErr);
            EXPECT_EQ(dst, std::vector<T>(height, inf));
        }
    }
}

TEST(LogGaussMultiMix, TheDoubledConstantOverflows)
{
    expectDoubled<float>(3e38F);
    expectDoubled<double>(1.5e308);
}

TEST(LogGaussMixture, TheDoubledConstantOverflows)
{
    EXPECT_EQ(sumOf<float>({3e38F}), std::numeric_limits<float>::infinity());
    EXPECT_EQ(sumOf<double>({1.5e308}), std::numeric_limits<double>::infinity());
    EXPECT_EQ(sumOf<float>({1.5e38F}), 1.5e38F);
}

// The additions are those of lyrsLogSum_* in blocks of 100, the total of each being the first element of the next: the
// same bits.
template <class T>
void expectBlocksInOrder()
{
    Random random(31);
    std::vector<std::size_t> heights(310);
    std::iota(heights.begin(), heights.end(), 1);
    heights.insert(heights.end(), {511, 512, 513, 999, 1000, 1001, 1003, 1007, 1008, 3207});
    for (const std::size_t height : heights) {
        const auto gconst = random.vector<T>(height, -20, 0);
        const T total = lyr::oracle::mixtureSum(gconst);
        for (const Form form : allForms) {
            for (const Elem32s width : {3, 67}) { // rows of one register, and of many
                ASSERT_EQ(sumOf(gconst, form, width), total) << height;
            }
        }
    }
}

TEST(LogGaussMixture, AddsBlocksInOrder)
{
    expectBlocksInOrder<float>();
    expectBlocksInOrder<double>();
}

// Pointers come first here, the stride first in the other families; both meant.
TEST(LogGaussMixture, OrderOfChecks)
{
    const float x = 1;
    float result = 17;
    EXPECT_EQ(lyrsLogGaussMixture_32f_D2(nullptr, &x, &x, 1, 1, 2, &x, &result), StsNullPtr);
    EXPECT_EQ(lyrsLogGaussMixture_32f_D2(&x, &x, &x, 0, 1, 2, &x, &result), StsStep);
    EXPECT_EQ(lyrsLogGaussMultiMix_32f_D2(nullptr, &x, 1, &x, 2, &result, 1), StsStep);
    EXPECT_EQ(result, 17.0F);
}

} // namespace
