// The two fixed banks of the Aurora front end (ETSI ES 202 050, 2007): 25 filters over the lower band, 3 over the band
// above it.

#include "frontend/filter_bank.hpp"
#include "frontend/filter_bank_shape.hpp"

#include <algorithm>
#include <cstring>

namespace lyr {
namespace {

// How weights are made, added up and divided by their sum.
template <class Weight>
struct Weighing;

template <>
struct Weighing<Elem32f>
{
    using Sum = Elem64f;
    static Elem32f rising(Elem32s part, Elem32s whole) { return static_cast<Elem32f>(Elem64f(part) / whole); }
    static Elem32f falling(Elem32s part, Elem32s whole) { return static_cast<Elem32f>(1.0 - Elem64f(part) / whole); }
    static Elem32f share(Elem32f weight, Sum sum) { return static_cast<Elem32f>(weight / sum); }
};

template <>
struct Weighing<Elem32s>
{
    using Sum = Elem64s;
    static Elem32s rising(Elem32s part, Elem32s whole) { return part * oneQ14 / whole; }
    static Elem32s falling(Elem32s part, Elem32s whole) { return oneQ14 - part * oneQ14 / whole; }
    static Elem32s share(Elem32s weight, Sum sum) { return static_cast<Elem32s>(Elem64s{weight} * oneQ14 / sum); }
};

// Edges at equal distances in mel, `parts` of which make up the band; those above the band are cut to half the rate.
template <class State, class Fixed>
void layAuroraCenters(State& bank, const EdgeScratch& scratch, Fixed /*fixed*/, Elem64f parts) noexcept
{
    bank.flag = Fixed::flag;
    bank.melMul = Fixed::melMul;
    bank.melDiv = Fixed::melDiv;
    const MelScale scale(Fixed::melMul, Fixed::melDiv);
    const Elem32f low = scale.fromHertz(Fixed::lowFreq);
    const Elem32f range = scale.fromHertz(Fixed::highFreq) - low;
    const Elem64f binFactor = Elem64f(bank.fftLen) / Fixed::sampFreq * Fixed::melDiv;
    for (Elem32s i = 0; i <= bank.nFilter + 1; ++i) {
        scratch.edges[i] = static_cast<Elem32f>(static_cast<Elem32f>(i) * Elem64f{range} / parts + low);
        const Elem64f bin = binFactor * scale.relativeHertz(scratch.edges[i]);
        scratch.bins[i] = static_cast<Elem32f>(std::min(bin, bank.fftLen * 0.5));
    }
    convertCenters(bank, scratch.bins, 0, bank.nFilter + 2);
    setReady(bank);
}

// The first filter of the low band, a falling half triangle from bin 0. The sum that its weights are divided by holds
// the left and the right run together, although only element 0 of the left run ever meets the spectrum: meant. With the
// edges of this bank the width is 1, so that the sum is a single weight and the doubling never shows.
template <class State>
void shapeFirstLowFilter(State& bank) noexcept
{
    using W = Weighing<WeightOf<State>>;
    const Elem32s first = bank.pCenters[0];
    const Elem32s width = bank.pCenters[1] - first;
    auto* const left = bank.pCoefLeft[0];
    auto* const right = bank.pCoefRight[0];
    typename W::Sum sum = 0;
    for (Elem32s j = 0; j < width; ++j) {
        left[j] = W::falling(j, width);
        sum += left[j];
    }
    for (Elem32s j = first + 1; j < width; ++j) {
        right[j - first - 1] = W::falling(j, width);
        sum += right[j - first - 1];
    }
    for (Elem32s j = 0; j < width; ++j) {
        left[j] = W::share(left[j], sum);
    }
    for (Elem32s j = first + 1; j < width; ++j) {
        right[j - first - 1] = W::share(right[j - first - 1], sum);
    }
}

// Filter i of the low band, in row i, with weights that add up to one.
template <class State>
void shapeLowFilter(State& bank, Elem32s i) noexcept
{
    using W = Weighing<WeightOf<State>>;
    const Elem32s below = bank.pCenters[i] - bank.pCenters[i - 1];
    const Elem32s above = bank.pCenters[i + 1] - bank.pCenters[i];
    auto* const left = bank.pCoefLeft[i];
    auto* const right = bank.pCoefRight[i];
    typename W::Sum sum = 0;
    for (Elem32s j = 1; j <= below; ++j) {
        left[j] = W::rising(j, below);
        sum += left[j];
    }
    for (Elem32s j = 1; j < above; ++j) {
        right[j - 1] = W::falling(j, above);
        sum += right[j - 1];
    }
    for (Elem32s j = 1; j <= below; ++j) {
        left[j] = W::share(left[j], sum);
    }
    for (Elem32s j = 1; j < above; ++j) {
        right[j - 1] = W::share(right[j - 1], sum);
    }
}

template <class State>
void buildLowBank(State& bank, const EdgeScratch& scratch) noexcept
{
    bank.fftOrder = 0; // this form alone leaves the order unset
    // 24 parts and not nFilter + 1, a constant of this bank: edge 24 falls on half the rate and edges 25 and 26 run
    // past it.
    layAuroraCenters(bank, scratch, LowAuroraBank{}, 24.0);
    shapeFirstLowFilter(bank);
    for (Elem32s i = 1; i <= bank.nFilter; ++i) {
        shapeLowFilter(bank, i);
    }
    // Up by one, so that filter e reads row e - 1 against the edges e - 1, e and e + 1 as in every other bank.
    std::memmove(bank.pCenters + 1, bank.pCenters,
                 (static_cast<std::size_t>(bank.nFilter) + 2) * sizeof *bank.pCenters);
    bank.pCenters[0] = 0;
    setReady(bank);
}

// Nothing is normalised here and no centre shifted, unlike in the low band.
template <class State>
void buildHighBank(State& bank, const EdgeScratch& scratch) noexcept
{
    using W = Weighing<WeightOf<State>>;
    layAuroraCenters(bank, scratch, HighAuroraBank{}, 4.0);
    for (Elem32s i = 1; i <= bank.nFilter; ++i) {
        const Elem32s below = bank.pCenters[i] - bank.pCenters[i - 1];
        const Elem32s above = bank.pCenters[i + 1] - bank.pCenters[i];
        for (Elem32s j = 1; j <= below; ++j) {
            bank.pCoefLeft[i - 1][j] = W::rising(j, below);
        }
        for (Elem32s j = 1; j < above; ++j) {
            bank.pCoefRight[i - 1][j - 1] = W::falling(j, above);
        }
    }
}

template <class State>
void build(State& bank, const EdgeScratch& scratch, LowAuroraBank /*fixed*/) noexcept
{
    buildLowBank(bank, scratch);
}

template <class State>
void build(State& bank, const EdgeScratch& scratch, HighAuroraBank /*fixed*/) noexcept
{
    buildHighBank(bank, scratch);
}

template <class Fixed, class State>
Status placeAuroraBank(State* bank)
{
    LYR_CHECK(pointers(bank));
    EdgeScratch scratch{};
    LYR_CHECK(placeBank(bank, Fixed::length, Fixed::nFilter, false, scratch));
    build(*bank, scratch, Fixed{});
    return StsNoErr;
}

template <class Fixed, class State>
Status allocateAuroraBank(State** bank)
{
    LYR_CHECK(pointers(bank));
    LYR_CHECK(allocateBank(bank, Fixed::length, Fixed::nFilter, false));
    const AllocatedScratch scratch(Fixed::nFilter);
    LYR_CHECK(require(static_cast<bool>(scratch), StsMemAlloc));
    build(**bank, scratch.get(), Fixed{});
    return StsNoErr;
}

} // namespace
} // namespace lyr

using lyr::HighAuroraBank;
using lyr::LowAuroraBank;

Status lyrsMelFBankInitLow_Aurora_32f(FBankState_32f* pFBank)
{
    return lyr::placeAuroraBank<LowAuroraBank>(pFBank);
}
Status lyrsMelFBankInitLow_Aurora_16s(FBankState_16s* pFBank)
{
    return lyr::placeAuroraBank<LowAuroraBank>(pFBank);
}
Status lyrsMelFBankInitHigh_Aurora_32f(FBankState_32f* pFBank)
{
    return lyr::placeAuroraBank<HighAuroraBank>(pFBank);
}
Status lyrsMelFBankInitHigh_Aurora_16s(FBankState_16s* pFBank)
{
    return lyr::placeAuroraBank<HighAuroraBank>(pFBank);
}

Status lyrsMelFBankInitAllocLow_Aurora_32f(FBankState_32f** ppFBank)
{
    return lyr::allocateAuroraBank<LowAuroraBank>(ppFBank);
}

Status lyrsMelFBankInitAllocLow_Aurora_16s(FBankState_16s** ppFBank)
{
    return lyr::allocateAuroraBank<LowAuroraBank>(ppFBank);
}

Status lyrsMelFBankInitAllocHigh_Aurora_32f(FBankState_32f** ppFBank)
{
    return lyr::allocateAuroraBank<HighAuroraBank>(ppFBank);
}

Status lyrsMelFBankInitAllocHigh_Aurora_16s(FBankState_16s** ppFBank)
{
    return lyr::allocateAuroraBank<HighAuroraBank>(ppFBank);
}
