// The mel bank: triangles between edges that are equally spaced in mel.

#include "frontend/filter_bank.hpp"
#include "frontend/filter_bank_shape.hpp"

namespace lyr {
namespace {

struct MelBand
{
    Elem32f sampFreq;
    Elem32f lowFreq;
    Elem32f highFreq;
};

// The sides of filter i, straight in mel. The left run leaves its element 0, the lower centre itself, at zero.
template <class State>
void shapeByMel(State& bank, const Elem32f* mel, BinScale bins, Elem32s i) noexcept
{
    using Weight = WeightOf<State>;
    const Elem32s* const c = bank.pCenters;
    const Elem64f low = mel[i - 1];
    const Elem64f centre = mel[i];
    const Elem64f high = mel[i + 1];
    for (Elem64s j = 1; j <= runLength(bank, i - 1); ++j) {
        bank.pCoefLeft[i - 1][j] = melWeight<Weight>(bins.mel(c[i - 1] + j) - low, centre - low);
    }
    for (Elem64s j = 0; j < runLength(bank, i); ++j) {
        bank.pCoefRight[i - 1][j] = melWeight<Weight>(high - bins.mel(c[i] + 1 + j), high - centre);
    }
}

// Fills a bank that has its lengths and memory.
template <class State>
void buildMelBank(State& bank, const EdgeScratch& scratch, const MelBand& band, Elem32f melMul, Elem32f melDiv,
                  Elem32s flag) noexcept
{
    bank.flag = flag;
    bank.melMul = melMul;
    bank.melDiv = melDiv;
    const MelScale scale(melMul, melDiv);
    const Elem32f low = scale.fromHertz(band.lowFreq);
    const Elem32f range = scale.fromHertz(band.highFreq) - low;
    const auto binFactor = static_cast<Elem32f>(Elem64f(bank.fftLen) / band.sampFreq * melDiv);
    for (Elem32s i = 0; i <= bank.nFilter + 1; ++i) {
        const Elem64f part = Elem64f{static_cast<Elem32f>(i)} * range / static_cast<Elem32f>(bank.nFilter + 1);
        scratch.edges[i] = static_cast<Elem32f>(part + low);
        scratch.bins[i] = binFactor * scale.relativeHertz(scratch.edges[i]);
    }
    convertCenters(bank, scratch.bins, 0, bank.nFilter + 2);
    setReady(bank);
    const BinScale bins(scale, band.sampFreq, bank.fftLen);
    for (Elem32s i = 1; i <= bank.nFilter; ++i) {
        if (isBinShaped(flag)) {
            shapeByBins(bank, i);
        } else {
            shapeByMel(bank, scratch.edges, bins, i);
        }
    }
}

template <class Pointer>
Status checkMelBank(Pointer* bank, const Elem32s* order, Elem32s fftLen, const MelBand& band, Elem32s nFilter,
                    Elem32s flag)
{
    // Written so that a frequency that is no number passes, as meant.
    const bool noRate = band.sampFreq <= 0.0F || band.lowFreq <= 0.0F;
    const bool outOfOrder = band.highFreq < band.lowFreq || band.highFreq > band.sampFreq * 0.5;
    LYR_CHECK(pointers(bank, order), bankLengths(fftLen, nFilter), require(!noRate, StsSize),
              require(!outOfOrder, StsFBankFreq), bankFlag(flag));
    return StsNoErr;
}

template <class State>
Status placeMelBank(State* bank, Elem32s* order, Elem32s fftLen, const MelBand& band, Elem32s nFilter, Elem32f melMul,
                    Elem32f melDiv, Elem32s flag)
{
    LYR_CHECK(checkMelBank(bank, order, fftLen, band, nFilter, flag));
    EdgeScratch scratch{};
    LYR_CHECK(placeBank(bank, bankLength(fftLen), nFilter, fromFrames(flag), scratch));
    buildMelBank(*bank, scratch, band, melMul, melDiv, flag);
    *order = bank->fftOrder;
    return StsNoErr;
}

template <class State>
Status allocateMelBank(State** bank, Elem32s* order, Elem32s fftLen, const MelBand& band, Elem32s nFilter,
                       Elem32f melMul, Elem32f melDiv, Elem32s flag)
{
    LYR_CHECK(checkMelBank(bank, order, fftLen, band, nFilter, flag));
    LYR_CHECK(allocateBank(bank, bankLength(fftLen), nFilter, fromFrames(flag)));
    const AllocatedScratch scratch(nFilter);
    LYR_CHECK(require(static_cast<bool>(scratch), StsMemAlloc));
    buildMelBank(**bank, scratch.get(), band, melMul, melDiv, flag);
    *order = (*bank)->fftOrder;
    return StsNoErr;
}

} // namespace
} // namespace lyr

Status lyrsMelFBankInit_32f(FBankState_32f* pFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32f sampFreq,
                            Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter, Elem32f melMul, Elem32f melDiv,
                            Elem32s flag)
{
    return lyr::placeMelBank(pFBank, pFFTOrder, fftLen, {sampFreq, lowFreq, highFreq}, nFilter, melMul, melDiv, flag);
}

Status lyrsMelFBankInit_16s(FBankState_16s* pFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32f sampFreq,
                            Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter, Elem32f melMul, Elem32f melDiv,
                            Elem32s flag)
{
    return lyr::placeMelBank(pFBank, pFFTOrder, fftLen, {sampFreq, lowFreq, highFreq}, nFilter, melMul, melDiv, flag);
}

Status lyrsMelFBankInitAlloc_32f(FBankState_32f** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32f sampFreq,
                                 Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter, Elem32f melMul, Elem32f melDiv,
                                 Elem32s flag)
{
    return lyr::allocateMelBank(ppFBank, pFFTOrder, fftLen, {sampFreq, lowFreq, highFreq}, nFilter, melMul, melDiv,
                                flag);
}

Status lyrsMelFBankInitAlloc_16s(FBankState_16s** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32f sampFreq,
                                 Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter, Elem32f melMul, Elem32f melDiv,
                                 Elem32s flag)
{
    return lyr::allocateMelBank(ppFBank, pFFTOrder, fftLen, {sampFreq, lowFreq, highFreq}, nFilter, melMul, melDiv,
                                flag);
}
