#include "frontend/delta_kernels.hpp"

#include "frontend/delta_rows.hpp"

namespace lyr::LYR_NS {
namespace {

// (a + d + d) * gain, where a is the difference of the neighbours and d that of the frames next to them: the slope of
// a straight line through five frames, but for a denominator that the gain contains (Furui, IEEE Trans. ASSP 34(1),
// 1986).
LYR_INLINE F32 slope(SingleArithmetic /*tag*/, F32 a, F32 d, F32 gain)
{
    return (a + d + d) * gain;
}

LYR_INLINE I16 slope(FixedArithmetic arithmetic, I16 a, I16 d, I16 gain)
{
    return scale(arithmetic, addSaturating(a, addSaturating(d, d)), gain);
}

// Modulo 2^32 the product distributes over the sum, so that two products of 16 bits stand for one of 32.
LYR_INLINE I16 slope(WideArithmetic arithmetic, I16 a, I16 d, I16 gain)
{
    const Wide sum =
        each([](I32 pa, I32 pd) { return addWrapping(pa, addWrapping(pd, pd)); }, product(a, gain), product(d, gain));
    return scaleSaturating(sum, arithmetic.scaleFactor);
}

struct Win1
{
    static constexpr int reach = 1;

    template <class Arithmetic, class V, class Load>
    static LYR_INLINE V at(Arithmetic arithmetic, V gain, Load load)
    {
        return scale(arithmetic, subtract(arithmetic, load(1), load(-1)), gain);
    }
};

struct Win2
{
    static constexpr int reach = 2;

    template <class Arithmetic, class V, class Load>
    static LYR_INLINE V at(Arithmetic arithmetic, V gain, Load load)
    {
        const V a = subtract(arithmetic, load(1), load(-1));
        const V d = subtract(arithmetic, load(2), load(-2));
        return slope(arithmetic, a, d, gain);
    }
};

template <class T, class Gains, class Arithmetic>
LYR_INLINE void storeStatics(DeltaStream<T> s, std::ptrdiff_t row, std::ptrdiff_t frame, Gains gains,
                             [[maybe_unused]] Arithmetic arithmetic)
{
    const T* const src = s.src + frame * s.width;
    T* const dst = s.dst + row * s.step;
    overColumns<T>(s.width, [=](std::ptrdiff_t c, auto access) {
        const VectorOf<T> x = access.load(src + c);
        if constexpr (__is_same(Gains, ColumnGains<T>)) {
            access.store(dst + c, scale(arithmetic, x, gainOf(gains, 0, s.width, c, access)));
        } else {
            access.store(dst + c, x);
        }
    });
}

// Part `part` of a row from part `part` - 1 of the rows around it.
template <class Window, class T, class Gains, class Arithmetic>
LYR_INLINE void differentiate(DeltaStream<T> s, int part, std::ptrdiff_t row, std::ptrdiff_t last, Gains gains,
                              Arithmetic arithmetic)
{
    const std::ptrdiff_t width = s.width;
    const ClampedRows<T> rows{s.dst + (part - 1) * width, s.step, last};
    T* const dst = s.dst + row * s.step + part * width;
    overColumns<T>(s.width, [=](std::ptrdiff_t c, auto access) {
        const VectorOf<T> gain = gainOf(gains, part, s.width, c, access);
        access.store(dst + c, Window::at(arithmetic, gain, [=](int t) { return access.load(rows.at(row + t) + c); }));
    });
}

template <class Window, int Order, class T, class Gains, class Arithmetic>
void stream(DeltaStream<T> s, Gains gains, Arithmetic arithmetic)
{
    constexpr int reach = Window::reach;
    advance<(Order + 1) * reach, reach, Order == 2 ? 2 * reach : 0>(
        s.height, s.mode,
        [=](std::ptrdiff_t row, std::ptrdiff_t frame) { storeStatics(s, row, frame, gains, arithmetic); },
        [=](std::ptrdiff_t row, std::ptrdiff_t last) { differentiate<Window>(s, 1, row, last, gains, arithmetic); },
        [=](std::ptrdiff_t row, std::ptrdiff_t last) { differentiate<Window>(s, 2, row, last, gains, arithmetic); });
}

template <class Window, int Order, class Arithmetic, class T = typename Arithmetic::Element>
constexpr DeltaWindow<Arithmetic> window{stream<Window, Order, T, ScalarGains<T>, Arithmetic>,
                                         stream<Window, Order, T, ColumnGains<T>, Arithmetic>};

template <class Arithmetic>
constexpr DeltaWindows<Arithmetic> windows{window<Win1, 1, Arithmetic>, window<Win2, 1, Arithmetic>,
                                           window<Win1, 2, Arithmetic>, window<Win2, 2, Arithmetic>};

} // namespace

const DeltaKernels deltaKernels{
    .single = windows<SingleArithmetic>,
    .fixed = windows<FixedArithmetic>,
    .wideDeltaDeltaWin2 = stream<Win2, 2, Elem16s, ScalarGains<Elem16s>, WideArithmetic>,
};

} // namespace lyr::LYR_NS
