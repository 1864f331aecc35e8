// The bank that is built in integers: its logarithm and exponential, its centres and weights, its evaluation.

#include "frontend/filter_bank.hpp"
#include "frontend/filter_bank_fixed_math.hpp"
#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "frontend/filter_bank_fixture.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace {

using lyr::oracle::IntegerBand;
using lyr::oracle::Product;
using lyr::test::Guarded;
using lyr::test::Random;

constexpr std::int32_t q15(double x)
{
    return static_cast<std::int32_t>(x * 32768.0);
}

// ---------------------------------------------------------------------------------------------------------- arithmetic

// The tables, made again from their definition.
TEST(IntegerBankMath, Tables)
{
    for (int k = 0; k < lyr::q22::stepCount; ++k) {
        const long double s = std::ldexp(1.0L, -(k + 1));
        EXPECT_EQ(lyr::q22::lnOnePlus[k], lyr::oracle::roundToNearest(std::log1p(s) * 2147483648.0L)) << k;
        EXPECT_EQ(lyr::q22::lnOneMinus[k], lyr::oracle::roundToNearest(std::log1p(-s) * 2147483648.0L)) << k;
    }
    EXPECT_EQ(lyr::q22::lnOnePlus[31], 0);
    EXPECT_EQ(lyr::q22::lnOneMinus[31], -1);
    EXPECT_EQ(lyr::q22::ln2Q31, lyr::oracle::roundToNearest(std::log(2.0L) * 2147483648.0L));
    EXPECT_EQ(lyr::q22::log2eQ31, lyr::oracle::roundToNearest(2147483648.0L / std::log(2.0L)));
}

TEST(IntegerBankMath, Logarithm)
{
    Random random(1);
    std::vector<std::int64_t> values{1, 2, 3, 4194303, 4194304, 4194305, std::int64_t{1} << 36, INT64_MAX};
    for (int bit = 1; bit < 63; ++bit) {
        values.push_back((std::int64_t{1} << bit) - 1);
        values.push_back(std::int64_t{1} << bit);
        for (int n = 0; n < 20; ++n) {
            values.push_back(random.uniform<std::int64_t>(1, std::int64_t{1} << bit));
        }
    }
    for (const std::int64_t v : values) {
        EXPECT_EQ(lyr::q22::ln(v), lyr::oracle::lnQ22(v)) << v;
        // The mantissa has 29 bits and each squaring cuts it: the digits are good to some 2^-22.
        EXPECT_NEAR(static_cast<double>(lyr::q22::ln(v)) / 4194304.0, std::log(static_cast<double>(v) / 4194304.0),
                    4.0 / 4194304.0)
            << v;
    }
    EXPECT_EQ(lyr::q22::ln(4194304), 0);
}

TEST(IntegerBankMath, Exponential)
{
    Random random(2);
    for (int n = 0; n < 20000; ++n) {
        const auto q = random.uniform<std::int64_t>(-(std::int64_t{20} << 22), std::int64_t{11} << 22);
        ASSERT_EQ(lyr::q22::exp(q), lyr::oracle::expQ22(q)) << q;
        const double exact = std::exp(static_cast<double>(q) / 4194304.0) * 4194304.0;
        if (exact < 2147483647.0) {
            // 33 truncated steps of 2^-31 each, and the last shift.
            ASSERT_NEAR(static_cast<double>(lyr::q22::exp(q)), exact, 1.0 + exact * 64.0 / 2147483648.0) << q;
        } else {
            ASSERT_EQ(lyr::q22::exp(q), INT32_MAX);
        }
    }
    EXPECT_EQ(lyr::q22::exp(0), 4194304);
    for (const std::int64_t q : {INT64_MAX, INT64_MIN, std::int64_t{1} << 40, -(std::int64_t{1} << 40)}) {
        EXPECT_EQ(lyr::q22::exp(q), lyr::oracle::expQ22(q)) << q;
    }
}

// ---------------------------------------------------------------------------------------------------------------- bank

struct Placed
{
    Placed(int length, int filters, const IntegerBand& band, std::size_t offset)
        : memory(bytes(length, filters), offset), bank(reinterpret_cast<FBankState_32s*>(memory.data())),
          status(
              lyrsMelFBankInit_32s(bank, &order, length, band.fs, band.low, band.high, filters, band.mul, band.div, 2))
    {}

    // Init takes one filter more than GetSize, on purpose; its memory is then told by the size of the next longer bank.
    static std::size_t bytes(int length, int filters)
    {
        Elem32s size = 0;
        if (lyrsMelFBankGetSize_32s(length, filters, 2, &size) != StsNoErr) {
            EXPECT_EQ(lyrsMelFBankGetSize_32s(length * 2, filters, 2, &size), StsNoErr);
        }
        return static_cast<std::size_t>(size);
    }

    Elem32s order = -1;
    Guarded<Elem8u> memory;
    FBankState_32s* bank;
    Status status;
};

void expectIntegerBank(const FBankState_32s& bank, const lyr::oracle::Bank<std::int32_t>& expected)
{
    ASSERT_EQ(bank.nFilter, expected.filters());
    ASSERT_EQ(bank.nBins, expected.bins);
    EXPECT_EQ(bank.flag, 2);
    for (std::size_t i = 0; i < expected.c.size(); ++i) {
        ASSERT_EQ(bank.pCenters[i], expected.c[i]) << "centre " << i;
    }
    for (std::size_t r = 0; r < expected.c.size(); ++r) {
        ASSERT_TRUE(lyr::test::isAligned(bank.pCoefLeft[r], 32));
        ASSERT_TRUE(lyr::test::isAligned(bank.pCoefRight[r], 32));
        const bool isFilter = r + 2 < expected.c.size();
        const std::vector<std::int32_t> none;
        const auto length = static_cast<std::size_t>(bank.nBins);
        lyr::test::expectRow(bank.pCoefLeft[r], isFilter ? expected.left[r + 1] : none, length,
                             "left " + std::to_string(r));
        lyr::test::expectRow(bank.pCoefRight[r], isFilter ? expected.right[r + 1] : none, length,
                             "right " + std::to_string(r));
    }
}

const std::vector<IntegerBand>& bands()
{
    static const std::vector<IntegerBand> all{
        {8000, 64, 4000, q15(2595), q15(700)},    {8000, 0, 4000, q15(2595), q15(700)},
        {16000, 20, 8000, q15(1127), q15(700)},   {48000, 1, 24000, 0x3FFFFFFF, 0xFFFFFFF},
        {11025, 100, 5512, 0x80001, 0x80001},     {48000, 0, 1, q15(2595), q15(700)},
        {8000, 3999, 4000, q15(2595), 0xFFFFFFF}, {8000, 64, 24000, q15(2595), q15(700)}, // beyond half the rate
        {1, 0, 24000, 0x3FFFFFFF, 0xFFFFFFF},     {1, 0, 1, 0x80001, 0x80001},
        {100, 50, 24000, q15(2595), q15(700)},    {7, 3, 9, 0x3FFFFFFF, 0x80001}};
    return all;
}

TEST(IntegerBank, IsItsFormulas)
{
    for (const IntegerBand& band : bands()) {
        for (const int length : {32, 33, 64, 100, 256, 512, 1024}) {
            for (const int filters : {1, 2, 3, 16, 17}) {
                SCOPED_TRACE(::testing::Message() << "rate " << band.fs << " from " << band.low << " to " << band.high
                                                  << " length " << length << " filters " << filters);
                const auto expected = lyr::oracle::integerBank(length, filters, band);
                std::int64_t widest = 0;
                for (std::size_t i = 1; i < expected.c.size(); ++i) {
                    widest = std::max(widest, expected.c[i] - expected.c[i - 1]);
                }
                const Placed placed(length, filters, band, 0);
                ASSERT_EQ(placed.status, StsNoErr);
                ASSERT_TRUE(placed.memory.intact());
                EXPECT_EQ(placed.order, lyr::oracle::orderOf(lyr::oracle::roundedLength(length)));
                expectIntegerBank(*placed.bank, expected);
                EXPECT_EQ(placed.bank->pCenters[filters + 2], placed.bank->pCenters[filters + 1]);
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

// Against the real-valued scale: a centre is the nearest bin, give or take one where it lies near the middle of two.
TEST(IntegerBank, CentersAreThoseOfTheMelScale)
{
    const Placed placed(512, 24, {8000, 64, 4000, q15(2595), q15(700)}, 0);
    const double low = 2595 * std::log(1 + 64.0 / 700);
    const double high = 2595 * std::log(1 + 4000.0 / 700);
    for (int i = 0; i <= 25; ++i) {
        const double bin = 512.0 / 8000 * 700 * (std::exp((low + (high - low) * i / 25) / 2595) - 1);
        EXPECT_NEAR(placed.bank->pCenters[i], bin, 0.51) << i;
    }
}

TEST(IntegerBank, StaysInsideItsMemory)
{
    const IntegerBand band{8000, 0, 4000, q15(2595), q15(700)};
    for (const int length : {32, 64, 8192}) {
        for (const int filters : {1, 5, 15, 16}) {
            const std::size_t size = Placed::bytes(length, filters);
            std::vector<std::size_t> offsets;
            for (std::size_t offset = 0; offset < 64; offset += sizeof(void*)) {
                offsets.push_back(offset);
            }
            offsets.push_back(Guarded<Elem8u>::flush(size) / sizeof(void*) * sizeof(void*));
            for (const std::size_t offset : offsets) {
                const Placed placed(length, filters, band, offset);
                ASSERT_EQ(placed.status, StsNoErr);
                ASSERT_TRUE(placed.memory.intact()) << length << ' ' << filters << ' ' << offset;
                const auto* const end =
                    reinterpret_cast<const Elem8u*>(placed.bank->pCoefRight[filters + 1] + length / 2 + 1);
                ASSERT_LE(end, placed.memory.data() + size);
            }
        }
    }
}

// One filter more in the initialisation than in the size, on purpose.
TEST(IntegerBank, MostFilters)
{
    Elem32s size = -3;
    EXPECT_EQ(lyrsMelFBankGetSize_32s(64, 32, 2, &size), StsNoErr);
    size = -3;
    EXPECT_EQ(lyrsMelFBankGetSize_32s(64, 33, 2, &size), StsSize);
    EXPECT_EQ(lyrsMelFBankGetSize_32s(33, 33, 2, &size), StsSize) << "the rounded length counts";
    EXPECT_EQ(size, -3);
    EXPECT_EQ(lyrsMelFBankGetSize_32s(33, 32, 2, &size), StsNoErr);
    const IntegerBand band{8000, 64, 4000, q15(2595), q15(700)};
    const Placed most(64, 33, band, 0);
    EXPECT_EQ(most.status, StsNoErr);
    expectIntegerBank(*most.bank, lyr::oracle::integerBank(64, 33, band));
    const Placed tooMany(64, 34, band, 0);
    EXPECT_EQ(tooMany.status, StsSize);
}

TEST(IntegerBank, ChecksInOrder)
{
    Elem32s size = 0;
    EXPECT_EQ(lyrsMelFBankGetSize_32s(0, 0, 0, nullptr), StsNullPtr);
    EXPECT_EQ(lyrsMelFBankGetSize_32s(31, 1, 1, &size), StsSize);
    EXPECT_EQ(lyrsMelFBankGetSize_32s(8193, 1, 1, &size), StsSize);
    EXPECT_EQ(lyrsMelFBankGetSize_32s(32, 0, 1, &size), StsSize);
    for (const int flag : {0, 1, 3, 4, 5, 6}) {
        EXPECT_EQ(lyrsMelFBankGetSize_32s(32, 99, flag, &size), StsFBankFlag);
    }
    EXPECT_EQ(lyrsMelFBankGetSize_32s(32, 99, 2, &size), StsSize);

    const Guarded<Elem8u> memory(Placed::bytes(64, 5), 0);
    const auto init = [&memory](int length, int fs, int low, int high, int filters, int mul, int div, int flag) {
        Elem32s order = -3;
        const Status status = lyrsMelFBankInit_32s(reinterpret_cast<FBankState_32s*>(memory.data()), &order, length, fs,
                                                   low, high, filters, mul, div, flag);
        EXPECT_EQ(order == -3, status != StsNoErr);
        return status;
    };
    constexpr int mul = q15(2595);
    constexpr int div = q15(700);
    EXPECT_EQ(init(64, 8000, 64, 4000, 5, mul, div, 2), StsNoErr);
    EXPECT_EQ(init(31, 8000, 64, 4000, 5, mul, div, 1), StsSize);
    EXPECT_EQ(init(8193, 8000, 64, 4000, 5, mul, div, 1), StsSize);
    EXPECT_EQ(init(64, 8000, 64, 0, 5, mul, div, 1), StsSize);
    EXPECT_EQ(init(64, 8000, 64, 4000, 0, mul, div, 1), StsSize);
    EXPECT_EQ(init(64, 0, 64, 4000, 5, mul, div, 6), StsFBankFlag);
    EXPECT_EQ(init(64, 0, 64, 30, 5, mul, div, 2), StsSize);
    EXPECT_EQ(init(64, 48001, 64, 30, 5, mul, div, 2), StsSize);
    EXPECT_EQ(init(64, 8000, -1, 30000, 5, mul, div, 2), StsSize);
    EXPECT_EQ(init(64, 8000, 64, 64, 5, mul, 0, 2), StsFBankFreq);
    EXPECT_EQ(init(64, 8000, 64, 24001, 5, mul, 0, 2), StsFBankFreq);
    EXPECT_EQ(init(64, 8000, 64, 24000, 5, mul, div, 2), StsNoErr);
    EXPECT_EQ(init(64, 8000, 0, 1, 5, mul, div, 2), StsNoErr);
    EXPECT_EQ(init(64, 8000, 64, 4000, 99, mul, 0x80000, 2), StsBadArg);
    EXPECT_EQ(init(64, 8000, 64, 4000, 99, mul, 0x10000000, 2), StsBadArg);
    EXPECT_EQ(init(64, 8000, 64, 4000, 99, 0x80000, div, 2), StsBadArg);
    EXPECT_EQ(init(64, 8000, 64, 4000, 99, 0x40000000, div, 2), StsBadArg);
    EXPECT_EQ(init(64, 8000, 64, 4000, 99, mul, div, 2), StsSize);
    EXPECT_EQ(init(64, 8000, 64, 4000, 5, 0x80001, 0x80001, 2), StsNoErr);
    EXPECT_EQ(init(64, 8000, 64, 4000, 5, 0x3FFFFFFF, 0xFFFFFFF, 2), StsNoErr);
    EXPECT_EQ(lyrsMelFBankInit_32s(nullptr, nullptr, 0, 0, 0, 0, 0, 0, 0, 0), StsNullPtr);
}

// ---------------------------------------------------------------------------------------------------------- evaluation

// What a sum becomes: shifted, saturating upwards only; then 22 fraction bits to the nearest, limited above.
Elem32s finished(std::int64_t sum, int scale)
{
    if (scale < 0) {
        const long double shifted = static_cast<long double>(sum) * std::ldexp(1.0L, -scale);
        sum = shifted >= 9223372036854775808.0L ? INT64_MAX
                                                : static_cast<std::int64_t>(static_cast<std::uint64_t>(sum) << -scale);
    } else {
        sum >>= scale;
    }
    const std::int64_t r = (sum >> 22) + ((sum & (1 << 21)) != 0 ? 1 : 0);
    return r > INT32_MAX ? INT32_MAX : static_cast<Elem32s>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(r)));
}

TEST(IntegerBank, EvaluationIsTheDenseProduct)
{
    Random random(3);
    const auto& all = bands();
    for (std::size_t b = 0; b < all.size(); ++b) {
        for (const int length : {32, 64, 256, 2048}) {
            for (const int filters : {1, 2, 3, 4, 16}) {
                const auto expected = lyr::oracle::integerBank(length, filters, all[b]);
                const Placed placed(length, filters, all[b], 8);
                ASSERT_EQ(placed.status, StsNoErr);
                const auto bins = static_cast<std::size_t>(expected.bins);
                for (const std::int32_t top : {1000, INT32_MAX}) {
                    const auto src = random.vector<Elem32s>(bins, top == INT32_MAX ? INT32_MIN : 0, top);
                    const auto sums = lyr::oracle::sums(expected, src.data(), Product::ShiftedBy8);
                    for (const int scale : {-31, -30, -20, -9, -8, -1, 0, 1, 2, 7, 21, 30, 31}) {
                        const Guarded<Elem32s> x(src, scale < 0 ? Guarded<Elem32s>::flush(bins)
                                                                : std::size_t{4} * static_cast<std::size_t>(scale % 4));
                        const Guarded<Elem32s> dst(sums.size(), Guarded<Elem32s>::flush(sums.size()));
                        ASSERT_EQ(lyrsEvalFBank_32s_Sfs(x.data(), dst.data(), placed.bank, scale), StsNoErr);
                        for (std::size_t i = 0; i < sums.size(); ++i) {
                            ASSERT_EQ(dst[i], finished(sums[i], scale))
                                << "band " << b << " length " << length << " filter " << i + 1 << " scale " << scale;
                        }
                        ASSERT_TRUE(dst.intact());
                    }
                }
            }
        }
    }
}

// At a rate of a hertz the centres wrap: they come out of order, below zero and beyond the spectrum. A sum then has the
// bins that its filter's rows still hold.
TEST(IntegerBank, WrappedCenters)
{
    const Placed placed(512, 5, {1, 0, 4000, q15(2595), q15(700)}, 0);
    ASSERT_EQ(placed.status, StsNoErr);
    const FBankState_32s& bank = *placed.bank;
    const Elem32s top = bank.nBins - 1;
    bool reachesPastItsRow = false;
    for (int i = 1; i <= 5; ++i) {
        const Elem32s lower = bank.pCenters[i - 1];
        reachesPastItsRow = reachesPastItsRow || (lower < 0 && bank.pCenters[i] > lower + top);
    }
    EXPECT_TRUE(reachesPastItsRow) << "no filter that shows it";
    const auto bins = static_cast<std::size_t>(bank.nBins);
    const Guarded<Elem32s> x(Random(4).vector<Elem32s>(bins, 0, INT32_MAX), Guarded<Elem32s>::flush(bins));
    const auto sums = lyr::test::literalSums(bank, top, x.data(), 8);
    for (const int scale : {-8, 0, 3, 9}) {
        const Guarded<Elem32s> dst(sums.size(), Guarded<Elem32s>::flush(sums.size()));
        ASSERT_EQ(lyrsEvalFBank_32s_Sfs(x.data(), dst.data(), &bank, scale), StsNoErr);
        for (std::size_t i = 0; i < sums.size(); ++i) {
            EXPECT_EQ(dst[i], finished(sums[i], scale)) << "filter " << i + 1 << " scale " << scale;
        }
    }
}

// There is a limit above and none below, as magnitudes come in: the low 32 bits go out.
TEST(IntegerBank, LimitsOfAnEvaluation)
{
    Elem32s center[] = {0, 0, 0, 0};
    Elem32s row[17] = {1 << 30};
    Elem32s* rows[] = {row, row, row};
    Elem32s zero[17] = {};
    Elem32s* zeros[] = {zero, zero, zero};
    FBankState_32s bank{center, rows, zeros, 2, 1, 17};
    Elem32s src[17] = {};
    Elem32s dst = 0;
    const auto eval = [&](Elem32s x, Elem32s scale) {
        src[0] = x;
        EXPECT_EQ(lyrsEvalFBank_32s_Sfs(src, &dst, &bank, scale), StsNoErr);
        return dst;
    };
    EXPECT_EQ(eval(5, 0), 5);
    EXPECT_EQ(eval(5, 1), 3) << "2.5 rounds up";
    EXPECT_EQ(eval(-5, 1), -2) << "-2.5 rounds up";
    EXPECT_EQ(eval(-5, 0), -5);
    EXPECT_EQ(eval(INT32_MAX, 0), INT32_MAX);
    EXPECT_EQ(eval(INT32_MAX, -1), INT32_MAX);
    EXPECT_EQ(eval(1 << 30, -1), INT32_MAX);
    EXPECT_EQ(eval(1 << 30, -31), INT32_MAX);
    EXPECT_EQ(eval(1 << 30, -11), INT32_MAX) << "a sum of 2^52 just reaches 2^(63 - 11)";
    EXPECT_EQ(eval((1 << 30) - 1, -11), INT32_MAX);
    EXPECT_EQ(eval(INT32_MIN, -1), 0) << "wraps";
    EXPECT_EQ(eval(INT32_MIN + 3, -1), 6) << "wraps";
    EXPECT_EQ(eval(7, 31), 0);
    EXPECT_EQ(eval(-7, 31), 0);
    EXPECT_EQ(lyrsEvalFBank_32s_Sfs(src, &dst, &bank, 32), StsBadArg);
    EXPECT_EQ(lyrsEvalFBank_32s_Sfs(src, &dst, &bank, -32), StsBadArg);
    EXPECT_EQ(lyrsEvalFBank_32s_Sfs(nullptr, &dst, &bank, 32), StsNullPtr);
    EXPECT_EQ(lyrsEvalFBank_32s_Sfs(src, nullptr, &bank, 32), StsNullPtr);
    EXPECT_EQ(lyrsEvalFBank_32s_Sfs(src, &dst, nullptr, 32), StsNullPtr);
    dst = 77;
    bank.nFilter = 0;
    EXPECT_EQ(lyrsEvalFBank_32s_Sfs(src, &dst, &bank, 0), StsNoErr);
    EXPECT_EQ(dst, 77) << "no filter, no output";
}

// Each product loses its last 8 bits before it is added: many small ones show it.
TEST(IntegerBank, ProductsAreShiftedOneByOne)
{
    Elem32s center[] = {0, 15, 15, 15};
    Elem32s row[17];
    std::fill_n(row, 17, 255);
    Elem32s* rows[] = {row, row, row};
    Elem32s zero[17] = {};
    Elem32s* zeros[] = {zero, zero, zero};
    const FBankState_32s bank{center, rows, zeros, 2, 1, 17};
    std::vector<Elem32s> src(17, -1);
    Elem32s dst = 0;
    ASSERT_EQ(lyrsEvalFBank_32s_Sfs(src.data(), &dst, &bank, -22), StsNoErr);
    EXPECT_EQ(dst, -16) << "16 products of -255, each -1 after the shift";
    std::fill(src.begin(), src.end(), 1);
    ASSERT_EQ(lyrsEvalFBank_32s_Sfs(src.data(), &dst, &bank, -22), StsNoErr);
    EXPECT_EQ(dst, 0);
}

} // namespace
