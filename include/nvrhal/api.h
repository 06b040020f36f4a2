/*
 * api.h - what every public header builds on.
 */
#ifndef NVRHAL_API_H
#define NVRHAL_API_H

#include <stdint.h>

/** Marks what the library exports. */
#define NVRHAL_API __attribute__((visibility("default")))

/** A 64-bit word that a record keeps at 4-byte alignment, as the 32-bit target does. */
typedef uint64_t nvrhal_u64 __attribute__((aligned(4)));

#endif
