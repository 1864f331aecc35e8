// The library's allocations, counted and made to fail.
#pragma once

#include <functional>

#include "lyrsr.h"

namespace lyr::test {

// Allocations of the library that have not been released yet.
long liveAllocations();

// Allocations of the library since the program began.
long allocationCount();

// The allocation after `successes` more fails, and every later one until allowAllocations().
void failAllocationsAfter(long successes);
void allowAllocations();

// The size that the last allocation asked for.
unsigned long lastAllocationSize();

// Runs `call` with the first, then the second, ... allocation failing until none fails any more. Each failing run must
// return StsMemAlloc; `release` then frees what the call documents as kept, and nothing may be left. Returns the number
// of allocations that were made to fail. `check` looks at the caller's memory after each failure.
int failEachAllocation(const std::function<Status()>& call, const std::function<void()>& release = {},
                       const std::function<void()>& check = {});

} // namespace lyr::test
