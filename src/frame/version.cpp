#include "lyrsr.h"

#include <cstddef>

namespace {

constexpr LibVersion version{5, 2, 108, 385, {'q', '9', '\0', '\0'}, "liblyrsrq9.so.5.2", "5.2", "Jul 11 2007"};

static_assert(offsetof(LibVersion, libraryName) == (sizeof(void*) == 8 ? 24 : 20));

} // namespace

const LibVersion* lyrsrGetLibVersion(void)
{
    return &version;
}
