// The kernels of the evaluation of filter banks.
#pragma once

#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

// What an evaluation reads of a bank. A left row has weights for its lower centre and for `top` bins above it, a right
// row for `top` bins.
template <class Weight>
struct BankView
{
    const Elem32s* centers;
    const Weight* const* left;
    const Weight* const* right;
    Elem32s nFilter;
    Elem32s top;  // the last bin of the spectrum
    bool inOrder; // areInOrder of the centres
};

// dst[i-1] = sum over k from centre i-1 to i of left[i-1][k - centre i-1] * src[k]
//          + sum over k from centre i + 1 to centre i+1 of right[i-1][k - centre i - 1] * src[k]
using BankKernel = void(const BankView<Elem32f>& bank, const Elem32f* src, Elem32f* dst);

// The same in 64 bits, the sum divided by 2^shift as the member says.
template <class S, class D>
using IntegerBankKernel = void(const BankView<Elem32s>& bank, const S* src, D* dst, Elem32s shift);

struct FilterBankKernels
{
    BankKernel* singles;
    IntegerBankKernel<Elem16s, Elem16s>* from16sTo16s;
    IntegerBankKernel<Elem16s, Elem32s>* from16sTo32s;
    IntegerBankKernel<Elem32s, Elem16s>* magnitudesTo16s; // products wrap at 32 bits
    IntegerBankKernel<Elem32s, Elem32s>* magnitudesTo32s;
    IntegerBankKernel<Elem32s, Elem32s>* from32sTo32s; // weights with 30 fraction bits
};

LYR_DECLARE_KERNELS(FilterBankKernels, filterBankKernels)

} // namespace lyr
