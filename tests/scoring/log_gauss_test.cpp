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
#include "scoring/whole_numbers.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"
#include "support/vectors.hpp"

namespace {

using lyr::oracle::Weight;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::signedWeight;
using lyr::test::wholeNumbers;
using lyr::test::Zeros;

// A score is within this of the exact one: `len` + 4 roundings, each at most half a unit of the sum of the magnitudes
// that enter (Higham, Accuracy and Stability of Numerical Algorithms, 2002, section 3.1).
template <class T>
long double errorBound(std::size_t len, long double magnitude, T gconst)
{
    const auto unit = static_cast<long double>(std::numeric_limits<T>::epsilon()) / 2;
    return unit * (static_cast<long double>(len) + 4) * (magnitude / 2 + std::fabs(static_cast<long double>(gconst)));
}

// Where the vectors of a call begin, in bytes past a multiple of 64.
struct Offsets
{
    std::size_t frame;
    std::size_t mean;
    std::size_t var;
};

// The frames at every offset within 16 bytes, each of the vectors off by an element alone, and all of them up against
// the unmapped page.
template <class S>
std::vector<Offsets> places(std::size_t frameCount, std::size_t width)
{
    std::vector<Offsets> all{{0, sizeof(S), 0}, {0, 0, sizeof(S)}};
    for (std::size_t offset = 0; offset < 16; offset += sizeof(S)) {
        all.push_back({offset, 0, 0});
    }
    const std::size_t flush = Guarded<S>::flush(width);
    all.push_back({Guarded<S>::flush(frameCount), flush, flush});
    return all;
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
    for (const std::size_t len : lyr::test::vectorLengths()) {
        const auto x = random.vector<S>(len, -4, 4);
        const auto m = random.vector<S>(len, -4, 4);
        const auto v = random.vector<S>(len, S(0.25), 4);
        const T gconst = random.uniform<T>(-50, 50);
        const auto d = lyr::oracle::distance<T>(x.data(), m.data(), v.data(), len, member.weight);
        const long double expected =
            member.doubled ? lyr::oracle::doubledScore(gconst, d) : lyr::oracle::plainScore(gconst, d);
        const long double bound = errorBound<T>(len, d.magnitude, gconst);

        for (const Offsets& at : places<S>(len, len)) {
            const Guarded<S> xs(x, at.frame);
            const Guarded<S> ms(m, at.mean);
            const Guarded<S> vs(v, at.var);
            T result = -1;
            ASSERT_EQ(member(xs.data(), ms.data(), vs.data(), static_cast<Elem32s>(len), &result, gconst), StsNoErr);
            ASSERT_NEAR(static_cast<double>(result), static_cast<double>(expected), static_cast<double>(bound))
                << "len " << len << " offsets " << at.frame << ' ' << at.mean << ' ' << at.var;
        }
    }
}

const SingleMember<float, float> singles[] = {
    {"lyrsLogGaussSingle_32f", Weight::Inverse, lyrsLogGaussSingle_32f, nullptr, true},
    {"lyrsLogGaussSingle_IdVar_32f", Weight::Unit, nullptr, lyrsLogGaussSingle_IdVar_32f, true},
    {"lyrsLogGaussSingle_DirectVar_32f", Weight::Variance, lyrsLogGaussSingle_DirectVar_32f, nullptr, true}};
const SingleMember<double, double> doubles[] = {
    {"lyrsLogGaussSingle_64f", Weight::Inverse, lyrsLogGaussSingle_64f, nullptr, false},
    {"lyrsLogGaussSingle_IdVar_64f", Weight::Unit, nullptr, lyrsLogGaussSingle_IdVar_64f, false},
    {"lyrsLogGaussSingle_DirectVar_64f", Weight::Variance, lyrsLogGaussSingle_DirectVar_64f, nullptr, false}};
const SingleMember<float, double> widened[] = {
    {"lyrsLogGaussSingle_32f64f", Weight::Inverse, lyrsLogGaussSingle_32f64f, nullptr, false},
    {"lyrsLogGaussSingle_IdVar_32f64f", Weight::Unit, nullptr, lyrsLogGaussSingle_IdVar_32f64f, false},
    {"lyrsLogGaussSingle_DirectVar_32f64f", Weight::Variance, lyrsLogGaussSingle_DirectVar_32f64f, nullptr, false}};

template <class Check>
void forEachSingleMember(Check check)
{
    for (std::size_t i = 0; i < 3; ++i) {
        check(singles[i]);
        check(doubles[i]);
        check(widened[i]);
    }
}

TEST(LogGaussSingle, EveryLengthAndAlignment)
{
    forEachSingleMember([](const auto& member) { compareSingle(member); });
}

// The sum of these two goes through one accumulator in the order of the elements, on purpose: the same bits at every
// length, alignment and width.
TEST(LogGaussSingle, WidenedTermsAreAddedInOrder)
{
    Random random(41);
    for (const auto* const member : {&widened[0], &widened[2]}) {
        SCOPED_TRACE(member->name);
        for (std::size_t len = 1; len <= 70; ++len) {
            const auto x = random.vector<float>(len, -4, 4);
            auto m = random.vector<float>(len, -4, 4);
            for (float& mean : m) { // far below the element, so that differences fill a double and products round
                mean = std::ldexp(mean, -random.uniform(0, 24));
            }
            auto v = random.vector<float>(len, 0.25F, 4);
            v[len / 2] *= -1e-3F;
            const auto gconst = random.uniform<double>(-50, 50);
            const double expected =
                lyr::oracle::orderedScore(x.data(), m.data(), v.data(), len, member->weight, gconst);
            for (const Offsets& at : places<float>(len, len)) {
                const Guarded<float> xs(x, at.frame);
                const Guarded<float> ms(m, at.mean);
                const Guarded<float> vs(v, at.var);
                double result = -1;
                ASSERT_EQ((*member)(xs.data(), ms.data(), vs.data(), static_cast<Elem32s>(len), &result, gconst),
                          StsNoErr);
                ASSERT_EQ(result, expected) << "len " << len << " offset " << at.frame;
            }
        }
    }
}

// Weights of both signs and of zero: whole numbers, so that the score is exact in any order. A negative weight raises
// it, and a zero one takes the vast difference that it stands at out of the sum.
template <class S, class T>
void compareSignedWeights(const SingleMember<S, T>& member)
{
    SCOPED_TRACE(member.name);
    Random random(43);
    const Zeros zeros = member.weight == Weight::Inverse ? Zeros::Some : Zeros::None;
    for (const std::size_t len : lyr::test::signedWidths()) {
        auto x = wholeNumbers<S>(random, len);
        const auto m = wholeNumbers<S>(random, len);
        std::vector<S> v(len);
        for (std::size_t i = 0; i < len; ++i) {
            v[i] = signedWeight<S>(random, zeros);
            x[i] = v[i] == 0 ? lyr::test::vast<S> : x[i];
        }
        const T gconst = wholeNumbers<T>(random, 1)[0];
        const auto d = lyr::oracle::distance<T>(x.data(), m.data(), v.data(), len, member.weight);
        for (const Offsets& at : places<S>(len, len)) {
            const Guarded<S> xs(x, at.frame);
            const Guarded<S> ms(m, at.mean);
            const Guarded<S> vs(v, at.var);
            T result = -1;
            ASSERT_EQ(member(xs.data(), ms.data(), vs.data(), static_cast<Elem32s>(len), &result, gconst), StsNoErr);
            ASSERT_EQ(result, static_cast<T>(lyr::oracle::plainScore(gconst, d)))
                << "len " << len << " offset " << at.frame;
        }
    }
}

TEST(LogGaussSingle, SignedWeights)
{
    forEachSingleMember([](const auto& member) { compareSignedWeights(member); });
}

// The lanes of a masked tail add nothing, whatever stands behind the vectors: here NaN.
TEST(LogGaussSingle, BytesBehindTheVectorsDoNotCount)
{
    forEachSingleMember([]<class S, class T>(const SingleMember<S, T>& member) {
        SCOPED_TRACE(member.name);
        for (std::size_t len = 1; len <= 35; ++len) {
            alignas(64) std::array<S, 64> x{};
            x.fill(std::numeric_limits<S>::quiet_NaN());
            std::fill_n(x.begin(), len, S(2));
            alignas(64) std::array<S, 64> m = x;
            std::fill_n(m.begin(), len, S(1));
            T result = 0;
            ASSERT_EQ(member(x.data(), m.data(), m.data(), static_cast<Elem32s>(len), &result, T(0)), StsNoErr);
            ASSERT_EQ(result, T(-0.5) * static_cast<T>(len)) << len;
        }
    });
}

TEST(LogGaussSingle, OnlySinglePrecisionDoublesTheConstant)
{
    forEachSingleMember([]<class S, class T>(const SingleMember<S, T>& member) {
        const S x = 1;
        const T gconst = std::numeric_limits<T>::max() * T(0.75);
        T result = 0;
        ASSERT_EQ(member(&x, &x, &x, 1, &result, gconst), StsNoErr);
        EXPECT_EQ(result, member.doubled ? std::numeric_limits<T>::infinity() : gconst) << member.name;
    });
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
        for (const std::size_t height : std::initializer_list<std::size_t>{1, 2, 3, 4, 5, 7, 8, 9}) {
            for (const std::size_t step : {width, width + 1, (width + 2 * unit - 1) / (2 * unit) * 2 * unit}) {
                const std::size_t count = (height - 1) * step + width;
                for (const Offsets& at : places<T>(count, width)) {
                    SCOPED_TRACE("width " + std::to_string(width) + " height " + std::to_string(height) + " step " +
                                 std::to_string(step) + " offsets " + std::to_string(at.frame) + ' ' +
                                 std::to_string(at.mean) + ' ' + std::to_string(at.var));
                    const Guarded<T> frames(random.vector<T>(count, -4, 4), at.frame);
                    const Guarded<T> ms(m, at.mean);
                    const Guarded<T> vs(v, at.var);
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

template <class Check>
void forEachFramesMember(Check check)
{
    check(weighted32f);
    check(unit32f);
    check(weighted64f);
    check(unit64f);
}

// As for one frame; the widths below 4 with them.
template <class T>
void compareSignedWeights(const FramesMember<T>& member)
{
    SCOPED_TRACE(member.name);
    Random random(47);
    for (const std::size_t width : lyr::test::signedWidths()) {
        const auto m = wholeNumbers<T>(random, width);
        std::vector<T> v(width);
        for (T& weight : v) {
            weight = member.weighted ? signedWeight<T>(random, Zeros::Some) : T(1);
        }
        const T gconst = wholeNumbers<T>(random, 1)[0];
        for (const std::size_t height : {1U, 3U, 4U, 5U, 9U, 19U}) {
            const std::size_t step = height % 2 == 0 ? width + 1 : (width + 7) / 8 * 8;
            const std::size_t count = (height - 1) * step + width;
            auto x = wholeNumbers<T>(random, count);
            for (std::size_t i = 0; i < count; ++i) {
                x[i] = i % step < width && v[i % step] == 0 ? lyr::test::vast<T> : x[i];
            }
            for (const Offsets& at : places<T>(count, width)) {
                const Guarded<T> frames(x, at.frame);
                const Guarded<T> ms(m, at.mean);
                const Guarded<T> vs(v, at.var);
                std::vector<const T*> rows;
                for (std::size_t f = 0; f < height; ++f) {
                    rows.push_back(frames.data() + f * step);
                }
                const auto w = static_cast<Elem32s>(width);
                const auto h = static_cast<Elem32s>(height);
                std::vector<T> block(height);
                std::vector<T> table(height);
                ASSERT_EQ(member.block(frames.data(), static_cast<Elem32s>(step), ms.data(), vs.data(), w, block.data(),
                                       h, gconst),
                          StsNoErr);
                ASSERT_EQ(member.table(rows.data(), ms.data(), vs.data(), w, table.data(), h, gconst), StsNoErr);
                for (std::size_t f = 0; f < height; ++f) {
                    const auto d = lyr::oracle::distance<T>(rows[f], m.data(), v.data(), width, Weight::Inverse);
                    const auto expected = static_cast<T>(lyr::oracle::plainScore(gconst, d));
                    ASSERT_EQ(block[f], expected) << "frame " << f << " of " << height << ", width " << width;
                    ASSERT_EQ(table[f], expected) << "frame " << f << " of " << height << ", width " << width;
                }
            }
        }
    }
}

TEST(LogGauss, SignedWeights)
{
    forEachFramesMember([](const auto& member) { compareSignedWeights(member); });
}

// One row off a multiple of 16 takes the whole table to the unaligned kernel.
TEST(LogGauss, OneMisalignedRowInATable)
{
    forEachFramesMember([]<class T>(const FramesMember<T>& member) {
        SCOPED_TRACE(member.name);
        constexpr std::size_t width = 7;
        constexpr std::size_t height = 6;
        constexpr std::size_t step = 16;
        const Guarded<T> x(Random(13).vector<T>(height * step, -4, 4), 0);
        const Guarded<T> m(std::vector<T>(width, T(1)), 0);
        for (std::size_t shifted = 0; shifted < height; ++shifted) {
            std::vector<const T*> rows;
            for (std::size_t f = 0; f < height; ++f) {
                rows.push_back(x.data() + f * step + (f == shifted ? 1 : 0));
            }
            std::vector<T> scores(height);
            ASSERT_EQ(member.table(rows.data(), m.data(), m.data(), width, scores.data(), height, T(0)), StsNoErr);
            for (std::size_t f = 0; f < height; ++f) {
                const auto d = lyr::oracle::distance<T>(rows[f], m.data(), m.data(), width, Weight::Unit);
                ASSERT_NEAR(static_cast<double>(scores[f]), static_cast<double>(-0.5L * d.sum),
                            static_cast<double>(errorBound<T>(width, d.magnitude, T(0))))
                    << "row " << f << ", shifted " << shifted;
            }
        }
    });
}

// What lies between the frames, and behind the vectors, is not used: here NaN.
TEST(LogGauss, ElementsBetweenTheFramesDoNotCount)
{
    forEachFramesMember([]<class T>(const FramesMember<T>& member) {
        SCOPED_TRACE(member.name);
        constexpr std::size_t height = 5;
        constexpr std::size_t step = 48;
        for (std::size_t width = 1; width <= 35; ++width) {
            alignas(64) std::array<T, height * step> x{};
            alignas(64) std::array<T, step> m{};
            std::array<const T*, height> rows{};
            x.fill(std::numeric_limits<T>::quiet_NaN());
            m.fill(std::numeric_limits<T>::quiet_NaN());
            std::fill_n(m.begin(), width, T(1));
            for (std::size_t f = 0; f < height; ++f) {
                rows[f] = x.data() + f * step;
                std::fill_n(x.begin() + f * step, width, T(2));
            }
            const auto columns = static_cast<Elem32s>(width);
            std::array<T, height> scores{};
            ASSERT_EQ(member.block(x.data(), step, m.data(), m.data(), columns, scores.data(), height, T(0)), StsNoErr);
            for (const T score : scores) {
                ASSERT_EQ(score, T(-0.5) * static_cast<T>(width)) << width;
            }
            scores = {};
            ASSERT_EQ(member.table(rows.data(), m.data(), m.data(), columns, scores.data(), height, T(0)), StsNoErr);
            for (const T score : scores) {
                ASSERT_EQ(score, T(-0.5) * static_cast<T>(width)) << width;
            }
        }
    });
}

// In double precision row tables double the constant and blocks do not; both are meant.
TEST(LogGauss, OnlyTablesDoubleTheConstantInDoublePrecision)
{
    forEachFramesMember([]<class T>(const FramesMember<T>& member) {
        SCOPED_TRACE(member.name);
        constexpr T inf = std::numeric_limits<T>::infinity();
        const T gconst = std::numeric_limits<T>::max() * T(0.75);
        const std::vector<T> x(6, T(1));
        const T* const rows[] = {x.data()};
        for (const Elem32s width : {1, 6}) {
            T score = 0;
            ASSERT_EQ(member.block(x.data(), 6, x.data(), x.data(), width, &score, 1, gconst), StsNoErr);
            EXPECT_EQ(score, member.doubledBlock ? inf : gconst) << "block, width " << width;
            ASSERT_EQ(member.table(rows, x.data(), x.data(), width, &score, 1, gconst), StsNoErr);
            EXPECT_EQ(score, member.doubledTable ? inf : gconst) << "table, width " << width;
        }
    });
}

// Below a width of 4 small products are lost one by one against a large constant; from there on, and at every width of
// lyrsLogGauss_IdVar_32f_D2L and of the functions of one frame, they are added up first.
TEST(LogGauss, NarrowFramesSubtractProductsFromTheConstant)
{
    const float root = std::sqrt(0.75F);
    const std::vector<float> one(4, 1.0F);
    const std::vector<float> roots(4, root);
    const std::vector<float> zero(4, 0.0F);
    const std::vector<float> v(4, 0.75F);
    const float* const ones[] = {one.data()};
    const float* const rootRows[] = {roots.data()};
    const float gconst = 8388608.0F; // 2^23: below twice that, neighbours are 1 apart
    const auto less = [gconst](float lost) { return (2.0F * gconst - lost) * 0.5F; };
    float score = 0;
    const auto expect = [&score, less](Status status, float lost, const char* what) {
        EXPECT_EQ(status, StsNoErr);
        EXPECT_EQ(score, less(lost)) << what;
        score = 0;
    };
    // 0.75 three times, each rounded up to 1; 2.25 rounded down to 2.
    expect(lyrsLogGauss_32f_D2(one.data(), 4, zero.data(), v.data(), 3, &score, 1, gconst), 3, "block");
    expect(lyrsLogGauss_32f_D2L(ones, zero.data(), v.data(), 3, &score, 1, gconst), 3, "table");
    expect(lyrsLogGauss_IdVar_32f_D2(roots.data(), 4, zero.data(), 3, &score, 1, gconst), 3, "block, unit variance");
    expect(lyrsLogGauss_IdVar_32f_D2L(rootRows, zero.data(), 3, &score, 1, gconst), 2, "table, unit variance");
    expect(lyrsLogGaussSingle_32f(one.data(), zero.data(), v.data(), 3, &score, gconst), 2, "one frame");
    expect(lyrsLogGaussSingle_IdVar_32f(roots.data(), zero.data(), 3, &score, gconst), 2, "one frame, unit variance");
    // 0.75 four times is 3.
    expect(lyrsLogGauss_32f_D2(one.data(), 4, zero.data(), v.data(), 4, &score, 1, gconst), 3, "block of 4");
    expect(lyrsLogGauss_32f_D2L(ones, zero.data(), v.data(), 4, &score, 1, gconst), 3, "table of 4");
    expect(lyrsLogGauss_IdVar_32f_D2(roots.data(), 4, zero.data(), 4, &score, 1, gconst), 3, "unit block of 4");
    expect(lyrsLogGauss_IdVar_32f_D2L(rootRows, zero.data(), 4, &score, 1, gconst), 3, "unit table of 4");
}

} // namespace
