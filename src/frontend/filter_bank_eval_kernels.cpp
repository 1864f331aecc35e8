#include "frontend/filter_bank_eval_kernels.hpp"

#include "frame/fixed_point.hpp"
#include "frame/simd.hpp"

namespace lyr::LYR_NS {
namespace {

// ---------------------------------------------------------------------------------------------------------- products

// Products of weights and bins, added to lane sums; and how the weights of either side, the lower centre's own aside,
// stand in memory.
struct Singles
{
    using Sum = F32;
    using Rows = Aligned;
    static LYR_INLINE F32 add(F32 sum, F32 weight, F32 x) { return mulAdd(weight, x, sum); }
};

// The low halves of 64-bit lanes multiplied to 64 bits, signed.
LYR_INLINE U64 multiplyEven(I32 a, I32 b)
{
#if LYR_WIDTH == 128
    // The unsigned product less 2^32 times one operand for each negative other.
    const U64 product = as<U64>(_mm_mul_epu32(as<__m128i>(a), as<__m128i>(b)));
    const U32 excess = as<U32>((a >> 31) & b) + as<U32>((b >> 31) & a);
    return product - (as<U64>(excess) << 32);
#elif LYR_WIDTH == 256
    return as<U64>(_mm256_mul_epi32(as<__m256i>(a), as<__m256i>(b)));
#else
    return as<U64>(_mm512_mul_epi32(as<__m512i>(a), as<__m512i>(b)));
#endif
}

LYR_INLINE U64 multiplyOdd(I32 a, I32 b)
{
    return multiplyEven(as<I32>(as<U64>(a) >> 32), as<I32>(as<U64>(b) >> 32));
}

// Sums are modulo 2^64, as are differences, so that their order is free.
struct WideProducts
{
    using Sum = U64;
    using Rows = Aligned;
    static LYR_INLINE U64 add(U64 sum, I32 weight, I32 x)
    {
        return sum + multiplyEven(weight, x) + multiplyOdd(weight, x);
    }
};

struct WrappedProducts
{
    using Sum = U64;
    using Rows = Aligned;
    static LYR_INLINE U64 add(U64 sum, I32 weight, I32 x)
    {
        constexpr unsigned long long sign = 0x80000000U;
        const auto product = as<U64>(as<U32>(weight) * as<U32>(x));
        const U64 even = ((product & 0xFFFFFFFFU) ^ sign) - sign;
        const U64 odd = ((product >> 32) ^ sign) - sign;
        return sum + even + odd;
    }
};

// Each product shifted right by 8, toward minus infinity, before it is added.
struct ShiftedProducts
{
    using Sum = U64;
    using Rows = Unaligned;
    static LYR_INLINE U64 shift(U64 product)
    {
        constexpr unsigned long long sign = 1ULL << 63;
        return ((product ^ sign) >> 8) - (sign >> 8);
    }
    static LYR_INLINE U64 add(U64 sum, I32 weight, I32 x)
    {
        return sum + shift(multiplyEven(weight, x)) + shift(multiplyOdd(weight, x));
    }
};

LYR_INLINE Elem64s sumLanes(U64 v)
{
    unsigned long long total = 0;
    for (int k = 0; k < lanes<U64>; ++k) {
        total += v[k];
    }
    return static_cast<Elem64s>(total);
}

// ------------------------------------------------------------------------------------------------------------ sweep

LYR_INLINE F32 loadSource(const Elem32f* p)
{
    return load<Unaligned>(p);
}
LYR_INLINE I32 loadSource(const Elem32s* p)
{
    return load<Unaligned>(p);
}
LYR_INLINE I32 loadSource(const Elem16s* p)
{
    return loadWide(p);
}
LYR_INLINE F32 loadSourceTail(const Elem32f* p, int n)
{
    return loadTail<Unaligned>(p, n);
}
LYR_INLINE I32 loadSourceTail(const Elem32s* p, int n)
{
    return loadTail<Unaligned>(p, n);
}
LYR_INLINE I32 loadSourceTail(const Elem16s* p, int n)
{
    return loadWideTail(p, n);
}

template <class Sum>
struct GapSums
{
    Sum left;
    Sum right;
};

// The bins above centre g up to the next centre, as far as there are any: the left side of one filter and the right
// side of the one before lie on the same bins, so that each vector of bins is loaded once for two.
template <class A, class Product, class Weight, class S>
LYR_INLINE void addBins(GapSums<typename Product::Sum>& sums, const Weight* left, const Weight* right, const S* src,
                        std::ptrdiff_t count)
{
    constexpr int L = lanes<VectorOf<Weight>>;
    std::ptrdiff_t i = 0;
    for (; i + L <= count; i += L) {
        const VectorOf<Weight> x = loadSource(src + i);
        sums.left = Product::add(sums.left, load<A>(left + i), x);
        sums.right = Product::add(sums.right, load<A>(right + i), x);
    }
    if (const int rest = static_cast<int>(count - i); rest > 0) {
        const VectorOf<Weight> x = loadSourceTail(src + i, rest);
        sums.left = Product::add(sums.left, loadTail<A>(left + i, rest), x);
        sums.right = Product::add(sums.right, loadTail<A>(right + i, rest), x);
    }
}

// A filter that stands nowhere has the row of a neighbour in its place; its sum is not used.
template <class Product, class Weight, class S>
LYR_INLINE GapSums<typename Product::Sum> sumGap(const BankView<Weight>& bank, Elem32s g, const S* src)
{
    using V = VectorOf<Weight>;
    using Sum = typename Product::Sum;
    const Weight* const left = bank.left[g];
    const Weight* const right = bank.right[g > 0 ? g - 1 : 0];
    const Elem64s lower = bank.centers[g];
    const Elem64s upper = bank.centers[g + 1];
    GapSums<Sum> sums{};
    if (lower >= 0 && upper >= lower && upper <= bank.top) [[likely]] {
        sums.left = Product::add(Sum{}, V{left[0]}, V{static_cast<Weight>(src[lower])});
        addBins<typename Product::Rows, Product>(sums, left + 1, right, src + lower + 1,
                                                 static_cast<std::ptrdiff_t>(upper - lower));
        return sums;
    }
    // A centre outside the spectrum, or below its neighbour: what lies inside counts, as far as the rows go.
    if (lower >= 0 && lower <= bank.top && upper >= lower) {
        sums.left = Product::add(Sum{}, V{left[0]}, V{static_cast<Weight>(src[lower])});
    }
    const Elem64s skipped = lower < -1 ? -1 - lower : 0;
    const Elem64s spectrumEnd = upper < bank.top ? upper : bank.top;
    const Elem64s last = spectrumEnd < lower + bank.top ? spectrumEnd : lower + bank.top;
    const Elem64s first = lower + 1 + skipped;
    if (first <= last) {
        addBins<Unaligned, Product>(sums, left + 1 + skipped, right + skipped, src + first,
                                    static_cast<std::ptrdiff_t>(last - first + 1));
    }
    return sums;
}

void evaluateSingles(const BankView<Elem32f>& bank, const Elem32f* src, Elem32f* dst)
{
    constexpr int atOnce = 4;
    F32 started = sumGap<Singles>(bank, 0, src).left;
    Elem32s f = 0;
    for (; f + atOnce <= bank.nFilter; f += atOnce) {
        F32 filter[atOnce];
        for (int k = 0; k < atOnce; ++k) {
            const auto sums = sumGap<Singles>(bank, f + k + 1, src);
            filter[k] = started + sums.right;
            started = sums.left;
        }
        _mm_storeu_ps(dst + f, sumEach(filter[0], filter[1], filter[2], filter[3]));
    }
    for (; f < bank.nFilter; ++f) {
        const auto sums = sumGap<Singles>(bank, f + 1, src);
        dst[f] = sum(started + sums.right);
        started = sums.left;
    }
}

// ---------------------------------------------------------------------------------------------------------- integers

// No rounding: toward minus infinity to the right, limited to the left.
LYR_INLINE Elem64s scale(Elem64s sum, Elem32s shift)
{
    return shift > 0 ? shiftRight(sum, static_cast<std::uint32_t>(shift))
                     : shiftLeftSaturating(sum, static_cast<std::uint32_t>(-shift));
}

LYR_INLINE void finish(Elem16s& dst, Elem64s sum, Elem32s shift)
{
    dst = saturate16(scale(sum, shift));
}
LYR_INLINE void finish(Elem32s& dst, Elem64s sum, Elem32s shift)
{
    dst = saturate32(scale(sum, shift));
}

// Of sums with 22 fraction bits left: to nearest with ties up, limited above and not below, as magnitudes come in.
LYR_INLINE void finishMagnitude(Elem32s& dst, Elem64s sum, Elem32s shift)
{
    constexpr int fraction = 22;
    if (shift >= 0) {
        sum = shiftRight(sum, static_cast<std::uint32_t>(shift));
    } else if (sum >= Elem64s{1} << (63 + shift)) {
        sum = INT64_MAX;
    } else {
        sum = static_cast<Elem64s>(static_cast<std::uint64_t>(sum) << -shift);
    }
    const Elem64s rounded = (sum >> fraction) + (sum >> (fraction - 1) & 1);
    dst = rounded > INT32_MAX ? INT32_MAX : wrap32(rounded);
}

template <class Product, class S, class D>
void evaluateIntegers(const BankView<Elem32s>& bank, const S* src, D* dst, Elem32s shift)
{
    U64 started = sumGap<Product>(bank, 0, src).left;
    for (Elem32s f = 0; f < bank.nFilter; ++f) {
        const auto sums = sumGap<Product>(bank, f + 1, src);
        const Elem64s sum = sumLanes(started + sums.right);
        if constexpr (__is_same(Product, ShiftedProducts)) {
            finishMagnitude(dst[f], sum, shift);
        } else {
            finish(dst[f], sum, shift);
        }
        started = sums.left;
    }
}

} // namespace

const FilterBankKernels filterBankKernels{
    .singles = evaluateSingles,
    .from16sTo16s = evaluateIntegers<WideProducts, Elem16s, Elem16s>,
    .from16sTo32s = evaluateIntegers<WideProducts, Elem16s, Elem32s>,
    .magnitudesTo16s = evaluateIntegers<WrappedProducts, Elem32s, Elem16s>,
    .magnitudesTo32s = evaluateIntegers<WideProducts, Elem32s, Elem32s>,
    .from32sTo32s = evaluateIntegers<ShiftedProducts, Elem32s, Elem32s>,
};

} // namespace lyr::LYR_NS
