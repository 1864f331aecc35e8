// Copies of columns.

#include "lyrsr.h"

#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "support/guarded.hpp"
#include "support/random.hpp"
#include "support/ulp.hpp"

namespace {

using lyr::test::Guarded;
using lyr::test::Random;

Status copyColumn(const Elem32f* src, Elem32s width, Elem32f* dst, Elem32s step, Elem32s height)
{
    return lyrsCopyColumn_32f_D2(src, width, dst, step, height);
}
Status copyColumn(const Elem16s* src, Elem32s width, Elem16s* dst, Elem32s step, Elem32s height)
{
    return lyrsCopyColumn_16s_D2(src, width, dst, step, height);
}

template <class T>
void compareCopies()
{
    Random random(41);
    for (std::size_t width = 1; width <= 70; ++width) {
        for (const std::size_t gap : {std::size_t{0}, std::size_t{3}, 2 * width}) {
            constexpr std::size_t height = 4;
            const std::size_t step = width + gap;
            const auto x = random.vector<T>(height * width, -100, 100);
            const Guarded<T> src(x, Guarded<T>::flush(x.size()));
            const std::size_t count = (height - 1) * step + width;
            const Guarded<T> dst(std::vector<T>(count, T{77}), Guarded<T>::flush(count));
            ASSERT_EQ(copyColumn(src.data(), static_cast<Elem32s>(width), dst.data(), static_cast<Elem32s>(step),
                                 static_cast<Elem32s>(height)),
                      StsNoErr);
            for (std::size_t i = 0; i < count; ++i) {
                ASSERT_EQ(dst[i], i % step < width ? x[i / step * width + i % step] : T{77}) << width << ' ' << i;
            }
            EXPECT_TRUE(dst.intact());
        }
    }
}

TEST(CopyColumn, EveryWidth)
{
    compareCopies<Elem32f>();
    compareCopies<Elem16s>();
}

TEST(CopyColumn, BitsOfNotANumberPass)
{
    const std::uint32_t bits[2] = {0x7FA12345, 0xFFC54321}; // a signalling one and a negative one
    std::uint32_t copy[2] = {};
    ASSERT_EQ(lyrsCopyColumn_32f_D2(reinterpret_cast<const float*>(bits), 1, reinterpret_cast<float*>(copy), 1, 2),
              StsNoErr);
    EXPECT_EQ(copy[0], bits[0]);
    EXPECT_EQ(copy[1], bits[1]);
}

// ---------------------------------------------------------------------------------------------------------- by index

template <class T>
struct Indirect
{
    Status (*block)(const T*, Elem32s, Elem32s, T*, const Elem32s*, Elem32s, Elem32s, Elem32s);
    Status (*table)(const T* const*, Elem32s, T* const*, const Elem32s*, Elem32s, Elem32s);
};

const Indirect<Elem32f> indirect32f{lyrsCopyColumn_Indirect_32f_D2, lyrsCopyColumn_Indirect_32f_D2L};
const Indirect<Elem64f> indirect64f{lyrsCopyColumn_Indirect_64f_D2, lyrsCopyColumn_Indirect_64f_D2L};
const Indirect<Elem16s> indirect16s{lyrsCopyColumn_Indirect_16s_D2, lyrsCopyColumn_Indirect_16s_D2L};

template <class T>
void compareGathers(const Indirect<T>& member)
{
    Random random(42);
    constexpr std::size_t height = 3;
    for (std::size_t srcLen = 1; srcLen <= 20; ++srcLen) {
        for (std::size_t dstLen = 1; dstLen <= 40; dstLen += 3) {
            const std::size_t srcStep = srcLen + srcLen % 4;
            const std::size_t dstStep = dstLen + dstLen % 3;
            const std::size_t srcCount = (height - 1) * srcStep + srcLen;
            const std::size_t dstCount = (height - 1) * dstStep + dstLen;
            const auto x = random.vector<T>(srcCount, -100, 100);
            const auto index = random.vector<Elem32s>(dstLen, 0, static_cast<Elem32s>(srcLen) - 1);
            const Guarded<T> src(x, Guarded<T>::flush(srcCount));
            const Guarded<Elem32s> indices(index, Guarded<Elem32s>::flush(dstLen));
            for (const bool isTable : {false, true}) {
                const Guarded<T> dst(std::vector<T>(dstCount, T{77}), Guarded<T>::flush(dstCount));
                std::vector<const T*> from;
                std::vector<T*> to;
                for (std::size_t r = 0; r < height; ++r) {
                    from.push_back(src.data() + r * srcStep);
                    to.push_back(dst.data() + r * dstStep);
                }
                const auto srcWidth = static_cast<Elem32s>(srcLen);
                const auto dstWidth = static_cast<Elem32s>(dstLen);
                ASSERT_EQ(isTable ? member.table(from.data(), srcWidth, to.data(), indices.data(), dstWidth, height)
                                  : member.block(src.data(), srcWidth, static_cast<Elem32s>(srcStep), dst.data(),
                                                 indices.data(), dstWidth, static_cast<Elem32s>(dstStep), height),
                          StsNoErr);
                for (std::size_t i = 0; i < dstCount; ++i) {
                    const std::size_t c = i % dstStep;
                    ASSERT_EQ(dst[i],
                              c < dstLen ? x[i / dstStep * srcStep + static_cast<std::size_t>(index[c])] : T{77});
                }
                EXPECT_TRUE(dst.intact());
            }
        }
    }
}

TEST(CopyColumnIndirect, EveryShape)
{
    compareGathers(indirect32f);
    compareGathers(indirect64f);
    compareGathers(indirect16s);
}

// A bad index is met on the way through the first row, of which the part ahead of it stays written, as callers expect.
template <class T>
void expectPartialRow(const Indirect<T>& member)
{
    const std::vector<T> x{1, 2, 3, 4, 5, 6};
    for (const Elem32s bad : {-1, 3, INT32_MIN, INT32_MAX}) {
        const std::vector<Elem32s> index{2, 0, bad, 1};
        const std::vector<T> expected{3, 1, 77, 77, 77, 77, 77, 77};
        std::vector<T> dst(8, T{77});
        EXPECT_EQ(member.block(x.data(), 3, 3, dst.data(), index.data(), 4, 4, 2), StsSize);
        EXPECT_EQ(dst, expected);
        std::vector<T> rows(8, T{77});
        const T* const from[] = {x.data(), x.data() + 3};
        T* const to[] = {rows.data(), rows.data() + 4};
        EXPECT_EQ(member.table(from, 3, to, index.data(), 4, 2), StsSize);
        EXPECT_EQ(rows, expected);
    }
}

TEST(CopyColumnIndirect, ABadIndexLeavesTheFirstRowPartlyWritten)
{
    expectPartialRow(indirect32f);
    expectPartialRow(indirect64f);
    expectPartialRow(indirect16s);
}

// Source, destination and height are tested in this order, each size ahead of its stride.
TEST(CopyColumnIndirect, ChecksInOrder)
{
    const std::vector<float> x(4, 1.0F);
    std::vector<float> dst(4, 2.0F);
    const std::vector<Elem32s> index{0, 5};
    const auto call = [&](Elem32s srcLen, Elem32s srcStep, Elem32s dstLen, Elem32s dstStep, Elem32s height) {
        return lyrsCopyColumn_Indirect_32f_D2(x.data(), srcLen, srcStep, dst.data(), index.data(), dstLen, dstStep,
                                              height);
    };
    EXPECT_EQ(call(0, -1, 0, -1, 0), StsSize);
    EXPECT_EQ(call(2, 1, 0, -1, 0), StsStep);
    EXPECT_EQ(call(2, 2, 0, -1, 0), StsSize);
    EXPECT_EQ(call(2, 2, 2, 1, 0), StsStep);
    EXPECT_EQ(call(2, 2, 2, 2, 0), StsSize);
    EXPECT_EQ(dst, std::vector<float>(4, 2.0F));
    EXPECT_EQ(call(2, 2, 2, 2, 1), StsSize);
    EXPECT_EQ(dst[0], 1.0F);
}

} // namespace
