// Evaluation of filter banks: a spectrum, or a frame that the bank transforms itself, to one energy for each filter.

#include "frame/check.hpp"
#include "frame/select.hpp"
#include "frontend/filter_bank.hpp"
#include "frontend/filter_bank_eval_kernels.hpp"

#include <algorithm>
#include <type_traits>

namespace {

const lyr::FilterBankKernels kernels = LYR_SELECT_KERNELS(filterBankKernels);
// A side of a filter seldom fills 16 lanes: the narrower vectors measure faster for singles, which have more lanes than
// sums of 64 bits. This and not `kernels.singles` is what runs.
lyr::BankKernel* const evaluateSingles = LYR_SELECT_KERNELS_UP_TO_256(filterBankKernels).singles;

// Of the transform and of the magnitudes, and the fraction bits that the two leave in a spectrum.
constexpr Elem32s transformScale = -3;
constexpr Elem32s magnitudeScale = -3;
constexpr Elem32s spectrumBits = 6;

template <class State>
auto view(const State& bank)
{
    using Weight = std::remove_reference_t<decltype(**bank.pCoefLeft)>;
    return lyr::BankView<Weight>{bank.pCenters, bank.pCoefLeft,  bank.pCoefRight,
                                 bank.nFilter,  bank.fftLen / 2, bank.inOrder != 0};
}

template <class State>
Status checkEvaluation(const void* src, const void* dst, const State* bank)
{
    LYR_CHECK(pointers(src, dst, bank));
    LYR_CHECK(pointers(bank->pCenters));
    LYR_CHECK(require(bank->ready != 0, StsFBankNotReady));
    return StsNoErr;
}

// The magnitudes of a frame, in the bank's scratch.
Status transform(const FBankState_32f& bank, const Elem32f* frame)
{
    LYR_CHECK(lyrsFFTFwd_RToCCS_32f(frame, bank.pWork, bank.pFFTSpec, bank.pFFTBuffer));
    return lyrsMagnitude_32fc(reinterpret_cast<const Elem32fc*>(bank.pWork), bank.pWork, bank.fftLen / 2 + 1);
}

Status transform(const FBankState_16s& bank, const Elem16s* frame)
{
    LYR_CHECK(lyrsFFTFwd_RToCCS_16s32s_Sfs(frame, bank.pWork, bank.pFFTSpec, transformScale, bank.pFFTBuffer));
    return lyrsMagnitude_32sc_Sfs(reinterpret_cast<const Elem32sc*>(bank.pWork), bank.pWork, bank.fftLen / 2 + 1,
                                  magnitudeScale);
}

// Counts beyond the width of a sum give what the width gives.
Elem32s boundedShift(Elem64s shift)
{
    return static_cast<Elem32s>(std::clamp<Elem64s>(shift, -64, 64));
}

template <class D>
Status evaluate16s(const Elem16s* src, D* dst, const FBankState_16s* bank, Elem32s scaleFactor,
                   lyr::IntegerBankKernel<Elem16s, D>* ofSpectrum, lyr::IntegerBankKernel<Elem32s, D>* ofMagnitudes)
{
    LYR_CHECK(checkEvaluation(src, dst, bank));
    const Elem64s shift = Elem64s{bank->scale} + scaleFactor;
    if (lyr::fromFrames(bank->flag)) {
        LYR_CHECK(transform(*bank, src));
        ofMagnitudes(view(*bank), bank->pWork, dst, boundedShift(shift + spectrumBits));
    } else {
        ofSpectrum(view(*bank), src, dst, boundedShift(shift));
    }
    return StsNoErr;
}

} // namespace

Status lyrsEvalFBank_32f(const Elem32f* pSrc, Elem32f* pDst, const FBankState_32f* pFBank)
{
    LYR_CHECK(checkEvaluation(pSrc, pDst, pFBank));
    if (lyr::fromFrames(pFBank->flag)) {
        LYR_CHECK(transform(*pFBank, pSrc));
        evaluateSingles(view(*pFBank), pFBank->pWork, pDst);
    } else {
        evaluateSingles(view(*pFBank), pSrc, pDst);
    }
    return StsNoErr;
}

// Each product of a weight and a magnitude of the internal transform wraps at 32 bits, in this member alone: meant.
Status lyrsEvalFBank_16s_Sfs(const Elem16s* pSrc, Elem16s* pDst, const FBankState_16s* pFBank, Elem32s scaleFactor)
{
    return evaluate16s(pSrc, pDst, pFBank, scaleFactor, kernels.from16sTo16s, kernels.magnitudesTo16s);
}

Status lyrsEvalFBank_16s32s_Sfs(const Elem16s* pSrc, Elem32s* pDst, const FBankState_16s* pFBank, Elem32s scaleFactor)
{
    return evaluate16s(pSrc, pDst, pFBank, scaleFactor, kernels.from16sTo32s, kernels.magnitudesTo32s);
}

Status lyrsEvalFBank_32s_Sfs(const Elem32s* pSrc, Elem32s* pDst, const FBankState_32s* pFBank, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDst, pFBank), require(scaleFactor >= -31 && scaleFactor <= 31, StsBadArg));
    const Elem32s filters = pFBank->nFilter;
    const Elem32s top = pFBank->nBins - 1;
    if (filters >= 1) {
        kernels.from32sTo32s({pFBank->pCenters, pFBank->pCoefLeft, pFBank->pCoefRight, filters, top,
                              lyr::areInOrder(pFBank->pCenters, filters, top)},
                             pSrc, pDst, scaleFactor);
    }
    return StsNoErr;
}
