// Filter banks, plainly: centres and the weights of every filter, formula by formula, and energies from the dense
// matrix of weights.
//
// f32() marks each rounding to single that is part of a result; all else is in double.
#pragma once

#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

namespace lyr::oracle {

inline float f32(double x)
{
    return static_cast<float>(x);
}

// Entry i of `left` and `right` belongs to filter i, counted from 1.
template <class W>
struct Bank
{
    std::int64_t bins = 0; // of the spectrum
    std::vector<std::int64_t> c;
    std::vector<std::vector<W>> left;
    std::vector<std::vector<W>> right;

    Bank() = default;
    Bank(std::int64_t fftLen, int nFilter)
        : bins(fftLen / 2 + 1), c(static_cast<std::size_t>(nFilter) + 2), left(c.size()), right(c.size())
    {}
    [[nodiscard]] int filters() const { return static_cast<int>(c.size()) - 2; }

    // Sides of the lengths that the centres ask for, all zero.
    void clearSides()
    {
        for (std::size_t i = 1; i + 1 < c.size(); ++i) {
            left[i].assign(static_cast<std::size_t>(std::max<std::int64_t>(c[i] - c[i - 1] + 1, 0)), W{0});
            right[i].assign(static_cast<std::size_t>(std::max<std::int64_t>(c[i + 1] - c[i], 0)), W{0});
        }
    }

    // The weight of bin k on the left or the right side of filter i.
    W& leftAt(std::size_t i, std::int64_t k) { return left[i][static_cast<std::size_t>(k - c[i - 1])]; }
    W& rightAt(std::size_t i, std::int64_t k) { return right[i][static_cast<std::size_t>(k - c[i] - 1)]; }

    // The matrix of weights, filters by bins. A side is cut to what its row holds: a weight for each bin on the left,
    // one less on the right.
    [[nodiscard]] std::vector<std::vector<W>> dense() const
    {
        std::vector<std::vector<W>> m(left.size(), std::vector<W>(static_cast<std::size_t>(bins), W{0}));
        for (std::size_t i = 1; i + 1 < c.size(); ++i) {
            const auto row = static_cast<std::size_t>(bins);
            for (std::size_t j = 0; j < std::min(left[i].size(), row); ++j) {
                const std::int64_t k = c[i - 1] + static_cast<std::int64_t>(j);
                if (k >= 0 && k < bins) {
                    m[i][static_cast<std::size_t>(k)] += left[i][j];
                }
            }
            for (std::size_t j = 0; j < std::min(right[i].size(), row - 1); ++j) {
                const std::int64_t k = c[i] + 1 + static_cast<std::int64_t>(j);
                if (k >= 0 && k < bins) {
                    m[i][static_cast<std::size_t>(k)] += right[i][j];
                }
            }
        }
        return m;
    }
};

inline std::int64_t roundedLength(std::int64_t request)
{
    std::int64_t n = 2;
    while (n < request) {
        n *= 2;
    }
    return n;
}

inline int orderOf(std::int64_t length)
{
    int order = 0;
    while ((std::int64_t{1} << order) < length) {
        ++order;
    }
    return order;
}

inline std::int64_t toBin(float x, int flag)
{
    return static_cast<std::int64_t>((flag & 2) != 0 ? std::nearbyint(x) : std::trunc(x));
}

// Weights from quotients of mel values and of bin numbers.
template <class W>
W melQuotient(double part, double whole);
template <>
inline float melQuotient<float>(double part, double whole)
{
    return f32(part / whole);
}
template <>
inline std::int32_t melQuotient<std::int32_t>(double part, double whole)
{
    const float x = f32(part * 16384.0 / whole);
    return std::isfinite(x) ? static_cast<std::int32_t>(std::trunc(x)) : std::numeric_limits<std::int32_t>::min();
}

template <class W>
W binQuotient(std::int64_t part, std::int64_t whole);
template <>
inline float binQuotient<float>(std::int64_t part, std::int64_t whole)
{
    return f32(static_cast<double>(part) / static_cast<double>(whole));
}
template <>
inline std::int32_t binQuotient<std::int32_t>(std::int64_t part, std::int64_t whole)
{
    return static_cast<std::int32_t>(part * 16384 / whole);
}

struct Band
{
    float fs;
    float low;
    float high;
    float mul;
    float div;

    [[nodiscard]] float mel(double f) const { return f32(double(mul) * std::log(1.0 + f / double(div))); }
    [[nodiscard]] float melOfBin(std::int64_t k, std::int64_t n) const
    {
        return mel(static_cast<double>(k) * (double(fs) / static_cast<double>(n)));
    }
};

template <class W>
void binSides(Bank<W>& b, std::size_t i)
{
    const std::int64_t w = b.c[i] - b.c[i - 1] + 1;
    const std::int64_t v = b.c[i + 1] - b.c[i] + 1;
    for (std::int64_t k = b.c[i - 1]; k <= b.c[i]; ++k) {
        b.leftAt(i, k) = binQuotient<W>(k - b.c[i - 1] + 1, w);
    }
    for (std::int64_t k = b.c[i] + 1; k <= b.c[i + 1]; ++k) {
        b.rightAt(i, k) = binQuotient<W>(b.c[i + 1] + 1 - k, v);
    }
}

template <class W>
Bank<W> melBank(std::int64_t request, int nFilter, const Band& band, int flag)
{
    const std::int64_t n = roundedLength(request);
    Bank<W> b(n, nFilter);
    const float melLow = band.mel(band.low);
    const float melRange = f32(double(band.mel(band.high)) - melLow);
    std::vector<float> mel(b.c.size());
    for (std::size_t i = 0; i < mel.size(); ++i) {
        mel[i] = f32(double(f32(double(i))) * melRange / f32(double(nFilter) + 1) + melLow);
        const float factor = f32(double(n) / band.fs * band.div);
        b.c[i] = toBin(factor * f32(std::exp(double(mel[i]) / band.mul) - 1.0), flag);
    }
    b.clearSides();
    for (std::size_t i = 1; i + 1 < mel.size(); ++i) {
        if ((flag & 2) != 0) {
            binSides(b, i);
            continue;
        }
        for (std::int64_t k = b.c[i - 1] + 1; k <= b.c[i]; ++k) {
            b.leftAt(i, k) = melQuotient<W>(double(band.melOfBin(k, n)) - mel[i - 1], double(mel[i]) - mel[i - 1]);
        }
        for (std::int64_t k = b.c[i] + 1; k <= b.c[i + 1]; ++k) {
            b.rightAt(i, k) = melQuotient<W>(double(mel[i + 1]) - band.melOfBin(k, n), double(mel[i + 1]) - mel[i]);
        }
    }
    return b;
}

template <class W>
W notNegative(W w)
{
    return w < 0 ? W{0} : w;
}

template <class W>
Bank<W> melLinearBank(std::int64_t request, int nFilter, const Band& band, float highLin, int nLinear, int flag)
{
    const std::int64_t n = roundedLength(request);
    const double binsPerHertz = double(n) / band.fs;
    Bank<W> b(n, nFilter);
    const bool all = nLinear == nFilter;
    const int linearEdges = all ? nFilter + 1 : nLinear;
    std::vector<float> f(b.c.size());
    for (int i = 0; i <= linearEdges; ++i) {
        const auto at = static_cast<std::size_t>(i);
        f[at] = f32(double(i) * (double(highLin) - band.low) / linearEdges + band.low);
        b.c[at] = toBin(f32(f[at] * binsPerHertz), flag);
    }
    if (!all) {
        const double melLin = band.mul * std::log(1.0 + double(highLin) / band.div);
        const double range = band.mel(band.high) - melLin;
        for (int i = nLinear; i <= nFilter + 1; ++i) {
            const float mel = f32(double(i - nLinear) * range / (nFilter - nLinear + 1) + melLin);
            const double factor = double(n) / band.fs * band.div;
            b.c[static_cast<std::size_t>(i)] = toBin(f32(factor * f32(std::exp(double(mel) / band.mul) - 1.0)), flag);
        }
    }
    b.clearSides();
    const auto edgeMel = [&](std::size_t i) { return double(band.mul) * f32(std::log(1.0 + double(f[i]) / band.div)); };
    for (std::size_t i = 1; i + 1 < b.c.size(); ++i) {
        const bool linear = i <= static_cast<std::size_t>(nLinear);
        if ((flag & 2) != 0 || !linear) {
            binSides(b, i);
            continue;
        }
        for (std::int64_t k = b.c[i - 1]; k <= b.c[i]; ++k) {
            b.leftAt(i, k) =
                notNegative(melQuotient<W>(double(band.melOfBin(k, n)) - edgeMel(i - 1), edgeMel(i) - edgeMel(i - 1)));
        }
        const bool seam = !all && i == static_cast<std::size_t>(nLinear);
        for (std::int64_t k = b.c[i] + 1; k <= b.c[i + 1]; ++k) {
            const double part = seam ? double(b.c[i + 1]) : edgeMel(i + 1);
            const double whole = seam ? double(b.c[i + 1] - b.c[i]) : edgeMel(i + 1) - edgeMel(i);
            b.rightAt(i, k) = notNegative(melQuotient<W>(part - band.melOfBin(k, n), whole));
        }
    }
    return b;
}

// ------------------------------------------------------------------------------------------------------------- Aurora

template <class W>
struct AuroraWeight;
template <>
struct AuroraWeight<float>
{
    static float up(std::int64_t j, std::int64_t w) { return f32(double(j) / double(w)); }
    static float down(std::int64_t j, std::int64_t w) { return f32(1.0 - double(j) / double(w)); }
    static float over(float x, double s) { return f32(x / s); }
    using Sum = double;
};
template <>
struct AuroraWeight<std::int32_t>
{
    static std::int32_t up(std::int64_t j, std::int64_t w) { return static_cast<std::int32_t>(j * 16384 / w); }
    static std::int32_t down(std::int64_t j, std::int64_t w)
    {
        return static_cast<std::int32_t>(16384 - (j << 14) / w);
    }
    static std::int32_t over(std::int32_t x, std::int64_t s)
    {
        return static_cast<std::int32_t>((std::int64_t{x} << 14) / s);
    }
    using Sum = std::int64_t;
};

inline std::vector<std::int64_t> auroraCenters(int count, float low, double parts)
{
    const Band band{8000.0F, low, 4000.0F, 2595.0F, 700.0F};
    const float melLow = band.mel(low);
    const float range = f32(double(band.mel(4000.0)) - melLow);
    std::vector<std::int64_t> c;
    for (int i = 0; i < count; ++i) {
        const float mel = f32(double(i) * range / parts + melLow);
        const double bin = 128.0 / 8000.0 * 700.0 * f32(std::exp(double(mel) / 2595.0F) - 1.0);
        c.push_back(toBin(f32(bin > 64.0 ? 64.0 : bin), 2));
    }
    return c;
}

// Row r of the low bank, before the shift of the centres: sides as they are stored.
template <class W>
Bank<W> lowAuroraBank()
{
    using A = AuroraWeight<W>;
    const std::vector<std::int64_t> old = auroraCenters(27, 1.0F, 24.0);
    std::vector<std::vector<W>> left(27, std::vector<W>(70, W{0}));
    std::vector<std::vector<W>> right = left;
    {
        const std::int64_t width = old[1] - old[0];
        typename A::Sum s = 0;
        for (std::int64_t j = 0; j < width; ++j) {
            s += left[0][static_cast<std::size_t>(j)] = A::down(j, width);
        }
        for (std::int64_t j = old[0] + 1; j < width; ++j) {
            s += right[0][static_cast<std::size_t>(j - old[0] - 1)] = A::down(j, width);
        }
        for (W& w : left[0]) {
            w = A::over(w, s);
        }
        for (W& w : right[0]) {
            w = A::over(w, s);
        }
    }
    for (std::size_t i = 1; i <= 25; ++i) {
        typename A::Sum s = 0;
        for (std::int64_t k = old[i - 1] + 1; k <= old[i]; ++k) {
            s += left[i][static_cast<std::size_t>(k - old[i - 1])] = A::up(k - old[i - 1], old[i] - old[i - 1]);
        }
        for (std::int64_t k = old[i] + 1; k <= old[i + 1] - 1; ++k) {
            s += right[i][static_cast<std::size_t>(k - old[i] - 1)] = A::down(k - old[i], old[i + 1] - old[i]);
        }
        for (std::size_t j = 0; s != 0 && j < 70; ++j) {
            left[i][j] = A::over(left[i][j], s);
            right[i][j] = A::over(right[i][j], s);
        }
    }
    Bank<W> b(128, 25);
    b.c[0] = 0;
    std::copy(old.begin(), old.begin() + 26, b.c.begin() + 1);
    b.clearSides();
    for (std::size_t e = 1; e <= 25; ++e) { // filter e reads row e - 1
        std::copy_n(left[e - 1].begin(), b.left[e].size(), b.left[e].begin());
        std::copy_n(right[e - 1].begin(), b.right[e].size(), b.right[e].begin());
    }
    return b;
}

template <class W>
Bank<W> highAuroraBank()
{
    using A = AuroraWeight<W>;
    Bank<W> b(128, 3);
    b.c = auroraCenters(5, 80.0F, 4.0);
    b.clearSides();
    for (std::size_t i = 1; i <= 3; ++i) {
        for (std::int64_t k = b.c[i - 1] + 1; k <= b.c[i]; ++k) {
            b.leftAt(i, k) = A::up(k - b.c[i - 1], b.c[i] - b.c[i - 1]);
        }
        for (std::int64_t k = b.c[i] + 1; k <= b.c[i + 1] - 1; ++k) {
            b.rightAt(i, k) = A::down(k - b.c[i], b.c[i + 1] - b.c[i]);
        }
    }
    return b;
}

// --------------------------------------------------------------------------------------------------------- evaluation

struct Energy
{
    long double sum;
    long double magnitude; // of the terms
    int terms;
};

inline std::vector<Energy> energies(const Bank<float>& bank, const float* src)
{
    std::vector<Energy> result;
    const auto dense = bank.dense();
    for (std::size_t i = 1; i + 1 < bank.c.size(); ++i) {
        Energy e{0, 0, 0};
        for (std::size_t k = 0; k < dense[i].size(); ++k) {
            if (dense[i][k] != 0.0F) {
                const long double term = static_cast<long double>(dense[i][k]) * src[k];
                e.sum += term;
                e.magnitude += std::fabs(term);
                ++e.terms;
            }
        }
        result.push_back(e);
    }
    return result;
}

enum class Product
{
    Wide,
    Wrapped,
    ShiftedBy8
};

// Modulo 2^64.
template <class S>
std::vector<std::int64_t> sums(const Bank<std::int32_t>& bank, const S* src, Product product)
{
    std::vector<std::int64_t> result;
    const auto dense = bank.dense();
    for (std::size_t i = 1; i + 1 < bank.c.size(); ++i) {
        std::uint64_t sum = 0;
        for (std::size_t k = 0; k < dense[i].size(); ++k) {
            const std::int64_t exact = std::int64_t{dense[i][k]} * src[k];
            std::int64_t term = exact;
            if (product == Product::Wrapped) {
                term = static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uint64_t>(exact)));
            } else if (product == Product::ShiftedBy8) {
                term = exact >> 8;
            }
            sum += static_cast<std::uint64_t>(term);
        }
        result.push_back(static_cast<std::int64_t>(sum));
    }
    return result;
}

// x / 2^shift toward minus infinity, or x * 2^-shift, limited to [low, high]; for |x| below 2^62 or shifts below 0 by
// any amount.
inline std::int64_t scaled(std::int64_t x, std::int64_t shift, std::int64_t low, std::int64_t high)
{
    for (; shift > 0 && x != 0 && x != -1; --shift) {
        x >>= 1;
    }
    for (; shift < 0 && x != 0 && x > low && x < high; ++shift) {
        x *= 2;
    }
    return std::clamp(x, low, high);
}

// ---------------------------------------------------------------------------------------------------- integer bank

// Q22 in 64 bits, wrapping.
inline std::int64_t lnQ22(std::int64_t v)
{
    int e = 0;
    for (std::int64_t t = v; t >= 2; t >>= 1) {
        ++e;
    }
    std::int64_t m = v;
    for (int i = e; i > 29; --i) {
        m >>= 1;
    }
    for (int i = e; i < 29; ++i) {
        m *= 2;
    }
    std::int64_t frac = 0;
    for (int i = 0; i < 31; ++i) {
        m = (m * m) >> 29;
        frac = 2 * frac;
        if (m >= 1073741824) {
            m >>= 1;
            frac |= 1;
        }
    }
    return ((e - 22) * std::int64_t{1488522236} + ((frac * 1488522236) >> 31)) >> 9;
}

inline std::int64_t roundToNearest(long double x)
{
    return static_cast<std::int64_t>(std::nearbyint(x));
}

inline std::int64_t expQ22(std::int64_t q)
{
    const auto product = static_cast<std::int64_t>(static_cast<std::uint64_t>(q) * 0xB8AA3B29U);
    const std::int64_t t = product >> 22;
    const std::int64_t ip = t >> 31;
    std::int64_t rem = ((t & 0x7FFFFFFF) * 1488522236) >> 31;
    std::int64_t y = std::int64_t{1} << 31;
    for (int k = 0; k < 32; ++k) {
        const long double s = std::ldexp(1.0L, -(k + 1));
        const std::int64_t a = k == 31 ? 0 : roundToNearest(std::log1p(s) * 2147483648.0L);
        const std::int64_t b = k == 31 ? -1 : roundToNearest(std::log1p(-s) * 2147483648.0L);
        if (rem > a) {
            rem -= a;
            y += y >> (k + 1);
        } else if (rem < b) {
            rem -= b;
            y -= y >> (k + 1);
        }
    }
    for (std::int64_t i = ip; i < 9 && y != 0; ++i) {
        y >>= 1;
    }
    for (std::int64_t i = 9; i < ip && y < (std::int64_t{1} << 31); ++i) {
        y *= 2;
    }
    return y >= (std::int64_t{1} << 31) ? 0x7FFFFFFF : y;
}

struct IntegerBand
{
    std::int32_t fs;
    std::int32_t low;
    std::int32_t high;
    std::int32_t mul;
    std::int32_t div;
};

inline std::int64_t wrapMul(std::int64_t a, std::int64_t b)
{
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

inline Bank<std::int32_t> integerBank(std::int64_t request, int nFilter, const IntegerBand& band)
{
    const std::int64_t n = roundedLength(request);
    Bank<std::int32_t> b(n, nFilter);
    const std::int64_t div22 = std::int64_t{band.div} * 128;
    const auto mel = [&](std::int64_t f) {
        return (std::int64_t{band.mul} * (lnQ22(f * 4194304 + div22) - lnQ22(div22))) >> 15;
    };
    const std::int64_t low = mel(band.low);
    const std::int64_t range = mel(band.high) - low;
    const std::int64_t factor = wrapMul(n * 4194304 / band.fs, div22) >> 22;
    for (std::size_t i = 0; i < b.c.size(); ++i) {
        const std::int64_t m = (range * static_cast<std::int64_t>(i) + low * (nFilter + 1)) / (nFilter + 1);
        const std::int64_t q = wrapMul(m, 4194304) / (std::int64_t{band.mul} * 128);
        const std::int64_t bin = wrapMul(factor, expQ22(q) - 4194304) >> 22;
        b.c[i] = (bin >> 22) + ((bin & (1 << 21)) != 0 ? 1 : 0);
    }
    b.clearSides();
    for (std::size_t i = 1; i + 1 < b.c.size(); ++i) {
        const std::int64_t w = b.c[i] - b.c[i - 1] + 1;
        const std::int64_t v = b.c[i + 1] - b.c[i] + 1;
        for (std::int64_t k = b.c[i - 1]; k <= b.c[i]; ++k) {
            b.leftAt(i, k) = static_cast<std::int32_t>(((k - b.c[i - 1] + 1) << 30) / w);
        }
        for (std::int64_t k = b.c[i] + 1; k <= b.c[i + 1]; ++k) {
            b.rightAt(i, k) = static_cast<std::int32_t>(((b.c[i + 1] + 1 - k) << 30) / v);
        }
    }
    return b;
}

} // namespace lyr::oracle
