// Scores of one frame against many Gaussians with diagonal covariances: each alone, as a running best, as a running
// log-sum, and of the mixture as a whole.
//
// Rows of the model are the means and inverse variances of one Gaussian each. Log-sums go in blocks of Gaussians
// through a buffer on the stack, so that no size of mixture costs an allocation.

#include "frame/check.hpp"
#include "frame/layout.hpp"
#include "frame/select.hpp"
#include "lyrsr.h"
#include "scoring/log_add_kernels.hpp"
#include "scoring/mixture_kernels.hpp"

using lyr::areAligned16;
using lyr::Block;
using lyr::ElementOf;
using lyr::RowWeights;
using lyr::Table;
using lyr::UnitWeights;

namespace {

const lyr::MixtureKernels kernels = LYR_SELECT_KERNELS(mixtureKernels);
const lyr::LogAddKernels logAddKernels = LYR_SELECT_KERNELS(logAddKernels);

// The stride that keeps aligned rows aligned: 16 bytes of singles, and 4 elements of doubles as for frames.
constexpr Elem32s stepUnit = 4;

const auto& kernelsOf(Block<const Elem32f>)
{
    return kernels.block32f;
}
const auto& kernelsOf(Table<const Elem32f>)
{
    return kernels.table32f;
}
const auto& kernelsOf(Block<const Elem64f>)
{
    return kernels.block64f;
}
const auto& kernelsOf(Table<const Elem64f>)
{
    return kernels.table64f;
}

template <class Rows, class T>
void scoreEach(Rows means, RowWeights<Rows> vars, const T* x, Elem32s width, T* srcDst, Elem32s height)
{
    const bool aligned = areAligned16(x) && means.isAligned(height, stepUnit) && vars.rows.isAligned(height, stepUnit);
    kernelsOf(means).scores(aligned)(means, vars, x, width, srcDst, height);
}

template <class Rows, class T>
void keepBest(Rows means, Rows vars, const T* x, Elem32s width, const T* gconst, T* srcDst, Elem32s height)
{
    const bool aligned =
        areAligned16(x, gconst) && means.isAligned(height, stepUnit) && vars.isAligned(height, stepUnit);
    kernelsOf(means).best(aligned)(means, RowWeights{vars}, x, width, gconst, srcDst, height);
}

template <class T>
void copy(const T* src, T* dst, Elem32s len)
{
    for (Elem32s i = 0; i < len; ++i) {
        dst[i] = src[i];
    }
}

template <class Rows, class T>
void addScores(Rows means, Rows vars, const T* x, Elem32s width, const T* gconst, T* srcDst, Elem32s height,
               lyr::LogAddKernel<T>* logAdd)
{
    alignas(32) T block[lyr::blockHeight];
    for (Elem32s first = 0; first < height;) {
        const Elem32s n = height - first < lyr::blockHeight ? height - first : lyr::blockHeight;
        copy(gconst + first, block, n);
        scoreEach(means.from(first), RowWeights{vars.from(first)}, x, width, block, n);
        logAdd(block, srcDst + first, n);
        first += n;
    }
}

template <class Rows, class T>
T sumOfMixture(Rows means, RowWeights<Rows> vars, const T* x, Elem32s width, const T* gconst, Elem32s height)
{
    const bool aligned = areAligned16(x) && means.isAligned(height, stepUnit) && vars.rows.isAligned(height, stepUnit);
    return kernelsOf(means).mixture(aligned)(means, vars, x, width, gconst, height);
}

template <class Rows, class T>
T sumOfMixture(Rows means, UnitWeights vars, const T* x, Elem32s width, const T* gconst, Elem32s height)
{
    const bool aligned = areAligned16(x) && means.isAligned(height, stepUnit);
    return kernelsOf(means).unitMixture(aligned)(means, vars, x, width, gconst, height);
}

} // namespace

// ------------------------------------------------------------------------------------------------ each Gaussian alone

Status lyrsLogGaussMultiMix_32f_D2(const Elem32f* pMean, const Elem32f* pVar, Elem32s step, const Elem32f* pSrc,
                                   Elem32s width, Elem32f* pSrcDst, Elem32s height)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pMean, pVar, pSrcDst), sizes(width, height));
    const Block means{pMean, step};
    const Block vars{pVar, step};
    scoreEach(means, RowWeights{vars}, pSrc, width, pSrcDst, height);
    return StsNoErr;
}

Status lyrsLogGaussMultiMix_32f_D2L(const Elem32f* const* mMean, const Elem32f* const* mVar, const Elem32f* pSrc,
                                    Elem32s width, Elem32f* pSrcDst, Elem32s height)
{
    LYR_CHECK(pointers(mMean, mVar), pointers(pSrc, pSrcDst), sizes(width, height));
    const Table means{mMean};
    const Table vars{mVar};
    scoreEach(means, RowWeights{vars}, pSrc, width, pSrcDst, height);
    return StsNoErr;
}

Status lyrsLogGaussMultiMix_64f_D2(const Elem64f* pMean, const Elem64f* pVar, Elem32s step, const Elem64f* pSrc,
                                   Elem32s width, Elem64f* pSrcDst, Elem32s height)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pMean, pVar, pSrcDst), sizes(width, height));
    const Block means{pMean, step};
    const Block vars{pVar, step};
    scoreEach(means, RowWeights{vars}, pSrc, width, pSrcDst, height);
    return StsNoErr;
}

Status lyrsLogGaussMultiMix_64f_D2L(const Elem64f* const* mMean, const Elem64f* const* mVar, const Elem64f* pSrc,
                                    Elem32s width, Elem64f* pSrcDst, Elem32s height)
{
    LYR_CHECK(pointers(mMean, mVar), pointers(pSrc, pSrcDst), sizes(width, height));
    const Table means{mMean};
    const Table vars{mVar};
    scoreEach(means, RowWeights{vars}, pSrc, width, pSrcDst, height);
    return StsNoErr;
}

// -------------------------------------------------------------------------------------------------------- running best

Status lyrsLogGaussMaxMultiMix_32f_D2(const Elem32f* pMean, const Elem32f* pVar, Elem32s step, const Elem32f* pSrc,
                                      Elem32s width, const Elem32f* pGconst, Elem32f* pSrcDst, Elem32s height)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pMean, pVar, pGconst, pSrcDst), sizes(width, height));
    const Block means{pMean, step};
    const Block vars{pVar, step};
    keepBest(means, vars, pSrc, width, pGconst, pSrcDst, height);
    return StsNoErr;
}

Status lyrsLogGaussMaxMultiMix_32f_D2L(const Elem32f* const* mMean, const Elem32f* const* mVar, const Elem32f* pSrc,
                                       Elem32s width, const Elem32f* pGconst, Elem32f* pSrcDst, Elem32s height)
{
    LYR_CHECK(pointers(mMean, mVar), pointers(pSrc, pGconst, pSrcDst), sizes(width, height));
    const Table means{mMean};
    const Table vars{mVar};
    keepBest(means, vars, pSrc, width, pGconst, pSrcDst, height);
    return StsNoErr;
}

Status lyrsLogGaussMaxMultiMix_64f_D2(const Elem64f* pMean, const Elem64f* pVar, Elem32s step, const Elem64f* pSrc,
                                      Elem32s width, const Elem64f* pGconst, Elem64f* pSrcDst, Elem32s height)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pMean, pVar, pGconst, pSrcDst), sizes(width, height));
    const Block means{pMean, step};
    const Block vars{pVar, step};
    keepBest(means, vars, pSrc, width, pGconst, pSrcDst, height);
    return StsNoErr;
}

Status lyrsLogGaussMaxMultiMix_64f_D2L(const Elem64f* const* mMean, const Elem64f* const* mVar, const Elem64f* pSrc,
                                       Elem32s width, const Elem64f* pGconst, Elem64f* pSrcDst, Elem32s height)
{
    LYR_CHECK(pointers(mMean, mVar), pointers(pSrc, pGconst, pSrcDst), sizes(width, height));
    const Table means{mMean};
    const Table vars{mVar};
    keepBest(means, vars, pSrc, width, pGconst, pSrcDst, height);
    return StsNoErr;
}

// ----------------------------------------------------------------------------------------------------- running log-sum

Status lyrsLogGaussAddMultiMix_32f_D2(const Elem32f* pMean, const Elem32f* pVar, Elem32s step, const Elem32f* pSrc,
                                      Elem32s width, const Elem32f* pGconst, Elem32f* pSrcDst, Elem32s height)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pMean, pVar, pGconst, pSrcDst), sizes(width, height));
    const Block means{pMean, step};
    const Block vars{pVar, step};
    addScores(means, vars, pSrc, width, pGconst, pSrcDst, height, logAddKernels.accurate32f);
    return StsNoErr;
}

Status lyrsLogGaussAddMultiMix_32f_D2L(const Elem32f* const* mMean, const Elem32f* const* mVar, const Elem32f* pSrc,
                                       Elem32s width, const Elem32f* pGconst, Elem32f* pSrcDst, Elem32s height)
{
    LYR_CHECK(pointers(mMean, mVar), pointers(pSrc, pGconst, pSrcDst), sizes(width, height));
    const Table means{mMean};
    const Table vars{mVar};
    addScores(means, vars, pSrc, width, pGconst, pSrcDst, height, logAddKernels.accurate32f);
    return StsNoErr;
}

Status lyrsLogGaussAddMultiMix_64f_D2(const Elem64f* pMean, const Elem64f* pVar, Elem32s step, const Elem64f* pSrc,
                                      Elem32s width, const Elem64f* pGconst, Elem64f* pSrcDst, Elem32s height)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pMean, pVar, pGconst, pSrcDst), sizes(width, height));
    const Block means{pMean, step};
    const Block vars{pVar, step};
    addScores(means, vars, pSrc, width, pGconst, pSrcDst, height, logAddKernels.double64f);
    return StsNoErr;
}

Status lyrsLogGaussAddMultiMix_64f_D2L(const Elem64f* const* mMean, const Elem64f* const* mVar, const Elem64f* pSrc,
                                       Elem32s width, const Elem64f* pGconst, Elem64f* pSrcDst, Elem32s height)
{
    LYR_CHECK(pointers(mMean, mVar), pointers(pSrc, pGconst, pSrcDst), sizes(width, height));
    const Table means{mMean};
    const Table vars{mVar};
    addScores(means, vars, pSrc, width, pGconst, pSrcDst, height, logAddKernels.double64f);
    return StsNoErr;
}

// ------------------------------------------------------------------------------------------------- whole mixture

// These test the pointers before the stride, the other families the stride first.

Status lyrsLogGaussMixture_32f_D2(const Elem32f* pSrc, const Elem32f* pMean, const Elem32f* pVar, Elem32s height,
                                  Elem32s step, Elem32s width, const Elem32f* pGconst, Elem32f* pResult)
{
    LYR_CHECK(pointers(pSrc, pMean, pVar, pGconst, pResult), stride(width, step), sizes(height, width));
    *pResult = sumOfMixture(Block{pMean, step}, RowWeights{Block{pVar, step}}, pSrc, width, pGconst, height);
    return StsNoErr;
}

Status lyrsLogGaussMixture_32f_D2L(const Elem32f* pSrc, const Elem32f* const* mMean, const Elem32f* const* mVar,
                                   Elem32s height, Elem32s width, const Elem32f* pGconst, Elem32f* pResult)
{
    LYR_CHECK(pointers(mMean, mVar), pointers(pSrc, pGconst, pResult), sizes(height, width));
    *pResult = sumOfMixture(Table{mMean}, RowWeights{Table{mVar}}, pSrc, width, pGconst, height);
    return StsNoErr;
}

Status lyrsLogGaussMixture_64f_D2(const Elem64f* pSrc, const Elem64f* pMean, const Elem64f* pVar, Elem32s height,
                                  Elem32s step, Elem32s width, const Elem64f* pGconst, Elem64f* pResult)
{
    LYR_CHECK(pointers(pSrc, pMean, pVar, pGconst, pResult), stride(width, step), sizes(height, width));
    *pResult = sumOfMixture(Block{pMean, step}, RowWeights{Block{pVar, step}}, pSrc, width, pGconst, height);
    return StsNoErr;
}

Status lyrsLogGaussMixture_64f_D2L(const Elem64f* pSrc, const Elem64f* const* mMean, const Elem64f* const* mVar,
                                   Elem32s height, Elem32s width, const Elem64f* pGconst, Elem64f* pResult)
{
    LYR_CHECK(pointers(mMean, mVar), pointers(pSrc, pGconst, pResult), sizes(height, width));
    *pResult = sumOfMixture(Table{mMean}, RowWeights{Table{mVar}}, pSrc, width, pGconst, height);
    return StsNoErr;
}

Status lyrsLogGaussMixture_IdVar_32f_D2(const Elem32f* pSrc, const Elem32f* pMean, Elem32s height, Elem32s step,
                                        Elem32s width, const Elem32f* pGconst, Elem32f* pResult)
{
    LYR_CHECK(pointers(pSrc, pMean, pGconst, pResult), stride(width, step), sizes(height, width));
    *pResult = sumOfMixture(Block{pMean, step}, UnitWeights{}, pSrc, width, pGconst, height);
    return StsNoErr;
}

Status lyrsLogGaussMixture_IdVar_32f_D2L(const Elem32f* pSrc, const Elem32f* const* mMean, Elem32s height,
                                         Elem32s width, const Elem32f* pGconst, Elem32f* pResult)
{
    LYR_CHECK(pointers(mMean), pointers(pSrc, pGconst, pResult), sizes(height, width));
    *pResult = sumOfMixture(Table{mMean}, UnitWeights{}, pSrc, width, pGconst, height);
    return StsNoErr;
}

Status lyrsLogGaussMixture_IdVar_64f_D2(const Elem64f* pSrc, const Elem64f* pMean, Elem32s height, Elem32s step,
                                        Elem32s width, const Elem64f* pGconst, Elem64f* pResult)
{
    LYR_CHECK(pointers(pSrc, pMean, pGconst, pResult), stride(width, step), sizes(height, width));
    *pResult = sumOfMixture(Block{pMean, step}, UnitWeights{}, pSrc, width, pGconst, height);
    return StsNoErr;
}

Status lyrsLogGaussMixture_IdVar_64f_D2L(const Elem64f* pSrc, const Elem64f* const* mMean, Elem32s height,
                                         Elem32s width, const Elem64f* pGconst, Elem64f* pResult)
{
    LYR_CHECK(pointers(mMean), pointers(pSrc, pGconst, pResult), sizes(height, width));
    *pResult = sumOfMixture(Table{mMean}, UnitWeights{}, pSrc, width, pGconst, height);
    return StsNoErr;
}
