// Ours against peers: all take turns on the same data in one process, and the median times give the ratio.
#pragma once

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>
#include <functional>
#include <string>
#include <vector>

#include "plain_limits.hpp"

namespace bench {

struct Contender
{
    std::string name;
    std::function<void()> run;
    std::function<double()> result; // what it computed, to be compared
};

inline constexpr int callsPerRun = 32;

// `call` for each of a run, so that the way into a contender does not count.
template <class Call>
Contender contender(const char* name, Call call, std::function<double()> result)
{
    return {name,
            [call] {
                for (int i = 0; i < callsPerRun; ++i) {
                    call();
                    benchmark::ClobberMemory();
                }
            },
            std::move(result)};
}

// What a call cannot do without: bytes to be read or written, single-precision operations (those of doubles count
// twice); and how many calls a run is.
struct Work
{
    double bytes;
    double operations;
    int calls = 1;
};

inline Work perCall(double bytes, double operations)
{
    return {bytes, operations, callsPerRun};
}

// The first contender is ours. Each round runs every contender for about the same short time. The counter `ratio` is
// our median time over that of the fastest peer; `limit` is the share of our time that the machine would need for the
// work, be it to move the bytes or to compute.
inline void contest(benchmark::State& state, const std::vector<Contender>& contenders, double tolerance, Work work)
{
    using Clock = std::chrono::steady_clock;
    const auto timed = [](const Contender& c, int calls) {
        const auto start = Clock::now();
        for (int i = 0; i < calls; ++i) {
            c.run();
            benchmark::ClobberMemory();
        }
        return std::chrono::duration<double, std::nano>(Clock::now() - start).count() / calls;
    };
    std::vector<int> calls;
    for (const Contender& c : contenders) {
        c.run();
        const double expected = contenders.front().result();
        if (!(std::fabs(c.result() - expected) <= tolerance * std::max(1.0, std::fabs(expected)))) {
            state.SkipWithError(
                (c.name + " computes " + std::to_string(c.result()) + " and ours " + std::to_string(expected)).c_str());
            return;
        }
        calls.push_back(std::clamp(static_cast<int>(30000.0 / timed(c, 10)), 1, 10000));
    }
    std::vector<std::vector<double>> times(contenders.size());
    for (auto _ : state) {
        for (std::size_t k = 0; k < contenders.size(); ++k) {
            times[k].push_back(timed(contenders[k], calls[k]));
        }
    }
    double ours = 0;
    double best = 0;
    for (std::size_t k = 0; k < contenders.size(); ++k) {
        std::nth_element(times[k].begin(), times[k].begin() + static_cast<std::ptrdiff_t>(times[k].size() / 2),
                         times[k].end());
        const double median = times[k][times[k].size() / 2];
        state.counters[contenders[k].name] = median;
        if (k == 0) {
            ours = median;
        } else if (best == 0 || median < best) {
            best = median;
        }
    }
    state.counters["ratio"] = ours / best;
    const double least =
        std::max(work.bytes / plain::readBandwidth(work.bytes), work.operations / plain::peakOperations());
    state.counters["limit"] = work.calls * least / ours;
}

} // namespace bench
