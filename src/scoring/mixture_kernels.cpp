#include "scoring/mixture_kernels.hpp"

#include "scoring/gauss_rows.hpp"
#include "scoring/log_sum_lanes.hpp"

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

// Scores go in blocks of 100 through a buffer on the stack, so that no size of mixture costs an allocation. What a
// block comes down to stands in the slot ahead of the next one and is summed with it, in the order of lyrsLogSum_*: a
// chain that is part of the result. A mixture of one Gaussian gets its score as it is.
template <class A, class Rows, class Weights, class T>
T mixture(Rows means, Weights vars, const T* x, Elem32s width, const T* gconst, Elem32s height)
{
    // The block is aligned, the slot the element ahead of it.
    constexpr int slot = lanes<VectorOf<T>> - 1;
    alignas(64) T slotAndBlock[slot + 1 + blockHeight];
    T* const block = slotAndBlock + slot + 1;
    T total{};
    for (Elem32s first = 0; first < height;) {
        const Elem32s n = height - first < blockHeight ? height - first : blockHeight;
        scoreRows<A, T>(means.from(first), x, vars.from(first), width, n,
                        [block, constants = gconst + first]<class D>(std::ptrdiff_t g, D distances) LYR_INLINE_LAMBDA {
                            put(block + g, Doubled<T, D>{get<D>(constants + g)}.score(distances));
                        });
        if (first == 0) {
            total = logSum(block, n);
        } else {
            slotAndBlock[slot] = total;
            total = logSum(slotAndBlock + slot, n + 1);
        }
        first += n;
    }
    return total;
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
