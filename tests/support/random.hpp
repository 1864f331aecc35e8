// Reproducible test data.
#pragma once

#include <cstdint>
#include <random>
#include <type_traits>
#include <vector>

namespace lyr::test {

class Random
{
public:
    explicit Random(std::uint32_t seed = 1) : engine(seed) {}

    // Uniform in [low, high]: the whole closed range for integers.
    template <class T>
    T uniform(T low, T high)
    {
        if constexpr (std::is_floating_point_v<T>) {
            return std::uniform_real_distribution<T>(low, high)(engine);
        } else {
            return static_cast<T>(std::uniform_int_distribution<std::int64_t>(low, high)(engine));
        }
    }

    template <class T>
    std::vector<T> vector(std::size_t n, T low, T high)
    {
        std::vector<T> v(n);
        for (T& x : v) {
            x = uniform(low, high);
        }
        return v;
    }

private:
    std::mt19937 engine;
};

} // namespace lyr::test
