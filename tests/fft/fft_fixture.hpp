// What the tests of the real transform share: records that free themselves, results by layout, and the bound on errors.
#pragma once

#include "lyrsr.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

#include "oracle/fft.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"

namespace lyr::test {

inline constexpr int unscaled = 8;
inline constexpr int largestRoutine = 19;

// Every level of radix-2 butterflies that a result has passed, of which there are log2(N), adds errors of its own: of
// the addition, of the product and of the twiddle. Each is at most half a unit in the last place and spread evenly over
// that, 2^-24 / sqrt(3) of the value as a root mean square; three of them make 2^-24, and the levels are independent
// (Schatzman, Accuracy of the discrete Fourier transform and the fast Fourier transform, 1996). A transform of one
// point is exact.
inline double errorBound(int order)
{
    return std::ldexp(1.0, -24) * std::sqrt(static_cast<double>(order));
}

struct Freed
{
    void operator()(FFTSpec_R_32f* p) const { lyrsFFTFree_R_32f(p); }
    void operator()(FFTSpec_R_16s32s* p) const { lyrsFFTFree_R_16s32s(p); }
};
using Record = std::unique_ptr<FFTSpec_R_32f, Freed>;

inline Record makeRecord(int order, int flag = unscaled)
{
    FFTSpec_R_32f* spec = nullptr;
    EXPECT_EQ(lyrsFFTInitAlloc_R_32f(&spec, order, flag, 0), StsNoErr);
    return Record(spec);
}

inline std::size_t bufferSize(const Record& spec)
{
    Elem32s bytes = -1;
    EXPECT_EQ(lyrsFFTGetBufSize_R_32f(spec.get(), &bytes), StsNoErr);
    return static_cast<std::size_t>(bytes);
}

struct Sizes
{
    Elem32s spec = -1;
    Elem32s init = -1;
    Elem32s buffer = -1;
    bool operator==(const Sizes&) const = default;
};

inline Sizes sizesOf(int order)
{
    Sizes s;
    EXPECT_EQ(lyrsFFTGetSize_R_32f(order, unscaled, 0, &s.spec, &s.init, &s.buffer), StsNoErr);
    return s;
}

using Forward = Status (*)(const Elem32f*, Elem32f*, const FFTSpec_R_32f*, Elem8u*);

inline std::vector<float> forward(Forward call, const std::vector<float>& x, const FFTSpec_R_32f* spec,
                                  std::size_t count)
{
    std::vector<float> y(count, -77.0F);
    EXPECT_EQ(call(x.data(), y.data(), spec, nullptr), StsNoErr);
    return y;
}

inline std::vector<float> ccsOf(const std::vector<float>& x, const FFTSpec_R_32f* spec)
{
    return forward(lyrsFFTFwd_RToCCS_32f, x, spec, x.size() == 1 ? 2 : x.size() + 2);
}

inline std::vector<float> packOf(const std::vector<float>& x, const FFTSpec_R_32f* spec)
{
    return forward(lyrsFFTFwd_RToPack_32f, x, spec, x.size());
}

inline std::vector<float> signalOf(const std::vector<float>& pack, const FFTSpec_R_32f* spec)
{
    std::vector<float> y(pack.size(), -77.0F);
    EXPECT_EQ(lyrsFFTInv_PackToR_32f(pack.data(), y.data(), spec, nullptr), StsNoErr);
    return y;
}

inline std::vector<float> signal(int order)
{
    return Random(static_cast<std::uint32_t>(order) + 1).vector(std::size_t{1} << order, -1.0F, 1.0F);
}

// Root mean square of the error of `actual` over that of `scale` times `expected`.
template <class T>
double relativeError(const std::vector<float>& actual, const std::vector<T>& expected, double scale = 1.0)
{
    EXPECT_EQ(actual.size(), expected.size());
    double error = 0.0;
    double power = 0.0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const double e = scale * static_cast<double>(expected[i]);
        const double d = static_cast<double>(actual[i]) - e;
        error += d * d;
        power += e * e;
    }
    return std::sqrt(error / power);
}

inline testing::AssertionResult sameBits(const std::vector<float>& a, const std::vector<float>& b)
{
    if (a.size() != b.size()) {
        return testing::AssertionFailure() << "different lengths";
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (const auto same = sameBits(a[i], b[i]); !same) {
            return testing::AssertionFailure() << "element " << i << ": " << same.message();
        }
    }
    return testing::AssertionSuccess();
}

inline oracle::Spectrum complexOf(const std::vector<float>& x)
{
    return {x.begin(), x.end()};
}

} // namespace lyr::test
