// The suite notices what it is there for: small functions with one fault each, and without.

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <gtest/gtest.h>
#include <new>

#include "contract/contract.hpp"

namespace lyr::contract {
namespace {

enum class Plant
{
    none,
    swappedChecks,
    noStepCheck,
    noNullCheck,
    noSizeCheck,
    boundTooHigh,
    wrongStatus,
    writesBeforeChecks,
    writesAhead,
    writesPastEnd,
    writesGap,
    writesSource,
    writesNothing,
    leavesRounding,
    restoresNearest,
    allocates,
    leaks,
    forgetsFailure,
    changesTable,
    ignoresTag,
    ignoresNullRow,
    ignoresData
};

// The sanitizers must not be the first to notice: the functions go without, and what leaks stays in reach.
auto& leaked = *new std::vector<void*>;

template <Plant plant>
void release(void* p)
{
    if (plant == Plant::leaks) {
        leaked.push_back(p);
    } else {
        lyrsFree(p);
    }
}

void expectClean(const Row& row)
{
    EXPECT_EQ(examine(row).findings, std::vector<std::string>{});
}

void expectFinding(const Row& row, const std::string& expected)
{
    const std::vector<std::string> findings = examine(row).findings;
    EXPECT_TRUE(std::any_of(findings.begin(), findings.end(), [&](auto& f) { return f.find(expected) == 0; }))
        << "not found: " << expected << "\nbut: " << ::testing::PrintToString(findings);
}

// ----------------------------------------------------------------------------------------------------- rows of a block

// Doubles `height` rows of `width` elements. Checks stride, pointers, sizes.
template <Plant plant>
__attribute__((no_sanitize("undefined"))) Status doubleRows(const Elem32f* pSrc, Elem32s step, Elem32f* pDst,
                                                            Elem32s width, Elem32s height)
{
    const bool badStep = plant != Plant::noStepCheck && width > step;
    const bool badPointer = plant != Plant::noNullCheck && (pSrc == nullptr || pDst == nullptr);
    const bool badSize = plant != Plant::noSizeCheck && (width < (plant == Plant::boundTooHigh ? 2 : 1) || height < 1);
    if (plant == Plant::writesBeforeChecks && pDst != nullptr) {
        pDst[0] = 0.0F;
    }
    if (plant == Plant::leavesRounding) {
        std::fesetround(FE_TOWARDZERO);
    }
    if (plant == Plant::restoresNearest) {
        std::fesetround(FE_TONEAREST);
    }
    if (plant == Plant::swappedChecks && badPointer) {
        return StsNullPtr;
    }
    if (badStep) {
        return StsStep;
    }
    if (badPointer) {
        return StsNullPtr;
    }
    if (badSize) {
        return plant == Plant::wrongStatus ? StsBadArg : StsSize;
    }
    if (plant == Plant::writesNothing) {
        return StsNoErr;
    }
    for (Elem32s r = 0; r < height; ++r) {
        for (Elem32s i = 0; i < width; ++i) {
            pDst[r * step + i] = pSrc[r * step + i] * 2.0F;
        }
    }
    if (plant == Plant::writesAhead) {
        pDst[-1] = 0.0F;
    }
    if (plant == Plant::writesPastEnd) {
        pDst[height * step] = 0.0F;
    }
    if (plant == Plant::writesGap) {
        pDst[width] = 0.0F;
    }
    if (plant == Plant::writesSource) {
        const_cast<Elem32f*>(pSrc)[0] = 0.0F;
    }
    if (plant == Plant::allocates || plant == Plant::leaks) {
        Elem8u* const work = lyrsMalloc_8u(16);
        release<plant>(work);
    }
    return StsNoErr;
}

// 3 rows of 5 in a block of stride 7: its 84 bytes leave room behind them where they are aligned.
template <Plant plant>
Row blockRow()
{
    return row("doubleRows", doubleRows<plant>, order(StsStep, StsNullPtr, StsSize), in<Elem32f>(3 * 7), stride(7, 5),
               out<Elem32f>(3 * 7).spaced(7, 5), size(5), size(3));
}

TEST(PlantedFaults, InChecks)
{
    expectClean(blockRow<Plant::none>());
    expectFinding(blockRow<Plant::swappedChecks>(),
                  "argument 2 is -2147483648, argument 1 is null: returns -8, not -37");
    expectFinding(blockRow<Plant::noStepCheck>(), "argument 2 is 4: returns 0, not -37");
    expectFinding(blockRow<Plant::noNullCheck>(), "argument 1 is null: touches memory that is not there");
    expectFinding(blockRow<Plant::noSizeCheck>(), "argument 4 is 0: returns 0, not -6");
    expectFinding(blockRow<Plant::boundTooHigh>(), "argument 4 is 1: returns -6, not 0");
    expectFinding(blockRow<Plant::wrongStatus>(), "argument 5 is -1: returns -5, not -6");
}

TEST(PlantedFaults, InWhatIsWritten)
{
    expectFinding(blockRow<Plant::writesBeforeChecks>(), "argument 1 is null: writes byte 0 of argument 3");
    expectFinding(blockRow<Plant::writesAhead>(), "valid call: writes byte -4 of argument 3");
    expectFinding(blockRow<Plant::writesPastEnd>(), "valid call: writes byte 84 of argument 3");
    expectFinding(blockRow<Plant::writesPastEnd>(), "valid call: touches memory that is not there");
    expectFinding(blockRow<Plant::writesGap>(), "valid call: writes byte 20 of argument 3");
    expectFinding(blockRow<Plant::writesSource>(), "valid call: writes byte 0 of argument 1");
    expectFinding(blockRow<Plant::writesNothing>(), "valid call: does not write argument 3");
}

TEST(PlantedFaults, InTheEnvironment)
{
    expectFinding(blockRow<Plant::leavesRounding>(), "valid call: leaves another floating-point control word");
    expectFinding(blockRow<Plant::restoresNearest>(), "argument 1 is null: leaves another floating-point control word");
    expectFinding(blockRow<Plant::allocates>(), "valid call: makes 1 allocations, not 0");
    expectFinding(blockRow<Plant::leaks>(), "valid call: leaks");
}

// ---------------------------------------------------------------------------------------------- a status in two places

template <Plant plant>
Status gather(const Elem32f* pSrc, Elem32s srcLen, Elem32s srcStep, Elem32f* pDst, const Elem32s* pIndex, Elem32s len)
{
    if (pSrc == nullptr || pDst == nullptr || pIndex == nullptr) {
        return StsNullPtr;
    }
    if (srcLen < 1 || (plant == Plant::swappedChecks && len < 1)) {
        return StsSize;
    }
    if (srcLen > srcStep) {
        return StsStep;
    }
    if (len < 1) {
        return StsSize;
    }
    for (Elem32s i = 0; i < len; ++i) {
        if (plant != Plant::ignoresData && (pIndex[i] < 0 || pIndex[i] >= srcLen)) {
            return StsSize;
        }
        pDst[i] = pSrc[pIndex[i]];
    }
    return StsNoErr;
}

template <Plant plant>
Row gatherRow()
{
    return row("gather", gather<plant>, order(StsNullPtr, StsSize, StsStep, StsSize, StsSize), in<Elem32f>(8),
               size(6).legal({8}).rank(1), stride(8, 6), out<Elem32f>(3),
               in<Elem32s>(3)
                   .holding({0, 5, 2})
                   .spoilt(
                       "has a bad index", [](Elem32s* p) { p[1] = 6; }, StsSize)
                   .rank(4)
                   .mayWrite(),
               size(3).rank(3));
}

TEST(PlantedFaults, WhereAStatusHasTwoPlaces)
{
    expectClean(gatherRow<Plant::none>());
    expectFinding(gatherRow<Plant::swappedChecks>(), "argument 3 is -2147483648, argument 6 is 0: returns -6, not -37");
    expectFinding(gatherRow<Plant::ignoresData>(), "argument 5 has a bad index: returns 0, not -6");
    expectFinding(row("gather", gather<Plant::none>, order(StsNullPtr, StsSize, StsStep, StsSize), in<Elem32f>(8),
                      size(8), stride(8, 8), out<Elem32f>(1), in<Elem32s>(1).holding({0}), size(1)),
                  "argument 2 is 0: has no certain place in the order of the checks");
}

// -------------------------------------------------------------------------------------------------- records and tables

struct Tally
{
    Elem32s tag;
    Elem32s sum;
    Elem8u* work;
};
constexpr Elem32s tallyTag = 7;

template <Plant plant>
Status tallyInitAlloc(Tally** ppTally, Elem32s len)
{
    if (ppTally == nullptr) {
        return StsNullPtr;
    }
    if (len < 2) {
        return StsSize;
    }
    auto* const tally = reinterpret_cast<Tally*>(lyrsMalloc_8u(sizeof(Tally)));
    if (tally == nullptr) {
        return StsMemAlloc;
    }
    *tally = {tallyTag, 0, lyrsMalloc_8u(len)};
    if (tally->work == nullptr && plant != Plant::forgetsFailure) {
        release<plant>(tally);
        return StsMemAlloc;
    }
    *ppTally = tally;
    return StsNoErr;
}

template <Plant plant>
Status tallyFree(Tally* pTally)
{
    if (pTally == nullptr) {
        return StsNullPtr;
    }
    if (plant != Plant::ignoresTag && pTally->tag != tallyTag) {
        return StsContext;
    }
    release<plant>(pTally->work);
    lyrsFree(pTally);
    return StsNoErr;
}

// Adds what is in the table. Checks pointers, the rows' pointers, tag, sizes and the scale, which is 0 or 1.
template <Plant plant>
__attribute__((no_sanitize("undefined"))) Status tallyAdd(Tally* pTally, const Elem32s* const* mPtr, Elem32s height,
                                                          Elem32s scale, Elem32s* pCount)
{
    if (pTally == nullptr || mPtr == nullptr) {
        return StsNullPtr;
    }
    if (plant == Plant::changesTable) {
        const_cast<const Elem32s**>(mPtr)[0] = nullptr;
        return StsNoErr;
    }
    for (Elem32s r = 0; r < height; ++r) {
        if (mPtr[r] == nullptr && plant != Plant::ignoresNullRow) {
            return StsNullPtr;
        }
    }
    pTally->sum += plant == Plant::writesBeforeChecks ? 1 : 0;
    if (pTally->tag != tallyTag) {
        return StsContext;
    }
    if (height < 1) {
        return StsSize;
    }
    if (scale < 0 || scale > 1) {
        return StsBadArg;
    }
    for (Elem32s r = 0; r < height; ++r) {
        pTally->sum += mPtr[r][0] << scale;
    }
    if (pCount != nullptr) {
        *pCount = height;
    }
    return StsNoErr;
}

Tally* makeTally()
{
    Tally* tally = nullptr;
    tallyInitAlloc<Plant::none>(&tally, 4);
    return tally;
}

auto tally()
{
    return record(makeTally, tallyFree<Plant::none>, sizeof(Tally))
        .spoilt(
            "has a foreign tag", [](Tally* t) { t->tag = 8; }, StsContext);
}

template <Plant plant>
Row initRow()
{
    return row("tallyInitAlloc", tallyInitAlloc<plant>, order(StsNullPtr, StsSize),
               receives<Tally>(tallyFree<Plant::none>), size(4).atLeast(2))
        .allocates(2);
}

template <Plant plant>
Row freeRow()
{
    return row("tallyFree", tallyFree<plant>, order(StsNullPtr, StsContext), tally().consumed());
}

template <Plant plant>
Row addRow()
{
    return row("tallyAdd", tallyAdd<plant>, order(StsNullPtr, StsContext, StsSize, StsBadArg), tally(),
               table<Elem32s>(3, 5).scanned(), size(3), value(0).bad({-1, 2}, StsBadArg).legal({1}),
               out<Elem32s>(1).nullable());
}

TEST(PlantedFaults, InAllocations)
{
    expectClean(initRow<Plant::none>());
    EXPECT_EQ(examine(initRow<Plant::none>()).allocationsFailed, 2);
    expectFinding(initRow<Plant::leaks>(), "valid call: with a failed allocation: ");
    expectFinding(initRow<Plant::forgetsFailure>(), "valid call: with a failed allocation: ");
}

TEST(PlantedFaults, WithRecords)
{
    expectClean(freeRow<Plant::none>());
    expectFinding(freeRow<Plant::leaks>(), "valid call: leaks");
    expectFinding(freeRow<Plant::ignoresTag>(), "argument 1 has a foreign tag: returns 0, not -17");
    expectFinding(addRow<Plant::writesBeforeChecks>(), "argument 3 is 0: writes byte 4 of argument 1");
}

TEST(PlantedFaults, WithTables)
{
    expectClean(addRow<Plant::none>());
    expectFinding(addRow<Plant::ignoresNullRow>(), "argument 2 has a null row: touches memory that is not there");
    expectFinding(addRow<Plant::changesTable>(), "valid call: writes byte 0 of argument 2");
}

// Builds a record in memory of the caller, whose work memory may be absent; its scale is neither 0 nor NaN.
Status tallyInit(Tally** ppTally, Elem8u* pMem, Elem32f* const* mPtr, const Elem32fc* pSrc, Elem32s len, Elem64f scale,
                 Elem8u* pWork)
{
    if (ppTally == nullptr || pMem == nullptr || mPtr == nullptr || pSrc == nullptr) {
        return StsNullPtr;
    }
    if (len < 1 || len > 8) {
        return StsLenRange;
    }
    if (scale == 0.0 || std::isnan(scale)) {
        return StsDivByZero;
    }
    mPtr[1][0] = pSrc[0].re;
    *ppTally = new (pMem) Tally{tallyTag, len, pWork};
    return StsNoErr;
}

TEST(PlantedFaults, NotSeenWhereThereAreNone)
{
    const auto checks = order(StsNullPtr, StsLenRange, StsDivByZero);
    const auto mem = place<Elem8u>(sizeof(Tally));
    const auto len = value(3).atLeast(1, StsLenRange).atMost(8, StsLenRange).legal({1, 8});
    const auto scale = value(2.0).bad({0.0, -0.0, std::nan("")}, StsDivByZero);
    expectClean(row("tallyInit", tallyInit, checks, receives<Tally>(), mem, table<Elem32f>(2, 3), in<Elem32fc>(1), len,
                    scale, inOut<Elem8u>(5).nullable()));
    expectClean(row("tallyInit", tallyInit, checks, receives<Tally>(), mem, table<Elem32f>(2, 3), in<Elem32fc>(1), len,
                    scale, value<Elem8u*>(nullptr)));
}

// A row is held against the declaration when it is compiled.
static_assert(decltype(in<Elem32f>(1))::fits<const Elem32f*> && !decltype(in<Elem32f>(1))::fits<Elem32f*>);
static_assert(decltype(out<Elem32f>(1))::fits<Elem32f*> && !decltype(out<Elem32f>(1))::fits<const Elem32f*>);
static_assert(decltype(value(0.5F))::fits<Elem32f> && !decltype(value(0.5F))::fits<Elem64f>);
static_assert(Table<Elem32f>::fits<const Elem32f* const*> && Table<Elem32f>::fits<Elem32f* const*>);
static_assert(!Table<Elem32f>::fits<const Elem64f* const*> && !Table<Elem32f>::fits<const Elem32f*>);

} // namespace
} // namespace lyr::contract
