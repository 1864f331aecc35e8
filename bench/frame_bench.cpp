// A whole frame, windowed samples to liftered cepstra: the filter bank with its own transform, logarithm, DCT; against
// FFTW with plain loops. Then the statistics of columns of features. Arguments of the frame are samples (as many points
// of the transform), filters and cepstra; of the statistics rows and columns.

#include "contest.hpp"
#include "lyrsr.h"
#include "plain_banks.hpp"
#include "plain_features.hpp"
#include "plain_loops.hpp"

#include <memory>
#include <numbers>

#if LYRSR_HAVE_FFTW
#include <fftw3.h>
#endif

namespace {

using bench::Contender;
using bench::contender;
using bench::contest;

std::vector<float> noise(std::size_t n)
{
    std::vector<float> x(n);
    unsigned state = 1;
    for (float& value : x) {
        state = state * 1664525U + 1013904223U;
        value = static_cast<float>(state >> 8) / 8388608.0F - 1.0F;
    }
    return x;
}

// Weighs the outputs differently, so that they cannot stand for each other.
double fingerprint(const std::vector<float>& y)
{
    double sum = 0;
    for (std::size_t i = 0; i < y.size(); ++i) {
        sum += static_cast<double>(i % 17 + 1) * static_cast<double>(y[i]);
    }
    return sum;
}

#if LYRSR_HAVE_FFTW
struct FreeAligned
{
    void operator()(float* p) const { fftwf_free(p); }
};
using Aligned = std::unique_ptr<float, FreeAligned>;

std::vector<plain::SparseFilter<float>> filtersOf(const FBankState_32f* bank, int count)
{
    std::vector<Elem32s> c(static_cast<std::size_t>(count) + 2);
    lyrsFBankGetCenters_32f(bank, c.data());
    std::vector<plain::SparseFilter<float>> filters;
    for (int f = 0; f < count; ++f) {
        const auto at = static_cast<std::size_t>(f);
        std::vector<float> w(static_cast<std::size_t>(c[at + 2] - c[at] + 1));
        lyrsFBankGetCoeffs_32f(bank, f + 1, w.data());
        filters.push_back({c[at], w});
    }
    return filters;
}

void frame(benchmark::State& state)
{
    const int points = static_cast<int>(state.range(0));
    const int filters = static_cast<int>(state.range(1));
    const int cepstra = static_cast<int>(state.range(2));
    constexpr int ownTransform = FBankMelShape + 4; // the bank takes samples
    FBankState_32f* bank = nullptr;
    DCTLifterState_32f* dct = nullptr;
    Elem32s order = 0;
    const std::vector<float> lifter(static_cast<std::size_t>(cepstra), 2.0F);
    if (lyrsMelFBankInitAlloc_32f(&bank, &order, points, 16000, 20, 8000, filters, 2595, 700, ownTransform) !=
            StsNoErr ||
        lyrsDCTLifterInitAlloc_Mul_32f(&dct, filters, lifter.data(), cepstra) != StsNoErr) {
        state.SkipWithError("no bank or no DCT");
        return;
    }
    const auto n = static_cast<std::size_t>(points);
    const Aligned samples(fftwf_alloc_real(n));
    const Aligned spectrum(fftwf_alloc_real(n + 2));
    fftwf_plan plan =
        fftwf_plan_dft_r2c_1d(points, samples.get(), reinterpret_cast<fftwf_complex*>(spectrum.get()), FFTW_MEASURE);
    const auto x = noise(n);
    std::copy(x.begin(), x.end(), samples.get());
    const auto sparse = filtersOf(bank, filters);
    std::vector<float> matrix;
    for (int i = 1; i <= cepstra; ++i) {
        for (int j = 0; j < filters; ++j) {
            matrix.push_back(static_cast<float>(std::cos((j + 0.5) * i * std::numbers::pi / filters)));
        }
    }
    std::vector<float> energies(static_cast<std::size_t>(filters));
    std::vector<float> magnitudes(n / 2 + 1);
    std::vector<float> y(static_cast<std::size_t>(cepstra));
    const auto result = [&y] { return fingerprint(y); };
    contest(state,
            {contender(
                 "ours",
                 [&] {
                     lyrsEvalFBank_32f(samples.get(), energies.data(), bank);
                     lyrsLn_32f_I(energies.data(), filters);
                     lyrsDCTLifter_32f(energies.data(), y.data(), dct);
                 },
                 result),
             contender(
                 "fftw_plain",
                 [&] {
                     fftwf_execute(plan);
                     plain::magnitudes(spectrum.get(), magnitudes.data(), points / 2 + 1);
                     plain::sparseBank(sparse, magnitudes.data(), energies.data());
                     plain::ln(energies.data(), filters);
                     plain::liftedProduct(matrix.data(), lifter.data(), energies.data(), y.data(), cepstra, filters);
                 },
                 result)},
            1e-4, bench::perCall(4.0 * points, 2.5 * points * order + 6.0 * points / 2 + 2.0 * filters * cepstra));
    fftwf_destroy_plan(plan);
    lyrsDCTLifterFree_32f(dct);
    lyrsFBankFree_32f(bank);
}
BENCHMARK(frame)->Args({256, 23, 12})->Args({512, 23, 13})->Args({512, 40, 13})->Args({1024, 26, 13});
#endif

void columns(benchmark::State& state)
{
    const int height = static_cast<int>(state.range(0));
    const int width = static_cast<int>(state.range(1));
    const auto x = noise(static_cast<std::size_t>(height) * static_cast<std::size_t>(width));
    std::vector<float> y(2 * static_cast<std::size_t>(width));
    std::vector<float> sums(y.size());
    std::vector<double> wideSums(y.size());
    const auto result = [&y] { return fingerprint(y); };
    contest(
        state,
        {contender(
             "ours", [&] { lyrsMeanVarColumn_32f_D2(x.data(), height, width, y.data(), y.data() + width, width); },
             result),
         contender(
             "plain",
             [&] { plain::columnMeansVariances(x.data(), height, width, y.data(), y.data() + width, sums.data()); },
             result),
         contender(
             "plain_double",
             [&] { plain::columnMeansVariances(x.data(), height, width, y.data(), y.data() + width, wideSums.data()); },
             result)},
        1e-4, bench::perCall(4.0 * height * width, 6.0 * height * width)); // sums in double precision
}
BENCHMARK(columns)->Args({100, 13})->Args({100, 39})->Args({1000, 39});

} // namespace

BENCHMARK_MAIN();
