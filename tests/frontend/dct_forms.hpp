// The forms of the DCT with liftering, as its tests call them, and what a transform may differ by from the exact one.
#pragma once

#include "lyrsr.h"

#include "frontend/dct_lifter.hpp"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "oracle/dct_lifter.hpp"
#include "support/random.hpp"

namespace lyr::test::dct {

// What all forms of one precision are called with; each takes what it needs.
struct Arguments
{
    Elem32s lenDCT = 23;
    Elem32s lenCepstrum = 12;
    Elem32s nLifter = 22;
    float val = 1.5F;
    float val0 = 0.75F;
    std::vector<float> weights{};
    std::vector<Elem32s> wholeWeights{};
};

inline Arguments arguments(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter = 22)
{
    Random random(static_cast<std::uint32_t>(lenDCT * 1000 + lenCepstrum));
    Arguments a{.lenDCT = lenDCT, .lenCepstrum = lenCepstrum, .nLifter = nLifter};
    a.weights = random.vector<float>(static_cast<std::size_t>(lenCepstrum), -3, 3);
    a.wholeWeights = random.vector<Elem32s>(static_cast<std::size_t>(lenCepstrum), -50, 50);
    return a;
}

template <class State>
struct Form
{
    const char* name;
    bool isSine;
    bool hasC0;
    bool isWhole;
    Status (*getSize)(Elem32s, Elem32s, Elem32s*);
    Status (*init)(State*, const Arguments&);
    Status (*initAlloc)(State**, const Arguments&);

    [[nodiscard]] std::vector<float> weights(const Arguments& a) const
    {
        if (isWhole) {
            return lyr::oracle::givenWeights(a.wholeWeights, hasC0);
        }
        if (!isSine) {
            return lyr::oracle::givenWeights(a.weights, hasC0);
        }
        auto w = lyr::oracle::sineWeights(a.lenCepstrum, a.nLifter, a.val);
        if (hasC0) {
            w[0] = a.val0;
        }
        return w;
    }
};

#define LYR_SINE_FORM(TAG, HAS_C0, STATE, ...)                                                                         \
    Form<STATE>                                                                                                        \
    {                                                                                                                  \
#TAG, true, HAS_C0, false, lyrsDCTLifterGetSize_##TAG,                                                         \
            [](STATE* s, const Arguments& a) {                                                                         \
                return lyrsDCTLifterInit_##TAG(s, a.lenDCT, a.lenCepstrum, a.nLifter, __VA_ARGS__);                    \
            },                                                                                                         \
            [](STATE** s, const Arguments& a) {                                                                        \
                return lyrsDCTLifterInitAlloc_##TAG(s, a.lenDCT, a.lenCepstrum, a.nLifter, __VA_ARGS__);               \
            }       \
    }

#define LYR_GIVEN_FORM(TAG, HAS_C0, STATE, WEIGHTS, IS_WHOLE)                                                          \
    Form<STATE>                                                                                                        \
    {                                                                                                                  \
#TAG, false, HAS_C0, IS_WHOLE, lyrsDCTLifterGetSize_##TAG,                                                     \
            [](STATE* s, const Arguments& a) {                                                                         \
                return lyrsDCTLifterInit_##TAG(s, a.lenDCT, a.WEIGHTS.data(), a.lenCepstrum);                          \
            },                                                                                                         \
            [](STATE** s, const Arguments& a) {                                                                        \
                return lyrsDCTLifterInitAlloc_##TAG(s, a.lenDCT, a.WEIGHTS.data(), a.lenCepstrum);                     \
            }       \
    }

const Form<DCTLifterState_32f> single[] = {
    LYR_SINE_FORM(32f, false, DCTLifterState_32f, a.val),
    LYR_SINE_FORM(C0_32f, true, DCTLifterState_32f, a.val, a.val0),
    LYR_GIVEN_FORM(Mul_32f, false, DCTLifterState_32f, weights, false),
    LYR_GIVEN_FORM(MulC0_32f, true, DCTLifterState_32f, weights, false),
};

const Form<DCTLifterState_16s> fixed[] = {
    LYR_SINE_FORM(16s, false, DCTLifterState_16s, a.val),
    LYR_SINE_FORM(C0_16s, true, DCTLifterState_16s, a.val, a.val0),
    LYR_GIVEN_FORM(Mul_16s, false, DCTLifterState_16s, weights, false),
    LYR_GIVEN_FORM(MulC0_16s, true, DCTLifterState_16s, wholeWeights, true),
};

inline Status release(DCTLifterState_32f* s)
{
    return lyrsDCTLifterFree_32f(s);
}
inline Status release(DCTLifterState_16s* s)
{
    return lyrsDCTLifterFree_16s(s);
}

// The value of a coefficient is within lenDCT + 1 roundings of the exact one, each at most half a unit of the sum of
// the magnitudes that enter (Higham, Accuracy and Stability of Numerical Algorithms, 2002, section 3.1).
inline double errorBound(const lyr::oracle::Coefficient& c, std::size_t lenDCT)
{
    constexpr double unit = std::numeric_limits<float>::epsilon() / 2.0;
    const auto n = static_cast<double>(lenDCT) + 2;
    return n * unit / (1 - n * unit) * static_cast<double>(c.magnitude) + 1e-44;
}

template <class S>
void expectCepstra(const float* y, const std::vector<S>& x, const std::vector<float>& weights, bool hasC0)
{
    const int count = static_cast<int>(weights.size()) - 1;
    for (int k = 0; k < count + (hasC0 ? 1 : 0); ++k) {
        const int i = k < count ? k + 1 : 0; // the zeroth coefficient comes last
        const auto c = lyr::oracle::coefficient(x, i, weights[static_cast<std::size_t>(i)]);
        ASSERT_NEAR(static_cast<double>(y[k]), static_cast<double>(c.value), errorBound(c, x.size())) << k;
    }
}

} // namespace lyr::test::dct
