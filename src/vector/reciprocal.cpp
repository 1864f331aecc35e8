#include "vector/reciprocal.hpp"

#include "frame/rounding.hpp"
#include "vector/reciprocal_kernels.hpp"

namespace lyr {
namespace {

const ReciprocalKernels kernels = LYR_SELECT_KERNELS(reciprocalKernels);

} // namespace

void lyrsReciprocal_32f(const Elem32f* src, Elem32f* dst, Elem32s len, Status* status) noexcept
{
    const FlagScope flags;
    _mm_setcsr(_mm_getcsr() & ~exceptionFlags);
    kernels.reciprocal(src, dst, len);
    if ((_mm_getcsr() & invalidFlag) != 0) {
        *status = StsWarnOverflow;
        kernels.replaceDefaultNan(dst, len);
    }
}

} // namespace lyr
