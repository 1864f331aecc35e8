#include "scoring/log_gauss_kernels.hpp"

#include "scoring/gauss_rows.hpp"

namespace lyr::LYR_NS {
namespace {

struct Weighted
{
    template <class V>
    static LYR_INLINE V term(V d, V v)
    {
        return d * d * v;
    }
    template <class V>
    static LYR_INLINE V add(V sum, V d, V v)
    {
        return addWeighted(sum, d, v);
    }
};

struct Unit
{
    template <class V>
    static LYR_INLINE V add(V sum, V d, V /*v*/)
    {
        return mulAdd(d, d, sum);
    }
};

// v is a variance. The lanes beyond a tail hold 0 / 0, which must not reach the sum: their divisor becomes one.
struct Divided
{
    template <class V>
    static LYR_INLINE V term(V d, V v)
    {
        return d * d / v;
    }
    template <class V>
    static LYR_INLINE V add(V sum, V d, V v)
    {
        return sum + term(d, v);
    }
};

// One frame: two accumulators hide the latency of the additions.
template <class A, class T, class S, class Weight>
LYR_INLINE T distance(const S* x, const S* mean, const S* var, Elem32s len)
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    constexpr bool weighted = !__is_same(Weight, Unit);
    const auto weight = [var](std::ptrdiff_t at) { return weighted ? loadLanes<T, A>(var + at) : V{}; };
    V even{};
    V odd{};
    std::ptrdiff_t i = 0;
    for (; i + 2 * L <= len; i += 2 * L) {
        even = Weight::add(even, loadLanes<T, A>(x + i) - loadLanes<T, A>(mean + i), weight(i));
        odd = Weight::add(odd, loadLanes<T, A>(x + i + L) - loadLanes<T, A>(mean + i + L), weight(i + L));
    }
    if (i + L <= len) {
        even = Weight::add(even, loadLanes<T, A>(x + i) - loadLanes<T, A>(mean + i), weight(i));
        i += L;
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        const V d = loadLanesTail<T, A>(x + i, rest) - loadLanesTail<T, A>(mean + i, rest);
        V v{};
        if constexpr (weighted) {
            v = loadLanesTail<T, A>(var + i, rest);
        }
        if constexpr (__is_same(Weight, Divided)) {
            v = firstLanes64(rest) ? v : splat(T{1});
        }
        odd = Weight::add(odd, d, v);
    }
    return sum(even + odd);
}

template <class T, class Weight>
T distance_Al(const T* x, const T* mean, const T* var, Elem32s len)
{
    return distance<Aligned, T, T, Weight>(x, mean, var, len);
}

template <class T, class Weight>
T distance_NA(const T* x, const T* mean, const T* var, Elem32s len)
{
    return distance<Unaligned, T, T, Weight>(x, mean, var, len);
}

Elem64f widenedUnitDistance(const Elem32f* x, const Elem32f* mean, const Elem32f* var, Elem32s len)
{
    return distance<Unaligned, Elem64f, Elem32f, Unit>(x, mean, var, len);
}

// Terms come by the vector, but go one by one to a single accumulator: their order is part of the result.
template <class Weight>
Elem64f orderedDistance(const Elem32f* x, const Elem32f* mean, const Elem32f* var, Elem32s len)
{
    constexpr int L = lanes<F64>;
    Elem64f total = 0;
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        const F64 terms = Weight::term(loadWide(x + i) - loadWide(mean + i), loadWide(var + i));
        for (int k = 0; k < L; ++k) {
            total += terms[k];
        }
    }
    for (; i < len; ++i) {
        total += Weight::term(Elem64f{x[i]} - Elem64f{mean[i]}, Elem64f{var[i]});
    }
    return total;
}

template <class T, class Weight>
constexpr Twins<DistanceKernel<T>> distances{distance_Al<T, Weight>, distance_NA<T, Weight>};

template <class A, class T, class Rows, class Weights, class Constant>
void frames(Rows rows, const T* mean, Weights var, Elem32s width, T* dst, Elem32s height, Constant gconst)
{
    scoreRows<A, T>(rows, mean, var, width, height, [dst, gconst](std::ptrdiff_t f, auto distances) LYR_INLINE_LAMBDA {
        put(dst + f, gconst.score(distances));
    });
}

template <class T, class Rows, class Weights, class Constant>
constexpr Twins<FramesKernel<Rows, Weights, Constant, T>> frameTwins{frames<Aligned, T, Rows, Weights, Constant>,
                                                                     frames<Unaligned, T, Rows, Weights, Constant>};

template <class T, class BlockConstant, class TableConstant>
constexpr FramesKernels<T, BlockConstant, TableConstant> allFrames{
    .blockWeighted = frameTwins<T, Block<const T>, SharedWeights<T>, BlockConstant>,
    .blockUnit = frameTwins<T, Block<const T>, UnitWeights, BlockConstant>,
    .tableWeighted = frameTwins<T, Table<const T>, SharedWeights<T>, TableConstant>,
    .tableUnit = frameTwins<T, Table<const T>, UnitWeights, TableConstant>};

} // namespace

const LogGaussKernels logGaussKernels{
    .weighted32f = distances<Elem32f, Weighted>,
    .unit32f = distances<Elem32f, Unit>,
    .weighted64f = distances<Elem64f, Weighted>,
    .unit64f = distances<Elem64f, Unit>,
    .divided64f = distances<Elem64f, Divided>,
    .weighted32f64f = orderedDistance<Weighted>,
    .unit32f64f = widenedUnitDistance,
    .divided32f64f = orderedDistance<Divided>,
    .frames32f = allFrames<Elem32f, Doubled<Elem32f>, Doubled<Elem32f>>,
    .frames64f = allFrames<Elem64f, Plain<Elem64f>, Doubled<Elem64f>>,
};

} // namespace lyr::LYR_NS
