// Vector primitives against OpenBLAS, Eigen, VOLK and plain loops. Arguments are lengths; a run is 32 calls.

#include "contest.hpp"
#include "data.hpp"
#include "lyrsr.h"
#include "plain_loops.hpp"

#include <cstdlib>
#include <cstring>
#include <new>
#include <type_traits>
#include <unistd.h>

#if LYRSR_HAVE_OPENBLAS
#include <cblas.h>
#endif
#if LYRSR_HAVE_EIGEN
#include <Eigen/Core>
#endif
#if LYRSR_HAVE_VOLK
#include <volk/volk.h>
#endif

namespace {

using bench::Contender;
using bench::contender;
using bench::contest;
using bench::perCall;

// Vectors stand at the start of a cache line, for ours and for the peers alike.
template <class T>
struct AtCacheLine
{
    using value_type = T;
    AtCacheLine() = default;
    template <class U>
    AtCacheLine(const AtCacheLine<U>& /*other*/)
    {}
    T* allocate(std::size_t n) { return static_cast<T*>(::operator new (n * sizeof(T), std::align_val_t{64})); }
    void deallocate(T* p, std::size_t /*n*/) { ::operator delete (p, std::align_val_t{64}); }
    friend bool operator==(AtCacheLine /*a*/, AtCacheLine /*b*/) { return true; }
};

template <class T>
using Vector = std::vector<T, AtCacheLine<T>>;

template <class T>
Vector<T> ramp(int n, double low, double high)
{
    return bench::ramp<Vector<T>>(n, low, high);
}

template <class T>
double total(const Vector<T>& x)
{
    double sum = 0;
    for (const T v : x) {
        sum += static_cast<double>(v);
    }
    return sum;
}

void dotProduct(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const auto a = ramp<float>(n, -1, 2);
    const auto b = ramp<float>(n, 0.5, 1);
    float y = 0;
    const auto result = [&y] { return static_cast<double>(y); };
    std::vector<Contender> all;
    all.push_back(contender(
        "ours", [&] { lyrsDotProd_32f(a.data(), b.data(), n, &y); }, result));
    all.push_back(contender(
        "plain", [&] { y = plain::dot(a.data(), b.data(), n); }, result));
#if LYRSR_HAVE_OPENBLAS
    all.push_back(contender(
        "openblas", [&] { y = cblas_sdot(n, a.data(), 1, b.data(), 1); }, result));
#endif
#if LYRSR_HAVE_EIGEN
    all.push_back(contender(
        "eigen",
        [&] { y = Eigen::Map<const Eigen::VectorXf>(a.data(), n).dot(Eigen::Map<const Eigen::VectorXf>(b.data(), n)); },
        result));
#endif
#if LYRSR_HAVE_VOLK
    all.push_back(contender(
        "volk", [&] { volk_32f_x2_dot_prod_32f(&y, a.data(), b.data(), static_cast<unsigned>(n)); }, result));
#endif
    contest(state, all, 1e-4, perCall(8.0 * n, 2.0 * n));
}

void product(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const auto a = ramp<float>(n, -1, 2);
    const auto b = ramp<float>(n, 0.5, 1);
    Vector<float> y(a.size());
    const auto result = [&y] { return total(y); };
    std::vector<Contender> all;
    all.push_back(contender(
        "ours", [&] { lyrsMul_32f(a.data(), b.data(), y.data(), n); }, result));
    all.push_back(contender(
        "plain", [&] { plain::product(a.data(), b.data(), y.data(), n); }, result));
#if LYRSR_HAVE_EIGEN
    all.push_back(contender(
        "eigen",
        [&] {
            Eigen::Map<Eigen::ArrayXf>(y.data(), n) =
                Eigen::Map<const Eigen::ArrayXf>(a.data(), n) * Eigen::Map<const Eigen::ArrayXf>(b.data(), n);
        },
        result));
#endif
#if LYRSR_HAVE_VOLK
    all.push_back(contender(
        "volk", [&] { volk_32f_x2_multiply_32f(y.data(), a.data(), b.data(), static_cast<unsigned>(n)); }, result));
#endif
    contest(state, all, 1e-4, perCall(12.0 * n, n));
}

void fastSum(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const auto x = ramp<float>(n, -1, 2);
    float y = 0;
    const auto result = [&y] { return static_cast<double>(y); };
    std::vector<Contender> all;
    all.push_back(contender(
        "ours", [&] { lyrsSum_32f(x.data(), n, &y, 1); }, result));
    all.push_back(contender(
        "plain", [&] { y = plain::sum(x.data(), n); }, result));
#if LYRSR_HAVE_OPENBLAS
    all.push_back(contender(
        "openblas", [&] { y = cblas_ssum(n, x.data(), 1); }, result));
#endif
#if LYRSR_HAVE_EIGEN
    all.push_back(contender(
        "eigen", [&] { y = Eigen::Map<const Eigen::VectorXf>(x.data(), n).sum(); }, result));
#endif
#if LYRSR_HAVE_VOLK
    all.push_back(contender(
        "volk", [&] { volk_32f_accumulator_s32f(&y, x.data(), static_cast<unsigned>(n)); }, result));
#endif
    contest(state, all, 1e-4, perCall(4.0 * n, n));
}

// The accurate sum has no peer in extended precision; the plain loop in single precision shows what it costs.
void accurateSum(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const auto x = ramp<float>(n, -1, 2);
    float y = 0;
    const auto result = [&y] { return static_cast<double>(y); };
    contest(state,
            {contender(
                 "ours", [&] { lyrsSum_32f(x.data(), n, &y, 0); }, result),
             contender(
                 "plain", [&] { y = plain::sum(x.data(), n); }, result)},
            1e-4, perCall(4.0 * n, n));
}

// In place, so that every call starts from a copy on both sides.
void logarithm(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const auto x = ramp<float>(n, 0.001, 40);
    Vector<float> y(x.size());
    const auto result = [&y] { return total(y); };
    const auto copy = [&] { std::memcpy(y.data(), x.data(), x.size() * sizeof(float)); };
    contest(state,
            {contender(
                 "ours",
                 [&] {
                     copy();
                     lyrsLn_32f_I(y.data(), n);
                 },
                 result),
             contender(
                 "libmvec",
                 [&] {
                     copy();
                     plain::ln(y.data(), n);
                 },
                 result)},
            1e-4, perCall(8.0 * n, 0));
}

void sumOfLogarithms(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const auto x = ramp<float>(n, 0.001, 40);
    float y = 0;
    const auto result = [&y] { return static_cast<double>(y); };
    contest(state,
            {contender(
                 "ours", [&] { lyrsSumLn_32f(x.data(), n, &y); }, result),
             contender(
                 "libmvec", [&] { y = static_cast<float>(plain::sumLn(x.data(), n)); }, result)},
            1e-4, perCall(4.0 * n, 0));
}

// `ours` takes source, destination and length, `volk` destination first.
template <class S, class D, class Ours, class Volk>
void compareConversion(benchmark::State& state, Ours ours, [[maybe_unused]] Volk volk)
{
    const int n = static_cast<int>(state.range(0));
    const auto x = ramp<S>(n, -3000, 3000);
    Vector<D> y(x.size());
    const auto result = [&y] { return total(y); };
    std::vector<Contender> all;
    all.push_back(contender(
        "ours", [&] { ours(x.data(), y.data(), n); }, result));
    all.push_back(contender(
        "plain", [&] { plain::convert(x.data(), y.data(), n); }, result));
#if LYRSR_HAVE_EIGEN
    if constexpr (std::is_floating_point_v<D>) {
        all.push_back(contender(
            "eigen",
            [&] {
                Eigen::Map<Eigen::Array<D, Eigen::Dynamic, 1>>(y.data(), n) =
                    Eigen::Map<const Eigen::Array<S, Eigen::Dynamic, 1>>(x.data(), n).template cast<D>();
            },
            result));
    }
#endif
#if LYRSR_HAVE_VOLK
    all.push_back(contender(
        "volk", [&] { volk(y.data(), x.data(), static_cast<unsigned>(n)); }, result));
#endif
    contest(state, all, 1e-4, perCall(static_cast<double>(sizeof(S) + sizeof(D)) * n, 0));
}

#if LYRSR_HAVE_VOLK
#define LYRSR_VOLK(CALL) [](auto y, auto x, unsigned n) { CALL; }
#else
#define LYRSR_VOLK(CALL) nullptr
#endif

void convert16s32f(benchmark::State& state)
{
    const auto ours = [](const Elem16s* x, Elem32f* y, int n) { lyrsConvert_16s32f(x, y, n); };
    compareConversion<Elem16s, Elem32f>(state, ours, LYRSR_VOLK(volk_16i_s32f_convert_32f(y, x, 1.0F, n)));
}

void convert32s32f(benchmark::State& state)
{
    const auto ours = [](const Elem32s* x, Elem32f* y, int n) { lyrsConvert_32s32f(x, y, n); };
    compareConversion<Elem32s, Elem32f>(state, ours, LYRSR_VOLK(volk_32i_s32f_convert_32f(y, x, 1.0F, n)));
}

void convert64f32f(benchmark::State& state)
{
    const auto ours = [](const Elem64f* x, Elem32f* y, int n) { lyrsConvert_64f32f(x, y, n); };
    compareConversion<Elem64f, Elem32f>(state, ours, LYRSR_VOLK(volk_64f_convert_32f(y, x, n)));
}

void convert32f16s(benchmark::State& state)
{
    const auto ours = [](const Elem32f* x, Elem16s* y, int n) { lyrsConvert_32f16s_Sfs(x, y, n, 1, 0); };
    compareConversion<Elem32f, Elem16s>(state, ours, LYRSR_VOLK(volk_32f_s32f_convert_16i(y, x, 1.0F, n)));
}

void convert32f32s(benchmark::State& state)
{
    const auto ours = [](const Elem32f* x, Elem32s* y, int n) { lyrsConvert_32f32s_Sfs(x, y, n, 1, 0); };
    compareConversion<Elem32f, Elem32s>(state, ours, LYRSR_VOLK(volk_32f_s32f_convert_32i(y, x, 1.0F, n)));
}

void lengths(benchmark::internal::Benchmark* b)
{
    for (const int n : {13, 39, 64, 128, 257, 512, 4096}) {
        b->Arg(n);
    }
    b->Iterations(201);
}

BENCHMARK(dotProduct)->Apply(lengths);
BENCHMARK(product)->Apply(lengths);
BENCHMARK(fastSum)->Apply(lengths);
BENCHMARK(accurateSum)->Apply(lengths);
BENCHMARK(logarithm)->Apply(lengths);
BENCHMARK(sumOfLogarithms)->Apply(lengths);
BENCHMARK(convert16s32f)->Apply(lengths);
BENCHMARK(convert32s32f)->Apply(lengths);
BENCHMARK(convert64f32f)->Apply(lengths);
BENCHMARK(convert32f16s)->Apply(lengths);
BENCHMARK(convert32f32s)->Apply(lengths);

} // namespace

int main(int argc, char** argv)
{
    // OpenBLAS looks at this when it is loaded, and does not know every processor by itself.
    if (std::getenv("OPENBLAS_CORETYPE") == nullptr) {
        setenv("OPENBLAS_CORETYPE", "SkylakeX", 1);
        execv("/proc/self/exe", argv);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
