#include "support/guarded.hpp"

#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>
#include <utility>

namespace lyr::test {

GuardedPages::GuardedPages(std::size_t bytes)
{
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t usable = (bytes + page - 1) / page * page;
    mapped = usable + page;
    void* const p = mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED) {
        std::abort();
    }
    base = static_cast<std::byte*>(p);
    guard = base + usable;
    if (mprotect(guard, page, PROT_NONE) != 0) {
        std::abort();
    }
}

GuardedPages::GuardedPages(GuardedPages&& other) noexcept
    : base(std::exchange(other.base, nullptr)), guard(std::exchange(other.guard, nullptr)), mapped(other.mapped)
{}

GuardedPages::~GuardedPages()
{
    if (base != nullptr) {
        munmap(base, mapped);
    }
}

} // namespace lyr::test
