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

void LogAddVec_32f_ac(const Elem32f* src, Elem32f* srcDst, Elem32s len)
{
    map(src, srcDst, srcDst, len, [](F32 a, F32 b) LYR_INLINE_LAMBDA { return logAddAccurate(a, b); });
}

void LogAddVec_32f_sp(const Elem32f* src, Elem32f* srcDst, Elem32s len)
{
    map(src, srcDst, srcDst, len, [](F32 a, F32 b) LYR_INLINE_LAMBDA { return logAddSingle(a, b); });
}

void LogAddVec_64f(const Elem64f* src, Elem64f* srcDst, Elem32s len)
{
    map(src, srcDst, srcDst, len, [](F64 a, F64 b) LYR_INLINE_LAMBDA { return logAddDouble(a, b); });
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
