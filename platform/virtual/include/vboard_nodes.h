/*
 * vboard_nodes.h - the device nodes from outside: which there are, and whether an opening has something
 * to read. For whoever leads a program's own descriptors to this board, with poll() and its like.
 *
 * Beside vboard.h, and under the same rules: any thread; -1 when refused with one line on standard error.
 * Descriptors are those of board_open (board_io.h).
 */
#ifndef VBOARD_NODES_H
#define VBOARD_NODES_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/** 1 when this board has a device node of that path, otherwise 0. */
int vboard_node_exists(const char *path);

/**
 * Whether an opening has a record waiting: board_read gives it at once.
 *
 * @return 1, or 0 (nothing, or a node that is never read), or -1 (not open)
 */
int vboard_node_pending(int descriptor);

/**
 * Called when a record has come for an opening, on the thread that brought it; the board holds no lock
 * that vboard_node_pending or board_read needs. One at a time for an opening.
 */
typedef void (*vboard_node_follower)(int descriptor, void *user);

/**
 * Follow the records of an opening. One follower an opening; a null one ends it, and returns when no
 * call is running any more. Closing the descriptor ends it too.
 *
 * @return 0, or -1 (not open, followed already)
 */
int vboard_node_follow(int descriptor, vboard_node_follower follower, void *user);

#ifdef __cplusplus
}
#endif

#endif
