// Vectors set, cleared, copied and moved.

#include "lyrsr.h"

#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

#include "vector/elementwise.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::vectorLengths;
using lyr::test::vectorOffsets;

template <class T>
void expectAll(const Guarded<T>& dst, T value)
{
    for (std::size_t i = 0; i < dst.size(); ++i) {
        ASSERT_EQ(std::memcmp(&dst[i], &value, sizeof(T)), 0) << "element " << i << " of " << dst.size();
    }
    ASSERT_TRUE(dst.intact());
}

template <class T>
void compareSet(Status (*set)(T, T*, Elem32s), T value)
{
    for (const std::size_t len : vectorLengths()) {
        for (const std::size_t offset : vectorOffsets<T>(len)) {
            const Guarded<T> dst(len, offset);
            ASSERT_EQ(set(value, dst.data(), static_cast<Elem32s>(len)), StsNoErr);
            ASSERT_NO_FATAL_FAILURE(expectAll(dst, value));
        }
    }
}

TEST(VectorFill, Set)
{
    compareSet<Elem8u>(lyrsSet_8u, 0xC3);
    compareSet<Elem16s>(lyrsSet_16s, -12345);
    compareSet<Elem32s>(lyrsSet_32s, -123456789);
    compareSet<Elem32f>(lyrsSet_32f, -0.0F);
    compareSet<Elem64f>(lyrsSet_64f, 1.0 / 3.0);
}

template <class T>
void compareZero(Status (*zero)(T*, Elem32s))
{
    for (const std::size_t len : vectorLengths()) {
        for (const std::size_t offset : vectorOffsets<T>(len)) {
            const Guarded<T> dst(len, offset);
            ASSERT_EQ(zero(dst.data(), static_cast<Elem32s>(len)), StsNoErr);
            ASSERT_NO_FATAL_FAILURE(expectAll(dst, T(0)));
        }
    }
}

TEST(VectorFill, Zero)
{
    compareZero<Elem8u>(lyrsZero_8u);
    compareZero<Elem16s>(lyrsZero_16s);
    compareZero<Elem32f>(lyrsZero_32f);
    compareZero<Elem64f>(lyrsZero_64f);
}

template <class T>
void compareCopy(Status (*copy)(const T*, T*, Elem32s))
{
    Random random(23);
    for (const std::size_t len : vectorLengths()) {
        std::vector<T> x(len);
        for (T& v : x) {
            // Any bits: signalling NaN are copied as they are.
            const auto bits = (static_cast<std::uint64_t>(random.uniform(INT32_MIN, INT32_MAX)) << 32U) ^
                              static_cast<std::uint64_t>(random.uniform(INT32_MIN, INT32_MAX));
            std::memcpy(&v, &bits, sizeof v);
        }
        for (const std::size_t offset : vectorOffsets<T>(len)) {
            const Guarded<T> src(len, offset);
            std::memcpy(src.data(), x.data(), len * sizeof(T));
            const Guarded<T> dst(len, Guarded<T>::flush(len));
            ASSERT_EQ(copy(src.data(), dst.data(), static_cast<Elem32s>(len)), StsNoErr);
            ASSERT_EQ(std::memcmp(dst.data(), x.data(), len * sizeof(T)), 0);
            ASSERT_TRUE(dst.intact());
        }
    }
}

TEST(VectorFill, Copy)
{
    compareCopy<Elem8u>(lyrsCopy_8u);
    compareCopy<Elem16s>(lyrsCopy_16s);
    compareCopy<Elem32s>(lyrsCopy_32s);
    compareCopy<Elem32f>(lyrsCopy_32f);
    compareCopy<Elem64f>(lyrsCopy_64f);
    compareCopy<Elem32f>(lyrsMove_32f);
}

TEST(VectorFill, MoveUpAndDownOverItself)
{
    for (const std::size_t len : vectorLengths()) {
        for (const std::size_t shift : {0U, 1U, 3U, 4U, 16U, 40U}) {
            std::vector<float> x(len + shift);
            std::iota(x.begin(), x.end(), 1.0F);
            std::vector<float> up(x);
            ASSERT_EQ(lyrsMove_32f(up.data(), up.data() + shift, static_cast<Elem32s>(len)), StsNoErr);
            std::vector<float> down(x);
            ASSERT_EQ(lyrsMove_32f(down.data() + shift, down.data(), static_cast<Elem32s>(len)), StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_EQ(up[shift + i], x[i]);
                ASSERT_EQ(down[i], x[shift + i]);
            }
        }
    }
}

} // namespace
