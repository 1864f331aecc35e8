// The records of filter banks, their memory, and the lengths and options that all forms share.
#pragma once

#include "frame/check.hpp"
#include "frame/memory.hpp"
#include "lyrsr.h"

#include <cstddef>
#include <cstdint>

// The order of the fields is fixed: tools read records. `pFFTBuffer` stands behind all that they know of.
struct FBankState_32f
{
    Elem32s* pCenters; // nFilter + 2 centre bins, and behind them a spare entry equal to the last
    Elem32f** pCoefLeft;
    Elem32f** pCoefRight;
    Elem32s flag;
    Elem32s fftLen;
    Elem32s fftOrder;
    Elem32s nFilter;
    Elem32s nLinear;
    Elem32f melMul;
    Elem32f melDiv;
    Elem8u ready;
    Elem8u inOrder; // areInOrder of the centres, in a gap of the record
    FFTSpec_R_32f* pFFTSpec;
    Elem32f* pWork;
    Elem8u* pFFTBuffer; // work memory of the transform, so that an evaluation allocates nothing
};

struct FBankState_16s
{
    Elem32s* pCenters;
    Elem32s** pCoefLeft; // weights with `scale` fraction bits
    Elem32s** pCoefRight;
    Elem32s flag;
    Elem32s fftLen;
    Elem32s fftOrder;
    Elem32s nFilter;
    Elem32s nLinear;
    Elem32f melMul;
    Elem32f melDiv;
    Elem8u ready;
    Elem8u inOrder; // areInOrder of the centres, in a gap of the record
    FFTSpec_R_16s32s* pFFTSpec;
    Elem32s* pWork;
    Elem32s scale;
    Elem8u* pFFTBuffer;
};

struct FBankState_32s
{
    Elem32s* pCenters;
    Elem32s** pCoefLeft; // weights with 30 fraction bits
    Elem32s** pCoefRight;
    Elem32s flag;
    Elem32s nFilter;
    Elem32s nBins; // fftLen / 2 + 1
};

namespace lyr {

// --------------------------------------------------------------------------------------------------- lengths, options

// The longest transform that a record can name, and so the longest that may be asked for.
inline constexpr Elem32s longestBank = Elem32s{1} << 30;

struct BankLength
{
    Elem32s points;
    Elem32s order;
};

// The request rounded up to a power of two, at least 2. `request` is at most longestBank.
constexpr BankLength bankLength(Elem32s request)
{
    BankLength length{2, 1};
    while (length.points < request) {
        length.points *= 2;
        ++length.order;
    }
    return length;
}

constexpr bool fromFrames(Elem32s flag)
{
    return (flag & FBankFromFrames) != 0;
}

// Centres are rounded to the nearest bin, and the sides are straight in bins and not in mel.
constexpr bool isBinShaped(Elem32s flag)
{
    return (flag & FBankBinShape) != 0;
}

namespace check {

constexpr Status bankLengths(Elem32s fftLen, Elem32s nFilter)
{
    return fftLen < 1 || nFilter < 1 || fftLen > longestBank ? StsSize : StsNoErr;
}

constexpr Status bankFlag(Elem32s flag)
{
    const Elem32s shape = flag & ~FBankFromFrames;
    return shape == FBankMelShape || shape == FBankBinShape ? StsNoErr : StsFBankFlag;
}

} // namespace check

// All centres lie in the spectrum up to bin `top`, none below the one before. That is not so if a caller has set the
// last but one to what it likes, or if a frequency was no number.
bool areInOrder(const Elem32s* centers, Elem32s nFilter, Elem32s top) noexcept;

// ------------------------------------------------------------------------------------------------------- fixed banks

// What the two banks of the Aurora front end have in common (ETSI ES 202 050, 2007, sections 5.1.7 and 5.2.4).
struct AuroraBank
{
    static constexpr BankLength length{128, 7};
    static constexpr Elem32f sampFreq = 8000.0F;
    static constexpr Elem32f melMul = 2595.0F;
    static constexpr Elem32f melDiv = 700.0F;
    static constexpr Elem32s flag = FBankBinShape;
};

struct LowAuroraBank : AuroraBank
{
    static constexpr Elem32s nFilter = 25;
    static constexpr Elem32f lowFreq = 1.0F;
    static constexpr Elem32f highFreq = 4000.0F;
};

struct HighAuroraBank : AuroraBank
{
    static constexpr Elem32s nFilter = 3;
    static constexpr Elem32f lowFreq = 80.0F;
    static constexpr Elem32f highFreq = 4000.0F;
};

// ------------------------------------------------------------------------------------------------------------ memory

// Left rows are advanced by this many elements: element 1 of each then stands on a 16-byte boundary, where the bins
// that the left side of a filter shares with the right side of the one before begin.
inline constexpr Elem32s leftRowAdvance = 3;

// The centres and the spare entry behind them.
constexpr Elem64s centerCount(Elem32s nFilter)
{
    return Elem64s{nFilter} + 3;
}
constexpr Elem64s centerBytes(Elem32s nFilter)
{
    return centerCount(nFilter) * Elem64s{sizeof(Elem32s)};
}

// Blocks one behind the other in a caller's memory, each on a 32-byte boundary.
class Placement
{
public:
    explicit Placement(void* first) noexcept : next(static_cast<std::byte*>(first)) {}

    template <class T>
    T* take(Elem64s bytes) noexcept
    {
        std::byte* const block = alignUp(next);
        next = block + bytes;
        return reinterpret_cast<T*>(block);
    }

private:
    std::byte* next;
};

// Work memory of a construction: two numbers for each edge.
struct EdgeScratch
{
    Elem32f* edges; // in mel, or in hertz where the scale is linear
    Elem32f* bins;
};

// Bytes of a placed bank from an address that is aligned as a pointer is; StsSize if 32 bits do not hold them.
template <class State>
Status placedBankSize(BankLength length, Elem32s nFilter, bool withTransform, Elem32s* size) noexcept;

// Lays a bank and its scratch into a caller's buffer of that size; StsSize, with nothing touched, where there is no
// such size. The record has its lengths, its memory, cleared rows and nothing else.
template <class State>
Status placeBank(State* bank, BankLength length, Elem32s nFilter, bool withTransform, EdgeScratch& scratch) noexcept;

// The same from the allocator, without scratch. On failure what has been taken stays in *bank, if the record itself
// could be had, for the caller to release.
template <class State>
Status allocateBank(State** bank, BankLength length, Elem32s nFilter, bool withTransform) noexcept;

// Scratch from the allocator, for the time of a construction.
class AllocatedScratch
{
public:
    explicit AllocatedScratch(Elem32s nFilter) noexcept : edges(Elem64s{nFilter} + 2), bins(Elem64s{nFilter} + 2) {}
    explicit operator bool() const noexcept { return static_cast<bool>(edges) && static_cast<bool>(bins); }
    [[nodiscard]] EdgeScratch get() const noexcept { return {edges.data(), bins.data()}; }

private:
    WorkBuffer<Elem32f> edges;
    WorkBuffer<Elem32f> bins;
};

} // namespace lyr
