// Scores against one diagonal Gaussian. Frames of 6 elements; the blocks are 3 frames with a stride of 8.

#include "contract/contract.hpp"

namespace lyr::contract {
namespace {

const auto onBlock = order(StsStep, StsNullPtr, StsSize);
const auto byDefault = order(StsNullPtr, StsSize);

const bool oneFrame = addRows({
    row("lyrsLogGaussSingle_32f", lyrsLogGaussSingle_32f, byDefault, in<Elem32f>(6), in<Elem32f>(6), in<Elem32f>(6),
        size(6), out<Elem32f>(1), value(0.5F)),
    row("lyrsLogGaussSingle_64f", lyrsLogGaussSingle_64f, byDefault, in<Elem64f>(6), in<Elem64f>(6), in<Elem64f>(6),
        size(6), out<Elem64f>(1), value(0.5)),
    row("lyrsLogGaussSingle_32f64f", lyrsLogGaussSingle_32f64f, byDefault, in<Elem32f>(6), in<Elem32f>(6),
        in<Elem32f>(6), size(6), out<Elem64f>(1), value(0.5)),
    row("lyrsLogGaussSingle_IdVar_32f", lyrsLogGaussSingle_IdVar_32f, byDefault, in<Elem32f>(6), in<Elem32f>(6),
        size(6), out<Elem32f>(1), value(0.5F)),
    row("lyrsLogGaussSingle_IdVar_64f", lyrsLogGaussSingle_IdVar_64f, byDefault, in<Elem64f>(6), in<Elem64f>(6),
        size(6), out<Elem64f>(1), value(0.5)),
    row("lyrsLogGaussSingle_IdVar_32f64f", lyrsLogGaussSingle_IdVar_32f64f, byDefault, in<Elem32f>(6), in<Elem32f>(6),
        size(6), out<Elem64f>(1), value(0.5)),
    row("lyrsLogGaussSingle_DirectVar_32f", lyrsLogGaussSingle_DirectVar_32f, byDefault, in<Elem32f>(6), in<Elem32f>(6),
        in<Elem32f>(6), size(6), out<Elem32f>(1), value(0.5F))
        .allocates(1),
    row("lyrsLogGaussSingle_DirectVar_64f", lyrsLogGaussSingle_DirectVar_64f, byDefault, in<Elem64f>(6), in<Elem64f>(6),
        in<Elem64f>(6), size(6), out<Elem64f>(1), value(0.5)),
    row("lyrsLogGaussSingle_DirectVar_32f64f", lyrsLogGaussSingle_DirectVar_32f64f, byDefault, in<Elem32f>(6),
        in<Elem32f>(6), in<Elem32f>(6), size(6), out<Elem64f>(1), value(0.5)),
});

// Three ways about a zero variance.
const bool zeroVariance = addRows({
    row("lyrsLogGaussSingle_DirectVar_32f", lyrsLogGaussSingle_DirectVar_32f, byDefault, in<Elem32f>(2), in<Elem32f>(2),
        in<Elem32f>(2).holding({0, 1}), size(2), out<Elem32f>(1), value(0.5F))
        .returns(StsWarnOverflow)
        .allocates(1),
    row("lyrsLogGaussSingle_DirectVar_64f", lyrsLogGaussSingle_DirectVar_64f, byDefault, in<Elem64f>(2), in<Elem64f>(2),
        in<Elem64f>(2).holding({0, 1}), size(2), out<Elem64f>(1), value(0.5)),
    row("lyrsLogGaussSingle_DirectVar_32f64f", lyrsLogGaussSingle_DirectVar_32f64f, byDefault, in<Elem32f>(2),
        in<Elem32f>(2), in<Elem32f>(2).holding({0, 1}), size(2), out<Elem64f>(1).kept(), value(0.5))
        .returns(StsWarnOverflow),
});

const bool manyFrames = addRows({
    row("lyrsLogGauss_32f_D2", lyrsLogGauss_32f_D2, onBlock, in<Elem32f>(3 * 8), stride(8, 6), in<Elem32f>(6),
        in<Elem32f>(6), size(6), out<Elem32f>(3), size(3), value(0.5F)),
    row("lyrsLogGauss_64f_D2", lyrsLogGauss_64f_D2, onBlock, in<Elem64f>(3 * 8), stride(8, 6), in<Elem64f>(6),
        in<Elem64f>(6), size(6), out<Elem64f>(3), size(3), value(0.5)),
    row("lyrsLogGauss_IdVar_32f_D2", lyrsLogGauss_IdVar_32f_D2, onBlock, in<Elem32f>(3 * 8), stride(8, 6),
        in<Elem32f>(6), size(6), out<Elem32f>(3), size(3), value(0.5F)),
    row("lyrsLogGauss_IdVar_64f_D2", lyrsLogGauss_IdVar_64f_D2, onBlock, in<Elem64f>(3 * 8), stride(8, 6),
        in<Elem64f>(6), size(6), out<Elem64f>(3), size(3), value(0.5)),

    row("lyrsLogGauss_32f_D2L", lyrsLogGauss_32f_D2L, byDefault, table<Elem32f>(3, 6), in<Elem32f>(6), in<Elem32f>(6),
        size(6), out<Elem32f>(3), size(3), value(0.5F)),
    row("lyrsLogGauss_64f_D2L", lyrsLogGauss_64f_D2L, byDefault, table<Elem64f>(3, 6), in<Elem64f>(6), in<Elem64f>(6),
        size(6), out<Elem64f>(3), size(3), value(0.5)),
    row("lyrsLogGauss_IdVar_32f_D2L", lyrsLogGauss_IdVar_32f_D2L, byDefault, table<Elem32f>(3, 6), in<Elem32f>(6),
        size(6), out<Elem32f>(3), size(3), value(0.5F)),
    row("lyrsLogGauss_IdVar_64f_D2L", lyrsLogGauss_IdVar_64f_D2L, byDefault, table<Elem64f>(3, 6), in<Elem64f>(6),
        size(6), out<Elem64f>(3), size(3), value(0.5)),
});

} // namespace
} // namespace lyr::contract
