/*
 * node_calls.h - what the system calls do on an opening of the board. Results and errno as those of the
 * system; in a process that is not the board's all give ENODEV.
 */
#ifndef VBOARD_REMOTE_NODE_CALLS_H
#define VBOARD_REMOTE_NODE_CALLS_H

#include <cstddef>
#include <sys/types.h>

#include "nodes/openings.h"

namespace vboard_remote
{

/* As board_read; with O_NONBLOCK, EAGAIN instead of a wait. */
ssize_t read_node(Opening &opening, int descriptor, void *buffer, size_t size);

/* Anything that is written to the watchdog feeds it; the other nodes take nothing. */
ssize_t write_node(Opening &opening, size_t size);

int request_of_node(Opening &opening, unsigned long request, void *argument);

/* As mmap(), from the beginning and shared. MAP_FAILED on failure. */
void *map_node(Opening &opening, size_t size, int flags, off64_t offset);

/* Whether this is a mapping of a node; it is undone then, with its result. */
bool unmap_node(void *address, size_t size, int &result);

} // namespace vboard_remote

#endif
