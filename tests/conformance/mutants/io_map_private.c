/* io_map_private - breaks: a mapping is shared: what is written through it is the node's memory. */
#include "board_io.h"
#include "mutant.h"

#include <string.h>
#include <sys/mman.h>

/* A copy of the node's memory, as MAP_PRIVATE gives it. */
void *board_map(int descriptor, size_t size)
{
    void *shared = PLATFORM(board_map)(descriptor, size);
    if (shared == NULL) return NULL;
    int flags = MAP_PRIVATE | MAP_ANONYMOUS;
#ifdef MAP_32BIT
    flags |= MAP_32BIT; /* the library keeps addresses in 32 bits */
#endif
    void *copy = mmap(NULL, size, PROT_READ | PROT_WRITE, flags, -1, 0);
    if (copy != MAP_FAILED) memcpy(copy, shared, size);
    PLATFORM(board_unmap)(shared, size);
    return copy != MAP_FAILED ? copy : NULL;
}

int board_unmap(void *address, size_t size)
{
    return munmap(address, size);
}
