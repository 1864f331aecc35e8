// Delta features of a whole utterance, column by column from the defining formulas: an index outside the utterance is
// clamped to its first or last frame. Nothing here streams.
#pragma once

#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <vector>

namespace lyr::oracle {

// ------------------------------------------------------------------------------------------------------ 16-bit steps

inline std::int64_t wrapped(std::int64_t x, int bits)
{
    const std::int64_t modulus = std::int64_t{1} << bits;
    const std::int64_t low = ((x % modulus) + modulus) % modulus;
    return low >= modulus / 2 ? low - modulus : low;
}

inline std::int64_t limited16(std::int64_t x)
{
    return std::clamp<std::int64_t>(x, -32768, 32767);
}

// floor(x * 2^-scale), as if with unlimited width, limited to 16 bits. |x| < 2^33.
inline std::int64_t scaled(std::int64_t x, std::int64_t scale)
{
    for (; scale > 0 && x != 0 && x != -1; --scale) {
        x = (x - (((x % 2) + 2) % 2)) / 2;
    }
    for (; scale < 0 && x != 0 && x == limited16(x); ++scale) {
        x *= 2;
    }
    return limited16(x);
}

// ---------------------------------------------------------------------------------------------- one and two frames

struct DeltaForm
{
    int window;        // frames each way
    int order;         // 1: deltas, 2: delta-deltas too
    bool mul;          // gains for each column
    bool wide = false; // 32-bit sums of 16-bit differences
    int scale = 0;
};

inline float difference(float next, float previous)
{
    return next - previous;
}
inline Elem16s difference(Elem16s next, Elem16s previous)
{
    return static_cast<Elem16s>(wrapped(std::int64_t{next} - previous, 16));
}

inline float multiplied(float x, float gain, const DeltaForm& /*form*/)
{
    return x * gain;
}
inline Elem16s multiplied(Elem16s x, Elem16s gain, const DeltaForm& form)
{
    return static_cast<Elem16s>(scaled(std::int64_t{x} * gain, form.scale));
}

inline float slope(float a, float d, float gain, const DeltaForm& /*form*/)
{
    const float once = a + d;
    const float twice = once + d;
    return twice * gain;
}

inline Elem16s slope(Elem16s a, Elem16s d, Elem16s gain, const DeltaForm& form)
{
    const std::int64_t sum =
        form.wide ? a + std::int64_t{2} * d : limited16(std::int64_t{a} + limited16(std::int64_t{2} * d));
    return static_cast<Elem16s>(scaled(wrapped(sum * gain, 32), form.scale));
}

// The differences of one column.
template <class T>
std::vector<T> differences(const std::vector<T>& x, T gain, const DeltaForm& form)
{
    const auto last = static_cast<std::ptrdiff_t>(x.size()) - 1;
    const auto at = [&](std::ptrdiff_t r) {
        return x[static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(r, 0, last))];
    };
    std::vector<T> result(x.size());
    for (std::ptrdiff_t r = 0; r <= last; ++r) {
        const T a = difference(at(r + 1), at(r - 1));
        result[static_cast<std::size_t>(r)] =
            form.window == 1 ? multiplied(a, gain, form) : slope(a, difference(at(r + 2), at(r - 2)), gain, form);
    }
    return result;
}

// The packed feature rows of packed frames. `gains` are those of all columns in Mul forms, else {delta, delta-delta}.
template <class T>
std::vector<T> deltaFeatures(const std::vector<T>& frames, std::size_t width, const std::vector<T>& gains,
                             const DeltaForm& form)
{
    const std::size_t height = frames.size() / width;
    const auto parts = static_cast<std::size_t>(form.order) + 1;
    std::vector<T> rows(height * parts * width);
    for (std::size_t c = 0; c < width; ++c) {
        std::vector<T> column(height);
        for (std::size_t r = 0; r < height; ++r) {
            column[r] = frames[r * width + c];
            if (form.mul) {
                column[r] = multiplied(column[r], gains[c], form);
            }
        }
        for (std::size_t part = 0; part < parts; ++part) {
            if (part > 0) {
                column = differences(column, form.mul ? gains[part * width + c] : gains[part - 1], form);
            }
            for (std::size_t r = 0; r < height; ++r) {
                rows[(r * parts + part) * width + c] = column[r];
            }
        }
    }
    return rows;
}

// -------------------------------------------------------------------------------------------------------- any window

// One column of deltas over `window` frames each way.
inline std::vector<float> evalDelta(const std::vector<float>& x, int window, float gain)
{
    const int height = static_cast<int>(x.size());
    std::vector<float> result(x.size());
    for (int r = 0; r < height; ++r) {
        float sum = 0;
        for (int t = 1; t <= window; ++t) {
            const float right = r >= height - window ? x.back() : x[static_cast<std::size_t>(r + t)];
            const float left = r < window ? x.front() : x[static_cast<std::size_t>(r - t)];
            const float d = right - left;
            const float term = static_cast<float>(t) * d;
            sum = sum + term;
        }
        result[static_cast<std::size_t>(r)] = gain * sum;
    }
    return result;
}

inline std::vector<Elem16s> evalDelta(const std::vector<Elem16s>& x, int window, Elem16s gain, int scale)
{
    const int height = static_cast<int>(x.size());
    std::vector<Elem16s> result(x.size());
    for (int r = 0; r < height; ++r) {
        std::int64_t sum = 0;
        for (int t = 1; t <= window; ++t) {
            const std::int64_t right = r >= height - window ? x.back() : x[static_cast<std::size_t>(r + t)];
            const std::int64_t left = r < window ? x.front() : x[static_cast<std::size_t>(r - t)];
            sum = wrapped(sum + t * wrapped(right - left, 16), 32);
        }
        result[static_cast<std::size_t>(r)] = static_cast<Elem16s>(scaled(wrapped(gain * sum, 32), scale));
    }
    return result;
}

// ------------------------------------------------------------------------------------------------------------ Aurora

inline constexpr std::size_t auroraInputs = 14;
inline constexpr std::size_t auroraStatics = 13;
inline constexpr float auroraDeltaDelta[9] = {1.0F,       0.25F,      -0.285714F, -0.607143F, -0.714286F,
                                              -0.607143F, -0.285714F, 0.25F,      1.0F};

inline float auroraMix(float c0, float logEnergy)
{
    const float share = c0 * 0.6F;
    const float mean = share / 23.0F;
    const float energy = logEnergy * 0.4F;
    return mean + energy;
}

inline float auroraDeltaSum(const float* x) // x[0] ... x[8]
{
    float sum = 0.0F - x[0];
    for (int k = 1; k < 8; ++k) {
        if (k != 4) { // the centre has no term
            const float term = 0.25F * static_cast<float>(k - 4) * x[k];
            sum = sum + term;
        }
    }
    return sum + x[8];
}

inline float auroraDeltaDeltaSum(const float* x)
{
    float sum = x[0];
    for (int k = 1; k < 8; ++k) {
        const float term = auroraDeltaDelta[k] * x[k];
        sum = sum + term;
    }
    return sum + x[8];
}

// x >> (scale modulo 32), limited to 16 bits.
inline Elem16s auroraShifted(std::int64_t x, std::int64_t scale)
{
    return static_cast<Elem16s>(scaled(x, ((scale % 32) + 32) % 32));
}

inline std::int64_t truncated32(float x)
{
    return std::clamp<std::int64_t>(static_cast<std::int64_t>(x), INT32_MIN, INT32_MAX);
}

// 39 columns for each frame of 14. `gains` is empty in the plain forms.
template <class T>
std::vector<T> auroraFeatures(const std::vector<T>& frames, const std::vector<T>& gains, int scale)
{
    constexpr bool isFixed = std::is_same_v<T, Elem16s>;
    const std::size_t height = frames.size() / auroraInputs;
    const bool mul = !gains.empty();
    std::vector<T> rows(height * 3 * auroraStatics);
    const auto cell = [&](std::size_t r, std::size_t part, std::size_t c) -> T& {
        return rows[(r * 3 + part) * auroraStatics + c];
    };
    for (std::size_t r = 0; r < height; ++r) {
        const T* const src = frames.data() + r * auroraInputs;
        for (std::size_t c = 0; c < auroraStatics; ++c) {
            const float mix = auroraMix(static_cast<float>(src[12]), static_cast<float>(src[13]));
            if constexpr (isFixed) {
                const std::int64_t gain = mul ? gains[c] : 1;
                cell(r, 0, c) = auroraShifted(
                    c < 12 ? gain * src[c] : static_cast<std::int64_t>(static_cast<float>(gain) * mix), scale);
            } else {
                cell(r, 0, c) = (c < 12 ? src[c] : mix) * (mul ? gains[c] : 1.0F);
            }
        }
    }
    for (std::size_t r = 0; r < height; ++r) {
        for (std::size_t c = 0; c < auroraStatics; ++c) {
            float x[9];
            for (int k = 0; k < 9; ++k) {
                const auto row = std::clamp<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(r) + k - 4, 0,
                                                            static_cast<std::ptrdiff_t>(height) - 1);
                x[k] = static_cast<float>(cell(static_cast<std::size_t>(row), 0, c));
            }
            if constexpr (isFixed) {
                std::int64_t sum = 0;
                for (int k = 0; k < 9; ++k) {
                    sum += (k - 4) * static_cast<std::int64_t>(x[k]);
                }
                const std::int64_t gain = mul ? gains[13 + c] : 1;
                const float second = static_cast<float>(mul ? gains[26 + c] : Elem16s{1}) * auroraDeltaDeltaSum(x);
                cell(r, 1, c) = auroraShifted(wrapped(gain * sum, 32), std::int64_t{scale} + 2);
                cell(r, 2, c) = auroraShifted(truncated32(second), scale);
            } else {
                cell(r, 1, c) = auroraDeltaSum(x) * (mul ? gains[13 + c] : 1.0F);
                cell(r, 2, c) = auroraDeltaDeltaSum(x) * (mul ? gains[26 + c] : 1.0F);
            }
        }
    }
    return rows;
}

} // namespace lyr::oracle
