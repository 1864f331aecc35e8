// The DCT with liftering from its formulas: the tables rounded as promised, the transform in extended precision.
#pragma once

#include "lyrsr.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace lyr::oracle {

inline constexpr double pi = 3.14159265358979323846;

// Row i, column j of the table of cosines; all in double but for the two roundings to single.
inline float cosine(int i, int j, int lenDCT)
{
    const auto number = static_cast<float>(j + 1);
    const double angle = (static_cast<double>(number) - 0.5) * (static_cast<double>(i) * pi) / lenDCT;
    return static_cast<float>(std::cos(angle));
}

inline float sineWeight(int i, int nLifter, float val)
{
    const auto half = static_cast<float>(static_cast<double>(nLifter) * 0.5);
    const double sine = std::sin(static_cast<double>(static_cast<float>(i)) * pi / nLifter);
    const auto rounded = static_cast<float>(1.0 + sine * static_cast<double>(half));
    return rounded * val;
}

// Entries 0 to lenCepstrum.
inline std::vector<float> sineWeights(int lenCepstrum, int nLifter, float val)
{
    std::vector<float> w;
    for (int i = 0; i <= lenCepstrum; ++i) {
        w.push_back(sineWeight(i, nLifter, val));
    }
    return w;
}

template <class T>
std::vector<float> givenWeights(const std::vector<T>& values, bool withC0)
{
    std::vector<float> w{withC0 ? static_cast<float>(values.back()) : 0.0F};
    for (const T value : values) {
        w.push_back(static_cast<float>(value));
    }
    return w;
}

// A coefficient, and the sum of the magnitudes that enter it.
struct Coefficient
{
    long double value = 0;
    long double magnitude = 0;
};

template <class S>
Coefficient coefficient(const std::vector<S>& x, int i, float weight)
{
    Coefficient c;
    for (std::size_t j = 0; j < x.size(); ++j) {
        const auto term = static_cast<long double>(static_cast<float>(x[j])) *
                          static_cast<long double>(cosine(i, static_cast<int>(j), static_cast<int>(x.size())));
        c.value += term;
        c.magnitude += std::fabs(term);
    }
    c.value *= static_cast<long double>(weight);
    c.magnitude *= std::fabs(static_cast<long double>(weight));
    return c;
}

} // namespace lyr::oracle
