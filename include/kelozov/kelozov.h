/**
 * @file kelozov.h
 * @brief Numeric primitives for signal and image processing: the whole public interface.
 */

/**
 * @mainpage Numeric primitives for signal and image processing
 *
 * Every primitive is a plain function on memory that the caller owns. A name reads, left to right:
 * the prefix `Kelo_`, the domain (`zovs` for signals, `zovi` for images), the operation, the
 * element type or the pair source type and destination type, and modifiers. Modifiers are `I` (in
 * place), `Sfs` (integer result scaled by 2 to the power minus `scaleFactor`), `C1` and `C4` (one
 * or four interleaved channels), `R` (an image operation on a region, with row steps in bytes),
 * `D2L` (outputs by an array of pointers), `A11`, `A21` and `A24` (bits of accuracy).
 * Within the operation `C` means a constant operand and `Rev` reversed operands.
 *
 * Arguments come in this order: sources, a constant operand, destination, length, further
 * parameters, scale factor. Lengths count elements, steps are in bytes. Arrays need no alignment,
 * not even that of their element type.
 *
 * Every primitive tests its arguments before it touches any element, and stops at the first test
 * that fails: every pointer against null (::zovStsNullPtrErr), the identity tag of a state object
 * (::zovStsContextMatchErr), the length (below 1: ::zovStsSizeErr), and then the parameters of the
 * operation, unless its description lists the statuses in another order. An error from these tests
 * means that nothing was written. A warning (a positive status) means that the output is complete,
 * except for the two resize warnings ::zovStsNoOperationWrn and ::zovStsResizeRoiWrn, which mean
 * that nothing was written.
 *
 * Aliasing: an in-place form takes one array once. An element-wise primitive also accepts a
 * destination that equals a source of the same element type. Arrays that overlap in another way are
 * not supported.
 *
 * Each primitive comes in up to seven builds, one for each instruction-set level: SSE2, SSE3,
 * SSSE3, SSSE3 with MOVBE, SSE4.1, AVX and AVX2. The level is chosen once, when the library is
 * loaded. Results do not depend on the level except where a description says so; the descriptions
 * number the levels 0 to 6 in this order.
 *
 * No primitive keeps state between calls other than in a state object of its caller: all may run at
 * the same time in several threads on distinct outputs and state objects. None prints, aborts or
 * raises an exception of C++. Where a description says nothing else, floating-point exceptions are
 * taken to be masked, as they are when a thread starts, and rounding to be to nearest; the
 * exception flags that a call leaves are those of its operations.
 */
#ifndef KELOZOV_KELOZOV_H
#define KELOZOV_KELOZOV_H

#include <stdint.h>

/**
 * @def KELO_API
 * @brief Marks an exported function.
 */
#if defined(_WIN32) && !defined(KELOZOV_BUILDING)
#define KELO_API __declspec(dllimport)
#elif defined(__GNUC__) && !defined(_WIN32)
#define KELO_API __attribute__((visibility("default")))
#else
#define KELO_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** @defgroup types Element types and records */
/** @{ */

typedef uint8_t Zov8u;   /**< unsigned 8-bit integer, suffix `8u` */
typedef uint16_t Zov16u; /**< unsigned 16-bit integer, suffix `16u` */
typedef int16_t Zov16s;  /**< signed 16-bit integer, suffix `16s` */
typedef uint32_t Zov32u; /**< unsigned 32-bit integer, suffix `32u` */
typedef int32_t Zov32s;  /**< signed 32-bit integer, suffix `32s` */
typedef float Zov32f;    /**< IEEE 754 binary32, suffix `32f` */
typedef double Zov64f;   /**< IEEE 754 binary64, suffix `64f` */

/** Pair of 16-bit integers, suffix `16sc`. */
typedef struct Zov16sc {
  Zov16s re; /**< real part */
  Zov16s im; /**< imaginary part */
} Zov16sc;

/** Pair of binary32 numbers, suffix `32fc`. */
typedef struct Zov32fc {
  Zov32f re; /**< real part */
  Zov32f im; /**< imaginary part */
} Zov32fc;

/** Pair of binary64 numbers, suffix `64fc`. */
typedef struct Zov64fc {
  Zov64f re; /**< real part */
  Zov64f im; /**< imaginary part */
} Zov64fc;

/** Extent of a whole image. */
typedef struct ZovImageSize {
  int width;  /**< pixels per row */
  int height; /**< rows */
} ZovImageSize;

/** Rectangle of pixels inside an image. */
typedef struct ZovImageRect {
  int x;      /**< first column */
  int y;      /**< first row */
  int width;  /**< columns */
  int height; /**< rows */
} ZovImageRect;

/** @} */

/** @defgroup statuses Status codes */
/** @{ */

/** Result of a primitive: 0 success, negative an error, positive a warning. */
typedef int32_t ZovStatus;

/** The values of a ::ZovStatus. */
enum ZovStatusCode {
  zovStsNoErr = 0,                /**< success */
  zovStsRelationErr = -5,         /**< relation code is neither less nor greater */
  zovStsSizeErr = -6,             /**< a length, width or height is below 1 */
  zovStsZeroCrossingModeErr = -7, /**< zero-crossing mode is not 0, 1 or 2 */
  zovStsNullPtrErr = -8,          /**< a pointer argument is null */
  zovStsMemAllocErr = -9,         /**< work memory or a state object could not be allocated */
  zovStsDivByZeroErr = -10,       /**< a scalar divisor or leading coefficient is (almost) zero */
  zovStsBitDepthErr = -11,        /**< bit depth is outside 1 to 16 */
  zovStsStepErr = -14,            /**< a row step below one row, or a TIFF row length below 1 */
  zovStsFftOrderErr = -15,        /**< FFT order outside its range */
  zovStsFftFlagErr = -16,         /**< FFT normalisation flag unknown */
  zovStsContextMatchErr = -17,    /**< the identity tag of a state object does not match */
  zovStsInterpolationErr = -22,   /**< interpolation code unknown or its flags inconsistent */
  zovStsResizeFactorErr = -23,    /**< a scale is not positive, or above 1 with the area method */
  zovStsIirOrderErr = -25,        /**< IIR order below 1 */
  zovStsFirLenErr = -26,          /**< FIR tap count below 1 */
  zovStsFirMRPhaseErr = -28,      /**< multi-rate phase outside 0 to factor minus 1 */
  zovStsFirMRFactorErr = -29,     /**< multi-rate factor below 1 */
  zovStsSamplePhaseErr = -30,     /**< sampling phase outside 0 to factor minus 1 */
  zovStsSampleFactorErr = -31,    /**< sampling factor below 1 */
  zovStsShiftErr = -32,           /**< shift count negative */
  zovStsMaskSizeErr = -33,        /**< mask length below 1 */
  zovStsWtOffsetErr = -35,        /**< wavelet filter offset below -1 */
  zovStsCopyStepErr = -37,        /**< a row step is smaller than the row width */
  zovStsFirGenPhaseErr = -44,     /**< internal: tone phase outside 0 to 2 pi */
  zovStsFirGenFreqErr = -45,      /**< internal: tone frequency outside 0 up to 0.5 */
  zovStsFirGenParamErr = -46,     /**< internal: tone magnitude not positive */
  zovStsNumChannelsErr = -53,     /**< channel count other than 1, 3 or 4 */
  zovStsFindLenErr = -119,        /**< a search or replace length is outside its range */
  zovStsIirGenSizeErr = -182,     /**< internal: row step of the IIR design solver */
  zovStsIirGenUnstableErr = -195, /**< internal: pivot of the IIR design solver near zero */
  zovStsIirGenOrderErr = -206,    /**< IIR design order outside 1 to 12 */
  zovStsIirGenFreqErr = -208,     /**< IIR design frequency outside the open range 0 to 0.5 */
  zovStsIirGenParamErr = -209,    /**< Chebyshev deviation outside 0 to 29 decibels */
  zovStsNoOperationWrn = 1,       /**< nothing to do: the regions do not intersect */
  zovStsSqrtNegArgWrn = 3,        /**< an input of a square root was negative */
  zovStsEvenMaskWrn = 5,          /**< the median mask length was even */
  zovStsDivByZeroWrn = 6,         /**< an element of the divisor was zero */
  zovStsLnZeroArgWrn = 7,         /**< the first bad input of a logarithm was zero */
  zovStsLnNegArgWrn = 8,          /**< the first bad input of a logarithm was negative */
  zovStsOverflowWrn = 12,         /**< a result overflowed */
  zovStsUnderflowWrn = 17,        /**< a result underflowed */
  zovStsSingularityWrn = 18,      /**< an input lay on a pole */
  zovStsDomainWrn = 19,           /**< an input lay outside the domain */
  zovStsOtherVendorWrn = 20,      /**< internal: start-up met another processor vendor */
  zovStsResizeRoiWrn = 29,        /**< source rectangle outside the image, nothing written */
  zovStsCpuProbeFailedWrn = 36,   /**< internal: start-up could not identify the processor */
  zovStsAntialiasIgnoredWrn = 46  /**< the antialias flag has no effect with this method */
};

/** @} */

/** @defgroup constants Constants */
/** @{ */

/** Relation codes of the thresholds. */
enum ZovCmpOp {
  ZOV_CMP_LESS = 0,   /**< values below the level */
  ZOV_CMP_GREATER = 4 /**< values above the level */
};

/** Rounding modes of the narrowing conversions; any other value acts as the last. */
enum ZovRoundMode {
  ZOV_RND_ZERO = 0,     /**< truncation toward zero */
  ZOV_RND_NEAR = 1,     /**< nearest, ties to even */
  ZOV_RND_FINANCIAL = 2 /**< nearest, ties away from zero */
};

/** Normalisation of a Fourier transform of N elements. */
enum ZovFftFlag {
  ZOV_FFT_SCALE_FWD = 1,  /**< the forward transform is multiplied by 1/N */
  ZOV_FFT_SCALE_INV = 2,  /**< the inverse transform is multiplied by 1/N */
  ZOV_FFT_SCALE_SQRT = 4, /**< both transforms are multiplied by 1/sqrt(N) */
  ZOV_FFT_SCALE_NONE = 8  /**< no multiplication */
};

/** Modes of the zero-crossing count. */
enum ZovZeroCrossingMode {
  ZOV_ZC_PRODUCT = 0,  /**< neighbours whose product is negative */
  ZOV_ZC_SIGN_BIT = 1, /**< neighbours whose sign bits differ */
  ZOV_ZC_SIGN_STEP = 2 /**< half the sum of sign steps */
};

/** Windows of the FIR design. */
enum ZovWinType {
  ZOV_WIN_BARTLETT = 0,     /**< triangular */
  ZOV_WIN_BLACKMAN_OPT = 1, /**< Blackman with the optimal parameter */
  ZOV_WIN_HAMMING = 2,      /**< Hamming */
  ZOV_WIN_HANN = 3          /**< Hann */
};

/** Prototypes of the IIR design. */
enum ZovIirFilterType {
  ZOV_IIR_BUTTERWORTH = 0, /**< Butterworth */
  ZOV_IIR_CHEBYSHEV = 1    /**< Chebyshev, type I */
};

/** Resize methods: the low 29 bits of the `interpolation` argument. */
enum ZovInterpolation {
  ZOV_INTERP_NEAREST = 1,          /**< nearest neighbour */
  ZOV_INTERP_LINEAR = 2,           /**< bilinear */
  ZOV_INTERP_CUBIC = 4,            /**< four-tap cubic Lagrange kernel */
  ZOV_INTERP_CUBIC_BSPLINE = 5,    /**< cubic B-spline, B = 1, C = 0 */
  ZOV_INTERP_CUBIC_CATMULLROM = 6, /**< Catmull-Rom, B = 0, C = 0.5 */
  ZOV_INTERP_CUBIC_MIXED = 7,      /**< two-parameter cubic, B = 0.5, C = 0.3 */
  ZOV_INTERP_AREA = 8,             /**< area-weighted super sampling, reduction only */
  ZOV_INTERP_LANCZOS = 16          /**< three-lobe Lanczos */
};

/** Resize flag: blend a ring of one pixel around the written rectangle with the destination. */
#define ZOV_EDGE_BLEND ((int)0x80000000U)
/** Resize flag: write a ring of one pixel as the edge pixels faded towards zero. */
#define ZOV_EDGE_FADE 0x40000000
/** Resize flag: widen the filter with the reduction ratio. */
#define ZOV_RESIZE_ANTIALIAS 0x20000000

/** @} */

/** @defgroup memory Aligned memory */
/** @{ */

/**
 * @brief Allocates a block that starts on a multiple of 64 bytes.
 * @param len size in bytes
 * @return the block, contents undefined, or null when @p len is below 1 or memory is exhausted.
 * Release it with ::Kelo_zovsFree.
 */
KELO_API Zov8u* Kelo_zovsMalloc_8u(int len);

/**
 * @brief Releases a block of ::Kelo_zovsMalloc_8u. A null pointer is accepted and ignored.
 * @param ptr the block, or null; any other pointer is undefined behaviour
 */
KELO_API void Kelo_zovsFree(void* ptr);

/** @} */

/**
 * @defgroup fill Fill, clear and copy
 *
 * Large arrays are written past the cache, so that they do not empty it; a fill only when the array
 * is aligned to its elements:
 * - at levels 1 to 4 from 1 MiB, or from 512 KiB in a clear at any of them and in a copy at levels
 *   1 to 3, when the array is at least half as large as one thread's share of the cache;
 * - at levels 5 and 6 fills and clears of more than 2 MiB, when the array is larger than the cache.
 *
 * A cache of unknown size is never bypassed.
 */
/** @{ */

/**
 * @brief pDst[i] = val for i in 0 to len - 1.
 * @param val value to write
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSet_8u(Zov8u val, Zov8u* pDst, int len);

/**
 * @brief pDst[i] = val for i in 0 to len - 1.
 * @param val value to write
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSet_32s(Zov32s val, Zov32s* pDst, int len);

/**
 * @brief pDst[i] = val for i in 0 to len - 1; the bits of @p val are written as they are.
 * @param val value to write
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSet_32f(Zov32f val, Zov32f* pDst, int len);

/**
 * @brief Clears @p len elements: all bytes zero.
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsZero_32f(Zov32f* pDst, int len);

/**
 * @brief Clears @p len elements: all bytes zero.
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsZero_64f(Zov64f* pDst, int len);

/**
 * @brief pDst[i] = pSrc[i], bit for bit. The arrays must not overlap, but may be equal.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsCopy_32f(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = pSrc[i], bit for bit. The arrays must not overlap, but may be equal.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsCopy_64f(const Zov64f* pSrc, Zov64f* pDst, int len);

/** @} */

/** @defgroup search Search and replace */
/** @{ */

/**
 * @brief Finds the first position at which a sequence occurs.
 * *pIndex = the smallest p with pSrc[p + k] == pFind[k] for all k in 0 to lenFind - 1, or -1 when
 * there is none. An empty sequence, or one longer than the source, is not found anywhere.
 * @param pSrc array to search, @p len elements
 * @param len number of elements of @p pSrc; may be 0
 * @param pFind sequence to find, @p lenFind elements
 * @param lenFind number of elements of @p pFind; may be 0
 * @param pIndex receives the position; left as it is on an error
 * @return ::zovStsNullPtrErr, ::zovStsFindLenErr (len or lenFind negative), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFind_8u(const Zov8u* pSrc, int len, const Zov8u* pFind, int lenFind,
                                    int* pIndex);

/**
 * @brief Finds the first position at which a sequence occurs.
 * *pIndex = the smallest p with pSrc[p + k] == pFind[k] for all k in 0 to lenFind - 1, or -1 when
 * there is none. An empty sequence, or one longer than the source, is not found anywhere.
 * @param pSrc array to search, @p len elements
 * @param len number of elements of @p pSrc; may be 0
 * @param pFind sequence to find, @p lenFind elements
 * @param lenFind number of elements of @p pFind; may be 0
 * @param pIndex receives the position; left as it is on an error
 * @return ::zovStsNullPtrErr, ::zovStsFindLenErr (len or lenFind negative), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFind_16u(const Zov16u* pSrc, int len, const Zov16u* pFind, int lenFind,
                                     int* pIndex);

/**
 * @brief pDst[i] = newVal where pSrc[i] == oldVal, else pSrc[i]. In place is allowed.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements, all of which are written
 * @param len number of elements; 0 does nothing
 * @param oldVal value to look for
 * @param newVal value that replaces it
 * @return ::zovStsNullPtrErr, ::zovStsFindLenErr (len negative), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsReplaceC_16u(const Zov16u* pSrc, Zov16u* pDst, int len, Zov16u oldVal,
                                         Zov16u newVal);

/** @} */

/** @defgroup threshold Thresholds */
/** @{ */

/**
 * @brief Limits each element x to a level.
 * - ::ZOV_CMP_LESS: x = (level > x) ? level : x
 * - ::ZOV_CMP_GREATER: x = (level < x) ? level : x
 *
 * A NaN element stays as it is.
 * @param pSrcDst array, @p len elements
 * @param len number of elements
 * @param level the limit
 * @param relOp ::ZOV_CMP_LESS or ::ZOV_CMP_GREATER
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsRelationErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsThreshold_32f_I(Zov32f* pSrcDst, int len, Zov32f level, int relOp);

/**
 * @brief Replaces the elements above a level: pDst[i] = x when level >= x, else value, with x =
 * pSrc[i]. A NaN element is replaced, unlike in the in-place form.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @param level the level
 * @param value the replacement, any bits
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsThreshold_GTVal_32f(const Zov32f* pSrc, Zov32f* pDst, int len,
                                                Zov32f level, Zov32f value);

/**
 * @brief Replaces the elements above a level in place: x = value when x > level, else x.
 * A NaN element stays as it is, unlike in the form with two arrays.
 * @param pSrcDst array, @p len elements
 * @param len number of elements
 * @param level the level
 * @param value the replacement, any bits
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsThreshold_GTVal_32f_I(Zov32f* pSrcDst, int len, Zov32f level,
                                                  Zov32f value);

/**
 * @brief Replaces the elements below a level: pDst[i] = x when x >= level, else value, with x =
 * pSrc[i]. A NaN element is replaced, unlike in the in-place form.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @param level the level
 * @param value the replacement, any bits
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsThreshold_LTVal_32f(const Zov32f* pSrc, Zov32f* pDst, int len,
                                                Zov32f level, Zov32f value);

/**
 * @brief Replaces the elements below a level in place: x = value when level > x, else x.
 * A NaN element stays as it is, unlike in the form with two arrays.
 * @param pSrcDst array, @p len elements
 * @param len number of elements
 * @param level the level
 * @param value the replacement, any bits
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsThreshold_LTVal_32f_I(Zov32f* pSrcDst, int len, Zov32f level,
                                                  Zov32f value);

/** @} */

/** @defgroup arithmetic Floating-point arithmetic */
/** @{ */

/**
 * @brief pDst[i] = pSrc1[i] + pSrc2[i].
 * @param pSrc1 first operand, @p len elements
 * @param pSrc2 second operand, @p len elements
 * @param pDst destination, @p len elements; may equal a source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAdd_32f(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst,
                                    int len);

/**
 * @brief pSrcDst[i] += pSrc[i].
 * @param pSrc operand, @p len elements
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAdd_32f_I(const Zov32f* pSrc, Zov32f* pSrcDst, int len);

/**
 * @brief pDst[i] = pSrc[i] + val.
 * A val of 0 copies the source bit for bit.
 * @param pSrc source, @p len elements
 * @param val constant operand
 * @param pDst destination, @p len elements; may equal the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAddC_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len);

/**
 * @brief pSrcDst[i] += val.
 * A val of 0 leaves the array as it is.
 * @param val constant operand
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAddC_32f_I(Zov32f val, Zov32f* pSrcDst, int len);

/**
 * @brief pSrcDst[i] += val.
 * A val of 0 leaves the array as it is.
 * @param val constant operand
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAddC_64f_I(Zov64f val, Zov64f* pSrcDst, int len);

/**
 * @brief pDst[i] = pSrc2[i] - pSrc1[i].
 * The first source is subtracted from the second.
 * @param pSrc1 subtrahend, @p len elements
 * @param pSrc2 minuend, @p len elements
 * @param pDst destination, @p len elements; may equal a source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSub_32f(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst,
                                    int len);

/**
 * @brief pSrcDst[i] -= pSrc[i].
 * @param pSrc operand, @p len elements
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSub_32f_I(const Zov32f* pSrc, Zov32f* pSrcDst, int len);

/**
 * @brief pDst[i] = pSrc[i] - val.
 * A val of 0 copies the source bit for bit.
 * @param pSrc source, @p len elements
 * @param val constant operand
 * @param pDst destination, @p len elements; may equal the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSubC_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len);

/**
 * @brief pSrcDst[i] -= val.
 * A val of 0 leaves the array as it is.
 * @param val constant operand
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSubC_32f_I(Zov32f val, Zov32f* pSrcDst, int len);

/**
 * @brief pDst[i] = val - pSrc[i].
 * @param pSrc source, @p len elements
 * @param val constant operand
 * @param pDst destination, @p len elements; may equal the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSubCRev_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = pSrc1[i] * pSrc2[i].
 * @param pSrc1 first operand, @p len elements
 * @param pSrc2 second operand, @p len elements
 * @param pDst destination, @p len elements; may equal a source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMul_32f(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst,
                                    int len);

/**
 * @brief pSrcDst[i] *= pSrc[i].
 * @param pSrc operand, @p len elements
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMul_32f_I(const Zov32f* pSrc, Zov32f* pSrcDst, int len);

/**
 * @brief pSrcDst[i] *= pSrc[i].
 * @param pSrc operand, @p len elements
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMul_64f_I(const Zov64f* pSrc, Zov64f* pSrcDst, int len);

/**
 * @brief pDst[i] = pSrc1[i] * pSrc2[i], the complex product.
 * With a + bi and c + di: re = ac - bd, im = ad + bc, each product rounded on its own.
 * @param pSrc1 first operand, @p len elements
 * @param pSrc2 second operand, @p len elements
 * @param pDst destination, @p len elements; may equal a source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMul_64fc(const Zov64fc* pSrc1, const Zov64fc* pSrc2, Zov64fc* pDst,
                                     int len);

/**
 * @brief pDst[i] = pSrc[i] * val.
 * A val of 1 copies the source bit for bit. A val of 0 clears the destination, so that infinities
 * and NaN become 0 too.
 * @param pSrc source, @p len elements
 * @param val constant operand
 * @param pDst destination, @p len elements; may equal the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMulC_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len);

/**
 * @brief pSrcDst[i] *= val.
 * A val of 1 leaves the array as it is. A val of 0 clears the array, so that infinities and NaN
 * become 0 too.
 * @param val constant operand
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMulC_32f_I(Zov32f val, Zov32f* pSrcDst, int len);

/**
 * @brief pSrcDst[i] *= val.
 * A val of 1 leaves the array as it is. A val of 0 clears the array, so that infinities and NaN
 * become 0 too.
 * @param val constant operand
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMulC_64f_I(Zov64f val, Zov64f* pSrcDst, int len);

/**
 * @brief pDst[i] = pSrc2[i] / pSrc1[i].
 * The second source is divided by the first. Where the divisor is zero, of either sign: +infinity
 * for a dividend above 0, -infinity for one below 0, otherwise the NaN 0xFFC00000; and the status
 * is ::zovStsDivByZeroWrn. At level 0, and at every level when an array is not aligned to 4 bytes,
 * each quotient is correctly rounded. At levels 1 to 6 some quotients come from the reciprocal
 * approximation of the processor with a refinement, within 2.5 units in the last place; where it
 * would be worse, the exact division runs.
 * @param pSrc1 divisor, @p len elements
 * @param pSrc2 dividend, @p len elements
 * @param pDst destination, @p len elements; may equal a source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDivByZeroWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsDiv_32f(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst,
                                    int len);

/**
 * @brief pDst[i] = pSrc[i] * (1 / val).
 * The reciprocal is rounded to binary32 first, so the result may differ from a true division. With
 * the reciprocal 1 or 0 the short cuts of ::Kelo_zovsMulC_32f apply.
 * @param pSrc source, @p len elements
 * @param val divisor
 * @param pDst destination, @p len elements; may equal the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDivByZeroErr (val is 0),
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsDivC_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len);

/**
 * @brief pSrcDst[i] *= 1 / val.
 * The in-place form of ::Kelo_zovsDivC_32f.
 * @param val divisor
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDivByZeroErr (val is 0),
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsDivC_32f_I(Zov32f val, Zov32f* pSrcDst, int len);

/**
 * @brief pDst[i] = val / pSrc[i].
 * Where the divisor is zero, of either sign: +infinity for a val above 0, -infinity for one below
 * 0, otherwise the NaN 0xFFC00000; and the status is ::zovStsDivByZeroWrn.
 * Other quotients are correctly rounded at every level. A val of -0 counts as +0.
 * @param pSrc source, @p len elements
 * @param val dividend
 * @param pDst destination, @p len elements; may equal the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDivByZeroWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsDivCRev_32f(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len);

/**
 * @brief pSrcDst[i] = val / pSrcDst[i].
 * The in-place form of ::Kelo_zovsDivCRev_32f.
 * @param val dividend
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDivByZeroWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsDivCRev_32f_I(Zov32f val, Zov32f* pSrcDst, int len);

/**
 * @brief pDst[i] = pSrc[i] with the sign bit cleared.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAbs_32f(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief The sign bit of each element is cleared.
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAbs_32f_I(Zov32f* pSrcDst, int len);

/**
 * @brief pSrcDst[i] *= pSrcDst[i].
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSqr_32f_I(Zov32f* pSrcDst, int len);

/**
 * @brief pDst[i] = the square root of pSrc[i].
 * -0 gives -0. A negative element gives the NaN 0xFFC00000 and the status ::zovStsSqrtNegArgWrn. At
 * level 0 the root is correctly rounded, and a NaN element gives 0xFFC00000 with the warning too.
 * At levels 1 to 6 the root comes from the reciprocal square root approximation of the processor
 * with one Newton step, within 4 units in the last place, and a NaN element gives that NaN,
 * quieted, without a warning; these levels raise no floating-point exception.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsSqrtNegArgWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSqrt_32f(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = sqrt(re^2 + im^2) of pSrc[i].
 * All steps are in binary32, with no guard against overflow.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; must not overlap the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMagnitude_32fc(const Zov32fc* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = sqrt(re^2 + im^2) of pSrc[i].
 * All steps are in binary64, with no guard against overflow.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; must not overlap the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMagnitude_64fc(const Zov64fc* pSrc, Zov64f* pDst, int len);

/**
 * @brief pDst[i] = sqrt(re^2 + im^2) / 2^scaleFactor of pSrc[i].
 * The result is correctly rounded with ties to even, and saturated to 32767.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; must not overlap the source
 * @param len number of elements
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMagnitude_16sc_Sfs(const Zov16sc* pSrc, Zov16s* pDst, int len,
                                               int scaleFactor);

/**
 * @brief pDst[i] = atan2(im, re) of pSrc[i], in radians.
 * An element of two zeros, of either sign, gives +0.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; must not overlap the source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsPhase_32fc(const Zov32fc* pSrc, Zov32f* pDst, int len);

/** @} */

/** @defgroup conversions Conversions */
/** @{ */

/**
 * @brief pDst[i] = pSrc[i], exact.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsConvert_16s32f(const Zov16s* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = pSrc[i] * 2^-scaleFactor, exact apart from underflow.
 * A scale factor outside -1008 to 1022 acts as the nearest of them. Arrays that overlap are
 * converted element by element, forwards.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsConvert_16s64f_Sfs(const Zov16s* pSrc, Zov64f* pDst, int len,
                                               int scaleFactor);

/**
 * @brief pDst[i] = pSrc[i], exact.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsConvert_32f64f(const Zov32f* pSrc, Zov64f* pDst, int len);

/**
 * @brief pDst[i] = pSrc[i], limited to the finite range of binary32 and rounded.
 * Infinities give the largest finite number of their sign; a NaN stays a NaN. The value is
 * converted and then limited, so that an element beyond the range sets the overflow flag of the
 * thread.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsConvert_64f32f(const Zov64f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = pSrc[i], saturated. Arrays that overlap are converted element by element,
 * forwards.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsConvert_32s16s(const Zov32s* pSrc, Zov16s* pDst, int len);

/**
 * @brief pDst[i] = pSrc[i] * 2^-scaleFactor, limited to 16 bits and then rounded.
 * The factor is formed in binary32 and becomes 0 or infinity for extreme scale factors.
 * ::ZOV_RND_NEAR rounds by the current mode of the thread, which is expected to be to nearest. A
 * NaN, which is also a zero times an infinite factor, gives an unspecified value.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @param rndMode ::ZOV_RND_ZERO, ::ZOV_RND_NEAR; any other value acts as ::ZOV_RND_FINANCIAL
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsConvert_32f16s_Sfs(const Zov32f* pSrc, Zov16s* pDst, int len,
                                               int rndMode, int scaleFactor);

/**
 * @brief pDst[i] = pSrc[i] * 2^-scaleFactor, limited to 16 bits and then rounded.
 * A scale factor outside -1008 to 1022 acts as the nearest of them. ::ZOV_RND_NEAR is to nearest
 * whatever the mode of the thread from level 1 on; the numbers next above one half in magnitude,
 * 0.50000000000000011, give 0. ::ZOV_RND_FINANCIAL adds one half with the sign of the value, in
 * binary64, and truncates: 0.49999999999999994 gives 1. A NaN gives an unspecified value.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @param rndMode ::ZOV_RND_ZERO, ::ZOV_RND_NEAR; any other value acts as ::ZOV_RND_FINANCIAL
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsConvert_64f16s_Sfs(const Zov64f* pSrc, Zov16s* pDst, int len,
                                               int rndMode, int scaleFactor);

/**
 * @brief Separates interleaved channels: pDst[c][i] = pSrc[i * numChannels + c] * k1 + k2.
 * With k1 = 3.0518044e-5 (1/32767.5) and k2 = 1.5259022e-5 (1/65535) in binary32, each operation
 * rounded, the full range of the source maps to the closed range from -1 to 1. When a row overlaps
 * the source, all rows are written element by element, one row after the other.
 * @param pSrc interleaved source, @p numChannels times @p length elements
 * @param ppDst @p numChannels pointers to rows of @p length elements
 * @param numChannels number of channels
 * @param length elements of a channel
 * @return ::zovStsNullPtrErr (pSrc), ::zovStsSizeErr (numChannels or length below 1),
 * ::zovStsNullPtrErr (ppDst or one of its rows; no row is written), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSplitScaled_16s32f_D2L(const Zov16s* pSrc, Zov32f** ppDst,
                                                   int numChannels, int length);

/** @} */

/** @defgroup statistics Sums, means, deviation and extremes */
/** @{ */

/**
 * @brief The sum of the elements times 2^-scaleFactor.
 * The sum is exact, is rounded to nearest with ties to even for a positive scale factor (and is 0
 * above 48), and saturates. A negative scale factor shifts the saturated sum left and saturates
 * again.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pSum receives the sum
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSum_16s32s_Sfs(const Zov16s* pSrc, int len, Zov32s* pSum,
                                           int scaleFactor);

/**
 * @brief The mean of the elements times 2^-scaleFactor.
 * The exact sum is divided once, rounded to nearest with ties to even, and saturated. The mean is 0
 * from a scale factor of 16 on; below -14 it saturates by the sign of the sum.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMean receives the mean
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMean_16s_Sfs(const Zov16s* pSrc, int len, Zov16s* pMean,
                                         int scaleFactor);

/**
 * @brief The mean of the elements times 2^-scaleFactor.
 * With D the division by len rounded half to even: D(sum) for a scale factor of 0; for a positive
 * one up to 32 D(sum) is shifted right with a second rounding half to even; for a negative one from
 * -31 on D(sum * 2^-scaleFactor) where the sum fits in 32 bits, else D(sum) * 2^-scaleFactor,
 * saturated; below, D(sum) saturates by its sign. Scale factors f above 32 are not limited: with
 * m = D(sum) and s = f mod 64, the result is (m + 2^((f-1) mod 32) + (bit s of m) - 1) >> s, cut to
 * 32 bits.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMean receives the mean
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMean_32s_Sfs(const Zov32s* pSrc, int len, Zov32s* pMean,
                                         int scaleFactor);

/**
 * @brief The mean of the elements: their sum in binary64, divided by len, rounded once to binary32.
 * The grouping of the sum differs between levels.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMean receives the mean
 * @param hint accepted and not read
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMean_32f(const Zov32f* pSrc, int len, Zov32f* pMean, int hint);

/**
 * @brief The mean of the elements in binary64. The grouping of the sum differs between levels.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMean receives the mean
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMean_64f(const Zov64f* pSrc, int len, Zov64f* pMean);

/**
 * @brief The sample standard deviation, in one pass.
 * With S the sum of x, Q the sum of x^2 and n = len: sqrt((n Q - S^2) / ((n - 1) n)) when n Q - S^2
 * is above 0, and 0 otherwise, so that the result is never a NaN. Sums are in binary64; from level
 * 1 on a hint of 1 keeps those of each 1024 elements in binary32, unless the source is not aligned
 * to 4 bytes. Binary32 may overflow (elements of 1e20 give an infinity) and loses a small deviation
 * beside a large mean (10000 +- 1 gives 0.09). The grouping of the sums differs between levels.
 * @param pSrc source, @p len elements
 * @param len number of elements, 2 or more
 * @param pStdDev receives the deviation
 * @param hint 1 for speed; any other value for accuracy
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 2), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsStdDev_32f(const Zov32f* pSrc, int len, Zov32f* pStdDev, int hint);

/**
 * @brief The largest element.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMax receives the value
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMax_16s(const Zov16s* pSrc, int len, Zov16s* pMax);

/**
 * @brief The largest element.
 * A NaN at element 0 stays; any other NaN is passed over. Of zeros of both signs the first counts.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMax receives the value
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMax_32f(const Zov32f* pSrc, int len, Zov32f* pMax);

/**
 * @brief The largest element.
 * A NaN at element 0 stays; any other NaN is passed over. Of zeros of both signs the first counts.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMax receives the value
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMax_64f(const Zov64f* pSrc, int len, Zov64f* pMax);

/**
 * @brief The smallest element.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMin receives the value
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMin_16s(const Zov16s* pSrc, int len, Zov16s* pMin);

/**
 * @brief The smallest element.
 * A NaN at element 0 stays; any other NaN is passed over. Of zeros of both signs the first counts.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMin receives the value
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMin_32f(const Zov32f* pSrc, int len, Zov32f* pMin);

/**
 * @brief The smallest and the largest element.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMin receives the smallest
 * @param pMax receives the largest
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMinMax_16s(const Zov16s* pSrc, int len, Zov16s* pMin, Zov16s* pMax);

/**
 * @brief The smallest and the largest element.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMin receives the smallest
 * @param pMax receives the largest
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMinMax_16u(const Zov16u* pSrc, int len, Zov16u* pMin, Zov16u* pMax);

/**
 * @brief The smallest and the largest element.
 * A NaN at element 0 stays; any other NaN is passed over. Of zeros of both signs the first counts.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMin receives the smallest
 * @param pMax receives the largest
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMinMax_32f(const Zov32f* pSrc, int len, Zov32f* pMin, Zov32f* pMax);

/**
 * @brief The largest element and the lowest index at which it stands.
 * A NaN at element 0 gives that NaN at index 0; any other NaN is passed over. Of zeros of both
 * signs the first counts.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMax receives the value
 * @param pIndx receives the index; may be null
 * @return ::zovStsNullPtrErr (pSrc or pMax), ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMaxIndx_32f(const Zov32f* pSrc, int len, Zov32f* pMax, int* pIndx);

/**
 * @brief The smallest element and the lowest index at which it stands.
 * A NaN at element 0 gives that NaN at index 0; any other NaN is passed over. Of zeros of both
 * signs the first counts.
 * @param pSrc source, @p len elements
 * @param len number of elements
 * @param pMin receives the value
 * @param pIndx receives the index; may be null
 * @return ::zovStsNullPtrErr (pSrc or pMin), ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMinIndx_32f(const Zov32f* pSrc, int len, Zov32f* pMin, int* pIndx);

/**
 * @brief pSrcDst[i] = pSrc[i] > pSrcDst[i] ? pSrc[i] : pSrcDst[i], the larger of the two.
 * A NaN in either array leaves pSrcDst[i] as it is.
 * @param pSrc operand, @p len elements
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMaxEvery_32f_I(const Zov32f* pSrc, Zov32f* pSrcDst, int len);

/**
 * @brief pSrcDst[i] = pSrc[i] < pSrcDst[i] ? pSrc[i] : pSrcDst[i], the smaller of the two.
 * A NaN in either array leaves pSrcDst[i] as it is.
 * @param pSrc operand, @p len elements
 * @param pSrcDst array changed in place, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMinEvery_32f_I(const Zov32f* pSrc, Zov32f* pSrcDst, int len);

/**
 * @brief pDst[i] = (pSrc[i] - vSub) * (1 / vDiv), each step rounded.
 * Arrays that overlap partly are processed element by element, forwards.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @param vSub offset
 * @param vDiv divisor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDivByZeroErr (vDiv below the
 * smallest normal number in magnitude), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsNormalize_32f(const Zov32f* pSrc, Zov32f* pDst, int len, Zov32f vSub,
                                          Zov32f vDiv);

/**
 * @brief pDst[i] = (pSrc[i] - vSub) * (1 / vDiv), each step rounded.
 * Arrays that overlap partly are processed element by element, forwards.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements
 * @param len number of elements
 * @param vSub offset
 * @param vDiv divisor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDivByZeroErr (vDiv below the
 * smallest normal number in magnitude), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsNormalize_64f(const Zov64f* pSrc, Zov64f* pDst, int len, Zov64f vSub,
                                          Zov64f vDiv);

/** @} */

/** @defgroup maths Vector maths at stated accuracies */
/** @{
 *
 * The class ends the name: at least 11, 21 or 24 correct significant bits, which is a relative
 * error below 2^-11 or 2^-21, or an error below one unit in the last place, over the whole domain.
 * Results of different levels may differ within the class; at one level a result depends on its
 * element only, except that Kelo_zovsExp_32f_A11 and Kelo_zovsExp_32f at AVX and AVX2 may take
 * elements at the end of an array, or near one outside the ordinary range, by another formula of
 * the class.
 *
 * A NaN gives a quiet NaN, except as told at the power functions. An element with a range problem
 * gets the value told at the function, and a positive status at the end tells the problem of the
 * last such element in the order of the array. For the time of a call the floating-point exceptions
 * are masked; at its end the masks are as they were, and no exception flag of the call is left.
 * Flags that were set before the call may be lost: those of the x87 unit always, those of MXCSR
 * other than inexact when all of its exceptions were masked. The rounding mode must be to nearest.
 */

/**
 * @brief pDst[i] = arc cosine of pSrc[i], from 0 to pi.
 * A magnitude above 1 gives a NaN and ::zovStsDomainWrn.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDomainWrn,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAcos_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = arc sine of pSrc[i], from -pi/2 to pi/2.
 * A magnitude above 1 gives a NaN and ::zovStsDomainWrn.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDomainWrn,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAsin_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = arc tangent of pSrc[i]; an infinity gives pi/2 with its sign.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAtan_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = arc tangent of pSrc1[i] / pSrc2[i] in its quadrant, from -pi to pi.
 * A non-zero ordinate over a zero gives pi/2, a zero ordinate and an abscissa with its sign bit set
 * give pi, both with the sign of the ordinate; a zero ordinate and an abscissa with a clear sign
 * bit give the ordinate.
 * @param pSrc1 ordinates, @p len elements
 * @param pSrc2 abscissas, @p len elements
 * @param pDst destination, @p len elements; may equal a source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAtan2_32f_A11(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst,
                                          int len);

/**
 * @brief pDst[i] = the smallest integer that is not below pSrc[i].
 * The sign of a zero result is that of the element: the ceiling of -0.5 is -0.
 * The length is tested before the pointers.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsSizeErr (len below 1), ::zovStsNullPtrErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsCeil_32f(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = cosine of pSrc[i] radians.
 * An infinity gives a NaN and ::zovStsDomainWrn.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDomainWrn,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsCos_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = hyperbolic cosine of pSrc[i].
 * A magnitude of 89.415993 or more, an infinity included, gives an infinity and
 * ::zovStsOverflowWrn.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsOverflowWrn,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsCosh_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = e to the power pSrc[i].
 * From 88.722839 on the result is infinite, with ::zovStsOverflowWrn for a finite element. From
 * -87.3365478515625 down it is denormal or zero, with ::zovStsUnderflowWrn for a finite element;
 * zero below -103.27894, at AVX and AVX2 below -103.97208.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsOverflowWrn,
 * ::zovStsUnderflowWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsExp_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = the largest integer that is not above pSrc[i].
 * The sign of a zero result is that of the element.
 * The length is tested before the pointers.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsSizeErr (len below 1), ::zovStsNullPtrErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFloor_32f(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = natural logarithm of pSrc[i].
 * A zero of either sign gives negative infinity and ::zovStsSingularityWrn, a negative element a
 * NaN and ::zovStsDomainWrn.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsSingularityWrn,
 * ::zovStsDomainWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsLn_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = common logarithm of pSrc[i].
 * A zero of either sign gives negative infinity and ::zovStsSingularityWrn, a negative element a
 * NaN and ::zovStsDomainWrn.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsSingularityWrn,
 * ::zovStsDomainWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsLog10_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = common logarithm of pSrc[i].
 * A zero of either sign gives negative infinity and ::zovStsSingularityWrn, a negative element a
 * NaN and ::zovStsDomainWrn.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsSingularityWrn,
 * ::zovStsDomainWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsLog10_32f_A21(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = pSrc1[i] to the power pSrc2[i].
 * A negative base with an exponent that is no integer gives a NaN and ::zovStsDomainWrn; other
 * special cases are those of the C function pow.
 * @param pSrc1 bases, @p len elements
 * @param pSrc2 exponents, @p len elements
 * @param pDst destination, @p len elements; may equal a source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDomainWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsPow_32f_A11(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst,
                                        int len);

/**
 * @brief pDst[i] = pSrc1[i] to the power pSrc2[i].
 * A negative base with an exponent that is no integer gives a NaN and ::zovStsDomainWrn; other
 * special cases are those of the C function pow.
 * @param pSrc1 bases, @p len elements
 * @param pSrc2 exponents, @p len elements
 * @param pDst destination, @p len elements; may equal a source
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDomainWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsPow_32f_A24(const Zov32f* pSrc1, const Zov32f* pSrc2, Zov32f* pDst,
                                        int len);

/**
 * @brief pDst[i] = pSrc[i] to the power @p val; the special cases of ::Kelo_zovsPow_32f_A11.
 * @param pSrc bases, @p len elements
 * @param val exponent
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDomainWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsPowx_32f_A11(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = pSrc[i] to the power @p val; the special cases of ::Kelo_zovsPow_32f_A24.
 * @param pSrc bases, @p len elements
 * @param val exponent
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDomainWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsPowx_32f_A24(const Zov32f* pSrc, Zov32f val, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = sine of pSrc[i] radians.
 * An infinity gives a NaN and ::zovStsDomainWrn.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDomainWrn,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSin_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = hyperbolic sine of pSrc[i].
 * A magnitude of 89.415993 or more, an infinity included, gives an infinity of the same sign and
 * ::zovStsOverflowWrn.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsOverflowWrn,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSinh_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = tangent of pSrc[i] radians.
 * An infinity gives a NaN and ::zovStsDomainWrn.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsDomainWrn,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsTan_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = hyperbolic tangent of pSrc[i].
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsTanh_32f_A11(const Zov32f* pSrc, Zov32f* pDst, int len);

/** @} */

/** @defgroup elementary Elementary functions without an accuracy class */
/** @{ */

/**
 * @brief pDst[i] = natural logarithm of pSrc[i].
 * From level 1 on it has the accuracy and the special values of a class of 21 bits: a zero of
 * either sign gives negative infinity and ::zovStsLnZeroArgWrn, a negative element a NaN and
 * ::zovStsLnNegArgWrn, and the last bad element decides the status. At level 0 it is the logarithm
 * in double precision, rounded; any element with its sign bit set, -0 too, gives the NaN 0xFFC00000
 * and counts as negative, and the first bad element decides.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsLnZeroArgWrn,
 * ::zovStsLnNegArgWrn, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsLn_32f(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = e to the power pSrc[i].
 * From level 1 on it has the accuracy and the special values of a class of 21 bits. At level 0 it
 * is computed in double precision and rounded; a denormal element gives 1, and -87.33655 and below
 * give 0. A NaN gives a quiet NaN from level 1 on. At level 0 a positive quiet NaN comes back as it
 * is, a negative one as 0xFFC00000, and a signalling NaN counts as the infinity of its sign.
 * Overflow and underflow raise no warning.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsExp_32f(const Zov32f* pSrc, Zov32f* pDst, int len);

/**
 * @brief pDst[i] = arc tangent of pSrc[i].
 * At level 0 it is computed in double precision and rounded. From level 1 on the error is below 1.4
 * units in the last place.
 * An infinity gives pi/2 with its sign, and so does a signalling NaN; a quiet NaN gives 0x7FC00000
 * or, when negative, 0xFFC00000. A zero of either sign gives +0.
 * @param pSrc source, @p len elements
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsArctan_32f(const Zov32f* pSrc, Zov32f* pDst, int len);

/** @} */

/**
 * @defgroup scaled Scaled integer arithmetic
 *
 * A result is formed exactly, multiplied by 2^-scaleFactor with rounding to nearest, ties to even,
 * and limited to the range of its type. Saturation raises no warning. Every scale factor is valid:
 * a large one gives 0, a very negative one a limit of the range for all that is not 0.
 */
/** @{ */

/**
 * @brief pDst[i] = (pSrc1[i] + pSrc2[i]) * 2^-scaleFactor, saturated.
 * Arrays that overlap in part are taken element by element from the first on.
 * @param pSrc1 first operand, @p len elements
 * @param pSrc2 second operand, @p len elements
 * @param pDst destination, @p len elements; may equal a source
 * @param len number of elements
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAdd_16s_Sfs(const Zov16s* pSrc1, const Zov16s* pSrc2, Zov16s* pDst,
                                        int len, int scaleFactor);

/**
 * @brief pSrcDst[i] = pSrcDst[i] + pSrc[i], saturated.
 * @param pSrc second operand, @p len elements
 * @param pSrcDst first operand and destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAdd_16s_I(const Zov16s* pSrc, Zov16s* pSrcDst, int len);

/**
 * @brief pSrcDst[i] = (pSrcDst[i] + pSrc[i]) * 2^-scaleFactor, saturated.
 * Arrays that overlap in part are taken element by element from the first on.
 * @param pSrc second operand, @p len elements
 * @param pSrcDst first operand and destination, @p len elements
 * @param len number of elements
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAdd_16u_ISfs(const Zov16u* pSrc, Zov16u* pSrcDst, int len,
                                         int scaleFactor);

/**
 * @brief pSrcDst[i] = (pSrcDst[i] + val) * 2^-scaleFactor, saturated.
 * Below a scale factor of -15 a @p val other than 0 gives 65535 everywhere.
 * @param val second operand
 * @param pSrcDst first operand and destination, @p len elements
 * @param len number of elements
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAddC_16u_ISfs(Zov16u val, Zov16u* pSrcDst, int len, int scaleFactor);

/**
 * @brief pSrcDst[i] = max(pSrcDst[i] - val, 0) * 2^-scaleFactor, saturated.
 * @param val second operand
 * @param pSrcDst first operand and destination, @p len elements
 * @param len number of elements
 * @param scaleFactor exponent of the scale 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSubC_16u_ISfs(Zov16u val, Zov16u* pSrcDst, int len, int scaleFactor);

/**
 * @brief pSrcDst[i] = pSrcDst[i] - val, saturated.
 * @param val second operand
 * @param pSrcDst first operand and destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsSubC_16s_I(Zov16s val, Zov16s* pSrcDst, int len);

/**
 * @brief pSrcDst[i] = pSrcDst[i] * val, saturated.
 * @param val second operand
 * @param pSrcDst first operand and destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsMulC_16s_I(Zov16s val, Zov16s* pSrcDst, int len);

/**
 * @brief pSrcDst[i] = |pSrcDst[i]|; the magnitude of -2^31 saturates to 2^31 - 1.
 * @param pSrcDst source and destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAbs_32s_I(Zov32s* pSrcDst, int len);

/** @} */

/** @defgroup bits Bit operations */
/** @{ */

/**
 * @brief pDst[i] = pSrc[i] AND val.
 * Arrays that overlap in part are taken element by element from the first on.
 * @param pSrc source, @p len elements
 * @param val second operand
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAndC_16u(const Zov16u* pSrc, Zov16u val, Zov16u* pDst, int len);

/**
 * @brief pSrcDst[i] = pSrcDst[i] AND val.
 * @param val second operand
 * @param pSrcDst first operand and destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsAndC_16u_I(Zov16u val, Zov16u* pSrcDst, int len);

/**
 * @brief pSrcDst[i] = pSrcDst[i] OR pSrc[i].
 * Arrays that overlap in part are taken element by element from the first on.
 * @param pSrc second operand, @p len elements
 * @param pSrcDst first operand and destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsOr_16u_I(const Zov16u* pSrc, Zov16u* pSrcDst, int len);

/**
 * @brief pDst[i] = pSrc[i] << val, in 16 bits; 0 for a count of 16 or more.
 * @param pSrc source, @p len elements
 * @param val count
 * @param pDst destination, @p len elements; may equal @p pSrc
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsShiftErr (val negative),
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsLShiftC_16u(const Zov16u* pSrc, int val, Zov16u* pDst, int len);

/**
 * @brief pSrcDst[i] = pSrcDst[i] << val, in 16 bits; 0 for a count of 16 or more.
 * @param val count
 * @param pSrcDst first operand and destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsShiftErr (val negative),
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsLShiftC_16u_I(int val, Zov16u* pSrcDst, int len);

/**
 * @brief pSrcDst[i] = pSrcDst[i] >> val; 0 for a count of 16 or more.
 * @param val count
 * @param pSrcDst first operand and destination, @p len elements
 * @param len number of elements
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 1), ::zovStsShiftErr (val negative),
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsRShiftC_16u_I(int val, Zov16u* pSrcDst, int len);

/** @} */

/**
 * @defgroup resize Image resize
 *
 * The caller asks for the size of a work buffer, allocates it, and resizes; one buffer serves any
 * number of calls with the same rectangles and method.
 *
 * On each axis a point at source coordinate s lands at destination coordinate s * factor + shift,
 * and pixel x covers the coordinates from x to x + 1. So a whole image is resized to a whole image
 * by the factor destination length / source length and the shift 0. The operation writes the
 * destination pixels whose centres lie both in the mapped source rectangle and in the destination
 * rectangle; with an edge flag, the pixels that lie in both completely. A distance of 1e-10 pixels
 * counts as none.
 *
 * A source rectangle is cut to the image at its far sides. It limits what is written, not what is
 * read: taps may lie outside it, but never outside the image, at whose edges they are clamped. An
 * image with a side below 6 is resized by ::ZOV_INTERP_CUBIC in place of ::ZOV_INTERP_LANCZOS, and
 * one with a side below 4 by ::ZOV_INTERP_LINEAR in place of any cubic.
 *
 * An image pointer points at pixel (0, 0) of the whole image. Steps are not checked and may be
 * negative. Source and destination must not overlap.
 *
 * The sample of destination pixel x lies at source index (x + 0.5 - shift) / factor - 0.5 = i + t
 * with 0 <= t < 1. ::ZOV_INTERP_NEAREST takes the source pixel (x + 0.5 - shift) / factor - 1e-10
 * without its fraction, so that a centre on the edge of two pixels goes to the lower one. By the
 * others each axis weighs 2 source pixels (linear), 4 (the cubics, from i - 1 on) or 6 (Lanczos,
 * from i - 2 on) by K(distance); the result is the sum over both axes. With v the distance in
 * source pixels, and 0 from the end of the last piece on:
 * - ::ZOV_INTERP_LINEAR: 1 - v
 * - ::ZOV_INTERP_CUBIC: v^3/2 - v^2 - v/2 + 1, then -v^3/6 + v^2 - 11v/6 + 1 from 1 to 2
 * - ::ZOV_INTERP_CUBIC_BSPLINE: v^3/2 - v^2 + 2/3, then -v^3/6 + v^2 - 2v + 4/3
 * - ::ZOV_INTERP_CUBIC_CATMULLROM: 3v^3/2 - 5v^2/2 + 1, then -v^3/2 + 5v^2/2 - 4v + 2
 * - ::ZOV_INTERP_CUBIC_MIXED: 0.95v^3 - 1.7v^2 + 5/6, then -23v^3/60 + 2v^2 - 3.4v + 28/15
 * - ::ZOV_INTERP_LANCZOS: sinc(v) sinc(v / 3) up to 3, with sinc(v) = sin(pi v) / (pi v); the six
 *   weights are divided by their sum. Images of `8u` and `32f` take the kernel from a table at
 *   hundredths, interpolated linearly, which is within 4.6e-5 of it.
 *
 * By the cubics and Lanczos, 8-bit images are computed in binary32 and rounded once, to the nearest
 * and limited to 0..255, so that a value is within 0.502 of the exact one (0.6 by Lanczos). Exact
 * halves go up at level 0 and for pixels whose taps reach past the image, to even elsewhere.
 * Floating-point images keep values outside the range of the source. Results of `32f` are within
 * 1.2e-5 of the largest magnitude in the source (4e-4 by Lanczos), those of `64f` within 2.3e-14.
 * The last bits may differ between levels: level 6 fuses multiply and add of `32f` images, and the
 * weights of Lanczos differ between level 0 and the others in the last place.
 *
 * ::ZOV_INTERP_AREA takes factors up to 1. A destination pixel is the mean of the source under it,
 * each source pixel by its share; the outermost pixels are repeated beyond the image. If the first
 * destination pixel would start on the edge of a source pixel before the image (as by the factor
 * 0.5 and the shift 0.5), all of them start one source pixel earlier. Where the inverse factors are
 * whole numbers of pixels and the first pixel starts on a pixel edge, each within 1e-7, sums of
 * 8-bit pixels are exact, and the mean, rounded to the nearest, is too up to the last place of the
 * product with the factors. Otherwise sums of `8u` and `32f` are rounded to binary32 after each
 * pixel, and shares of 1e-7 or less are dropped. An inverse factor less than 1e-7 below a whole
 * number counts as one with a remainder, so that a column may be counted twice; dividing a length
 * by a whole number of pixels gives such factors rarely. Levels differ only in that level 6 rounds
 * the product and the sum of an 8-bit result once.
 *
 * ::ZOV_RESIZE_ANTIALIAS widens the kernel of linear, the cubics and Lanczos by 1 / factor on an
 * axis that reduces: with c = (x + 0.5 - shift) / factor, the source pixels j whose distance |c -
 * j| is within the widened radius are weighed by K(|c - j| * factor) (on an axis that enlarges by
 * K(|c - j|)), divided by the sum of the weights. Positions are counted without the half pixel
 * above, so the picture stands half a source pixel further on. Rows are summed in binary64 and
 * rounded to binary32 (`64f`: kept), columns are summed in that precision; 8-bit images are then
 * rounded with exact halves going up. Results are the same at every level.
 * ::ZOV_INTERP_NEAREST and ::ZOV_INTERP_AREA ignore the flag.
 *
 * With an edge flag, the ring of one pixel around the written rectangle follows, inside the
 * destination rectangle. A ring pixel of which the image covers the share a, rounded to binary32,
 * and whose nearest written pixel is p becomes d + (p - d) * a with ::ZOV_EDGE_BLEND, d being what
 * it held, and p * a with ::ZOV_EDGE_FADE. The share of a corner is the product of its sides'
 * shares. `8u` values are formed in binary32 and rounded to the nearest.
 */
/** @{ */

/**
 * @brief Size of the work buffer that a resize by the `8u` and `32f` operations needs.
 * Methods and flags are those of ::ZovInterpolation and the three resize flags, of which at most
 * one may be set. The size covers an alignment allowance of 16 bytes at levels 0 to 4, 32 bytes at
 * levels 5 and 6; the buffer itself needs no alignment.
 * @param srcRoi source rectangle of the resize
 * @param dstRoi destination rectangle of the resize
 * @param numChannels 1, 3 or 4
 * @param interpolation method and flags
 * @param bufferSize receives the size in bytes, 0 when it would not fit; left as it is on the other
 * errors
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (a rectangle with a negative corner or an extent
 * below 1), ::zovStsNumChannelsErr, ::zovStsInterpolationErr, ::zovStsSizeErr (2^31 bytes or more),
 * ::zovStsAntialiasIgnoredWrn (the antialias flag with the nearest or area method; the size is
 * valid), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zoviResizeGetBufSize(ZovImageRect srcRoi, ZovImageRect dstRoi,
                                             int numChannels, int interpolation, int* bufferSize);

/**
 * @brief Size of the work buffer that a resize by the `64f` operation needs.
 * Methods and flags are those of ::ZovInterpolation and the three resize flags, of which at most
 * one may be set. The size covers an alignment allowance of 16 bytes at levels 0 to 4, 32 bytes at
 * levels 5 and 6; the buffer itself needs no alignment.
 * @param srcRoi source rectangle of the resize
 * @param dstRoi destination rectangle of the resize
 * @param numChannels 1, 3 or 4
 * @param interpolation method and flags
 * @param bufferSize receives the size in bytes, 0 when it would not fit; left as it is on the other
 * errors
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (a rectangle with a negative corner or an extent
 * below 1), ::zovStsNumChannelsErr, ::zovStsInterpolationErr, ::zovStsSizeErr (2^31 bytes or more),
 * ::zovStsAntialiasIgnoredWrn (the antialias flag with the nearest or area method; the size is
 * valid), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zoviResizeGetBufSize_64f(ZovImageRect srcRoi, ZovImageRect dstRoi,
                                                 int numChannels, int interpolation,
                                                 int* bufferSize);

/**
 * @brief Resizes an image of one channel of 8 bits.
 * By ::ZOV_INTERP_LINEAR each value is within 0.54 of the exact one, and the same at every level.
 * @param src source image, pixel (0, 0)
 * @param srcSize extent of the whole source image
 * @param srcStep distance of source rows in bytes, of either sign
 * @param srcRoi source rectangle to be mapped
 * @param dst destination image, pixel (0, 0)
 * @param dstStep distance of destination rows in bytes, of either sign
 * @param dstRoi destination rectangle, the limit of what is written
 * @param xFactor horizontal scale; above 1 enlarges
 * @param yFactor vertical scale
 * @param xShift horizontal shift in destination pixels
 * @param yShift vertical shift in destination pixels
 * @param interpolation method of ::ZovInterpolation, with at most one of the three resize flags
 * @param workBuffer scratch memory of the size that the matching buffer-size operation reports
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (the image or a rectangle with an extent below 1, or
 * a rectangle with a negative corner), ::zovStsResizeFactorErr (a factor of 0 or less),
 * ::zovStsInterpolationErr (an unknown method, or two flags), ::zovStsResizeFactorErr (a factor
 * above 1 with ::ZOV_INTERP_AREA), ::zovStsResizeRoiWrn (the source rectangle lies outside the
 * image; nothing is written),
 * ::zovStsNoOperationWrn (no pixel is covered; nothing is written), ::zovStsAntialiasIgnoredWrn
 * (the antialias flag with the nearest or area method; the image is resized), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zoviResizeSqrPixel_8u_C1R(const Zov8u* src, ZovImageSize srcSize,
                                                  int srcStep, ZovImageRect srcRoi, Zov8u* dst,
                                                  int dstStep, ZovImageRect dstRoi, double xFactor,
                                                  double yFactor, double xShift, double yShift,
                                                  int interpolation, Zov8u* workBuffer);

/**
 * @brief Resizes an image of four interleaved channels of 8 bits.
 * By ::ZOV_INTERP_LINEAR each value is within 0.54 of the exact one, and the same at every level.
 * @param src source image, pixel (0, 0)
 * @param srcSize extent of the whole source image
 * @param srcStep distance of source rows in bytes, of either sign
 * @param srcRoi source rectangle to be mapped
 * @param dst destination image, pixel (0, 0)
 * @param dstStep distance of destination rows in bytes, of either sign
 * @param dstRoi destination rectangle, the limit of what is written
 * @param xFactor horizontal scale; above 1 enlarges
 * @param yFactor vertical scale
 * @param xShift horizontal shift in destination pixels
 * @param yShift vertical shift in destination pixels
 * @param interpolation method of ::ZovInterpolation, with at most one of the three resize flags
 * @param workBuffer scratch memory of the size that the matching buffer-size operation reports
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (the image or a rectangle with an extent below 1, or
 * a rectangle with a negative corner), ::zovStsResizeFactorErr (a factor of 0 or less),
 * ::zovStsInterpolationErr (an unknown method, or two flags), ::zovStsResizeFactorErr (a factor
 * above 1 with ::ZOV_INTERP_AREA), ::zovStsResizeRoiWrn (the source rectangle lies outside the
 * image; nothing is written),
 * ::zovStsNoOperationWrn (no pixel is covered; nothing is written), ::zovStsAntialiasIgnoredWrn
 * (the antialias flag with the nearest or area method; the image is resized), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zoviResizeSqrPixel_8u_C4R(const Zov8u* src, ZovImageSize srcSize,
                                                  int srcStep, ZovImageRect srcRoi, Zov8u* dst,
                                                  int dstStep, ZovImageRect dstRoi, double xFactor,
                                                  double yFactor, double xShift, double yShift,
                                                  int interpolation, Zov8u* workBuffer);

/**
 * @brief Resizes an image of one channel of binary32.
 * By ::ZOV_INTERP_LINEAR the last bit may differ at level 6, which fuses multiply and add.
 * @param src source image, pixel (0, 0)
 * @param srcSize extent of the whole source image
 * @param srcStep distance of source rows in bytes, of either sign
 * @param srcRoi source rectangle to be mapped
 * @param dst destination image, pixel (0, 0)
 * @param dstStep distance of destination rows in bytes, of either sign
 * @param dstRoi destination rectangle, the limit of what is written
 * @param xFactor horizontal scale; above 1 enlarges
 * @param yFactor vertical scale
 * @param xShift horizontal shift in destination pixels
 * @param yShift vertical shift in destination pixels
 * @param interpolation method of ::ZovInterpolation, with at most one of the three resize flags
 * @param workBuffer scratch memory of the size that the matching buffer-size operation reports
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (the image or a rectangle with an extent below 1, or
 * a rectangle with a negative corner), ::zovStsResizeFactorErr (a factor of 0 or less),
 * ::zovStsInterpolationErr (an unknown method, or two flags), ::zovStsResizeFactorErr (a factor
 * above 1 with ::ZOV_INTERP_AREA), ::zovStsResizeRoiWrn (the source rectangle lies outside the
 * image; nothing is written),
 * ::zovStsNoOperationWrn (no pixel is covered; nothing is written), ::zovStsAntialiasIgnoredWrn
 * (the antialias flag with the nearest or area method; the image is resized), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zoviResizeSqrPixel_32f_C1R(const Zov32f* src, ZovImageSize srcSize,
                                                   int srcStep, ZovImageRect srcRoi, Zov32f* dst,
                                                   int dstStep, ZovImageRect dstRoi, double xFactor,
                                                   double yFactor, double xShift, double yShift,
                                                   int interpolation, Zov8u* workBuffer);

/**
 * @brief Resizes an image of one channel of binary64.
 * @param src source image, pixel (0, 0)
 * @param srcSize extent of the whole source image
 * @param srcStep distance of source rows in bytes, of either sign
 * @param srcRoi source rectangle to be mapped
 * @param dst destination image, pixel (0, 0)
 * @param dstStep distance of destination rows in bytes, of either sign
 * @param dstRoi destination rectangle, the limit of what is written
 * @param xFactor horizontal scale; above 1 enlarges
 * @param yFactor vertical scale
 * @param xShift horizontal shift in destination pixels
 * @param yShift vertical shift in destination pixels
 * @param interpolation method of ::ZovInterpolation, with at most one of the three resize flags
 * @param workBuffer scratch memory of the size that the matching buffer-size operation reports
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (the image or a rectangle with an extent below 1, or
 * a rectangle with a negative corner), ::zovStsResizeFactorErr (a factor of 0 or less),
 * ::zovStsInterpolationErr (an unknown method, or two flags), ::zovStsResizeFactorErr (a factor
 * above 1 with ::ZOV_INTERP_AREA), ::zovStsResizeRoiWrn (the source rectangle lies outside the
 * image; nothing is written),
 * ::zovStsNoOperationWrn (no pixel is covered; nothing is written), ::zovStsAntialiasIgnoredWrn
 * (the antialias flag with the nearest or area method; the image is resized), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zoviResizeSqrPixel_64f_C1R(const Zov64f* src, ZovImageSize srcSize,
                                                   int srcStep, ZovImageRect srcRoi, Zov64f* dst,
                                                   int dstStep, ZovImageRect dstRoi, double xFactor,
                                                   double yFactor, double xShift, double yShift,
                                                   int interpolation, Zov8u* workBuffer);

/**
 * @brief Resizes an image of one channel of 8 bits without shifts or a work buffer.
 * The same as ::Kelo_zoviResizeSqrPixel_8u_C1R with shifts of 0 and a destination rectangle of
 * the size @p dstRoiSize at the corner of @p srcRoi, whatever the factors. The work buffer is
 * allocated for the call; when there is no memory, nothing is written and the status is
 * ::zovStsNoErr.
 * @param src source image, pixel (0, 0)
 * @param srcSize extent of the whole source image
 * @param srcStep distance of source rows in bytes, of either sign
 * @param srcRoi source rectangle to be mapped
 * @param dst destination image, pixel (0, 0)
 * @param dstStep distance of destination rows in bytes, of either sign
 * @param dstRoiSize size of the destination rectangle
 * @param xFactor horizontal scale; above 1 enlarges
 * @param yFactor vertical scale
 * @param interpolation method of ::ZovInterpolation, with at most one of the three resize flags
 * @return first, with nothing written, any status of ::Kelo_zoviResizeGetBufSize but ::zovStsNoErr,
 * ::zovStsAntialiasIgnoredWrn included; then the status of ::Kelo_zoviResizeSqrPixel_8u_C1R
 */
KELO_API ZovStatus Kelo_zoviResize_8u_C1R(const Zov8u* src, ZovImageSize srcSize, int srcStep,
                                          ZovImageRect srcRoi, Zov8u* dst, int dstStep,
                                          ZovImageSize dstRoiSize, double xFactor, double yFactor,
                                          int interpolation);

/**
 * @brief Resizes an image of four interleaved channels of 8 bits without shifts or a work buffer.
 * The same as ::Kelo_zoviResizeSqrPixel_8u_C4R with shifts of 0 and a destination rectangle of
 * the size @p dstRoiSize at the corner of @p srcRoi, whatever the factors. The work buffer is
 * allocated for the call; when there is no memory, nothing is written and the status is
 * ::zovStsNoErr.
 * @param src source image, pixel (0, 0)
 * @param srcSize extent of the whole source image
 * @param srcStep distance of source rows in bytes, of either sign
 * @param srcRoi source rectangle to be mapped
 * @param dst destination image, pixel (0, 0)
 * @param dstStep distance of destination rows in bytes, of either sign
 * @param dstRoiSize size of the destination rectangle
 * @param xFactor horizontal scale; above 1 enlarges
 * @param yFactor vertical scale
 * @param interpolation method of ::ZovInterpolation, with at most one of the three resize flags
 * @return first, with nothing written, any status of ::Kelo_zoviResizeGetBufSize but ::zovStsNoErr,
 * ::zovStsAntialiasIgnoredWrn included; then the status of ::Kelo_zoviResizeSqrPixel_8u_C4R
 */
KELO_API ZovStatus Kelo_zoviResize_8u_C4R(const Zov8u* src, ZovImageSize srcSize, int srcStep,
                                          ZovImageRect srcRoi, Zov8u* dst, int dstStep,
                                          ZovImageSize dstRoiSize, double xFactor, double yFactor,
                                          int interpolation);

/**
 * @brief Resizes an image of one channel of binary32 without shifts or a work buffer.
 * The same as ::Kelo_zoviResizeSqrPixel_32f_C1R with shifts of 0 and a destination rectangle of
 * the size @p dstRoiSize at the corner of @p srcRoi, whatever the factors. The work buffer is
 * allocated for the call; when there is no memory, nothing is written and the status is
 * ::zovStsNoErr.
 * @param src source image, pixel (0, 0)
 * @param srcSize extent of the whole source image
 * @param srcStep distance of source rows in bytes, of either sign
 * @param srcRoi source rectangle to be mapped
 * @param dst destination image, pixel (0, 0)
 * @param dstStep distance of destination rows in bytes, of either sign
 * @param dstRoiSize size of the destination rectangle
 * @param xFactor horizontal scale; above 1 enlarges
 * @param yFactor vertical scale
 * @param interpolation method of ::ZovInterpolation, with at most one of the three resize flags
 * @return first, with nothing written, any status of ::Kelo_zoviResizeGetBufSize but ::zovStsNoErr,
 * ::zovStsAntialiasIgnoredWrn included; then the status of ::Kelo_zoviResizeSqrPixel_32f_C1R
 */
KELO_API ZovStatus Kelo_zoviResize_32f_C1R(const Zov32f* src, ZovImageSize srcSize, int srcStep,
                                           ZovImageRect srcRoi, Zov32f* dst, int dstStep,
                                           ZovImageSize dstRoiSize, double xFactor, double yFactor,
                                           int interpolation);

/** @} */

/** @defgroup real_fourier Real Fourier transforms */
/** @{ */

/** Prepared state of real transforms of one length of `Zov32f` values; opaque. */
typedef struct ZovFFTSpec_R_32f ZovFFTSpec_R_32f;

/**
 * @brief Makes the object for real transforms of N = 2^order values of `Zov32f`.
 * The object is immutable: any number of threads may use it at once, each with its own work buffer.
 * 1/N is 1.0f divided by (float)N; 1/sqrt(N) is computed in double and rounded.
 * @param ppSpec receives the object, to be released with Kelo_zovsFFTFree_R_32f(), or null if
 * memory is lacking
 * @param order log2 of N, from 0 to 29 (28 at level SSE2)
 * @param flag one of the normalisation flags, ::ZOV_FFT_SCALE_FWD to ::ZOV_FFT_SCALE_NONE
 * @param hint stored and not read
 * @return ::zovStsNullPtrErr, ::zovStsFftOrderErr (order outside 0 to 30), ::zovStsFftFlagErr,
 * ::zovStsFftOrderErr (order above the limit), ::zovStsMemAllocErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFFTInitAlloc_R_32f(ZovFFTSpec_R_32f** ppSpec, int order, int flag,
                                               int hint);

/**
 * @brief Releases an object of Kelo_zovsFFTInitAlloc_R_32f().
 * @param pSpec the object
 * @return ::zovStsNullPtrErr, ::zovStsContextMatchErr (not a live object), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFFTFree_R_32f(ZovFFTSpec_R_32f* pSpec);

/**
 * @brief Forward transform of N real values to a CCS spectrum.
 * X[k] = sum of pSrc[n] exp(-2 pi i k n / N) over n from 0 to N - 1, for k from 0 to N/2, times the
 * scale of the object if its flag asks for it. Element 2k of the destination is Re X[k], element
 * 2k + 1 is Im X[k]; elements 1 and N + 1 are written as zeros. For N = 1 the result is
 * (pSrc[0], 0).
 * Results of two levels agree to rounding; the relative RMS error grows with the root of log N.
 * @param pSrc N values
 * @param pDst N + 2 values, for N = 1 two; may be the same array as @p pSrc
 * @param pSpec the object
 * @param pBuffer work memory of 4 N + 64 bytes at any address, for one call at a time; ignored
 * where none is needed. Null lets the call allocate its own
 * @return ::zovStsNullPtrErr (the object), ::zovStsContextMatchErr, ::zovStsNullPtrErr (an array),
 * ::zovStsMemAllocErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFFTFwd_RToCCS_32f(const Zov32f* pSrc, Zov32f* pDst,
                                              const ZovFFTSpec_R_32f* pSpec, Zov8u* pBuffer);

/**
 * @brief Inverse transform of a CCS spectrum to N real values.
 * pDst[n] = sum of X[k] exp(+2 pi i k n / N) over all N bins, of which those above N/2 mirror the
 * given ones, times the scale of the object if its flag asks for it. Elements 1 and N + 1 of the
 * source are ignored. Results of two levels agree to rounding.
 * @param pSrc N + 2 values; for N = 1 one
 * @param pDst N values; may be the same array as @p pSrc
 * @param pSpec the object
 * @param pBuffer work memory of 4 N + 64 bytes at any address, for one call at a time; ignored
 * where none is needed. Null lets the call allocate its own
 * @return ::zovStsNullPtrErr (the object), ::zovStsContextMatchErr, ::zovStsNullPtrErr (an array),
 * ::zovStsMemAllocErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFFTInv_CCSToR_32f(const Zov32f* pSrc, Zov32f* pDst,
                                              const ZovFFTSpec_R_32f* pSpec, Zov8u* pBuffer);

/** Prepared state of real transforms of one length of `Zov64f` values; opaque. */
typedef struct ZovFFTSpec_R_64f ZovFFTSpec_R_64f;

/**
 * @brief Makes the object for real transforms of N = 2^order values of `Zov64f`.
 * The object is immutable: any number of threads may use it at once, each with its own work buffer.
 * Tables and scale are computed in double.
 * @param ppSpec receives the object, to be released with Kelo_zovsFFTFree_R_64f(), or null if
 * memory is lacking
 * @param order log2 of N, from 0 to 28 (27 at level SSE2)
 * @param flag one of the normalisation flags, ::ZOV_FFT_SCALE_FWD to ::ZOV_FFT_SCALE_NONE
 * @param hint stored and not read
 * @return ::zovStsNullPtrErr, ::zovStsFftOrderErr (order outside 0 to 30), ::zovStsFftFlagErr,
 * ::zovStsFftOrderErr (order above the limit), ::zovStsMemAllocErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFFTInitAlloc_R_64f(ZovFFTSpec_R_64f** ppSpec, int order, int flag,
                                               int hint);

/**
 * @brief Releases an object of Kelo_zovsFFTInitAlloc_R_64f().
 * @param pSpec the object
 * @return ::zovStsNullPtrErr, ::zovStsContextMatchErr (not a live object), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFFTFree_R_64f(ZovFFTSpec_R_64f* pSpec);

/**
 * @brief Forward transform of N real values to a CCS spectrum.
 * X[k] = sum of pSrc[n] exp(-2 pi i k n / N) over n from 0 to N - 1, for k from 0 to N/2, times the
 * scale of the object if its flag asks for it. Element 2k of the destination is Re X[k], element
 * 2k + 1 is Im X[k]; elements 1 and N + 1 are written as zeros. For N = 1 the result is
 * (pSrc[0], 0).
 * Results of two levels agree to rounding; the relative RMS error grows with the root of log N.
 * @param pSrc N values
 * @param pDst N + 2 values, for N = 1 two; may be the same array as @p pSrc
 * @param pSpec the object
 * @param pBuffer work memory of 8 N + 64 bytes at any address, for one call at a time; ignored
 * where none is needed. Null lets the call allocate its own
 * @return ::zovStsNullPtrErr (the object), ::zovStsContextMatchErr, ::zovStsNullPtrErr (an array),
 * ::zovStsMemAllocErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFFTFwd_RToCCS_64f(const Zov64f* pSrc, Zov64f* pDst,
                                              const ZovFFTSpec_R_64f* pSpec, Zov8u* pBuffer);

/**
 * @brief Inverse transform of a CCS spectrum to N real values.
 * pDst[n] = sum of X[k] exp(+2 pi i k n / N) over all N bins, of which those above N/2 mirror the
 * given ones, times the scale of the object if its flag asks for it. Elements 1 and N + 1 of the
 * source are ignored. Results of two levels agree to rounding.
 * @param pSrc N + 2 values; for N = 1 one
 * @param pDst N values; may be the same array as @p pSrc
 * @param pSpec the object
 * @param pBuffer work memory of 8 N + 64 bytes at any address, for one call at a time; ignored
 * where none is needed. Null lets the call allocate its own
 * @return ::zovStsNullPtrErr (the object), ::zovStsContextMatchErr, ::zovStsNullPtrErr (an array),
 * ::zovStsMemAllocErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFFTInv_CCSToR_64f(const Zov64f* pSrc, Zov64f* pDst,
                                              const ZovFFTSpec_R_64f* pSpec, Zov8u* pBuffer);

/** @} */

/**
 * @defgroup windows Windows
 *
 * A window multiplies an array in place by a taper that is symmetric about its middle: element k
 * and element len - 1 - k by w(k), where x = 2 pi / (len - 1). The centre of an odd length has
 * factor 1 and is left alone. No table is made or kept: a recurrence gives the factors.
 *
 * Level 0 computes factors one by one in binary64, cos(k x) by a rotation, and rounds the product
 * of factor and sample. Levels 1 to 6 step several factors at once: those of Hamming and Hann by
 * y[k + 2] = 2 cos(2x) y[k] - y[k - 2] in binary64, narrowed to the `Zov32f` that multiplies;
 * Blackman's by rotations and Bartlett's by sums, in binary64 throughout, except that levels 5 and
 * 6 sum Bartlett's in binary32. So results differ between levels in the last bit, and in more as
 * the recurrences drift: beside their rounding to binary32, factors are within 3e-18 len^2 of the
 * formula, 3e-12 at 1,000 samples and 3e-6 at 1,000,000; Bartlett's in binary32 are within
 * len / 32 + 2 units in the last place.
 */
/** @{ */

/**
 * @brief Multiplies by the Bartlett window: w(k) = 2k / (len - 1).
 * The two ends are set to 0 whatever they hold.
 * @param pSrcDst samples, @p len elements
 * @param len number of elements, 3 or more
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 3), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsWinBartlett_32f_I(Zov32f* pSrcDst, int len);

/**
 * @brief Multiplies by the Blackman window: w(k) = (a + 1)/2 - cos(k x)/2 - a cos(2k x)/2.
 * a is -0.16 in binary32. The ends get the rounding error of (a + 1)/2 - 1/2 - a/2 as their factor;
 * at a length of 3 they are set to 0.
 * @param pSrcDst samples, @p len elements
 * @param len number of elements, 3 or more
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 3), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsWinBlackmanStd_32f_I(Zov32f* pSrcDst, int len);

/**
 * @brief Multiplies by the Hamming window: w(k) = 0.54 - 0.46 cos(k x).
 * @param pSrcDst samples, @p len elements
 * @param len number of elements, 3 or more
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 3), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsWinHamming_32f_I(Zov32f* pSrcDst, int len);

/**
 * @brief Multiplies by the Hann window: w(k) = (1 - cos(k x)) / 2.
 * At a length of 3 the ends are set to 0 whatever they hold.
 * @param pSrcDst samples, @p len elements
 * @param len number of elements, 3 or more
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 3), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsWinHann_32f_I(Zov32f* pSrcDst, int len);

/**
 * @brief Multiplies by the Hamming window: w(k) = 0.54 - 0.46 cos(k x).
 * Level 0 truncates the product in binary64 towards zero. Levels 1 to 6 compute in binary32: the
 * products of the two ends, whose factor is 0.54f - 0.46f, are truncated towards zero, the others
 * rounded to nearest with ties to even and saturated; their factors are within 3e-6 of the formula.
 * @param pSrcDst samples, @p len elements
 * @param len number of elements, 3 or more
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (len below 3), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsWinHamming_16s_I(Zov16s* pSrcDst, int len);

/** @} */

/**
 * @defgroup fir_design Design of FIR filters
 *
 * The taps of a linear-phase filter by the window method: the ideal impulse response of a low-pass,
 * high-pass, band-pass or band-stop filter, cut to @p tapsLen elements about its middle and
 * multiplied by a window. Frequencies are in units of the sampling rate, above 0 and below 0.5; a
 * NaN is not refused and makes NaNs of the taps. With d the distance from the middle, a whole
 * number for odd lengths and half of an odd one for even lengths, and s(f) = sin(2 pi f d):
 *
 * | Design | Tap at distance d | Centre of an odd length |
 * |---|---|---|
 * | low-pass | s(f) / (pi d) | 2f |
 * | high-pass, odd length | -s(f) / (pi d) | 1 - 2f |
 * | high-pass, even length | cos(2 pi f d) / (pi d), negated in the right half | |
 * | band-pass | (s(f2) - s(f1)) / (pi d) | 2 (f2 - f1) |
 * | band-stop | (sin(pi d) - s(f2) + s(f1)) / (pi d) | 1 - 2 (f2 - f1) |
 *
 * The taps are symmetric, save those of the high-pass of even length, which are antisymmetric: a
 * symmetric filter of even length has a zero at half the sampling rate. So the band-stop of even
 * length stops the top of the band too.
 *
 * A normalised filter has gain 1 at frequency 0 (low-pass, band-stop), at half the sampling rate
 * (high-pass) or in the middle of its band (band-pass). There is no test for a gain of 0, which
 * makes the taps infinite.
 *
 * Sines and cosines come from a recurrence, the same at every level: with edges from 0.01 to 0.49
 * and no normalisation, taps are within 6e-16 + 5e-17 tapsLen of the formula.
 *
 * The window is one of ::ZovWinType; any other value means none. The call allocates memory for
 * tapsLen / 2 + 1 values, twice with two edges, and releases it.
 */
/** @{ */

/**
 * @brief Taps of a band-pass filter.
 * @param rLowFreq lower edge of the band
 * @param rHighFreq upper edge of the band
 * @param pTaps receives @p tapsLen taps
 * @param tapsLen number of taps, 5 or more
 * @param winType window
 * @param doNormal 0 leaves the gain as it falls, any other value normalises
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (tapsLen below 5, a frequency not between 0 and 0.5,
 * or edges that do not ascend), ::zovStsNullPtrErr (no memory), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRGenBandpass_64f(Zov64f rLowFreq, Zov64f rHighFreq, Zov64f* pTaps,
                                               int tapsLen, int winType, int doNormal);

/**
 * @brief Taps of a band-stop filter.
 * @param rLowFreq lower edge of the band
 * @param rHighFreq upper edge of the band
 * @param pTaps receives @p tapsLen taps
 * @param tapsLen number of taps, 5 or more
 * @param winType window
 * @param doNormal 0 leaves the gain as it falls, any other value normalises
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (tapsLen below 5, a frequency not between 0 and 0.5,
 * or edges that do not ascend), ::zovStsNullPtrErr (no memory), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRGenBandstop_64f(Zov64f rLowFreq, Zov64f rHighFreq, Zov64f* pTaps,
                                               int tapsLen, int winType, int doNormal);

/**
 * @brief Taps of a high-pass filter.
 * @param rFreq edge of the pass band
 * @param pTaps receives @p tapsLen taps
 * @param tapsLen number of taps, 5 or more
 * @param winType window
 * @param doNormal 0 leaves the gain as it falls, any other value normalises
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (tapsLen below 5, a frequency not between 0 and 0.5),
 * ::zovStsNullPtrErr (no memory), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRGenHighpass_64f(Zov64f rFreq, Zov64f* pTaps, int tapsLen,
                                               int winType, int doNormal);

/**
 * @brief Taps of a low-pass filter.
 * @param rFreq edge of the pass band
 * @param pTaps receives @p tapsLen taps
 * @param tapsLen number of taps, 5 or more
 * @param winType window
 * @param doNormal 0 leaves the gain as it falls, any other value normalises
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (tapsLen below 5, a frequency not between 0 and 0.5),
 * ::zovStsNullPtrErr (no memory), ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRGenLowpass_64f(Zov64f rFreq, Zov64f* pTaps, int tapsLen, int winType,
                                              int doNormal);
/** @} */

/** @defgroup fir FIR filters */
/** @{ */

/**
 * State of a single-rate FIR filter: taps, delay line and work memory; opaque. The families, by
 * taps and samples, are 32f, 64f, 64f on 32f and 64f on 16s; a function refuses a state of another
 * family. A state belongs to one thread at a time.
 *
 * A delay line is an array of `tapsLen` samples, the newest first. Outputs depend on all but the
 * last of them.
 */
typedef struct ZovFIRState ZovFIRState;

/**
 * @brief Makes a filter of `Zov32f` taps on `Zov32f` samples.
 * Taps are copied, may all be zero and stay as they are for the life of the state. From 64 taps on
 * the state also holds their spectrum, of a length above 2 and up to 4 times theirs.
 * @param ppState receives the state, to be released with Kelo_zovsFIRFree_32f(), or null if it or
 * its transform cannot be made
 * @param pTaps tapsLen taps h[0], h[1], ...
 * @param tapsLen number of taps, at least 1
 * @param pDlyLine tapsLen samples before the first, the newest first, or null for zeros
 * @return ::zovStsNullPtrErr (@p ppState or @p pTaps), ::zovStsFirLenErr, ::zovStsNullPtrErr
 * (more taps than the longest transform serves, or no memory for the transform),
 * ::zovStsMemAllocErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRInitAlloc_32f(ZovFIRState** ppState, const Zov32f* pTaps,
                                             int tapsLen, const Zov32f* pDlyLine);

/**
 * @brief Makes a filter of `Zov64f` taps on `Zov64f` samples.
 * As Kelo_zovsFIRInitAlloc_32f(); the spectrum is there from 64 taps on, at levels SSE2 and SSE3
 * from 32 on, and a filter too long for any transform does without.
 * @param ppState receives the state, to be released with Kelo_zovsFIRFree_64f(), or null if
 * memory is lacking
 * @param pTaps tapsLen taps h[0], h[1], ...
 * @param tapsLen number of taps, at least 1
 * @param pDlyLine tapsLen samples before the first, the newest first, or null for zeros
 * @return ::zovStsNullPtrErr (@p ppState or @p pTaps), ::zovStsFirLenErr, ::zovStsMemAllocErr,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRInitAlloc_64f(ZovFIRState** ppState, const Zov64f* pTaps,
                                             int tapsLen, const Zov64f* pDlyLine);

/**
 * @brief Makes a filter of `Zov64f` taps on `Zov32f` samples.
 * As Kelo_zovsFIRInitAlloc_32f(); the spectrum is there from 64 taps on, at levels SSE2 and SSE3
 * from 32 on, and a filter too long for any transform does without.
 * @param ppState receives the state, to be released with Kelo_zovsFIRFree64f_32f(), or null if
 * memory is lacking
 * @param pTaps tapsLen taps h[0], h[1], ...
 * @param tapsLen number of taps, at least 1
 * @param pDlyLine tapsLen samples before the first, the newest first, or null for zeros
 * @return ::zovStsNullPtrErr (@p ppState or @p pTaps), ::zovStsFirLenErr, ::zovStsMemAllocErr,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRInitAlloc64f_32f(ZovFIRState** ppState, const Zov64f* pTaps,
                                                int tapsLen, const Zov32f* pDlyLine);

/**
 * @brief Makes a filter of `Zov64f` taps on `Zov16s` samples.
 * As Kelo_zovsFIRInitAlloc_32f(); the spectrum is there from 64 taps on, at levels SSE2 and SSE3
 * from 32 on, and a filter too long for any transform does without.
 * @param ppState receives the state, to be released with Kelo_zovsFIRFree64f_16s(), or null if
 * memory is lacking
 * @param pTaps tapsLen taps h[0], h[1], ...
 * @param tapsLen number of taps, at least 1
 * @param pDlyLine tapsLen samples before the first, the newest first, or null for zeros
 * @return ::zovStsNullPtrErr (@p ppState or @p pTaps), ::zovStsFirLenErr, ::zovStsMemAllocErr,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRInitAlloc64f_16s(ZovFIRState** ppState, const Zov64f* pTaps,
                                                int tapsLen, const Zov16s* pDlyLine);

/**
 * @brief Releases a state of Kelo_zovsFIRInitAlloc_32f().
 * @param pState the state
 * @return ::zovStsNullPtrErr, ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRFree_32f(ZovFIRState* pState);

/**
 * @brief Releases a state of Kelo_zovsFIRInitAlloc_64f().
 * @param pState the state
 * @return ::zovStsNullPtrErr, ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRFree_64f(ZovFIRState* pState);

/**
 * @brief Releases a state of Kelo_zovsFIRInitAlloc64f_32f().
 * @param pState the state
 * @return ::zovStsNullPtrErr, ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRFree64f_32f(ZovFIRState* pState);

/**
 * @brief Releases a state of Kelo_zovsFIRInitAlloc64f_16s().
 * @param pState the state
 * @return ::zovStsNullPtrErr, ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRFree64f_16s(ZovFIRState* pState);

/**
 * @brief Copies the taps of a filter.
 * @param pState the state
 * @param pTaps receives tapsLen taps h[0], h[1], ...
 * @return ::zovStsNullPtrErr, ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRGetTaps_32f(const ZovFIRState* pState, Zov32f* pTaps);

/**
 * @brief Copies the delay line of a filter: the last samples of its stream.
 * @param pState the state
 * @param pDlyLine receives tapsLen samples, the newest first
 * @return ::zovStsNullPtrErr, ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRGetDlyLine_32f(const ZovFIRState* pState, Zov32f* pDlyLine);

/**
 * @brief Copies the delay line of a filter: the last samples of its stream.
 * @param pState the state
 * @param pDlyLine receives tapsLen samples, the newest first
 * @return ::zovStsNullPtrErr, ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRGetDlyLine_64f(const ZovFIRState* pState, Zov64f* pDlyLine);

/**
 * @brief Copies the delay line of a filter: the last samples of its stream.
 * @param pState the state
 * @param pDlyLine receives tapsLen samples, the newest first
 * @return ::zovStsNullPtrErr, ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRGetDlyLine64f_32f(const ZovFIRState* pState, Zov32f* pDlyLine);

/**
 * @brief Sets the delay line of a filter.
 * @param pState the state
 * @param pDlyLine tapsLen samples, the newest first, or null for zeros
 * @return ::zovStsNullPtrErr (the state), ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRSetDlyLine_32f(ZovFIRState* pState, const Zov32f* pDlyLine);

/**
 * @brief Sets the delay line of a filter.
 * @param pState the state
 * @param pDlyLine tapsLen samples, the newest first, or null for zeros
 * @return ::zovStsNullPtrErr (the state), ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRSetDlyLine_64f(ZovFIRState* pState, const Zov64f* pDlyLine);

/**
 * @brief Sets the delay line of a filter.
 * @param pState the state
 * @param pDlyLine tapsLen samples, the newest first, or null for zeros
 * @return ::zovStsNullPtrErr (the state), ::zovStsContextMatchErr, ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIRSetDlyLine64f_32f(ZovFIRState* pState, const Zov32f* pDlyLine);

/**
 * @brief Filters samples.
 * y[i] = sum of h[k] x[i - k] over k from 0 to tapsLen - 1, for i from 0 to numIters - 1; samples
 * before pSrc[0] come from the delay line, which takes in the new ones, so that calls of any length
 * continue one stream. The delay line is the same, bit by bit, whatever the route.
 * With at least 64 taps and 512 samples the sums go by transforms, otherwise direct. In place a
 * call is cut into blocks of 4096 samples (4224 from level AVX on), and a block goes by transforms
 * when at least 512 samples remain behind it. Level AVX2 uses fused multiply-add. On random signals
 * up to 1000 taps, outputs err by less than 2^-20 times the sum of all |h[k]| times the largest
 * |x|.
 * @param pSrc numIters samples
 * @param pDst numIters outputs; the same array as @p pSrc, or apart from it
 * @param numIters number of samples
 * @param pState the state
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (numIters below 1), ::zovStsContextMatchErr,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIR_32f(const Zov32f* pSrc, Zov32f* pDst, int numIters,
                                    ZovFIRState* pState);

/**
 * @brief Filters samples.
 * As Kelo_zovsFIR_32f(), in binary64, with an error below 2^-49 in place of 2^-20. At levels SSE2
 * and SSE3 the route by transforms is there from 32 taps on.
 * @param pSrc numIters samples
 * @param pDst numIters outputs; the same array as @p pSrc, or apart from it
 * @param numIters number of samples
 * @param pState the state
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (numIters below 1), ::zovStsContextMatchErr,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIR_64f(const Zov64f* pSrc, Zov64f* pDst, int numIters,
                                    ZovFIRState* pState);

/**
 * @brief Filters samples in binary64 and rounds each output once to binary32.
 * The sums are those of Kelo_zovsFIR_64f(). In place the route is chosen once, by numIters.
 * @param pSrc numIters samples
 * @param pDst numIters outputs; the same array as @p pSrc, or apart from it
 * @param numIters number of samples
 * @param pState the state
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (numIters below 1), ::zovStsContextMatchErr,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIR64f_32f(const Zov32f* pSrc, Zov32f* pDst, int numIters,
                                       ZovFIRState* pState);

/**
 * @brief Filters 16-bit samples in binary64; outputs are scaled, rounded and saturated.
 * The sums are those of Kelo_zovsFIR_64f(). In place the route is chosen once, by numIters.
 * Ties go away from zero at levels SSE2 and SSE3 and to the even neighbour above; there a scaled
 * value of 2^31 and more in magnitude gives -32768, whatever its sign. A NaN gives 0 at levels SSE2
 * and SSE3, -32768 above.
 * The scale factor counts modulo 128 in magnitude at levels SSE2, SSE3, AVX and AVX2; 2^-127 is 0
 * at the last two. The other levels take it whole: the sign and the exponent field of
 * 2^-scaleFactor are 1023 - scaleFactor, modulo 4096. Outside of -1023 to 1022 that makes zeros,
 * infinities and negative factors.
 * @param pSrc numIters samples
 * @param pDst numIters outputs; the same array as @p pSrc, or apart from it
 * @param numIters number of samples
 * @param pState the state
 * @param scaleFactor outputs are multiplied by 2^-scaleFactor
 * @return ::zovStsNullPtrErr, ::zovStsSizeErr (numIters below 1), ::zovStsContextMatchErr,
 * ::zovStsNoErr
 */
KELO_API ZovStatus Kelo_zovsFIR64f_16s_Sfs(const Zov16s* pSrc, Zov16s* pDst, int numIters,
                                           ZovFIRState* pState, int scaleFactor);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
