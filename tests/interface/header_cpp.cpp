// The public header as a C++ program sees it, included twice.

#include "lyrsr.h"
// The guard is what is tested.
#include "lyrsr.h" // NOLINT(readability-duplicate-include)

int main()
{
    return lyrsrGetLibVersion()->minorVersion == 2 ? 0 : 1;
}
