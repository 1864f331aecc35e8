// What follows from a row: the memory that its calls need, the calls, and what each must leave behind.

#include "contract/contract.hpp"

#include <algorithm>
#include <array>
#include <cfenv>
#include <csetjmp>
#include <csignal>
#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>
#include <optional>
#include <span>
#include <xmmintrin.h>

#include "support/allocation.hpp"
#include "support/guarded.hpp"

namespace lyr::contract {
namespace {

// ---------------------------------------------------------------------------------------------------------- the caller

// A change and the argument it is made to.
struct Departure
{
    std::size_t argument;
    const Change* change;
};
using Departures = std::vector<Departure>;

// A piece of the caller's memory with what lies around it.
struct Watch
{
    std::size_t argument;
    std::string text;
    Access access;
    std::span<std::byte> own;
    std::span<std::byte> around;
    std::vector<std::byte> initial{}; // unspoilt
    std::vector<std::byte> before{};  // the call
    bool spoilt = false;

    [[nodiscard]] bool unchanged() const { return std::memcmp(around.data(), before.data(), around.size()) == 0; }
};

// How memory lies: up to the unmapped page exactly, or as near to it as an address that is a multiple of 16 allows.
enum class Place
{
    flush,
    aligned
};

// Holds memory for every argument, and puts it in order before each call.
class Caller
{
public:
    Caller(const Row& called, Place where) : row(called), place(where)
    {
        for (std::size_t i = 0; i < row.arguments.size(); ++i) {
            const Argument& a = row.arguments[i];
            const std::string text = "argument " + std::to_string(i + 1);
            const auto seed = static_cast<std::uint32_t>(100 * i);
            valid.push_back(a.value);
            if (a.make) {
                watches.push_back({i, text, a.access, {}, {}});
            } else if (a.rows > 0) {
                std::byte* const table = allot(i, text, Access::read, a.rows * sizeof(void*));
                valid[i] = Bits(table);
                for (std::size_t r = 0; r < a.rows; ++r) {
                    std::byte* const line = allot(i, text + " row " + std::to_string(r), a.access, a.bytes);
                    a.fill(line, seed + static_cast<std::uint32_t>(r));
                    std::memcpy(table + r * sizeof(void*), &line, sizeof(void*));
                }
            } else if (a.bytes > 0) {
                std::byte* const memory = allot(i, text, a.access, a.bytes);
                valid[i] = Bits(memory);
                if (a.fill) {
                    a.fill(memory, seed);
                }
            }
        }
        for (Watch& w : watches) {
            w.initial.assign(w.around.begin(), w.around.end());
        }
    }

    void prepare(const Departures& departures)
    {
        values = valid;
        for (Watch& w : watches) {
            w.spoilt = false;
            if (const Argument& a = row.arguments[w.argument]; a.make) {
                w.own = w.around = {static_cast<std::byte*>(a.make()), a.bytes};
                w.initial.assign(w.own.begin(), w.own.end());
                values[w.argument] = Bits(w.own.data());
            } else {
                std::copy(w.initial.begin(), w.initial.end(), w.around.begin());
            }
        }
        for (const auto& [argument, change] : departures) {
            if (!change->spoil) {
                values[argument] = change->value;
                continue;
            }
            const auto first = std::find_if(watches.begin(), watches.end(),
                                            [&, i = argument](const Watch& w) { return w.argument == i; });
            first->spoilt = true;
            change->spoil(first->own.data());
        }
        for (Watch& w : watches) {
            w.before.assign(w.around.begin(), w.around.end());
        }
    }

    void finish(bool succeeded)
    {
        for (Watch& w : watches) {
            const Argument& a = row.arguments[w.argument];
            if (a.make) {
                if (a.consumed && succeeded) {
                    continue;
                }
                if (w.spoilt) {
                    std::copy(w.initial.begin(), w.initial.end(), w.own.begin());
                }
                a.release(w.own.data());
            } else if (a.received) {
                void* record = nullptr;
                std::memcpy(&record, w.own.data(), sizeof(record));
                if (record != nullptr) {
                    a.release(record);
                }
            }
        }
    }

    [[nodiscard]] const std::vector<Bits>& arguments() const { return values; }
    [[nodiscard]] const std::vector<Watch>& memory() const { return watches; }

private:
    std::byte* allot(std::size_t argument, std::string text, Access access, std::size_t bytes)
    {
        const test::GuardedPages& p = pages.emplace_back(bytes + 64);
        std::memset(p.begin(), 0xA5, static_cast<std::size_t>(p.end() - p.begin()));
        std::byte* data = p.end() - bytes;
        data -= place == Place::aligned ? reinterpret_cast<std::uintptr_t>(data) % 16 : 0;
        watches.push_back({argument, std::move(text), access, {data, bytes}, {p.begin(), p.end()}});
        return data;
    }

    const Row& row;
    Place place;
    std::vector<test::GuardedPages> pages;
    std::vector<Watch> watches; // of an argument's memory the first is what its value points at
    std::vector<Bits> valid, values;
};

// ------------------------------------------------------------------------------------------------------------ the call

std::array<int, 3> memoryFaults{SIGSEGV, SIGBUS, SIGFPE};
sigjmp_buf escape;

void leave(int signal)
{
    siglongjmp(escape, signal);
}

// The status of a call, or nothing if it touched memory that is not there.
std::optional<Status> attempt(const Row& row, const std::vector<Bits>& values)
{
    std::array<struct sigaction, memoryFaults.size()> kept{};
    struct sigaction caught = {};
    caught.sa_handler = leave;
    for (std::size_t i = 0; i < memoryFaults.size(); ++i) {
        sigaction(memoryFaults[i], &caught, &kept[i]);
    }
    std::optional<Status> status;
    if (sigsetjmp(escape, 1) == 0) {
        status = row.call(values);
    }
    for (std::size_t i = 0; i < memoryFaults.size(); ++i) {
        sigaction(memoryFaults[i], &kept[i], nullptr);
    }
    return status;
}

// Rounding, precision, exception masks and the treatment of subnormals, of both floating-point units.
std::uint32_t controlBits()
{
    std::uint16_t x87 = 0;
    asm volatile("fnstcw %0" : "=m"(x87));
    return (_mm_getcsr() & ~std::uint32_t{_MM_EXCEPT_MASK}) << 16 | x87;
}

class Examination
{
public:
    explicit Examination(const Row& examined) : row(examined) {}

    Report run()
    {
        if (!placeFaults()) {
            return report;
        }
        for (const Place place : {Place::flush, Place::aligned}) {
            Caller caller(row, place);
            for (const int rounding : {FE_TONEAREST, FE_UPWARD}) {
                call(caller, {}, row.expected, rounding);
                for (std::size_t i = 0; i < row.arguments.size(); ++i) {
                    for (const Change& c : row.arguments[i].legal) {
                        call(caller, {{i, &c}}, row.expected, rounding);
                    }
                }
            }
        }
        Caller caller(row, Place::aligned);
        for (const Departure& f : faults) {
            call(caller, {f}, f.change->status, FE_UPWARD);
            for (const Departure& g : faults) { // no earlier than f
                if (&f < &g && f.argument != g.argument && f.change->pairs && g.change->pairs) {
                    call(caller, {f, g}, f.change->status, FE_UPWARD);
                }
            }
        }
        if (row.allocations > 0) {
            failAllocations(caller);
        }
        return report;
    }

private:
    // Gathers the faults and sorts them by the order of the checks.
    bool placeFaults()
    {
        const auto placeOf = [&](const Change& c) {
            return c.rank >= 0 ? c.rank : std::find(row.order.begin(), row.order.end(), c.status) - row.order.begin();
        };
        for (std::size_t i = 0; i < row.arguments.size(); ++i) {
            for (const Change& c : row.arguments[i].faults) {
                const auto place = static_cast<std::size_t>(placeOf(c));
                faults.push_back({i, &c});
                if (place >= row.order.size() || row.order[place] != c.status ||
                    (c.rank < 0 && std::count(row.order.begin(), row.order.end(), c.status) > 1)) {
                    finding({faults.back()}, "has no certain place in the order of the checks");
                }
            }
        }
        std::stable_sort(faults.begin(), faults.end(),
                         [&](auto& f, auto& g) { return placeOf(*f.change) < placeOf(*g.change); });
        return report.findings.empty();
    }

    void call(Caller& caller, const Departures& departures, Status expected, int rounding)
    {
        const long live = test::liveAllocations();
        caller.prepare(departures);
        std::fenv_t kept;
        std::fegetenv(&kept);
        std::fesetround(rounding);
        const std::uint32_t control = controlBits();
        const long allocated = test::allocationCount();

        const std::optional<Status> status = attempt(row, caller.arguments());

        const bool controlKept = controlBits() == control;
        std::fesetenv(&kept);
        const long allocations = test::allocationCount() - allocated;
        ++report.calls;
        if (!status) {
            finding(departures, "touches memory that is not there");
            caller.finish(true);
            return;
        }
        if (*status != expected) {
            finding(departures, "returns " + std::to_string(*status) + ", not " + std::to_string(expected));
        }
        if (!controlKept) {
            finding(departures, "leaves another floating-point control word");
        }
        if (departures.empty() && allocations != row.allocations) {
            finding(departures,
                    "makes " + std::to_string(allocations) + " allocations, not " + std::to_string(row.allocations));
        }
        const bool mayWrite = *status >= 0 || (!departures.empty() && departures.front().change->mayWrite);
        for (const Watch& w : caller.memory()) {
            if (row.arguments[w.argument].consumed && *status >= 0) {
                continue; // it is gone
            }
            const bool altered =
                std::any_of(departures.begin(), departures.end(), [&](auto& d) { return d.argument == w.argument; });
            if (const auto at = strayWrite(w, mayWrite, departures.empty())) {
                finding(departures, "writes byte " + std::to_string(*at) + " of " + w.text);
            } else if (*status == StsNoErr && w.access == Access::write && !altered && w.unchanged()) {
                finding(departures, "does not write " + w.text);
            }
        }
        caller.finish(*status >= 0);
        if (test::liveAllocations() != live) {
            finding(departures, "leaks");
        }
    }

    // The first byte that was not the call's to write, counted from the start of the argument.
    std::optional<std::ptrdiff_t> strayWrite(const Watch& w, bool mayWrite, bool gapsKept) const
    {
        if (w.unchanged()) {
            return std::nullopt;
        }
        const Argument& a = row.arguments[w.argument];
        for (std::size_t i = 0; i < w.around.size(); ++i) {
            const std::ptrdiff_t at = &w.around[i] - w.own.data();
            const auto offset = static_cast<std::size_t>(at); // ahead of the argument: huge
            const bool gap = gapsKept && a.gapStep > 0 && offset % a.gapStep >= a.gapWidth;
            if (w.around[i] != w.before[i] &&
                (!mayWrite || w.access == Access::read || offset >= w.own.size() || gap)) {
                return at;
            }
        }
        return std::nullopt;
    }

    void failAllocations(Caller& caller)
    {
        ::testing::TestPartResultArray results;
        {
            const ::testing::ScopedFakeTestPartResultReporter reporter(
                ::testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &results);
            const auto check = [&] {
                for (const Watch& w : caller.memory()) {
                    if (!row.arguments[w.argument].received && !w.unchanged()) {
                        ADD_FAILURE() << "writes " << w.text;
                    }
                }
            };
            const auto release = [&] {
                caller.finish(false);
                caller.prepare({});
            };
            const auto callAgain = [&] {
                ++report.calls;
                return attempt(row, caller.arguments()).value_or(StsFail);
            };
            caller.prepare({});
            report.allocationsFailed = test::failEachAllocation(callAgain, release, check);
            caller.finish(true);
        }
        for (int i = 0; i < results.size(); ++i) {
            finding({}, std::string("with a failed allocation: ") + results.GetTestPartResult(i).message());
        }
    }

    void finding(const Departures& departures, const std::string& what)
    {
        std::string when;
        for (const auto& [argument, change] : departures) {
            when += (when.empty() ? "argument " : ", argument ") + std::to_string(argument + 1) + " " + change->text;
        }
        report.findings.push_back((when.empty() ? "valid call" : when) + ": " + what);
    }

    const Row& row;
    Report report{};
    Departures faults{};
};

} // namespace

Report examine(const Row& row)
{
    return Examination(row).run();
}

} // namespace lyr::contract
