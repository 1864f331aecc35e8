// The discrete cosine transform of log filter-bank energies to cepstra, with liftering (Davis and Mermelstein, IEEE
// Trans. ASSP 28(4), 1980; Juang, Rabiner and Wilpon, IEEE Trans. ASSP 35(7), 1987).

#include "frontend/dct_lifter.hpp"

#include "frame/check.hpp"
#include "frame/layout.hpp"
#include "frame/memory.hpp"
#include "frame/rounding.hpp"
#include "frame/select.hpp"
#include "frontend/dct_lifter_kernels.hpp"
#include "lyrsr.h"

#include <cmath>
#include <cstddef>
#include <numbers>
#include <type_traits>

using lyr::alignUp;
using lyr::blockAlignment;

namespace {

const lyr::DctLifterKernels kernels = LYR_SELECT_KERNELS_UP_TO_256(dctLifterKernels);

template <class State>
constexpr bool isFixedPoint = std::is_same_v<State, DCTLifterState_16s>;

Status dimensions(Elem32s lenDCT, Elem32s lenCepstrum)
{
    return lenDCT < 1 || lenCepstrum < 1 || lenDCT < lenCepstrum ? StsSize : StsNoErr;
}

// ------------------------------------------------------------------------------------------------------------ weights

// The weights of a form: the two shapes fill entries 0 to lenCepstrum of a state.

struct SineLifter
{
    Elem32s nLifter;
    Elem32f val;
    const Elem32f* val0 = nullptr; // the zeroth coefficient's own, or null

    [[nodiscard]] Elem32s length() const { return nLifter; }
    [[nodiscard]] bool hasC0() const { return val0 != nullptr; }

    void fill(Elem32f* weights, Elem32s lenCepstrum) const
    {
        const auto half = static_cast<Elem32f>(nLifter * 0.5);
        for (Elem64s i = 0; i <= lenCepstrum; ++i) {
            const double sine = std::sin(static_cast<double>(static_cast<Elem32f>(i)) * std::numbers::pi / nLifter);
            weights[i] = static_cast<Elem32f>(1.0 + sine * static_cast<double>(half)) * val;
        }
        if (val0 != nullptr) {
            weights[0] = *val0;
        }
    }
};

template <class Weight>
struct GivenLifter
{
    // A caller may hand over part of the state's own memory, which holds singles.
    using Value [[gnu::may_alias]] = Weight;

    const Value* values; // lenCepstrum of them
    bool withC0;

    [[nodiscard]] static Elem32s length() { return -1; }
    [[nodiscard]] bool hasC0() const { return withC0; }

    void fill(Elem32f* weights, Elem32s lenCepstrum) const
    {
        for (Elem32s i = 0; i < lenCepstrum; ++i) {
            weights[std::ptrdiff_t{i} + 1] = static_cast<Elem32f>(values[i]);
        }
        // The last weight serves the highest coefficient and the zeroth alike: meant, callers pass no more of them.
        weights[0] = withC0 ? static_cast<Elem32f>(values[lenCepstrum - 1]) : 0.0F;
    }
};

// ------------------------------------------------------------------------------------------------------------- layout

std::size_t weightBytes(Elem32s lenCepstrum)
{
    return alignUp((static_cast<std::size_t>(lenCepstrum) + 1) * sizeof(Elem32f));
}

// The record, then the weights (and the scratch), then the rows, each at a multiple of 32 bytes of a buffer that need
// not lie on one itself.
template <class State>
constexpr Elem64s recordBytes = sizeof(State) + blockAlignment;

template <class State>
Elem64s headBytes(Elem32s lenCepstrum)
{
    constexpr Elem64s arrays = isFixedPoint<State> ? 2 : 1;
    return recordBytes<State> + arrays * static_cast<Elem64s>(weightBytes(lenCepstrum));
}

// Of many rows the cosines and the pointers alone are more than a 32-bit size tells, and a sum would wrap.
bool areTooManyRows(Elem32s lenCepstrum, Elem64s rowBytes)
{
    return lenCepstrum >= INT32_MAX / (rowBytes + Elem64s{sizeof(void*)});
}

// The bytes of a state in the caller's memory, for GetSize to tell and for Init to refuse: StsSize if 32 bits do not
// hold them.
template <class State>
Status placedSize(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s& size)
{
    LYR_CHECK(require(!areTooManyRows(lenCepstrum, (Elem64s{lenDCT} + 7) / 8 * 32), StsSize));
    const Elem64s bytes = headBytes<State>(lenCepstrum) + Elem64s{lyr::GetSize2_32f(lenCepstrum + 1, lenDCT)};
    LYR_CHECK(require(bytes <= INT32_MAX, StsSize));
    size = static_cast<Elem32s>(bytes);
    return StsNoErr;
}

// The same for the form whose rows are laid one by one: 32 bytes of slack for each in place of padding.
Status placedSizeOfSlackRows(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s& size)
{
    constexpr Elem64s slack = blockAlignment;
    const Elem64s rowBytes = Elem64s{lenDCT} * Elem64s{sizeof(Elem32f)} + slack;
    LYR_CHECK(require(!areTooManyRows(lenCepstrum, rowBytes), StsSize));
    const Elem64s rows = Elem64s{lenCepstrum} + 1;
    const Elem64s bytes =
        headBytes<DCTLifterState_16s>(lenCepstrum) + rows * Elem64s{sizeof(void*)} + slack + rows * rowBytes;
    LYR_CHECK(require(bytes <= INT32_MAX, StsSize));
    size = static_cast<Elem32s>(bytes);
    return StsNoErr;
}

template <class State>
Status getSize(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize)
{
    LYR_CHECK(pointers(pSize), dimensions(lenDCT, lenCepstrum));
    return placedSize<State>(lenDCT, lenCepstrum, *pSize);
}

template <class State>
void describe(State* state, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter, bool hasC0)
{
    *state = State{};
    state->nLifter = nLifter;
    state->lenDCT = lenDCT;
    state->lenCepstrum = lenCepstrum;
    state->hasC0 = hasC0 ? 1 : 0;
}

// Lays the arrays behind the record; the result is where the row table goes.
template <class State>
std::byte* layArrays(State* state)
{
    auto* at = alignUp(reinterpret_cast<std::byte*>(state + 1));
    const std::size_t bytes = weightBytes(state->lenCepstrum);
    state->pLifter = reinterpret_cast<Elem32f*>(at);
    at += bytes;
    if constexpr (isFixedPoint<State>) {
        state->pTmp = reinterpret_cast<Elem32f*>(at);
        at += bytes;
    }
    return at;
}

// Row i, column j: cos((j + 1/2) * i * pi / lenDCT), without a normalisation: what scale there is comes with the
// weights. Behind the columns stand zeros up to a multiple of 8.
template <class State>
void fillRows(State* state)
{
    const std::ptrdiff_t padded = (std::ptrdiff_t{state->lenDCT} + 7) / 8 * 8;
    for (Elem32s i = 0; i <= state->lenCepstrum; ++i) {
        Elem32f* const row = state->pRows[i];
        for (std::ptrdiff_t j = 0; j < padded; ++j) {
            const double centre = static_cast<double>(static_cast<Elem32f>(j + 1)) - 0.5;
            row[j] = j < state->lenDCT ? static_cast<Elem32f>(std::cos(centre * (i * std::numbers::pi) / state->lenDCT))
                                       : 0.0F;
        }
    }
}

template <class State, class Weights>
Status init(State* state, Elem32s lenDCT, Elem32s lenCepstrum, const Weights& weights)
{
    Elem32s size = 0;
    LYR_CHECK(placedSize<State>(lenDCT, lenCepstrum, size));
    describe(state, lenDCT, lenCepstrum, weights.length(), weights.hasC0());
    std::byte* const table = layArrays(state);
    lyr::Init2_32fd(table, lenCepstrum + 1, lenDCT);
    state->pRows = reinterpret_cast<Elem32f**>(table);
    weights.fill(state->pLifter, lenCepstrum);
    fillRows(state);
    return StsNoErr;
}

template <class T>
T* allocate(Elem64s bytes)
{
    return bytes > INT32_MAX ? nullptr : reinterpret_cast<T*>(lyrsMalloc_8u(static_cast<Elem32s>(bytes)));
}

// After a failure the caller finds the record with what it had so far in *ppState, and frees that.
template <class State, class Weights>
Status initAlloc(State** ppState, Elem32s lenDCT, Elem32s lenCepstrum, const Weights& weights)
{
    auto* const state = allocate<State>(sizeof(State));
    LYR_CHECK(require(state != nullptr, StsMemAlloc));
    describe(state, lenDCT, lenCepstrum, weights.length(), weights.hasC0());
    *ppState = state;
    const Elem64s bytes = (Elem64s{lenCepstrum} + 1) * Elem64s{sizeof(Elem32f)};
    state->pLifter = allocate<Elem32f>(bytes);
    LYR_CHECK(require(state->pLifter != nullptr, StsMemAlloc));
    weights.fill(state->pLifter, lenCepstrum);
    if constexpr (isFixedPoint<State>) {
        state->pTmp = allocate<Elem32f>(bytes);
        LYR_CHECK(require(state->pTmp != nullptr, StsMemAlloc));
    }
    state->pRows = lyr::Alloc2_32fd(lenCepstrum + 1, lenDCT);
    LYR_CHECK(require(state->pRows != nullptr, StsMemAlloc));
    fillRows(state);
    return StsNoErr;
}

template <class State>
lyr::DctLifter lifterOf(const State& state)
{
    return {state.pRows, state.pLifter, state.lenDCT, state.lenCepstrum, state.hasC0 != 0};
}

Status roundCepstra(const DCTLifterState_16s& state, Elem16s* pDst, Elem32s scaleFactor)
{
    const Elem32s count = state.lenCepstrum + (state.hasC0 != 0 ? 1 : 0);
    return lyrsConvert_32f16s_Sfs(state.pTmp, pDst, count, lyr::convertToNearest, scaleFactor);
}

} // namespace

// -------------------------------------------------------------------------------------------------------------- sizes

Status lyrsDCTLifterGetSize_32f(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize)
{
    return getSize<DCTLifterState_32f>(lenDCT, lenCepstrum, pSize);
}

Status lyrsDCTLifterGetSize_C0_32f(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize)
{
    return getSize<DCTLifterState_32f>(lenDCT, lenCepstrum, pSize);
}

Status lyrsDCTLifterGetSize_Mul_32f(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize)
{
    return getSize<DCTLifterState_32f>(lenDCT, lenCepstrum, pSize);
}

Status lyrsDCTLifterGetSize_MulC0_32f(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize)
{
    return getSize<DCTLifterState_32f>(lenDCT, lenCepstrum, pSize);
}

Status lyrsDCTLifterGetSize_16s(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize)
{
    return getSize<DCTLifterState_16s>(lenDCT, lenCepstrum, pSize);
}

Status lyrsDCTLifterGetSize_C0_16s(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize)
{
    return getSize<DCTLifterState_16s>(lenDCT, lenCepstrum, pSize);
}

Status lyrsDCTLifterGetSize_Mul_16s(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize)
{
    return getSize<DCTLifterState_16s>(lenDCT, lenCepstrum, pSize);
}

// This form alone has a bound on its length, and it is of the told size only: the state may be larger.
Status lyrsDCTLifterGetSize_MulC0_16s(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize)
{
    constexpr Elem32s longest = 8192;
    LYR_CHECK(pointers(pSize), dimensions(lenDCT, lenCepstrum), require(lenDCT <= longest, StsSize));
    return placedSizeOfSlackRows(lenDCT, lenCepstrum, *pSize);
}

// ------------------------------------------------------------------------------------------------- in a given buffer

Status lyrsDCTLifterInit_32f(DCTLifterState_32f* pState, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter,
                             Elem32f val)
{
    LYR_CHECK(pointers(pState), sizes(nLifter), dimensions(lenDCT, lenCepstrum));
    return init(pState, lenDCT, lenCepstrum, SineLifter{nLifter, val});
}

Status lyrsDCTLifterInit_16s(DCTLifterState_16s* pState, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter,
                             Elem32f val)
{
    LYR_CHECK(pointers(pState), sizes(nLifter), dimensions(lenDCT, lenCepstrum));
    return init(pState, lenDCT, lenCepstrum, SineLifter{nLifter, val});
}

Status lyrsDCTLifterInit_C0_32f(DCTLifterState_32f* pState, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter,
                                Elem32f val, Elem32f val0)
{
    LYR_CHECK(pointers(pState), sizes(nLifter), dimensions(lenDCT, lenCepstrum));
    return init(pState, lenDCT, lenCepstrum, SineLifter{nLifter, val, &val0});
}

Status lyrsDCTLifterInit_C0_16s(DCTLifterState_16s* pState, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter,
                                Elem32f val, Elem32f val0)
{
    LYR_CHECK(pointers(pState), sizes(nLifter), dimensions(lenDCT, lenCepstrum));
    return init(pState, lenDCT, lenCepstrum, SineLifter{nLifter, val, &val0});
}

Status lyrsDCTLifterInit_Mul_32f(DCTLifterState_32f* pState, Elem32s lenDCT, const Elem32f* pLifter,
                                 Elem32s lenCepstrum)
{
    LYR_CHECK(pointers(pState), pointers(pLifter), dimensions(lenDCT, lenCepstrum));
    return init(pState, lenDCT, lenCepstrum, GivenLifter<Elem32f>{pLifter, false});
}

Status lyrsDCTLifterInit_Mul_16s(DCTLifterState_16s* pState, Elem32s lenDCT, const Elem32f* pLifter,
                                 Elem32s lenCepstrum)
{
    LYR_CHECK(pointers(pState), pointers(pLifter), dimensions(lenDCT, lenCepstrum));
    return init(pState, lenDCT, lenCepstrum, GivenLifter<Elem32f>{pLifter, false});
}

Status lyrsDCTLifterInit_MulC0_32f(DCTLifterState_32f* pState, Elem32s lenDCT, const Elem32f* pLifter,
                                   Elem32s lenCepstrum)
{
    LYR_CHECK(pointers(pState), pointers(pLifter), dimensions(lenDCT, lenCepstrum));
    return init(pState, lenDCT, lenCepstrum, GivenLifter<Elem32f>{pLifter, true});
}

// Its weights are whole numbers, and its rows are laid one by one.
Status lyrsDCTLifterInit_MulC0_16s(DCTLifterState_16s* pState, Elem32s lenDCT, const Elem32s* pLifter,
                                   Elem32s lenCepstrum)
{
    LYR_CHECK(pointers(pState), pointers(pLifter), dimensions(lenDCT, lenCepstrum));
    Elem32s size = 0;
    LYR_CHECK(placedSizeOfSlackRows(lenDCT, lenCepstrum, size));
    const GivenLifter<Elem32s> weights{pLifter, true};
    describe(pState, lenDCT, lenCepstrum, weights.length(), weights.hasC0());
    pState->pRows = reinterpret_cast<Elem32f**>(layArrays(pState));
    auto* row = reinterpret_cast<Elem32f*>(pState->pRows + lenCepstrum + 1);
    for (Elem32s i = 0; i <= lenCepstrum; ++i) {
        row = alignUp(row);
        pState->pRows[i] = row;
        row += lenDCT;
        pState->pLifter[i] = 1.0F; // every weight is one before the first of the caller's is read, on purpose
    }
    weights.fill(pState->pLifter, lenCepstrum);
    fillRows(pState);
    return StsNoErr;
}

// ---------------------------------------------------------------------------------------------------------- allocated

Status lyrsDCTLifterInitAlloc_32f(DCTLifterState_32f** ppState, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter,
                                  Elem32f val)
{
    LYR_CHECK(pointers(ppState), sizes(nLifter), dimensions(lenDCT, lenCepstrum));
    return initAlloc(ppState, lenDCT, lenCepstrum, SineLifter{nLifter, val});
}

Status lyrsDCTLifterInitAlloc_C0_32f(DCTLifterState_32f** ppState, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter,
                                     Elem32f val, Elem32f val0)
{
    LYR_CHECK(pointers(ppState), sizes(nLifter), dimensions(lenDCT, lenCepstrum));
    return initAlloc(ppState, lenDCT, lenCepstrum, SineLifter{nLifter, val, &val0});
}

Status lyrsDCTLifterInitAlloc_Mul_32f(DCTLifterState_32f** ppState, Elem32s lenDCT, const Elem32f* pLifter,
                                      Elem32s lenCepstrum)
{
    LYR_CHECK(pointers(ppState), pointers(pLifter), dimensions(lenDCT, lenCepstrum));
    return initAlloc(ppState, lenDCT, lenCepstrum, GivenLifter<Elem32f>{pLifter, false});
}

Status lyrsDCTLifterInitAlloc_MulC0_32f(DCTLifterState_32f** ppState, Elem32s lenDCT, const Elem32f* pLifter,
                                        Elem32s lenCepstrum)
{
    LYR_CHECK(pointers(ppState), pointers(pLifter), dimensions(lenDCT, lenCepstrum));
    return initAlloc(ppState, lenDCT, lenCepstrum, GivenLifter<Elem32f>{pLifter, true});
}

Status lyrsDCTLifterInitAlloc_16s(DCTLifterState_16s** ppState, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter,
                                  Elem32f val)
{
    LYR_CHECK(pointers(ppState), sizes(nLifter), dimensions(lenDCT, lenCepstrum));
    return initAlloc(ppState, lenDCT, lenCepstrum, SineLifter{nLifter, val});
}

Status lyrsDCTLifterInitAlloc_C0_16s(DCTLifterState_16s** ppState, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter,
                                     Elem32f val, Elem32f val0)
{
    LYR_CHECK(pointers(ppState), sizes(nLifter), dimensions(lenDCT, lenCepstrum));
    return initAlloc(ppState, lenDCT, lenCepstrum, SineLifter{nLifter, val, &val0});
}

Status lyrsDCTLifterInitAlloc_Mul_16s(DCTLifterState_16s** ppState, Elem32s lenDCT, const Elem32f* pLifter,
                                      Elem32s lenCepstrum)
{
    LYR_CHECK(pointers(ppState), pointers(pLifter), dimensions(lenDCT, lenCepstrum));
    return initAlloc(ppState, lenDCT, lenCepstrum, GivenLifter<Elem32f>{pLifter, false});
}

Status lyrsDCTLifterInitAlloc_MulC0_16s(DCTLifterState_16s** ppState, Elem32s lenDCT, const Elem32s* pLifter,
                                        Elem32s lenCepstrum)
{
    LYR_CHECK(pointers(ppState), pointers(pLifter), dimensions(lenDCT, lenCepstrum));
    return initAlloc(ppState, lenDCT, lenCepstrum, GivenLifter<Elem32s>{pLifter, true});
}

Status lyrsDCTLifterFree_32f(DCTLifterState_32f* pState)
{
    LYR_CHECK(pointers(pState));
    lyr::Free2d(pState->pRows);
    lyrsFree(pState->pLifter);
    lyrsFree(pState);
    return StsNoErr;
}

Status lyrsDCTLifterFree_16s(DCTLifterState_16s* pState)
{
    LYR_CHECK(pointers(pState));
    lyr::Free2d(pState->pRows);
    lyrsFree(pState->pLifter);
    lyrsFree(pState->pTmp);
    lyrsFree(pState);
    return StsNoErr;
}

// ---------------------------------------------------------------------------------------------------------- transform

Status lyrsDCTLifter_32f(const Elem32f* pSrc, Elem32f* pDst, const DCTLifterState_32f* pState)
{
    LYR_CHECK(pointers(pSrc, pDst), pointers(pState));
    kernels.single(lyr::isAligned16(pSrc))(lifterOf(*pState), pSrc, pDst);
    return StsNoErr;
}

Status lyrsDCTLifter_16s_Sfs(const Elem16s* pSrc, Elem16s* pDst, DCTLifterState_16s* pState, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst), pointers(pState));
    kernels.from16s(lifterOf(*pState), pSrc, pState->pTmp);
    return roundCepstra(*pState, pDst, scaleFactor);
}

Status lyrsDCTLifter_32s16s_Sfs(const Elem32s* pSrc, Elem16s* pDst, DCTLifterState_16s* pState, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc), pointers(pDst), pointers(pState));
    kernels.from32s(lifterOf(*pState), pSrc, pState->pTmp);
    return roundCepstra(*pState, pDst, scaleFactor);
}
