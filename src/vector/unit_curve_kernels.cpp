#include "vector/unit_curve_kernels.hpp"

#include "vector/map.hpp"

namespace lyr::LYR_NS {
namespace {

// Two parabolas that meet at (1, 1) with the same slope. What is not a number compares with nothing and ends up at the
// top.
void curve32f(const Elem32f* src, Elem32f* dst, Elem32s len)
{
    map(src, dst, len, [](F32 x) {
        const F32 square = x * x;
        const F32 rising = x <= splat(1.0F) ? square : 4.0F * x - square - 2.0F;
        const F32 limited = x < splat(2.0F) ? rising : splat(2.0F);
        return x <= F32{} ? F32{} : limited;
    });
}

template <class Shift>
LYR_INLINE void curveIntegers(const Elem16s* src, Elem16s* dst, Elem32s len, int fraction, Shift shift)
{
    const I32 one = splat(Elem32s{1} << fraction);
    const I32 two = splat(Elem32s{2} << fraction);
    const I32 top = splat(Elem32s{2} << (2 * fraction));
    mapIn<Elem32s>(src, dst, len, [one, two, top, shift](I32 n) {
        const I32 x = min(max(n, I32{}), two);
        const I32 fromTop = two - x;
        const I32 y = x < one ? x * x : top - fromTop * fromTop;
        return shift(y); // the store limits it
    });
}

void curve16s(const Elem16s* src, Elem16s* dst, Elem32s len, int fraction, Elem64s shift)
{
    if (shift > 0) {
        // Truncated, not rounded to nearest, as meant. No value has more than 30 bits.
        const int count = shift < 31 ? static_cast<int>(shift) : 31;
        curveIntegers(src, dst, len, fraction, [count](I32 y) { return y >> count; });
    } else {
        // By 15 places even a 1 leaves the range of the result, and what is beyond it stays so.
        const int count = shift > -15 ? static_cast<int>(-shift) : 15;
        curveIntegers(src, dst, len, fraction, [count](I32 y) { return min(y, splat(Elem32s{INT16_MAX})) << count; });
    }
}

} // namespace

const UnitCurveKernels unitCurveKernels{.curve32f = curve32f, .curve16s = curve16s};

} // namespace lyr::LYR_NS
