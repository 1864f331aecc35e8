// Log-domain arithmetic, on vectors of 6 elements.

#include "contract/contract.hpp"

namespace lyr::contract {
namespace {

const auto sizeFirst = order(StsSize, StsNullPtr, StsRange);

const bool logAdd = addRows({
    row("lyrsLogAdd_32f", lyrsLogAdd_32f, sizeFirst, in<Elem32f>(6), inOut<Elem32f>(6), size(6), value(0)),
    row("lyrsLogAdd_64f", lyrsLogAdd_64f, sizeFirst, in<Elem64f>(6), inOut<Elem64f>(6), size(6), value(0)),
    row("lyrsLogAdd_32s_Sfs", lyrsLogAdd_32s_Sfs, sizeFirst, in<Elem32s>(6), inOut<Elem32s>(6), size(6), value(2),
        value(0)),
    row("lyrsLogAdd_16s_Sfs", lyrsLogAdd_16s_Sfs, sizeFirst, in<Elem16s>(6), inOut<Elem16s>(6), size(6), value(2),
        value(0)),
});

// The subtrahend lies below the minuend.
const bool logSub = addRows({
    row("lyrsLogSub_32f", lyrsLogSub_32f, sizeFirst, in<Elem32f>(6).range(5, 9),
        inOut<Elem32f>(6).range(1, 4).spoilt(
            "reaches the minuend", [](Elem32f* b) { b[3] = 9; }, StsRange),
        size(6)),
    row("lyrsLogSub_64f", lyrsLogSub_64f, sizeFirst, in<Elem64f>(6).range(5, 9),
        inOut<Elem64f>(6).range(1, 4).spoilt(
            "reaches the minuend", [](Elem64f* b) { b[3] = 9; }, StsRange),
        size(6)),
    row("lyrsLogSub_32s_Sfs", lyrsLogSub_32s_Sfs, sizeFirst, in<Elem32s>(6).range(5, 9),
        inOut<Elem32s>(6).range(1, 4).spoilt(
            "reaches the minuend", [](Elem32s* b) { b[3] = 9; }, StsRange),
        size(6), value(2)),
    row("lyrsLogSub_16s_Sfs", lyrsLogSub_16s_Sfs, sizeFirst, in<Elem16s>(6).range(5, 9),
        inOut<Elem16s>(6).range(1, 4).spoilt(
            "reaches the minuend", [](Elem16s* b) { b[3] = 9; }, StsRange),
        size(6), value(2)),
});

const bool logSum = addRows({
    row("lyrsLogSum_32f", lyrsLogSum_32f, sizeFirst, in<Elem32f>(9), out<Elem32f>(1), size(9)),
    row("lyrsLogSum_64f", lyrsLogSum_64f, sizeFirst, in<Elem64f>(9), out<Elem64f>(1), size(9)),
    row("lyrsLogSum_32s_Sfs", lyrsLogSum_32s_Sfs, sizeFirst, in<Elem32s>(9), out<Elem32s>(1), size(9), value(2)),
    row("lyrsLogSum_16s_Sfs", lyrsLogSum_16s_Sfs, sizeFirst, in<Elem16s>(9), out<Elem16s>(1), size(9), value(2)),
});

} // namespace
} // namespace lyr::contract
