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
