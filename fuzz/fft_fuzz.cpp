// Real transforms: any order and option, records in the caller's memory and in the library's, vectors at any address
// and in place. All ways give the same bits.

#include "fuzz.hpp"

using namespace lyr::fuzz;

namespace {

struct Forms
{
    Function getSize;
    Function init;
    Function initAlloc;
    Function free;
};

const Forms single{by<lyrsFFTGetSize_R_32f>("OFHABC"), by<lyrsFFTInit_R_32f>("POFHMI"),
                   by<lyrsFFTInitAlloc_R_32f>("POFH"), by<lyrsFFTFree_R_32f>("S")};
const Forms fixed{by<lyrsFFTGetSize_R_16s32s>("OFHABC"), by<lyrsFFTInit_R_16s32s>("POFHMI"),
                  by<lyrsFFTInitAlloc_R_16s32s>("POFH"), by<lyrsFFTFree_R_16s32s>("S")};

const Function transforms[] = {by<lyrsFFTFwd_RToPack_32f>("XYSW"), by<lyrsFFTFwd_RToPerm_32f>("XYSW"),
                               by<lyrsFFTInv_PackToR_32f>("XYSW"), by<lyrsFFTFwd_RToCCS_32f>("XYSW"),
                               by<lyrsFFTFwd_RToCCS_16s32s_Sfs>("XYSKW")};

// From one vector to another by the one record, and in place by the other.
template <class S, class T>
void compare(Caller& c, const Function& transform, const void* placed, const void* allocated, Elem64s points,
             Elem64s results)
{
    const auto* const src = c.memory.vector<const S>(points);
    auto* const dst = c.memory.vector<T>(results);
    auto* const srcDst = c.memory.vector<T>(results); // no smaller than the source
    std::copy_n(src, points, reinterpret_cast<S*>(srcDst));
    c.name('X', src);
    c.name('Y', dst);
    c.name('S', placed);
    const Status apart = transform(c);
    c.name('X', srcDst);
    c.name('Y', srcDst);
    c.name('S', allocated);
    const Status inPlace = transform(c);
    demand((apart == StsNoErr || apart == StsMemAlloc) && (inPlace == StsNoErr || inPlace == StsMemAlloc),
           "a transform succeeds");
    demand(apart != inPlace || apart != StsNoErr || same(dst, srcDst, results), "the same bits in place");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Caller c(data, size);
    Input& in = c.in;
    const int kind = in.between(0, 4);
    const Forms& forms = kind == 4 ? fixed : single;
    const Elem32s order =
        in.oneIn(16) ? in.oneOf({-1, 13, 15, 20, 28, 29, 30, 31, INT32_MAX, INT32_MIN}) : in.between(0, 12);
    auto* const sizes = c.memory.vector<Elem32s>(3);
    void* allocated = nullptr;
    void* placed = nullptr;
    c.name('O', order);
    c.name('F', in.oneIn(16) ? in.value<Elem32s>() : in.oneOf({8, 1, 2, 4}));
    c.name('H', in.value<Elem32s>());
    c.name('K', in.value<Elem32s>());
    c.name('A', sizes);
    c.name('B', sizes + 1);
    c.name('C', sizes + 2);
    const Status told = forms.getSize(c);
    c.name('P', &allocated);
    const Status made = forms.initAlloc(c);
    demand(made == told || (made == StsMemAlloc && told == StsNoErr), "GetSize and InitAlloc refuse the same");
    demand((made == StsNoErr) == (allocated != nullptr), "a record or none");
    if (made != StsNoErr) {
        return 0;
    }
    if (order <= 15) {
        c.name('P', &placed);
        c.name('M', c.memory.place(sizes[0]));
        c.name('I', c.memory.vector<Elem8u>(sizes[1], true));
        demand(forms.init(c) == StsNoErr, "Init takes what GetSize tells");
        c.memory.freeze();
        c.name('W', in.oneIn(4) ? nullptr : c.memory.vector<Elem8u>(sizes[2], true));
        const Elem64s points = Elem64s{1} << order;
        const Elem64s ccs = order == 0 ? 2 : points + 2;
        if (kind == 4) {
            compare<Elem16s, Elem32s>(c, transforms[kind], placed, allocated, points, ccs);
        } else {
            compare<Elem32f, Elem32f>(c, transforms[kind], placed, allocated, points, kind == 3 ? ccs : points);
        }
    }
    c.name('S', allocated);
    demand(forms.free(c) == StsNoErr, "a record is released");
    return 0;
}
