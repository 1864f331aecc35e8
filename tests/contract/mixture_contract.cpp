// One frame of 6 elements against 3 Gaussians, in blocks with a stride of 8.

#include "contract/contract.hpp"

namespace lyr::contract {
namespace {

const auto onBlock = order(StsStep, StsNullPtr, StsSize);
const auto byDefault = order(StsNullPtr, StsSize);
const auto pointersFirst = order(StsNullPtr, StsStep, StsSize);

const bool scores = addRows({
    row("lyrsLogGaussMultiMix_32f_D2", lyrsLogGaussMultiMix_32f_D2, onBlock, in<Elem32f>(3 * 8), in<Elem32f>(3 * 8),
        stride(8, 6), in<Elem32f>(6), size(6), inOut<Elem32f>(3), size(3)),
    row("lyrsLogGaussMultiMix_32f_D2L", lyrsLogGaussMultiMix_32f_D2L, byDefault, table<Elem32f>(3, 6),
        table<Elem32f>(3, 6), in<Elem32f>(6), size(6), inOut<Elem32f>(3), size(3)),
    row("lyrsLogGaussMultiMix_64f_D2", lyrsLogGaussMultiMix_64f_D2, onBlock, in<Elem64f>(3 * 8), in<Elem64f>(3 * 8),
        stride(8, 6), in<Elem64f>(6), size(6), inOut<Elem64f>(3), size(3)),
    row("lyrsLogGaussMultiMix_64f_D2L", lyrsLogGaussMultiMix_64f_D2L, byDefault, table<Elem64f>(3, 6),
        table<Elem64f>(3, 6), in<Elem64f>(6), size(6), inOut<Elem64f>(3), size(3)),
});

const bool best = addRows({
    row("lyrsLogGaussMaxMultiMix_32f_D2", lyrsLogGaussMaxMultiMix_32f_D2, onBlock, in<Elem32f>(3 * 8),
        in<Elem32f>(3 * 8), stride(8, 6), in<Elem32f>(6), size(6), in<Elem32f>(3), inOut<Elem32f>(3), size(3)),
    row("lyrsLogGaussMaxMultiMix_32f_D2L", lyrsLogGaussMaxMultiMix_32f_D2L, byDefault, table<Elem32f>(3, 6),
        table<Elem32f>(3, 6), in<Elem32f>(6), size(6), in<Elem32f>(3), inOut<Elem32f>(3), size(3)),
    row("lyrsLogGaussMaxMultiMix_64f_D2", lyrsLogGaussMaxMultiMix_64f_D2, onBlock, in<Elem64f>(3 * 8),
        in<Elem64f>(3 * 8), stride(8, 6), in<Elem64f>(6), size(6), in<Elem64f>(3), inOut<Elem64f>(3), size(3)),
    row("lyrsLogGaussMaxMultiMix_64f_D2L", lyrsLogGaussMaxMultiMix_64f_D2L, byDefault, table<Elem64f>(3, 6),
        table<Elem64f>(3, 6), in<Elem64f>(6), size(6), in<Elem64f>(3), inOut<Elem64f>(3), size(3)),
});

const bool sums = addRows({
    row("lyrsLogGaussAddMultiMix_32f_D2", lyrsLogGaussAddMultiMix_32f_D2, onBlock, in<Elem32f>(3 * 8),
        in<Elem32f>(3 * 8), stride(8, 6), in<Elem32f>(6), size(6), in<Elem32f>(3), inOut<Elem32f>(3), size(3)),
    row("lyrsLogGaussAddMultiMix_32f_D2L", lyrsLogGaussAddMultiMix_32f_D2L, byDefault, table<Elem32f>(3, 6),
        table<Elem32f>(3, 6), in<Elem32f>(6), size(6), in<Elem32f>(3), inOut<Elem32f>(3), size(3)),
    row("lyrsLogGaussAddMultiMix_64f_D2", lyrsLogGaussAddMultiMix_64f_D2, onBlock, in<Elem64f>(3 * 8),
        in<Elem64f>(3 * 8), stride(8, 6), in<Elem64f>(6), size(6), in<Elem64f>(3), inOut<Elem64f>(3), size(3)),
    row("lyrsLogGaussAddMultiMix_64f_D2L", lyrsLogGaussAddMultiMix_64f_D2L, byDefault, table<Elem64f>(3, 6),
        table<Elem64f>(3, 6), in<Elem64f>(6), size(6), in<Elem64f>(3), inOut<Elem64f>(3), size(3)),
});

const bool mixtures = addRows({
    row("lyrsLogGaussMixture_32f_D2", lyrsLogGaussMixture_32f_D2, pointersFirst, in<Elem32f>(6), in<Elem32f>(3 * 8),
        in<Elem32f>(3 * 8), size(3), stride(8, 6), size(6), in<Elem32f>(3), out<Elem32f>(1)),
    row("lyrsLogGaussMixture_32f_D2L", lyrsLogGaussMixture_32f_D2L, byDefault, in<Elem32f>(6), table<Elem32f>(3, 6),
        table<Elem32f>(3, 6), size(3), size(6), in<Elem32f>(3), out<Elem32f>(1)),
    row("lyrsLogGaussMixture_64f_D2", lyrsLogGaussMixture_64f_D2, pointersFirst, in<Elem64f>(6), in<Elem64f>(3 * 8),
        in<Elem64f>(3 * 8), size(3), stride(8, 6), size(6), in<Elem64f>(3), out<Elem64f>(1)),
    row("lyrsLogGaussMixture_64f_D2L", lyrsLogGaussMixture_64f_D2L, byDefault, in<Elem64f>(6), table<Elem64f>(3, 6),
        table<Elem64f>(3, 6), size(3), size(6), in<Elem64f>(3), out<Elem64f>(1)),
    row("lyrsLogGaussMixture_IdVar_32f_D2", lyrsLogGaussMixture_IdVar_32f_D2, pointersFirst, in<Elem32f>(6),
        in<Elem32f>(3 * 8), size(3), stride(8, 6), size(6), in<Elem32f>(3), out<Elem32f>(1)),
    row("lyrsLogGaussMixture_IdVar_32f_D2L", lyrsLogGaussMixture_IdVar_32f_D2L, byDefault, in<Elem32f>(6),
        table<Elem32f>(3, 6), size(3), size(6), in<Elem32f>(3), out<Elem32f>(1)),
    row("lyrsLogGaussMixture_IdVar_64f_D2", lyrsLogGaussMixture_IdVar_64f_D2, pointersFirst, in<Elem64f>(6),
        in<Elem64f>(3 * 8), size(3), stride(8, 6), size(6), in<Elem64f>(3), out<Elem64f>(1)),
    row("lyrsLogGaussMixture_IdVar_64f_D2L", lyrsLogGaussMixture_IdVar_64f_D2L, byDefault, in<Elem64f>(6),
        table<Elem64f>(3, 6), size(3), size(6), in<Elem64f>(3), out<Elem64f>(1)),
});

} // namespace
} // namespace lyr::contract
