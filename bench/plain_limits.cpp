#include "plain_limits.hpp"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <map>
#include <new>
#include <vector>

namespace plain {
namespace {

#if defined(__AVX512F__)
constexpr std::size_t vectorBytes = 64;
#else
constexpr std::size_t vectorBytes = 32;
#endif
using Vector = float __attribute__((vector_size(vectorBytes)));

// The shortest of some runs: what disturbs a run only makes it longer.
template <class Run>
double nanoseconds(Run run)
{
    using Clock = std::chrono::steady_clock;
    double least = 0;
    for (int i = 0; i < 20; ++i) {
        const auto start = Clock::now();
        run();
        const double time = std::chrono::duration<double, std::nano>(Clock::now() - start).count();
        least = i == 0 ? time : std::min(least, time);
    }
    return least;
}

// Opaque to the compiler, so that no loop is computed ahead or dropped.
void use(Vector& v)
{
    asm volatile("" : "+v"(v));
}

} // namespace

double peakOperations()
{
    static const double peak = [] {
        constexpr int chains = 12; // more than the latency times the instructions in a cycle
        constexpr int steps = 2000;
        Vector factor = Vector{} + 0.5F;
        use(factor);
        const double time = nanoseconds([factor] {
            Vector sum[chains] = {};
            for (Vector& s : sum) {
                use(s);
            }
            for (int i = 0; i < steps; ++i) {
                for (Vector& s : sum) {
                    s = s * factor + factor;
                }
            }
            for (Vector& s : sum) {
                use(s);
            }
        });
        return 2.0 * chains * steps * (vectorBytes / sizeof(float)) / time;
    }();
    return peak;
}

double readBandwidth(double bytes)
{
    static std::map<std::size_t, double> known;
    constexpr std::size_t group = 8 * vectorBytes;
    const std::size_t groups = std::max<std::size_t>(8, static_cast<std::size_t>(bytes) / group);
    if (const auto found = known.find(groups); found != known.end()) {
        return found->second;
    }
    auto* const data = static_cast<Vector*>(::operator new (groups* group, std::align_val_t{64}));
    std::fill_n(data, groups * 8, Vector{} + 1.0F);
    const std::size_t rounds = std::max<std::size_t>(1, (std::size_t{1} << 18) / (groups * group));
    const double time = nanoseconds([&] {
        for (std::size_t r = 0; r < rounds; ++r) {
            Vector sum[8] = {};
            for (std::size_t g = 0; g < groups; ++g) {
                for (std::size_t k = 0; k < 8; ++k) {
                    sum[k] += data[8 * g + k];
                }
            }
            Vector total = ((sum[0] + sum[1]) + (sum[2] + sum[3])) + ((sum[4] + sum[5]) + (sum[6] + sum[7]));
            use(total);
        }
    });
    ::operator delete (data, std::align_val_t{64});
    return known[groups] = static_cast<double>(rounds * groups * group) / time;
}

} // namespace plain
