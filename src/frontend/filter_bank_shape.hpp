// The mel scale, and the sides of a triangle: what the constructions of filter banks share.
//
// Between two roundings to single precision that are part of the result the arithmetic is in double. Weights are
// singles, or integers with 14 fraction bits that come from the same quotients by truncation.
#pragma once

#include "frontend/filter_bank.hpp"

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace lyr {

// mel(f) = mul * ln(1 + f / div), with the natural logarithm whatever the factor (Davis and Mermelstein, IEEE Trans.
// ASSP 28(4), 1980).
class MelScale
{
public:
    MelScale(Elem32f melMul, Elem32f melDiv) noexcept : mul(melMul), div(melDiv) {}

    [[nodiscard]] Elem32f fromHertz(Elem64f hertz) const noexcept
    {
        return static_cast<Elem32f>(mul * std::log(1.0 + hertz / div));
    }

    // f(mel) / div.
    [[nodiscard]] Elem32f relativeHertz(Elem32f mel) const noexcept
    {
        return static_cast<Elem32f>(std::exp(mel / mul) - 1.0);
    }

private:
    Elem64f mul;
    Elem64f div;
};

// Toward zero. What 32 bits do not hold gives the lower limit, as the processor's own conversion does: the quotients of
// a filter without width, which a bank that allows no negative weight then turns into zero.
inline Elem32s truncateWeight(Elem32f x) noexcept
{
    return x > -2147483648.0F && x < 2147483648.0F ? static_cast<Elem32s>(x) : INT32_MIN;
}

// The same for a weight that a caller sets, limited at both ends; NaN gives the lower limit.
inline Elem32s truncateSaturating(Elem32f x) noexcept
{
    return x >= 2147483648.0F ? INT32_MAX : truncateWeight(x);
}

template <class State>
using WeightOf = std::remove_pointer_t<std::remove_pointer_t<decltype(State::pCoefLeft)>>;

inline constexpr Elem32s oneQ14 = 1 << 14;

// A weight that is a quotient of mel values.
template <class Weight>
Weight melWeight(Elem64f part, Elem64f whole) noexcept
{
    if constexpr (std::is_same_v<Weight, Elem32f>) {
        return static_cast<Elem32f>(part / whole);
    } else {
        return truncateWeight(static_cast<Elem32f>(part * Elem64f{oneQ14} / whole));
    }
}

// A weight that is a quotient of numbers of bins.
template <class Weight>
Weight binWeight(Elem64s part, Elem64s whole) noexcept
{
    if constexpr (std::is_same_v<Weight, Elem32f>) {
        return static_cast<Elem32f>(static_cast<Elem64f>(part) / static_cast<Elem64f>(whole));
    } else {
        return static_cast<Elem32s>(part * oneQ14 / whole);
    }
}

template <class Weight>
Weight atLeastZero(Weight w) noexcept
{
    return w < 0 ? Weight{0} : w;
}

// Bins above centre `lower` up to the next centre, below 0 where that is the lower one. Centres beyond the spectrum are
// possible (a rate that is no number, a centre that a caller set): a run ends where the row does.
template <class State>
Elem64s runLength(const State& bank, Elem32s lower) noexcept
{
    return std::min<Elem64s>(Elem64s{bank.pCenters[lower + 1]} - bank.pCenters[lower], bank.fftLen / 2);
}

// The sides of filter i, straight in bins, with a weight above zero at either end: 1/w ... 1 and (v-1)/v ... 1/v.
template <class State>
void shapeByBins(State& bank, Elem32s i) noexcept
{
    using Weight = WeightOf<State>;
    const Elem64s below = Elem64s{bank.pCenters[i]} - bank.pCenters[i - 1];
    const Elem64s above = Elem64s{bank.pCenters[i + 1]} - bank.pCenters[i];
    for (Elem64s j = 0; j <= runLength(bank, i - 1); ++j) {
        bank.pCoefLeft[i - 1][j] = binWeight<Weight>(j + 1, below + 1);
    }
    for (Elem64s j = 0; j < runLength(bank, i); ++j) {
        bank.pCoefRight[i - 1][j] = binWeight<Weight>(above - j, above + 1);
    }
}

// The edges of a bank in bins, to whole bins.
template <class State>
void convertCenters(State& bank, const Elem32f* bins, Elem32s first, Elem32s count) noexcept
{
    static_cast<void>(lyrsConvert_32f32s_Sfs(bins, bank.pCenters + first, count, isBinShaped(bank.flag) ? 1 : 0, 0));
}

// The centres stand: an evaluation may follow. The spare entry makes the right side of an imagined filter nFilter + 1
// empty.
template <class State>
void setReady(State& bank) noexcept
{
    bank.pCenters[bank.nFilter + 2] = bank.pCenters[bank.nFilter + 1];
    bank.inOrder = areInOrder(bank.pCenters, bank.nFilter, bank.fftLen / 2) ? 1 : 0;
    bank.ready = 1;
}

// The mel of bin k.
class BinScale
{
public:
    BinScale(MelScale melScale, Elem32f sampFreq, Elem32s fftLen) noexcept
        : scale(melScale), width(Elem64f{sampFreq} / fftLen)
    {}
    [[nodiscard]] Elem64f mel(Elem64s bin) const noexcept { return scale.fromHertz(static_cast<Elem64f>(bin) * width); }

private:
    MelScale scale;
    Elem64f width;
};

} // namespace lyr
