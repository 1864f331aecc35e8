#include "fft/fft_direct.hpp"

namespace lyr::fft {
namespace {

constexpr float rootHalf = 0.70710678118654752F;

template <int Order>
struct Direct;

template <>
struct Direct<0>
{
    static void forward(const float* x, float* r) { r[0] = x[0]; }
    static void inverse(const float* r, float* x) { x[0] = r[0]; }
};

template <>
struct Direct<1>
{
    static void forward(const float* x, float* r)
    {
        r[0] = x[0] + x[1];
        r[1] = x[0] - x[1];
    }
    static void inverse(const float* r, float* x) { forward(r, x); }
};

template <>
struct Direct<2>
{
    // R0, R2, R1, I1
    static void forward(const float* x, float* r)
    {
        const float even = x[0] + x[2];
        const float odd = x[1] + x[3];
        r[0] = even + odd;
        r[1] = even - odd;
        r[2] = x[0] - x[2];
        r[3] = x[3] - x[1];
    }
    static void inverse(const float* r, float* x)
    {
        const float even = r[0] + r[1];
        const float odd = r[0] - r[1];
        x[0] = even + 2.0F * r[2];
        x[1] = odd - 2.0F * r[3];
        x[2] = even - 2.0F * r[2];
        x[3] = odd + 2.0F * r[3];
    }
};

template <>
struct Direct<3>
{
    // Two transforms of 4 points over the even and the odd samples, joined by exp(-i*pi*k/4). R0, R4, R1, I1, R2, I2,
    // R3, I3.
    static void forward(const float* x, float* r)
    {
        const float even[4] = {x[0], x[2], x[4], x[6]};
        const float odd[4] = {x[1], x[3], x[5], x[7]};
        float e[4];
        float o[4];
        Direct<2>::forward(even, e);
        Direct<2>::forward(odd, o);
        const float re = rootHalf * (o[2] + o[3]);
        const float im = rootHalf * (o[3] - o[2]);
        r[0] = e[0] + o[0];
        r[1] = e[0] - o[0];
        r[2] = e[2] + re;
        r[3] = im + e[3];
        r[4] = e[1];
        r[5] = -o[1];
        r[6] = e[2] - re;
        r[7] = im - e[3];
    }
    static void inverse(const float* r, float* x)
    {
        const float re = r[2] - r[6];
        const float im = r[3] + r[7];
        const float e[4] = {r[0] + r[1], 2.0F * r[4], r[2] + r[6], r[3] - r[7]};
        const float o[4] = {r[0] - r[1], -2.0F * r[5], rootHalf * (re - im), rootHalf * (re + im)};
        float even[4];
        float odd[4];
        Direct<2>::inverse(e, even);
        Direct<2>::inverse(o, odd);
        for (int n = 0; n < 4; ++n) {
            x[2 * n] = even[n];
            x[2 * n + 1] = odd[n];
        }
    }
};

template <int Order, bool Forward, bool Scaled>
void direct(const Elem32f* src, Elem32f* dst, [[maybe_unused]] Elem32f scale) noexcept
{
    constexpr int n = 1 << Order;
    float in[n];
    float out[n];
    for (int i = 0; i < n; ++i) {
        in[i] = src[i];
    }
    if constexpr (Forward) {
        Direct<Order>::forward(in, out);
    } else {
        Direct<Order>::inverse(in, out);
    }
    for (int i = 0; i < n; ++i) {
        dst[i] = Scaled ? out[i] * scale : out[i];
    }
}

} // namespace

const DirectKernel directForward[4][2] = {
    {direct<0, true, false>, direct<0, true, true>},
    {direct<1, true, false>, direct<1, true, true>},
    {direct<2, true, false>, direct<2, true, true>},
    {direct<3, true, false>, direct<3, true, true>},
};
const DirectKernel directInverse[4][2] = {
    {direct<0, false, false>, direct<0, false, true>},
    {direct<1, false, false>, direct<1, false, true>},
    {direct<2, false, false>, direct<2, false, true>},
    {direct<3, false, false>, direct<3, false, true>},
};

} // namespace lyr::fft
