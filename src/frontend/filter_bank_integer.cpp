// The mel bank built in integers only, for processors without floating point and for results that do not depend on the
// processor.

#include "frontend/filter_bank.hpp"
#include "frontend/filter_bank_fixed_math.hpp"

#include <algorithm>

namespace lyr {
namespace {

constexpr Elem32s shortestLength = 32;
constexpr Elem32s longestLength = 8192;
constexpr Elem32s highestRate = 48000;
constexpr Elem32s highestFrequency = 24000;
constexpr Elem32s leastParameter = 0x80001; // just above 16 with 15 fraction bits
constexpr Elem32s largestMelDiv = 0xFFFFFFF;
constexpr Elem32s largestMelMul = 0x3FFFFFFF;
constexpr int weightBits = 30;

constexpr bool within(Elem32s x, Elem32s least, Elem32s most)
{
    return x >= least && x <= most;
}

// A row has one bin more than half the transform, and the padding makes that 32 bytes more than half the transform.
constexpr Elem32s binCount(BankLength length)
{
    return length.points / 2 + 1;
}

void placeIntegerBank(FBankState_32s& bank, BankLength length, Elem32s nFilter) noexcept
{
    const Elem32s bins = binCount(length);
    bank = {};
    bank.flag = FBankBinShape;
    bank.nFilter = nFilter;
    bank.nBins = bins;
    Placement blocks(&bank + 1);
    bank.pCenters = blocks.take<Elem32s>(centerBytes(nFilter));
    for (Elem32s*** const table : {&bank.pCoefLeft, &bank.pCoefRight}) {
        *table = blocks.take<Elem32s*>(GetSize2_32s(nFilter + 2, bins));
        Init2_32s(*table, nFilter + 2, bins);
        for (Elem32s r = 0; r < nFilter + 2; ++r) {
            std::fill_n((*table)[r], bins, 0);
        }
    }
}

struct IntegerBand
{
    Elem32s sampFreq;
    Elem32s lowFreq;
    Elem32s highFreq;
    Elem32s melMul; // Q15, as melDiv
    Elem32s melDiv;
};

Elem64s melOf(Elem32s hertz, const IntegerBand& band) noexcept
{
    const Elem64s corner = Elem64s{band.melDiv} << 7;
    return band.melMul * (q22::ln((Elem64s{hertz} << q22::fractionBits) + corner) - q22::ln(corner)) >> 15;
}

void layIntegerCenters(FBankState_32s& bank, BankLength length, const IntegerBand& band) noexcept
{
    const Elem64s low = melOf(band.lowFreq, band);
    const Elem64s range = melOf(band.highFreq, band) - low;
    const Elem64s binsPerHertz = (Elem64s{length.points} << q22::fractionBits) / band.sampFreq;
    // Here and in the bin below, products wrap for rates of a few hertz.
    const Elem64s binFactor = q22::wrappingProduct(binsPerHertz, Elem64s{band.melDiv} << 7) >> q22::fractionBits;
    const Elem64s parts = Elem64s{bank.nFilter} + 1;
    for (Elem32s i = 0; i <= bank.nFilter + 1; ++i) {
        const Elem64s mel = (range * i + low * parts) / parts;
        const Elem64s exponent = q22::wrappingShift(mel, q22::fractionBits) / (Elem64s{band.melMul} << 7);
        const Elem64s bin = q22::wrappingProduct(binFactor, q22::exp(exponent) - q22::one) >> q22::fractionBits;
        const Elem64s half = bin >> (q22::fractionBits - 1) & 1;
        bank.pCenters[i] = wrap32((bin >> q22::fractionBits) + half);
    }
    bank.pCenters[bank.nFilter + 2] = bank.pCenters[bank.nFilter + 1];
}

// Nothing ties the band to half the rate, so a centre may lie beyond the spectrum and a run beyond its row: it ends
// where the row does.
void shapeIntegerFilter(FBankState_32s& bank, Elem32s i) noexcept
{
    const Elem64s below = Elem64s{bank.pCenters[i]} - bank.pCenters[i - 1];
    const Elem64s above = Elem64s{bank.pCenters[i + 1]} - bank.pCenters[i];
    const Elem64s last = bank.nBins - 1;
    for (Elem64s j = 0; j <= std::min(below, last); ++j) {
        bank.pCoefLeft[i - 1][j] = static_cast<Elem32s>(((j + 1) << weightBits) / (below + 1));
    }
    for (Elem64s j = 0; j < std::min(above, last + 1); ++j) {
        bank.pCoefRight[i - 1][j] = static_cast<Elem32s>(((above - j) << weightBits) / (above + 1));
    }
}

} // namespace
} // namespace lyr

Status lyrsMelFBankGetSize_32s(Elem32s fftLen, Elem32s nFilter, Elem32s flag, Elem32s* pSize)
{
    using namespace lyr;
    LYR_CHECK(pointers(pSize), sizes(nFilter), require(within(fftLen, shortestLength, longestLength), StsSize),
              require(flag == FBankBinShape, StsFBankFlag));
    const BankLength length = bankLength(fftLen);
    // One filter less than what the initialisation takes, on purpose.
    LYR_CHECK(require(nFilter <= length.points / 2, StsSize));
    const Elem64s table = GetSize2_32s(nFilter + 2, binCount(length));
    *pSize = static_cast<Elem32s>(Elem64s{sizeof(FBankState_32s)} + centerBytes(nFilter) + 2 * table +
                                  3 * Elem64s{blockAlignment});
    return StsNoErr;
}

Status lyrsMelFBankInit_32s(FBankState_32s* pFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32s sampFreq,
                            Elem32s lowFreq, Elem32s highFreq, Elem32s nFilter, Elem32s melMul, Elem32s melDiv,
                            Elem32s flag)
{
    using namespace lyr;
    LYR_CHECK(pointers(pFBank, pFFTOrder), sizes(nFilter, highFreq),
              require(within(fftLen, shortestLength, longestLength), StsSize),
              require(flag == FBankBinShape, StsFBankFlag),
              require(within(sampFreq, 1, highestRate) && lowFreq >= 0, StsSize),
              require(highFreq > lowFreq && highFreq <= highestFrequency, StsFBankFreq),
              require(within(melDiv, leastParameter, largestMelDiv), StsBadArg),
              require(within(melMul, leastParameter, largestMelMul), StsBadArg));
    const BankLength length = bankLength(fftLen);
    LYR_CHECK(require(nFilter <= length.points / 2 + 1, StsSize));
    placeIntegerBank(*pFBank, length, nFilter);
    layIntegerCenters(*pFBank, length, {sampFreq, lowFreq, highFreq, melMul, melDiv});
    for (Elem32s i = 1; i <= nFilter; ++i) {
        shapeIntegerFilter(*pFBank, i);
    }
    *pFFTOrder = length.order;
    return StsNoErr;
}
