// Log-subtraction, element by element. It is rare, and so uses the exponential and the logarithm of the mathematics
// library where log-addition has its polynomials.

#include "scoring/log_sub.hpp"
#include "frame/check.hpp"
#include "frame/fixed_point.hpp"
#include "frame/scale.hpp"
#include "lyrsr.h"

#include <cmath>

namespace lyr {
namespace {

// Whether any difference of subtrahend and minuend, as `subtract` forms it, is 0 or more. NaN is not.
template <class T, class Subtract>
int anyNotBelow(const T* pSrc, const T* pSrcDst, Elem32s len, Subtract subtract)
{
    bool found = false;
    for (Elem32s i = 0; i < len; ++i) {
        found |= subtract(pSrcDst[i], pSrc[i]) >= 0;
    }
    return found ? 1 : 0;
}

struct SubLimits
{
    Elem64f cutOff;   // difference below it: the subtrahend is ignored
    Elem64f smallest; // 1 - exp(d) must be above it
    Elem64f floor;    // stands for the logarithm of zero
};

constexpr SubLimits singleLimits{.cutOff = -15.3195879547406, .smallest = 1.0057e-37, .floor = -4500000.0};
constexpr SubLimits doubleLimits{.cutOff = -23.0258509299405, .smallest = 2.45e-308, .floor = -10000000000.0};

// a + log(1 - exp(d)) for a d not below the cut-off.
Elem64f near(Elem64f a, Elem64f d, const SubLimits& limits)
{
    const Elem64f u = 1.0 - std::exp(d);
    return u > limits.smallest ? a + std::log(u) : limits.floor;
}

// A NaN minuend stays; a NaN subtrahend counts as below the cut-off.
Elem64f logSubSingle(Elem64f a, Elem64f d)
{
    if (d >= singleLimits.cutOff) {
        return near(a, d, singleLimits);
    }
    return a < singleLimits.floor ? singleLimits.floor : a;
}

Elem64f logSubDouble(Elem64f a, Elem64f d)
{
    constexpr Elem64f floorTest = -9000000000.0; // above the floor itself, as meant
    if (d >= doubleLimits.cutOff) {
        return near(a, d, doubleLimits);
    }
    return a < floorTest ? doubleLimits.floor : a;
}

// The difference is scaled and the logarithm added to the unscaled operand. That log-addition scales both is no reason
// to do so here: callers rely on each.
template <class T>
void subtractFixedPoint(const T* src, T* srcDst, Elem32s len, Elem32s scaleFactor)
{
    const Elem32f scale = GetScale_32s32f(scaleFactor);
    for (Elem32s i = 0; i < len; ++i) {
        const Elem32f d = (static_cast<Elem32f>(srcDst[i]) - static_cast<Elem32f>(src[i])) * scale;
        Elem64f r = logSubSingle(static_cast<Elem64f>(src[i]), static_cast<Elem64f>(d));
        r = r < -2147483648.0 ? -2147483648.0 : (r > 2147483647.0 ? 2147483647.0 : r);
        const auto truncated = static_cast<Elem32s>(r);
        if constexpr (sizeof(T) == sizeof(Elem16s)) {
            srcDst[i] = wrap16(truncated); // no saturation to 16 bits, as meant
        } else {
            srcDst[i] = truncated;
        }
    }
}

} // namespace

int ParamErr64f(const Elem64f* pSrc, const Elem64f* pSrcDst, Elem32s len) noexcept
{
    return anyNotBelow(pSrc, pSrcDst, len, [](Elem64f b, Elem64f a) { return b - a; });
}

int ParamErr32f(const Elem32f* pSrc, const Elem32f* pSrcDst, Elem32s len) noexcept
{
    return anyNotBelow(pSrc, pSrcDst, len, [](Elem32f b, Elem32f a) { return b - a; });
}

// The difference wraps in 32 bits, so that operands far apart pass or fail the other way round: meant.
int ParamErr32s(const Elem32s* pSrc, const Elem32s* pSrcDst, Elem32s len) noexcept
{
    return anyNotBelow(pSrc, pSrcDst, len, [](Elem32s b, Elem32s a) { return wrappingSub(b, a); });
}

int ParamErr16s(const Elem16s* pSrc, const Elem16s* pSrcDst, Elem32s len) noexcept
{
    return anyNotBelow(pSrc, pSrcDst, len, [](Elem16s b, Elem16s a) { return b - a; });
}

} // namespace lyr

Status lyrsLogSub_32f(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pSrcDst));
    LYR_CHECK(require(lyr::ParamErr32f(pSrc, pSrcDst, len) == 0, StsRange));
    for (Elem32s i = 0; i < len; ++i) {
        const Elem32f d = pSrcDst[i] - pSrc[i];
        pSrcDst[i] = static_cast<Elem32f>(lyr::logSubSingle(static_cast<Elem64f>(pSrc[i]), static_cast<Elem64f>(d)));
    }
    return StsNoErr;
}

Status lyrsLogSub_64f(const Elem64f* pSrc, Elem64f* pSrcDst, Elem32s len)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pSrcDst));
    LYR_CHECK(require(lyr::ParamErr64f(pSrc, pSrcDst, len) == 0, StsRange));
    for (Elem32s i = 0; i < len; ++i) {
        pSrcDst[i] = lyr::logSubDouble(pSrc[i], pSrcDst[i] - pSrc[i]);
    }
    return StsNoErr;
}

Status lyrsLogSub_32s_Sfs(const Elem32s* pSrc, Elem32s* pSrcDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pSrcDst));
    LYR_CHECK(require(lyr::ParamErr32s(pSrc, pSrcDst, len) == 0, StsRange));
    lyr::subtractFixedPoint(pSrc, pSrcDst, len, scaleFactor);
    return StsNoErr;
}

Status lyrsLogSub_16s_Sfs(const Elem16s* pSrc, Elem16s* pSrcDst, Elem32s len, Elem32s scaleFactor)
{
    LYR_CHECK(sizes(len), pointers(pSrc, pSrcDst));
    LYR_CHECK(require(lyr::ParamErr16s(pSrc, pSrcDst, len) == 0, StsRange));
    lyr::subtractFixedPoint(pSrc, pSrcDst, len, scaleFactor);
    return StsNoErr;
}
