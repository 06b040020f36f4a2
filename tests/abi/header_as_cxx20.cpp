/* The public header as the first thing a strict C++20 source sees. */
#include "nvrhal.h"

#include "nvrhal.h" // a second time, on purpose

#include <cstring>

#include "seen_sizes.h"

void sizes_in_cxx(size_t sizes[kSeenSizes])
{
    const size_t seen[kSeenSizes] = SEEN_SIZES;
    std::memcpy(sizes, seen, sizeof seen);
}
