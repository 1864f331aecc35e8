// Cepstra and their derivatives: every form of the DCT with any size, and streams of deltas that come in pieces.

#include "fuzz.hpp"

using namespace lyr::fuzz;

namespace {

// ----------------------------------------------------------------------------------------------------------------- DCT

// The same frame at two addresses, by a record in either place.
template <class S, class T>
void compare(Caller& c, const Function& transform, const void* placed, const void* allocated, Elem32s length,
             Elem32s results)
{
    const auto* const src = c.memory.vector<const S>(length);
    auto* const moved = c.memory.vector<S>(length);
    T* const dst[] = {c.memory.vector<T>(results), c.memory.vector<T>(results)};
    std::copy_n(src, length, moved);
    for (const int i : {0, 1}) {
        c.name('X', i == 0 ? src : moved);
        c.name('Y', dst[i]);
        c.name('P', i == 0 ? placed : allocated);
        demand(transform(c) == StsNoErr, "a transform succeeds");
    }
    demand(same(dst[0], dst[1], results), "the same cepstra from either record, at any address");
}

struct Dct
{
    Function getSize;
    Function init;
    Function initAlloc;
    bool hasC0;
    Function transform;
    decltype(&compare<Elem32f, Elem32f>) compareFrames;
    Function free;
};

const Function transform32f = by<lyrsDCTLifter_32f>("XYP");
const Function transform16s = by<lyrsDCTLifter_16s_Sfs>("XYPK");
const Function transform32s = by<lyrsDCTLifter_32s16s_Sfs>("XYPK");
const Function free32f = by<lyrsDCTLifterFree_32f>("P");
const Function free16s = by<lyrsDCTLifterFree_16s>("P");

const Dct dcts[] = {
    {by<lyrsDCTLifterGetSize_32f>("LCZ"), by<lyrsDCTLifterInit_32f>("PLCNV"), by<lyrsDCTLifterInitAlloc_32f>("PLCNV"),
     false, transform32f, compare<Elem32f, Elem32f>, free32f},
    {by<lyrsDCTLifterGetSize_C0_32f>("LCZ"), by<lyrsDCTLifterInit_C0_32f>("PLCNVU"),
     by<lyrsDCTLifterInitAlloc_C0_32f>("PLCNVU"), true, transform32f, compare<Elem32f, Elem32f>, free32f},
    {by<lyrsDCTLifterGetSize_Mul_32f>("LCZ"), by<lyrsDCTLifterInit_Mul_32f>("PLGC"),
     by<lyrsDCTLifterInitAlloc_Mul_32f>("PLGC"), false, transform32f, compare<Elem32f, Elem32f>, free32f},
    {by<lyrsDCTLifterGetSize_MulC0_32f>("LCZ"), by<lyrsDCTLifterInit_MulC0_32f>("PLGC"),
     by<lyrsDCTLifterInitAlloc_MulC0_32f>("PLGC"), true, transform32f, compare<Elem32f, Elem32f>, free32f},
    {by<lyrsDCTLifterGetSize_16s>("LCZ"), by<lyrsDCTLifterInit_16s>("PLCNV"), by<lyrsDCTLifterInitAlloc_16s>("PLCNV"),
     false, transform16s, compare<Elem16s, Elem16s>, free16s},
    {by<lyrsDCTLifterGetSize_C0_16s>("LCZ"), by<lyrsDCTLifterInit_C0_16s>("PLCNVU"),
     by<lyrsDCTLifterInitAlloc_C0_16s>("PLCNVU"), true, transform32s, compare<Elem32s, Elem16s>, free16s},
    {by<lyrsDCTLifterGetSize_Mul_16s>("LCZ"), by<lyrsDCTLifterInit_Mul_16s>("PLGC"),
     by<lyrsDCTLifterInitAlloc_Mul_16s>("PLGC"), false, transform16s, compare<Elem16s, Elem16s>, free16s},
    {by<lyrsDCTLifterGetSize_MulC0_16s>("LCZ"), by<lyrsDCTLifterInit_MulC0_16s>("PLGC"),
     by<lyrsDCTLifterInitAlloc_MulC0_16s>("PLGC"), true, transform32s, compare<Elem32s, Elem16s>, free16s},
};

void runDct(Caller& c, const Dct& form)
{
    constexpr Elem32s largest = 1 << 18;
    Input& in = c.in;
    const Elem32s lenDCT = in.oneIn(16) ? in.oneOf({8192, 8193, 40000, 1 << 29, INT32_MAX}) : in.length(300);
    const Elem32s usual = std::min(lenDCT, in.length(40)) + (in.oneIn(32) && lenDCT < 300 ? 300 : 0);
    const Elem32s lenCepstrum = in.oneIn(16) ? in.oneOf({lenDCT, 20000, 1 << 30, INT32_MAX}) : usual;
    auto* const size = c.memory.vector<Elem32s>(1);
    c.name('L', lenDCT);
    c.name('C', lenCepstrum);
    c.name('Z', size);
    c.name('N', in.length(100));
    c.name('V', in.value<Elem32f>());
    c.name('U', in.value<Elem32f>());
    c.name('K', in.value<Elem32s>());
    c.name('G', c.memory.vector<const Elem32f>(std::min(lenCepstrum, largest)));
    const Status told = form.getSize(c);
    // Of what has no size only the bound of one form on its inputs may be placed; for all else there is no memory.
    if (told == StsNoErr ? *size > largest : lenDCT > 8192 && lenDCT <= 40000) {
        return;
    }
    void* const placed = c.memory.place(told == StsNoErr ? *size : 0);
    void* allocated = nullptr;
    c.name('P', placed);
    const Status status = form.init(c);
    demand(told == StsNoErr || status < 0, "Init refuses what has no size");
    c.name('P', &allocated);
    const Status made = form.initAlloc(c);
    demand(made == status || made == StsMemAlloc, "Init and InitAlloc refuse alike");
    if (status == StsNoErr && made == StsNoErr) {
        form.compareFrames(c, form.transform, placed, allocated, lenDCT, lenCepstrum + (form.hasC0 ? 1 : 0));
    }
    c.name('P', allocated);
    demand(allocated == nullptr || form.free(c) == StsNoErr, "a record is released, complete or not");
}

// -------------------------------------------------------------------------------------------------------------- deltas

struct Stream
{
    Function append;
    Elem32s kept;  // rows that the next call needs again
    Elem32s parts; // a row has as many times the statics: the frame, or 13 for a frame of 14
    bool isAurora = false;
};

const Stream streams32f[] = {{by<lyrsDelta_Win1_32f_D2>("XWYSHVM"), 2, 2},
                             {by<lyrsDelta_Win2_32f_D2>("XWYSHVM"), 4, 2},
                             {by<lyrsDeltaDelta_Win1_32f_D2>("XWYSHVUM"), 3, 3},
                             {by<lyrsDeltaDelta_Win2_32f_D2>("XWYSHVUM"), 6, 3},
                             {by<lyrsDeltaMul_Win1_32f_D2>("XGWYSHM"), 2, 2},
                             {by<lyrsDeltaMul_Win2_32f_D2>("XGWYSHM"), 4, 2},
                             {by<lyrsDeltaDeltaMul_Win1_32f_D2>("XGWYSHM"), 3, 3},
                             {by<lyrsDeltaDeltaMul_Win2_32f_D2>("XGWYSHM"), 6, 3},
                             {by<lyrsDeltaDelta_Aurora_32f_D2>("XYSHM"), 8, 3, true},
                             {by<lyrsDeltaDeltaMul_Aurora_32f_D2>("XGYSHM"), 8, 3, true}};
const Stream streams16s[] = {{by<lyrsDelta_Win1_16s_D2Sfs>("XWYSHVMK"), 2, 2},
                             {by<lyrsDelta_Win2_16s_D2Sfs>("XWYSHVMK"), 4, 2},
                             {by<lyrsDeltaDelta_Win1_16s_D2Sfs>("XWYSHVUMK"), 3, 3},
                             {by<lyrsDeltaDelta_Win2_16s_D2Sfs>("XWYSHVUMK"), 6, 3},
                             {by<lyrsDeltaMul_Win1_16s_D2Sfs>("XGWYSHMK"), 2, 2},
                             {by<lyrsDeltaMul_Win2_16s_D2Sfs>("XGWYSHMK"), 4, 2},
                             {by<lyrsDeltaDeltaMul_Win1_16s_D2Sfs>("XGWYSHMK"), 3, 3},
                             {by<lyrsDeltaDeltaMul_Win2_16s_D2Sfs>("XGWYSHMK"), 6, 3},
                             {by<lyrsDeltaDelta_Aurora_16s_D2Sfs>("XYSHMK"), 8, 3, true},
                             {by<lyrsDeltaDeltaMul_Aurora_16s_D2Sfs>("XGYSHMK"), 8, 3, true}};

// A stream in one piece and in several: the same rows.
template <class T>
void runStream(Caller& c, const Stream& stream)
{
    Input& in = c.in;
    const Elem32s kept = stream.kept;
    const Elem32s width = stream.isAurora ? 14 : in.between(1, in.oneIn(2) ? 20 : 70);
    const Elem32s rowWidth = stream.parts * (stream.isAurora ? 13 : width);
    const Elem32s step = rowWidth + (in.oneIn(2) ? in.between(0, 9) : 0);
    const Elem32s height = kept + in.between(0, 40);
    const auto* const src = c.memory.vector<const T>(Elem64s{height} * width);
    T* const whole = c.memory.vector<T>(Elem64s{height - 1} * step + rowWidth);
    T* const pieces = c.memory.vector<T>(Elem64s{height - 1} * step + rowWidth);
    c.name('G', c.memory.vector<const T>(rowWidth));
    c.name('W', width);
    c.name('S', step);
    c.name('V', in.value<T>());
    c.name('U', in.value<T>());
    c.name('K', in.value<Elem32s>());
    const auto append = [&](Elem32s from, T* to, Elem32s count, Elem32s mode) {
        c.name('X', src + std::ptrdiff_t{from} * width);
        c.name('Y', to);
        c.name('H', count);
        c.name('M', mode);
        return stream.append(c);
    };
    demand(append(0, whole, height, DeltaBegin | DeltaEnd) == StsNoErr, "a stream in one piece");
    for (Elem32s done = 0, mode = 0; (mode & DeltaEnd) == 0;) {
        const Elem32s count = std::min(height - done, done == 0 ? kept + in.between(0, 9) : in.between(1, 20));
        const bool ends = count == 0 || (done + count == height && in.oneIn(2)); // the end may bring no frame
        mode = (done == 0 ? DeltaBegin : 0) | (ends ? DeltaEnd : 0);
        T* const to = pieces + std::ptrdiff_t{std::max(done - kept, 0)} * step;
        demand(append(done, to, count, mode) == StsNoErr, "a piece of a stream");
        done += count;
    }
    for (std::ptrdiff_t r = 0; r < height; ++r) {
        demand(same(whole + r * step, pieces + r * step, rowWidth), "the same rows from pieces");
    }
    demand(append(0, whole, kept - 1, DeltaBegin) == StsSize, "too few frames are an error");
}

const Function windows32f[] = {by<lyrsEvalDelta_32f_D2>("YHSWOTV"), by<lyrsEvalDeltaMul_32f_D2>("YHSGWOT")};
const Function windows16s[] = {by<lyrsEvalDelta_16s_D2Sfs>("YHSWOTVK"), by<lyrsEvalDeltaMul_16s_D2Sfs>("YHSGWOTK")};

template <class T>
void runWindow(Caller& c, const Function& evaluate)
{
    Input& in = c.in;
    const Elem32s height = in.length(60);
    const Elem32s width = in.length(40);
    const Elem32s window = in.length(9);
    const Elem32s offset = in.between(0, 6) - (in.oneIn(32) ? 7 : 0);
    const Elem64s used = std::max<Elem64s>(Elem64s{width} * 2 + offset, 0);
    const Elem64s step = used + in.between(0, 9) - (in.oneIn(32) ? 10 : 0);
    c.name('Y', c.memory.vector<T>(height < 1 || step < 1 ? 0 : (height - 1) * step + used));
    c.name('G', c.memory.vector<const T>(2 * Elem64s{width}));
    c.name('H', height);
    c.name('S', static_cast<double>(step));
    c.name('W', width);
    c.name('O', offset);
    c.name('T', window);
    c.name('V', in.value<T>());
    c.name('K', in.value<Elem32s>());
    const bool legal = height > 0 && width > 0 && window > 0 && offset >= 0 && height / 2 >= window && step >= used;
    demand((evaluate(c) == StsNoErr) == legal, "what is legal is done, and nothing else");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Caller c(data, size);
    switch (const std::size_t form = c.in.bits<Elem16u>(); form % 4) {
    case 0:
        runStream<Elem32f>(c, streams32f[form / 4 % std::size(streams32f)]);
        break;
    case 1:
        runStream<Elem16s>(c, streams16s[form / 4 % std::size(streams16s)]);
        break;
    case 2:
        form / 4 % 2 == 0 ? runWindow<Elem32f>(c, windows32f[form / 8 % 2])
                          : runWindow<Elem16s>(c, windows16s[form / 8 % 2]);
        break;
    default:
        runDct(c, dcts[form / 4 % std::size(dcts)]);
    }
    return 0;
}
