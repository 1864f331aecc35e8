#include "plain_loops.hpp"

#include <algorithm>
#include <cmath>

namespace plain {

float dot(const float* a, const float* b, int n)
{
    float sum = 0;
    for (int i = 0; i < n; ++i) {
        sum += a[i] * b[i];
    }
    return sum;
}

void product(const float* a, const float* b, float* y, int n)
{
    for (int i = 0; i < n; ++i) {
        y[i] = a[i] * b[i];
    }
}

float sum(const float* x, int n)
{
    float sum = 0;
    for (int i = 0; i < n; ++i) {
        sum += x[i];
    }
    return sum;
}

void ln(float* x, int n)
{
    for (int i = 0; i < n; ++i) {
        x[i] = std::log(x[i]);
    }
}

double sumLn(const float* x, int n)
{
    double sum = 0;
    for (int i = 0; i < n; ++i) {
        sum += static_cast<double>(std::log(x[i]));
    }
    return sum;
}

void convert(const std::int16_t* x, float* y, int n)
{
    for (int i = 0; i < n; ++i) {
        y[i] = x[i];
    }
}

void convert(const std::int32_t* x, float* y, int n)
{
    for (int i = 0; i < n; ++i) {
        y[i] = static_cast<float>(x[i]);
    }
}

void convert(const double* x, float* y, int n)
{
    for (int i = 0; i < n; ++i) {
        y[i] = static_cast<float>(x[i]);
    }
}

void convert(const float* x, std::int16_t* y, int n)
{
    for (int i = 0; i < n; ++i) {
        y[i] = static_cast<std::int16_t>(std::nearbyint(std::clamp(x[i], -32768.0F, 32767.0F)));
    }
}

void convert(const float* x, std::int32_t* y, int n)
{
    for (int i = 0; i < n; ++i) {
        y[i] = static_cast<std::int32_t>(std::nearbyint(std::clamp(x[i], -2147483648.0F, 2147483520.0F)));
    }
}

} // namespace plain
