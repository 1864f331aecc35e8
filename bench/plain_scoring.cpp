#include "plain_scoring.hpp"

#include <cmath>

namespace plain {

void scoreMixture(const float* x, const float* means, const float* vars, const float* gconst, int height, int width,
                  int step, float* scores)
{
    for (int g = 0; g < height; ++g) {
        const float* const mean = means + static_cast<long>(g) * step;
        const float* const var = vars + static_cast<long>(g) * step;
        float sum = 0;
        for (int i = 0; i < width; ++i) {
            const float d = x[i] - mean[i];
            sum += d * d * var[i];
        }
        scores[g] = gconst[g] - 0.5F * sum;
    }
}

void scoreFrames(const float* frames, int step, const float* mean, const float* var, int width, float* scores,
                 int height, float gconst)
{
    for (int f = 0; f < height; ++f) {
        const float* const x = frames + static_cast<long>(f) * step;
        float sum = 0;
        for (int i = 0; i < width; ++i) {
            const float d = x[i] - mean[i];
            sum += d * d * var[i];
        }
        scores[f] = gconst - 0.5F * sum;
    }
}

float logSum(const float* x, int n)
{
    float largest = x[0];
    for (int i = 1; i < n; ++i) {
        largest = x[i] > largest ? x[i] : largest;
    }
    float sum = 0;
    for (int i = 0; i < n; ++i) {
        sum += std::exp(x[i] - largest);
    }
    return largest + std::log(sum);
}

void logAdd(const float* x, float* y, int n)
{
    for (int i = 0; i < n; ++i) {
        const float m = x[i] > y[i] ? x[i] : y[i];
        const float d = x[i] > y[i] ? y[i] - x[i] : x[i] - y[i];
        y[i] = m + std::log(1.0F + std::exp(d));
    }
}

} // namespace plain
