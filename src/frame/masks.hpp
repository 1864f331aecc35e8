// Lane masks of the 128-bit kernels.
#pragma once

#include <cstdint>

namespace lyr {

// Row r has its first r 32-bit lanes set.
alignas(16) extern const std::uint32_t OutMask32f[4][4];

// Row r has its first r 16-bit lanes set.
alignas(16) extern const std::uint16_t OutMask[9][8];

// A window that starts at entry 16 - n has its first n 32-bit lanes set; 16 at most.
extern const std::uint32_t slidingMask32[32];

} // namespace lyr
