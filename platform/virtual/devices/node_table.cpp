/* node_table.cpp - which device nodes this board has. */
#include <cerrno>
#include <cstring>
#include <vector>

#include "devices/device_node.h"
#include "devices/framebuffer.h"
#include "devices/peripheral_nodes.h"
#include "media/call.h"
#include "media/modules.h"

namespace vboard
{
namespace
{

// One entry a node: the function that gives it.
const std::vector<DeviceNode *> &node_table()
{
    static const auto *table = new std::vector<DeviceNode *>{
        framebuffer_node(), watchdog_node(),    clock_node(),       gpio_node(),
        front_panel_node(), ir_receiver_node(), analog_chip_node(), mouse_node()};
    return *table;
}

int refuse_request(const char *what)
{
    refuse_plainly("this node cannot be %s", what);
    errno = ENOTTY;
    return -1;
}

} // namespace

int OpenNode::read(void *, size_t)
{
    return refuse_request("read");
}

int OpenNode::ioctl(unsigned long, void *)
{
    return refuse_request("asked anything");
}

void *OpenNode::map(size_t)
{
    refuse_request("mapped");
    return nullptr;
}

int OpenNode::unmap(void *, size_t)
{
    return refuse_request("unmapped");
}

DeviceNode *find_node(const char *path)
{
    for (DeviceNode *node : node_table())
        if (strcmp(node->path(), path) == 0) return node;
    return nullptr;
}

void reset_all_nodes()
{
    for (DeviceNode *node : node_table())
        node->reset();
}

} // namespace vboard
