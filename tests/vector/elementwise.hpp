// Element-wise functions against a scalar reference: every length up to a few vectors of each width, every alignment of
// source and destination, in place where the types allow it (over either of two sources), and buffers that end at an
// unmapped page.
#pragma once

#include "lyrsr.h"

#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <type_traits>
#include <vector>

#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/vectors.hpp"

namespace lyr::test {

template <class T>
std::vector<T> specialValues()
{
    using L = std::numeric_limits<T>;
    if constexpr (std::is_floating_point_v<T>) {
        return {T(0),           -T(0),    T(1),      -T(1),    T(2),      L::infinity(),   -L::infinity(),
                L::quiet_NaN(), L::max(), -L::max(), L::min(), -L::min(), L::denorm_min(), -L::denorm_min(),
                L::min() / 2};
    } else {
        return {T(0), T(1), T(-1), L::max(), L::min()};
    }
}

// Random numbers in [low, high], every eighth of them one of the special values.
template <class T>
std::vector<T> withSpecials(Random& random, std::size_t n, T low, T high)
{
    const auto special = specialValues<T>();
    auto v = random.vector<T>(n, low, high);
    for (T& x : v) {
        if (random.uniform(0, 7) == 0) {
            x = special[static_cast<std::size_t>(random.uniform(0, static_cast<int>(special.size()) - 1))];
        }
    }
    return v;
}

// What a call on a whole vector is to give: its elements and its status.
template <class D>
struct Expected
{
    std::vector<D> elements;
    Status status = StsNoErr;
};

template <class S, class D>
struct UnaryCase
{
    std::function<std::vector<S>(Random&, std::size_t)> data;
    std::function<Status(const S*, D*, Elem32s)> call; // may be empty
    std::function<Status(D*, Elem32s)> inPlace;        // may be empty
    std::function<Expected<D>(const std::vector<S>&)> expect;
    std::function<::testing::AssertionResult(D, D)> same = exactly<D>;
};

template <class D>
void expectElements(const Guarded<D>& actual, const Expected<D>& expected,
                    const std::function<::testing::AssertionResult(D, D)>& same)
{
    for (std::size_t i = 0; i < expected.elements.size(); ++i) {
        ASSERT_TRUE(same(actual[i], expected.elements[i])) << "element " << i << " of " << expected.elements.size();
    }
    ASSERT_TRUE(actual.intact());
}

template <class S, class D>
void compareUnary(const UnaryCase<S, D>& c)
{
    Random random(11);
    for (const std::size_t len : vectorLengths()) {
        const auto n = static_cast<Elem32s>(len);
        const auto x = c.data(random, len);
        const Expected<D> expected = c.expect(x);
        for (const std::size_t offset : vectorOffsets<S>(len)) {
            SCOPED_TRACE(::testing::Message() << "len " << len << " offset " << offset);
            if (c.call) {
                const Guarded<S> src(x, offset);
                for (const std::size_t dstOffset : {std::size_t{0}, sizeof(D), Guarded<D>::flush(len)}) {
                    const Guarded<D> dst(len, dstOffset);
                    ASSERT_EQ(c.call(src.data(), dst.data(), n), expected.status);
                    ASSERT_NO_FATAL_FAILURE(expectElements(dst, expected, c.same));
                }
                ASSERT_EQ(std::memcmp(src.data(), x.data(), len * sizeof(S)), 0);
            }
            if constexpr (std::is_same_v<S, D>) {
                if (c.call) {
                    const Guarded<D> both(x, offset);
                    ASSERT_EQ(c.call(both.data(), both.data(), n), expected.status);
                    ASSERT_NO_FATAL_FAILURE(expectElements(both, expected, c.same));
                }
                if (c.inPlace) {
                    const Guarded<D> both(x, offset);
                    ASSERT_EQ(c.inPlace(both.data(), n), expected.status);
                    ASSERT_NO_FATAL_FAILURE(expectElements(both, expected, c.same));
                }
            }
        }
    }
}

template <class T>
struct BinaryCase
{
    std::function<std::vector<T>(Random&, std::size_t)> data;
    std::function<Status(const T*, const T*, T*, Elem32s)> call; // may be empty
    std::function<Status(const T*, T*, Elem32s)> inPlace; // may be empty; the second operand is source and destination
    std::function<Expected<T>(const std::vector<T>&, const std::vector<T>&)> expect;
    std::function<::testing::AssertionResult(T, T)> same = exactly<T>;
};

template <class T>
void compareBinary(const BinaryCase<T>& c)
{
    Random random(13);
    for (const std::size_t len : vectorLengths()) {
        const auto n = static_cast<Elem32s>(len);
        const auto x = c.data(random, len);
        const auto y = c.data(random, len);
        const Expected<T> expected = c.expect(x, y);
        for (const std::size_t offset : vectorOffsets<T>(len)) {
            for (const std::size_t second : {std::size_t{0}, sizeof(T), Guarded<T>::flush(len)}) {
                SCOPED_TRACE(::testing::Message() << "len " << len << " offsets " << offset << " and " << second);
                const Guarded<T> a(x, offset);
                const Guarded<T> b(y, second);
                if (c.call) {
                    const Guarded<T> dst(len, offset);
                    ASSERT_EQ(c.call(a.data(), b.data(), dst.data(), n), expected.status);
                    ASSERT_NO_FATAL_FAILURE(expectElements(dst, expected, c.same));
                    ASSERT_EQ(std::memcmp(b.data(), y.data(), len * sizeof(T)), 0);
                    const Guarded<T> first(x, offset);
                    ASSERT_EQ(c.call(first.data(), b.data(), first.data(), n), expected.status);
                    ASSERT_NO_FATAL_FAILURE(expectElements(first, expected, c.same)) << "over the first source";
                    const Guarded<T> over(y, second);
                    ASSERT_EQ(c.call(a.data(), over.data(), over.data(), n), expected.status);
                    ASSERT_NO_FATAL_FAILURE(expectElements(over, expected, c.same)) << "over the second source";
                }
                if (c.inPlace) {
                    ASSERT_EQ(c.inPlace(a.data(), b.data(), n), expected.status);
                    ASSERT_NO_FATAL_FAILURE(expectElements(b, expected, c.same));
                }
                ASSERT_EQ(std::memcmp(a.data(), x.data(), len * sizeof(T)), 0);
            }
        }
    }
}

// A reference element by element, without a status.
template <class S, class F>
auto eachElement(F f)
{
    return [f](const std::vector<S>& x) {
        Expected<decltype(f(x[0]))> expected;
        for (const S value : x) {
            expected.elements.push_back(f(value));
        }
        return expected;
    };
}

template <class T, class F>
auto eachPair(F f)
{
    return [f](const std::vector<T>& x, const std::vector<T>& y) {
        Expected<T> expected;
        for (std::size_t i = 0; i < x.size(); ++i) {
            expected.elements.push_back(f(x[i], y[i]));
        }
        return expected;
    };
}

} // namespace lyr::test
