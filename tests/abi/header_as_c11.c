/* The public header as the first thing a strict C11 source sees. */
#include "nvrhal.h"

#include "nvrhal.h" /* a second time, on purpose */

#include <string.h>

#include "seen_sizes.h"

void sizes_in_c(size_t sizes[kSeenSizes])
{
    const size_t seen[kSeenSizes] = SEEN_SIZES;
    memcpy(sizes, seen, sizeof seen);
}
