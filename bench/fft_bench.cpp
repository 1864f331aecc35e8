// The real transform against FFTW's: plans made by measurement, single precision, out of place, both in one process on
// the same data.
//
// Every iteration runs ours and the peer's one after the other, a batch of each, so that whatever else the machine does
// falls on both. The reported time is ours for one transform; `ratio` is ours over the peer's, from the fastest batches
// of both.

#include "lyrsr.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

#if defined(LYRSR_HAVE_FFTW)
#include <fftw3.h>
#endif

namespace {

struct Free
{
    void operator()(void* p) const { std::free(p); }
};

class Signal
{
public:
    explicit Signal(std::size_t count)
        : values(static_cast<float*>(std::aligned_alloc(64, (count * sizeof(float) + 63) / 64 * 64)))
    {
        std::fill_n(values.get(), count, 0.0F);
    }
    [[nodiscard]] float* data() const { return values.get(); }

private:
    std::unique_ptr<float, Free> values;
};

class Ours
{
public:
    explicit Ours(int order)
    {
        Elem32s bytes = 0;
        lyrsFFTInitAlloc_R_32f(&spec, order, 8, 0);
        lyrsFFTGetBufSize_R_32f(spec, &bytes);
        buffer = lyrsMalloc_8u(std::max(bytes, 1));
    }
    ~Ours()
    {
        lyrsFFTFree_R_32f(spec);
        lyrsFree(buffer);
    }
    Ours(const Ours&) = delete;
    Ours& operator=(const Ours&) = delete;

    void forward(const float* src, float* dst) const { lyrsFFTFwd_RToCCS_32f(src, dst, spec, buffer); }
    void inverse(const float* src, float* dst) const { lyrsFFTInv_PackToR_32f(src, dst, spec, buffer); }

private:
    FFTSpec_R_32f* spec = nullptr;
    Elem8u* buffer = nullptr;
};

// Seconds of `count` calls.
template <class Call>
double batch(int count, const Call& call)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < count; ++i) {
        call();
        benchmark::ClobberMemory();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Ours alone, or against a peer.
template <class Call, class Peer>
void compare(benchmark::State& state, int order, const Call& call, const Peer& peer)
{
    const int count = std::max(1, (1 << 17) >> order);
    double ours = HUGE_VAL;
    double theirs = HUGE_VAL;
    for (auto _ : state) {
        const double mine = batch(count, call);
        state.SetIterationTime(mine);
        ours = std::min(ours, mine);
        theirs = std::min(theirs, batch(count, peer));
    }
    const double n = std::ldexp(1.0, order);
    state.counters["best_ns"] = ours / count * 1e9;
    state.counters["GFlops"] = 2.5 * n * order * count / ours * 1e-9;
#if defined(LYRSR_HAVE_FFTW)
    state.counters["ratio"] = ours / theirs;
#endif
}

#if defined(LYRSR_HAVE_FFTW)
double relativeError(const float* a, const float* b, std::size_t count)
{
    double error = 0.0;
    double power = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const double d = double{a[i]} - double{b[i]};
        error += d * d;
        power += double{b[i]} * double{b[i]};
    }
    return std::sqrt(error / power);
}

// Ours against the peer's plan, once both have given the same result.
template <class Call>
void race(benchmark::State& state, int order, const Call& call, fftwf_plan plan, const float* dst, const float* peerDst,
          std::size_t count)
{
    call();
    fftwf_execute(plan);
    if (relativeError(dst, peerDst, count) > 1e-6) {
        state.SkipWithError("the results differ");
    }
    compare(state, order, call, [plan] { fftwf_execute(plan); });
    fftwf_destroy_plan(plan);
}
#endif

void forward(benchmark::State& state)
{
    const auto order = static_cast<int>(state.range(0));
    const std::size_t n = std::size_t{1} << order;
    const Signal src(n);
    const Signal dst(n + 2);
    const Ours ours(order);
    std::mt19937 engine(1);
    std::uniform_real_distribution<float> uniform(-1.0F, 1.0F);
#if defined(LYRSR_HAVE_FFTW)
    const Signal peerDst(n + 2);
    auto* const complexDst = reinterpret_cast<fftwf_complex*>(peerDst.data());
    fftwf_plan plan = fftwf_plan_dft_r2c_1d(static_cast<int>(n), src.data(), complexDst, FFTW_MEASURE);
#endif
    std::generate_n(src.data(), n, [&] { return uniform(engine); });
    const auto call = [&] { ours.forward(src.data(), dst.data()); };
#if defined(LYRSR_HAVE_FFTW)
    race(state, order, call, plan, dst.data(), peerDst.data(), n + 2);
#else
    compare(state, order, call, [] {});
#endif
}

void inverse(benchmark::State& state)
{
    const auto order = static_cast<int>(state.range(0));
    const std::size_t n = std::size_t{1} << order;
    const Signal src(n + 2);
    const Signal pack(n);
    const Signal dst(n);
    const Ours ours(order);
    std::mt19937 engine(1);
    std::uniform_real_distribution<float> uniform(-1.0F, 1.0F);
#if defined(LYRSR_HAVE_FFTW)
    const Signal peerDst(n);
    auto* const complexSrc = reinterpret_cast<fftwf_complex*>(src.data());
    fftwf_plan plan =
        fftwf_plan_dft_c2r_1d(static_cast<int>(n), complexSrc, peerDst.data(), FFTW_MEASURE | FFTW_PRESERVE_INPUT);
#endif
    std::generate_n(src.data(), n + 2, [&] { return uniform(engine); });
    src.data()[1] = 0.0F;
    src.data()[n + 1] = 0.0F;
    pack.data()[0] = src.data()[0];
    std::copy_n(src.data() + 2, n - 1, pack.data() + 1);
    const auto call = [&] { ours.inverse(pack.data(), dst.data()); };
#if defined(LYRSR_HAVE_FFTW)
    race(state, order, call, plan, dst.data(), peerDst.data(), n);
#else
    compare(state, order, call, [] {});
#endif
}

void orders(benchmark::internal::Benchmark* b)
{
    for (const int order : {5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 22}) {
        b->Arg(order);
    }
    b->UseManualTime()->MinTime(0.1);
}

BENCHMARK(forward)->Apply(orders);
BENCHMARK(inverse)->Apply(orders);

} // namespace

BENCHMARK_MAIN();
