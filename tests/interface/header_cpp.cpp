// The public header as a C++ program sees it, included twice.

#include "lyrsr.h"
#include "lyrsr.h" // NOLINT(readability-duplicate-include): the guard is what is tested

int main()
{
    return lyrsrGetLibVersion()->minorVersion == 2 ? 0 : 1;
}
