// Vector primitives as plain loops, the way a user would write them. Compiled with -O3 -march=native -ffast-math, so
// that the loops and the logarithms in them are vectorised.
#pragma once

#include <cstdint>

namespace plain {

float dot(const float* a, const float* b, int n);
void product(const float* a, const float* b, float* y, int n);
float sum(const float* x, int n);
void ln(float* x, int n);
double sumLn(const float* x, int n);
void convert(const std::int16_t* x, float* y, int n);
void convert(const std::int32_t* x, float* y, int n);
void convert(const double* x, float* y, int n);
// To nearest and limited.
void convert(const float* x, std::int16_t* y, int n);
void convert(const float* x, std::int32_t* y, int n);

} // namespace plain
