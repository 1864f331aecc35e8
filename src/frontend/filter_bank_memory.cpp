// Sizes, placement, allocation and release of filter banks.

#include "frame/elements.hpp"
#include "frontend/filter_bank.hpp"

#include <algorithm>
#include <cstddef>

namespace lyr {

bool areInOrder(const Elem32s* centers, Elem32s nFilter, Elem32s top) noexcept
{
    return centers[0] >= 0 && std::is_sorted(centers, centers + nFilter + 2) && centers[nFilter + 1] <= top;
}
namespace {

constexpr Elem32s transformFlag = 8; // not normalised either way
constexpr Elem32s transformHint = 2;
constexpr Elem32s fractionBits = 14; // of the weights for 16-bit input

// What the two kinds of bank differ in.
template <class State>
struct Kind;

template <>
struct Kind<FBankState_32f>
{
    using Weight = Elem32f;
    static constexpr auto transformSize = lyrsFFTGetSize_R_32f;
    static constexpr auto initTransform = lyrsFFTInit_R_32f;
    static constexpr auto allocateTransform = lyrsFFTInitAlloc_R_32f;
    static constexpr auto freeTransform = lyrsFFTFree_R_32f;
    static constexpr auto allocateRows = Alloc2_32f;
    static constexpr auto layRows = Init2_32f;
    static void setScale(FBankState_32f& /*bank*/) {}
};

template <>
struct Kind<FBankState_16s>
{
    using Weight = Elem32s;
    static constexpr auto transformSize = lyrsFFTGetSize_R_16s32s;
    static constexpr auto initTransform = lyrsFFTInit_R_16s32s;
    static constexpr auto allocateTransform = lyrsFFTInitAlloc_R_16s32s;
    static constexpr auto freeTransform = lyrsFFTFree_R_16s32s;
    static constexpr auto allocateRows = Alloc2_32s;
    static constexpr auto layRows = Init2_32s;
    static void setScale(FBankState_16s& bank) { bank.scale = fractionBits; }
};

// Rows and columns of the tables.
constexpr Elem32s tableRows(Elem32s nFilter)
{
    return nFilter + 2;
}
constexpr Elem32s leftColumns(Elem32s points)
{
    return points / 2 + leftRowAdvance;
}
constexpr Elem32s rightColumns(Elem32s points)
{
    return points / 2;
}

constexpr Elem64s edgeBytes(Elem32s nFilter)
{
    return (Elem64s{nFilter} + 2) * Elem64s{sizeof(Elem32f)};
}
constexpr Elem64s workBytes(Elem32s points)
{
    return (Elem64s{points} + 2) * Elem64s{sizeof(Elem32f)};
}

// The bytes of the blocks that follow a placed record, in their order, and of all of it with its alignment.
struct BlockSizes
{
    Elem64s centers;
    Elem64s edges;
    Elem64s bins;
    Elem64s left;
    Elem64s right;
    Elem64s transform;
    Elem64s transformInit;
    Elem64s transformBuffer;
    Elem64s work;
    Elem64s total;
};

// StsSize if 32 bits do not hold the total.
template <class State>
Status blockSizes(BankLength length, Elem32s nFilter, bool withTransform, BlockSizes& sizes) noexcept
{
    const Elem64s rows = Elem64s{nFilter} + 2;
    // More than this leaves 32 bits whatever else there is; below it, none of the parts does.
    if (rows > INT32_MAX || rows * (Elem64s{length.points} + 8) > INT32_MAX / Elem64s{sizeof(Elem32f)}) {
        return StsSize;
    }
    sizes = {};
    sizes.centers = centerBytes(nFilter);
    sizes.edges = edgeBytes(nFilter);
    sizes.bins = edgeBytes(nFilter);
    sizes.left = GetSize2_32f(tableRows(nFilter), leftColumns(length.points));
    sizes.right = GetSize2_32f(tableRows(nFilter), rightColumns(length.points));
    if (withTransform) {
        Elem32s spec = 0;
        Elem32s init = 0;
        Elem32s buffer = 0;
        LYR_CHECK(Kind<State>::transformSize(length.order, transformFlag, transformHint, &spec, &init, &buffer));
        sizes.transform = spec;
        sizes.transformInit = init;
        sizes.transformBuffer = buffer;
        sizes.work = workBytes(length.points);
    }
    sizes.total = sizeof(State);
    for (const Elem64s bytes : {sizes.centers, sizes.edges, sizes.bins, sizes.left, sizes.right}) {
        sizes.total += bytes + Elem64s{blockAlignment};
    }
    if (withTransform) {
        for (const Elem64s bytes : {sizes.transform, sizes.transformInit, sizes.transformBuffer, sizes.work}) {
            sizes.total += bytes + Elem64s{blockAlignment};
        }
    }
    return sizes.total <= INT32_MAX ? StsNoErr : StsSize;
}

template <class State>
void setLengths(State& bank, BankLength length, Elem32s nFilter) noexcept
{
    bank.fftLen = length.points;
    bank.fftOrder = length.order;
    bank.nFilter = nFilter;
    bank.nLinear = nFilter;
    Kind<State>::setScale(bank);
}

// Advances the left rows and clears what a filter can come to lie on: its left run has an element for the lower centre
// itself, so that a left row is one element longer than half the transform.
template <class State>
void prepareRows(State& bank) noexcept
{
    using Weight = typename Kind<State>::Weight;
    const Elem32s half = bank.fftLen / 2;
    for (Elem32s r = 0; r < tableRows(bank.nFilter); ++r) {
        bank.pCoefLeft[r] += leftRowAdvance;
        std::fill_n(bank.pCoefLeft[r], half + 1, Weight{0});
        std::fill_n(bank.pCoefRight[r], half, Weight{0});
    }
}

template <class T>
T* allocateBytes(Elem64s bytes) noexcept
{
    return bytes > INT32_MAX ? nullptr : reinterpret_cast<T*>(lyrsMalloc_8u(static_cast<Elem32s>(bytes)));
}

template <class State>
Status allocateTransform(State& bank) noexcept
{
    LYR_CHECK(Kind<State>::allocateTransform(&bank.pFFTSpec, bank.fftOrder, transformFlag, transformHint));
    Elem32s spec = 0;
    Elem32s init = 0;
    Elem32s buffer = 0;
    LYR_CHECK(Kind<State>::transformSize(bank.fftOrder, transformFlag, transformHint, &spec, &init, &buffer));
    if (buffer > 0) {
        bank.pFFTBuffer = allocateBytes<Elem8u>(buffer);
        LYR_CHECK(require(bank.pFFTBuffer != nullptr, StsMemAlloc));
    }
    bank.pWork = allocateBytes<typename Kind<State>::Weight>(workBytes(bank.fftLen));
    return bank.pWork == nullptr ? StsMemAlloc : StsNoErr;
}

// Fields are cleared as they are released, so that every part is released once, whatever the record holds. A bank that
// was placed in a caller's buffer is not for this.
template <class State>
Status freeBank(State* bank) noexcept
{
    LYR_CHECK(pointers(bank));
    lyrsFree(bank->pCenters);
    Free2(bank->pCoefLeft);
    Free2(bank->pCoefRight);
    bank->pCenters = nullptr;
    bank->pCoefLeft = nullptr;
    bank->pCoefRight = nullptr;
    bank->ready = 0;
    lyrsFree(bank->pWork);
    lyrsFree(bank->pFFTBuffer);
    if (bank->pFFTSpec != nullptr) {
        Kind<State>::freeTransform(bank->pFFTSpec);
    }
    bank->pWork = nullptr;
    bank->pFFTBuffer = nullptr;
    bank->pFFTSpec = nullptr;
    lyrsFree(bank);
    return StsNoErr;
}

} // namespace

template <class State>
Status placedBankSize(BankLength length, Elem32s nFilter, bool withTransform, Elem32s* size) noexcept
{
    BlockSizes sizes{};
    LYR_CHECK(blockSizes<State>(length, nFilter, withTransform, sizes));
    *size = static_cast<Elem32s>(sizes.total);
    return StsNoErr;
}

template <class State>
Status placeBank(State* bank, BankLength length, Elem32s nFilter, bool withTransform, EdgeScratch& scratch) noexcept
{
    using Weight = typename Kind<State>::Weight;
    BlockSizes sizes{};
    LYR_CHECK(blockSizes<State>(length, nFilter, withTransform, sizes));
    *bank = State{};
    setLengths(*bank, length, nFilter);
    Placement blocks(bank + 1);
    bank->pCenters = blocks.take<Elem32s>(sizes.centers);
    scratch.edges = blocks.take<Elem32f>(sizes.edges);
    scratch.bins = blocks.take<Elem32f>(sizes.bins);
    bank->pCoefLeft = blocks.take<Weight*>(sizes.left);
    bank->pCoefRight = blocks.take<Weight*>(sizes.right);
    Kind<State>::layRows(bank->pCoefLeft, tableRows(nFilter), leftColumns(length.points));
    Kind<State>::layRows(bank->pCoefRight, tableRows(nFilter), rightColumns(length.points));
    prepareRows(*bank);
    if (withTransform) {
        auto* const memory = blocks.take<Elem8u>(sizes.transform);
        auto* const init = blocks.take<Elem8u>(sizes.transformInit);
        bank->pFFTBuffer = blocks.take<Elem8u>(sizes.transformBuffer);
        bank->pWork = blocks.take<Weight>(sizes.work);
        LYR_CHECK(
            Kind<State>::initTransform(&bank->pFFTSpec, length.order, transformFlag, transformHint, memory, init));
    }
    return StsNoErr;
}

template <class State>
Status allocateBank(State** bank, BankLength length, Elem32s nFilter, bool withTransform) noexcept
{
    auto* const record = allocateBytes<State>(sizeof(State));
    LYR_CHECK(require(record != nullptr, StsMemAlloc));
    *record = State{};
    setLengths(*record, length, nFilter);
    *bank = record;
    record->pCenters = allocateBytes<Elem32s>(centerBytes(nFilter));
    LYR_CHECK(require(record->pCenters != nullptr, StsMemAlloc));
    zeroElements(record->pCenters, static_cast<std::ptrdiff_t>(centerCount(nFilter)));
    record->pCoefLeft = Kind<State>::allocateRows(tableRows(nFilter), leftColumns(length.points));
    LYR_CHECK(require(record->pCoefLeft != nullptr, StsMemAlloc));
    record->pCoefRight = Kind<State>::allocateRows(tableRows(nFilter), rightColumns(length.points));
    LYR_CHECK(require(record->pCoefRight != nullptr, StsMemAlloc));
    prepareRows(*record);
    return withTransform ? allocateTransform(*record) : StsNoErr;
}

template Status placedBankSize<FBankState_32f>(BankLength, Elem32s, bool, Elem32s*) noexcept;
template Status placedBankSize<FBankState_16s>(BankLength, Elem32s, bool, Elem32s*) noexcept;
template Status placeBank(FBankState_32f*, BankLength, Elem32s, bool, EdgeScratch&) noexcept;
template Status placeBank(FBankState_16s*, BankLength, Elem32s, bool, EdgeScratch&) noexcept;
template Status allocateBank(FBankState_32f**, BankLength, Elem32s, bool) noexcept;
template Status allocateBank(FBankState_16s**, BankLength, Elem32s, bool) noexcept;

} // namespace lyr

// ------------------------------------------------------------------------------------------------------------- sizes

namespace {

template <class State>
Status bankSize(Elem32s fftLen, Elem32s nFilter, Elem32s flag, Elem32s* pSize)
{
    LYR_CHECK(pointers(pSize), bankLengths(fftLen, nFilter), bankFlag(flag));
    return lyr::placedBankSize<State>(lyr::bankLength(fftLen), nFilter, lyr::fromFrames(flag), pSize);
}

template <class State, class Fixed>
Status fixedBankSize(Elem32s* pSize)
{
    LYR_CHECK(pointers(pSize));
    return lyr::placedBankSize<State>(Fixed::length, Fixed::nFilter, false, pSize);
}

} // namespace

Status lyrsMelFBankGetSize_32f(Elem32s fftLen, Elem32s nFilter, Elem32s flag, Elem32s* pSize)
{
    return bankSize<FBankState_32f>(fftLen, nFilter, flag, pSize);
}

Status lyrsMelFBankGetSize_16s(Elem32s fftLen, Elem32s nFilter, Elem32s flag, Elem32s* pSize)
{
    return bankSize<FBankState_16s>(fftLen, nFilter, flag, pSize);
}

Status lyrsMelFBankGetSizeLow_Aurora_32f(Elem32s* pSize)
{
    return fixedBankSize<FBankState_32f, lyr::LowAuroraBank>(pSize);
}

Status lyrsMelFBankGetSizeLow_Aurora_16s(Elem32s* pSize)
{
    return fixedBankSize<FBankState_16s, lyr::LowAuroraBank>(pSize);
}

Status lyrsMelFBankGetSizeHigh_Aurora_32f(Elem32s* pSize)
{
    return fixedBankSize<FBankState_32f, lyr::HighAuroraBank>(pSize);
}

Status lyrsMelFBankGetSizeHigh_Aurora_16s(Elem32s* pSize)
{
    return fixedBankSize<FBankState_16s, lyr::HighAuroraBank>(pSize);
}

// ----------------------------------------------------------------------------------------------------------- release

Status lyrsFBankFree_32f(FBankState_32f* pFBank)
{
    return lyr::freeBank(pFBank);
}
Status lyrsFBankFree_16s(FBankState_16s* pFBank)
{
    return lyr::freeBank(pFBank);
}
