// Element-wise vector functions, extremes, fills and selections, on vectors of 6 elements.

#include "contract/contract.hpp"

#include <limits>

namespace lyr::contract {
namespace {

const auto byDefault = order(StsNullPtr, StsSize);
const auto withDivisor = order(StsNullPtr, StsSize, StsDivByZero);
const auto withDomain = order(StsNullPtr, StsSize, StsBadArg);
const auto withWork = order(StsNullPtr, StsSize, StsBadArg, StsMemAlloc);

template <class T>
constexpr T nan = std::numeric_limits<T>::quiet_NaN();

const bool arithmetic = addRows({
    row("lyrsAbs_64f", lyrsAbs_64f, byDefault, in<Elem64f>(6), out<Elem64f>(6), size(6)),
    row("lyrsAdd_32f_I", lyrsAdd_32f_I, byDefault, in<Elem32f>(6), inOut<Elem32f>(6), size(6)),
    row("lyrsAdd_64f_I", lyrsAdd_64f_I, byDefault, in<Elem64f>(6), inOut<Elem64f>(6), size(6)),
    row("lyrsSub_32f_I", lyrsSub_32f_I, byDefault, in<Elem32f>(6), inOut<Elem32f>(6), size(6)),
    row("lyrsSub_64f_I", lyrsSub_64f_I, byDefault, in<Elem64f>(6), inOut<Elem64f>(6), size(6)),
    row("lyrsMul_32f", lyrsMul_32f, byDefault, in<Elem32f>(6), in<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsAddC_32f", lyrsAddC_32f, byDefault, in<Elem32f>(6), value(2.0F).legal({0.0F, nan<Elem32f>}),
        out<Elem32f>(6), size(6)),
    row("lyrsMulC_32f", lyrsMulC_32f, byDefault, in<Elem32f>(6), value(2.0F).legal({0.0F, 1.0F, nan<Elem32f>}),
        out<Elem32f>(6), size(6)),
    row("lyrsMulC_64f", lyrsMulC_64f, byDefault, in<Elem64f>(6), value(2.0).legal({0.0, 1.0, nan<Elem64f>}),
        out<Elem64f>(6), size(6)),
    row("lyrsMulC_32f_I", lyrsMulC_32f_I, byDefault, value(2.0F).legal({0.0F, 1.0F, nan<Elem32f>}), inOut<Elem32f>(6),
        size(6)),
    row("lyrsMulC_64f_I", lyrsMulC_64f_I, byDefault, value(2.0).legal({0.0, 1.0, nan<Elem64f>}), inOut<Elem64f>(6),
        size(6)),
    row("lyrsDivC_32f", lyrsDivC_32f, withDivisor, in<Elem32f>(6),
        value(2.0F).bad({0.0F, -0.0F, nan<Elem32f>}, StsDivByZero), out<Elem32f>(6), size(6)),
    row("lyrsDivC_64f", lyrsDivC_64f, withDivisor, in<Elem64f>(6),
        value(2.0).bad({0.0, -0.0, nan<Elem64f>}, StsDivByZero), out<Elem64f>(6), size(6)),
    row("lyrsDivC_32f_I", lyrsDivC_32f_I, withDivisor, value(2.0F).bad({0.0F, -0.0F, nan<Elem32f>}, StsDivByZero),
        inOut<Elem32f>(6), size(6)),
    row("lyrsDivC_64f_I", lyrsDivC_64f_I, withDivisor, value(2.0).bad({0.0, -0.0, nan<Elem64f>}, StsDivByZero),
        inOut<Elem64f>(6), size(6)),
    row("lyrsMagnitude_32fc", lyrsMagnitude_32fc, byDefault, in<Elem32fc>(6), out<Elem32f>(6), size(6)),
    row("lyrsMulPackConj_32f_I", lyrsMulPackConj_32f_I, byDefault, in<Elem32f>(6), inOut<Elem32f>(6), size(6)),
});

const bool functions = addRows({
    row("lyrsSqrt_64f_I", lyrsSqrt_64f_I, byDefault, inOut<Elem64f>(6), size(6)),
    row("lyrsSqrt_64f_I", lyrsSqrt_64f_I, byDefault, inOut<Elem64f>(2).holding({-1, 4}), size(2))
        .returns(StsWarnSqrtNeg),
    row("lyrsRecSqrt_32f", lyrsRecSqrt_32f, withDomain, inOut<Elem32f>(6), size(6),
        value(0.25F).bad({0.0F, -1.0F, nan<Elem32f>}, StsBadArg)),
    row("lyrsRecSqrt_32f", lyrsRecSqrt_32f, withDomain, inOut<Elem32f>(6), size(6), value(2.0F)).returns(StsWarnZero),
    row("lyrsRecSqrt_32s_Sfs", lyrsRecSqrt_32s_Sfs, withDomain, inOut<Elem32s>(6).range(4, 100), size(6),
        value<Elem32s>(3).bad({0, -1, INT32_MIN}, StsBadArg), value<Elem32s>(-8)),
    row("lyrsRecSqrt_32s_Sfs", lyrsRecSqrt_32s_Sfs, withDomain, inOut<Elem32s>(6).range(4, 100), size(6),
        value<Elem32s>(200), value<Elem32s>(-8))
        .returns(StsWarnZero),
    row("lyrsRecSqrt_32s16s_Sfs", lyrsRecSqrt_32s16s_Sfs, withDomain, in<Elem32s>(6).range(4, 100), out<Elem16s>(6),
        size(6), value<Elem32s>(3).bad({0, -1, INT32_MIN}, StsBadArg), value<Elem32s>(-8)),
    row("lyrsRecSqrt_32s16s_Sfs", lyrsRecSqrt_32s16s_Sfs, withDomain, in<Elem32s>(6).range(4, 100), out<Elem16s>(6),
        size(6), value<Elem32s>(200), value<Elem32s>(-4))
        .returns(StsWarnZero),
    row("lyrsExpNegSqr_32f", lyrsExpNegSqr_32f, byDefault, in<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsExpNegSqr_32f64f", lyrsExpNegSqr_32f64f, byDefault, in<Elem32f>(6), out<Elem64f>(6), size(6)),
    row("lyrsExpNegSqr_64f", lyrsExpNegSqr_64f, byDefault, in<Elem64f>(6), out<Elem64f>(6), size(6)),
    row("lyrsExpNegSqr_32f_I", lyrsExpNegSqr_32f_I, byDefault, inOut<Elem32f>(6), size(6)),
    row("lyrsExpNegSqr_64f_I", lyrsExpNegSqr_64f_I, byDefault, inOut<Elem64f>(6), size(6)),
    row("lyrsSinC_32f", lyrsSinC_32f, byDefault, in<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsSinC_32f64f", lyrsSinC_32f64f, byDefault, in<Elem32f>(6), out<Elem64f>(6), size(6)),
    row("lyrsSinC_64f", lyrsSinC_64f, byDefault, in<Elem64f>(6), out<Elem64f>(6), size(6)),
    row("lyrsSinC_32f_I", lyrsSinC_32f_I, byDefault, inOut<Elem32f>(6), size(6)),
    row("lyrsSinC_64f_I", lyrsSinC_64f_I, byDefault, inOut<Elem64f>(6), size(6)),
    row("lyrsUnitCurve_32f", lyrsUnitCurve_32f, byDefault, in<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsUnitCurve_32f_I", lyrsUnitCurve_32f_I, byDefault, inOut<Elem32f>(6), size(6)),
    row("lyrsUnitCurve_16s_Sfs", lyrsUnitCurve_16s_Sfs, byDefault, in<Elem16s>(6),
        value<Elem32s>(4).legal({-1, 0, 14, 15}), out<Elem16s>(6), size(6), value<Elem32s>(-6)),
    row("lyrsUnitCurve_16s_ISfs", lyrsUnitCurve_16s_ISfs, byDefault, inOut<Elem16s>(6),
        value<Elem32s>(4).legal({-1, 0, 14, 15}), size(6), value<Elem32s>(-6)),
});

const bool extremes = addRows({
    row("lyrsMax_32f", lyrsMax_32f, byDefault, in<Elem32f>(6), size(6), out<Elem32f>(1)),
    row("lyrsMax_64f", lyrsMax_64f, byDefault, in<Elem64f>(6), size(6), out<Elem64f>(1)),
    row("lyrsMin_32f", lyrsMin_32f, byDefault, in<Elem32f>(6), size(6), out<Elem32f>(1)),
    row("lyrsMin_64f", lyrsMin_64f, byDefault, in<Elem64f>(6), size(6), out<Elem64f>(1)),
    row("lyrsMinMax_32f", lyrsMinMax_32f, byDefault, in<Elem32f>(6), size(6), out<Elem32f>(1), out<Elem32f>(1)),
    row("lyrsMaxIndx_32f", lyrsMaxIndx_32f, byDefault, in<Elem32f>(6), size(6), out<Elem32f>(1),
        out<Elem32s>(1).nullable()),
    row("lyrsMaxIndx_64f", lyrsMaxIndx_64f, byDefault, in<Elem64f>(6), size(6), out<Elem64f>(1),
        out<Elem32s>(1).nullable()),
    row("lyrsMinIndx_32f", lyrsMinIndx_32f, byDefault, in<Elem32f>(6), size(6), out<Elem32f>(1),
        out<Elem32s>(1).nullable()),
    row("lyrsMaxEvery_32f_I", lyrsMaxEvery_32f_I, byDefault, in<Elem32f>(6), inOut<Elem32f>(6), size(6)),
    row("lyrsMinEvery_32f_I", lyrsMinEvery_32f_I, byDefault, in<Elem32f>(6), inOut<Elem32f>(6), size(6)),
    row("lyrsMinEvery_32s_I", lyrsMinEvery_32s_I, byDefault, in<Elem32s>(6), inOut<Elem32s>(6), size(6)),
    row("lyrsNthMaxElement_32s", lyrsNthMaxElement_32s, withWork, in<Elem32s>(6), size(6),
        value<Elem32s>(0).bad({-1, 6, INT32_MIN, INT32_MAX}, StsBadArg), out<Elem32s>(1))
        .allocates(1),
    row("lyrsNthMaxElement_32f", lyrsNthMaxElement_32f, withWork, in<Elem32f>(6), size(6),
        value<Elem32s>(0).bad({-1, 6, INT32_MIN, INT32_MAX}, StsBadArg), out<Elem32f>(1))
        .allocates(1),
    row("lyrsNthMaxElement_64f", lyrsNthMaxElement_64f, withWork, in<Elem64f>(6), size(6),
        value<Elem32s>(0).bad({-1, 6, INT32_MIN, INT32_MAX}, StsBadArg), out<Elem64f>(1))
        .allocates(1),
});

const bool fills = addRows({
    row("lyrsSet_8u", lyrsSet_8u, byDefault, value<Elem8u>(7), out<Elem8u>(6), size(6)),
    row("lyrsSet_16s", lyrsSet_16s, byDefault, value<Elem16s>(7), out<Elem16s>(6), size(6)),
    row("lyrsSet_32s", lyrsSet_32s, byDefault, value<Elem32s>(7), out<Elem32s>(6), size(6)),
    row("lyrsSet_32f", lyrsSet_32f, byDefault, value(7.0F), out<Elem32f>(6), size(6)),
    row("lyrsSet_64f", lyrsSet_64f, byDefault, value(7.0), out<Elem64f>(6), size(6)),
    row("lyrsZero_8u", lyrsZero_8u, byDefault, out<Elem8u>(6), size(6)),
    row("lyrsZero_16s", lyrsZero_16s, byDefault, out<Elem16s>(6), size(6)),
    row("lyrsZero_32f", lyrsZero_32f, byDefault, out<Elem32f>(6), size(6)),
    row("lyrsZero_64f", lyrsZero_64f, byDefault, out<Elem64f>(6), size(6)),
    row("lyrsCopy_8u", lyrsCopy_8u, byDefault, in<Elem8u>(6), out<Elem8u>(6), size(6)),
    row("lyrsCopy_16s", lyrsCopy_16s, byDefault, in<Elem16s>(6), out<Elem16s>(6), size(6)),
    row("lyrsCopy_32s", lyrsCopy_32s, byDefault, in<Elem32s>(6), out<Elem32s>(6), size(6)),
    row("lyrsCopy_32f", lyrsCopy_32f, byDefault, in<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsCopy_64f", lyrsCopy_64f, byDefault, in<Elem64f>(6), out<Elem64f>(6), size(6)),
    row("lyrsMove_32f", lyrsMove_32f, byDefault, in<Elem32f>(6), out<Elem32f>(6), size(6)),
});

} // namespace
} // namespace lyr::contract
