// Vector primitives and arithmetic of logarithms.

#include "fuzz.hpp"

using namespace lyr::fuzz;

namespace {

const Function functions[] = {
    // clang-format off
    by<lyrsDiv_32f>("nn~n"), by<lyrsDiv_64f>("nn~n"), by<lyrsDiv_32f_I>("n~n"), by<lyrsAbs_64f>("n~n"),
    by<lyrsAdd_32f_I>("n~n"), by<lyrsAdd_64f_I>("n~n"), by<lyrsSub_32f_I>("n~n"), by<lyrsSub_64f_I>("n~n"),
    by<lyrsMul_32f>("nn~n"), by<lyrsAddC_32f>("n.~n"), by<lyrsMulC_32f>("n.~n"), by<lyrsMulC_64f>("n.~n"),
    by<lyrsMulC_32f_I>(".nn"), by<lyrsMulC_64f_I>(".nn"), by<lyrsDivC_32f>("n.~n"), by<lyrsDivC_64f>("n.~n"),
    by<lyrsDivC_32f_I>(".nn"), by<lyrsDivC_64f_I>(".nn"), by<lyrsMagnitude_32fc>("n~n"),
    by<lyrsMulPackConj_32f_I>("n~n"), by<lyrsSqrt_64f_I>("nn"), by<lyrsRecSqrt_32f>("nn."),
    by<lyrsRecSqrt_32s_Sfs>("nn.."), by<lyrsRecSqrt_32s16s_Sfs>("nnn.."), by<lyrsExpNegSqr_32f>("n~n"),
    by<lyrsExpNegSqr_32f64f>("nnn"), by<lyrsExpNegSqr_64f>("n~n"), by<lyrsExpNegSqr_32f_I>("nn"),
    by<lyrsExpNegSqr_64f_I>("nn"), by<lyrsSinC_32f>("n~n"), by<lyrsSinC_32f64f>("nnn"), by<lyrsSinC_64f>("n~n"),
    by<lyrsSinC_32f_I>("nn"), by<lyrsSinC_64f_I>("nn"), by<lyrsUnitCurve_32f>("n~n"), by<lyrsUnitCurve_32f_I>("nn"),
    by<lyrsUnitCurve_16s_Sfs>("n.~n."), by<lyrsUnitCurve_16s_ISfs>("n.n."), by<lyrsMax_32f>("nn1"),
    by<lyrsMax_64f>("nn1"), by<lyrsMin_32f>("nn1"), by<lyrsMin_64f>("nn1"), by<lyrsMinMax_32f>("nn11"),
    by<lyrsMaxIndx_32f>("nn11"), by<lyrsMaxIndx_64f>("nn11"), by<lyrsMinIndx_32f>("nn11"),
    by<lyrsMaxEvery_32f_I>("nnn"), by<lyrsMinEvery_32f_I>("nnn"), by<lyrsMinEvery_32s_I>("nnn"),
    by<lyrsNthMaxElement_32s>("nn.1"), by<lyrsNthMaxElement_32f>("nn.1"), by<lyrsNthMaxElement_64f>("nn.1"),
    by<lyrsSet_8u>(".nn"), by<lyrsSet_16s>(".nn"), by<lyrsSet_32s>(".nn"), by<lyrsSet_32f>(".nn"),
    by<lyrsSet_64f>(".nn"), by<lyrsZero_8u>("nn"), by<lyrsZero_16s>("nn"), by<lyrsZero_32f>("nn"),
    by<lyrsZero_64f>("nn"), by<lyrsCopy_8u>("nnn"), by<lyrsCopy_16s>("nnn"), by<lyrsCopy_32s>("nnn"),
    by<lyrsCopy_32f>("nnn"), by<lyrsCopy_64f>("nnn"), by<lyrsMove_32f>("n~n"), by<lyrsConvert_8u32f>("nnn"),
    by<lyrsConvert_16s32f>("nnn"), by<lyrsConvert_32s32f>("n~n"), by<lyrsConvert_64f32f>("nnn"),
    by<lyrsConvert_16s32f_Sfs>("nnn."), by<lyrsConvert_32s32f_Sfs>("n~n."), by<lyrsConvert_16s64f_Sfs>("nnn."),
    by<lyrsConvert_32f16s_Sfs>("nnn.."), by<lyrsConvert_32f32s_Sfs>("n~n.."), by<lyrsConvert_64f32s_Sfs>("nnn.."),
    by<lyrsConvert_32s16s_Sfs>("nnn."), by<lyrsMul_16s_Sfs>("nn~n."), by<lyrsMagnitude_32sc_Sfs>("n~n."),
    by<lyrsLn_32f_I>("nn"), by<lyrsLn_32s_Sfs>("n~n."), by<lyrsLn_32s_ISfs>("nn."), by<lyrsSumLn_32f>("nn1"),
    by<lyrsSumLn_64f>("nn1"), by<lyrsSum_32f>("nn1."), by<lyrsSum_16s32s_Sfs>("nn1."), by<lyrsSum_32s_Sfs>("nn1."),
    by<lyrsDotProd_32f>("nnn1"), by<lyrsDotProd_64f>("nnn1"), by<lyrsDotProd_32f64f>("nnn1"),
    by<lyrsDotProd_16s64s>("nnn1"), by<lyrsDotProd_16s32f>("nnn1"), by<lyrsLogAdd_32f>("nnn."),
    by<lyrsLogAdd_64f>("nnn."), by<lyrsLogAdd_32s_Sfs>("nnn.."), by<lyrsLogAdd_16s_Sfs>("nnn.."),
    by<lyrsLogSub_32f>("nnn"), by<lyrsLogSub_64f>("nnn"), by<lyrsLogSub_32s_Sfs>("nnn."),
    by<lyrsLogSub_16s_Sfs>("nnn."), by<lyrsLogSum_32f>("n1n"), by<lyrsLogSum_64f>("n1n"),
    by<lyrsLogSum_32s_Sfs>("n1n."), by<lyrsLogSum_16s_Sfs>("n1n."), by<lyrsMelToLinear_32f>("n~n.."),
    by<lyrsLinearToMel_32f>("n~n.."), by<lyrsCopyWithPadding_32f>("hhww"), by<lyrsCopyWithPadding_16s>("hhww"),
    // clang-format on
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Caller caller(data, size);
    functions[caller.in.bits<Elem8u>() % std::size(functions)](caller);
    return 0;
}
