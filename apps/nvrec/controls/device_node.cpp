/* device_node.cpp - see device_node.h. */
#include "controls/device_node.h"

#include <fcntl.h>

#include "board_io.h"

namespace nvrec
{

bool DeviceNode::open(const char *path)
{
    close();
    descriptor_ = board_open(path, O_RDONLY);
    return is_open();
}

int DeviceNode::read(void *record, size_t size) const
{
    return board_read(descriptor_, record, size);
}

void DeviceNode::close()
{
    if (is_open()) board_close(descriptor_);
    descriptor_ = -1;
}

} // namespace nvrec
