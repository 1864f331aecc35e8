// The bank whose lower filters lie on a linear scale and whose upper ones lie on the mel scale; and the empty bank,
// whose filters its caller brings.

#include "frontend/filter_bank.hpp"
#include "frontend/filter_bank_shape.hpp"

namespace lyr {
namespace {

struct LinearBand
{
    Elem32f sampFreq;
    Elem32f lowFreq;
    Elem32f highFreq;
    Elem32f highLinFreq;
    Elem32s nLinear;
};

// The mel of a linear edge, rounded at the logarithm and not at the product.
class LinearEdges
{
public:
    LinearEdges(const Elem32f* hertz, Elem32f melMul, Elem32f melDiv) noexcept : f(hertz), mul(melMul), div(melDiv) {}
    [[nodiscard]] Elem64f mel(Elem32s i) const noexcept
    {
        return mul * static_cast<Elem32f>(std::log(1.0 + f[i] / div));
    }

private:
    const Elem32f* f;
    Elem64f mul;
    Elem64f div;
};

// Unlike in the mel bank the left run starts at the lower centre itself, and no weight is negative.
template <class State>
void shapeLeftByMel(State& bank, LinearEdges edges, BinScale bins, Elem32s i) noexcept
{
    const Elem64f low = edges.mel(i - 1);
    const Elem64f centre = edges.mel(i);
    for (Elem64s j = 0; j <= runLength(bank, i - 1); ++j) {
        bank.pCoefLeft[i - 1][j] =
            atLeastZero(melWeight<WeightOf<State>>(bins.mel(bank.pCenters[i - 1] + j) - low, centre - low));
    }
}

template <class State>
void shapeRightByMel(State& bank, LinearEdges edges, BinScale bins, Elem32s i) noexcept
{
    const Elem64f centre = edges.mel(i);
    const Elem64f high = edges.mel(i + 1);
    for (Elem64s j = 0; j < runLength(bank, i); ++j) {
        bank.pCoefRight[i - 1][j] =
            atLeastZero(melWeight<WeightOf<State>>(high - bins.mel(bank.pCenters[i] + 1 + j), high - centre));
    }
}

// The right side of the last linear filter of a mixed bank: a bin number less a mel value, over a width in bins. Meant
// as it stands, although it usually gives zeros: banks are compared weight by weight.
template <class State>
void shapeSeam(State& bank, BinScale bins, Elem32s i) noexcept
{
    const Elem64f high = bank.pCenters[i + 1];
    const Elem64f width = high - bank.pCenters[i];
    for (Elem64s j = 0; j < runLength(bank, i); ++j) {
        bank.pCoefRight[i - 1][j] =
            atLeastZero(melWeight<WeightOf<State>>(high - bins.mel(bank.pCenters[i] + 1 + j), width));
    }
}

template <class State>
void layLinearEdges(State& bank, const EdgeScratch& scratch, const LinearBand& band, Elem32s last,
                    Elem32s parts) noexcept
{
    const Elem64f range = Elem64f{band.highLinFreq} - band.lowFreq;
    const Elem64f binsPerHertz = Elem64f(bank.fftLen) / band.sampFreq;
    for (Elem32s i = 0; i <= last; ++i) {
        const Elem64f part = static_cast<Elem32f>(i) * range / static_cast<Elem32f>(parts);
        scratch.edges[i] = static_cast<Elem32f>(part + band.lowFreq);
        scratch.bins[i] = static_cast<Elem32f>(scratch.edges[i] * binsPerHertz);
    }
    convertCenters(bank, scratch.bins, 0, last + 1);
}

// The edges from nLinear on, equally spaced in mel from the highest linear frequency. The first replaces the last of
// the linear ones.
template <class State>
void layMelEdges(State& bank, const EdgeScratch& scratch, const LinearBand& band, MelScale scale) noexcept
{
    const Elem64f mul = bank.melMul;
    const Elem64f low = mul * std::log(1.0 + band.highLinFreq / Elem64f{bank.melDiv});
    const Elem64f range = scale.fromHertz(band.highFreq) - low;
    const Elem64f binFactor = Elem64f(bank.fftLen) / band.sampFreq * bank.melDiv;
    const auto parts = static_cast<Elem32f>(bank.nFilter - band.nLinear + 1);
    for (Elem32s i = band.nLinear; i <= bank.nFilter + 1; ++i) {
        const auto mel = static_cast<Elem32f>(static_cast<Elem32f>(i - band.nLinear) * range / parts + low);
        scratch.bins[i] = static_cast<Elem32f>(binFactor * scale.relativeHertz(mel));
    }
    convertCenters(bank, scratch.bins + band.nLinear, band.nLinear, bank.nFilter - band.nLinear + 2);
}

template <class State>
void buildMelLinearBank(State& bank, const EdgeScratch& scratch, const LinearBand& band, Elem32f melMul, Elem32f melDiv,
                        Elem32s flag) noexcept
{
    bank.flag = flag;
    bank.nLinear = band.nLinear;
    bank.melMul = melMul;
    bank.melDiv = melDiv;
    const MelScale scale(melMul, melDiv);
    const bool allLinear = band.nLinear == bank.nFilter;
    if (allLinear) {
        layLinearEdges(bank, scratch, band, bank.nFilter + 1, bank.nFilter + 1);
    } else {
        layLinearEdges(bank, scratch, band, band.nLinear, band.nLinear);
        layMelEdges(bank, scratch, band, scale);
    }
    setReady(bank);
    const LinearEdges edges(scratch.edges, melMul, melDiv);
    const BinScale bins(scale, band.sampFreq, bank.fftLen);
    for (Elem32s i = 1; i <= bank.nFilter; ++i) {
        if (isBinShaped(flag) || i > band.nLinear) {
            shapeByBins(bank, i);
            continue;
        }
        shapeLeftByMel(bank, edges, bins, i);
        if (allLinear || i < band.nLinear) {
            shapeRightByMel(bank, edges, bins, i);
        } else {
            shapeSeam(bank, bins, i);
        }
    }
}

template <class State>
Status allocateMelLinearBank(State** bank, Elem32s* order, Elem32s fftLen, const LinearBand& band, Elem32s nFilter,
                             Elem32f melMul, Elem32f melDiv, Elem32s flag)
{
    // Written so that a frequency that is no number passes, as meant.
    const bool noRate = band.sampFreq <= 0.0F || band.lowFreq <= 0.0F;
    const bool outOfOrder =
        band.highLinFreq < band.lowFreq || band.highFreq < band.highLinFreq || band.highFreq > band.sampFreq * 0.5;
    LYR_CHECK(bankLengths(fftLen, nFilter), sizes(band.nLinear), require(!noRate && band.nLinear <= nFilter, StsSize),
              require(!outOfOrder, StsFBankFreq), bankFlag(flag));
    LYR_CHECK(allocateBank(bank, bankLength(fftLen), nFilter, fromFrames(flag)));
    const AllocatedScratch scratch(nFilter);
    LYR_CHECK(require(static_cast<bool>(scratch), StsMemAlloc));
    buildMelLinearBank(**bank, scratch.get(), band, melMul, melDiv, flag);
    *order = (*bank)->fftOrder;
    return StsNoErr;
}

// The stored option is FBankMelShape whatever was asked for, so that an evaluation takes a spectrum. With
// FBankFromFrames there is a transform all the same, and nothing ever uses it: meant so.
template <class State>
Status allocateEmptyBank(State** bank, Elem32s* order, Elem32s fftLen, Elem32s nFilter, Elem32s flag)
{
    LYR_CHECK(bankLengths(fftLen, nFilter));
    LYR_CHECK(allocateBank(bank, bankLength(fftLen), nFilter, fromFrames(flag)));
    (*bank)->flag = FBankMelShape;
    (*bank)->melMul = 0.0F;
    (*bank)->melDiv = 1.0F;
    *order = (*bank)->fftOrder;
    return StsNoErr;
}

} // namespace
} // namespace lyr

Status lyrsMelLinFBankInitAlloc_32f(FBankState_32f** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32f sampFreq,
                                    Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter, Elem32f highLinFreq,
                                    Elem32s nLinear, Elem32f melMul, Elem32f melDiv, Elem32s flag)
{
    return lyr::allocateMelLinearBank(ppFBank, pFFTOrder, fftLen, {sampFreq, lowFreq, highFreq, highLinFreq, nLinear},
                                      nFilter, melMul, melDiv, flag);
}

Status lyrsMelLinFBankInitAlloc_16s(FBankState_16s** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32f sampFreq,
                                    Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter, Elem32f highLinFreq,
                                    Elem32s nLinear, Elem32f melMul, Elem32f melDiv, Elem32s flag)
{
    return lyr::allocateMelLinearBank(ppFBank, pFFTOrder, fftLen, {sampFreq, lowFreq, highFreq, highLinFreq, nLinear},
                                      nFilter, melMul, melDiv, flag);
}

Status lyrsEmptyFBankInitAlloc_32f(FBankState_32f** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32s nFilter,
                                   Elem32s flag)
{
    return lyr::allocateEmptyBank(ppFBank, pFFTOrder, fftLen, nFilter, flag);
}

Status lyrsEmptyFBankInitAlloc_16s(FBankState_16s** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32s nFilter,
                                   Elem32s flag)
{
    return lyr::allocateEmptyBank(ppFBank, pFFTOrder, fftLen, nFilter, flag);
}
