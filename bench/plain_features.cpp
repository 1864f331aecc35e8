#include "plain_features.hpp"

#include <algorithm>
#include <cmath>

namespace plain {

void liftedProduct(const float* m, const float* w, const float* x, float* y, int rows, int n)
{
    for (int i = 0; i < rows; ++i) {
        float sum = 0;
        for (int j = 0; j < n; ++j) {
            sum += m[i * n + j] * x[j];
        }
        y[i] = w[i] * sum;
    }
}

namespace {

void differences(const float* from, float* to, int width, int height, int step, float gain)
{
    for (int r = 0; r < height; ++r) {
        const float* p2 = from + std::min(r + 2, height - 1) * step;
        const float* p1 = from + std::min(r + 1, height - 1) * step;
        const float* m1 = from + std::max(r - 1, 0) * step;
        const float* m2 = from + std::max(r - 2, 0) * step;
        float* out = to + r * step;
        for (int c = 0; c < width; ++c) {
            out[c] = (p1[c] - m1[c] + 2 * (p2[c] - m2[c])) * gain;
        }
    }
}

} // namespace

void deltaDelta(const float* frames, float* rows, int width, int height, float gain, float gain2)
{
    const int step = 3 * width;
    for (int r = 0; r < height; ++r) {
        std::copy_n(frames + r * width, width, rows + r * step);
    }
    differences(rows, rows + width, width, height, step, gain);
    differences(rows + width, rows + 2 * width, width, height, step, gain2);
}

void magnitudes(const float* pairs, float* y, int n)
{
    for (int i = 0; i < n; ++i) {
        y[i] = std::sqrt(pairs[2 * i] * pairs[2 * i] + pairs[2 * i + 1] * pairs[2 * i + 1]);
    }
}

namespace {

template <class T>
void meansVariances(const float* rows, int height, int width, float* mean, float* var, T* sums)
{
    std::fill_n(sums, 2 * width, T{});
    for (int r = 0; r < height; ++r) {
        const float* const row = rows + static_cast<long>(r) * width;
        for (int c = 0; c < width; ++c) {
            const T x = row[c];
            sums[c] += x;
            sums[width + c] += x * x;
        }
    }
    for (int c = 0; c < width; ++c) {
        const T average = sums[c] / static_cast<T>(height);
        mean[c] = static_cast<float>(average);
        var[c] = static_cast<float>(sums[width + c] / static_cast<T>(height) - average * average);
    }
}

} // namespace

void columnMeansVariances(const float* rows, int height, int width, float* mean, float* var, float* sums)
{
    meansVariances(rows, height, width, mean, var, sums);
}

void columnMeansVariances(const float* rows, int height, int width, float* mean, float* var, double* sums)
{
    meansVariances(rows, height, width, mean, var, sums);
}

} // namespace plain
