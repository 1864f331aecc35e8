// Which of the kernels compiled for several vector widths a processor gets.
//
// A family has a table of function pointers and defines it once for each width (LYR_DECLARE_KERNELS). Its exported
// functions hold a copy, chosen when the library is loaded (LYR_SELECT_KERNELS): a call costs the load of one pointer,
// and nothing changes afterwards.
#pragma once

namespace lyr {

enum class Width
{
    W128,
    W256,
    W512
};

// The widest kernels that were built and that the processor and the operating system support.
Width selectedWidth() noexcept;

template <class Table>
Table selectTable(const Table& t128, const Table& t256, const Table& t512) noexcept
{
    switch (selectedWidth()) {
    case Width::W512:
        return t512;
    case Width::W256:
        return t256;
    default:
        return t128;
    }
}

// A kernel and its twin for data at multiples of 16 bytes.
template <class Kernel>
struct Twins
{
    Kernel* aligned;   // _Al
    Kernel* unaligned; // _NA

    Kernel* operator()(bool isAligned) const noexcept { return isAligned ? aligned : unaligned; }
};

} // namespace lyr

// In X_kernels.hpp, inside namespace lyr: declares the table NAME of type TYPE of every width.
#define LYR_DECLARE_KERNELS(TYPE, NAME)                                                                                \
    namespace w128 {                                                                                                   \
    extern const TYPE NAME;                                                                                            \
    }                                                                                                                  \
    namespace w256 {                                                                                                   \
    extern const TYPE NAME;                                                                                            \
    }                                                                                                                  \
    namespace w512 {                                                                                                   \
    extern const TYPE NAME;                                                                                            \
    }

// In X.cpp: the table for this processor. LYR_SELECT_KERNELS_UP_TO_256 is for families that 512 bits do not make
// faster.
#if LYR_WIDEST >= 512
#define LYR_SELECT_KERNELS(NAME) ::lyr::selectTable(::lyr::w128::NAME, ::lyr::w256::NAME, ::lyr::w512::NAME)
#elif LYR_WIDEST >= 256
#define LYR_SELECT_KERNELS(NAME) ::lyr::selectTable(::lyr::w128::NAME, ::lyr::w256::NAME, ::lyr::w256::NAME)
#else
#define LYR_SELECT_KERNELS(NAME) ::lyr::selectTable(::lyr::w128::NAME, ::lyr::w128::NAME, ::lyr::w128::NAME)
#endif
#if LYR_WIDEST >= 256
#define LYR_SELECT_KERNELS_UP_TO_256(NAME) ::lyr::selectTable(::lyr::w128::NAME, ::lyr::w256::NAME, ::lyr::w256::NAME)
#else
#define LYR_SELECT_KERNELS_UP_TO_256(NAME) LYR_SELECT_KERNELS(NAME)
#endif
