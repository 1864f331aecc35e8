#include "vector/divide_kernels.hpp"

#include "frame/simd.hpp"

namespace lyr::LYR_NS {
namespace {

// The processor's own division: correctly rounded, and no slower than an estimate with its refinement.
template <class T>
bool divide(const T* divisor, const T* dividend, T* dst, Elem32s len)
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    auto zeros = V{} < V{};
    const auto quotient = [&zeros](V n, V d) {
        const auto zero = d == V{};
        zeros |= zero;
        // A zero divisor counts as plus zero whatever its sign, on purpose: the sign of the infinity is that of the
        // dividend.
        return n / (zero ? V{} : d);
    };
    std::ptrdiff_t i = 0;
    for (; i + L <= len; i += L) {
        store<Unaligned>(dst + i, quotient(load<Unaligned>(dividend + i), load<Unaligned>(divisor + i)));
    }
    if (const int rest = static_cast<int>(len - i); rest != 0) {
        const V n = loadTail<Unaligned>(dividend + i, rest);
        const V d = loadTail<Unaligned>(divisor + i, rest);
        storeTail(dst + i, quotient(n, firstLanes<T>(rest) ? d : splat(T{1})), rest);
    }
    return any(zeros);
}

} // namespace

const DivideKernels divideKernels{.divide32f = divide<Elem32f>, .divide64f = divide<Elem64f>};

} // namespace lyr::LYR_NS
