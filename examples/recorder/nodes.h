/*
 * nodes.h - the device nodes that the application reads itself: the front panel's keys and the mouse.
 * nvrhal/input_nodes.h has their names and what a read gives.
 *
 * On a board these are files like any others (nodes.c). On a PC they belong to the virtual board
 * (virtual_board.c), so that the application reaches them through the board's own calls.
 */
#ifndef NODES_H
#define NODES_H

#include <stddef.h>

/* A descriptor, or -1. */
int node_open(const char *path);

/* Bytes read, 0 = nothing came, -1 = the device is gone. */
int node_read(int node, void *record, size_t size);

void node_close(int node);

#endif
