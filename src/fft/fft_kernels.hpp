// The vector kernels of the real transform, for every width.
#pragma once

#include "fft/fft_plan.hpp"
#include "fft/fft_spec.hpp"
#include "frame/select.hpp"
#include "lyrsr.h"

namespace lyr {

struct FftKernels
{
    int lanes; // of the widest vectors
    // With the plan that the tables of the record are laid out for.
    void (*forward)(const FFTSpec_R_32f& spec, const fft::Plan& plan, const Elem32f* src, Elem32f* dst, float* buffer,
                    fft::Layout layout);
    void (*inverse)(const FFTSpec_R_32f& spec, const fft::Plan& plan, const Elem32f* src, Elem32f* dst, float* buffer);
};

LYR_DECLARE_KERNELS(FftKernels, fftKernels)

namespace fft {

// Those for this processor: the tables are laid out by the same choice that runs the transform.
extern const FftKernels kernels;

} // namespace fft
} // namespace lyr
