// The scoring of acoustic models as plain loops, the way a user would write it. Compiled with -O3 -march=native
// -ffast-math, so that the loops and their exponentials and logarithms are vectorised.
#pragma once

namespace plain {

// scores[g] = gconst[g] - 1/2 * sum of (x - mean)^2 * var over row g.
void scoreMixture(const float* x, const float* means, const float* vars, const float* gconst, int height, int width,
                  int step, float* scores);

// scores[f] of frame f against one Gaussian.
void scoreFrames(const float* frames, int step, const float* mean, const float* var, int width, float* scores,
                 int height, float gconst);

// The log of the sum of the exponentials, from the largest element down.
float logSum(const float* x, int n);

// y[i] = log(exp(x[i]) + exp(y[i])).
void logAdd(const float* x, float* y, int n);

} // namespace plain
