// Log-addition, log-subtraction and log-sum, one element after another, each step rounded as the function tells.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace lyr::oracle {

// One polynomial of log(1 + exp(d)): coefficients of t = d - start from the highest power down, for d above `above`.
struct Interval
{
    double above;
    double start;
    std::vector<double> coefficients;
};

struct LogAddNumbers
{
    double cutOff;
    double floorTest;
    double floor;
    std::vector<Interval> intervals; // the last one is for every d that is left
};

inline const LogAddNumbers singleNumbers{
    -15.3195879547406,
    -4500000.0,
    -4500000.0,
    {{-2.55,
      0.0,
      {-6.780103715801104e-07, -8.27710395983359e-06, -3.1261214564328406e-05, 2.1955075181092877e-05,
       0.0004062108907165097, 6.910012478334781e-05, -0.005163737400850404, 1.5878560708463796e-05, 0.125002818406354,
       0.5000001923981635, 0.6931471827215062}},
     {-6.8,
      -2.55,
      {-7.083237702375219e-09, -1.8491608098957698e-07, -2.094649399521823e-06, -1.2793327302109763e-05,
       -3.4842057389070787e-05, 0.00010764583059022215, 0.0016847989052690858, 0.009582361774741538,
       0.033592464138937767, 0.07242669818681209, 0.07518323027822499}},
     {0.0,
      -6.8,
      {6.536044962123068e-12, 3.4510675551141127e-10, 8.230386128280675e-09, 1.183290602139997e-07,
       1.157908356720776e-06, 8.25762745567427e-06, 4.458031414389642e-05, 0.00018342101716467817,
       0.0005549481290265323, 0.0011123966452324845, 0.0011131507706311817}}}};

inline const LogAddNumbers doubleNumbers{
    -23.0258509299405,
    -9000000000.0,
    -10000000000.0,
    {{-3.5, 0.0, {2.4223551556971103e-14, 1.2811707930131747e-12,  2.979508062290527e-11,  4.091290155130968e-10,
                  3.717428002038248e-09,  2.3532270503994952e-08,  1.055613856863438e-07,  3.320992500314504e-07,
                  7.091358966640867e-07,  1.0406444519836742e-06,  1.6353412792505214e-06, 3.844457955118119e-06,
                  1.3867656181255913e-06, -2.5487163524155248e-05, 4.065812849423804e-07,  0.0003473626701744988,
                  3.4289110129737e-08,    -0.005208327741081266,   5.587714108476228e-10,  0.12500000002958675,
                  0.5000000000006226,     0.6931471805599475}},
     {-9.0, -3.5, {1.3708407243051937e-19,  9.601624129865304e-18,  3.191870701452749e-16,  6.702281854356589e-15,
                   9.973092519816427e-14,   1.1165229253200852e-12, 9.711578249998531e-12,  6.632489267913665e-11,
                   3.487750749690926e-10,   1.277933984587361e-09,  1.6292813548790022e-09, -1.909513758655842e-08,
                   -1.8820558187982419e-07, -9.461042535100208e-07, -2.209235331735495e-06, 9.625041106025868e-06,
                   0.00014699683220535022,  0.0009831490265710303,  0.004464163447126563,   0.014226511939950807,
                   0.0293122307513593,      0.02975041827262059}},
     {0.0, -9.0, {1.7034225392923792e-27, 3.0781354635598557e-25, 2.6542272637469554e-23, 1.4576061250276504e-21,
                  5.745038767733748e-20,  1.73794899924144e-18,   4.217783891653166e-17,  8.4810302862868775e-16,
                  1.4486369363407485e-14, 2.1432698000428128e-13, 2.7867099954008822e-12, 3.2140356172044866e-11,
                  3.300948845025808e-10,  3.0140517373824124e-09, 2.4295529030919333e-08, 1.7072955802867207e-07,
                  1.0263887628748916e-06, 5.137002703123242e-06,  2.0558151089723745e-05, 6.168967511733263e-05,
                  0.00012339457601536868, 0.00012340218972425103}}}};

// The coefficient table of an interval, and p(t) with every step in Real.
template <class Real>
Real horner(const std::vector<double>& c, Real t)
{
    Real p = static_cast<Real>(c[0]);
    for (std::size_t i = 1; i < c.size(); ++i) {
        volatile Real product = p * t; // volatile: rounded before the addition
        p = product + static_cast<Real>(c[i]);
    }
    return p;
}

// Even and odd powers apart, by t squared.
template <class Real>
Real evenOdd(const std::vector<double>& c, Real t)
{
    Real sum[2] = {0, 0};
    const Real square = t * t;
    for (std::size_t i = 0; i < c.size(); ++i) {
        const std::size_t power = c.size() - 1 - i;
        volatile Real product = sum[power % 2] * square;
        sum[power % 2] = product + static_cast<Real>(c[i]);
    }
    volatile Real odd = sum[1] * t;
    return sum[0] + odd;
}

// d in Difference, which also decides; p(t) by `polynomial` in Real; the sum in Real, rounded to Result.
template <class Result, class Difference, class Real, class Polynomial>
Result logAdd(Result a, Result b, const LogAddNumbers& numbers, Polynomial polynomial)
{
    if (std::isnan(a) || std::isnan(b)) {
        return std::numeric_limits<Result>::quiet_NaN();
    }
    const auto larger = static_cast<Difference>(a < b ? b : a);
    const auto smaller = static_cast<Difference>(a < b ? a : b);
    const Difference d = smaller - larger;
    if (d < static_cast<Difference>(numbers.cutOff)) {
        return static_cast<Result>(
            larger < static_cast<Difference>(numbers.floorTest) ? static_cast<Difference>(numbers.floor) : larger);
    }
    std::size_t k = 0;
    while (k < 2 && !(d > static_cast<Difference>(numbers.intervals[k].above))) {
        ++k;
    }
    const Difference t = d - static_cast<Difference>(numbers.intervals[k].start);
    const Real p = polynomial(numbers.intervals[k].coefficients, static_cast<Real>(t));
    return static_cast<Result>(static_cast<Real>(larger) + p);
}

// By the hints of the single-precision form.
inline float logAddHint(float a, float b, int hint)
{
    switch (hint) {
    case 0:
        return logAdd<float, float, double>(a, b, singleNumbers, evenOdd<double>);
    case 1:
        return logAdd<float, float, float>(a, b, singleNumbers, horner<float>);
    default:
        return logAdd<float, long double, long double>(a, b, singleNumbers, evenOdd<long double>);
    }
}

inline double logAdd64(double a, double b)
{
    return logAdd<double, double, double>(a, b, doubleNumbers, evenOdd<double>);
}

// log(exp(a) + exp(b)) itself.
inline long double exactLogAdd(long double a, long double b)
{
    const long double m = a < b ? b : a;
    return m + std::log1p(std::exp((a < b ? a : b) - m));
}

// The order of the log-sum: `lanes` accumulators from a length of `from`, folded by halves, then what is left.
template <class T, class LogAdd>
T logSum(const T* x, std::size_t len, std::size_t lanes, std::size_t from, LogAdd logAdd)
{
    T total = x[0];
    std::size_t i = 1;
    if (len >= from) {
        std::vector<T> lane(x, x + lanes);
        for (i = lanes; i + lanes <= len; i += lanes) {
            for (std::size_t k = 0; k < lanes; ++k) {
                lane[k] = logAdd(lane[k], x[i + k]);
            }
        }
        for (std::size_t half = lanes / 2; half >= 1; half /= 2) {
            for (std::size_t k = 0; k < half; ++k) {
                lane[k] = logAdd(lane[k], lane[k + half]);
            }
        }
        total = lane[0];
    }
    for (; i < len; ++i) {
        total = logAdd(total, x[i]);
    }
    return total;
}

inline float logSum32(const float* x, std::size_t len)
{
    return logSum(x, len, 4, 8, [](float a, float b) { return logAddHint(a, b, 1); });
}

inline double logSum64(const double* x, std::size_t len)
{
    return logSum(x, len, 2, 5, logAdd64);
}

// 2^(-scaleFactor), 0 or infinity beyond the range of Real.
template <class Real>
Real scale(std::int64_t scaleFactor)
{
    const std::int64_t exponent = scaleFactor < -20000 ? 20000 : (scaleFactor > 20000 ? -20000 : -scaleFactor);
    return static_cast<Real>(std::ldexp(1.0L, static_cast<int>(exponent)));
}

// Toward zero and limited to T; NaN gives the lower limit.
template <class T>
T truncated(long double x)
{
    if (std::isnan(x) || x <= static_cast<long double>(std::numeric_limits<T>::min())) {
        return std::numeric_limits<T>::min();
    }
    if (x >= static_cast<long double>(std::numeric_limits<T>::max())) {
        return std::numeric_limits<T>::max();
    }
    return static_cast<T>(x);
}

// Log-addition in fixed point; a hint other than 0, 1, 2 only converts there and back.
template <class T>
T logAddFixed(T a, T b, int scaleFactor, int hint)
{
    const float s = scale<float>(scaleFactor);
    const float fa = static_cast<float>(a) * s;
    float fb = static_cast<float>(b) * s;
    if (hint >= 0 && hint <= 2) {
        fb = logAddHint(fa, fb, hint);
    }
    const float r = scaleFactor == 0 ? fb : fb * scale<float>(-static_cast<std::int64_t>(scaleFactor));
    // The conversion to 16 bits takes NaN for large, that to 32 bits for low.
    return std::isnan(r) && sizeof(T) == 2 ? std::numeric_limits<T>::max() : truncated<T>(static_cast<long double>(r));
}

template <class T>
T logSumFixed(const T* x, std::size_t len, int scaleFactor)
{
    if (len == 1) {
        return x[0];
    }
    const double s = scale<double>(scaleFactor);
    float total = 0;
    if (len <= 6) {
        double t = static_cast<double>(x[0]) * s;
        for (std::size_t i = 1; i < len; ++i) {
            t = static_cast<double>(static_cast<float>(
                logAdd<double, double, double>(t, static_cast<double>(x[i]) * s, singleNumbers, horner<double>)));
        }
        total = static_cast<float>(t);
    } else {
        for (std::size_t first = 0; first < len; first += 128) {
            std::vector<float> block;
            if (first != 0) {
                block.push_back(total);
            }
            for (std::size_t i = first; i < len && i < first + 128; ++i) {
                block.push_back(static_cast<float>(static_cast<double>(static_cast<float>(x[i])) * s));
            }
            total = logSum32(block.data(), block.size());
        }
    }
    return truncated<T>(static_cast<long double>(static_cast<double>(total) / s));
}

// a + log(1 - exp(d)) in double precision, or what stands in for it.
inline double logSubOf(double a, double d, double cutOff, double smallest, double floorTest, double floor)
{
    if (d >= cutOff) {
        const double u = 1.0 - std::exp(d);
        return u > smallest ? a + std::log(u) : floor;
    }
    return a < floorTest ? floor : a;
}

inline double logSub64(double a, double b)
{
    return logSubOf(a, b - a, -23.0258509299405, 2.45e-308, -9000000000.0, -10000000000.0);
}

inline double logSubSingle(double a, float d)
{
    return logSubOf(a, static_cast<double>(d), -15.3195879547406, 1.0057e-37, -4500000.0, -4500000.0);
}

inline float logSub32(float a, float b)
{
    return static_cast<float>(logSubSingle(static_cast<double>(a), b - a));
}

// The result before it is stored in 16 or 32 bits.
template <class T>
std::int32_t logSubFixed(T a, T b, int scaleFactor)
{
    const float d = (static_cast<float>(b) - static_cast<float>(a)) * scale<float>(scaleFactor);
    return truncated<std::int32_t>(static_cast<long double>(logSubSingle(static_cast<double>(a), d)));
}

} // namespace lyr::oracle
