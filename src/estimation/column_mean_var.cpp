// Means and variances of the columns of a matrix of feature rows.
//
// The variance is formed from the sum of squares, in one pass over the data, with the mean as it is given:
//
//     var = (sum of x^2 - height * mean^2) / (height - 1)
//
// A mean that is not the true one does not make this a sum of squared deviations, and rounding can leave it a little
// below zero.

#include "estimation/column_sums.hpp"
#include "frame/check.hpp"
#include "frame/elements.hpp"
#include "frame/fixed_point.hpp"
#include "frame/memory.hpp"
#include "frame/rounding.hpp"
#include "frame/scale.hpp"
#include "lyrsr.h"

#include <emmintrin.h>

using lyr::Block;
using lyr::Columns;
using lyr::convertToNearest;
using lyr::forEachPanel;
using lyr::panelColumns;
using lyr::Table;
using lyr::WorkBuffer;
using lyr::zeroElements;

namespace {

const lyr::ColumnSumsKernels kernels = LYR_SELECT_KERNELS(columnSumsKernels);

// One over a number of rows. Singles get it from double precision, 16-bit data by a division in the precision of its
// sums. The two part only from 2^24 rows on, where the number itself is rounded first.
Elem32f roundedReciprocal(Elem32s n)
{
    return static_cast<Elem32f>(1.0 / n);
}

template <class T>
T reciprocal(Elem32s n)
{
    return T{1} / static_cast<T>(n);
}

template <class T>
class Variance
{
public:
    Variance(Elem32s height, T rowFactor) : negativeHeight(-static_cast<T>(height)), factor(rowFactor) {}

    T operator()(T squares, T mean) const { return (squares + negativeHeight * (mean * mean)) * factor; }

private:
    T negativeHeight;
    T factor;
};

// Sums in single precision of data that is converted to 16 bits at the end need a place of their own. Eight more than
// the columns: the size of the request is part of when a call runs out of memory, and kept.
constexpr Elem64s spareColumns = 8;

// To an integer in the rounding mode in force, limited to its range. A NaN, which only zero times an infinite scale
// makes, gives the lowest.
Elem32s toInteger(Elem64f x)
{
    constexpr Elem64f top = 2147483647.0;
    return _mm_cvtsd_si32(_mm_set_sd(x > top ? top : x));
}

// ------------------------------------------------------------------------------------------------------------- singles

template <class Rows>
Status mean32f(Columns<Rows> columns, Elem32f* mean)
{
    zeroElements(mean, columns.width);
    kernels.singles.of(columns.rows).values(columns, nullptr, mean, nullptr);
    const Elem32f factor = roundedReciprocal(columns.height);
    for (Elem32s c = 0; c < columns.width; ++c) {
        mean[c] *= factor;
    }
    return StsNoErr;
}

template <class Rows>
Status var32f(Columns<Rows> columns, const Elem32f* mean, Elem32f* var)
{
    zeroElements(var, columns.width);
    kernels.singles.of(columns.rows).squares(columns, nullptr, nullptr, var);
    const Variance variance(columns.height, roundedReciprocal(columns.height - 1));
    for (Elem32s c = 0; c < columns.width; ++c) {
        var[c] = variance(var[c], mean[c]);
    }
    return StsNoErr;
}

template <class Rows>
Status meanVar32f(Columns<Rows> columns, Elem32f* mean, Elem32f* var)
{
    zeroElements(mean, columns.width);
    zeroElements(var, columns.width);
    kernels.singles.of(columns.rows).both(columns, nullptr, mean, var);
    const Elem32f factor = roundedReciprocal(columns.height);
    const Variance variance(columns.height, roundedReciprocal(columns.height - 1));
    for (Elem32s c = 0; c < columns.width; ++c) {
        mean[c] *= factor;
        var[c] = variance(var[c], mean[c]);
    }
    return StsNoErr;
}

// ------------------------------------------------------------------------------------------- 16 bits, summed in single

template <class Rows>
Status mean16s(Columns<Rows> columns, Elem16s* mean)
{
    const WorkBuffer<Elem32f> sums(columns.width + spareColumns);
    LYR_CHECK(require(static_cast<bool>(sums), StsMemAlloc));
    zeroElements(sums.data(), columns.width);
    kernels.shorts.of(columns.rows).values(columns, nullptr, sums.data(), nullptr);
    const auto factor = reciprocal<Elem32f>(columns.height);
    for (Elem32s c = 0; c < columns.width; ++c) {
        sums.data()[c] *= factor;
    }
    return lyrsConvert_32f16s_Sfs(sums.data(), mean, columns.width, convertToNearest, 0);
}

template <class Rows>
Status var16s(Columns<Rows> columns, const Elem16s* mean, Elem16s* var, Elem32s scaleFactor)
{
    const WorkBuffer<Elem32f> squares(columns.width + spareColumns);
    LYR_CHECK(require(static_cast<bool>(squares), StsMemAlloc));
    zeroElements(squares.data(), columns.width);
    kernels.shorts.of(columns.rows).squares(columns, nullptr, nullptr, squares.data());
    const Variance variance(columns.height, reciprocal<Elem32f>(columns.height - 1));
    for (Elem32s c = 0; c < columns.width; ++c) {
        squares.data()[c] = variance(squares.data()[c], static_cast<Elem32f>(mean[c]));
    }
    return lyrsConvert_32f16s_Sfs(squares.data(), var, columns.width, convertToNearest, scaleFactor);
}

// The mean enters the variance before it is rounded to 16 bits.
template <class Rows>
Status meanVar16s(Columns<Rows> columns, Elem16s* pMean, Elem16s* pVar, Elem32s scaleFactor)
{
    const auto factor = reciprocal<Elem32f>(columns.height);
    const Variance variance(columns.height, reciprocal<Elem32f>(columns.height - 1));
    forEachPanel(columns.width, [&](Elem32s first, Elem32s count) {
        Elem32f mean[panelColumns];
        Elem32f var[panelColumns];
        zeroElements(mean, count);
        zeroElements(var, count);
        kernels.shorts.of(columns.rows).both({columns.rows, columns.height, count, first}, nullptr, mean, var);
        for (Elem32s c = 0; c < count; ++c) {
            mean[c] *= factor;
            var[c] = variance(var[c], mean[c]);
        }
        lyrsConvert_32f16s_Sfs(mean, pMean + first, count, convertToNearest, 0);
        lyrsConvert_32f16s_Sfs(var, pVar + first, count, convertToNearest, scaleFactor);
    });
    return StsNoErr;
}

// ------------------------------------------------------------------------------------------- 16 bits, summed in double

// store(c, mean, var) writes a column's results. `scale` is a power of two.
template <class Rows, class Store>
Status meanVarInDouble(Columns<Rows> columns, Elem64f scale, Store store)
{
    const auto factor = reciprocal<Elem64f>(columns.height);
    const Variance variance(columns.height, reciprocal<Elem64f>(columns.height - 1) * scale);
    forEachPanel(columns.width, [&](Elem32s first, Elem32s count) {
        Elem64f sums[panelColumns];
        Elem64f squares[panelColumns];
        zeroElements(sums, count);
        zeroElements(squares, count);
        kernels.shortsInDouble.of(columns.rows)
            .both({columns.rows, columns.height, count, first}, nullptr, sums, squares);
        for (Elem32s c = 0; c < count; ++c) {
            const Elem64f mean = sums[c] * factor;
            store(first + c, mean, variance(squares[c], mean));
        }
    });
    return StsNoErr;
}

// The scale factor is that of the variance alone.
template <class Rows>
Status meanVar16s32s(Columns<Rows> columns, Elem32s* pMean, Elem32s* pVar, Elem32s scaleFactor)
{
    return meanVarInDouble(columns, lyr::GetScale_32s64f(scaleFactor), [=](Elem32s c, Elem64f mean, Elem64f var) {
        pMean[c] = toInteger(mean);
        pVar[c] = toInteger(var);
    });
}

template <class Rows>
Status meanVar16s16s32s(Columns<Rows> columns, Elem16s* pMean, Elem32s* pVar)
{
    return meanVarInDouble(columns, 1.0, [=](Elem32s c, Elem64f mean, Elem64f var) {
        pMean[c] = lyr::saturate16(toInteger(mean));
        pVar[c] = toInteger(var);
    });
}

} // namespace

// ---------------------------------------------------------------------------------------------------------------- mean

Status lyrsMeanColumn_32f_D2(const Elem32f* pSrc, Elem32s height, Elem32s step, Elem32f* pDstMean, Elem32s width)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pDstMean), sizes(width, height));
    return mean32f(Columns{Block{pSrc, step}, height, width}, pDstMean);
}

Status lyrsMeanColumn_16s_D2(const Elem16s* pSrc, Elem32s height, Elem32s step, Elem16s* pDstMean, Elem32s width)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pDstMean), sizes(width, height));
    return mean16s(Columns{Block{pSrc, step}, height, width}, pDstMean);
}

Status lyrsMeanColumn_32f_D2L(const Elem32f* const* mSrc, Elem32s height, Elem32f* pDstMean, Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pDstMean), sizes(width, height));
    return mean32f(Columns{Table{mSrc}, height, width}, pDstMean);
}

Status lyrsMeanColumn_16s_D2L(const Elem16s* const* mSrc, Elem32s height, Elem16s* pDstMean, Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pDstMean), sizes(width, height));
    return mean16s(Columns{Table{mSrc}, height, width}, pDstMean);
}

// ------------------------------------------------------------------------------------------------------------ variance

Status lyrsVarColumn_32f_D2(const Elem32f* pSrc, Elem32s height, Elem32s step, const Elem32f* pSrcMean,
                            Elem32f* pDstVar, Elem32s width)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pSrcMean, pDstVar), sizes(width), atLeast(2, height));
    return var32f(Columns{Block{pSrc, step}, height, width}, pSrcMean, pDstVar);
}

Status lyrsVarColumn_16s_D2Sfs(const Elem16s* pSrc, Elem32s height, Elem32s step, const Elem16s* pSrcMean,
                               Elem16s* pDstVar, Elem32s width, Elem32s scaleFactor)
{
    LYR_CHECK(stride(width, step), pointers(pSrc, pSrcMean, pDstVar), sizes(width), atLeast(2, height));
    return var16s(Columns{Block{pSrc, step}, height, width}, pSrcMean, pDstVar, scaleFactor);
}

Status lyrsVarColumn_32f_D2L(const Elem32f* const* mSrc, Elem32s height, const Elem32f* pSrcMean, Elem32f* pDstVar,
                             Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pSrcMean, pDstVar), sizes(width), atLeast(2, height));
    return var32f(Columns{Table{mSrc}, height, width}, pSrcMean, pDstVar);
}

Status lyrsVarColumn_16s_D2LSfs(const Elem16s* const* mSrc, Elem32s height, const Elem16s* pSrcMean, Elem16s* pDstVar,
                                Elem32s width, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(mSrc), pointers(pSrcMean, pDstVar), sizes(width), atLeast(2, height));
    return var16s(Columns{Table{mSrc}, height, width}, pSrcMean, pDstVar, scaleFactor);
}

// --------------------------------------------------------------------------------------------------- mean and variance

// These test the stride last, unlike the two above.

Status lyrsMeanVarColumn_32f_D2(const Elem32f* pSrc, Elem32s height, Elem32s step, Elem32f* pDstMean, Elem32f* pDstVar,
                                Elem32s width)
{
    LYR_CHECK(pointers(pSrc, pDstMean, pDstVar), sizes(width), atLeast(2, height), stride(width, step));
    return meanVar32f(Columns{Block{pSrc, step}, height, width}, pDstMean, pDstVar);
}

Status lyrsMeanVarColumn_16s_D2Sfs(const Elem16s* pSrc, Elem32s height, Elem32s step, Elem16s* pDstMean,
                                   Elem16s* pDstVar, Elem32s width, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc, pDstMean, pDstVar), sizes(width), atLeast(2, height), stride(width, step));
    return meanVar16s(Columns{Block{pSrc, step}, height, width}, pDstMean, pDstVar, scaleFactor);
}

Status lyrsMeanVarColumn_16s32s_D2Sfs(const Elem16s* pSrc, Elem32s height, Elem32s step, Elem32s* pDstMean,
                                      Elem32s* pDstVar, Elem32s width, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(pSrc), pointers(pDstMean, pDstVar), sizes(width), atLeast(2, height), stride(width, step));
    return meanVar16s32s(Columns{Block{pSrc, step}, height, width}, pDstMean, pDstVar, scaleFactor);
}

Status lyrsMeanVarColumn_16s16s32s_D2(const Elem16s* pSrc, Elem32s height, Elem32s step, Elem16s* pDstMean,
                                      Elem32s* pDstVar, Elem32s width)
{
    LYR_CHECK(pointers(pSrc, pDstMean), pointers(pDstVar), sizes(width), atLeast(2, height), stride(width, step));
    return meanVar16s16s32s(Columns{Block{pSrc, step}, height, width}, pDstMean, pDstVar);
}

Status lyrsMeanVarColumn_32f_D2L(const Elem32f* const* mSrc, Elem32s height, Elem32f* pDstMean, Elem32f* pDstVar,
                                 Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pDstMean, pDstVar), sizes(width), atLeast(2, height));
    return meanVar32f(Columns{Table{mSrc}, height, width}, pDstMean, pDstVar);
}

Status lyrsMeanVarColumn_16s_D2LSfs(const Elem16s* const* mSrc, Elem32s height, Elem16s* pDstMean, Elem16s* pDstVar,
                                    Elem32s width, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(mSrc), pointers(pDstMean, pDstVar), sizes(width), atLeast(2, height));
    return meanVar16s(Columns{Table{mSrc}, height, width}, pDstMean, pDstVar, scaleFactor);
}

Status lyrsMeanVarColumn_16s32s_D2LSfs(const Elem16s* const* mSrc, Elem32s height, Elem32s* pDstMean, Elem32s* pDstVar,
                                       Elem32s width, Elem32s scaleFactor)
{
    LYR_CHECK(pointers(mSrc), pointers(pDstMean, pDstVar), sizes(width), atLeast(2, height));
    return meanVar16s32s(Columns{Table{mSrc}, height, width}, pDstMean, pDstVar, scaleFactor);
}

Status lyrsMeanVarColumn_16s16s32s_D2L(const Elem16s* const* mSrc, Elem32s height, Elem16s* pDstMean, Elem32s* pDstVar,
                                       Elem32s width)
{
    LYR_CHECK(pointers(mSrc), pointers(pDstMean), pointers(pDstVar), sizes(width), atLeast(2, height));
    return meanVar16s16s32s(Columns{Table{mSrc}, height, width}, pDstMean, pDstVar);
}
