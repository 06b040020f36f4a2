/*
 * node.h - a device node in the place of a driver: on this board the support package has calls, and the
 * library opens nodes. board.c gives each of these kinds its descriptors.
 */
#ifndef NODE_H
#define NODE_H

#include <stddef.h>

typedef struct NodeKind {
    const char *path;
    void *(*open)(void); /* an opening's own state; null function = it has none */
    void (*close)(void *opening);
    int (*read)(void *opening, void *buffer, size_t size); /* null = the node is not read */
    int (*request)(void *opening, unsigned long request, void *argument);
    void *(*map)(size_t size); /* null = the node has no memory */
    void (*unmap)(void *address);
} NodeKind;

/* -1 with errno: the driver's own refusals. */
int node_refuses_value(void);    /* EINVAL */
int node_knows_no_request(void); /* ENOTTY */

extern const NodeKind node_framebuffer, node_watchdog, node_clock, node_lines, node_panel, node_remote,
    node_mouse, node_analog;

#endif
