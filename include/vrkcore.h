/*
 * vrkcore — the core companion of vrks: aligned memory and the thread count.
 *
 * vrks allocates through vrkMalloc/vrkFree and asks ownGetNumThreads how many
 * threads a call may use. Applications may change that count with
 * vrkSetNumThreads; vrks itself never does.
 */
#ifndef VRKCORE_H
#define VRKCORE_H

#include <stdint.h>

#if defined(__GNUC__) || defined(__clang__)
#define VRKCORE_API __attribute__((visibility("default")))
#else
#define VRKCORE_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A block of `size` bytes (size > 0) aligned to 64 bytes, or NULL. */
VRKCORE_API void* vrkMalloc(uint64_t size);
/* Releases a block from vrkMalloc; NULL does nothing. */
VRKCORE_API void vrkFree(void* pointer);
/* The number of threads that a vrks call may use; below 2 means serial.
 * Default: the processors available to the process. */
VRKCORE_API int32_t ownGetNumThreads(void);
/* Sets that number for the whole process; a value below 1 restores the
 * default. Returns the previous value. Calls running at the time keep the
 * value they read. */
VRKCORE_API int32_t vrkSetNumThreads(int32_t count);

#ifdef __cplusplus
}
#endif

#endif /* VRKCORE_H */
