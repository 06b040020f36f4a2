/* unsupported.h - how the skeleton refuses: with one line that names the call, the first time it comes. */
#ifndef UNSUPPORTED_H
#define UNSUPPORTED_H

#include <stddef.h>
#include <stdint.h>

#include "mi_common.h"

/** Refuse a call of the media interface: prints, and gives the code that says so. Any thread. */
int32_t unsupported(enum MI_ModuleId module, const char *call);

/** Refuse a call of the board I/O: prints, and sets errno to ENOSYS. Any thread. */
void board_unsupported(const char *call);

#endif
