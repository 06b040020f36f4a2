/* log.h - the library's log in a file of its own. */
#ifndef LOG_H
#define LOG_H

#include <stdbool.h>

/*
 * The library writes what it does to standard output. Send that to a file, line by line, so that a
 * recorder that dies leaves its last line; the application speaks on standard error. Before start-up.
 */
bool log_to_file(const char *path);

#endif
