// What the scores of one frame against many Gaussians make of signed weights, of NaN and of infinities.

#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "oracle/mixture.hpp"
#include "scoring/mixture_model.hpp"
#include "scoring/whole_numbers.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"

namespace {

using lyr::oracle::addLog;
using lyr::oracle::mixtureSum;
using lyr::test::Model;
using lyr::test::Random;
using lyr::test::sameBits;
using lyr::test::signedWeight;
using lyr::test::wholeNumbers;
using lyr::test::Zeros;

// ------------------------------------------------------------------------------------------------------ signed weights

// Whole numbers, so that every score is exact in any order. A negative weight raises it, and a zero one takes the vast
// difference that it stands at out of the sum.
template <class T>
Model<T> wholeModel(Random& random, std::size_t height, std::size_t width, std::size_t step, std::size_t offset)
{
    Model<T> m(random, height, width, step, offset);
    m.gconst = wholeNumbers<T>(random, height);
    std::ranges::copy(wholeNumbers<T>(random, width), m.x.data());
    for (std::size_t g = 0; g < height; ++g) {
        for (std::size_t i = g * step; i < g * step + width; ++i) {
            m.vars[i] = signedWeight<T>(random, Zeros::Some);
            m.means[i] = m.vars[i] == 0 ? lyr::test::vast<T> : wholeNumbers<T>(random, 1)[0];
        }
    }
    return m;
}

template <class T>
void expectSignedWeights(Random& random, const Model<T>& m)
{
    std::vector<T> scores;
    for (std::size_t g = 0; g < m.height; ++g) {
        scores.push_back(static_cast<T>(m.score(g).value));
    }
    const auto old = wholeNumbers<T>(random, m.height);
    for (const bool table : {false, true}) {
        SCOPED_TRACE(table ? "table" : "block");
        auto dst = m.gconst;
        ASSERT_EQ(m.multi(table, dst.data()), StsNoErr);
        ASSERT_EQ(dst, scores);
        dst = old;
        ASSERT_EQ(m.max(table, m.gconst.data(), dst.data()), StsNoErr);
        for (std::size_t g = 0; g < m.height; ++g) {
            ASSERT_EQ(dst[g], std::max(old[g], scores[g])) << g;
        }
        dst = old;
        ASSERT_EQ(m.add(table, m.gconst.data(), dst.data()), StsNoErr);
        for (std::size_t g = 0; g < m.height; ++g) {
            ASSERT_TRUE(sameBits(dst[g], addLog(old[g], scores[g]))) << g;
        }
        T result = 17;
        ASSERT_EQ(m.mixture(table, m.gconst.data(), &result), StsNoErr);
        ASSERT_TRUE(sameBits(result, mixtureSum(scores)));
    }
}

template <class T>
void compareSignedWeights()
{
    Random random(37);
    const auto run = [&random](std::size_t height, std::size_t width) {
        for (const std::size_t step : {width + 1, (width + 7) / 8 * 8}) {
            for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
                SCOPED_TRACE("width " + std::to_string(width) + " height " + std::to_string(height) + " step " +
                             std::to_string(step) + " offset " + std::to_string(offset));
                expectSignedWeights(random, wholeModel<T>(random, height, width, step, offset));
                if (testing::Test::HasFatalFailure()) {
                    return;
                }
            }
        }
    };
    for (const std::size_t width : lyr::test::signedWidths()) {
        for (const std::size_t height : {1U, 5U, 21U}) {
            run(height, width);
        }
    }
    for (const std::size_t height : {101U, 250U, 1001U}) {
        run(height, 13);
    }
}

TEST(LogGaussMultiMix, SignedWeightsSingle)
{
    compareSignedWeights<float>();
}
TEST(LogGaussMultiMix, SignedWeightsDouble)
{
    compareSignedWeights<double>();
}

// ------------------------------------------------------------------------------------------------- NaN and infinities

// A frame that equals every mean: scores are the constants.
template <class T>
Model<T> flatModel(std::size_t height, std::size_t width)
{
    Random random;
    Model<T> m(random, height, width, width, 0);
    std::fill_n(m.x.data(), m.x.size(), T(1));
    std::fill_n(m.means.data(), m.means.size(), T(1));
    std::fill_n(m.vars.data(), m.vars.size(), T(1));
    return m;
}

// The same bits, NaN with its sign included.
template <class T>
bool kept(T actual, T old)
{
    return std::memcmp(&actual, &old, sizeof old) == 0;
}

// Only what is larger replaces: a NaN score does not, wherever the NaN comes from, and a NaN of the caller's stays, in
// every place of a step of rows.
template <class T>
void expectNanIsNeverLarger(bool table, std::size_t width)
{
    constexpr T inf = std::numeric_limits<T>::infinity();
    const T nan = -std::numeric_limits<T>::quiet_NaN();
    for (std::size_t height = 1; height <= 40; ++height) {
        SCOPED_TRACE(std::to_string(height) + " of width " + std::to_string(width) + (table ? ", table" : ", block"));
        const Model<T> m = flatModel<T>(height, width);
        for (std::size_t at = 0; at < height; ++at) {
            // The value at `at` turns from `old` to `there`; the others turn from 3 to a score of 5, or keep their 6.
            const auto expectAllButOne = [&](const std::vector<T>& gconst, T old, T there, T others) {
                std::vector<T> dst(height, others == T(5) ? T(3) : others);
                dst[at] = old;
                ASSERT_EQ(m.max(table, gconst.data(), dst.data()), StsNoErr);
                for (std::size_t g = 0; g < height; ++g) {
                    ASSERT_TRUE(kept(dst[g], g == at ? there : others)) << g << ", special is " << at;
                }
            };
            std::vector<T> gconst(height, T(5));
            expectAllButOne(gconst, nan, nan, T(5));
            expectAllButOne(gconst, nan, nan, T(6));
            T& weight = m.vars[at * width + width - 1];
            weight = inf; // times zero
            expectAllButOne(gconst, T(-9), T(-9), T(5));
            expectAllButOne(gconst, -inf, -inf, T(6));
            weight = T(1);
            gconst[at] = nan;
            expectAllButOne(gconst, T(-9), T(-9), T(5));
            expectAllButOne(gconst, nan, nan, T(6));
            gconst[at] = inf;
            expectAllButOne(gconst, T(7), inf, T(5));
            expectAllButOne(gconst, nan, nan, T(5));
            gconst[at] = -inf;
            expectAllButOne(gconst, T(-9), T(-9), T(5));
        }
    }
}

TEST(LogGaussMaxMultiMix, NanIsNeverLarger)
{
    for (const bool table : {false, true}) {
        for (const std::size_t width : {8U, 67U}) { // rows of a register or two, and of many
            expectNanIsNeverLarger<float>(table, width);
            expectNanIsNeverLarger<double>(table, width);
        }
    }
}

// Log-addition of every special score, made by the constant or by the data, to every special value, in every place of
// the steps and blocks.
template <class T>
void expectSpecialAdditions(std::size_t width)
{
    constexpr T inf = std::numeric_limits<T>::infinity();
    constexpr T nan = std::numeric_limits<T>::quiet_NaN();
    struct Case
    {
        T old;
        T gconst;
        T mean;
    };
    std::vector<Case> cases;
    for (const T old : {T(0), T(-3), T(7), inf, -inf, nan, -nan, T(-1e30)}) {
        for (const T gconst : {T(-0.0), T(-3), T(5), inf, -inf, nan, -nan, T(-1e30)}) {
            cases.push_back({old, gconst, T(1)});
        }
        cases.insert(cases.end(), {{old, T(5), inf}, {old, T(5), nan}, {old, inf, -inf}, {old, inf, T(3)}});
    }
    const auto score = [](const Case& c) {
        const T d = c.mean - 1;
        return (T(2) * c.gconst - d * d) * T(0.5);
    };
    for (const std::size_t height : {1U, 3U, 4U, 9U, 17U, 37U, 100U, 101U, 230U}) {
        Model<T> m = flatModel<T>(height, width);
        for (std::size_t shift = 0; shift < cases.size(); ++shift) {
            const auto caseOf = [&](std::size_t g) { return cases[(g + shift) % cases.size()]; };
            std::vector<T> old(height);
            for (std::size_t g = 0; g < height; ++g) {
                old[g] = caseOf(g).old;
                m.gconst[g] = caseOf(g).gconst;
                m.means[g * width + width / 2] = caseOf(g).mean;
            }
            for (const bool table : {false, true}) {
                auto dst = old;
                ASSERT_EQ(m.add(table, m.gconst.data(), dst.data()), StsNoErr);
                for (std::size_t g = 0; g < height; ++g) {
                    ASSERT_TRUE(sameBits(dst[g], addLog(old[g], score(caseOf(g)))))
                        << old[g] << " and " << score(caseOf(g)) << ", Gaussian " << g << " of " << height;
                }
            }
        }
    }
}

TEST(LogGaussAddMultiMix, SpecialScoresAndValues)
{
    for (const std::size_t width : {5U, 67U}) {
        expectSpecialAdditions<float>(width);
        expectSpecialAdditions<double>(width);
    }
    // Held against the promise, and not the oracle alone.
    constexpr float inf = std::numeric_limits<float>::infinity();
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> ones(5, 1.0F);
    const std::vector<float> gconst{inf, -inf, nan, inf, -3.0F};
    std::vector<float> dst{-3.0F, -3.0F, -3.0F, inf, nan};
    ASSERT_EQ(lyrsLogGaussAddMultiMix_32f_D2(ones.data(), ones.data(), 1, ones.data(), 1, gconst.data(), dst.data(), 5),
              StsNoErr);
    EXPECT_EQ(dst[0], inf);
    EXPECT_EQ(dst[1], -3.0F);
    EXPECT_TRUE(std::isnan(dst[2]));
    EXPECT_TRUE(std::isnan(dst[3])) << "two infinities of the same sign";
    EXPECT_TRUE(std::isnan(dst[4]));
}

} // namespace
