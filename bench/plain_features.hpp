// Cepstra and delta features as plain loops, the way a user would write them.
#pragma once

namespace plain {

// y[i] = w[i] * sum over j of m[i * n + j] * x[j], i below `rows`.
void liftedProduct(const float* m, const float* w, const float* x, float* y, int rows, int n);

// A row of 3 * width for each frame: statics, deltas and delta-deltas over two frames each way, clamped at the ends.
void deltaDelta(const float* frames, float* rows, int width, int height, float gain, float gain2);

// The magnitudes of n complex numbers.
void magnitudes(const float* pairs, float* y, int n);

// Means and variances of the columns, in one pass over the rows; `sums` holds 2 * width elements for itself, in the
// precision of the sums.
void columnMeansVariances(const float* rows, int height, int width, float* mean, float* var, float* sums);
void columnMeansVariances(const float* rows, int height, int width, float* mean, float* var, double* sums);

} // namespace plain
