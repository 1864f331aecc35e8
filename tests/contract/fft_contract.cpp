// The real FFT: 32 points, and 2048 where the sine table is computed.

#include "contract/contract.hpp"
#include "fft/fft_spec.hpp"

namespace lyr::contract {
namespace {

const auto byDefault = order(StsFftOrder, StsNullPtr, StsFftFlag);

Value<Elem32s> orderOf(Elem32s v)
{
    return value(v).bad({-1, 31, INT32_MIN, INT32_MAX}, StsFftOrder).legal({0, 3, 4});
}
Value<Elem32s> flag()
{
    return value(8).bad({0, 3, 16, -1, INT32_MIN}, StsFftFlag).legal({1, 2, 4});
}

// No smaller one, which would leave parts of the told memory as they are.
Value<Elem32s> fixedOrder(Elem32s v)
{
    return value(v).bad({-1, 31, INT32_MIN, INT32_MAX}, StsFftOrder);
}

enum class Part
{
    spec,
    init
};
std::size_t bytesOf(Status (*getSize)(Elem32s, Elem32s, Elem32s, Elem32s*, Elem32s*, Elem32s*), Elem32s order,
                    Part part)
{
    Elem32s spec = 0;
    Elem32s init = 0;
    Elem32s buffer = 0;
    getSize(order, 8, 0, &spec, &init, &buffer);
    return static_cast<std::size_t>(part == Part::spec ? spec : init);
}

const bool sizes = addRows({
    row("lyrsFFTGetSize_R_32f", lyrsFFTGetSize_R_32f, byDefault, orderOf(5), flag(), value(0), out<Elem32s>(1),
        out<Elem32s>(1), out<Elem32s>(1)),
    row("lyrsFFTGetSize_R_16s32s", lyrsFFTGetSize_R_16s32s, byDefault, orderOf(5), flag(), value(0), out<Elem32s>(1),
        out<Elem32s>(1), out<Elem32s>(1)),
});

// The address of the record is asked for first, its memory after the order, and that has been cleared when the flag is
// looked at; only then the work memory.
const auto initOrder = order(StsNullPtr, StsFftOrder, StsNullPtr, StsFftFlag, StsNullPtr);

const bool inits = addRows({
    row("lyrsFFTInit_R_32f", lyrsFFTInit_R_32f, initOrder, receives<FFTSpec_R_32f>().rank(0), fixedOrder(5),
        flag().mayWrite(), value(0), place<Elem8u>(bytesOf(lyrsFFTGetSize_R_32f, 5, Part::spec)).rank(2),
        value<Elem8u*>(nullptr)),
    row("lyrsFFTInit_R_32f", lyrsFFTInit_R_32f, initOrder, receives<FFTSpec_R_32f>().rank(0), fixedOrder(11),
        flag().mayWrite(), value(0), place<Elem8u>(bytesOf(lyrsFFTGetSize_R_32f, 11, Part::spec)).rank(2),
        place<Elem8u>(bytesOf(lyrsFFTGetSize_R_32f, 11, Part::init)).rank(4).mayWrite()),
    row("lyrsFFTInit_R_16s32s", lyrsFFTInit_R_16s32s, initOrder, receives<FFTSpec_R_16s32s>().rank(0), fixedOrder(5),
        flag().mayWrite(), value(0), place<Elem8u>(bytesOf(lyrsFFTGetSize_R_16s32s, 5, Part::spec)).rank(2),
        value<Elem8u*>(nullptr)),
});

const auto allocOrder = order(StsNullPtr, StsFftOrder, StsFftFlag);

const bool allocated = addRows({
    row("lyrsFFTInitAlloc_R_32f", lyrsFFTInitAlloc_R_32f, allocOrder, receives<FFTSpec_R_32f>(lyrsFFTFree_R_32f),
        fixedOrder(11), flag(), value(0))
        .allocates(2),
    row("lyrsFFTInitAlloc_R_16s32s", lyrsFFTInitAlloc_R_16s32s, allocOrder,
        receives<FFTSpec_R_16s32s>(lyrsFFTFree_R_16s32s), fixedOrder(5), flag(), value(0))
        .allocates(1),
});

// The tag is looked at between the record's pointer and those of the vectors.
const auto useOrder = order(StsNullPtr, StsContext, StsNullPtr);

auto spec()
{
    const auto make = [] {
        FFTSpec_R_32f* p = nullptr;
        lyrsFFTInitAlloc_R_32f(&p, 5, 8, 0);
        return p;
    };
    return record(make, lyrsFFTFree_R_32f, sizeof(FFTSpec_R_32f))
        .rank(0)
        .spoilt(
            "has another tag", [](FFTSpec_R_32f* p) { p->idCtx = 7; }, StsContext);
}
auto fixedSpec()
{
    const auto make = [] {
        FFTSpec_R_16s32s* p = nullptr;
        lyrsFFTInitAlloc_R_16s32s(&p, 5, 8, 0);
        return p;
    };
    return record(make, lyrsFFTFree_R_16s32s, sizeof(FFTSpec_R_16s32s))
        .rank(0)
        .spoilt(
            "has another tag", [](FFTSpec_R_16s32s* p) { p->idCtx = 6; }, StsContext);
}

const bool uses = addRows({
    row("lyrsFFTFree_R_32f", lyrsFFTFree_R_32f, useOrder, spec().consumed()),
    row("lyrsFFTFree_R_16s32s", lyrsFFTFree_R_16s32s, useOrder, fixedSpec().consumed()),
    row("lyrsFFTGetBufSize_R_32f", lyrsFFTGetBufSize_R_32f, order(StsNullPtr, StsContext), spec(), out<Elem32s>(1)),
    row("lyrsFFTFwd_RToPack_32f", lyrsFFTFwd_RToPack_32f, useOrder, in<Elem32f>(32).rank(2), out<Elem32f>(32).rank(2),
        spec(), value<Elem8u*>(nullptr))
        .allocates(1),
    row("lyrsFFTFwd_RToPerm_32f", lyrsFFTFwd_RToPerm_32f, useOrder, in<Elem32f>(32).rank(2), out<Elem32f>(32).rank(2),
        spec(), value<Elem8u*>(nullptr))
        .allocates(1),
    row("lyrsFFTFwd_RToCCS_32f", lyrsFFTFwd_RToCCS_32f, useOrder, in<Elem32f>(32).rank(2), out<Elem32f>(34).rank(2),
        spec(), value<Elem8u*>(nullptr))
        .allocates(1),
    row("lyrsFFTInv_PackToR_32f", lyrsFFTInv_PackToR_32f, useOrder, in<Elem32f>(32).rank(2), out<Elem32f>(32).rank(2),
        spec(), value<Elem8u*>(nullptr))
        .allocates(1),
    row("lyrsFFTFwd_RToCCS_16s32s_Sfs", lyrsFFTFwd_RToCCS_16s32s_Sfs, useOrder, in<Elem16s>(32).rank(2),
        out<Elem32s>(34).rank(2), fixedSpec(), value(0), value<Elem8u*>(nullptr))
        .allocates(1),
});

} // namespace
} // namespace lyr::contract
