/*
 * device_node.h - device nodes in software. A node is found by its path and opened any number of
 * times; every opening is an OpenNode of its own. A new node is one source file here with a
 * function that gives its DeviceNode, and one line in node_table.cpp.
 *
 * board_io calls one OpenNode from one thread at a time unless the application itself uses a
 * descriptor from several; a node that shares state between openings guards it itself.
 */
#ifndef VBOARD_DEVICE_NODE_H
#define VBOARD_DEVICE_NODE_H

#include <cstddef>
#include <functional>
#include <memory>

namespace vboard
{

/* Results as those of board_io.h; a failing call sets errno. The defaults refuse with ENOTTY. */
class OpenNode
{
public:
    virtual ~OpenNode() = default;
    virtual int read(void *buffer, size_t size);
    virtual int ioctl(unsigned long request, void *argument);
    virtual void *map(size_t size);
    virtual int unmap(void *address, size_t size);

    /* Whether a read gives a record at once. */
    virtual bool is_pending() { return false; }

    /*
     * Be told of every record that comes, outside of the node's locks; an empty one ends it, and returns
     * when no call is running any more. False: there is one.
     */
    // NOLINTNEXTLINE(performance-unnecessary-value-param): whoever has records keeps it
    virtual bool follow(std::function<void()>) { return true; }
};

class DeviceNode
{
public:
    virtual ~DeviceNode() = default;
    virtual const char *path() const = 0;

    /* Null = refused, errno set. `flags` as <fcntl.h>. */
    virtual std::shared_ptr<OpenNode> open(int flags) = 0;

    /* Back to the state after power-on; every opening is closed by then. */
    virtual void reset() = 0;
};

/* Reset every node; for nodes_reset. */
void reset_all_nodes();

/* Null: no node has this path. */
DeviceNode *find_node(const char *path);

} // namespace vboard

#endif
