#include "vector/reciprocal_kernels.hpp"

#include "vector/map.hpp"

namespace lyr::LYR_NS {
namespace {

// Past these magnitudes the estimate is zero or infinite, and the quotient is taken as it is defined. Magnitudes are
// compared by their bits: a comparison of numbers raises the invalid flag for a NaN, and the flag is the caller's to
// look at.
constexpr Elem32s smallest = 0x00800000; // 2^-126
constexpr Elem32s largest = 0x7E000000;  // 2^125: an estimate just below the smallest normal number is zero
constexpr Elem32s infinity = 0x7F800000;

// The estimate of a zero is an infinity, and their product is the invalid operation that the caller looks for.
LYR_INLINE F32 reciprocal(F32 x)
{
    const I32 magnitude = as<I32>(abs(x));
    const auto zero = magnitude == I32{};
    const auto beyond =
        ~zero & ((magnitude < splat(smallest)) | ((magnitude > splat(largest)) & (magnitude <= splat(infinity))));
    const F32 d = beyond ? splat(1.0F) : x;
    const F32 r = reciprocalEstimate(d);
    const F32 refined = r * (2.0F - d * r);
    const F32 result = zero ? r : refined;
    if (any(beyond)) [[unlikely]] {
        return beyond ? 1.0F / (beyond ? x : splat(1.0F)) : result;
    }
    return result;
}

void reciprocals(const Elem32f* src, Elem32f* dst, Elem32s len)
{
    // The lanes behind a tail must not look like zero divisors.
    mapFilled(src, dst, len, 1.0F, [](F32 x) { return reciprocal(x); });
}

void replaceDefaultNan(Elem32f* dst, Elem32s len)
{
    constexpr auto defaultNan = static_cast<Elem32s>(0xFFC00000U);
    map(dst, dst, len, [](F32 v) { return as<I32>(v) == splat(defaultNan) ? splat(-__builtin_inff()) : v; });
}

} // namespace

const ReciprocalKernels reciprocalKernels{.reciprocal = reciprocals, .replaceDefaultNan = replaceDefaultNan};

} // namespace lyr::LYR_NS
