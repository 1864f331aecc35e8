// Column statistics. 3 rows of 6 columns; blocks have a stride of 8.

#include "contract/contract.hpp"

namespace lyr::contract {
namespace {

const auto strideFirst = order(StsStep, StsNullPtr, StsSize);
const auto strideFirstWithWork = order(StsStep, StsNullPtr, StsSize, StsMemAlloc);
const auto pointersFirst = order(StsNullPtr, StsStep, StsSize);
const auto strideLast = order(StsNullPtr, StsSize, StsStep);
const auto noStride = order(StsNullPtr, StsSize);
const auto noStrideWithWork = order(StsNullPtr, StsSize, StsMemAlloc);

const bool mean = addRows({
    row("lyrsMeanColumn_32f_D2", lyrsMeanColumn_32f_D2, strideFirst, in<Elem32f>(3 * 8), size(3), stride(8, 6),
        out<Elem32f>(6), size(6)),
    row("lyrsMeanColumn_32f_D2L", lyrsMeanColumn_32f_D2L, noStride, table<Elem32f>(3, 6), size(3), out<Elem32f>(6),
        size(6)),
    row("lyrsMeanColumn_16s_D2", lyrsMeanColumn_16s_D2, strideFirstWithWork, in<Elem16s>(3 * 8), size(3), stride(8, 6),
        out<Elem16s>(6), size(6))
        .allocates(1),
    row("lyrsMeanColumn_16s_D2L", lyrsMeanColumn_16s_D2L, noStrideWithWork, table<Elem16s>(3, 6), size(3),
        out<Elem16s>(6), size(6))
        .allocates(1),
});

const bool variance = addRows({
    row("lyrsVarColumn_32f_D2", lyrsVarColumn_32f_D2, strideFirst, in<Elem32f>(3 * 8), size(3).atLeast(2), stride(8, 6),
        in<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsVarColumn_32f_D2L", lyrsVarColumn_32f_D2L, noStride, table<Elem32f>(3, 6), size(3).atLeast(2),
        in<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsVarColumn_16s_D2Sfs", lyrsVarColumn_16s_D2Sfs, strideFirstWithWork, in<Elem16s>(3 * 8), size(3).atLeast(2),
        stride(8, 6), in<Elem16s>(6), out<Elem16s>(6), size(6), value<Elem32s>(-3))
        .allocates(1),
    row("lyrsVarColumn_16s_D2LSfs", lyrsVarColumn_16s_D2LSfs, noStrideWithWork, table<Elem16s>(3, 6),
        size(3).atLeast(2), in<Elem16s>(6), out<Elem16s>(6), size(6), value<Elem32s>(-3))
        .allocates(1),
});

// The stride comes last here, other than in the two above.
const bool meanAndVariance = addRows({
    row("lyrsMeanVarColumn_32f_D2", lyrsMeanVarColumn_32f_D2, strideLast, in<Elem32f>(3 * 8), size(3).atLeast(2),
        stride(8, 6), out<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsMeanVarColumn_32f_D2L", lyrsMeanVarColumn_32f_D2L, noStride, table<Elem32f>(3, 6), size(3).atLeast(2),
        out<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsMeanVarColumn_16s_D2Sfs", lyrsMeanVarColumn_16s_D2Sfs, strideLast, in<Elem16s>(3 * 8), size(3).atLeast(2),
        stride(8, 6), out<Elem16s>(6), out<Elem16s>(6), size(6), value<Elem32s>(-3)),
    row("lyrsMeanVarColumn_16s_D2LSfs", lyrsMeanVarColumn_16s_D2LSfs, noStride, table<Elem16s>(3, 6),
        size(3).atLeast(2), out<Elem16s>(6), out<Elem16s>(6), size(6), value<Elem32s>(-3)),
    row("lyrsMeanVarColumn_16s32s_D2Sfs", lyrsMeanVarColumn_16s32s_D2Sfs, strideLast, in<Elem16s>(3 * 8),
        size(3).atLeast(2), stride(8, 6), out<Elem32s>(6), out<Elem32s>(6), size(6), value<Elem32s>(-3)),
    row("lyrsMeanVarColumn_16s32s_D2LSfs", lyrsMeanVarColumn_16s32s_D2LSfs, noStride, table<Elem16s>(3, 6),
        size(3).atLeast(2), out<Elem32s>(6), out<Elem32s>(6), size(6), value<Elem32s>(-3)),
    row("lyrsMeanVarColumn_16s16s32s_D2", lyrsMeanVarColumn_16s16s32s_D2, strideLast, in<Elem16s>(3 * 8),
        size(3).atLeast(2), stride(8, 6), out<Elem16s>(6), out<Elem32s>(6), size(6)),
    row("lyrsMeanVarColumn_16s16s32s_D2L", lyrsMeanVarColumn_16s16s32s_D2L, noStride, table<Elem16s>(3, 6),
        size(3).atLeast(2), out<Elem16s>(6), out<Elem32s>(6), size(6)),
});

const bool weighted = addRows({
    row("lyrsWeightedMeanColumn_32f_D2", lyrsWeightedMeanColumn_32f_D2, pointersFirst, in<Elem32f>(3 * 8), stride(8, 6),
        in<Elem32f>(3), size(3), out<Elem32f>(6), size(6)),
    row("lyrsWeightedMeanColumn_32f_D2L", lyrsWeightedMeanColumn_32f_D2L, noStride, table<Elem32f>(3, 6),
        in<Elem32f>(3), size(3), out<Elem32f>(6), size(6)),
    row("lyrsWeightedMeanColumn_64f_D2", lyrsWeightedMeanColumn_64f_D2, pointersFirst, in<Elem64f>(3 * 8), stride(8, 6),
        in<Elem64f>(3), size(3), out<Elem64f>(6), size(6)),
    row("lyrsWeightedMeanColumn_64f_D2L", lyrsWeightedMeanColumn_64f_D2L, noStride, table<Elem64f>(3, 6),
        in<Elem64f>(3), size(3), out<Elem64f>(6), size(6)),
    row("lyrsWeightedVarColumn_32f_D2", lyrsWeightedVarColumn_32f_D2, pointersFirst, in<Elem32f>(3 * 8), stride(8, 6),
        in<Elem32f>(3), size(3), in<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsWeightedVarColumn_32f_D2L", lyrsWeightedVarColumn_32f_D2L, noStride, table<Elem32f>(3, 6), in<Elem32f>(3),
        size(3), in<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsWeightedVarColumn_64f_D2", lyrsWeightedVarColumn_64f_D2, pointersFirst, in<Elem64f>(3 * 8), stride(8, 6),
        in<Elem64f>(3), size(3), in<Elem64f>(6), out<Elem64f>(6), size(6)),
    row("lyrsWeightedVarColumn_64f_D2L", lyrsWeightedVarColumn_64f_D2L, noStride, table<Elem64f>(3, 6), in<Elem64f>(3),
        size(3), in<Elem64f>(6), out<Elem64f>(6), size(6)),
    row("lyrsWeightedMeanVarColumn_32f_D2", lyrsWeightedMeanVarColumn_32f_D2, pointersFirst, in<Elem32f>(3 * 8),
        stride(8, 6), in<Elem32f>(3), size(3), out<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsWeightedMeanVarColumn_32f_D2L", lyrsWeightedMeanVarColumn_32f_D2L, noStride, table<Elem32f>(3, 6),
        in<Elem32f>(3), size(3), out<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsWeightedMeanVarColumn_64f_D2", lyrsWeightedMeanVarColumn_64f_D2, pointersFirst, in<Elem64f>(3 * 8),
        stride(8, 6), in<Elem64f>(3), size(3), out<Elem64f>(6), out<Elem64f>(6), size(6)),
    row("lyrsWeightedMeanVarColumn_64f_D2L", lyrsWeightedMeanVarColumn_64f_D2L, noStride, table<Elem64f>(3, 6),
        in<Elem64f>(3), size(3), out<Elem64f>(6), out<Elem64f>(6), size(6)),
});

const bool sums = addRows({
    row("lyrsSumMeanVar_32f", lyrsSumMeanVar_32f, strideFirst, in<Elem32f>(3 * 8), stride(8, 6), size(3),
        out<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsSumMeanVar_16s32f", lyrsSumMeanVar_16s32f, strideFirst, in<Elem16s>(3 * 8), stride(8, 6), size(3),
        out<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsSumMeanVar_32f_I", lyrsSumMeanVar_32f_I, strideFirst, in<Elem32f>(3 * 8), stride(8, 6), size(3),
        inOut<Elem32f>(6), inOut<Elem32f>(6), size(6)),
    row("lyrsSumMeanVar_16s32f_I", lyrsSumMeanVar_16s32f_I, strideFirst, in<Elem16s>(3 * 8), stride(8, 6), size(3),
        inOut<Elem32f>(6), inOut<Elem32f>(6), size(6)),
    row("lyrsSumMeanVar_16s32s_Sfs", lyrsSumMeanVar_16s32s_Sfs, strideFirst, in<Elem16s>(3 * 8), stride(8, 6), size(3),
        out<Elem32s>(6), out<Elem32s>(6), size(6), value<Elem32s>(1)),
    row("lyrsSumMeanVar_16s32s_ISfs", lyrsSumMeanVar_16s32s_ISfs, strideFirst, in<Elem16s>(3 * 8), stride(8, 6),
        size(3), inOut<Elem32s>(6), inOut<Elem32s>(6), size(6), value<Elem32s>(1)),
});

const bool oneFrame = addRows({
    row("lyrsMeanVarAcc_32f", lyrsMeanVarAcc_32f, noStride, in<Elem32f>(6), in<Elem32f>(6), inOut<Elem32f>(6),
        inOut<Elem32f>(6), size(6), value(0.5F)),
    row("lyrsMeanVarAcc_64f", lyrsMeanVarAcc_64f, noStride, in<Elem64f>(6), in<Elem64f>(6), inOut<Elem64f>(6),
        inOut<Elem64f>(6), size(6), value(0.5)),
});

const bool covariance = addRows({
    row("lyrsAccCovarianceMatrix_32f64f_D2", lyrsAccCovarianceMatrix_32f64f_D2, strideLast, in<Elem32f>(3 * 8),
        stride(8, 6), size(3), in<Elem32f>(6), inOut<Elem64f>(5 * 9 + 6).spaced(9, 6), size(6), stride(9, 6),
        value(0.5)),
    row("lyrsAccCovarianceMatrix_32f64f_D2L", lyrsAccCovarianceMatrix_32f64f_D2L, noStride, table<Elem32f>(3, 6),
        size(3), in<Elem32f>(6), table<Elem64f>(6, 6), size(6), value(0.5)),
    row("lyrsAccCovarianceMatrix_16s64f_D2", lyrsAccCovarianceMatrix_16s64f_D2, strideLast, in<Elem16s>(3 * 8),
        stride(8, 6), size(3), in<Elem16s>(6), inOut<Elem64f>(5 * 9 + 6).spaced(9, 6), size(6), stride(9, 6),
        value(0.5)),
    row("lyrsAccCovarianceMatrix_16s64f_D2L", lyrsAccCovarianceMatrix_16s64f_D2L, noStride, table<Elem16s>(3, 6),
        size(3), in<Elem16s>(6), table<Elem64f>(6, 6), size(6), value(0.5)),
});

} // namespace
} // namespace lyr::contract
