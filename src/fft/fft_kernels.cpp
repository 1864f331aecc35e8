#include "fft/fft_kernels.hpp"

#include "fft/fft_complex.hpp"

namespace lyr::LYR_NS {
namespace fft {
namespace {

using lyr::fft::phasorsAt;

constexpr int widest = vectorBytes / 4;

// M = 8: all in registers, the same butterfly on single numbers.
template <bool Inverse>
LYR_INLINE void transformPoints(const float* src, float* dst)
{
    Complex<float> z[8];
    unroll<8>([&](auto i) __attribute__((always_inline)) {
        z[i] = loadPairs<float>(src + 2 * i);
        z[i] = Inverse ? swapParts(z[i]) : z[i];
    });
    butterfly<3>(z);
    unroll<8>([&](auto i)
                  __attribute__((always_inline)) { storePairs(dst + 2 * i, Inverse ? swapParts(z[i]) : z[i]); });
}

void copy(float* dst, const float* src, std::ptrdiff_t count)
{
    if (dst != src) {
        __builtin_memmove(dst, src, static_cast<std::size_t>(count) * sizeof(float));
    }
}

template <int W, class Gain>
void forwardTransform(const FFTSpec_R_32f& spec, const Plan& plan, const float* src, float* work,
                      const Spectrum<Gain>& out)
{
    const auto m = static_cast<std::ptrdiff_t>(plan.length());
    if constexpr (W == 1) {
        float z[16];
        transformPoints<false>(src, z);
        const Complex<float> first = loadPairs<float>(z);
        recombineInOrder<1, false>(z, 0, z, m, out.u, out.gain);
        copy(out.at(1), z + 2, 2 * m - 2);
        out.putEnds(first);
    } else {
        using V = Vec<W>;
        const Tables tables = tablesOf(spec, plan);
        if (!plan.isLarge()) {
            smallTransform<V>(tables, PairRows<V, false>{src, rowFloats<V>}, out, work);
        } else if (plan.splits == 0) {
            largeTransform<V, false>(tables, src, out, work);
        } else {
            copy(out.data(), src, 2 * m);
            splitTransform<V, false>(tables, spec.pBlkTwd, 0, out.data(), work);
            const Complex<float> first = loadPairs<float>(out.data());
            recombineInOrder<W, false>(out.data(), 0, out.data(), m, out.u, out.gain);
            copy(out.at(1), out.data() + 2, 2 * m - 2);
            out.putEnds(first);
        }
    }
}

template <int W>
void inverseTransform(const FFTSpec_R_32f& spec, const Plan& plan, const float* src, float* dst, float* work)
{
    const auto m = static_cast<std::ptrdiff_t>(plan.length());
    const float norm = spec.invNorm != 0 ? spec.normFactor : 1.0F;
    const float first = src[0];
    const float last = src[2 * m - 1];
    recombineInOrder<W, true>(src, 1, dst, m, phasorsAt(spec.pCcsRec, plan.logRows), 2.0F * norm);
    dst[0] = norm * first + norm * last;
    dst[1] = norm * first - norm * last;
    if constexpr (W == 1) {
        transformPoints<true>(dst, dst);
    } else {
        using V = Vec<W>;
        const Tables tables = tablesOf(spec, plan);
        if (!plan.isLarge()) {
            smallTransform<V>(tables, PairRows<V, true>{dst, rowFloats<V>}, Points<true>{dst}, work);
        } else {
            splitTransform<V, true>(tables, spec.pBlkTwd, 0, dst, work);
        }
    }
}

// The kernel for the number of lanes that the plan of this order has.
template <class Run>
LYR_INLINE void withLanes(const Plan& plan, Run run)
{
    switch (plan.lanes) {
    case 1:
        return run(Constant<1>{});
    case 4:
        return run(Constant<4>{});
#if LYR_WIDTH >= 256
    case 8:
        return run(Constant<8>{});
#endif
#if LYR_WIDTH >= 512
    case 16:
        return run(Constant<16>{});
#endif
    default:
        __builtin_unreachable();
    }
}

template <class Gain>
void forwardBy(Gain gain, const FFTSpec_R_32f& spec, const Plan& plan, const Elem32f* src, Elem32f* dst, float* work,
               Layout layout)
{
    const Spectrum out(dst, std::ptrdiff_t{1} << spec.order, layout, gain, phasorsAt(spec.pRealRec, plan.logRows));
    withLanes(
        plan, [&](auto lanes) __attribute__((always_inline)) { forwardTransform<lanes>(spec, plan, src, work, out); });
}

void forward(const FFTSpec_R_32f& spec, const Plan& plan, const Elem32f* src, Elem32f* dst, float* work, Layout layout)
{
    if (spec.fwdNorm != 0) {
        forwardBy(spec.normFactor, spec, plan, src, dst, work, layout);
    } else {
        forwardBy(Unscaled{}, spec, plan, src, dst, work, layout);
    }
}

void inverse(const FFTSpec_R_32f& spec, const Plan& plan, const Elem32f* src, Elem32f* dst, float* work)
{
    withLanes(
        plan, [&](auto lanes) __attribute__((always_inline)) { inverseTransform<lanes>(spec, plan, src, dst, work); });
}

} // namespace
} // namespace fft

extern const FftKernels fftKernels = {fft::widest, fft::forward, fft::inverse};

} // namespace lyr::LYR_NS
