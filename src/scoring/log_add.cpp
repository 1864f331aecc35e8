// Log-addition, element by element.

#include "frame/check.hpp"
#include "frame/scale.hpp"
#include "frame/select.hpp"
#include "lyrsr.h"
#include "scoring/log_add_kernels.hpp"
#include "scoring/log_add_scalar.hpp"
#include "scoring/log_fixed.hpp"

namespace {

const lyr::LogAddKernels kernels = LYR_SELECT_KERNELS(logAddKernels);

// In the widest precision of the processor. It goes from the last element to the first, which shows where the vectors
// overlap, and is meant.
void LogAddVec_32f_scalar(const Elem32f* src, Elem32f* srcDst, Elem32s len)
{
    for (Elem32s i = len - 1; i >= 0; --i) {
        const auto a = static_cast<long double>(src[i]);
        const auto b = static_cast<long double>(srcDst[i]);
        srcDst[i] = static_cast<Elem32f>(lyr::logAddSingle<lyr::EvenOdd>(a, b));
    }
}

// What a hint picks: how the addition is evaluated. An unknown one picks nothing, and that is no error.
lyr::LogAddKernel<Elem32f>* kernelOf(Elem32s hint)
{
    switch (hint) {
    case 0:
        return kernels.accurate32f;
    case 1:
        return kernels.single32f;
    case 2:
        return LogAddVec_32f_scalar;
    default:
        return nullptr;
    }
}

// Converts to single precision and adds by the hint, in blocks on the stack. An unknown hint adds nothing, yet the
// elements still go to single precision and back: meant, and it shows above 2^24.
template <class T>
void addFixedPoint(const T* src, T* srcDst, Elem32s len, Elem32s scaleFactor, Elem32s hint)
{
    constexpr Elem32s blockLength = 128;
    alignas(32) Elem32f a[blockLength];
    alignas(32) Elem32f b[blockLength];
    const auto scale = static_cast<Elem32f>(lyr::GetScale_32s64f(scaleFactor));
    lyr::LogAddKernel<Elem32f>* const logAdd = kernelOf(hint);
    for (Elem64s first = 0; first < len; first += blockLength) { // goes beyond 32 bits in the longest vectors
        const auto n = static_cast<Elem32s>(len - first < blockLength ? len - first : blockLength);
        for (Elem32s i = 0; i < n; ++i) {
            a[i] = static_cast<Elem32f>(src[first + i]) * scale;
            b[i] = static_cast<Elem32f>(srcDst[first + i]) * scale;
        }
        if (logAdd != nullptr) {
            logAdd(a, b, n);
        }
        lyr::toFixedPoint(b, srcDst + first, n, scaleFactor);
    }
}

} // namespace

Status lyrsLogAdd_32f(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len, Elem32s hint)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pSrcDst));
    if (lyr::LogAddKernel<Elem32f>* const logAdd = kernelOf(hint)) {
        logAdd(pSrc, pSrcDst, len);
    }
    return StsNoErr;
}

// There is one way to add in double precision; an unknown hint does nothing here too.
Status lyrsLogAdd_64f(const Elem64f* pSrc, Elem64f* pSrcDst, Elem32s len, Elem32s hint)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pSrcDst));
    if (hint >= 0 && hint <= 2) {
        kernels.double64f(pSrc, pSrcDst, len);
    }
    return StsNoErr;
}

Status lyrsLogAdd_32s_Sfs(const Elem32s* pSrc, Elem32s* pSrcDst, Elem32s len, Elem32s scaleFactor, Elem32s hint)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pSrcDst));
    addFixedPoint(pSrc, pSrcDst, len, scaleFactor, hint);
    return StsNoErr;
}

Status lyrsLogAdd_16s_Sfs(const Elem16s* pSrc, Elem16s* pSrcDst, Elem32s len, Elem32s scaleFactor, Elem32s hint)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pSrcDst));
    addFixedPoint(pSrc, pSrcDst, len, scaleFactor, hint);
    return StsNoErr;
}
