#include "frame/select.hpp"

namespace lyr {

Width selectedWidth() noexcept
{
    __builtin_cpu_init();
#if LYR_WIDTH_CAP >= 512
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl")) {
        return Width::W512;
    }
#endif
#if LYR_WIDTH_CAP >= 256
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) {
        return Width::W256;
    }
#endif
    return Width::W128;
}

} // namespace lyr
