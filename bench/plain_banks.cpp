#include "plain_banks.hpp"

#include <algorithm>
#include <cstddef>

namespace plain {

void denseBank(const float* m, const float* x, float* y, int filters, int bins)
{
    for (int f = 0; f < filters; ++f) {
        float sum = 0;
        for (int k = 0; k < bins; ++k) {
            sum += m[static_cast<std::ptrdiff_t>(f) * bins + k] * x[k];
        }
        y[f] = sum;
    }
}

void sparseBank(const std::vector<SparseFilter<float>>& bank, const float* x, float* y)
{
    for (const auto& filter : bank) {
        const float* const first = x + filter.first;
        float sum = 0;
        for (std::size_t j = 0; j < filter.weights.size(); ++j) {
            sum += filter.weights[j] * first[j];
        }
        *y++ = sum;
    }
}

void sparseBank(const std::vector<SparseFilter<std::int32_t>>& bank, const std::int16_t* x, std::int16_t* y)
{
    for (const auto& filter : bank) {
        const std::int16_t* const first = x + filter.first;
        std::int64_t sum = 0;
        for (std::size_t j = 0; j < filter.weights.size(); ++j) {
            sum += static_cast<std::int64_t>(filter.weights[j]) * first[j];
        }
        *y++ = static_cast<std::int16_t>(std::clamp<std::int64_t>(sum >> 14, INT16_MIN, INT16_MAX));
    }
}

void scatteredBank(const BinWeights& bank, const float* x, float* y, int filters)
{
    std::fill_n(y, filters + 2, 0.0F);
    for (std::size_t k = 0; k < bank.below.size(); ++k) {
        y[bank.below[k]] += bank.falling[k] * x[k];
        y[bank.below[k] + 1] += bank.rising[k] * x[k];
    }
}

} // namespace plain
