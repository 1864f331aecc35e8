// Streamed first and second differences: every member against the formula over the whole utterance, fed in calls of
// every size.

#include "lyrsr.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "delta_stream.hpp"
#include "oracle/delta.hpp"

namespace {

using lyr::oracle::DeltaForm;
using lyr::test::calls;
using lyr::test::expectRows;
using lyr::test::feed;
using lyr::test::Guarded;
using lyr::test::Random;

// One call of a member; `gains` as in the oracle.
template <class T>
struct Stream
{
    const T* src;
    Elem32s width;
    T* dst;
    Elem32s step;
    Elem32s height;
    const T* gains;
    Elem32s mode;
    Elem32s scale;
};

template <class T>
struct Member
{
    const char* name;
    DeltaForm form;
    Status (*call)(const Stream<T>&);

    [[nodiscard]] int history() const { return (form.order + 1) * form.window; }
    [[nodiscard]] std::size_t parts() const { return static_cast<std::size_t>(form.order) + 1; }
};

#define LYR_MEMBER(NAME, T, WINDOW, ORDER, MUL, ...)                                                                   \
    Member<T>                                                                                                          \
    {                                                                                                                  \
#NAME, {WINDOW, ORDER, MUL }, [](const Stream <T>& s) { return NAME(__VA_ARGS__); }                            \
    }

const Member<Elem32f> single[] = {
    LYR_MEMBER(lyrsDelta_Win1_32f_D2, Elem32f, 1, 1, false, s.src, s.width, s.dst, s.step, s.height, s.gains[0],
               s.mode),
    LYR_MEMBER(lyrsDelta_Win2_32f_D2, Elem32f, 2, 1, false, s.src, s.width, s.dst, s.step, s.height, s.gains[0],
               s.mode),
    LYR_MEMBER(lyrsDeltaDelta_Win1_32f_D2, Elem32f, 1, 2, false, s.src, s.width, s.dst, s.step, s.height, s.gains[0],
               s.gains[1], s.mode),
    LYR_MEMBER(lyrsDeltaDelta_Win2_32f_D2, Elem32f, 2, 2, false, s.src, s.width, s.dst, s.step, s.height, s.gains[0],
               s.gains[1], s.mode),
    LYR_MEMBER(lyrsDeltaMul_Win1_32f_D2, Elem32f, 1, 1, true, s.src, s.gains, s.width, s.dst, s.step, s.height, s.mode),
    LYR_MEMBER(lyrsDeltaMul_Win2_32f_D2, Elem32f, 2, 1, true, s.src, s.gains, s.width, s.dst, s.step, s.height, s.mode),
    LYR_MEMBER(lyrsDeltaDeltaMul_Win1_32f_D2, Elem32f, 1, 2, true, s.src, s.gains, s.width, s.dst, s.step, s.height,
               s.mode),
    LYR_MEMBER(lyrsDeltaDeltaMul_Win2_32f_D2, Elem32f, 2, 2, true, s.src, s.gains, s.width, s.dst, s.step, s.height,
               s.mode),
};

const Member<Elem16s> fixed[] = {
    LYR_MEMBER(lyrsDelta_Win1_16s_D2Sfs, Elem16s, 1, 1, false, s.src, s.width, s.dst, s.step, s.height, s.gains[0],
               s.mode, s.scale),
    LYR_MEMBER(lyrsDelta_Win2_16s_D2Sfs, Elem16s, 2, 1, false, s.src, s.width, s.dst, s.step, s.height, s.gains[0],
               s.mode, s.scale),
    LYR_MEMBER(lyrsDeltaDelta_Win1_16s_D2Sfs, Elem16s, 1, 2, false, s.src, s.width, s.dst, s.step, s.height, s.gains[0],
               s.gains[1], s.mode, s.scale),
    LYR_MEMBER(lyrsDeltaDelta_Win2_16s_D2Sfs, Elem16s, 2, 2, false, s.src, s.width, s.dst, s.step, s.height, s.gains[0],
               s.gains[1], s.mode, s.scale),
    LYR_MEMBER(lyrsDeltaMul_Win1_16s_D2Sfs, Elem16s, 1, 1, true, s.src, s.gains, s.width, s.dst, s.step, s.height,
               s.mode, s.scale),
    LYR_MEMBER(lyrsDeltaMul_Win2_16s_D2Sfs, Elem16s, 2, 1, true, s.src, s.gains, s.width, s.dst, s.step, s.height,
               s.mode, s.scale),
    LYR_MEMBER(lyrsDeltaDeltaMul_Win1_16s_D2Sfs, Elem16s, 1, 2, true, s.src, s.gains, s.width, s.dst, s.step, s.height,
               s.mode, s.scale),
    LYR_MEMBER(lyrsDeltaDeltaMul_Win2_16s_D2Sfs, Elem16s, 2, 2, true, s.src, s.gains, s.width, s.dst, s.step, s.height,
               s.mode, s.scale),
};

constexpr float filler(float /*tag*/)
{
    return 12345.0F;
}
constexpr Elem16s filler(Elem16s /*tag*/)
{
    return 12345;
}

std::vector<float> gainData(Random& random, std::size_t n, float /*tag*/)
{
    return random.vector<float>(n, -2, 2);
}
std::vector<Elem16s> gainData(Random& random, std::size_t n, Elem16s /*tag*/)
{
    auto gains = random.vector<Elem16s>(n, -32768, 32767);
    gains[0] = n == 2 ? Elem16s{-32768} : Elem16s{1};
    return gains;
}

// A stream of `frames` frames in calls of `sizes`, with the output matrix at `offset` bytes from a 16-byte boundary.
template <class T>
void compare(const Member<T>& member, std::size_t width, std::size_t gap, int frames, const std::vector<int>& sizes,
             std::size_t offset, int scale, Random& random)
{
    SCOPED_TRACE(std::string(member.name) + " width " + std::to_string(width) + " frames " + std::to_string(frames) +
                 " first calls " + std::to_string(sizes[0]) + ", " + std::to_string(sizes.size() > 1 ? sizes[1] : -1) +
                 " offset " + std::to_string(offset) + " scale " + std::to_string(scale));
    const auto x = lyr::test::frameData(random, static_cast<std::size_t>(frames) * width, T{});
    const auto gains = gainData(random, member.form.mul ? member.parts() * width : 2, T{});
    const Guarded<T> gain(gains, member.form.mul ? Guarded<T>::flush(gains.size()) : 0);
    DeltaForm form = member.form;
    form.scale = scale;
    form.wide = std::string(member.name) == "lyrsDeltaDelta_Win2_16s_D2Sfs" && width >= 14;
    const auto expected = lyr::oracle::deltaFeatures(x, width, gains, form);

    const std::size_t columns = member.parts() * width;
    const std::size_t step = columns + gap;
    const Guarded<T> rows((static_cast<std::size_t>(frames) - 1) * step + columns, offset);
    std::fill_n(rows.data(), rows.size(), filler(T{}));
    feed(x, width, member.history(), sizes, rows.data(), static_cast<std::ptrdiff_t>(step),
         [&](const T* src, T* dst, int height, Elem32s mode) {
             return member.call(
                 {src, static_cast<Elem32s>(width), dst, static_cast<Elem32s>(step), height, gain.data(), mode, scale});
         });
    expectRows(rows.data(), step, columns, expected, filler(T{}));
    EXPECT_TRUE(rows.intact());
}

template <class T>
void compareWidths(const Member<T>& member)
{
    Random random(11);
    constexpr int scales[] = {0, 8, 15, 3, 1, 31, 32, 40, -1, -3, -15, -16, -40, INT32_MIN, INT32_MAX};
    std::size_t k = 0;
    const int h = member.history();
    for (std::size_t width = 1; width <= 70; ++width) {
        for (const std::size_t gap : {std::size_t{0}, std::size_t{5}}) {
            const std::size_t offset = (width * sizeof(T)) % 16;
            compare(member, width, gap, h + 9, calls(h + 9, h, 3, width % 2 == 0), gap == 0 ? 0 : offset,
                    scales[k++ % std::size(scales)], random);
        }
    }
}

template <class T>
void compareCalls(const Member<T>& member)
{
    Random random(12);
    const int h = member.history();
    for (int frames = h; frames <= h + 12; ++frames) {
        for (int chunk = 1; chunk <= frames - h + 1; ++chunk) {
            for (const bool flush : {false, true}) {
                compare(member, 13, 0, frames, calls(frames, h, chunk, flush), 0, 9, random);
            }
        }
        // All in the first call; and a first call that is longer than the history.
        compare(member, 13, 1, frames, {frames}, 4, 9, random);
        compare(member, 14, 1, frames, {frames, 0}, 2 * sizeof(T), 9, random);
        compare(member, 4, 0, frames + 5, {frames, 2, 3}, 0, 9, random);
    }
}

template <class T>
void compareOffsets(const Member<T>& member)
{
    Random random(13);
    const int h = member.history();
    for (std::size_t offset = 0; offset < 16; offset += sizeof(T)) {
        for (const std::size_t width : {8U, 13U, 16U, 24U}) {
            // Strides that keep the alignment, and the next ones.
            const std::size_t columns = member.parts() * width;
            for (const std::size_t gap : {(64 - columns % 64) % 64, std::size_t{1}}) {
                compare(member, width, gap, h + 4, calls(h + 4, h, 2, false), offset, 7, random);
            }
        }
    }
}

TEST(DeltaStream, EveryWidthInSinglePrecision)
{
    for (const auto& member : single) {
        compareWidths(member);
    }
}

TEST(DeltaStream, EveryWidthInFixedPoint)
{
    for (const auto& member : fixed) {
        compareWidths(member);
    }
}

TEST(DeltaStream, EveryCallSizeInSinglePrecision)
{
    for (const auto& member : single) {
        compareCalls(member);
    }
}

TEST(DeltaStream, EveryCallSizeInFixedPoint)
{
    for (const auto& member : fixed) {
        compareCalls(member);
    }
}

TEST(DeltaStream, EveryOffset)
{
    for (const auto& member : single) {
        compareOffsets(member);
    }
    for (const auto& member : fixed) {
        compareOffsets(member);
    }
}

TEST(DeltaStream, LongUtterances)
{
    Random random(14);
    for (const auto& member : single) {
        for (const int frames : {249, 250, 251}) {
            compare(member, 13, 0, frames, {frames}, 0, 0, random);
        }
    }
    for (const auto& member : fixed) {
        compare(member, 13, 0, 251, {251}, 0, 12, random);
    }
}

// What waits for a future keeps its bytes until the call that brings it.
template <class T>
void expectWaitingRowsUntouched(const Member<T>& member)
{
    SCOPED_TRACE(member.name);
    constexpr std::size_t width = 5;
    const std::size_t step = member.parts() * width;
    const auto h = static_cast<std::size_t>(member.history());
    const std::size_t frames = h + 3;
    Random random(15);
    const auto x = random.vector<T>(frames * width, T{-100}, T{100});
    const std::vector<T> gains(3 * width, T{1});
    std::vector<T> rows(frames * step, filler(T{}));
    ASSERT_EQ(member.call({x.data(), width, rows.data(), static_cast<Elem32s>(step), static_cast<Elem32s>(frames),
                           gains.data(), DeltaBegin, 0}),
              StsNoErr);
    const auto window = static_cast<std::size_t>(member.form.window);
    for (std::size_t r = 0; r < frames; ++r) {
        for (std::size_t part = 1; part < member.parts(); ++part) {
            const bool waits = r + part * window >= frames;
            for (std::size_t c = 0; c < width; ++c) {
                EXPECT_EQ(rows[r * step + part * width + c] == filler(T{}), waits) << r << ' ' << part << ' ' << c;
            }
        }
    }
}

TEST(DeltaStream, RowsWithoutAFutureAreLeftUnfinished)
{
    for (const auto& member : single) {
        expectWaitingRowsUntouched(member);
    }
    for (const auto& member : fixed) {
        expectWaitingRowsUntouched(member);
    }
}

template <class T>
void expectSizes(const Member<T>& member)
{
    SCOPED_TRACE(member.name);
    const Elem32s h = member.history();
    const auto step = static_cast<Elem32s>(member.parts()) * 3;
    const std::vector<T> x(60, T{1});
    const std::vector<T> gains(9, T{1});
    std::vector<T> rows(400, filler(T{}));
    const std::vector<T> before = rows;
    const auto call = [&](Elem32s width, Elem32s rowStep, Elem32s height, Elem32s mode) {
        return member.call({x.data(), width, rows.data(), rowStep, height, gains.data(), mode, 0});
    };
    // Fewer frames than the history are an error at the beginning, even where the utterance ends with them.
    EXPECT_EQ(call(3, step, h - 1, DeltaBegin), StsSize);
    EXPECT_EQ(call(3, step, h - 1, DeltaBegin | DeltaEnd), StsSize);
    EXPECT_EQ(call(3, step, 0, DeltaBegin | DeltaEnd), StsSize);
    EXPECT_EQ(call(3, step, 0, 0), StsSize);
    EXPECT_EQ(call(3, step, 0, 4), StsSize);
    EXPECT_EQ(call(3, step, -1, DeltaEnd), StsSize);
    EXPECT_EQ(call(0, step, h, DeltaBegin), StsSize);
    EXPECT_EQ(call(3, step - 1, h, DeltaBegin), StsStep);
    // The stride is tested ahead of the history, and behind the other sizes.
    EXPECT_EQ(call(3, step - 1, h - 1, DeltaBegin), StsStep);
    EXPECT_EQ(call(3, step - 1, 0, 0), StsSize);
    EXPECT_EQ(call(INT32_MAX, INT32_MAX, h, DeltaBegin), StsStep);
    EXPECT_EQ(rows, before);
    EXPECT_EQ(call(3, step, h, DeltaBegin), StsNoErr);
}

TEST(DeltaStream, FramesThatDoNotFit)
{
    for (const auto& member : single) {
        expectSizes(member);
    }
    for (const auto& member : fixed) {
        expectSizes(member);
    }
}

TEST(DeltaStream, OtherModeBitsAreIgnored)
{
    const std::vector<float> x{1, 2, 4, 8};
    std::vector<float> rows(8, 0.0F);
    ASSERT_EQ(lyrsDelta_Win1_32f_D2(x.data(), 1, rows.data(), 2, 4, 1.0F, ~0), StsNoErr);
    EXPECT_EQ(rows, (std::vector<float>{1, 1, 2, 3, 4, 6, 8, 4}));
}

// Differences of 16 bits wrap before the gain, and are not limited: 32767 - -32768 is -1.
TEST(DeltaStream, DifferencesWrap)
{
    const std::vector<Elem16s> x{-32768, 0, 32767};
    std::vector<Elem16s> rows(6);
    ASSERT_EQ(lyrsDelta_Win1_16s_D2Sfs(x.data(), 1, rows.data(), 2, 3, 5, DeltaBegin | DeltaEnd, 0), StsNoErr);
    EXPECT_EQ(rows[1], -32768); // 0 - -32768 wraps to -32768; times 5 saturates
    EXPECT_EQ(rows[3], -5);
    EXPECT_EQ(rows[5], 32767);
}

// The sum of the differences saturates below width 14 and is exact from 14 on, in this member alone.
TEST(DeltaStream, SumsOfSixteenBitsBelowFourteenColumnsAndOfThirtyTwoFromThere)
{
    for (const Elem32s width : {13, 14}) {
        std::vector<Elem16s> x(static_cast<std::size_t>(6 * width));
        for (std::size_t i = 0; i < x.size(); ++i) {
            x[i] = static_cast<Elem16s>(std::min<std::size_t>(i / static_cast<std::size_t>(width), 2) * 12000);
        }
        const auto step = static_cast<std::size_t>(3 * width);
        std::vector<Elem16s> rows(6 * step);
        ASSERT_EQ(
            lyrsDeltaDelta_Win2_16s_D2Sfs(x.data(), width, rows.data(), 3 * width, 6, 1, 0, DeltaBegin | DeltaEnd, 1),
            StsNoErr);
        // a = 12000, d = 24000 at an inner row and at the first: 12000 + 32767 saturates, 12000 + 48000 is 60000.
        const Elem16s expected = width < 14 ? 16383 : 30000;
        EXPECT_EQ(rows[2 * step + static_cast<std::size_t>(width)], expected);
        EXPECT_EQ(rows[static_cast<std::size_t>(width)], expected);
    }
}

// From width 14 on the product with the gain has 32 bits and wraps.
TEST(DeltaStream, TheWideProductWraps)
{
    constexpr Elem32s width = 14;
    std::vector<Elem16s> x(6 * width, 0);
    for (std::size_t c = 0; c < width; ++c) { // at row 2: a = 32767, d = 32767
        x[3 * width + c] = 32767;
        x[4 * width + c] = 32767;
        x[5 * width + c] = 32767;
    }
    std::vector<Elem16s> rows(std::size_t{6} * 3 * width);
    ASSERT_EQ(
        lyrsDeltaDelta_Win2_16s_D2Sfs(x.data(), width, rows.data(), 3 * width, 6, 32767, 0, DeltaBegin | DeltaEnd, 16),
        StsNoErr);
    // 3 * 32767 * 32767 = 3221028867 is -1073938429 in 32 bits.
    EXPECT_EQ(rows[std::size_t{2} * 3 * width + width], -16387);
}

} // namespace
