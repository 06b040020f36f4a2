/*
 * device_node.h - a device node that the recorder reads itself, because the library leaves it to the
 * application: the mouse, and the keys of the front panel. The one place below the library.
 */
#pragma once

#include <cstddef>

namespace nvrec
{

class DeviceNode
{
public:
    DeviceNode() = default;
    ~DeviceNode() { close(); }
    DeviceNode(const DeviceNode &) = delete;
    DeviceNode &operator=(const DeviceNode &) = delete;

    /** Open it for reading. @return false = there is none. */
    bool open(const char *path);

    bool is_open() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }

    /** One record. @return bytes read, 0 = none came while the node waited, negative = the node is gone. */
    int read(void *record, size_t size) const;

    void close();

private:
    int descriptor_ = -1;
};

} // namespace nvrec
