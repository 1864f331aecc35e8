// The DCT with liftering: 23 inputs, 12 cepstra.

#include "contract/contract.hpp"
#include "frontend/dct_lifter.hpp"

namespace lyr::contract {
namespace {

const auto byDefault = order(StsNullPtr, StsSize);

Value<Elem32s> inputs()
{
    return size(23).atLeast(12);
}
Value<Elem32s> cepstra()
{
    return size(12).atMost(23);
}

// Memory of the size told, a multiple of 8 so that it is aligned also where it ends at the unmapped page.
template <class State>
auto buffer(Status (*getSize)(Elem32s, Elem32s, Elem32s*))
{
    Elem32s bytes = 0;
    getSize(23, 12, &bytes);
    return place<State>((static_cast<std::size_t>(bytes) + 7) / 8 * 8);
}

const bool sizes = addRows({
    row("lyrsDCTLifterGetSize_32f", lyrsDCTLifterGetSize_32f, byDefault, inputs(), cepstra(), out<Elem32s>(1)),
    row("lyrsDCTLifterGetSize_C0_32f", lyrsDCTLifterGetSize_C0_32f, byDefault, inputs(), cepstra(), out<Elem32s>(1)),
    row("lyrsDCTLifterGetSize_Mul_32f", lyrsDCTLifterGetSize_Mul_32f, byDefault, inputs(), cepstra(), out<Elem32s>(1)),
    row("lyrsDCTLifterGetSize_MulC0_32f", lyrsDCTLifterGetSize_MulC0_32f, byDefault, inputs(), cepstra(),
        out<Elem32s>(1)),
    row("lyrsDCTLifterGetSize_16s", lyrsDCTLifterGetSize_16s, byDefault, inputs(), cepstra(), out<Elem32s>(1)),
    row("lyrsDCTLifterGetSize_C0_16s", lyrsDCTLifterGetSize_C0_16s, byDefault, inputs(), cepstra(), out<Elem32s>(1)),
    row("lyrsDCTLifterGetSize_Mul_16s", lyrsDCTLifterGetSize_Mul_16s, byDefault, inputs(), cepstra(), out<Elem32s>(1)),
    row("lyrsDCTLifterGetSize_MulC0_16s", lyrsDCTLifterGetSize_MulC0_16s, byDefault, inputs().atMost(8192), cepstra(),
        out<Elem32s>(1)),
});

const bool inits = addRows({
    row("lyrsDCTLifterInit_32f", lyrsDCTLifterInit_32f, byDefault, buffer<DCTLifterState_32f>(lyrsDCTLifterGetSize_32f),
        inputs(), cepstra(), size(22), value(1.0F)),
    row("lyrsDCTLifterInit_16s", lyrsDCTLifterInit_16s, byDefault, buffer<DCTLifterState_16s>(lyrsDCTLifterGetSize_16s),
        inputs(), cepstra(), size(22), value(1.0F)),
    row("lyrsDCTLifterInit_C0_32f", lyrsDCTLifterInit_C0_32f, byDefault,
        buffer<DCTLifterState_32f>(lyrsDCTLifterGetSize_C0_32f), inputs(), cepstra(), size(22), value(1.0F),
        value(0.5F)),
    row("lyrsDCTLifterInit_C0_16s", lyrsDCTLifterInit_C0_16s, byDefault,
        buffer<DCTLifterState_16s>(lyrsDCTLifterGetSize_C0_16s), inputs(), cepstra(), size(22), value(1.0F),
        value(0.5F)),
    row("lyrsDCTLifterInit_Mul_32f", lyrsDCTLifterInit_Mul_32f, byDefault,
        buffer<DCTLifterState_32f>(lyrsDCTLifterGetSize_Mul_32f), inputs(), in<Elem32f>(12), cepstra()),
    row("lyrsDCTLifterInit_Mul_16s", lyrsDCTLifterInit_Mul_16s, byDefault,
        buffer<DCTLifterState_16s>(lyrsDCTLifterGetSize_Mul_16s), inputs(), in<Elem32f>(12), cepstra()),
    row("lyrsDCTLifterInit_MulC0_32f", lyrsDCTLifterInit_MulC0_32f, byDefault,
        buffer<DCTLifterState_32f>(lyrsDCTLifterGetSize_MulC0_32f), inputs(), in<Elem32f>(12), cepstra()),
    row("lyrsDCTLifterInit_MulC0_16s", lyrsDCTLifterInit_MulC0_16s, byDefault,
        buffer<DCTLifterState_16s>(lyrsDCTLifterGetSize_MulC0_16s), inputs(), in<Elem32s>(12), cepstra()),
});

const bool allocated = addRows({
    row("lyrsDCTLifterInitAlloc_32f", lyrsDCTLifterInitAlloc_32f, byDefault,
        receives<DCTLifterState_32f>(lyrsDCTLifterFree_32f), inputs(), cepstra(), size(22), value(1.0F))
        .allocates(3),
    row("lyrsDCTLifterInitAlloc_C0_32f", lyrsDCTLifterInitAlloc_C0_32f, byDefault,
        receives<DCTLifterState_32f>(lyrsDCTLifterFree_32f), inputs(), cepstra(), size(22), value(1.0F), value(0.5F))
        .allocates(3),
    row("lyrsDCTLifterInitAlloc_Mul_32f", lyrsDCTLifterInitAlloc_Mul_32f, byDefault,
        receives<DCTLifterState_32f>(lyrsDCTLifterFree_32f), inputs(), in<Elem32f>(12), cepstra())
        .allocates(3),
    row("lyrsDCTLifterInitAlloc_MulC0_32f", lyrsDCTLifterInitAlloc_MulC0_32f, byDefault,
        receives<DCTLifterState_32f>(lyrsDCTLifterFree_32f), inputs(), in<Elem32f>(12), cepstra())
        .allocates(3),
    row("lyrsDCTLifterInitAlloc_16s", lyrsDCTLifterInitAlloc_16s, byDefault,
        receives<DCTLifterState_16s>(lyrsDCTLifterFree_16s), inputs(), cepstra(), size(22), value(1.0F))
        .allocates(4),
    row("lyrsDCTLifterInitAlloc_C0_16s", lyrsDCTLifterInitAlloc_C0_16s, byDefault,
        receives<DCTLifterState_16s>(lyrsDCTLifterFree_16s), inputs(), cepstra(), size(22), value(1.0F), value(0.5F))
        .allocates(4),
    row("lyrsDCTLifterInitAlloc_Mul_16s", lyrsDCTLifterInitAlloc_Mul_16s, byDefault,
        receives<DCTLifterState_16s>(lyrsDCTLifterFree_16s), inputs(), in<Elem32f>(12), cepstra())
        .allocates(4),
    row("lyrsDCTLifterInitAlloc_MulC0_16s", lyrsDCTLifterInitAlloc_MulC0_16s, byDefault,
        receives<DCTLifterState_16s>(lyrsDCTLifterFree_16s), inputs(), in<Elem32s>(12), cepstra())
        .allocates(4),
});

DCTLifterState_32f* makeSingle()
{
    DCTLifterState_32f* state = nullptr;
    lyrsDCTLifterInitAlloc_C0_32f(&state, 23, 12, 22, 1.0F, 0.5F);
    return state;
}

DCTLifterState_16s* makeFixed()
{
    DCTLifterState_16s* state = nullptr;
    lyrsDCTLifterInitAlloc_C0_16s(&state, 23, 12, 22, 1.0F, 0.5F);
    return state;
}

auto single()
{
    return record(makeSingle, lyrsDCTLifterFree_32f, sizeof(DCTLifterState_32f));
}
auto fixed()
{
    return record(makeFixed, lyrsDCTLifterFree_16s, sizeof(DCTLifterState_16s));
}

const bool transforms = addRows({
    row("lyrsDCTLifter_32f", lyrsDCTLifter_32f, order(StsNullPtr), in<Elem32f>(23), out<Elem32f>(13), single()),
    row("lyrsDCTLifter_16s_Sfs", lyrsDCTLifter_16s_Sfs, order(StsNullPtr), in<Elem16s>(23), out<Elem16s>(13), fixed(),
        value(1)),
    row("lyrsDCTLifter_32s16s_Sfs", lyrsDCTLifter_32s16s_Sfs, order(StsNullPtr), in<Elem32s>(23), out<Elem16s>(13),
        fixed(), value(1)),
    row("lyrsDCTLifterFree_32f", lyrsDCTLifterFree_32f, order(StsNullPtr), single().consumed()),
    row("lyrsDCTLifterFree_16s", lyrsDCTLifterFree_16s, order(StsNullPtr), fixed().consumed()),
});

} // namespace
} // namespace lyr::contract
