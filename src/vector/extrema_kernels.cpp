#include "vector/extrema_kernels.hpp"

#include "vector/map.hpp"

#include <utility>

namespace lyr::LYR_NS {
namespace {

// better(a, b) is a where it is strictly better and b otherwise: also where either is not a number.
struct Larger
{
    static LYR_INLINE F32 better(F32 a, F32 b) { return max(a, b); }
    static LYR_INLINE F64 better(F64 a, F64 b) { return max(a, b); }
    template <class V>
    static LYR_INLINE V better(V a, V b)
    {
        return a > b ? a : b;
    }
};

struct Smaller
{
    static LYR_INLINE F32 better(F32 a, F32 b) { return min(a, b); }
    static LYR_INLINE F64 better(F64 a, F64 b) { return min(a, b); }
    template <class V>
    static LYR_INLINE V better(V a, V b)
    {
        return a < b ? a : b;
    }
};

template <class Order, class V, int... I>
LYR_INLINE auto betterHalf(V v, std::integer_sequence<int, I...> /*first*/)
{
    constexpr int half = sizeof...(I);
    return Order::template better<>(__builtin_shufflevector(v, v, (I + half)...), __builtin_shufflevector(v, v, I...));
}

// The best lane, where either no lane is NaN or all are.
template <class Order, class V>
LYR_INLINE auto bestLane(V v)
{
    constexpr int half = lanes<V> / 2;
    if constexpr (half == 1) {
        const auto low = v[0];
        const auto high = v[1];
        return Order::better(high, low);
    } else {
        return bestLane<Order>(betterHalf<Order>(v, std::make_integer_sequence<int, half>{}));
    }
}

// Each lane: the best of what it has seen, `best` at the outset. NaN in `best` stays, NaN elsewhere is passed over.
template <class Order, class T>
LYR_INLINE VectorOf<T> scan(const T* p, Elem32s len, VectorOf<T> best)
{
    constexpr int L = lanes<VectorOf<T>>;
    std::ptrdiff_t i = 0;
    if (len >= 4 * L) {
        VectorOf<T> b1 = best;
        VectorOf<T> b2 = best;
        VectorOf<T> b3 = best;
        for (; i + 4 * L <= len; i += 4 * L) {
            best = Order::better(load<Unaligned>(p + i), best);
            b1 = Order::better(load<Unaligned>(p + i + L), b1);
            b2 = Order::better(load<Unaligned>(p + i + 2 * L), b2);
            b3 = Order::better(load<Unaligned>(p + i + 3 * L), b3);
        }
        best = Order::better(Order::better(b3, b2), Order::better(b1, best));
    }
    for (; i + L <= len; i += L) {
        best = Order::better(load<Unaligned>(p + i), best);
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        const VectorOf<T> v = loadTail<Unaligned>(p + i, rest);
        best = Order::better(firstLanes<T>(rest) ? v : best, best);
    }
    return best;
}

template <class Order, class T>
void extreme(const T* p, Elem32s len, T* result)
{
    *result = bestLane<Order>(scan<Order>(p, len, splat(p[0])));
}

void minMax(const Elem32f* p, Elem32s len, Elem32f* least, Elem32f* greatest)
{
    constexpr int L = lanes<F32>;
    F32 low = splat(p[0]);
    F32 high = low;
    F32 low1 = low;
    F32 high1 = low;
    std::ptrdiff_t i = 0;
    for (; i + 2 * L <= len; i += 2 * L) {
        const F32 v0 = load<Unaligned>(p + i);
        const F32 v1 = load<Unaligned>(p + i + L);
        low = min(v0, low);
        high = max(v0, high);
        low1 = min(v1, low1);
        high1 = max(v1, high1);
    }
    low = min(low1, low);
    high = max(high1, high);
    if (i + L <= len) {
        const F32 v = load<Unaligned>(p + i);
        low = min(v, low);
        high = max(v, high);
        i += L;
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        const F32 v = loadTail<Unaligned>(p + i, rest);
        low = min(firstLanes32(rest) ? v : low, low);
        high = max(firstLanes32(rest) ? v : high, high);
    }
    *least = bestLane<Smaller>(low);
    *greatest = bestLane<Larger>(high);
}

// Where `value` first stands; it does stand somewhere.
template <class T>
LYR_INLINE std::ptrdiff_t firstPosition(const T* p, Elem32s len, T value)
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    const V wanted = splat(value);
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        if (const unsigned hits = signBits(as<V>(load<Unaligned>(p + i) == wanted)); hits != 0) {
            return i + __builtin_ctz(hits);
        }
    }
    const V last = loadTail<Unaligned>(p + i, static_cast<int>(len - i));
    return i + __builtin_ctz(signBits(as<V>(last == wanted)));
}

// In pieces that stay in the first-level cache: only the piece that the extreme first occurs in is looked through
// again, for the position.
constexpr Elem32s piece = 2048;

template <class Order, class T>
void extremeIndex(const T* p, Elem32s len, T* result, Elem32s* index)
{
    T best = p[0];
    if (best != best) {
        *result = best;
        *index = 0;
        return;
    }
    Elem32s found = 0;
    for (Elem32s at = 0; at < len;) {
        const Elem32s count = len - at < piece ? len - at : piece;
        const T candidate = bestLane<Order>(scan<Order>(p + at, count, splat(best)));
        if (candidate != best) { // strictly better: it cannot be worse
            best = candidate;
            found = at;
        }
        at += count;
    }
    const auto position = found + firstPosition(p + found, len - found, best);
    *result = p[position]; // of equal zeros the first, with its sign
    *index = static_cast<Elem32s>(position);
}

template <class Order, class T>
void every(const T* a, T* dst, Elem32s len)
{
    map(a, dst, dst, len, [](VectorOf<T> x, VectorOf<T> y) { return Order::better(x, y); });
}

} // namespace

const ExtremaKernels extremaKernels{
    .max32f = extreme<Larger, Elem32f>,
    .max64f = extreme<Larger, Elem64f>,
    .min32f = extreme<Smaller, Elem32f>,
    .min64f = extreme<Smaller, Elem64f>,
    .minMax32f = minMax,
    .maxIndex32f = extremeIndex<Larger, Elem32f>,
    .maxIndex64f = extremeIndex<Larger, Elem64f>,
    .minIndex32f = extremeIndex<Smaller, Elem32f>,
    .maxEvery32f = every<Larger, Elem32f>,
    .minEvery32f = every<Smaller, Elem32f>,
    .minEvery32s = every<Smaller, Elem32s>,
};

} // namespace lyr::LYR_NS
