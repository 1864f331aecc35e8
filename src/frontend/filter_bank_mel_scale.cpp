// Conversion between hertz and mel, element by element.

#include "frame/check.hpp"
#include "lyrsr.h"

#include <cmath>

namespace {

Status checkConversion(const Elem32f* src, const Elem32f* dst, Elem32s len, Elem32f melMul, Elem32f melDiv)
{
    LYR_CHECK(pointers(src, dst), sizes(len), require(melMul > 0.0F && melDiv > 0.0F, StsSize));
    return StsNoErr;
}

} // namespace

Status lyrsMelToLinear_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len, Elem32f melMul, Elem32f melDiv)
{
    LYR_CHECK(checkConversion(pSrc, pDst, len, melMul, melDiv));
    const Elem64f perMul = 1.0 / melMul;
    for (Elem32s i = 0; i < len; ++i) {
        pDst[i] = static_cast<Elem32f>(melDiv * (std::exp(pSrc[i] * perMul) - 1.0));
    }
    return StsNoErr;
}

Status lyrsLinearToMel_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len, Elem32f melMul, Elem32f melDiv)
{
    LYR_CHECK(checkConversion(pSrc, pDst, len, melMul, melDiv));
    const Elem64f perDiv = 1.0 / melDiv;
    for (Elem32s i = 0; i < len; ++i) {
        pDst[i] = static_cast<Elem32f>(melMul * std::log(1.0 + pSrc[i] * perDiv));
    }
    return StsNoErr;
}
