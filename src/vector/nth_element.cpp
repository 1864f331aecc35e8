// The N-th largest element, by quick-select (Hoare, Algorithm 65: Find, CACM 4(7), 1961).

#include "frame/check.hpp"
#include "frame/elements.hpp"
#include "lyrsr.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <utility>

namespace {

enum class Pivots
{
    First, // the first element of the open range, in every pass
    Free   // another one where that pays
};

// Whether each element compares with every other: none of them is NaN.
template <class T>
bool isOrdered(const T* first, const T* last)
{
    return std::is_integral_v<T> || std::none_of(first, last, [](T x) { return x != x; });
}

template <class T>
bool holdsZero(const T* p, Elem32s len, bool negative)
{
    return std::any_of(p, p + len, [negative](T x) { return x == 0 && std::signbit(x) == negative; });
}

// Where in p, which it reorders, stands what is at index n in descending order, 0 <= n < len.
//
// NaN has no place in an order and gets the one that the passes leave it, counted among what is not below the pivot:
// the sequence of pivots then decides the result, and is kept.
template <class T>
const T* select(T* p, Elem32s len, Elem32s n, Pivots pivots)
{
    Elem32s lo = 0;
    Elem32s hi = len - 1;
    for (;;) {
        const T pivot = p[lo];
        if (pivot != pivot) {
            // Nothing is below it or equal to it, so that a pass only takes it to the end.
            if (n == hi) {
                return p + lo;
            }
            std::swap(p[lo], p[hi--]);
            continue;
        }
        Elem32s i = lo + 1;
        Elem32s j = hi;
        for (;;) {
            while (i <= j && !(p[i] < pivot)) {
                ++i;
            }
            while (i <= j && p[j] < pivot) {
                --j;
            }
            if (i >= j) {
                break;
            }
            std::swap(p[i++], p[j--]);
        }
        // Now what lies left of i is not below the pivot; it takes its place as the last of these, behind its equals
        // next to it.
        std::swap(p[lo], p[i - 1]);
        Elem32s first = i - 1;
        while (first > lo && p[first - 1] == pivot) {
            --first;
        }
        if (first <= n && n < i) {
            return p + i - 1;
        }
        const Elem32s size = hi - lo;
        if (n < first) {
            hi = first - 1;
        } else {
            lo = i;
        }
        // A pass that took little away (a vector that is in order, say) has the next one start from the middle element,
        // unless that could change the value of the result.
        if (pivots == Pivots::Free && hi - lo > size - size / 8 && isOrdered(p + lo, p + hi + 1)) {
            std::swap(p[lo], p[lo + (hi - lo) / 2]);
        }
    }
}

template <class T>
Status nthMaxElement(T* (*allocate)(Elem32s), const T* src, Elem32s len, Elem32s n, T* result)
{
    T* const work = allocate(len);
    LYR_CHECK(require(work != nullptr, StsMemAlloc));
    lyr::copyElements(src, work, len);
    const T* selected = select(work, len, n, Pivots::Free);
    if constexpr (std::is_floating_point_v<T>) {
        // Zeros of unlike sign are equal and yet two results: which one it is, the sequence of pivots decides.
        if (*selected == 0 && holdsZero(src, len, true) && holdsZero(src, len, false)) {
            lyr::copyElements(src, work, len);
            selected = select(work, len, n, Pivots::First);
        }
    }
    *result = *selected;
    lyrsFree(work);
    return StsNoErr;
}

} // namespace

Status lyrsNthMaxElement_32s(const Elem32s* pSrc, Elem32s len, Elem32s N, Elem32s* pRes)
{
    LYR_CHECK(pointers(pSrc, pRes), sizes(len), require(N >= 0 && N < len, StsBadArg));
    return nthMaxElement(lyrsMalloc_32s, pSrc, len, N, pRes);
}

Status lyrsNthMaxElement_32f(const Elem32f* pSrc, Elem32s len, Elem32s N, Elem32f* pRes)
{
    LYR_CHECK(pointers(pSrc, pRes), sizes(len), require(N >= 0 && N < len, StsBadArg));
    return nthMaxElement(lyrsMalloc_32f, pSrc, len, N, pRes);
}

Status lyrsNthMaxElement_64f(const Elem64f* pSrc, Elem32s len, Elem32s N, Elem64f* pRes)
{
    LYR_CHECK(pointers(pSrc, pRes), sizes(len), require(N >= 0 && N < len, StsBadArg));
    return nthMaxElement(lyrsMalloc_64f, pSrc, len, N, pRes);
}
