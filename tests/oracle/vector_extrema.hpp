// Extremes of vectors by a scan from the first element.
#pragma once

#include "lyrsr.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

namespace lyr::oracle {

template <class T>
struct Extreme
{
    T value;
    Elem32s index;
};

// The first element that no later one is strictly better than; NaN is better than nothing, and nothing is better than
// it.
template <class T, class Better>
Extreme<T> extreme(const std::vector<T>& x, Better better)
{
    Extreme<T> best{x[0], 0};
    for (std::size_t i = 1; i < x.size(); ++i) {
        if (better(x[i], best.value)) {
            best = {x[i], static_cast<Elem32s>(i)};
        }
    }
    return best;
}

template <class T>
Extreme<T> largest(const std::vector<T>& x)
{
    return extreme(x, std::greater<T>{});
}

template <class T>
Extreme<T> smallest(const std::vector<T>& x)
{
    return extreme(x, std::less<T>{});
}

// What stands at index n in descending order.
template <class T>
T nthLargest(std::vector<T> x, Elem32s n)
{
    std::stable_sort(x.begin(), x.end(), std::greater<T>{});
    return x[static_cast<std::size_t>(n)];
}

} // namespace lyr::oracle
