/* log.c - see log.h. */
#include "log.h"

#include <stdio.h>

#include "nvrhal.h"

/* [log] */
static void write_log(const char *text, size_t length, void *user)
{
    FILE *file = user;
    fwrite(text, 1, length, file);
    fflush(file);
}

bool log_to_file(const char *path)
{
    FILE *file = fopen(path, "w");
    if (file) nvrhal_set_log(write_log, file);
    return file;
}
/* [/log] */
