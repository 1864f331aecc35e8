#include "vector/fill_kernels.hpp"

#include "frame/simd.hpp"

namespace lyr::LYR_NS {
namespace {

template <class T>
void fill(T val, T* dst, Elem32s len)
{
    const VectorOf<T> v = splat(val);
    constexpr int L = lanes<VectorOf<T>>;
    if (len < L) {
        storeTail(dst, v, len);
        return;
    }
    for (std::ptrdiff_t i = 0; i + L < len; i += L) {
        store<Unaligned>(dst + i, v);
    }
    store<Unaligned>(dst + (len - L), v); // over what is there already, in place of a tail
}

} // namespace

const FillKernels fillKernels{
    .fill16s = fill<Elem16s>, .fill32s = fill<Elem32s>, .fill32f = fill<Elem32f>, .fill64f = fill<Elem64f>};

} // namespace lyr::LYR_NS
