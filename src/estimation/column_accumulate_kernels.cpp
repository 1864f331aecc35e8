#include "estimation/column_accumulate_kernels.hpp"

#include "estimation/column_load.hpp"

namespace lyr::LYR_NS {
namespace {

// Every step is rounded: the result of an element depends neither on its place nor on the width of the vectors.
template <class T>
void accumulate(const T* x, const T* center, T* mean, T* var, Elem32s len, T val)
{
    using V = VectorOf<T>;
    constexpr int L = lanes<V>;
    const V weight = splat(val);
    for (std::ptrdiff_t i = 0; i < len; i += L) {
        const int n = len - i < L ? static_cast<int>(len - i) : L;
        const V d = loadColumns<T>(x + i, n) - loadColumns<T>(center + i, n);
        const V weighted = d * weight;
        const V newMean = loadColumns<T>(mean + i, n) + weighted;
        const V newVar = loadColumns<T>(var + i, n) + d * weighted;
        storeColumns(mean + i, newMean, n);
        storeColumns(var + i, newVar, n);
    }
}

} // namespace

const ColumnAccumulateKernels columnAccumulateKernels{.accumulate32f = accumulate<Elem32f>,
                                                      .accumulate64f = accumulate<Elem64f>};

} // namespace lyr::LYR_NS
