#include "vector/elementary_kernels.hpp"

#include "vector/elementary.hpp"
#include "vector/map.hpp"

#include <math.h>
#include <type_traits>

namespace lyr::LYR_NS {
namespace {

template <class S, class D>
void expNegSqr(const S* src, D* dst, Elem32s len)
{
    mapIn<D>(src, dst, len, [](VectorOf<D> x) { return exp(-(x * x)); });
}

// The few arguments beyond the range of the vector sine, lane by lane.
[[gnu::noinline, gnu::cold]] F64 sineAnyRange(F64 x, F64 sine)
{
    for (int i = 0; i < lanes<F64>; ++i) {
        if (!(fabs(x[i]) <= largestForSine)) {
            sine[i] = ::sin(x[i]);
        }
    }
    return sine;
}

template <class S, class D>
void sinc(const S* src, D* dst, Elem32s len)
{
    using Precision = std::conditional_t<sizeof(D) == 4, detail::SineToSingle, detail::SineToDouble>;
    mapIn<double>(src, dst, len, [](F64 x) {
        F64 sine = sin<Precision>(x);
        if (any((x > splat(largestForSine)) | (x < splat(-largestForSine)))) [[unlikely]] {
            sine = sineAnyRange(x, sine);
        }
        const auto zero = x == F64{};
        return zero ? splat(1.0) : sine / (zero ? splat(1.0) : x);
    });
}

} // namespace

const ElementaryKernels elementaryKernels{
    .expNegSqr32f = expNegSqr<Elem32f, Elem32f>,
    .expNegSqr32f64f = expNegSqr<Elem32f, Elem64f>,
    .expNegSqr64f = expNegSqr<Elem64f, Elem64f>,
    .sinc32f = sinc<Elem32f, Elem32f>,
    .sinc32f64f = sinc<Elem32f, Elem64f>,
    .sinc64f = sinc<Elem64f, Elem64f>,
};

} // namespace lyr::LYR_NS
