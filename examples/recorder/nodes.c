/* nodes.c - nodes.h on a board: files like any others. */
#include "nodes.h"

#include <fcntl.h>
#include <unistd.h>

int node_open(const char *path)
{
    return open(path, O_RDONLY | O_CLOEXEC);
}

int node_read(int node, void *record, size_t size)
{
    return (int)read(node, record, size);
}

void node_close(int node)
{
    if (node >= 0) close(node);
}
