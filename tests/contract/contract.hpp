// The contract of every exported function, each described once by a row: its name, the function, the order of its
// checks, its arguments.
//
//     const bool rows = addRows({
//         row("lyrsLogGauss_32f_D2", lyrsLogGauss_32f_D2, order(StsStep, StsNullPtr, StsSize), in<Elem32f>(3 * 8),
//             stride(8, 6), in<Elem32f>(6), in<Elem32f>(6), size(6), out<Elem32f>(3), size(3), value(0.5F)),
//     });
//
// Passed by value: value(v); size(v), at least 1; stride(v, width). Refined by atLeast, atMost, bad, legal.
// Passed by pointer: in<T>(n), out<T>(n), inOut<T>(n); place<T>(bytes), where a record is built; table<T>(rows, n) of
// row pointers; record(make, release, bytes); receives<T>(release), the address of a record. Refined by nullable,
// unchecked (no fault of null), spoilt, and range, holding, kept, spaced, scanned, consumed for some. rank, alone and
// mayWrite refine the faults told last. A null pointer is value<T*>(nullptr). Of the row itself: returns, allocates.
//
// From a row examine() derives: the valid call returns what the row says, writes its outputs and nothing else, and
// makes as many allocations as told, of which each may fail; legal extremes do as well; each fault gives its status; of
// two faults the one that is earlier in the order wins; on an error nothing of the caller's has changed; nothing leaks;
// the floating-point control words stay. All memory ends at an unmapped page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "lyrsr.h"
#include "support/random.hpp"

namespace lyr::contract {

// The value of an argument, of whatever type.
class Bits
{
public:
    Bits() = default;
    template <class T>
    explicit Bits(T value)
    {
        static_assert(sizeof(T) <= sizeof(bytes));
        std::memcpy(bytes, &value, sizeof(T));
    }
    template <class T>
    [[nodiscard]] T as() const
    {
        T value;
        std::memcpy(&value, bytes, sizeof(T));
        return value;
    }

private:
    std::byte bytes[8]{};
};

// One departure from the valid call: another value of an argument or, with `spoil`, other contents of its memory.
struct Change
{
    std::string text;
    Status status = StsNoErr; // what it must bring
    Bits value{};
    std::function<void(std::byte*)> spoil{};
    int rank = -1;           // place of its check in the order, from 0; -1: where the order has the status
    bool pairs = true;       // also combined with faults of other arguments
    bool mayWrite = false;   // found only after writing has begun
    bool lowerBound = false; // from atLeast()
};

enum class Access
{
    none,
    read,
    write,
    update
};

// What one argument is. The descriptors below make these.
struct Argument
{
    Bits value{};
    std::vector<Change> faults{};
    std::vector<Change> legal{}; // other values that do as well
    Access access = Access::none;
    std::size_t bytes = 0;    // of its memory, or of each row of a table
    std::size_t rows = 0;     // of a row table
    std::size_t gapStep = 0;  // an output with gaps: the call may write the first `gapWidth`
    std::size_t gapWidth = 0; // of every `gapStep` bytes
    std::function<void(std::byte*, std::uint32_t seed)> fill{};
    std::function<void*()> make{}; // a record, made for every call
    std::function<void(void*)> release{};
    bool consumed = false; // the successful call releases the record itself
    bool received = false; // the call puts a record's address here
};

template <class Self>
struct Descriptor : Argument
{
    // The next three speak of the faults that were told last: which place of the order their check has, counted from 0;
    // that a fault of another argument could hide them; that the call has begun to write when it finds them.
    Self& rank(int place)
    {
        return last([=](Change& c) { c.rank = place; });
    }
    Self& alone()
    {
        return last([](Change& c) { c.pairs = false; });
    }
    Self& mayWrite()
    {
        return last([](Change& c) { c.mayWrite = true; });
    }

protected:
    Self& self() { return static_cast<Self&>(*this); }
    template <class F>
    Self& last(F f)
    {
        for (std::size_t i = toldLast; i < faults.size(); ++i) {
            f(faults[i]);
        }
        return self();
    }

    std::size_t toldLast = 0;
};

// ----------------------------------------------------------------------------------------------------- passed by value

template <class T>
struct Value : Descriptor<Value<T>>
{
    template <class P>
    static constexpr bool fits = std::is_same_v<P, T>;

    explicit Value(T v) { this->value = Bits(v); }

    Value& bad(const std::vector<T>& values, Status status)
    {
        this->toldLast = this->faults.size();
        for (const T v : values) {
            this->faults.push_back({.text = "is " + std::to_string(v), .status = status, .value = Bits(v)});
        }
        return *this;
    }

    // Replaces the bound that size() and stride() begin with, and what legal() said. For pairs a stride goes below
    // every faulty width, and a width stays above that.
    Value& atLeast(T least, Status status = StsSize) requires std::is_integral_v<T>
    {
        constexpr T lowest = std::numeric_limits<T>::min();
        std::erase_if(this->faults, [](const Change& c) { return c.lowerBound; });
        std::vector<T> values;
        for (const T v : std::set<T>{lowest, -1, 0, static_cast<T>(least - 1)}) {
            if (v < least) {
                values.push_back(v);
            }
        }
        bad(values, status);
        legal({least});
        return this->last([&](Change& c) {
            c.lowerBound = true;
            c.pairs = (c.value.template as<T>() == lowest) == (status == StsStep);
        });
    }
    Value& atMost(T most, Status status = StsSize) { return bad({static_cast<T>(most + 1)}, status); }

    // Values at which the call does as well; the lower bound is one unless told otherwise.
    Value& legal(const std::vector<T>& values)
    {
        Argument::legal.clear();
        for (const T v : values) {
            Argument::legal.push_back({.text = "is " + std::to_string(v), .value = Bits(v)});
        }
        return *this;
    }
};

template <class T>
Value<T> value(T v)
{
    return Value<T>(v);
}
inline Value<Elem32s> size(Elem32s v)
{
    return value(v).atLeast(1);
}
inline Value<Elem32s> stride(Elem32s v, Elem32s width)
{
    return value(v).atLeast(width, StsStep);
}

// --------------------------------------------------------------------------------------------------- passed by pointer

inline const Change null{.text = "is null", .status = StsNullPtr, .value = Bits(nullptr)};

template <class Self, class Pointee>
struct Pointer : Descriptor<Self>
{
    Pointer() { this->faults.push_back(null); }

    Self& nullable() // null is a request of its own
    {
        this->legal.push_back(null);
        return unchecked();
    }
    Self& unchecked() // null is not looked for
    {
        std::erase_if(this->faults, [](const Change& c) { return c.text == null.text; });
        return this->self();
    }
    // Other contents of the memory, which the call must refuse.
    Self& spoilt(std::string text, std::function<void(Pointee*)> how, Status status)
    {
        this->toldLast = this->faults.size();
        const auto spoil = [how](std::byte* memory) { how(reinterpret_cast<Pointee*>(memory)); };
        this->faults.push_back({.text = std::move(text), .status = status, .spoil = spoil});
        return this->self();
    }
};

template <class T, Access access>
struct Buffer : Pointer<Buffer<T, access>, T>
{
    template <class P>
    static constexpr bool fits = std::is_same_v<P, std::conditional_t<access == Access::read, const T*, T*>>;

    explicit Buffer(std::size_t size)
    {
        this->bytes = size;
        Argument::access = access;
    }
    Buffer& range(T low, T high)
    {
        this->fill = [low, high, n = this->bytes / sizeof(T)](std::byte* memory, std::uint32_t seed) {
            const std::vector<T> values = test::Random(seed).vector(n, low, high);
            std::memcpy(memory, values.data(), n * sizeof(T));
        };
        return *this;
    }
    Buffer& holding(const std::vector<T>& values)
    {
        this->fill = [values](std::byte* memory, std::uint32_t) {
            std::memcpy(memory, values.data(), values.size() * sizeof(T));
        };
        return *this;
    }
    Buffer& kept() // the valid call ends in a warning and does not write it
    {
        Argument::access = Access::read;
        return *this;
    }
    // Rows of `width` elements, `step` apart: what lies between is not written.
    Buffer& spaced(std::size_t step, std::size_t width)
    {
        this->gapStep = step * sizeof(T);
        this->gapWidth = width * sizeof(T);
        return *this;
    }
};

template <class T, Access access>
Buffer<T, access> filled(std::size_t n)
{
    Buffer<T, access> buffer(n * sizeof(T));
    if constexpr (std::is_arithmetic_v<T>) {
        return std::is_floating_point_v<T> ? buffer.range(T(0.5), T(1.5)) : buffer.range(T(1), T(100));
    } else { // complex
        return buffer.holding(std::vector<T>(n, T{3, 4}));
    }
}
template <class T>
auto in(std::size_t n)
{
    return filled<T, Access::read>(n);
}
template <class T>
auto inOut(std::size_t n) // work memory too: unlike out() it need not be written
{
    return filled<T, Access::update>(n);
}
template <class T>
auto out(std::size_t n)
{
    return Buffer<T, Access::write>(n * sizeof(T));
}
// Memory of `bytes` in which the call builds a record: aligned as a pointer is, which is what callers owe, also where
// it ends at the unmapped page.
template <class T>
auto place(std::size_t bytes)
{
    return Buffer<T, Access::write>((bytes + sizeof(void*) - 1) / sizeof(void*) * sizeof(void*));
}

// `rows` pointers to rows of n elements; whether these are written is seen from the parameter. What is spoilt is the
// pointers.
template <class T>
struct Table : Pointer<Table<T>, T*>
{
    template <class P>
    static constexpr bool fits = std::is_same_v<P, const T* const*> || std::is_same_v<P, T* const*>;

    Table(std::size_t count, std::size_t n)
    {
        this->rows = count;
        this->bytes = n * sizeof(T);
        this->access = Access::update;
        this->fill = filled<T, Access::update>(n).fill;
    }
    Table& scanned() // for null rows; a faulty count would hide them
    {
        for (std::size_t r = 0; r < this->rows; ++r) {
            this->spoilt(
                    "has a null row", [r](T** p) { p[r] = nullptr; }, StsNullPtr)
                .alone();
        }
        return *this;
    }
};
template <class T>
Table<T> table(std::size_t rows, std::size_t n)
{
    return {rows, n};
}

// An opaque record that `make` builds and `release` frees, of which `bytes` are watched.
template <class T>
struct Record : Pointer<Record<T>, T>
{
    template <class P>
    static constexpr bool fits = std::is_same_v<P, T*> || std::is_same_v<P, const T*>;

    Record& consumed() // by the call, if it succeeds
    {
        Argument::consumed = true;
        return *this;
    }
};
template <class Make, class Release>
auto record(Make make, Release release, std::size_t bytes)
{
    using T = std::remove_pointer_t<std::invoke_result_t<Make>>;
    Record<T> r;
    r.bytes = bytes;
    r.access = Access::update;
    r.make = make;
    r.release = [release](void* p) { static_cast<void>(release(static_cast<T*>(p))); };
    return r;
}

// A pointer that the call sets to a record; `release` frees it, also after a failed allocation that leaves one.
template <class T>
struct Receiver : Pointer<Receiver<T>, T*>
{
    template <class P>
    static constexpr bool fits = std::is_same_v<P, T**>;
};
template <class T, class Release>
auto receives(Release release)
{
    Receiver<T> r;
    r.bytes = sizeof(T*);
    r.access = Access::write;
    r.received = true;
    r.fill = [](std::byte* memory, std::uint32_t) { std::memset(memory, 0, sizeof(T*)); };
    r.release = [release](void* p) { static_cast<void>(release(static_cast<T*>(p))); };
    return r;
}
template <class T>
auto receives() // a record that lies in memory of the caller
{
    return receives<T>([](T*) {});
}

// ---------------------------------------------------------------------------------------------------------------- rows

struct Row
{
    std::string name;
    std::function<Status(const std::vector<Bits>&)> call;
    std::vector<Status> order;
    std::vector<Argument> arguments;
    Status expected = StsNoErr;
    long allocations = 0; // that the valid call makes; each is made to fail

    Row&& returns(Status status) &&
    {
        expected = status;
        return std::move(*this);
    }
    Row&& allocates(long count) &&
    {
        allocations = count;
        return std::move(*this);
    }
};

template <class... S>
std::vector<Status> order(S... status)
{
    return {Status{status}...};
}

// The parameter reads only: everything behind its pointers is constant.
template <class P>
constexpr bool readsOnly = std::is_const_v<P>;
template <class P>
constexpr bool readsOnly<P*> = readsOnly<P>;
template <class P>
constexpr bool readsOnly<P* const> = readsOnly<P>;

template <class P, class D>
Argument argument(D descriptor)
{
    static_assert(D::template fits<P>, "the descriptor does not describe this parameter");
    if (descriptor.access == Access::update && readsOnly<P>) {
        descriptor.access = Access::read;
    }
    return descriptor;
}

template <class... P, class... D>
Row row(const char* name, Status (*function)(P...), std::vector<Status> order, D... descriptors)
{
    static_assert(sizeof...(P) == sizeof...(D), "one descriptor for each parameter");
    auto call = [function](const std::vector<Bits>& values) {
        return [&]<std::size_t... I>(std::index_sequence<I...>)
        {
            return function(values[I].template as<P>()...);
        }
        (std::index_sequence_for<P...>{});
    };
    return {
        .name = name, .call = call, .order = std::move(order), .arguments = {argument<P>(std::move(descriptors))...}};
}

// Adds a family's rows to the suite. A function may have several, say for another kind of valid call.
bool addRows(std::vector<Row> rows);

struct Report
{
    long calls = 0;
    long allocationsFailed = 0;
    std::vector<std::string> findings{}; // none if the function keeps its contract
};

Report examine(const Row& row);

} // namespace lyr::contract
