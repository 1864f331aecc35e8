// The DCT with liftering: transforms within the rounding of their sums, and the integer outputs exactly.

#include "lyrsr.h"

#include "frontend/dct_lifter.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "dct_forms.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace {

using namespace lyr::test::dct;
using lyr::test::Guarded;
using lyr::test::Random;

TEST(DctTransform, TransformOfEveryLength)
{
    Random random(51);
    for (const auto& form : single) {
        for (Elem32s lenDCT = 1; lenDCT <= 70; ++lenDCT) {
            for (const Elem32s lenCepstrum : {1, 2, 3, 4, 5, 7, 8, 12, 13, lenDCT}) {
                if (lenCepstrum > lenDCT) {
                    continue;
                }
                SCOPED_TRACE(std::string(form.name) + ' ' + std::to_string(lenDCT) + ' ' + std::to_string(lenCepstrum));
                const Arguments a = arguments(lenDCT, lenCepstrum);
                DCTLifterState_32f* state = nullptr;
                ASSERT_EQ(form.initAlloc(&state, a), StsNoErr);
                const auto n = static_cast<std::size_t>(lenDCT);
                const auto outputs = static_cast<std::size_t>(lenCepstrum) + (form.hasC0 ? 1 : 0);
                const auto x = random.vector<float>(n, -20, 20);
                std::vector<float> reference;
                for (const std::size_t offset :
                     {std::size_t{0}, std::size_t{4}, std::size_t{8}, std::size_t{12}, Guarded<float>::flush(n)}) {
                    const Guarded<float> src(x, offset);
                    const Guarded<float> dst(outputs, Guarded<float>::flush(outputs));
                    ASSERT_EQ(lyrsDCTLifter_32f(src.data(), dst.data(), state), StsNoErr);
                    EXPECT_TRUE(dst.intact());
                    EXPECT_EQ(src.copy(), x);
                    if (reference.empty()) {
                        reference = dst.copy();
                        expectCepstra(reference.data(), x, form.weights(a), form.hasC0);
                    }
                    // The same bits whatever the alignment.
                    ASSERT_EQ(dst.copy(), reference) << offset;
                }
                EXPECT_EQ(lyrsDCTLifterFree_32f(state), StsNoErr);
            }
        }
    }
}

// What stands behind the inputs does not count, even NaN.
TEST(DctTransform, BytesBehindTheInputsDoNotCount)
{
    for (Elem32s lenDCT = 1; lenDCT <= 35; ++lenDCT) {
        DCTLifterState_32f* state = nullptr;
        ASSERT_EQ(lyrsDCTLifterInitAlloc_C0_32f(&state, lenDCT, 1, 1, 1.0F, 1.0F), StsNoErr);
        alignas(64) float x[64];
        std::fill_n(x, 64, std::numeric_limits<float>::quiet_NaN());
        std::fill_n(x, lenDCT, 2.0F);
        float y[2] = {};
        ASSERT_EQ(lyrsDCTLifter_32f(x, y, state), StsNoErr);
        EXPECT_EQ(y[1], 2.0F * static_cast<float>(lenDCT));
        EXPECT_NEAR(y[0], 0.0F, 1e-4F);
        EXPECT_EQ(lyrsDCTLifterFree_32f(state), StsNoErr);
    }
}

Status transform(const Elem16s* src, Elem16s* dst, DCTLifterState_16s* s, Elem32s scale)
{
    return lyrsDCTLifter_16s_Sfs(src, dst, s, scale);
}
Status transform(const Elem32s* src, Elem16s* dst, DCTLifterState_16s* s, Elem32s scale)
{
    return lyrsDCTLifter_32s16s_Sfs(src, dst, s, scale);
}

// The scratch holds the cepstra in single precision; the outputs are those, scaled, rounded and limited.
template <class S>
void compareFixed(S low, S high)
{
    Random random(52);
    for (const auto& form : fixed) {
        for (Elem32s lenDCT = 1; lenDCT <= 40; ++lenDCT) {
            const Elem32s lenCepstrum = std::min(lenDCT, 1 + lenDCT % 14);
            SCOPED_TRACE(std::string(form.name) + ' ' + std::to_string(lenDCT) + ' ' + std::to_string(lenCepstrum));
            const Arguments a = arguments(lenDCT, lenCepstrum);
            DCTLifterState_16s* state = nullptr;
            ASSERT_EQ(form.initAlloc(&state, a), StsNoErr);
            const auto n = static_cast<std::size_t>(lenDCT);
            const auto outputs = static_cast<std::size_t>(lenCepstrum) + (form.hasC0 ? 1 : 0);
            const auto x = random.vector<S>(n, low, high);
            std::vector<float> cepstra;
            for (const Elem32s scale : {0, 1, 5, 12, -3, 40, -40}) {
                for (const std::size_t offset : {std::size_t{0}, sizeof(S), Guarded<S>::flush(n)}) {
                    const Guarded<S> src(x, offset);
                    const Guarded<Elem16s> dst(outputs, Guarded<Elem16s>::flush(outputs));
                    ASSERT_EQ(transform(src.data(), dst.data(), state, scale), StsNoErr);
                    EXPECT_TRUE(dst.intact());
                    expectCepstra(state->pTmp, x, form.weights(a), form.hasC0);
                    // The scale acts in the conversion only.
                    const std::vector<float> now(state->pTmp, state->pTmp + outputs);
                    ASSERT_TRUE(cepstra.empty() || now == cepstra);
                    cepstra = now;
                    for (std::size_t i = 0; i < outputs; ++i) {
                        const double scaled = std::ldexp(static_cast<double>(now[i]), -scale);
                        const double expected = std::clamp(std::nearbyint(scaled), -32768.0, 32767.0);
                        ASSERT_EQ(dst[i], static_cast<Elem16s>(expected)) << "output " << i << " scale " << scale;
                    }
                }
            }
            EXPECT_EQ(lyrsDCTLifterFree_16s(state), StsNoErr);
        }
    }
}

TEST(DctTransform, TransformOf16Bits)
{
    compareFixed<Elem16s>(-32768, 32767);
}
TEST(DctTransform, TransformOf32Bits)
{
    compareFixed<Elem32s>(-100000, 100000);
    compareFixed<Elem32s>(INT32_MIN, INT32_MAX);
}

// Ties of the last step go to the even number.
TEST(DctTransform, CepstraAreRoundedToNearestEven)
{
    const std::vector<Elem32s> weights{0, 1};
    DCTLifterState_16s* state = nullptr;
    ASSERT_EQ(lyrsDCTLifterInitAlloc_MulC0_16s(&state, 2, weights.data(), 2), StsNoErr);
    for (const auto& [sum, half] : {std::array{5, 2}, {7, 4}, {-5, -2}, {-7, -4}, {3, 2}, {1, 0}}) {
        const Elem16s x[2] = {static_cast<Elem16s>(sum - 1), 1};
        Elem16s y[3] = {};
        ASSERT_EQ(lyrsDCTLifter_16s_Sfs(x, y, state, 1), StsNoErr);
        EXPECT_EQ(y[2], half) << sum;
    }
    EXPECT_EQ(lyrsDCTLifterFree_16s(state), StsNoErr);
}

TEST(DctTransform, NullPointers)
{
    DCTLifterState_32f* s = nullptr;
    DCTLifterState_16s* t = nullptr;
    ASSERT_EQ(lyrsDCTLifterInitAlloc_32f(&s, 2, 2, 1, 1.0F), StsNoErr);
    ASSERT_EQ(lyrsDCTLifterInitAlloc_16s(&t, 2, 2, 1, 1.0F), StsNoErr);
    const float x[2] = {};
    float y[2] = {};
    const Elem32s xi[2] = {};
    Elem16s yi[2] = {};
    EXPECT_EQ(lyrsDCTLifter_32f(nullptr, y, s), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifter_32f(x, nullptr, s), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifter_32f(x, y, nullptr), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifter_16s_Sfs(nullptr, yi, t, 0), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifter_16s_Sfs(yi, nullptr, t, 0), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifter_16s_Sfs(yi, yi, nullptr, 0), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifter_32s16s_Sfs(nullptr, yi, t, 0), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifter_32s16s_Sfs(xi, nullptr, t, 0), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifter_32s16s_Sfs(xi, yi, nullptr, 0), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifterFree_32f(nullptr), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifterFree_16s(nullptr), StsNullPtr);
    EXPECT_EQ(lyrsDCTLifterFree_32f(s), StsNoErr);
    EXPECT_EQ(lyrsDCTLifterFree_16s(t), StsNoErr);
}

} // namespace
