/* The public header as a C99 program sees it. */

#include "lyrsr.h"

#include <stddef.h>

typedef char elem_sizes[sizeof(Elem8u) == 1 && sizeof(Elem16u) == 2 && sizeof(Elem16s) == 2 && sizeof(Elem32s) == 4 &&
                                sizeof(Elem64s) == 8 && sizeof(Elem32f) == 4 && sizeof(Elem64f) == 8 &&
                                sizeof(Elem32fc) == 8 && sizeof(Elem32sc) == 8 && sizeof(Status) == 4
                            ? 1
                            : -1];

int main(void)
{
    const LibVersion* version = lyrsrGetLibVersion();
    Elem32f* v = lyrsMalloc_32f(5);
    Elem32f score = 0;
    Status status;
    int i;

    if (version == NULL || version->majorVersion != 5 || v == NULL) {
        return 1;
    }
    for (i = 0; i < 5; ++i) {
        v[i] = 1.0F;
    }
    status = lyrsLogGaussSingle_32f(v, v, v, 5, &score, 2.0F);
    lyrsFree(v);
    return status == StsNoErr && score == 2.0F && sizeof(elem_sizes) == 1 ? 0 : 1;
}
