/* log.h - the library's log in a file of its own. */
#ifndef LOG_H
#define LOG_H

#include <stdbool.h>

/*
 * The library writes what it does to standard output. Send that to a file instead, text by text, so that
 * a recorder that dies leaves its last line. Before start-up.
 */
bool log_to_file(const char *path);

#endif
