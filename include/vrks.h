/*
 * vrks — one-dimensional signal-processing primitives for x86-64.
 *
 * Every function works on arrays that the caller owns and returns a
 * VrkStatus: 0 on success, a negative error (nothing has been written), or a
 * positive warning (every element was processed and has a defined result).
 *
 * Naming: vrks<Operation>[<Variant>]_<types>[_<suffix>]
 *   <types>  one code per distinct type: 16s32f reads 16s and writes 32f.
 *   _I       in place: the array srcDst is read and overwritten.
 *   _Sfs     integer result scaled by 2^-scale, rounded to nearest (ties to
 *            even), then saturated to the result type.
 *   _ISfs    both.
 * Lengths are element counts (a 32fc element is one complex number).
 * Arguments are checked in a fixed order: pointers (any null gives
 * vrkStatusNullPointer), then length (below 1 gives vrkStatusSizeError),
 * then the remaining parameters in argument order.
 *
 * Processor baseline: x86-64 with AVX2 (x86-64-v3).
 */
#ifndef VRKS_H
#define VRKS_H

#include <stdint.h>

#if defined(__GNUC__) || defined(__clang__)
#define VRKS_API __attribute__((visibility("default")))
#else
#define VRKS_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- element types ------------------------------------------------------ */

typedef uint8_t  Vrk8u;
typedef int8_t   Vrk8s;
typedef uint16_t Vrk16u;
typedef int16_t  Vrk16s;
typedef uint32_t Vrk32u;
typedef int32_t  Vrk32s;
typedef uint64_t Vrk64u;
typedef int64_t  Vrk64s;
typedef uint16_t Vrk16f; /* IEEE 754 binary16, held in 16 bits */
typedef float    Vrk32f;
typedef double   Vrk64f;

/* Complex numbers: real part first. Passed by value as scalars. */
typedef struct { Vrk8s  re, im; } Vrk8sc;
typedef struct { Vrk16s re, im; } Vrk16sc;
typedef struct { Vrk32s re, im; } Vrk32sc;
typedef struct { Vrk64s re, im; } Vrk64sc;
typedef struct { Vrk32f re, im; } Vrk32fc;
typedef struct { Vrk64f re, im; } Vrk64fc;

/* 24-bit integers packed in three bytes, least significant byte first; always
 * passed through byte pointers. */
typedef uint8_t Vrk24u;
typedef uint8_t Vrk24s;
/* A bit string: a byte pointer plus a bit offset; bit offset 0 is the most
 * significant bit of the byte. */
typedef uint8_t Vrk1u;

/* ---- status ------------------------------------------------------------- */

typedef int32_t VrkStatus;
enum {
  vrkStatusWarnBitCount = 27,
  vrkStatusWarnNaNInput = 9,
  vrkStatusWarnLogOfNegative = 8,
  vrkStatusWarnLogOfZero = 7,
  vrkStatusWarnDivisionByZero = 6,
  vrkStatusEvenMedianMask = 5,
  vrkStatusWarnInverseOfZero = 4,
  vrkStatusWarnSqrtOfNegative = 3,
  vrkStatusOk = 0,
  vrkStatusBadArgument = -5,
  vrkStatusSizeError = -6,
  vrkStatusBadMode = -7,
  vrkStatusNullPointer = -8,
  vrkStatusMemoryAllocation = -9,
  vrkStatusDivideByZero = -10,
  vrkStatusParamNotPositive = -11,
  vrkStatusIIRNegativeOrder = -13,
  vrkStatusFFTOrder = -15,
  vrkStatusFFTFlag = -16,
  vrkStatusContextMismatch = -17,
  vrkStatusThresholdOrder = -18,
  vrkStatusThresholdNegative = -19,
  vrkStatusDelayIndex = -24,
  vrkStatusIIROrder = -25,
  vrkStatusFIRLength = -26,
  vrkStatusGoertzFrequency = -27,
  vrkStatusFIRMRPhase = -28,
  vrkStatusFIRMRFactor = -29,
  vrkStatusSamplePhase = -30,
  vrkStatusSampleFactor = -31,
  vrkStatusShift = -32,
  vrkStatusSumWindowWidth = -33,
  vrkStatusWTOffset = -35,
  vrkStatusJaehneMagnitude = -38,
  vrkStatusKaiserAlpha = -39,
  vrkStatusTriangleAsymmetry = -40,
  vrkStatusTrianglePhase = -41,
  vrkStatusTriangleFrequency = -42,
  vrkStatusTriangleMagnitude = -43,
  vrkStatusTonePhase = -44,
  vrkStatusToneFrequency = -45,
  vrkStatusToneMagnitude = -46,
  vrkStatusChannelCount = -53,
  vrkStatusSparseTaps = -194,
  vrkStatusIIRGenOrder = -206,
  vrkStatusIIRGenFrequency = -208,
  vrkStatusIIRGenDeviation = -209,
  vrkStatusRoundMode = -213
};

/* ---- rounding modes ----------------------------------------------------- */

typedef int32_t VrkRoundMode;
enum {
  vrkRoundToZero = 0,           /* truncation toward zero */
  vrkRoundToNearestEven = 1,    /* to nearest, ties to the even neighbour */
  vrkRoundHalfAwayFromZero = 2  /* magnitude plus one half, truncated, sign restored */
};

/* ---- FFT and DFT scaling flags (exactly one of them) -------------------- */

enum {
  vrkFFTScaleFwdByN = 1,
  vrkFFTScaleInvByN = 2,
  vrkFFTScaleBySqrtN = 4,
  vrkFFTScaleNone = 8
};

/* ---- opaque state objects ----------------------------------------------- */

typedef struct VrksFFTState_C_16sc VrksFFTState_C_16sc;
typedef struct VrksFFTState_C_16s VrksFFTState_C_16s;
typedef struct VrksFFTState_R_16s VrksFFTState_R_16s;
typedef struct VrksFFTState_C_32fc VrksFFTState_C_32fc;
typedef struct VrksFFTState_C_32f VrksFFTState_C_32f;
typedef struct VrksFFTState_R_32f VrksFFTState_R_32f;
typedef struct VrksFFTState_C_64fc VrksFFTState_C_64fc;
typedef struct VrksFFTState_C_64f VrksFFTState_C_64f;
typedef struct VrksFFTState_R_64f VrksFFTState_R_64f;
typedef struct VrksFFTState_C_32sc VrksFFTState_C_32sc;
typedef struct VrksFFTState_C_32s VrksFFTState_C_32s;
typedef struct VrksFFTState_R_32s VrksFFTState_R_32s;
typedef struct VrksFFTState_R_16s32s VrksFFTState_R_16s32s;

/* ---- version ------------------------------------------------------------ */

typedef struct {
  int32_t versionMajor;
  int32_t versionMinor;
  int32_t buildMajor;
  int32_t buildNumber;
  char targetTag[4];       /* processor variant, zero-filled: "e9" */
  const char* libraryName;
  const char* versionText;
  const char* buildDate;
} VrkLibraryVersion;

/* The library's constant version record; never fails, never to be freed. */
VRKS_API const VrkLibraryVersion* vrksGetLibVersion(void);

/* ---- aligned memory ----------------------------------------------------- */

/* A block for `length` elements, aligned to at least 64 bytes, or NULL when
 * `length` is below 1 or the memory can't be had. Release with vrksFree. */
VRKS_API Vrk8u* vrksMalloc_8u(int length);
VRKS_API Vrk8s* vrksMalloc_8s(int length);
VRKS_API Vrk8sc* vrksMalloc_8sc(int length);
VRKS_API Vrk16u* vrksMalloc_16u(int length);
VRKS_API Vrk16s* vrksMalloc_16s(int length);
VRKS_API Vrk16sc* vrksMalloc_16sc(int length);
VRKS_API Vrk32u* vrksMalloc_32u(int length);
VRKS_API Vrk32s* vrksMalloc_32s(int length);
VRKS_API Vrk32sc* vrksMalloc_32sc(int length);
VRKS_API Vrk32f* vrksMalloc_32f(int length);
VRKS_API Vrk32fc* vrksMalloc_32fc(int length);
VRKS_API Vrk64s* vrksMalloc_64s(int length);
VRKS_API Vrk64sc* vrksMalloc_64sc(int length);
VRKS_API Vrk64f* vrksMalloc_64f(int length);
VRKS_API Vrk64fc* vrksMalloc_64fc(int length);
/* Releases a block from vrksMalloc_*; NULL is allowed and does nothing. */
VRKS_API void vrksFree(void* pointer);

/* ---- copy, move, fill, clear -------------------------------------------- */
/* Pure byte operations: NaN payloads and complex pairs move untouched.
 * length * element size must stay below 2^31 for Copy, Move and Zero.
 * Only Move is defined for overlapping arrays. */

VRKS_API VrkStatus vrksCopy_8u(const Vrk8u* src, Vrk8u* dst, int length);
VRKS_API VrkStatus vrksCopy_16s(const Vrk16s* src, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksCopy_16sc(const Vrk16sc* src, Vrk16sc* dst, int length);
VRKS_API VrkStatus vrksCopy_32s(const Vrk32s* src, Vrk32s* dst, int length);
VRKS_API VrkStatus vrksCopy_32sc(const Vrk32sc* src, Vrk32sc* dst, int length);
VRKS_API VrkStatus vrksCopy_32f(const Vrk32f* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksCopy_32fc(const Vrk32fc* src, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksCopy_64s(const Vrk64s* src, Vrk64s* dst, int length);
VRKS_API VrkStatus vrksCopy_64sc(const Vrk64sc* src, Vrk64sc* dst, int length);
VRKS_API VrkStatus vrksCopy_64f(const Vrk64f* src, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksCopy_64fc(const Vrk64fc* src, Vrk64fc* dst, int length);

/* Copies `length` bits. Only the low three bits of each offset count (the byte
 * pointer is not advanced); destination bits outside the copied range keep
 * their values. A negative offset gives vrkStatusSizeError. */
VRKS_API VrkStatus vrksCopy_1u(const Vrk8u* src, int srcBitOffset, Vrk8u* dst,
                               int dstBitOffset, int length);

/* As if the source were first copied aside: overlapping arrays are fine. */
VRKS_API VrkStatus vrksMove_8u(const Vrk8u* src, Vrk8u* dst, int length);
VRKS_API VrkStatus vrksMove_16s(const Vrk16s* src, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksMove_16sc(const Vrk16sc* src, Vrk16sc* dst, int length);
VRKS_API VrkStatus vrksMove_32s(const Vrk32s* src, Vrk32s* dst, int length);
VRKS_API VrkStatus vrksMove_32sc(const Vrk32sc* src, Vrk32sc* dst, int length);
VRKS_API VrkStatus vrksMove_32f(const Vrk32f* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksMove_32fc(const Vrk32fc* src, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksMove_64s(const Vrk64s* src, Vrk64s* dst, int length);
VRKS_API VrkStatus vrksMove_64sc(const Vrk64sc* src, Vrk64sc* dst, int length);
VRKS_API VrkStatus vrksMove_64f(const Vrk64f* src, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksMove_64fc(const Vrk64fc* src, Vrk64fc* dst, int length);

/* Fills dst with `value` (a complex value: real, imaginary, real, ...). */
VRKS_API VrkStatus vrksSet_8u(Vrk8u value, Vrk8u* dst, int length);
VRKS_API VrkStatus vrksSet_16s(Vrk16s value, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksSet_16sc(Vrk16sc value, Vrk16sc* dst, int length);
VRKS_API VrkStatus vrksSet_32s(Vrk32s value, Vrk32s* dst, int length);
VRKS_API VrkStatus vrksSet_32sc(Vrk32sc value, Vrk32sc* dst, int length);
VRKS_API VrkStatus vrksSet_32f(Vrk32f value, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksSet_32fc(Vrk32fc value, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksSet_64s(Vrk64s value, Vrk64s* dst, int length);
VRKS_API VrkStatus vrksSet_64sc(Vrk64sc value, Vrk64sc* dst, int length);
VRKS_API VrkStatus vrksSet_64f(Vrk64f value, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksSet_64fc(Vrk64fc value, Vrk64fc* dst, int length);

/* Fills dst with all-zero bytes. */
VRKS_API VrkStatus vrksZero_8u(Vrk8u* dst, int length);
VRKS_API VrkStatus vrksZero_16s(Vrk16s* dst, int length);
VRKS_API VrkStatus vrksZero_16sc(Vrk16sc* dst, int length);
VRKS_API VrkStatus vrksZero_32s(Vrk32s* dst, int length);
VRKS_API VrkStatus vrksZero_32sc(Vrk32sc* dst, int length);
VRKS_API VrkStatus vrksZero_32f(Vrk32f* dst, int length);
VRKS_API VrkStatus vrksZero_32fc(Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksZero_64s(Vrk64s* dst, int length);
VRKS_API VrkStatus vrksZero_64sc(Vrk64sc* dst, int length);
VRKS_API VrkStatus vrksZero_64f(Vrk64f* dst, int length);
VRKS_API VrkStatus vrksZero_64fc(Vrk64fc* dst, int length);

/* ---- reversal and byte order -------------------------------------------- */

/* dst[i] = src[length - 1 - i]; complex elements keep real before imaginary.
 * The _I forms reverse in place (the middle element of an odd length stays). */
VRKS_API VrkStatus vrksFlip_8u(const Vrk8u* src, Vrk8u* dst, int length);
VRKS_API VrkStatus vrksFlip_16u(const Vrk16u* src, Vrk16u* dst, int length);
VRKS_API VrkStatus vrksFlip_32f(const Vrk32f* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksFlip_32fc(const Vrk32fc* src, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksFlip_64f(const Vrk64f* src, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksFlip_64fc(const Vrk64fc* src, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksFlip_8u_I(Vrk8u* srcDst, int length);
VRKS_API VrkStatus vrksFlip_16u_I(Vrk16u* srcDst, int length);
VRKS_API VrkStatus vrksFlip_32f_I(Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksFlip_32fc_I(Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksFlip_64f_I(Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksFlip_64fc_I(Vrk64fc* srcDst, int length);

/* Reverses the bytes inside each element (2, 3, 4 or 8 bytes; the 24-bit
 * forms take byte pointers and count three-byte elements). */
VRKS_API VrkStatus vrksSwapBytes_16u(const Vrk16u* src, Vrk16u* dst, int length);
VRKS_API VrkStatus vrksSwapBytes_24u(const Vrk8u* src, Vrk8u* dst, int length);
VRKS_API VrkStatus vrksSwapBytes_32u(const Vrk32u* src, Vrk32u* dst, int length);
VRKS_API VrkStatus vrksSwapBytes_64u(const Vrk64u* src, Vrk64u* dst, int length);
VRKS_API VrkStatus vrksSwapBytes_16u_I(Vrk16u* srcDst, int length);
VRKS_API VrkStatus vrksSwapBytes_24u_I(Vrk8u* srcDst, int length);
VRKS_API VrkStatus vrksSwapBytes_32u_I(Vrk32u* srcDst, int length);
VRKS_API VrkStatus vrksSwapBytes_64u_I(Vrk64u* srcDst, int length);

/* ---- scaled arithmetic: addition, subtraction, multiplication ---------- */

/* dst = src1 + src2 (in place: srcDst += src). Integer results saturate; the
 * _Sfs forms scale by 2^-scale with rounding to nearest even first. Complex
 * forms add part by part. */
VRKS_API VrkStatus vrksAdd_16s(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksAdd_16s32f(const Vrk16s* src1, const Vrk16s* src2, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksAdd_16s32s_I(const Vrk16s* src, Vrk32s* srcDst, int length);
VRKS_API VrkStatus vrksAdd_16s_I(const Vrk16s* src, Vrk16s* srcDst, int length);
VRKS_API VrkStatus vrksAdd_16u(const Vrk16u* src1, const Vrk16u* src2, Vrk16u* dst, int length);
VRKS_API VrkStatus vrksAdd_32f(const Vrk32f* src1, const Vrk32f* src2, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksAdd_32f_I(const Vrk32f* src, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksAdd_32fc(const Vrk32fc* src1, const Vrk32fc* src2, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksAdd_32fc_I(const Vrk32fc* src, Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksAdd_32u(const Vrk32u* src1, const Vrk32u* src2, Vrk32u* dst, int length);
VRKS_API VrkStatus vrksAdd_64f(const Vrk64f* src1, const Vrk64f* src2, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksAdd_64f_I(const Vrk64f* src, Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksAdd_64fc(const Vrk64fc* src1, const Vrk64fc* src2, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksAdd_64fc_I(const Vrk64fc* src, Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksAdd_8u16u(const Vrk8u* src1, const Vrk8u* src2, Vrk16u* dst, int length);
VRKS_API VrkStatus vrksAdd_16s_ISfs(const Vrk16s* src, Vrk16s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAdd_16s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksAdd_16sc_ISfs(const Vrk16sc* src, Vrk16sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAdd_16sc_Sfs(const Vrk16sc* src1, const Vrk16sc* src2, Vrk16sc* dst, int length, int scale);
VRKS_API VrkStatus vrksAdd_16u_ISfs(const Vrk16u* src, Vrk16u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAdd_16u_Sfs(const Vrk16u* src1, const Vrk16u* src2, Vrk16u* dst, int length, int scale);
VRKS_API VrkStatus vrksAdd_32s_ISfs(const Vrk32s* src, Vrk32s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAdd_32s_Sfs(const Vrk32s* src1, const Vrk32s* src2, Vrk32s* dst, int length, int scale);
VRKS_API VrkStatus vrksAdd_32sc_ISfs(const Vrk32sc* src, Vrk32sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAdd_32sc_Sfs(const Vrk32sc* src1, const Vrk32sc* src2, Vrk32sc* dst, int length, int scale);
VRKS_API VrkStatus vrksAdd_64s_Sfs(const Vrk64s* src1, const Vrk64s* src2, Vrk64s* dst, int length, int scale);
VRKS_API VrkStatus vrksAdd_8u_ISfs(const Vrk8u* src, Vrk8u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAdd_8u_Sfs(const Vrk8u* src1, const Vrk8u* src2, Vrk8u* dst, int length, int scale);

/* dst = src + value (in place: srcDst += value). */
VRKS_API VrkStatus vrksAddC_16s_I(Vrk16s value, Vrk16s* srcDst, int length);
VRKS_API VrkStatus vrksAddC_32f(const Vrk32f* src, Vrk32f value, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksAddC_32f_I(Vrk32f value, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksAddC_32fc(const Vrk32fc* src, Vrk32fc value, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksAddC_32fc_I(Vrk32fc value, Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksAddC_64f(const Vrk64f* src, Vrk64f value, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksAddC_64f_I(Vrk64f value, Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksAddC_64fc(const Vrk64fc* src, Vrk64fc value, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksAddC_64fc_I(Vrk64fc value, Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksAddC_16s_ISfs(Vrk16s value, Vrk16s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAddC_16s_Sfs(const Vrk16s* src, Vrk16s value, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksAddC_16sc_ISfs(Vrk16sc value, Vrk16sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAddC_16sc_Sfs(const Vrk16sc* src, Vrk16sc value, Vrk16sc* dst, int length, int scale);
VRKS_API VrkStatus vrksAddC_16u_ISfs(Vrk16u value, Vrk16u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAddC_16u_Sfs(const Vrk16u* src, Vrk16u value, Vrk16u* dst, int length, int scale);
VRKS_API VrkStatus vrksAddC_32s_ISfs(Vrk32s value, Vrk32s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAddC_32s_Sfs(const Vrk32s* src, Vrk32s value, Vrk32s* dst, int length, int scale);
VRKS_API VrkStatus vrksAddC_32sc_ISfs(Vrk32sc value, Vrk32sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAddC_32sc_Sfs(const Vrk32sc* src, Vrk32sc value, Vrk32sc* dst, int length, int scale);
VRKS_API VrkStatus vrksAddC_8u_ISfs(Vrk8u value, Vrk8u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAddC_8u_Sfs(const Vrk8u* src, Vrk8u value, Vrk8u* dst, int length, int scale);

/* dst = src2 - src1: the second source minus the first (in place:
 * srcDst -= src). Unsigned differences below 0 give 0 at every scale. */
VRKS_API VrkStatus vrksSub_16s(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksSub_16s32f(const Vrk16s* src1, const Vrk16s* src2, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksSub_16s_I(const Vrk16s* src, Vrk16s* srcDst, int length);
VRKS_API VrkStatus vrksSub_32f(const Vrk32f* src1, const Vrk32f* src2, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksSub_32f_I(const Vrk32f* src, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksSub_32fc(const Vrk32fc* src1, const Vrk32fc* src2, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksSub_32fc_I(const Vrk32fc* src, Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksSub_64f(const Vrk64f* src1, const Vrk64f* src2, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksSub_64f_I(const Vrk64f* src, Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksSub_64fc(const Vrk64fc* src1, const Vrk64fc* src2, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksSub_64fc_I(const Vrk64fc* src, Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksSub_16s_ISfs(const Vrk16s* src, Vrk16s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSub_16s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksSub_16sc_ISfs(const Vrk16sc* src, Vrk16sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSub_16sc_Sfs(const Vrk16sc* src1, const Vrk16sc* src2, Vrk16sc* dst, int length, int scale);
VRKS_API VrkStatus vrksSub_16u_ISfs(const Vrk16u* src, Vrk16u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSub_16u_Sfs(const Vrk16u* src1, const Vrk16u* src2, Vrk16u* dst, int length, int scale);
VRKS_API VrkStatus vrksSub_32s_ISfs(const Vrk32s* src, Vrk32s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSub_32s_Sfs(const Vrk32s* src1, const Vrk32s* src2, Vrk32s* dst, int length, int scale);
VRKS_API VrkStatus vrksSub_32sc_ISfs(const Vrk32sc* src, Vrk32sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSub_32sc_Sfs(const Vrk32sc* src1, const Vrk32sc* src2, Vrk32sc* dst, int length, int scale);
VRKS_API VrkStatus vrksSub_8u_ISfs(const Vrk8u* src, Vrk8u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSub_8u_Sfs(const Vrk8u* src1, const Vrk8u* src2, Vrk8u* dst, int length, int scale);

/* dst = src - value (in place: srcDst -= value). */
VRKS_API VrkStatus vrksSubC_16s_I(Vrk16s value, Vrk16s* srcDst, int length);
VRKS_API VrkStatus vrksSubC_32f(const Vrk32f* src, Vrk32f value, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksSubC_32f_I(Vrk32f value, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksSubC_32fc(const Vrk32fc* src, Vrk32fc value, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksSubC_32fc_I(Vrk32fc value, Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksSubC_64f(const Vrk64f* src, Vrk64f value, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksSubC_64f_I(Vrk64f value, Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksSubC_64fc(const Vrk64fc* src, Vrk64fc value, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksSubC_64fc_I(Vrk64fc value, Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksSubC_16s_ISfs(Vrk16s value, Vrk16s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubC_16s_Sfs(const Vrk16s* src, Vrk16s value, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksSubC_16sc_ISfs(Vrk16sc value, Vrk16sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubC_16sc_Sfs(const Vrk16sc* src, Vrk16sc value, Vrk16sc* dst, int length, int scale);
VRKS_API VrkStatus vrksSubC_16u_ISfs(Vrk16u value, Vrk16u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubC_16u_Sfs(const Vrk16u* src, Vrk16u value, Vrk16u* dst, int length, int scale);
VRKS_API VrkStatus vrksSubC_32s_ISfs(Vrk32s value, Vrk32s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubC_32s_Sfs(const Vrk32s* src, Vrk32s value, Vrk32s* dst, int length, int scale);
VRKS_API VrkStatus vrksSubC_32sc_ISfs(Vrk32sc value, Vrk32sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubC_32sc_Sfs(const Vrk32sc* src, Vrk32sc value, Vrk32sc* dst, int length, int scale);
VRKS_API VrkStatus vrksSubC_8u_ISfs(Vrk8u value, Vrk8u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubC_8u_Sfs(const Vrk8u* src, Vrk8u value, Vrk8u* dst, int length, int scale);

/* dst = value - src (in place: srcDst = value - srcDst). */
VRKS_API VrkStatus vrksSubCRev_32f(const Vrk32f* src, Vrk32f value, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksSubCRev_32f_I(Vrk32f value, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksSubCRev_32fc(const Vrk32fc* src, Vrk32fc value, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksSubCRev_32fc_I(Vrk32fc value, Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksSubCRev_64f(const Vrk64f* src, Vrk64f value, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksSubCRev_64f_I(Vrk64f value, Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksSubCRev_64fc(const Vrk64fc* src, Vrk64fc value, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksSubCRev_64fc_I(Vrk64fc value, Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksSubCRev_16s_ISfs(Vrk16s value, Vrk16s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_16s_Sfs(const Vrk16s* src, Vrk16s value, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_16sc_ISfs(Vrk16sc value, Vrk16sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_16sc_Sfs(const Vrk16sc* src, Vrk16sc value, Vrk16sc* dst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_16u_ISfs(Vrk16u value, Vrk16u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_16u_Sfs(const Vrk16u* src, Vrk16u value, Vrk16u* dst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_32s_ISfs(Vrk32s value, Vrk32s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_32s_Sfs(const Vrk32s* src, Vrk32s value, Vrk32s* dst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_32sc_ISfs(Vrk32sc value, Vrk32sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_32sc_Sfs(const Vrk32sc* src, Vrk32sc value, Vrk32sc* dst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_8u_ISfs(Vrk8u value, Vrk8u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksSubCRev_8u_Sfs(const Vrk8u* src, Vrk8u value, Vrk8u* dst, int length, int scale);

/* dst = src1 * src2 (in place: srcDst *= src). Complex products are
 * (ac - bd) + i(bc + ad), each operation rounded separately. _Low: no rounding
 * and no saturation between the bounds (the low 32 bits of the shifted
 * product). */
VRKS_API VrkStatus vrksMul_16s(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksMul_16s32f(const Vrk16s* src1, const Vrk16s* src2, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksMul_16s_I(const Vrk16s* src, Vrk16s* srcDst, int length);
VRKS_API VrkStatus vrksMul_32f(const Vrk32f* src1, const Vrk32f* src2, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksMul_32f32fc(const Vrk32f* src1, const Vrk32fc* src2, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksMul_32f32fc_I(const Vrk32f* src, Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksMul_32f_I(const Vrk32f* src, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksMul_32fc(const Vrk32fc* src1, const Vrk32fc* src2, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksMul_32fc_I(const Vrk32fc* src, Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksMul_64f(const Vrk64f* src1, const Vrk64f* src2, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksMul_64f_I(const Vrk64f* src, Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksMul_64fc(const Vrk64fc* src1, const Vrk64fc* src2, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksMul_64fc_I(const Vrk64fc* src, Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksMul_8u16u(const Vrk8u* src1, const Vrk8u* src2, Vrk16u* dst, int length);
VRKS_API VrkStatus vrksMul_16s32s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk32s* dst, int length, int scale);
VRKS_API VrkStatus vrksMul_16s_ISfs(const Vrk16s* src, Vrk16s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMul_16s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksMul_16sc_ISfs(const Vrk16sc* src, Vrk16sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMul_16sc_Sfs(const Vrk16sc* src1, const Vrk16sc* src2, Vrk16sc* dst, int length, int scale);
VRKS_API VrkStatus vrksMul_16u16s_Sfs(const Vrk16u* src1, const Vrk16s* src2, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksMul_16u_ISfs(const Vrk16u* src, Vrk16u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMul_16u_Sfs(const Vrk16u* src1, const Vrk16u* src2, Vrk16u* dst, int length, int scale);
VRKS_API VrkStatus vrksMul_32s32sc_ISfs(const Vrk32s* src, Vrk32sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMul_32s32sc_Sfs(const Vrk32s* src1, const Vrk32sc* src2, Vrk32sc* dst, int length, int scale);
VRKS_API VrkStatus vrksMul_32s_ISfs(const Vrk32s* src, Vrk32s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMul_32s_Sfs(const Vrk32s* src1, const Vrk32s* src2, Vrk32s* dst, int length, int scale);
VRKS_API VrkStatus vrksMul_32sc_ISfs(const Vrk32sc* src, Vrk32sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMul_32sc_Sfs(const Vrk32sc* src1, const Vrk32sc* src2, Vrk32sc* dst, int length, int scale);
VRKS_API VrkStatus vrksMul_8u_ISfs(const Vrk8u* src, Vrk8u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMul_8u_Sfs(const Vrk8u* src1, const Vrk8u* src2, Vrk8u* dst, int length, int scale);
VRKS_API VrkStatus vrksMul_Low_32s_Sfs(const Vrk32s* src1, const Vrk32s* src2, Vrk32s* dst, int length, int scale);

/* dst = src * value (in place: srcDst *= value). MulC_32f16s_Sfs folds the
 * scale into value and rounds to nearest even; MulC_Low_32f16s converts under
 * the caller's rounding mode. The 64-bit forms take an unsigned length. */
VRKS_API VrkStatus vrksMulC_16s_I(Vrk16s value, Vrk16s* srcDst, int length);
VRKS_API VrkStatus vrksMulC_32f(const Vrk32f* src, Vrk32f value, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksMulC_32f_I(Vrk32f value, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksMulC_32fc(const Vrk32fc* src, Vrk32fc value, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksMulC_32fc_I(Vrk32fc value, Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksMulC_64f(const Vrk64f* src, Vrk64f value, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksMulC_64f_I(Vrk64f value, Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksMulC_64fc(const Vrk64fc* src, Vrk64fc value, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksMulC_64fc_I(Vrk64fc value, Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksMulC_Low_32f16s(const Vrk32f* src, Vrk32f value, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksMulC_16s_ISfs(Vrk16s value, Vrk16s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMulC_16s_Sfs(const Vrk16s* src, Vrk16s value, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksMulC_16sc_ISfs(Vrk16sc value, Vrk16sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMulC_16sc_Sfs(const Vrk16sc* src, Vrk16sc value, Vrk16sc* dst, int length, int scale);
VRKS_API VrkStatus vrksMulC_16u_ISfs(Vrk16u value, Vrk16u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMulC_16u_Sfs(const Vrk16u* src, Vrk16u value, Vrk16u* dst, int length, int scale);
VRKS_API VrkStatus vrksMulC_32f16s_Sfs(const Vrk32f* src, Vrk32f value, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksMulC_32s_ISfs(Vrk32s value, Vrk32s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMulC_32s_Sfs(const Vrk32s* src, Vrk32s value, Vrk32s* dst, int length, int scale);
VRKS_API VrkStatus vrksMulC_32sc_ISfs(Vrk32sc value, Vrk32sc* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMulC_32sc_Sfs(const Vrk32sc* src, Vrk32sc value, Vrk32sc* dst, int length, int scale);
VRKS_API VrkStatus vrksMulC_64f64s_ISfs(Vrk64f value, Vrk64s* srcDst, Vrk32u length, int scale);
VRKS_API VrkStatus vrksMulC_64s_ISfs(Vrk64s value, Vrk64s* srcDst, Vrk32u length, int scale);
VRKS_API VrkStatus vrksMulC_8u_ISfs(Vrk8u value, Vrk8u* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMulC_8u_Sfs(const Vrk8u* src, Vrk8u value, Vrk8u* dst, int length, int scale);

/* srcDst += src1 * src2; the _Sfs forms scale the whole sum. */
VRKS_API VrkStatus vrksAddProduct_32f(const Vrk32f* src1, const Vrk32f* src2, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksAddProduct_32fc(const Vrk32fc* src1, const Vrk32fc* src2, Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksAddProduct_64f(const Vrk64f* src1, const Vrk64f* src2, Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksAddProduct_64fc(const Vrk64fc* src1, const Vrk64fc* src2, Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksAddProduct_16s32s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk32s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAddProduct_16s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksAddProduct_32s_Sfs(const Vrk32s* src1, const Vrk32s* src2, Vrk32s* srcDst, int length, int scale);

/* srcDst += value * src. */
VRKS_API VrkStatus vrksAddProductC_32f(const Vrk32f* src, Vrk32f value, Vrk32f* srcDst, int length);

/* ---- type conversion ---------------------------------------------------- */
/* Conversions saturate: no result wraps. Results never depend on the
 * caller's floating-point environment: every function that computes in
 * floating point runs with round-to-nearest, subnormals kept and exceptions
 * masked, and restores the caller's settings before it returns (exception
 * flags may stay raised). Full rules and examples: docs/conversion.md.
 *
 * rounding: 0 toward zero, 1 to nearest even, any other value half away from
 * zero (one half is added to the magnitude in the source's precision, then
 * truncated). The half-precision forms offer only 0 and 1: they refuse 2 with
 * vrkStatusRoundMode, take 1 as to nearest and any other value as toward zero.
 *
 * 24-bit samples are three bytes, least significant first, passed through
 * byte pointers; length counts samples. No call writes past the last sample.
 *
 * The forms with a uint32_t length refuse only 0 (vrkStatusSizeError). */

/* Widening: exact, except 32s32f and 64s64f, which round to nearest. 24-bit
 * sources keep their integer value (24s sign-extends). 16f32f is exact for
 * every code: infinities and NaN (payload and signalling bit kept) included. */
VRKS_API VrkStatus vrksConvert_8s16s(const Vrk8s* src, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksConvert_8s32f(const Vrk8s* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksConvert_8u32f(const Vrk8u* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksConvert_16s32s(const Vrk16s* src, Vrk32s* dst, int length);
VRKS_API VrkStatus vrksConvert_16s32f(const Vrk16s* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksConvert_16u32f(const Vrk16u* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksConvert_16f32f(const Vrk16f* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksConvert_24s32f(const Vrk8u* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksConvert_24s32s(const Vrk8u* src, Vrk32s* dst, int length);
VRKS_API VrkStatus vrksConvert_24u32f(const Vrk8u* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksConvert_24u32u(const Vrk8u* src, Vrk32u* dst, int length);
VRKS_API VrkStatus vrksConvert_32f64f(const Vrk32f* src, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksConvert_32s32f(const Vrk32s* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksConvert_32s64f(const Vrk32s* src, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksConvert_64s64f(const Vrk64s* src, Vrk64f* dst, uint32_t length);

/* Plain narrowing. 32s16s saturates. 64f32f clamps to +-3.402823466e+38
 * first: infinities, values beyond the float range and NaN (either sign) give
 * the largest finite float of that sign (NaN: positive). */
VRKS_API VrkStatus vrksConvert_32s16s(const Vrk32s* src, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksConvert_64f32f(const Vrk64f* src, Vrk32f* dst, int length);

/* Integer to floating, times 2^-scale (exact, except the 32s32f rounding).
 * scale is clamped: 16s32f [-112, 126], 32s32f [-96, 126], 16s64f
 * [-1008, 1022], 32s64f [-992, 1022]. */
VRKS_API VrkStatus vrksConvert_16s32f_Sfs(const Vrk16s* src, Vrk32f* dst, int length, int scale);
VRKS_API VrkStatus vrksConvert_32s32f_Sfs(const Vrk32s* src, Vrk32f* dst, int length, int scale);
VRKS_API VrkStatus vrksConvert_16s64f_Sfs(const Vrk16s* src, Vrk64f* dst, int length, int scale);
VRKS_API VrkStatus vrksConvert_32s64f_Sfs(const Vrk32s* src, Vrk64f* dst, int length, int scale);

/* Floating to integer: y = src * 2^-scale, rounded by `rounding`, saturated.
 * 32f sources and 64f32s: 2^-scale is formed by |scale| halvings or doublings
 * in float, so it is 0 for scale >= 150 and infinite for scale <= -128 (then
 * 0 * inf is NaN). 64f16s: scale clamped to [-1008, 1022]. 64f64s: formed in
 * double (0 from scale 1075, infinite from -1024); a source at or below
 * DBL_MIN * 2^scale gives 0 and one at or above DBL_MAX * 2^scale saturates
 * by its sign. NaN gives: 8s 127, 8u 255, 16s 32767, 16u 0, 32s from 32f
 * 2147483647 or -2147483648 by the NaN's sign bit, 32s from 64f 2147483647,
 * 64s -2^63. */
VRKS_API VrkStatus vrksConvert_32f8s_Sfs(const Vrk32f* src, Vrk8s* dst, int length, VrkRoundMode rounding, int scale);
VRKS_API VrkStatus vrksConvert_32f8u_Sfs(const Vrk32f* src, Vrk8u* dst, int length, VrkRoundMode rounding, int scale);
VRKS_API VrkStatus vrksConvert_32f16s_Sfs(const Vrk32f* src, Vrk16s* dst, int length, VrkRoundMode rounding, int scale);
VRKS_API VrkStatus vrksConvert_32f16u_Sfs(const Vrk32f* src, Vrk16u* dst, int length, VrkRoundMode rounding, int scale);
VRKS_API VrkStatus vrksConvert_32f32s_Sfs(const Vrk32f* src, Vrk32s* dst, int length, VrkRoundMode rounding, int scale);
VRKS_API VrkStatus vrksConvert_64f16s_Sfs(const Vrk64f* src, Vrk16s* dst, int length, VrkRoundMode rounding, int scale);
VRKS_API VrkStatus vrksConvert_64f32s_Sfs(const Vrk64f* src, Vrk32s* dst, int length, VrkRoundMode rounding, int scale);
VRKS_API VrkStatus vrksConvert_64f64s_Sfs(const Vrk64f* src, Vrk64s* dst, uint32_t length, VrkRoundMode rounding,
                                          int scale);

/* Float to 24-bit, always to nearest even: scale clamped to [-127, 127],
 * where 127 gives a multiplier of 0. NaN gives -8388608 (24s) or 0 (24u). */
VRKS_API VrkStatus vrksConvert_32f24s_Sfs(const Vrk32f* src, Vrk8u* dst, int length, int scale);
VRKS_API VrkStatus vrksConvert_32f24u_Sfs(const Vrk32f* src, Vrk8u* dst, int length, int scale);

/* Integer narrowing by the scale-factor rule, scale clamped: 32s16s
 * [-15, 31], 32s24s and 32u24u [-31, 31] (so a scale of 40 acts as 31).
 * 16s8s rounds the magnitude by `rounding` and restores the sign; 64s32s
 * rounds by `rounding` (mode 1 is the scale-factor rule), scale clamped to
 * [-31, 63]. */
VRKS_API VrkStatus vrksConvert_32s16s_Sfs(const Vrk32s* src, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksConvert_32s24s_Sfs(const Vrk32s* src, Vrk8u* dst, int length, int scale);
VRKS_API VrkStatus vrksConvert_32u24u_Sfs(const Vrk32u* src, Vrk8u* dst, int length, int scale);
VRKS_API VrkStatus vrksConvert_16s8s_Sfs(const Vrk16s* src, Vrk8s* dst, uint32_t length, VrkRoundMode rounding,
                                         int scale);
VRKS_API VrkStatus vrksConvert_64s32s_Sfs(const Vrk64s* src, Vrk32s* dst, uint32_t length, VrkRoundMode rounding,
                                          int scale);

/* Half precision (IEEE 754 binary16). To half: 1 rounds to nearest (by the
 * library's two-step rule for half-subnormal results, see the docs), other
 * values truncate; 65520 and more give infinity to nearest and 65504 toward
 * zero (an infinity stays infinite); NaN gives 0x7FFF with the source's
 * sign. 16f16s: value times 2^-scale, to nearest even or truncated, NaN gives
 * 0, infinities saturate by sign. */
VRKS_API VrkStatus vrksConvert_32f16f(const Vrk32f* src, Vrk16f* dst, int length, VrkRoundMode rounding);
VRKS_API VrkStatus vrksConvert_16s16f(const Vrk16s* src, Vrk16f* dst, int length, VrkRoundMode rounding);
VRKS_API VrkStatus vrksConvert_16f16s_Sfs(const Vrk16f* src, Vrk16s* dst, int length, VrkRoundMode rounding, int scale);

/* Channels: dst[i * channels + c] comes from srcs[c][i] (split: the other way
 * round). Checks: the interleaved array, then channels and length (below 1:
 * vrkStatusSizeError), then the pointer array and each of its entries.
 * Join: each sample as vrksConvert_32f16s_Sfs to nearest, scale 0.
 * JoinScaled: [-1, 1] onto the whole integer range (1.0 to the maximum, -1.0
 * to the minimum): clamped, times 32767.5 (in float) or 8388607.5 (in
 * double), minus 0.5, to nearest even; NaN gives 32767 (16s) or -8388608
 * (24s). SplitScaled is its inverse: 16s as float * (2/65535) + 1/65535 in
 * float; 24s as double * 1.19209296656209e-07 + 5.96046483281045e-08,
 * narrowed to float. Split then join gives back every sample. */
VRKS_API VrkStatus vrksJoin_32f16s_D2L(const Vrk32f* const* srcs, int channels, int length, Vrk16s* dst);
VRKS_API VrkStatus vrksJoinScaled_32f16s_D2L(const Vrk32f* const* srcs, int channels, int length, Vrk16s* dst);
VRKS_API VrkStatus vrksJoinScaled_32f24s_D2L(const Vrk32f* const* srcs, int channels, int length, Vrk8u* dst);
VRKS_API VrkStatus vrksSplitScaled_16s32f_D2L(const Vrk16s* src, Vrk32f* const* dsts, int channels, int length);
VRKS_API VrkStatus vrksSplitScaled_24s32f_D2L(const Vrk8u* src, Vrk32f* const* dsts, int channels, int length);

/* dst = (src - subtrahend) * (1 / divisor), the reciprocal computed once in
 * the floating type; complex forms scale both parts by the real reciprocal.
 * A divisor of magnitude below the least normal value of its type gives
 * vrkStatusDivideByZero (after the pointer and length checks). The _Sfs forms
 * take the difference in 32-bit integers, multiply it as float by the float
 * reciprocal of divisor and then by 2^-scale (the low seven bits of |scale|
 * count), and round to nearest even with saturation; divisor 0 is refused. */
VRKS_API VrkStatus vrksNormalize_32f(const Vrk32f* src, Vrk32f* dst, int length, Vrk32f subtrahend, Vrk32f divisor);
VRKS_API VrkStatus vrksNormalize_64f(const Vrk64f* src, Vrk64f* dst, int length, Vrk64f subtrahend, Vrk64f divisor);
VRKS_API VrkStatus vrksNormalize_32fc(const Vrk32fc* src, Vrk32fc* dst, int length, Vrk32fc subtrahend,
                                      Vrk32f divisor);
VRKS_API VrkStatus vrksNormalize_64fc(const Vrk64fc* src, Vrk64fc* dst, int length, Vrk64fc subtrahend,
                                      Vrk64f divisor);
VRKS_API VrkStatus vrksNormalize_16s_Sfs(const Vrk16s* src, Vrk16s* dst, int length, Vrk16s subtrahend, int divisor,
                                         int scale);
VRKS_API VrkStatus vrksNormalize_16sc_Sfs(const Vrk16sc* src, Vrk16sc* dst, int length, Vrk16sc subtrahend,
                                          int divisor, int scale);

/* Packs the low bitCounts[i] bits of each src[i], most significant bit first,
 * into dst from bit (dstBitOffset & 7) of dst[0] (bit 0 is the most
 * significant bit of a byte; a larger offset doesn't advance dst). Bits of
 * the first and the last byte outside the packed range keep their values.
 * *dstBitCount receives the number of bits packed. A count below 0 or above
 * 32 is taken as 0 or 32 and the call returns vrkStatusWarnBitCount. A
 * negative dstBitOffset gives vrkStatusSizeError. */
VRKS_API VrkStatus vrksPackBits_32u8u(const Vrk32u* src, const Vrk32s* bitCounts, int length, Vrk8u* dst,
                                      int dstBitOffset, int* dstBitCount);

/* Real and imaginary parts. Conj negates the imaginary part: floating parts
 * have their sign bit flipped; 16-bit parts saturate (-(-32768) is 32767).
 * RealToCplx accepts one null source, whose part becomes 0 (checks: dst,
 * length, then both sources null). */
VRKS_API VrkStatus vrksReal_16sc(const Vrk16sc* src, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksReal_32fc(const Vrk32fc* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksReal_64fc(const Vrk64fc* src, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksImag_16sc(const Vrk16sc* src, Vrk16s* dst, int length);
VRKS_API VrkStatus vrksImag_32fc(const Vrk32fc* src, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksImag_64fc(const Vrk64fc* src, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksConj_16sc(const Vrk16sc* src, Vrk16sc* dst, int length);
VRKS_API VrkStatus vrksConj_32fc(const Vrk32fc* src, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksConj_64fc(const Vrk64fc* src, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksConj_16sc_I(Vrk16sc* srcDst, int length);
VRKS_API VrkStatus vrksConj_32fc_I(Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksConj_64fc_I(Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksRealToCplx_16s(const Vrk16s* srcRe, const Vrk16s* srcIm, Vrk16sc* dst, int length);
VRKS_API VrkStatus vrksRealToCplx_32f(const Vrk32f* srcRe, const Vrk32f* srcIm, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksRealToCplx_64f(const Vrk64f* srcRe, const Vrk64f* srcIm, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksCplxToReal_16sc(const Vrk16sc* src, Vrk16s* dstRe, Vrk16s* dstIm, int length);
VRKS_API VrkStatus vrksCplxToReal_32fc(const Vrk32fc* src, Vrk32f* dstRe, Vrk32f* dstIm, int length);
VRKS_API VrkStatus vrksCplxToReal_64fc(const Vrk64fc* src, Vrk64f* dstRe, Vrk64f* dstIm, int length);

/* ---- power-of-two FFT: state objects ----------------------------------- */
/* N = 1 << order. GetSize reports the bytes of the state object, of the
 * temporary buffer that Init reads, and of the work buffer of a transform,
 * margins included. Init builds the object anywhere in `stateMemory` (it
 * aligns itself up to 32 bytes) and hands back its address; InitAlloc takes
 * the memory itself. `flag` is one vrkFFTScale* value. An object is only read
 * by transforms, so it may serve concurrent calls that bring separate work
 * buffers (or pass NULL and let each call allocate its own). */
VRKS_API VrkStatus vrksFFTGetSize_C_16sc(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_C_16sc(VrksFFTState_C_16sc** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_C_16sc(VrksFFTState_C_16sc** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_C_16sc(VrksFFTState_C_16sc* state);
VRKS_API VrkStatus vrksFFTGetBufSize_C_16sc(const VrksFFTState_C_16sc* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_C_16s(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_C_16s(VrksFFTState_C_16s** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_C_16s(VrksFFTState_C_16s** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_C_16s(VrksFFTState_C_16s* state);
VRKS_API VrkStatus vrksFFTGetBufSize_C_16s(const VrksFFTState_C_16s* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_R_16s(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_R_16s(VrksFFTState_R_16s** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_R_16s(VrksFFTState_R_16s** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_R_16s(VrksFFTState_R_16s* state);
VRKS_API VrkStatus vrksFFTGetBufSize_R_16s(const VrksFFTState_R_16s* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_C_32fc(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_C_32fc(VrksFFTState_C_32fc** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_C_32fc(VrksFFTState_C_32fc** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_C_32fc(VrksFFTState_C_32fc* state);
VRKS_API VrkStatus vrksFFTGetBufSize_C_32fc(const VrksFFTState_C_32fc* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_C_32f(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_C_32f(VrksFFTState_C_32f** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_C_32f(VrksFFTState_C_32f** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_C_32f(VrksFFTState_C_32f* state);
VRKS_API VrkStatus vrksFFTGetBufSize_C_32f(const VrksFFTState_C_32f* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_R_32f(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_R_32f(VrksFFTState_R_32f** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_R_32f(VrksFFTState_R_32f** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_R_32f(VrksFFTState_R_32f* state);
VRKS_API VrkStatus vrksFFTGetBufSize_R_32f(const VrksFFTState_R_32f* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_C_64fc(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_C_64fc(VrksFFTState_C_64fc** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_C_64fc(VrksFFTState_C_64fc** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_C_64fc(VrksFFTState_C_64fc* state);
VRKS_API VrkStatus vrksFFTGetBufSize_C_64fc(const VrksFFTState_C_64fc* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_C_64f(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_C_64f(VrksFFTState_C_64f** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_C_64f(VrksFFTState_C_64f** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_C_64f(VrksFFTState_C_64f* state);
VRKS_API VrkStatus vrksFFTGetBufSize_C_64f(const VrksFFTState_C_64f* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_R_64f(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_R_64f(VrksFFTState_R_64f** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_R_64f(VrksFFTState_R_64f** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_R_64f(VrksFFTState_R_64f* state);
VRKS_API VrkStatus vrksFFTGetBufSize_R_64f(const VrksFFTState_R_64f* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_C_32sc(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_C_32sc(VrksFFTState_C_32sc** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_C_32sc(VrksFFTState_C_32sc** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_C_32sc(VrksFFTState_C_32sc* state);
VRKS_API VrkStatus vrksFFTGetBufSize_C_32sc(const VrksFFTState_C_32sc* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_C_32s(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_C_32s(VrksFFTState_C_32s** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_C_32s(VrksFFTState_C_32s** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_C_32s(VrksFFTState_C_32s* state);
VRKS_API VrkStatus vrksFFTGetBufSize_C_32s(const VrksFFTState_C_32s* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_R_32s(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_R_32s(VrksFFTState_R_32s** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_R_32s(VrksFFTState_R_32s** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_R_32s(VrksFFTState_R_32s* state);
VRKS_API VrkStatus vrksFFTGetBufSize_R_32s(const VrksFFTState_R_32s* state, int* size);
VRKS_API VrkStatus vrksFFTGetSize_R_16s32s(int order, int flag, int hint, int* stateSize, int* initSize, int* bufferSize);
VRKS_API VrkStatus vrksFFTInit_R_16s32s(VrksFFTState_R_16s32s** stateOut, int order, int flag, int hint, Vrk8u* stateMemory, Vrk8u* initBuffer);
VRKS_API VrkStatus vrksFFTInitAlloc_R_16s32s(VrksFFTState_R_16s32s** stateOut, int order, int flag, int hint);
VRKS_API VrkStatus vrksFFTFree_R_16s32s(VrksFFTState_R_16s32s* state);
VRKS_API VrkStatus vrksFFTGetBufSize_R_16s32s(const VrksFFTState_R_16s32s* state, int* size);

/* ---- power-of-two FFT: complex transforms ------------------------------ */
/* Forward X[k] = f sum x[n] e^(-2 pi i nk/N), inverse with +; f by the flag.
 * `buffer` holds GetBufSize bytes at any address, or is NULL (the call then
 * allocates and releases its own). */
VRKS_API VrkStatus vrksFFTFwd_CToC_32fc(const Vrk32fc* src, Vrk32fc* dst, const VrksFFTState_C_32fc* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_CToC_32fc_I(Vrk32fc* srcDst, const VrksFFTState_C_32fc* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_CToC_64fc(const Vrk64fc* src, Vrk64fc* dst, const VrksFFTState_C_64fc* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_CToC_64fc_I(Vrk64fc* srcDst, const VrksFFTState_C_64fc* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_CToC_32f(const Vrk32f* srcRe, const Vrk32f* srcIm, Vrk32f* dstRe, Vrk32f* dstIm, const VrksFFTState_C_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_CToC_32f_I(Vrk32f* srcDstRe, Vrk32f* srcDstIm, const VrksFFTState_C_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_CToC_64f(const Vrk64f* srcRe, const Vrk64f* srcIm, Vrk64f* dstRe, Vrk64f* dstIm, const VrksFFTState_C_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_CToC_64f_I(Vrk64f* srcDstRe, Vrk64f* srcDstIm, const VrksFFTState_C_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CToC_32fc(const Vrk32fc* src, Vrk32fc* dst, const VrksFFTState_C_32fc* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CToC_32fc_I(Vrk32fc* srcDst, const VrksFFTState_C_32fc* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CToC_64fc(const Vrk64fc* src, Vrk64fc* dst, const VrksFFTState_C_64fc* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CToC_64fc_I(Vrk64fc* srcDst, const VrksFFTState_C_64fc* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CToC_32f(const Vrk32f* srcRe, const Vrk32f* srcIm, Vrk32f* dstRe, Vrk32f* dstIm, const VrksFFTState_C_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CToC_32f_I(Vrk32f* srcDstRe, Vrk32f* srcDstIm, const VrksFFTState_C_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CToC_64f(const Vrk64f* srcRe, const Vrk64f* srcIm, Vrk64f* dstRe, Vrk64f* dstIm, const VrksFFTState_C_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CToC_64f_I(Vrk64f* srcDstRe, Vrk64f* srcDstIm, const VrksFFTState_C_64f* state, Vrk8u* buffer);

/* ---- power-of-two FFT: real transforms and packed spectra -------------- */
/* A real spectrum of L points keeps X[0..L/2]; three packed layouts:
 *   Pack  R0 R1 I1 ... R(L/2)          (L reals)
 *   Perm  R0 R(L/2) R1 I1 ...          (L reals)
 *   CCS   R0 0 R1 I1 ... R(L/2) 0      (L + 2 reals)
 * For odd L, Pack and Perm are R0 R1 I1 ... RH IH and CCS R0 0 R1 I1 ... RH IH. */
VRKS_API VrkStatus vrksFFTFwd_RToPack_32f(const Vrk32f* src, Vrk32f* dst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToPack_32f_I(Vrk32f* srcDst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToPack_64f(const Vrk64f* src, Vrk64f* dst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToPack_64f_I(Vrk64f* srcDst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToPerm_32f(const Vrk32f* src, Vrk32f* dst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToPerm_32f_I(Vrk32f* srcDst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToPerm_64f(const Vrk64f* src, Vrk64f* dst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToPerm_64f_I(Vrk64f* srcDst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToCCS_32f(const Vrk32f* src, Vrk32f* dst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToCCS_32f_I(Vrk32f* srcDst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToCCS_64f(const Vrk64f* src, Vrk64f* dst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTFwd_RToCCS_64f_I(Vrk64f* srcDst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_PackToR_32f(const Vrk32f* src, Vrk32f* dst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_PackToR_32f_I(Vrk32f* srcDst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_PackToR_64f(const Vrk64f* src, Vrk64f* dst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_PackToR_64f_I(Vrk64f* srcDst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_PermToR_32f(const Vrk32f* src, Vrk32f* dst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_PermToR_32f_I(Vrk32f* srcDst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_PermToR_64f(const Vrk64f* src, Vrk64f* dst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_PermToR_64f_I(Vrk64f* srcDst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CCSToR_32f(const Vrk32f* src, Vrk32f* dst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CCSToR_32f_I(Vrk32f* srcDst, const VrksFFTState_R_32f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CCSToR_64f(const Vrk64f* src, Vrk64f* dst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
VRKS_API VrkStatus vrksFFTInv_CCSToR_64f_I(Vrk64f* srcDst, const VrksFFTState_R_64f* state, Vrk8u* buffer);
/* Full spectrum of `length` complex values from a packed one. */
VRKS_API VrkStatus vrksConjPack_16sc(const Vrk16s* src, Vrk16sc* dst, int length);
VRKS_API VrkStatus vrksConjPack_16sc_I(Vrk16sc* srcDst, int length);
VRKS_API VrkStatus vrksConjPack_32fc(const Vrk32f* src, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksConjPack_32fc_I(Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksConjPack_64fc(const Vrk64f* src, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksConjPack_64fc_I(Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksConjPerm_16sc(const Vrk16s* src, Vrk16sc* dst, int length);
VRKS_API VrkStatus vrksConjPerm_16sc_I(Vrk16sc* srcDst, int length);
VRKS_API VrkStatus vrksConjPerm_32fc(const Vrk32f* src, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksConjPerm_32fc_I(Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksConjPerm_64fc(const Vrk64f* src, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksConjPerm_64fc_I(Vrk64fc* srcDst, int length);
VRKS_API VrkStatus vrksConjCcs_16sc(const Vrk16s* src, Vrk16sc* dst, int length);
VRKS_API VrkStatus vrksConjCcs_16sc_I(Vrk16sc* srcDst, int length);
VRKS_API VrkStatus vrksConjCcs_32fc(const Vrk32f* src, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksConjCcs_32fc_I(Vrk32fc* srcDst, int length);
VRKS_API VrkStatus vrksConjCcs_64fc(const Vrk64f* src, Vrk64fc* dst, int length);
VRKS_API VrkStatus vrksConjCcs_64fc_I(Vrk64fc* srcDst, int length);
/* dst[j] = conj(src[length - 1 - j]). */
VRKS_API VrkStatus vrksConjFlip_16sc(const Vrk16sc* src, Vrk16sc* dst, int length);
VRKS_API VrkStatus vrksConjFlip_32fc(const Vrk32fc* src, Vrk32fc* dst, int length);
VRKS_API VrkStatus vrksConjFlip_64fc(const Vrk64fc* src, Vrk64fc* dst, int length);
/* Products of two packed spectra; the 16-bit forms shift right without
 * rounding (toward minus infinity) and saturate. */
VRKS_API VrkStatus vrksMulPack_32f(const Vrk32f* src1, const Vrk32f* src2, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksMulPack_32f_I(const Vrk32f* src, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksMulPack_64f(const Vrk64f* src1, const Vrk64f* src2, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksMulPack_64f_I(const Vrk64f* src, Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksMulPack_16s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksMulPack_16s_ISfs(const Vrk16s* src, Vrk16s* srcDst, int length, int scale);
VRKS_API VrkStatus vrksMulPerm_32f(const Vrk32f* src1, const Vrk32f* src2, Vrk32f* dst, int length);
VRKS_API VrkStatus vrksMulPerm_32f_I(const Vrk32f* src, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksMulPerm_64f(const Vrk64f* src1, const Vrk64f* src2, Vrk64f* dst, int length);
VRKS_API VrkStatus vrksMulPerm_64f_I(const Vrk64f* src, Vrk64f* srcDst, int length);
VRKS_API VrkStatus vrksMulPerm_16s_Sfs(const Vrk16s* src1, const Vrk16s* src2, Vrk16s* dst, int length, int scale);
VRKS_API VrkStatus vrksMulPerm_16s_ISfs(const Vrk16s* src, Vrk16s* srcDst, int length, int scale);
/* srcDst = src times conj(srcDst), both in Pack layout. */
VRKS_API VrkStatus vrksMulPackConj_32f_I(const Vrk32f* src, Vrk32f* srcDst, int length);
VRKS_API VrkStatus vrksMulPackConj_64f_I(const Vrk64f* src, Vrk64f* srcDst, int length);

#ifdef __cplusplus
}
#endif

#endif /* VRKS_H */
