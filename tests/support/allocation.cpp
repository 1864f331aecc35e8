#include "support/allocation.hpp"

#include <atomic>
#include <cstddef>
#include <gtest/gtest.h>

namespace {

std::atomic<long> live{0};
std::atomic<long> total{0};
std::atomic<long> allowed{-1}; // below 0: all
std::atomic<unsigned long> lastSize{0};

} // namespace

extern "C" {

// The linker's option --wrap takes and gives these names. NOLINTBEGIN(bugprone-reserved-identifier)
void* __real_malloc(std::size_t size);
void __real_free(void* p);
void* __wrap_malloc(std::size_t size);
void __wrap_free(void* p);
// NOLINTEND(bugprone-reserved-identifier)

// Linked in place of malloc and free wherever this program and the library's own objects call them.
void* __wrap_malloc(std::size_t size)
{
    ++total;
    lastSize = size;
    if (allowed >= 0) {
        if (allowed == 0) {
            return nullptr;
        }
        --allowed;
    }
    void* const p = __real_malloc(size);
    live += p != nullptr ? 1 : 0;
    return p;
}

void __wrap_free(void* p)
{
    live -= p != nullptr ? 1 : 0;
    __real_free(p);
}

} // extern "C"

namespace lyr::test {

long liveAllocations()
{
    return live;
}
long allocationCount()
{
    return total;
}
unsigned long lastAllocationSize()
{
    return lastSize;
}
void failAllocationsAfter(long successes)
{
    allowed = successes;
}
void allowAllocations()
{
    allowed = -1;
}

int failEachAllocation(const std::function<Status()>& call, const std::function<void()>& release,
                       const std::function<void()>& check)
{
    constexpr int most = 1000;
    for (int n = 0; n < most; ++n) {
        SCOPED_TRACE("allocation " + std::to_string(n) + " fails");
        const long before = liveAllocations();
        const long made = allocationCount();
        failAllocationsAfter(n);
        const Status status = call();
        allowAllocations();
        if (allocationCount() - made <= n) { // the call needed no more than it was allowed
            EXPECT_GE(status, 0);
            return n;
        }
        EXPECT_EQ(status, StsMemAlloc);
        if (check) {
            check();
        }
        if (release) {
            release();
        }
        EXPECT_EQ(liveAllocations(), before) << "the failed call leaked";
    }
    ADD_FAILURE() << "the call still fails after " << most << " allocations";
    return most;
}

} // namespace lyr::test
