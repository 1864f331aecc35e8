// The score of a frame against a diagonal Gaussian, one element after another.
#pragma once

#include <cmath>
#include <cstddef>

namespace lyr::oracle {

// How an inverse variance enters.
enum class Weight
{
    Unit,
    Inverse,
    Variance
};

// The exact sum of weighted squared differences, as near as extended precision comes, and the sum of its terms'
// magnitudes for error bounds.
struct Distance
{
    long double sum = 0;
    long double magnitude = 0;
};

// The differences are rounded to T as every member of the family rounds them: singles stay singles unless the member
// widens first.
template <class T, class S>
Distance distance(const S* x, const S* mean, const S* var, std::size_t len, Weight weight)
{
    Distance d;
    for (std::size_t i = 0; i < len; ++i) {
        const T difference = static_cast<T>(x[i]) - static_cast<T>(mean[i]);
        long double term = static_cast<long double>(difference) * static_cast<long double>(difference);
        if (weight == Weight::Inverse) {
            term *= static_cast<long double>(var[i]);
        } else if (weight == Weight::Variance) {
            term /= static_cast<long double>(var[i]);
        }
        d.sum += term;
        d.magnitude += std::fabs(term);
    }
    return d;
}

// The score with the constant doubled in the working precision, and with the constant as it is.
template <class T>
long double doubledScore(T gconst, const Distance& d)
{
    return (static_cast<long double>(static_cast<T>(T{2} * gconst)) - d.sum) * 0.5L;
}

template <class T>
long double plainScore(T gconst, const Distance& d)
{
    return static_cast<long double>(gconst) - 0.5L * d.sum;
}

// Widths 1 to 3 of the single-precision frames: every product subtracted from twice the constant, each step rounded.
inline float narrowScore(const float* x, const float* mean, const float* var, std::size_t width, float gconst)
{
    volatile float t = 2.0F * gconst; // volatile: each step rounds to single on every machine
    for (std::size_t i = 0; i < width; ++i) {
        volatile float d = x[i] - mean[i];
        volatile float product = d * d;
        if (var != nullptr) {
            product = product * var[i];
        }
        t = t - product;
    }
    return t * 0.5F;
}

// The weighted forms that widen singles to double: one accumulator, the order of the elements, each step rounded.
inline double orderedScore(const float* x, const float* mean, const float* var, std::size_t len, Weight weight,
                           double gconst)
{
    volatile double sum = 0;
    for (std::size_t i = 0; i < len; ++i) {
        volatile double d = static_cast<double>(x[i]) - static_cast<double>(mean[i]);
        volatile double term = d * d;
        term = weight == Weight::Variance ? term / static_cast<double>(var[i]) : term * static_cast<double>(var[i]);
        sum = sum + term;
    }
    return gconst - 0.5 * sum;
}

} // namespace lyr::oracle
