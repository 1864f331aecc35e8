// What the harnesses share, below Caller: the fuzzer's bytes become arguments, memory is exactly as large as the header
// promises, and every call is judged.
//
// Of every call holds: no sanitizer reports anything; on an error nothing of the caller's has changed; what is constant
// and what lies ahead of a vector never changes; the rounding mode and the exception masks are as before. What a family
// promises beyond that is demanded by its harness.
#pragma once

#include "lyrsr.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cfenv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <list>
#include <random>
#include <tuple>
#include <type_traits>
#include <vector>
#include <xmmintrin.h>

namespace lyr::fuzz {

inline void demand(bool kept, const char* promise)
{
    if (!kept) {
        std::fprintf(stderr, "not kept: %s\n", promise);
        std::abort();
    }
}

// --------------------------------------------------------------------------------------------------------- allocations

// The library's allocations come here (--wrap=malloc). One of them may be told to fail, and large ones always do: a
// harness asks for the largest sizes and has no memory for them.
inline int allocationsLeft = -1; // until one fails; below 0: none does

extern "C" void* __real_malloc(std::size_t bytes);
extern "C" [[gnu::used]] inline void* __wrap_malloc(std::size_t bytes)
{
    constexpr std::size_t most = std::size_t{1} << 20;
    return bytes > most || allocationsLeft-- == 0 ? nullptr : __real_malloc(bytes);
}

// --------------------------------------------------------------------------------------------------------------- input

// Zeros follow the last byte, and zero is the usual choice everywhere.
class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : at(data), end(data + size)
    {
        allocationsLeft = oneIn(8) ? between(0, 7) : -1;
    }

    template <class T>
    T bits()
    {
        T value{};
        const std::size_t n = std::min(sizeof(T), static_cast<std::size_t>(end - at));
        std::memcpy(&value, at, n);
        at += n;
        return value;
    }

    bool oneIn(unsigned n) { return bits<Elem8u>() % n == n - 1; }
    Elem32s between(Elem32s low, Elem32s high) { return low + bits<Elem16u>() % (high - low + 1); }

    template <class T>
    T oneOf(std::initializer_list<T> values)
    {
        return values.begin()[bits<Elem8u>() % values.size()];
    }

    // 1 to `most`, small ones more often; seldom one that must be refused.
    Elem32s length(Elem32s most)
    {
        const int kind = bits<Elem8u>() % 32;
        return kind == 31 ? oneOf({0, -1, INT32_MIN}) : between(1, kind < 16 ? std::min(most, 20) : most);
    }

    // An argument that is no length.
    template <class T>
    T value()
    {
        const int kind = bits<Elem8u>() % 8;
        return kind == 7 ? bits<T>() : kind == 6 ? special<T>(bits<Elem8u>()) : static_cast<T>(between(-40, 40));
    }

    template <class T>
    void fill(T* to, std::size_t count)
    {
        const int kind = bits<Elem8u>() % 6;
        std::minstd_rand random(bits<Elem8u>() + 1U);
        for (std::size_t i = 0; i < count; ++i) {
            to[i] = element<T>(kind < 5 ? kind : static_cast<int>(random() % 5), random);
        }
    }

private:
    template <class T>
    static T special(std::uint64_t which)
    {
        using Limits = std::numeric_limits<T>;
        const T values[] = {0,
                            1,
                            T(-1),
                            T(-0.0),
                            Limits::max(),
                            Limits::lowest(),
                            Limits::min(), //
                            Limits::denorm_min(),
                            Limits::quiet_NaN(),
                            Limits::infinity(),
                            T(-Limits::infinity())};
        return values[which % std::size(values)];
    }

    template <class T>
    static T element(int kind, std::minstd_rand& random) // 0 moderate, 1 positive, 2 negative, 3 any bits, 4 special
    {
        const std::uint64_t raw = std::uint64_t{random()} << 33 ^ std::uint64_t{random()} << 16 ^ random();
        if (kind >= 3) {
            return kind == 3 ? std::bit_cast<std::array<T, 8 / sizeof(T)>>(raw)[0] : special<T>(raw);
        }
        const T size = static_cast<T>(static_cast<T>(raw % 1000) / T(std::is_floating_point_v<T> ? 64 : 8));
        return kind == 1 || (kind == 0 && raw >> 63 == 0) ? size : static_cast<T>(-size);
    }

    const std::uint8_t* at;
    const std::uint8_t* end;
};

// -------------------------------------------------------------------------------------------------------------- memory

template <class T>
constexpr bool isComplex =
    std::is_same_v<std::remove_const_t<T>, Elem32fc> || std::is_same_v<std::remove_const_t<T>, Elem32sc>;
template <class T>
constexpr bool isElement = std::is_arithmetic_v<T> || isComplex<T>;

// All that a call is given. Every vector has a block of its own and ends where that ends.
class Memory
{
public:
    explicit Memory(Input& bytes)
        : in(bytes), mode(in.oneIn(8) ? in.oneOf({FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) : FE_TONEAREST)
    {}

    // `count` elements, half of the time at a multiple of 16 bytes; constant ones are watched for that. `odd`: need not
    // be aligned to an element either.
    template <class T>
    T* vector(Elem64s count, bool odd = false)
    {
        using Pair = std::conditional_t<std::is_same_v<std::remove_const_t<T>, Elem32sc>, Elem32s, Elem32f>;
        using Element = std::conditional_t<isComplex<T>, Pair, std::remove_const_t<T>>;
        const std::size_t n = static_cast<std::size_t>(std::max<Elem64s>(count, 0)) * (isComplex<T> ? 2 : 1);
        const std::size_t unit = odd ? 1 : sizeof(Element);
        const std::size_t ahead = in.oneIn(2) ? unit * static_cast<std::size_t>(in.between(1, 16)) : 64;
        std::vector<Element> values(n);
        in.fill(values.data(), n);
        return reinterpret_cast<T*>(add(ahead, values.data(), n * sizeof(Element), std::is_const_v<T>));
    }

    // The vector that was given last, or any, if it is large enough; else a new one.
    template <class T>
    T* inPlace(Elem64s count, bool last)
    {
        Block* const block = blocks.empty() ? nullptr : last ? &blocks.back() : &*std::next(blocks.begin(), any());
        if (block == nullptr || count < 1 || block->size() < static_cast<std::size_t>(count) * sizeof(T) ||
            reinterpret_cast<std::uintptr_t>(block->data()) % alignof(T) != 0) {
            return vector<T>(count);
        }
        block->constant = false;
        return reinterpret_cast<T*>(block->data());
    }

    template <class Row>
    Row** table(Elem64s rows, Elem64s columns)
    {
        std::vector<Row*> row(static_cast<std::size_t>(std::max<Elem64s>(rows, 0)));
        std::generate(row.begin(), row.end(), [&] { return vector<Row>(columns); });
        return reinterpret_cast<Row**>(add(sizeof(void*), row.data(), row.size() * sizeof(void*), true));
    }

    // For a record: aligned as a pointer is, and no further.
    void* place(Elem32s bytes)
    {
        const std::vector<std::byte> unset(static_cast<std::size_t>(bytes), std::byte{0x5A});
        return add(sizeof(void*) * static_cast<std::size_t>(in.between(1, 8)), unset.data(), unset.size(), false);
    }

    // What was given so far is constant from now on.
    void freeze()
    {
        for (Block& b : blocks) {
            b.constant = true;
        }
    }

    // Makes the call, in the rounding mode that was drawn, and judges it.
    template <class Call>
    Status watch(Call call)
    {
        for (Block& b : blocks) {
            b.before = b.memory;
        }
        std::fesetround(mode);
        const unsigned control = _mm_getcsr() | _MM_EXCEPT_MASK;
        const Status status = call();
        demand(std::fegetround() == mode && (_mm_getcsr() | _MM_EXCEPT_MASK) == control,
               "floating-point control as before");
        std::fesetround(FE_TONEAREST);
        for (const Block& b : blocks) {
            const bool none = b.constant || status < 0;
            const auto end = none ? b.memory.end() : b.memory.begin() + static_cast<std::ptrdiff_t>(b.ahead);
            demand(std::equal(b.memory.begin(), end, b.before.begin()),
                   status < 0 ? "nothing changes on an error" : "nothing changes but what is told");
        }
        return status;
    }

private:
    struct Block
    {
        std::vector<std::byte> memory;
        std::size_t ahead; // bytes in front of the vector
        bool constant;
        std::vector<std::byte> before{};

        std::byte* data() { return memory.data() + ahead; }
        [[nodiscard]] std::size_t size() const { return memory.size() - ahead; }
    };

    std::ptrdiff_t any() { return in.between(0, static_cast<Elem32s>(blocks.size()) - 1); }

    std::byte* add(std::size_t ahead, const void* from, std::size_t bytes, bool constant)
    {
        Block& b = blocks.emplace_back(Block{std::vector<std::byte>(ahead + bytes, std::byte{0xA5}), ahead, constant});
        if (bytes > 0) {
            std::memcpy(b.data(), from, bytes);
        }
        return b.data();
    }

    Input& in;
    int mode;
    std::list<Block> blocks{};
};

// The same values; NaN is NaN.
template <class T>
bool same(const T* a, const T* b, Elem64s count)
{
    return std::equal(a, a + count, b,
                      [](T x, T y) { return std::memcmp(&x, &y, sizeof(T)) == 0 || (x != x && y != y); });
}

// --------------------------------------------------------------------------------------------------------------- calls

// Calls functions by one letter for each of their parameters, whose types come from the declaration. Capitals stand for
// what the harness has named. Of the others, by value `n`, `h`, `w`, `s`, `z` are a length, a height, a width and two
// strides, and `.` is anything. A pointer has as many elements as the letter says, or
//
//   1 one         p height * width         m height rows of width, s apart (or a table of them)
//   i n columns   q the same, width rows   d height rows of n, z apart
//   ~ n, perhaps one of the vectors that were given before     = n, perhaps the one before
class Caller
{
public:
    Caller(const std::uint8_t* data, std::size_t size) : in(data, size) {}

    template <class... P>
    Status call(Status (*function)(P...), const char* letters)
    {
        mustFail = false;
        const std::tuple<P...> arguments{argument<P>(*letters++)...}; // in their order
        const Status status = memory.watch([&] { return std::apply(function, arguments); });
        demand(!mustFail || status < 0, "null pointers, sizes below one and narrow strides are errors");
        return status;
    }

    void name(char letter, const void* pointer) { named[letter - 'A'].pointer = const_cast<void*>(pointer); }
    void name(char letter, double number) { named[letter - 'A'].number = number; }

    Input in;
    Memory memory{in};

private:
    Elem32s stride(Elem32s width)
    {
        return width < 1 ? width : width + (in.oneIn(32) ? -1 : in.oneIn(2) ? in.between(0, 9) : -width & 7);
    }

    template <class P>
    P argument(char letter)
    {
        if (letter >= 'A' && letter <= 'Z') {
            if constexpr (std::is_pointer_v<P>) {
                return static_cast<P>(named[letter - 'A'].pointer);
            } else {
                return static_cast<P>(named[letter - 'A'].number);
            }
        }
        using Pointee = std::remove_pointer_t<P>;
        using Row = std::remove_pointer_t<std::remove_cv_t<Pointee>>;
        if constexpr (!std::is_pointer_v<P>) {
            return scalar<P>(letter);
        } else if (in.oneIn(64)) {
            mustFail = mustFail || letter != '1'; // an index may be unwanted
            return nullptr;
        } else if constexpr (isElement<Pointee>) {
            return vector<Pointee>(letter);
        } else if constexpr (isElement<Row>) {
            return memory.table<Row>(letter == 'q' ? w : h, letter == 'd' ? n : w);
        } else {
            demand(false, "records have names");
            return nullptr;
        }
    }

    template <class T>
    T scalar(char letter)
    {
        if (letter == '.') {
            return in.value<T>();
        }
        const Elem32s size = letter == 'n' ? n : letter == 'h' ? h : letter == 'w' ? w : letter == 's' ? s : z;
        mustFail = mustFail || size < 1 || (letter == 's' && s < w) || (letter == 'z' && z < n);
        return static_cast<T>(size);
    }

    template <class T>
    T* vector(char letter)
    {
        const auto block = [](Elem64s rows, Elem64s columns, Elem64s step) {
            return rows < 1 ? 0 : (rows - 1) * step + columns;
        };
        const bool isLast = letter == '=';
        if ((isLast || letter == '~') && in.oneIn(2)) {
            return memory.inPlace<T>(n, isLast);
        }
        T* const elements = memory.vector<T>(letter == '1'   ? 1
                                             : letter == 'h' ? h
                                             : letter == 'w' ? w
                                             : letter == 'p' ? block(h, w, w)
                                             : letter == 'm' ? block(h, w, s)
                                             : letter == 'q' ? block(w, w, s)
                                             : letter == 'd' ? block(h, n, z)
                                                             : n);
        if constexpr (std::is_same_v<T, const Elem32s>) {
            if (letter == 'i') {
                std::generate_n(const_cast<Elem32s*>(elements), n, [&] { return in.between(0, std::max(w, 1) - 1); });
            }
        }
        return elements;
    }

    Elem32s n = in.length(600);
    Elem32s h = in.length(250);
    Elem32s w = in.length(80);
    Elem32s s = stride(w);
    Elem32s z = stride(n);
    bool mustFail = false;
    struct
    {
        void* pointer = nullptr;
        double number = 0; // holds every 32-bit value
    } named[26];           // what capitals stand for
};

// A function with its letters, called by a Caller.
struct Function
{
    Status operator()(Caller& caller) const { return call(caller, letters); }

    Status (*call)(Caller& caller, const char* letters);
    const char* letters;
};

template <class... P>
constexpr std::size_t arity(Status (*)(P...))
{
    return sizeof...(P);
}

template <auto function>
constexpr Function by(const char (&letters)[arity(function) + 1])
{
    return {[](Caller& caller, const char* l) { return caller.call(function, l); }, letters};
}

} // namespace lyr::fuzz
