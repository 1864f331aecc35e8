// One frame against the Gaussians of a mixture, one after another.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "oracle/log_domain.hpp"
#include "oracle/log_gauss.hpp"

namespace lyr::oracle {

// A score as near to exact as extended precision comes, and how far from it a score in T may be: `width` + 4 roundings,
// each at most half a unit of the sum of the magnitudes that enter.
struct Score
{
    long double value;
    long double bound;
};

// var null stands for weights of one. The constant is doubled in T.
template <class T>
Score mixtureScore(const T* x, const T* mean, const T* var, std::size_t width, T gconst)
{
    const Distance d = distance<T>(x, mean, var, width, var != nullptr ? Weight::Inverse : Weight::Unit);
    const auto unit = static_cast<long double>(std::numeric_limits<T>::epsilon()) / 2;
    return {doubledScore(gconst, d), unit * (static_cast<long double>(width) + 4) *
                                         (d.magnitude / 2 + std::fabs(static_cast<long double>(gconst)))};
}

// How far a log-addition in T may be from the function itself for a result of about `size`: the term that is left out
// below the cut-off, the roundings of the difference, of the polynomial and of the sum.
template <class T>
long double logAddBound(long double size)
{
    const auto unit = static_cast<long double>(std::numeric_limits<T>::epsilon()) / 2;
    return (sizeof(T) == 4 ? 2.3e-7L : 1.01e-10L) + unit * (std::fabs(size) + 8);
}

inline long double exactLogSum(const std::vector<long double>& x)
{
    const long double largest = *std::max_element(x.begin(), x.end());
    long double sum = 0;
    for (const long double v : x) {
        sum += std::exp(v - largest);
    }
    return largest + std::log(sum);
}

// The additions of the family, to the bit: of two values, and of a mixture in blocks of 100, the total of each being
// the first element of the next.
inline float addLog(float a, float b)
{
    return logAddHint(a, b, 0);
}
inline double addLog(double a, double b)
{
    return logAdd64(a, b);
}

inline float sumLog(const std::vector<float>& x)
{
    return logSum32(x.data(), x.size());
}
inline double sumLog(const std::vector<double>& x)
{
    return logSum64(x.data(), x.size());
}

template <class T>
T mixtureSum(const std::vector<T>& scores)
{
    T total = 0;
    for (std::size_t first = 0; first < scores.size(); first += 100) {
        std::vector<T> block;
        if (first != 0) {
            block.push_back(total);
        }
        block.insert(block.end(), scores.begin() + static_cast<std::ptrdiff_t>(first),
                     scores.begin() + static_cast<std::ptrdiff_t>(std::min(first + 100, scores.size())));
        total = sumLog(block);
    }
    return total;
}

} // namespace lyr::oracle
