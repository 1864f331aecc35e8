// The kernels of the nine-frame regression of the Aurora front end.
#pragma once

#include "frontend/delta_kernels.hpp"

namespace lyr {

// Frames of 12 cepstra, the zeroth coefficient and the log energy, which become 13 statics: the last two are mixed.
inline constexpr Elem32s auroraInputs = 14;
inline constexpr Elem32s auroraStatics = 13;

// 32-bit sums and products, and right shifts whose counts are taken modulo 32.
struct AuroraFixedArithmetic
{
    using Element = Elem16s;
    Elem32s scaleFactor;
};

// Plain forms have no gains.
struct NoGains
{};

template <class Arithmetic>
struct AuroraForms
{
    DeltaKernel<Arithmetic, NoGains>* plain;
    DeltaKernel<Arithmetic, ColumnGains<typename Arithmetic::Element>>* columns;
};

struct AuroraDeltaKernels
{
    AuroraForms<SingleArithmetic> single;
    AuroraForms<AuroraFixedArithmetic> fixed;
};

LYR_DECLARE_KERNELS(AuroraDeltaKernels, auroraDeltaKernels)

} // namespace lyr
