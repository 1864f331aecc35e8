#include "frame/scale.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

namespace lyr {
namespace {

// Entry i is 2^(128 - i): plus infinity first, then every power down to the smallest subnormal, then zero.
constexpr std::size_t tableLength = 279;

constexpr std::array<Elem32f, tableLength> makeSingles()
{
    std::array<Elem32f, tableLength> table{};
    table[0] = std::numeric_limits<Elem32f>::infinity();
    Elem64f power = 0x1p127;
    for (std::size_t i = 1; i + 1 < tableLength; ++i) {
        table[i] = static_cast<Elem32f>(power);
        power *= 0.5;
    }
    table[tableLength - 1] = 0.0F;
    return table;
}

constexpr auto intfTable = makeSingles();
static_assert(intfTable[128] == 1.0F && intfTable[277] == 0x1p-149F && intfTable[276] == 0x1p-148F);

// Entry i is 2^(64 * (16 - i)): coarse steps which an entry of intfTable refines. 2^1024 is an infinity.
constexpr std::array<Elem64f, 33> makeDoubles()
{
    std::array<Elem64f, 33> table{};
    table[0] = std::numeric_limits<Elem64f>::infinity();
    Elem64f power = 0x1p960;
    for (std::size_t i = 1; i < table.size(); ++i) {
        table[i] = power;
        power *= 0x1p-64;
    }
    return table;
}

constexpr auto intdTable = makeDoubles();
static_assert(intdTable[16] == 1.0 && intdTable[32] == 0x1p-1024);

} // namespace

Elem32f GetScale_32s32f(Elem32s s) noexcept
{
    const Elem64s exponent = std::clamp<Elem64s>(-Elem64s{s}, -150, 128);
    return intfTable[static_cast<std::size_t>(128 - exponent)];
}

Elem64f GetScale_32s64f(Elem32s s) noexcept
{
    const Elem64s exponent = std::clamp<Elem64s>(-Elem64s{s}, -1087, 1024);
    if (exponent < -1074) {
        return 0; // the product would be the smallest number where the caller rounds upward
    }
    const Elem64s coarse = exponent / 64; // toward zero, so that every factor and every product is exact
    const Elem64s fine = exponent % 64;
    return intdTable[static_cast<std::size_t>(16 - coarse)] * intfTable[static_cast<std::size_t>(128 - fine)];
}

} // namespace lyr
