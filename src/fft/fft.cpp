// The real transform of singles: sizes, state record, and the transforms between a signal and its spectrum.
#include "fft/fft_direct.hpp"
#include "fft/fft_kernels.hpp"
#include "fft/fft_record.hpp"
#include "fft/fft_tables.hpp"
#include "frame/check.hpp"
#include "frame/memory.hpp"

#include <cmath>

namespace lyr::fft {

const FftKernels kernels = LYR_SELECT_KERNELS(fftKernels);

namespace {

constexpr Elem32s toSigned(std::uint64_t bytes)
{
    return static_cast<Elem32s>(static_cast<std::uint32_t>(bytes));
}

constexpr bool isFlag(Elem32s flag)
{
    return flag == 1 || flag == 2 || flag == 4 || flag == 8;
}

void setNorm(FFTSpec_R_32f& spec, Elem32s flag) noexcept
{
    spec.fwdNorm = flag == 1 || flag == 4 ? 1 : 0;
    spec.invNorm = flag == 2 || flag == 4 ? 1 : 0;
    const long double n = std::ldexp(1.0L, spec.order);
    if (flag != 8) {
        spec.normFactor = static_cast<float>(1.0L / (flag == 4 ? std::sqrt(n) : n));
    }
}

// The work memory of one transform: the caller's, or for its duration an allocated one.
class Workspace
{
public:
    Workspace(const FFTSpec_R_32f& spec, Elem8u* given) noexcept
        : own(given != nullptr || spec.bufSize < 1 ? 0 : Elem64s{spec.bufSize} + static_cast<Elem64s>(tableAlignment)),
          start(given != nullptr ? given : own.data())
    {}

    [[nodiscard]] bool isMissing(const FFTSpec_R_32f& spec) const noexcept
    {
        return spec.bufSize >= 1 && start == nullptr;
    }

    // A whole cache line where the spare bytes reach it.
    [[nodiscard]] float* data() const noexcept
    {
        Elem8u* const line = alignUp(start, 64);
        return reinterpret_cast<float*>(line - start <= static_cast<std::ptrdiff_t>(tableAlignment) ? line
                                                                                                    : alignUp(start));
    }

private:
    WorkBuffer<Elem8u> own;
    Elem8u* start;
};

Status forward(const Elem32f* pSrc, Elem32f* pDst, const FFTSpec_R_32f* pSpec, Elem8u* pBuffer, Layout layout)
{
    LYR_CHECK(pointers(pSpec));
    LYR_CHECK(require(pSpec->idCtx == realTag, StsContext), pointers(pSrc, pDst));
    if (pSpec->order >= directBelow) {
        const Workspace work(*pSpec, pBuffer);
        if (work.isMissing(*pSpec)) {
            return StsMemAlloc;
        }
        kernels.forward(*pSpec, planOf(pSpec->order, kernels.lanes), pSrc, pDst, work.data(), layout);
        return StsNoErr;
    }
    const Elem32s n = 1 << pSpec->order;
    directForward[pSpec->order][pSpec->fwdNorm != 0 ? 1 : 0](pSrc, pDst, pSpec->normFactor);
    if (layout == Layout::Ccs) {
        pDst[n] = n == 1 ? 0.0F : pDst[1]; // one point makes two elements, R0 and a zero
        pDst[1] = 0.0F;
        if (n > 1) {
            pDst[n + 1] = 0.0F;
        }
    } else if (layout == Layout::Pack && n > 2) {
        const Elem32f last = pDst[1];
        for (Elem32s i = 2; i < n; ++i) {
            pDst[i - 1] = pDst[i];
        }
        pDst[n - 1] = last;
    }
    return StsNoErr;
}

} // namespace
} // namespace lyr::fft

using namespace lyr;
using namespace lyr::fft;

Status lyrsFFTGetSize_R_32f(Elem32s order, Elem32s flag, Elem32s /*hint*/, Elem32s* pSpecSize, Elem32s* pInitBufSize,
                            Elem32s* pBufSize)
{
    // The order ahead of the pointers, and the flag last: meant so.
    LYR_CHECK(require(isOrder(order), StsFftOrder), pointers(pSpecSize, pInitBufSize, pBufSize),
              require(isFlag(flag), StsFftFlag));
    const Sizes sizes = sizesOf(order);
    *pSpecSize = toSigned(sizes.spec);
    *pInitBufSize = toSigned(sizes.init);
    *pBufSize = toSigned(sizes.buffer);
    return StsNoErr;
}

Status lyrsFFTInit_R_32f(FFTSpec_R_32f** ppSpec, Elem32s order, Elem32s flag, Elem32s hint, Elem8u* pMem,
                         Elem8u* pInitBuf)
{
    LYR_CHECK(pointers(ppSpec), require(isOrder(order), StsFftOrder), pointers(pMem));
    auto* const spec = reinterpret_cast<FFTSpec_R_32f*>(alignUp(pMem, tableAlignment));
    *spec = {};
    spec->order = order;
    spec->hint = hint;
    // A refused flag leaves a cleared record that no function takes; a missing buffer one that is alive all the same,
    // and is not handed out.
    LYR_CHECK(require(isFlag(flag), StsFftFlag));
    spec->idCtx = realTag;
    setNorm(*spec, flag);
    if (order >= directBelow) {
        const float* sine = constantSine();
        int sineOrder = constantSineOrder;
        if (order > constantSineOrder) {
            LYR_CHECK(pointers(pInitBuf));
            auto* const computed = reinterpret_cast<float*>(alignUp(pInitBuf, tableAlignment));
            computeSine(computed, order);
            sine = computed;
            sineOrder = order;
        }
        spec->bufSize = toSigned(sizesOf(order).buffer - tableAlignment);
        buildTables(*spec, planOf(order, kernels.lanes), sine, sineOrder);
    }
    *ppSpec = spec;
    return StsNoErr;
}

Status lyrsFFTInitAlloc_R_32f(FFTSpec_R_32f** ppSpec, Elem32s order, Elem32s flag, Elem32s hint)
{
    return allocateRecord(ppSpec, order, flag, hint, lyrsFFTGetSize_R_32f, lyrsFFTInit_R_32f, 0);
}

Status lyrsFFTFree_R_32f(FFTSpec_R_32f* pSpec)
{
    return releaseRecord(pSpec, realTag);
}

Status lyrsFFTGetBufSize_R_32f(const FFTSpec_R_32f* pSpec, Elem32s* pBufSize)
{
    LYR_CHECK(pointers(pSpec, pBufSize));
    LYR_CHECK(require(pSpec->idCtx == realTag, StsContext));
    *pBufSize = pSpec->bufSize < 1 ? 0 : pSpec->bufSize + static_cast<Elem32s>(tableAlignment);
    return StsNoErr;
}

Status lyrsFFTFwd_RToPack_32f(const Elem32f* pSrc, Elem32f* pDst, const FFTSpec_R_32f* pSpec, Elem8u* pBuffer)
{
    return forward(pSrc, pDst, pSpec, pBuffer, Layout::Pack);
}

Status lyrsFFTFwd_RToPerm_32f(const Elem32f* pSrc, Elem32f* pDst, const FFTSpec_R_32f* pSpec, Elem8u* pBuffer)
{
    return forward(pSrc, pDst, pSpec, pBuffer, Layout::Perm);
}

Status lyrsFFTFwd_RToCCS_32f(const Elem32f* pSrc, Elem32f* pDst, const FFTSpec_R_32f* pSpec, Elem8u* pBuffer)
{
    return forward(pSrc, pDst, pSpec, pBuffer, Layout::Ccs);
}

Status lyrsFFTInv_PackToR_32f(const Elem32f* pSrc, Elem32f* pDst, const FFTSpec_R_32f* pSpec, Elem8u* pBuffer)
{
    LYR_CHECK(pointers(pSpec));
    LYR_CHECK(require(pSpec->idCtx == realTag, StsContext), pointers(pSrc, pDst));
    if (pSpec->order >= directBelow) {
        const Workspace work(*pSpec, pBuffer);
        if (work.isMissing(*pSpec)) {
            return StsMemAlloc;
        }
        kernels.inverse(*pSpec, planOf(pSpec->order, kernels.lanes), pSrc, pDst, work.data());
        return StsNoErr;
    }
    const Elem32s n = 1 << pSpec->order;
    Elem32f perm[8];
    perm[0] = pSrc[0];
    if (n > 1) {
        perm[1] = pSrc[n - 1];
    }
    for (Elem32s i = 2; i < n; ++i) {
        perm[i] = pSrc[i - 1];
    }
    directInverse[pSpec->order][pSpec->invNorm != 0 ? 1 : 0](perm, pDst, pSpec->normFactor);
    return StsNoErr;
}
