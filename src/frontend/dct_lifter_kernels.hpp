// The kernels of the DCT with liftering.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// What a transform reads of a state record.
struct DctLifter
{
    Elem32f* const* rows; // row 0 is all ones
    const Elem32f* weights;
    Elem32s lenDCT;
    Elem32s lenCepstrum;
    bool hasC0;
};

// dst[i - 1] = weights[i] * (src, rows[i]) for i = 1 ... lenCepstrum, and with hasC0 index 0 behind them.
template <class S>
using DctLifterKernel = void(DctLifter lifter, const S* src, Elem32f* dst);

struct DctLifterKernels
{
    Twins<DctLifterKernel<Elem32f>> single;
    DctLifterKernel<Elem16s>* from16s;
    DctLifterKernel<Elem32s>* from32s;
};

LYR_DECLARE_KERNELS(DctLifterKernels, dctLifterKernels)

} // namespace lyr
