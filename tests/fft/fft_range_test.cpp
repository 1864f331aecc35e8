// The real transform at the ends of the range: near the largest number, among the subnormal ones, with infinities and
// NaN, and the fixed-point form at scale factors beyond single precision.

#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "fft/fft_fixture.hpp"
#include "oracle/fft.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"

namespace {

using lyr::test::Random;
using lyr::test::sameBits;

constexpr float top = std::numeric_limits<float>::max();
constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr int complexFrom = 4; // orders below run a direct kernel, which scales last in both directions

// All plans: direct kernels, scalar, one tile of each number of lanes, small and large.
constexpr int orders[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 18};

struct Scales
{
    double forward;
    double inverse;
};

Scales scalesOf(int order, int flag)
{
    const double n = std::ldexp(1.0, order);
    return {flag == 1 ? 1 / n : (flag == 4 ? 1 / std::sqrt(n) : 1.0),
            flag == 2 ? 1 / n : (flag == 4 ? 1 / std::sqrt(n) : 1.0)};
}

class Transform
{
public:
    Transform(int order, int flag) : n(std::size_t{1} << order), spec(lyr::test::makeRecord(order, flag)) {}

    // In CCS; the other layouts have to hold the same bits.
    [[nodiscard]] std::vector<float> forward(const std::vector<float>& x) const
    {
        std::vector<float> ccs = lyr::test::ccsOf(x, spec.get());
        EXPECT_TRUE(sameBits(lyr::test::packOf(x, spec.get()), lyr::oracle::packFromCcs(ccs)));
        EXPECT_TRUE(
            sameBits(lyr::test::forward(lyrsFFTFwd_RToPerm_32f, x, spec.get(), n), lyr::oracle::permFromCcs(ccs)));
        return ccs;
    }

    [[nodiscard]] std::vector<float> inverse(const std::vector<float>& pack) const
    {
        return lyr::test::signalOf(pack, spec.get());
    }

private:
    std::size_t n;
    lyr::test::Record spec;
};

std::vector<double> signalOf(const std::vector<float>& pack)
{
    std::vector<double> x;
    for (const std::complex<double>& z : lyr::oracle::transform(lyr::oracle::spectrumOfPack(pack), +1)) {
        x.push_back(z.real());
    }
    return x;
}

std::vector<double> spectrumOf(const std::vector<float>& x)
{
    std::vector<double> ccs = lyr::oracle::ccs(lyr::oracle::transform(lyr::test::complexOf(x), -1));
    ccs.resize(x.size() == 1 ? 2 : x.size() + 2);
    return ccs;
}

// A product of as many twiddles as there are levels, each with two roundings, errs by this much of the peak.
void expectNear(const std::vector<float>& actual, const std::vector<double>& expected, double scale, int order)
{
    ASSERT_EQ(actual.size(), expected.size());
    double peak = 0.0;
    for (const double e : expected) {
        peak = std::max(peak, std::fabs(scale * e));
    }
    ASSERT_LT(peak, static_cast<double>(top)) << "a case without overflow";
    for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_NEAR(actual[i], scale * expected[i], std::ldexp(peak, -23) * (order + 1)) << "element " << i;
    }
}

std::string name(int order, int flag)
{
    return "order " + std::to_string(order) + ", flag " + std::to_string(flag);
}

// ----------------------------------------------------------------------------------------------- near the largest
// number

// The spectrum of a signal that is zero but for its first two samples.
std::vector<double> spectrumOfTwo(double first, double second, std::size_t n)
{
    std::vector<double> ccs(n == 1 ? 2 : n + 2);
    for (std::size_t k = 0; k <= n / 2; ++k) {
        const std::complex<double> z = first + second * lyr::oracle::phasor(-1, k, n);
        ccs[2 * k] = z.real();
        ccs[2 * k + 1] = k == 0 || 2 * k == n ? 0.0 : z.imag();
    }
    return ccs;
}

// The first sample comes through as it is: every result is that number, and none of the sums on the way is larger.
TEST(FftRange, FirstSampleNearTheTop)
{
    for (const int order : orders) {
        std::vector<float> x(std::size_t{1} << order);
        x[0] = 3.3e38F;
        const std::vector<double> expected = spectrumOfTwo(x[0], 0.0, x.size());
        for (const int flag : {1, 2, 4, 8}) {
            SCOPED_TRACE(name(order, flag));
            expectNear(Transform(order, flag).forward(x), expected, scalesOf(order, flag).forward, order);
        }
    }
}

// The first two are the parts of one complex number. The scale comes ahead of the recombination, so that neither their
// sum, which is the first result, nor a difference of two complex results overflows.
TEST(FftRange, ScaledForwardTransformNearTheTop)
{
    for (const int order : orders) {
        if (order < complexFrom) {
            continue;
        }
        std::vector<float> x(std::size_t{1} << order);
        for (const auto& [first, second] : {std::pair{0.0F, 3.3e38F}, {3.3e38F, 3.3e38F}, {3.3e38F, -3.3e38F}}) {
            x[0] = first;
            x[1] = second;
            const std::vector<double> expected = spectrumOfTwo(first, second, x.size());
            for (const int flag : {1, 4}) {
                SCOPED_TRACE(name(order, flag));
                expectNear(Transform(order, flag).forward(x), expected, scalesOf(order, flag).forward, order);
            }
        }
    }
}

// A spectrum of single lines in Pack, and what it is the spectrum of.
class Lines
{
public:
    explicit Lines(std::size_t count) : pack(count), signal(count) {}

    void setEnds(float first, float last)
    {
        pack[0] = first;
        pack[pack.size() - 1] = last;
        for (std::size_t i = 0; i < signal.size(); ++i) {
            signal[i] += static_cast<double>(first) + (i % 2 == 0 ? 1.0 : -1.0) * static_cast<double>(last);
        }
    }
    void set(std::size_t k, float re, float im)
    {
        pack[2 * k - 1] = re;
        pack[2 * k] = im;
        for (std::size_t i = 0; i < signal.size(); ++i) {
            signal[i] += 2.0 * (std::complex<double>(re, im) * lyr::oracle::phasor(+1, k * i, signal.size())).real();
        }
    }

    std::vector<float> pack;
    std::vector<double> signal;
};

// Sums and differences of large elements, scaled before they are formed.
TEST(FftRange, ScaledInverseTransformNearTheTop)
{
    constexpr float large = 2.5e38F;
    for (const int order : orders) {
        const std::size_t n = std::size_t{1} << order;
        std::vector<Lines> cases;
        for (const float last : {large, -large}) {
            cases.emplace_back(n);
            cases.back().setEnds(n > 1 ? large : last, last);
        }
        // X[k] and X[N/2-k] are what the recombination pairs.
        for (const std::size_t k : {std::size_t{1}, std::size_t{3}, n / 4 - 1}) {
            for (const float other : {large, -large}) {
                for (const bool isImaginary : {false, true}) {
                    if (order >= complexFrom) {
                        cases.emplace_back(n);
                        cases.back().set(k, isImaginary ? 0.0F : large, isImaginary ? large : 0.0F);
                        cases.back().set(n / 2 - k, isImaginary ? 0.0F : other, isImaginary ? other : 0.0F);
                    }
                }
            }
        }
        for (const int flag : {2, 4}) {
            // At the lowest orders the root of N is too little to bring such a signal back into the range.
            if (order >= (flag == 2 ? complexFrom : complexFrom + 2)) {
                SCOPED_TRACE(name(order, flag));
                const Transform transform(order, flag);
                for (const Lines& lines : cases) {
                    expectNear(transform.inverse(lines.pack), lines.signal, scalesOf(order, flag).inverse, order);
                }
            }
        }
    }
}

// The same bits for x and for x times a power of two that brings the largest result just below half the largest number:
// what is said to be free of overflow. The elements themselves stay below the largest number.
TEST(FftRange, ResultsUpToHalfTheLargestNumber)
{
    for (const int order : orders) {
        const std::vector<float> x =
            Random(static_cast<std::uint32_t>(order) + 40).vector(std::size_t{1} << order, -1.0F, 1.0F);
        for (const int flag : {1, 2, 4, 8}) {
            SCOPED_TRACE(name(order, flag));
            const Transform transform(order, flag);
            const Scales scales = scalesOf(order, flag);
            const auto compare = [&](const auto& call, double unscaledPeak) {
                const int up = std::ilogb(top) - 2 - std::max(std::ilogb(unscaledPeak), -2);
                std::vector<float> large = x;
                for (float& v : large) {
                    v = std::ldexp(v, up);
                }
                std::vector<float> expected = call(x);
                for (float& v : expected) {
                    v = std::ldexp(v, up);
                }
                EXPECT_TRUE(sameBits(call(large), expected));
            };
            const auto peakOf = [](const std::vector<float>& v) {
                double peak = 0.0;
                for (const float e : v) {
                    peak = std::max(peak, std::fabs(static_cast<double>(e)));
                }
                return peak;
            };
            const auto forward = [&](const std::vector<float>& v) { return transform.forward(v); };
            const auto inverse = [&](const std::vector<float>& v) { return transform.inverse(v); };
            // A magnitude is at most sqrt(2) times the larger of its parts.
            compare(forward, std::sqrt(2.0) * peakOf(forward(x)) / scales.forward);
            compare(inverse, peakOf(inverse(x)) / (order < complexFrom ? scales.inverse : 1.0));
        }
    }
}

// ------------------------------------------------------------------------------------------------------- subnormal
// numbers

// Every level rounds two products to multiples of 2^-149 at worst, an error of 2^-149 / sqrt(12) each as a root mean
// square; those of the levels ahead add up like the signal itself. In all that is less than sqrt(N) * 2^-149, which in
// a signal of 2^-132 is more than single precision errs by.
TEST(FftRange, SubnormalNumbers)
{
    for (const int order : orders) {
        const std::size_t n = std::size_t{1} << order;
        std::vector<float> x = Random(static_cast<std::uint32_t>(order) + 60).vector(n, -1.0F, 1.0F);
        for (float& v : x) {
            v = std::ldexp(v, -132);
        }
        const std::vector<double> spectrum = spectrumOf(x);
        const std::vector<double> signal = signalOf(x);
        for (const int flag : {1, 2, 4, 8}) {
            SCOPED_TRACE(name(order, flag));
            const Transform transform(order, flag);
            const Scales scales = scalesOf(order, flag);
            const auto compare = [&](const std::vector<float>& actual, const std::vector<double>& expected,
                                     double scale, double steps) {
                ASSERT_EQ(actual.size(), expected.size());
                double error = 0.0;
                double power = 0.0;
                for (std::size_t i = 0; i < actual.size(); ++i) {
                    const double e = scale * expected[i];
                    error += (actual[i] - e) * (actual[i] - e);
                    power += e * e;
                }
                const double bound = std::ldexp(std::sqrt(power), -24) * std::sqrt(order + 1.0) +
                                     std::ldexp(std::sqrt(static_cast<double>(n)) * steps, -149);
                EXPECT_LE(std::sqrt(error), bound);
            };
            // A scale that comes last scales the errors ahead of it, and adds one rounding.
            const double root = std::sqrt(static_cast<double>(n));
            compare(transform.forward(x), spectrum, scales.forward, root * scales.forward + 1.0);
            compare(transform.inverse(x), signal, scales.inverse,
                    order < complexFrom ? root * scales.inverse + 1.0 : root);
        }
    }
}

// ------------------------------------------------------------------------------------------------- infinities and NaN

// Whether cos(2*pi*t/n) or sin(2*pi*t/n) is other than 0.
bool hasCosine(std::size_t t, std::size_t n)
{
    return 4 * t % (2 * n) != n;
}
bool hasSine(std::size_t t, std::size_t n)
{
    return 2 * t % n != 0;
}

TEST(FftRange, OneSampleReachesEveryFrequency)
{
    for (int order = 0; order <= 11; ++order) {
        const std::size_t n = std::size_t{1} << order;
        for (const int flag : {1, 8}) {
            const Transform transform(order, flag);
            const std::vector<float> signal = Random(7).vector(n, 0.5F, 1.0F);
            for (const std::size_t place : {std::size_t{0}, n / 4, n / 3, n / 2 - (n > 1 ? 1 : 0), n - 1}) {
                for (const float value : {inf, -inf, nan}) {
                    SCOPED_TRACE(name(order, flag) + ", sample " + std::to_string(place));
                    std::vector<float> x = signal;
                    x[place] = value;
                    const std::vector<float> ccs = transform.forward(x);
                    for (std::size_t k = 0; k <= n / 2; ++k) {
                        ASSERT_FALSE(hasCosine(k * place, n) && std::isfinite(ccs[2 * k])) << "R" << k;
                        ASSERT_FALSE(hasSine(k * place, n) && std::isfinite(ccs[2 * k + 1])) << "I" << k;
                    }
                    EXPECT_EQ(ccs[1], 0.0F);
                    EXPECT_EQ(ccs.back(), 0.0F);
                }
            }
        }
    }
}

TEST(FftRange, OneElementReachesEverySample)
{
    for (int order = 0; order <= 11; ++order) {
        const std::size_t n = std::size_t{1} << order;
        for (const int flag : {1, 2}) {
            const Transform transform(order, flag);
            const std::vector<float> spectrum = Random(8).vector(n, 0.5F, 1.0F);
            for (const std::size_t place : {std::size_t{0}, n / 4, n / 3, n / 2, n - 1}) {
                if (place >= n) {
                    continue;
                }
                const std::size_t k = (place + 1) / 2;
                const bool isImaginary = place > 0 && place % 2 == 0;
                for (const float value : {inf, -inf, nan}) {
                    SCOPED_TRACE(name(order, flag) + ", element " + std::to_string(place));
                    std::vector<float> pack = spectrum;
                    pack[place] = value;
                    const std::vector<float> x = transform.inverse(pack);
                    for (std::size_t i = 0; i < n; ++i) {
                        const bool depends = isImaginary ? hasSine(k * i, n) : hasCosine(k * i, n);
                        ASSERT_FALSE(depends && std::isfinite(x[i])) << "sample " << i;
                    }
                }
            }
        }
    }
}

// --------------------------------------------------------------------------------------------------------- fixed point

// The power of two is a single: infinite from a scale factor of -128 down, where a zero becomes NaN and that the lower
// limit, and zero from 150 up.
TEST(FixedFftRange, ScaleFactorsBeyondSinglePrecision)
{
    for (const int order : {0, 1, 2, 3, 4, 6, 9, 11}) {
        const std::size_t n = std::size_t{1} << order;
        auto random = Random(9).vector<Elem16s>(n, -32768, 32767);
        const std::vector<Elem16s> constant(n, 1000); // all frequencies but one are exact zeros
        for (const int flag : {1, 2, 4, 8}) {
            FFTSpec_R_16s32s* made = nullptr;
            ASSERT_EQ(lyrsFFTInitAlloc_R_16s32s(&made, order, flag, 0), StsNoErr);
            const std::unique_ptr<FFTSpec_R_16s32s, lyr::test::Freed> spec(made);
            for (const std::vector<Elem16s>& x : {random, constant}) {
                const std::vector<float> ccs = Transform(order, flag).forward({x.begin(), x.end()});
                for (const Elem32s scaleFactor :
                     {INT32_MIN, -129, -128, -127, -40, -9, 0, 3, 17, 149, 150, 151, INT32_MAX}) {
                    SCOPED_TRACE(name(order, flag) + ", scale factor " + std::to_string(scaleFactor));
                    std::vector<Elem32s> y(ccs.size(), -77);
                    ASSERT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(x.data(), y.data(), spec.get(), scaleFactor, nullptr),
                              StsNoErr);
                    for (std::size_t i = 0; i < y.size(); ++i) {
                        Elem32s expected = 0;
                        const auto value = static_cast<double>(ccs[i]);
                        if (i == 1 || (i > 1 && i + 1 == y.size())) {
                            expected = 0; // has no imaginary part that could be scaled
                        } else if (scaleFactor <= -128) {
                            expected = value > 0.0 ? INT32_MAX : INT32_MIN;
                        } else if (scaleFactor < 150) {
                            const double exact = std::nearbyint(std::ldexp(value, -scaleFactor));
                            expected = static_cast<Elem32s>(std::clamp(exact, -2147483648.0, 2147483647.0));
                        }
                        ASSERT_EQ(y[i], expected) << i;
                    }
                }
            }
        }
    }
}

} // namespace
