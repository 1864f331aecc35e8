// What the two kinds of record share: orders, sums of sizes, and memory of the library's own.
#pragma once

#include "fft/fft_spec.hpp"
#include "frame/check.hpp"
#include "frame/memory.hpp"
#include "lyrsr.h"

#include <cstddef>
#include <cstdint>

namespace lyr::fft {

constexpr bool isOrder(Elem32s order)
{
    return order >= 0 && order <= maxOrder;
}

// Sizes are sums of unsigned 32-bit numbers and wrap at the top orders: meant so.
constexpr Elem32s wrappedSum(Elem32s a, std::uint64_t b)
{
    return static_cast<Elem32s>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

// `getSize` and `init` are the exported functions of the kind. Its memory is `spare` bytes larger than they tell.
template <class Spec, class GetSize, class Init>
Status allocateRecord(Spec** ppSpec, Elem32s order, Elem32s flag, Elem32s hint, GetSize getSize, Init init,
                      std::size_t spare)
{
    LYR_CHECK(pointers(ppSpec));
    Elem32s specSize = 0;
    Elem32s initSize = 0;
    Elem32s bufSize = 0;
    LYR_CHECK(getSize(order, flag, hint, &specSize, &initSize, &bufSize));
    Elem8u* const memory = lyrsMalloc_8u(wrappedSum(specSize, spare));
    const WorkBuffer<Elem8u> initBuffer(initSize);
    Spec* spec = nullptr;
    const Status status = memory == nullptr || (initSize > 0 && !initBuffer)
                              ? Status{StsMemAlloc}
                              : init(&spec, order, flag, hint, memory, initBuffer.data());
    if (status != StsNoErr) {
        lyrsFree(memory);
        return status;
    }
    spec->ownsMemory = 1;
    *ppSpec = spec;
    return StsNoErr;
}

// The tag goes first, so that no function takes the record again. Memory that the caller gave stays the caller's.
template <class Spec>
Status releaseRecord(Spec* pSpec, std::uint32_t tag)
{
    LYR_CHECK(pointers(pSpec));
    LYR_CHECK(require(pSpec->idCtx == tag, StsContext));
    pSpec->idCtx = 0;
    if (pSpec->ownsMemory != 0) {
        lyrsFree(pSpec);
    }
    return StsNoErr;
}

} // namespace lyr::fft
