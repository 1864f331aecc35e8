// Magnitudes of complex vectors and products of spectra, exactly.

#include "lyrsr.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "oracle/vector_arithmetic.hpp"
#include "vector/elementwise.hpp"

namespace {

using lyr::test::Expected;
using lyr::test::Guarded;
using lyr::test::Random;
using lyr::test::sameBits;

std::vector<float> numbers(Random& random, std::size_t n)
{
    return lyr::test::withSpecials<float>(random, n, -100, 100);
}

TEST(VectorSpectrum, Magnitude)
{
    Random random(5);
    for (const std::size_t len : lyr::test::vectorLengths()) {
        const auto parts = numbers(random, 2 * len);
        for (const std::size_t offset : {0U, 4U, 8U, 12U}) {
            for (const std::size_t dstOffset : {std::size_t{0}, std::size_t{4}, Guarded<float>::flush(len)}) {
                const Guarded<float> src(parts, offset == 12 ? Guarded<float>::flush(2 * len) : offset);
                const Guarded<float> dst(len, dstOffset);
                const auto* complex = reinterpret_cast<const Elem32fc*>(src.data());
                ASSERT_EQ(lyrsMagnitude_32fc(complex, dst.data(), static_cast<Elem32s>(len)), StsNoErr);
                for (std::size_t i = 0; i < len; ++i) {
                    ASSERT_TRUE(sameBits(dst[i], lyr::oracle::magnitude({parts[2 * i], parts[2 * i + 1]})))
                        << "element " << i << " of " << len;
                }
                ASSERT_TRUE(dst.intact());
                ASSERT_EQ(src.copy().size(), parts.size());
            }
            // The magnitudes over the spectrum that they come from.
            const Guarded<float> both(parts, offset);
            ASSERT_EQ(lyrsMagnitude_32fc(reinterpret_cast<const Elem32fc*>(both.data()), both.data(),
                                         static_cast<Elem32s>(len)),
                      StsNoErr);
            for (std::size_t i = 0; i < len; ++i) {
                ASSERT_TRUE(sameBits(both[i], lyr::oracle::magnitude({parts[2 * i], parts[2 * i + 1]}))) << "in place";
            }
            ASSERT_TRUE(both.intact());
        }
    }
}

TEST(VectorSpectrum, MagnitudeOfZeroIsZeroAndOfSubnormalSquaresIsRight)
{
    const Elem32fc z[] = {
        {0, 0}, {-0.0F, 0}, {1e-20F, 0}, {3e-20F, 4e-20F}, {std::numeric_limits<float>::infinity(), 1}};
    float m[5];
    ASSERT_EQ(lyrsMagnitude_32fc(z, m, 5), StsNoErr);
    EXPECT_TRUE(sameBits(m[0], 0.0F));
    EXPECT_TRUE(sameBits(m[1], 0.0F));
    EXPECT_NEAR(m[2] * 1e20F, 1.0F, 1e-4F); // the square has 17 bits left
    EXPECT_NEAR(m[3] * 1e20F, 5.0F, 5e-5F);
    EXPECT_EQ(m[4], std::numeric_limits<float>::infinity());
}

// The squares are of single precision, too.
TEST(VectorSpectrum, MagnitudeIsLimitedByItsSquares)
{
    const Elem32fc z[] = {{0x1p64F, 0}, {0x1.fffffep63F, 0}, {0, -0x1p-75F}, {0x1p-74F, 0}, {0x1p-62F, 0}};
    float m[5];
    ASSERT_EQ(lyrsMagnitude_32fc(z, m, 5), StsNoErr);
    EXPECT_EQ(m[0], std::numeric_limits<float>::infinity());
    EXPECT_EQ(m[1], 0x1.fffffep63F);
    EXPECT_EQ(m[2], 0.0F) << "half of the smallest number goes to the even zero";
    EXPECT_EQ(m[3], 0x1p-74F);
    EXPECT_EQ(m[4], 0x1p-62F);
}

TEST(VectorSpectrum, MulPackConj)
{
    lyr::test::compareBinary<float>({numbers, {}, lyrsMulPackConj_32f_I, [](const auto& x, const auto& y) {
                                         return Expected<float>{lyr::oracle::mulPackConj(x, y), StsNoErr};
                                     }});
}

TEST(VectorSpectrum, MulPackConjByHand)
{
    const float x[] = {2, 1, 2, 5};
    float y[] = {3, 3, 4, 7};
    ASSERT_EQ(lyrsMulPackConj_32f_I(x, y, 4), StsNoErr);
    EXPECT_EQ(y[0], 6);
    EXPECT_EQ(y[1], 11); // 1 * 3 + 2 * 4
    EXPECT_EQ(y[2], 2);  // 2 * 3 - 1 * 4
    EXPECT_EQ(y[3], 35);
}

} // namespace
