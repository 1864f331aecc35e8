// The DCT of log energies to cepstra against matrix-vector products of the peers, and delta features against plain
// loops. Arguments of the DCT are inputs and cepstra, of the deltas columns and frames.

#include "contest.hpp"
#include "data.hpp"
#include "lyrsr.h"
#include "plain_features.hpp"

#include <numbers>

#if LYRSR_HAVE_OPENBLAS
#include <cblas.h>
#endif
#if LYRSR_HAVE_EIGEN
#include <Eigen/Core>
#endif

namespace {

using bench::Contender;
using bench::contender;
using bench::contest;
using bench::fingerprint;

void dct(benchmark::State& state)
{
    const int inputs = static_cast<int>(state.range(0));
    const int cepstra = static_cast<int>(state.range(1));
    const auto x = bench::ramp<std::vector<float>>(inputs, 2, 12);
    const auto w = bench::ramp<std::vector<float>>(cepstra, 0.5, 11);
    std::vector<float> m;
    for (int i = 1; i <= cepstra; ++i) {
        for (int j = 0; j < inputs; ++j) {
            m.push_back(static_cast<float>(std::cos((j + 0.5) * i * std::numbers::pi / inputs)));
        }
    }
    std::vector<float> y(static_cast<std::size_t>(cepstra));
    DCTLifterState_32f* lifter = nullptr;
    if (lyrsDCTLifterInitAlloc_Mul_32f(&lifter, inputs, w.data(), cepstra) != StsNoErr) {
        state.SkipWithError("no state");
        return;
    }
    const auto result = [&y] { return fingerprint(y, y.size()); };
    std::vector<Contender> all;
    all.push_back(contender(
        "ours", [&] { lyrsDCTLifter_32f(x.data(), y.data(), lifter); }, result));
    all.push_back(contender(
        "plain", [&] { plain::liftedProduct(m.data(), w.data(), x.data(), y.data(), cepstra, inputs); }, result));
#if LYRSR_HAVE_OPENBLAS
    // The weights go into the matrix: the one thing that this product leaves to do.
    std::vector<float> weighted = m;
    for (std::size_t i = 0; i < weighted.size(); ++i) {
        weighted[i] *= w[i / x.size()];
    }
    all.push_back(contender(
        "openblas",
        [&] {
            cblas_sgemv(CblasRowMajor, CblasNoTrans, cepstra, inputs, 1.0F, weighted.data(), inputs, x.data(), 1, 0.0F,
                        y.data(), 1);
        },
        result));
#endif
#if LYRSR_HAVE_EIGEN
    using Rows = Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
    const Rows byRows = Eigen::Map<const Rows>(m.data(), cepstra, inputs);
    const Eigen::MatrixXf byColumns = byRows;
    const Eigen::Map<const Eigen::VectorXf> in(x.data(), inputs);
    const Eigen::Map<const Eigen::VectorXf> weights(w.data(), cepstra);
    Eigen::Map<Eigen::VectorXf> out(y.data(), cepstra);
    const auto eigen = [&](const auto& matrix) {
        out.noalias() = matrix * in;
        out = out.cwiseProduct(weights);
    };
    all.push_back(contender(
        "eigen_rows", [&] { eigen(byRows); }, result));
    all.push_back(contender(
        "eigen_columns", [&] { eigen(byColumns); }, result));
#endif
    const double products = inputs * cepstra;
    contest(state, all, 1e-4, bench::perCall(4 * products, 2 * products));
    lyrsDCTLifterFree_32f(lifter);
}

void deltas(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0));
    const int frames = static_cast<int>(state.range(1));
    const auto x = bench::ramp<std::vector<float>>(width * frames, -10, 10);
    std::vector<float> y(3 * x.size());
    const auto result = [&y] { return fingerprint(y, y.size()); };
    contest(state,
            {contender(
                 "ours",
                 [&] {
                     lyrsDeltaDelta_Win2_32f_D2(x.data(), width, y.data(), 3 * width, frames, 0.1F, 0.1F,
                                                DeltaBegin | DeltaEnd);
                 },
                 result),
             contender(
                 "plain", [&] { plain::deltaDelta(x.data(), y.data(), width, frames, 0.1F, 0.1F); }, result)},
            1e-4, bench::perCall(16.0 * width * frames, 10.0 * width * frames));
}

BENCHMARK(dct)->Args({23, 13})->Args({24, 12})->Args({26, 13})->Args({40, 13})->Args({64, 24});
BENCHMARK(deltas)->Args({13, 8})->Args({13, 300})->Args({12, 300})->Args({39, 300})->Args({16, 300});

} // namespace

BENCHMARK_MAIN();
