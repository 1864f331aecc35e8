/**
 * @file lyrsr.h
 * @brief lyrsr: numerical primitives for speech recognition.
 *
 * Plain functions over plain arrays. A call runs on the caller's thread, reads and writes only the buffers that it is
 * given, keeps no reference to them and returns a #Status. There is nothing to start, to configure or to shut down, and
 * every function may run at the same time as any other on different data.
 *
 * What holds for every function, unless its own text says otherwise:
 *  - Lengths, counts, strides and scale factors are signed 32-bit; a stride (`step`) counts elements, never bytes.
 *  - Arguments are checked in a fixed order before anything is touched: null pointers (#StsNullPtr), sizes below 1
 * (#StsSize), a stride below the width (#StsStep), value domains, work memory (#StsMemAlloc). The first fault decides
 * the status. On a negative status nothing that the caller supplied has changed; a positive status is a warning, with
 * the result written in full.
 *  - `_D2` takes a matrix in one block with a stride, `_D2L` a table of row pointers `mPtr` (not scanned for null) and
 * no stride.
 *  - `_I` works in place on `pSrcDst`. Other sources and destinations may not overlap.
 *  - `Sfs`: the integer result is the exact result times 2^(-scaleFactor), rounded to nearest with ties to even and
 * then saturated. Saturation is no warning.
 *  - Data aligned to 16 bytes with strides that keep it so takes faster kernels. Alignment and the processor's vector
 * width may change the last bits of a floating-point result, and whether a sum overflows whose terms have both signs
 * and magnitudes near the top of the range.
 */
#ifndef LYRSR_H
#define LYRSR_H

#include <stdint.h>

#if defined(__GNUC__)
#define LYRSR_API __attribute__((visibility("default")))
#else
#define LYRSR_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/**
 * @defgroup frame Types, status, memory
 * Element types, status values, the version record and aligned memory.
 * @{
 */

/** @name Element types, by the type codes of function names
 * @{ */
typedef uint8_t Elem8u;
typedef uint16_t Elem16u; /**< offset tables only */
typedef int16_t Elem16s;
typedef int32_t Elem32s;
typedef int64_t Elem64s;
typedef float Elem32f;  /**< IEEE 754 single */
typedef double Elem64f; /**< IEEE 754 double */

/** Complex single. */
typedef struct Elem32fc
{
    Elem32f re;
    Elem32f im;
} Elem32fc;

/** Complex 32-bit integer. */
typedef struct Elem32sc
{
    Elem32s re;
    Elem32s im;
} Elem32sc;
/** @} */

/** The result of a function: 0 success, negative an error, positive a warning. */
typedef Elem32s Status;

/** Every value that a #Status takes. */
enum LyrsStatus
{
    StsNoErr = 0,             /**< carried out */
    StsFail = -2,             /**< a primitive called inside a quantiser failed */
    StsBadArg = -5,           /**< a scalar argument that is no length is outside the accepted values */
    StsSize = -6,             /**< a length, count or dimension is out of range */
    StsRange = -7,            /**< a data value or physical parameter is outside the domain */
    StsNullPtr = -8,          /**< a required pointer is null */
    StsMemAlloc = -9,         /**< an allocation inside the call failed; what it had taken is released */
    StsDivByZero = -10,       /**< the constant divisor is zero */
    StsFftOrder = -15,        /**< FFT order outside 0 to 30 */
    StsFftFlag = -16,         /**< unknown FFT normalisation flag */
    StsContext = -17,         /**< the state record is not one of the expected kind */
    StsStep = -37,            /**< a row stride is smaller than what the call touches of a row */
    StsNoConvergence = -65,   /**< the SVD iteration did not converge */
    StsCdbkFlag = -66,        /**< illegal codebook option */
    StsUpdateFactor = -67,    /**< negative model-update factor */
    StsFBankNotReady = -69,   /**< the filter bank has no centre frequencies or coefficients yet */
    StsFBankFlag = -70,       /**< illegal filter-bank option flags */
    StsFBankFreq = -71,       /**< filter-bank frequency limits out of order */
    StsLspRoots = -114,       /**< not all line spectral roots were found */
    StsLspOrder = -115,       /**< line spectral values not strictly ordered */
    StsUnstable = -116,       /**< a reflection coefficient reached magnitude one */
    StsIllConditioned = -117, /**< the recursion met a non-positive prediction error */
    StsLenRange = -119,       /**< a length is outside the supported range */
    StsCdbkHint = -9999,      /**< impossible hint in a codebook record that is freed */
    StsWarnSqrtNeg = 3,       /**< square root of a negative element */
    StsWarnZero = 4,          /**< degenerate input; substitute values were written */
    StsWarnOverflow = 6,      /**< a denominator was zero; limit values were written */
    StsWarnInf = 7,           /**< a result is an infinity */
    StsWarnNan = 8,           /**< a result is not a number */
    StsWarnUpdate11 = 11,     /**< model update, see there */
    StsWarnUpdate16 = 16,     /**< a model-update factor is too small; nothing was written */
    StsWarnCdbkSize = 31      /**< the codebook has another size than asked for; it is complete and usable */
};

/** What lyrsrGetLibVersion() points at. */
typedef struct LibVersion
{
    Elem32s majorVersion;
    Elem32s minorVersion;
    Elem32s buildMajor;
    Elem32s buildMinor;
    char targetTag[4]; /**< two characters and two zero bytes */
    const char* libraryName;
    const char* versionText;
    const char* buildDate;
} LibVersion;

/** The version of the library. @return a constant record, neither to be written nor freed */
LYRSR_API const LibVersion* lyrsrGetLibVersion(void);

/**
 * @name Aligned memory
 * Allocate `len` elements at an address that is a multiple of 32, so that the data reaches the aligned kernels; the
 * content is not set. Release with lyrsFree() and nothing else.
 * @param len number of elements; that its size fits the address space is the caller's care
 * @return the block, or null if `len` is below 1 or memory is exhausted
 * @{
 */
LYRSR_API Elem8u* lyrsMalloc_8u(Elem32s len);
LYRSR_API Elem16s* lyrsMalloc_16s(Elem32s len);
LYRSR_API Elem32s* lyrsMalloc_32s(Elem32s len);
LYRSR_API Elem32f* lyrsMalloc_32f(Elem32s len);
LYRSR_API Elem64f* lyrsMalloc_64f(Elem32s len);
/** Releases a block from `lyrsMalloc_*`. A null pointer does nothing. */
LYRSR_API void lyrsFree(void* p);
/** @} */
/** @} */

/* ===================================================== vector ===================================================== */

/**
 * @defgroup vector_arithmetic Vector arithmetic
 * Element-wise arithmetic on vectors of `len` elements, at least 1. Sources and destination may be the same vector.
 *
 * Statuses are #StsNoErr and, in this order, #StsNullPtr and #StsSize, and what a group adds.
 * @{
 */

/**
 * @name Division
 * `lyrsDiv_32f`, `lyrsDiv_64f`: pDst[i] = pSrc2[i] / pSrc1[i], the first vector being the divisor; in place pSrcDst[i]
 * = pSrcDst[i] / pSrc[i]. A divisor of zero, of either sign, gives an infinity with the sign of the dividend, or the
 * positive quiet NaN where that is zero or NaN. Elements go in groups of four from the first: a divisor that is NaN
 * gives that same NaN where its group holds a zero divisor, and else the NaN that the division gives, with no warning.
 * @return #StsNoErr, #StsNullPtr, #StsSize; #StsWarnOverflow if a divisor was zero, with every element written
 * @{
 */
LYRSR_API Status lyrsDiv_32f(const Elem32f* pSrc1, const Elem32f* pSrc2, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsDiv_64f(const Elem64f* pSrc1, const Elem64f* pSrc2, Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsDiv_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len);
/** @} */

/**
 * @name Magnitude, sum, difference, product
 * `lyrsAbs_64f`: |pSrc[i]|. In place: pSrcDst[i] + pSrc[i] and pSrcDst[i] - pSrc[i]. `lyrsMul_32f`: pSrc1[i] *
 * pSrc2[i].
 * @{
 */
LYRSR_API Status lyrsAbs_64f(const Elem64f* pSrc, Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsAdd_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsAdd_64f_I(const Elem64f* pSrc, Elem64f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsSub_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsSub_64f_I(const Elem64f* pSrc, Elem64f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsMul_32f(const Elem32f* pSrc1, const Elem32f* pSrc2, Elem32f* pDst, Elem32s len);
/** @} */

/**
 * @name With a constant
 * pSrc[i] + val, pSrc[i] * val, and pSrc[i] * (1 / val) for the quotient.
 *
 * A `val` of 0 in the sum and of 1 in the product leaves every element bit for bit as it is, and so does a `val` that
 * is NaN. A `val` of 0 in the product writes zeros, over NaN and infinities too. The same holds for the reciprocal in a
 * quotient.
 * @return also #StsDivByZero for a divisor that is zero or NaN
 * @{
 */
LYRSR_API Status lyrsAddC_32f(const Elem32f* pSrc, Elem32f val, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsMulC_32f(const Elem32f* pSrc, Elem32f val, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsMulC_64f(const Elem64f* pSrc, Elem64f val, Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsMulC_32f_I(Elem32f val, Elem32f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsMulC_64f_I(Elem64f val, Elem64f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsDivC_32f(const Elem32f* pSrc, Elem32f val, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsDivC_64f(const Elem64f* pSrc, Elem64f val, Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsDivC_32f_I(Elem32f val, Elem32f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsDivC_64f_I(Elem64f val, Elem64f* pSrcDst, Elem32s len);
/** @} */

/**
 * @name Spectra
 * `lyrsMagnitude_32fc`: sqrt(re^2 + im^2) in single precision, the squares too: from 2^64 on the result is an infinity,
 * and below 2^-63 it loses precision, down to zero. It may be written over the start of the source.
 *
 * `lyrsMulPackConj_32f_I`: two spectra in Pack layout: a real value, pairs (real, imaginary) and, for an even `len`, a
 * last real value. Real values multiply; a pair (a, b) of `pSrc` and (c, d) of `pSrcDst` becomes (a c + b d, b c - a
 * d).
 * @{
 */
LYRSR_API Status lyrsMagnitude_32fc(const Elem32fc* pSrc, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsMulPackConj_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len);
/** @} */
/** @} */

/**
 * @defgroup vector_functions Roots and elementary functions of vectors
 * Element-wise on vectors of `len` elements, at least 1. Statuses are #StsNoErr and, in this order, #StsNullPtr and
 * #StsSize, and what a group adds.
 * @{
 */

/**
 * @name Square root
 * Correctly rounded. A zero keeps its sign; a negative element becomes NaN. The floating-point flags are as before the
 * call.
 * @return also #StsWarnSqrtNeg if an element was below zero
 * @{
 */
LYRSR_API Status lyrsSqrt_64f_I(Elem64f* pSrcDst, Elem32s len);
/** @} */

/**
 * @name Reciprocal square root with a floor
 * An element above `val` becomes 1 / sqrt(x); every other one, NaN too, becomes `val` itself. In single precision the
 * relative error is below 4e-7. The integer forms compute in single precision, multiply by 2^(-scaleFactor), round to
 * nearest with ties to even and saturate.
 *
 * An integer element equal to `val` is a value like those above it, except in `lyrsRecSqrt_32s_Sfs` on a vector aligned
 * to 16 bytes, where it is replaced. The comparison too is in single precision: integers beyond 2^24 that round alike
 * count as equal.
 * @return also #StsBadArg for a `val` not above 0; #StsWarnZero if every element was replaced
 * @{
 */
LYRSR_API Status lyrsRecSqrt_32f(Elem32f* pSrcDst, Elem32s len, Elem32f val);
LYRSR_API Status lyrsRecSqrt_32s_Sfs(Elem32s* pSrcDst, Elem32s len, Elem32s val, Elem32s scaleFactor);
LYRSR_API Status lyrsRecSqrt_32s16s_Sfs(const Elem32s* pSrc, Elem16s* pDst, Elem32s len, Elem32s val,
                                        Elem32s scaleFactor);
/** @} */

/**
 * @name Bell and sinc
 * exp(-x * x) and sin(x) / x, x in radians, with 1 at zero. `32f64f` forms widen each element to double first. Source
 * and destination may be the same vector where their types are the same; vectors that overlap in part are taken element
 * by element from the first. The destination may stand at any address, aligned to its elements or not.
 *
 * In round to nearest the bell is within 2 units in the last place for the rounded square, sinc within 3.5 in double
 * and 1 in single precision; in the other rounding modes these are 3, 8 and 2.
 * @{
 */
LYRSR_API Status lyrsExpNegSqr_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsExpNegSqr_32f64f(const Elem32f* pSrc, Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsExpNegSqr_64f(const Elem64f* pSrc, Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsExpNegSqr_32f_I(Elem32f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsExpNegSqr_64f_I(Elem64f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsSinC_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsSinC_32f64f(const Elem32f* pSrc, Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsSinC_64f(const Elem64f* pSrc, Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsSinC_32f_I(Elem32f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsSinC_64f_I(Elem64f* pSrcDst, Elem32s len);
/** @} */

/**
 * @name Unit curve
 * A smooth step: 0 up to 0, x^2 up to 1, 4 x - x^2 - 2 up to 2, and 2 from there on and for NaN.
 *
 * The integer forms read elements with `qIn` fractional bits and evaluate the curve with 2 * `qIn` of them, with one =
 * 2^qIn: 0 below 1, x^2 below one, 2 one^2 - (2 one - x)^2 below 2 one, 2 one^2 from there. The value is shifted by
 * `scaleFactor` + 2 * `qIn`, to the right by truncation, to the left where that is negative, and limited to 32767. A
 * `qIn` outside 0 to 14 clears the destination.
 *
 * Source and destination may be the same vector.
 * @{
 */
LYRSR_API Status lyrsUnitCurve_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsUnitCurve_32f_I(Elem32f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsUnitCurve_16s_Sfs(const Elem16s* pSrc, Elem32s qIn, Elem16s* pDst, Elem32s len,
                                       Elem32s scaleFactor);
LYRSR_API Status lyrsUnitCurve_16s_ISfs(Elem16s* pSrcDst, Elem32s qIn, Elem32s len, Elem32s scaleFactor);
/** @} */
/** @} */

/**
 * @defgroup vector_extrema Extremes of vectors
 * Of vectors of `len` elements, at least 1. Statuses are #StsNoErr and, in this order, #StsNullPtr and #StsSize, and
 * what a group adds.
 *
 * The result is that of a scan from the first element by strict comparison: a NaN is passed over, unless it is the
 * first element, which is then the result. Of a plus and a minus zero either may be the result where no index is asked
 * for.
 * @{
 */

/**
 * @name Largest and smallest element
 * `Indx` forms also tell where the extreme first occurs; with a null `pIndx` they are the plain forms.
 * @{
 */
LYRSR_API Status lyrsMax_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pResult);
LYRSR_API Status lyrsMax_64f(const Elem64f* pSrc, Elem32s len, Elem64f* pResult);
LYRSR_API Status lyrsMin_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pResult);
LYRSR_API Status lyrsMin_64f(const Elem64f* pSrc, Elem32s len, Elem64f* pResult);
LYRSR_API Status lyrsMinMax_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pMin, Elem32f* pMax);
LYRSR_API Status lyrsMaxIndx_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pResult, Elem32s* pIndx);
LYRSR_API Status lyrsMaxIndx_64f(const Elem64f* pSrc, Elem32s len, Elem64f* pResult, Elem32s* pIndx);
LYRSR_API Status lyrsMinIndx_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pResult, Elem32s* pIndx);
/** @} */

/**
 * @name Element-wise larger or smaller
 * pSrcDst[i] becomes pSrc[i] where that is strictly larger (smaller), and so stays as it is where either is NaN.
 * @{
 */
LYRSR_API Status lyrsMaxEvery_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsMinEvery_32f_I(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsMinEvery_32s_I(const Elem32s* pSrc, Elem32s* pSrcDst, Elem32s len);
/** @} */

/**
 * @name N-th largest element
 * The element at index `N` of the vector in descending order; 0 is the largest. NaN compares with nothing and takes the
 * place that the selection leaves it, and so do zeros of unlike sign among each other.
 * @return also #StsBadArg for an `N` outside 0 to `len` - 1, #StsMemAlloc
 * @{
 */
LYRSR_API Status lyrsNthMaxElement_32s(const Elem32s* pSrc, Elem32s len, Elem32s N, Elem32s* pRes);
LYRSR_API Status lyrsNthMaxElement_32f(const Elem32f* pSrc, Elem32s len, Elem32s N, Elem32f* pRes);
LYRSR_API Status lyrsNthMaxElement_64f(const Elem64f* pSrc, Elem32s len, Elem32s N, Elem64f* pRes);
/** @} */
/** @} */

/**
 * @defgroup vector_fill Setting and copying vectors
 * Of vectors of `len` elements, at least 1. `lyrsMove_32f` is the copy whose vectors may overlap.
 * @return #StsNoErr; in this order #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsSet_8u(Elem8u val, Elem8u* pDst, Elem32s len);
LYRSR_API Status lyrsSet_16s(Elem16s val, Elem16s* pDst, Elem32s len);
LYRSR_API Status lyrsSet_32s(Elem32s val, Elem32s* pDst, Elem32s len);
LYRSR_API Status lyrsSet_32f(Elem32f val, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsSet_64f(Elem64f val, Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsZero_8u(Elem8u* pDst, Elem32s len);
LYRSR_API Status lyrsZero_16s(Elem16s* pDst, Elem32s len);
LYRSR_API Status lyrsZero_32f(Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsZero_64f(Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsCopy_8u(const Elem8u* pSrc, Elem8u* pDst, Elem32s len);
LYRSR_API Status lyrsCopy_16s(const Elem16s* pSrc, Elem16s* pDst, Elem32s len);
LYRSR_API Status lyrsCopy_32s(const Elem32s* pSrc, Elem32s* pDst, Elem32s len);
LYRSR_API Status lyrsCopy_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsCopy_64f(const Elem64f* pSrc, Elem64f* pDst, Elem32s len);
LYRSR_API Status lyrsMove_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len);
/** @} */

/**
 * @defgroup vector_conversion Vector conversion
 * Conversion of `len` elements, at least 1, between element types. In a name with two type codes the first is the
 * source, the second the result. Source and destination of elements of one size may be the same vector.
 * @{
 */

/**
 * @name To floating point
 * The value in the target type, rounded by the current mode where it does not fit. The `Sfs` forms multiply the
 * converted value by 2^(-scaleFactor), limited so that nothing overflows and the power is a normal number: `16s32f`
 * -112 to 126, `32s32f` -96 to 126, `16s64f` -1008 to 1022.
 * @return #StsNoErr, #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsConvert_8u32f(const Elem8u* pSrc, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsConvert_16s32f(const Elem16s* pSrc, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsConvert_32s32f(const Elem32s* pSrc, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsConvert_64f32f(const Elem64f* pSrc, Elem32f* pDst, Elem32s len);
LYRSR_API Status lyrsConvert_16s32f_Sfs(const Elem16s* pSrc, Elem32f* pDst, Elem32s len, Elem32s scaleFactor);
LYRSR_API Status lyrsConvert_32s32f_Sfs(const Elem32s* pSrc, Elem32f* pDst, Elem32s len, Elem32s scaleFactor);
LYRSR_API Status lyrsConvert_16s64f_Sfs(const Elem16s* pSrc, Elem64f* pDst, Elem32s len, Elem32s scaleFactor);
/** @} */

/**
 * @name Floating point to integers
 * pSrc[i] * 2^(-scaleFactor) as an integer, limited to the range of the target. The power is one of single precision in
 * every form: 0 from a scale factor of 150 on, an infinity from -128 down. The floating-point control word and the
 * sticky invalid flag are afterwards as before.
 *
 * A NaN gives the upper limit, except that in `lyrsConvert_32f32s_Sfs` one with its sign set (as 0 times an infinity
 * makes it) gives the lower.
 * @param pSrc        source
 * @param pDst        destination
 * @param len         number of elements
 * @param rndMode     0 rounds toward zero, every other value to nearest with ties to even, in whatever mode the caller
 * runs
 * @param scaleFactor any value
 * @return #StsNoErr, #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsConvert_32f16s_Sfs(const Elem32f* pSrc, Elem16s* pDst, Elem32s len, Elem32s rndMode,
                                        Elem32s scaleFactor);
LYRSR_API Status lyrsConvert_32f32s_Sfs(const Elem32f* pSrc, Elem32s* pDst, Elem32s len, Elem32s rndMode,
                                        Elem32s scaleFactor);
LYRSR_API Status lyrsConvert_64f32s_Sfs(const Elem64f* pSrc, Elem32s* pDst, Elem32s len, Elem32s rndMode,
                                        Elem32s scaleFactor);
/** @} */

/**
 * @name Integers to shorter integers
 * pSrc[i] * 2^(-scaleFactor), to nearest with ties to even, limited to 16 bits. The scale factor is limited to -15
 * to 31.
 * @return #StsNoErr, #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsConvert_32s16s_Sfs(const Elem32s* pSrc, Elem16s* pDst, Elem32s len, Elem32s scaleFactor);
/** @} */
/** @} */

/**
 * @defgroup vector_fixed Vector arithmetic in fixed point
 * Element-wise on vectors of `len` elements, at least 1.
 * @{
 */

/**
 * @name Product
 * pDst[i] = pSrc1[i] * pSrc2[i] * 2^(-scaleFactor), to nearest with ties to even, limited to 16 bits. A scale factor
 * above 30 gives zeros. Sources and destination may be the same vector.
 * @return #StsNoErr, #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsMul_16s_Sfs(const Elem16s* pSrc1, const Elem16s* pSrc2, Elem16s* pDst, Elem32s len,
                                 Elem32s scaleFactor);
/** @} */

/**
 * @name Magnitude
 * pDst[i] = |pSrc[i]| * 2^(-scaleFactor), computed in double precision, limited to 2147483647 and rounded to nearest
 * with ties to even in whatever mode the caller runs. A scale factor above 32 gives zeros; one below -30 gives
 * 2147483647 for every element that is not zero. The result may be written over the start of the source.
 * @return #StsNoErr, #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsMagnitude_32sc_Sfs(const Elem32sc* pSrc, Elem32s* pDst, Elem32s len, Elem32s scaleFactor);
/** @} */
/** @} */

/**
 * @defgroup vector_log Natural logarithms
 * Of vectors of `len` elements, at least 1.
 * @{
 */

/**
 * @name Logarithm of single precision
 * pSrcDst[i] = ln pSrcDst[i], within 2 units in the last place, 3 in a rounding mode other than to nearest. A zero of
 * either sign gives minus infinity, a negative element NaN; plus infinity and NaN stay as they are.
 * @return #StsNoErr, #StsNullPtr, #StsSize; with every element written, what the first zero or negative element
 * decides: #StsWarnInf for a zero, #StsWarnNan for a negative one
 * @{
 */
LYRSR_API Status lyrsLn_32f_I(Elem32f* pSrcDst, Elem32s len);
/** @} */

/**
 * @name Logarithm of integers
 * With `scaleFactor` 0 or above: the integer nearest to ln x, shifted right by `scaleFactor` modulo 32 bits without
 * rounding. Below 0: ln x * 2^(-scaleFactor) from a logarithm of single precision, rounded to nearest and limited to 32
 * bits. A zero or negative element gives -2147483648. Source and destination may be the same vector.
 * @return #StsNoErr, #StsNullPtr, #StsSize; with every element written, what the first zero or negative element
 * decides: #StsWarnInf for a zero, #StsWarnNan for a negative one
 * @{
 */
LYRSR_API Status lyrsLn_32s_Sfs(const Elem32s* pSrc, Elem32s* pDst, Elem32s len, Elem32s scaleFactor);
LYRSR_API Status lyrsLn_32s_ISfs(Elem32s* pSrcDst, Elem32s len, Elem32s scaleFactor);
/** @} */

/**
 * @name Sum of logarithms
 * *pSum = sum over i of ln pSrc[i], from products of mantissas in double precision. The first element that is not
 * positive and finite decides the whole result:
 *
 * | element | *pSum | status |
 * |---|---|---|
 * | plus zero | plus infinity | #StsWarnInf |
 * | sign bit set, minus zero and NaN included | NaN | #StsWarnNan |
 * | plus infinity | plus infinity | #StsNoErr |
 * | NaN with a clear sign | NaN with its sign set | #StsNoErr |
 *
 * @return as above; #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsSumLn_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pSum);
LYRSR_API Status lyrsSumLn_64f(const Elem64f* pSrc, Elem32s len, Elem64f* pSum);
/** @} */
/** @} */

/**
 * @defgroup vector_sum Sums and dot products
 * Reductions of `len` elements, at least 1, to one value. Sums of floating-point numbers run in any order unless told
 * otherwise.
 * @{
 */

/**
 * @name Sum
 * `lyrsSum_32f` with `hint` 1 adds in single precision, at most 32768 elements at a time, and joins these sums in
 * extended precision. With any other `hint` it adds every element in extended precision, in eight sums that take turns,
 * and the total passes through a double. `pSrc` may stand at any address, aligned to its elements or not.
 *
 * The fixed-point forms scale an exact sum by 2^(-scaleFactor) and limit it to 32 bits: `lyrsSum_16s32s_Sfs` rounds by
 * the floating-point rounding mode in force, `lyrsSum_32s_Sfs` to nearest with ties to even.
 * @return #StsNoErr, #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsSum_32f(const Elem32f* pSrc, Elem32s len, Elem32f* pSum, Elem32s hint);
LYRSR_API Status lyrsSum_16s32s_Sfs(const Elem16s* pSrc, Elem32s len, Elem32s* pSum, Elem32s scaleFactor);
LYRSR_API Status lyrsSum_32s_Sfs(const Elem32s* pSrc, Elem32s len, Elem32s* pSum, Elem32s scaleFactor);
/** @} */

/**
 * @name Dot product
 * *pDp = sum over i of pSrc1[i] * pSrc2[i]: in the precision of the elements (`32f`, `64f`), in double precision
 * (`32f64f`), exact (`16s64s`), or exact and then rounded once (`16s32f`). In the precision of the elements a product
 * may be fused with the addition that follows, and so not be rounded, or overflow, by itself.
 * @return #StsNoErr, #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsDotProd_32f(const Elem32f* pSrc1, const Elem32f* pSrc2, Elem32s len, Elem32f* pDp);
LYRSR_API Status lyrsDotProd_64f(const Elem64f* pSrc1, const Elem64f* pSrc2, Elem32s len, Elem64f* pDp);
LYRSR_API Status lyrsDotProd_32f64f(const Elem32f* pSrc1, const Elem32f* pSrc2, Elem32s len, Elem64f* pDp);
LYRSR_API Status lyrsDotProd_16s64s(const Elem16s* pSrc1, const Elem16s* pSrc2, Elem32s len, Elem64s* pDp);
LYRSR_API Status lyrsDotProd_16s32f(const Elem16s* pSrc1, const Elem16s* pSrc2, Elem32s len, Elem32f* pDp);
/** @} */
/** @} */

/* ======================================================= fft ====================================================== */

/**
 * @defgroup fft Real FFT
 * The transform of N = 2^`order` reals to their spectrum, X[k] = sum of x[n] exp(-2 pi i n k / N), and back with the
 * positive exponent. Without scaling, a forward and an inverse transform in sequence multiply the signal by N.
 *
 * | `flag` | forward scales by | inverse scales by |
 * |---|---|---|
 * | 1 | 1/N | 1 |
 * | 2 | 1 | 1/N |
 * | 4 | 1/sqrt(N) | 1/sqrt(N) |
 * | 8 | 1 | 1 |
 *
 * A spectrum is laid out in one of three ways (R real parts, I imaginary parts, by index):
 *
 * | Layout | Elements | Order |
 * |---|---|---|
 * | Pack | N | R0, R1, I1, R2, I2, ..., R(N/2) |
 * | Perm | N | R0, R(N/2), R1, I1, R2, I2, ... |
 * | CCS | N + 2 | R0, 0, R1, I1, R2, I2, ..., R(N/2), 0 |
 *
 * For N = 1, Pack and Perm are R0 and CCS is R0, 0; for N = 2, Pack and Perm are R0, R1 and CCS is R0, 0, R1, 0.
 *
 * A record is built by an `InitAlloc` form, or by an `Init` form in memory of the size that the `GetSize` form tells.
 * It is read-only from then on, and threads may share it if each brings its own work buffer, or none. Memory handed to
 * an `Init` form is aligned as a pointer is, at least (8 bytes in the 64-bit library).
 *
 * Source and destination of a transform may be the same vector, and nothing is asked of their alignment. The result is
 * the same, bit by bit.
 *
 * Inside, values reach up to twice the magnitude of the largest result, so that a transform with results above half the
 * largest number may overflow. Forward transforms, and inverse ones below order 4, scale late, and there it is the
 * unscaled results that count. Inverse transforms from order 4 on scale first: values whose scaled size is subnormal
 * lose digits. An infinity or NaN in one element makes every result that depends on it an infinity or NaN.
 * @{
 */
/** State of lyrsFFTFwd_RToPack_32f() and its kin. */
typedef struct FFTSpec_R_32f FFTSpec_R_32f;
/** State of lyrsFFTFwd_RToCCS_16s32s_Sfs(). */
typedef struct FFTSpec_R_16s32s FFTSpec_R_16s32s;

/**
 * @name Sizes
 * The order is checked first, then the pointers, then the flag.
 * @param order 0 to 30, else #StsFftOrder
 * @param flag 1, 2, 4 or 8, else #StsFftFlag
 * @param hint ignored
 * @param pSpecSize bytes of the record
 * @param pInitBufSize bytes that the initialisation works in; 0 if none
 * @param pBufSize bytes that a transform works in; 0 if none
 * @return #StsNoErr; in this order: #StsFftOrder, #StsNullPtr, #StsFftFlag
 * @{
 */
LYRSR_API Status lyrsFFTGetSize_R_32f(Elem32s order, Elem32s flag, Elem32s hint, Elem32s* pSpecSize,
                                      Elem32s* pInitBufSize, Elem32s* pBufSize);
LYRSR_API Status lyrsFFTGetSize_R_16s32s(Elem32s order, Elem32s flag, Elem32s hint, Elem32s* pSpecSize,
                                         Elem32s* pInitBufSize, Elem32s* pBufSize);
/** @} */

/**
 * @name Initialisation in the caller's memory
 * @param ppSpec receives the address of the record, which lies inside `pMem`; stays as it is on an error
 * @param pMem the record's memory, which stays the caller's; written also when the flag or a missing `pInitBuf` is
 *        refused
 * @param pInitBuf needed from order 11 on, and free again after the call
 * @return #StsNoErr; in this order: #StsNullPtr (`ppSpec`), #StsFftOrder, #StsNullPtr (`pMem`), #StsFftFlag,
 *         #StsNullPtr (`pInitBuf`)
 * @{
 */
LYRSR_API Status lyrsFFTInit_R_32f(FFTSpec_R_32f** ppSpec, Elem32s order, Elem32s flag, Elem32s hint, Elem8u* pMem,
                                   Elem8u* pInitBuf);
LYRSR_API Status lyrsFFTInit_R_16s32s(FFTSpec_R_16s32s** ppSpec, Elem32s order, Elem32s flag, Elem32s hint,
                                      Elem8u* pMem, Elem8u* pInitBuf);
/** @} */

/**
 * @name Initialisation in allocated memory, to be released by the free form
 * @return #StsNoErr; in this order: #StsNullPtr, #StsFftOrder, #StsFftFlag, #StsMemAlloc
 * @{
 */
LYRSR_API Status lyrsFFTInitAlloc_R_32f(FFTSpec_R_32f** ppSpec, Elem32s order, Elem32s flag, Elem32s hint);
LYRSR_API Status lyrsFFTInitAlloc_R_16s32s(FFTSpec_R_16s32s** ppSpec, Elem32s order, Elem32s flag, Elem32s hint);
/** @} */

/**
 * @name End of a record
 * Its tag is cleared, so that no function takes it any more (#StsContext), and memory of an `InitAlloc` form is
 * released.
 * @return #StsNoErr, #StsNullPtr, #StsContext
 * @{
 */
LYRSR_API Status lyrsFFTFree_R_32f(FFTSpec_R_32f* pSpec);
LYRSR_API Status lyrsFFTFree_R_16s32s(FFTSpec_R_16s32s* pSpec);
/** @} */

/**
 * Bytes that a transform with this record works in; 0 if none.
 * @return #StsNoErr, #StsNullPtr, #StsContext
 */
LYRSR_API Status lyrsFFTGetBufSize_R_32f(const FFTSpec_R_32f* pSpec, Elem32s* pBufSize);

/**
 * @name Signal to spectrum
 * @param pBuffer work memory of the told size, of any alignment; null: it is allocated for the time of the call
 * @return #StsNoErr; in this order: #StsNullPtr (record), #StsContext, #StsNullPtr (vectors), #StsMemAlloc
 * @{
 */
LYRSR_API Status lyrsFFTFwd_RToPack_32f(const Elem32f* pSrc, Elem32f* pDst, const FFTSpec_R_32f* pSpec,
                                        Elem8u* pBuffer);
LYRSR_API Status lyrsFFTFwd_RToPerm_32f(const Elem32f* pSrc, Elem32f* pDst, const FFTSpec_R_32f* pSpec,
                                        Elem8u* pBuffer);
LYRSR_API Status lyrsFFTFwd_RToCCS_32f(const Elem32f* pSrc, Elem32f* pDst, const FFTSpec_R_32f* pSpec, Elem8u* pBuffer);
/** @} */

/** Spectrum to signal; arguments and result as of the forward transforms. */
LYRSR_API Status lyrsFFTInv_PackToR_32f(const Elem32f* pSrc, Elem32f* pDst, const FFTSpec_R_32f* pSpec,
                                        Elem8u* pBuffer);

/**
 * Spectrum of 16-bit samples in CCS order. The samples are transformed in single precision with the scaling of the
 * record; the results are divided by 2^scaleFactor, rounded to the nearest integer with ties to even, and limited to
 * 32 bits, as by lyrsConvert_32f32s_Sfs().
 * @param pSrc N samples
 * @param pDst N + 2 elements, 2 where N is 1; it may start where the samples do
 * @param pSpec the record
 * @param scaleFactor may be negative
 * @param pBuffer work memory of the size that lyrsFFTGetSize_R_16s32s() tells, of any alignment; null: it is allocated
 *        for the time of the call
 * @return #StsNoErr, also where results are limited; in this order: #StsNullPtr (`pSpec`), #StsContext, #StsNullPtr
 *         (`pSrc`, `pDst`), #StsMemAlloc, which it always is from order 29 on: the work memory is beyond a 32-bit size
 */
LYRSR_API Status lyrsFFTFwd_RToCCS_16s32s_Sfs(const Elem16s* pSrc, Elem32s* pDst, const FFTSpec_R_16s32s* pSpec,
                                              Elem32s scaleFactor, Elem8u* pBuffer);
/** @} */

/* ================================================ scoring: log domain ============================================= */

/**
 * @defgroup scoring_log Log-domain arithmetic
 *
 * Likelihoods kept as logarithms. With m the larger and s the smaller of two operands and d = s - m,
 *
 *     log(exp(a) + exp(b)) = m + log(1 + exp(d))
 *
 * where log(1 + exp(d)) is a polynomial on each of three intervals of d, of degree 10 (single-precision and fixed-point
 * forms, within 5e-9 of the function) or 21 (`64f`, within 4e-15). A d below a cut-off leaves m, but the floor, which
 * stands for the logarithm of zero, where m is very low:
 *
 * | forms | cut-off of d | floor | taken for m below |
 * |---|---|---|---|
 * | single precision, fixed point | -15.3195879547406 | -4500000 | -4500000 |
 * | `64f` | -23.0258509299405 | -10000000000 | -9000000000 |
 *
 * Above the cut-off the floor does not apply. In log-addition and log-sum a NaN operand gives NaN, and so do two
 * infinities of the same sign.
 *
 * `Sfs` forms hold the log value times 2^scaleFactor, and truncate and saturate their results. Operands that a negative
 * `scaleFactor` takes beyond single precision are infinite there. Where the scale itself is infinite, a 0 is NaN: in
 * log-addition from -128 down, with every result NaN from -150 down, and in log-sum from -1024 down. `Sfs` log-addition
 * stores NaN as -2147483648 in 32 bits and as 32767 in 16, log-sum as the lower limit.
 *
 * All of them return #StsNoErr; in this order: #StsSize, #StsNullPtr, and where told #StsRange.
 * @{
 */

/**
 * @name Log-addition
 * pSrcDst[i] = log(exp(pSrc[i]) + exp(pSrcDst[i])).
 * @param hint how the single-precision and fixed-point forms evaluate the polynomial. 0: in double precision. 1: in
 * single precision. 2: one element at a time, from the last to the first, in the widest precision of the processor.
 * `lyrsLogAdd_64f` has one way for all three. Any other value adds nothing and is no error; fixed-point elements then
 * still go to single precision and back, which shows above 2^24 and where the scale is beyond single precision.
 * @{
 */
LYRSR_API Status lyrsLogAdd_32f(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len, Elem32s hint);
LYRSR_API Status lyrsLogAdd_64f(const Elem64f* pSrc, Elem64f* pSrcDst, Elem32s len, Elem32s hint);
LYRSR_API Status lyrsLogAdd_32s_Sfs(const Elem32s* pSrc, Elem32s* pSrcDst, Elem32s len, Elem32s scaleFactor,
                                    Elem32s hint);
LYRSR_API Status lyrsLogAdd_16s_Sfs(const Elem16s* pSrc, Elem16s* pSrcDst, Elem32s len, Elem32s scaleFactor,
                                    Elem32s hint);
/** @} */

/**
 * @name Log-subtraction
 * pSrcDst[i] = log(exp(pSrc[i]) - exp(pSrcDst[i])), the in-place operand being the subtrahend. d = pSrcDst[i] - pSrc[i]
 * in the precision of the type; log(1 - exp(d)) in double precision. A d below the cut-off leaves pSrc[i], but the
 * floor where pSrc[i] is below what the table tells; so do a NaN subtrahend and two equal infinities. A NaN minuend
 * stays. The floor also stands where exp(d) rounds to one.
 *
 * The fixed-point forms scale d, but add the logarithm to the unscaled pSrc[i], limit the sum to 32 bits and truncate
 * it; the 16-bit form stores the low 16 bits of that.
 * @return #StsRange with nothing written if any d is 0 or more. A NaN is not, two equal infinities are not.
 * `lyrsLogSub_32s_Sfs` tests the difference as it wraps in 32 bits; a d of 0 or more that passes so gives the floor.
 * @{
 */
LYRSR_API Status lyrsLogSub_32f(const Elem32f* pSrc, Elem32f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsLogSub_64f(const Elem64f* pSrc, Elem64f* pSrcDst, Elem32s len);
LYRSR_API Status lyrsLogSub_32s_Sfs(const Elem32s* pSrc, Elem32s* pSrcDst, Elem32s len, Elem32s scaleFactor);
LYRSR_API Status lyrsLogSub_16s_Sfs(const Elem16s* pSrc, Elem16s* pSrcDst, Elem32s len, Elem32s scaleFactor);
/** @} */

/**
 * @name Log-sum
 * *pResult = log of the sum of exp(pSrc[i]), by log-additions in single precision (`64f`: double). The order is fixed:
 * from 8 elements (`64f`: 5) elements go to four (`64f`: two) accumulators in turn, these are added, and the elements
 * left over follow one at a time. Fixed-point forms convert to single precision and sum blocks of 128, the total so far
 * being the first element of every later block; up to 6 elements they add in double precision. One element alone is the
 * result as it is.
 * @{
 */
LYRSR_API Status lyrsLogSum_32f(const Elem32f* pSrc, Elem32f* pResult, Elem32s len);
LYRSR_API Status lyrsLogSum_64f(const Elem64f* pSrc, Elem64f* pResult, Elem32s len);
LYRSR_API Status lyrsLogSum_32s_Sfs(const Elem32s* pSrc, Elem32s* pResult, Elem32s len, Elem32s scaleFactor);
LYRSR_API Status lyrsLogSum_16s_Sfs(const Elem16s* pSrc, Elem16s* pResult, Elem32s len, Elem32s scaleFactor);
/** @} */
/** @} */

/* ========================================= scoring: one diagonal Gaussian ========================================= */

/**
 * @defgroup scoring_gauss Scores against one diagonal Gaussian
 *
 * The log-likelihood of feature frames under a Gaussian with diagonal covariance, with everything that does not depend
 * on the frame folded into one constant by the caller:
 *
 *     score = gconst - 1/2 * sum over i of (x[i] - mean[i])^2 * var[i]
 *
 * where `var` holds inverse variances (Rabiner and Juang, Fundamentals of Speech Recognition, 1993, section 6.6).
 * `IdVar` forms have no `var` and weigh every element with one; `DirectVar` forms take variances and divide. An inverse
 * variance of zero takes its element out of the sum, a negative one raises the score. Non-finite input gives a
 * non-finite score and no status, save that in `DirectVar` forms an infinite variance weighs its element with zero.
 *
 * The precision of every step is that of the type; `32f64f` forms widen each element to double before the subtraction.
 * In single precision, and in `lyrsLogGauss_64f_D2L` and `lyrsLogGauss_IdVar_64f_D2L`, the constant enters as 2 *
 * gconst, halved with the sum at the end, so that more than half of the largest finite value acts as an infinity. Sums
 * run in any order, with two exceptions. `lyrsLogGaussSingle_32f64f` and `lyrsLogGaussSingle_DirectVar_32f64f` add the
 * terms, every step rounded, in the order of the elements: the same bits on every processor. For widths 1 to 3 of
 * `lyrsLogGauss_32f_D2`, `lyrsLogGauss_32f_D2L` and `lyrsLogGauss_IdVar_32f_D2` the products are subtracted from
 * 2 * gconst one by one.
 * @{
 */

/**
 * @name One frame
 * @param pSrc    frame, `len` elements
 * @param pMean   mean, `len` elements
 * @param pVar    inverse variances (`DirectVar`: variances), `len` elements
 * @param len     elements of a frame, at least 1
 * @param pResult receives the score
 * @param gconst  constant of the Gaussian
 * @return #StsNoErr, #StsNullPtr, #StsSize.
 *         For a zero variance `lyrsLogGaussSingle_DirectVar_32f` returns #StsWarnOverflow and writes an infinity or
 * NaN, `lyrsLogGaussSingle_DirectVar_32f64f` returns #StsWarnOverflow and writes nothing, and
 * `lyrsLogGaussSingle_DirectVar_64f` returns #StsNoErr and writes an infinity or NaN. In
 * `lyrsLogGaussSingle_DirectVar_32f` a subnormal variance of at most 2^-128, whose reciprocal is infinite, acts like a
 * zero one, without the warning.
 * `lyrsLogGaussSingle_DirectVar_32f` allocates, and may return #StsMemAlloc.
 * @{
 */
LYRSR_API Status lyrsLogGaussSingle_32f(const Elem32f* pSrc, const Elem32f* pMean, const Elem32f* pVar, Elem32s len,
                                        Elem32f* pResult, Elem32f gconst);
LYRSR_API Status lyrsLogGaussSingle_64f(const Elem64f* pSrc, const Elem64f* pMean, const Elem64f* pVar, Elem32s len,
                                        Elem64f* pResult, Elem64f gconst);
LYRSR_API Status lyrsLogGaussSingle_32f64f(const Elem32f* pSrc, const Elem32f* pMean, const Elem32f* pVar, Elem32s len,
                                           Elem64f* pResult, Elem64f gconst);
LYRSR_API Status lyrsLogGaussSingle_IdVar_32f(const Elem32f* pSrc, const Elem32f* pMean, Elem32s len, Elem32f* pResult,
                                              Elem32f gconst);
LYRSR_API Status lyrsLogGaussSingle_IdVar_64f(const Elem64f* pSrc, const Elem64f* pMean, Elem32s len, Elem64f* pResult,
                                              Elem64f gconst);
LYRSR_API Status lyrsLogGaussSingle_IdVar_32f64f(const Elem32f* pSrc, const Elem32f* pMean, Elem32s len,
                                                 Elem64f* pResult, Elem64f gconst);
LYRSR_API Status lyrsLogGaussSingle_DirectVar_32f(const Elem32f* pSrc, const Elem32f* pMean, const Elem32f* pVar,
                                                  Elem32s len, Elem32f* pResult, Elem32f gconst);
LYRSR_API Status lyrsLogGaussSingle_DirectVar_64f(const Elem64f* pSrc, const Elem64f* pMean, const Elem64f* pVar,
                                                  Elem32s len, Elem64f* pResult, Elem64f gconst);
LYRSR_API Status lyrsLogGaussSingle_DirectVar_32f64f(const Elem32f* pSrc, const Elem32f* pMean, const Elem32f* pVar,
                                                     Elem32s len, Elem64f* pResult, Elem64f gconst);
/** @} */

/**
 * @name Many frames
 * @param pSrc   `height` frames in one block; frame f starts f * `step` elements after the first
 * @param mPtr   table of `height` pointers to frames
 * @param step   row stride of `pSrc` in elements, at least `width`
 * @param pMean  mean, `width` elements
 * @param pVar   inverse variances, `width` elements
 * @param width  elements of a frame, at least 1
 * @param pDst   receives `height` scores
 * @param height number of frames, at least 1
 * @param gconst constant of the Gaussian
 * @return #StsNoErr; in this order: #StsStep (`_D2`), #StsNullPtr, #StsSize.
 * @{
 */
LYRSR_API Status lyrsLogGauss_32f_D2(const Elem32f* pSrc, Elem32s step, const Elem32f* pMean, const Elem32f* pVar,
                                     Elem32s width, Elem32f* pDst, Elem32s height, Elem32f gconst);
LYRSR_API Status lyrsLogGauss_64f_D2(const Elem64f* pSrc, Elem32s step, const Elem64f* pMean, const Elem64f* pVar,
                                     Elem32s width, Elem64f* pDst, Elem32s height, Elem64f gconst);
LYRSR_API Status lyrsLogGauss_32f_D2L(const Elem32f* const* mPtr, const Elem32f* pMean, const Elem32f* pVar,
                                      Elem32s width, Elem32f* pDst, Elem32s height, Elem32f gconst);
LYRSR_API Status lyrsLogGauss_64f_D2L(const Elem64f* const* mPtr, const Elem64f* pMean, const Elem64f* pVar,
                                      Elem32s width, Elem64f* pDst, Elem32s height, Elem64f gconst);
LYRSR_API Status lyrsLogGauss_IdVar_32f_D2(const Elem32f* pSrc, Elem32s step, const Elem32f* pMean, Elem32s width,
                                           Elem32f* pDst, Elem32s height, Elem32f gconst);
LYRSR_API Status lyrsLogGauss_IdVar_64f_D2(const Elem64f* pSrc, Elem32s step, const Elem64f* pMean, Elem32s width,
                                           Elem64f* pDst, Elem32s height, Elem64f gconst);
LYRSR_API Status lyrsLogGauss_IdVar_32f_D2L(const Elem32f* const* mPtr, const Elem32f* pMean, Elem32s width,
                                            Elem32f* pDst, Elem32s height, Elem32f gconst);
LYRSR_API Status lyrsLogGauss_IdVar_64f_D2L(const Elem64f* const* mPtr, const Elem64f* pMean, Elem32s width,
                                            Elem64f* pDst, Elem32s height, Elem64f gconst);
/** @} */
/** @} */

/* ================================================= scoring: mixtures ============================================== */

/**
 * @defgroup scoring_mixture Scores against mixtures of diagonal Gaussians
 *
 * One frame against `height` Gaussians. Row g of the means and of the inverse variances belongs to Gaussian g:
 *
 *     score(g) = gconst[g] - 1/2 * sum over i of (x[i] - mean[g][i])^2 * var[g][i]
 *
 * with the constant entering as 2 * gconst[g], halved with the sum at the end. Everything is in the precision of the
 * type.
 *
 * @param pSrc    frame, `width` elements
 * @param pMean   means: `height` rows of `width` elements, row g starting g * `step` elements after the first
 * @param pVar    inverse variances, likewise
 * @param mMean   table of `height` pointers to means
 * @param mVar    table of `height` pointers to inverse variances
 * @param step    row stride of both matrices in elements, at least `width`
 * @param width   elements of a frame, at least 1
 * @param pGconst constants of the Gaussians, `height` elements
 * @param height  number of Gaussians, at least 1
 * @{
 */

/**
 * @name Each Gaussian
 * `MultiMix`: pSrcDst[g] holds the constant and becomes score(g). `MaxMultiMix`: score(g) replaces pSrcDst[g] where it
 * is larger; NaN never is. `AddMultiMix`: pSrcDst[g] = log(exp(pSrcDst[g]) + exp(score(g))), as lyrsLogAdd_32f() with
 * hint 0 and lyrsLogAdd_64f() add.
 * @return #StsNoErr; in this order: #StsStep (`_D2`), #StsNullPtr, #StsSize.
 * @{
 */
LYRSR_API Status lyrsLogGaussMultiMix_32f_D2(const Elem32f* pMean, const Elem32f* pVar, Elem32s step,
                                             const Elem32f* pSrc, Elem32s width, Elem32f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussMultiMix_32f_D2L(const Elem32f* const* mMean, const Elem32f* const* mVar,
                                              const Elem32f* pSrc, Elem32s width, Elem32f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussMultiMix_64f_D2(const Elem64f* pMean, const Elem64f* pVar, Elem32s step,
                                             const Elem64f* pSrc, Elem32s width, Elem64f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussMultiMix_64f_D2L(const Elem64f* const* mMean, const Elem64f* const* mVar,
                                              const Elem64f* pSrc, Elem32s width, Elem64f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussMaxMultiMix_32f_D2(const Elem32f* pMean, const Elem32f* pVar, Elem32s step,
                                                const Elem32f* pSrc, Elem32s width, const Elem32f* pGconst,
                                                Elem32f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussMaxMultiMix_32f_D2L(const Elem32f* const* mMean, const Elem32f* const* mVar,
                                                 const Elem32f* pSrc, Elem32s width, const Elem32f* pGconst,
                                                 Elem32f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussMaxMultiMix_64f_D2(const Elem64f* pMean, const Elem64f* pVar, Elem32s step,
                                                const Elem64f* pSrc, Elem32s width, const Elem64f* pGconst,
                                                Elem64f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussMaxMultiMix_64f_D2L(const Elem64f* const* mMean, const Elem64f* const* mVar,
                                                 const Elem64f* pSrc, Elem32s width, const Elem64f* pGconst,
                                                 Elem64f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussAddMultiMix_32f_D2(const Elem32f* pMean, const Elem32f* pVar, Elem32s step,
                                                const Elem32f* pSrc, Elem32s width, const Elem32f* pGconst,
                                                Elem32f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussAddMultiMix_32f_D2L(const Elem32f* const* mMean, const Elem32f* const* mVar,
                                                 const Elem32f* pSrc, Elem32s width, const Elem32f* pGconst,
                                                 Elem32f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussAddMultiMix_64f_D2(const Elem64f* pMean, const Elem64f* pVar, Elem32s step,
                                                const Elem64f* pSrc, Elem32s width, const Elem64f* pGconst,
                                                Elem64f* pSrcDst, Elem32s height);
LYRSR_API Status lyrsLogGaussAddMultiMix_64f_D2L(const Elem64f* const* mMean, const Elem64f* const* mVar,
                                                 const Elem64f* pSrc, Elem32s width, const Elem64f* pGconst,
                                                 Elem64f* pSrcDst, Elem32s height);
/** @} */

/**
 * @name The mixture
 * *pResult = log of the sum over g of exp(score(g)), in the precision of the type. Scores are added as lyrsLogSum_32f()
 * and lyrsLogSum_64f() add them, in that order, in blocks of 100 Gaussians, the total so far being the first element of
 * every later block. One Gaussian alone gives its score. `IdVar` forms weigh every element with one.
 * @return #StsNoErr; in this order: #StsNullPtr, #StsStep (`_D2`), #StsSize.
 * @{
 */
LYRSR_API Status lyrsLogGaussMixture_32f_D2(const Elem32f* pSrc, const Elem32f* pMean, const Elem32f* pVar,
                                            Elem32s height, Elem32s step, Elem32s width, const Elem32f* pGconst,
                                            Elem32f* pResult);
LYRSR_API Status lyrsLogGaussMixture_32f_D2L(const Elem32f* pSrc, const Elem32f* const* mMean,
                                             const Elem32f* const* mVar, Elem32s height, Elem32s width,
                                             const Elem32f* pGconst, Elem32f* pResult);
LYRSR_API Status lyrsLogGaussMixture_64f_D2(const Elem64f* pSrc, const Elem64f* pMean, const Elem64f* pVar,
                                            Elem32s height, Elem32s step, Elem32s width, const Elem64f* pGconst,
                                            Elem64f* pResult);
LYRSR_API Status lyrsLogGaussMixture_64f_D2L(const Elem64f* pSrc, const Elem64f* const* mMean,
                                             const Elem64f* const* mVar, Elem32s height, Elem32s width,
                                             const Elem64f* pGconst, Elem64f* pResult);
LYRSR_API Status lyrsLogGaussMixture_IdVar_32f_D2(const Elem32f* pSrc, const Elem32f* pMean, Elem32s height,
                                                  Elem32s step, Elem32s width, const Elem32f* pGconst,
                                                  Elem32f* pResult);
LYRSR_API Status lyrsLogGaussMixture_IdVar_32f_D2L(const Elem32f* pSrc, const Elem32f* const* mMean, Elem32s height,
                                                   Elem32s width, const Elem32f* pGconst, Elem32f* pResult);
LYRSR_API Status lyrsLogGaussMixture_IdVar_64f_D2(const Elem64f* pSrc, const Elem64f* pMean, Elem32s height,
                                                  Elem32s step, Elem32s width, const Elem64f* pGconst,
                                                  Elem64f* pResult);
LYRSR_API Status lyrsLogGaussMixture_IdVar_64f_D2L(const Elem64f* pSrc, const Elem64f* const* mMean, Elem32s height,
                                                   Elem32s width, const Elem64f* pGconst, Elem64f* pResult);
/** @} */
/** @} */

/* ============================================= front end: filter banks ============================================ */

/**
 * @defgroup frontend_bank Mel filter banks
 *
 * From a spectrum to one energy for each of a row of overlapping triangular filters (Davis and Mermelstein, Comparison
 * of Parametric Representations for Monosyllabic Word Recognition, IEEE Trans. ASSP 28(4), 1980). Filter i, counted
 * from 1, rises from centre i - 1 to centre i and falls to centre i + 1; centres are numbers of bins of a transform of
 * N points:
 *
 *     pDst[i-1] = sum over k from centre(i-1) to centre(i) of left(i, k) * pSrc[k]
 *               + sum over k from centre(i) + 1 to centre(i+1) of right(i, k) * pSrc[k]
 *
 * N is the length that a bank uses: the `fftLen` that is asked for, rounded up to a power of two, at least 2.
 * `pFFTOrder` receives its logarithm to base 2. The Aurora banks have 128 points.
 *
 * A bank is a record that is built once and then evaluated for each frame. Evaluation reads the record only, so that
 * threads may share it; with #FBankFromFrames it also writes scratch that belongs to the record, and such a bank serves
 * one thread at a time.
 *
 * The scale is mel(f) = melMul * ln(1 + f / melDiv), with the natural logarithm also for the customary factor of 2595.
 *
 * An `InitAlloc` form takes a bank from the library's allocator; release it with `lyrsFBankFree_*`. An `Init` form lays
 * it into the caller's memory, whose size the matching `GetSize` form tells; the memory need be aligned no further than
 * to 8 bytes (4 in the 32-bit build), and the bank ends with it: `lyrsFBankFree_*` is not for it. `Elem16s` input has
 * weights with 14 fraction bits, the integer bank 30.
 *
 * If an allocation fails (#StsMemAlloc) on the way, what has been taken so far stays taken, and `*ppFBank` is the
 * unfinished record if that could be had: set it to null before the call, and if it is not null afterwards release it
 * with `lyrsFBankFree_*`, which takes unfinished records.
 * @{
 */

/** A filter bank with weights in single precision. */
typedef struct FBankState_32f FBankState_32f;
/** A filter bank for 16-bit input. */
typedef struct FBankState_16s FBankState_16s;
/** A filter bank that is built in integers only. */
typedef struct FBankState_32s FBankState_32s;

/** Options of a filter bank: a shape, and #FBankFromFrames added to it if wanted. Anything else is #StsFBankFlag. */
enum LyrsFBankFlag
{
    FBankMelShape = 1,  /**< centres truncated to whole bins; sides straight in mel */
    FBankBinShape = 2,  /**< centres rounded to the nearest bin; sides straight in bins, above zero at both ends */
    FBankFromFrames = 4 /**< evaluation takes a frame and transforms it, else a spectrum; see lyrsEvalFBank_32f() */
};

/**
 * @name Conversion between scales
 * `lyrsMelToLinear_32f`: pDst[i] = melDiv * (exp(pSrc[i] / melMul) - 1).
 * `lyrsLinearToMel_32f`: pDst[i] = melMul * ln(1 + pSrc[i] / melDiv).
 * Each in double precision with the reciprocal of the divisor formed once. In place is possible.
 * @return #StsNoErr, #StsNullPtr; #StsSize also for a `melMul` or `melDiv` that is not above 0, NaN included
 * @{
 */
LYRSR_API Status lyrsMelToLinear_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len, Elem32f melMul, Elem32f melDiv);
LYRSR_API Status lyrsLinearToMel_32f(const Elem32f* pSrc, Elem32f* pDst, Elem32s len, Elem32f melMul, Elem32f melDiv);
/** @} */

/**
 * @name Mel bank
 * `nFilter` filters between edges that are equally spaced in mel from `lowFreq` to `highFreq`.
 * With #FBankMelShape, which truncates, the last centre may be N / 2 - 1 where `highFreq` is half the rate: single
 * precision may put it just below the last bin.
 * @param pSize     receives the number of bytes that the Init form needs
 * @param pFBank    memory of that size
 * @param ppFBank   receives the bank
 * @param pFFTOrder receives log2(N)
 * @param fftLen    points of the transform, 1 to 2^30; rounded up to N
 * @param sampFreq  sampling rate in hertz, above 0
 * @param lowFreq   lower edge in hertz, above 0
 * @param highFreq  upper edge in hertz, from `lowFreq` to half the rate
 * @param nFilter   number of filters, at least 1
 * @param melMul    factor of the mel scale, not checked
 * @param melDiv    corner frequency of the mel scale, not checked
 * @param flag      see #LyrsFBankFlag
 * @return #StsNoErr; in this order: #StsNullPtr; #StsSize for `fftLen`, `nFilter`, `sampFreq` or `lowFreq`;
 * #StsFBankFreq; #StsFBankFlag; #StsSize for a bank whose size 32 bits cannot tell (`GetSize` and `Init`); #StsMemAlloc
 * (`InitAlloc`). A frequency that is not a number passes. The `InitAlloc` forms take larger banks too, in parts of at
 * most 2^31 - 1 bytes each: #StsMemAlloc only where the memory for a part cannot be had.
 * @{
 */
LYRSR_API Status lyrsMelFBankGetSize_32f(Elem32s fftLen, Elem32s nFilter, Elem32s flag, Elem32s* pSize);
LYRSR_API Status lyrsMelFBankGetSize_16s(Elem32s fftLen, Elem32s nFilter, Elem32s flag, Elem32s* pSize);
LYRSR_API Status lyrsMelFBankInit_32f(FBankState_32f* pFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32f sampFreq,
                                      Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter, Elem32f melMul,
                                      Elem32f melDiv, Elem32s flag);
LYRSR_API Status lyrsMelFBankInit_16s(FBankState_16s* pFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32f sampFreq,
                                      Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter, Elem32f melMul,
                                      Elem32f melDiv, Elem32s flag);
LYRSR_API Status lyrsMelFBankInitAlloc_32f(FBankState_32f** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen,
                                           Elem32f sampFreq, Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter,
                                           Elem32f melMul, Elem32f melDiv, Elem32s flag);
LYRSR_API Status lyrsMelFBankInitAlloc_16s(FBankState_16s** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen,
                                           Elem32f sampFreq, Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter,
                                           Elem32f melMul, Elem32f melDiv, Elem32s flag);
/** @} */

/**
 * @name Mel bank in integers
 * The same bank with #FBankBinShape, built without floating point. Frequencies are whole hertz; `melMul` and `melDiv`
 * have 15 fraction bits. Nothing ties `highFreq` to half the rate: filters beyond the spectrum are cut off there.
 * @param fftLen   32 to 8192 points, rounded up to a power of two
 * @param sampFreq sampling rate, 1 to 48000
 * @param lowFreq  lower edge, at least 0
 * @param highFreq upper edge, above `lowFreq` and at most 24000
 * @param nFilter  at least 1, and at most half the rounded length (GetSize) or that and one (Init)
 * @param melMul   0x80001 to 0x3FFFFFFF
 * @param melDiv   0x80001 to 0xFFFFFFF
 * @param flag     #FBankBinShape
 * @return `lyrsMelFBankGetSize_32s`: #StsNoErr; #StsNullPtr; #StsSize; #StsFBankFlag; #StsSize for too many filters.
 *         `lyrsMelFBankInit_32s`: #StsNoErr; #StsNullPtr; #StsSize for `nFilter`, `highFreq` below 1 or `fftLen`;
 * #StsFBankFlag; #StsSize for `sampFreq` or `lowFreq`; #StsFBankFreq; #StsBadArg for `melDiv`, then `melMul`; #StsSize
 * for too many filters
 * @{
 */
LYRSR_API Status lyrsMelFBankGetSize_32s(Elem32s fftLen, Elem32s nFilter, Elem32s flag, Elem32s* pSize);
LYRSR_API Status lyrsMelFBankInit_32s(FBankState_32s* pFBank, Elem32s* pFFTOrder, Elem32s fftLen, Elem32s sampFreq,
                                      Elem32s lowFreq, Elem32s highFreq, Elem32s nFilter, Elem32s melMul,
                                      Elem32s melDiv, Elem32s flag);
/** @} */

/**
 * @name Banks of the Aurora front end
 * The two fixed banks of ETSI ES 202 050 for 8 kHz and 128 points: 25 filters over the band (`Low`), each with weights
 * that add up to one and the first and last a half triangle, and 3 filters (`High`). Both take a spectrum of 65 bins.
 * @return #StsNoErr, #StsNullPtr, #StsMemAlloc (`InitAlloc`)
 * @{
 */
LYRSR_API Status lyrsMelFBankGetSizeLow_Aurora_32f(Elem32s* pSize);
LYRSR_API Status lyrsMelFBankGetSizeLow_Aurora_16s(Elem32s* pSize);
LYRSR_API Status lyrsMelFBankGetSizeHigh_Aurora_32f(Elem32s* pSize);
LYRSR_API Status lyrsMelFBankGetSizeHigh_Aurora_16s(Elem32s* pSize);
LYRSR_API Status lyrsMelFBankInitLow_Aurora_32f(FBankState_32f* pFBank);
LYRSR_API Status lyrsMelFBankInitLow_Aurora_16s(FBankState_16s* pFBank);
LYRSR_API Status lyrsMelFBankInitHigh_Aurora_32f(FBankState_32f* pFBank);
LYRSR_API Status lyrsMelFBankInitHigh_Aurora_16s(FBankState_16s* pFBank);
LYRSR_API Status lyrsMelFBankInitAllocLow_Aurora_32f(FBankState_32f** ppFBank);
LYRSR_API Status lyrsMelFBankInitAllocLow_Aurora_16s(FBankState_16s** ppFBank);
LYRSR_API Status lyrsMelFBankInitAllocHigh_Aurora_32f(FBankState_32f** ppFBank);
LYRSR_API Status lyrsMelFBankInitAllocHigh_Aurora_16s(FBankState_16s** ppFBank);
/** @} */

/**
 * @name Mel-linear bank
 * `nLinear` filters between edges that are equally spaced in hertz from `lowFreq` to `highLinFreq`, and above them the
 * others, equally spaced in mel up to `highFreq`. If all filters are linear, `highFreq` plays no part but is checked
 * all the same. With #FBankMelShape in a mixed bank the mel filters have sides that are straight in bins, and the right
 * side of the last linear filter is usually zero.
 * @param ppFBank     receives the bank; the pointers are not checked
 * @param pFFTOrder   receives log2(N)
 * @param fftLen      points of the transform, 1 to 2^30; rounded up to N
 * @param highLinFreq upper end of the linear part in hertz, from `lowFreq` to `highFreq`
 * @param nLinear     number of linear filters, 1 to `nFilter`
 * @return #StsNoErr; in this order: #StsSize, #StsFBankFreq, #StsFBankFlag, #StsMemAlloc
 * @{
 */
LYRSR_API Status lyrsMelLinFBankInitAlloc_32f(FBankState_32f** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen,
                                              Elem32f sampFreq, Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter,
                                              Elem32f highLinFreq, Elem32s nLinear, Elem32f melMul, Elem32f melDiv,
                                              Elem32s flag);
LYRSR_API Status lyrsMelLinFBankInitAlloc_16s(FBankState_16s** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen,
                                              Elem32f sampFreq, Elem32f lowFreq, Elem32f highFreq, Elem32s nFilter,
                                              Elem32f highLinFreq, Elem32s nLinear, Elem32f melMul, Elem32f melDiv,
                                              Elem32s flag);
/** @} */

/**
 * @name Empty bank
 * A bank that the caller fills: `lyrsFBankSetCenters_*` makes it ready, with all weights zero, and
 * `lyrsFBankSetCoeffs_*` fills it filter by filter. Evaluation takes a spectrum, whatever `flag` says; no value of
 * `flag` is refused. The pointers are not checked.
 * @param ppFBank   receives the bank
 * @param pFFTOrder receives log2(N)
 * @param fftLen    points of the transform, 1 to 2^30; rounded up to N
 * @param nFilter   number of filters, at least 1
 * @param flag      any value
 * @return #StsNoErr; #StsSize for `fftLen` or `nFilter`; #StsMemAlloc
 * @{
 */
LYRSR_API Status lyrsEmptyFBankInitAlloc_32f(FBankState_32f** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen,
                                             Elem32s nFilter, Elem32s flag);
LYRSR_API Status lyrsEmptyFBankInitAlloc_16s(FBankState_16s** ppFBank, Elem32s* pFFTOrder, Elem32s fftLen,
                                             Elem32s nFilter, Elem32s flag);
/** @} */

/**
 * @name Evaluation
 * @param pSrc        a spectrum of N / 2 + 1 bins, or with #FBankFromFrames a frame of N samples: the length that the
 *                    bank uses, not the one that was asked for (see lyrsCopyWithPadding_32f())
 * @param pDst        receives `nFilter` energies
 * @param pFBank      the bank
 * @param scaleFactor results are divided by 2^scaleFactor, toward minus infinity and saturating;
 * `lyrsEvalFBank_32s_Sfs` rounds to the nearest and limits at the upper end only, as its input is magnitudes
 *
 * Sums of `lyrsEvalFBank_32f` run in any order. Integer sums are exact in 64 bits, but for two members: with
 * #FBankFromFrames each product of `lyrsEvalFBank_16s_Sfs` wraps at 32 bits, and each product of
 * `lyrsEvalFBank_32s_Sfs` loses its last 8 bits.
 * @return #StsNoErr, #StsNullPtr; #StsFBankNotReady before an empty bank has its centres; `lyrsEvalFBank_32s_Sfs`:
 * #StsBadArg for a `scaleFactor` outside -31 to 31
 * @{
 */
LYRSR_API Status lyrsEvalFBank_32f(const Elem32f* pSrc, Elem32f* pDst, const FBankState_32f* pFBank);
LYRSR_API Status lyrsEvalFBank_16s_Sfs(const Elem16s* pSrc, Elem16s* pDst, const FBankState_16s* pFBank,
                                       Elem32s scaleFactor);
LYRSR_API Status lyrsEvalFBank_16s32s_Sfs(const Elem16s* pSrc, Elem32s* pDst, const FBankState_16s* pFBank,
                                          Elem32s scaleFactor);
LYRSR_API Status lyrsEvalFBank_32s_Sfs(const Elem32s* pSrc, Elem32s* pDst, const FBankState_32s* pFBank,
                                       Elem32s scaleFactor);
/** @} */

/** @name Release of an allocated bank, finished or not
 * @return #StsNoErr, #StsNullPtr
 * @{ */
LYRSR_API Status lyrsFBankFree_32f(FBankState_32f* pFBank);
LYRSR_API Status lyrsFBankFree_16s(FBankState_16s* pFBank);
/** @} */

/**
 * @name Centres and weights
 * Centres are nFilter + 2 bin numbers, counted from 0. The weights of filter `fIdx`, counted from 1, are those of its
 * left side, from one centre to the next with both ends, and then those of its right side, without its lower end:
 * centre(fIdx + 1) - centre(fIdx - 1) + 1 numbers. `_16s` forms convert between 14 fraction bits and singles, toward
 * zero on the way in.
 *
 * Of the last two centres only the very last is bounded by N / 2, and the two are not compared. Where the last but one
 * lies beyond, evaluation counts the bins that are in the spectrum; the differences of the centres remain the numbers
 * of weights, of which SetCoeffs drops those beyond the bank's rows and GetCoeffs tells zeros for them. A side whose
 * centres are out of order has no weights.
 * @param fIdx 1 to `nFilter`; GetCoeffs takes `nFilter` + 1 too, and writes centre(nFilter + 1) - centre(nFilter) + 1
 *        zeros
 * @return #StsNoErr, #StsNullPtr; #StsFBankNotReady if the bank has no centres yet, and, with nothing stored, for a
 *         first centre below 0, centres 0 to nFilter out of order, or a last centre beyond N / 2; #StsSize for
 *         `fIdx`. In a bank of one filter the middle centre is compared with neither of the others
 * @{
 */
LYRSR_API Status lyrsFBankGetCenters_32f(const FBankState_32f* pFBank, Elem32s* pCenters);
LYRSR_API Status lyrsFBankGetCenters_16s(const FBankState_16s* pFBank, Elem32s* pCenters);
LYRSR_API Status lyrsFBankSetCenters_32f(FBankState_32f* pFBank, const Elem32s* pCenters);
LYRSR_API Status lyrsFBankSetCenters_16s(FBankState_16s* pFBank, const Elem32s* pCenters);
LYRSR_API Status lyrsFBankGetCoeffs_32f(const FBankState_32f* pFBank, Elem32s fIdx, Elem32f* pCoeffs);
LYRSR_API Status lyrsFBankGetCoeffs_16s(const FBankState_16s* pFBank, Elem32s fIdx, Elem32f* pCoeffs);
LYRSR_API Status lyrsFBankSetCoeffs_32f(FBankState_32f* pFBank, Elem32s fIdx, const Elem32f* pCoeffs);
LYRSR_API Status lyrsFBankSetCoeffs_16s(FBankState_16s* pFBank, Elem32s fIdx, const Elem32f* pCoeffs);
/** @} */

/**
 * @name Copy with padding
 * Copies `lenSrc` elements and writes zeros behind them up to `lenDst`: a frame brought to the length of a transform.
 * @return #StsNoErr, #StsNullPtr; #StsSize also for a `lenDst` below `lenSrc`
 * @{
 */
LYRSR_API Status lyrsCopyWithPadding_32f(const Elem32f* pSrc, Elem32s lenSrc, Elem32f* pDst, Elem32s lenDst);
LYRSR_API Status lyrsCopyWithPadding_16s(const Elem16s* pSrc, Elem32s lenSrc, Elem16s* pDst, Elem32s lenDst);
/** @} */
/** @} */

/* ============================================= front end: DCT, lifter ============================================= */

/**
 * @defgroup frontend_dct Cepstra: DCT and liftering
 *
 * Log filter-bank energies to cepstra in one step (Davis and Mermelstein, IEEE Trans. ASSP 28(4), 1980):
 *
 *     c[i] = w[i] * sum over j of x[j] * cos((j + 1/2) * i * pi / lenDCT),   i = 1 ... lenCepstrum
 *
 * c[1] is the first output. In the `C0` and `MulC0` forms the zeroth coefficient w[0] * sum of x[j] follows as the last
 * of lenCepstrum + 1 outputs. There is no sqrt(2/N) or other normalisation: all scale goes in through the weights w. A
 * state record holds the weights and the table of cosines, in single precision like all arithmetic, and is made for one
 * form:
 *  - plain: the sine lifter w[i] = (1 + nLifter/2 * sin(i * pi / nLifter)) * val (Juang, Rabiner and Wilpon, IEEE
 * Trans. ASSP 35(7), 1987); `nLifter` below `lenCepstrum` is legal and makes later weights smaller than `val`.
 *  - `C0`: the same with w[0] = val0.
 *  - `Mul`: w[1] ... w[lenCepstrum] from the caller's `pLifter`.
 *  - `MulC0`: the same, and w[0] is the last element of `pLifter` once more: the array has lenCepstrum elements, and
 * its last one weighs both the highest coefficient and the zeroth.
 *
 * A DCTLifterState_32f is only read by transforms and may be shared by threads. A DCTLifterState_16s holds scratch that
 * each transform writes, and serves one thread at a time.
 * @{
 */

/** State of a transform of singles; see the group. */
typedef struct DCTLifterState_32f DCTLifterState_32f;
/** State of a transform of integers; see the group. */
typedef struct DCTLifterState_16s DCTLifterState_16s;

/**
 * @name Size of a state in the caller's memory
 * The buffer must be aligned to 8 bytes, in the 32-bit build to 4. Any memory from malloc() is.
 * @param lenDCT      number of inputs, at least `lenCepstrum`; at most 8192 in `lyrsDCTLifterGetSize_MulC0_16s`
 * @param lenCepstrum number of outputs without the zeroth coefficient, at least 1
 * @param pSize       receives the bytes of the buffer for the `Init` function of the same form
 * @return #StsNoErr, #StsNullPtr, #StsSize (also for a size that 32 bits cannot tell)
 * @{
 */
LYRSR_API Status lyrsDCTLifterGetSize_32f(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize);
LYRSR_API Status lyrsDCTLifterGetSize_C0_32f(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize);
LYRSR_API Status lyrsDCTLifterGetSize_Mul_32f(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize);
LYRSR_API Status lyrsDCTLifterGetSize_MulC0_32f(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize);
LYRSR_API Status lyrsDCTLifterGetSize_16s(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize);
LYRSR_API Status lyrsDCTLifterGetSize_C0_16s(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize);
LYRSR_API Status lyrsDCTLifterGetSize_Mul_16s(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize);
LYRSR_API Status lyrsDCTLifterGetSize_MulC0_16s(Elem32s lenDCT, Elem32s lenCepstrum, Elem32s* pSize);
/** @} */

/**
 * @name A state in the caller's memory
 * The caller releases the buffer, not `lyrsDCTLifterFree_*`.
 * @param pState      buffer of the size told by the `GetSize` function of the same form
 * @param lenDCT      number of inputs, at least `lenCepstrum`
 * @param lenCepstrum number of outputs without the zeroth coefficient, at least 1
 * @param nLifter     length of the sine lifter, at least 1
 * @param val         factor of all sine weights
 * @param val0        weight of the zeroth coefficient
 * @param pLifter     `lenCepstrum` weights; whole numbers in `lyrsDCTLifterInit_MulC0_16s`
 * @return #StsNoErr, #StsNullPtr, #StsSize (also for a state whose size 32 bits cannot tell)
 * @{
 */
LYRSR_API Status lyrsDCTLifterInit_32f(DCTLifterState_32f* pState, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter,
                                       Elem32f val);
LYRSR_API Status lyrsDCTLifterInit_16s(DCTLifterState_16s* pState, Elem32s lenDCT, Elem32s lenCepstrum, Elem32s nLifter,
                                       Elem32f val);
LYRSR_API Status lyrsDCTLifterInit_C0_32f(DCTLifterState_32f* pState, Elem32s lenDCT, Elem32s lenCepstrum,
                                          Elem32s nLifter, Elem32f val, Elem32f val0);
LYRSR_API Status lyrsDCTLifterInit_C0_16s(DCTLifterState_16s* pState, Elem32s lenDCT, Elem32s lenCepstrum,
                                          Elem32s nLifter, Elem32f val, Elem32f val0);
LYRSR_API Status lyrsDCTLifterInit_Mul_32f(DCTLifterState_32f* pState, Elem32s lenDCT, const Elem32f* pLifter,
                                           Elem32s lenCepstrum);
LYRSR_API Status lyrsDCTLifterInit_Mul_16s(DCTLifterState_16s* pState, Elem32s lenDCT, const Elem32f* pLifter,
                                           Elem32s lenCepstrum);
LYRSR_API Status lyrsDCTLifterInit_MulC0_32f(DCTLifterState_32f* pState, Elem32s lenDCT, const Elem32f* pLifter,
                                             Elem32s lenCepstrum);
LYRSR_API Status lyrsDCTLifterInit_MulC0_16s(DCTLifterState_16s* pState, Elem32s lenDCT, const Elem32s* pLifter,
                                             Elem32s lenCepstrum);
/** @} */

/**
 * @name An allocated state
 * As the `Init` function of the same form, in memory of the library's own. Released by `lyrsDCTLifterFree_*`.
 * @param ppState receives the state. If an allocation fails after that of the record itself, the incomplete record is
 *                there too, and is to be released; if that of the record fails, `*ppState` does not change.
 * @return #StsNoErr, #StsNullPtr, #StsSize, #StsMemAlloc
 * @{
 */
LYRSR_API Status lyrsDCTLifterInitAlloc_32f(DCTLifterState_32f** ppState, Elem32s lenDCT, Elem32s lenCepstrum,
                                            Elem32s nLifter, Elem32f val);
LYRSR_API Status lyrsDCTLifterInitAlloc_C0_32f(DCTLifterState_32f** ppState, Elem32s lenDCT, Elem32s lenCepstrum,
                                               Elem32s nLifter, Elem32f val, Elem32f val0);
LYRSR_API Status lyrsDCTLifterInitAlloc_Mul_32f(DCTLifterState_32f** ppState, Elem32s lenDCT, const Elem32f* pLifter,
                                                Elem32s lenCepstrum);
LYRSR_API Status lyrsDCTLifterInitAlloc_MulC0_32f(DCTLifterState_32f** ppState, Elem32s lenDCT, const Elem32f* pLifter,
                                                  Elem32s lenCepstrum);
LYRSR_API Status lyrsDCTLifterInitAlloc_16s(DCTLifterState_16s** ppState, Elem32s lenDCT, Elem32s lenCepstrum,
                                            Elem32s nLifter, Elem32f val);
LYRSR_API Status lyrsDCTLifterInitAlloc_C0_16s(DCTLifterState_16s** ppState, Elem32s lenDCT, Elem32s lenCepstrum,
                                               Elem32s nLifter, Elem32f val, Elem32f val0);
LYRSR_API Status lyrsDCTLifterInitAlloc_Mul_16s(DCTLifterState_16s** ppState, Elem32s lenDCT, const Elem32f* pLifter,
                                                Elem32s lenCepstrum);
LYRSR_API Status lyrsDCTLifterInitAlloc_MulC0_16s(DCTLifterState_16s** ppState, Elem32s lenDCT, const Elem32s* pLifter,
                                                  Elem32s lenCepstrum);
/** Releases a state from `lyrsDCTLifterInitAlloc_*_32f`, complete or not. @return #StsNoErr, #StsNullPtr */
LYRSR_API Status lyrsDCTLifterFree_32f(DCTLifterState_32f* pState);
/** Releases a state from `lyrsDCTLifterInitAlloc_*_16s`, complete or not. @return #StsNoErr, #StsNullPtr */
LYRSR_API Status lyrsDCTLifterFree_16s(DCTLifterState_16s* pState);
/** @} */

/**
 * @name Transform
 * `lyrsDCTLifter_32f` gives the same bits whatever the alignment of `pSrc`, which NaN aside. The other two convert the
 * inputs to single without a scale; the scale factor acts on the result alone.
 * @param pSrc        `lenDCT` log energies
 * @param pDst        receives `lenCepstrum` cepstra, one more with the zeroth coefficient
 * @param pState      state record
 * @param scaleFactor scale of the result
 * @return #StsNoErr, #StsNullPtr
 * @{
 */
LYRSR_API Status lyrsDCTLifter_32f(const Elem32f* pSrc, Elem32f* pDst, const DCTLifterState_32f* pState);
LYRSR_API Status lyrsDCTLifter_16s_Sfs(const Elem16s* pSrc, Elem16s* pDst, DCTLifterState_16s* pState,
                                       Elem32s scaleFactor);
LYRSR_API Status lyrsDCTLifter_32s16s_Sfs(const Elem32s* pSrc, Elem16s* pDst, DCTLifterState_16s* pState,
                                          Elem32s scaleFactor);
/** @} */
/** @} */

/* ================================================ front end: deltas =============================================== */

/**
 * @defgroup frontend_delta Delta features
 *
 * Time derivatives of feature frames (Furui, IEEE Trans. ASSP 34(1), 1986). A row of the feature matrix `pDst` holds
 * `width` statics x, behind them as many deltas D and, in the `DeltaDelta` forms, delta-deltas A. The matrix is all the
 * memory that a stream has: a call appends the frames of `pSrc` and finishes the rows that have their neighbours now.
 *
 * The streamed forms differ in H, the number of the last rows that the next call needs again:
 *
 * | window | deltas | H |
 * |---|---|---|
 * | `Delta_Win1` | D[r] = (x[r+1] - x[r-1]) * val | 2 |
 * | `DeltaDelta_Win1` | as that, and A[r] = (D[r+1] - D[r-1]) * valDD | 3 |
 * | `Delta_Win2` | D[r] = (a + d + d) * val, a = x[r+1] - x[r-1], d = x[r+2] - x[r-2] | 4 |
 * | `DeltaDelta_Win2` | as that, and A of D in the same way with valDD | 6 |
 * | `DeltaDelta_Aurora` | D and A from x[r-4] ... x[r+4] | 8 |
 *
 * With #DeltaBegin the first frame goes to row 0 of `pDst`, and row 0 stands in for the rows before it. Without it
 * `pDst` is the first of the last H rows that the call before left, some of them finished and the others waiting for
 * their neighbours; the first frame goes to row H. With #DeltaEnd the waiting rows are finished too, the last row
 * standing in for those behind it. From one call to the next a caller thus advances `pDst` by the number of frames that
 * the first of the two took, less H if that one had #DeltaBegin.
 *
 * `Mul` forms take a gain for each column of the output in `pVal`, statics first: the statics are multiplied too, and
 * differences are formed of the products. There is no denominator: normalisation is in the gains.
 *
 * Single precision throughout, each step rounded, with the same bits on every path, which NaN aside. In 16 bits
 * differences wrap; the sum of the `Win2` forms saturates (but see there); the 32-bit product with the gain is shifted
 * right by scaleFactor without rounding, left for a negative one, and saturated. `pSrc` may not overlap `pDst`.
 * @{
 */

/** Bits of `deltaMode`; others are ignored. */
enum LyrsDeltaMode
{
    DeltaBegin = 1, /**< the first frames of an utterance; no history exists */
    DeltaEnd = 2    /**< no frames follow this call */
};

/**
 * @name Streamed, over one or two frames each way
 * `lyrsDeltaDelta_Win2_16s_D2Sfs` sums its differences in 32 bits from width 14 on, where nothing saturates and the
 * product with the gain wraps at 32 bits.
 * @param pSrc        `height` frames of `width` elements, without gaps
 * @param pVal        gains: 2 * `width`, or 3 * `width` in the `DeltaDelta` forms
 * @param width       elements of a frame, at least 1
 * @param pDst        feature matrix: its first row with #DeltaBegin, else the first of its last H rows
 * @param dstStep     its row stride, at least 2 * `width`, or 3 * `width` in the `DeltaDelta` forms
 * @param height      number of frames; 0 is legal with #DeltaEnd, at least H with #DeltaBegin
 * @param val, valD   gain of the deltas
 * @param valDD       gain of the delta-deltas
 * @param deltaMode   #DeltaBegin, #DeltaEnd, both or neither
 * @param scaleFactor right shift of the products
 * @return #StsNoErr; in this order: #StsNullPtr, #StsSize, #StsStep, and #StsSize for less than H frames at the
 * beginning
 * @{
 */
LYRSR_API Status lyrsDelta_Win1_32f_D2(const Elem32f* pSrc, Elem32s width, Elem32f* pDst, Elem32s dstStep,
                                       Elem32s height, Elem32f val, Elem32s deltaMode);
LYRSR_API Status lyrsDelta_Win2_32f_D2(const Elem32f* pSrc, Elem32s width, Elem32f* pDst, Elem32s dstStep,
                                       Elem32s height, Elem32f val, Elem32s deltaMode);
LYRSR_API Status lyrsDelta_Win1_16s_D2Sfs(const Elem16s* pSrc, Elem32s width, Elem16s* pDst, Elem32s dstStep,
                                          Elem32s height, Elem16s val, Elem32s deltaMode, Elem32s scaleFactor);
LYRSR_API Status lyrsDelta_Win2_16s_D2Sfs(const Elem16s* pSrc, Elem32s width, Elem16s* pDst, Elem32s dstStep,
                                          Elem32s height, Elem16s val, Elem32s deltaMode, Elem32s scaleFactor);
LYRSR_API Status lyrsDeltaDelta_Win1_32f_D2(const Elem32f* pSrc, Elem32s width, Elem32f* pDst, Elem32s dstStep,
                                            Elem32s height, Elem32f valD, Elem32f valDD, Elem32s deltaMode);
LYRSR_API Status lyrsDeltaDelta_Win2_32f_D2(const Elem32f* pSrc, Elem32s width, Elem32f* pDst, Elem32s dstStep,
                                            Elem32s height, Elem32f valD, Elem32f valDD, Elem32s deltaMode);
LYRSR_API Status lyrsDeltaDelta_Win1_16s_D2Sfs(const Elem16s* pSrc, Elem32s width, Elem16s* pDst, Elem32s dstStep,
                                               Elem32s height, Elem16s valD, Elem16s valDD, Elem32s deltaMode,
                                               Elem32s scaleFactor);
LYRSR_API Status lyrsDeltaDelta_Win2_16s_D2Sfs(const Elem16s* pSrc, Elem32s width, Elem16s* pDst, Elem32s dstStep,
                                               Elem32s height, Elem16s valD, Elem16s valDD, Elem32s deltaMode,
                                               Elem32s scaleFactor);
LYRSR_API Status lyrsDeltaMul_Win1_32f_D2(const Elem32f* pSrc, const Elem32f* pVal, Elem32s width, Elem32f* pDst,
                                          Elem32s dstStep, Elem32s height, Elem32s deltaMode);
LYRSR_API Status lyrsDeltaMul_Win2_32f_D2(const Elem32f* pSrc, const Elem32f* pVal, Elem32s width, Elem32f* pDst,
                                          Elem32s dstStep, Elem32s height, Elem32s deltaMode);
LYRSR_API Status lyrsDeltaDeltaMul_Win1_32f_D2(const Elem32f* pSrc, const Elem32f* pVal, Elem32s width, Elem32f* pDst,
                                               Elem32s dstStep, Elem32s height, Elem32s deltaMode);
LYRSR_API Status lyrsDeltaDeltaMul_Win2_32f_D2(const Elem32f* pSrc, const Elem32f* pVal, Elem32s width, Elem32f* pDst,
                                               Elem32s dstStep, Elem32s height, Elem32s deltaMode);
LYRSR_API Status lyrsDeltaMul_Win1_16s_D2Sfs(const Elem16s* pSrc, const Elem16s* pVal, Elem32s width, Elem16s* pDst,
                                             Elem32s dstStep, Elem32s height, Elem32s deltaMode, Elem32s scaleFactor);
LYRSR_API Status lyrsDeltaMul_Win2_16s_D2Sfs(const Elem16s* pSrc, const Elem16s* pVal, Elem32s width, Elem16s* pDst,
                                             Elem32s dstStep, Elem32s height, Elem32s deltaMode, Elem32s scaleFactor);
LYRSR_API Status lyrsDeltaDeltaMul_Win1_16s_D2Sfs(const Elem16s* pSrc, const Elem16s* pVal, Elem32s width,
                                                  Elem16s* pDst, Elem32s dstStep, Elem32s height, Elem32s deltaMode,
                                                  Elem32s scaleFactor);
LYRSR_API Status lyrsDeltaDeltaMul_Win2_16s_D2Sfs(const Elem16s* pSrc, const Elem16s* pVal, Elem32s width,
                                                  Elem16s* pDst, Elem32s dstStep, Elem32s height, Elem32s deltaMode,
                                                  Elem32s scaleFactor);
/** @} */

/**
 * @name Streamed, the regression of the Aurora front end
 * Frames have 14 elements: 12 cepstra, the zeroth coefficient c0 and the log energy; rows of the matrix have 13
 * statics, of which the last is c0 * 0.6 / 23 + logE * 0.4, then 13 deltas and 13 delta-deltas, both formed of the
 * statics as stored. Delta weights are t / 4 for t = -4 ... 4; delta-delta weights 1, 0.25, -0.285714, -0.607143,
 * -0.714286, -0.607143, -0.285714, 0.25, 1. In 16 bits the statics are shifted right too, deltas are formed in 32-bit
 * integers that wrap, delta-deltas and the mix in single precision, truncated and limited to 32 bits. There a negative
 * scaleFactor does not shift left: counts are taken modulo 32.
 * @param pSrc        `height` frames of 14 elements, without gaps
 * @param pVal        39 gains
 * @param pDst        feature matrix: its first row with #DeltaBegin, else the first of its last 8 rows
 * @param dstStep     its row stride, at least 39
 * @param height      number of frames; 0 is legal with #DeltaEnd, at least 8 with #DeltaBegin
 * @param deltaMode   #DeltaBegin, #DeltaEnd, both or neither
 * @param scaleFactor right shift; deltas are shifted by 2 more
 * @return #StsNoErr; in this order: #StsNullPtr, #StsSize, #StsStep, and #StsSize for less than 8 frames at the
 * beginning
 * @{
 */
LYRSR_API Status lyrsDeltaDelta_Aurora_32f_D2(const Elem32f* pSrc, Elem32f* pDst, Elem32s dstStep, Elem32s height,
                                              Elem32s deltaMode);
LYRSR_API Status lyrsDeltaDelta_Aurora_16s_D2Sfs(const Elem16s* pSrc, Elem16s* pDst, Elem32s dstStep, Elem32s height,
                                                 Elem32s deltaMode, Elem32s scaleFactor);
LYRSR_API Status lyrsDeltaDeltaMul_Aurora_32f_D2(const Elem32f* pSrc, const Elem32f* pVal, Elem32f* pDst,
                                                 Elem32s dstStep, Elem32s height, Elem32s deltaMode);
LYRSR_API Status lyrsDeltaDeltaMul_Aurora_16s_D2Sfs(const Elem16s* pSrc, const Elem16s* pVal, Elem16s* pDst,
                                                    Elem32s dstStep, Elem32s height, Elem32s deltaMode,
                                                    Elem32s scaleFactor);
/** @} */

/**
 * @name On a whole matrix, over any window
 * In place: D[r] = val * sum over t = 1 ... wndSize of t * (x[r+t] - x[r-t]). In the first wndSize rows x[0] stands for
 * every x[r-t], also for those that exist; in the last wndSize rows the last row stands for every x[r+t]. In 16 bits
 * the differences wrap, sums and products have 32 bits and wrap, and the result is shifted and saturated as in the
 * streamed forms.
 * @param pSrcDst     matrix of `height` rows: statics from column `offset` on, deltas behind them
 * @param height      number of rows, at least 2 * `wndSize`
 * @param step        row stride, at least `offset` + 2 * `width`
 * @param pVal        gains of statics and deltas; those of the statics, the first `width`, are skipped
 * @param width       number of statics, at least 1
 * @param offset      column of the first static, at least 0
 * @param wndSize     frames each way, at least 1
 * @param val         gain
 * @param scaleFactor right shift of the products
 * @return #StsNoErr, #StsNullPtr, #StsSize, #StsStep
 * @{
 */
LYRSR_API Status lyrsEvalDelta_32f_D2(Elem32f* pSrcDst, Elem32s height, Elem32s step, Elem32s width, Elem32s offset,
                                      Elem32s wndSize, Elem32f val);
LYRSR_API Status lyrsEvalDelta_16s_D2Sfs(Elem16s* pSrcDst, Elem32s height, Elem32s step, Elem32s width, Elem32s offset,
                                         Elem32s wndSize, Elem16s val, Elem32s scaleFactor);
LYRSR_API Status lyrsEvalDeltaMul_32f_D2(Elem32f* pSrcDst, Elem32s height, Elem32s step, const Elem32f* pVal,
                                         Elem32s width, Elem32s offset, Elem32s wndSize);
LYRSR_API Status lyrsEvalDeltaMul_16s_D2Sfs(Elem16s* pSrcDst, Elem32s height, Elem32s step, const Elem16s* pVal,
                                            Elem32s width, Elem32s offset, Elem32s wndSize, Elem32s scaleFactor);
/** @} */

/**
 * @name Copies of columns
 * `lyrsCopyColumn_*`: packed rows into the first columns of a matrix. `Indirect`: dst[i] = src[pIndx[i]] in every row.
 * @param pSrc, mSrc       source; packed in `lyrsCopyColumn_32f_D2` and `lyrsCopyColumn_16s_D2`
 * @param width            elements of a row, at least 1
 * @param srcLen, srcStep  elements of a source row, at least 1, and its stride
 * @param pDst, mDst       destination
 * @param pIndx            `dstLen` column numbers, each at least 0 and below `srcLen`
 * @param dstLen, dstStep  elements written of a destination row, at least 1, and its stride
 * @param height           number of rows, at least 1
 * @return #StsNoErr, #StsNullPtr, #StsSize, #StsStep; `Indirect_*_D2` in this order: #StsNullPtr, #StsSize and #StsStep
 * of the source, then of the destination, #StsSize of the height. For a bad column number #StsSize, with the part of
 *         the first row that is ahead of it written.
 * @{
 */
LYRSR_API Status lyrsCopyColumn_32f_D2(const Elem32f* pSrc, Elem32s width, Elem32f* pDst, Elem32s dstStep,
                                       Elem32s height);
LYRSR_API Status lyrsCopyColumn_16s_D2(const Elem16s* pSrc, Elem32s width, Elem16s* pDst, Elem32s dstStep,
                                       Elem32s height);
LYRSR_API Status lyrsCopyColumn_Indirect_32f_D2(const Elem32f* pSrc, Elem32s srcLen, Elem32s srcStep, Elem32f* pDst,
                                                const Elem32s* pIndx, Elem32s dstLen, Elem32s dstStep, Elem32s height);
LYRSR_API Status lyrsCopyColumn_Indirect_64f_D2(const Elem64f* pSrc, Elem32s srcLen, Elem32s srcStep, Elem64f* pDst,
                                                const Elem32s* pIndx, Elem32s dstLen, Elem32s dstStep, Elem32s height);
LYRSR_API Status lyrsCopyColumn_Indirect_16s_D2(const Elem16s* pSrc, Elem32s srcLen, Elem32s srcStep, Elem16s* pDst,
                                                const Elem32s* pIndx, Elem32s dstLen, Elem32s dstStep, Elem32s height);
LYRSR_API Status lyrsCopyColumn_Indirect_32f_D2L(const Elem32f* const* mSrc, Elem32s srcLen, Elem32f* const* mDst,
                                                 const Elem32s* pIndx, Elem32s dstLen, Elem32s height);
LYRSR_API Status lyrsCopyColumn_Indirect_64f_D2L(const Elem64f* const* mSrc, Elem32s srcLen, Elem64f* const* mDst,
                                                 const Elem32s* pIndx, Elem32s dstLen, Elem32s height);
LYRSR_API Status lyrsCopyColumn_Indirect_16s_D2L(const Elem16s* const* mSrc, Elem32s srcLen, Elem16s* const* mDst,
                                                 const Elem32s* pIndx, Elem32s dstLen, Elem32s height);
/** @} */
/** @} */

/* =========================================== estimation: column statistics ======================================== */

/**
 * @defgroup estimation_columns Column statistics
 *
 * A matrix of feature rows reduced to one value for each column: a row is a frame, a column a feature. `pSrc` holds the
 * rows in one block, row r at r * `step`; `mSrc` is a table of row pointers. Of each row the first `width` elements
 * count. Variances are formed in one pass from sums of squares (cf. Chan, Golub and LeVeque, The American Statistician
 * 37(3), 1983, on what that costs), so that rounding may leave a small one negative; none is clamped. Additions may be
 * in any order.
 * @{
 */

/**
 * @name Mean
 * mean[c] = (sum over r of x[r][c]) * (1 / height), in single precision; in the `32f` forms the reciprocal is a double
 * rounded to single. The 16-bit forms round to nearest and allocate work memory.
 * @param pSrc     `height` rows in one block
 * @param mSrc     table of `height` pointers to rows
 * @param height   number of rows, at least 1
 * @param step     row stride of `pSrc` in elements, at least `width`
 * @param pDstMean receives `width` means
 * @param width    number of columns, at least 1
 * @return #StsNoErr; in this order: #StsStep (`_D2`), #StsNullPtr, #StsSize, #StsMemAlloc (`16s`)
 * @{
 */
LYRSR_API Status lyrsMeanColumn_32f_D2(const Elem32f* pSrc, Elem32s height, Elem32s step, Elem32f* pDstMean,
                                       Elem32s width);
LYRSR_API Status lyrsMeanColumn_16s_D2(const Elem16s* pSrc, Elem32s height, Elem32s step, Elem16s* pDstMean,
                                       Elem32s width);
LYRSR_API Status lyrsMeanColumn_32f_D2L(const Elem32f* const* mSrc, Elem32s height, Elem32f* pDstMean, Elem32s width);
LYRSR_API Status lyrsMeanColumn_16s_D2L(const Elem16s* const* mSrc, Elem32s height, Elem16s* pDstMean, Elem32s width);
/** @} */

/**
 * @name Variance about a given mean
 * var[c] = (sum over r of x[r][c]^2 - height * mean[c]^2) * (1 / (height - 1)) in single precision, the reciprocal as
 * for the mean, with the mean as it is given: with another than the true one this is no sum of squared deviations. The
 * `Sfs` forms allocate work memory.
 * @param pSrc        `height` rows in one block
 * @param mSrc        table of `height` pointers to rows
 * @param height      number of rows, at least 2
 * @param step        row stride of `pSrc` in elements, at least `width`
 * @param pSrcMean    `width` means
 * @param pDstVar     receives `width` variances
 * @param width       number of columns, at least 1
 * @param scaleFactor the variance is multiplied by 2^(-scaleFactor), an infinity from -128 down, where 0 gives 32767
 * @return #StsNoErr; in this order: #StsStep (`_D2`), #StsNullPtr, #StsSize, #StsMemAlloc (`16s`)
 * @{
 */
LYRSR_API Status lyrsVarColumn_32f_D2(const Elem32f* pSrc, Elem32s height, Elem32s step, const Elem32f* pSrcMean,
                                      Elem32f* pDstVar, Elem32s width);
LYRSR_API Status lyrsVarColumn_16s_D2Sfs(const Elem16s* pSrc, Elem32s height, Elem32s step, const Elem16s* pSrcMean,
                                         Elem16s* pDstVar, Elem32s width, Elem32s scaleFactor);
LYRSR_API Status lyrsVarColumn_32f_D2L(const Elem32f* const* mSrc, Elem32s height, const Elem32f* pSrcMean,
                                       Elem32f* pDstVar, Elem32s width);
LYRSR_API Status lyrsVarColumn_16s_D2LSfs(const Elem16s* const* mSrc, Elem32s height, const Elem16s* pSrcMean,
                                          Elem16s* pDstVar, Elem32s width, Elem32s scaleFactor);
/** @} */

/**
 * @name Mean and variance
 * Both of the above, the variance with the mean just computed, ahead of any rounding to an integer. `16s` forms compute
 * in single precision; `16s32s` and `16s16s32s` forms sum exactly and compute in double, and their results are rounded
 * in the rounding mode in force and saturated.
 * @param pSrc        `height` rows in one block
 * @param mSrc        table of `height` pointers to rows
 * @param height      number of rows, at least 2
 * @param step        row stride of `pSrc` in elements, at least `width`
 * @param pDstMean    receives `width` means, which are never scaled
 * @param pDstVar     receives `width` variances
 * @param width       number of columns, at least 1
 * @param scaleFactor the variance is multiplied by 2^(-scaleFactor), an infinity in `16s` forms from -128 down, where 0
 * gives 32767, in `16s32s` forms from -1024 down, where 0 gives -2147483648
 * @return #StsNoErr; in this order: #StsNullPtr, #StsSize, #StsStep (`_D2`)
 * @{
 */
LYRSR_API Status lyrsMeanVarColumn_32f_D2(const Elem32f* pSrc, Elem32s height, Elem32s step, Elem32f* pDstMean,
                                          Elem32f* pDstVar, Elem32s width);
LYRSR_API Status lyrsMeanVarColumn_16s_D2Sfs(const Elem16s* pSrc, Elem32s height, Elem32s step, Elem16s* pDstMean,
                                             Elem16s* pDstVar, Elem32s width, Elem32s scaleFactor);
LYRSR_API Status lyrsMeanVarColumn_16s32s_D2Sfs(const Elem16s* pSrc, Elem32s height, Elem32s step, Elem32s* pDstMean,
                                                Elem32s* pDstVar, Elem32s width, Elem32s scaleFactor);
LYRSR_API Status lyrsMeanVarColumn_16s16s32s_D2(const Elem16s* pSrc, Elem32s height, Elem32s step, Elem16s* pDstMean,
                                                Elem32s* pDstVar, Elem32s width);
LYRSR_API Status lyrsMeanVarColumn_32f_D2L(const Elem32f* const* mSrc, Elem32s height, Elem32f* pDstMean,
                                           Elem32f* pDstVar, Elem32s width);
LYRSR_API Status lyrsMeanVarColumn_16s_D2LSfs(const Elem16s* const* mSrc, Elem32s height, Elem16s* pDstMean,
                                              Elem16s* pDstVar, Elem32s width, Elem32s scaleFactor);
LYRSR_API Status lyrsMeanVarColumn_16s32s_D2LSfs(const Elem16s* const* mSrc, Elem32s height, Elem32s* pDstMean,
                                                 Elem32s* pDstVar, Elem32s width, Elem32s scaleFactor);
LYRSR_API Status lyrsMeanVarColumn_16s16s32s_D2L(const Elem16s* const* mSrc, Elem32s height, Elem16s* pDstMean,
                                                 Elem32s* pDstVar, Elem32s width);
/** @} */

/**
 * @name Weighted mean and variance
 * mean[c] = sum over r of w[r] * x[r][c] and var[c] = sum over r of w[r] * x[r][c]^2 - mean[c]^2, the mean being the
 * given or the one just computed. Weights are used as they are; for a mean and a variance they should add to one.
 * @param pSrc     `height` rows in one block
 * @param mSrc     table of `height` pointers to rows
 * @param step     row stride of `pSrc` in elements, at least `width`
 * @param pWgt     a weight for each of the `height` rows
 * @param height   number of rows, at least 1
 * @param pSrcMean `width` means
 * @param pDstMean receives `width` means
 * @param pDstVar  receives `width` variances
 * @param width    number of columns, at least 1
 * @return #StsNoErr; in this order: #StsNullPtr, #StsStep (`_D2`), #StsSize
 * @{
 */
LYRSR_API Status lyrsWeightedMeanColumn_32f_D2(const Elem32f* pSrc, Elem32s step, const Elem32f* pWgt, Elem32s height,
                                               Elem32f* pDstMean, Elem32s width);
LYRSR_API Status lyrsWeightedMeanColumn_64f_D2(const Elem64f* pSrc, Elem32s step, const Elem64f* pWgt, Elem32s height,
                                               Elem64f* pDstMean, Elem32s width);
LYRSR_API Status lyrsWeightedMeanColumn_32f_D2L(const Elem32f* const* mSrc, const Elem32f* pWgt, Elem32s height,
                                                Elem32f* pDstMean, Elem32s width);
LYRSR_API Status lyrsWeightedMeanColumn_64f_D2L(const Elem64f* const* mSrc, const Elem64f* pWgt, Elem32s height,
                                                Elem64f* pDstMean, Elem32s width);
LYRSR_API Status lyrsWeightedVarColumn_32f_D2(const Elem32f* pSrc, Elem32s step, const Elem32f* pWgt, Elem32s height,
                                              const Elem32f* pSrcMean, Elem32f* pDstVar, Elem32s width);
LYRSR_API Status lyrsWeightedVarColumn_64f_D2(const Elem64f* pSrc, Elem32s step, const Elem64f* pWgt, Elem32s height,
                                              const Elem64f* pSrcMean, Elem64f* pDstVar, Elem32s width);
LYRSR_API Status lyrsWeightedVarColumn_32f_D2L(const Elem32f* const* mSrc, const Elem32f* pWgt, Elem32s height,
                                               const Elem32f* pSrcMean, Elem32f* pDstVar, Elem32s width);
LYRSR_API Status lyrsWeightedVarColumn_64f_D2L(const Elem64f* const* mSrc, const Elem64f* pWgt, Elem32s height,
                                               const Elem64f* pSrcMean, Elem64f* pDstVar, Elem32s width);
LYRSR_API Status lyrsWeightedMeanVarColumn_32f_D2(const Elem32f* pSrc, Elem32s step, const Elem32f* pWgt,
                                                  Elem32s height, Elem32f* pDstMean, Elem32f* pDstVar, Elem32s width);
LYRSR_API Status lyrsWeightedMeanVarColumn_64f_D2(const Elem64f* pSrc, Elem32s step, const Elem64f* pWgt,
                                                  Elem32s height, Elem64f* pDstMean, Elem64f* pDstVar, Elem32s width);
LYRSR_API Status lyrsWeightedMeanVarColumn_32f_D2L(const Elem32f* const* mSrc, const Elem32f* pWgt, Elem32s height,
                                                   Elem32f* pDstMean, Elem32f* pDstVar, Elem32s width);
LYRSR_API Status lyrsWeightedMeanVarColumn_64f_D2L(const Elem64f* const* mSrc, const Elem64f* pWgt, Elem32s height,
                                                   Elem64f* pDstMean, Elem64f* pDstVar, Elem32s width);
/** @} */

/**
 * @name Sums
 * sum[c] = sum over r of x[r][c] and sumSq[c] = sum over r of x[r][c]^2, in single precision and without any division:
 * what is pooled before means and variances are formed. The `_I` forms add to what the destinations hold. The integer
 * results of the `Sfs` forms hold what single precision kept of the sums; in `lyrsSumMeanVar_16s32s_ISfs` the old
 * integers are part of the sum that is scaled.
 * @param pSrc        `height` rows in one block
 * @param step        row stride of `pSrc` in elements, at least `width`
 * @param height      number of rows, at least 1
 * @param pDstSum     receives `width` sums (`pSrcDstSum`: is added to)
 * @param pDstSumSq   receives `width` sums of squares (`pSrcDstSumSq`: is added to)
 * @param width       number of columns, at least 1
 * @param scaleFactor the results are multiplied by 2^(-scaleFactor), an infinity from -128 down, where 0 gives
 * -2147483648
 * @return #StsNoErr; in this order: #StsStep, #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsSumMeanVar_32f(const Elem32f* pSrc, Elem32s step, Elem32s height, Elem32f* pDstSum,
                                    Elem32f* pDstSumSq, Elem32s width);
LYRSR_API Status lyrsSumMeanVar_16s32f(const Elem16s* pSrc, Elem32s step, Elem32s height, Elem32f* pDstSum,
                                       Elem32f* pDstSumSq, Elem32s width);
LYRSR_API Status lyrsSumMeanVar_32f_I(const Elem32f* pSrc, Elem32s step, Elem32s height, Elem32f* pSrcDstSum,
                                      Elem32f* pSrcDstSumSq, Elem32s width);
LYRSR_API Status lyrsSumMeanVar_16s32f_I(const Elem16s* pSrc, Elem32s step, Elem32s height, Elem32f* pSrcDstSum,
                                         Elem32f* pSrcDstSumSq, Elem32s width);
LYRSR_API Status lyrsSumMeanVar_16s32s_Sfs(const Elem16s* pSrc, Elem32s step, Elem32s height, Elem32s* pDstSum,
                                           Elem32s* pDstSumSq, Elem32s width, Elem32s scaleFactor);
LYRSR_API Status lyrsSumMeanVar_16s32s_ISfs(const Elem16s* pSrc, Elem32s step, Elem32s height, Elem32s* pSrcDstSum,
                                            Elem32s* pSrcDstSumSq, Elem32s width, Elem32s scaleFactor);
/** @} */

/**
 * @name One frame
 * With d = pSrc[i] - pSrcMean[i]: pDstMean[i] += d * val and pDstVar[i] += d * (d * val), every step rounded.
 * `pSrcMean` may be `pDstMean`.
 * @param pSrc     frame, `len` elements
 * @param pSrcMean mean that the frame is compared with, `len` elements
 * @param pDstMean running mean, `len` elements
 * @param pDstVar  running variance, `len` elements
 * @param len      elements of a frame, at least 1
 * @param val      weight of the frame
 * @return #StsNoErr, #StsNullPtr, #StsSize
 * @{
 */
LYRSR_API Status lyrsMeanVarAcc_32f(const Elem32f* pSrc, const Elem32f* pSrcMean, Elem32f* pDstMean, Elem32f* pDstVar,
                                    Elem32s len, Elem32f val);
LYRSR_API Status lyrsMeanVarAcc_64f(const Elem64f* pSrc, const Elem64f* pSrcMean, Elem64f* pDstMean, Elem64f* pDstVar,
                                    Elem32s len, Elem64f val);
/** @} */

/**
 * @name Full covariance
 * For every i <= j
 *
 *     s = sum over r of (x[r][i] - mean[j]) * (x[r][j] - mean[j])
 *     dst[i][j] = dst[j][i] = dst[i][j] + s * val
 *
 * in double precision. Both factors subtract the mean of the later column, so that only the diagonal is a centred
 * square unless the data has been centred before. The lower triangle is overwritten with the upper, whatever it held.
 * @param pSrc    `height` rows in one block
 * @param mSrc    table of `height` pointers to rows
 * @param srcStep row stride of `pSrc` in elements, at least `width`
 * @param height  number of rows, at least 1
 * @param pMean   `width` means
 * @param pDst    `width` rows of the matrix in one block
 * @param mDst    table of `width` pointers to rows of the matrix
 * @param width   number of columns, and of rows and columns of the matrix, at least 1
 * @param dstStep row stride of `pDst` in elements, at least `width`
 * @param val     factor of the sums
 * @return #StsNoErr; in this order: #StsNullPtr, #StsSize, #StsStep (`_D2`)
 * @{
 */
LYRSR_API Status lyrsAccCovarianceMatrix_32f64f_D2(const Elem32f* pSrc, Elem32s srcStep, Elem32s height,
                                                   const Elem32f* pMean, Elem64f* pDst, Elem32s width, Elem32s dstStep,
                                                   Elem64f val);
LYRSR_API Status lyrsAccCovarianceMatrix_16s64f_D2(const Elem16s* pSrc, Elem32s srcStep, Elem32s height,
                                                   const Elem16s* pMean, Elem64f* pDst, Elem32s width, Elem32s dstStep,
                                                   Elem64f val);
LYRSR_API Status lyrsAccCovarianceMatrix_32f64f_D2L(const Elem32f* const* mSrc, Elem32s height, const Elem32f* pMean,
                                                    Elem64f* const* mDst, Elem32s width, Elem64f val);
LYRSR_API Status lyrsAccCovarianceMatrix_16s64f_D2L(const Elem16s* const* mSrc, Elem32s height, const Elem16s* pMean,
                                                    Elem64f* const* mDst, Elem32s width, Elem64f val);
/** @} */
/** @} */

#ifdef __cplusplus
}
#endif

#endif /* LYRSR_H */
