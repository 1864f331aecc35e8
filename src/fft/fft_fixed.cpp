// The fixed-point transform: 16-bit samples to singles, the real transform, and its spectrum to scaled 32-bit integers.
#include "fft/fft_record.hpp"
#include "frame/check.hpp"
#include "frame/memory.hpp"
#include "frame/rounding.hpp"

#include <limits>

using namespace lyr;
using namespace lyr::fft;

namespace {

constexpr Elem32s headSize = 64; // this record in front of the other, and its alignment

// The singles of the signal and 8 bytes.
constexpr std::uint64_t signalBytes(Elem32s order)
{
    return (std::uint64_t{4} << order) + 8;
}

} // namespace

Status lyrsFFTGetSize_R_16s32s(Elem32s order, Elem32s flag, Elem32s hint, Elem32s* pSpecSize, Elem32s* pInitBufSize,
                               Elem32s* pBufSize)
{
    LYR_CHECK(lyrsFFTGetSize_R_32f(order, flag, hint, pSpecSize, pInitBufSize, pBufSize));
    *pSpecSize = wrappedSum(*pSpecSize, headSize);
    *pInitBufSize = *pInitBufSize == 0 ? 0 : wrappedSum(*pInitBufSize, tableAlignment);
    *pBufSize = wrappedSum(*pBufSize, signalBytes(order) + tableAlignment);
    return StsNoErr;
}

Status lyrsFFTInit_R_16s32s(FFTSpec_R_16s32s** ppSpec, Elem32s order, Elem32s flag, Elem32s hint, Elem8u* pMem,
                            Elem8u* pInitBuf)
{
    LYR_CHECK(pointers(ppSpec), require(isOrder(order), StsFftOrder), pointers(pMem));
    auto* const spec = reinterpret_cast<FFTSpec_R_16s32s*>(alignUp(pMem, tableAlignment));
    FFTSpec_R_32f* inner = nullptr;
    // The head stays without its tag until the record behind it is complete.
    *spec = {};
    LYR_CHECK(lyrsFFTInit_R_32f(&inner, order, flag, 0, alignUp(reinterpret_cast<Elem8u*>(spec + 1), tableAlignment),
                                pInitBuf));
    Elem32s bufSize = 0;
    LYR_CHECK(lyrsFFTGetBufSize_R_32f(inner, &bufSize));
    spec->idCtx = fixedTag;
    spec->order = order;
    spec->hint = hint;
    spec->bufSize = wrappedSum(bufSize, signalBytes(order));
    spec->pSpec = inner;
    *ppSpec = spec;
    return StsNoErr;
}

Status lyrsFFTInitAlloc_R_16s32s(FFTSpec_R_16s32s** ppSpec, Elem32s order, Elem32s flag, Elem32s hint)
{
    return allocateRecord(ppSpec, order, flag, hint, lyrsFFTGetSize_R_16s32s, lyrsFFTInit_R_16s32s, tableAlignment);
}

Status lyrsFFTFree_R_16s32s(FFTSpec_R_16s32s* pSpec)
{
    return releaseRecord(pSpec, fixedTag);
}

Status lyrsFFTFwd_RToCCS_16s32s_Sfs(const Elem16s* pSrc, Elem32s* pDst, const FFTSpec_R_16s32s* pSpec,
                                    Elem32s scaleFactor, Elem8u* pBuffer)
{
    LYR_CHECK(pointers(pSpec));
    LYR_CHECK(require(pSpec->idCtx == fixedTag, StsContext), pointers(pSrc, pDst));
    // At the top orders the signal alone is more than a size in 32 bits can say: such a buffer cannot be had.
    const std::uint64_t needed =
        signalBytes(pSpec->order) + static_cast<std::uint64_t>(pSpec->pSpec->bufSize) + tableAlignment;
    LYR_CHECK(require(needed <= static_cast<std::uint64_t>(std::numeric_limits<Elem32s>::max()), StsMemAlloc));
    const WorkBuffer<Elem8u> own(pBuffer == nullptr ? pSpec->bufSize : 0);
    Elem8u* const buffer = alignUp(pBuffer == nullptr ? own.data() : pBuffer, tableAlignment);
    LYR_CHECK(require(buffer != nullptr, StsMemAlloc));

    const Elem32s n = 1 << pSpec->order;
    auto* const signal = reinterpret_cast<Elem32f*>(buffer);
    LYR_CHECK(lyrsConvert_16s32f(pSrc, signal, n));
    LYR_CHECK(
        lyrsFFTFwd_RToPerm_32f(signal, signal, pSpec->pSpec, buffer + sizeof(Elem32f) * static_cast<std::size_t>(n)));
    LYR_CHECK(lyrsConvert_32f32s_Sfs(signal, pDst, n, convertToNearest, scaleFactor));
    // From R0, R(N/2), ... to R0, 0, ..., R(N/2), 0; one point makes R0 and a zero.
    if (n > 1) {
        pDst[n] = pDst[1];
        pDst[n + 1] = 0;
    }
    pDst[1] = 0;
    return StsNoErr;
}
