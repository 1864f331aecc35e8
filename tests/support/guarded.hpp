// Memory that notices strangers: a buffer that ends at an unmapped page, at a chosen offset from a 16-byte boundary.
#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <vector>

namespace lyr::test {

// Pages of which the last is unmapped. Reading or writing behind the end of the buffer ends the program.
class GuardedPages
{
public:
    explicit GuardedPages(std::size_t bytes);
    ~GuardedPages();
    GuardedPages(GuardedPages&& other) noexcept;
    GuardedPages(const GuardedPages&) = delete;
    GuardedPages& operator=(const GuardedPages&) = delete;
    GuardedPages& operator=(GuardedPages&&) = delete;

    [[nodiscard]] std::byte* end() const { return guard; }
    [[nodiscard]] std::byte* begin() const { return base; }

private:
    std::byte* base;
    std::byte* guard;
    std::size_t mapped;
};

// `count` elements whose address is `offset` bytes past a multiple of 64. They end as near to the unmapped page as the
// offset allows: with `flush()` exactly there. Everything around them is filled with a pattern that `intact()` checks.
template <class T>
class Guarded
{
public:
    explicit Guarded(std::size_t count, std::size_t offset = 0) : length(count), pages(count * sizeof(T) + 192)
    {
        auto address = reinterpret_cast<std::size_t>(pages.end()) - count * sizeof(T);
        address = address / 64 * 64 + offset;
        if (address + count * sizeof(T) > reinterpret_cast<std::size_t>(pages.end())) {
            address -= 64;
        }
        elements = reinterpret_cast<T*>(address);
        std::memset(pages.begin(), pattern, static_cast<std::size_t>(pages.end() - pages.begin()));
    }

    template <class U>
    Guarded(const std::vector<U>& values, std::size_t offset) : Guarded(values.size(), offset)
    {
        for (std::size_t i = 0; i < values.size(); ++i) {
            elements[i] = static_cast<T>(values[i]);
        }
    }

    // The offset at which `count` elements end exactly at the unmapped page.
    static std::size_t flush(std::size_t count) { return (64 - count * sizeof(T) % 64) % 64; }

    [[nodiscard]] T* data() const { return elements; }
    [[nodiscard]] std::size_t size() const { return length; }
    T& operator[](std::size_t i) const { return elements[i]; }
    [[nodiscard]] std::span<T> span() const { return {elements, length}; }
    [[nodiscard]] std::vector<T> copy() const { return {elements, elements + length}; }

    // Nothing ahead of the elements or behind them has changed.
    [[nodiscard]] bool intact() const
    {
        const auto* first = reinterpret_cast<const std::byte*>(elements);
        const auto* last = reinterpret_cast<const std::byte*>(elements + length);
        for (const std::byte* p = pages.begin(); p != pages.end(); ++p) {
            if ((p < first || p >= last) && *p != std::byte{pattern}) {
                return false;
            }
        }
        return true;
    }

private:
    static constexpr unsigned char pattern = 0xA5;

    std::size_t length;
    GuardedPages pages;
    T* elements = nullptr;
};

} // namespace lyr::test
