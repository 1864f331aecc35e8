#include "frontend/dct_lifter_kernels.hpp"

#include "frame/simd_lanes.hpp"

namespace lyr::LYR_NS {
namespace {

constexpr int L = lanes<F32>;

// The end of a row. Its padding to 8 elements holds zeros, so that vectors of up to 8 are read whole.
LYR_INLINE F32 lastCosines(const Elem32f* p, [[maybe_unused]] int n)
{
    if constexpr (L <= 8) {
        return load<Aligned>(p);
    } else {
        return loadTail<Aligned>(p, n);
    }
}

// R outputs at once, so that each vector of inputs feeds R rows.
template <class A, int R, class S>
LYR_INLINE void products(F32 (&sums)[R], const Elem32f* const* rows, const S* src, Elem32s len)
{
    const Elem32f* row[R];
    for (int k = 0; k < R; ++k) {
        row[k] = rows[k];
        sums[k] = F32{};
    }
    std::ptrdiff_t j = 0;
    for (; j + L <= len; j += L) {
        const F32 x = loadLanes<Elem32f, A>(src + j);
        for (int k = 0; k < R; ++k) {
            sums[k] = mulAdd(x, load<Aligned>(row[k] + j), sums[k]);
        }
    }
    if (const int rest = static_cast<int>(len - j); rest != 0) {
        const F32 x = loadLanesTail<Elem32f, A>(src + j, rest);
        for (int k = 0; k < R; ++k) {
            sums[k] = mulAdd(x, lastCosines(row[k] + j, rest), sums[k]);
        }
    }
}

template <class A, class S>
LYR_INLINE float product(const DctLifter& lifter, Elem32s index, const S* src)
{
    F32 sums[1];
    products<A>(sums, lifter.rows + index, src, lifter.lenDCT);
    return lifter.weights[index] * sum(sums[0]);
}

template <class A, class S>
LYR_INLINE void transform(DctLifter lifter, const S* src, Elem32f* dst)
{
    const Elem32s count = lifter.lenCepstrum;
    Elem32s i = 1;
    for (; i + 3 <= count; i += 4) {
        F32 sums[4];
        products<A>(sums, lifter.rows + i, src, lifter.lenDCT);
        _mm_storeu_ps(dst + i - 1,
                      _mm_mul_ps(_mm_loadu_ps(lifter.weights + i), sumEach(sums[0], sums[1], sums[2], sums[3])));
    }
    for (; i <= count; ++i) {
        dst[i - 1] = product<A>(lifter, i, src);
    }
    if (lifter.hasC0) {
        dst[count] = product<A>(lifter, 0, src);
    }
}

template <class S>
void transform_Al(DctLifter lifter, const S* src, Elem32f* dst)
{
    transform<Aligned>(lifter, src, dst);
}

template <class S>
void transform_NA(DctLifter lifter, const S* src, Elem32f* dst)
{
    transform<Unaligned>(lifter, src, dst);
}

} // namespace

const DctLifterKernels dctLifterKernels{
    .single = {transform_Al<Elem32f>, transform_NA<Elem32f>},
    .from16s = transform_NA<Elem16s>,
    .from32s = transform_NA<Elem32s>,
};

} // namespace lyr::LYR_NS
