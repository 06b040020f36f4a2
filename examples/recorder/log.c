/* log.c - see log.h. */
#include "log.h"

#include <stdio.h>

/* [log] */
bool log_to_file(const char *path)
{
    if (!freopen(path, "w", stdout)) return false;
    return setvbuf(stdout, NULL, _IOLBF, BUFSIZ) == 0;
}
/* [/log] */
