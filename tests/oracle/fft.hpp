// The spectrum of a real vector in double precision, and where its elements stand in the three layouts.
#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>
#include <vector>

namespace lyr::oracle {

using Spectrum = std::vector<std::complex<double>>;

// exp(sign * 2*pi*i * k / n).
inline std::complex<double> phasor(int sign, std::size_t k, std::size_t n)
{
    return std::polar(1.0, sign * 2.0 * std::numbers::pi * static_cast<double>(k % n) / static_cast<double>(n));
}

// X[k] = sum over n of x[n] * exp(sign * 2*pi*i * n * k / N), as it stands.
inline Spectrum transformDirectly(const Spectrum& x, int sign)
{
    Spectrum result(x.size());
    for (std::size_t k = 0; k < x.size(); ++k) {
        for (std::size_t n = 0; n < x.size(); ++n) {
            result[k] += x[n] * phasor(sign, n * k, x.size());
        }
    }
    return result;
}

// The same by halves, for the long ones.
inline Spectrum transform(const Spectrum& x, int sign)
{
    const std::size_t n = x.size();
    if (n <= 16) {
        return transformDirectly(x, sign);
    }
    Spectrum even(n / 2);
    Spectrum odd(n / 2);
    for (std::size_t i = 0; i < n / 2; ++i) {
        even[i] = x[2 * i];
        odd[i] = x[2 * i + 1];
    }
    even = transform(even, sign);
    odd = transform(odd, sign);
    Spectrum result(n);
    for (std::size_t k = 0; k < n / 2; ++k) {
        const std::complex<double> t = phasor(sign, k, n) * odd[k];
        result[k] = even[k] + t;
        result[k + n / 2] = even[k] - t;
    }
    return result;
}

// The layouts, written out from their tables: R0 R1 I1 ... R(N/2); R0 R(N/2) R1 I1 ...; R0 0 R1 I1 ... R(N/2) 0.
template <class T>
std::vector<double> ccs(const std::vector<std::complex<T>>& x)
{
    std::vector<double> v;
    for (std::size_t k = 0; k <= x.size() / 2; ++k) {
        v.push_back(static_cast<double>(x[k].real()));
        v.push_back(k == 0 || 2 * k == x.size() ? 0.0 : static_cast<double>(x[k].imag()));
    }
    return v;
}

template <class T>
std::vector<T> packFromCcs(const std::vector<T>& x)
{
    const std::size_t n = x.size() == 2 ? 1 : x.size() - 2;
    std::vector<T> v = {x[0]};
    for (std::size_t i = 2; i <= n && n > 1; ++i) {
        v.push_back(x[i]);
    }
    return v;
}

template <class T>
std::vector<T> permFromCcs(const std::vector<T>& x)
{
    const std::size_t n = x.size() == 2 ? 1 : x.size() - 2;
    std::vector<T> v = {x[0]};
    if (n > 1) {
        v.push_back(x[n]);
    }
    for (std::size_t i = 2; i < n; ++i) {
        v.push_back(x[i]);
    }
    return v;
}

// All N elements of the spectrum that a Pack vector tells: X[N-k] is the conjugate of X[k].
inline Spectrum spectrumOfPack(const std::vector<float>& pack)
{
    const std::size_t n = pack.size();
    Spectrum x(n);
    x[0] = static_cast<double>(pack[0]);
    for (std::size_t k = 1; 2 * k < n; ++k) {
        x[k] = {static_cast<double>(pack[2 * k - 1]), static_cast<double>(pack[2 * k])};
        x[n - k] = std::conj(x[k]);
    }
    if (n > 1) {
        x[n / 2] = static_cast<double>(pack[n - 1]);
    }
    return x;
}

} // namespace lyr::oracle
