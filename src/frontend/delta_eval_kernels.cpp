#include "frontend/delta_eval_kernels.hpp"

#include "frontend/delta_rows.hpp"

namespace lyr::LYR_NS {
namespace {

// gain * sum over t of t * (right(t) - left(t)), t from 1 to `halfWindow`; left and right load one vector each.

template <class Left, class Right>
LYR_INLINE F32 regression(SingleArithmetic /*tag*/, Elem32s halfWindow, F32 gain, Left left, Right right)
{
    F32 sum{};
    for (Elem32s t = 1; t <= halfWindow; ++t) {
        sum = sum + splat(static_cast<float>(t)) * (right(t) - left(t));
    }
    return gain * sum;
}

template <class Left, class Right>
LYR_INLINE I16 regression(WideArithmetic arithmetic, Elem32s halfWindow, I16 gain, Left left, Right right)
{
    // From the widest difference inwards, each is added to a running sum and that to the total, which then holds it t
    // times: modulo 2^32 the same as the products.
    Wide running{};
    Wide total{};
    for (Elem32s t = halfWindow; t >= 1; --t) {
        running = each(addWrapping, running, widen(subWrapping(right(t), left(t))));
        total = each(addWrapping, total, running);
    }
    return scaleSaturating(each(mulWrapping, widen(gain), total), arithmetic.scaleFactor);
}

template <class T, class Gains, class Arithmetic>
void evalDelta(EvalDeltaMatrix<T> m, Gains gains, Arithmetic arithmetic)
{
    const T* const top = m.first;
    const T* const bottom = m.first + (std::ptrdiff_t{m.height} - 1) * m.step;
    for (std::ptrdiff_t r = 0; r < m.height; ++r) {
        // Near an end the row of that end stands for all rows on its side, even for those that exist: meant, and
        // unlike the streamed forms, which clamp.
        T* const row = m.first + r * m.step;
        const bool isHead = r < m.halfWindow;
        const bool isTail = r >= std::ptrdiff_t{m.height} - m.halfWindow;
        const T* const left = isHead ? top : row;
        const T* const right = isTail ? bottom : row;
        const std::ptrdiff_t leftStep = isHead ? 0 : m.step;
        const std::ptrdiff_t rightStep = isTail ? 0 : m.step;
        overColumns<T>(m.width, [=](std::ptrdiff_t c, auto access) {
            const VectorOf<T> delta = regression(
                arithmetic, m.halfWindow, gainOf(gains, 1, m.width, c, access),
                [=](Elem32s t) { return access.load(left - t * leftStep + c); },
                [=](Elem32s t) { return access.load(right + t * rightStep + c); });
            access.store(row + m.width + c, delta);
        });
    }
}

} // namespace

const EvalDeltaKernels evalDeltaKernels{
    .single = evalDelta<Elem32f, ScalarGains<Elem32f>, SingleArithmetic>,
    .singleMul = evalDelta<Elem32f, ColumnGains<Elem32f>, SingleArithmetic>,
    .fixed = evalDelta<Elem16s, ScalarGains<Elem16s>, WideArithmetic>,
    .fixedMul = evalDelta<Elem16s, ColumnGains<Elem16s>, WideArithmetic>,
};

} // namespace lyr::LYR_NS
