// The records of the transform: sizes, initialization, fields and tables.

#include "lyrsr.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <numbers>
#include <string>
#include <vector>

#include "fft/fft_fixture.hpp"
#include "fft/fft_spec.hpp"
#include "fft/fft_tables.hpp"
#include "support/allocation.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace lyr::test {
namespace {

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
            const long before = liveAllocations();
            EXPECT_EQ(F::release(spec), StsNoErr); // the memory stays the caller's
            EXPECT_EQ(liveAllocations(), before);
            EXPECT_EQ(F::release(spec), StsContext);
            EXPECT_TRUE(memory.intact());
        }
    }
}

TYPED_TEST(FftRecords, EveryAllocationMayFail)
{
    using F = Family<TypeParam>;
    const long before = liveAllocations();
    for (const int order : {0, 4, 10, 11, 18}) {
        TypeParam* const untouched = reinterpret_cast<TypeParam*>(std::uintptr_t{64});
        TypeParam* spec = untouched;
        EXPECT_EQ(failEachAllocation([&] { return F::allocate(&spec, order, unscaled, 0); }, {},
                                     [&] { EXPECT_EQ(spec, untouched); }),
                  order > 10 ? 2 : 1);
        EXPECT_EQ(F::release(spec), StsNoErr);
    }
    EXPECT_EQ(liveAllocations(), before);
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
    fft::computeSine(computed.data(), 10);
    for (std::size_t k = 0; k <= 256; ++k) {
        const auto exact = static_cast<float>(std::sin(2.0L * std::numbers::pi_v<long double> * k / 1024));
        EXPECT_EQ(fft::constantSine()[k], exact) << k;
        EXPECT_EQ(computed[k], exact) << k;
    }
}

} // namespace
} // namespace lyr::test
