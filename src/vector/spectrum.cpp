// Magnitudes of complex vectors, and products of spectra.

#include "frame/check.hpp"
#include "lyrsr.h"
#include "vector/spectrum_kernels.hpp"

namespace {

const lyr::SpectrumKernels kernels = LYR_SELECT_KERNELS(spectrumKernels);

} // namespace

Status lyrsMagnitude_32fc(const Elem32fc* pSrc, Elem32f* pDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(len));
    kernels.magnitude32f(&pSrc->re, pDst, len);
    return StsNoErr;
}

Status lyrsMulPackConj_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(pointers(pSrc, pSrcDst), sizes(len));
    kernels.mulPackConj32f(pSrc, pSrcDst, len);
    return StsNoErr;
}
