// The state of a DCT with liftering. Tools read the fields in this order.
#pragma once

#include "lyrsr.h"

struct DCTLifterState_32f
{
    Elem32s nLifter; // -1 where the caller gave the weights
    Elem32s lenDCT;
    Elem32s lenCepstrum; // without the zeroth coefficient
    Elem32s hasC0;
    Elem32f* pLifter; // lenCepstrum + 1 weights; entry i belongs to cepstral index i
    Elem32f** pRows;  // lenCepstrum + 1 rows of lenDCT cosines, each at a multiple of 32 bytes, zeros behind them
};

struct DCTLifterState_16s
{
    Elem32s nLifter;
    Elem32s lenDCT;
    Elem32s lenCepstrum;
    Elem32s hasC0;
    Elem32f* pLifter;
    Elem32f* pTmp; // lenCepstrum + 1 singles: the cepstra before they are rounded
    Elem32f** pRows;
};
