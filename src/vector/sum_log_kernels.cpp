#include "vector/sum_log_kernels.hpp"

#include "frame/simd_lanes.hpp"

namespace lyr::LYR_NS {
namespace {

// Mantissas in [0.5, 1) multiply, exponents add.
class Factors
{
public:
    LYR_INLINE void multiply(F64 x)
    {
        constexpr double least = 0x1p-1022;
        constexpr double greatest = 0x1.fffffffffffffp1023;
        normal &= (x >= splat(least)) & (x <= splat(greatest));
        const U64 bits = as<U64>(x);
        exponents += bits >> 52;
        const F64 half = splat(0.5);
        const U64 mantissaField = U64{} + 0x000FFFFFFFFFFFFFULL;
        mantissas *= as<F64>((bits & mantissaField) | as<U64>(half));
    }

    F64 mantissas = splat(1.0);
    U64 exponents = U64{};
    I64 normal = F64{} == F64{};
};

template <class T>
LogProduct product(const T* p, int n)
{
    constexpr int L = lanes<F64>;
    constexpr Elem64s bias = 1022;
    Factors even;
    Factors odd;
    int i = 0;
    for (; i + 2 * L <= n; i += 2 * L) {
        even.multiply(loadLanes<Elem64f>(p + i));
        odd.multiply(loadLanes<Elem64f>(p + i + L));
    }
    if (i + L <= n) {
        even.multiply(loadLanes<Elem64f>(p + i));
        i += L;
    }
    int count = i;
    if (const int rest = n - i; rest != 0) {
        odd.multiply(firstLanes64(rest) ? loadLanesTail<Elem64f>(p + i, rest) : splat(1.0));
        count += L;
    }
    alignas(vectorBytes) double mantissa[L];
    alignas(vectorBytes) unsigned long long exponent[L];
    const F64 mantissas = even.mantissas * odd.mantissas;
    const U64 exponents = even.exponents + odd.exponents;
    std::memcpy(mantissa, &mantissas, sizeof mantissa);
    std::memcpy(exponent, &exponents, sizeof exponent);
    LogProduct result{1.0, -bias * count, all(even.normal & odd.normal)};
    for (int k = 0; k < L; k += 2) {
        result.mantissa *= mantissa[k] * mantissa[k + 1];
        result.exponent += static_cast<Elem64s>(exponent[k] + exponent[k + 1]);
    }
    return result;
}

} // namespace

const SumLogKernels sumLogKernels{.product32f = product<Elem32f>, .product64f = product<Elem64f>};

} // namespace lyr::LYR_NS
