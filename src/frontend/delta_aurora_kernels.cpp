// The regression of ETSI ES 202 050 over four frames each way: delta weights t / 4, and delta-delta weights that fit a
// parabola.

#include "frontend/delta_aurora_kernels.hpp"

#include "frame/fixed_point.hpp"
#include "frontend/delta_rows.hpp"

namespace lyr::LYR_NS {
namespace {

constexpr int reach = 4;
constexpr int history = 2 * reach;
constexpr Elem32s mixed = auroraStatics - 1; // the static that is mixed from the last two inputs

// Delta-delta weights as single constants of six decimals, not the fractions that they are near to.
constexpr float far = 0.25F;          // 3 frames away; 4 frames away weigh 1
constexpr float near = -0.285714F;    // 2 frames
constexpr float nearest = -0.607143F; // 1 frame
constexpr float centre = -0.714286F;

// The log energy and the zeroth coefficient, which is a sum over 23 bands, in one measure of the frame's level. Each
// step rounds to single, in this order.
LYR_INLINE float mix(float c0, float logEnergy)
{
    return c0 * 0.6F / 23.0F + logEnergy * 0.4F;
}

// Sums run from the oldest frame to the newest. load(t) is the frame t after the centre.
template <class Load>
LYR_INLINE F32 deltaSum(Load load)
{
    F32 sum = F32{} - load(-4);
    sum = sum - splat(0.75F) * load(-3);
    sum = sum - splat(0.5F) * load(-2);
    sum = sum - splat(0.25F) * load(-1);
    sum = sum + splat(0.25F) * load(1);
    sum = sum + splat(0.5F) * load(2);
    sum = sum + splat(0.75F) * load(3);
    return sum + load(4);
}

template <class Load>
LYR_INLINE F32 deltaDeltaSum(Load load)
{
    F32 sum = load(-4);
    sum = sum + splat(far) * load(-3);
    sum = sum + splat(near) * load(-2);
    sum = sum + splat(nearest) * load(-1);
    sum = sum + splat(centre) * load(0);
    sum = sum + splat(nearest) * load(1);
    sum = sum + splat(near) * load(2);
    sum = sum + splat(far) * load(3);
    return sum + load(4);
}

// --------------------------------------------------------------------------------------------------- single precision

template <class V, class Access>
LYR_INLINE V multiplied(V v, NoGains /*gains*/, int /*part*/, std::ptrdiff_t /*c*/, Access /*access*/)
{
    return v;
}

template <class Access>
LYR_INLINE F32 multiplied(F32 v, ColumnGains<float> gains, int part, std::ptrdiff_t c, Access access)
{
    return v * gainOf(gains, part, auroraStatics, c, access);
}

LYR_INLINE float multiplied(float v, NoGains /*gains*/, Elem32s /*c*/)
{
    return v;
}
LYR_INLINE float multiplied(float v, ColumnGains<float> gains, Elem32s c)
{
    return v * gains.values[c];
}

template <class Gains>
LYR_INLINE void storeStatics(const float* src, float* dst, Gains gains, SingleArithmetic /*tag*/)
{
    overColumns<float>(mixed, [=](std::ptrdiff_t c, auto access) {
        access.store(dst + c, multiplied(access.load(src + c), gains, 0, c, access));
    });
    dst[mixed] = multiplied(mix(src[12], src[13]), gains, mixed);
}

template <class Gains>
LYR_INLINE void regress(const ClampedRows<float>& rows, std::ptrdiff_t row, float* dst, Gains gains,
                        SingleArithmetic /*tag*/)
{
    overColumns<float>(auroraStatics, [=](std::ptrdiff_t c, auto access) {
        const auto load = [=](int t) { return access.load(rows.at(row + t) + c); };
        access.store(dst + auroraStatics + c, multiplied(deltaSum(load), gains, 1, c, access));
        access.store(dst + 2 * auroraStatics + c, multiplied(deltaDeltaSum(load), gains, 2, c, access));
    });
}

// -------------------------------------------------------------------------------------------------------- fixed point

// Counts modulo 32 are meant, to the letter: a negative scale factor shifts to the right too.
LYR_INLINE int shiftCount(Elem32s scaleFactor)
{
    return scaleFactor & 31;
}
LYR_INLINE int deltaShiftCount(Elem32s scaleFactor)
{
    return wrappingAdd(scaleFactor, 2) & 31;
}

LYR_INLINE I16 shifted(Wide v, int count)
{
    return packSaturating(each([count](I32 x) { return shiftRight(x, count); }, v));
}

LYR_INLINE I32 truncated(F32 v)
{
    // Beyond 2^31 the conversion knows no result: it is limited like every conversion to 32 bits, to a value that each
    // shift takes where it takes 2^31 - 1.
    return truncateToInt(min(v, splat(2147483520.0F)));
}

template <class Access>
LYR_INLINE Wide scaledStatics(I16 x, NoGains /*gains*/, std::ptrdiff_t /*c*/, Access /*access*/)
{
    return widen(x);
}

template <class Access>
LYR_INLINE Wide scaledStatics(I16 x, ColumnGains<Elem16s> gains, std::ptrdiff_t c, Access access)
{
    return product(x, gainOf(gains, 0, auroraStatics, c, access));
}

LYR_INLINE float multiplied(float v, ColumnGains<Elem16s> gains, Elem32s c)
{
    return static_cast<float>(gains.values[c]) * v;
}

template <class Gains>
LYR_INLINE void storeStatics(const Elem16s* src, Elem16s* dst, Gains gains, AuroraFixedArithmetic arithmetic)
{
    const int count = shiftCount(arithmetic.scaleFactor);
    overColumns<Elem16s>(mixed, [=](std::ptrdiff_t c, auto access) {
        access.store(dst + c, shifted(scaledStatics(access.load(src + c), gains, c, access), count));
    });
    // At most 32768 * 13962 in magnitude, so that the conversion is always defined.
    const float m = multiplied(mix(static_cast<float>(src[12]), static_cast<float>(src[13])), gains, mixed);
    dst[mixed] = saturate16(static_cast<Elem32s>(m) >> count);
}

// -4a - 3b - 2c - d + e + 2f + 3g + 4h of 32-bit lanes.
LYR_INLINE I32 integerDelta(const I32 (&x)[2 * reach + 1])
{
    const I32 one = x[5] - x[3];
    const I32 two = x[6] - x[2];
    const I32 three = x[7] - x[1];
    const I32 four = x[8] - x[0];
    return one + (two + two) + (three + three + three) + (four + four + four + four);
}

LYR_INLINE F32 singleDeltaDelta(const I32 (&x)[2 * reach + 1])
{
    return deltaDeltaSum([&x](int t) { return toFloat(x[t + reach]); });
}

template <class Gains>
LYR_INLINE void regress(const ClampedRows<Elem16s>& rows, std::ptrdiff_t row, Elem16s* dst, Gains gains,
                        AuroraFixedArithmetic arithmetic)
{
    const int count = shiftCount(arithmetic.scaleFactor);
    const int deltaCount = deltaShiftCount(arithmetic.scaleFactor);
    overColumns<Elem16s>(auroraStatics, [=](std::ptrdiff_t c, auto access) {
        I32 low[2 * reach + 1];
        I32 high[2 * reach + 1];
        for (int k = 0; k <= 2 * reach; ++k) {
            const Wide x = widen(access.load(rows.at(row + k - reach) + c));
            low[k] = x.low;
            high[k] = x.high;
        }
        Wide delta{integerDelta(low), integerDelta(high)};
        F32 deltaDeltaLow = singleDeltaDelta(low);
        F32 deltaDeltaHigh = singleDeltaDelta(high);
        if constexpr (!__is_same(Gains, NoGains)) {
            delta = each(mulWrapping, widen(gainOf(gains, 1, auroraStatics, c, access)), delta);
            const Wide gain = widen(gainOf(gains, 2, auroraStatics, c, access));
            deltaDeltaLow = toFloat(gain.low) * deltaDeltaLow;
            deltaDeltaHigh = toFloat(gain.high) * deltaDeltaHigh;
        }
        access.store(dst + auroraStatics + c, shifted(delta, deltaCount));
        access.store(dst + 2 * auroraStatics + c,
                     shifted({truncated(deltaDeltaLow), truncated(deltaDeltaHigh)}, count));
    });
}

template <class T, class Gains, class Arithmetic>
void stream(DeltaStream<T> s, Gains gains, Arithmetic arithmetic)
{
    // Both derivatives are of the statics as they were stored, and are finished together.
    advance<history, reach, 0>(
        s.height, s.mode,
        [=](std::ptrdiff_t row, std::ptrdiff_t frame) {
            storeStatics(s.src + frame * auroraInputs, s.dst + row * s.step, gains, arithmetic);
        },
        [=](std::ptrdiff_t row, std::ptrdiff_t last) {
            regress(ClampedRows<T>{s.dst, s.step, last}, row, s.dst + row * s.step, gains, arithmetic);
        },
        0);
}

template <class Arithmetic, class T = typename Arithmetic::Element>
constexpr AuroraForms<Arithmetic> forms{stream<T, NoGains, Arithmetic>, stream<T, ColumnGains<T>, Arithmetic>};

} // namespace

const AuroraDeltaKernels auroraDeltaKernels{.single = forms<SingleArithmetic>, .fixed = forms<AuroraFixedArithmetic>};

} // namespace lyr::LYR_NS
