// Division of vectors.

#include "contract/contract.hpp"

namespace lyr::contract {
namespace {

const auto byDefault = order(StsNullPtr, StsSize);

const bool rows = addRows({
    row("lyrsDiv_32f", lyrsDiv_32f, byDefault, in<Elem32f>(6), in<Elem32f>(6), out<Elem32f>(6), size(6)),
    row("lyrsDiv_64f", lyrsDiv_64f, byDefault, in<Elem64f>(6), in<Elem64f>(6), out<Elem64f>(6), size(6)),
    row("lyrsDiv_32f_I", lyrsDiv_32f_I, byDefault, in<Elem32f>(6), inOut<Elem32f>(6), size(6)),

    // A zero divisor is a warning, with everything written.
    row("lyrsDiv_32f", lyrsDiv_32f, byDefault, in<Elem32f>(2).holding({1, 0}), in<Elem32f>(2), out<Elem32f>(2),
        size(2).legal({}))
        .returns(StsWarnOverflow),
    row("lyrsDiv_64f", lyrsDiv_64f, byDefault, in<Elem64f>(2).holding({1, 0}), in<Elem64f>(2), out<Elem64f>(2),
        size(2).legal({}))
        .returns(StsWarnOverflow),
    row("lyrsDiv_32f_I", lyrsDiv_32f_I, byDefault, in<Elem32f>(2).holding({1, 0}), inOut<Elem32f>(2), size(2).legal({}))
        .returns(StsWarnOverflow),
});

} // namespace
} // namespace lyr::contract
