// Long real transforms, and the levels of even and odd elements that only the longest take.

#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <vector>

#include "fft/fft_fixture.hpp"
#include "fft/fft_kernels.hpp"
#include "fft/fft_plan.hpp"
#include "fft/fft_tables.hpp"
#include "frame/memory.hpp"
#include "oracle/fft.hpp"
#include "support/guarded.hpp"

namespace lyr::test {
namespace {

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
            worst = std::max(worst, std::abs(actual - oracle::phasor(-1, k * place, n)));
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
        : plan{lanes, order - 1, 7, 8, 2},
          memory(alignUp(sizeof(FFTSpec_R_32f), fft::cacheLine) + static_cast<std::size_t>(fft::tableBytes(plan))),
          work(2 * plan.rows() * (plan.cols() + static_cast<std::size_t>(lanes)),
               Guarded<float>::flush(2 * plan.rows() * (plan.cols() + static_cast<std::size_t>(lanes)))),
          spec(*new (memory.data()) FFTSpec_R_32f{})
    {
        std::vector<float> sine(n / 4 + 1);
        fft::computeSine(sine.data(), order);
        spec.order = order;
        fft::buildTables(spec, plan, sine.data(), order);
        EXPECT_TRUE(memory.intact());
    }

    void forward(const float* src, float* dst, fft::Layout layout) const
    {
        fft::kernels.forward(spec, plan, src, dst, work.data(), layout);
        EXPECT_TRUE(work.intact());
    }
    void inverse(const float* src, float* dst) const
    {
        fft::kernels.inverse(spec, plan, src, dst, work.data());
        EXPECT_TRUE(work.intact());
    }

private:
    fft::Plan plan;
    Guarded<Elem8u> memory;
    Guarded<float> work;
    FFTSpec_R_32f& spec;
};

TEST(RealFft, LevelsOfEvenAndOddElements)
{
    constexpr std::size_t n = SplitPlan::n;
    constexpr int order = SplitPlan::order;
    const std::vector<float> x = signal(order);
    const std::vector<double> spectrum = oracle::ccs(oracle::transform(complexOf(x), -1));
    std::vector<double> back;
    for (const std::complex<double>& z : oracle::transform(oracle::spectrumOfPack(x), +1)) {
        back.push_back(z.real());
    }
    for (int lanes = 4; lanes <= fft::kernels.lanes; lanes *= 2) {
        SCOPED_TRACE(std::to_string(lanes) + " lanes");
        const SplitPlan split(lanes);
        const Guarded<float> source(x, 0);
        const Guarded<float> ccs(n + 2, 4);
        split.forward(source.data(), ccs.data(), fft::Layout::Ccs);
        EXPECT_LE(relativeError(ccs.copy(), spectrum), errorBound(order));
        EXPECT_TRUE(sameBits(source.copy(), x));
        const Guarded<float> result(n, 8);
        split.forward(source.data(), result.data(), fft::Layout::Pack);
        EXPECT_TRUE(sameBits(result.copy(), oracle::packFromCcs(ccs.copy())));
        split.forward(source.data(), result.data(), fft::Layout::Perm);
        EXPECT_TRUE(sameBits(result.copy(), oracle::permFromCcs(ccs.copy())));
        const Guarded<float> both(x, 0);
        split.forward(both.data(), both.data(), fft::Layout::Perm);
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

} // namespace
} // namespace lyr::test
