/*
 * operations.h - the library's main operations, one after another, on whichever recording platform stands
 * below: tests/trace runs them on the one of the trace tests, tests/musl on the one in plain C. Calls and
 * texts go into the same golden files, tests/trace/golden.
 */
#ifndef OPERATIONS_H
#define OPERATIONS_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What an operation asks of the platform below. */
struct recording_below {
    void (*forget)(void); /* calls and texts so far */
    void (*node_is_absent)(const char *path);
    void (*fail)(const char *name, unsigned n, int32_t code);
    void (*note)(const char *what, const char *value); /* a line among the calls */
};

/* Each runs in a process of its own. */
struct operation {
    const char *name;            /* of the golden file of its calls            */
    const char *const *prefixes; /* of the calls that count; null = all        */
    int has_log;                 /* the texts are compared too, in NAME_log    */
    void (*run)(const struct recording_below *below);
};

extern const struct operation operations[];
extern const size_t operation_count;

/* Put '#' in place of every decimal number of a log, since line numbers are free. */
void hide_numbers(char *text);

#ifdef __cplusplus
}
#endif

#endif
