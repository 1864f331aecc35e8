// Columns of feature matrices: statics into a matrix whose derivatives come later, and selections by a table of
// indices.

#include "frame/check.hpp"
#include "frame/layout.hpp"
#include "lyrsr.h"

#include <cstddef>
#include <cstring>

using lyr::Block;
using lyr::Table;

namespace {

template <class T>
void copyColumns(const T* src, Elem32s width, Block<T> dst, Elem32s height)
{
    const auto n = static_cast<std::size_t>(width);
    for (Elem32s r = 0; r < height; ++r, src += n) {
        std::memcpy(dst.row(r), src, n * sizeof(T));
    }
}

// The indices are tested on the way through the first row, and the elements ahead of a bad one have been written by
// then: the only thing that an error leaves behind.
template <class Source, class Destination>
Status gatherColumns(Source src, Elem32s srcLen, Destination dst, const Elem32s* index, Elem32s dstLen, Elem32s height)
{
    for (Elem32s r = 0; r < height; ++r) {
        const auto* const from = src.row(r);
        auto* const to = dst.row(r);
        for (Elem32s i = 0; i < dstLen; ++i) {
            if (r == 0 && (index[i] < 0 || index[i] >= srcLen)) {
                return StsSize;
            }
            to[i] = from[index[i]];
        }
    }
    return StsNoErr;
}

} // namespace

Status lyrsCopyColumn_32f_D2(const Elem32f* pSrc, Elem32s width, Elem32f* pDst, Elem32s dstStep, Elem32s height)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(height, width), stride(width, dstStep));
    copyColumns(pSrc, width, Block{pDst, dstStep}, height);
    return StsNoErr;
}

Status lyrsCopyColumn_16s_D2(const Elem16s* pSrc, Elem32s width, Elem16s* pDst, Elem32s dstStep, Elem32s height)
{
    LYR_CHECK(pointers(pSrc, pDst), sizes(height, width), stride(width, dstStep));
    copyColumns(pSrc, width, Block{pDst, dstStep}, height);
    return StsNoErr;
}

Status lyrsCopyColumn_Indirect_32f_D2(const Elem32f* pSrc, Elem32s srcLen, Elem32s srcStep, Elem32f* pDst,
                                      const Elem32s* pIndx, Elem32s dstLen, Elem32s dstStep, Elem32s height)
{
    LYR_CHECK(pointers(pSrc, pDst), pointers(pIndx), sizes(srcLen), stride(srcLen, srcStep), sizes(dstLen),
              stride(dstLen, dstStep), sizes(height));
    return gatherColumns(Block{pSrc, srcStep}, srcLen, Block{pDst, dstStep}, pIndx, dstLen, height);
}

Status lyrsCopyColumn_Indirect_64f_D2(const Elem64f* pSrc, Elem32s srcLen, Elem32s srcStep, Elem64f* pDst,
                                      const Elem32s* pIndx, Elem32s dstLen, Elem32s dstStep, Elem32s height)
{
    LYR_CHECK(pointers(pSrc, pDst), pointers(pIndx), sizes(srcLen), stride(srcLen, srcStep), sizes(dstLen),
              stride(dstLen, dstStep), sizes(height));
    return gatherColumns(Block{pSrc, srcStep}, srcLen, Block{pDst, dstStep}, pIndx, dstLen, height);
}

Status lyrsCopyColumn_Indirect_16s_D2(const Elem16s* pSrc, Elem32s srcLen, Elem32s srcStep, Elem16s* pDst,
                                      const Elem32s* pIndx, Elem32s dstLen, Elem32s dstStep, Elem32s height)
{
    LYR_CHECK(pointers(pSrc, pDst), pointers(pIndx), sizes(srcLen), stride(srcLen, srcStep), sizes(dstLen),
              stride(dstLen, dstStep), sizes(height));
    return gatherColumns(Block{pSrc, srcStep}, srcLen, Block{pDst, dstStep}, pIndx, dstLen, height);
}

Status lyrsCopyColumn_Indirect_32f_D2L(const Elem32f* const* mSrc, Elem32s srcLen, Elem32f* const* mDst,
                                       const Elem32s* pIndx, Elem32s dstLen, Elem32s height)
{
    LYR_CHECK(pointers(mSrc), pointers(mDst), pointers(pIndx), sizes(srcLen, dstLen, height));
    return gatherColumns(Table{mSrc}, srcLen, Table{mDst}, pIndx, dstLen, height);
}

Status lyrsCopyColumn_Indirect_64f_D2L(const Elem64f* const* mSrc, Elem32s srcLen, Elem64f* const* mDst,
                                       const Elem32s* pIndx, Elem32s dstLen, Elem32s height)
{
    LYR_CHECK(pointers(mSrc), pointers(mDst), pointers(pIndx), sizes(srcLen, dstLen, height));
    return gatherColumns(Table{mSrc}, srcLen, Table{mDst}, pIndx, dstLen, height);
}

Status lyrsCopyColumn_Indirect_16s_D2L(const Elem16s* const* mSrc, Elem32s srcLen, Elem16s* const* mDst,
                                       const Elem32s* pIndx, Elem32s dstLen, Elem32s height)
{
    LYR_CHECK(pointers(mSrc), pointers(mDst), pointers(pIndx), sizes(srcLen, dstLen, height));
    return gatherColumns(Table{mSrc}, srcLen, Table{mDst}, pIndx, dstLen, height);
}
