// The values of the real transform: every layout, both directions, all scalings.

#include "lyrsr.h"

#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "fft/fft_fixture.hpp"
#include "oracle/fft.hpp"

namespace lyr::test {
namespace {

TEST(RealFft, OracleByHalvesIsTheDefinition)
{
    const oracle::Spectrum x = complexOf(signal(7));
    const oracle::Spectrum a = oracle::transform(x, -1);
    const oracle::Spectrum b = oracle::transformDirectly(x, -1);
    for (std::size_t k = 0; k < a.size(); ++k) {
        EXPECT_LT(std::abs(a[k] - b[k]), 1e-12);
    }
}

TEST(RealFft, SpectrumInEveryLayout)
{
    for (int order = 0; order <= largestRoutine; ++order) {
        SCOPED_TRACE("order " + std::to_string(order));
        const Record spec = makeRecord(order);
        const std::vector<float> x = signal(order);
        const std::vector<float> ccs = ccsOf(x, spec.get());
        EXPECT_LE(relativeError(ccs, oracle::ccs(oracle::transform(complexOf(x), -1))), errorBound(order));
        EXPECT_EQ(ccs[1], 0.0F);
        EXPECT_EQ(ccs.back(), 0.0F);
        EXPECT_TRUE(sameBits(packOf(x, spec.get()), oracle::packFromCcs(ccs)));
        EXPECT_TRUE(sameBits(forward(lyrsFFTFwd_RToPerm_32f, x, spec.get(), x.size()), oracle::permFromCcs(ccs)));
    }
}

TEST(RealFft, SignalFromAnySpectrum)
{
    for (int order = 0; order <= largestRoutine; ++order) {
        SCOPED_TRACE("order " + std::to_string(order));
        const Record spec = makeRecord(order);
        const std::vector<float> pack = signal(order);
        const oracle::Spectrum expected = oracle::transform(oracle::spectrumOfPack(pack), +1);
        std::vector<double> real;
        for (const std::complex<double>& z : expected) {
            real.push_back(z.real());
        }
        EXPECT_LE(relativeError(signalOf(pack, spec.get()), real), errorBound(order));
    }
}

// No error may hide in a single element: one frequency, or one sample, gives a result known in every element.
TEST(RealFft, SingleFrequencies)
{
    for (int order = 2; order <= largestRoutine; ++order) {
        const std::size_t n = std::size_t{1} << order;
        const Record spec = makeRecord(order);
        for (const std::size_t frequency : {std::size_t{0}, std::size_t{1}, n / 4, n / 3, n / 2 - 1, n / 2}) {
            SCOPED_TRACE("order " + std::to_string(order) + ", frequency " + std::to_string(frequency));
            std::vector<float> x(n);
            for (std::size_t i = 0; i < n; ++i) {
                x[i] = static_cast<float>(oracle::phasor(1, i * frequency, n).real());
            }
            const bool isEnd = frequency == 0 || 2 * frequency == n;
            const auto peak = static_cast<float>(isEnd ? n : n / 2);
            std::vector<float> expected(n + 2);
            expected[2 * frequency] = peak;
            const std::vector<float> actual = ccsOf(x, spec.get());
            for (std::size_t i = 0; i < n + 2; ++i) {
                // The samples are rounded themselves, so that everything scales with the peak.
                ASSERT_NEAR(actual[i], expected[i], peak * 2 * errorBound(order)) << "element " << i;
            }
        }
    }
}

TEST(RealFft, SmallOrdersAreExact)
{
    const Record one = makeRecord(0);
    const Record two = makeRecord(1);
    const Record four = makeRecord(2);
    EXPECT_EQ(packOf({3.5F}, one.get()), std::vector<float>({3.5F}));
    EXPECT_EQ(ccsOf({3.5F}, one.get()), std::vector<float>({3.5F, 0.0F})); // two elements, and not N + 2
    EXPECT_EQ(signalOf({3.5F}, one.get()), std::vector<float>({3.5F}));
    EXPECT_EQ(packOf({3.0F, 5.0F}, two.get()), std::vector<float>({8.0F, -2.0F}));
    EXPECT_EQ(ccsOf({3.0F, 5.0F}, two.get()), std::vector<float>({8.0F, 0.0F, -2.0F, 0.0F}));
    EXPECT_EQ(signalOf({8.0F, -2.0F}, two.get()), std::vector<float>({6.0F, 10.0F}));
    const std::vector<float> x = {1.0F, 2.0F, 4.0F, 8.0F};
    EXPECT_EQ(forward(lyrsFFTFwd_RToPerm_32f, x, four.get(), 4), std::vector<float>({15.0F, -5.0F, -3.0F, 6.0F}));
    EXPECT_EQ(packOf(x, four.get()), std::vector<float>({15.0F, -3.0F, 6.0F, -5.0F}));
    EXPECT_EQ(signalOf({15.0F, -3.0F, 6.0F, -5.0F}, four.get()), std::vector<float>({4.0F, 8.0F, 16.0F, 32.0F}));
}

// A vector of 8 and the same one stretched over 16 by zeros between have the same spectrum: a direct kernel and the
// first complex transform.
TEST(RealFft, DirectAndComplexKernelsAgree)
{
    const std::vector<float> x = signal(3);
    std::vector<float> stretched(16);
    for (std::size_t i = 0; i < 8; ++i) {
        stretched[2 * i] = x[i];
    }
    const std::vector<float> a = ccsOf(x, makeRecord(3).get());
    const std::vector<float> b = ccsOf(stretched, makeRecord(4).get());
    for (std::size_t i = 0; i < a.size(); ++i) {
        EXPECT_NEAR(a[i], b[i], 8 * errorBound(4));
    }
}

TEST(RealFft, ScalesByFlag)
{
    for (const int order : {0, 1, 2, 3, 4, 5, 7, 9, 10, 11, 12, 17, 18, 19}) {
        const double n = std::ldexp(1.0, order);
        const std::vector<float> x = signal(order);
        const Record plain = makeRecord(order);
        const std::vector<float> ccs = ccsOf(x, plain.get());
        const std::vector<float> y = signalOf(x, plain.get());
        for (const auto& [flag, fwd, inv] : {std::array{1.0, 1 / n, 1.0}, std::array{2.0, 1.0, 1 / n},
                                             std::array{4.0, 1 / std::sqrt(n), 1 / std::sqrt(n)}}) {
            SCOPED_TRACE("order " + std::to_string(order) + ", flag " + std::to_string(flag));
            const Record spec = makeRecord(order, static_cast<int>(flag));
            // A power of two scales without an error; the root of an odd one rounds everything anew.
            const double differ = flag == 4.0 && order % 2 != 0 ? 2 * errorBound(order) : 0.0;
            EXPECT_LE(relativeError(ccsOf(x, spec.get()), ccs, fwd), differ);
            EXPECT_LE(relativeError(signalOf(x, spec.get()), y, inv), differ);
            const std::vector<float> back = signalOf(packOf(x, spec.get()), spec.get());
            EXPECT_LE(relativeError(back, x), 2 * errorBound(order + 1));
        }
        EXPECT_LE(relativeError(signalOf(packOf(x, plain.get()), plain.get()), x, n), 2 * errorBound(order + 1));
    }
}

} // namespace
} // namespace lyr::test
