/*
 * recording.h - the recording platform of the trace tests, in plain C.
 *
 * For targets that have no C++ run-time library. It writes down what the other one (tests/support) writes
 * down, in the same words, refuses what that one refuses, and answers as that one does without a script; so
 * the same golden files fit both. One thread calls it.
 */
#ifndef RECORDING_H
#define RECORDING_H

#include <stddef.h>
#include <stdint.h>

/** The calls so far, one a line, without a line end behind the last; those of other names are left out
 *  when `prefixes`, which a null pointer ends, is not null. The caller frees the text. */
char *recorded_calls(const char *const *prefixes);

/** Forget the calls so far; what was created, bound, opened and set stays. */
void recording_forget(void);

/** Opening this node fails from now on. */
void recording_node_is_absent(const char *path);

/** The n-th call of this name from now on, n from 1, gives `code`. */
void recording_fail(const char *name, unsigned n, int32_t code);

/**
 * A call: one line. For record_board.c and record_media.c.
 * @return 0, or the code that recording_fail asked for
 */
__attribute__((format(printf, 2, 3))) int32_t record_call(const char *name, const char *format, ...);

/** What memory holds that the platform hands out and did not write. */
enum { HANDED_OUT_BYTE = 0xC7 };

#endif
