// Filter banks: every way to build one from hostile sizes, frequencies and options, centres and weights from the
// caller, evaluation.

#include "fuzz.hpp"

#include "frontend/filter_bank.hpp"

using namespace lyr::fuzz;

namespace {

constexpr Elem32s largest = 1 << 20; // bytes of a bank in the caller's memory

template <class Element>
struct Forms
{
    Function getSize;
    Function init;
    Function allocating[5];
    Function auroraSize[2];
    Function aurora[2];
    Function getCenters;
    Function setCenters;
    Function getCoeffs;
    Function setCoeffs;
    Function evaluate[2]; // results in the type of the input, and in a wider one
    Function free;
};

const Forms<Elem32f> single{by<lyrsMelFBankGetSize_32f>("LNFZ"),
                            by<lyrsMelFBankInit_32f>("BOLRPQNMDF"),
                            {by<lyrsMelFBankInitAlloc_32f>("BOLRPQNMDF"),
                             by<lyrsMelLinFBankInitAlloc_32f>("BOLRPQNEIMDF"), by<lyrsEmptyFBankInitAlloc_32f>("BOLNF"),
                             by<lyrsMelFBankInitAllocLow_Aurora_32f>("B"),
                             by<lyrsMelFBankInitAllocHigh_Aurora_32f>("B")},
                            {by<lyrsMelFBankGetSizeLow_Aurora_32f>("Z"), by<lyrsMelFBankGetSizeHigh_Aurora_32f>("Z")},
                            {by<lyrsMelFBankInitLow_Aurora_32f>("B"), by<lyrsMelFBankInitHigh_Aurora_32f>("B")},
                            by<lyrsFBankGetCenters_32f>("BT"),
                            by<lyrsFBankSetCenters_32f>("BT"),
                            by<lyrsFBankGetCoeffs_32f>("BJC"),
                            by<lyrsFBankSetCoeffs_32f>("BJC"),
                            {by<lyrsEvalFBank_32f>("XYB"), by<lyrsEvalFBank_32f>("XYB")},
                            by<lyrsFBankFree_32f>("B")};

const Forms<Elem16s> fixed{by<lyrsMelFBankGetSize_16s>("LNFZ"),
                           by<lyrsMelFBankInit_16s>("BOLRPQNMDF"),
                           {by<lyrsMelFBankInitAlloc_16s>("BOLRPQNMDF"),
                            by<lyrsMelLinFBankInitAlloc_16s>("BOLRPQNEIMDF"), by<lyrsEmptyFBankInitAlloc_16s>("BOLNF"),
                            by<lyrsMelFBankInitAllocLow_Aurora_16s>("B"),
                            by<lyrsMelFBankInitAllocHigh_Aurora_16s>("B")},
                           {by<lyrsMelFBankGetSizeLow_Aurora_16s>("Z"), by<lyrsMelFBankGetSizeHigh_Aurora_16s>("Z")},
                           {by<lyrsMelFBankInitLow_Aurora_16s>("B"), by<lyrsMelFBankInitHigh_Aurora_16s>("B")},
                           by<lyrsFBankGetCenters_16s>("BT"),
                           by<lyrsFBankSetCenters_16s>("BT"),
                           by<lyrsFBankGetCoeffs_16s>("BJC"),
                           by<lyrsFBankSetCoeffs_16s>("BJC"),
                           {by<lyrsEvalFBank_16s_Sfs>("XYBK"), by<lyrsEvalFBank_16s32s_Sfs>("XYBK")},
                           by<lyrsFBankFree_16s>("B")};

const Function integerSize = by<lyrsMelFBankGetSize_32s>("LNFZ");
const Function integerInit = by<lyrsMelFBankInit_32s>("BOLRPQNMDF");
const Function integerEvaluate = by<lyrsEvalFBank_32s_Sfs>("XYBK");

// How many weights has a side that goes from one centre to another.
Elem64s sideLength(Elem64s from, Elem64s to, bool withLowerEnd)
{
    return from > to ? 0 : to - from + (withLowerEnd ? 1 : 0);
}

// Sets centres and weights of a bank, reads them, and evaluates it.
template <class Element, class State>
void use(Caller& c, const Forms<Element>& forms, State* bank)
{
    Input& in = c.in;
    const Elem32s nFilter = bank->nFilter;
    const Elem32s bins = bank->fftLen / 2 + 1;
    auto* const centers = c.memory.vector<Elem32s>(Elem64s{nFilter} + 2);
    c.name('T', centers);
    if (in.oneIn(2)) {
        std::generate_n(centers, nFilter + 2, [&] { return in.between(0, std::min(bins, 0xFFFF) - 1); });
        std::sort(centers, centers + nFilter + 2);
        if (in.oneIn(2)) {
            centers[in.between(0, nFilter + 1)] = in.oneIn(2) ? in.value<Elem32s>() : bins + in.between(-1, 2);
        }
        forms.setCenters(c);
    }
    const Status told = forms.getCenters(c); // from a strange scale they may be out of order, which is not told
    demand(told == StsNoErr || told == StsFBankNotReady, "centres, or none");
    if (bank->ready == 0) {
        return;
    }
    std::copy_n(bank->pCenters, nFilter + 2, centers);
    const Elem32s filter = in.oneIn(16) ? in.value<Elem32s>() : in.between(1, std::min(nFilter + 1, 0xFFFF));
    const bool canSet = filter >= 1 && filter <= nFilter;
    const bool canGet = canSet || filter == nFilter + 1;
    const Elem64s weights = (canGet ? sideLength(centers[filter - 1], centers[filter], true) : 0) +
                            (canSet ? sideLength(centers[filter], centers[filter + 1], false) : 0);
    if (weights <= largest) {
        c.name('J', filter);
        c.name('C', c.memory.vector<Elem32f>(weights));
        demand(forms.setCoeffs(c) == (canSet ? StsNoErr : StsSize), "weights of a filter are set");
        demand(forms.getCoeffs(c) == (canGet ? StsNoErr : StsSize), "weights of a filter are told");
    }
    c.name('X', c.memory.vector<const Element>(bank->pFFTSpec != nullptr ? bank->fftLen : bins));
    c.name('K', in.value<Elem32s>());
    c.name('Y', c.memory.vector<Element>(nFilter));
    demand(forms.evaluate[0](c) == StsNoErr, "an evaluation succeeds");
    c.name('Y', c.memory.vector<Elem32s>(nFilter));
    demand(forms.evaluate[1](c) == StsNoErr, "an evaluation succeeds");
}

// A frequency, or a parameter of the scale.
Elem32f number(Input& in, Elem32f usual)
{
    const int kind = in.bits<Elem8u>() % 8;
    return kind < 4 ? usual : kind < 7 ? static_cast<Elem32f>(in.between(0, 0xFFFE)) : in.value<Elem32f>();
}

template <class State, class Element>
void build(Caller& c, const Forms<Element>& forms)
{
    Input& in = c.in;
    c.name('L', in.oneIn(16) ? in.oneOf({1 << 13, 1 << 20, 1 << 30, (1 << 30) + 1, INT32_MAX}) : in.length(600));
    c.name('N', in.oneIn(16) ? in.oneOf({300000, 518000, 30000000, INT32_MAX}) : in.length(70));
    c.name('F', in.oneIn(16) ? in.value<Elem32s>() : in.oneOf({1, 2, 5, 6}));
    c.name('R', number(in, 8000));
    c.name('P', number(in, 64));
    c.name('Q', number(in, 4000));
    c.name('M', number(in, 2595));
    c.name('D', number(in, 700));
    c.name('E', number(in, 1000));
    c.name('I', in.length(20));
    c.name('O', c.memory.vector<Elem32s>(1));
    auto* const size = c.memory.vector<Elem32s>(1);
    c.name('Z', size);
    const int kind = in.between(0, 7);
    if (kind < 5) {
        State* bank = nullptr;
        c.name('B', &bank);
        const Status status = forms.allocating[kind](c);
        c.name('B', bank);
        if (status == StsNoErr) {
            use(c, forms, bank);
        }
        demand(bank == nullptr || status == StsNoErr || status == StsMemAlloc, "no bank from refused arguments");
        demand(bank == nullptr || forms.free(c) == StsNoErr, "a bank is released, finished or not");
        return;
    }
    // In the caller's memory, of which there is none for what has no size.
    const Status told = kind == 5 ? forms.getSize(c) : forms.auroraSize[kind - 6](c);
    if (told == StsNoErr && *size > largest) {
        return;
    }
    void* const bank = c.memory.place(told == StsNoErr ? *size : 0);
    c.name('B', bank);
    const Status status = kind == 5 ? forms.init(c) : forms.aurora[kind - 6](c);
    demand(told == StsNoErr || status < 0, "Init refuses what has no size");
    if (status == StsNoErr) {
        use(c, forms, static_cast<State*>(bank));
    }
}

void buildOfIntegers(Caller& c)
{
    Input& in = c.in;
    const Elem32s fftLen = in.oneIn(16) ? in.oneOf({31, 8192, 8193, INT32_MAX, -1}) : in.between(32, 1100);
    const Elem32s nFilter = in.length(60);
    const auto hertz = [&](Elem32s usual) {
        return in.oneIn(2) ? in.oneIn(8) ? in.value<Elem32s>() : in.between(0, 48000) : usual;
    };
    auto* const size = c.memory.vector<Elem32s>(1);
    c.name('L', fftLen);
    c.name('N', nFilter);
    c.name('F', in.oneIn(16) ? in.value<Elem32s>() : 2);
    c.name('R', hertz(8000));
    c.name('P', hertz(64));
    c.name('Q', hertz(4000));
    c.name('M', in.oneIn(2) ? in.bits<Elem32s>() : 2595 << 15);
    c.name('D', in.oneIn(2) ? in.bits<Elem32s>() : 700 << 15);
    c.name('O', c.memory.vector<Elem32s>(1));
    c.name('Z', size);
    const Status told = integerSize(c);
    const Elem32s half = told == StsNoErr ? lyr::bankLength(fftLen).points / 2 : 0;
    if (told != StsNoErr && fftLen >= 32 && fftLen <= 8192 && nFilter == lyr::bankLength(fftLen).points / 2 + 1) {
        return; // Init takes one filter more than there is a size for
    }
    c.name('B', c.memory.place(told == StsNoErr ? *size : 0));
    const Status status = integerInit(c);
    demand(told == StsNoErr || status < 0, "Init refuses what has no size");
    if (status == StsNoErr) {
        c.name('X', c.memory.vector<const Elem32s>(half + 1));
        c.name('Y', c.memory.vector<Elem32s>(nFilter));
        c.name('K', in.value<Elem32s>());
        integerEvaluate(c);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Caller c(data, size);
    switch (c.in.between(0, 4)) {
    case 0:
    case 1:
        build<FBankState_32f>(c, single);
        break;
    case 2:
    case 3:
        build<FBankState_16s>(c, fixed);
        break;
    default:
        buildOfIntegers(c);
    }
    return 0;
}
