// Conversions, fixed-point products, logarithms, sums and dot products of vectors.

#include "contract/contract.hpp"

namespace lyr::contract {
namespace {

const auto byDefault = order(StsNullPtr, StsSize);

constexpr Elem32s lowest = INT32_MIN;
constexpr Elem32s highest = INT32_MAX;

// Every scale factor will do.
Value<Elem32s> scale()
{
    return value(Elem32s{1}).legal({lowest, -40, -1, 0, 2, 40, highest});
}
// And every rounding mode.
Value<Elem32s> rounding()
{
    return value(Elem32s{1}).legal({lowest, -1, 0, 2, highest});
}

const bool rows = addRows({
    row("lyrsConvert_8u32f", lyrsConvert_8u32f, byDefault, in<Elem8u>(6), out<Elem32f>(6), size(6)),
    row("lyrsConvert_16s32f", lyrsConvert_16s32f, byDefault, in<Elem16s>(6), out<Elem32f>(6), size(6)),
    row("lyrsConvert_32s32f", lyrsConvert_32s32f, byDefault, in<Elem32s>(6), out<Elem32f>(6), size(6)),
    row("lyrsConvert_64f32f", lyrsConvert_64f32f, byDefault, in<Elem64f>(6), out<Elem32f>(6), size(6)),
    row("lyrsConvert_16s32f_Sfs", lyrsConvert_16s32f_Sfs, byDefault, in<Elem16s>(6), out<Elem32f>(6), size(6), scale()),
    row("lyrsConvert_32s32f_Sfs", lyrsConvert_32s32f_Sfs, byDefault, in<Elem32s>(6), out<Elem32f>(6), size(6), scale()),
    row("lyrsConvert_16s64f_Sfs", lyrsConvert_16s64f_Sfs, byDefault, in<Elem16s>(6), out<Elem64f>(6), size(6), scale()),
    row("lyrsConvert_32f16s_Sfs", lyrsConvert_32f16s_Sfs, byDefault, in<Elem32f>(6), out<Elem16s>(6), size(6),
        rounding(), scale()),
    row("lyrsConvert_32f32s_Sfs", lyrsConvert_32f32s_Sfs, byDefault, in<Elem32f>(6), out<Elem32s>(6), size(6),
        rounding(), scale()),
    row("lyrsConvert_64f32s_Sfs", lyrsConvert_64f32s_Sfs, byDefault, in<Elem64f>(6), out<Elem32s>(6), size(6),
        rounding(), scale()),
    row("lyrsConvert_32s16s_Sfs", lyrsConvert_32s16s_Sfs, byDefault, in<Elem32s>(6), out<Elem16s>(6), size(6), scale()),

    row("lyrsMul_16s_Sfs", lyrsMul_16s_Sfs, byDefault, in<Elem16s>(6), in<Elem16s>(6), out<Elem16s>(6), size(6),
        scale()),
    row("lyrsMagnitude_32sc_Sfs", lyrsMagnitude_32sc_Sfs, byDefault, in<Elem32sc>(6), out<Elem32s>(6), size(6),
        scale()),

    row("lyrsLn_32f_I", lyrsLn_32f_I, byDefault, inOut<Elem32f>(6), size(6)),
    row("lyrsLn_32s_Sfs", lyrsLn_32s_Sfs, byDefault, in<Elem32s>(6), out<Elem32s>(6), size(6), scale()),
    row("lyrsLn_32s_ISfs", lyrsLn_32s_ISfs, byDefault, inOut<Elem32s>(6), size(6), scale()),
    row("lyrsSumLn_32f", lyrsSumLn_32f, byDefault, in<Elem32f>(6), size(6), out<Elem32f>(1)),
    row("lyrsSumLn_64f", lyrsSumLn_64f, byDefault, in<Elem64f>(6), size(6), out<Elem64f>(1)),

    // The first zero or negative element is a warning, with everything written.
    row("lyrsLn_32f_I", lyrsLn_32f_I, byDefault, inOut<Elem32f>(3).holding({1, 0, -1}), size(3).legal({}))
        .returns(StsWarnInf),
    row("lyrsLn_32f_I", lyrsLn_32f_I, byDefault, inOut<Elem32f>(3).holding({1, -1, 0}), size(3).legal({}))
        .returns(StsWarnNan),
    row("lyrsLn_32s_Sfs", lyrsLn_32s_Sfs, byDefault, in<Elem32s>(3).holding({1, 0, -1}), out<Elem32s>(3),
        size(3).legal({}), scale())
        .returns(StsWarnInf),
    row("lyrsLn_32s_Sfs", lyrsLn_32s_Sfs, byDefault, in<Elem32s>(3).holding({1, -1, 0}), out<Elem32s>(3),
        size(3).legal({}), scale())
        .returns(StsWarnNan),
    row("lyrsLn_32s_ISfs", lyrsLn_32s_ISfs, byDefault, inOut<Elem32s>(3).holding({1, 0, -1}), size(3).legal({}),
        scale())
        .returns(StsWarnInf),
    row("lyrsLn_32s_ISfs", lyrsLn_32s_ISfs, byDefault, inOut<Elem32s>(3).holding({1, -1, 0}), size(3).legal({}),
        scale())
        .returns(StsWarnNan),
    row("lyrsSumLn_32f", lyrsSumLn_32f, byDefault, in<Elem32f>(3).holding({1, 0, -1}), size(3).legal({}),
        out<Elem32f>(1))
        .returns(StsWarnInf),
    row("lyrsSumLn_32f", lyrsSumLn_32f, byDefault, in<Elem32f>(3).holding({1, -1, 0}), size(3).legal({}),
        out<Elem32f>(1))
        .returns(StsWarnNan),
    row("lyrsSumLn_64f", lyrsSumLn_64f, byDefault, in<Elem64f>(3).holding({1, 0, -1}), size(3).legal({}),
        out<Elem64f>(1))
        .returns(StsWarnInf),
    row("lyrsSumLn_64f", lyrsSumLn_64f, byDefault, in<Elem64f>(3).holding({1, -1, 0}), size(3).legal({}),
        out<Elem64f>(1))
        .returns(StsWarnNan),

    row("lyrsSum_32f", lyrsSum_32f, byDefault, in<Elem32f>(6), size(6), out<Elem32f>(1),
        value(Elem32s{1}).legal({lowest, -1, 0, 2, highest})),
    row("lyrsSum_16s32s_Sfs", lyrsSum_16s32s_Sfs, byDefault, in<Elem16s>(6), size(6), out<Elem32s>(1), scale()),
    row("lyrsSum_32s_Sfs", lyrsSum_32s_Sfs, byDefault, in<Elem32s>(6), size(6), out<Elem32s>(1), scale()),

    row("lyrsDotProd_32f", lyrsDotProd_32f, byDefault, in<Elem32f>(6), in<Elem32f>(6), size(6), out<Elem32f>(1)),
    row("lyrsDotProd_64f", lyrsDotProd_64f, byDefault, in<Elem64f>(6), in<Elem64f>(6), size(6), out<Elem64f>(1)),
    row("lyrsDotProd_32f64f", lyrsDotProd_32f64f, byDefault, in<Elem32f>(6), in<Elem32f>(6), size(6), out<Elem64f>(1)),
    row("lyrsDotProd_16s64s", lyrsDotProd_16s64s, byDefault, in<Elem16s>(6), in<Elem16s>(6), size(6), out<Elem64s>(1)),
    row("lyrsDotProd_16s32f", lyrsDotProd_16s32f, byDefault, in<Elem16s>(6), in<Elem16s>(6), size(6), out<Elem32f>(1)),
});

} // namespace
} // namespace lyr::contract
