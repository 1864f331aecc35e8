// Filter banks: scales, sizes, constructions, evaluation, accessors.

#include "contract/contract.hpp"
#include "frontend/filter_bank.hpp"

namespace lyr::contract {
namespace {

constexpr Elem32s lowest = INT32_MIN;
constexpr Elem32s highest = INT32_MAX;

constexpr Elem32s points = 64;
constexpr Elem32s filters = 4;
constexpr Elem32s edges[] = {0, 6, 12, 18, 24, 30};
constexpr std::size_t coefficients = 13; // of each filter between such edges

// Banks that hold no transform and that are filled by hand: a record is made for every call.
FBankState_32f* filled32f()
{
    FBankState_32f* bank = nullptr;
    Elem32s order = 0;
    lyrsEmptyFBankInitAlloc_32f(&bank, &order, points, filters, 0);
    lyrsFBankSetCenters_32f(bank, edges);
    return bank;
}

FBankState_16s* filled16s()
{
    FBankState_16s* bank = nullptr;
    Elem32s order = 0;
    lyrsEmptyFBankInitAlloc_16s(&bank, &order, points, filters, 0);
    lyrsFBankSetCenters_16s(bank, edges);
    return bank;
}

FBankState_32s* built32s()
{
    Elem32s size = 0;
    Elem32s order = 0;
    lyrsMelFBankGetSize_32s(points, filters, FBankBinShape, &size);
    auto* const bank = reinterpret_cast<FBankState_32s*>(lyrsMalloc_8u(size));
    lyrsMelFBankInit_32s(bank, &order, points, 8000, 64, 4000, filters, 2595 << 15, 700 << 15, FBankBinShape);
    return bank;
}

auto bank32f()
{
    return record(filled32f, lyrsFBankFree_32f, sizeof(FBankState_32f));
}
auto bank16s()
{
    return record(filled16s, lyrsFBankFree_16s, sizeof(FBankState_16s));
}
auto bank32s()
{
    return record(
        built32s, [](FBankState_32s* bank) { lyrsFree(bank); }, sizeof(FBankState_32s));
}

template <class State>
auto unready(Record<State> bank)
{
    return bank.spoilt(
        "is not ready", [](State* state) { state->ready = 0; }, StsFBankNotReady);
}

template <class State>
auto outOfOrder(Record<State> bank)
{
    return unready(std::move(bank))
        .spoilt(
            "has a centre out of order", [](State* state) { state->pCenters[2] = 1; }, StsFBankNotReady);
}

auto centers()
{
    return in<Elem32s>(filters + 2)
        .holding({0, 6, 12, 18, 24, 30})
        .spoilt(
            "begin below zero", [](Elem32s* c) { c[0] = -1; }, StsFBankNotReady)
        .spoilt(
            "are out of order", [](Elem32s* c) { c[2] = 19; }, StsFBankNotReady)
        .spoilt(
            "end beyond the spectrum", [](Elem32s* c) { c[filters + 1] = points / 2 + 1; }, StsFBankNotReady);
}

template <class Size, class... Arguments>
std::size_t told(Size size, Arguments... arguments)
{
    Elem32s bytes = 0;
    size(arguments..., &bytes);
    return static_cast<std::size_t>(bytes);
}

// ----------------------------------------------------------------------------------------------------------- arguments

auto length()
{
    return size(points).atMost(1 << 30);
}
auto integerLength()
{
    return size(points).atLeast(32).rank(1).atMost(8192).rank(1);
}
auto filterCount()
{
    return size(filters);
}
auto option()
{
    return value(Elem32s{FBankMelShape})
        .bad({0, 3, FBankFromFrames, 7, 8, 9, -1, lowest}, StsFBankFlag)
        .legal({FBankBinShape, FBankMelShape, FBankMelShape});
}
auto rate()
{
    return value(8000.0F).bad({0.0F, -0.0F, -1.0F}, StsSize).legal({16000.0F});
}
auto lowFrequency()
{
    return value(64.0F).bad({0.0F, -1.0F}, StsSize).legal({1e-3F, 500.0F});
}
auto highFrequency()
{
    return value(4000.0F).bad({63.0F, 4000.5F}, StsFBankFreq).legal({3999.0F});
}
auto parameter()
{
    return value(700.0F);
}
auto scaleParameter()
{
    return value(700.0F).bad({0.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()}, StsSize);
}
auto scaleFactor()
{
    return value(Elem32s{1}).legal({lowest, -20, 0, 31, highest});
}
auto filterNumber(Elem32s most)
{
    return value(Elem32s{2}).bad({0, -1, lowest, most + 1, highest}, StsSize).legal({1});
}

const auto byDefault = order(StsNullPtr, StsSize);
const auto ofConstruction = order(StsNullPtr, StsSize, StsFBankFreq, StsFBankFlag);
const auto ofCoefficients = order(StsNullPtr, StsFBankNotReady, StsSize);
const auto ofEvaluation = order(StsNullPtr, StsFBankNotReady);

// ---------------------------------------------------------------------------------------------------------------- rows

const bool scaleRows = addRows({
    row("lyrsMelToLinear_32f", lyrsMelToLinear_32f, byDefault, in<Elem32f>(6), out<Elem32f>(6), size(6),
        scaleParameter(), scaleParameter()),
    row("lyrsLinearToMel_32f", lyrsLinearToMel_32f, byDefault, in<Elem32f>(6), out<Elem32f>(6), size(6),
        scaleParameter(), scaleParameter()),
    row("lyrsCopyWithPadding_32f", lyrsCopyWithPadding_32f, byDefault, in<Elem32f>(6), size(6).atMost(9),
        out<Elem32f>(9), size(9).legal({6}).bad({5}, StsSize)),
    row("lyrsCopyWithPadding_16s", lyrsCopyWithPadding_16s, byDefault, in<Elem16s>(6), size(6).atMost(9),
        out<Elem16s>(9), size(9).legal({6}).bad({5}, StsSize)),
});

const bool sizeRows = addRows({
    row("lyrsMelFBankGetSize_32f", lyrsMelFBankGetSize_32f, order(StsNullPtr, StsSize, StsFBankFlag), length(),
        filterCount(), option(), out<Elem32s>(1)),
    row("lyrsMelFBankGetSize_16s", lyrsMelFBankGetSize_16s, order(StsNullPtr, StsSize, StsFBankFlag), length(),
        filterCount(), option(), out<Elem32s>(1)),
    row("lyrsMelFBankGetSize_32s", lyrsMelFBankGetSize_32s, order(StsNullPtr, StsSize, StsFBankFlag, StsSize),
        integerLength(), size(filters).rank(1).bad({points / 2 + 1}, StsSize).rank(3),
        value(Elem32s{FBankBinShape}).bad({0, 1, 3, 5, 6}, StsFBankFlag), out<Elem32s>(1)),
    row("lyrsMelFBankGetSizeLow_Aurora_32f", lyrsMelFBankGetSizeLow_Aurora_32f, order(StsNullPtr), out<Elem32s>(1)),
    row("lyrsMelFBankGetSizeLow_Aurora_16s", lyrsMelFBankGetSizeLow_Aurora_16s, order(StsNullPtr), out<Elem32s>(1)),
    row("lyrsMelFBankGetSizeHigh_Aurora_32f", lyrsMelFBankGetSizeHigh_Aurora_32f, order(StsNullPtr), out<Elem32s>(1)),
    row("lyrsMelFBankGetSizeHigh_Aurora_16s", lyrsMelFBankGetSizeHigh_Aurora_16s, order(StsNullPtr), out<Elem32s>(1)),
});

const bool placedRows = addRows({
    row("lyrsMelFBankInit_32f", lyrsMelFBankInit_32f, ofConstruction,
        place<FBankState_32f>(told(lyrsMelFBankGetSize_32f, points, filters, FBankMelShape)), out<Elem32s>(1), length(),
        rate(), lowFrequency(), highFrequency(), filterCount(), parameter(), parameter(), option()),
    row("lyrsMelFBankInit_16s", lyrsMelFBankInit_16s, ofConstruction,
        place<FBankState_16s>(told(lyrsMelFBankGetSize_16s, points, filters, FBankMelShape)), out<Elem32s>(1), length(),
        rate(), lowFrequency(), highFrequency(), filterCount(), parameter(), parameter(), option()),
    row("lyrsMelFBankInit_32s", lyrsMelFBankInit_32s,
        order(StsNullPtr, StsSize, StsFBankFlag, StsSize, StsFBankFreq, StsBadArg, StsSize),
        place<FBankState_32s>(told(lyrsMelFBankGetSize_32s, points, filters, FBankBinShape)), out<Elem32s>(1),
        integerLength(), value(Elem32s{8000}).bad({0, -1, 48001}, StsSize).rank(3).legal({48000}),
        value(Elem32s{64}).bad({-1, lowest}, StsSize).rank(3).legal({0}),
        size(4000).rank(1).bad({64, 24001}, StsFBankFreq).legal({65, 24000}),
        size(filters).rank(1).bad({points / 2 + 2}, StsSize).rank(6),
        value(Elem32s{2595 << 15}).bad({0, -1, 0x80000, 0x40000000}, StsBadArg).legal({0x80001, 0x3FFFFFFF}),
        value(Elem32s{700 << 15}).bad({0, -1, 0x80000, 0x10000000}, StsBadArg).legal({0x80001, 0xFFFFFFF}),
        value(Elem32s{FBankBinShape}).bad({0, 1, 3, 5, 6}, StsFBankFlag)),
    row("lyrsMelFBankInitLow_Aurora_32f", lyrsMelFBankInitLow_Aurora_32f, order(StsNullPtr),
        place<FBankState_32f>(told(lyrsMelFBankGetSizeLow_Aurora_32f))),
    row("lyrsMelFBankInitLow_Aurora_16s", lyrsMelFBankInitLow_Aurora_16s, order(StsNullPtr),
        place<FBankState_16s>(told(lyrsMelFBankGetSizeLow_Aurora_16s))),
    row("lyrsMelFBankInitHigh_Aurora_32f", lyrsMelFBankInitHigh_Aurora_32f, order(StsNullPtr),
        place<FBankState_32f>(told(lyrsMelFBankGetSizeHigh_Aurora_32f))),
    row("lyrsMelFBankInitHigh_Aurora_16s", lyrsMelFBankInitHigh_Aurora_16s, order(StsNullPtr),
        place<FBankState_16s>(told(lyrsMelFBankGetSizeHigh_Aurora_16s))),
});

// Record, centres, two row tables and, for its time, two numbers for each edge.
const bool allocatingRows = addRows({
    row("lyrsMelFBankInitAlloc_32f", lyrsMelFBankInitAlloc_32f, ofConstruction,
        receives<FBankState_32f>(lyrsFBankFree_32f), out<Elem32s>(1), length(), rate(), lowFrequency(), highFrequency(),
        filterCount(), parameter(), parameter(), option())
        .allocates(6),
    row("lyrsMelFBankInitAlloc_16s", lyrsMelFBankInitAlloc_16s, ofConstruction,
        receives<FBankState_16s>(lyrsFBankFree_16s), out<Elem32s>(1), length(), rate(), lowFrequency(), highFrequency(),
        filterCount(), parameter(), parameter(), option())
        .allocates(6),
    row("lyrsMelFBankInitAllocLow_Aurora_32f", lyrsMelFBankInitAllocLow_Aurora_32f, order(StsNullPtr),
        receives<FBankState_32f>(lyrsFBankFree_32f))
        .allocates(6),
    row("lyrsMelFBankInitAllocLow_Aurora_16s", lyrsMelFBankInitAllocLow_Aurora_16s, order(StsNullPtr),
        receives<FBankState_16s>(lyrsFBankFree_16s))
        .allocates(6),
    row("lyrsMelFBankInitAllocHigh_Aurora_32f", lyrsMelFBankInitAllocHigh_Aurora_32f, order(StsNullPtr),
        receives<FBankState_32f>(lyrsFBankFree_32f))
        .allocates(6),
    row("lyrsMelFBankInitAllocHigh_Aurora_16s", lyrsMelFBankInitAllocHigh_Aurora_16s, order(StsNullPtr),
        receives<FBankState_16s>(lyrsFBankFree_16s))
        .allocates(6),
    // No pointer is looked at.
    row("lyrsMelLinFBankInitAlloc_32f", lyrsMelLinFBankInitAlloc_32f, order(StsSize, StsFBankFreq, StsFBankFlag),
        receives<FBankState_32f>(lyrsFBankFree_32f).unchecked(), out<Elem32s>(1).unchecked(), length(), rate(),
        lowFrequency(), value(4000.0F).bad({999.0F, 4000.5F}, StsFBankFreq).legal({3000.0F}), filterCount(),
        value(1000.0F).bad({63.0F, 4000.25F}, StsFBankFreq).legal({2000.0F}),
        size(1).atMost(filters).legal({2, filters}), parameter(), parameter(), option())
        .allocates(6),
    row("lyrsMelLinFBankInitAlloc_16s", lyrsMelLinFBankInitAlloc_16s, order(StsSize, StsFBankFreq, StsFBankFlag),
        receives<FBankState_16s>(lyrsFBankFree_16s).unchecked(), out<Elem32s>(1).unchecked(), length(), rate(),
        lowFrequency(), value(4000.0F).bad({999.0F, 4000.5F}, StsFBankFreq).legal({3000.0F}), filterCount(),
        value(1000.0F).bad({63.0F, 4000.25F}, StsFBankFreq).legal({2000.0F}),
        size(1).atMost(filters).legal({2, filters}), parameter(), parameter(), option())
        .allocates(6),
    row("lyrsEmptyFBankInitAlloc_32f", lyrsEmptyFBankInitAlloc_32f, order(StsSize),
        receives<FBankState_32f>(lyrsFBankFree_32f).unchecked(), out<Elem32s>(1).unchecked(), length(), filterCount(),
        value(Elem32s{0}).legal({1, 2, 3, 8, highest & ~FBankFromFrames}))
        .allocates(4),
    row("lyrsEmptyFBankInitAlloc_16s", lyrsEmptyFBankInitAlloc_16s, order(StsSize),
        receives<FBankState_16s>(lyrsFBankFree_16s).unchecked(), out<Elem32s>(1).unchecked(), length(), filterCount(),
        value(Elem32s{0}).legal({1, 2, 3, 8, highest & ~FBankFromFrames}))
        .allocates(4),
    row("lyrsFBankFree_32f", lyrsFBankFree_32f, order(StsNullPtr), bank32f().consumed()),
    row("lyrsFBankFree_16s", lyrsFBankFree_16s, order(StsNullPtr), bank16s().consumed()),
});

const bool evaluationRows = addRows({
    row("lyrsEvalFBank_32f", lyrsEvalFBank_32f, ofEvaluation, in<Elem32f>(points / 2 + 1), out<Elem32f>(filters),
        unready(bank32f())),
    row("lyrsEvalFBank_16s_Sfs", lyrsEvalFBank_16s_Sfs, ofEvaluation, in<Elem16s>(points / 2 + 1),
        out<Elem16s>(filters), unready(bank16s()), scaleFactor()),
    row("lyrsEvalFBank_16s32s_Sfs", lyrsEvalFBank_16s32s_Sfs, ofEvaluation, in<Elem16s>(points / 2 + 1),
        out<Elem32s>(filters), unready(bank16s()), scaleFactor()),
    row("lyrsEvalFBank_32s_Sfs", lyrsEvalFBank_32s_Sfs, order(StsNullPtr, StsBadArg), in<Elem32s>(points / 2 + 1),
        out<Elem32s>(filters), bank32s(),
        value(Elem32s{1}).bad({-32, 32, lowest, highest}, StsBadArg).legal({-31, 31})),
});

const bool accessRows = addRows({
    row("lyrsFBankGetCenters_32f", lyrsFBankGetCenters_32f, ofEvaluation, outOfOrder(bank32f()),
        out<Elem32s>(filters + 2)),
    row("lyrsFBankGetCenters_16s", lyrsFBankGetCenters_16s, ofEvaluation, outOfOrder(bank16s()),
        out<Elem32s>(filters + 2)),
    row("lyrsFBankSetCenters_32f", lyrsFBankSetCenters_32f, ofEvaluation, bank32f(), centers()),
    row("lyrsFBankSetCenters_16s", lyrsFBankSetCenters_16s, ofEvaluation, bank16s(), centers()),
    row("lyrsFBankGetCoeffs_32f", lyrsFBankGetCoeffs_32f, ofCoefficients, unready(bank32f()), filterNumber(filters + 1),
        out<Elem32f>(coefficients)),
    row("lyrsFBankGetCoeffs_16s", lyrsFBankGetCoeffs_16s, ofCoefficients, unready(bank16s()), filterNumber(filters + 1),
        out<Elem32f>(coefficients)),
    row("lyrsFBankSetCoeffs_32f", lyrsFBankSetCoeffs_32f, ofCoefficients, unready(bank32f()), filterNumber(filters),
        in<Elem32f>(coefficients)),
    row("lyrsFBankSetCoeffs_16s", lyrsFBankSetCoeffs_16s, ofCoefficients, unready(bank16s()), filterNumber(filters),
        in<Elem32f>(coefficients)),
});

} // namespace
} // namespace lyr::contract
