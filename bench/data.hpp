// Data for the contests, and numbers that stand for a result.
#pragma once

#include <cstddef>
#include <vector>

namespace bench {

// n numbers between low and high, in no order.
template <class V>
V ramp(int n, double low, double high)
{
    using T = typename V::value_type;
    V x(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
        x[static_cast<std::size_t>(i)] = static_cast<T>(low + (high - low) * ((i * 7919) % n) / n);
    }
    return x;
}

// Weighs the outputs differently, so that they cannot stand for each other.
template <class T>
double fingerprint(const std::vector<T>& y, std::size_t count)
{
    double sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        sum += static_cast<double>(i % 17 + 1) * static_cast<double>(y[i]);
    }
    return sum;
}

} // namespace bench
