// The real transform: values, layouts, scaling, memory.

#include "lyrsr.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <numbers>
#include <string>
#include <thread>
#include <vector>

#include "fft/fft_kernels.hpp"
#include "fft/fft_plan.hpp"
#include "fft/fft_tables.hpp"
#include "frame/memory.hpp"
#include "oracle/fft.hpp"
#include "support/allocation.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"

namespace {

using lyr::oracle::Spectrum;
using lyr::test::Guarded;
using lyr::test::Random;

constexpr int unscaled = 8;
constexpr int largestRoutine = 19;

// Every level of radix-2 butterflies that a result has passed, of which there are log2(N), adds errors of its own: of
// the addition, of the product and of the twiddle. Each is at most half a unit in the last place and spread evenly over
// that, 2^-24 / sqrt(3) of the value as a root mean square; three of them make 2^-24, and the levels are independent
// (Schatzman, Accuracy of the discrete Fourier transform and the fast Fourier transform, 1996). A transform of one
// point is exact.
double errorBound(int order)
{
    return std::ldexp(1.0, -24) * std::sqrt(static_cast<double>(order));
}

struct Freed
{
    void operator()(FFTSpec_R_32f* p) const { lyrsFFTFree_R_32f(p); }
    void operator()(FFTSpec_R_16s32s* p) const { lyrsFFTFree_R_16s32s(p); }
};
using Record = std::unique_ptr<FFTSpec_R_32f, Freed>;

Record makeRecord(int order, int flag = unscaled)
{
    FFTSpec_R_32f* spec = nullptr;
    EXPECT_EQ(lyrsFFTInitAlloc_R_32f(&spec, order, flag, 0), StsNoErr);
    return Record(spec);
}

std::size_t bufferSize(const Record& spec)
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

Sizes sizesOf(int order)
{
    Sizes s;
    EXPECT_EQ(lyrsFFTGetSize_R_32f(order, unscaled, 0, &s.spec, &s.init, &s.buffer), StsNoErr);
    return s;
}

using Forward = Status (*)(const Elem32f*, Elem32f*, const FFTSpec_R_32f*, Elem8u*);

std::vector<float> forward(Forward call, const std::vector<float>& x, const FFTSpec_R_32f* spec, std::size_t count)
{
    std::vector<float> y(count, -77.0F);
    EXPECT_EQ(call(x.data(), y.data(), spec, nullptr), StsNoErr);
    return y;
}

std::vector<float> ccsOf(const std::vector<float>& x, const FFTSpec_R_32f* spec)
{
    return forward(lyrsFFTFwd_RToCCS_32f, x, spec, x.size() == 1 ? 2 : x.size() + 2);
}

std::vector<float> packOf(const std::vector<float>& x, const FFTSpec_R_32f* spec)
{
    return forward(lyrsFFTFwd_RToPack_32f, x, spec, x.size());
}

std::vector<float> signalOf(const std::vector<float>& pack, const FFTSpec_R_32f* spec)
{
    std::vector<float> y(pack.size(), -77.0F);
    EXPECT_EQ(lyrsFFTInv_PackToR_32f(pack.data(), y.data(), spec, nullptr), StsNoErr);
    return y;
}

std::vector<float> signal(int order)
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

testing::AssertionResult sameBits(const std::vector<float>& a, const std::vector<float>& b)
{
    if (a.size() != b.size()) {
        return testing::AssertionFailure() << "different lengths";
    }
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (const auto same = lyr::test::sameBits(a[i], b[i]); !same) {
            return testing::AssertionFailure() << "element " << i << ": " << same.message();
        }
    }
    return testing::AssertionSuccess();
}

Spectrum complexOf(const std::vector<float>& x)
{
    return {x.begin(), x.end()};
}

// -------------------------------------------------------------------------------------------------------------- values

TEST(RealFft, OracleByHalvesIsTheDefinition)
{
    const Spectrum x = complexOf(signal(7));
    const Spectrum a = lyr::oracle::transform(x, -1);
    const Spectrum b = lyr::oracle::transformDirectly(x, -1);
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
        EXPECT_LE(relativeError(ccs, lyr::oracle::ccs(lyr::oracle::transform(complexOf(x), -1))), errorBound(order));
        EXPECT_EQ(ccs[1], 0.0F);
        EXPECT_EQ(ccs.back(), 0.0F);
        EXPECT_TRUE(sameBits(packOf(x, spec.get()), lyr::oracle::packFromCcs(ccs)));
        EXPECT_TRUE(sameBits(forward(lyrsFFTFwd_RToPerm_32f, x, spec.get(), x.size()), lyr::oracle::permFromCcs(ccs)));
    }
}

TEST(RealFft, SignalFromAnySpectrum)
{
    for (int order = 0; order <= largestRoutine; ++order) {
        SCOPED_TRACE("order " + std::to_string(order));
        const Record spec = makeRecord(order);
        const std::vector<float> pack = signal(order);
        const Spectrum expected = lyr::oracle::transform(lyr::oracle::spectrumOfPack(pack), +1);
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
                x[i] = static_cast<float>(lyr::oracle::phasor(1, i * frequency, n).real());
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

void compareImpulses(int order)
{
    const std::size_t n = std::size_t{1} << order;
    const Record spec = makeRecord(order);
    for (const std::size_t place : {std::size_t{0}, std::size_t{1}, n / 2 + 1, n - 1}) {
        SCOPED_TRACE("order " + std::to_string(order) + ", sample " + std::to_string(place));
        std::vector<float> x(n);
        x[place] = 1.0F;
        // In place, in a vector with room for the two elements more of the layout.
        x.resize(n + 2);
        ASSERT_EQ(lyrsFFTFwd_RToCCS_32f(x.data(), x.data(), spec.get(), nullptr), StsNoErr);
        // A product of as many twiddles as there are levels.
        const double bound = std::ldexp(1.0, -23) * order;
        double worst = 0.0;
        for (std::size_t k = 0; k <= n / 2; ++k) {
            const std::complex<double> actual(x[2 * k], x[2 * k + 1]);
            worst = std::max(worst, std::abs(actual - lyr::oracle::phasor(-1, k * place, n)));
        }
        EXPECT_LE(worst, bound);
    }
}

TEST(RealFft, SingleSamples)
{
    for (int order = 2; order <= 21; ++order) {
        compareImpulses(order);
    }
}

TEST(RealFft, LongSignalComesBack)
{
    for (const int order : {20, 22, 23}) {
        SCOPED_TRACE("order " + std::to_string(order));
        const Record spec = makeRecord(order, 2);
        const std::vector<float> x = signal(order);
        std::vector<float> y = x;
        ASSERT_EQ(lyrsFFTFwd_RToPack_32f(y.data(), y.data(), spec.get(), nullptr), StsNoErr);
        ASSERT_EQ(lyrsFFTInv_PackToR_32f(y.data(), y.data(), spec.get(), nullptr), StsNoErr);
        EXPECT_LE(relativeError(y, x), 2 * errorBound(order));
    }
}

// Beyond 2^26 points the data is parted into even and odd elements, level by level. Here are two levels at a length for
// every run: parts of 2^15 points, so that the work memory is less than half of the data and the first parting has to
// go by quarters.
class SplitPlan
{
public:
    static constexpr int order = 18;
    static constexpr std::size_t n = std::size_t{1} << order;

    explicit SplitPlan(int lanes)
        : plan{lanes, order - 1, 7, 8, 2}, memory(lyr::alignUp(sizeof(FFTSpec_R_32f), lyr::fft::cacheLine) +
                                                  static_cast<std::size_t>(lyr::fft::tableBytes(plan))),
          work(2 * plan.rows() * (plan.cols() + static_cast<std::size_t>(lanes)),
               Guarded<float>::flush(2 * plan.rows() * (plan.cols() + static_cast<std::size_t>(lanes)))),
          spec(*new (memory.data()) FFTSpec_R_32f{})
    {
        std::vector<float> sine(n / 4 + 1);
        lyr::fft::computeSine(sine.data(), order);
        spec.order = order;
        lyr::fft::buildTables(spec, plan, sine.data(), order);
        EXPECT_TRUE(memory.intact());
    }

    void forward(const float* src, float* dst, lyr::fft::Layout layout) const
    {
        lyr::fft::kernels.forward(spec, plan, src, dst, work.data(), layout);
        EXPECT_TRUE(work.intact());
    }
    void inverse(const float* src, float* dst) const
    {
        lyr::fft::kernels.inverse(spec, plan, src, dst, work.data());
        EXPECT_TRUE(work.intact());
    }

private:
    lyr::fft::Plan plan;
    Guarded<Elem8u> memory;
    Guarded<float> work;
    FFTSpec_R_32f& spec;
};

TEST(RealFft, LevelsOfEvenAndOddElements)
{
    constexpr std::size_t n = SplitPlan::n;
    constexpr int order = SplitPlan::order;
    const std::vector<float> x = signal(order);
    const std::vector<double> spectrum = lyr::oracle::ccs(lyr::oracle::transform(complexOf(x), -1));
    std::vector<double> back;
    for (const std::complex<double>& z : lyr::oracle::transform(lyr::oracle::spectrumOfPack(x), +1)) {
        back.push_back(z.real());
    }
    for (int lanes = 4; lanes <= lyr::fft::kernels.lanes; lanes *= 2) {
        SCOPED_TRACE(std::to_string(lanes) + " lanes");
        const SplitPlan split(lanes);
        const Guarded<float> source(x, 0);
        const Guarded<float> ccs(n + 2, 4);
        split.forward(source.data(), ccs.data(), lyr::fft::Layout::Ccs);
        EXPECT_LE(relativeError(ccs.copy(), spectrum), errorBound(order));
        EXPECT_TRUE(sameBits(source.copy(), x));
        const Guarded<float> result(n, 8);
        split.forward(source.data(), result.data(), lyr::fft::Layout::Pack);
        EXPECT_TRUE(sameBits(result.copy(), lyr::oracle::packFromCcs(ccs.copy())));
        split.forward(source.data(), result.data(), lyr::fft::Layout::Perm);
        EXPECT_TRUE(sameBits(result.copy(), lyr::oracle::permFromCcs(ccs.copy())));
        const Guarded<float> both(x, 0);
        split.forward(both.data(), both.data(), lyr::fft::Layout::Perm);
        EXPECT_TRUE(sameBits(both.copy(), result.copy()));

        split.inverse(source.data(), result.data());
        EXPECT_LE(relativeError(result.copy(), back), errorBound(order));
        EXPECT_TRUE(sameBits(source.copy(), x));
        split.inverse(source.data(), source.data());
        EXPECT_TRUE(sameBits(source.copy(), result.copy()));
        EXPECT_TRUE(ccs.intact() && result.intact() && both.intact() && source.intact());
    }
}

#if defined(LYRSR_TEST_TOP_ORDERS)
// Gigabytes and minutes: an option of the build. The first order that is split into even and odd elements is 28.
TEST(RealFft, TopOrders)
{
    for (int order = 24; order <= 30; ++order) {
        compareImpulses(order);
        const Record spec = makeRecord(order, 2);
        const std::vector<float> x = signal(order);
        std::vector<float> y = x;
        ASSERT_EQ(lyrsFFTFwd_RToPack_32f(y.data(), y.data(), spec.get(), nullptr), StsNoErr);
        ASSERT_EQ(lyrsFFTInv_PackToR_32f(y.data(), y.data(), spec.get(), nullptr), StsNoErr);
        EXPECT_LE(relativeError(y, x), 2 * errorBound(order)) << order;
    }
}
#endif

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

// ------------------------------------------------------------------------------------------------- place and alignment

// The same values in place and out of place, wherever source, destination and buffer lie, and nothing outside of them.
TEST(RealFft, PlaceAndAlignmentChangeNothing)
{
    for (const int order : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 13, 18, 19}) {
        SCOPED_TRACE("order " + std::to_string(order));
        const Record spec = makeRecord(order, 4);
        const std::vector<float> x = signal(order);
        const std::size_t n = x.size();
        const std::vector<float> ccs = ccsOf(x, spec.get());
        const std::vector<float> pack = packOf(x, spec.get());
        const std::vector<float> back = signalOf(x, spec.get());
        for (std::size_t offset = 0; offset<64; offset += order> 13 ? 20 : 4) {
            SCOPED_TRACE("offset " + std::to_string(offset));
            const Guarded<Elem8u> buffer(bufferSize(spec), offset / 4);
            const Guarded<float> source(x, offset);
            const Guarded<float> spectrum(ccs.size(), (offset + 24) % 64);
            EXPECT_EQ(lyrsFFTFwd_RToCCS_32f(source.data(), spectrum.data(), spec.get(), buffer.data()), StsNoErr);
            EXPECT_TRUE(sameBits(spectrum.copy(), ccs));
            EXPECT_TRUE(sameBits(source.copy(), x));
            EXPECT_TRUE(spectrum.intact() && buffer.intact());

            const Guarded<float> both(x, offset);
            EXPECT_EQ(lyrsFFTFwd_RToPack_32f(both.data(), both.data(), spec.get(), buffer.data()), StsNoErr);
            EXPECT_TRUE(sameBits(both.copy(), pack));
            EXPECT_TRUE(both.intact());

            const Guarded<float> perm(n, (offset + 40) % 64);
            EXPECT_EQ(lyrsFFTFwd_RToPerm_32f(source.data(), perm.data(), spec.get(), buffer.data()), StsNoErr);
            EXPECT_TRUE(sameBits(perm.copy(), lyr::oracle::permFromCcs(ccs)));
            EXPECT_TRUE(perm.intact());

            const Guarded<float> result(n, (offset + 12) % 64);
            EXPECT_EQ(lyrsFFTInv_PackToR_32f(source.data(), result.data(), spec.get(), buffer.data()), StsNoErr);
            EXPECT_TRUE(sameBits(result.copy(), back));
            EXPECT_TRUE(result.intact());
            EXPECT_EQ(lyrsFFTInv_PackToR_32f(source.data(), source.data(), spec.get(), buffer.data()), StsNoErr);
            EXPECT_TRUE(sameBits(source.copy(), back));
            EXPECT_TRUE(source.intact() && buffer.intact());
        }
        // Ending exactly at unmapped pages.
        const Guarded<Elem8u> buffer(bufferSize(spec), Guarded<Elem8u>::flush(bufferSize(spec)));
        const Guarded<float> source(x, Guarded<float>::flush(n));
        const Guarded<float> wide(ccs.size(), Guarded<float>::flush(ccs.size()));
        const Guarded<float> narrow(n, Guarded<float>::flush(n));
        EXPECT_EQ(lyrsFFTFwd_RToCCS_32f(source.data(), wide.data(), spec.get(), buffer.data()), StsNoErr);
        EXPECT_TRUE(sameBits(wide.copy(), ccs));
        EXPECT_EQ(lyrsFFTFwd_RToPack_32f(source.data(), narrow.data(), spec.get(), buffer.data()), StsNoErr);
        EXPECT_TRUE(sameBits(narrow.copy(), pack));
        EXPECT_EQ(lyrsFFTInv_PackToR_32f(source.data(), narrow.data(), spec.get(), buffer.data()), StsNoErr);
        EXPECT_TRUE(sameBits(narrow.copy(), back));
        EXPECT_TRUE(wide.intact() && narrow.intact() && buffer.intact());
    }
}

TEST(RealFft, AllocatesItsBufferOnlyIfNoneIsGiven)
{
    for (const int order : {0, 3, 4, 9, 18}) {
        const Record spec = makeRecord(order);
        const std::vector<float> x = signal(order);
        std::vector<float> y(x.size() + 2);
        const Guarded<Elem8u> buffer(bufferSize(spec));
        const long before = lyr::test::allocationCount();
        lyrsFFTFwd_RToCCS_32f(x.data(), y.data(), spec.get(), buffer.data());
        EXPECT_EQ(lyr::test::allocationCount(), before);
        const std::vector<float> untouched = y;
        for (const Forward call :
             {lyrsFFTFwd_RToCCS_32f, lyrsFFTFwd_RToPack_32f, lyrsFFTFwd_RToPerm_32f, Forward{lyrsFFTInv_PackToR_32f}}) {
            EXPECT_EQ(lyr::test::failEachAllocation([&] { return call(x.data(), y.data(), spec.get(), nullptr); }, {},
                                                    [&] { EXPECT_TRUE(sameBits(y, untouched)); }),
                      order < 4 ? 0 : 1);
            y = untouched;
        }
    }
}

TEST(RealFft, OneRecordServesManyThreads)
{
    for (const int order : {6, 11, 18}) {
        const Record spec = makeRecord(order);
        const std::vector<float> x = signal(order);
        const std::vector<float> expected = ccsOf(x, spec.get());
        std::vector<std::vector<float>> results(4, std::vector<float>(x.size() + 2));
        std::vector<std::thread> threads;
        for (std::vector<float>& y : results) {
            threads.emplace_back([&] {
                for (int i = 0; i < 8; ++i) {
                    lyrsFFTFwd_RToCCS_32f(x.data(), y.data(), spec.get(), nullptr);
                }
            });
        }
        for (std::thread& t : threads) {
            t.join();
        }
        for (const std::vector<float>& y : results) {
            EXPECT_TRUE(sameBits(y, expected));
        }
    }
}

// -------------------------------------------------------------------------------------------------------------- record

std::uint32_t align32(std::uint32_t x)
{
    return (x + 31) / 32 * 32;
}

TEST(FftRecord, SizesUpToOrder17)
{
    for (int order = 0; order <= 17; ++order) {
        SCOPED_TRACE("order " + std::to_string(order));
        const std::uint32_t n = 1U << order;
        const std::uint32_t m = n / 2;
        Sizes expected{112, 0, 0};
        if (order >= 4) {
            const std::uint32_t spec = align32(8 * m + 8) + align32(m + 4) + 2 * align32(2 * n) + 128;
            expected = {static_cast<Elem32s>(spec), order <= 10 ? 0 : static_cast<Elem32s>(align32(n + 4) + 32),
                        static_cast<Elem32s>(align32(8 * m) + 32)};
        }
        const Sizes s = sizesOf(order);
        EXPECT_EQ(s, expected);
        Sizes fixed;
        EXPECT_EQ(lyrsFFTGetSize_R_16s32s(order, unscaled, 0, &fixed.spec, &fixed.init, &fixed.buffer), StsNoErr);
        EXPECT_EQ(fixed,
                  (Sizes{s.spec + 64, s.init == 0 ? 0 : s.init + 32, s.buffer + static_cast<Elem32s>(4 * n) + 8 + 32}));
        EXPECT_EQ(bufferSize(makeRecord(order)), static_cast<std::size_t>(s.buffer));
    }
}

// Above, the sizes are those of the plan: all of them in 31 bits, the singles' at every order.
TEST(FftRecord, SizesAboveOrder17)
{
    for (int order = 18; order <= 30; ++order) {
        SCOPED_TRACE("order " + std::to_string(order));
        const Sizes s = sizesOf(order);
        EXPECT_GT(s.spec, 112);
        EXPECT_EQ(s.init, static_cast<Elem32s>(align32((1U << order) + 4) + 32));
        EXPECT_GT(s.buffer, 32);
        Sizes fixed;
        EXPECT_EQ(lyrsFFTGetSize_R_16s32s(order, unscaled, 0, &fixed.spec, &fixed.init, &fixed.buffer), StsNoErr);
        EXPECT_EQ(fixed.spec, s.spec + 64);
        // Unsigned sums of 32 bits, which wrap: meant so.
        EXPECT_EQ(static_cast<std::uint32_t>(fixed.buffer), static_cast<std::uint32_t>(s.buffer) + (4U << order) + 40U);
    }
}

template <class Spec>
struct Family;
template <>
struct Family<FFTSpec_R_32f>
{
    static constexpr auto sizes = lyrsFFTGetSize_R_32f;
    static constexpr auto init = lyrsFFTInit_R_32f;
    static constexpr auto allocate = lyrsFFTInitAlloc_R_32f;
    static constexpr auto release = lyrsFFTFree_R_32f;
};
template <>
struct Family<FFTSpec_R_16s32s>
{
    static constexpr auto sizes = lyrsFFTGetSize_R_16s32s;
    static constexpr auto init = lyrsFFTInit_R_16s32s;
    static constexpr auto allocate = lyrsFFTInitAlloc_R_16s32s;
    static constexpr auto release = lyrsFFTFree_R_16s32s;
};

template <class Spec>
class FftRecords : public testing::Test
{};
using Specs = testing::Types<FFTSpec_R_32f, FFTSpec_R_16s32s>;
TYPED_TEST_SUITE(FftRecords, Specs);

std::vector<float> resultOf(const FFTSpec_R_32f* spec, int order)
{
    return ccsOf(signal(order), spec);
}

std::vector<float> resultOf(const FFTSpec_R_16s32s* spec, int order)
{
    const std::size_t n = std::size_t{1} << order;
    const auto x = Random(3).vector<Elem16s>(n, -1000, 1000);
    std::vector<Elem32s> y(n + 2);
    EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(x.data(), y.data(), spec, 0, nullptr), StsNoErr);
    return {y.begin(), y.end()};
}

// Exactly the told sizes, from addresses as badly aligned as they may be, and both ends watched.
TYPED_TEST(FftRecords, StaysInsideTheToldMemory)
{
    using F = Family<TypeParam>;
    for (int order = 0; order <= 19; ++order) {
        TypeParam* allocated = nullptr;
        ASSERT_EQ(F::allocate(&allocated, order, unscaled, 0), StsNoErr);
        const std::vector<float> expected = resultOf(allocated, order);
        EXPECT_EQ(F::release(allocated), StsNoErr);
        Sizes s;
        ASSERT_EQ(F::sizes(order, unscaled, 0, &s.spec, &s.init, &s.buffer), StsNoErr);
        for (std::size_t offset = 0; offset < 64; offset += sizeof(void*)) {
            SCOPED_TRACE("order " + std::to_string(order) + ", offset " + std::to_string(offset));
            const Guarded<Elem8u> memory(static_cast<std::size_t>(s.spec), offset);
            const Guarded<Elem8u> init(static_cast<std::size_t>(s.init), offset);
            TypeParam* spec = nullptr;
            ASSERT_EQ(F::init(&spec, order, unscaled, 0, memory.data(), s.init == 0 ? nullptr : init.data()), StsNoErr);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(spec) % 32, 0U);
            EXPECT_TRUE(memory.intact() && init.intact());
            if (offset % 32 == 24 || order < 6) {
                EXPECT_TRUE(sameBits(resultOf(spec, order), expected));
            }
            const long before = lyr::test::liveAllocations();
            EXPECT_EQ(F::release(spec), StsNoErr); // the memory stays the caller's
            EXPECT_EQ(lyr::test::liveAllocations(), before);
            EXPECT_EQ(F::release(spec), StsContext);
            EXPECT_TRUE(memory.intact());
        }
    }
}

TYPED_TEST(FftRecords, EveryAllocationMayFail)
{
    using F = Family<TypeParam>;
    const long before = lyr::test::liveAllocations();
    for (const int order : {0, 4, 10, 11, 18}) {
        TypeParam* const untouched = reinterpret_cast<TypeParam*>(std::uintptr_t{64});
        TypeParam* spec = untouched;
        EXPECT_EQ(lyr::test::failEachAllocation([&] { return F::allocate(&spec, order, unscaled, 0); }, {},
                                                [&] { EXPECT_EQ(spec, untouched); }),
                  order > 10 ? 2 : 1);
        EXPECT_EQ(F::release(spec), StsNoErr);
    }
    EXPECT_EQ(lyr::test::liveAllocations(), before);
}

TYPED_TEST(FftRecords, RefusesOrderPointersAndFlagInThatOrder)
{
    using F = Family<TypeParam>;
    Elem32s a = 5;
    alignas(32) Elem8u memory[4096];
    TypeParam* spec = nullptr;
    for (const int order : {31, -1, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(F::sizes(order, 3, 0, nullptr, nullptr, nullptr), StsFftOrder); // ahead of the pointers: meant so
        EXPECT_EQ(F::allocate(&spec, order, 3, 0), StsFftOrder);
        EXPECT_EQ(F::init(&spec, order, 3, 0, nullptr, nullptr), StsFftOrder);
    }
    for (const int flag : {0, 3, 5, 6, 7, 9, 16, -1, INT32_MIN}) {
        EXPECT_EQ(F::sizes(5, flag, 0, nullptr, &a, &a), StsNullPtr);
        EXPECT_EQ(F::sizes(5, flag, 0, &a, nullptr, &a), StsNullPtr);
        EXPECT_EQ(F::sizes(5, flag, 0, &a, &a, nullptr), StsNullPtr);
        EXPECT_EQ(F::sizes(5, flag, 0, &a, &a, &a), StsFftFlag);
        EXPECT_EQ(a, 5);
        EXPECT_EQ(F::allocate(nullptr, 31, flag, 0), StsNullPtr);
        EXPECT_EQ(F::allocate(&spec, 5, flag, 0), StsFftFlag);
        EXPECT_EQ(F::init(nullptr, 31, flag, 0, memory, memory), StsNullPtr);
        EXPECT_EQ(F::init(&spec, 5, flag, 0, nullptr, memory), StsNullPtr);
        EXPECT_EQ(F::init(&spec, 5, flag, 0, memory, memory), StsFftFlag);
        EXPECT_EQ(spec, nullptr); // what the caller had there stays
        EXPECT_EQ(F::release(reinterpret_cast<TypeParam*>(memory)), StsContext);
    }
    EXPECT_EQ(F::release(nullptr), StsNullPtr);
}

TEST(FftRecord, BufferForTheSineTableFromOrder11)
{
    for (const int order : {10, 11}) {
        const Guarded<Elem8u> memory(static_cast<std::size_t>(sizesOf(order).spec));
        FFTSpec_R_32f* spec = nullptr;
        EXPECT_EQ(lyrsFFTInit_R_32f(&spec, order, 1, 5, memory.data(), nullptr), order == 10 ? StsNoErr : StsNullPtr);
        EXPECT_EQ(spec != nullptr, order == 10);
        // The record is alive all the same, though not handed out: meant so.
        EXPECT_EQ(reinterpret_cast<const FFTSpec_R_32f*>(memory.data())->idCtx, 6U);
    }
}

TEST(FftRecord, FixedFormPassesTheMissingSineBufferOn)
{
    Sizes s;
    ASSERT_EQ(lyrsFFTGetSize_R_16s32s(11, unscaled, 0, &s.spec, &s.init, &s.buffer), StsNoErr);
    const Guarded<Elem8u> memory(static_cast<std::size_t>(s.spec));
    auto* const untouched = reinterpret_cast<FFTSpec_R_16s32s*>(std::uintptr_t{64});
    FFTSpec_R_16s32s* spec = untouched;
    EXPECT_EQ(lyrsFFTInit_R_16s32s(&spec, 11, unscaled, 0, memory.data(), nullptr), StsNullPtr);
    EXPECT_EQ(spec, untouched);
    auto* const outer = reinterpret_cast<FFTSpec_R_16s32s*>(memory.data());
    EXPECT_EQ(outer->idCtx, 0U); // its tag comes last, and no function takes it
    EXPECT_EQ(lyrsFFTFree_R_16s32s(outer), StsContext);
    EXPECT_TRUE(memory.intact());
}

TEST(FftRecord, FieldsInTheirOrder)
{
    static_assert(offsetof(FFTSpec_R_32f, ownsMemory) == 28 && offsetof(FFTSpec_R_32f, pBitRev) == 32);
    for (const int flag : {1, 2, 4, 8}) {
        FFTSpec_R_32f* spec = nullptr;
        ASSERT_EQ(lyrsFFTInitAlloc_R_32f(&spec, 13, flag, 77), StsNoErr);
        std::array<Elem32s, 8> words{};
        std::memcpy(words.data(), spec, sizeof words);
        const float norm = flag == 4 ? static_cast<float>(1.0L / std::sqrt(8192.0L)) : (flag == 8 ? 0.0F : 0x1p-13F);
        EXPECT_EQ(words, (std::array<Elem32s, 8>{6, 13, flag == 1 || flag == 4, flag == 2 || flag == 4,
                                                 std::bit_cast<Elem32s>(norm), 77, 8 * 4096, 1}));
        for (const void* table : {static_cast<const void*>(spec->pBitRev), static_cast<const void*>(spec->pTwd),
                                  static_cast<const void*>(spec->pRealRec), static_cast<const void*>(spec->pCcsRec)}) {
            EXPECT_NE(table, nullptr);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(table) % 32, 0U);
        }
        EXPECT_EQ(lyrsFFTFree_R_32f(spec), StsNoErr);
    }
    FFTSpec_R_16s32s* spec = nullptr;
    ASSERT_EQ(lyrsFFTInitAlloc_R_16s32s(&spec, 6, 2, 77), StsNoErr);
    std::array<Elem32s, 5> words{};
    std::memcpy(words.data(), spec, sizeof words);
    EXPECT_EQ(words, (std::array<Elem32s, 5>{0x434D414F, 6, 77, 8 * 32 + 32 + 4 * 64 + 8, 1}));
    EXPECT_EQ(spec->pSpec->hint, 0);
    EXPECT_EQ(spec->pSpec->ownsMemory, 0);
    EXPECT_EQ(lyrsFFTFree_R_16s32s(spec), StsNoErr);
}

TEST(FftRecord, SmallOrdersHaveNoTables)
{
    for (int order = 0; order < 4; ++order) {
        const Record spec = makeRecord(order);
        EXPECT_EQ(spec->pTwd, nullptr);
        EXPECT_EQ(spec->pBitRev, nullptr);
        EXPECT_EQ(spec->bufSize, 0);
        EXPECT_EQ(bufferSize(spec), 0U);
    }
}

TEST(FftRecord, TagIsCheckedBetweenRecordAndVectors)
{
    const Record spec = makeRecord(5);
    FFTSpec_R_16s32s* made = nullptr;
    ASSERT_EQ(lyrsFFTInitAlloc_R_16s32s(&made, 5, 8, 0), StsNoErr);
    const std::unique_ptr<FFTSpec_R_16s32s, Freed> fixed(made);
    std::array<float, 34> x{};
    std::array<Elem16s, 32> shorts{};
    std::array<Elem32s, 34> longs{};
    Elem32s bytes = 5;
    const auto* const foreign = reinterpret_cast<const FFTSpec_R_32f*>(fixed.get());
    for (const Forward call :
         {lyrsFFTFwd_RToCCS_32f, lyrsFFTFwd_RToPack_32f, lyrsFFTFwd_RToPerm_32f, Forward{lyrsFFTInv_PackToR_32f}}) {
        EXPECT_EQ(call(nullptr, nullptr, nullptr, nullptr), StsNullPtr);
        EXPECT_EQ(call(nullptr, nullptr, foreign, nullptr), StsContext);
        EXPECT_EQ(call(nullptr, x.data(), spec.get(), nullptr), StsNullPtr);
        EXPECT_EQ(call(x.data(), nullptr, spec.get(), nullptr), StsNullPtr);
    }
    EXPECT_EQ(lyrsFFTGetBufSize_R_32f(foreign, &bytes), StsContext);
    EXPECT_EQ(bytes, 5);
    const auto* const other = reinterpret_cast<const FFTSpec_R_16s32s*>(spec.get());
    EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(nullptr, nullptr, nullptr, 0, nullptr), StsNullPtr);
    EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(nullptr, longs.data(), other, 0, nullptr), StsContext);
    EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(nullptr, longs.data(), fixed.get(), 0, nullptr), StsNullPtr);
    EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(shorts.data(), nullptr, fixed.get(), 0, nullptr), StsNullPtr);
}

TEST(FftRecord, ConstantSineTableIsItsFormula)
{
    std::vector<float> computed(257);
    lyr::fft::computeSine(computed.data(), 10);
    for (std::size_t k = 0; k <= 256; ++k) {
        const auto exact = static_cast<float>(std::sin(2.0L * std::numbers::pi_v<long double> * k / 1024));
        EXPECT_EQ(lyr::fft::constantSine()[k], exact) << k;
        EXPECT_EQ(computed[k], exact) << k;
    }
}

// --------------------------------------------------------------------------------------------------------- fixed point

std::vector<Elem32s> fixedOf(const std::vector<Elem16s>& x, int order, int flag, int scaleFactor)
{
    FFTSpec_R_16s32s* spec = nullptr;
    EXPECT_EQ(lyrsFFTInitAlloc_R_16s32s(&spec, order, flag, 0), StsNoErr);
    std::vector<Elem32s> y(order == 0 ? 2 : x.size() + 2, -77);
    EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(x.data(), y.data(), spec, scaleFactor, nullptr), StsNoErr);
    lyrsFFTFree_R_16s32s(spec);
    return y;
}

// The transform of singles between two conversions: nearest, ties to even, saturating.
TEST(FixedFft, RoundsTheSpectrumOfSingles)
{
    for (int order = 0; order <= 13; ++order) {
        for (const int flag : {1, 4, 8}) {
            for (const int scaleFactor : {-20, -3, 0, 1, 5, 12}) {
                SCOPED_TRACE("order " + std::to_string(order) + ", flag " + std::to_string(flag) + ", scale factor " +
                             std::to_string(scaleFactor));
                const auto x = Random(9).vector<Elem16s>(std::size_t{1} << order, -32768, 32767);
                const std::vector<float> ccs = ccsOf({x.begin(), x.end()}, makeRecord(order, flag).get());
                const std::vector<Elem32s> y = fixedOf(x, order, flag, scaleFactor);
                ASSERT_EQ(y.size(), ccs.size());
                for (std::size_t i = 0; i < y.size(); ++i) {
                    const double exact = std::nearbyint(std::ldexp(static_cast<double>(ccs[i]), -scaleFactor));
                    const double limited = std::clamp(exact, -2147483648.0, 2147483647.0);
                    ASSERT_EQ(y[i], static_cast<Elem32s>(limited)) << i;
                }
            }
        }
    }
}

TEST(FixedFft, RoundsTiesToEvenAndSaturates)
{
    EXPECT_EQ(fixedOf({5, 0}, 1, 8, 1), (std::vector<Elem32s>{2, 0, 2, 0}));
    EXPECT_EQ(fixedOf({7, 0}, 1, 8, 1), (std::vector<Elem32s>{4, 0, 4, 0}));
    EXPECT_EQ(fixedOf({-5, 0}, 1, 8, 1), (std::vector<Elem32s>{-2, 0, -2, 0}));
    EXPECT_EQ(fixedOf({32767, -32768}, 1, 8, -16), (std::vector<Elem32s>{-65536, 0, INT32_MAX, 0}));
    EXPECT_EQ(fixedOf({-32768, 32767}, 1, 8, -16), (std::vector<Elem32s>{-65536, 0, INT32_MIN, 0}));
    EXPECT_EQ(fixedOf({9}, 0, 8, 0), (std::vector<Elem32s>{9, 0}));
}

TEST(FixedFft, PlaceAndBuffer)
{
    for (const int order : {0, 1, 3, 4, 7, 10, 12}) {
        SCOPED_TRACE("order " + std::to_string(order));
        const std::size_t n = std::size_t{1} << order;
        FFTSpec_R_16s32s* spec = nullptr;
        ASSERT_EQ(lyrsFFTInitAlloc_R_16s32s(&spec, order, 8, 0), StsNoErr);
        Sizes s;
        ASSERT_EQ(lyrsFFTGetSize_R_16s32s(order, 8, 0, &s.spec, &s.init, &s.buffer), StsNoErr);
        const auto x = Random(9).vector<Elem16s>(n, -32768, 32767);
        const std::vector<Elem32s> expected = fixedOf(x, order, 8, 2);
        for (std::size_t offset = 0; offset < 64; offset += 2) {
            const Guarded<Elem8u> buffer(static_cast<std::size_t>(s.buffer), offset + offset % 3);
            const Guarded<Elem16s> source(x, offset);
            const Guarded<Elem32s> result(expected.size(), offset / 4 * 4);
            EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(source.data(), result.data(), spec, 2, buffer.data()), StsNoErr);
            EXPECT_EQ(result.copy(), expected);
            EXPECT_EQ(source.copy(), x);
            EXPECT_TRUE(result.intact() && buffer.intact() && source.intact());
        }
        // The source in front of its own result.
        const Guarded<Elem32s> both(expected.size(), 0);
        std::memcpy(both.data(), x.data(), n * sizeof(Elem16s));
        std::vector<Elem32s> y(expected.size());
        const int failed = lyr::test::failEachAllocation([&] {
            return lyrsFFTFwd_RToCCS_16s32s_Sfs(reinterpret_cast<const Elem16s*>(both.data()), both.data(), spec, 2,
                                                nullptr);
        });
        EXPECT_EQ(failed, 1);
        EXPECT_EQ(both.copy(), expected);
        EXPECT_EQ(lyrsFFTFree_R_16s32s(spec), StsNoErr);
    }
}

// The transform inside may refuse: its status is the result, and no conversion is done.
TEST(FixedFft, PassesTheStatusOfTheTransformOn)
{
    for (const int order : {0, 3, 5, 11}) {
        FFTSpec_R_16s32s* spec = nullptr;
        ASSERT_EQ(lyrsFFTInitAlloc_R_16s32s(&spec, order, 8, 0), StsNoErr);
        const std::vector<Elem16s> x(std::size_t{1} << order, 5);
        const std::vector<Elem32s> untouched(x.size() + 2, -77);
        std::vector<Elem32s> y = untouched;
        spec->pSpec->idCtx = 0;
        EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(x.data(), y.data(), spec, 0, nullptr), StsContext);
        EXPECT_EQ(y, untouched);
        EXPECT_EQ(lyrsFFTFree_R_16s32s(spec), StsNoErr);
    }
}

// The singles of 2^29 samples take 2 GiB, more than a size in 32 bits can say: refused before anything is read, with or
// without a buffer.
TEST(FixedFft, WorkMemoryOfTheTopOrdersCannotBeHad)
{
    for (const int order : {29, 30}) {
        FFTSpec_R_32f inner{};
        inner.idCtx = lyr::fft::realTag;
        inner.order = order;
        FFTSpec_R_16s32s spec{};
        spec.idCtx = lyr::fft::fixedTag;
        spec.order = order;
        spec.bufSize = 64; // what is left of a sum that wraps
        spec.pSpec = &inner;
        const Guarded<Elem16s> x(std::size_t{1}, Guarded<Elem16s>::flush(1));
        const Guarded<Elem32s> y(std::vector<Elem32s>{-77}, Guarded<Elem32s>::flush(1));
        const Guarded<Elem8u> buffer(64, Guarded<Elem8u>::flush(64));
        const long before = lyr::test::allocationCount();
        for (Elem8u* const given : {static_cast<Elem8u*>(nullptr), buffer.data()}) {
            EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(x.data(), y.data(), &spec, 0, given), StsMemAlloc);
        }
        EXPECT_EQ(lyr::test::allocationCount(), before);
        EXPECT_EQ(y[0], -77);
        EXPECT_TRUE(buffer.intact() && y.intact());
    }
}

} // namespace
