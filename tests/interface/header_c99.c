/* The public header as a C99 program sees it. */

#include "lyrsr.h"

#include <stddef.h>

typedef char elem_sizes[sizeof(Elem8u) == 1 && sizeof(Elem16u) == 2 && sizeof(Elem16s) == 2 && sizeof(Elem32s) == 4 &&
                                sizeof(Elem64s) == 8 && sizeof(Elem32f) == 4 && sizeof(Elem64f) == 8 &&
                                sizeof(Elem32fc) == 8 && sizeof(Elem32sc) == 8 && sizeof(Status) == 4
                            ? 1
                            : -1];

/* Every status value, as callers have compiled it in. */
#define STATUS_IS(name, value) extern char status_value[(name) == (value) ? 1 : -1]
STATUS_IS(StsNoErr, 0);
STATUS_IS(StsFail, -2);
STATUS_IS(StsBadArg, -5);
STATUS_IS(StsSize, -6);
STATUS_IS(StsRange, -7);
STATUS_IS(StsNullPtr, -8);
STATUS_IS(StsMemAlloc, -9);
STATUS_IS(StsDivByZero, -10);
STATUS_IS(StsFftOrder, -15);
STATUS_IS(StsFftFlag, -16);
STATUS_IS(StsContext, -17);
STATUS_IS(StsStep, -37);
STATUS_IS(StsNoConvergence, -65);
STATUS_IS(StsCdbkFlag, -66);
STATUS_IS(StsUpdateFactor, -67);
STATUS_IS(StsFBankNotReady, -69);
STATUS_IS(StsFBankFlag, -70);
STATUS_IS(StsFBankFreq, -71);
STATUS_IS(StsLspRoots, -114);
STATUS_IS(StsLspOrder, -115);
STATUS_IS(StsUnstable, -116);
STATUS_IS(StsIllConditioned, -117);
STATUS_IS(StsLenRange, -119);
STATUS_IS(StsCdbkHint, -9999);
STATUS_IS(StsWarnSqrtNeg, 3);
STATUS_IS(StsWarnZero, 4);
STATUS_IS(StsWarnOverflow, 6);
STATUS_IS(StsWarnInf, 7);
STATUS_IS(StsWarnNan, 8);
STATUS_IS(StsWarnUpdate11, 11);
STATUS_IS(StsWarnUpdate16, 16);
STATUS_IS(StsWarnCdbkSize, 31);

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
