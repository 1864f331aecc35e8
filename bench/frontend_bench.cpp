// Mel filter banks on a spectrum, against matrix-vector products of the peers and plain loops. Arguments are the points
// of the transform and the number of filters.

#include "contest.hpp"
#include "data.hpp"
#include "lyrsr.h"
#include "plain_banks.hpp"

#include <cmath>

#if LYRSR_HAVE_OPENBLAS
#include <cblas.h>
#endif
#if LYRSR_HAVE_EIGEN
#include <Eigen/Core>
#include <Eigen/SparseCore>
#endif

namespace {

using bench::Contender;
using bench::contender;
using bench::contest;
using bench::fingerprint;

// The weights of a bank, in the forms of the peers.
struct Weights
{
    Weights(const FBankState_32f* bank, int points, int count) : filters(count), bins(points / 2 + 1)
    {
        std::vector<Elem32s> c(static_cast<std::size_t>(filters) + 2);
        lyrsFBankGetCenters_32f(bank, c.data());
        dense.assign(static_cast<std::size_t>(filters) * static_cast<std::size_t>(bins), 0.0F);
        byBin.below.assign(static_cast<std::size_t>(bins), 0);
        byBin.rising.assign(static_cast<std::size_t>(bins), 0.0F);
        byBin.falling.assign(static_cast<std::size_t>(bins), 0.0F);
        for (int f = 0; f < filters; ++f) {
            const auto at = static_cast<std::size_t>(f);
            std::vector<float> w(static_cast<std::size_t>(c[at + 2] - c[at] + 1));
            lyrsFBankGetCoeffs_32f(bank, f + 1, w.data());
            sparse.push_back({c[at], w});
            plain::SparseFilter<std::int32_t> fixed{c[at], {}};
            for (std::size_t j = 0; j < w.size(); ++j) {
                const std::size_t k = static_cast<std::size_t>(c[at]) + j;
                dense[at * static_cast<std::size_t>(bins) + k] = w[j];
                fixed.weights.push_back(static_cast<std::int32_t>(w[j] * 16384.0F));
                if (w[j] == 0.0F) {
                    continue; // a bin at an edge belongs to the filter that has its peak there
                }
                if (static_cast<Elem32s>(k) <= c[at + 1]) {
                    byBin.below[k] = f;
                    byBin.rising[k] = w[j];
                } else {
                    byBin.below[k] = f + 1;
                    byBin.falling[k] = w[j];
                }
            }
            sparse16.push_back(fixed);
        }
    }

    int filters;
    int bins;
    std::vector<float> dense;
    std::vector<plain::SparseFilter<float>> sparse;
    std::vector<plain::SparseFilter<std::int32_t>> sparse16;
    plain::BinWeights byBin; // y begins one filter early
};

void singles(benchmark::State& state)
{
    const int points = static_cast<int>(state.range(0));
    const int filters = static_cast<int>(state.range(1));
    FBankState_32f* bank = nullptr;
    Elem32s order = 0;
    if (lyrsMelFBankInitAlloc_32f(&bank, &order, points, 16000, 20, 8000, filters, 2595, 700, FBankMelShape) !=
        StsNoErr) {
        state.SkipWithError("no bank");
        return;
    }
    const Weights weights(bank, points, filters);
    std::vector<float> x(static_cast<std::size_t>(weights.bins));
    for (std::size_t k = 0; k < x.size(); ++k) {
        x[k] = 1.0F + static_cast<float>((k * 7919) % 100);
    }
    std::vector<float> y(static_cast<std::size_t>(filters) + 2);
    const auto result = [&] { return fingerprint(y, static_cast<std::size_t>(filters)); };
    std::vector<Contender> all;
    all.push_back(contender(
        "ours", [&] { lyrsEvalFBank_32f(x.data(), y.data(), bank); }, result));
    all.push_back(contender(
        "plain_sparse", [&] { plain::sparseBank(weights.sparse, x.data(), y.data()); }, result));
    all.push_back(contender(
        "plain_dense", [&] { plain::denseBank(weights.dense.data(), x.data(), y.data(), filters, weights.bins); },
        result));
    std::vector<float> early(y.size());
    all.push_back(contender(
        "plain_bins", [&] { plain::scatteredBank(weights.byBin, x.data(), early.data(), filters); },
        [&] {
            return fingerprint(std::vector<float>(early.begin() + 1, early.end()), static_cast<std::size_t>(filters));
        }));
#if LYRSR_HAVE_OPENBLAS
    all.push_back(contender(
        "openblas",
        [&] {
            cblas_sgemv(CblasRowMajor, CblasNoTrans, filters, weights.bins, 1.0F, weights.dense.data(), weights.bins,
                        x.data(), 1, 0.0F, y.data(), 1);
        },
        result));
#endif
#if LYRSR_HAVE_EIGEN
    using Matrix = Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
    const Eigen::SparseMatrix<float, Eigen::RowMajor> matrix =
        Eigen::Map<const Matrix>(weights.dense.data(), filters, weights.bins).sparseView();
    all.push_back(contender(
        "eigen_sparse",
        [&] {
            Eigen::Map<Eigen::VectorXf>(y.data(), filters) =
                matrix * Eigen::Map<const Eigen::VectorXf>(x.data(), weights.bins);
        },
        result));
#endif
    // Two weights for each bin.
    contest(state, all, 1e-5, bench::perCall(12.0 * weights.bins, 4.0 * weights.bins));
    lyrsFBankFree_32f(bank);
}

void integers(benchmark::State& state)
{
    const int points = static_cast<int>(state.range(0));
    const int filters = static_cast<int>(state.range(1));
    FBankState_32f* shape = nullptr;
    FBankState_16s* bank = nullptr;
    Elem32s order = 0;
    if (lyrsMelFBankInitAlloc_32f(&shape, &order, points, 16000, 20, 8000, filters, 2595, 700, FBankMelShape) !=
            StsNoErr ||
        lyrsMelFBankInitAlloc_16s(&bank, &order, points, 16000, 20, 8000, filters, 2595, 700, FBankMelShape) !=
            StsNoErr) {
        state.SkipWithError("no bank");
        return;
    }
    const Weights weights(shape, points, filters);
    std::vector<Elem16s> x(static_cast<std::size_t>(weights.bins));
    for (std::size_t k = 0; k < x.size(); ++k) {
        x[k] = static_cast<Elem16s>(1 + (k * 7919) % 1000);
    }
    std::vector<Elem16s> y(static_cast<std::size_t>(filters));
    const auto result = [&] { return fingerprint(y, static_cast<std::size_t>(filters)); };
    contest(state,
            {contender(
                 "ours", [&] { lyrsEvalFBank_16s_Sfs(x.data(), y.data(), bank, 0); }, result),
             contender(
                 "plain_sparse", [&] { plain::sparseBank(weights.sparse16, x.data(), y.data()); }, result)},
            1e-3, bench::perCall(10.0 * weights.bins, 0));
    lyrsFBankFree_32f(shape);
    lyrsFBankFree_16s(bank);
}

BENCHMARK(singles)->Name("bank_32f")->ArgsProduct({{256, 512, 1024}, {20, 40}})->Args({128, 23});
BENCHMARK(integers)->Name("bank_16s")->ArgsProduct({{256, 512, 1024}, {20, 40}})->Args({128, 23});

} // namespace

BENCHMARK_MAIN();
