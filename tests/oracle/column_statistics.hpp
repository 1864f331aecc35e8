// Statistics of one column, one row after another.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace lyr::oracle {

// Sums over a column, as near to exact as extended precision comes, and the sums of the magnitudes that bound the error
// of any other order.
struct ColumnSums
{
    long double sum = 0;
    long double squares = 0;
    long double magnitude = 0;
    long double squareMagnitude = 0;
};

template <class T>
ColumnSums columnSums(const std::vector<T>& column, const std::vector<T>& weights = {})
{
    ColumnSums s;
    for (std::size_t r = 0; r < column.size(); ++r) {
        const long double w = weights.empty() ? 1.0L : static_cast<long double>(weights[r]);
        const auto x = static_cast<long double>(column[r]);
        s.sum += w * x;
        s.squares += w * x * x;
        s.magnitude += std::fabs(w * x);
        s.squareMagnitude += std::fabs(w) * x * x;
    }
    return s;
}

// Half a unit in the last place of one: the relative error of one rounding.
template <class T>
constexpr long double roundingUnit = static_cast<long double>(std::numeric_limits<T>::epsilon()) / 2;

// A value and how far a computation in some precision may be from it.
struct Estimate
{
    long double value;
    long double error;
};

// n terms, each product rounded twice at most and the sum rounded n - 1 times: within (n + 2) units of the sum of the
// magnitudes, to first order (Higham, Accuracy and Stability of Numerical Algorithms, 2002, section 4.2); one more unit
// covers the higher orders for n below 10^5.
template <class T>
Estimate rounded(long double sum, long double magnitude, std::size_t n)
{
    return {sum, roundingUnit<T> * (static_cast<long double>(n) + 3) * magnitude};
}

// The reciprocal and the product with it are two roundings more.
template <class T>
Estimate mean(const ColumnSums& s, std::size_t height)
{
    const auto h = static_cast<long double>(height);
    return {s.sum / h, rounded<T>(s.sum, s.magnitude, height + 2).error / h};
}

// With the mean as it is given. Square, product with the height, sum, reciprocal and product with it: five roundings
// more.
template <class T>
Estimate variance(const ColumnSums& s, std::size_t height, long double mean)
{
    const auto h = static_cast<long double>(height);
    const long double value = (s.squares - h * mean * mean) / (h - 1);
    return {value, rounded<T>(s.squares, s.squareMagnitude + h * mean * mean, height + 5).error / (h - 1)};
}

// Square of the mean and difference: two roundings more.
template <class T>
Estimate weightedVariance(const ColumnSums& s, std::size_t height, long double mean)
{
    return {s.squares - mean * mean, rounded<T>(s.squares, s.squareMagnitude + mean * mean, height + 2).error};
}

// One over a number of rows: in precision T, and in double precision rounded to single. They part from 2^24 rows on,
// where the number itself is no single.
template <class T>
T reciprocal(std::size_t n)
{
    return T{1} / static_cast<T>(n);
}

inline float roundedReciprocal(std::size_t n)
{
    return static_cast<float>(1.0 / static_cast<double>(n));
}

// The formulas step by step in precision T, from sums that T holds exactly. `factor` is the reciprocal of the height,
// or of one less.
template <class T>
T steppedMean(long double sum, T factor)
{
    return static_cast<T>(sum) * factor;
}

template <class T>
T steppedVariance(long double squares, std::size_t height, T mean, T factor)
{
    const T meanSquare = mean * mean;
    const T product = static_cast<T>(height) * meanSquare;
    const T difference = static_cast<T>(squares) - product;
    return difference * factor;
}

// To nearest, ties to even, limited to the range of Int.
template <class Int>
Int toInteger(long double x)
{
    const long double r = std::nearbyint(x);
    if (r >= static_cast<long double>(std::numeric_limits<Int>::max())) {
        return std::numeric_limits<Int>::max();
    }
    return r <= static_cast<long double>(std::numeric_limits<Int>::min()) ? std::numeric_limits<Int>::min()
                                                                          : static_cast<Int>(r);
}

// sum over r of (x[r][i] - m[j]) * (x[r][j] - m[j]), both columns about the mean of the later one. The differences are
// rounded to double; they bound the error of the sum of their products.
template <class S>
Estimate crossSum(const std::vector<S>& earlier, const std::vector<S>& later, S meanOfLater)
{
    long double sum = 0;
    long double magnitude = 0;
    for (std::size_t r = 0; r < earlier.size(); ++r) {
        const double a = static_cast<double>(earlier[r]) - static_cast<double>(meanOfLater);
        const double b = static_cast<double>(later[r]) - static_cast<double>(meanOfLater);
        const long double product = static_cast<long double>(a) * static_cast<long double>(b);
        sum += product;
        magnitude += std::fabs(product);
    }
    return rounded<double>(sum, magnitude, earlier.size());
}

} // namespace lyr::oracle
