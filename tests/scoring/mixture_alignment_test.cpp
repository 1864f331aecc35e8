// One vector alone off the 16-byte boundary: the aligned kernels, which would stop the program there, are for calls
// with none.

#include "lyrsr.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "oracle/mixture.hpp"
#include "scoring/mixture_model.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;

constexpr Elem32s height = 21;
constexpr Elem32s width = 39;
constexpr Elem32s step = 40;

template <class T>
class MixtureAlignment : public testing::Test
{};
using Elements = testing::Types<float, double>;
TYPED_TEST_SUITE(MixtureAlignment, Elements);

TYPED_TEST(MixtureAlignment, OneVectorOffTheBoundary)
{
    using T = TypeParam;
    using Members = lyr::test::Family<T>;
    constexpr auto rows = static_cast<std::size_t>(height);
    enum Vector
    {
        Frame,
        Means,
        Variances,
        Constants,
        OneRow,
        None
    };
    Random random(3);
    const auto frame = random.vector<T>(width, -2, 2);
    const auto mean = random.vector<T>(rows * step, -2, 2);
    const auto variance = random.vector<T>(rows * step, T(0.25), 2);
    const auto constant = random.vector<T>(rows, -30, -10);
    const auto lone =
        Guarded<T>(std::vector<T>(variance.begin() + 5 * step, variance.begin() + 5 * step + width), sizeof(T));
    for (const Vector off : {Frame, Means, Variances, Constants, OneRow, None}) {
        SCOPED_TRACE("off the boundary: " + std::to_string(off));
        const auto place = [off](const std::vector<T>& values, Vector which) {
            return Guarded<T>(values, off == which ? sizeof(T) : 0);
        };
        const Guarded<T> x = place(frame, Frame);
        const Guarded<T> means = place(mean, Means);
        const Guarded<T> vars = place(variance, Variances);
        const Guarded<T> gconst = place(constant, Constants);
        std::vector<const T*> meanRows;
        std::vector<const T*> varRows;
        std::vector<lyr::oracle::Score> scores;
        for (std::size_t g = 0; g < rows; ++g) {
            meanRows.push_back(means.data() + g * step);
            varRows.push_back(g == 5 && off == OneRow ? lone.data() : vars.data() + g * step);
            scores.push_back(lyr::oracle::mixtureScore<T>(frame.data(), &mean[g * step], &variance[g * step],
                                                          static_cast<std::size_t>(width), constant[g]));
        }
        const auto expectScores = [&scores](const Guarded<T>& dst) {
            for (std::size_t g = 0; g < rows; ++g) {
                EXPECT_NEAR(static_cast<double>(dst[g]), static_cast<double>(scores[g].value),
                            static_cast<double>(scores[g].bound))
                    << "Gaussian " << g;
            }
        };
        long double bound = 0;
        std::vector<long double> values;
        for (const auto& score : scores) {
            values.push_back(score.value);
            bound = std::max(bound, score.bound);
        }
        const long double total = lyr::oracle::exactLogSum(values);
        bound += static_cast<long double>(rows) * lyr::oracle::logAddBound<T>(total);
        for (const bool table : {false, true}) {
            SCOPED_TRACE(table ? "table" : "block");
            const Guarded<T> each(constant, 0);
            ASSERT_EQ(table ? Members::multiTable(meanRows.data(), varRows.data(), x.data(), width, each.data(), height)
                            : Members::multi(means.data(), vars.data(), step, x.data(), width, each.data(), height),
                      StsNoErr);
            expectScores(each);
            const Guarded<T> best(std::vector<T>(rows, T(-1e30)), 0);
            ASSERT_EQ(table ? Members::maxTable(meanRows.data(), varRows.data(), x.data(), width, gconst.data(),
                                                best.data(), height)
                            : Members::max(means.data(), vars.data(), step, x.data(), width, gconst.data(), best.data(),
                                           height),
                      StsNoErr);
            expectScores(best);
            T sum = 0;
            ASSERT_EQ(
                table ? Members::mixtureTable(x.data(), meanRows.data(), varRows.data(), height, width, gconst.data(),
                                              &sum)
                      : Members::mixture(x.data(), means.data(), vars.data(), height, step, width, gconst.data(), &sum),
                StsNoErr);
            EXPECT_NEAR(static_cast<double>(sum), static_cast<double>(total), static_cast<double>(bound));
        }
    }
}

} // namespace
