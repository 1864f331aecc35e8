#include "frame/masks.hpp"

namespace lyr {
namespace {
constexpr std::uint32_t D = 0xFFFFFFFFU;
constexpr std::uint16_t W = 0xFFFFU;
} // namespace

alignas(16) const std::uint32_t OutMask32f[4][4] = {{0, 0, 0, 0}, {D, 0, 0, 0}, {D, D, 0, 0}, {D, D, D, 0}};

alignas(16) const std::uint16_t OutMask[9][8] = {
    {0, 0, 0, 0, 0, 0, 0, 0}, {W, 0, 0, 0, 0, 0, 0, 0}, {W, W, 0, 0, 0, 0, 0, 0},
    {W, W, W, 0, 0, 0, 0, 0}, {W, W, W, W, 0, 0, 0, 0}, {W, W, W, W, W, 0, 0, 0},
    {W, W, W, W, W, W, 0, 0}, {W, W, W, W, W, W, W, 0}, {W, W, W, W, W, W, W, W}};

const std::uint32_t slidingMask32[32] = {D, D, D, D, D, D, D, D, D, D, D, D, D, D, D, D};

} // namespace lyr
