#include "scoring/log_add_kernels.hpp"

#include "scoring/log_sum_lanes.hpp"
#include "vector/map.hpp"

namespace lyr::LYR_NS {

#if LYR_WIDTH == 512
alignas(64) const std::int32_t intervals32[32] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1,
                                                  2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2};
alignas(64) const std::int64_t intervals64[16] = {1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 2};
#endif

namespace {

// Vectors side by side: as many as it takes to fill the waiting of one chain of steps. Each one of the accurate form is
// four chains, and at 128 bits the masks that pick its coefficients leave no registers for a second one.
constexpr int sideBySide = 4;
constexpr int sideBySideAccurate = LYR_WIDTH == 128 ? 1 : 2;

// srcDst[i] = op(src[i], srcDst[i]), K vectors at a time while there are as many.
template <int K, class T, class Op>
LYR_INLINE void addGroups(const T* src, T* srcDst, Elem32s len, Op op)
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    std::ptrdiff_t i = 0;
    for (; i + K * L <= len; i += K * L) {
        V a[K];
        V b[K];
        for (int k = 0; k < K; ++k) {
            a[k] = load<Unaligned>(src + i + k * L);
            b[k] = load<Unaligned>(srcDst + i + k * L);
        }
        op(a, b);
        for (int k = 0; k < K; ++k) {
            store<Unaligned>(srcDst + i + k * L, a[k]);
        }
    }
    map(src + i, srcDst + i, srcDst + i, static_cast<Elem32s>(len - i), [op](V x, V y) LYR_INLINE_LAMBDA {
        V a[1] = {x};
        const V b[1] = {y};
        op(a, b);
        return a[0];
    });
}

void LogAddVec_32f_ac(const Elem32f* src, Elem32f* srcDst, Elem32s len)
{
    addGroups<sideBySideAccurate>(src, srcDst, len,
                                  [](auto& a, const auto& b) LYR_INLINE_LAMBDA { logAddAccurate(a, b); });
}

void LogAddVec_32f_sp(const Elem32f* src, Elem32f* srcDst, Elem32s len)
{
    addGroups<sideBySide>(src, srcDst, len, [](auto& a, const auto& b) LYR_INLINE_LAMBDA { logAddSingle(a, b); });
}

void LogAddVec_64f(const Elem64f* src, Elem64f* srcDst, Elem32s len)
{
    addGroups<sideBySide>(src, srcDst, len, [](auto& a, const auto& b) LYR_INLINE_LAMBDA { logAddDouble(a, b); });
}

template <class T>
T logSumOf(const T* x, Elem32s len)
{
    return logSum(x, len);
}

} // namespace

const LogAddKernels logAddKernels{.accurate32f = LogAddVec_32f_ac,
                                  .single32f = LogAddVec_32f_sp,
                                  .double64f = LogAddVec_64f,
                                  .sum32f = logSumOf<Elem32f>,
                                  .sum64f = logSumOf<Elem64f>};

} // namespace lyr::LYR_NS
