// The transform of 16-bit samples.

#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "fft/fft_fixture.hpp"
#include "fft/fft_spec.hpp"
#include "support/allocation.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace lyr::test {
namespace {

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
        const int failed = failEachAllocation([&] {
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
        inner.idCtx = fft::realTag;
        inner.order = order;
        FFTSpec_R_16s32s spec{};
        spec.idCtx = fft::fixedTag;
        spec.order = order;
        spec.bufSize = 64; // what is left of a sum that wraps
        spec.pSpec = &inner;
        const Guarded<Elem16s> x(std::size_t{1}, Guarded<Elem16s>::flush(1));
        const Guarded<Elem32s> y(std::vector<Elem32s>{-77}, Guarded<Elem32s>::flush(1));
        const Guarded<Elem8u> buffer(64, Guarded<Elem8u>::flush(64));
        const long before = allocationCount();
        for (Elem8u* const given : {static_cast<Elem8u*>(nullptr), buffer.data()}) {
            EXPECT_EQ(lyrsFFTFwd_RToCCS_16s32s_Sfs(x.data(), y.data(), &spec, 0, given), StsMemAlloc);
        }
        EXPECT_EQ(allocationCount(), before);
        EXPECT_EQ(y[0], -77);
        EXPECT_TRUE(buffer.intact() && y.intact());
    }
}

} // namespace
} // namespace lyr::test
