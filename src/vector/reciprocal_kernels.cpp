#include "vector/reciprocal_kernels.hpp"

#include "vector/map.hpp"

namespace lyr::LYR_NS {
namespace {

// Past these magnitudes the estimate is zero or infinite, and the quotient is taken as it is defined.
constexpr Elem32f smallest = __FLT_MIN__;
constexpr Elem32f largest = 0x1p126F;

// The estimate of a zero is an infinity, and their product is the invalid operation that the caller looks for.
LYR_INLINE F32 reciprocal(F32 x)
{
    const F32 magnitude = abs(x);
    const auto zero = magnitude == F32{};
    const auto beyond = ~zero & ((magnitude < splat(smallest)) | (magnitude > splat(largest)));
    const F32 d = beyond ? splat(1.0F) : x;
    const F32 r = reciprocalEstimate(d);
    F32 result = r * (2.0F - d * r);
    result = zero ? r : result;
    if (any(beyond)) [[unlikely]] {
        result = beyond ? 1.0F / (beyond ? x : splat(1.0F)) : result;
    }
    return result;
}

void reciprocals(const Elem32f* src, Elem32f* dst, Elem32s len)
{
    constexpr int L = lanes<F32>;
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        store<Unaligned>(dst + i, reciprocal(load<Unaligned>(src + i)));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        // The lanes behind the tail must not look like zero divisors.
        const F32 x = firstLanes32(rest) ? loadTail<Unaligned>(src + i, rest) : splat(1.0F);
        storeTail(dst + i, reciprocal(x), rest);
    }
}

void replaceDefaultNan(Elem32f* dst, Elem32s len)
{
    constexpr auto defaultNan = static_cast<Elem32s>(0xFFC00000U);
    map(dst, dst, len, [](F32 v) { return as<I32>(v) == splat(defaultNan) ? splat(-__builtin_inff()) : v; });
}

} // namespace

const ReciprocalKernels reciprocalKernels{.reciprocal = reciprocals, .replaceDefaultNan = replaceDefaultNan};

} // namespace lyr::LYR_NS
