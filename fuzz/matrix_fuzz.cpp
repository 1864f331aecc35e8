// Gaussians, mixtures, copies of columns and column statistics: strides, row tables, alignments.

#include "fuzz.hpp"

using namespace lyr::fuzz;

namespace {

const Function functions[] = {
    // clang-format off
    by<lyrsLogGaussSingle_32f>("nnnn1."), by<lyrsLogGaussSingle_64f>("nnnn1."), by<lyrsLogGaussSingle_32f64f>("nnnn1."),
    by<lyrsLogGaussSingle_IdVar_32f>("nnn1."), by<lyrsLogGaussSingle_IdVar_64f>("nnn1."),
    by<lyrsLogGaussSingle_IdVar_32f64f>("nnn1."), by<lyrsLogGaussSingle_DirectVar_32f>("nnnn1."),
    by<lyrsLogGaussSingle_DirectVar_64f>("nnnn1."), by<lyrsLogGaussSingle_DirectVar_32f64f>("nnnn1."),
    by<lyrsLogGauss_32f_D2>("mswwwhh."), by<lyrsLogGauss_64f_D2>("mswwwhh."), by<lyrsLogGauss_32f_D2L>("mwwwhh."),
    by<lyrsLogGauss_64f_D2L>("mwwwhh."), by<lyrsLogGauss_IdVar_32f_D2>("mswwhh."),
    by<lyrsLogGauss_IdVar_64f_D2>("mswwhh."), by<lyrsLogGauss_IdVar_32f_D2L>("mwwhh."),
    by<lyrsLogGauss_IdVar_64f_D2L>("mwwhh."), by<lyrsLogGaussMultiMix_32f_D2>("mmswwhh"),
    by<lyrsLogGaussMultiMix_32f_D2L>("mmwwhh"), by<lyrsLogGaussMultiMix_64f_D2>("mmswwhh"),
    by<lyrsLogGaussMultiMix_64f_D2L>("mmwwhh"), by<lyrsLogGaussMaxMultiMix_32f_D2>("mmswwhhh"),
    by<lyrsLogGaussMaxMultiMix_32f_D2L>("mmwwhhh"), by<lyrsLogGaussMaxMultiMix_64f_D2>("mmswwhhh"),
    by<lyrsLogGaussMaxMultiMix_64f_D2L>("mmwwhhh"), by<lyrsLogGaussAddMultiMix_32f_D2>("mmswwhhh"),
    by<lyrsLogGaussAddMultiMix_32f_D2L>("mmwwhhh"), by<lyrsLogGaussAddMultiMix_64f_D2>("mmswwhhh"),
    by<lyrsLogGaussAddMultiMix_64f_D2L>("mmwwhhh"), by<lyrsLogGaussMixture_32f_D2>("wmmhswh1"),
    by<lyrsLogGaussMixture_32f_D2L>("wmmhwh1"), by<lyrsLogGaussMixture_64f_D2>("wmmhswh1"),
    by<lyrsLogGaussMixture_64f_D2L>("wmmhwh1"), by<lyrsLogGaussMixture_IdVar_32f_D2>("wmhswh1"),
    by<lyrsLogGaussMixture_IdVar_32f_D2L>("wmhwh1"), by<lyrsLogGaussMixture_IdVar_64f_D2>("wmhswh1"),
    by<lyrsLogGaussMixture_IdVar_64f_D2L>("wmhwh1"), by<lyrsCopyColumn_32f_D2>("pwmsh"),
    by<lyrsCopyColumn_16s_D2>("pwmsh"), by<lyrsCopyColumn_Indirect_32f_D2>("mwsdinzh"),
    by<lyrsCopyColumn_Indirect_64f_D2>("mwsdinzh"), by<lyrsCopyColumn_Indirect_16s_D2>("mwsdinzh"),
    by<lyrsCopyColumn_Indirect_32f_D2L>("mwdinh"), by<lyrsCopyColumn_Indirect_64f_D2L>("mwdinh"),
    by<lyrsCopyColumn_Indirect_16s_D2L>("mwdinh"), by<lyrsMeanColumn_32f_D2>("mhsww"),
    by<lyrsMeanColumn_16s_D2>("mhsww"), by<lyrsMeanColumn_32f_D2L>("mhww"), by<lyrsMeanColumn_16s_D2L>("mhww"),
    by<lyrsVarColumn_32f_D2>("mhswww"), by<lyrsVarColumn_16s_D2Sfs>("mhswww."), by<lyrsVarColumn_32f_D2L>("mhwww"),
    by<lyrsVarColumn_16s_D2LSfs>("mhwww."), by<lyrsMeanVarColumn_32f_D2>("mhswww"),
    by<lyrsMeanVarColumn_16s_D2Sfs>("mhswww."), by<lyrsMeanVarColumn_16s32s_D2Sfs>("mhswww."),
    by<lyrsMeanVarColumn_16s16s32s_D2>("mhswww"), by<lyrsMeanVarColumn_32f_D2L>("mhwww"),
    by<lyrsMeanVarColumn_16s_D2LSfs>("mhwww."), by<lyrsMeanVarColumn_16s32s_D2LSfs>("mhwww."),
    by<lyrsMeanVarColumn_16s16s32s_D2L>("mhwww"), by<lyrsWeightedMeanColumn_32f_D2>("mshhww"),
    by<lyrsWeightedMeanColumn_64f_D2>("mshhww"), by<lyrsWeightedMeanColumn_32f_D2L>("mhhww"),
    by<lyrsWeightedMeanColumn_64f_D2L>("mhhww"), by<lyrsWeightedVarColumn_32f_D2>("mshhwww"),
    by<lyrsWeightedVarColumn_64f_D2>("mshhwww"), by<lyrsWeightedVarColumn_32f_D2L>("mhhwww"),
    by<lyrsWeightedVarColumn_64f_D2L>("mhhwww"), by<lyrsWeightedMeanVarColumn_32f_D2>("mshhwww"),
    by<lyrsWeightedMeanVarColumn_64f_D2>("mshhwww"), by<lyrsWeightedMeanVarColumn_32f_D2L>("mhhwww"),
    by<lyrsWeightedMeanVarColumn_64f_D2L>("mhhwww"), by<lyrsSumMeanVar_32f>("mshwww"),
    by<lyrsSumMeanVar_16s32f>("mshwww"), by<lyrsSumMeanVar_32f_I>("mshwww"), by<lyrsSumMeanVar_16s32f_I>("mshwww"),
    by<lyrsSumMeanVar_16s32s_Sfs>("mshwww."), by<lyrsSumMeanVar_16s32s_ISfs>("mshwww."),
    by<lyrsMeanVarAcc_32f>("nn=nn."), by<lyrsMeanVarAcc_64f>("nn=nn."),
    by<lyrsAccCovarianceMatrix_32f64f_D2>("mshwqws."), by<lyrsAccCovarianceMatrix_16s64f_D2>("mshwqws."),
    by<lyrsAccCovarianceMatrix_32f64f_D2L>("mhwqw."), by<lyrsAccCovarianceMatrix_16s64f_D2L>("mhwqw."),
    // clang-format on
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Caller caller(data, size);
    functions[caller.in.bits<Elem8u>() % std::size(functions)](caller);
    return 0;
}
