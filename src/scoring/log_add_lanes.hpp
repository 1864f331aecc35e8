// Log-addition of vectors: every lane takes the coefficients of its own interval.
//
// For vectors of a register's width, and for those of 128 bits that the sums keep as accumulators at every width. An
// element gets the same arithmetic in every lane. No step is fused, so that the bits are the same at every width.
#pragma once

#include "frame/simd.hpp"
#include "scoring/log_add_tables.hpp"

#include <bit>
#include <type_traits>

namespace lyr::LYR_NS {

using Quad = float __attribute__((vector_size(16)));
using Pair = double __attribute__((vector_size(16)));

#if LYR_WIDTH > 128
LYR_INLINE Quad max(Quad a, Quad b)
{
    return _mm_max_ps(a, b);
}
LYR_INLINE Quad min(Quad a, Quad b)
{
    return _mm_min_ps(a, b);
}
LYR_INLINE Pair max(Pair a, Pair b)
{
    return _mm_max_pd(a, b);
}
LYR_INLINE Pair min(Pair a, Pair b)
{
    return _mm_min_pd(a, b);
}
#endif

// Every lane of a is below that of b. A comparison for no more than this stays out of the vector registers of AVX-512:
// a mask made there would wait for whatever its register held before.
template <class V>
LYR_INLINE bool allBelow(V a, V b)
{
    if constexpr (__is_same(V, Quad)) {
        return _mm_movemask_ps(_mm_cmplt_ps(a, b)) == 0xF;
    } else if constexpr (__is_same(V, Pair)) {
        return _mm_movemask_pd(_mm_cmplt_pd(a, b)) == 0x3;
#if LYR_WIDTH == 512
    } else if constexpr (__is_same(V, F32)) {
        return _mm512_cmp_ps_mask(a, b, _CMP_LT_OQ) == 0xFFFF;
    } else {
        return _mm512_cmp_pd_mask(a, b, _CMP_LT_OQ) == 0xFF;
#else
    } else {
        return all(a < b);
#endif
    }
}

#if LYR_WIDTH == 128
// A number for each interval, as two masked bit patterns pick it: what tells near and middle from far, and far.
template <class T>
struct alignas(16) ByInterval
{
    using Bits = std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>;
    static constexpr std::size_t lanes = 16 / sizeof(T);

    Bits nearOrFar[lanes];
    Bits middleOrFar[lanes];
    Bits far[lanes];

    constexpr ByInterval() : nearOrFar{}, middleOrFar{}, far{} {}
    constexpr ByInterval(Elem64f ofNear, Elem64f ofMiddle, Elem64f ofFar) : ByInterval()
    {
        const Bits bits = std::bit_cast<Bits>(static_cast<T>(ofFar));
        for (std::size_t i = 0; i < lanes; ++i) {
            nearOrFar[i] = std::bit_cast<Bits>(static_cast<T>(ofNear)) ^ bits;
            middleOrFar[i] = std::bit_cast<Bits>(static_cast<T>(ofMiddle)) ^ bits;
            far[i] = bits;
        }
    }
};

// Each lane's number; `interval` holds 0, 1 or 2 in each lane.
template <class V, class I, class T>
LYR_INLINE V choose(const ByInterval<T>& c, I interval)
{
    const auto load = [](const auto* bits) { return as<I>(_mm_load_si128(reinterpret_cast<const __m128i*>(bits))); };
    I32 i = as<I32>(interval);
    if constexpr (sizeof(T) == 8) { // SSE2 compares 32 bits at most
        i = as<I32>(interval | interval << 32);
    }
    return as<V>(load(c.far) ^ (as<I>(i == 0) & load(c.nearOrFar)) ^ (as<I>(i == 1) & load(c.middleOrFar)));
}
#else
// A number for each interval, over and over, as one permutation wants it in memory: near, middle, far and one unused.
template <class T>
struct alignas(64) ByInterval
{
    T of[64 / sizeof(T)];

    constexpr ByInterval() : of{} {}
    constexpr ByInterval(Elem64f near, Elem64f middle, Elem64f far) : of{}
    {
        for (std::size_t i = 0; i < 64 / sizeof(T); i += 4) {
            of[i] = static_cast<T>(near);
            of[i + 1] = static_cast<T>(middle);
            of[i + 2] = static_cast<T>(far);
        }
    }
};

// Each lane's number; `interval` holds 0, 1 or 2 in each lane.
template <class V, class I, class T>
LYR_INLINE V choose(const ByInterval<T>& c, I interval)
{
    if constexpr (__is_same(V, Quad)) {
        return _mm_permutevar_ps(_mm_load_ps(c.of), as<__m128i>(interval));
#if LYR_WIDTH == 512
    } else if constexpr (__is_same(V, F32)) {
        return _mm512_permutexvar_ps(as<__m512i>(interval), _mm512_load_ps(c.of));
    } else if constexpr (__is_same(V, F64)) {
        return _mm512_permutexvar_pd(as<__m512i>(interval), _mm512_load_pd(c.of));
#else
    } else if constexpr (__is_same(V, F32)) {
        return _mm256_permutevar8x32_ps(_mm256_load_ps(c.of), as<__m256i>(interval));
#endif
    } else {
        // A double goes as two singles, 2i and 2i + 1.
        const I halves = 2 * (interval | interval << 32) + (1LL << 32);
        const __m256 singles = _mm256_castpd_ps(_mm256_load_pd(c.of));
        if constexpr (__is_same(V, Pair)) {
            const __m256i index = _mm256_castsi128_si256(as<__m128i>(halves));
            return _mm_castps_pd(_mm256_castps256_ps128(_mm256_permutevar8x32_ps(singles, index)));
        } else {
            return _mm256_castps_pd(_mm256_permutevar8x32_ps(singles, as<__m256i>(halves)));
        }
    }
}
#endif

// The coefficients of the powers from the highest down, by interval.
template <class T, int N>
struct CoefficientRows
{
    ByInterval<T> power[N];

    constexpr CoefficientRows(const Elem64f* near, const Elem64f* middle, const Elem64f* far) : power{}
    {
        for (int i = 0; i < N; ++i) {
            power[i] = ByInterval<T>(near[i], middle[i], far[i]);
        }
    }
};

#if LYR_WIDTH == 512
// Kept in memory: a constant that the compiler can see it makes in a general register, every time.
alignas(64) extern const std::int32_t intervals32[32];
alignas(64) extern const std::int64_t intervals64[16];
#endif

constexpr CoefficientRows<Elem32f, 11> singleRows{LogAddCoeff1_F, LogAddCoeff2_F, LogAddCoeff3_F};
constexpr CoefficientRows<Elem64f, 11> accurateRows{LogAddCoeff1_F, LogAddCoeff2_F, LogAddCoeff3_F};
constexpr CoefficientRows<Elem64f, 22> doubleRows{LogAddCoeff1, LogAddCoeff2, LogAddCoeff3};

// A step is done before the next one's coefficients are chosen. Left to itself the compiler chooses all of them first,
// and spills what the registers do not hold.
template <class V>
LYR_INLINE V inOrder(V v)
{
    asm("" : "+v"(v));
    return v;
}

// p(t) by Horner's rule, of K vectors side by side: while the chain of one waits for its last step, the others run.
template <class V, class I, class T, int N, int K>
LYR_INLINE void horner(V (&p)[K], const CoefficientRows<T, N>& rows, const I (&interval)[K], const V (&t)[K])
{
    for (int k = 0; k < K; ++k) {
        p[k] = choose<V>(rows.power[0], interval[k]);
    }
    for (int i = 1; i < N; ++i) {
        for (int k = 0; k < K; ++k) {
            p[k] = inOrder(p[k] * t[k] + choose<V>(rows.power[i], interval[k]));
        }
    }
}

// p(t) as two polynomials in t squared: half the chain of dependent steps.
template <class V, class I, class T, int N, int K>
LYR_INLINE void evenOdd(V (&p)[K], const CoefficientRows<T, N>& rows, const I (&interval)[K], const V (&t)[K])
{
    V square[K];
    V first[K];
    V second[K];
    for (int k = 0; k < K; ++k) {
        square[k] = t[k] * t[k];
        first[k] = choose<V>(rows.power[0], interval[k]);
        second[k] = choose<V>(rows.power[1], interval[k]);
    }
    for (int i = 2; i < N; ++i) {
        V(&turn)[K] = i % 2 == 0 ? first : second;
        for (int k = 0; k < K; ++k) {
            turn[k] = inOrder(turn[k] * square[k] + choose<V>(rows.power[i], interval[k]));
        }
    }
    // The constant term is in the one that comes last.
    for (int k = 0; k < K; ++k) {
        p[k] = N % 2 == 0 ? first[k] * t[k] + second[k] : second[k] * t[k] + first[k];
    }
}

#if LYR_WIDTH == 512
namespace detail {
LYR_INLINE I32 intervalOf(F32 d, F32 near, F32 middle)
{
    const __mmask16 notNear = _mm512_cmp_ps_mask(d, near, _CMP_NGT_UQ);
    const __mmask16 far = _mm512_cmp_ps_mask(d, middle, _CMP_NGT_UQ);
    const __m512i one = _mm512_load_si512(&intervals32[0]);
    const __m512i two = _mm512_load_si512(&intervals32[16]);
    return as<I32>(_mm512_mask_mov_epi32(_mm512_maskz_mov_epi32(notNear, one), far, two));
}
LYR_INLINE I64 intervalOf(F64 d, F64 near, F64 middle)
{
    const __mmask8 notNear = _mm512_cmp_pd_mask(d, near, _CMP_NGT_UQ);
    const __mmask8 far = _mm512_cmp_pd_mask(d, middle, _CMP_NGT_UQ);
    const __m512i one = _mm512_load_si512(&intervals64[0]);
    const __m512i two = _mm512_load_si512(&intervals64[8]);
    return as<I64>(_mm512_mask_mov_epi64(_mm512_maskz_mov_epi64(notNear, one), far, two));
}
} // namespace detail
#endif

// A log-addition up to its polynomial.
template <class T, class V>
struct LogAddStep
{
    using Mask = decltype(V{} < V{});

    V larger;
    V difference;
    V withoutSmaller; // the result where the difference is below the cut-off

    LogAddStep() = default;

    // The comparisons are such that a NaN operand makes the difference NaN, and that passes for the polynomial.
    LYR_INLINE LogAddStep(V a, V b, const LogAddLimits& limit)
        : larger(max(a, b)), difference(min(b, a) - larger),
          withoutSmaller(larger < static_cast<T>(limit.floorTest) ? static_cast<T>(limit.floor) - V{} : larger)
    {}

    LYR_INLINE bool ignoresEverySmaller(const LogAddLimits& limit) const
    {
        return allBelow(difference, static_cast<T>(limit.cutOff) - V{});
    }

    // 0, 1 or 2 in each lane; NaN counts as far.
    LYR_INLINE Mask interval(const LogAddLimits& limit) const
    {
        const V near = static_cast<T>(limit.near) - V{};
        const V middle = static_cast<T>(limit.middle) - V{};
#if LYR_WIDTH == 512
        if constexpr (sizeof(V) == 64) { // two masked moves of constants, which the compiler would bring from elsewhere
            return detail::intervalOf(difference, near, middle);
        }
#endif
        return difference > near ? Mask{} : (difference > middle ? Mask{} + 1 : Mask{} + 2);
    }

    // The difference, from the start of its interval on.
    LYR_INLINE V t(const LogAddLimits& limit) const
    {
        const T near = static_cast<T>(limit.near);
        const T middle = static_cast<T>(limit.middle);
        const V fromNear = difference - near;
        const V fromMiddle = difference - middle;
        return difference > near ? difference : (difference > middle ? fromNear : fromMiddle);
    }

    LYR_INLINE V result(V sum, const LogAddLimits& limit) const
    {
        return difference < static_cast<T>(limit.cutOff) ? withoutSmaller : sum;
    }
};

// a[k] becomes the log-sum of a[k] and b[k], K pairs of vectors side by side. addPolynomials turns larger operands into
// sums where the smaller ones count.
template <class T, int K, class V, class AddPolynomials>
LYR_INLINE void logAddEach(V (&a)[K], const V (&b)[K], const LogAddLimits& limit, AddPolynomials addPolynomials)
{
    using Step = LogAddStep<T, V>;
    Step step[K];
    bool ignoresEverySmaller = true;
    for (int k = 0; k < K; ++k) {
        step[k] = Step(a[k], b[k], limit);
        ignoresEverySmaller = step[k].ignoresEverySmaller(limit) && ignoresEverySmaller;
    }
    if (ignoresEverySmaller) {
        for (int k = 0; k < K; ++k) {
            a[k] = step[k].withoutSmaller;
        }
        return;
    }
    V sum[K];
    typename Step::Mask interval[K];
    V t[K];
    for (int k = 0; k < K; ++k) {
        sum[k] = step[k].larger;
        interval[k] = step[k].interval(limit);
        t[k] = step[k].t(limit);
    }
    addPolynomials(sum, interval, t);
    for (int k = 0; k < K; ++k) {
        a[k] = step[k].result(sum[k], limit);
    }
}

// Everything in single precision.
template <int K, class V>
LYR_INLINE void logAddSingle(V (&a)[K], const V (&b)[K])
{
    logAddEach<Elem32f>(a, b, singleLogAdd, [](V(&sum)[K], const auto& interval, const V(&t)[K]) LYR_INLINE_LAMBDA {
        V p[K];
        horner(p, singleRows, interval, t);
        for (int k = 0; k < K; ++k) {
            sum[k] = sum[k] + p[k];
        }
    });
}

// t in single precision, the polynomial and the sum in double precision, the result rounded to single.
template <int K>
LYR_INLINE void logAddAccurate(F32 (&a)[K], const F32 (&b)[K])
{
    logAddEach<Elem32f>(a, b, singleLogAdd,
                        [](F32(&sum)[K], const I32(&interval)[K], const F32(&t)[K]) LYR_INLINE_LAMBDA {
                            I64 wideInterval[2 * K];
                            F64 wideT[2 * K];
                            for (int k = 0; k < K; ++k) {
                                wideInterval[2 * k] = widenLower(interval[k]);
                                wideInterval[2 * k + 1] = widenUpper(interval[k]);
                                wideT[2 * k] = widenLower(t[k]);
                                wideT[2 * k + 1] = widenUpper(t[k]);
                            }
                            F64 p[2 * K];
                            evenOdd(p, accurateRows, wideInterval, wideT);
                            for (int k = 0; k < K; ++k) {
                                sum[k] = narrow(widenLower(sum[k]) + p[2 * k], widenUpper(sum[k]) + p[2 * k + 1]);
                            }
                        });
}

// Everything in double precision.
template <int K, class V>
LYR_INLINE void logAddDouble(V (&a)[K], const V (&b)[K])
{
    logAddEach<Elem64f>(a, b, doubleLogAdd, [](V(&sum)[K], const auto& interval, const V(&t)[K]) LYR_INLINE_LAMBDA {
        V p[K];
        evenOdd(p, doubleRows, interval, t);
        for (int k = 0; k < K; ++k) {
            sum[k] = sum[k] + p[k];
        }
    });
}

} // namespace lyr::LYR_NS
