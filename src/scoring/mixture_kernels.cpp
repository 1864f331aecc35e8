#include "scoring/mixture_kernels.hpp"

#include "scoring/gauss_rows.hpp"
#include "scoring/mixture_sum.hpp"

namespace lyr::LYR_NS {
namespace {

// The means are the rows and the frame is what they share.
template <class A, class Rows, class Weights, class T>
void scores(Rows means, Weights vars, const T* x, Elem32s width, T* srcDst, Elem32s height)
{
    scoreRows<A, T>(means, x, vars, width, height, [srcDst]<class D>(std::ptrdiff_t g, D distances) LYR_INLINE_LAMBDA {
        put(srcDst + g, Doubled<T, D>{get<D>(srcDst + g)}.score(distances));
    });
}

template <class A, class Rows, class Weights, class T>
void best(Rows means, Weights vars, const T* x, Elem32s width, const T* gconst, T* srcDst, Elem32s height)
{
    scoreRows<A, T>(means, x, vars, width, height,
                    [gconst, srcDst]<class D>(std::ptrdiff_t g, D distances) LYR_INLINE_LAMBDA {
                        const D score = Doubled<T, D>{get<D>(gconst + g)}.score(distances);
                        const D old = get<D>(srcDst + g);
                        put(srcDst + g, score > old ? score : old); // so neither NaN changes anything
                    });
}

// A mixture of one Gaussian gets its score as it is.
template <class A, class Rows, class Weights, class T>
T mixture(Rows means, Weights vars, const T* x, Elem32s width, const T* gconst, Elem32s height)
{
    MixtureSum<T> sum(height);
    scoreRows<A, T>(
        means, x, vars, width, height,
        [&sum, gconst]<class D>(std::ptrdiff_t g, D distances)
            LYR_INLINE_LAMBDA { sum.add(g, Doubled<T, D>{get<D>(gconst + g)}.score(distances)); },
        [&sum]() LYR_INLINE_LAMBDA { sum.advance(); });
    return sum.result();
}

template <class Rows, class T = ElementOf<Rows>>
constexpr MixtureLayoutKernels<Rows> layoutKernels{
    .scores = {scores<Aligned, Rows, RowWeights<Rows>, T>, scores<Unaligned, Rows, RowWeights<Rows>, T>},
    .best = {best<Aligned, Rows, RowWeights<Rows>, T>, best<Unaligned, Rows, RowWeights<Rows>, T>},
    .mixture = {mixture<Aligned, Rows, RowWeights<Rows>, T>, mixture<Unaligned, Rows, RowWeights<Rows>, T>},
    .unitMixture = {mixture<Aligned, Rows, UnitWeights, T>, mixture<Unaligned, Rows, UnitWeights, T>}};

} // namespace

const MixtureKernels mixtureKernels{.block32f = layoutKernels<Block<const Elem32f>>,
                                    .table32f = layoutKernels<Table<const Elem32f>>,
                                    .block64f = layoutKernels<Block<const Elem64f>>,
                                    .table64f = layoutKernels<Table<const Elem64f>>};

} // namespace lyr::LYR_NS
