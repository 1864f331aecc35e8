// Cepstra and delta features as plain loops, the way a user would write them.
#pragma once

namespace plain {

// y[i] = w[i] * sum over j of m[i * n + j] * x[j], i below `rows`.
void liftedProduct(const float* m, const float* w, const float* x, float* y, int rows, int n);

// A row of 3 * width for each frame: statics, deltas and delta-deltas over two frames each way, clamped at the ends.
void deltaDelta(const float* frames, float* rows, int width, int height, float gain, float gain2);

} // namespace plain
