// Scores of feature frames against one Gaussian with a diagonal covariance.

#include "frame/check.hpp"
#include "frame/layout.hpp"
#include "frame/memory.hpp"
#include "frame/select.hpp"
#include "lyrsr.h"
#include "scoring/log_gauss_kernels.hpp"

using lyr::areAligned16;
using lyr::Block;
using lyr::Doubled;
using lyr::Plain;
using lyr::SharedWeights;
using lyr::Table;
using lyr::UnitWeights;

namespace {

const lyr::LogGaussKernels kernels = LYR_SELECT_KERNELS(logGaussKernels);

// Frames narrower than this fill no register. Their products are subtracted from twice the constant one by one, where
// the kernels add the products up first: a rounding of its own, and meant.
constexpr Elem32s kernelWidth = 4;

// In double precision the stride of a block must be a multiple of 4 elements for the aligned kernels, stricter than 16
// bytes ask for: meant, and a matter of speed alone.
constexpr Elem32s stepUnit64f = 4;

template <class Rows>
void scoreNarrowFrames(Rows frames, const Elem32f* mean, const Elem32f* var, Elem32s width, Elem32f* dst,
                       Elem32s height, Elem32f gconst)
{
    for (Elem32s f = 0; f < height; ++f) {
        const Elem32f* const x = frames.row(f);
        Elem32f t = 2.0F * gconst;
        for (Elem32s i = 0; i < width; ++i) {
            const Elem32f d = x[i] - mean[i];
            t -= var != nullptr ? d * d * var[i] : d * d;
        }
        dst[f] = t * 0.5F;
    }
}

} // namespace

// ---------------------------------------------------------------------------------------------------------- one frame

Status lyrsLogGaussSingle_32f(const Elem32f* pSrc, const Elem32f* pMean, const Elem32f* pVar, Elem32s len,
                              Elem32f* pResult, Elem32f gconst)
{
    LYR_CHECK(pointers(pSrc, pMean, pVar, pResult), sizes(len));
    const auto distance = kernels.weighted32f(areAligned16(pSrc, pMean, pVar));
    *pResult = Doubled{gconst}.score(distance(pSrc, pMean, pVar, len));
    return StsNoErr;
}

Status lyrsLogGaussSingle_64f(const Elem64f* pSrc, const Elem64f* pMean, const Elem64f* pVar, Elem32s len,
                              Elem64f* pResult, Elem64f gconst)
{
    LYR_CHECK(pointers(pSrc, pMean, pVar, pResult), sizes(len));
    const auto distance = kernels.weighted64f(areAligned16(pSrc, pMean, pVar));
    *pResult = Plain{gconst}.score(distance(pSrc, pMean, pVar, len));
    return StsNoErr;
}

Status lyrsLogGaussSingle_32f64f(const Elem32f* pSrc, const Elem32f* pMean, const Elem32f* pVar, Elem32s len,
                                 Elem64f* pResult, Elem64f gconst)
{
    LYR_CHECK(pointers(pSrc, pMean, pVar, pResult), sizes(len));
    *pResult = Plain{gconst}.score(kernels.weighted32f64f(pSrc, pMean, pVar, len));
    return StsNoErr;
}

Status lyrsLogGaussSingle_IdVar_32f(const Elem32f* pSrc, const Elem32f* pMean, Elem32s len, Elem32f* pResult,
                                    Elem32f gconst)
{
    LYR_CHECK(pointers(pSrc, pMean, pResult), sizes(len));
    const auto distance = kernels.unit32f(areAligned16(pSrc, pMean));
    *pResult = Doubled{gconst}.score(distance(pSrc, pMean, nullptr, len));
    return StsNoErr;
}

Status lyrsLogGaussSingle_IdVar_64f(const Elem64f* pSrc, const Elem64f* pMean, Elem32s len, Elem64f* pResult,
                                    Elem64f gconst)
{
    LYR_CHECK(pointers(pSrc, pMean, pResult), sizes(len));
    const auto distance = kernels.unit64f(areAligned16(pSrc, pMean));
    *pResult = Plain{gconst}.score(distance(pSrc, pMean, nullptr, len));
    return StsNoErr;
}

Status lyrsLogGaussSingle_IdVar_32f64f(const Elem32f* pSrc, const Elem32f* pMean, Elem32s len, Elem64f* pResult,
                                       Elem64f gconst)
{
    LYR_CHECK(pointers(pSrc, pMean, pResult), sizes(len));
    *pResult = Plain{gconst}.score(kernels.unit32f64f(pSrc, pMean, nullptr, len));
    return StsNoErr;
}

// The three forms that take variances go three different ways about a zero variance, and callers rely on each.

// Inverts into a work vector and passes the warning of the division on, with the score that the infinities give.
Status lyrsLogGaussSingle_DirectVar_32f(const Elem32f* pSrc, const Elem32f* pMean, const Elem32f* pVar, Elem32s len,
                                        Elem32f* pResult, Elem32f gconst)
{
    LYR_CHECK(pointers(pSrc, pMean, pVar, pResult), sizes(len));
    const lyr::WorkBuffer<Elem32f> inverse(Elem64s{len} + 32);
    LYR_CHECK(require(static_cast<bool>(inverse), StsMemAlloc));
    for (Elem32s i = 0; i < len; ++i) {
        inverse.data()[i] = 1.0F;
    }
    const Status division = lyrsDiv_32f(pVar, inverse.data(), inverse.data(), len);
    const auto distance = kernels.weighted32f(areAligned16(pSrc, pMean, inverse.data()));
    *pResult = Doubled{gconst}.score(distance(pSrc, pMean, inverse.data(), len));
    return division;
}

// Divides without a warning: a zero variance shows as an infinity or a NaN in the score.
Status lyrsLogGaussSingle_DirectVar_64f(const Elem64f* pSrc, const Elem64f* pMean, const Elem64f* pVar, Elem32s len,
                                        Elem64f* pResult, Elem64f gconst)
{
    LYR_CHECK(pointers(pSrc, pMean, pVar, pResult), sizes(len));
    const auto distance = kernels.divided64f(areAligned16(pSrc, pMean, pVar));
    *pResult = Plain{gconst}.score(distance(pSrc, pMean, pVar, len));
    return StsNoErr;
}

// Ends at the first zero variance with the warning of its division, and writes nothing.
Status lyrsLogGaussSingle_DirectVar_32f64f(const Elem32f* pSrc, const Elem32f* pMean, const Elem32f* pVar, Elem32s len,
                                           Elem64f* pResult, Elem64f gconst)
{
    LYR_CHECK(pointers(pSrc, pMean, pVar, pResult), sizes(len));
    for (Elem32s i = 0; i < len; ++i) {
        if (pVar[i] == 0.0F) {
            return StsWarnOverflow;
        }
    }
    *pResult = Plain{gconst}.score(kernels.divided32f64f(pSrc, pMean, pVar, len));
    return StsNoErr;
}

// -------------------------------------------------------------------------------------------------------- many frames

Status lyrsLogGauss_32f_D2(const Elem32f* pSrc, Elem32s step, const Elem32f* pMean, const Elem32f* pVar, Elem32s width,
                           Elem32f* pDst, Elem32s height, Elem32f gconst)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pMean, pVar, pDst), sizes(width, height));
    const Block frames{pSrc, step};
    if (width < kernelWidth) {
        scoreNarrowFrames(frames, pMean, pVar, width, pDst, height, gconst);
        return StsNoErr;
    }
    const bool aligned = frames.isAligned(height) && areAligned16(pMean, pVar);
    kernels.frames32f.blockWeighted(aligned)(frames, pMean, SharedWeights{pVar}, width, pDst, height, Doubled{gconst});
    return StsNoErr;
}

Status lyrsLogGauss_32f_D2L(const Elem32f* const* mPtr, const Elem32f* pMean, const Elem32f* pVar, Elem32s width,
                            Elem32f* pDst, Elem32s height, Elem32f gconst)
{
    LYR_CHECK(pointers(mPtr, pMean, pVar, pDst), sizes(width, height));
    const Table frames{mPtr};
    if (width < kernelWidth) {
        scoreNarrowFrames(frames, pMean, pVar, width, pDst, height, gconst);
        return StsNoErr;
    }
    const bool aligned = frames.isAligned(height) && areAligned16(pMean, pVar);
    kernels.frames32f.tableWeighted(aligned)(frames, pMean, SharedWeights{pVar}, width, pDst, height, Doubled{gconst});
    return StsNoErr;
}

Status lyrsLogGauss_IdVar_32f_D2(const Elem32f* pSrc, Elem32s step, const Elem32f* pMean, Elem32s width, Elem32f* pDst,
                                 Elem32s height, Elem32f gconst)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pMean, pDst), sizes(width, height));
    const Block frames{pSrc, step};
    if (width < kernelWidth) {
        scoreNarrowFrames(frames, pMean, nullptr, width, pDst, height, gconst);
        return StsNoErr;
    }
    const bool aligned = frames.isAligned(height) && areAligned16(pMean);
    kernels.frames32f.blockUnit(aligned)(frames, pMean, UnitWeights{}, width, pDst, height, Doubled{gconst});
    return StsNoErr;
}

// The one member in single precision without a narrow path: every width goes to a kernel. Meant.
Status lyrsLogGauss_IdVar_32f_D2L(const Elem32f* const* mPtr, const Elem32f* pMean, Elem32s width, Elem32f* pDst,
                                  Elem32s height, Elem32f gconst)
{
    LYR_CHECK(pointers(mPtr, pMean, pDst), sizes(width, height));
    const Table frames{mPtr};
    const bool aligned = frames.isAligned(height) && areAligned16(pMean);
    kernels.frames32f.tableUnit(aligned)(frames, pMean, UnitWeights{}, width, pDst, height, Doubled{gconst});
    return StsNoErr;
}

Status lyrsLogGauss_64f_D2(const Elem64f* pSrc, Elem32s step, const Elem64f* pMean, const Elem64f* pVar, Elem32s width,
                           Elem64f* pDst, Elem32s height, Elem64f gconst)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pMean, pVar, pDst), sizes(width, height));
    const Block frames{pSrc, step};
    const bool aligned = frames.isAligned(height, stepUnit64f) && areAligned16(pMean, pVar);
    kernels.frames64f.blockWeighted(aligned)(frames, pMean, SharedWeights{pVar}, width, pDst, height, Plain{gconst});
    return StsNoErr;
}

Status lyrsLogGauss_64f_D2L(const Elem64f* const* mPtr, const Elem64f* pMean, const Elem64f* pVar, Elem32s width,
                            Elem64f* pDst, Elem32s height, Elem64f gconst)
{
    LYR_CHECK(pointers(mPtr, pMean, pVar, pDst), sizes(width, height));
    const Table frames{mPtr};
    const bool aligned = frames.isAligned(height) && areAligned16(pMean, pVar);
    kernels.frames64f.tableWeighted(aligned)(frames, pMean, SharedWeights{pVar}, width, pDst, height, Doubled{gconst});
    return StsNoErr;
}

Status lyrsLogGauss_IdVar_64f_D2(const Elem64f* pSrc, Elem32s step, const Elem64f* pMean, Elem32s width, Elem64f* pDst,
                                 Elem32s height, Elem64f gconst)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pMean, pDst), sizes(width, height));
    const Block frames{pSrc, step};
    const bool aligned = frames.isAligned(height, stepUnit64f) && areAligned16(pMean);
    kernels.frames64f.blockUnit(aligned)(frames, pMean, UnitWeights{}, width, pDst, height, Plain{gconst});
    return StsNoErr;
}

Status lyrsLogGauss_IdVar_64f_D2L(const Elem64f* const* mPtr, const Elem64f* pMean, Elem32s width, Elem64f* pDst,
                                  Elem32s height, Elem64f gconst)
{
    LYR_CHECK(pointers(mPtr, pMean, pDst), sizes(width, height));
    const Table frames{mPtr};
    const bool aligned = frames.isAligned(height) && areAligned16(pMean);
    kernels.frames64f.tableUnit(aligned)(frames, pMean, UnitWeights{}, width, pDst, height, Doubled{gconst});
    return StsNoErr;
}
