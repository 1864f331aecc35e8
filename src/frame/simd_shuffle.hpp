// Lanes of two vectors in another order, which a map tells: Map::at(i, W) is the place of lane i of the result among
// the 2 W lanes of both. Of vectors of any number of lanes.
#pragma once

#include "frame/width.hpp"

#include <utility>

namespace lyr::LYR_NS {

template <class Map, class V>
LYR_INLINE V shuffle(V a, V b)
{
    constexpr int count = static_cast<int>(sizeof(V) / sizeof(V{}[0]));
    return [&]<int... I>(std::integer_sequence<int, I...>) LYR_INLINE_LAMBDA
    {
        return __builtin_shufflevector(a, b, Map::at(I, count)...);
    }
    (std::make_integer_sequence<int, count>{});
}

// The real and the imaginary parts of (re, im, re, im, ...).
struct EvenLanes
{
    LYR_INLINE static constexpr int at(int i, int /*w*/) { return 2 * i; }
};
struct OddLanes
{
    LYR_INLINE static constexpr int at(int i, int /*w*/) { return 2 * i + 1; }
};

} // namespace lyr::LYR_NS
