#include "vector/sum_kernels.hpp"

#include "frame/simd.hpp"
#include "frame/simd_mixed.hpp"

namespace lyr::LYR_NS {
namespace {

// ------------------------------------------------------------------------------------------------------ floating point

// From this length on a short first step brings the source to a boundary, as loads that cross cache lines cost double.
constexpr std::ptrdiff_t lengthToAlign = 192;

// Four accumulators, so that one addition need not wait for the last: add(acc, i) takes in a register of elements from
// i on, addTail(acc, i, n) n elements. `src` is where elements of `size` bytes stand.
template <class V, std::size_t size, class Add, class AddTail>
LYR_INLINE V accumulate(const void* src, std::ptrdiff_t len, Add add, AddTail addTail)
{
    constexpr int L = lanes<V>;
    V a0 = V{};
    V a1 = V{};
    V a2 = V{};
    V a3 = V{};
    std::ptrdiff_t i = 0;
    if (vectorBytes > 16 && len >= lengthToAlign) {
        constexpr std::uintptr_t unit = L * size;
        const auto bytes = static_cast<std::size_t>(-reinterpret_cast<std::uintptr_t>(src) % unit);
        if (const int head = static_cast<int>(bytes / size); head != 0) {
            a3 = addTail(a3, 0, head);
            i = head;
        }
    }
    for (; i + 4 * L <= len; i += 4 * L) {
        a0 = add(a0, i);
        a1 = add(a1, i + L);
        a2 = add(a2, i + 2 * L);
        a3 = add(a3, i + 3 * L);
    }
    if (i + 2 * L <= len) {
        a0 = add(a0, i);
        a1 = add(a1, i + L);
        i += 2 * L;
    }
    if (i + L <= len) {
        a2 = add(a2, i);
        i += L;
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        a3 = addTail(a3, i, rest);
    }
    return (a0 + a2) + (a1 + a3);
}

// The source need not even be aligned to its elements: it is read as bytes.
LYR_INLINE float singleAt(const char* p)
{
    float x = 0;
    std::memcpy(&x, p, sizeof x);
    return x;
}

// The lanes of up to a block of singles, folded to two.
struct LaneSums
{
    float even;
    float odd;
};

LYR_INLINE LaneSums laneSums(const char* p, std::ptrdiff_t n)
{
    constexpr std::size_t size = sizeof(float);
    const F32 all = accumulate<F32, size>(
        p, n,
        [p](F32 acc, std::ptrdiff_t i) {
            F32 x;
            std::memcpy(&x, p + i * static_cast<std::ptrdiff_t>(size), sizeof x);
            return acc + x;
        },
        [p](F32 acc, std::ptrdiff_t i, int rest) {
            return acc +
                   loadTail<Unaligned>(reinterpret_cast<const float*>(p + i * static_cast<std::ptrdiff_t>(size)), rest);
        });
    const __m128 four = detail::fold(all);
    const __m128 two = _mm_add_ps(four, _mm_movehl_ps(four, four));
    return {_mm_cvtss_f32(two), _mm_cvtss_f32(_mm_shuffle_ps(two, two, 1))};
}

constexpr std::ptrdiff_t sumBlock = 32768;

// Blocks of single-precision sums, and a total of extended precision over them. What stands ahead of a 16-byte boundary
// goes to the total directly. On its own, so that the usual call needs no memory for the total.
[[gnu::noinline]] Status sumOfBlocks(const char* p, std::ptrdiff_t len, Elem32f* result)
{
    constexpr std::ptrdiff_t size = sizeof(float);
    long double total = 0;
    if (reinterpret_cast<std::uintptr_t>(p) % size == 0) {
        for (; len > 0 && reinterpret_cast<std::uintptr_t>(p) % 16 != 0; --len, p += size) {
            total += static_cast<long double>(singleAt(p));
        }
    }
    while (len > 0) {
        const std::ptrdiff_t n = len < sumBlock ? len : sumBlock;
        const LaneSums sums = laneSums(p, n);
        total += static_cast<long double>(sums.even);
        total += static_cast<long double>(sums.odd);
        len -= n;
        p += n * size;
    }
    *result = static_cast<Elem32f>(total);
    return StsNoErr;
}

Status fast32f(const float* src, Elem32s len, float* result)
{
    const char* const p = reinterpret_cast<const char*>(src);
    const std::uintptr_t beyondBoundary = reinterpret_cast<std::uintptr_t>(p) % 16;
    if (len > sumBlock || (beyondBoundary != 0 && beyondBoundary % sizeof(float) == 0)) {
        return sumOfBlocks(p, len, result);
    }
    // A total of two needs no extended precision on its way to a single.
    const LaneSums sums = laneSums(p, len);
    *result = sums.even + sums.odd;
    return StsNoErr;
}

template <class T>
Status dot(const T* a, const T* b, Elem32s len, T* result)
{
    using V = VectorOf<T>;
    *result = sum(accumulate<V, sizeof(T)>(
        a, len, [=](V acc, std::ptrdiff_t i) { return mulAdd(load<Unaligned>(a + i), load<Unaligned>(b + i), acc); },
        [=](V acc, std::ptrdiff_t i, int n) {
            return mulAdd(loadTail<Unaligned>(a + i, n), loadTail<Unaligned>(b + i, n), acc);
        }));
    return StsNoErr;
}

// Products of widened singles are exact.
Status dotWidened(const float* a, const float* b, Elem32s len, double* result)
{
    *result = sum(accumulate<F64, sizeof(float)>(
        a, len, [=](F64 acc, std::ptrdiff_t i) { return mulAdd(loadWide(a + i), loadWide(b + i), acc); },
        [=](F64 acc, std::ptrdiff_t i, int n) { return mulAdd(loadWideTail(a + i, n), loadWideTail(b + i, n), acc); }));
    return StsNoErr;
}

// ------------------------------------------------------------------------------------------------------------ integers

// Exact sums of 32-bit lanes: each is moved by `bias` to where it counts without a sign and added to one of two lanes
// of 64 bits, and the biases are taken off at the end.
class WideSum
{
public:
    explicit WideSum(std::uint32_t bias) : perLane(bias) {}

    LYR_INLINE void add(I32 x)
    {
        const U64 biased = as<U64>(as<U32>(x) + as<U32>(splat(static_cast<std::int32_t>(perLane))));
        low += biased & (U64{} + 0xFFFFFFFFULL);
        high += biased >> 32;
        ++vectors;
    }

    LYR_INLINE Elem64s result() const
    {
        alignas(vectorBytes) unsigned long long lane[lanes<U64>];
        const U64 both = low + high;
        std::memcpy(lane, &both, sizeof lane);
        std::uint64_t total = 0;
        for (const unsigned long long x : lane) {
            total += x;
        }
        return static_cast<Elem64s>(total - vectors * lanes<I32> * perLane);
    }

private:
    std::uint32_t perLane;
    std::uint64_t vectors = 0;
    U64 low = U64{};
    U64 high = U64{};
};

Elem64s exact32s(const Elem32s* src, Elem32s len)
{
    constexpr int L = lanes<I32>;
    WideSum total(0x80000000U);
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        total.add(load<Unaligned>(src + i));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        total.add(loadTail<Unaligned>(src + i, rest));
    }
    return total.result();
}

// A pair of products is at least 2 * -2^15 * (2^15 - 1), and the 2^31 of four factors -2^15 reads as -2^31: moved by
// this, all are in order.
constexpr std::uint32_t pairBias = 0x7FFF0000U;

// Exact, and rounded once where the result is a single.
template <class R>
Status dot16s(const Elem16s* a, const Elem16s* b, Elem32s len, R* result)
{
    constexpr int L = lanes<I16>;
    WideSum total(pairBias);
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        total.add(dotPairs(load<Unaligned>(a + i), load<Unaligned>(b + i)));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        total.add(dotPairs(loadTail<Unaligned>(a + i, rest), loadTail<Unaligned>(b + i, rest)));
    }
    *result = static_cast<R>(total.result());
    return StsNoErr;
}

Elem64s exact16s(const Elem16s* src, Elem32s len)
{
    constexpr int L = lanes<I16>;
    const I16 ones = splat(std::int16_t{1});
    WideSum total(pairBias);
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        total.add(dotPairs(load<Unaligned>(src + i), ones));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        total.add(dotPairs(loadTail<Unaligned>(src + i, rest), ones));
    }
    return total.result();
}

} // namespace

const SumKernels sumKernels{
    .fast32f = fast32f,
    .exact16s = exact16s,
    .exact32s = exact32s,
    .dot32f = dot<Elem32f>,
    .dot64f = dot<Elem64f>,
    .dot32f64f = dotWidened,
    .dot16s64s = dot16s<Elem64s>,
    .dot16s32f = dot16s<Elem32f>,
};

} // namespace lyr::LYR_NS
