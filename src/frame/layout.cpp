#include "frame/layout.hpp"

namespace lyr {

int RowMatrAlErr(const void* const* mPtr, Elem32s height) noexcept
{
    std::uintptr_t bits = 0;
    for (Elem32s r = 0; r < height; ++r) {
        bits |= reinterpret_cast<std::uintptr_t>(mPtr[r]);
    }
    return (bits & 15U) != 0 ? 1 : 0;
}

} // namespace lyr
