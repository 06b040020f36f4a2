/* unsupported.c - see unsupported.h. */
#include "unsupported.h"

#include <errno.h>
#include <stdatomic.h>
#include <stdio.h>
#include <string.h>

/* Asserts, with this compiler, that the seams' records lie in memory as the library has them. */
#include "seam_layouts.h"

enum { kMostCalls = 128 }; /* more than the seams have */

/* The calls that were told of, by the address of their names: each function has one of its own. */
static const char *_Atomic told[kMostCalls];

/* Loops poll: a line for each of their rounds would bury all others. */
static void tell_once(const char *call)
{
    for (int i = 0; i < kMostCalls; ++i) {
        const char *known = NULL;
        if (atomic_compare_exchange_strong(&told[i], &known, call)) {
            fprintf(stderr, "skeleton: %s: unsupported\n", call);
            return;
        }
        if (strcmp(known, call) == 0) return;
    }
}

int32_t unsupported(enum MI_ModuleId module, const char *call)
{
    tell_once(call);
    return MI_ERROR(module, MI_REASON_UNSUPPORTED);
}

void board_unsupported(const char *call)
{
    tell_once(call);
    errno = ENOSYS;
}
