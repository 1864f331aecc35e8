// Delta features: utterances of 9 frames of 5 elements, in one call, and calls of 9 frames that follow others.

#include "contract/contract.hpp"

namespace lyr::contract {
namespace {

// The bound by the history has a place of its own, behind the stride.
const auto streamed = order(StsNullPtr, StsSize, StsStep, StsSize);
constexpr int sizePlace = 1;
constexpr int historyPlace = 3;

constexpr std::size_t frames = 9;
constexpr std::size_t width = 5;
constexpr Elem32s whole = DeltaBegin | DeltaEnd;

auto columns()
{
    return size(width).rank(sizePlace);
}

// With DeltaBegin at least the history; 0 passes the first test where the utterance ends too.
auto atBeginning(Elem32s history)
{
    return value(Elem32s{frames})
        .bad({INT32_MIN, -1}, StsSize)
        .rank(sizePlace)
        .bad({0, history - 1}, StsSize)
        .rank(historyPlace)
        .legal({history});
}

auto rowStride(std::size_t parts)
{
    return stride(static_cast<Elem32s>(parts * width + 2), static_cast<Elem32s>(parts * width));
}

template <class T>
auto matrix(std::size_t parts)
{
    return out<T>(frames * (parts * width + 2)).spaced(parts * width + 2, parts * width);
}

// Rows of functions with scalar gains, and with a vector of them; `rest` is what comes behind the height.
template <class T, class Function, class... Rest>
Row utterance(const char* name, Function function, std::size_t parts, Elem32s history, Rest... rest)
{
    return row(name, function, streamed, in<T>(frames * width), columns(), matrix<T>(parts), rowStride(parts),
               atBeginning(history), rest...);
}

template <class T, class Function, class... Rest>
Row mulUtterance(const char* name, Function function, std::size_t parts, Elem32s history, Rest... rest)
{
    return row(name, function, streamed, in<T>(frames * width), in<T>(parts * width), columns(), matrix<T>(parts),
               rowStride(parts), atBeginning(history), rest...);
}

const bool single = addRows({
    utterance<Elem32f>("lyrsDelta_Win1_32f_D2", lyrsDelta_Win1_32f_D2, 2, 2, value(0.5F), value(whole)),
    utterance<Elem32f>("lyrsDelta_Win2_32f_D2", lyrsDelta_Win2_32f_D2, 2, 4, value(0.5F), value(whole)),
    utterance<Elem32f>("lyrsDeltaDelta_Win1_32f_D2", lyrsDeltaDelta_Win1_32f_D2, 3, 3, value(0.5F), value(0.25F),
                       value(whole)),
    utterance<Elem32f>("lyrsDeltaDelta_Win2_32f_D2", lyrsDeltaDelta_Win2_32f_D2, 3, 6, value(0.5F), value(0.25F),
                       value(whole)),
    mulUtterance<Elem32f>("lyrsDeltaMul_Win1_32f_D2", lyrsDeltaMul_Win1_32f_D2, 2, 2, value(whole)),
    mulUtterance<Elem32f>("lyrsDeltaMul_Win2_32f_D2", lyrsDeltaMul_Win2_32f_D2, 2, 4, value(whole)),
    mulUtterance<Elem32f>("lyrsDeltaDeltaMul_Win1_32f_D2", lyrsDeltaDeltaMul_Win1_32f_D2, 3, 3, value(whole)),
    mulUtterance<Elem32f>("lyrsDeltaDeltaMul_Win2_32f_D2", lyrsDeltaDeltaMul_Win2_32f_D2, 3, 6, value(whole)),
});

constexpr Elem16s gain = 3;

const bool fixed = addRows({
    utterance<Elem16s>("lyrsDelta_Win1_16s_D2Sfs", lyrsDelta_Win1_16s_D2Sfs, 2, 2, value(gain), value(whole), value(1)),
    utterance<Elem16s>("lyrsDelta_Win2_16s_D2Sfs", lyrsDelta_Win2_16s_D2Sfs, 2, 4, value(gain), value(whole), value(1)),
    utterance<Elem16s>("lyrsDeltaDelta_Win1_16s_D2Sfs", lyrsDeltaDelta_Win1_16s_D2Sfs, 3, 3, value(gain), value(gain),
                       value(whole), value(1)),
    utterance<Elem16s>("lyrsDeltaDelta_Win2_16s_D2Sfs", lyrsDeltaDelta_Win2_16s_D2Sfs, 3, 6, value(gain), value(gain),
                       value(whole), value(1)),
    mulUtterance<Elem16s>("lyrsDeltaMul_Win1_16s_D2Sfs", lyrsDeltaMul_Win1_16s_D2Sfs, 2, 2, value(whole), value(1)),
    mulUtterance<Elem16s>("lyrsDeltaMul_Win2_16s_D2Sfs", lyrsDeltaMul_Win2_16s_D2Sfs, 2, 4, value(whole), value(1)),
    mulUtterance<Elem16s>("lyrsDeltaDeltaMul_Win1_16s_D2Sfs", lyrsDeltaDeltaMul_Win1_16s_D2Sfs, 3, 3, value(whole),
                          value(1)),
    mulUtterance<Elem16s>("lyrsDeltaDeltaMul_Win2_16s_D2Sfs", lyrsDeltaDeltaMul_Win2_16s_D2Sfs, 3, 6, value(whole),
                          value(1)),
});

// Calls that follow others need no frames of their own at the end, and some in between.
auto following(Elem32s mode)
{
    auto height = value(Elem32s{frames}).bad({INT32_MIN, -1}, StsSize).rank(sizePlace);
    return (mode & DeltaEnd) != 0 ? height.legal({0, 1}) : height.bad({0}, StsSize).rank(sizePlace).legal({1});
}

Row followingCall(Elem32s mode)
{
    constexpr std::size_t rows = frames + 6;
    return row("lyrsDeltaDelta_Win2_32f_D2", lyrsDeltaDelta_Win2_32f_D2, streamed, in<Elem32f>(frames * width),
               columns(), inOut<Elem32f>(rows * 17).spaced(17, 15), rowStride(3), following(mode), value(0.5F),
               value(0.25F), value(mode));
}

const bool follows = addRows({followingCall(0), followingCall(DeltaEnd)});

template <class T>
auto auroraMatrix()
{
    return out<T>(frames * 41).spaced(41, 39);
}

// The rows of the call before, and what is appended to them.
template <class T>
auto followed()
{
    return inOut<T>((frames + 8) * 41).spaced(41, 39);
}

const bool aurora = addRows({
    row("lyrsDeltaDelta_Aurora_32f_D2", lyrsDeltaDelta_Aurora_32f_D2, streamed, in<Elem32f>(frames * 14),
        auroraMatrix<Elem32f>(), stride(41, 39), atBeginning(8), value(whole)),
    row("lyrsDeltaDelta_Aurora_16s_D2Sfs", lyrsDeltaDelta_Aurora_16s_D2Sfs, streamed, in<Elem16s>(frames * 14),
        auroraMatrix<Elem16s>(), stride(41, 39), atBeginning(8), value(whole), value(1)),
    row("lyrsDeltaDeltaMul_Aurora_32f_D2", lyrsDeltaDeltaMul_Aurora_32f_D2, streamed, in<Elem32f>(frames * 14),
        in<Elem32f>(39), auroraMatrix<Elem32f>(), stride(41, 39), atBeginning(8), value(whole)),
    row("lyrsDeltaDeltaMul_Aurora_16s_D2Sfs", lyrsDeltaDeltaMul_Aurora_16s_D2Sfs, streamed, in<Elem16s>(frames * 14),
        in<Elem16s>(39), auroraMatrix<Elem16s>(), stride(41, 39), atBeginning(8), value(whole), value(1)),
});

// Calls that follow others; `rest` is what comes behind the mode.
template <class T, class Function, class... Rest>
Row followingAurora(const char* name, Function function, Elem32s mode, Rest... rest)
{
    return row(name, function, streamed, in<T>(frames * 14), followed<T>(), stride(41, 39), following(mode),
               value(mode), rest...);
}

template <class T, class Function, class... Rest>
Row followingAuroraMul(const char* name, Function function, Elem32s mode, Rest... rest)
{
    return row(name, function, streamed, in<T>(frames * 14), in<T>(39), followed<T>(), stride(41, 39), following(mode),
               value(mode), rest...);
}

bool addFollowingAurora(Elem32s mode)
{
    return addRows({
        followingAurora<Elem32f>("lyrsDeltaDelta_Aurora_32f_D2", lyrsDeltaDelta_Aurora_32f_D2, mode),
        followingAurora<Elem16s>("lyrsDeltaDelta_Aurora_16s_D2Sfs", lyrsDeltaDelta_Aurora_16s_D2Sfs, mode, value(1)),
        followingAuroraMul<Elem32f>("lyrsDeltaDeltaMul_Aurora_32f_D2", lyrsDeltaDeltaMul_Aurora_32f_D2, mode),
        followingAuroraMul<Elem16s>("lyrsDeltaDeltaMul_Aurora_16s_D2Sfs", lyrsDeltaDeltaMul_Aurora_16s_D2Sfs, mode,
                                    value(1)),
    });
}

const bool auroraBetween = addFollowingAurora(0);
const bool auroraAtEnd = addFollowingAurora(DeltaEnd);

// Matrices of 8 rows: 4 statics from column 1 on, half a window of 2.
const auto byDefault = order(StsNullPtr, StsSize, StsStep);

template <class T>
auto evaluated()
{
    return inOut<T>(8 * 11).spaced(11, 9);
}
auto rowCount()
{
    return size(8).atLeast(4);
}
auto halfWindow()
{
    return size(2).atMost(4);
}
auto offset()
{
    return value(1).atLeast(0);
}

const bool evalDelta = addRows({
    row("lyrsEvalDelta_32f_D2", lyrsEvalDelta_32f_D2, byDefault, evaluated<Elem32f>(), rowCount(), stride(11, 9),
        size(4), offset(), halfWindow(), value(0.5F)),
    row("lyrsEvalDelta_16s_D2Sfs", lyrsEvalDelta_16s_D2Sfs, byDefault, evaluated<Elem16s>(), rowCount(), stride(11, 9),
        size(4), offset(), halfWindow(), value(gain), value(1).legal({INT32_MIN, INT32_MAX})),
    row("lyrsEvalDeltaMul_32f_D2", lyrsEvalDeltaMul_32f_D2, byDefault, evaluated<Elem32f>(), rowCount(), stride(11, 9),
        in<Elem32f>(8), size(4), offset(), halfWindow()),
    row("lyrsEvalDeltaMul_16s_D2Sfs", lyrsEvalDeltaMul_16s_D2Sfs, byDefault, evaluated<Elem16s>(), rowCount(),
        stride(11, 9), in<Elem16s>(8), size(4), offset(), halfWindow(), value(1).legal({INT32_MIN, INT32_MAX})),
});

const bool copies = addRows({
    row("lyrsCopyColumn_32f_D2", lyrsCopyColumn_32f_D2, byDefault, in<Elem32f>(3 * 6), size(6),
        out<Elem32f>(3 * 8).spaced(8, 6), stride(8, 6), size(3)),
    row("lyrsCopyColumn_16s_D2", lyrsCopyColumn_16s_D2, byDefault, in<Elem16s>(3 * 6), size(6),
        out<Elem16s>(3 * 8).spaced(8, 6), stride(8, 6), size(3)),
});

// Source, destination and height are tested in this order, and the indices on the way through the first row.
const auto indirect = order(StsNullPtr, StsSize, StsStep, StsSize, StsStep, StsSize, StsSize);

auto indices(int place)
{
    return in<Elem32s>(4)
        .holding({0, 5, 1, 5})
        .spoilt(
            "has an index below 0", [](Elem32s* p) { p[2] = -1; }, StsSize)
        .rank(place)
        .mayWrite()
        .spoilt(
            "has an index of the length", [](Elem32s* p) { p[3] = 6; }, StsSize)
        .rank(place)
        .mayWrite();
}

template <class T, class Function>
Row gatheredBlock(const char* name, Function function)
{
    return row(name, function, indirect, in<T>(3 * 7), size(6).rank(1).legal({6}), stride(7, 6).rank(2),
               out<T>(3 * 5).spaced(5, 4), indices(6), size(4).rank(3), stride(5, 4).rank(4), size(3).rank(5));
}

template <class T, class Function>
Row gatheredTable(const char* name, Function function)
{
    return row(name, function, order(StsNullPtr, StsSize, StsSize), table<T>(3, 6), size(6).rank(1).legal({6}),
               table<T>(3, 4), indices(2), size(4).rank(1), size(3).rank(1));
}

const bool gathers = addRows({
    gatheredBlock<Elem32f>("lyrsCopyColumn_Indirect_32f_D2", lyrsCopyColumn_Indirect_32f_D2),
    gatheredBlock<Elem64f>("lyrsCopyColumn_Indirect_64f_D2", lyrsCopyColumn_Indirect_64f_D2),
    gatheredBlock<Elem16s>("lyrsCopyColumn_Indirect_16s_D2", lyrsCopyColumn_Indirect_16s_D2),
    gatheredTable<Elem32f>("lyrsCopyColumn_Indirect_32f_D2L", lyrsCopyColumn_Indirect_32f_D2L),
    gatheredTable<Elem64f>("lyrsCopyColumn_Indirect_64f_D2L", lyrsCopyColumn_Indirect_64f_D2L),
    gatheredTable<Elem16s>("lyrsCopyColumn_Indirect_16s_D2L", lyrsCopyColumn_Indirect_16s_D2L),
});

} // namespace
} // namespace lyr::contract
