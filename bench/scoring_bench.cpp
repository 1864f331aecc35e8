// Scores of acoustic models: mixtures, frames against one Gaussian, log-addition.

#include "lyrsr.h"

#include <random>
#include <vector>

#include "contest.hpp"
#include "plain_scoring.hpp"

#if LYRSR_HAVE_OPENBLAS
#include <cblas.h>
#endif
#if LYRSR_HAVE_EIGEN
#include <Eigen/Core>
#endif

namespace {

using bench::Contender;

std::vector<float> uniform(std::size_t n, float low, float high, unsigned seed)
{
    std::mt19937 engine(seed);
    std::uniform_real_distribution<float> distribution(low, high);
    std::vector<float> v(n);
    for (float& x : v) {
        x = distribution(engine);
    }
    return v;
}

// Frames and means around zero, up to `spread` from it, variances around one. With a spread of 1 all scores of a
// mixture lie within the reach of its log-sum; with 4 they are tens apart, as those of trained models are, and few
// count.
struct Model
{
    int height;
    int width;
    std::vector<float> x;
    std::vector<float> means;
    std::vector<float> vars;
    std::vector<float> gconst;
    // Rows for the expanded square: -var/2 and mean * var, and the constant with what does not depend on the frame.
    std::vector<float> halves;
    std::vector<float> products;
    std::vector<float> offsets;

    Model(int gaussians, int dimension, float spread = 1)
        : height(gaussians), width(dimension), x(uniform(size(1), -spread, spread, 1)),
          means(uniform(size(height), -spread, spread, 2)), vars(uniform(size(height), 0.5F, 2, 3)),
          gconst(uniform(static_cast<std::size_t>(height), -60, -50, 4)), halves(vars), products(vars), offsets(gconst)
    {
        for (std::size_t i = 0; i < vars.size(); ++i) {
            halves[i] = -0.5F * vars[i];
            products[i] = means[i] * vars[i];
            offsets[i / static_cast<std::size_t>(width)] -= 0.5F * means[i] * products[i];
        }
    }

    std::size_t size(int rows) const { return static_cast<std::size_t>(rows) * static_cast<std::size_t>(width); }
};

#if LYRSR_HAVE_EIGEN
using Matrix = Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using Rows = Eigen::Map<const Matrix>;
using Row = Eigen::Map<const Eigen::RowVectorXf>;
using Column = Eigen::Map<const Eigen::VectorXf>;

float eigenLogSum(const Eigen::VectorXf& scores)
{
    const float largest = scores.maxCoeff();
    return largest + std::log((scores.array() - largest).exp().sum());
}
#endif

// One frame against all Gaussians: what the frame scores under each of them, or, `whole`, under their mixture.
template <bool whole>
void gaussians(benchmark::State& state)
{
    const Model model(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)),
                      static_cast<float>(state.range(2)));
    const int height = model.height;
    const int width = model.width;
    float ours = 0;
    std::vector<float> ourScores(static_cast<std::size_t>(height));
    const auto plainTotal = [height](const std::vector<float>& each) {
        return whole ? plain::logSum(each.data(), height) : each.back();
    };
    std::vector<Contender> contenders{
        {"ours",
         [&] {
             if constexpr (whole) {
                 lyrsLogGaussMixture_32f_D2(model.x.data(), model.means.data(), model.vars.data(), height, width, width,
                                            model.gconst.data(), &ours);
             } else {
                 ourScores = model.gconst;
                 lyrsLogGaussMultiMix_32f_D2(model.means.data(), model.vars.data(), width, model.x.data(), width,
                                             ourScores.data(), height);
                 ours = ourScores.back();
             }
         },
         [&] { return ours; }}};
    float plainResult = 0;
    std::vector<float> scores(static_cast<std::size_t>(height));
    contenders.push_back({"plain",
                          [&] {
                              plain::scoreMixture(model.x.data(), model.means.data(), model.vars.data(),
                                                  model.gconst.data(), height, width, width, scores.data());
                              plainResult = plainTotal(scores);
                          },
                          [&] { return plainResult; }});
#if LYRSR_HAVE_OPENBLAS
    float blasResult = 0;
    std::vector<float> squares(model.x.size());
    std::vector<float> blasScores(scores.size());
    contenders.push_back({"openblas",
                          [&] {
                              for (std::size_t i = 0; i < squares.size(); ++i) {
                                  squares[i] = model.x[i] * model.x[i];
                              }
                              blasScores = model.offsets;
                              cblas_sgemv(CblasRowMajor, CblasNoTrans, height, width, 1, model.halves.data(), width,
                                          squares.data(), 1, 1, blasScores.data(), 1);
                              cblas_sgemv(CblasRowMajor, CblasNoTrans, height, width, 1, model.products.data(), width,
                                          model.x.data(), 1, 1, blasScores.data(), 1);
                              blasResult = plainTotal(blasScores);
                          },
                          [&] { return blasResult; }});
#endif
#if LYRSR_HAVE_EIGEN
    float eigenResult = 0;
    float expandedResult = 0;
    Eigen::VectorXf eigenScores(height);
    const Row x(model.x.data(), width);
    const Rows means(model.means.data(), height, width);
    const Rows vars(model.vars.data(), height, width);
    const Rows halves(model.halves.data(), height, width);
    const Rows products(model.products.data(), height, width);
    const Column gconst(model.gconst.data(), height);
    const Column offsets(model.offsets.data(), height);
    contenders.push_back(
        {"eigen",
         [&] {
             eigenScores =
                 gconst - 0.5F * ((means.rowwise() - x).array().square() * vars.array()).rowwise().sum().matrix();
             eigenResult = whole ? eigenLogSum(eigenScores) : eigenScores[height - 1];
         },
         [&] { return eigenResult; }});
    contenders.push_back({"eigen_expanded",
                          [&] {
                              const Eigen::VectorXf square = x.cwiseAbs2().transpose();
                              eigenScores = offsets;
                              eigenScores.noalias() += halves * square;
                              eigenScores.noalias() += products * x.transpose();
                              expandedResult = whole ? eigenLogSum(eigenScores) : eigenScores[height - 1];
                          },
                          [&] { return expandedResult; }});
#endif
    // Means and inverse variances are read once; a difference, its square and its weight.
    const auto elements = static_cast<double>(model.means.size());
    bench::contest(state, contenders, 1e-4, {8.0 * elements, 4.0 * elements});
}
BENCHMARK(gaussians<false>)->Name("each_gaussian")->ArgsProduct({{16, 512, 10000}, {39}, {1}});
BENCHMARK(gaussians<true>)->Name("mixture")->ArgsProduct({{16, 512, 10000}, {39}, {1, 4}});

void frames(benchmark::State& state)
{
    const int height = static_cast<int>(state.range(0));
    const int width = static_cast<int>(state.range(1));
    const Model model(height, width);
    const float gconst = -50;
    const auto n = static_cast<std::size_t>(height);
    std::vector<float> ours(n);
    std::vector<float> plainScores(n);
    std::vector<Contender> contenders{{"ours",
                                       [&] {
                                           lyrsLogGauss_32f_D2(model.means.data(), width, model.x.data(),
                                                               model.vars.data(), width, ours.data(), height, gconst);
                                       },
                                       [&] { return ours.back(); }},
                                      {"plain",
                                       [&] {
                                           plain::scoreFrames(model.means.data(), width, model.x.data(),
                                                              model.vars.data(), width, plainScores.data(), height,
                                                              gconst);
                                       },
                                       [&] { return plainScores.back(); }}};
#if LYRSR_HAVE_EIGEN
    Eigen::VectorXf eigenScores(height);
    const Rows x(model.means.data(), height, width);
    const Row mean(model.x.data(), width);
    const Column var(model.vars.data(), width);
    contenders.push_back({"eigen",
                          [&] {
                              eigenScores.setConstant(gconst);
                              eigenScores.noalias() -= 0.5F * ((x.rowwise() - mean).cwiseAbs2() * var);
                          },
                          [&] { return eigenScores[height - 1]; }});
#endif
    const auto elements = static_cast<double>(model.means.size());
    bench::contest(state, contenders, 1e-4, {4.0 * elements, 4.0 * elements});
}
BENCHMARK(frames)->ArgsProduct({{1, 100, 1000}, {13, 39}});

void single(benchmark::State& state)
{
    const int width = static_cast<int>(state.range(0));
    const Model model(1, width);
    float ours = 0;
    float plainScore = 0;
    std::vector<Contender> contenders{
        {"ours",
         [&] { lyrsLogGaussSingle_32f(model.x.data(), model.means.data(), model.vars.data(), width, &ours, -50); },
         [&] { return ours; }},
        {"plain",
         [&] {
             plain::scoreFrames(model.x.data(), width, model.means.data(), model.vars.data(), width, &plainScore, 1,
                                -50);
         },
         [&] { return plainScore; }}};
#if LYRSR_HAVE_EIGEN
    float eigenScore = 0;
    const Column x(model.x.data(), width);
    const Column mean(model.means.data(), width);
    const Column var(model.vars.data(), width);
    contenders.push_back({"eigen", [&] { eigenScore = -50 - 0.5F * ((x - mean).array().square() * var.array()).sum(); },
                          [&] { return eigenScore; }});
#endif
    bench::contest(state, contenders, 1e-4, {12.0 * width, 4.0 * width});
}
BENCHMARK(single)->Arg(13)->Arg(39);

// Operands some e-folds apart, as running sums have them.
void logAdd(benchmark::State& state)
{
    const int n = static_cast<int>(state.range(0));
    const int hint = static_cast<int>(state.range(1));
    const auto x = uniform(static_cast<std::size_t>(n), -20, 0, 5);
    const auto y = uniform(static_cast<std::size_t>(n), -20, 0, 6);
    std::vector<float> ours(y.size());
    std::vector<float> plainSums(y.size());
    std::vector<Contender> contenders{{"ours",
                                       [&] {
                                           ours = y;
                                           lyrsLogAdd_32f(x.data(), ours.data(), n, hint);
                                       },
                                       [&] { return ours.back(); }},
                                      {"plain",
                                       [&] {
                                           plainSums = y;
                                           plain::logAdd(x.data(), plainSums.data(), n);
                                       },
                                       [&] { return plainSums.back(); }}};
    // A polynomial of degree 10, in double precision with hint 0.
    bench::contest(state, contenders, 1e-5, {12.0 * n, (hint == 0 ? 40.0 : 20.0) * n});
}
BENCHMARK(logAdd)->ArgsProduct({{16, 100, 1000}, {0, 1}});

} // namespace

BENCHMARK_MAIN();
