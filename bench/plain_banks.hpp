// Filter banks as plain loops, the ways users write them.
#pragma once

#include <cstdint>
#include <vector>

namespace plain {

// y[f] = sum over k of m[f * bins + k] * x[k]: the matrix of weights with all its zeros.
void denseBank(const float* m, const float* x, float* y, int filters, int bins);

// The same over the bins of each filter alone.
template <class W>
struct SparseFilter
{
    int first;
    std::vector<W> weights;
};
void sparseBank(const std::vector<SparseFilter<float>>& bank, const float* x, float* y);
void sparseBank(const std::vector<SparseFilter<std::int32_t>>& bank, const std::int16_t* x, std::int16_t* y);

// Bin by bin: each adds to the falling side of filter `below[k]` and to the rising side of the next.
struct BinWeights
{
    std::vector<int> below;
    std::vector<float> rising;
    std::vector<float> falling;
};
void scatteredBank(const BinWeights& bank, const float* x, float* y, int filters);

} // namespace plain
