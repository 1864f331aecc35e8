#include "frontend/filter_bank_eval_kernels.hpp"

#include "frame/fixed_point.hpp"
#include "frame/simd.hpp"

namespace lyr::LYR_NS {
namespace {

// ---------------------------------------------------------------------------------------------------------- products

// A vector of zeros but for the low 128 bits.
#if LYR_WIDTH == 128
LYR_INLINE F32 firstLane(__m128 v)
{
    return v;
}
LYR_INLINE U64 firstLane(__m128i v)
{
    return as<U64>(v);
}
#elif LYR_WIDTH == 256
LYR_INLINE F32 firstLane(__m128 v)
{
    return _mm256_zextps128_ps256(v);
}
LYR_INLINE U64 firstLane(__m128i v)
{
    return as<U64>(_mm256_zextsi128_si256(v));
}
#else
LYR_INLINE F32 firstLane(__m128 v)
{
    return _mm512_zextps128_ps512(v);
}
LYR_INLINE U64 firstLane(__m128i v)
{
    return as<U64>(_mm512_zextsi128_si512(v));
}
#endif

LYR_INLINE __m128i quad(unsigned long long x)
{
    return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(&x));
}

// Products of weights and bins, added to lane sums; and how the weights of either side, the lower centre's own aside,
// stand in memory.
struct Singles
{
    using Sum = F32;
    using Rows = Aligned;
    static LYR_INLINE F32 first(Elem32f weight, Elem32f x) { return firstLane(_mm_set_ss(weight * x)); }
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
    static LYR_INLINE U64 first(Elem32s weight, Elem32s x) { return firstLane(quad(one(weight, x))); }
    static LYR_INLINE U64 add(U64 sum, I32 weight, I32 x)
    {
        return sum + multiplyEven(weight, x) + multiplyOdd(weight, x);
    }
    static LYR_INLINE unsigned long long one(Elem64s weight, Elem32s x)
    {
        return static_cast<unsigned long long>(weight * x);
    }
};

struct WrappedProducts
{
    using Sum = U64;
    using Rows = Aligned;
    static LYR_INLINE U64 first(Elem32s weight, Elem32s x) { return firstLane(quad(one(weight, x))); }
    static LYR_INLINE U64 add(U64 sum, I32 weight, I32 x)
    {
        constexpr unsigned long long sign = 0x80000000U;
        const auto product = as<U64>(as<U32>(weight) * as<U32>(x));
        const U64 even = ((product & 0xFFFFFFFFU) ^ sign) - sign;
        const U64 odd = ((product >> 32) ^ sign) - sign;
        return sum + even + odd;
    }
    static LYR_INLINE unsigned long long one(Elem32s weight, Elem32s x)
    {
        return static_cast<unsigned long long>(Elem64s{wrappingMul(weight, x)});
    }
};

// Each product shifted right by 8, toward minus infinity, before it is added.
struct ShiftedProducts
{
    using Sum = U64;
    using Rows = Unaligned;
    static LYR_INLINE U64 first(Elem32s weight, Elem32s x) { return firstLane(quad(one(weight, x))); }
    static LYR_INLINE U64 shift(U64 product)
    {
        constexpr unsigned long long sign = 1ULL << 63;
        return ((product ^ sign) >> 8) - (sign >> 8);
    }
    static LYR_INLINE U64 add(U64 sum, I32 weight, I32 x)
    {
        return sum + shift(multiplyEven(weight, x)) + shift(multiplyOdd(weight, x));
    }
    static LYR_INLINE unsigned long long one(Elem64s weight, Elem32s x)
    {
        return static_cast<unsigned long long>(weight * x >> 8);
    }
};

LYR_INLINE Elem64s sumLanes(U64 v)
{
#if LYR_WIDTH == 512
    const __m512i all = as<__m512i>(v);
    const __m256i half = _mm256_add_epi64(_mm512_castsi512_si256(all), _mm512_extracti64x4_epi64(all, 1));
#elif LYR_WIDTH == 256
    const __m256i half = as<__m256i>(v);
#endif
#if LYR_WIDTH == 128
    const __m128i two = as<__m128i>(v);
#else
    const __m128i two = _mm_add_epi64(_mm256_castsi256_si128(half), _mm256_extracti128_si256(half, 1));
#endif
    Elem64s sum = 0;
    _mm_storel_epi64(reinterpret_cast<__m128i*>(&sum), _mm_add_epi64(two, _mm_unpackhi_epi64(two, two)));
    return sum;
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

// Filter after filter. Between two centres the right side of one filter and the left side of the next lie on the same
// bins, so that each vector of bins is loaded once for two; what the left side has come to waits for its turn.
template <class Product, class Weight, class S>
class Sweep
{
public:
    using Sum = typename Product::Sum;

    LYR_INLINE Sweep(const BankView<Weight>& bank, const S* spectrum)
        : centers(bank.centers), left(bank.left), right(bank.right), src(spectrum)
    {
        // No filter ends here; the row in its place costs nothing and its sum is dropped.
        cross(0, right[0]);
    }

    // The lane sums of filter f, counted from 0; to be called for one filter after the other. Behind the last filter
    // there is one more left row.
    LYR_INLINE Sum filter(std::ptrdiff_t f) { return cross(f + 1, right[f]); }

private:
    // The bins above centre g up to the next centre, and centre g itself for the left side.
    LYR_INLINE Sum cross(std::ptrdiff_t g, const Weight* falling)
    {
        using V = VectorOf<Weight>;
        using Rows = typename Product::Rows;
        constexpr int L = lanes<V>;
        const Elem32s centre = centers[g];
        const Weight* rising = left[g];
        const S* x = src + centre;
        int count = centers[g + 1] - centre;
        Sum ending = started;
        started = Product::first(*rising, *x);
        ++rising;
        ++x;
        for (; count >= L; count -= L, rising += L, falling += L, x += L) {
            const V bins = loadSource(x);
            ending = Product::add(ending, load<Rows>(falling), bins);
            started = Product::add(started, load<Rows>(rising), bins);
        }
        if (LYR_WIDTH != 128 || count != 0) { // the wider tails may be empty
            const V bins = loadSourceTail(x, count);
            ending = Product::add(ending, loadTail<Rows>(falling, count), bins);
            started = Product::add(started, loadTail<Rows>(rising, count), bins);
        }
        return ending;
    }

    const Elem32s* centers;
    const Weight* const* left;
    const Weight* const* right;
    const S* src;
    Sum started{};
};

// Any centres: the sum of each filter over the bins of the spectrum, as far as the rows go.
template <class Term, class Weight, class Emit>
__attribute__((noinline, cold)) void sumClipped(const BankView<Weight>& bank, Term term, Emit emit)
{
    for (Elem32s f = 0; f < bank.nFilter; ++f) {
        const Elem64s lower = bank.centers[f];
        const Elem64s centre = bank.centers[f + 1];
        const Elem64s upper = bank.centers[f + 2];
        decltype(term(Weight{}, 0)) sum = 0;
        for (Elem64s k = lower < 0 ? 0 : lower; k <= centre && k <= bank.top && k <= lower + bank.top; ++k) {
            sum += term(bank.left[f][k - lower], static_cast<std::ptrdiff_t>(k));
        }
        for (Elem64s k = centre < 0 ? 0 : centre + 1; k <= upper && k <= bank.top && k <= centre + bank.top; ++k) {
            sum += term(bank.right[f][k - centre - 1], static_cast<std::ptrdiff_t>(k));
        }
        emit(f, sum);
    }
}

void evaluateSingles(const BankView<Elem32f>& bank, const Elem32f* src, Elem32f* dst)
{
    if (!bank.inOrder) [[unlikely]] {
        sumClipped(
            bank, [src](Elem32f weight, std::ptrdiff_t k) { return weight * src[k]; },
            [dst](Elem32s f, Elem32f sum) { dst[f] = sum; });
        return;
    }
    Sweep<Singles, Elem32f, Elem32f> sweep(bank, src);
    const std::ptrdiff_t filters = bank.nFilter;
    std::ptrdiff_t f = 0;
    for (; f + 4 <= filters; f += 4) {
        const F32 a = sweep.filter(f);
        const F32 b = sweep.filter(f + 1);
        const F32 c = sweep.filter(f + 2);
        const F32 d = sweep.filter(f + 3);
        _mm_storeu_ps(dst + f, sumEach(a, b, c, d));
    }
    for (; f < filters; ++f) {
        dst[f] = sum(sweep.filter(f));
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
    const auto emit = [dst, shift](Elem32s f, Elem64s sum) {
        if constexpr (__is_same(Product, ShiftedProducts)) {
            finishMagnitude(dst[f], sum, shift);
        } else {
            finish(dst[f], sum, shift);
        }
    };
    if (!bank.inOrder) [[unlikely]] {
        sumClipped(
            bank, [src](Elem32s weight, std::ptrdiff_t k) { return Product::one(weight, src[k]); },
            [emit](Elem32s f, unsigned long long sum) { emit(f, static_cast<Elem64s>(sum)); });
        return;
    }
    Sweep<Product, Elem32s, S> sweep(bank, src);
    for (Elem32s f = 0; f < bank.nFilter; ++f) {
        emit(f, sumLanes(sweep.filter(f)));
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
