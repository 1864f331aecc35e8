// Centres and weights of a bank, out and in.

#include "frame/check.hpp"
#include "frontend/filter_bank.hpp"
#include "frontend/filter_bank_shape.hpp"

#include <algorithm>

namespace lyr {
namespace {

// The first centre is not below the spectrum, the last not beyond it, and each of those from 1 to nFilter - 1 is in
// order with both its neighbours: a bank of one filter has none of these. How the last two stand to each other is not
// looked at, on purpose.
bool areCentersLegal(const Elem32s* c, Elem32s nFilter, Elem32s fftLen) noexcept
{
    if (c[0] < 0) {
        return false;
    }
    for (Elem32s i = 1; i < nFilter; ++i) {
        if (c[i] < c[i - 1] || c[i] > c[i + 1]) {
            return false;
        }
    }
    return c[nFilter + 1] <= fftLen / 2;
}

template <class State>
Status getCenters(const State* bank, Elem32s* centers)
{
    LYR_CHECK(pointers(bank, centers));
    LYR_CHECK(require(bank->ready != 0, StsFBankNotReady));
    LYR_CHECK(require(areCentersLegal(bank->pCenters, bank->nFilter, bank->fftLen), StsFBankNotReady));
    std::copy_n(bank->pCenters, bank->nFilter + 2, centers);
    return StsNoErr;
}

template <class State>
Status setCenters(State* bank, const Elem32s* centers)
{
    LYR_CHECK(pointers(bank, centers));
    LYR_CHECK(require(areCentersLegal(centers, bank->nFilter, bank->fftLen), StsFBankNotReady));
    std::copy_n(centers, bank->nFilter + 2, bank->pCenters);
    setReady(*bank);
    return StsNoErr;
}

constexpr Elem32f perOneQ14 = 1.0F / oneQ14;

Elem32f toCoefficient(Elem32f weight)
{
    return weight;
}
Elem32f toCoefficient(Elem32s weight)
{
    return static_cast<Elem32f>(weight) * perOneQ14;
}
void setWeight(Elem32f& weight, Elem32f coefficient)
{
    weight = coefficient;
}
void setWeight(Elem32s& weight, Elem32f coefficient)
{
    weight = truncateSaturating(coefficient * Elem32f{oneQ14});
}

// Calls visit(weight, number) for the left and then the right weights of a filter. Where centres reach beyond the
// spectrum the row does not reach as far as the run: `visit` gets null there.
template <class State, class Visit>
void visitWeights(State& bank, Elem32s fIdx, Visit visit)
{
    const Elem64s below = Elem64s{bank.pCenters[fIdx]} - bank.pCenters[fIdx - 1];
    const Elem64s above = Elem64s{bank.pCenters[fIdx + 1]} - bank.pCenters[fIdx];
    const Elem64s half = bank.fftLen / 2;
    auto* const left = bank.pCoefLeft[fIdx - 1];
    auto* const right = bank.pCoefRight[fIdx - 1];
    Elem64s number = 0;
    for (Elem64s j = 0; j <= below; ++j) {
        visit(j <= half ? left + j : nullptr, number++);
    }
    for (Elem64s j = 0; j < above; ++j) {
        visit(j < half ? right + j : nullptr, number++);
    }
}

template <class State>
Status getCoeffs(const State* bank, Elem32s fIdx, Elem32f* coeffs)
{
    LYR_CHECK(pointers(bank, coeffs));
    // One more than there are filters: the row behind the last filter can be read and not written, on purpose.
    LYR_CHECK(require(bank->ready != 0, StsFBankNotReady), require(fIdx >= 1 && fIdx <= bank->nFilter + 1, StsSize));
    visitWeights(*bank, fIdx, [coeffs](const WeightOf<State>* weight, Elem64s i) {
        coeffs[i] = weight != nullptr ? toCoefficient(*weight) : 0.0F;
    });
    return StsNoErr;
}

template <class State>
Status setCoeffs(State* bank, Elem32s fIdx, const Elem32f* coeffs)
{
    LYR_CHECK(pointers(bank, coeffs));
    LYR_CHECK(require(bank->ready != 0, StsFBankNotReady), require(fIdx >= 1 && fIdx <= bank->nFilter, StsSize));
    visitWeights(*bank, fIdx, [coeffs](WeightOf<State>* weight, Elem64s i) {
        if (weight != nullptr) {
            setWeight(*weight, coeffs[i]);
        }
    });
    return StsNoErr;
}

} // namespace
} // namespace lyr

Status lyrsFBankGetCenters_32f(const FBankState_32f* pFBank, Elem32s* pCenters)
{
    return lyr::getCenters(pFBank, pCenters);
}
Status lyrsFBankGetCenters_16s(const FBankState_16s* pFBank, Elem32s* pCenters)
{
    return lyr::getCenters(pFBank, pCenters);
}
Status lyrsFBankSetCenters_32f(FBankState_32f* pFBank, const Elem32s* pCenters)
{
    return lyr::setCenters(pFBank, pCenters);
}
Status lyrsFBankSetCenters_16s(FBankState_16s* pFBank, const Elem32s* pCenters)
{
    return lyr::setCenters(pFBank, pCenters);
}

Status lyrsFBankGetCoeffs_32f(const FBankState_32f* pFBank, Elem32s fIdx, Elem32f* pCoeffs)
{
    return lyr::getCoeffs(pFBank, fIdx, pCoeffs);
}

Status lyrsFBankGetCoeffs_16s(const FBankState_16s* pFBank, Elem32s fIdx, Elem32f* pCoeffs)
{
    return lyr::getCoeffs(pFBank, fIdx, pCoeffs);
}

Status lyrsFBankSetCoeffs_32f(FBankState_32f* pFBank, Elem32s fIdx, const Elem32f* pCoeffs)
{
    return lyr::setCoeffs(pFBank, fIdx, pCoeffs);
}

Status lyrsFBankSetCoeffs_16s(FBankState_16s* pFBank, Elem32s fIdx, const Elem32f* pCoeffs)
{
    return lyr::setCoeffs(pFBank, fIdx, pCoeffs);
}
