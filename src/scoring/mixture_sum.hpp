// The log of the sum of the exponentials of a mixture's scores, taken while the scores are made.
//
// Blocks of 100 scores are summed in the order of lyrsLogSum_*; what a block comes down to is the first element of the
// next. That chain of log-additions is part of the result, and each of them waits for the one before. The scores of the
// Gaussians ahead wait for nothing: a step of the chain goes between the rows of the model, and its waiting is filled
// with their work.
#pragma once

#include "scoring/gauss_rows.hpp"
#include "scoring/log_sum_lanes.hpp"
#include "scoring/mixture_kernels.hpp"

namespace lyr::LYR_NS {

template <class T>
class MixtureSum
{
    using Order = SumOrder<T>;
    static constexpr Elem32s L = Order::lanes;
    static constexpr std::ptrdiff_t capacity = 128; // a power of two
    static constexpr std::ptrdiff_t ahead = 48; // scores made and not yet summed, from which on the chain goes first

    // A ring of scores. Its first ones stand behind its last once more, to be read across the end.
    alignas(64) T ring[capacity + lanes<VectorOf<T>>];
    std::ptrdiff_t height;
    std::ptrdiff_t made = 0;
    std::ptrdiff_t summed = 0;
    std::ptrdiff_t blockEnd = 0;
    bool inLanes = false; // the block has its accumulators
    typename Order::Lanes sum{};
    T total{};

    LYR_INLINE const T* at(std::ptrdiff_t g) const { return ring + (g & (capacity - 1)); }

    // The block's accumulators, if it is worth them; the total so far is its first element, except in the first block.
    LYR_INLINE void beginBlock()
    {
        const bool isFirst = summed == 0;
        blockEnd = height - summed < blockHeight ? height : summed + blockHeight;
        if (blockEnd - summed + (isFirst ? 0 : 1) < Order::fewest) {
            if (made >= blockEnd) {
                total = isFirst ? *at(summed++) : total;
                endBlock();
            }
            return;
        }
        const std::ptrdiff_t firstOnes = isFirst ? L : L - 1;
        if (made >= summed + firstOnes) {
            sum = isFirst ? Order::load(ring) : Order::withFirst(total, Order::load(at(summed - 1)));
            summed += firstOnes;
            inLanes = true;
        }
    }

    LYR_INLINE void endBlock()
    {
        for (; summed < blockEnd; ++summed) {
            total = logAddOne(total, *at(summed));
        }
        inLanes = false;
    }

public:
    LYR_INLINE explicit MixtureSum(Elem32s gaussians) : height(gaussians)
    {
        ring[0] = T{}; // the compiler does not see that a score comes before it is read
    }

    // The scores of the Gaussians from g on, a register of them or one.
    template <class D>
    LYR_INLINE void add(std::ptrdiff_t g, D scores)
    {
        const std::ptrdiff_t place = g & (capacity - 1);
        put(ring + place, scores);
        if (place < L) {
            put(ring + capacity + place, scores);
        }
        made = g + (__is_same(D, T) ? 1 : lanes<VectorOf<T>>);
        while (made - summed > ahead) {
            advance();
        }
    }

    // One step of the chain, if its scores are there.
    LYR_INLINE void advance()
    {
        if (!inLanes) {
            beginBlock();
        } else if (summed + L <= blockEnd) {
            if (summed + L <= made) {
                sum = Order::logAdd(sum, Order::load(at(summed)));
                summed += L;
            }
        } else if (blockEnd <= made) {
            total = Order::fold(sum);
            endBlock();
        }
    }

    LYR_INLINE T result()
    {
        while (summed < height || inLanes) {
            advance();
        }
        return total;
    }
};

} // namespace lyr::LYR_NS
