// The members of the mixture families by element type, and models for them in guarded memory.
#pragma once

#include "lyrsr.h"

#include <cstddef>
#include <vector>

#include "oracle/mixture.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace lyr::test {

// The members of one element type under one name.
template <class T>
struct Family;

template <>
struct Family<float>
{
    static constexpr auto multi = lyrsLogGaussMultiMix_32f_D2;
    static constexpr auto multiTable = lyrsLogGaussMultiMix_32f_D2L;
    static constexpr auto max = lyrsLogGaussMaxMultiMix_32f_D2;
    static constexpr auto maxTable = lyrsLogGaussMaxMultiMix_32f_D2L;
    static constexpr auto add = lyrsLogGaussAddMultiMix_32f_D2;
    static constexpr auto addTable = lyrsLogGaussAddMultiMix_32f_D2L;
    static constexpr auto mixture = lyrsLogGaussMixture_32f_D2;
    static constexpr auto mixtureTable = lyrsLogGaussMixture_32f_D2L;
    static constexpr auto unit = lyrsLogGaussMixture_IdVar_32f_D2;
    static constexpr auto unitTable = lyrsLogGaussMixture_IdVar_32f_D2L;
};

template <>
struct Family<double>
{
    static constexpr auto multi = lyrsLogGaussMultiMix_64f_D2;
    static constexpr auto multiTable = lyrsLogGaussMultiMix_64f_D2L;
    static constexpr auto max = lyrsLogGaussMaxMultiMix_64f_D2;
    static constexpr auto maxTable = lyrsLogGaussMaxMultiMix_64f_D2L;
    static constexpr auto add = lyrsLogGaussAddMultiMix_64f_D2;
    static constexpr auto addTable = lyrsLogGaussAddMultiMix_64f_D2L;
    static constexpr auto mixture = lyrsLogGaussMixture_64f_D2;
    static constexpr auto mixtureTable = lyrsLogGaussMixture_64f_D2L;
    static constexpr auto unit = lyrsLogGaussMixture_IdVar_64f_D2;
    static constexpr auto unitTable = lyrsLogGaussMixture_IdVar_64f_D2L;
};

// A frame and a model in guarded memory, as block and as table.
template <class T>
struct Model
{
    std::size_t height;
    std::size_t width;
    std::size_t step;
    Guarded<T> x;
    Guarded<T> means;
    Guarded<T> vars;
    std::vector<T> gconst;
    std::vector<const T*> meanRows;
    std::vector<const T*> varRows;

    Model(Random& random, std::size_t gaussians, std::size_t dimension, std::size_t stride, std::size_t offset)
        : height(gaussians), width(dimension), step(stride),
          x(random.vector<T>(width, -2, 2), offset == 0 ? 0 : Guarded<T>::flush(width)),
          means(random.vector<T>((height - 1) * step + width, -2, 2), offset),
          vars(random.vector<T>((height - 1) * step + width, T(0.25), 2),
               offset == 0 ? 0 : Guarded<T>::flush((height - 1) * step + width)),
          gconst(random.vector<T>(height, -30, -10))
    {
        for (std::size_t g = 0; g < height; ++g) {
            meanRows.push_back(means.data() + g * step);
            varRows.push_back(vars.data() + g * step);
        }
    }

    oracle::Score score(std::size_t g, bool weighted = true) const
    {
        return oracle::mixtureScore(x.data(), meanRows[g], weighted ? varRows[g] : nullptr, width, gconst[g]);
    }

    // The calls, by block or by table. The constants of `max` and `add`, and what they update, are the caller's.
    Status multi(bool table, T* dst) const
    {
        return table ? Family<T>::multiTable(meanRows.data(), varRows.data(), x.data(), w(), dst, h())
                     : Family<T>::multi(means.data(), vars.data(), s(), x.data(), w(), dst, h());
    }
    Status max(bool table, const T* constants, T* dst) const
    {
        return table ? Family<T>::maxTable(meanRows.data(), varRows.data(), x.data(), w(), constants, dst, h())
                     : Family<T>::max(means.data(), vars.data(), s(), x.data(), w(), constants, dst, h());
    }
    Status add(bool table, const T* constants, T* dst) const
    {
        return table ? Family<T>::addTable(meanRows.data(), varRows.data(), x.data(), w(), constants, dst, h())
                     : Family<T>::add(means.data(), vars.data(), s(), x.data(), w(), constants, dst, h());
    }
    Status mixture(bool table, const T* constants, T* result) const
    {
        return table ? Family<T>::mixtureTable(x.data(), meanRows.data(), varRows.data(), h(), w(), constants, result)
                     : Family<T>::mixture(x.data(), means.data(), vars.data(), h(), s(), w(), constants, result);
    }
    Status unitMixture(bool table, const T* constants, T* result) const
    {
        return table ? Family<T>::unitTable(x.data(), meanRows.data(), h(), w(), constants, result)
                     : Family<T>::unit(x.data(), means.data(), h(), s(), w(), constants, result);
    }

private:
    Elem32s h() const { return static_cast<Elem32s>(height); }
    Elem32s w() const { return static_cast<Elem32s>(width); }
    Elem32s s() const { return static_cast<Elem32s>(step); }
};

} // namespace lyr::test
